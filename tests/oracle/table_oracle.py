"""A second implementation of the table operations, and random cases of each.

    python3 table_oracle.py --operation smooth --count 1000 --seed 7

It shares no code with the program. A table is 16 by 16 cells in store whatever its size; stored row 0 is the
lowest row of the grid. Rows and columns of a grid count from 1 at the top left.

Numbers: cells are 32-bit floats, and what is rounded is one. Every step of an interpolation and the sum, the
count and the quotient of smoothing are 32-bit floats. Formulas and new axes are worked out in 64 bits, formulas
from the number that the cell's text names: 41.2 + 5% is 43.26, though the 32-bit float of 41.2 is a hair more.
The sign of a zero is nobody's business.

The first line is "seed <seed>", each other a case: number, table, arguments, cell 18 (the advance offset),
cells 592 to 2297 before the operation and a list of those that it changes, as "index:bits". Bits are
hexadecimal, little-endian.
"""

import argparse
import math
import random
import struct
import sys

import unit_encoder

MAIN = ("ADV", "AFR", "SPW", "VE")
OUTPUTS = ("GPO1", "GPO2")
BASE = {"ADV": 656, "VE": 912, "SPW": 1168, "AFR": 1424, "GPO1": 1680, "GPO2": 1936}
SIZES = {"GPO1": 2294, "GPO2": 2296}  # rows, then columns; 2292 for the main tables
AXIS_WORD = {"GPO1": 2290, "GPO2": 2291}  # kind of the rows, then of the columns, four bits each
CLT, BLEND_MAP, TPS, RPM, GPIO1 = 1, 3, 4, 7, 8
STOP_LIMITS = {CLT: (-40.0, 150.0), TPS: (0.0, 5.0), RPM: (0.0, 20000.0), GPIO1: (0.0, 100.0)}
STOPS = {"GPO1": (2226, 2242), "GPO2": (2258, 2274)}  # rows, columns
SPEEDS = 592
PRESSURES = 624
RATIO = 2225
OFFSET = 18
FIRST, LAST = 592, 2297
STRIDE = 16
LEAST, MOST = 8, 16

_PACK = struct.Struct("<f").pack
_UNPACK = struct.Struct("<f").unpack


def f32(value):
    """The nearest 32-bit float."""
    return _UNPACK(_PACK(value))[0]


def round_to(value, decimals):
    """A 32-bit float rounded half to even; 24 bits times 10 or 100 are exact in 64."""
    scale = 10 ** decimals
    return f32(round(value * scale) / scale)


def text_of(value):
    """Up to 7 significant digits; only compared and read back, so its form does not matter."""
    return "%.7g" % (value + 0.0 if value else 0.0)


def mean(a, b):
    return f32(f32(a + b) / 2)


# The calibration ------------------------------------------------------------------------------------


def empty_file():
    """A file of firmware 5.099 with the default sensor."""
    cell = [0.0] * 3001
    cell[39] = cell[124] = cell[2242] = cell[138] = 1.0
    cell[RATIO] = f32(14.64)
    cell[2290] = cell[2291] = 0x37
    cell[2292:2298] = [16.0] * 6
    return struct.pack("<3f3001f", 3, 10.2, 5099, *cell)


