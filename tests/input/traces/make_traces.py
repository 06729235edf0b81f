#!/usr/bin/env python3
"""make_traces.py [--check]: writes tracker.csv and reverser.csv beside itself.

A second model of the phone's pointer acceleration, to compare the library with. It rounds every
operation to single precision, so the two agree to the last bit. With --check it writes nothing, and
the exit code is 1 if a file differs from what it would write.
"""

import math
import pathlib
import struct
import sys
from itertools import accumulate

MS = 1_000_000
RING = 20


class F32(float):
    """A number of single precision; so is every result of its arithmetic."""

    def __new__(cls, value=0.0):
        return float.__new__(cls, struct.unpack("<f", struct.pack("<f", value))[0])

    def __str__(self):
        """The shortest text that gives the same number."""
        if self == int(self):
            return str(int(self))
        texts = (f"{float(self):.{digits}g}" for digits in range(1, 10))
        return next(text for text in texts if F32(float(text)) == self)

    def __neg__(self):
        return F32(-float(self))


def rounding(operation):
    exact = getattr(float, operation)
    return lambda a, b: F32(exact(float(a), float(F32(b))))


for each in ("add", "radd", "sub", "rsub", "mul", "rmul", "truediv", "rtruediv"):
    setattr(F32, f"__{each}__", rounding(f"__{each}__"))


def total(values):
    return sum(values, F32(0))


def dot(a, b):
    return total(p * q for p, q in zip(a, b))


# --- Estimates: (degree, confidence, vx, vy), or None ------------------------------------------


class LeastSquares:
    def __init__(self, degree, weighting="none"):
        self.degree, self.weighting = degree, weighting
        self.samples = []  # newest last; each (time, {id: (x, y)})

    def clear(self):
        self.samples = []

    def add(self, time, points):
        self.samples = (self.samples + [(time, points)])[-RING:]

    def weight(self, index):
        """Rises from 0.5 to 1 over 10 ms, or falls over 50 ms where recent samples count more."""
        time = self.samples[index][0]
        age = F32(self.samples[-1][0] - time) * 1e-6
        if self.weighting == "recent":
            return F32(1) if age < 50 else 0.5 + (100 - age) * 0.01 if age < 100 else F32(0.5)
        if self.weighting == "central":
            span = age if age < 50 else 60 - age
        elif self.weighting == "delta" and index + 1 < len(self.samples):
            span = F32(self.samples[index + 1][0] - time) * 1e-6
        else:
            return F32(1)
        return F32(0.5) if span < 0 else 0.5 + span * 0.05 if span < 10 else F32(1)

    def estimate(self, pointer):
        rows = []
        for index in reversed(range(len(self.samples))):
            time, points = self.samples[index]
            age = self.samples[-1][0] - time
            if pointer not in points or age > 100 * MS:
                break
            rows.append((F32(-age) * 1e-9, *map(F32, points[pointer]), self.weight(index)))
        if not rows:
            return None
        t, x, y, w = zip(*rows)
        degree = min(self.degree, len(t) - 1)
        fits = [self.fit(t, values, w, degree + 1) for values in (x, y)] if degree else [None]
        if None in fits:
            return 0, F32(1), F32(0), F32(0)
        (bx, xdet), (by, ydet) = fits
        return degree, xdet * ydet, bx[1], by[1]

    @staticmethod
    def fit(x, y, w, n):
        a = [w]
        while len(a) < n:
            a.append([p * q for p, q in zip(a[-1], x)])
        q, r = [], []
        for row in a:
            for unit in q:
                along = dot(row, unit)
                row = [v - along * u for v, u in zip(row, unit)]
            norm = F32(math.sqrt(dot(row, row)))
            if norm < F32(0.000001):
                return None
            q.append([v / norm for v in row])
            r.append([dot(q[-1], other) for other in a])
        wy = [p * q for p, q in zip(y, w)]
        b = [F32(0)] * n
        for i in reversed(range(n)):
            b[i] = dot(q[i], wy)
            for j in reversed(range(i + 1, n)):
                b[i] = b[i] - r[i][j] * b[j]
            b[i] = b[i] / r[i][i]
        mean = total(y) / len(y)
        errors, variances = F32(0), F32(0)
        for h, weight in enumerate(w):
            error, power = y[h] - b[0], F32(1)
            for coefficient in b[1:]:
                power = power * x[h]
                error = error - power * coefficient
            variance = y[h] - mean
            errors = errors + weight * weight * error * error
            variances = variances + weight * weight * variance * variance
        return b, 1 - errors / variances if variances > F32(0.000001) else F32(1)


class Legacy(LeastSquares):
    def estimate(self, pointer):
        newest = self.samples[-1][0]
        run = []  # newest first
        for time, points in reversed(self.samples):
            if pointer not in points or time < newest - 200 * MS:
                break
            run.append((time, [F32(v) for v in points[pointer]]))
        if not run:
            return None
        start, origin = run[-1]
        velocity, accumulated, count = [F32(0), F32(0)], 0, 0
        for time, position in reversed(run[:-1]):
            dt = time - start
            if dt < 10 * MS:
                continue
            added = [(p - o) * (F32(1e9) / dt) for p, o in zip(position, origin)]
            velocity = [
                (a * dt + v * accumulated) / (accumulated + dt) for a, v in zip(added, velocity)
            ]
            accumulated, count = dt, count + 1
        return (1 if count else 0), F32(1), *velocity


