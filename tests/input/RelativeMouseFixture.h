#pragma once

#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IMediaElement.h"
#include "core/common/OSAL.h"
#include "input/IMouseReverser.h"
#include "input/IRemoteMouseInfoProvider.h"
#include "input/RelativeMouseSource.h"
#include "tests/support/HandClock.h"

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::test {

using Journal = std::vector<std::string>;

inline std::string pairText(std::int32_t x, std::int32_t y) {
    return ' ' + std::to_string(x) + ',' + std::to_string(y);
}

/// A surface of 1000 x 500 pixels at (100, 200) of the screen.
class FakeSurface final : public IInputContext {
  public:
    explicit FakeSurface(Journal& journal)
        : mJournal(journal) {}

    std::int32_t speed = DEFAULT_MOUSE_SPEED;

    std::uint16_t convertVKCodeToUnicode(std::uint32_t) override { return 0; }

    std::uint32_t mapVK(std::uint32_t) override { return 0; }

    std::uint32_t mapScan(std::uint32_t) override { return 0; }

    void lockSystemMouse() override { mJournal.emplace_back("lock"); }

    void unlockSystemMouse(std::int32_t x, std::int32_t y) override {
        mJournal.push_back("unlock" + pairText(x, y));
    }

    std::int32_t getSystemMouseSpeed() override { return speed; }

    bool screenToInputSurface(Point& point) override {
        point = {point.x - 100, point.y - 200};
        return true;
    }

    bool inputSurfaceToScreen(Point& point) override {
        point = {point.x + 100, point.y + 200};
        return true;
    }

    bool getInputSurfaceRectWithinScreen(Rect& rect) override {
        rect = {100, 200, 1100, 700};
        return true;
    }

    void setCaptureMouseExclusively() override {}

    void releaseCaptureMouseExclusively() override {}

    [[nodiscard]] std::size_t slots() const {
        return onLogicalDimensionsChanged.num_slots() + onRotationChanged.num_slots();
    }

  private:
    Journal& mJournal;
};

class FakeTarget final : public IMediaElement {
  public:
    explicit FakeTarget(Journal& journal)
        : mJournal(journal) {}

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        static const char* const kNames[] = {"move",      "leftUp",    "leftDown", "rightUp",
                                             "rightDown", "wheelDown", "wheelUp"};
        auto& mouse = dynamic_cast<IInputMediaBufferMouse&>(*buffer);
        const auto& event = mouse.event();
        const bool asMade =
            mouse.networkOrder() == (event.type != 0) && event.maxX == 0 && event.maxY == 0;
        mJournal.push_back((asMade ? "" : "bad ") + std::string(kNames[event.type]) +
                           pairText(event.x, event.y));
    }

  private:
    Journal& mJournal;
};

/// A phone whose cursor makes `acceleration` times a delta of it.
struct FakePhone {
    enum StopAnswer { AtOnce, Drops, Keeps };

    class Reverser final : public IMouseReverser {
      public:
        explicit Reverser(FakePhone& phone)
            : mPhone(phone) {}

        void applyMove(std::int32_t& dx, std::int32_t& dy, const std::int64_t& timeNs) override {
            mPhone.lastMoveNs = timeNs;
            dx *= mPhone.acceleration;
            dy *= mPhone.acceleration;
        }

        void reverse(std::int32_t& dx, std::int32_t& dy) override {
            dx /= mPhone.reversal;
            dy /= mPhone.reversal;
        }

      private:
        FakePhone& mPhone;
    };

    class Provider final : public IRemoteMouseInfoProvider {
      public:
        explicit Provider(FakePhone& phone)
            : mPhone(phone) {}

        void start(Callback callback) override { mPhone.started = std::move(callback); }

        void stop(Callback callback) override {
            ++mPhone.stops;
            if (mPhone.stopAnswer == AtOnce)
                callback(error_code());
            else if (mPhone.stopAnswer == Keeps)
                mPhone.stopping.set_value(callback);
        }

      private:
        FakePhone& mPhone;
    };

