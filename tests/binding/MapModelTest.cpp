#include "tests/binding/Crossing.h"

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>

// Every export of the maps against std::map, with random operations.

namespace orbelantine::test {
namespace {

using Handle = void*;

/// The keys that a vector of the exports holds; it is deleted.
template <class Key>
std::vector<Key> takeKeys(Handle keys, const std::string& vectorName) {
    Library& library = Library::instance();
    const unsigned size = library.common<unsigned(Handle)>(vectorName + "_size")(keys);
    std::vector<Key> taken;
    for (unsigned i = 0; i < size; ++i)
        taken.push_back(
            Crossing<Key>::take(library.common<typename Crossing<Key>::Out(Handle, int)>(
                vectorName + "_getitem")(keys, static_cast<int>(i))));
    library.common<void(Handle)>("delete_" + vectorName)(keys);
    return taken;
}

std::string text(int n) {
    return std::string(static_cast<std::size_t>(5 * n), 'k');
}

std::u16string wideText(int n) {
    return std::u16string(static_cast<std::size_t>(5 * n), u'\u4E2D');
}

unsigned number(int n) {
    return 4000000000U + static_cast<unsigned>(n);
}

template <class K, class V>
struct MapKind {
    using Key = K;
    using Value = V;
    static constexpr const char* kModule = "common";
};

struct TextsByText : MapKind<std::string, std::string> {
    static constexpr const char* kName = "MapStringString";
    static constexpr const char* kKeys = "StringVector";

    static Key key(int n) { return text(n); }

    static Value value(int n) { return text(n); }
};

struct WideTextsByText : MapKind<std::string, std::u16string> {
    static constexpr const char* kName = "MapStringWString";
    static constexpr const char* kKeys = "StringVector";

    static Key key(int n) { return text(n); }

    static Value value(int n) { return wideText(n); }
};

struct WideTextsByNumber : MapKind<unsigned, std::u16string> {
    static constexpr const char* kName = "MapUintWString";
    static constexpr const char* kKeys = "UintVector";

    static Key key(int n) { return number(n); }

    static Value value(int n) { return wideText(n); }
};

struct TextsByWideText : MapKind<std::u16string, std::string> {
    static constexpr const char* kName = "MapWStringString";
    static constexpr const char* kKeys = "WStringVector";

    static Key key(int n) { return wideText(n); }

    static Value value(int n) { return text(n); }
};

struct WideTextsByWideText : MapKind<std::u16string, std::u16string> {
    static constexpr const char* kName = "MapWstringWstring";
    static constexpr const char* kKeys = "WStringVector";

    static Key key(int n) { return wideText(n); }

    static Value value(int n) { return wideText(n); }
};

struct Stores : MapKind<std::string, Store> {
    static constexpr const char* kName = "KVStoreMap";
    static constexpr const char* kKeys = "StringVector";

    static Key key(int n) { return text(n); }

    static Value value(int n) { return {n}; }
};

struct Descriptors : MapKind<int, Buffer> {
    static constexpr const char* kModule = "input";
    static constexpr const char* kName = "HIDDescriptorsMap";
    // Their vector has no exports.
    static constexpr const char* kKeys = nullptr;

    static Key key(int n) { return n; }

    static Value value(int n) { return {n}; }
};

template <class K>
class MapModel : public testing::Test {
  protected:
    using Key = typename K::Key;
    using Value = typename K::Value;
    using KeyIn = typename Crossing<Key>::In;
    using KeyRaw = typename Crossing<Key>::Raw;
    using KeyOut = typename Crossing<Key>::Out;
    using ValueIn = typename Crossing<Value>::In;
    using ValueRaw = typename Crossing<Value>::Raw;
    using ValueOut = typename Crossing<Value>::Out;
    using Model = std::map<Key, Value>;

    template <class Function>
    static Function* export_(const std::string& name) {
        return Library::instance().call<Function>(K::kModule, name);
    }

    template <class Function>
    static Function* member(const std::string& name) {
        return export_<Function>(K::kName + ("_" + name));
    }

    static std::string named(const char* before, const char* after = "") {
        return std::string(before) + K::kName + after;
    }

    void SetUp() override { map = export_<Handle()>(named("new_", "__SWIG_0"))(); }

    void TearDown() override { export_<void(Handle)>(named("delete_"))(map); }

