#include "core/common/config/KVStore.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
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

TEST(KVStore, ReferencesReachIntoTheStoreAndNotIntoACopyWhichSharesOnlyThePointee) {
    int pointee = 0;
    KVStore store;
    store.setContextAt("window", &pointee);
    store.getKVStoreAt("inner").setIntAt("a", 1);
    KVStore copy(store);
    store.getStringAt("text") += "more";
    store.getDataAt("data").push_back(9);
    store.getKVStoreAt("inner").setIntAt("a", 3);
    EXPECT_EQ(store.getStringAt("text"), "more");
    EXPECT_EQ(store.getDataAt("data"), std::vector<std::uint8_t>{9});
    EXPECT_EQ(store.getKVStoreMap().at("inner").getIntAt("a"), 3);
    EXPECT_EQ(copy.getKVStoreAt("inner").getIntAt("a"), 1);
    EXPECT_EQ(copy.getContextAt("window"), &pointee);
}

/// The store's number and, within parentheses, its nested stores.
std::string shape(KVStore& store) {
    std::string text = std::to_string(store.getIntAt("number"));
    for (auto& [key, inner] : store.getKVStoreMap())
        text += " " + key + "(" + shape(inner) + ")";
    return text;
}

KVStore& innermost(KVStore& store) {
    return store.getKVStoreAt("a").getKVStoreAt("b");
}

TEST(KVStore, WhatIsPlacedMayLieWithinWhatItReplacesOrAroundIt) {
    const struct {
        void (*place)(KVStore&);
        const char* result;
    } cases[] = {
        {[](KVStore& s) { s.setKVStoreAt("a", innermost(s)); }, "1 a(3)"},
        {[](KVStore& s) { s.setKVStoreAt("a", s); }, "1 a(1 a(2 b(3)))"},
        {[](KVStore& s) { s.getKVStoreMap()["a"] = innermost(s); }, "1 a(3)"},
        {[](KVStore& s) { s.getKVStoreMap()["c"] = s; }, "1 a(2 b(3)) c(1 a(2 b(3)))"},
        {[](KVStore& s) { s = innermost(s); }, "3"},
        {[](KVStore& s) { s = std::move(s.getKVStoreAt("a")); }, "2 b(3)"},
        {[](KVStore& s) { (void)s.getKVStoreAt("c", s); }, "1 a(2 b(3)) c(1 a(2 b(3)))"},
    };

    for (const auto& [place, result] : cases) {
        KVStore store;
        store.setIntAt("number", 1);
        store.getKVStoreAt("a").setIntAt("number", 2);
        innermost(store).setIntAt("number", 3);
        place(store);
        EXPECT_EQ(shape(store), result);
    }
}

} // namespace
} // namespace orbelantine
