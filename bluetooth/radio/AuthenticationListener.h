#pragma once

#include "bluetooth/radio/BluetoothApi.h"

#include <boost/function/function1.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

namespace orbelantine {

/// Hears of the peers that ask to be paired, on the platform's thread. A request that is on its way
/// when its listener goes is dropped: the platform knows a listener by a number alone.
class AuthenticationListener {
  public:
    using Params = BluetoothApi::AuthenticationParams;
    using Handler = boost::function<void(const Params&)>;

    explicit AuthenticationListener(Handler handler);
    /// Waits for a call of the handler in progress, unless made in it.
    ~AuthenticationListener();
    AuthenticationListener(const AuthenticationListener&) = delete;
    AuthenticationListener& operator=(const AuthenticationListener&) = delete;

    /// What the platform is given, with onRequest.
    [[nodiscard]] void* context() const;
    static BluetoothApi::Bool onRequest(void* context, Params* params);

  private:
    struct Entry;
    struct Table;

    static Table& table();

    boost::shared_ptr<Entry> mEntry;
    std::uintptr_t mNumber;
};

} // namespace orbelantine
