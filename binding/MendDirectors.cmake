# cmake -DWRAPPER=<generated file> -P MendDirectors.cmake
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
file(WRITE "${WRAPPER}" "${text}")
