#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputSource.h"
#include "avstack/IInputTarget.h"
#include "avstack/TemplateProxySimplified.h"
#include "tests/support/CapturedLog.h"

#include <boost/function.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <tuple>
#include <vector>

namespace orbelantine::test {

namespace {

using Buffers = std::vector<boost::shared_ptr<IMediaBuffer>>;
using Proxy = IMediaElement::TemplateProxySimplified<IMediaElement>;

/// Keeps what reaches it.
class Recorder : public IMediaElement {
  public:
    using IMediaElement::start;

    void start() override { calls.push_back("start"); }

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        frames.push_back(buffer);
    }

    std::vector<std::string> calls;
    Buffers frames;
};

boost::shared_ptr<IMediaBuffer> makeBuffer() {
    return boost::make_shared<IInputMediaBufferMouse>(1, 2, std::uint8_t{0});
}

Texts traceOf(const std::string& name) {
    return {"debug Entering function " + name, "debug Leaving function " + name};
}

TEST(MediaElement, StartWithACallbackStartsReportsSuccessAndDropsIt) {
    Recorder element;
    const auto held = boost::make_shared<int>(0);
    element.start([&element, held](error_code result) {
        element.calls.push_back(result ? "failure" : "success");
    });
    EXPECT_EQ(element.calls, (std::vector<std::string>{"start", "success"}));
    EXPECT_EQ(held.use_count(), 1);
}

TEST(MediaElement, NullElementsOnlyTraceUnderTheirNames) {
    EXPECT_EQ(IMediaElement::Dummy().getName(), "");
    EXPECT_EQ(IInputSource::Dummy().getName(), "IInputSource::Dummy");
    EXPECT_EQ(IInputTarget::Dummy().getName(), "IInputTarget::Dummy");
    EXPECT_EQ(IInputSource::PassThrough().getName(), "IInputSource::PassThrough");
    CapturedLog log(kLogDebug);
    IInputTarget::Dummy element;
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"start", [&] { element.start(); }},
        {"stop", [&] { element.stop(); }},
        {"pause", [&] { element.pause(); }},
        {"resume", [&] { element.resume(); }},
        {"registerTarget", [&] { element.registerTarget(boost::make_shared<Recorder>()); }},
        {"onFrame", [&] { element.onFrame(makeBuffer()); }},
        {"refresh", [&] { element.refresh(); }},
        {"flush", [&] { element.flush(); }}};
    for (const auto& [name, perform] : operations) {
        perform();
        EXPECT_EQ(log.told(), traceOf(std::string("orbelantine::IMediaElement::") + name));
    }
}

TEST(MediaElement, PassThroughHandsTheSameBufferOnIfThereIsATarget) {
    IInputSource::PassThrough source;
    const auto target = boost::make_shared<Recorder>();
    const auto buffer = makeBuffer();
    source.onFrame(buffer);
    EXPECT_EQ(buffer.use_count(), 1);
    source.registerTarget(target);
    source.onFrame(buffer);

    EXPECT_EQ(source.getTarget(), target);
    EXPECT_EQ(target->frames, (Buffers{buffer}));
}

TEST(MediaElement, ProxyCallsItsFunctionAndLeavesTheTargetToIt) {
    using Handled =
        std::tuple<boost::shared_ptr<IMediaBuffer>, std::string, boost::shared_ptr<IMediaElement>>;
    std::vector<Handled> handled;
    const auto target = boost::make_shared<Recorder>();
    const auto buffer = makeBuffer();
    Proxy proxy([&](const auto&... handed) { handled.emplace_back(handed...); }, "proxy");
    proxy.registerTarget(target);
    proxy.onFrame(buffer);

    EXPECT_EQ(handled, (std::vector<Handled>{{buffer, "proxy", target}}));
    EXPECT_TRUE(target->frames.empty());
    EXPECT_EQ(proxy.getTarget(), target);
    EXPECT_EQ(proxy.getName(), "proxy");
    CapturedLog log(kLogDebug);
    Proxy empty(Proxy::Handler(), "proxy");
    empty.registerTarget(target);
    EXPECT_EQ(log.told(), traceOf("orbelantine::IMediaElement::TemplateProxySimplified<class "
                                  "orbelantine::IMediaElement>::registerTarget"));
    EXPECT_THROW(empty.onFrame(buffer), boost::bad_function_call);
}

} // namespace

} // namespace orbelantine::test
