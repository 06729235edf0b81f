// Standard containers as lists and dictionaries of the host.

%include <std_vector.i>
%include <std_map.i>

// Keys at once, beside the iterator trio.
%extend std::map {
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
