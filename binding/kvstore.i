%{
#include "core/common/config/KVStore.h"
%}

// What lies within a store is known by its place (binding/csharp/StoreTree.cs).
%typemap(csout, excode=SWIGEXCODE) orbelantine::KVStore & {
    $csclassname ret = global::Orbelantine.Swig.StoreTree.Nested(this, key, new $csclassname($imcall, $owner));$excode
    return ret;
  }
%typemap(csin, post="      global::Orbelantine.Swig.StoreTree.Replaced(this, key);") orbelantine::KVStore const &value "$csclassname.getCPtr($csinput)"

namespace orbelantine {

class KVStore {
public:
  KVStore();
  KVStore(orbelantine::KVStore const &other);

  bool getBoolAt(const std::string &key, bool defaultValue = false);
  int getIntAt(const std::string &key, int defaultValue = 0);
  float getFloatAt(const std::string &key, float defaultValue = 0.0f);
  std::string &getStringAt(const std::string &key, const std::string &defaultValue = std::string());
  std::wstring &getWStringAt(const std::string &key, const std::wstring &defaultValue = std::wstring());
  %typemap(csout, excode=SWIGEXCODE) std::vector< uint8_t > & {
    $csclassname ret = global::Orbelantine.Swig.StoreTree.Data(this, key, new $csclassname($imcall, $owner));$excode
    return ret;
  }
  std::vector< uint8_t > &getDataAt(const std::string &key, std::vector< uint8_t > const &defaultValue = std::vector< uint8_t >());
  void *getContextAt(const std::string &key, void *defaultValue = 0);
  orbelantine::KVStore &getKVStoreAt(const std::string &key, orbelantine::KVStore const &defaultValue = orbelantine::KVStore());

  void setBoolAt(const std::string &key, bool value);
  void setIntAt(const std::string &key, int value);
  void setFloatAt(const std::string &key, float value);
  void setStringAt(const std::string &key, const std::string &value);
  void setWStringAt(const std::string &key, const std::wstring &value);
  void setDataAt(const std::string &key, std::vector< uint8_t > const &value);
  void setContextAt(const std::string &key, void *value);
  void setKVStoreAt(const std::string &key, orbelantine::KVStore const &value);

  %typemap(csout, excode=SWIGEXCODE) std::map< std::string, orbelantine::KVStore > & {
    $csclassname ret = global::Orbelantine.Swig.StoreTree.Map(this, new $csclassname($imcall, $owner));$excode
    return ret;
  }
  std::map< std::string, orbelantine::KVStore > &getKVStoreMap();
};

}

%template(KVStoreMap) std::map< std::string, orbelantine::KVStore >;
