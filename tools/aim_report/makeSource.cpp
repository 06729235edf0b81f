#include "tools/aim_report/makeSource.h"

#include "core/common/config/SettingsApi.h"
#include "input/relative/RelativeMouseSource.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine::aim {

boost::shared_ptr<IMouseSource> makeSource(const KVStore& configuration, IClock& clock) {
    return boost::make_shared<RelativeMouseSource>(configuration, SettingsApi::system(), clock);
}

} // namespace orbelantine::aim
