#include "tools/virtual_phone/phone/TextField.h"

#include "tools/virtual_phone/phone/UsLayout.h"

#include <algorithm>

namespace orbelantine::phone {

namespace {

constexpr std::uint8_t kShift = 0x22;
/// Ctrl, Alt and logo, of either side.
constexpr std::uint8_t kShortcut = 0xDD;

} // namespace

struct TextField::EditKey {
    std::uint8_t usage;
    void (TextField::*action)();
};

const TextField::EditKey TextField::kEditKeys[] = {
    {key::kBackspace, &TextField::backspace},
    {key::kCapsLock, &TextField::toggleCapsLock},
    {key::kHome, &TextField::home},
    {key::kDelete, &TextField::deleteNext},
    {key::kEnd, &TextField::end},
    {key::kRight, &TextField::right},
    {key::kLeft, &TextField::left},
    {key::kDown, &TextField::down},
    {key::kUp, &TextField::up},
    {key::kNumLock, &TextField::toggleNumLock},
};

char TextField::press(std::uint8_t usage, std::uint8_t modifiers) {
    const std::uint8_t meant = mNumLock ? usage : withoutNumLock(usage);
    if (edit(meant) || (modifiers & kShortcut) != 0)
        return 0;
    const char c = usCharacter(meant, (modifiers & kShift) != 0, mCapsLock);
    if (c != 0)
        insert(c);
    return c;
}

void TextField::resetLocks() {
    mCapsLock = false;
    mNumLock = true;
}

bool TextField::edit(std::uint8_t usage) {
    const auto* found = std::ranges::find(kEditKeys, usage, &EditKey::usage);
    if (found == std::end(kEditKeys))
        return false;
    (this->*found->action)();
    return true;
}

std::size_t TextField::lineStart(std::size_t at) const {
    return at == 0 ? 0 : mText.rfind('\n', at - 1) + 1;
}

std::size_t TextField::lineEnd(std::size_t at) const {
    return std::min(mText.find('\n', at), mText.size());
}

void TextField::insert(char c) {
    mText.insert(mCaret++, 1, c);
}

void TextField::backspace() {
    if (mCaret > 0)
        mText.erase(--mCaret, 1);
}

void TextField::deleteNext() {
    if (mCaret < mText.size())
        mText.erase(mCaret, 1);
}

void TextField::left() {
    if (mCaret > 0)
        --mCaret;
}

void TextField::right() {
    if (mCaret < mText.size())
        ++mCaret;
}

void TextField::home() {
    mCaret = lineStart(mCaret);
}

void TextField::end() {
    mCaret = lineEnd(mCaret);
}

void TextField::up() {
    const std::size_t start = lineStart(mCaret);
    if (start == 0)
        return home();
    const std::size_t column = mCaret - start;
    mCaret = std::min(lineStart(start - 1) + column, start - 1);
}

void TextField::down() {
    const std::size_t next = lineEnd(mCaret) + 1;
    if (next > mText.size())
        return end();
    const std::size_t column = mCaret - lineStart(mCaret);
    mCaret = std::min(next + column, lineEnd(next));
}

} // namespace orbelantine::phone
