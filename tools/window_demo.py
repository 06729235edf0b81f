#!/usr/bin/env python3
"""A window over a virtual phone: what is done in it happens on the phone.

Where there is a display the window is yours until you close it. Without one, or with --headless, a display without
a screen is started, and xdotool types, clicks and drags."""

import argparse
import contextlib
import ctypes
import json
import math
import os
import pathlib
import random
import statistics
import subprocess
import sys
import tempfile
import time

from own_display import NoDisplay, own_display, running

ADDRESS = "00:11:22:33:44:55"
PHONE = (1080, 2340)
WINDOW = (600, 900)
NEAR = 3          # px of the phone: a hit
PATIENCE = 30     # s
BATCH = 10        # gestures after which the phone is waited for
CLICK_PAUSE = 0.25
STEP = 0.016      # s between the moves of a drag
EDGE = 2          # px of the window that nobody aims at
SAID = "The quick brown fox jumps over the lazy dog, 0123456789 times."
KEYS = ["a", "s", "d", "1", "2", "Left", "Up", "F5", "Shift_L", "Control_L", "Alt_L", "ISO_Level3_Shift", "KP_5", "space"]
SKIPPED, DIFFERS, INTERRUPTED = 77, 1, 130


class Failure(Exception):
    """Why the demo can't go on."""


def wait_for(is_there, what):
    end = time.monotonic() + PATIENCE
    while not is_there():
        if time.monotonic() > end:
            raise Failure(f"{what} within {PATIENCE} s")
        time.sleep(0.01)


class Display:
    """What xdotool doesn't do."""

    def __init__(self):
        self.x11 = ctypes.CDLL("libX11.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.x11.XDefaultRootWindow.restype = self.x11.XCreateSimpleWindow.restype = ctypes.c_ulong
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(None))
        self.root = ctypes.c_ulong(self.x11.XDefaultRootWindow(self.display))

    def geometry(self, window):
        """Left, top, width and height on the screen."""
        x, y, child, other = ctypes.c_int(), ctypes.c_int(), ctypes.c_ulong(), (ctypes.c_uint * 4)()
        width, height = ctypes.c_uint(), ctypes.c_uint()
        window, at = ctypes.c_ulong(window), ctypes.byref
        self.x11.XGetGeometry(self.display, window, at(child), at(x), at(y), at(width), at(height), other, at(other, 4))
        self.x11.XTranslateCoordinates(self.display, window, self.root, 0, 0, at(x), at(y), at(child))
        return x.value, y.value, width.value, height.value

    def open_window(self):
        """In the bottom right corner."""
        window = self.x11.XCreateSimpleWindow(self.display, self.root, *map(ctypes.c_int, (1200, 950, 50, 50, 0, 0, 0)))
        self.x11.XMapWindow(self.display, ctypes.c_ulong(window))
        self.x11.XSync(self.display, False)
        return window


class Phone:
    """The virtual phone, by what it writes down."""

    def __init__(self, log):
        self.log = open(log, encoding="utf-8")
        self.presses, self.releases, self.text, self.summary = [], [], "", None
        self.keys_held, self.buttons_held = False, False
        self.errors = []
        self.rest = ""

    def read(self):
        self.rest += self.log.read()
        *lines, self.rest = self.rest.split("\n")
        for line in map(json.loads, lines):
            self.take(line)
        return self

    def take(self, line):
        match line["event"]:
            case "press" if line["button"] == "left":
                self.presses.append((line["x"], line["y"]))
            case "release" if line["button"] == "left":
                self.releases.append((line["x"], line["y"]))
            case "keyboard":
                self.text += line["typed"]
                self.keys_held = bool(line["modifiers"]) or any(line["keys"])
            case "error":
                self.errors.append(line["what"])
            case "summary":
                self.summary = line
        if line["event"] in ("mouse", "absolute_mouse"):
            self.buttons_held = bool(line["buttons"])

    @property
    def holds_something(self):
        return self.read().keys_held or self.buttons_held


