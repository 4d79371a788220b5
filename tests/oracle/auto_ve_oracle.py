"""A second implementation of AutoVE, and random tables and logs for it.

    python3 auto_ve_oracle.py --count 200 --seed 3

It shares no code with the program. Each line is a case: rows, columns, limit, speeds, pressures, the 256 cells of
VE by stored index (row * 16 + column, row 0 the lowest pressure), samples "rpm,map,correction", and the 256 cells
when the samples are through and the grid has been written back.

The rule, sample by sample: p is the number of the last speed below the sample's, counted from 1, or 1 where none
is; q likewise for the pressure. Cells p - 1 to p + 1 and q - 1 to q + 1, counted from 0 and held to the table, are
looked at column by column. Distances are in cells of the mean size (span over the NUMBER of headers). A cell
nearer than 1.25 takes (99 * its sum + 1.25 / distance * correction) / 100, held to the limit, as its new sum; at
distance 0 it takes what the cell looked at before it took, or 0. It shows that sum and its base, rounded half to
even. Sums are 32-bit floats. Its base is taken at column + 16 * row from a list that was filled shown cell by
shown cell, so in a table of fewer than 16 columns it is that of another cell.
"""

import argparse
import math
import random
import struct

REACH = 1.25
STRIDE = 16
LEAST, MOST = 8, 16
VE_LEAST, VE_MOST = -50, 50


def f32(value):
    return struct.unpack("<f", struct.pack("<f", value))[0]


def place(headers, value):
    below = [i for i, header in enumerate(headers) if header < value]
    return (below[-1] if below else 0) + 1


def held(place_, count):
    """round(p - 1.25) is p - 1 and round(p + 1.25) is p + 1: no ties."""
    return range(max(place_ - 1, 0), min(place_ + 1, count - 1) + 1)


class AutoVe:
    def __init__(self, speeds, pressures, cells, limit):
        self.speeds, self.pressures, self.limit = speeds, pressures, limit
        self.rows, self.columns = len(pressures), len(speeds)
        self.cells = list(cells)
        self.base = [0.0] * 257
        shown = 0
        for row in range(self.rows):
            for column in range(self.columns):
                self.base[shown] = cells[row * STRIDE + column]
                shown += 1
        self.sums = {}
        self.texts = {}
        self.width = (speeds[-1] - speeds[0]) / self.columns
        self.height = (pressures[-1] - pressures[0]) / self.rows

    def sample(self, rpm, pressure, correction):
        p, q = place(self.speeds, rpm), place(self.pressures, pressure)
        took = 0.0
        for x in held(p, self.columns):
            for y in held(q, self.rows):
                distance = math.sqrt(((self.speeds[x] - rpm) / self.width) ** 2
                                     + ((self.pressures[y] - pressure) / self.height) ** 2)
                if distance >= REACH:
                    continue
                if distance != 0:
                    old = self.sums.get((x, y), 0.0)
                    took = f32((99 * old + REACH / distance * correction) / 100)
                took = min(max(took, -self.limit), self.limit)
                self.sums[x, y] = took
                self.texts[x, y] = round(took + self.base[x + STRIDE * y])

    def written_back(self):
        """What the table does not take keeps its value."""
        cells = list(self.cells)
        for (x, y), value in self.texts.items():
            if VE_LEAST <= value <= VE_MOST:
                cells[y * STRIDE + x] = float(value)
        return cells


def rising(rng, count, low, step_low, step_high, digits):
    headers = [low]
    while len(headers) < count:
        headers.append(round(headers[-1] + rng.uniform(step_low, step_high), digits))
    return [f32(header) for header in headers]


def case(rng):
    rows, columns = rng.randint(LEAST, MOST), rng.randint(LEAST, MOST)
    limit = float(rng.choice([0, 1, 5, 10, 15, 25, 50, rng.randint(0, 50)]))
    speeds = rising(rng, columns, float(rng.randrange(400, 1000, 50)), 100, 600, 0)
    pressures = rising(rng, rows, float(rng.randint(15, 30)), 2, 4.5, 1)
    cells = [f32(round(rng.uniform(-45, 45), rng.choice([0, 0, 1]))) for _ in range(256)]
    if rng.random() < 0.2:
        cells = [float(rng.choice([-50, -49, 49, 50])) for _ in range(256)]
    samples = []
    rpm, pressure, correction = 1500.0, 40.0, 0
    for _ in range(rng.choice([1, 20, 300])):
        how = rng.random()
        if how < 0.1:  # exactly on headers
            rpm, pressure = rng.choice(speeds), rng.choice(pressures)
        elif how < 0.2:  # beyond the table
            rpm, pressure = rng.choice([0.0, 20000.0]), rng.choice([0.0, 300.0])
        else:
            rpm = float(round(rng.uniform(speeds[0] - 300, speeds[-1] + 300)))
            pressure = f32(round(rng.uniform(pressures[0] - 5, pressures[-1] + 5), 1))
        if rng.random() < 0.2:
            correction = rng.randint(-60, 60)
        samples.append((float(int(rpm)), pressure, float(correction)))
    return rows, columns, limit, speeds, pressures, cells, samples


def text(numbers):
    return " ".join("%.9g" % number for number in numbers)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=3)
    given = parser.parse_args()
    rng = random.Random(given.seed)
    for _ in range(given.count):
        rows, columns, limit, speeds, pressures, cells, samples = case(rng)
        rule = AutoVe(speeds, pressures, cells, limit)
        for sample in samples:
            rule.sample(*sample)
        print(";".join([str(rows), str(columns), "%g" % limit, text(speeds), text(pressures), text(cells),
                        " ".join("%.9g,%.9g,%.9g" % sample for sample in samples), text(rule.written_back())]))


if __name__ == "__main__":
    main()
