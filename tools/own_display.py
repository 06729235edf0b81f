#!/usr/bin/env python3
"""own_display.py COMMAND...: runs a command with an X display of its own, without a screen. 77 where there can be none."""

import contextlib
import os
import shutil
import subprocess
import sys

SKIPPED = 77


class NoDisplay(Exception):
    """Why there can be none."""


@contextlib.contextmanager
def running(command, **options):
    """A process that Ctrl-C doesn't reach: it is ended here."""
    process = subprocess.Popen(command, start_new_session=True, **options)
    try:
        yield process
    finally:
        process.terminate()
        process.wait()


@contextlib.contextmanager
def own_display(*programs):
    """The display's name. `programs` are wanted beside the server."""
    packages = {"Xvfb": "xvfb"}
    missing = [packages.get(program, program) for program in ("Xvfb", *programs) if not shutil.which(program)]
    if missing:
        raise NoDisplay(f"a display without a screen needs {' and '.join(missing)}: apt-get install {' '.join(missing)}")
    read, write = os.pipe()
    command = ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24", "-nolisten", "tcp"]
    with running(command, pass_fds=[write], stderr=subprocess.DEVNULL):
        os.close(write)
        with os.fdopen(read) as said:
            number = said.readline().strip()
        if not number:
            raise NoDisplay("Xvfb did not start")
        yield ":" + number


def main():
    try:
        with own_display() as display:
            return subprocess.run(sys.argv[1:], env=os.environ | {"DISPLAY": display}, check=False).returncode
    except NoDisplay as failure:
        print(f"own_display: {failure}", file=sys.stderr)
        return SKIPPED
    except KeyboardInterrupt:
        return 130


if __name__ == "__main__":
    sys.exit(main())
