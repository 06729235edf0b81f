#pragma once

#include "core/common/errors/ErrorCode.h"
#include "hid/channel/LocalRadioApi.h"

#include <cstring>
#include <cwchar>
#include <map>
#include <string>
#include <vector>

namespace orbelantine::test {

/// The local radio, registry and computer name as a script tells them.
class FakeLocalRadioApi : public LocalRadioApi {
  public:
    struct Value {
        std::wstring key;
        std::wstring name;
        std::uint32_t type;
        std::string bytes;
        bool operator==(const Value&) const = default;
    };

    /// The present Bluetooth devices' instance ids, in order; an empty one has no id.
    std::vector<std::wstring> instanceIds;
    std::wstring computerName;
    std::wstring radioName;
    /// By call.
    std::map<std::string, Error> failures;
    /// What was set.
    std::vector<Value> values;
    /// Keys and searches that were not given back.
    int held = 0;

    Error setupDiEnumDeviceInfo(Handle, std::uint32_t index, DevInfoData& data) override {
        if (index >= instanceIds.size())
            return win32::kErrorNoMoreItems;
        data.devInst = index + 1;
        return failures["SetupDiEnumDeviceInfo"];
    }

    Error cmGetDeviceId(std::uint32_t devInst, wchar_t* id, std::uint32_t capacity) override {
        const std::wstring& found = instanceIds.at(devInst - 1);
        if (found.empty() || found.size() >= capacity)
            return kCrNoSuchDevInst;
        std::wmemcpy(id, found.c_str(), found.size() + 1);
        return 0;
    }

    Error regOpenKeyEx(Handle root, const std::wstring& path, std::uint32_t access,
                       Handle& key) override {
        if (root != kLocalMachine || access != kKeySetValue)
            return win32::kErrorInvalidHandle;
        if (const Error error = failures["RegOpenKeyEx"])
            return error;
        mOpenKey = path;
        key = kKey;
        ++held;
        return 0;
    }

    Error regSetValueEx(Handle, const std::wstring& name, std::uint32_t type, const void* data,
                        std::uint32_t size) override {
        if (const Error error = failures["RegSetValueEx"])
            return error;
        values.push_back({mOpenKey, name, type, std::string(static_cast<const char*>(data), size)});
        return 0;
    }

    void regCloseKey(Handle key) override { held -= key == kKey; }

    Error getComputerName(wchar_t* name, std::uint32_t& size) override {
        if (computerName.size() >= size)
            return kErrorBufferOverflow;
        std::wmemcpy(name, computerName.c_str(), computerName.size() + 1);
        size = static_cast<std::uint32_t>(computerName.size());
        return failures["GetComputerName"];
    }

    Error bluetoothFindFirstRadio(Handle& search, Handle& radio) override {
        if (const Error error = failures["BluetoothFindFirstRadio"])
            return error;
        search = kSearch;
        radio = kRadio;
        ++held;
        return 0;
    }

    Error bluetoothGetRadioInfo(Handle radio, RadioInfo& info) override {
        if (radio != kRadio || info.size != 520)
            return win32::kErrorInvalidHandle;
        info.name = radioName;
        return failures["BluetoothGetRadioInfo"];
    }

    void bluetoothFindRadioClose(Handle search) override { held -= search == kSearch; }

  private:
    static constexpr Error kCrNoSuchDevInst = 13;
    static constexpr Error kErrorBufferOverflow = 111;
    static constexpr Handle kKey = 501;
    static constexpr Handle kSearch = 502;
    static constexpr Handle kRadio = 503;

    std::wstring mOpenKey;
};

} // namespace orbelantine::test
