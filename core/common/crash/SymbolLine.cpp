#include "core/common/crash/SymbolLine.h"

#include "core/common/crash/CrashText.h"

#include <cinttypes>
#include <cstddef>

namespace orbelantine {

namespace {

constexpr std::size_t kSymbolLineSize = 1023;

std::wstring wholeLine(CrashStackApi& api, CrashStackApi::Address address) {
    const std::wstring place = L" - 0x" + addressText(address);
    const auto module = api.moduleOf(address);
    if (!module)
        return L"??"
               L"?! ???" +
               place; // in one piece it holds a trigraph
    const auto symbol = api.symbolOf(address);
    const auto offset = static_cast<std::uint32_t>(address - module->base);
    std::wstring text =
        module->name + L"! " + symbol.value_or(L"???") + place +
        wideCrashText(", module offset(base): 0x%" PRIx32 "(0x%" PRIx64 ")", offset, module->base);
    const auto line = symbol ? api.lineOf(address) : std::nullopt;
    return line ? text + L", " + line->file + L":" + std::to_wstring(line->number) : text;
}

} // namespace

std::wstring addressText(CrashStackApi::Address address) {
    return wideCrashText("%016" PRIX64, address);
}

std::wstring symbolLine(CrashStackApi& api, CrashStackApi::Address address) {
    return wholeLine(api, address).substr(0, kSymbolLineSize);
}

} // namespace orbelantine
