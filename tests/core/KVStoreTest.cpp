#include "core/common/config/KVStore.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace orbelantine {
namespace {

/// The first default asked for is what later readers get, until a setter overwrites it.
template <class Get, class Set, class Value>
void expectKept(Get get, Set set, const Value& first, const Value& second) {
    KVStore store;
    EXPECT_EQ(std::invoke(get, store, "a", first), first);
    EXPECT_EQ(std::invoke(get, store, "a", second), first);
    std::invoke(set, store, "a", second);
    EXPECT_EQ(std::invoke(get, store, "a", first), second);
    std::invoke(set, store, "b", first);
    EXPECT_EQ(std::invoke(get, store, "b", second), first);
}

TEST(KVStore, FirstDefaultAskedForStaysUntilASetterOverwritesIt) {
    int pointees[2] = {};
    using Data = std::vector<std::uint8_t>;
    expectKept(&KVStore::getBoolAt, &KVStore::setBoolAt, true, false);
    expectKept(&KVStore::getIntAt, &KVStore::setIntAt, 5, 7);
    expectKept(&KVStore::getFloatAt, &KVStore::setFloatAt, 1.5F, 2.5F);
    expectKept(&KVStore::getStringAt, &KVStore::setStringAt, std::string("x"), std::string("y"));
    expectKept(&KVStore::getWStringAt, &KVStore::setWStringAt, std::wstring(L"x"),
               std::wstring(L"y"));
    expectKept(&KVStore::getDataAt, &KVStore::setDataAt, Data{1, 2}, Data{3});
    expectKept(&KVStore::getContextAt, &KVStore::setContextAt, static_cast<void*>(&pointees[0]),
               static_cast<void*>(&pointees[1]));
}

TEST(KVStore, DefaultsOfMissingKeysAreEmptyWhateverOtherTypesHoldThere) {
    KVStore store;
    EXPECT_EQ(store.getIntAt("a", 1), 1);
    EXPECT_FALSE(store.getBoolAt("a"));
    EXPECT_EQ(store.getIntAt("b"), 0);
    EXPECT_EQ(store.getFloatAt("a"), 0.0F);
    EXPECT_EQ(store.getStringAt("a"), "");
    EXPECT_EQ(store.getWStringAt("a"), L"");
    EXPECT_TRUE(store.getDataAt("a").empty());
    EXPECT_EQ(store.getContextAt("a"), nullptr);
    EXPECT_TRUE(store.getKVStoreAt("a").getKVStoreMap().empty());
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

} // namespace
} // namespace orbelantine
