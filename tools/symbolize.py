#!/usr/bin/env python3
"""symbolize.py FILE [--symbols FOLDER]...: shows the crash records in FILE with the functions and source lines of their
addresses, from the unstripped programs and libraries in the folders, or their ".debug" files."""

import argparse
import os
import re
import signal
import struct
import subprocess
import sys

LINE = re.compile(r"^(?P<module>.+?)! (?P<symbol>.*) - 0x(?P<address>[0-9A-Fa-f]{16})"
                  r"(, module offset\(base\): 0x(?P<offset>[0-9a-f]+)\(0x(?P<base>[0-9a-f]+)\)(, (?P<line>.*))?)?$")
UNKNOWN = "?" * 3
FACTS = [("Time", "time"), ("CommandLine", "command line"), ("Version", "version"), ("ProcessId", "process"),
         ("ExceptionCode", "exception")]


class Module:
    """A program or library with its symbols."""

    def __init__(self, path):
        self.path = path
        with open(path, "rb") as file:
            head = file.read(4096)
        self.image_base = 0
        if head[:2] == b"MZ":
            optional = struct.unpack_from("<I", head, 0x3C)[0] + 24
            self.image_base = struct.unpack_from("<Q", head, optional + 24)[0]

    def places(self, offsets):
        """For each offset its functions, the inlined ones first, each with its source line."""
        if not offsets:
            return {}
        addresses = [hex(offset + self.image_base) for offset in offsets]
        told = subprocess.run(["addr2line", "-a", "-p", "-f", "-C", "-i", "-e", self.path, *addresses], check=True,
                              capture_output=True, text=True).stdout
        found, place = {}, None
        for line in told.splitlines():
            start = re.match(r"^0x([0-9a-f]+): (.*)$", line)
            if start:
                place = found.setdefault(int(start[1], 16) - self.image_base, [])
                line = start[2]
            line = re.sub(r" at \?\?:.*$| \(discriminator \d+\)$", "", line.replace(" (inlined by) ", ""))
            place.append(line.strip())
        return {offset: [text for text in texts if not text.startswith("??")] for offset, texts in found.items()}


def find_module(name, folders):
    for folder in folders:
        for ending in (".debug", ".dll.debug", ".exe.debug", "", ".dll", ".exe"):
            path = os.path.join(folder, name + ending)
            if os.path.isfile(path):
                return Module(path)
    return None


def sections_of(path):
    with open(path, "rb") as file:
        text = file.read().decode("utf-8", errors="replace")
    records, record = [], None
    for line in text.splitlines():
        heading = re.match(r"^\s*\[(\d+)\]\s*$", line)
        if heading:
            record = (heading[1], {})
            records.append(record)
        elif line.startswith("["):
            record = None
        elif record and "=" in line:
            key, value = line.split("=", 1)
            record[1][key] = value
    return records


def frames_of(facts):
    """(label, line's match, whether the address follows a call) of each frame, innermost first."""
    frames = sorted((int(key[len("StackTrace"):]), value) for key, value in facts.items()
                    if re.match(r"^StackTrace\d+$", key))
    walked = "ExceptionCode" in facts
    if not walked:
        frames.reverse()
    for number, value in frames:
        yield f"{number:02}", value, LINE.match(value), not walked or number > 0


def show(number, facts, folders, modules):
    print(f"crash {number}")
    for key, name in FACTS:
        if facts.get(key):
            print(f"  {name:13} {facts[key]}")
    frames = list(frames_of(facts))
    wanted = {}
    for _, _, match, after_call in frames:
        if match and match["offset"]:
            wanted.setdefault(match["module"], set()).add(int(match["offset"], 16) - after_call)
    places = {}
    for name, offsets in wanted.items():
        if name not in modules:
            modules[name] = find_module(name, folders)
        if modules[name]:
            places[name] = modules[name].places(sorted(offsets))
    for label, value, match, after_call in frames:
        if not match or not match["offset"]:
            print(f"  {label}  {value}")
            continue
        offset = int(match["offset"], 16) - after_call
        texts = places.get(match["module"], {}).get(offset)
        if not texts:
            known = match["symbol"] if match["symbol"] != UNKNOWN else ""
            at = f" at {match['line']}" if match["line"] else ""
            texts = [f"{known}{at}" if known else f"+0x{offset:x}, no symbols"]
        for text in texts:
            print(f"  {label}  {match['module']:24}  {text}")
    print()
    return sorted(name for name in wanted if not modules[name])


def main():
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("file")
    parser.add_argument("--symbols", action="append", default=[], metavar="FOLDER")
    wishes = parser.parse_args()
    try:
        records = sections_of(wishes.file)
    except OSError as failure:
        sys.exit(f"symbolize: {wishes.file}: {failure.strerror}")
    if not records:
        sys.exit(f"symbolize: {wishes.file} holds no crash record; its sections are named by numbers, such as [1]")
    modules, missing = {}, set()
    for number, facts in records:
        missing.update(show(number, facts, wishes.symbols, modules))
    if missing:
        print("no symbols for " + ", ".join(sorted(missing)) + "; name their folder with --symbols", file=sys.stderr)


if __name__ == "__main__":
    main()