class Calibration:
    """Cells with the readers and writers of the tables and of their axes."""

    sensor = unit_encoder.Calibration(empty_file())
    plain = tuple(sensor.cell)
    low, high = sensor.MAPMin(), sensor.MAPMax()

    def __init__(self, cell=None):
        self.cell = list(self.plain if cell is None else cell)

    def told(self):
        return self.cell[FIRST:LAST + 1]

    def ratio(self):
        return self.cell[RATIO]

    # Sizes

    def rows(self, table):
        return int(self.cell[SIZES.get(table, 2292)])

    def columns(self, table):
        return int(self.cell[SIZES.get(table, 2292) + 1])

    def resize(self, table, rows, columns):
        at = SIZES.get(table, 2292)
        self.cell[at:at + 2] = [float(rows), float(columns)]

    # Values

    def value(self, table, index):
        raw = self.cell[BASE[table] + index]
        if table == "ADV":
            return f32(raw + self.cell[OFFSET])
        if table == "AFR":
            return round_to(f32(raw * (self.ratio() / 14.7)), 2)
        return float(round(raw)) if table in OUTPUTS else raw

    def limits(self, table):
        if table == "ADV":
            return self.cell[OFFSET], self.cell[OFFSET] + 60
        if table == "AFR":
            return f32(self.ratio() * 0.667), f32(self.ratio() + self.ratio())
        return (-50.0, 50.0) if table == "VE" else (0.0, 100.0)

    def takes(self, table, value):
        low, high = self.limits(table)
        return low <= value <= high

    def store(self, table, index, value):
        """A value that is refused leaves the cell as it is."""
        if not self.takes(table, value):
            return
        if table == "ADV":
            value = f32(value - self.cell[OFFSET])
        elif table == "AFR":
            value = f32((14.7 / self.ratio()) * value)
        elif table in OUTPUTS:
            value = float(round(value))
        self.cell[BASE[table] + index] = value

    # Headers, of columns or of rows

    def header(self, table, columns, i):
        if table in OUTPUTS:
            return self.cell[STOPS[table][columns] + i]
        if columns:
            return self.cell[SPEEDS + 2 * i]
        self.sensor.cell = self.cell
        return self.sensor.pressure_reader(PRESSURES + 2 * i)

    def axis_kind(self, table, columns):
        if table not in OUTPUTS:
            return RPM if columns else BLEND_MAP
        word = int(self.cell[AXIS_WORD[table]])
        return word & 15 if columns else word >> 4

    def header_limits(self, table, columns):
        kind = self.axis_kind(table, columns)
        return (self.low, self.high) if kind == BLEND_MAP else STOP_LIMITS[kind]

    def store_header(self, table, columns, i, value):
        low, high = self.header_limits(table, columns)
        if not low <= value <= high:
            return
        if table in OUTPUTS:
            self.cell[STOPS[table][columns] + i] = value
        elif columns:
            self.cell[SPEEDS + 2 * i] = value
        else:
            self.sensor.cell = self.cell
            self.sensor.pressure_writer(PRESSURES + 2 * i, value)

    def headers(self, table, columns):
        count = self.columns(table) if columns else self.rows(table)
        return [self.header(table, columns, i) for i in range(count)]


def shared(table):
    """The tables that change their lines with this one; the first brings the headers."""
    return (table,) if table in OUTPUTS else MAIN


# The grid: texts of the cells -----------------------------------------------------------------------


class Grid:
    """What a table shows. Cells are read from their texts and written back where the text is another one."""

    def __init__(self, cal, table):
        self.cal, self.table = cal, table
        self.rows, self.columns = cal.rows(table), cal.columns(table)
        self.number = {}
        self.named = {}  # what the texts say, in 64 bits
        for row in range(1, self.rows + 1):
            for column in range(1, self.columns + 1):
                named = float(text_of(cal.value(table, self.index(row, column))))
                self.named[row, column] = named
                self.number[row, column] = f32(named)

    def index(self, row, column):
        return (self.rows - row) * STRIDE + column - 1

    def write_back(self):
        for (row, column), number in self.number.items():
            index = self.index(row, column)
            if text_of(number) != text_of(self.cal.value(self.table, index)):
                self.cal.store(self.table, index, number)


def interpolate(cal, table, top, left, bottom, right):
    grid = Grid(cal, table)
    cell = grid.number
    tl, tr = cell[top, left], cell[top, right]
    bl, br = cell[bottom, left], cell[bottom, right]
    for r in range(top, bottom + 1):
        f = f32((r - top) / ((bottom - top) or 1))
        first = round_to(f32(f32(f * f32(bl - tl)) + tl), 1)
        last = round_to(f32(f32(f * f32(br - tr)) + tr), 1)
        cell[r, left] = first
        cell[r, right] = last
        for c in range(left + 1, right):
            g = f32((c - left) / ((right - left) or 1))
            cell[r, c] = round_to(f32(f32(g * f32(last - first)) + first), 1)
    grid.write_back()


def smooth(cal, table, strength, top, left, bottom, right):
    grid = Grid(cal, table)
    cell = grid.number
    weight = float(5 - strength)
    for r in range(top, bottom + 1):
        rows = range(max(top, r - 2), min(bottom, r + 2) + 1)
        for c in range(left, right + 1):
            columns = range(max(left, c - 2), min(right, c + 2) + 1)
            total = 0.0
            for i in rows:
                for j in columns:
                    total = _UNPACK(_PACK(total + cell[i, j]))[0]
            total = f32(total + f32(weight * cell[r, c]))
            cell[r, c] = round_to(f32(total / (len(rows) * len(columns) + weight)), 1)
    grid.write_back()


