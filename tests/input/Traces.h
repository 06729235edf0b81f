#pragma once

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace orbelantine::test {

using Cells = std::vector<std::string>;

inline Cells split(const std::string& text, char separator) {
    Cells cells;
    std::istringstream stream(text);
    for (std::string cell; std::getline(stream, cell, separator);)
        cells.push_back(cell);
    return cells;
}

/// The rows of a file that traces/make_traces.py wrote, with its header.
inline std::vector<Cells> readTrace(const std::string& name) {
    std::ifstream file(std::string(ORBELANTINE_TRACES) + "/" + name);
    std::vector<Cells> rows;
    for (std::string line; std::getline(file, line);)
        rows.push_back(split(line, ','));
    if (rows.size() < 2)
        throw std::runtime_error("no rows in " + name);
    return rows;
}

} // namespace orbelantine::test
