#include "ipc/trust/NestedSignature.h"

namespace orbelantine {

std::optional<NestedSignature> findNestedSignature(std::span<const SignerAttribute> attributes,
                                                   std::uint32_t index) {
    std::uint32_t count = 0;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        if (attributes[i].identifier != kNestedSignature || ++count < index)
            continue;
        if (index == 0 || attributes[i].valueCount < index)
            return std::nullopt;
        return NestedSignature{i, index - 1};
    }
    return std::nullopt;
}

} // namespace orbelantine