# Lines ----------------------------------------------------------------------------------------------


def add_column(cal, table, column):
    rows, columns = cal.rows(table), cal.columns(table)
    if columns >= MOST:
        return
    at = column - 1
    old = cal.headers(table, True)
    cal.store_header(table, True, at, old[0] / 2 if at == 0 else round_to(mean(old[at], old[at - 1]), 1))
    for i in range(at + 1, columns + 1):
        cal.store_header(table, True, i, round_to(old[i - 1], 1))
    for name in shared(table):
        for row in range(rows):
            old = [cal.value(name, row * STRIDE + c) for c in range(columns)]
            new = old[0] if at == 0 else mean(old[at], old[at - 1])
            for c, value in enumerate([new] + old[at:], at):
                cal.store(name, row * STRIDE + c, round_to(value, 1))
    cal.resize(table, rows, columns + 1)


def add_row(cal, table, row):
    rows, columns = cal.rows(table), cal.columns(table)
    if rows >= MOST:
        return
    at = rows - row
    old = cal.headers(table, False)
    cal.store_header(table, False, at, f32(old[0] / 2) if at == 0 else round_to(mean(old[at], old[at - 1]), 1))
    for i in range(at + 1, rows + 1):
        cal.store_header(table, False, i, old[i - 1])
    for name in shared(table):
        for c in range(columns):
            old = [cal.value(name, r * STRIDE + c) for r in range(rows)]
            new = old[0] if at == 0 else mean(old[at], old[at - 1])
            cal.store(name, at * STRIDE + c, round_to(new, 1))
            for r in range(at + 1, rows + 1):
                cal.store(name, r * STRIDE + c, old[r - 1])
    cal.resize(table, rows + 1, columns)


def remove_column(cal, table, column):
    rows, columns = cal.rows(table), cal.columns(table)
    if columns <= LEAST:
        return
    for i in range(column, columns):
        cal.store_header(table, True, i - 1, cal.header(table, True, i))
    for name in shared(table):
        for row in range(rows):
            for c in range(column, columns):
                cal.store(name, row * STRIDE + c - 1, cal.value(name, row * STRIDE + c))
    cal.resize(table, rows, columns - 1)


def remove_row(cal, table, row):
    rows, columns = cal.rows(table), cal.columns(table)
    if rows <= LEAST:
        return
    for i in range(rows - row + 1, rows):
        cal.store_header(table, False, i - 1, cal.header(table, False, i))
    for name in shared(table):
        for r in range(rows - row + 1, rows):
            for c in range(columns):
                cal.store(name, (r - 1) * STRIDE + c, cal.value(name, r * STRIDE + c))
    cal.resize(table, rows - 1, columns)


# Formulas and new axes ------------------------------------------------------------------------------


def formula_result(formula, value):
    sign, number = formula[0], float(formula[1:].rstrip("%"))
    if formula.endswith("%"):
        number = value * number / 100
    results = {"=": lambda: number, "+": lambda: value + number, "-": lambda: value - number,
               "*": lambda: value * number, "/": lambda: value / number}
    return f32(results[sign]())


def apply(cal, table, formula, top, left, bottom, right):
    """All or nothing."""
    grid = Grid(cal, table)
    results = {(r, c): formula_result(formula, grid.named[r, c])
               for r in range(top, bottom + 1) for c in range(left, right + 1)}
    written = {grid.index(r, c): value for (r, c), value in results.items()
               if text_of(value) != text_of(cal.value(table, grid.index(r, c)))}
    if not all(cal.takes(table, value) for value in written.values()):
        return
    for index, value in written.items():
        cal.store(table, index, value)


def place(axis, x):
    """The old lines on both sides of a header and the way between them, and whether it is one of them."""
    if x in axis:
        at = axis.index(x)
        return at, at, 0.0, True
    if x < axis[0]:
        return 0, 0, 0.0, False
    if x > axis[-1]:
        return len(axis) - 1, len(axis) - 1, 0.0, False
    upper = next(i for i, header in enumerate(axis) if header > x)
    return upper - 1, upper, (x - axis[upper - 1]) / (axis[upper] - axis[upper - 1]), False


def between(a, b, part):
    return a + (b - a) * part


