#include "tools/l2cap_bridge/Options.h"
#include "tools/l2cap_bridge/linux/L2capApi.h"
#include "tools/l2cap_bridge/linux/Program.h"

#include <cstddef>
#include <iostream>
#include <span>
#include <variant>

int main(int argc, char** argv) {
    using namespace orbelantine;
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    const auto parsed = bridge::parseOptions(arguments.subspan(1));
    if (const auto* error = std::get_if<phone::UsageError>(&parsed)) {
        std::cerr << error->message << '\n';
        return bridge::kExitUsage;
    }
    if (std::holds_alternative<phone::HelpWanted>(parsed)) {
        std::cout << bridge::helpText();
        return bridge::kExitSuccess;
    }
    return bridge::runBridge(std::get<bridge::Options>(parsed), bridge::L2capApi::system(),
                             std::cout, std::cerr);
}
