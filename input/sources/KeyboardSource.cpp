#include "input/sources/KeyboardSource.h"

#include "avstack/IInputMediaBufferKeyboard.h"
#include "avstack/IMediaElement.h"
#include "avstack/InputContextKey.h"
#include "avstack/InputFormat.h"
#include "core/common/OSAL.h"
#include "core/common/log/Log.h"
#include "input/context/IInputContext.h"
#include "input/sources/InputTypeFlags.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <stdexcept>
#include <string>

namespace orbelantine {

ORB_OSAL_REGISTER(KeyboardSource, KeyboardSource, "KeyboardSource", InputFormat);

namespace {

constexpr int kFirstAndroidWithWinSpace = 7;

constexpr char kVersionText[] = "%s() \"osVersion\" is to begin with Android's major version, as "
                                "in 8.1.0, and not as in \"%s\"";

constexpr char kWinSpaceText[] =
    "%s() Ctrl + Space identified with Android 7+. Making it Win + Space";

/// The exceptions carry the same texts on every platform.
int majorVersion(const std::string& version) {
    try {
        return std::stoi(version.substr(0, version.find_first_of(".,")));
    } catch (const std::invalid_argument&) {
        ORB_LOG(kLogError, kVersionText, version.c_str());
        throw std::invalid_argument("invalid stoi argument");
    } catch (const std::out_of_range&) {
        ORB_LOG(kLogError, kVersionText, version.c_str());
        throw std::out_of_range("stoi argument out of range");
    }
}

std::uint32_t packed(std::uint32_t vk, std::uint32_t scanCode) {
    return (vk << 16) | (scanCode & 255);
}

} // namespace

KeyboardSource::KeyboardSource(const KVStore& settings, const InputFormat& format)
    : mFormat(boost::make_shared<InputFormat>(format)) {
    mInputContext = inputContextOf(settings);
    KVStore values(settings);
    const bool apple = values.getBoolAt("apple");
    const std::string& osVersion = values.getStringAt("osVersion");
    if (!osVersion.empty() && !apple)
        mCtrlSpaceFix = majorVersion(osVersion) >= kFirstAndroidWithWinSpace;
    ORB_LOG(kLogDebug, "%s() osVersion=%s", osVersion.c_str());
}

KeyboardSource::~KeyboardSource() {
    ORB_TRACED();
    mEnding = true;
    mWorker.stop();
}

void KeyboardSource::registerTarget(const boost::shared_ptr<IMediaElement>& target) {
    ORB_LOG(kLogDebug, "%s() target=0x%p", static_cast<void*>(target.get()));
    mTarget.store(target);
}

void KeyboardSource::keyDown(std::uint32_t vk, std::uint32_t scanCode, std::int32_t repeatCount) {
    mWorker.post([this, vk, scanCode, repeatCount] { keyDownInternal(vk, scanCode, repeatCount); });
}

void KeyboardSource::keyUp(std::uint32_t vk, std::uint32_t scanCode) {
    mWorker.post([this, vk, scanCode] { keyUpInternal(vk, scanCode); });
}

void KeyboardSource::releaseAllKeys() {
    mWorker.post([this] { releaseAllKeysInternal(); });
}

void KeyboardSource::follow(const boost::shared_ptr<void>& mark) {
    mWorker.post([mark] {});
}

bool KeyboardSource::handleUnicode(std::uint32_t vk, bool down) {
    if ((mFormat->typeFlags & kAbsoluteInput) == 0)
        return false;
    const std::uint32_t character = mInputContext->convertVKCodeToUnicode(vk);
    if (character == 0)
        return false;
    ORB_LOG(kLogDebug, "%s() ToUnicode buff[0]=%x", character);
    send(0, down, character, false);
    return true;
}

void KeyboardSource::keyDownInternal(std::uint32_t vk, std::uint32_t scanCode,
                                     std::int32_t repeatCount) {
    if (handleUnicode(vk, true))
        return;
    if (mCtrlSpaceFix && vk == mInputContext->mapVK(IInputContext::KeySpace) &&
        isPressed(mInputContext->mapScan(IInputContext::KeyControl))) {
        ORB_LOG(kLogDebug, kWinSpaceText);
        substituteWinForCtrl();
    }
    if (isPressed(scanCode))
        return;
    for (std::int32_t i = 0; i < repeatCount && !mEnding; ++i)
        sendKey(true, scanCode, vk);
    press(vk, scanCode);
}

void KeyboardSource::keyUpInternal(std::uint32_t vk, std::uint32_t scanCode) {
    if (handleUnicode(vk, false))
        return;
    if (mPressed.erase(static_cast<std::int32_t>(scanCode)) != 0)
        sendKey(false, scanCode, vk);
    if (mWinSubstituted && vk == mInputContext->mapVK(IInputContext::KeySpace)) {
        ORB_LOG(kLogDebug, kWinSpaceText);
        releaseWin();
    }
}

void KeyboardSource::releaseAllKeysInternal() {
    for (const auto& [scanCode, key] : mPressed)
        sendKey(false, key & 255, (key >> 16) & 65535);
    mPressed.clear();
}

void KeyboardSource::substituteWinForCtrl() {
    const std::uint32_t ctrl = mInputContext->mapScan(IInputContext::KeyControl);
    sendKey(false, ctrl, mInputContext->mapVK(IInputContext::KeyControl));
    mPressed.erase(static_cast<std::int32_t>(ctrl));

    const std::uint32_t win = mInputContext->mapScan(IInputContext::KeySystem);
    const std::uint32_t winVk = mInputContext->mapVK(IInputContext::KeySystem);
    sendKey(true, win, winVk);
    press(winVk, win);
    mWinSubstituted = true;
}

void KeyboardSource::releaseWin() {
    const std::uint32_t win = mInputContext->mapScan(IInputContext::KeySystem);
    sendKey(false, win, mInputContext->mapVK(IInputContext::KeySystem));
    mPressed.erase(static_cast<std::int32_t>(win));
    mWinSubstituted = false;
}

bool KeyboardSource::isPressed(std::uint32_t scanCode) const {
    return mPressed.contains(static_cast<std::int32_t>(scanCode));
}

void KeyboardSource::press(std::uint32_t vk, std::uint32_t scanCode) {
    mPressed.emplace(static_cast<std::int32_t>(scanCode), packed(vk, scanCode));
}

void KeyboardSource::sendKey(bool down, std::uint32_t scanCode, std::uint32_t vk) {
    ORB_LOG(kLogDebug, "%s() down: %d, scanCode: %d, vkCode: %d", down ? 1 : 0,
            static_cast<std::int32_t>(scanCode), static_cast<std::int32_t>(vk));
    const std::uint32_t extra = scanCode != 0 ? ~std::uint32_t{0} : vk;
    send(static_cast<std::uint8_t>(scanCode), down, extra, true);
}

void KeyboardSource::send(std::uint8_t ch, bool down, std::uint32_t extra, bool convert) {
    using Buffer = IInputMediaBufferKeyboard;
    if (const auto target = mTarget.load())
        target->onFrame(
            boost::make_shared<Buffer>(ch, down ? Buffer::KeyDown : Buffer::KeyUp, extra, convert));
}

} // namespace orbelantine