def rebinned(cal, name, up, across):
    """The new values by stored index."""
    decimals = 2 if name == "AFR" else 0 if name in OUTPUTS else 1
    old = [[cal.value(name, row * STRIDE + c) for c in range(cal.columns(name))] for row in range(cal.rows(name))]
    values = {}
    for r, (low, high, rise, on_row) in enumerate(up):
        lower, upper = old[low], old[high]
        for c, (left, right, part, on_column) in enumerate(across):
            value = between(between(lower[left], lower[right], part), between(upper[left], upper[right], part), rise)
            kept = on_row and on_column
            values[r * STRIDE + c] = value if kept else round_to(f32(value), decimals)
    return values


def rebin(cal, table, new_columns, new_rows):
    """None for an axis that stays. All or nothing."""
    columns, rows = cal.headers(table, True), cal.headers(table, False)
    across = [place(columns, x) for x in new_columns or columns]
    up = [place(rows, x) for x in new_rows or rows]
    # What stays as it is shown is not written, and may be what no entry gives.
    written = [(name, index, value) for name in shared(table)
               for index, value in rebinned(cal, name, up, across).items()
               if text_of(value) != text_of(cal.value(name, index))]
    if not all(cal.takes(name, value) for name, _, value in written):
        return
    for name, index, value in written:
        cal.store(name, index, value)
    for by_column, new in ((True, new_columns), (False, new_rows)):
        for i, header in enumerate(new or []):
            cal.store_header(table, by_column, i, header)
    cal.resize(table, len(up), len(across))


# Random cases ---------------------------------------------------------------------------------------


def rising(rng, count, low, high, decimals):
    scale = 10 ** decimals
    return [f32(x / scale) for x in sorted(rng.sample(range(int(low * scale), int(high * scale) + 1), count))]


def random_axis(rng, kind, count):
    """Whole numbers or one decimal, volts two; pressures at times too low for half of the first."""
    if kind == RPM:
        low = rng.choice((0, 500, 750))
        return rising(rng, count, low, rng.choice((8000, 20000)), rng.choice((0, 0, 1)))
    if kind == BLEND_MAP:
        return rising(rng, count, rng.choice((11, 21)), 104, rng.choice((0, 1, 1)))
    return rising(rng, count, *STOP_LIMITS[kind], 2 if kind == TPS else rng.choice((0, 1)))


def random_value(rng, cal, table):
    """A value of one or two decimals, of all digits, or at a limit, as far as two decimals reach it."""
    low, high = cal.limits(table)
    if table in OUTPUTS:
        return float(rng.choice((0, 100, rng.randint(0, 100), rng.randint(0, 100), rng.randint(0, 100))))
    sort = rng.random()
    if sort < 0.1:
        return f32(rng.choice((math.ceil(low * 100), math.floor(high * 100))) / 100)
    if sort < 0.6:
        return f32(rng.randint(math.ceil(low * 10), math.floor(high * 10)) / 10)
    if sort < 0.85:
        return f32(rng.randint(math.ceil(low * 100), math.floor(high * 100)) / 100)
    return f32(rng.uniform(low + 0.01, high - 0.01))


def as_stored(cal, table, value):
    if table == "ADV":
        return f32(value - cal.cell[OFFSET])
    return f32((14.7 / cal.ratio()) * value) if table == "AFR" else value


_stocks = {}


def random_values(rng, cal, table, count):
    """Cells as they are stored, out of a stock for each table, offset and ratio."""
    key = table, cal.cell[OFFSET], cal.ratio()
    if key not in _stocks:
        _stocks[key] = [as_stored(cal, table, random_value(rng, cal, table)) for _ in range(400)]
    return rng.choices(_stocks[key], k=count)


def random_calibration(rng, table, tables):
    cal = Calibration()
    cal.cell[OFFSET] = float(rng.choice((0, 0, 10, -5, 30)))
    cal.cell[RATIO] = f32(rng.choice((14.64, 14.64, 14.7, 9.0, 1.0)))
    for name in ("ADV", "GPO1", "GPO2"):
        cal.resize(name, rng.randint(LEAST, MOST), rng.randint(LEAST, MOST))
        if name in OUTPUTS:
            kinds = [rng.choice((usual, usual, CLT, TPS, GPIO1)) for usual in (BLEND_MAP, RPM)]
            cal.cell[AXIS_WORD[name]] = kinds[0] * 16.0 + kinds[1]
        for columns in (True, False):
            for i, header in enumerate(random_axis(rng, cal.axis_kind(name, columns), 16)):
                cal.store_header(name, columns, i, header)
    for name in tables:
        cal.cell[BASE[name]:BASE[name] + 256] = random_values(rng, cal, name, 256)
    if rng.random() < 0.05:  # a file may hold what no entry gives
        for name in tables:
            cal.cell[BASE[name] + rng.randrange(256)] = rng.choice((120.0, -60.0))
    return cal


