#include "tests/binding/Crossing.h"

namespace orbelantine::test {

namespace {

using Handle = void*;

} // namespace

Crossing<Store>::In::In(Store store)
    : mHandle(Library::instance().common<Handle()>("new_KVStore__SWIG_0")()) {
    Library::instance().common<void(Handle, const char*, int)>("KVStore_setIntAt")(mHandle, "n",
                                                                                   store.number);
}

Crossing<Store>::In::~In() {
    Library::instance().common<void(Handle)>("delete_KVStore")(mHandle);
}

Store Crossing<Store>::take(Out out) {
    return {
        Library::instance().common<int(Handle, const char*)>("KVStore_getIntAt__SWIG_1")(out, "n")};
}

Crossing<Buffer>::In::In(Buffer buffer) {
    Library& library = Library::instance();
    const Handle mouse = library.call<Handle(int, int, std::uint8_t, unsigned)>(
        "input", "new_IInputMediaBufferMouse__SWIG_3")(buffer.number, 0, 0, 0);
    mHandle =
        library.call<Handle(Handle)>("input", "IInputMediaBufferMouse_SWIGSmartPtrUpcast")(mouse);
    library.call<void(Handle)>("input", "delete_IInputMediaBufferMouse")(mouse);
}

Crossing<Buffer>::In::~In() {
    Library::instance().call<void(Handle)>("avstack_base", "delete_IMediaBuffer")(mHandle);
}

Buffer Crossing<Buffer>::take(Out out) {
    Library& library = Library::instance();
    const Buffer buffer{*static_cast<const std::int32_t*>(library.call<Handle(Handle, unsigned)>(
        "avstack_base", "IMediaBuffer_map__SWIG_1")(out, 0))};
    library.call<void(Handle)>("avstack_base", "delete_IMediaBuffer")(out);
    return buffer;
}

} // namespace orbelantine::test
