#pragma once

#include "tools/program/linux/FileDescriptor.h"

#include <string>

namespace orbelantine::phone {

class Control;

/// The FIFO with the control's lines, for as long as it lives. Writers may come and go.
class ControlPipe {
  public:
    /// Makes the FIFO, for its owner alone, and replaces one that no one reads. Throws
    /// std::runtime_error with a line for the user. `control` outlives the pipe.
    ControlPipe(std::string path, Control& control);
    ControlPipe(const ControlPipe&) = delete;
    ControlPipe& operator=(const ControlPipe&) = delete;
    ~ControlPipe();

    /// Readable when read() has something to do.
    [[nodiscard]] int descriptor() const { return mReader.get(); }

    /// Takes what has been written so far.
    void read();

  private:
    std::string mPath;
    Control& mControl;
    FileDescriptor mReader;
};

} // namespace orbelantine::phone
