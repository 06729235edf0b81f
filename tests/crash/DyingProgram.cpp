// dying_program FOLDER DEATH: sets the handler, with its log in the folder and its records in the
// folder's "records", and dies. Without a death it lists the records that are there. How each death
// ends is in deaths.py.
#include "core/common/crash/CExceptionHandler.h"
#include "core/common/log/Log.h"
#include "tests/crash/Deaths.h"

#include <boost/nowide/convert.hpp>

#include <cstdio>
#include <cstring>
#include <string>

using namespace orbelantine;
using namespace orbelantine::test;

namespace {

int listRecords() {
    CExceptionHandler handler;
    for (const std::wstring& line : handler.GetLatestCrashes())
        std::printf("%s\n", boost::nowide::narrow(line).c_str());
    return 0;
}

const Death* findDeath(const char* name) {
    for (const auto all : {deaths(), platformDeaths()})
        for (const Death& death : all)
            if (std::strcmp(death.name, name) == 0)
                return &death;
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2)
        return 64;
    useTemporaryFolder((argv[1] + std::string("/records")).c_str());
    set_log_folder(boost::nowide::widen(argv[1]).c_str());
    set_log_level(kLogWarning);
    if (argc == 2)
        return listRecords();
    const Death* const death = findDeath(argv[2]);
    if (death == nullptr)
        return 65;
    return dieOf(*death);
}
