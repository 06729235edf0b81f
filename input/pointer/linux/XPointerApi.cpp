#include "input/pointer/PointerApi.h"
#include "input/window/linux/XConnection.h"

#include <memory>
#include <mutex>

namespace orbelantine {

namespace {

constexpr std::uint8_t kXLeftButton = 1;
constexpr std::uint8_t kXRightButton = 3;
constexpr std::uint8_t kRelativeMotion = 1;

// What the server's testing extension is asked for, by a flag.
constexpr struct {
    std::uint32_t flag;
    std::uint8_t event;
    std::uint8_t detail;
} kXInputs[] = {
    {PointerApi::kMove, XCB_MOTION_NOTIFY, kRelativeMotion},
    {PointerApi::kLeftDown, XCB_BUTTON_PRESS, kXLeftButton},
    {PointerApi::kLeftUp, XCB_BUTTON_RELEASE, kXLeftButton},
    {PointerApi::kRightDown, XCB_BUTTON_PRESS, kXRightButton},
    {PointerApi::kRightUp, XCB_BUTTON_RELEASE, kXRightButton},
};

/// On a connection of its own, which is made anew when the server has ended it.
class XPointerApi final : public PointerApi {
  public:
    Error sendInput(const MouseInput& input) override {
        const std::lock_guard lock(mMutex);
        XError error = connect();
        if (error == XError::None && !inject(input)) {
            // The server has gone since the last time; there may be another by now.
            error = connect();
            if (error == XError::None && !inject(input))
                error = XError::NoDisplay;
        }
        return static_cast<Error>(error);
    }

  private:
    XError connect() {
        if (mConnection && !mConnection->isBroken())
            return XError::None;
        mConnection.reset();
        if (const XError error = XConnection::open(mConnection); error != XError::None)
            return error;
        return mConnection->extension("XTEST") != 0 ? XError::None : XError::NoExtension;
    }

    bool inject(const MouseInput& input) const {
        const XLibrary& library = mConnection->library();
        // Every client is told of new key maps.
        while (XOwned<xcb_generic_event_t>(library.xcb_poll_for_event(mConnection->get())))
            continue;
        for (const auto& row : kXInputs)
            if ((input.flags & row.flag) != 0)
                library.xcb_test_fake_input(
                    mConnection->get(), row.event, row.detail, XCB_CURRENT_TIME, XCB_NONE,
                    static_cast<std::int16_t>(input.dx), static_cast<std::int16_t>(input.dy), 0);
        mConnection->flush();
        return !mConnection->isBroken();
    }

    std::mutex mMutex;
    std::shared_ptr<XConnection> mConnection;
};

} // namespace

PointerApi& PointerApi::system() {
    static auto& api = *new XPointerApi;
    return api;
}

} // namespace orbelantine
