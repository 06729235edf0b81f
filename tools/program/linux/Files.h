#pragma once

#include <iosfwd>
#include <string>

namespace orbelantine::phone {

/// Throws std::runtime_error with a line for the user, as the others here do.
[[noreturn]] void failToWrite(const std::string& path);

void writeFile(const std::string& path, const std::string& text);

/// Opens a log anew; none for the empty path.
void openLog(std::ofstream& file, const std::string& path);

/// Stands while a program can be used. It appears with its content, never before it; none for the
/// empty path.
class ReadyFile {
  public:
    ReadyFile(std::string path, const std::string& content);
    ReadyFile(const ReadyFile&) = delete;
    ReadyFile& operator=(const ReadyFile&) = delete;
    ~ReadyFile();

  private:
    std::string mPath;
};

} // namespace orbelantine::phone
