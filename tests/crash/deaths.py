#!/usr/bin/env python3
"""deaths.py HOST COMMAND... [--DEATH...]: lets the program die in every way it knows, and compares what is left of
each with the table below: how the process ended, how many records there are, and what they say."""

import os
import re
import resource
import signal
import shutil
import subprocess
import sys
import tempfile
import time

BOUND = 5.0  # how long a crash is recorded at most
SLACK = {"linux": 2.0, "windows": 20.0, "dotnet": 30.0, "mono": 30.0}

# Of each death: how the process ends (a signal of Linux, an exit code of Windows modulo 256), how many records it
# leaves, the code and the function that the last of them tells. None stands for what isn't there.
ACCESS, OVERFLOW, DIVISION, ABORT = "0xc0000005", "0xc00000fd", "0xc0000094", "0x40000015"
DEATHS = {
    "linux": {
        "null_write": ("SEGV", 1, ACCESS, "writeNowhere"),
        "null_call": ("SEGV", 1, ACCESS, "callNowhere"),
        "stack_overflow": ("SEGV", 1, OVERFLOW, "overflowStack"),
        "division": ("FPE", 1, DIVISION, "divideByZero"),
        "abort": ("ABRT", 1, ABORT, None),
        "terminate": ("ABRT", 1, None, None),
        "exception": ("ABRT", 1, None, "throwUncaught"),
        "own_terminate": ("ABRT", 1, ABORT, None),
        "no_memory": ("ABRT", 2, None, "takeAllMemory"),
        "broken_heap": ("ABRT", 1, ABORT, "breakHeap"),
        "worker": ("SEGV", 1, ACCESS, "writeNowhere"),
        "worker_overflow": ("SEGV", 1, OVERFLOW, "overflowStack"),
        "two_threads": ("SEGV", 1, ACCESS, "writeNowhere"),
        "during_exit": ("SEGV", 1, ACCESS, "writeNowhere"),
        "in_log": ("SEGV", 1, ACCESS, "writeNowhere"),
        "on_purpose": ("SEGV", 1, ACCESS, "Crash"),
        "no_action": ("SEGV", 1, ACCESS, "writeNowhere"),
        "while_recording": ("SEGV", 0, ACCESS, None),
        "unset": ("SEGV", 0, None, None),
        "in_child": (0, 0, None, None),
        "used_up_memory": ("ABRT", 2, None, None),
        "host_handler": (42, 1, ACCESS, "writeNowhere"),
        "lost_stack": ("SEGV", 1, OVERFLOW, "loseStack"),
        "full_disk": ("SEGV", 0, None, None),
        "no_folder": ("SEGV", 0, None, None),
    },
    "windows": {
        "null_write": (5, 1, ACCESS, "writeNowhere"),
        "null_call": (5, 1, ACCESS, None),
        "stack_overflow": (0xFD, 1, OVERFLOW, None),
        "division": (0x94, 1, DIVISION, "divideByZero"),
        # The run time's own end, which no handler learns of.
        "abort": (3, 0, None, None),
        "terminate": (3, 1, None, None),
        "exception": (3, 1, None, None),
        "own_terminate": (3, 0, None, None),
        "no_memory": (3, 2, None, None),
        "worker": (5, 1, ACCESS, "writeNowhere"),
        "worker_overflow": (0xFD, 1, OVERFLOW, None),
        "two_threads": (5, 1, ACCESS, "writeNowhere"),
        "during_exit": (5, 1, ACCESS, "writeNowhere"),
        "in_log": (1, 1, ACCESS, "writeNowhere"),
        "on_purpose": (5, 1, ACCESS, "Crash"),
        "no_action": (5, 1, ACCESS, "writeNowhere"),
        "while_recording": (5, 0, ACCESS, None),
        "unset": (5, 0, None, None),
        "library": (5, 1, ACCESS, "CExceptionHandler::Crash"),
        "invalid_parameter": (3, 1, None, None),
        "managed": (0x52, 1, "0xe0434352", None),
        "no_folder": (5, 0, None, None),
    },
}
# A program in C#, under each of its run times.
MANAGED = {
    "on_purpose": ("SEGV", 1, ACCESS, "Crash"),
    "thread": ("SEGV", 1, ACCESS, "Crash"),
    "pool": ("SEGV", 1, ACCESS, "Crash"),
    "callback": ("SEGV", 1, ACCESS, "Crash"),
    "unreferenced": ("SEGV", 1, ACCESS, "Crash"),
    "disposed": ("SEGV", 0, None, None),
    "managed": ("ABRT", 0, None, None),
    "null_references": (0, 0, None, None),
}
DEATHS["dotnet"] = MANAGED
# Mono's own handler and its own end.
DEATHS["mono"] = {**MANAGED, "disposed": ("ABRT", 0, None, None), "managed": (1, 0, None, None)}
# Without its symbols, which the records are read with.
DEATHS["linux"]["stripped"] = DEATHS["linux"]["null_write"]
DEATHS["windows"]["stripped"] = DEATHS["windows"]["null_write"]

