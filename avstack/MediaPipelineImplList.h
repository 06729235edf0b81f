#pragma once

namespace orbelantine {

/// The host's list of pipelines. Opaque: it is made and deleted, nothing else.
class MediaPipelineImplList {};

} // namespace orbelantine
