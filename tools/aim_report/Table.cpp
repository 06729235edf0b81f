#include "tools/aim_report/Table.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

namespace orbelantine::aim {

namespace {

constexpr const char* kGap = "   ";

} // namespace

std::string Table::text() const {
    const std::vector<std::size_t> width = widths();
    std::ostringstream out;
    for (const auto& line : mLines) {
        for (std::size_t i = 0; i < line.size(); ++i)
            out << kGap << (i < mLeftColumns ? std::left : std::right)
                << std::setw(static_cast<int>(width[i])) << line[i];
        out << '\n';
    }
    return out.str();
}

std::vector<std::size_t> Table::widths() const {
    std::vector<std::size_t> width;
    for (const auto& line : mLines) {
        width.resize(std::max(width.size(), line.size()));
        for (std::size_t i = 0; i < line.size(); ++i)
            width[i] = std::max(width[i], line[i].size());
    }
    return width;
}

std::string oneDigit(double number) {
    std::ostringstream out;
    out << std::fixed << std::setprecision(1) << number;
    return out.str();
}

} // namespace orbelantine::aim
