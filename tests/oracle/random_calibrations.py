"""Random calibration files of every unit kind: most as a user makes them, many with wild values.

The same kind and seed give the same files on every machine. A wild file may be one that no image can be
made from: its text is None then.
"""

import math
import random
import struct

import unit_encoder
from unit_encoder import AXIS_KINDS, EncodeError, MOST_CELLS, f32

# The builds on both sides of every change of rules, for all kinds; 0 is a file that does not know its firmware.
FIRMWARE_CODES = (0, 12, 1000, 1005, 1099, 2000, 2006, 2007, 2017, 2018, 2099, 2999, 3000, 3001, 3099, 3100, 4000,
                  4002, 4003, 4099, 5000, 5001, 5099, 6000, 6099, 7000, 7001, 7099, 8000, 9099, 32099)
NEWEST_OFTEN = 0.4
WILD_FIRMWARE_CODES = (-1, -2006, 0.25, 999.5, 2006.5, 2017.5, 4002.5, 99999, 32767000, 32768000, 1e9)
# Every code up to 30, with and without a recipe, and codes that nobody gave out.
GPIO_FUNCTIONS = tuple(range(31)) + (31, 99, 255)
WILD_GPIO_FUNCTIONS = (-1, 7.5, 8.25, 256, 1000, 32767, 40000, 1e20)
WILD_SHARE = 0.45
PROGRAM_VERSION = 10.2

# Known sensors of a program that has its reference data: volts per unit, volts at zero, units code.
SENSORS = {1: (0.05295, -0.54738, 1), 2: (0.16931, 0.21384, 2), 3: (0.11427, 1.68125, 3), 4: (0.00158, 0.05, 4)}

# (first, count, stride), lowest, highest
SHARED_RANGES = (
    (34, 2, 100), (35, 0.25, 10), (36, 0.25, 5), (37, 1, 30), (38, 0, 8000), (40, 0, 5), (41, 0, 5), (43, 1, 64),
    ((44, 7, 1), 0, 5), (51, -40, 150), (52, 1, 255), (53, 0, 20), (54, 0, 5), (55, 0, 5), (56, -30, 80),
    (57, 1, 255), (58, 1000, 20000), (60, 1000, 20000), (62, 0, 250), (63, 0, 250), (64, 0, 250), (65, 0, 1000),
    (66, 0, 250), (67, 0, 30), ((68, 16, 1), 0, 30),
)
FUEL_RANGES = (
    (17, 0, 15), (18, -30, 30), (31, -30, 30), (33, -30, 30), ((84, 20, 1), 0, 60), ((104, 20, 1), -30, 30),
    (125, 0, 1000), ((130, 8, 1), -50, 50), ((138, 8, 1), -50, 50), (148, 3, 30), (149, 3, 30), (151, 0, 5),
    (152, 0, 2.5), (153, 0, 1.5), (154, 0, 15), (155, -30, 80), (156, 0, 2.5), (157, 0, 1.5),
    ((158, 20, 1), 0, 250), ((178, 20, 1), -50, 50), (198, 0.85, 51.75), (200, 0, 250), (201, 0, 150),
    (202, 0.25, 2), (203, 0, 250), (204, 0, 250), (205, 0, 150), (206, 0, 15), (207, 0, 15), (208, 0, 3900),
    (209, 0, 3900), (211, 0, 150), ((212, 8, 2), 0, 12000), ((228, 8, 1), 0, 100), (236, 0, 1.5),
    ((237, 20, 1), -1000, 1000), (258, 0.25, 10), (259, 1, 15), (260, 2000, 20000), (266, 0, 800), (267, 0, 15),
    (277, 2, 12), (278, 0, 50), (279, 1000, 11000), (281, 0, 80), (282, 0, 11000), ((283, 10, 1), 9.77, 29.28),
    ((293, 10, 1), 0, 5), (303, 0, 5), (304, 0, 5), ((305, 4, 1), 1, 255), (309, 1, 100), ((310, 3, 1), -30, 80),
    ((313, 3, 1), 500, 2000), (318, 0, 10), (319, 0, 10), (320, 0, 3900), (321, 0, 3900), (322, 1, 100),
)
IGNITION_RANGES = ((85, 0, 1000), ((130, 20, 1), -30, 30))
SHARED_WHOLE = ((3, 0, 255), (4, 0, 255), (7, 0, 255), ((9, 8, 1), 0, 255))
FUEL_WHOLE = (
    (2194, 0, 16), (2196, 1, 2), (2197, 0, 1), (2198, 1, 16), (2199, 0, 3), (2200, 1, 30), (2201, 50, 2000),
    (2202, 0, 7), (2203, 0, 40), (2204, 0, 1), (2205, 0, 3), (2206, 100, 2000), ((2207, 13, 1), 0, 12),
    (2220, 0, 1), (2221, 0, 1), (2222, 0, 1), (2223, 0, 1), ((2292, 6, 1), 8, 16),
)
IGNITION_WHOLE = (
    (1026, 0, 16), (1029, 0, 1), (1032, 1, 30), (1034, 0, 7), (1035, 0, 40), (1037, 0, 3), ((1039, 13, 1), 0, 12),
    (1054, 0, 1), (1055, 0, 1),
)
NAME_CHARACTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 -_.()'"

