#!/usr/bin/env python3
"""hand_over_wine.py FOLDER COMMAND...: a user's hand over a real window of Windows, whose test COMMAND runs under Wine.
FOLDER is for Wine's files."""

import os
import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "tools"))
from own_display import NoDisplay, own_display, running  # pylint: disable=wrong-import-position

# A double click, a right click, keys with an extended one among them, the last as the sign of the end.
HAND = """mousemove 50 60
sleep 0.3
click --repeat 2 --delay 40 1
mousemove 70 80
click 3
key a
key Right
key Escape
"""


def play(command, environment):
    environment |= {"ORBELANTINE_HAND": "1"}
    with running([*command, "--gtest_filter=RealWindowTest.AHands*"], env=environment, stdout=subprocess.PIPE, text=True) as test:
        said = ""
        for line in test.stdout:
            said += line
            if line.strip() == "ready":
                subprocess.run(["xdotool", "-"], input=HAND, env=environment, text=True, check=True)
        test.wait()
        print(said)
        # Wine's exit status alone says nothing.
        return 0 if "[  PASSED  ] 1 test." in said else 1


def main():
    try:
        with own_display("xdotool") as display:
            environment = os.environ | {"DISPLAY": display, "WINEPREFIX": sys.argv[1], "WINEDEBUG": "-all"}
            # The first makes Wine's files.
            subprocess.run([sys.argv[2], "wineboot", "-i"], env=environment, stdout=subprocess.DEVNULL,
                           stderr=subprocess.DEVNULL, check=False)
            return play(sys.argv[2:], environment)
    except NoDisplay as failure:
        print(failure)
        return 77


if __name__ == "__main__":
    sys.exit(main())
