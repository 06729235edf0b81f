#include "input/InputContextKey.h"

#include "avstack/IInputSource.h"
#include "core/common/KVStore.h"
#include "input/IInputContext.h"

namespace orbelantine {

void setInputContext(KVStore& settings, const boost::shared_ptr<IInputContext>& context) {
    settings.setSharedContextAt(kInputContextKey, context);
}

boost::shared_ptr<IInputContext> inputContextOf(const KVStore& settings) {
    return boost::static_pointer_cast<IInputContext>(settings.getSharedContextAt(kInputContextKey));
}

} // namespace orbelantine
