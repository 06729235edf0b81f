#include "core/common/config/KVStore.h"

namespace orbelantine {

namespace {

template <class V>
V& valueAt(std::map<std::string, V>& values, const std::string& key, const V& defaultValue) {
    return values.try_emplace(key, defaultValue).first->second;
}

boost::shared_ptr<void> unowned(void* pointer) {
    return {pointer, [](void*) {}};
}

} // namespace

KVStore& KVStore::operator=(KVStore other) noexcept {
    mBools.swap(other.mBools);
    mInts.swap(other.mInts);
    mStrings.swap(other.mStrings);
    mWStrings.swap(other.mWStrings);
    mStores.swap(other.mStores);
    mContexts.swap(other.mContexts);
    mDatas.swap(other.mDatas);
    mFloats.swap(other.mFloats);
    return *this;
}

bool KVStore::getBoolAt(const std::string& key, bool defaultValue) {
    return valueAt(mBools, key, defaultValue);
}

int KVStore::getIntAt(const std::string& key, int defaultValue) {
    return valueAt(mInts, key, defaultValue);
}

float KVStore::getFloatAt(const std::string& key, float defaultValue) {
    return valueAt(mFloats, key, defaultValue);
}

std::string& KVStore::getStringAt(const std::string& key, const std::string& defaultValue) {
    return valueAt(mStrings, key, defaultValue);
}

std::wstring& KVStore::getWStringAt(const std::string& key, const std::wstring& defaultValue) {
    return valueAt(mWStrings, key, defaultValue);
}

std::vector<std::uint8_t>& KVStore::getDataAt(const std::string& key,
                                              const std::vector<std::uint8_t>& defaultValue) {
    return valueAt(mDatas, key, defaultValue);
}

void* KVStore::getContextAt(const std::string& key, void* defaultValue) {
    const auto found = mContexts.find(key);
    if (found != mContexts.end())
        return found->second.get();
    return mContexts.try_emplace(key, unowned(defaultValue)).first->second.get();
}

KVStore& KVStore::getKVStoreAt(const std::string& key, const KVStore& defaultValue) {
    return valueAt(mStores, key, defaultValue);
}

void KVStore::setBoolAt(const std::string& key, bool value) {
    mBools[key] = value;
}

void KVStore::setIntAt(const std::string& key, int value) {
    mInts[key] = value;
}

void KVStore::setFloatAt(const std::string& key, float value) {
    mFloats[key] = value;
}

void KVStore::setStringAt(const std::string& key, const std::string& value) {
    mStrings[key] = value;
}

void KVStore::setWStringAt(const std::string& key, const std::wstring& value) {
    mWStrings[key] = value;
}

void KVStore::setDataAt(const std::string& key, const std::vector<std::uint8_t>& value) {
    mDatas[key] = value;
}

void KVStore::setContextAt(const std::string& key, void* value) {
    mContexts[key] = unowned(value);
}

void KVStore::setKVStoreAt(const std::string& key, const KVStore& value) {
    mStores.insert_or_assign(key, value);
}

boost::shared_ptr<void> KVStore::getSharedContextAt(const std::string& key) const {
    const auto found = mContexts.find(key);
    return found != mContexts.end() ? found->second : nullptr;
}

void KVStore::setSharedContextAt(const std::string& key, const boost::shared_ptr<void>& value) {
    mContexts[key] = value;
}

} // namespace orbelantine
