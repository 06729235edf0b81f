// A profile file of any bytes: what is set in it can be read, and nothing else changes.

#include "core/common/crash/ProfileText.h"
#include "tests/fuzz/Input.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using orbelantine::ProfileText;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    ProfileText file(text);
    (void)orbelantine::profileNumber(text);
    const auto before = file.lines("general");
    const auto first = file.value("general", "first");
    file.set("12", "Time", "now");
    ORB_FUZZ_EXPECT(file.value("12", "time") == "now");
    ORB_FUZZ_EXPECT(file.lines("general") == before);
    file.set("general", "last", "12");
    ORB_FUZZ_EXPECT(file.value("GENERAL", "last") == "12");
    ORB_FUZZ_EXPECT(file.value("general", "first") == first);
    // What is written is read as it was.
    const std::string written = file.text();
    ORB_FUZZ_EXPECT(ProfileText(written).text() == written);
    return 0;
}
