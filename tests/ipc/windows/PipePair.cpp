#include "tests/ipc/PipePair.h"

#include "tests/ipc/windows/TestPipe.h"

#include <system_error>

namespace orbelantine::test {

namespace {

void require(PipeApi::Error error) {
    if (error != 0)
        throw std::system_error(static_cast<int>(error), std::system_category());
}

} // namespace

PipePair::PipePair() {
    PipeApi& pipes = PipeApi::system();
    const std::string name = testPipeName();
    PipeHandle end = kInvalidPipeHandle;
    require(pipes.createNamedPipe(name, kTestPipe, nullptr, end));
    mEnds[kServer] = end;
    require(pipes.createFile(name, kTestPipeAccess, kTestPipeFlags, end));
    mEnds[kClient] = end;
}

void PipePair::close(Side side) {
    const PipeHandle end = this->end(side).exchange(kInvalidPipeHandle);
    if (end != kInvalidPipeHandle)
        PipeApi::system().closeHandle(end);
}

} // namespace orbelantine::test
