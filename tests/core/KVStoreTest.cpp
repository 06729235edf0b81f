#include "core/common/KVStore.h"

#include <gtest/gtest.h>

namespace orbelantine {
namespace {

TEST(KVStore, FirstDefaultAskedForIsWhatLaterReadersGet) {
    int first = 0;
    int second = 0;
    KVStore store;
    EXPECT_EQ(store.getIntAt("a", 5), 5);
    EXPECT_EQ(store.getIntAt("a", 7), 5);
    EXPECT_TRUE(store.getBoolAt("a", true));
    EXPECT_TRUE(store.getBoolAt("a", false));
    EXPECT_EQ(store.getFloatAt("a", 1.5F), 1.5F);
    EXPECT_EQ(store.getFloatAt("a"), 1.5F);
    EXPECT_EQ(store.getStringAt("a", "x"), "x");
    EXPECT_EQ(store.getStringAt("a", "y"), "x");
    EXPECT_EQ(store.getWStringAt("a", L"x"), L"x");
    EXPECT_EQ(store.getWStringAt("a", L"y"), L"x");
    EXPECT_EQ(store.getDataAt("a", {1, 2}), (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(store.getDataAt("a"), (std::vector<std::uint8_t>{1, 2}));
    EXPECT_EQ(store.getContextAt("a", &first), &first);
    EXPECT_EQ(store.getContextAt("a", &second), &first);
}

TEST(KVStore, DefaultsOfMissingKeysAreEmpty) {
    KVStore store;
    EXPECT_FALSE(store.getBoolAt("a"));
    EXPECT_EQ(store.getIntAt("a"), 0);
    EXPECT_EQ(store.getFloatAt("a"), 0.0F);
    EXPECT_EQ(store.getStringAt("a"), "");
    EXPECT_EQ(store.getWStringAt("a"), L"");
    EXPECT_TRUE(store.getDataAt("a").empty());
    EXPECT_EQ(store.getContextAt("a"), nullptr);
    EXPECT_TRUE(store.getKVStoreAt("a").getKVStoreMap().empty());
}

TEST(KVStore, SettersOverwriteAndLeaveOtherTypesAlone) {
    int pointee = 0;
    KVStore store;
    for (const int round : {1, 2}) {
        store.setBoolAt("a", round == 2);
        store.setIntAt("a", round);
        store.setFloatAt("a", static_cast<float>(round));
        store.setStringAt("a", std::to_string(round));
        store.setWStringAt("a", std::to_wstring(round));
        store.setDataAt("a", {static_cast<std::uint8_t>(round)});
        store.setContextAt("a", round == 2 ? &pointee : nullptr);
    }
    EXPECT_TRUE(store.getBoolAt("a"));
    EXPECT_EQ(store.getIntAt("a"), 2);
    EXPECT_EQ(store.getFloatAt("a"), 2.0F);
    EXPECT_EQ(store.getStringAt("a"), "2");
    EXPECT_EQ(store.getWStringAt("a"), L"2");
    EXPECT_EQ(store.getDataAt("a"), std::vector<std::uint8_t>{2});
    EXPECT_EQ(store.getContextAt("a"), &pointee);
}

TEST(KVStore, ReferencesReachIntoTheStore) {
    KVStore store;
    store.getStringAt("text") += "more";
    store.getDataAt("data").push_back(9);
    store.getKVStoreAt("inner").setIntAt("a", 3);
    EXPECT_EQ(store.getStringAt("text"), "more");
    EXPECT_EQ(store.getDataAt("data"), std::vector<std::uint8_t>{9});
    EXPECT_EQ(store.getKVStoreMap().at("inner").getIntAt("a"), 3);
}

TEST(KVStore, CopyIsDeepAndSharesOnlyThePointee) {
    int pointee = 0;
    KVStore source;
    source.setContextAt("window", &pointee);
    source.getKVStoreAt("inner").setIntAt("a", 1);

    KVStore copy(source);
    copy.getKVStoreAt("inner").setIntAt("a", 2);

    EXPECT_EQ(source.getKVStoreAt("inner").getIntAt("a"), 1);
    EXPECT_EQ(copy.getKVStoreAt("inner").getIntAt("a"), 2);
    EXPECT_EQ(copy.getContextAt("window"), &pointee);
}

TEST(KVStore, StoreMayHoldACopyOfItself) {
    KVStore store;
    store.setIntAt("a", 1);
    store.setKVStoreAt("self", store);
    EXPECT_EQ(store.getKVStoreAt("self").getIntAt("a"), 1);
    EXPECT_TRUE(store.getKVStoreAt("self").getKVStoreMap().empty());
}

TEST(KVStore, KeysAreComparedByteByByte) {
    KVStore store;
    store.setIntAt("Key", 1);
    store.setIntAt("\xC3\xA4", 2);
    EXPECT_EQ(store.getIntAt("key", 3), 3);
    EXPECT_EQ(store.getIntAt("\xC3\xA4"), 2);
    EXPECT_EQ(store.getIntAt(std::string("Key\0", 4), 4), 4);
}

} // namespace
} // namespace orbelantine
