#include "tools/program/linux/Files.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace orbelantine::phone {

void failToWrite(const std::string& path) {
    throw std::runtime_error("cannot write " + path + ": " + std::strerror(errno));
}

void writeFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::trunc);
    if (!(file << text << std::flush))
        failToWrite(path);
}

void openLog(std::ofstream& file, const std::string& path) {
    if (path.empty())
        return;
    file.open(path, std::ios::trunc);
    if (!file)
        failToWrite(path);
}

ReadyFile::ReadyFile(std::string path, const std::string& content)
    : mPath(std::move(path)) {
    if (mPath.empty())
        return;
    const std::string unfinished = mPath + ".new";
    writeFile(unfinished, content);
    if (std::rename(unfinished.c_str(), mPath.c_str()) != 0)
        failToWrite(mPath);
}

ReadyFile::~ReadyFile() {
    if (!mPath.empty())
        ::unlink(mPath.c_str());
}

} // namespace orbelantine::phone
