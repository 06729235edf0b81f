#pragma once

#include "avstack/IMediaBuffer.h"

namespace orbelantine {

/// The event that a buffer carries, native or the host's, in its raw layout. Null if the buffer has
/// no payload or less than the layout's size. Valid as long as the buffer.
template <class Event>
[[nodiscard]] Event* eventOf(IMediaBuffer& buffer) {
    void* const payload = buffer.getRawBuffer();
    return payload != nullptr && buffer.getSize() >= sizeof(Event) ? static_cast<Event*>(payload)
                                                                   : nullptr;
}

} // namespace orbelantine
