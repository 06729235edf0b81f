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

%template(ByteVector) std::vector< unsigned char >;
%template(StringVector) std::vector< std::string >;
