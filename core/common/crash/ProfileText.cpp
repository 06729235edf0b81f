#include "core/common/crash/ProfileText.h"

#include <boost/algorithm/string/predicate.hpp>

#include <algorithm>
#include <cstddef>
#include <locale>

namespace orbelantine {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

std::string_view trimmed(std::string_view text) {
    const auto begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

bool sameName(std::string_view a, std::string_view b) {
    return boost::iequals(a, b, std::locale::classic());
}

bool isHeading(std::string_view line) {
    const std::string_view text = trimmed(line);
    return text.starts_with('[') && text.find(']') != std::string_view::npos;
}

std::string_view headingOf(std::string_view line) {
    const std::string_view text = trimmed(line).substr(1);
    return trimmed(text.substr(0, text.find(']')));
}

bool isContent(std::string_view line) {
    const std::string_view text = trimmed(line);
    return !text.empty() && !text.starts_with(';');
}

int digitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    const int letter = c | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : 16;
}

} // namespace

ProfileText::ProfileText(std::string_view text) {
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        mLines.emplace_back(line.substr(0, line.size() - (line.ends_with('\r') ? 1 : 0)));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
}

ProfileText::Range ProfileText::find(std::string_view section) const {
    Range range;
    for (std::size_t i = 0; i < mLines.size(); ++i) {
        if (!isHeading(mLines[i]))
            continue;
        if (range.found) {
            range.end = i;
            return range;
        }
        range.found = sameName(headingOf(mLines[i]), section);
        range.begin = i + 1;
    }
    range.end = mLines.size();
    return range.found ? range : Range{};
}

std::size_t ProfileText::findKey(const Range& range, std::string_view key) const {
    std::size_t i = range.begin;
    while (i < range.end) {
        const std::string_view line = mLines[i];
        const auto sign = line.find('=');
        if (isContent(line) && sign != std::string_view::npos &&
            sameName(trimmed(line.substr(0, sign)), key))
            break;
        ++i;
    }
    return i;
}

std::optional<std::string> ProfileText::value(std::string_view section,
                                              std::string_view key) const {
    const Range range = find(section);
    const std::size_t found = findKey(range, key);
    if (found == range.end)
        return std::nullopt;
    const std::string_view line = mLines[found];
    return std::string(trimmed(line.substr(line.find('=') + 1)));
}

std::vector<std::string> ProfileText::lines(std::string_view section) const {
    std::vector<std::string> contents;
    const Range range = find(section);
    for (std::size_t i = range.begin; i < range.end; ++i)
        if (isContent(mLines[i]))
            contents.emplace_back(trimmed(mLines[i]));
    return contents;
}

void ProfileText::set(std::string_view section, std::string_view key, std::string_view value) {
    std::string line(key);
    line.append("=").append(value);
    const Range range = find(section);
    if (!range.found) {
        std::string heading("[");
        mLines.push_back(heading.append(section).append("]"));
        mLines.push_back(std::move(line));
        return;
    }
    const std::size_t found = findKey(range, key);
    if (found < range.end) {
        mLines[found] = std::move(line);
        return;
    }
    std::size_t end = range.end;
    while (end > range.begin && trimmed(mLines[end - 1]).empty())
        --end;
    mLines.insert(mLines.begin() + static_cast<std::ptrdiff_t>(end), std::move(line));
}

void ProfileText::removeKey(std::string_view section, std::string_view key) {
    const Range range = find(section);
    const std::size_t found = findKey(range, key);
    if (found < range.end)
        mLines.erase(mLines.begin() + static_cast<std::ptrdiff_t>(found));
}

void ProfileText::removeSection(std::string_view section) {
    const Range range = find(section);
    if (range.found)
        mLines.erase(mLines.begin() + static_cast<std::ptrdiff_t>(range.begin - 1),
                     mLines.begin() + static_cast<std::ptrdiff_t>(range.end));
}

std::string ProfileText::text() const {
    std::string all;
    for (const std::string& line : mLines)
        all.append(line).append("\r\n");
    return all;
}

std::uint32_t profileNumber(std::string_view value) {
    std::string_view digits = trimmed(value);
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+'))
        digits.remove_prefix(1);
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        digits.remove_prefix(2);
        base = 16;
    }
    std::uint32_t number = 0;
    for (const char c : digits) {
        if (digitOf(c) >= base)
            break;
        number = number * static_cast<std::uint32_t>(base) + static_cast<std::uint32_t>(digitOf(c));
    }
    return negative ? 0 - number : number;
}

} // namespace orbelantine
