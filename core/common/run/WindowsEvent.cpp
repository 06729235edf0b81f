#include "core/common/run/WindowsEvent.h"

#include "core/common/log/Log.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <mutex>
#include <utility>

namespace orbelantine {

/// How many copies share a handle.
struct WindowsEvent::RefCount {
    virtual ~RefCount() = default;

    std::recursive_mutex mutex;
    int count = 1;
};

namespace {

kernel_event::WaitResult waitForMany(const std::vector<kernel_event::Handle>& handles, bool all,
                                     std::uint32_t timeout) {
    return kernel_event::waitForMany(handles.data(), static_cast<std::uint32_t>(handles.size()),
                                     all, timeout);
}

// A time-out leaves the system no error, so its result stands for one.
int errorOf(const kernel_event::WaitResult& result) {
    return static_cast<int>(result.value == kernel_event::kWaitFailed ? result.error
                                                                      : result.value);
}

} // namespace

WindowsEvent::WindowsEvent(bool manualReset, bool signalled)
    : mHandle(kernel_event::create(manualReset, signalled))
    , mRefCount(boost::make_shared<RefCount>()) {}

WindowsEvent::WindowsEvent(const WindowsEvent& other)
    : mHandle(other.mHandle)
    , mRefCount(other.mRefCount) {
    const std::lock_guard lock(mRefCount->mutex);
    ++mRefCount->count;
}

WindowsEvent& WindowsEvent::operator=(const WindowsEvent& other) {
    WindowsEvent copy(other);
    swap(copy);
    return *this;
}

WindowsEvent::~WindowsEvent() {
    const std::lock_guard lock(mRefCount->mutex);
    if (mRefCount->count == 1)
        kernel_event::close(mHandle);
    else
        --mRefCount->count;
}

void WindowsEvent::set() {
    kernel_event::set(mHandle);
}

void WindowsEvent::reset() {
    kernel_event::reset(mHandle);
}

bool WindowsEvent::wait(std::uint32_t timeout) {
    return kernel_event::waitForOne(mHandle, timeout).value == 0;
}

bool WindowsEvent::waitAll(const Handles& handles, std::uint32_t timeout) {
    const auto result = waitForMany(handles, true, timeout);
    if (result.value < handles.size())
        return true;
    ORB_LOG(kLogError, "%s() wait failed. Error: %d", errorOf(result));
    return false;
}

std::uint32_t WindowsEvent::waitAny(const Handles& handles, std::uint32_t timeout) {
    const auto result = waitForMany(handles, false, timeout);
    if (result.value < handles.size())
        return result.value;
    ORB_LOG(kLogError, "%s() wait failed. Error: %d", errorOf(result));
    return kNone;
}

void WindowsEvent::swap(WindowsEvent& other) noexcept {
    std::swap(mHandle, other.mHandle);
    mRefCount.swap(other.mRefCount);
}

} // namespace orbelantine
