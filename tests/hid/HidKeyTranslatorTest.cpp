#include "core/common/config/KVStore.h"
#include "hid/reports/WindowsHIDKeyTranslator.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

namespace orbelantine {

namespace {

using Pairs = std::vector<std::pair<std::int32_t, std::uint32_t>>;

KVStore configuration(bool apple) {
    KVStore store;
    store.setBoolAt("apple", apple);
    return store;
}

class HidKeyTranslator : public ::testing::Test {
  protected:
    WindowsHIDKeyTranslator plain{configuration(false)};
    WindowsHIDKeyTranslator apple{configuration(true)};
};

/// The codes of a table that are there, in the order of their indices.
template <class Translate>
Pairs pairsOf(WindowsHIDKeyTranslator& keys, Translate translate) {
    Pairs result;
    for (std::int32_t index = 0; index < 256; ++index)
        if (const std::uint32_t code = std::invoke(translate, keys, index); code != kNoTranslation)
            result.emplace_back(index, code);
    return result;
}

TEST_F(HidKeyTranslator, KeysOfEachRowHaveTheirUsagesAndNoOthersHaveOne) {
    const Pairs expected = {{0, 0},     {1, 41},    {2, 30},    {11, 39},   {12, 45},   {14, 42},
                            {15, 43},   {16, 20},   {25, 19},   {28, 40},   {30, 4},    {38, 15},
                            {41, 53},   {42, 225},  {43, 49},   {44, 29},   {50, 16},   {53, 56},
                            {54, 229},  {55, 85},   {56, 226},  {57, 44},   {58, 57},   {59, 58},
                            {68, 67},   {69, 72},   {70, 71},   {71, 95},   {74, 86},   {78, 87},
                            {81, 91},   {83, 99},   {86, 100},  {88, 69},   {160, 239}, {181, 84},
                            {184, 230}, {197, 83},  {199, 74},  {203, 80},  {211, 76},  {219, 227},
                            {221, 101}, {240, 138}, {249, 136}, {250, 139}, {251, 145}, {252, 137}};
    for (const auto& [index, code] : expected)
        EXPECT_EQ(plain.translateScanCode(index), code) << index;
    EXPECT_EQ(pairsOf(plain, &WindowsHIDKeyTranslator::translateScanCode).size(), 113U);
    for (const std::int32_t index : {84, 85, 89, 128, 156, 198, 222, 239, 255})
        EXPECT_EQ(plain.translateScanCode(index), 0xFFFFFFFFU) << index;
}

TEST_F(HidKeyTranslator, AppleTurnsTheControlKeysIntoLogoKeys) {
    KVStore unset;
    WindowsHIDKeyTranslator either(unset);
    EXPECT_TRUE(unset.getBoolAt("apple", true)) << "the default isn't written back";
    Pairs expected = pairsOf(either, &WindowsHIDKeyTranslator::translateScanCode);
    EXPECT_EQ(pairsOf(plain, &WindowsHIDKeyTranslator::translateScanCode), expected);
    for (auto& [index, code] : expected)
        if (index == 29 || index == 157) {
            EXPECT_EQ(code, index == 29 ? 224U : 228U);
            code += 3;
        }
    EXPECT_EQ(pairsOf(apple, &WindowsHIDKeyTranslator::translateScanCode), expected);
}

TEST_F(HidKeyTranslator, MediaConsumerAndSystemKeysAreTheseAlone) {
    const auto mediaKeys = &WindowsHIDKeyTranslator::translateVirtualKey;
    const auto consumerKeys = &WindowsHIDKeyTranslator::translateConsumerKey;
    const auto systemKeys = &WindowsHIDKeyTranslator::translateSystemControlKey;
    const Pairs media = {{166, 241}, {167, 242}, {168, 250}, {169, 243}, {172, 240}, {173, 239},
                         {174, 238}, {175, 237}, {176, 235}, {177, 234}, {178, 233}, {179, 232}};
    EXPECT_EQ(pairsOf(plain, mediaKeys), media);
    EXPECT_EQ(pairsOf(apple, mediaKeys), media);
    EXPECT_EQ(pairsOf(plain, consumerKeys), (Pairs{{170, 418}, {175, 48}, {199, 547}}));
    EXPECT_EQ(pairsOf(apple, consumerKeys), (Pairs{{170, 545}, {175, 184}, {199, 547}, {253, 48}}));
    EXPECT_EQ(pairsOf(plain, systemKeys), (Pairs{{253, 129}, {254, 130}, {255, 131}}));
    EXPECT_EQ(pairsOf(apple, systemKeys), Pairs());
}

} // namespace

} // namespace orbelantine
