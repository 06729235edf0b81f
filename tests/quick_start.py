#!/usr/bin/env python3
"""quick_start.py README SOURCE PHONE COMMAND...: the README shows the program as it is compiled, and
the program does on a virtual phone what the README says."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile

from sample import require_same, wait_for

ADDRESS = "00:11:22:33:44:55"


def played(folder, phone, command):
    """What the phone has received of the program."""
    devices, ready, log = folder / "devices", folder / "ready", folder / "log.jsonl"
    devices.mkdir()
    with subprocess.Popen([phone, "--devices", devices, "--ready-file", ready, "--log", log,
                           "--acceleration", "android"], stdout=subprocess.DEVNULL) as server:
        wait_for(ready)
        subprocess.run([*command, ADDRESS], cwd=folder, check=True, timeout=60,
                       env={**os.environ, "ORBELANTINE_DEVICE_DIR": str(devices)})
        server.terminate()
    return [json.loads(line) for line in log.read_text().splitlines()]


def main():
    readme, source, phone, *command = sys.argv[1:]
    require_same(readme, source)
    with tempfile.TemporaryDirectory(dir="/tmp") as folder:
        events = played(pathlib.Path(folder), phone, command)
    typed = "".join(event["typed"] for event in events if event["event"] == "keyboard")
    presses = [(event["x"], event["y"]) for event in events if event["event"] == "press"]
    if typed != "a" or presses != [(540, 1170)]:
        sys.exit(f"the phone has {typed!r} typed and was pressed at {presses}")


main()