    /// The contents by way of the iterator, which knows no end.
    static Model read(Handle map) {
        Model contents;
        const Handle iterator = member<Handle(Handle)>("create_iterator_begin")(map);
        for (unsigned left = member<unsigned(Handle)>("size")(map); left > 0; --left) {
            const Key key =
                Crossing<Key>::take(member<KeyOut(Handle, Handle)>("get_next_key")(map, iterator));
            const KeyIn in(key);
            contents[key] =
                Crossing<Value>::take(member<ValueOut(Handle, KeyRaw)>("getitem")(map, in.raw()));
        }
        member<void(Handle, Handle)>("destroy_iterator")(map, iterator);
        return contents;
    }

    int any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

    bool passed(bool isFine, const char* parameter) {
        using Error = Library::ArgumentError;
        EXPECT_EQ(isFine ? std::nullopt
                         : std::optional(Error{"argument-out-of-range", std::nullopt, parameter}),
                  Library::instance().takeError());
        return isFine;
    }

    void look(const Key& key) {
        const KeyIn in(key);
        EXPECT_EQ(model.count(key),
                  (member<unsigned(Handle, KeyRaw)>("ContainsKey")(map, in.raw())));
        const ValueOut out = member<ValueOut(Handle, KeyRaw)>("getitem")(map, in.raw());
        if (passed(model.count(key) != 0, "key not found")) {
            EXPECT_EQ(model[key], Crossing<Value>::take(out));
        }
    }

    void add(const Key& key, const Value& value) {
        const ValueIn in(value);
        member<void(Handle, KeyRaw, ValueRaw)>("Add")(map, KeyIn(key).raw(), in.raw());
        if (passed(model.count(key) == 0, "key already exists"))
            model[key] = value;
    }

    void set(const Key& key, const Value& value) {
        const ValueIn in(value);
        member<void(Handle, KeyRaw, ValueRaw)>("setitem")(map, KeyIn(key).raw(), in.raw());
        model[key] = value;
    }

    void remove(const Key& key) {
        EXPECT_EQ(model.erase(key),
                  (member<unsigned(Handle, KeyRaw)>("Remove")(map, KeyIn(key).raw())));
    }

    void whole() {
        EXPECT_EQ(model.empty(), member<unsigned(Handle)>("empty")(map) != 0);
        const Handle copy = export_<Handle(Handle)>(named("new_", "__SWIG_1"))(map);
        EXPECT_EQ(model, read(copy));
        export_<void(Handle)>(named("delete_"))(copy);
        std::vector<Key> keys;
        for (const auto& [key, value] : model)
            keys.push_back(key);
        const Handle taken = member<Handle(Handle)>("getKeys")(map);
        if constexpr (K::kKeys == nullptr)
            EXPECT_EQ(keys,
                      *std::unique_ptr<std::vector<Key>>(static_cast<std::vector<Key>*>(taken)));
        else
            EXPECT_EQ(keys, takeKeys<Key>(taken, K::kKeys));
    }

    void step() {
        const Key key = K::key(any(0, 7));
        const Value value = K::value(any(0, 9));
        switch (any(0, 10)) {
        case 0:
        case 1:
            look(key);
            break;
        case 2:
        case 3:
            add(key, value);
            break;
        case 4:
        case 5:
            set(key, value);
            break;
        case 6:
        case 7:
        case 8:
            remove(key);
            break;
        case 9:
            whole();
            break;
        default:
            if (any(0, 9) == 0) {
                member<void(Handle)>("Clear")(map);
                model.clear();
            }
        }
    }

    std::mt19937 random{11};
    Model model;
    Handle map = nullptr;
};

using MapKinds = testing::Types<TextsByText, WideTextsByText, WideTextsByNumber, TextsByWideText,
                                WideTextsByWideText, Stores, Descriptors>;
TYPED_TEST_SUITE(MapModel, MapKinds);

TYPED_TEST(MapModel, DoesWhatAMapDoesAndReportsKeysThatAreMissingOrThere) {
    for (int i = 0; i < 2000; ++i) {
        this->step();
        ASSERT_EQ(this->model, this->read(this->map)) << "after step " << i;
        ASSERT_FALSE(this->HasFailure()) << "in step " << i;
    }
}

} // namespace
} // namespace orbelantine::test
