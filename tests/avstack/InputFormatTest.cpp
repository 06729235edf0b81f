#include "avstack/InputFormat.h"

#include "core/common/config/KVStore.h"

#include <gtest/gtest.h>

#include <array>

namespace orbelantine {

namespace {

using Fields = std::array<std::uint32_t, 4>;

Fields fieldsOf(const InputFormat& format) {
    return {format.mouseType, format.keyboardType, format.touchType, format.typeFlags};
}

TEST(InputFormat, KeyboardIsTwoOnlyBesideAMouseAlone) {
    EXPECT_EQ(fieldsOf(InputFormat()), (Fields{0, 0, 0, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3)), (Fields{3, 2, 0, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3, 1)), (Fields{3, 1, 0, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3, 1, 4)), (Fields{3, 1, 4, 0}));
    EXPECT_EQ(fieldsOf(InputFormat(3, 1, 4, 5)), (Fields{3, 1, 4, 5}));
}

TEST(InputFormat, TravelsThroughAStore) {
    KVStore store = InputFormat(1, 2, 3, 0xFFFFFFFF).getAsKVStore();

    EXPECT_EQ(store.getIntAt("mouseType", 99), 1);
    EXPECT_EQ(store.getIntAt("keyboardType", 99), 2);
    EXPECT_EQ(store.getIntAt("touchType", 99), 3);
    EXPECT_EQ(store.getIntAt("typeFlags", 99), -1);
    EXPECT_EQ(fieldsOf(InputFormat(store)), (Fields{1, 2, 3, 0xFFFFFFFF}));
}

TEST(InputFormat, ReadingAStoreLeavesItAsItWas) {
    KVStore store;
    EXPECT_EQ(fieldsOf(InputFormat(store)), (Fields{0, 0, 0, 0}));
    EXPECT_EQ(store.getIntAt("keyboardType", 99), 99);
}

} // namespace

} // namespace orbelantine
