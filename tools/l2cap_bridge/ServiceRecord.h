#pragma once

#include <string>

namespace orbelantine {
struct HIDServiceRecord;
}

namespace orbelantine::bridge {

/// The record as the XML that BlueZ takes; `record` has at least one byte of descriptor.
[[nodiscard]] std::string serviceRecordXml(const HIDServiceRecord& record);

} // namespace orbelantine::bridge
