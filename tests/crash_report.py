#!/usr/bin/env python3
"""crash_report.py DOCUMENT SOURCE COMMAND...: the document shows the sample as it is compiled; it dies on purpose, and
its next run shows the record, once."""

import os
import subprocess
import sys
import tempfile

from sample import require_same

document, source, *command = sys.argv[1:]
require_same(document, source)


def run(folder, *arguments):
    return subprocess.run([*command, *arguments], env={**os.environ, "TMPDIR": folder}, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, timeout=60)


with tempfile.TemporaryDirectory() as folder:
    first, second, third = run(folder, "--crash"), run(folder), run(folder)
faults = []
if first.returncode == 0 or "0 crashes" not in first.stdout:
    faults.append(f"it ended with {first.returncode} after {first.stdout!r}")
for told in ("ExceptionCode=0xc0000005", "StackTrace00=liborbelantine.so! ", "1 crashes since the last run"):
    if told not in second.stdout:
        faults.append(f"the next run doesn't show '{told}'")
if "0 crashes" not in third.stdout or second.returncode or third.returncode:
    faults.append("the record is shown again")
for fault in faults:
    print(fault, file=sys.stderr)
print(second.stdout)
sys.exit(1 if faults else 0)
