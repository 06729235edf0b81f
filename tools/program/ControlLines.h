#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orbelantine::phone {

/// The words of a line, without the blanks between them.
[[nodiscard]] inline std::vector<std::string_view> wordsOf(std::string_view line) {
    constexpr std::string_view kBlanks = " \t\r";
    std::vector<std::string_view> words;
    for (std::size_t begin = line.find_first_not_of(kBlanks); begin != std::string_view::npos;) {
        const std::size_t end = std::min(line.find_first_of(kBlanks, begin), line.size());
        words.push_back(line.substr(begin, end - begin));
        begin = line.find_first_not_of(kBlanks, end);
    }
    return words;
}

/// A word with which a running program is told something, and what follows it on its line.
template <class Target>
struct ControlCommand {
    std::string_view name;
    std::size_t leastWords;
    std::size_t mostWords;
    /// Ends the sentence "name wants ...".
    const char* wants;
    /// False where the words won't do.
    bool (Target::*apply)(std::span<const std::string_view> words);
};

/// Lines for a running program: bytes in any pieces to commands of `Target`.
template <class Target>
class ControlLines {
  public:
    static constexpr std::size_t kMaxLine = 256;

    /// Gets what is wrong with a line that has no effect.
    using Complain = std::function<void(const std::string&)>;

    /// `target` and the commands outlive this.
    ControlLines(Target& target, std::span<const ControlCommand<Target>> commands,
                 Complain complain)
        : mTarget(target)
        , mCommands(commands)
        , mComplain(std::move(complain)) {}

    /// A line counts once its end has come.
    void receive(std::string_view bytes) {
        for (const char c : bytes) {
            if (c == '\n') {
                take(mLine);
                mLine.clear();
            } else if (mLine.size() <= kMaxLine) {
                mLine += c;
            }
        }
    }

  private:
    void take(std::string_view line) {
        if (line.size() > kMaxLine)
            return mComplain("a control line is longer than 256 bytes");
        const std::vector<std::string_view> words = wordsOf(line);
        const auto command = words.empty() ? mCommands.end()
                                           : std::ranges::find(mCommands, words.front(),
                                                               &ControlCommand<Target>::name);
        const std::string shown = "'" + std::string(line) + "'";
        if (command == mCommands.end())
            return mComplain("unknown control line " + shown);
        const auto arguments = std::span(words).subspan(1);
        if (arguments.size() < command->leastWords || arguments.size() > command->mostWords ||
            !(mTarget.*command->apply)(arguments))
            mComplain(std::string(command->name) + " wants " + command->wants + ", not " + shown);
    }

    Target& mTarget;
    const std::span<const ControlCommand<Target>> mCommands;
    const Complain mComplain;
    std::string mLine;
};

} // namespace orbelantine::phone
