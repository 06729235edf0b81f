#include "tools/aim_report/makeSource.h"

#include "input/relative/MouseSettingsApi.h"
#include "input/relative/RelativeMouseSource.h"

#include <boost/smart_ptr/make_shared_object.hpp>

namespace orbelantine::aim {

boost::shared_ptr<IMouseSource> makeSource(const KVStore& configuration, IClock& clock) {
    return boost::make_shared<RelativeMouseSource>(configuration, MouseSettingsApi::system(),
                                                   clock);
}

} // namespace orbelantine::aim
