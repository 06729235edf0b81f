#!/usr/bin/env python3
"""audio_demo.py HOST...: a private sound system whose devices come, go and fall silent, and what a host is told of
it. HOST is the command that runs examples/audio_devices."""

import contextlib
import itertools
import os
import pathlib
import queue
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

PATIENCE = 30  # s
QUIET = 0.3    # s without a word after which what was done has been told
SKIPPED = 77


class Failure(Exception):
    """Why the demo can't go on."""


class SoundSystem:
    """A PulseAudio of its own, without hardware, in a folder of its own."""

    def __init__(self, folder):
        self.socket = f"{folder}/socket"
        # Nothing of the user's: neither settings nor a session.
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("PULSE_", "XDG_", "DBUS_"))}
        self.environment.update(HOME=folder, XDG_RUNTIME_DIR=folder, PULSE_RUNTIME_PATH=folder,
                                PULSE_STATE_PATH=folder, PULSE_SERVER=f"unix:{self.socket}")
        self.said = f"{folder}/said"
        self.modules, self.process = {}, None

    def start(self):
        # It ends by itself should this program be killed.
        with open(self.said, "w", encoding="utf-8") as said:
            self.process = subprocess.Popen(
                ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=60", "--use-pid-file=no",
                 "--disable-shm=yes", "-L", f"module-native-protocol-unix socket={self.socket} auth-anonymous=1"],
                env=self.environment, start_new_session=True, stdout=said, stderr=said)
        end = time.monotonic() + PATIENCE
        while self.ask("info").returncode != 0:
            if self.process.poll() is not None:
                raise Failure("pulseaudio did not start: " + pathlib.Path(self.said).read_text(encoding="utf-8").strip())
            if time.monotonic() > end:
                raise Failure("pulseaudio did not answer")
            time.sleep(0.05)

    def die(self):
        self.process.kill()
        self.process.wait()
        self.modules.clear()

    def ask(self, *words):
        return subprocess.run(["pactl", *words], env=self.environment, capture_output=True, text=True, timeout=PATIENCE)

    def tell(self, *words):
        answer = self.ask(*words)
        if answer.returncode != 0:
            raise Failure(f"pactl {' '.join(words)}: {answer.stderr.strip()}")
        return answer.stdout.strip()

    def plug(self, name, module, *arguments):
        self.modules[name] = self.tell("load-module", module, *arguments)

    def plug_speakers(self, name, bus="usb"):
        self.plug(name, "module-null-sink", f"sink_name={name}", f"sink_properties=device.bus={bus}")

    def plug_microphone(self, name, bus="usb"):
        # A microphone that hears what the speakers on the desk say: those can be of any bus.
        self.plug(name, "module-remap-source", "master=desk.monitor", f"source_name={name}",
                  f"source_properties=device.bus={bus}")

    def unplug(self, name):
        self.tell("unload-module", self.modules.pop(name))

    def come_back(self):
        self.start()
        self.plug_speakers("desk")
        self.plug_microphone("voice")


