#pragma once

#include "ipc/pipe/PipeDuplexHandler.h"

#include <array>
#include <memory>

namespace orbelantine::test {

enum Side { kServer, kClient };

/// The two ends of a pipe of the system's, joined within this process. Messages are kept apart on
/// the server's side at least.
class PipePair {
  public:
    PipePair();

    ~PipePair() {
        close(kServer);
        close(kClient);
    }

    PipePair(const PipePair&) = delete;
    PipePair& operator=(const PipePair&) = delete;

    [[nodiscard]] std::unique_ptr<TransferApi> api(Side) { return TransferApi::system(); }

    [[nodiscard]] PipeDuplexHandler::Pipe& end(Side side) { return mEnds.at(side); }

    void close(Side side);

  private:
    std::array<PipeDuplexHandler::Pipe, 2> mEnds{kInvalidPipeHandle, kInvalidPipeHandle};
};

} // namespace orbelantine::test
