#pragma once

#include "avstack/TemplateProxySimplified.h"
#include "input/relative/RelativeMouseSource.h"
#include "input/sources/IMouseReverser.h"
#include "input/sources/IRemoteMouseInfoProvider.h"
#include "tests/input/FakeInputContext.h"
#include "tests/input/RecordingTarget.h"
#include "tests/input/Standins.h"
#include "tests/support/HandClock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <utility>

namespace orbelantine::test {

inline std::string pairText(std::int32_t x, std::int32_t y) {
    return ' ' + std::to_string(x) + ',' + std::to_string(y);
}

inline std::string textOf(const InputFrame& frame) {
    static const char* const kNames[] = {"move",      "leftUp",    "leftDown", "rightUp",
                                         "rightDown", "wheelDown", "wheelUp"};
    const bool asMade =
        frame.networkOrder == (frame.event != 0) && frame.maxX == 0 && frame.maxY == 0;
    return (asMade ? "" : "bad ") + std::string(kNames[frame.event]) + pairText(frame.x, frame.y);
}

/// Of a phone whose cursor makes `acceleration` times a delta of it.
class FakeReverser final : public IMouseReverser {
  public:
    std::int32_t acceleration = 1;
    std::int32_t reversal = 1;
    std::int64_t lastMoveNs = -1;

    void applyMove(std::int32_t& dx, std::int32_t& dy, const std::int64_t& timeNs) override {
        lastMoveNs = timeNs;
        dx *= acceleration;
        dy *= acceleration;
    }

    void reverse(std::int32_t& dx, std::int32_t& dy) override {
        dx /= reversal;
        dy /= reversal;
    }
};

class FakeProvider final : public IRemoteMouseInfoProvider {
  public:
    enum StopAnswer { AtOnce, Drops, Late, Never };

    StopAnswer stopAnswer = AtOnce;
    int stops = 0;
    Callback started;
    std::promise<Callback> stopping;

    void start(Callback callback) override { started = std::move(callback); }

    void stop(Callback callback) override {
        ++stops;
        if (stopAnswer == AtOnce)
            callback(error_code());
        else if (stopAnswer != Drops)
            stopping.set_value(callback);
    }
};

class FakeMouseSettings final : public SettingsApi {
  public:
    Error error = 2;
    std::uint32_t dragSpeed = 0;

    Error getInteger(const char* name, std::uint32_t& value) override {
        if (error == 0 && std::string(name) == "DragSpeed")
            value = dragSpeed;
        return error;
    }
};

/// A source with a world around it: a surface of 1000 x 500 pixels at (100, 200) of the screen and
/// a phone. The journal has all that leaves the source, pauses included, in order and as one text.
class RelativeMouse {
  public:
    explicit RelativeMouse(bool apple = false, const std::string& hint = "android") {
        store.setStringAt("hint", hint);
        store.setBoolAt("apple", apple);
        surface->onMouseCall = [this](const std::string& call) { note(call); };
        clock.onPause([this] {
            using std::chrono::milliseconds;
            const auto pause = std::chrono::duration_cast<milliseconds>(clock.pauses().back());
            note("pause " + std::to_string(pause.count()));
        });
        make();
    }

    void make() {
        using Target = IMediaElement::TemplateProxySimplified<IMediaElement>;
        source.reset();
        source = std::make_unique<RelativeMouseSource>(store, settings, clock);
        source->registerTarget(boost::make_shared<Target>(
            [this](const boost::shared_ptr<IMediaBuffer>& buffer, const auto&...) {
                note(textOf(InputFrame::of(*buffer)));
            },
            "target"));
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

    /// Raises the events of a script, such as "press 400 200, raw 6 0, wait 201, at", and gives the
    /// journal. Presses and drags are told in places of the surface, the other pointers' of the
    /// screen; "wait" in milliseconds, and nanoseconds beside; "at" notes the model's place.
    std::string play(const std::string& script) {
        const Events events{
            {"press", [&](int x, int y, auto...) { source->mouseLButton(true, x, y, 0, false); }},
            {"return", [&](int x, int y, auto...) { source->mouseLButton(true, x, y, 0, true); }},
            {"release", [&](int again, auto...) { source->mouseLButton(false, 7, 7, 0, again); }},
            {"right", [&](int down, auto...) { source->mouseRButton(down != 0, 1, 1, true); }},
            {"hover", [&](int x, int y, auto...) { source->mouseMove(x, y, 0); }},
            {"down", [&](int x, int y, auto...) { source->touch(true, x, y, 3, false); }},
            {"move", [&](int x, int y, auto...) { source->touchMove(x, y, 3); }},
            {"up", [&](int x, int y, auto...) { source->touch(false, x, y, 3, false); }},
            {"raw", [&](int dx, int dy, auto...) { source->rawMouseMove(dx, dy); }},
            {"wheel", [&](int by, int x, int y, int) { source->mouseWheel(by > 0, x, y, by); }},
            {"unfocus", [&](auto...) { source->killFocus(); }},
            {"rotate", [&](int rotation, auto...) { surface->onRotationChanged(rotation); }},
            {"viewport", [&](int w, int h, auto...) { provider->onCursorViewPortChanged(w, h); }},
            {"report", [&](int x, int y, auto...) { provider->onCursorMove(x, y); }},
            {"stop", [&](auto...) { source->stop(); }},
            {"at", [&](auto...) { inside([&] { note("at" + place()); }); }},
            {"wait",
             [&](int ms, int ns, auto...) {
                 inside([] {});
                 clock.advance(std::chrono::milliseconds(ms) + std::chrono::nanoseconds(ns));
             }},
        };
        perform(script, events);
        return take();
    }

    /// The journal since the last call.
    std::string take() {
        return inside([this] { return std::exchange(journal, {}); });
    }

    std::string position() {
        return inside([this] { return place(); });
    }

    std::string state() {
        return source->postAndWait([](const auto& state) { return state->getName(); });
    }

    [[nodiscard]] std::size_t slotsOfSurface() const {
        return surface->onLogicalDimensionsChanged.num_slots() +
               surface->onRotationChanged.num_slots();
    }

    std::string journal;
    HandClock clock;
    KVStore store;
    FakeMouseSettings settings;
    boost::shared_ptr<FakeReverser> reverser = boost::make_shared<FakeReverser>();
    boost::shared_ptr<FakeProvider> provider = boost::make_shared<FakeProvider>();
    FactoryOverride<IMouseReverser, IClock&> reversers{"AndroidMouseReverser", reverser};
    FactoryOverride<IRemoteMouseInfoProvider> providers{"RmiCursorServer", provider};
    boost::shared_ptr<FakeInputContext> surface = boost::make_shared<FakeInputContext>();
    std::unique_ptr<RelativeMouseSource> source;

  private:
    void note(const std::string& text) { journal += (journal.empty() ? "" : ", ") + text; }

    std::string place() {
        const CursorPoint& at = source->position();
        return pairText(at.x, at.y) + (at.flags != 0 ? " held" : "");
    }
};

struct NewRelativeMouse : testing::Test, RelativeMouse {};

struct ReadyRelativeMouse : NewRelativeMouse {
    ReadyRelativeMouse() { beReady(); }
};

} // namespace orbelantine::test
