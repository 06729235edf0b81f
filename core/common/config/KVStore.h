#pragma once

#include <boost/smart_ptr/shared_ptr.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orbelantine {

/// Typed values under string keys, with a key space of its own for each type. Copies are deep; only
/// what a context points to is shared. One thread at a time, readers included.
///
/// A getter inserts its default where the key is missing, and every later reader gets that value
/// whatever default it names. References stay valid as long as the store.
class KVStore {
  public:
    KVStore() = default;
    KVStore(const KVStore&) = default;
    KVStore(KVStore&&) = default;
    /// Takes the copy before it lets go of what it held, so `other` may be a store within this one.
    KVStore& operator=(KVStore other) noexcept;
    ~KVStore() = default;

    bool getBoolAt(const std::string& key, bool defaultValue = false);
    int getIntAt(const std::string& key, int defaultValue = 0);
    float getFloatAt(const std::string& key, float defaultValue = 0.0F);
    std::string& getStringAt(const std::string& key,
                             const std::string& defaultValue = std::string());
    std::wstring& getWStringAt(const std::string& key,
                               const std::wstring& defaultValue = std::wstring());
    std::vector<std::uint8_t>&
    getDataAt(const std::string& key,
              const std::vector<std::uint8_t>& defaultValue = std::vector<std::uint8_t>());
    void* getContextAt(const std::string& key, void* defaultValue = nullptr);
    KVStore& getKVStoreAt(const std::string& key, const KVStore& defaultValue = KVStore());

    void setBoolAt(const std::string& key, bool value);
    void setIntAt(const std::string& key, int value);
    void setFloatAt(const std::string& key, float value);
    void setStringAt(const std::string& key, const std::string& value);
    void setWStringAt(const std::string& key, const std::wstring& value);
    void setDataAt(const std::string& key, const std::vector<std::uint8_t>& value);
    /// The pointer is kept, not owned.
    void setContextAt(const std::string& key, void* value);
    void setKVStoreAt(const std::string& key, const KVStore& value);

    /// Contexts that the store and its copies own a share of. Empty where the key is missing.
    [[nodiscard]] boost::shared_ptr<void> getSharedContextAt(const std::string& key) const;
    void setSharedContextAt(const std::string& key, const boost::shared_ptr<void>& value);

    /// The nested stores.
    std::map<std::string, KVStore>& getKVStoreMap() { return mStores; }

  private:
    std::map<std::string, bool> mBools;
    std::map<std::string, int> mInts;
    std::map<std::string, std::string> mStrings;
    std::map<std::string, std::wstring> mWStrings;
    std::map<std::string, KVStore> mStores;
    std::map<std::string, boost::shared_ptr<void>> mContexts;
    std::map<std::string, std::vector<std::uint8_t>> mDatas;
    std::map<std::string, float> mFloats;
};

} // namespace orbelantine
