#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orbelantine::phone {

/// The text field that has the phone's focus, written to by a keyboard of the US layout.
class TextField {
  public:
    /// One key press under the given modifier bits (bit i is usage 224 + i). Returns the character
    /// that it put into the text, or 0. Keys held with Ctrl, Alt or the logo key write nothing.
    char press(std::uint8_t usage, std::uint8_t modifiers);
    /// A new keyboard: its locks are as at first, Caps Lock off and Num Lock on.
    void resetLocks();

    [[nodiscard]] const std::string& text() const { return mText; }

    /// The caret stands before the character of this index, or behind the last.
    [[nodiscard]] std::size_t caret() const { return mCaret; }

    [[nodiscard]] bool capsLock() const { return mCapsLock; }

  private:
    struct EditKey;
    static const EditKey kEditKeys[];

    [[nodiscard]] bool edit(std::uint8_t usage);
    [[nodiscard]] std::size_t lineStart(std::size_t at) const;
    [[nodiscard]] std::size_t lineEnd(std::size_t at) const;
    void insert(char c);
    void backspace();
    void deleteNext();
    void left();
    void right();
    void home();
    void end();
    void up();
    void down();

    void toggleCapsLock() { mCapsLock = !mCapsLock; }

    void toggleNumLock() { mNumLock = !mNumLock; }

    std::string mText;
    std::size_t mCaret = 0;
    bool mCapsLock = false;
    bool mNumLock = true;
};

} // namespace orbelantine::phone
