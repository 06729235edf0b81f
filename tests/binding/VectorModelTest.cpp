#include "tests/binding/Crossing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

// Every export of the vectors against std::vector, with random operations and arguments that lie
// outside as often as inside.

namespace orbelantine::test {
namespace {

using Handle = void*;
using Error = std::optional<Library::ArgumentError>;

const Error kNone;

Error outOfRange(const char* parameter) {
    return Library::ArgumentError{"argument-out-of-range", std::nullopt, parameter};
}

template <class T, bool isSearched>
struct Kind {
    using Value = T;
    static constexpr bool kSearched = isSearched;
};

struct Bytes : Kind<unsigned char, true> {
    static constexpr const char* kName = "ByteVector";

    static Value value(int n) { return static_cast<unsigned char>(n); }
};

struct Ints : Kind<int, true> {
    static constexpr const char* kName = "IntVector";

    static Value value(int n) { return -n; }
};

struct Uints : Kind<unsigned, true> {
    static constexpr const char* kName = "UintVector";

    static Value value(int n) { return 4000000000U + static_cast<unsigned>(n); }
};

struct Texts : Kind<std::string, true> {
    static constexpr const char* kName = "StringVector";

    static Value value(int n) { return std::string(static_cast<std::size_t>(4 * n), 'x'); }
};

struct WideTexts : Kind<std::u16string, false> {
    static constexpr const char* kName = "WStringVector";

    static Value value(int n) { return std::u16string(static_cast<std::size_t>(4 * n), u'\u00E9'); }
};

template <class K>
class VectorModel : public testing::Test {
  protected:
    using Value = typename K::Value;
    using Cross = Crossing<Value>;
    using Raw = typename Cross::Raw;
    using Out = typename Cross::Out;
    using In = typename Cross::In;
    using Values = std::vector<Value>;

    template <class Function>
    static Function* member(const std::string& name) {
        return Library::instance().common<Function>(K::kName + ("_" + name));
    }

    static Handle make() {
        return Library::instance().common<Handle()>(std::string("new_") + K::kName + "__SWIG_0")();
    }

    static void release(Handle vector) {
        Library::instance().common<void(Handle)>(std::string("delete_") + K::kName)(vector);
    }

    static Handle makeOf(const Values& values) {
        const Handle vector = make();
        for (const Value& value : values)
            member<void(Handle, Raw)>("Add")(vector, In(value).raw());
        return vector;
    }

    static Values read(Handle vector) {
        Values values;
        const int size = static_cast<int>(member<unsigned(Handle)>("size")(vector));
        for (int i = 0; i < size; ++i)
            values.push_back(Cross::take(member<Out(Handle, int)>("getitem")(vector, i)));
        return values;
    }

    /// The contents of a vector that a call gave, which is deleted; none for null.
    static std::optional<Values> take(Handle vector) {
        if (!vector)
            return std::nullopt;
        const Values values = read(vector);
        release(vector);
        return values;
    }

    void SetUp() override { vector = make(); }

    void TearDown() override { release(vector); }

    int any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }

    Value anyValue() { return K::value(any(0, 5)); }

    int size() { return static_cast<int>(model.size()); }

    Values anyValues() {
        Values values(static_cast<std::size_t>(any(0, 4)));
        std::generate(values.begin(), values.end(), [this] { return anyValue(); });
        return values;
    }

    Error indexError(int index, int end) {
        return index < 0 || index >= end ? outOfRange("index") : kNone;
    }

    Error rangeError(int index, int count) {
        if (index < 0)
            return outOfRange("index");
        if (count < 0)
            return outOfRange("count");
        if (index > size() || count > size() - index)
            return Library::ArgumentError{"argument", "invalid range", ""};
        return kNone;
    }

    /// True, if the call reported nothing and was to report nothing.
    bool passed(const Error& expected) {
        EXPECT_EQ(expected, Library::instance().takeError());
        return !expected;
    }

    void elements(int index) {
        const Value value = anyValue();
        const Error error = indexError(index, size());
        const Out item = member<Out(Handle, int)>("getitem")(vector, index);
        if (passed(error)) {
            EXPECT_EQ(at(index), Cross::take(item));
        }
        const Out copy = member<Out(Handle, int)>("getitemcopy")(vector, index);
        if (passed(error)) {
            EXPECT_EQ(at(index), Cross::take(copy));
        }
        member<void(Handle, int, Raw)>("setitem")(vector, index, In(value).raw());
        if (passed(error))
            at(index) = value;
    }

    void insertions(int index) {
        const Value value = anyValue();
        member<void(Handle, int, Raw)>("Insert")(vector, index, In(value).raw());
        if (passed(indexError(index, size() + 1)))
            model.insert(model.begin() + index, value);
        // A list may also be put into itself.
        const bool itself = size() < 20 && any(0, 3) == 0;
        Values values = itself ? model : anyValues();
        const Handle given = itself ? vector : makeOf(values);
        member<void(Handle, int, Handle)>("InsertRange")(vector, index, given);
        if (passed(indexError(index, size() + 1)))
            model.insert(model.begin() + index, values.begin(), values.end());
        if (itself)
            values = model;
        member<void(Handle, Handle)>("AddRange")(vector, given);
        model.insert(model.end(), values.begin(), values.end());
        if (!itself)
            release(given);
    }

