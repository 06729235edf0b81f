#pragma once

#include "avstack/IMediaElement.h"

#include <string>

namespace orbelantine {

// Elements of a chain of video. Programs that have one bring the implementations; what this library
// has leaves the step out.

#define ORB_VIDEO_ELEMENT(Interface)                                                               \
    class Interface : public IMediaElement {                                                       \
      public:                                                                                      \
        class PassThrough;                                                                         \
    };                                                                                             \
    class Interface::PassThrough final : public PassThroughElement<Interface> {                    \
      public:                                                                                      \
        [[nodiscard]] std::string getName() override { return #Interface "::PassThrough"; }        \
    }

/// Turns pictures from one format into another.
ORB_VIDEO_ELEMENT(IVideoConverter);
/// Shows pictures.
ORB_VIDEO_ELEMENT(IVideoRenderer);
/// Makes frames of packets.
ORB_VIDEO_ELEMENT(IDepacketizer);
/// Makes packets of frames.
ORB_VIDEO_ELEMENT(IPacketizer);

#undef ORB_VIDEO_ELEMENT

} // namespace orbelantine
