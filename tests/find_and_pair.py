#!/usr/bin/env python3
"""find_and_pair.py DOCUMENT SOURCE STACK COMMAND...: the document shows the program as it is compiled,
and the program pairs with a device of a virtual stack, and with none that isn't there."""

import os
import pathlib
import subprocess
import sys
import tempfile

from sample import require_same, wait_for


def run(command, name, bus):
    return subprocess.run([*command, name], capture_output=True, text=True, timeout=60,
                          env={**os.environ, "DBUS_SYSTEM_BUS_ADDRESS": bus})


def main():
    document, source, stack, *command = sys.argv[1:]
    require_same(document, source)
    with tempfile.TemporaryDirectory(dir="/tmp") as folder:
        ready, log = pathlib.Path(folder) / "ready", pathlib.Path(folder) / "log.jsonl"
        with subprocess.Popen([stack, "--ready-file", ready, "--log", log, "--device", "00:00:00:00:00:07=Ears=headset",
                               "--device", "00:11:22:33:44:55=Handy"], stdout=subprocess.DEVNULL) as server:
            wait_for(ready)
            result = run(command, "Handy", ready.read_text().strip())
            server.terminate()
        if result.returncode != 0 or "2 peers\nHandy is paired\n" not in result.stdout:
            sys.exit(f"status {result.returncode}: {result.stdout}{result.stderr}")
        if '"paired"' not in log.read_text():
            sys.exit("the stack has paired nobody")


main()
