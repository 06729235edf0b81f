#include "tools/virtual_phone/phone/TextField.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

namespace orbelantine::phone {

namespace {

constexpr std::uint8_t kLeftShift = 0x02;
constexpr std::uint8_t kRightShift = 0x20;

class TextFieldTest : public testing::Test {
  protected:
    /// The text once the keys have been pressed.
    std::string type(std::initializer_list<std::uint8_t> usages, std::uint8_t modifiers = 0) {
        for (const std::uint8_t usage : usages)
            mField.press(usage, modifiers);
        return mField.text();
    }

    std::string textOfKeys(int first, int last, std::uint8_t modifiers) {
        TextField field;
        for (int usage = first; usage <= last; ++usage)
            field.press(static_cast<std::uint8_t>(usage), modifiers);
        return field.text();
    }

    TextField mField;
};

} // namespace

TEST_F(TextFieldTest, KeysAreThoseOfTheUsLayoutWithEitherShift) {
    EXPECT_EQ(textOfKeys(4, 39, 0), "abcdefghijklmnopqrstuvwxyz1234567890");
    EXPECT_EQ(textOfKeys(43, 56, 0), "\t -=[]\\\\;'`,./");
    EXPECT_EQ(textOfKeys(84, 103, 0), "/*-+\n1234567890.\\=");
    EXPECT_EQ(textOfKeys(4, 39, kLeftShift), "ABCDEFGHIJKLMNOPQRSTUVWXYZ!@#$%^&*()");
    EXPECT_EQ(textOfKeys(45, 56, kRightShift), "_+{}||:\"~<>?");
    EXPECT_EQ(textOfKeys(100, 100, kLeftShift), "|");
}

TEST_F(TextFieldTest, CapsLockTurnsLettersOnlyAndShiftTurnsThemBack) {
    EXPECT_EQ(type({57, 4, 30}), "A1");
    EXPECT_EQ(type({4, 30}, kLeftShift), "A1a!");
    EXPECT_EQ(type({57, 4}), "A1a!a");
    EXPECT_FALSE(mField.capsLock());
}

TEST_F(TextFieldTest, ShortcutsAndKeysWithoutCharacterWriteNothing) {
    for (const std::uint8_t modifier : {0x01, 0x04, 0x08, 0x10, 0x40, 0x80})
        EXPECT_EQ(mField.press(4, modifier), 0);
    EXPECT_EQ(mField.text(), "");
    for (int usage = 0; usage <= 255; ++usage) {
        const bool writes = (usage >= 4 && usage <= 40) || (usage >= 43 && usage <= 56) ||
                            (usage >= 84 && usage <= 100) || usage == 103;
        TextField field;
        EXPECT_EQ(field.press(static_cast<std::uint8_t>(usage), 0) != 0, writes && usage != 41)
            << usage;
    }
}

TEST_F(TextFieldTest, BackspaceAndDeleteStopAtTheEndsOfTheText) {
    type({42, 76});
    EXPECT_EQ(type({4, 5, 6, 42, 80, 76, 76}), "a");
    EXPECT_EQ(type({42, 42}), "");
}

TEST_F(TextFieldTest, CaretMovesAlongTheLine) {
    type({4, 5, 40, 6, 7});                         // "ab", "cd"
    type({74, 27});                                 // Home
    type({80, 80, 28});                             // over the line's end, to the end of "ab"
    EXPECT_EQ(type({77, 79, 77, 29}), "aby\nxcdz"); // End, over the line's end, End
    EXPECT_EQ(type({77, 79, 79, 4}), "aby\nxcdza");
}

TEST_F(TextFieldTest, CaretKeepsItsColumnFromLineToLineAsFarAsThereIsText) {
    type({4, 40, 5, 6, 7, 40, 8, 9});                    // "a", "bcd", "ef"
    EXPECT_EQ(type({82, 27}), "a\nbcxd\nef");            // up into "bcd", behind "bc"
    EXPECT_EQ(type({82, 28}), "ay\nbcxd\nef");           // column 3 of "a" is its end
    EXPECT_EQ(type({82, 4}), "aay\nbcxd\nef");           // no line above: its start
    EXPECT_EQ(type({81, 81, 81, 29}), "aay\nbcxd\nefz"); // the last line, then its end
}

TEST_F(TextFieldTest, KeypadSteersWhileNumLockIsOff) {
    type({89, 83, 92, 90, 91, 94, 98}); // "1", Num Lock off, left, then keys that do nothing here
    EXPECT_EQ(type({4}), "1a");
    EXPECT_EQ(type({95, 99, 83, 98}), "0a"); // home, delete, Num Lock on, "0"
}

TEST_F(TextFieldTest, NewKeyboardStartsWithCapsLockOffAndNumLockOn) {
    type({57, 83});
    mField.resetLocks();
    EXPECT_EQ(type({4, 89}), "a1");
}

} // namespace orbelantine::phone
