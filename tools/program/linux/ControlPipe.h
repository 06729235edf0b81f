#pragma once

#include "core/common/types/linux/FileDescriptor.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace orbelantine::phone {

/// The FIFO with the control's lines, for as long as it lives. Writers may come and go.
class ControlPipe {
  public:
    /// Makes the FIFO, for its owner alone, and replaces one that no one reads. Throws
    /// std::runtime_error with a line for the user. `control` receives what is written, in any
    /// pieces, and outlives the pipe.
    template <class Control>
    ControlPipe(std::string path, Control& control)
        : ControlPipe(std::move(path),
                      Receive([&control](auto bytes) { control.receive(bytes); })) {}

    ControlPipe(const ControlPipe&) = delete;
    ControlPipe& operator=(const ControlPipe&) = delete;
    ~ControlPipe();

    /// Readable when read() has something to do.
    [[nodiscard]] int descriptor() const { return mReader.get(); }

    /// Takes what has been written so far.
    void read();

  private:
    using Receive = std::function<void(std::string_view bytes)>;

    ControlPipe(std::string path, Receive receive);

    std::string mPath;
    Receive mReceive;
    FileDescriptor mReader;
};

} // namespace orbelantine::phone
