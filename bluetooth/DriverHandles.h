#pragma once

#include "bluetooth/ApiHandle.h"
#include "bluetooth/DriverApi.h"

namespace orbelantine {

using DeviceInfoList = ApiHandle<DriverApi, &DriverApi::setupDiDestroyDeviceInfoList>;
using DriverFile = ApiHandle<DriverApi, &DriverApi::closeHandle>;

} // namespace orbelantine
