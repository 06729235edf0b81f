#pragma once

#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace orbelantine::test {

/// The built library as a host sees it: loaded from the program's own folder and called through
/// its flat exports alone.
class Library {
  public:
    /// Loads it, and registers for every module callbacks that keep what they are told.
    static Library& instance();

    /// An export of a module by the part of its name that says what it does.
    template <class Function>
    Function* call(const std::string& module, const std::string& rest) {
        return symbol<Function>("CSharp_OrbelantinefSwigf" + module + "_" + rest + "___");
    }

    template <class Function>
    Function* symbol(const std::string& name) {
        return &mLibrary.get<Function>(name);
    }

    /// The same for the module `common`.
    template <class Function>
    Function* common(const std::string& rest) {
        return call<Function>("common", rest);
    }

    [[nodiscard]] bool has(const std::string& symbol) const { return mLibrary.has(symbol); }

    /// What an export reported instead of a result; taken by reading it.
    struct ArgumentError {
        std::string kind;
        std::optional<std::string> message;
        std::optional<std::string> parameter;
        bool operator==(const ArgumentError&) const = default;

        friend std::ostream& operator<<(std::ostream& out, const ArgumentError& error) {
            return out << error.kind << " \"" << error.message.value_or("(null)") << "\" \""
                       << error.parameter.value_or("(null)") << '"';
        }
    };

    [[nodiscard]] std::optional<ArgumentError> takeError();

    /// The text behind a text result, which is an address here as for any host.
    [[nodiscard]] std::string takeText(void* result);
    [[nodiscard]] std::u16string takeWideText(void* result);

  private:
    Library();
    void registerModule(const std::string& module);

    boost::dll::shared_library mLibrary;
};

/// The modules by the suffixes of their registrations.
const std::vector<std::string>& registeredModules();

} // namespace orbelantine::test
