#!/usr/bin/env python3
"""played_sample.py DOCUMENT SOURCE LANGUAGE MAIN COMMAND...: the document shows the program with that main function as
it is compiled, and the command, which plays it, succeeds."""

import subprocess
import sys

from sample import require_same

document, source, language, main, *command = sys.argv[1:]
require_same(document, source, language, main)
sys.exit(subprocess.run(command, check=False).returncode)
