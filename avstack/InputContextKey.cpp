#include "avstack/InputContextKey.h"

#include "core/common/config/KVStore.h"

namespace orbelantine {

namespace {

constexpr const char* kInputContextKey = "input";

} // namespace

void setInputContext(KVStore& settings, const boost::shared_ptr<IInputContext>& context) {
    settings.setSharedContextAt(kInputContextKey, context);
}

boost::shared_ptr<IInputContext> inputContextOf(const KVStore& settings) {
    return boost::static_pointer_cast<IInputContext>(settings.getSharedContextAt(kInputContextKey));
}

} // namespace orbelantine
