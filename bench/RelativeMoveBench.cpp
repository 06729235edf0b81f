#include "avstack/IInputMediaBufferMouse.h"
#include "avstack/IInputSource.h"
#include "avstack/InputContextKey.h"
#include "avstack/InputFormat.h"
#include "bench/OneProcessor.h"
#include "core/common/OSAL.h"
#include "core/common/config/KVStore.h"
#include "input/context/IInputContext.h"
#include "input/sources/InputTypeFlags.h"

#include <benchmark/benchmark.h>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_service.hpp>
#include <boost/asio/post.hpp>
#include <boost/smart_ptr/make_shared_object.hpp>

#include <atomic>
#include <future>
#include <thread>

// One relative move from the surface's signal to its frame on the source's worker and the news of
// it back, beside two bare posts between two threads.

namespace orbelantine {
namespace {

constexpr int kSide = 100;

class Surface final : public IInputContext {
  public:
    [[nodiscard]] std::uint16_t convertVKCodeToUnicode(std::uint32_t) override { return 0; }

    [[nodiscard]] std::uint32_t mapVK(std::uint32_t) override { return 0; }

    [[nodiscard]] std::uint32_t mapScan(std::uint32_t) override { return 0; }

    void lockSystemMouse() override {}

    void unlockSystemMouse(std::int32_t, std::int32_t) override {}

    [[nodiscard]] std::int32_t getSystemMouseSpeed() override { return DEFAULT_MOUSE_SPEED; }

    bool screenToInputSurface(Point&) override { return true; }

    bool inputSurfaceToScreen(Point&) override { return true; }

    bool getInputSurfaceRectWithinScreen(Rect& rect) override {
        rect = {0, 0, kSide, kSide};
        return true;
    }

    void setCaptureMouseExclusively() override {}

    void releaseCaptureMouseExclusively() override {}
};

/// A thread that runs what is posted to it.
class Poster {
  public:
    ~Poster() {
        mIoService.stop();
        mThread.join();
    }

    template <class Task>
    void post(Task task) {
        boost::asio::post(mIoService, std::move(task));
    }

  private:
    boost::asio::io_service mIoService;
    decltype(boost::asio::make_work_guard(mIoService)) mWork{mIoService.get_executor()};
    std::thread mThread{[this] { mIoService.run(); }};
};

/// What the measuring thread waits for.
class News {
  public:
    void tell() {
        mCount.fetch_add(1);
        mCount.notify_one();
    }

    void await() {
        mCount.wait(mSeen);
        mSeen = mCount;
    }

  private:
    std::atomic<unsigned> mCount = 0;
    unsigned mSeen = 0;
};

/// Posts the news of each frame on, as the manager's proxy does, once the button is down.
class Target final : public IMediaElement {
  public:
    Target(Poster& poster, News& news)
        : mPoster(poster)
        , mNews(news) {}

    void onFrame(const boost::shared_ptr<IMediaBuffer>& buffer) override {
        if (mPressed)
            mPoster.post([this] { mNews.tell(); });
        else if (eventOf(*buffer).type == IInputMediaBufferMouse::LeftDown)
            press();
    }

    void awaitPress() { mPressing.get_future().wait(); }

  private:
    static const IInputMediaBufferMouse::EventData& eventOf(IMediaBuffer& buffer) {
        return *static_cast<const IInputMediaBufferMouse::EventData*>(buffer.map(0));
    }

    void press() {
        mPressed = true;
        mPressing.set_value();
    }

    Poster& mPoster;
    News& mNews;
    bool mPressed = false;
    std::promise<void> mPressing;
};

void moveOurs(benchmark::State& state) {
    const bench::OneProcessor one;
    News news;
    Poster poster;
    const auto surface = boost::make_shared<Surface>();
    const auto target = boost::make_shared<Target>(poster, news);
    KVStore store;
    store.setStringAt("hint", "android");
    setInputContext(store, surface);
    const auto source = osalCreate<IInputSource, InputFormat>(
        OSALFactory::instance(), "IInputSource", store, "", InputFormat(3, 2, 1, kRelativeInput));
    source->registerTarget(target);
    source->start();
    // The source listens to the screen's size from a moment after its start.
    while (surface->onLogicalDimensionsChanged.empty())
        std::this_thread::yield();
    surface->onLogicalDimensionsChanged(kSide, kSide, 1.0, 0);
    // A move counts in a drag alone.
    surface->onMouseClickDown(IInputContext::MouseButtonLeft, kSide / 2, kSide / 2);
    target->awaitPress();
    for (auto _ : state) {
        surface->onRelativeMouseMove(6, 0);
        news.await();
    }
    source->stop();
}

void moveBare(benchmark::State& state) {
    const bench::OneProcessor one;
    News news;
    Poster poster;
    Poster worker;
    for (auto _ : state) {
        worker.post([&] { poster.post([&] { news.tell(); }); });
        news.await();
    }
}

BENCHMARK(moveOurs)->Name("BM_RelativeMove/ours")->UseRealTime();
BENCHMARK(moveBare)->Name("BM_RelativeMove/bare")->UseRealTime();

} // namespace
} // namespace orbelantine
