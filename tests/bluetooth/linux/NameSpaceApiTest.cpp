#include "bluetooth/radio/ServiceLookup.h"
#include "core/common/errors/ApiCategory.h"

#include <gtest/gtest.h>

#include <future>

namespace orbelantine {
namespace {

TEST(LinuxNameSpaceApi, LookupAndPublicationSayThatTheSystemLacksThem) {
    std::promise<error_code> result;
    ServiceLookup lookup;
    lookup.start(CMacAddress(L"00:1A:7D:DA:71:13"), {},
                 [&](error_code ec, const auto&...) { result.set_value(ec); });
    EXPECT_EQ(result.get_future().get(),
              error_code(10045, apiCategory("BluetoothServiceLookup:WSALookupServiceBegin")));
    EXPECT_EQ(publishBluetoothService({0x35, 0}), 0);
}

} // namespace
} // namespace orbelantine
