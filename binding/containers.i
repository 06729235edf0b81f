// Standard containers as lists and dictionaries of the host.

%include <std_vector.i>
%include <std_map.i>

// The copy names its argument with the order of its keys; keys at once, beside the iterator trio.
%ignore std::map::map(const map &);
%extend std::map {
  map(std::map< K, T, std::less< K > > const &other) {
    return new std::map< K, T >(other);
  }
  %newobject getKeys;
  std::vector< K > *getKeys() {
    std::vector< K > *keys = new std::vector< K >();
    keys->reserve($self->size());
    for (std::map< K, T >::const_iterator entry = $self->begin(); entry != $self->end(); ++entry)
      keys->push_back(entry->first);
    return keys;
  }
}

// Wide text is searched for on the host's side.
%ignore std::vector< std::wstring >::Contains;
%ignore std::vector< std::wstring >::IndexOf;
%ignore std::vector< std::wstring >::LastIndexOf;
%ignore std::vector< std::wstring >::Remove;
%extend std::vector< std::wstring > {
%proxycode %{
  public int IndexOf(string value) {
    for (int i = 0; i < Count; ++i)
      if (this[i] == (value ?? ""))
        return i;
    return -1;
  }

  public bool Contains(string value) {
    return IndexOf(value) >= 0;
  }

  public bool Remove(string value) {
    int index = IndexOf(value);
    if (index >= 0)
      RemoveAt(index);
    return index >= 0;
  }
%}
}

%template(ByteVector) std::vector< unsigned char >;
%template(IntVector) std::vector< int >;
%template(UintVector) std::vector< unsigned int >;
%template(StringVector) std::vector< std::string >;
%template(WStringVector) std::vector< std::wstring >;

%template(MapStringString) std::map< std::string, std::string >;
%template(MapStringWString) std::map< std::string, std::wstring >;
%template(MapUintWString) std::map< unsigned int, std::wstring >;
%template(MapWStringString) std::map< std::wstring, std::string >;
%template(MapWstringWstring) std::map< std::wstring, std::wstring >;
