// Talks to a server that SIGNER has signed: client NAME SIGNER
#include "examples/two_processes/Talk.h"
#include "ipc/IIPCEndpoint.h"
#include "ipc/OsalPipe.h"

#include <algorithm>

using namespace orbelantine;

// Sends the message and reads until as much has come back: what it was, or less with `ec` set.
static std::string echoed(IIPCEndpoint& endpoint, const std::string& message, error_code& ec) {
    std::string answer(message.size(), '\0');
    int sent = 0;
    int count = 0;
    const int size = static_cast<int>(message.size());
    for (; sent < size && !ec; sent += 64 * 1024) {
        const int end = std::min(size, sent + 64 * 1024);
        endpoint.write(message.data() + sent, end - sent, ec);
        while (!ec && count < end)
            count += endpoint.readSome(answer.data() + count, end - count, ec);
    }
    answer.resize(static_cast<std::size_t>(count));
    return answer;
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: client NAME SIGNER\n";
        return 2;
    }
    initOsalPipe();
    const auto endpoint = osalCreate<IIPCEndpoint>(OSALFactory::instance(), "IIPCEndpoint",
                                                   onlySignedBy(argv[2]), "");
    error_code ec;
    endpoint->connect(argv[1], ec);
    if (ec)
        return failed("no server", ec);

    for (const std::string& message : {std::string("hello"), std::string(1024 * 1024, 'x')}) {
        const std::string answer = echoed(*endpoint, message, ec);
        if (ec)
            return failed("the talk is over", ec);
        std::cout << "sent " << message.size() << " bytes, "
                  << (answer == message ? "the same" : "others") << " came back\n";
    }
    endpoint->close(ec);
}