class Host:
    """The host's program, and what it has said."""

    def __init__(self, command, environment):
        self.process = subprocess.Popen(command, env=environment, start_new_session=True, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.lines, self.facts = queue.Queue(), {}
        self.reader = threading.Thread(target=self.read)
        self.reader.start()

    def read(self):
        for line in self.process.stdout:
            self.lines.put(line.strip())

    def told(self, is_enough):
        """The lines up to a silence after which is_enough of them, or up to the end of patience."""
        lines, end = [], time.monotonic() + PATIENCE
        while time.monotonic() < end:
            try:
                line = self.lines.get(timeout=QUIET)
            except queue.Empty:
                if is_enough(lines) or self.process.poll() is not None:
                    break
                continue
            kind, _, value = line.partition(": ")
            lines.append((kind, value))
            if kind != "mute":
                self.facts[kind] = value
        return lines

    def close(self):
        self.process.stdin.close()
        return self.process.wait(PATIENCE)

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.reader.join()
        self.process.stdin.close()
        self.process.stdout.close()


def scenes(sound):
    """What is done; what the host must be told of devices and headset in the end, if they are looked up anew; and
    what it must be told to be mute, if anything."""
    def set_sink(what, value):
        return lambda: sound.tell(f"set-sink-{what}", "desk", value)

    def set_source(what, value):
        return lambda: sound.tell(f"set-source-{what}", "voice", value)

    none, no_in, all_there = "NoAudioInOut", "NoAudioIn", "AudioAvailable"
    yield "the host starts: there is no device", lambda: None, (none, "False"), None
    # Of what a direction had before, nothing is known: it counts as silent.
    yield "speakers are plugged in", lambda: sound.plug_speakers("desk"), (no_in, "False"), "speakers"
    yield "a microphone is plugged in", lambda: sound.plug_microphone("voice"), (all_there, "False"), "microphone"
    yield "the speakers are muted", set_sink("mute", "1"), None, "speakers"
    yield "their volume is changed while they are", set_sink("volume", "40%"), None, "speakers"
    # The last word of a mute comes with its end.
    yield "they are no longer muted", set_sink("mute", "0"), None, "speakers"
    yield "the microphone is muted", set_source("mute", "1"), None, "microphone"
    yield "it is no longer muted", set_source("mute", "0"), None, "microphone"
    yield "the speakers' volume is 0", set_sink("volume", "0%"), None, "speakers"
    yield "the speakers' volume is 60 %", set_sink("volume", "60%"), None, None
    yield "other speakers are plugged in", lambda: sound.plug_speakers("kitchen"), (all_there, "False"), None
    yield "those become the default", lambda: sound.tell("set-default-sink", "kitchen"), (all_there, "False"), None
    yield "a Bluetooth headset plays", lambda: sound.plug_speakers("ears", "bluetooth"), (all_there, "True"), None
    yield "it records, too", lambda: sound.plug_microphone("mouth", "bluetooth"), (all_there, "True"), None
    yield "it records alone", lambda: sound.unplug("ears"), (all_there, "True"), None
    yield "the headset is gone", lambda: sound.unplug("mouth"), (all_there, "False"), None
    yield "the sound system dies", sound.die, (none, "False"), None
    yield "it is back, with its devices", sound.come_back, (all_there, "False"), None


def is_as_told(host, lines, facts, mute):
    """Whether a scene's lines are what it must bring."""
    mutes = {value for kind, value in lines if kind == "mute"}
    looked_up = any(kind == "devices" for kind, _ in lines)
    known = (host.facts.get("devices"), host.facts.get("headset"))
    return mutes == ({mute} if mute else set()) and (facts is None or looked_up and known == facts)


def in_words(lines):
    """The lines by kind, with a number where the same is told several times."""
    kinds = {}
    for kind, value in lines:
        kinds.setdefault(kind, []).append(value)
    words = []
    for kind, values in kinds.items():
        runs = [(value, len(list(run))) for value, run in itertools.groupby(values)]
        words.append(f"{kind}: " + ", ".join(value if count == 1 else f"{count} x {value}" for value, count in runs))
    return "; ".join(words) or "nothing"


def play(sound, command):
    """Shows the scenes; what went otherwise, or None."""
    started = time.monotonic()
    width = max(len(what) for what, *_ in scenes(sound))

    def show(when, what, told):
        print(f"{when:>7}  {what:{width}}  {told}", flush=True)

    show("when", "what was done", "what the host was told")
    sound.start()
    host = Host(command, sound.environment)
    try:
        for what, action, facts, mute in scenes(sound):
            when = f"{time.monotonic() - started:.1f} s"
            action()
            lines = host.told(lambda lines: is_as_told(host, lines, facts, mute))
            show(when, what, in_words(lines))
            if host.process.poll() is not None:
                return f"the host ended with {host.process.returncode}"
            if not is_as_told(host, lines, facts, mute):
                expected = [f"devices: {facts[0]}", f"headset: {facts[1]}"] if facts else []
                expected += [f"mute: {mute}"] if mute else []
                return f"after '{what}' the host was to be told in the end: " + ("; ".join(expected) or "nothing")
        status = host.close()
        return None if status == 0 else f"the host ended with {status}"
    finally:
        host.end()


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    for program in ("pulseaudio", "pactl"):
        if not shutil.which(program):
            print(f"audio_demo: {program} is missing: install the packages pulseaudio and pulseaudio-utils")
            return SKIPPED
    for number in (signal.SIGINT, signal.SIGTERM):
        signal.signal(number, lambda given, frame: sys.exit(128 + given))
    with tempfile.TemporaryDirectory(prefix="orb-audio.", dir="/tmp") as folder, contextlib.ExitStack() as ends:
        sound = SoundSystem(folder)
        ends.callback(lambda: sound.process and sound.die())
        try:
            wrong = play(sound, sys.argv[1:])
        except (Failure, subprocess.TimeoutExpired) as failure:
            wrong = failure
    if wrong:
        print(f"audio_demo: {wrong}", file=sys.stderr)
        return 1
    print("The host was told of every change, and of no other.")
    return 0


sys.exit(main())