class Hand:
    """A user's hand over the window."""

    def __init__(self, display, canvas, chance):
        self.canvas, self.chance, self.lines = canvas, chance, []
        self.left, self.top, self.width, self.height = display.geometry(int(canvas))

    def do(self, *lines):
        self.lines += lines

    def finish(self):
        lines, self.lines = self.lines, []
        subprocess.run(["xdotool", "-"], input="\n".join(lines) + "\n", text=True, check=True, timeout=10 * PATIENCE)

    def place(self):
        return (self.chance.randint(EDGE, self.width - 1 - EDGE), self.chance.randint(EDGE, self.height - 1 - EDGE))

    def move(self, place):
        self.do(f"mousemove {self.left + place[0]} {self.top + place[1]}")

    def target(self, place):
        return place[0] * PHONE[0] // self.width, place[1] * PHONE[1] // self.height

    def click(self, place):
        self.move(place)
        self.do("mousedown 1", "mouseup 1", f"sleep {CLICK_PAUSE}")

    def drag(self, start, end):
        self.move(start)
        self.do("mousedown 1", f"sleep {STEP}")
        steps = self.chance.randint(4, 24)
        for step in range(1, steps + 1):
            self.move(tuple(a + (b - a) * step // steps for a, b in zip(start, end)))
            self.do(f"sleep {STEP}")
        self.do("mouseup 1", f"sleep {CLICK_PAUSE}")


class Row:
    """Of the table."""

    def __init__(self, what, targets, landings):
        self.what, self.done, self.arrived = what, len(targets), len(landings)
        self.errors = [math.dist(*pair) for pair in zip(targets, landings)]
        self.hits = sum(error <= NEAR for error in self.errors)

    @property
    def is_whole(self):
        return self.done == self.arrived == self.hits

    def __str__(self):
        middle, worst = (statistics.median(self.errors), max(self.errors)) if self.errors else (0, 0)
        return f"{self.what:<10}{self.done:>8}{self.arrived:>10}{self.hits:>14}{middle:>10.1f}{worst:>9.1f}"


def play_gestures(count, gesture, phone, landings, target_pipe, hand):
    """The targets of so many gestures, and where they landed."""
    begun, targets = len(landings), []
    while len(targets) < count:
        for _ in range(min(BATCH, count - len(targets))):
            start, aim = hand.place(), hand.place()
            gesture(start, aim)
            targets.append(hand.target(aim))
            target_pipe.write(f"target {targets[-1][0]} {targets[-1][1]}\n")
        target_pipe.flush()
        hand.finish()
        wait_for(lambda: len(phone.read().releases) >= len(phone.presses) and len(landings) >= begun + len(targets),
                 f"of {begun + len(targets)} gestures {len(landings)} came")
    return targets, landings[begun:]


def play_sequences(count, phone, hand, elsewhere):
    """How many sequences of keys and buttons, each with a loss of the focus, left nothing held."""
    clean = 0
    for _ in range(count):
        hand.move(hand.place())
        hand.do(f"windowfocus --sync {hand.canvas}")
        held = []
        for _ in range(hand.chance.randint(1, 12)):
            up = hand.chance.random() < 0.3 and held
            what = held.pop(hand.chance.randrange(len(held))) if up else hand.chance.choice(
                [f"key {key}" for key in KEYS] + [f"mouse {button}" for button in (1, 3)])
            kind, name = what.split()
            if up or what not in held:
                hand.do(f"{kind}{'up' if up else 'down'} {name}")
                held += [] if up else [what]
        hand.do(f"windowfocus --sync {elsewhere}")
        for what in held:
            kind, name = what.split()
            hand.do(f"{kind}up {name}")
        hand.finish()
        with contextlib.suppress(Failure):
            wait_for_rest(phone)
            clean += 1
    return clean


def wait_for_rest(phone):
    """Nothing held, and nothing more to come."""
    seen, quiet = -1, time.monotonic()
    end = time.monotonic() + PATIENCE / 6
    while time.monotonic() < end:
        if phone.holds_something or phone.log.tell() != seen:
            seen, quiet = phone.log.tell(), time.monotonic()
        elif time.monotonic() - quiet > 0.35:
            return
        time.sleep(0.01)
    raise Failure("something is held")


def type_text(phone, hand):
    hand.click(hand.place())
    hand.do(f"type --delay 15 '{SAID}'")
    begun = len(phone.read().text)
    hand.finish()
    with contextlib.suppress(Failure):
        wait_for(lambda: len(phone.read().text) - begun >= len(SAID), "the text did not come")
    return phone.text[begun:]


def play(options, phone, control, canvas):
    """The hand's session, as a table. Whether all of it arrived."""
    display = Display()
    hand = Hand(display, canvas, random.Random(options.seed))
    typed = type_text(phone, hand)
    with open(control, "w", encoding="utf-8") as target_pipe:
        # The click that took the focus was nobody's.
        wait_for(lambda: len(phone.read().releases) == 1, "no click came")
        clicks = Row("clicks", *play_gestures(options.clicks, lambda _, aim: hand.click(aim), phone, phone.presses,
                                              target_pipe, hand))
        drags = Row("drags", *play_gestures(options.drags, hand.drag, phone, phone.releases, target_pipe, hand))
    print(f"\n{'':<10}{'done':>8}{'arrived':>10}{f'within {NEAR} px':>14}{'median':>10}{'worst':>9}   px of the phone")
    print(clicks)
    print(drags)
    right = sum(a == b for a, b in zip(SAID, typed))
    print(f"{'letters':<10}{len(SAID):>8}{len(typed):>10}   {right} as typed")
    whole = clicks.is_whole and drags.is_whole and typed == SAID
    if options.sequences:
        clean = play_sequences(options.sequences, phone, hand, display.open_window())
        print(f"{'sequences':<10}{options.sequences:>8}{clean:>10}   ended with nothing held, by a loss of the focus")
        whole &= clean == options.sequences
    return whole


@contextlib.contextmanager
def phone_running(options, folder, output):
    log, ready, control = output / "window.jsonl", folder / "ready", folder / "control"
    log.unlink(missing_ok=True)
    command = [f"{options.build}/bin/virtual_phone", "--devices", folder / "devices", "--ready-file", ready,
               "--acceleration", "android", "--control", control, "--log", log, "--picture", output / "window.svg"]
    with running(command, stdout=subprocess.DEVNULL) as process:
        wait_for(lambda: ready.exists() or process.poll() is not None, "the virtual phone was not ready")
        if process.poll() is not None:
            raise Failure("the virtual phone did not start; its reason is above")
        yield log, control


@contextlib.contextmanager
def host_running(options, folder, output, log):
    """The window's process and the canvas in it."""
    environment = os.environ | {"LD_LIBRARY_PATH": f"{options.build}/bin", "ORBELANTINE_DEVICE_DIR": str(folder / "devices")}
    host = subprocess.Popen([*options.host, ADDRESS, log, output, *map(str, WINDOW)], env=environment, text=True,
                            start_new_session=True, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    try:
        said = host.stdout.readline()
        if not said.startswith("canvas "):
            raise Failure("the window did not open; its reason is above")
        yield host, said.split()[1]
    finally:
        # It lets go of what is held.
        host.stdin.close()
        try:
            host.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            host.kill()
            host.wait()


def run(options, has_hand):
    output = pathlib.Path(options.build).parent / "demo"
    output.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(prefix="orb-window.") as name:
        folder = pathlib.Path(name)
        with phone_running(options, folder, output) as (log, control):
            phone, whole = Phone(log), True
            with host_running(options, folder, output, log) as (host, canvas):
                if has_hand:
                    whole = play(options, phone, control, canvas)
                else:
                    print("The window is open: what you do in it happens on the phone. Close it when you have seen enough.")
                    host.wait()
        return conclude(phone.read(), output) and whole


def conclude(phone, output):
    """Whether the phone is at rest."""
    if phone.summary is None:
        raise Failure("the phone did not end its log")
    held = [name for name in ("held_keys", "modifiers", "buttons") if phone.summary[name]]
    print(f"\nThe phone received {phone.summary['key_presses']} keys, {len(phone.presses)} touches and "
          f"{phone.summary['scrolls']} turns of the wheel.")
    print(f"picture: {output / 'window.svg'}")
    for what in phone.errors + [f"{name} at the end" for name in held]:
        print(f"window_demo: {what}", file=sys.stderr)
    return not held and not phone.errors


def read_options():
    reader = argparse.ArgumentParser(prog="./dev demo window", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    reader.add_argument("--headless", action="store_true", help="a display of its own, though there is one")
    reader.add_argument("--clicks", type=int, default=60, help="of the hand; default 60")
    reader.add_argument("--drags", type=int, default=20, help="of the hand; default 20")
    reader.add_argument("--sequences", type=int, default=0, help="random keys and buttons, each ended by a loss of the focus")
    reader.add_argument("--seed", type=int, default=1, help="of what is random")
    reader.add_argument("build", help=argparse.SUPPRESS)
    reader.add_argument("host", nargs="+", help=argparse.SUPPRESS)
    return reader.parse_args()


def main():
    options = read_options()
    try:
        if os.environ.get("DISPLAY") and not options.headless:
            return 0 if run(options, False) else DIFFERS
        with own_display("xdotool") as display:
            os.environ["DISPLAY"] = display
            return 0 if run(options, True) else DIFFERS
    except NoDisplay as failure:
        print(f"window_demo: {failure}", file=sys.stderr)
        return SKIPPED
    except Failure as failure:
        print(f"window_demo: {failure}", file=sys.stderr)
        return DIFFERS
    except KeyboardInterrupt:
        return INTERRUPTED


if __name__ == "__main__":
    sys.exit(main())
