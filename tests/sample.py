"""What the tests of the documents' samples share."""

import pathlib
import re
import sys
import time


def require_same(document, source, language="csharp", main="static int Main"):
    """The first program of the document in that language is the source that was compiled."""
    shown = [code for code in re.findall(rf"```{language}\n(.*?)```", pathlib.Path(document).read_text(), re.S)
             if main in code]
    if not shown or shown[0] != pathlib.Path(source).read_text():
        sys.exit(f"{document} shows another program than {source}")


def wait_for(path):
    """Until a virtual program has made its ready file."""
    end = time.monotonic() + 10
    while not path.exists():
        if time.monotonic() > end:
            sys.exit(f"{path} was not there within 10 seconds")
        time.sleep(0.02)
