#!/usr/bin/env python3
"""typed_session.py DEMO BUILD_DIR: plays a session typed at a terminal, with a mistake in it."""

import os
import pty
import subprocess
import sys

TYPED = b"click 100\ntype hi\nquit\n"
ANSWERS = [
    "not played: click wants X and Y",
    "  type 2 characters",
    '"hi"',
    "The phone received all that was sent.",
]


def main():
    terminal, end = pty.openpty()
    with subprocess.Popen([*sys.argv[1:], "-"], stdin=end, stdout=subprocess.PIPE, text=True) as demo:
        os.close(end)
        os.write(terminal, TYPED)
        said = demo.communicate(timeout=60)[0]
    missing = [answer for answer in ANSWERS if answer not in said]
    if demo.returncode != 0 or missing:
        sys.exit(f"status {demo.returncode}, without {missing}:\n{said}")


main()
