#pragma once

#include "ipc/pipe/PipeDuplexHandler.h"
#include "tests/ipc/PipeFolder.h"
#include "tests/ipc/TestPipe.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace orbelantine::test {

enum Side { kServer, kClient };

/// The two ends of a pipe of the system's, joined within this process. Messages are kept apart on
/// the server's side at least.
class PipePair {
  public:
    PipePair() {
        const PipeFolder folder;
        Served server(folder.fullName());
        auto client = joining(folder.fullName());
        EXPECT_EQ(server.accept(), 0U);
        mEnds[kServer] = server.take();
        mEnds[kClient] = client.get().pipe;
    }

    ~PipePair() {
        close(kServer);
        close(kClient);
    }

    PipePair(const PipePair&) = delete;
    PipePair& operator=(const PipePair&) = delete;

    [[nodiscard]] std::unique_ptr<TransferApi> api(Side) { return TransferApi::system(); }

    [[nodiscard]] PipeDuplexHandler::Pipe& end(Side side) { return mEnds.at(side); }

    void close(Side side) {
        const PipeHandle end = this->end(side).exchange(kInvalidPipeHandle);
        if (end != kInvalidPipeHandle)
            PipeApi::system().closeHandle(end);
    }

  private:
    std::array<PipeDuplexHandler::Pipe, 2> mEnds{kInvalidPipeHandle, kInvalidPipeHandle};
};

} // namespace orbelantine::test
