#!/usr/bin/env python3
"""two_processes.py DOCUMENT SOURCE COMMAND...: the document shows the server as it is compiled, and the command,
which plays it with a client, succeeds."""

import subprocess
import sys

from sample import require_same

document, source, *command = sys.argv[1:]
require_same(document, source, "cpp", "int main")
sys.exit(subprocess.run(command, check=False).returncode)
