#include "tools/virtual_phone/phone/Phone.h"

#include "tools/virtual_phone/phone/KeyNames.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace orbelantine::phone {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::uint8_t kGreeting[] = {0xA1, 0x13, 0x03};
constexpr std::uint8_t kVirtualCableUnplug[] = {0x15};
constexpr std::size_t kLoggedBytes = 64;

std::string hex(Bytes bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes.first(std::min(bytes.size(), kLoggedBytes))) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return text;
}

bool isHeld(const KeyboardReport& report, std::uint8_t usage) {
    return std::ranges::find(report.keys, usage) != report.keys.end();
}

std::vector<std::uint8_t> heldKeys(const KeyboardReport& report) {
    std::vector<std::uint8_t> held;
    for (const std::uint8_t usage : report.keys)
        if (usage != 0 && std::ranges::find(held, usage) == held.end())
            held.push_back(usage);
    return held;
}

std::vector<std::uint8_t> keysOnlyIn(const KeyboardReport& report, const KeyboardReport& other) {
    std::vector<std::uint8_t> keys = heldKeys(report);
    std::erase_if(keys, [&](std::uint8_t usage) { return isHeld(other, usage); });
    return keys;
}

template <typename Code>
JsonObject countsByCode(const std::map<Code, std::uint64_t>& counts) {
    JsonObject object;
    for (const auto& [code, count] : counts)
        object.add(std::to_string(code), count);
    return object;
}

template <std::size_t N>
JsonObject countsByName(const std::array<const char*, N>& names,
                        const std::array<std::uint64_t, N>& counts) {
    JsonObject object;
    for (std::size_t i = 0; i < N; ++i)
        object.add(names[i], counts[i]);
    return object;
}

JsonObject channelEvent(Channel channel, const char* name) {
    return JsonObject().add("channel", nameOf(channel)).add("event", name);
}

} // namespace

Phone::Phone(const Screen& screen, EventLog& log, Acceleration acceleration, IClock& clock)
    : mLog(log)
    , mCursor(screen, acceleration, clock)
    , mTrace(mCursor.position()) {}

void Phone::connected(Channel channel) {
    ++(channel == Channel::Control ? mTally.controlConnects : mTally.interruptConnects);
    mLog.write(channelEvent(channel, "connected"));
}

void Phone::disconnected(Channel channel) {
    JsonObject event = channelEvent(channel, "disconnected");
    const std::uint8_t before = mButtons;
    if (channel == Channel::Interrupt) {
        event.add("held_keys", heldKeys(mKeyboard)).add("buttons", mButtons);
        mKeyboard = {};
        mButtons = 0;
        mTextField.resetLocks();
    }
    mLog.write(event);
    logButtonChanges(before);
}

void Phone::setScreen(const Screen& screen) {
    if (screen != this->screen()) {
        mCursor.setScreen(screen);
        mTrace = Trace(cursor());
    }
    mLog.write(JsonObject()
                   .add("event", "screen")
                   .add("screen", std::array{screen.width, screen.height})
                   .add("scale", screen.scale)
                   .add("rotation", screen.rotation));
}

void Phone::setAcceleration(Acceleration acceleration) {
    mCursor.setAcceleration(acceleration);
    mLog.write(JsonObject().add("event", "acceleration").add("kind", nameOf(acceleration)));
}

void Phone::setTarget(Point target) {
    mTrace.aim(target);
    mLog.write(JsonObject().add("event", "target").add("x", target.x).add("y", target.y));
}

Phone::Outcome Phone::receive(Channel channel, Bytes bytes) {
    if (channel == Channel::Control)
        return receiveControl(bytes);
    receiveReport(bytes);
    return Outcome::Taken;
}

void Phone::error(std::string_view what, std::string_view where, Bytes bytes) {
    ++mTally.errors;
    JsonObject event;
    if (!where.empty())
        event.add("channel", where);
    mLog.write(event.add("event", "error")
                   .add("what", what)
                   .add("size", bytes.size())
                   .add("bytes", hex(bytes)));
}

Phone::Outcome Phone::receiveControl(Bytes bytes) {
    if (std::ranges::equal(bytes, kGreeting)) {
        ++mTally.greetings;
        mLog.write(channelEvent(Channel::Control, "greeting"));
        return Outcome::Taken;
    }
    if (std::ranges::equal(bytes, kVirtualCableUnplug)) {
        ++mTally.unplugs;
        mLog.write(channelEvent(Channel::Control, "unplug"));
        return Outcome::Unplug;
    }
    error("unknown bytes on the control channel", nameOf(Channel::Control), bytes);
    return Outcome::Taken;
}

void Phone::receiveReport(Bytes bytes) {
    const Report report = decodeReport(bytes);
    if (const auto* malformed = std::get_if<Malformed>(&report))
        return error(malformed->reason, nameOf(Channel::Interrupt), bytes);
    ++mTally.reports;
    ++mTally.reportsByKind[report.index()];
    const std::uint8_t before = mButtons;
    std::visit(
        [this](const auto& known) {
            if constexpr (!std::is_same_v<decltype(known), const Malformed&>)
                take(known);
        },
        report);
    logButtonChanges(before);
}

void Phone::take(const MouseReport& report) {
    moveBy(report.dx, report.dy);
    press(report.buttons);
    scroll(report.wheel);
    mLog.write(
        pointerEvent("mouse").add("dx", report.dx).add("dy", report.dy).add("wheel", report.wheel));
}