WILD_BARS = (0.0, 0.0, 0.25, 0.5, 0.75, 1.4, 1.5, 2.5, 3.5, 4.4, 4.5, 5.0, 10.0, 255.0, -1.0, -0.5, 1e-3)
WILD_UNITS = (0, 1, 2, 3, 4, 5, 6, 7, 12, -1, -0.5, 0.5, 1.5, 2.5, 6.5, 255, 1e6)
WILD_SCALERS = (0.00004, 0.00006, 0.0001, -0.05, -1.0, 0.5, 5.0, 40.0, 0.05294999, 1e-20)
WILD_OFFSETS = (0.0, 5.0, 6.0, -5.0, -0.00004, 0.5, 4.99996, 100.0)
WILD_AXES = (0, 1, 15, 16, 0x33, 0x37, 0x70, 0x77, 255, 256, 300, 4096, -1, -16, 55.5, 56.5, 71.9)
WILD_SIZES = (0, 1, 7, 7.5, 8, 25, 255, 256, 300, -3, 16.5)
WILD_LAYOUTS = (0, 1, 15, 16, 128, 129, 135, 143, 144, 240, 255, 256, 273, -1, -16, 63.5, 64.5)
WILD_BYTES = (0, -0.5, 0.5, 1.5, 15.5, 15.7, 16, 254.5, 255, 255.5, 256, 300, -1, -20, -50, -255.5, -256, 32767)
HUGE = (32767.5, 32768, 40000, -32768, -32769, 65535, 1e10, -1e10, 3e38, -3e38, 1e-38, math.inf, -math.inf,
        math.nan)


def expand(places):
    return [places] if isinstance(places, int) else [places[0] + i * places[2] for i in range(places[1])]


def expanded(*tables):
    return [(expand(where), low, high) for table in tables for where, low, high in table]


_RANGES = {True: expanded(SHARED_RANGES, FUEL_RANGES), False: expanded(SHARED_RANGES, IGNITION_RANGES)}
_WHOLE = {True: expanded(SHARED_WHOLE, FUEL_WHOLE), False: expanded(SHARED_WHOLE, IGNITION_WHOLE)}


