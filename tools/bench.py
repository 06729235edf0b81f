#!/usr/bin/env python3
"""bench.py BUILD_DIR [FILTER]: runs the benchmarks and prints them as a table of ratios.

Each pair NAME/ours and NAME/bare is measured in one run, the repetitions of all in random order;
the ratio is that of their medians. A ratio or a count of allocations above its limit makes the
exit code 1.
"""

import json
import os
import re
import subprocess
import sys
from statistics import median

# What a pair may cost beside the least that it must do.
RATIO_LIMITS = {
    "LogFiltered": 1.5,
    "LogToFile": 1.3,
    # Ours also hold what fires, since a slot may end it.
    "SignalNoSlot": 1.5,
    "Signal": 1.3,
    "SendReport": 1.3,
    "SendMouseMove": 1.3,
    "InputRoad": 1.5,
    # With the crash handler set, beside the same without.
    "RecordedInputRoad": 1.1,
    "RelativeMove": 1.6,
    "Reverse": 1.3,
    "PipePingPong": 1.5,
    # 0.7 of the throughput.
    "PipeMebibyte": 1.43,
    "PostEvent": 1.43,
    # From the sound server to the callback of a host.
    "VolumeChange": 1.5,
}
# Heap allocations for each call or event on these roads.
ALLOCATION_LIMITS = {
    "report/": 0,
    "velocity/": 0,
    "PostEvent": 2,
    "Pipe": 0,
}


def measure(program, name_filter):
    command = [
        program,
        "--benchmark_format=json",
        "--benchmark_repetitions=9",
        "--benchmark_min_time=0.05",
        "--benchmark_enable_random_interleaving=true",
    ]
    if name_filter:
        command.append(f"--benchmark_filter={name_filter}")
    # Files in memory, where there is such a folder: the disk isn't what is measured.
    memory = {"TMPDIR": "/dev/shm"} if os.path.isdir("/dev/shm") else {}
    run = subprocess.run(
        command, stdout=subprocess.PIPE, check=True, env=dict(os.environ, **memory)
    )
    if not run.stdout.strip():
        sys.exit(f"bench.py: no benchmark is named like '{name_filter}'")
    samples = {}
    for entry in json.loads(run.stdout)["benchmarks"]:
        if entry["run_type"] != "iteration":
            continue
        if entry.get("error_occurred"):
            sys.exit(f"bench.py: {entry['name']}: {entry['error_message']}")
        name = re.sub(r"/(iterations|repeats):\d+|/(real|manual)_time", "", entry["run_name"])
        name = name.removeprefix("BM_")
        samples.setdefault(name, []).append((entry["real_time"], entry.get("allocations")))
    return samples


def limit_of(name, limits):
    return next((limit for start, limit in limits.items() if name.startswith(start)), None)


def rows_of(samples):
    """Yields (cells, fault) for each measured thing."""
    for full_name in sorted(samples):
        name, _, side = full_name.rpartition("/")
        if side == "bare":
            continue
        if side != "ours":
            name = full_name
        time = median(sample[0] for sample in samples[full_name])
        allocations = samples[full_name][0][1]
        bare = samples.get(f"{name}/bare")
        bare_time = median(sample[0] for sample in bare) if bare else None
        ratio = time / bare_time if bare_time else None
        limit = limit_of(name, RATIO_LIMITS)
        allocation_limit = limit_of(name, ALLOCATION_LIMITS)
        faults = []
        if limit and not ratio:
            faults.append("no pair")
        elif limit and ratio > limit:
            faults.append("too slow")
        if allocation_limit is not None and (allocations or 0) > allocation_limit:
            faults.append("allocates")
        yield (
            [
                name,
                f"{time:.1f}",
                f"{bare_time:.1f}" if bare_time else "",
                f"{ratio:.2f}" if ratio else "",
                f"{limit:g}" if limit else "",
                f"{allocations:g}" if allocations is not None else "",
                ", ".join(faults) or "ok",
            ],
            bool(faults),
        )


def print_table(header, rows):
    widths = [max(len(row[i]) for row in [header, *rows]) for i in range(len(header))]
    for row in [header, ["-" * width for width in widths], *rows]:
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        print("  ".join(cells).rstrip())
    print()


def host_rows(build):
    """The same library called from C#, for each runtime that is there."""
    library_path = dict(os.environ, LD_LIBRARY_PATH=os.path.join(build, "bin"))
    for runtime, program in (("dotnet", "HostBench.dll"), ("mono", "HostBench.exe")):
        path = os.path.join(build, "host", runtime, program)
        if not os.path.exists(path):
            continue
        run = subprocess.run(
            [runtime, path], stdout=subprocess.PIPE, check=True, text=True, env=library_path
        )
        for line in run.stdout.splitlines():
            name, _, nanoseconds = line.partition("\t")
            yield [f"{name} ({runtime})", f"{float(nanoseconds):.1f}"]


def main():
    build = sys.argv[1]
    name_filter = sys.argv[2] if len(sys.argv) > 2 else ""
    samples = measure(os.path.join(build, "bin", "orbelantine_bench"), name_filter)
    results = list(rows_of(samples))
    header = ["what", "ours, ns", "bare, ns", "ratio", "limit", "allocations", ""]
    print_table(header, [cells for cells, _ in results])
    if not name_filter:
        print_table(["from C#", "ns a call"], list(host_rows(build)))
    if any(fault for _, fault in results):
        sys.exit(1)


if __name__ == "__main__":
    main()
