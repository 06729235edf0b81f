#include "tools/virtual_phone/Options.h"
#include "tools/virtual_phone/linux/Program.h"

#include <cstddef>
#include <iostream>
#include <span>
#include <variant>

int main(int argc, char** argv) {
    using namespace orbelantine::phone;
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    const auto parsed = parseOptions(arguments.subspan(1));
    if (const auto* error = std::get_if<UsageError>(&parsed)) {
        std::cerr << error->message << '\n';
        return 2;
    }
    if (std::holds_alternative<HelpWanted>(parsed)) {
        std::cout << helpText();
        return 0;
    }
    return runVirtualPhone(std::get<Options>(parsed), std::cout, std::cerr);
}
