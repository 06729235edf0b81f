#include "core/common/types/CMacAddress.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

std::wstring textOf(const CMacAddress& address) {
    return address.getStdStringAddress();
}

TEST(CMacAddress, TakesDigitsOfEitherCaseAndAnySeparator) {
    for (const wchar_t* text :
         {L"AA:BB:CC:0D:EE:F9", L"aa-bb-cc-0d-ee-f9", L"Aa0bBxcCF0D:eE f9 tail"})
        EXPECT_EQ(textOf(CMacAddress(text)), L"AA:BB:CC:0D:EE:F9") << text;
}

TEST(CMacAddress, TextThatEndsEarlyIsFilledWithZeroesWithinAPairOnlyWhereItsLengthIsKnown) {
    EXPECT_EQ(textOf(CMacAddress(L"AA")), L"AA:00:00:00:00:00");
    EXPECT_EQ(textOf(CMacAddress(std::string("AA-BB"))), L"AA:BB:00:00:00:00");
    for (const wchar_t* text : {L"", L"A", L"AA:", L"AA:B"})
        EXPECT_TRUE(CMacAddress(text).isEmpty()) << text;
    EXPECT_EQ(textOf(CMacAddress(std::wstring())), L"00:00:00:00:00:00");
    EXPECT_EQ(textOf(CMacAddress(std::wstring(L"AA:B"))), L"AA:00:00:00:00:00");
}

TEST(CMacAddress, IsEmptyForNothingAndAfterAPairThatIsNoNumber) {
    EXPECT_TRUE(CMacAddress().isEmpty());
    EXPECT_TRUE(CMacAddress(static_cast<const wchar_t*>(nullptr)).isEmpty());
    EXPECT_TRUE(CMacAddress(static_cast<const std::uint8_t*>(nullptr)).isEmpty());
    for (const wchar_t* text : {L"GG:00:00:00:00:00", L"AA:BB:CC:DD:EE:F/", L"AA:BB:@0:DD:EE:FF",
                                L"AA:`0", L"AABBCCDDEEFF:::::", L"AA:0x:00:00:00:00"}) {
        const CMacAddress address(text);
        EXPECT_TRUE(address.isEmpty()) << text;
        EXPECT_EQ(address.getUllAddress(), 0U) << text;
    }
}

TEST(CMacAddress, BytesComeInTheirOrderAndTheFirstIsTheHighestOfANumber) {
    const std::uint8_t bytes[] = {1, 0x23, 0x45, 0x67, 0x89, 0xAB};
    const CMacAddress address(bytes);
    EXPECT_EQ(textOf(CMacAddress(address)), L"01:23:45:67:89:AB");
    EXPECT_EQ(textOf(CMacAddress(std::uint64_t{0xFFFF'0123'4567'89AB})), L"01:23:45:67:89:AB");
    EXPECT_EQ(CMacAddress(L"01:23:45:67:89:AB").getUllAddress(), 0x0123'4567'89ABU);
    EXPECT_EQ(textOf(CMacAddress(std::uint64_t{0})), L"00:00:00:00:00:00");
}

} // namespace
} // namespace orbelantine