    std::int32_t acceleration = 1;
    std::int32_t reversal = 1;
    std::int64_t lastMoveNs = -1;
    StopAnswer stopAnswer = AtOnce;
    int stops = 0;
    IRemoteMouseInfoProvider::Callback started;
    std::promise<IRemoteMouseInfoProvider::Callback> stopping;
    /// The latest of each; they outlive the source.
    boost::shared_ptr<Provider> provider;
    boost::shared_ptr<Reverser> reverser;

    [[nodiscard]] static FakePhone& of(KVStore store) {
        return *static_cast<FakePhone*>(store.getContextAt("phone"));
    }
};

template <class Interface, class Part, boost::shared_ptr<Part> FakePhone::*kLatest,
          class... Arguments>
class FakePartCreator : public OSALCreator<Interface, Arguments...> {
  public:
    boost::shared_ptr<Interface> create(const KVStore& store, Arguments...) const override {
        auto& phone = FakePhone::of(store);
        return phone.*kLatest = boost::make_shared<Part>(phone);
    }
};

using FakeReverserCreator =
    FakePartCreator<IMouseReverser, FakePhone::Reverser, &FakePhone::reverser, IClock&>;
using FakeProviderCreator =
    FakePartCreator<IRemoteMouseInfoProvider, FakePhone::Provider, &FakePhone::provider>;

/// What the hint "FakePhone" finds: it makes both parts of the phone that the store names.
class FakePhoneCreator final : public FakeReverserCreator, public FakeProviderCreator {};

class FakeMouseSettings final : public MouseSettingsApi {
  public:
    Error error = 2;
    std::uint32_t dragSpeed = 0;

    Error getInteger(const char* name, std::uint32_t& value) override {
        if (error == 0 && std::string(name) == "DragSpeed")
            value = dragSpeed;
        return error;
    }
};

/// A source with a world around it. The journal has all that leaves it, pauses included, in order.
class RelativeMouse {
  public:
    explicit RelativeMouse(bool apple = false, const std::string& hint = "FakePhone") {
        static FakePhoneCreator creator;
        OSALFactory::registerFactory("FakePhone", static_cast<OSALCreatorBase*>(
                                                      static_cast<FakeReverserCreator*>(&creator)));
        store.setStringAt("hint", hint);
        store.setBoolAt("apple", apple);
        store.setContextAt("phone", &phone);
        clock.onPause([this] {
            const auto pause = clock.pauses().back();
            journal.push_back(
                "pause " +
                std::to_string(
                    std::chrono::duration_cast<std::chrono::milliseconds>(pause).count()));
        });
        make();
    }

    void make() {
        source.reset();
        source = std::make_unique<RelativeMouseSource>(store, settings, clock);
        source->registerTarget(boost::make_shared<FakeTarget>(journal));
    }

    /// Into Ready.
    void beReady(std::int32_t width = 500, std::int32_t height = 250, double scale = 1,
                 std::int32_t inset = 0) {
        source->start(surface);
        (void)take(); // It is connected now.
        surface->onLogicalDimensionsChanged(width, height, scale, inset);
        (void)take();
    }

    /// Runs `task` on the worker once all that was raised so far is done.
    template <class Task>
    auto inside(Task task) {
        return source->postAndWait([task](const auto&) mutable { return task(); });
    }

    /// The journal since the last call.
    Journal take() {
        return inside([this] { return std::exchange(journal, {}); });
    }

    std::string position() {
        return inside([this] {
            const CursorPoint& at = source->position();
            return pairText(at.x, at.y) + (at.flags != 0 ? " held" : "");
        });
    }

    std::string state() {
        return source->postAndWait([](const auto& state) { return state->getName(); });
    }

    Journal journal;
    HandClock clock;
    KVStore store;
    FakePhone phone;
    FakeMouseSettings settings;
    boost::shared_ptr<FakeSurface> surface = boost::make_shared<FakeSurface>(journal);
    std::unique_ptr<RelativeMouseSource> source;
};

} // namespace orbelantine::test
