#!/usr/bin/env python3
"""two_processes.py FOLDER [RUNNER...]: two signed processes talk over a pipe, and are refused where one is not
what was signed. FOLDER holds acme/, mallory/ and trust/, as the build makes them; RUNNER runs their programs."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import textwrap

REFUSED = 3
PATIENCE = 60  # s


def copy(folder, program, work, change=None, signature=True):
    """The program in a folder of its own, beside its signature where that is a file."""
    source = next(path for path in (folder / program, folder / f"{program}.exe") if path.exists())
    target = work / source.name
    code = source.read_bytes()
    target.write_bytes(code.replace(*change) if change else code)
    target.chmod(0o755)
    beside = source.with_name(source.name + ".p7s")
    if signature and beside.exists():
        shutil.copy(beside, target.with_name(beside.name))
    return target


def play(runner, server, client, environment):
    """What server and client said, and their statuses."""
    def start(program):
        return subprocess.Popen([*runner, program, "two-processes", "^Acme$"], env=environment,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    with start(server) as serving, start(client) as talking:
        try:
            said = [process.communicate(timeout=PATIENCE)[0] for process in (talking, serving)]
        except subprocess.TimeoutExpired:
            sys.exit(f"two_processes: no end within {PATIENCE} seconds")
        finally:
            for process in (serving, talking):
                process.kill()
    return (said[1], serving.returncode), (said[0], talking.returncode)


# A scene: the folders of server and client, what is done to their files, and who refuses.
CHANGED = {"change": (b"usage: ", b"Usage: ")}
SCENES = (
    ("both as they were signed", ("acme", {}), ("acme", {}), None),
    ("a byte of the client is another", ("acme", {}), ("acme", CHANGED), "server"),
    ("a byte of the server is another", ("acme", CHANGED), ("acme", {}), "client"),
    ("another has signed the client", ("acme", {}), ("mallory", {}), "server"),
    ("another has signed the server", ("mallory", {}), ("acme", {}), "client"),
    ("nobody has signed the client", ("acme", {}), ("unsigned", {"signature": False}), "server"),
)


def as_told(server, client, refusing):
    """Whether the scene went as it should: all came back, or who must refuse did, and nothing came back."""
    came_back = "1048576 bytes, the same" in client[0]
    if refusing is None:
        return came_back and server[1] == client[1] == 0
    return not came_back and (server if refusing == "server" else client)[1] == REFUSED


def show(rows):
    widths = (34, 44, 44)
    for row in rows:
        cells = [textwrap.wrap(" / ".join(cell.split("\n")), width) or [""] for cell, width in zip(row, widths)]
        for line in range(max(map(len, cells))):
            print("  ".join((cell[line] if line < len(cell) else "").ljust(width)
                            for cell, width in zip(cells, widths)).rstrip())
        print()


def main():
    if len(sys.argv) < 2 or not pathlib.Path(sys.argv[1], "trust").is_dir():
        sys.exit(__doc__)
    folder, runner = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
    rows, wrong = [("what", "the server says", "the client says")], []
    with tempfile.TemporaryDirectory() as temporary:
        # Of the user alone, wherever the build is: nobody would be trusted in a folder that others may write.
        anchors = pathlib.Path(temporary, "trust")
        anchors.mkdir(mode=0o700)
        for anchor in (folder / "trust").iterdir():
            shutil.copyfile(anchor, anchors / anchor.name)
            (anchors / anchor.name).chmod(0o600)
        environment = {**os.environ, "ORBELANTINE_TRUST_DIR": str(anchors), "ORBELANTINE_PIPE_DIR": f"{temporary}/pipes"}
        for number, (what, server, client, refusing) in enumerate(SCENES):
            programs = []
            for name, (signer, changes) in (("server", server), ("client", client)):
                work = pathlib.Path(temporary, str(number), name)
                work.mkdir(parents=True)
                programs.append(copy(folder / signer, name, work, **changes))
            server_end, client_end = play(runner, *programs, environment)
            rows.append((what, server_end[0].strip(), client_end[0].strip()))
            if not as_told(server_end, client_end, refusing):
                wrong.append(what)
    show(rows)
    if wrong:
        sys.exit(f"two_processes: it went otherwise: {'; '.join(wrong)}")


try:
    main()
except KeyboardInterrupt:
    sys.exit(130)