void Phone::take(const KeyboardReport& report) {
    const std::vector<std::uint8_t> pressed = keysOnlyIn(report, mKeyboard);
    const std::vector<std::uint8_t> released = keysOnlyIn(mKeyboard, report);
    mKeyboard = report;
    mTally.keyPresses += pressed.size();
    std::string typed;
    for (const std::uint8_t usage : pressed)
        if (const char c = mTextField.press(usage, report.modifiers); c != 0)
            typed += c;
    mLog.write(channelEvent(Channel::Interrupt, "keyboard")
                   .add("modifiers", report.modifiers)
                   .add("keys", report.keys)
                   .add("pressed", pressed)
                   .add("released", released)
                   .add("typed", typed)
                   .add("caps_lock", mTextField.capsLock()));
}

void Phone::take(const AbsoluteMouseReport& report) {
    moveTo({report.x, report.y});
    touch(report.tip);
    mLog.write(pointerEvent("absolute_mouse")
                   .add("tip", report.tip)
                   .add("absolute_x", report.x)
                   .add("absolute_y", report.y));
}

void Phone::take(const DigitizerReport& report) {
    moveTo({report.x, report.y});
    touch(report.tip);
    mLog.write(pointerEvent("digitizer")
                   .add("tip", report.tip)
                   .add("absolute_x", report.x)
                   .add("absolute_y", report.y)
                   .add("scan_counter", report.scanCounter));
}

void Phone::take(const ConsumerReport& report) {
    if (report.usage != 0)
        ++mTally.consumerPresses[report.usage];
    mLog.write(channelEvent(Channel::Interrupt, "consumer")
                   .add("report_id", report.reportId)
                   .add("usage", report.usage)
                   .add("name", consumerKeyName(report.usage)));
}

void Phone::take(const SystemReport& report) {
    if (report.code != 0)
        ++mTally.systemPresses[report.code];
    mLog.write(channelEvent(Channel::Interrupt, "system")
                   .add("code", report.code)
                   .add("name", systemKeyName(report.code)));
}

void Phone::moveBy(int dx, int dy) {
    if (dx == 0 && dy == 0)
        return;
    ++mTally.moves;
    mTally.dx += dx;
    mTally.dy += dy;
    mCursor.moveBy(dx, dy);
    const bool sweeps = std::abs(dx) >= screen().width || std::abs(dy) >= screen().height;
    const Stroke stroke = mButtons != 0 ? Stroke::Drag : Stroke::Move;
    mTrace.move(mCursor.position(), sweeps ? Stroke::Sweep : stroke);
}

void Phone::moveTo(AbsolutePosition position) {
    if (mAbsolute == position)
        return;
    ++mTally.moves;
    mAbsolute = position;
    mCursor.moveTo(position.x, position.y);
    mTrace.move(mCursor.position(), mButtons != 0 ? Stroke::Drag : Stroke::Move);
}

void Phone::scroll(int amount) {
    if (amount == 0)
        return;
    ++mTally.scrolls;
    mTally.scrollAmount += amount;
    mTrace.mark(MarkKind::Scroll, mCursor.position(), amount);
}

void Phone::press(std::uint8_t buttons) {
    const unsigned pressed = buttons & ~unsigned{mButtons};
    for (std::size_t i = 0; i < kButtonNames.size(); ++i) {
        if ((pressed & (1U << i)) == 0)
            continue;
        ++mTally.clicks[i];
        mTrace.mark(static_cast<MarkKind>(i), cursor());
        mTrace.hit(cursor());
    }
    mButtons = buttons;
}

void Phone::logButtonChanges(std::uint8_t before) {
    const unsigned changed = unsigned{mButtons} ^ before;
    for (std::size_t i = 0; i < kButtonNames.size(); ++i) {
        if ((changed & (1U << i)) == 0)
            continue;
        mLog.write(JsonObject()
                       .add("event", (mButtons & (1U << i)) != 0 ? "press" : "release")
                       .add("button", kButtonNames[i])
                       .add("x", cursor().x)
                       .add("y", cursor().y));
    }
}

void Phone::touch(bool tip) {
    press(static_cast<std::uint8_t>((mButtons & ~1U) | (tip ? 1U : 0U)));
}

JsonObject Phone::pointerEvent(const char* name) const {
    return channelEvent(Channel::Interrupt, name)
        .add("buttons", mButtons)
        .add("x", cursor().x)
        .add("y", cursor().y);
}

JsonObject Phone::summary() const {
    return JsonObject()
        .add("event", "summary")
        .add("text", mTextField.text())
        .add("reports", mTally.reports)
        .add("reports_by_kind", countsByName(kReportNames, mTally.reportsByKind))
        .add("moves", mTally.moves)
        .add("dx", mTally.dx)
        .add("dy", mTally.dy)
        .add("clicks", countsByName(kButtonNames, mTally.clicks))
        .add("scrolls", mTally.scrolls)
        .add("scroll_amount", mTally.scrollAmount)
        .add("cursor", std::array{cursor().x, cursor().y})
        .add("key_presses", mTally.keyPresses)
        .add("consumer_presses", countsByCode(mTally.consumerPresses))
        .add("system_presses", countsByCode(mTally.systemPresses))
        .add("held_keys", heldKeys(mKeyboard))
        .add("modifiers", mKeyboard.modifiers)
        .add("buttons", mButtons)
        .add("caps_lock", mTextField.capsLock())
        .add("control_connects", mTally.controlConnects)
        .add("interrupt_connects", mTally.interruptConnects)
        .add("greetings", mTally.greetings)
        .add("unplugs", mTally.unplugs)
        .add("errors", mTally.errors);
}

} // namespace orbelantine::phone