def random_span(rng, count):
    """First and last line: often all, one alone or an edge."""
    sort = rng.randrange(6)
    if sort == 0:
        return 1, count
    if sort == 1:
        return (rng.choice((1, count)),) * 2
    first, last = sorted((rng.randint(1, count), rng.randint(1, count)))
    return first, last


def random_block(rng, cal, table, single=False):
    while True:
        top, bottom = random_span(rng, cal.rows(table))
        left, right = random_span(rng, cal.columns(table))
        if single or (top, left) != (bottom, right):
            return top, left, bottom, right


def random_line(rng, count):
    return rng.choice((1, count, rng.randint(1, count), rng.randint(1, count)))


FORMULAS = ("=12", "=0", "=14.7", "=100", "+3", "-2", "+0.1", "-0.25", "*1.05", "*0.9", "/2", "/3", "+5%", "-5%",
            "+2.5%", "-33%", "*1", "+0.05%")


def random_headers(rng, cal, table, columns):
    """Old headers among new ones, and headers beyond both ends."""
    count = rng.randint(LEAST, MOST)
    old = cal.headers(table, columns)
    pool = set(rng.sample(old, rng.randint(0, min(len(old), count - 1))))
    low, high = cal.header_limits(table, columns)
    scale = 100 if high <= 5 else 10
    while len(pool) < count:
        if rng.random() < 0.3:
            at = rng.randrange(len(old) - 1)
            pool.add(round_to(mean(old[at], old[at + 1]), 1))
        elif high > 1000:
            pool.add(float(rng.randint(0, 20000)))
        else:
            pool.add(f32(rng.randint(math.ceil(low * scale), math.floor(high * scale)) / scale))
    return sorted(pool)


def random_arguments(rng, operation, cal, table):
    if operation == "interpolate":
        return random_block(rng, cal, table)
    if operation == "smooth":
        return (rng.randint(1, 5),) + random_block(rng, cal, table)
    if operation == "apply":
        return (rng.choice(FORMULAS),) + random_block(rng, cal, table, single=True)
    if operation == "rebin":
        which = rng.choice((1, 1, 2, 3))
        return tuple(random_headers(rng, cal, table, columns) if which & bit else None
                     for bit, columns in ((1, True), (2, False)))
    return (random_line(rng, cal.columns(table) if operation.endswith("column") else cal.rows(table)),)


OPERATIONS = {"interpolate": interpolate, "smooth": smooth, "add-column": add_column, "add-row": add_row,
              "remove-column": remove_column, "remove-row": remove_row, "apply": apply, "rebin": rebin}


def argument_text(argument):
    if isinstance(argument, list):
        return ",".join(repr(x) for x in argument)
    return "-" if argument is None else str(argument)


def random_case(rng, operation):
    """Table, arguments and the calibration before and after."""
    table = rng.choice(MAIN + OUTPUTS)
    alone = operation in ("interpolate", "smooth", "apply")
    before = random_calibration(rng, table, (table,) if alone else shared(table))
    arguments = random_arguments(rng, operation, before, table)
    after = Calibration(before.cell)
    OPERATIONS[operation](after, table, *arguments)
    return table, arguments, before, after


def case_line(number, table, arguments, before, after):
    changed = " ".join("%d:%s" % (FIRST + at, _PACK(new).hex())
                       for at, (old, new) in enumerate(zip(before.told(), after.told())) if old != new)
    told = " ".join(argument_text(argument) for argument in arguments)
    bits = struct.pack("<%df" % (LAST - FIRST + 1), *before.told()).hex()
    return ";".join((str(number), table, told, _PACK(before.cell[OFFSET]).hex(), bits, changed))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--operation", choices=sorted(OPERATIONS), required=True)
    parser.add_argument("--count", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    rng = random.Random(options.seed)
    print("seed %d" % options.seed)
    for number in range(options.count):
        sys.stdout.write(case_line(number, *random_case(rng, options.operation)) + "\n")


if __name__ == "__main__":
    main()
