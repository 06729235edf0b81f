#include "core/common/run/SafeIoService.h"

#include "core/common/errors/Exception.h"
#include "tests/support/CapturedLog.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/throw_exception.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace orbelantine {
namespace {

struct Plain : boost::exception {};

struct Case {
    const char* description;
    std::function<void()> fault;
    const char* logBegins;
    const char* told;
    bool logHasDiagnostics;
};

TEST(SafeIoService, FaultAloneIsLoggedAndToldAndEndsTheRun) {
    const Case cases[] = {
        {"ours", [] { BOOST_THROW_EXCEPTION(Exception("gone")); }, "() ", "gone", true},
        {"standard", [] { throw std::runtime_error("cold"); }, "() (what: cold) ", "cold", true},
        {"Boost's", [] { throw Plain(); }, "() ", "Plain", true},
        {"else", [] { throw 5; }, "() unexpected exception!", "int", false},
    };
    std::vector<std::string> told;
    const boost::signals2::scoped_connection slot =
        ioServiceExceptionSignal().connect([&](const std::string& text) { told.push_back(text); });
    for (const Case& each : cases) {
        SCOPED_TRACE(each.description);
        test::CapturedLog log(kLogError);
        boost::asio::io_context ioService;
        bool wentOn = false;
        boost::asio::post(ioService, each.fault);
        boost::asio::post(ioService, [&] { wentOn = true; });
        safeIoServiceRunWithPtr(&ioService);
        EXPECT_FALSE(wentOn);
        ASSERT_EQ(told.size(), 1u);
        EXPECT_NE(told[0].find(each.told), std::string::npos) << told[0];
        const std::string line = std::string("orbelantine::safeIoServiceRunWithPtr") +
                                 each.logBegins + (each.logHasDiagnostics ? told[0] : "");
        EXPECT_EQ(log.take(), (std::vector<test::CapturedLog::Line>{{kLogError, line}}));
        told.clear();
    }
    boost::asio::io_context quiet;
    bool ran = false;
    boost::asio::post(quiet, [&] { ran = true; });
    safeIoServiceRunWithPtr(&quiet);
    EXPECT_TRUE(ran && told.empty());
}

TEST(SafeIoService, WhatHasNotBegunByTheStopDoesNotRun) {
    boost::asio::io_context ioService;
    bool ran = false;
    boost::asio::post(ioService, [&] { ioService.stop(); });
    boost::asio::post(ioService, [&] { ran = true; });
    safeIoServiceRunWithPtr(&ioService);
    EXPECT_FALSE(ran);
}

} // namespace
} // namespace orbelantine