class Integrating:
    def __init__(self, degree):
        self.degree, self.states, self.ids = degree, {}, set()

    def clear(self):
        self.ids = set()

    def add(self, time, points):
        for pointer, point in points.items():
            point = [F32(v) for v in point]
            if pointer not in self.ids:
                self.states[pointer] = [time, 0, point, [F32(0)] * 2, [F32(0)] * 2]
                continue
            updated, known, pos, vel, accel = self.states[pointer]
            if time <= updated + 2 * MS:
                continue
            dt = F32(time - updated) * 1e-9
            a = dt / (dt + 0.01)
            fresh = [(p - o) / dt for p, o in zip(point, pos)]
            if known == 0:
                vel, known = fresh, 1
            elif self.degree == 1:
                vel = [v + (f - v) * a for v, f in zip(vel, fresh)]
            else:
                change = [(f - v) / dt for v, f in zip(vel, fresh)]
                accel = change if known == 1 else [c + (n - c) * a for c, n in zip(accel, change)]
                vel, known = [v + c * dt * a for v, c in zip(vel, accel)], 2
            self.states[pointer] = [time, known, point, vel, accel]
        self.ids = set(points)

    def estimate(self, pointer):
        _, known, _, vel, _ = self.states[pointer]
        return known, F32(1), *vel


STRATEGIES = {
    "lsq1": lambda: LeastSquares(1),
    "lsq2": lambda: LeastSquares(2),
    "lsq3": lambda: LeastSquares(3),
    "wlsq2-delta": lambda: LeastSquares(2, "delta"),
    "wlsq2-central": lambda: LeastSquares(2, "central"),
    "wlsq2-recent": lambda: LeastSquares(2, "recent"),
    "int1": lambda: Integrating(1),
    "int2": lambda: Integrating(2),
    "legacy": lambda: Legacy(0),
}


class Tracker:
    def __init__(self, name):
        self.strategy = STRATEGIES[name]()
        self.clear()

    def clear(self):
        self.last, self.ids = 0, set()
        self.strategy.clear()

    def add(self, time, points):
        if self.ids & set(points) and time >= self.last + 40 * MS:
            self.strategy.clear()
        self.last, self.ids = time, set(points)
        self.strategy.add(time, points)


# --- The motions: (time, {id: (x, y)}) ---------------------------------------------------------


def timed(steps_ms, point):
    times = accumulate(round(step * MS) for step in steps_ms)
    return [(time, {0: point(i)}) for i, time in enumerate(times)]


MOTIONS = {
    "constant": timed([0] + [10] * 7, lambda i: (10 * i, -5 * i)),
    "accelerating": timed([0] + [8] * 9, lambda i: (i * i * 1.5, i**3 / 4 - 7 * i)),
    "stop": timed([0, 10, 10, 39.9, 10, 40, 10, 10, 12], lambda i: (7 * i, 3 * i * i)),
    "gaps": timed([5, 3, 9.9, 25, 35, 30, 12, 1, 2.1, 39], lambda i: (i * 20, 90 - i * i)),
    "edges": timed([0, 2, 23] + [25] * 7, lambda i: (2 * i * i, 40 - i**3)),
    "duplicates": timed([0, 0, 5, 0, 5, 0, 11, 0, 0.000001], lambda i: (4 * i, 30 - i)),
    "backwards": timed([50, 10, -4, 9, -12, 20], lambda i: (5 * i, i * i)),
    "many": timed([0] + [4] * 25, lambda i: (6 * i + 7 * i * i % 40, i * i * 11 % 50 - 3.25 * i)),
    "pointers": [
        (0, {0: (1, 2), 1: (100, 200)}),
        (9 * MS, {0: (4, 3), 1: (90, 204.5)}),
        (18 * MS, {0: (9, 5), 1: (81, 208)}),
        (27 * MS, {1: (70, 213)}),
        (36 * MS, {0: (15, 9), 1: (61, 217.25)}),
        (45 * MS, {0: (22, 12), 1: (53, 220)}),
        (54 * MS, {0: (28, 16)}),
        (99 * MS, {1: (9, 240)}),
    ],
}


def tracker_rows():
    yield ["motion", "time", "positions"] + list(STRATEGIES)
    for motion, samples in MOTIONS.items():
        trackers = [Tracker(name) for name in STRATEGIES]
        for time, points in samples:
            cells = []
            for tracker in trackers:
                tracker.add(time, points)
                estimates = [tracker.strategy.estimate(pointer) for pointer in points]
                cells.append(" ".join(str(v) for estimate in estimates for v in estimate))
            positions = " ".join(f"{p} {F32(x)} {F32(y)}" for p, (x, y) in points.items())
            yield [motion, time, positions] + cells