# What takes the whole bound: the log's lock is with the thread that died.
SLOW = {"in_log"}
LOGGED = {"linux", "windows"}
# The library has a log of its own, which nobody has turned on.
NOT_LOGGED = {"in_log", "while_recording", "full_disk", "library"}

# By the name of the process's program.
PROGRAMS = {"linux": "dying_program", "windows": "dying_program", "dotnet": "dotnet", "mono": "mono-sgen"}
LOG = "lumiport.dying_program.log"


def limit_files():
    # No file gets anything written.
    resource.setrlimit(resource.RLIMIT_FSIZE, (0, 0))




def records_path(host):
    return f"records/{PROGRAMS[host]}.dmpini"


def own_path(host, folder):
    return folder if host == "linux" else "Z:" + folder.replace("/", "\\")


def text_of(folder, name):
    try:
        with open(os.path.join(folder, name), encoding="utf-8", newline="") as file:
            return file.read()
    except OSError:
        return ""


def records_in(host, folder):
    text = text_of(folder, records_path(host))
    parts = re.split(r"^\[(.*)\]\r\n", text, flags=re.MULTILINE)[1:]
    sections = {name: dict(line.split("=", 1) for line in body.split("\r\n") if "=" in line)
                for name, body in zip(parts[::2], parts[1::2])}
    return [sections[str(n)] for n in range(1, int(sections.get("general", {}).get("last", 0)) + 1)]


def functions_in(host, folder, symbols):
    """What the tool for people makes of the records."""
    tool = os.path.join(os.path.dirname(__file__), "../../tools/symbolize.py")
    return subprocess.run([sys.executable, tool, os.path.join(folder, records_path(host)), "--symbols",
                           symbols], check=True, capture_output=True, text=True).stdout


def ending(code):
    return code if code >= 0 else signal.Signals(-code).name[len("SIG"):]


def faults_of(host, name, folder, symbols, ended, seconds):
    end, count, code, function = DEATHS[host][name]
    records = records_in(host, folder)
    if ended != end:
        yield f"ended with {ended} instead of {end}"
    if len(records) != count:
        yield f"{len(records)} records instead of {count}"
    elif not records and code and code not in text_of(folder, records_path(host)):
        yield f"nothing is left of {code}"
    elif records:
        told = records[-1].get("ExceptionCode")
        if told != code:
            yield f"the record says {told} instead of {code}"
        if function and function not in functions_in(host, folder, symbols):
            yield f"the record doesn't lead to {function}"
    # On Windows a file in the folder's place counts as the folder.
    told = "Cannot verify dump file path" if (host, name) == ("linux", "no_folder") else "PROCESS CRASHED!"
    if (count or name == "no_folder") and host in LOGGED and name not in NOT_LOGGED and told not in text_of(folder, LOG):
        yield "the log doesn't tell"
    if seconds > SLACK[host] + (BOUND if name in SLOW else 0):
        yield f"took {seconds:.1f} s"


def stripped(program, folder):
    copy = os.path.join(folder, os.path.basename(program))
    strip = "x86_64-w64-mingw32-strip" if program.endswith(".exe") else "strip"
    subprocess.run([strip, "-o", copy, program], check=True)
    return copy


def play(host, command, name):
    folder = tempfile.mkdtemp(prefix="deaths-")
    symbols = os.environ.get("ORBELANTINE_SYMBOLS", os.path.dirname(command[-1]))
    try:
        if name == "stripped":
            command, name = [*command[:-1], stripped(command[-1], folder)], "null_write"
        if name == "no_folder":
            with open(os.path.join(folder, "records"), "w", encoding="ascii"):
                pass
        else:
            os.mkdir(os.path.join(folder, "records"))
        arguments = [own_path(host, folder), name] if host in LOGGED else [name]
        environment = {**os.environ, "WINEDLLOVERRIDES": "winedbg.exe=d"}
        if host not in LOGGED:
            environment["TMPDIR"] = os.path.join(folder, "records")
        begun = time.monotonic()
        run = subprocess.run([*command, *arguments], check=False, timeout=120, env=environment,
                             stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True,
                             preexec_fn=limit_files if name == "full_disk" else None)
        seconds = time.monotonic() - begun
        ended = ending(run.returncode)
        faults = list(faults_of(host, name, folder, symbols, ended, seconds))
        records = records_in(host, folder)
        code = records[-1].get("ExceptionCode", "-") if records else "-"
        told = "; ".join(faults) or "ok"
        figure = re.findall(r"^ratio .*$", run.stdout, flags=re.MULTILINE)
        print(f"{name:18} {ended!s:>5} {len(records):>8}  {code:>10} {seconds:>7.2f}  {told}  {figure[0] if figure else ''}",
              flush=True)
        return not faults
    finally:
        shutil.rmtree(folder)


def main():
    host, *rest = sys.argv[1:]
    only = [word[2:] for word in rest if word.startswith("--")]
    command = [word for word in rest if not word.startswith("--")]
    # A core of each death is of no use.
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    print(f"{'death':18} {'ended':>5} {'records':>8}  {'exception':>10} {'seconds':>7}")
    results = [play(host, command, name) for name in DEATHS[host] if not only or name in only]
    sys.exit(0 if results and all(results) else 1)


if __name__ == "__main__":
    main()
