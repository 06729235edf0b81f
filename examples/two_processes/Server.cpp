// Takes one client that SIGNER has signed, and gives it back what it says: server NAME SIGNER
#include "examples/two_processes/Talk.h"
#include "ipc/IIPCEndpoint.h"
#include "ipc/IIPCServer.h"
#include "ipc/OsalPipe.h"

#include <vector>

using namespace orbelantine;

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: server NAME SIGNER\n";
        return 2;
    }
    initOsalPipe();
    const auto server =
        osalCreate<IIPCServer>(OSALFactory::instance(), "IIPCServer", onlySignedBy(argv[2]), "");
    error_code ec;
    server->create(argv[1], ec);
    const auto client = server->accept(ec);
    if (!client)
        return failed("no client", ec);

    std::vector<char> buffer(64 * 1024);
    long long bytes = 0;
    while (const int count = client->readSome(buffer.data(), static_cast<int>(buffer.size()), ec)) {
        client->write(buffer.data(), count, ec);
        bytes += count;
    }
    std::cout << "gave back " << bytes << " bytes; then: " << reason(ec) << "\n";
}
