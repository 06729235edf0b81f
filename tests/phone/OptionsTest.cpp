#include "tools/virtual_phone/program/Options.h"

#include <gtest/gtest.h>

#include <iterator>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

namespace orbelantine::phone {

namespace {

using Arguments = std::vector<const char*>;

Options optionsOf(Arguments arguments) {
    return std::get<Options>(parseOptions(arguments));
}

std::string errorOf(Arguments arguments) {
    return std::get<UsageError>(parseOptions(arguments)).message;
}

} // namespace

TEST(Options, EachOptionReachesItsField) {
    const Options usual = optionsOf({});
    EXPECT_EQ(toText(usual.address), "00:11:22:33:44:55");
    EXPECT_EQ(usual.screen, (Screen{1080, 2340, 1, 1}));
    EXPECT_EQ(usual.acceleration, Acceleration::None);
    const Options options =
        optionsOf({"--devices=d", "--address=aa:Bb:0c:1D:2e:3F", "--screen=720x1280", "--scale=2.5",
                   "--rotation=4", "--acceleration=curve", "--control=c", "--name=N", "--log=l",
                   "--picture=p=q", "--ready-file=r"});
    EXPECT_EQ(toText(options.address), "AA:BB:0C:1D:2E:3F");
    EXPECT_EQ(toDigits(options.address), "aabb0c1d2e3f");
    EXPECT_EQ(options.screen, (Screen{720, 1280, 2.5, 4}));
    EXPECT_EQ(options.acceleration, Acceleration::Curve);
    const std::string texts[] = {options.devices, options.control, options.name,
                                 options.log,     options.picture, options.readyFile};
    EXPECT_EQ(std::accumulate(std::begin(texts), std::end(texts), std::string()), "dcNlp=qr");
    const Faults faults = optionsOf({"--refuse", "control", "--refuse", "interrupt", "--late", "20",
                                     "--driver-version", "-3", "--vanish-after", "7",
                                     "--return-after", "0", "--keep-after-unplug", "--garbage"})
                              .faults;
    EXPECT_TRUE(faults.refuseControl && faults.refuseInterrupt);
    EXPECT_TRUE(faults.keepAfterUnplug && faults.garbage);
    EXPECT_EQ(faults.late, std::chrono::milliseconds(20));
    EXPECT_EQ(faults.driverVersion, -3);
    EXPECT_EQ(faults.vanishAfter, 7U);
    EXPECT_EQ(faults.returnAfter, std::chrono::milliseconds(0));
}

TEST(Options, HelpEndsTheReadingAndAnErrorSaysWhatIsWrongAndWhatToDo) {
    const char* const help[] = {"--garbage", "--help", "--unknown"};
    EXPECT_TRUE(std::holds_alternative<HelpWanted>(parseOptions(help)));
    const std::pair<Arguments, const char*> errors[] = {
        {{"--frob"}, "unknown option '--frob'"},
        {{"file"}, "unknown option 'file'"},
        {{"--late"}, "--late wants milliseconds from 0 to 600000 behind it"},
        {{"--late", "soon"}, "--late wants milliseconds from 0 to 600000, not 'soon'"},
        {{"--garbage=1"}, "--garbage takes no value"},
        {{"--return-after", "5"}, "--return-after needs --vanish-after"},
    };
    for (const auto& [arguments, error] : errors)
        EXPECT_EQ(errorOf(arguments), std::string("virtual_phone: ") + error +
                                          "; virtual_phone --help lists the options");
}

TEST(Options, BadValuesAreRefused) {
    const std::pair<std::string, std::vector<std::string>> wrong[] = {
        {"--address",
         {"00:11:22:33:44:5", "00:11:22:33:44:555", "00-11-22-33-44-55", "00:11:22:33:44:5g",
          "+0:11:22:33:44:55"}},
        {"--screen", {"1080", "1080x", "x2340", "99x2340", "1080x10001", "1080x2340x"}},
        {"--scale", {"0", "nan"}},
        {"--rotation", {"0", "5"}},
        {"--acceleration", {"ios"}},
        {"--late", {"-1", "600001", "5 "}},
        {"--driver-version", {"32768", "4.0"}},
        {"--vanish-after", {"0", "18446744073709551616"}},
        {"--refuse", {"both"}},
        {"--control", {""}},
        {"--devices", {""}},
        {"--log", {""}},
        {"--name", {"", std::string(65, 'n')}},
    };
    for (const auto& [option, values] : wrong)
        for (const std::string& value : values)
            EXPECT_TRUE(std::holds_alternative<UsageError>(
                parseOptions(Arguments{option.c_str(), value.c_str()})))
                << option << " " << value;
}

} // namespace orbelantine::phone
