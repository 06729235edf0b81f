#include "avstack/VideoElements.h"

#include "core/common/OSAL.h"

namespace orbelantine {

ORB_OSAL_REGISTER(IVideoConverter, IVideoConverter::PassThrough, "IVideoConverter::PassThrough");
ORB_OSAL_REGISTER(IVideoRenderer, IVideoRenderer::PassThrough, "IVideoRenderer::PassThrough");
ORB_OSAL_REGISTER(IDepacketizer, IDepacketizer::PassThrough, "IDepacketizer::PassThrough");
ORB_OSAL_REGISTER(IPacketizer, IPacketizer::PassThrough, "IPacketizer::PassThrough");

} // namespace orbelantine
