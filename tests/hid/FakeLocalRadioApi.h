#pragma once

#include "core/common/errors/ErrorCode.h"
#include "hid/channel/LocalRadioApi.h"

#include <cstring>
#include <cwchar>
#include <map>
#include <string>
#include <vector>

namespace orbelantine::test {

/// The local radio, registry and computer name as a script tells them. Knows what was not given
/// back.
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
    void simulateInstanceIds(std::vector<std::wstring> ids) { mIds = std::move(ids); }

    void simulateComputerName(const std::wstring& name) { mComputerName = name; }

    void simulateRadioName(const std::wstring& name) { mRadioName = name; }

    void simulateFailureOf(const std::string& call, Error error) { mFailures[call] = error; }

    [[nodiscard]] const std::vector<Value>& values() const { return mValues; }

    [[nodiscard]] int held() const { return mHeld; }

    Error setupDiEnumDeviceInfo(Handle, std::uint32_t index, DevInfoData& data) override {
        if (index >= mIds.size())
            return win32::kErrorNoMoreItems;
        data.devInst = index + 1;
        return failure("SetupDiEnumDeviceInfo");
    }

    Error cmGetDeviceId(std::uint32_t devInst, wchar_t* id, std::uint32_t capacity) override {
        const std::wstring& found = mIds.at(devInst - 1);
        if (found.empty() || found.size() >= capacity)
            return kCrNoSuchDevInst;
        std::wmemcpy(id, found.c_str(), found.size() + 1);
        return 0;
    }

    Error regOpenKeyEx(Handle root, const std::wstring& path, std::uint32_t access,
                       Handle& key) override {
        if (root != kLocalMachine || access != kKeySetValue)
            return win32::kErrorInvalidHandle;
        if (const Error error = failure("RegOpenKeyEx"))
            return error;
        mOpenKey = path;
        key = kKey;
        ++mHeld;
        return 0;
    }

    Error regSetValueEx(Handle, const std::wstring& name, std::uint32_t type, const void* data,
                        std::uint32_t size) override {
        if (const Error error = failure("RegSetValueEx"))
            return error;
        mValues.push_back(
            {mOpenKey, name, type, std::string(static_cast<const char*>(data), size)});
        return 0;
    }

    void regCloseKey(Handle key) override { mHeld -= key == kKey; }

    Error getComputerName(wchar_t* name, std::uint32_t& size) override {
        if (mComputerName.size() >= size)
            return kErrorBufferOverflow;
        std::wmemcpy(name, mComputerName.c_str(), mComputerName.size() + 1);
        size = static_cast<std::uint32_t>(mComputerName.size());
        return failure("GetComputerName");
    }

    Error bluetoothFindFirstRadio(Handle& search, Handle& radio) override {
        if (const Error error = failure("BluetoothFindFirstRadio"))
            return error;
        search = kSearch;
        radio = kRadio;
        ++mHeld;
        return 0;
    }

    Error bluetoothGetRadioInfo(Handle radio, RadioInfo& info) override {
        if (radio != kRadio || info.size != 520)
            return win32::kErrorInvalidHandle;
        info.name = mRadioName;
        return failure("BluetoothGetRadioInfo");
    }

    void bluetoothFindRadioClose(Handle search) override { mHeld -= search == kSearch; }

  private:
    static constexpr Error kCrNoSuchDevInst = 13;
    static constexpr Error kErrorBufferOverflow = 111;
    static constexpr Handle kKey = 501;
    static constexpr Handle kSearch = 502;
    static constexpr Handle kRadio = 503;

    [[nodiscard]] Error failure(const std::string& call) const {
        const auto found = mFailures.find(call);
        return found == mFailures.end() ? 0 : found->second;
    }

    std::vector<std::wstring> mIds;
    std::wstring mComputerName;
    std::wstring mRadioName;
    std::map<std::string, Error> mFailures;
    std::wstring mOpenKey;
    std::vector<Value> mValues;
    int mHeld = 0;
};

} // namespace orbelantine::test