class Generator:
    """Random calibrations of one kind."""

    def __init__(self, kind, seed, sensors=None):
        """sensors given: every file is of old or unknown firmware and finds its sensor in that list."""
        self.kind = kind
        self.rng = random.Random("%s %d" % (kind.name, seed))
        self.sensors = sensors

    def file(self):
        """The bytes of the next calibration file and its S-record text, None where there is none."""
        data = self._candidate()
        try:
            return data, unit_encoder.encode(data, self.sensors)
        except EncodeError:
            return data, None

    # Values -----------------------------------------------------------------------------------------

    def value(self, low, high):
        """Limits, whole numbers and halves come often: there the roundings have their ties."""
        rng = self.rng
        style = rng.random()
        if style < 0.06:
            return low
        if style < 0.12:
            return high
        v = low + (high - low) * rng.random()
        if style < 0.40:
            v = math.floor(v)
        elif style < 0.55:
            v = math.floor(v * 2) / 2
        elif style < 0.75:
            v = math.floor(v * 100) / 100
        return v if v >= low else low

    def run(self, low, high, count):
        """As value, for a long run of cells at once."""
        draw = self.rng.random
        span = high - low
        values = [low + span * draw() for _ in range(count)]
        first = int(draw() * 12)
        values[first::4] = [max(low, math.floor(v)) for v in values[first::4]]
        values[first + 1::6] = [max(low, math.floor(v * 2) / 2) for v in values[first + 1::6]]
        values[first + 2::6] = [max(low, math.floor(v * 100) / 100) for v in values[first + 2::6]]
        values[int(draw() * count)] = low
        values[int(draw() * count)] = high
        return values

    def wild(self):
        rng = self.rng
        style = rng.random()
        if style < 0.02:
            return rng.choice(HUGE)
        if style < 0.30:
            return rng.choice(WILD_BYTES)
        if style < 0.60:
            return rng.randint(-600, 1200) / 2
        if style < 0.80:
            return rng.uniform(-200, 400)
        return rng.uniform(-2, 2)

    # A calibration as a user makes it ---------------------------------------------------------------

    def _candidate(self):
        rng, kind = self.rng, self.kind
        self.cell = [0.0] * kind.cells
        self.code = self._code()
        self.version = PROGRAM_VERSION
        self.length = kind.cells
        if rng.random() < 0.3:
            self.cell = [float(rng.randint(-100, 300)) for _ in self.cell]
        self._fill_ranges()
        self._fill_layout()
        self._fill_sensor()
        helper = self._helper()
        self._fill_pressures(helper)
        self._fill_gpio(helper)
        self._fill_tables()
        if kind.has_fuel:
            self._fill_fuel(helper)
        self._fill_texts()
        if rng.random() < WILD_SHARE:
            self._go_wild()
        cells = self.cell[:self.length] + [7.0] * (self.length - kind.cells)
        return struct.pack("<3f%df" % self.length, kind.number, self.version, self.code, *cells)

    def _code(self):
        rng = self.rng
        if self.sensors is not None:
            return rng.choice((0, 0, 0, 1099, 2099, 3000))
        style = rng.random()
        if style < NEWEST_OFTEN:
            release, build = self.kind.newest
            return 1000 * release + build
        if style < 0.9:
            return rng.choice(FIRMWARE_CODES)
        return rng.randint(0, 9) * 1000 + rng.randint(0, 99)

    def _helper(self):
        """The sensor as the encoder sees it, on the cells filled so far."""
        helper = unit_encoder.Calibration.__new__(unit_encoder.Calibration)
        helper.kind = self.kind
        helper.cell = [f32(v) for v in self.cell[:130]]
        helper.release = self.code // 1000 if self.code else self.kind.newest[0]
        return helper

    def _fill_ranges(self):
        cell, value, rng = self.cell, self.value, self.rng
        for places, low, high in _RANGES[self.kind.has_fuel]:
            for i in places:
                cell[i] = value(low, high)
        for places, low, high in _WHOLE[self.kind.has_fuel]:
            for i in places:
                cell[i] = rng.randint(low, high)

    def _fill_layout(self):
        cell, rng = self.cell, self.rng
        for i in range(3):
            cell[i] = rng.randint(0, 255)
        cell[5] = rng.randint(1, 58)
        cell[6] = rng.randint(int(cell[5]), 58)
        cell[8] = rng.choice((0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 12, 15)) * 16 + rng.randint(0, 15)

    def _fill_sensor(self):
        cell, rng, kind = self.cell, self.rng, self.kind
        bar = rng.choice((1.0, 2.0, 3.0, 4.0, 1.0, 2.0, 3.0, 2.5, 1.25, 5.0, 7.5, 10.0))
        cell[kind.display] = bar
        cell[39] = bar if bar < 4 and bar == int(bar) else 4.0
        units = rng.randint(0, 6)
        cell[kind.sensor], cell[kind.units] = rng.randint(1, 30), units
        cell[1] = int(cell[1]) | 1 if units == 6 else int(cell[1]) & 254
        cell[kind.scaler] = cell[kind.offset] = 0.0
        if rng.random() < 0.15:
            return  # no sensor chosen: the default one
        low_kpa, high_kpa = rng.uniform(0, 30), rng.uniform(100, 420)
        if units == 3:
            low, high = low_kpa / 6.895 - 14.696, high_kpa / 6.895 - 14.696
        else:
            factor = {0: 1.0, 1: 1.0, 2: 0.14504, 4: 7.501, 5: 0.2953, 6: 1.0}[units]
            low, high = low_kpa * factor, high_kpa * factor
        low_volts, high_volts = rng.uniform(0, 0.5), rng.uniform(4.5, 5)
        scaler = (high_volts - low_volts) / (high - low)
        offset = low_volts - low * scaler
        digits = rng.choice((4, 4, 5, 8))
        cell[kind.scaler], cell[kind.offset] = max(round(scaler, digits), 0.0005), round(offset, digits)

    def _pressure(self, helper):
        """A pressure cell: a pressure that the sensor can measure, on the legacy scale."""
        pressure = self.value(helper.MAPMin(), helper.MAPMax())
        return helper.voltsToKPa(helper.pressureToVolts(f32(pressure)))

    def _fill_pressures(self, helper):
        for i in (42, *range(self.kind.pressures, self.kind.pressures + 32, 2)):
            self.cell[i] = self._pressure(helper)

    def _fill_tables(self):
        cell, kind = self.cell, self.kind
        for i in range(kind.speeds, kind.speeds + 32, 2):
            cell[i] = self.value(0, 20000)
        cell[kind.advance:kind.advance + 256] = self.run(0, 60, 256)
        for first in kind.outputs:
            cell[first:first + 256] = self.run(0, 100, 256)
        cell[kind.user_trims:kind.user_trims + 8] = [self.value(-15, 15) for _ in range(8)]

    # Input/output blocks ----------------------------------------------------------------------------

    def _fill_gpio(self, helper):
        for pin in range(self.kind.pins):
            first = self.kind.first_block + 9 * pin
            function = self.rng.choice(GPIO_FUNCTIONS)
            self.cell[first:first + 9] = [function] + self._gpio_parameters(function, helper)

    def _gpio_parameters(self, function, helper):
        value, rng = self.value, self.rng
        c = [0.0] * 9
        if function in (1, 2, 4, 5, 6, 9, 10):
            for i in (1, 3):
                c[i] = value(0, 20000)
            for i in (5, 7):
                c[i] = self._pressure(helper)
        elif function == 3:
            c[1], c[2], c[3] = value(-40, 150), value(-40, 150), rng.randint(0, 1)
        elif function == 7:
            c[1], c[2], c[7] = value(0, 255), value(0, 255), rng.randint(1, 2)
            c[3], c[5] = self._pressure(helper), self._pressure(helper)
        elif function == 8:
            c[1], c[2] = rng.choice((1, 2, 1, 2, 0, 3, 1.5)), rng.choice((30, 60, 120, 60, 24, 0, 29.5))
        elif function == 12:
            c[1], c[2] = value(0, 50), value(-50, -1)
        elif function == 13:
            c[1] = value(0, 4000)
        elif function == 14:
            c[1], c[2] = value(0, 255), value(1500, 11000)
        elif function == 15:
            c[1], c[3] = value(0, 20000), rng.choice((5, 10, 20))
        elif function in (16, 19):
            c[1], c[2] = value(-30, -1), value(1, 30)
        elif function in (17, 18):
            c[1], c[2] = value(0, 50), value(-50, -1)
        elif function == 20:
            c[1], c[2] = value(-30, 30), rng.choice((0, 1, 0.5, 2))
            for i in range(3, 9):
                c[i] = value(0, 200) * 0.05
        elif function == 21:
            c[1] = rng.choice((value(10, 40), value(0, 255), value(1000, 30000)))
            c[2], c[3], c[4] = value(2, 6), rng.randint(0, 60), value(10, 40)
        elif function == 23:
            c[1], c[2], c[3] = value(0, 1000), value(0, 1000), value(0, 12000)
            c[5], c[7] = self._pressure(helper), rng.randint(0, 1)
        elif function == 25:
            for i in range(1, 5):
                c[i] = value(0, 255) if helper.release >= 4 or i < 3 else value(0, 100)
            for i in range(5, 9):
                c[i] = value(0, 100)
        elif function not in (0, 11, 22):
            c = [value(-100, 300) for _ in range(9)]
        return c[1:]

    # The fuel side ----------------------------------------------------------------------------------

    def _fill_fuel(self, helper):
        cell, rng, kind = self.cell, self.rng, self.kind
        for i in (210, 257, 280):
            cell[i] = self._pressure(helper)
        for i in (210, 257):
            if rng.random() < 0.2:
                cell[i] = 0.0
        span = helper.MAPRange()
        entered = self.value(span * 0.05825 / 100, span * 0.0388)
        cell[199] = ((137 / (span * 0.0388)) * entered * helper.MAP_BAR()) / 34.3
        cell[150] = round(self.value(-15, 15) * 8) / 8
        cell[275], cell[276] = rng.choice((2, 4, 8, 16, 32, 64)), rng.choice((2, 4, 8, 16, 32, 64))
        cell[317] = rng.choice((255, 255, rng.randint(0, 255)))
        cell[316] = rng.randint(0, int(cell[317]))
        cell[2224] = rng.choice((0.08, 0.1, 0.5))
        cell[912:1168] = self.run(-50, 50, 256)
        if kind.staged is not None:
            cell[kind.staged:kind.staged + 256] = self.run(0, 100, 256)
        self._fill_fuel_ratio()
        self._fill_stops(helper)
        self._fill_fuel_trims()

    def _fill_fuel_ratio(self):
        cell, rng = self.cell, self.rng
        ratio = rng.choice((14.64, 14.7, 14.64, 14.64, 6.4, 9.0, 9.77, 1.0, 17.2))
        cell[2225] = ratio
        base = 14.7 / ratio
        first = self.kind.ratios
        cell[first:first + 256] = [base * v for v in self.run(ratio * 0.667, ratio + ratio, 256)]
        if rng.random() < 0.05:
            cell[2225] = 0.0  # answers 14.64 when it is read

    def _stop_range(self, kind, helper):
        if kind in ("CLT", "MAT"):
            return -40, 150
        if kind in ("RAW MAP", "BLEND MAP"):
            return helper.MAPMin(), helper.MAPMax()
        if kind == "TPS":
            return 0, 5
        if kind == "ACTUAL AFR":
            ratio = self.cell[2225] or 14.64
            return 0.667 * ratio, 2 * ratio
        return (0, 20000) if kind == "RPM" else (0, 100)

    def _fill_stops(self, helper):
        cell, rng = self.cell, self.rng
        for word_index, row_stops, column_stops in ((2290, 2226, 2242), (2291, 2258, 2274)):
            row, column = rng.randint(1, 15), rng.randint(1, 15)
            cell[word_index] = row * 16 + column
            for kind, first in ((row, row_stops), (column, column_stops)):
                low, high = self._stop_range(AXIS_KINDS[kind], helper)
                cell[first:first + 16] = sorted(self.value(low, high) for _ in range(16))

    def _fill_fuel_trims(self):
        """The cells as sent are copies of the user's, but for the eighth fuel trim: notes share its cell."""
        cell, first = self.cell, self.kind.user_fuel_trims
        cell[first:first + 8] = [self.value(-15, 15) for _ in range(8)]
        cell[504:511] = cell[first:first + 7]
        cell[511] = self.value(-15, 15)

    def _fill_texts(self):
        rng, kind = self.rng, self.kind
        name = "".join(rng.choice(NAME_CHARACTERS) for _ in range(rng.randint(1, 24))).ljust(24)
        self.cell[kind.name_cell:kind.name_cell + 24] = [ord(character) for character in name]
        length = rng.choice((0, 1, 60, 500, rng.randint(0, 500)))
        self.cell[kind.notes:kind.notes + length] = [rng.randint(32, 126) for _ in range(length)]

    # What no user enters ----------------------------------------------------------------------------

    def _go_wild(self):
        edits = [self._scatter, self._wild_bar, self._wild_units, self._wild_sensor, self._wild_layout,
                 self._wild_blocks, self._wild_code, self._wild_controls, self._other_length, self._old_version]
        if self.kind.has_fuel:
            edits += [self._clear_stops, self._clear_stops, self._wild_axes, self._wild_sizes, self._wild_baro,
                      self._no_duty, self._no_ratio]
        for edit in self.rng.sample(edits, self.rng.randint(1, 3)):
            edit()

    def _scatter(self):
        """Any value in any cell of the calibration proper."""
        for _ in range(self.rng.choice((1, 1, 3, 10, 40))):
            self.cell[self.rng.randrange(self.kind.notes)] = self.wild()

    def _wild_bar(self):
        choose = self.rng.choice
        self.cell[39] = choose(WILD_BARS)
        self.cell[self.kind.display] = choose((0.0, self.cell[39], choose(WILD_BARS)))

    def _wild_units(self):
        self.cell[self.kind.units] = self.rng.choice(WILD_UNITS)

    def _wild_sensor(self):
        choose, kind = self.rng.choice, self.kind
        if self.rng.random() < 0.7:
            self.cell[kind.scaler] = choose(WILD_SCALERS)
        self.cell[kind.offset] = choose(WILD_OFFSETS)

    def _wild_layout(self):
        self.cell[8] = self.rng.choice(WILD_LAYOUTS)
        self.cell[5], self.cell[6] = self.rng.choice(WILD_BYTES), self.rng.choice(WILD_BYTES)

    def _wild_blocks(self):
        rng = self.rng
        for pin in range(self.kind.pins):
            first = self.kind.first_block + 9 * pin
            style = rng.random()
            if style < 0.1:
                self.cell[first] = rng.choice(WILD_GPIO_FUNCTIONS)
            elif style < 0.7:
                self.cell[first + 1:first + 9] = [self.wild() for _ in range(8)]

    def _wild_code(self):
        if self.sensors is None:
            self.code = self.rng.choice(WILD_FIRMWARE_CODES)

    def _wild_controls(self):
        self.cell[self.rng.randrange(3)] = self.rng.choice(WILD_BYTES)

    def _old_version(self):
        """A program up to 9.44 kept no sizes."""
        self.version = self.rng.choice((9.44, 9.43, 9.45, 9.0, 1.0, 0.0))
        if self.kind.has_fuel:
            self.cell[2292:2298] = self.rng.choice(([0.0] * 6, [0.0, 12.0] + [0.0] * 4, [9.0, 0.0] + [0.0] * 4,
                                                    self.cell[2292:2298]))

    def _other_length(self):
        """A file that ends early, or one with cells behind its end."""
        rng, kind = self.rng, self.kind
        style = rng.random()
        if style < 0.25:
            self.length = MOST_CELLS
        elif style < 0.3:
            self.length = MOST_CELLS + 1
        elif style < 0.9:
            # An image divides by the cells of the ratio table.
            self.length = rng.randint(kind.ratios + 256 if kind.has_fuel else 0, kind.cells)
        else:
            self.length = rng.randint(0, kind.cells)

    def _clear_stops(self):
        """Stop points are seeded then, whatever the axes are."""
        self.cell[2242:2246] = [0.0] * 4
        if self.rng.random() < 0.5:
            self.cell[2226:2290] = [0.0] * 64
        if self.rng.random() < 0.5:
            self.cell[2290] = self.cell[2291] = 0.0

    def _wild_axes(self):
        self.cell[2290], self.cell[2291] = self.rng.choice(WILD_AXES), self.rng.choice(WILD_AXES)

    def _wild_sizes(self):
        for i in range(2292, 2298):
            self.cell[i] = self.rng.choice(WILD_SIZES)

    def _wild_baro(self):
        self.cell[130:138] = [self.rng.choice(WILD_BYTES) for _ in range(8)]
        self.cell[138:146] = self.rng.choice(([0.0] * 8, [self.rng.choice(WILD_BYTES) for _ in range(8)]))

    def _no_duty(self):
        self.cell[316], self.cell[317] = self.rng.choice(((0, 0), (200, 10), (-5, 255.5), (0, 255)))

    def _no_ratio(self):
        """A division by zero in the table, the curve or on an axis, or a fuel without a ratio."""
        choose = self.rng.choice
        where = choose((self.kind.ratios + self.rng.randrange(256), 283 + self.rng.randrange(10), 2225, 2225))
        self.cell[where] = 0.0
