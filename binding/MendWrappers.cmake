# cmake -DWRAPPER=<generated file> -P MendWrappers.cmake
# What the generator offers no rule for.
#
# The generator takes every object given to a director_connect for a director; one that the host
# made as a plain object is to be left alone, and so is none at all.
file(READ "${WRAPPER}" text)
string(REGEX REPLACE "static_cast<(SwigDirector_[A-Za-z0-9_]+ \\*)>\\(obj->operator->\\(\\)\\)"
    "dynamic_cast<\\1>(obj ? obj->get() : 0)" text "${text}")
string(REGEX REPLACE "static_cast<(SwigDirector_[A-Za-z0-9_]+ \\*)>\\(obj\\)"
    "dynamic_cast<\\1>(obj)" text "${text}")
string(REPLACE "  director->swig_connect_director(" "  if (director) director->swig_connect_director("
    text "${text}")
if(text MATCHES "static_cast<SwigDirector_")
    message(FATAL_ERROR "${WRAPPER}: a director is connected in a form that is not known here")
endif()

# Short names that stand for types within the signatures of callbacks (binding/callbacks/callbacks.i).
function(write_out name type)
    string(REGEX REPLACE "([^A-Za-z0-9_])${name}([^A-Za-z0-9_])" "\\1${type}\\2" mended "${text}")
    set(text "${mended}" PARENT_SCOPE)
endfunction()
write_out(vectorUint8 "std::vector< uint8_t >")
write_out(functionInt "boost::function< void (int) >")
write_out(functionErrorCode "boost::function< void (boost::system::error_code) >")
write_out(functionString "boost::function< void (std::string) >")
write_out(functionStringErrorCode "boost::function< void (std::string,boost::system::error_code) >")
write_out(sharedPeer "boost::shared_ptr< orbelantine::BluetoothPeer >")
write_out(vectorPeer "std::vector< boost::shared_ptr< orbelantine::BluetoothPeer > >")

if(text MATCHES "[^A-Za-z0-9_](vectorUint8|function(Int|ErrorCode|String|StringErrorCode)|sharedPeer|vectorPeer)[^A-Za-z0-9_]")
    message(FATAL_ERROR "${WRAPPER}: ${CMAKE_MATCH_1} stands in a text")
endif()

# A list may be put into itself, and a count may be as large as it likes.
string(REGEX REPLACE "self->insert\\(([^;]*), values\\.begin\\(\\), values\\.end\\(\\)\\);"
    "{ const auto given(values); self->insert(\\1, given.begin(), given.end()); }" text "${text}")
string(REPLACE "index+count > (int)self->size()" "count > (int)self->size()-index" text "${text}")

file(WRITE "${WRAPPER}" "${text}")
