// Boost.Asio's own code, once for all files that use it.
#include <boost/asio/impl/src.hpp>