# --- The reverser -----------------------------------------------------------------------------


class Phone:
    """Multiplies each delta by a factor that grows with the pointer's speed."""

    def __init__(self, deltas=()):
        self.deltas, self.last = list(deltas), None

    def move(self, time, dx, dy):
        if dx == 0 and dy == 0:
            return F32(0), F32(0)
        if self.deltas and time >= self.deltas[-1][0] + 500 * MS:
            self.deltas = []
        self.deltas.append((time, dx, dy))
        factor = self.factor()
        return factor * F32(dx), factor * F32(dy)

    def factor(self):
        tracker, x, y = Tracker("lsq2"), F32(0), F32(0)
        for time, dx, dy in self.deltas:
            x, y = x + dx, y + dy
            tracker.add(time, {0: (x, y)})
        _, _, vx, vy = tracker.strategy.estimate(0)
        speed = F32(math.hypot(vx, vy))
        if speed >= 3000:
            return F32(3)
        if speed > 500:
            return ((speed - 500) / F32(2500)) * 2 + 1
        return F32(1)


def quotient(a, b):
    return abs(a) // abs(b) * (1 if (a < 0) == (b < 0) else -1)


def reverse(phone, time, x, y):
    """Gives the delta to send and the number of rounds."""
    hi, lo, x_larger = max(x, y), min(x, y), x > y
    target, lower, upper, count = hi, 0, hi, 0
    while True:
        candidate = (hi, lo) if x_larger else (lo, hi)
        out = Phone(phone.deltas).move(time, *candidate)[0 if x_larger else 1]
        if abs(target - out) < 2 or hi == 0:
            break
        if abs(target) > abs(out):
            lower = hi
        else:
            upper = hi
        mid = quotient(upper + lower, 2)
        lo = quotient(mid * lo, hi)
        hi, count = mid, count + 1
        if count == 50:
            break
    return ((hi, lo) if x_larger else (lo, hi)), count


def steady(step_ms, deltas, start_ms=0):
    return [(round((start_ms + i * step_ms) * MS), dx, dy) for i, (dx, dy) in enumerate(deltas)]


def quadrant(sign_x, sign_y):
    sizes = [(100, 50), (3, 1), (20, 17), (64, 9), (41, 41), (150, 80), (300, 2), (7, 60), (1, 1)]
    return steady(8, [(sign_x * x, sign_y * y) for x, y in sizes])


# Each wanted delta is reversed, and the result goes into the model.
SEQUENCES = {
    "right down": quadrant(1, 1),
    "right up": quadrant(1, -1),
    "left down": quadrant(-1, 1),
    "left up": quadrant(-1, -1),
    "right": steady(8, [(40, 0), (0, 0), (90, 0), (300, 0), (300, 0), (1, 0)]),
    "left": steady(8, [(-40, 0), (-90, 0), (-300, 0), (-300, 0), (-1, 0)]),
    "down": steady(8, [(0, 40), (0, 90), (0, 300), (0, 300), (0, 1)]),
    "up": steady(8, [(0, -40), (0, -90), (0, -300), (0, -50), (0, -1)]),
    "steep": steady(1, [(1, 0)] * 3 + [(d, -2) for d in range(4, 12)] + [(d, 1) for d in (5, 7, 8)]),
    "one at full speed": steady(1, [(200, 0), (200, 0), (1, 0), (0, 1), (2, 1)]),
    "parked": steady(100, [(32767, 32767), (500, 300), (32767, 32767), (-700, 5)]),
    "pauses": [
        (0, 50, 20),
        (20 * MS, 60, 30),
        (60 * MS - 1, 60, 30),
        (100 * MS - 1, 60, 30),
        (110 * MS, 60, 30),
        (610 * MS - 1, 80, 10),
        (620 * MS, 80, 10),
        (1120 * MS, 80, 10),
    ],
    "long": steady(6, [(9 + i * 5 % 23, i * 7 % 19 - 4) for i in range(28)]),
}


def reverser_rows():
    yield ["sequence", "time", "dx", "dy", "sentX", "sentY", "movedX", "movedY", "rounds"]
    for sequence, moves in SEQUENCES.items():
        phone = Phone()
        for time, dx, dy in moves:
            sent, rounds = reverse(phone, time, dx, dy)
            moved = phone.move(time, *sent)
            yield [sequence, time, dx, dy, *sent, int(moved[0]), int(moved[1]), rounds]


def main():
    stale = False
    for name, rows in (("tracker.csv", tracker_rows()), ("reverser.csv", reverser_rows())):
        path = pathlib.Path(__file__).with_name(name)
        text = "".join(",".join(map(str, row)) + "\n" for row in rows)
        if sys.argv[1:] != ["--check"]:
            path.write_bytes(text.encode())
        elif not path.exists() or path.read_text() != text:
            print(f"{name} is not what make_traces.py writes", file=sys.stderr)
            stale = True
    sys.exit(stale)


if __name__ == "__main__":
    main()
