#include "input/sources/KeyboardSource.h"

#include "avstack/InputContextKey.h"
#include "avstack/InputFormat.h"
#include "core/common/config/KVStore.h"
#include "tests/input/FakeInputContext.h"
#include "tests/input/RecordingTarget.h"
#include "tests/support/CapturedLog.h"

#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

namespace orbelantine {
namespace {

using test::InputFrame;
using test::kMarkerUp;

// Keys are told by scan code, in hexadecimal: 1d Ctrl, 39 space, db Win, 1e A, 0 one without.
const std::map<std::uint32_t, std::uint32_t> kVirtualKeys{
    {0x1D, 17}, {0x39, 32}, {0xDB, 91}, {0x1E, 65}, {0, 173}};

/// "+1e" for a down by scan code, "-v7b" for an up by virtual key, "+u20ac" for a character.
std::string textOf(const InputFrame& frame) {
    std::ostringstream text;
    text << (frame.event == 0 ? '+' : '-') << std::hex;
    if (frame.ch != 0 && frame.extra == 0xFFFFFFFF && frame.networkOrder)
        text << +frame.ch;
    else if (frame.ch == 0 && frame.networkOrder)
        // Swapped once: the low byte is stored first.
        text << 'v' << (frame.extra >> 24) << ((frame.extra & 0xFFFFFF) != 0 ? "?" : "");
    else if (frame.ch == 0)
        text << 'u' << frame.extra;
    else
        text << '?';
    return text.str();
}

class Keyboard {
  public:
    explicit Keyboard(const std::string& osVersion = "", std::uint32_t typeFlags = 0,
                      bool apple = false)
        : mSource(settings(osVersion, apple), InputFormat(0, 2, 0, typeFlags)) {
        mSource.registerTarget(mTarget);
    }

    /// What a script such as "+1e*2 -1e !" sends: a down with a repeat count of 2 instead of 1, an
    /// up, a release of all.
    std::string sent(const std::string& script) {
        std::istringstream words(script);
        for (std::string word; words >> word;)
            perform(word);
        mSource.keyDown(kMarkerUp.ch, kMarkerUp.ch, 1);
        mSource.keyUp(kMarkerUp.ch, kMarkerUp.ch);
        std::string text;
        for (const InputFrame& frame : mTarget->takeUpTo(kMarkerUp))
            text += textOf(frame) + ' ';
        const std::string marker = "+fa -fa ";
        EXPECT_TRUE(text.ends_with(marker));
        return text.substr(0, text.size() - std::min(text.size(), marker.size() + 1));
    }

    boost::shared_ptr<test::FakeInputContext> context =
        boost::make_shared<test::FakeInputContext>();

  private:
    KVStore settings(const std::string& osVersion, bool apple) {
        KVStore store;
        setInputContext(store, mContext);
        store.setStringAt("osVersion", osVersion);
        store.setBoolAt("apple", apple);
        return store;
    }

    void perform(const std::string& word) {
        if (word == "!")
            return mSource.releaseAllKeys();
        std::size_t end = 0;
        const auto scanCode = static_cast<std::uint32_t>(std::stoul(word.substr(1), &end, 16));
        const std::string count = word.substr(end + 1);
        const std::uint32_t vk = kVirtualKeys.at(scanCode);
        if (word[0] == '+')
            mSource.keyDown(vk, scanCode, count.empty() ? 1 : std::stoi(count.substr(1)));
        else
            mSource.keyUp(vk, scanCode);
    }

