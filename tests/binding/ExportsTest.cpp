#include "tests/binding/Library.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>

namespace orbelantine::test {
namespace {

using Handle = void*;

class Exports : public testing::Test {
  protected:
    Library& library = Library::instance();

    void TearDown() override {
        EXPECT_FALSE(library.takeError()) << "an export reported an error that no test asked for";
    }

    void expectNull(const std::string& text) {
        EXPECT_EQ((Library::ArgumentError{"argument-null", text, std::nullopt}),
                  library.takeError());
    }
};

TEST_F(Exports, EveryAgreedNameIsFoundByName) {
    std::ifstream names(ORBELANTINE_EXPORTS);
    ASSERT_TRUE(names) << ORBELANTINE_EXPORTS;
    std::size_t count = 0;
    for (std::string name; std::getline(names, name); ++count)
        EXPECT_TRUE(name.starts_with('#') || library.has(name)) << name;
    EXPECT_GT(count, 400U);
}

TEST_F(Exports, TextGoesOutThroughTheCallbackAndNullIsTheEmptyText) {
    const Handle store = library.common<Handle()>("new_KVStore__SWIG_0")();
    const auto get =
        library.common<void*(Handle, const char*, const char*)>("KVStore_getStringAt__SWIG_0");
    EXPECT_EQ("", library.takeText(get(store, nullptr, nullptr)));
    EXPECT_EQ("h\xC3\xA9", library.takeText(get(store, "key", "h\xC3\xA9")));
    EXPECT_EQ("h\xC3\xA9", library.takeText(get(store, "key", "other")));
    library.common<void(Handle)>("delete_KVStore")(store);
}

TEST_F(Exports, WideTextCrossesAsUtf16WithItsSurrogatePairs) {
    const Handle store = library.common<Handle()>("new_KVStore__SWIG_0")();
    const std::u16string text = u"a\u00E9\U0001F4F1z";
    library.common<void(Handle, const char*, const char16_t*)>("KVStore_setWStringAt")(
        store, "key", text.c_str());
    const auto get = library.common<void*(Handle, const char*)>("KVStore_getWStringAt__SWIG_1");
    EXPECT_EQ(text, library.takeWideText(get(store, "key")));
    EXPECT_EQ(u"", library.takeWideText(get(store, "absent")));

    const char16_t lone[] = {u'x', 0xD83D, 0};
    library.common<void(Handle, const char*, const char16_t*)>("KVStore_setWStringAt")(store, "key",
                                                                                       lone);
    EXPECT_EQ(std::u16string(lone), library.takeWideText(get(store, "key")));
    library.common<void(Handle)>("delete_KVStore")(store);
}

TEST_F(Exports, NullReferencesReportTheirTypeAndGiveNull) {
    EXPECT_EQ(nullptr, library.common<Handle(Handle)>("new_error_code__SWIG_2")(nullptr));
    expectNull("boost::system::error_code const & type is null");
    EXPECT_EQ(nullptr, library.call<Handle(Handle)>("input", "new_InputFormat__SWIG_5")(nullptr));
    expectNull("orbelantine::KVStore const & type is null");

    const Handle store = library.common<Handle()>("new_KVStore__SWIG_0")();
    library.common<void*(Handle, const char*, Handle)>("KVStore_getDataAt__SWIG_0")(store, "k",
                                                                                    nullptr);
    expectNull("std::vector< uint8_t > const & type is null");
    library.common<void(Handle)>("delete_KVStore")(store);
}

TEST_F(Exports, EachUpcastIsAnOwnerMore) {
    using Upcast = Handle(Handle);
    const Handle mouse = library.call<Handle(int, int, std::uint8_t, unsigned)>(
        "input", "new_IInputMediaBufferMouse__SWIG_3")(5, 6, 0, 0);
    const Handle buffer =
        library.call<Upcast>("input", "IInputMediaBufferMouse_SWIGSmartPtrUpcast")(mouse);
    library.call<void(Handle)>("input", "delete_IInputMediaBufferMouse")(mouse);
    EXPECT_EQ(20U, library.call<unsigned(Handle)>("avstack_base", "IMediaBuffer_getSize")(buffer));
    const auto* data = static_cast<const std::int32_t*>(library.call<void*(Handle, unsigned)>(
        "avstack_base", "IMediaBuffer_map__SWIG_1")(buffer, 0));
    EXPECT_EQ(5, data[0]);
    EXPECT_EQ(6, data[1]);
    library.call<void(Handle)>("avstack_base", "delete_IMediaBuffer")(buffer);
}

TEST_F(Exports, PinOfAnObjectThatIsLentIsReleasedWithItsLastShare) {
    library.symbol<void(void (*)(void*))>("orbelantine_register_release")(
        [](void* pin) { ++*static_cast<int*>(pin); });
    int released = 0;
    const Handle mouse = library.call<Handle(int, int, std::uint8_t, unsigned)>(
        "input", "new_IInputMediaBufferMouse__SWIG_3")(5, 6, 0, 0);
    const Handle lent = library.symbol<Handle(Handle, void*)>("orbelantine_lend")(mouse, &released);
    library.call<void(Handle)>("input", "delete_IInputMediaBufferMouse")(mouse);
    const Handle share =
        library.call<Handle(Handle)>("input", "IInputMediaBufferMouse_SWIGSmartPtrUpcast")(lent);
    library.symbol<void(Handle)>("orbelantine_end_lending")(lent);
    EXPECT_EQ(0, released);
    EXPECT_EQ(20U, library.call<unsigned(Handle)>("avstack_base", "IMediaBuffer_getSize")(share));
    library.call<void(Handle)>("avstack_base", "delete_IMediaBuffer")(share);
    EXPECT_EQ(1, released);
}

} // namespace
} // namespace orbelantine::test
