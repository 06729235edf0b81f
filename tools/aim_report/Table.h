#pragma once

#include <string>
#include <vector>

namespace orbelantine::aim {

/// Lines of cells, written in columns as wide as they need to be: the first `leftColumns` to the
/// left, the others to the right. The first line is the heading.
class Table {
  public:
    explicit Table(std::size_t leftColumns)
        : mLeftColumns(leftColumns) {}

    /// As many cells as the first line has.
    void add(std::vector<std::string> cells) { mLines.push_back(std::move(cells)); }

    [[nodiscard]] std::string text() const;

  private:
    [[nodiscard]] std::vector<std::size_t> widths() const;

    std::size_t mLeftColumns;
    std::vector<std::vector<std::string>> mLines;
};

/// With one digit behind the point.
[[nodiscard]] std::string oneDigit(double number);

} // namespace orbelantine::aim