    boost::shared_ptr<IInputContext> mContext = context;
    boost::shared_ptr<test::RecordingTarget> mTarget = boost::make_shared<test::RecordingTarget>();
    KeyboardSource mSource;
};

TEST(KeyboardSource, KeysAreSentHeldAndReleased) {
    const std::pair<const char*, const char*> cases[] = {
        {"+1e -1e", "+1e -1e"},
        {"+1e +1e +1e*5", "+1e"},
        {"+1e*3 -1e -1e", "+1e +1e +1e -1e"},
        // A count below 1 marks the key as held.
        {"+1e*0 +1e -1e", "-1e"},
        {"+1e*-1 -1e", "-1e"},
        {"-1e", ""},
        {"+0 -0", "+vad -vad"},
        {"+db +1e +0 ! -1e !", "+db +1e +vad -vad -1e -db"},
        {"+1e ! +1e", "+1e -1e +1e"},
    };
    for (const auto& [script, frames] : cases)
        EXPECT_EQ(Keyboard().sent(script), frames) << script;
}

TEST(KeyboardSource, CtrlSpaceBecomesWinSpaceFromAndroid7On) {
    const std::string typed = "+1d +39 -39 -1d";
    const std::string withWin = "+1d -1d +db +39 -39 -db";
    const std::pair<const char*, bool> versions[] = {
        {"8.0", true}, {"7", true}, {"10,0", true}, {" 12L", true}, {"6.0.1", false}, {"", false}};
    for (const auto& [version, substituted] : versions) {
        EXPECT_EQ(Keyboard(version).sent(typed), substituted ? withWin : typed) << version;
        EXPECT_EQ(Keyboard(version, 0, true).sent(typed), typed) << version;
    }
    EXPECT_EQ(Keyboard("8").sent("+39 -39"), "+39 -39");
    EXPECT_EQ(Keyboard("8").sent(typed + " !"), withWin);
    EXPECT_EQ(Keyboard("8").sent(typed + " +39 -39 " + typed), withWin + " +39 -39 " + withWin);
    // A space that was down before Ctrl repeats; the focus goes while Win stands for Ctrl.
    EXPECT_EQ(Keyboard("8").sent("+39 +1d +39 !"), "+39 +1d -1d +db -39 -db");
    EXPECT_EQ(Keyboard("8").sent("+1d +39 ! +39 -39"), "+1d -1d +db +39 -39 -db +39 -39 -db");
}

TEST(KeyboardSource, UnreadableVersionFailsTheConstruction) {
    const auto fault = [](const char* version) -> std::string {
        try {
            const Keyboard keyboard(version);
            return "";
        } catch (const std::logic_error& e) {
            return std::string(dynamic_cast<const std::out_of_range*>(&e) ? "range: " : "") +
                   e.what();
        }
    };
    EXPECT_EQ(fault(".8"), "invalid stoi argument");
    EXPECT_EQ(fault("2147483648.1"), "range: stoi argument out of range");
    EXPECT_EQ(Keyboard("Nougat", 0, true).sent("-1e"), "");
}

TEST(KeyboardSource, PhoneForAbsoluteInputGetsCharacters) {
    const std::pair<std::uint32_t, const char*> cases[] = {{3, "+u20ac +u20ac -u20ac +1d -1d"},
                                                           {2, "+1e -1e +1d -1d"}};
    for (const auto& [typeFlags, frames] : cases) {
        Keyboard keyboard("", typeFlags);
        keyboard.context->simulateCharacter(65, 0x20AC);
        EXPECT_EQ(keyboard.sent("+1e +1e -1e ! +1d -1d"), frames);
    }
    // A key that has come to give a character while it was held.
    Keyboard keyboard("", 1);
    EXPECT_EQ(keyboard.sent("+1e"), "+1e");
    keyboard.context->simulateCharacter(65, 'a');
    EXPECT_EQ(keyboard.sent("-1e !"), "-u61 -1e");
}

TEST(KeyboardSource, PhoneHoldsNoKeyOnceAllAreReleased) {
    const char* const kWords[] = {"+1d", "-1d", "+39", "-39",   "+db", "-db", "+1e",
                                  "-1e", "+0",  "-0",  "+1e*2", "-0",  "!"};
    for (unsigned seed = 0; seed < 100; ++seed) {
        std::mt19937 random(seed);
        std::string script;
        for (int i = 0; i < 100; ++i)
            script += std::string(kWords[random() % std::size(kWords)]) + ' ';
        std::set<std::string> held;
        std::istringstream sent(Keyboard(seed % 2 == 0 ? "" : "8.1").sent(script + '!'));
        for (std::string key; sent >> key;) {
            if (key[0] == '+')
                held.insert(key.substr(1));
            else
                held.erase(key.substr(1));
        }
        EXPECT_TRUE(held.empty()) << script;
    }
}

TEST(KeyboardSource, LogTellsKeysCharactersAndTheSubstitution) {
    test::CapturedLog log(kLogDebug, "orbelantine::KeyboardSource::");
    {
        Keyboard keyboard("7.1", 1);
        keyboard.context->simulateCharacter(65, 'j');
        (void)keyboard.sent("+1e +1d +39 -39");
    }
    EXPECT_EQ(
        log.missing({
            "debug KeyboardSource() osVersion=7.1",
            "debug handleUnicode() ToUnicode buff[0]=6a",
            "debug keyDownInternal() Ctrl + Space identified with Android 7+. Making it Win + "
            "Space",
            "debug sendKey() down: 1, scanCode: 219, vkCode: 91",
            "debug keyUpInternal() Ctrl + Space identified with Android 7+. Making it Win + Space",
            "debug sendKey() down: 0, scanCode: 219, vkCode: 91",
        }),
        test::Texts());
}

} // namespace
} // namespace orbelantine
