#include "audio/linux/PulseConnection.h"

#include "core/common/log/Log.h"
#include "core/common/run/WorkerThread.h"

#include <boost/smart_ptr/make_shared_object.hpp>

#include <utility>

namespace orbelantine {

namespace {

constexpr std::chrono::seconds kServerAnswersWithin(2);

} // namespace

boost::shared_ptr<PulseConnection>
PulseConnection::open(std::shared_ptr<const PulseLibrary> library) {
    return {new PulseConnection(std::move(library)), &PulseConnection::endSafely};
}

PulseConnection::PulseConnection(std::shared_ptr<const PulseLibrary> library)
    : mLibrary(std::move(library))
    , mNotifier(boost::make_shared<IoThread>("PulseNotifierThread"))
    , mState(boost::make_shared<PulseState>(mNotifier->weak())) {
    if (!mLibrary) {
        mState->settle();
        return;
    }
    mClient = std::make_unique<PulseClient>(*mLibrary, *mState);
    mThread = startWorkerThread([client = mClient.get()] { client->run(); });
}

PulseConnection::~PulseConnection() {
    if (mClient)
        mClient->end();
    if (mThread.joinable())
        mThread.join();
    endNotifier();
}

void PulseConnection::endSafely(PulseConnection* connection) {
    if (connection->mThread.get_id() == std::this_thread::get_id())
        endElsewhere(boost::shared_ptr<PulseConnection>(connection));
    else
        delete connection;
}

void PulseConnection::endNotifier() {
    // What it calls may wait for this thread.
    if (mState->end() && !mNotifier->isCurrent())
        endElsewhere(std::exchange(mNotifier, nullptr));
}

void PulseConnection::waitForServer() const {
    if (!mState->waitUntilSettled(mOpened + kServerAnswersWithin))
        ORB_LOG(kLogWarning, "%s() no audio devices until the sound server answers");
}

void PulseConnection::wish(const PulseKey& key, const PulseWish& wish) {
    if (mClient)
        mClient->wish(key, wish);
}

void PulseConnection::tellDevicesSoon() {
    if (mClient)
        mClient->wake();
}

} // namespace orbelantine