    void ranges(int index, int count) {
        const Error error = rangeError(index, count);
        const auto slice = take(member<Handle(Handle, int, int)>("GetRange")(vector, index, count));
        EXPECT_EQ(!error, slice.has_value());
        if (passed(error)) {
            EXPECT_EQ(Values(model.begin() + index, model.begin() + index + count), slice);
        }
        member<void(Handle, int, int)>("Reverse__SWIG_1")(vector, index, count);
        if (passed(error))
            std::reverse(model.begin() + index, model.begin() + index + count);
        member<void(Handle, int, int)>("RemoveRange")(vector, index, count);
        if (passed(error))
            model.erase(model.begin() + index, model.begin() + index + count);
    }

    void overwriting(int index) {
        const Values values = anyValues();
        const Handle given = makeOf(values);
        member<void(Handle, int, Handle)>("SetRange")(vector, index, given);
        const int end = index + static_cast<int>(values.size());
        if (passed(index < 0 || end > size() ? outOfRange("index") : kNone))
            std::copy(values.begin(), values.end(), model.begin() + index);
        release(given);
    }

    void repetitions(int count) {
        const Value value = anyValue();
        const auto repeated = take(member<Handle(Raw, int)>("Repeat")(In(value).raw(), count));
        if (passed(count < 0 ? outOfRange("count") : kNone)) {
            EXPECT_EQ(Values(static_cast<std::size_t>(count), value), repeated);
        }
    }

    void removals(int index) {
        member<void(Handle, int)>("RemoveAt")(vector, index);
        if (passed(indexError(index, size())))
            model.erase(model.begin() + index);
        member<void(Handle)>("Reverse__SWIG_0")(vector);
        std::reverse(model.begin(), model.end());
    }

    void searches() {
        const Value value = anyValue();
        const In in(value);
        const auto first = std::find(model.begin(), model.end(), value);
        const auto last = std::find(model.rbegin(), model.rend(), value);
        const int found = first == model.end() ? -1 : static_cast<int>(first - model.begin());
        EXPECT_EQ(found, (member<int(Handle, Raw)>("IndexOf")(vector, in.raw())));
        EXPECT_EQ(static_cast<int>(model.rend() - last) - 1,
                  (member<int(Handle, Raw)>("LastIndexOf")(vector, in.raw())));
        EXPECT_EQ(found >= 0, (member<unsigned(Handle, Raw)>("Contains")(vector, in.raw()) != 0));
        EXPECT_EQ(found >= 0, (member<unsigned(Handle, Raw)>("Remove")(vector, in.raw()) != 0));
        if (found >= 0)
            model.erase(first);
    }

    void copies() {
        const std::string construct = std::string("new_") + K::kName;
        Library& library = Library::instance();
        EXPECT_EQ(model, take(library.common<Handle(Handle)>(construct + "__SWIG_1")(vector)));
        const int capacity = any(-1, 20);
        const Handle reserved = library.common<Handle(int)>(construct + "__SWIG_2")(capacity);
        if (!passed(capacity < 0 ? outOfRange("capacity") : kNone)) {
            EXPECT_EQ(nullptr, reserved);
            return;
        }
        member<void(Handle, unsigned)>("reserve")(reserved, static_cast<unsigned>(capacity) + 3);
        EXPECT_LE(static_cast<unsigned>(capacity) + 3,
                  member<unsigned(Handle)>("capacity")(reserved));
        EXPECT_EQ(Values(), take(reserved));
    }

    void step() {
        const int index = any(-2, size() + 2);
        switch (any(0, 8)) {
        case 0:
            elements(index);
            break;
        case 1:
            insertions(index);
            break;
        case 2:
            ranges(index, any(0, 9) == 0 ? std::numeric_limits<int>::max() : any(-1, size() + 1));
            break;
        case 3:
            overwriting(index);
            break;
        case 4:
            repetitions(any(-1, 9));
            break;
        case 5:
            removals(index);
            break;
        case 6:
            if constexpr (K::kSearched)
                searches();
            break;
        case 7:
            copies();
            break;
        default:
            if (size() > 30) {
                member<void(Handle)>("Clear")(vector);
                model.clear();
            }
        }
    }

    Value& at(int index) { return model[static_cast<std::size_t>(index)]; }

    std::mt19937 random{7};
    Values model;
    Handle vector = nullptr;
};

using Kinds = testing::Types<Bytes, Ints, Uints, Texts, WideTexts>;
TYPED_TEST_SUITE(VectorModel, Kinds);

TYPED_TEST(VectorModel, DoesWhatAVectorDoesAndReportsWhatLiesOutside) {
    for (int i = 0; i < 3000; ++i) {
        this->step();
        ASSERT_EQ(this->model, this->read(this->vector)) << "after step " << i;
        ASSERT_FALSE(this->HasFailure()) << "in step " << i;
    }
}

TEST(WideTextVector, HasNoSearchingExports) {
    for (const char* name : {"Contains", "IndexOf", "LastIndexOf", "Remove"})
        EXPECT_FALSE(Library::instance().has("CSharp_OrbelantinefSwigfcommon_WStringVector_" +
                                             std::string(name) + "___"));
}

} // namespace
} // namespace orbelantine::test
