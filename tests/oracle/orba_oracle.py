#!/usr/bin/env python3
"""A second encoder for ORB A calibrations, and a generator of random ones.

It shares no code with the program: the whole S-record text that the program makes from a
calibration file must equal the text made here, byte for byte.

    python3 orba_oracle.py --count 1000 --seed 1 --out DIR

writes DIR/00000.ZQ4OA with DIR/00000.s19 beside it, and so on. The same seed gives the same files.

Numbers: cells are 32-bit floats, arithmetic is done in 64 bits in the order written, and the named
sensor functions round their result to 32 bits when they return. What a formula gives is a 32-bit float
before it becomes a whole number, half to even: 50 * 2.55 is 127.49999999999999 in 64 bits, but a knock
threshold of 50 is byte 128, as 127.5 is the nearest 32-bit float and 128 its even neighbour. The two
sensor words alone are rounded in 64 bits.
"""

import argparse
import math
import os
import random
import struct
import sys

CELLS_IN_FILE = 2828
HEADER_BYTES = 12
FILE_BYTES = HEADER_BYTES + 4 * CELLS_IN_FILE
BASE_ADDRESS = 4352
NEWEST_RELEASE_WITHOUT_STOPS = 4

TEMPERATURE = 255 / 190
LEGACY_K = (0.0, 876 / 1024, 940 / 1024, 996 / 1024, 992 / 1024)
LEGACY_L = (0.0, 100.0, 36.0, 4.0, 28.0)

UNITS = ("kPa", "kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow")
# Atmosphere and zero shift of each unit, for the two sensor words.
UNIT_A_U = {
    "kPa": (101.325, 0.0),
    "PSIA": (14.696, 0.0),
    "PSIG": (0.0, -14.696),
    "mmHg": (760.0, 0.0),
    "inHg": (29.921, 0.0),
}
AXIS_KINDS = ("", "CLT", "RAW MAP", "BLEND MAP", "TPS", "ACTUAL AFR", "MAT", "RPM") + tuple(
    "GPIO%d" % n for n in range(1, 9))

_F32 = struct.Struct("<f")


class EncodeError(ValueError):
    """The calibration cannot become an image: a number does not fit, a division by zero, a bad index."""


def f32(value):
    """The nearest 32-bit float."""
    try:
        return _F32.unpack(_F32.pack(value))[0]
    except OverflowError as error:
        raise EncodeError("too large for a 32-bit float: %r" % value) from error


def int16(value):
    """The 32-bit float of a number, half to even; a number outside 16 bits is an error."""
    try:
        whole = round(f32(value))
    except (ValueError, OverflowError) as error:
        raise EncodeError("no number: %r" % value) from error
    if not -32768 <= whole <= 32767:
        raise EncodeError("does not fit 16 bits: %r" % value)
    return whole


def round_to(value, decimals):
    scale = 10.0 ** decimals
    return round(value * scale) / scale


def word(value):
    """High and low byte. The high byte is truncated toward zero, so -1 gives (0, 255)."""
    x = int16(value)
    return [int(x / 256), x & 255]


def temperature_byte(value):
    return int16((value + 40) * TEMPERATURE)


class Calibration:
    """The cells of one opened file, and what the encoder asks about them."""

    def __init__(self, data, release=None, build=None):
        if len(data) < HEADER_BYTES + 4:
            raise EncodeError("no calibration file: %d bytes" % len(data))
        kind, self.program_version, code = struct.unpack_from("<3f", data)
        if kind != 3.0:
            raise EncodeError("no ORB A file: kind %r" % kind)
        count = (len(data) - HEADER_BYTES) // 4
        if count > 3001:
            raise EncodeError("more than 3001 cells")
        self.cell = list(struct.unpack_from("<%df" % count, data, HEADER_BYTES))
        self.cell += [0.0] * (3001 - count)
        self._set_firmware(code, release, build)
        try:
            self._repair()
        except (ZeroDivisionError, OverflowError) as error:
            raise EncodeError(str(error)) from error

    def _set_firmware(self, code, release, build):
        """release and build given: the image is made for that firmware and the header's code is ignored."""
        if release is not None:
            self.release, self.build = release, build or 0
        elif code == 0:
            # Release 5 build 99 then, and the sensor comes from the list of known sensors.
            raise EncodeError("a file without a firmware code needs the sensor list")
        else:
            self.release = int(code / 1000)
            self.build = round(code - self.release * 1000)

    # What opening a file puts right -------------------------------------------------------------

    def _repair(self):
        cell = self.cell
        if not any(cell[2242:2246]):
            self._seed_stops()
        if cell[2290] == 0 and cell[2291] == 0:
            cell[2290] = cell[2291] = 3 * 16 + 7.0  # rows BLEND MAP, columns RPM
        if self._main_rows() == 0:
            cell[2292:2298] = [16.0] * 6
        if not any(cell[138:146]):
            cell[138:146] = [-50.0, -43.0, -35.0, -28.0, -20.0, -13.0, -5.0, 3.0]
            cell[2225] = f32(14.64)

    def _seed_stops(self):
        cell = self.cell
        for i in range(16):
            low, high = self.MAPMin(), self.MAPMax()
            shown = self.pressure_reader(624 + 2 * i)
            if shown < low:
                self.pressure_writer(624 + 2 * i, f32(low + 0.1))
            elif shown > high:
                self.pressure_writer(624 + 2 * i, f32(high - 0.1))
            cell[2242 + i] = cell[2274 + i] = cell[592 + 2 * i]
            cell[2226 + i] = cell[2258 + i] = self.pressure_reader(624 + 2 * i)

    def _main_rows(self):
        cell = self.cell
        if self.program_version <= f32(9.44) and cell[2292] == 0 and cell[2293] == 0:
            cell[2292] = cell[2293] = 16.0
        return cell[2292]

    # The sensor -----------------------------------------------------------------------------------

    def MAP_BAR(self):
        cell = self.cell
        if cell[39] == 0:
            cell[39] = 1.0
        if cell[124] == 0:
            cell[124] = cell[39]
        return cell[124]

    def MAP_Scaler(self):
        return f32(0.05295) if self.cell[126] == 0 else f32(round_to(self.cell[126], 4))

    def MAP_Offset(self):
        return f32(-0.54738) if self.cell[126] == 0 else f32(round_to(self.cell[127], 4))

    def MAPUnits(self):
        code = round(self.cell[129])
        return UNITS[code] if 0 <= code < len(UNITS) else ""

    def MAPMax(self):
        if self.release < 3:
            return f32(self.MAP_BAR() * 104)
        return f32((5 - self.MAP_Offset()) / self.MAP_Scaler())

    def MAPMin(self):
        if self.release < 3:
            return f32(self.MAP_BAR())
        return f32(-self.MAP_Offset() / self.MAP_Scaler())

    def MAPRange(self):
        return f32(self.MAPMax() - self.MAPMin())

    def MAPPrecision(self):
        top = self.MAPMax()
        if top >= 1000:
            return 0
        if top >= 100:
            return 1
        if top >= 10:
            return 2
        return 3 if top >= 0 else 4

    def legacy(self):
        """K, L of the bar rating; a rating outside the table is an error."""
        rating = int16(self.cell[39])
        if not 0 <= rating <= 4:
            raise EncodeError("bar rating %d" % rating)
        return LEGACY_K[rating], LEGACY_L[rating]

    def voltsToKPa(self, volts):
        bar = self.MAP_BAR()
        k, l = self.legacy()
        return f32((k * (volts * 204.6) + l) * 0.1016618 * bar)

    def KpaToVolts(self, kpa):
        bar = self.MAP_BAR()
        k, l = self.legacy()
        return f32((((kpa / bar) / 0.1016618) - l) / k / 204.6)

    def voltsToPressure(self, volts):
        if self.release < 3:
            return self.voltsToKPa(volts)
        return f32((volts - self.MAP_Offset()) / self.MAP_Scaler())

    def pressureToVolts(self, pressure):
        if self.release < 3:
            return self.KpaToVolts(pressure)
        return f32(self.MAP_Scaler() * pressure + self.MAP_Offset())

    def KpaToCounts(self, kpa, eight_bit):
        if self.release < 3:
            return f32((kpa / self.MAP_BAR()) * 9.8365)
        counts = self.KpaToVolts(kpa) * 204.6
        return f32(counts / 4 if eight_bit else counts)

    def pressure_reader(self, index):
        pressure = self.voltsToPressure(self.KpaToVolts(self.cell[index]))
        return f32(round_to(pressure, self.MAPPrecision()))

    def pressure_writer(self, index, pressure):
        self.cell[index] = self.voltsToKPa(self.pressureToVolts(pressure))

    # Tables ---------------------------------------------------------------------------------------

    def AFR(self):
        if self.cell[2225] == 0:
            self.cell[2225] = f32(14.64)
        return self.cell[2225]

    def axis_kind(self, table, rows):
        packed = int16(self.cell[2289 + table])
        return AXIS_KINDS[(packed >> 4) & 15 if rows else packed & 15]

    def Initialize_Trims(self):
        """Fuel trims are copied one to one. The sixteen injector cells are event slots in firing order,
        which repeat after one engine cycle, so user trim k stands in every slot k + n, k + 2n, ..."""
        cell = self.cell
        cell[504:512] = cell[2320:2328]
        cylinders = (int16(cell[8]) & 240) // 16
        if cylinders <= 0 or cylinders > 8:
            cylinders = 8
        for i in range(16):
            cell[520 + i] = cell[2312 + i % cylinders]

    # The image ------------------------------------------------------------------------------------

    def image(self):
        """ConvertData on a fresh object: 2501 elements, one unit byte each, as numbers."""
        try:
            return _Image(self).element
        except (ZeroDivisionError, OverflowError, IndexError) as error:
            raise EncodeError(str(error)) from error


class _Image:
    """Walks the map of the image in index order."""

    def __init__(self, cal):
        self.cal = cal
        self.cell = cal.cell
        self.element = [0] * 2501
        # A frequency that the firmware does not know keeps the code of the previous full-table block,
        # and 0 stands before the first of them in each run.
        self.frequency_code = 0
        self._engine()
        self._sensors_and_limits()
        self._advance_curves()
        self._fuel()
        self._sensor_words()
        self._ego_and_idle()
        self._gpio()
        # The fuel trim bytes are part of the walk, so they come from the cells as the file holds them;
        # the copy from the user's trims runs after the walk, before the injector trim bytes.
        self._map(504, 8, lambda v: v + 50)
        self._map(560, 24, lambda v: v)
        self._tables()
        cal.Initialize_Trims()
        self._injector_trims()
        self._stops()
        if cal.release <= NEWEST_RELEASE_WITHOUT_STOPS:
            self.element[2192:2208] = [0] * 16

    def _map(self, index, count, formula):
        cell = self.cell
        self.element[index:index + count] = [int16(formula(v)) for v in cell[index:index + count]]

    def _one(self, index, value):
        self.element[index] = int16(value)

    def _word(self, index, value):
        self.element[index:index + 2] = word(value)

    def _plain(self, *indexes):
        for i in indexes:
            self._one(i, self.cell[i])

    def _times(self, factor, *indexes):
        for i in indexes:
            self._one(i, self.cell[i] * factor)

    def _over(self, divisor, *indexes):
        for i in indexes:
            self._one(i, self.cell[i] / divisor)

    def _temperature(self, *indexes):
        for i in indexes:
            self.element[i] = temperature_byte(self.cell[i])

    def _pressure8(self, index, zero_stays_zero):
        if zero_stays_zero and self.cell[index] == 0:
            self.element[index] = 0
            return
        counts = int16(self.cal.KpaToCounts(self.cell[index], True))
        self.element[index] = min(255, max(0, counts))

    def _pressure_word(self, index, kpa):
        self.element[index:index + 2] = word(self.cal.KpaToCounts(kpa, False))

    def _duty(self, *indexes):
        low, high = self.cell[316], self.cell[317]
        for i in indexes:
            self._one(i, (high - low) * (self.cell[i] / 100) + low)

    def _engine(self):
        cell = self.cell
        self._plain(0, 1, 2, 3, 4)
        for i in (5, 6):
            tooth = int16(14 - cell[i])
            self.element[i] = tooth + 60 if tooth < 0 else tooth
        self._plain(*range(7, 18))

    def _sensors_and_limits(self):
        cell = self.cell
        self._times(2.55, 34)
        self._times(8.5, 35, 36, 37)
        self._over(51, 38)
        self._plain(39)
        self._times(51, 40, 41)
        self._pressure8(42, False)
        self._plain(43)
        self._times(51, *range(44, 51))
        self._temperature(51)
        self._plain(52, 53)
        self._times(51, 54, 55)
        self._temperature(56)
        self._plain(57)
        self._word(58, cell[58])
        self._word(60, cell[60])
        self._plain(62, 63, 64)
        self._over(4, 65)
        self._plain(66)
        # The cell already stands without the engine's offset.
        self._times(4.25, 67)

    def _advance_curves(self):
        cell = self.cell
        self._map(68, 36, lambda v: v * 4.25)
        self._map(104, 20, lambda v: (v + 30) * 4.25)
        if cell[124] == 0:
            cell[124] = 1.0
        self._times(25, 124)
        self._over(4, 125)
        self.element[126:134] = cell[130:138]
        self.element[140:148] = [f32(v + 50) for v in cell[138:146]]

    def _fuel(self):
        cell = self.cell
        self._word(148, cell[148] * 1000)
        self.element[150] = int16(cell[150] * 8) & 255
        self.element[151] = int16(cell[151] * 50) & 255
        self._times(100, 152, 153, 156, 157)
        self._times(8, 154)
        self._temperature(155)
        self._map(158, 20, lambda v: v)
        self._map(178, 20, lambda v: v + 50)
        self._one(198, (cell[198] - 0.75) * 5)
        self._one(199, (137 / (self.cal.MAPRange() * 0.0388)) * cell[199])
        self._plain(200, 201)
        self._times(16, 202)
        self._plain(203, 204, 205)
        self._times(8, 206)
        self._times(16, 207)
        self._over(16, 208, 209)
        self._pressure8(210, True)
        self._plain(211)
        for i in range(212, 228, 2):
            self._word(i, cell[i])
        self._map(228, 8, lambda v: v)
        self._times(51, 236)
        self._map(237, 20, lambda v: (v + 1000) / 8)
        self._pressure8(257, True)
        self._times(16, 258, 259)
        self._word(260, cell[260])

    def _sensor_words(self):
        gain, zero = sensor_words(self.cal.MAP_Scaler(), self.cal.MAP_Offset(), self.cal.MAPUnits())
        self._word(262, gain)
        self._word(264, zero)
        self.element[266] = int(int16(self.cell[266]) / 4)
        self.element[267] = f32(self.cell[267] * 10)

    def _ego_and_idle(self):
        self._plain(*range(275, 279))
        self._over(64, 279)
        self._pressure8(280, False)
        self._temperature(281)
        self._over(64, 282)
        self._map(283, 10, lambda v: ((14.64 / v) - 0.5) * 255)
        self._map(293, 12, lambda v: v * 51)
        self._map(305, 4, lambda v: 256 - v)
        self._duty(309)
        self._temperature(310, 311, 312)
        self._over(16, 313, 314, 315)
        self._plain(316, 317)
        self._times(4.25, 318, 319)
        self._over(16, 320, 321)
        self._duty(322)

    def _gpio(self):
        for index in range(336, 408, 9):
            block = self.cell[index:index + 9]
            encoded = self._gpio_block(index, block)
            # Bytes that a function does not name stay as they were found: 0 in a fresh object.
            self.element[index:index + len(encoded)] = encoded

    def _gpio_block(self, index, c):
        function = int16(c[0])
        if function in (0, 11, 22):
            return [{0: 0, 11: 6, 22: 16}[function]] + [0] * 8
        if function in (1, 2, 4, 5, 6, 9, 10):
            return self._gpio_switch(function, c)
        if function == 3:
            return [4, temperature_byte(c[1]), temperature_byte(c[2]), int16(c[3]), 0, 0, 0, 0]
        if function == 7:
            return ([5, int16(c[1]), int16(c[2])] + self._counts(c[3]) + self._counts(c[5]) + [int16(c[7])])
        if function == 8:
            return self._gpio_full_table(index, c)
        if function == 12:
            return [18, int16(c[1]), int16(c[2]), 0, 0, 0]
        if function == 13:
            return [25] + word(c[1]) + [0] * 6
        if function == 14:
            return [26, int16(c[1]), int16(c[2])]
        if function == 15:
            return [27] + word(c[1]) + [int16(c[3])] + [0] * 5
        if function in (16, 19):
            angles = [int16((c[1] + 30) * 4.25), int16((c[2] + 30) * 4.25)]
            return [17] + angles if function == 16 else [19] + angles + [0]
        if function in (17, 18):
            return [function + 3, int16((c[1] + 50) * 2.55), int16((c[2] + 50) * 2.55)] + [0] * 6
        if function == 20:
            return self._gpio_timed_advance(c)
        if function == 21:
            return [31, c[1]] + [0] * 7
        if function == 23:
            return ([28, int16(c[1] / 4.096), int16(c[2] / 4.096)] + word(c[3]) + self._counts(c[5]) +
                    [int16(c[7]), 0])
        if function == 25:
            return self._gpio_boost(c)
        return []

    def _counts(self, kpa):
        return word(self.cal.KpaToCounts(kpa, False))

    def _gpio_switch(self, function, c):
        if function == 1:
            return [3, 0, 0] + word(c[3]) + [0, 0] + self._counts(c[7])
        if function in (2, 4, 5):
            return [3] + word(c[1]) + [255, 255] + self._counts(c[5]) + [255, 255]
        if function == 6:
            return [3] + word(c[1]) + [255, 255, 0, 0, 0]
        return [3 if function == 9 else 2] + word(c[1]) + word(c[3]) + self._counts(c[5]) + self._counts(c[7])

    def _gpio_full_table(self, index, c):
        """c1 is the table, c2 the frequency."""
        if c[1] != 1 and c[1] != 2:
            c[1] = self.cell[index + 1] = 1.0
        release, build = self.cal.release, self.cal.build
        early = release < 2 or (release == 2 and build <= 6)
        codes = {60.0: 0, 120.0: 1} if early else {30.0: 0, 60.0: 1}
        self.frequency_code = codes.get(c[2], self.frequency_code)
        return [1, int16(c[1]), self.frequency_code, 0, 0, 0]

    def _gpio_timed_advance(self, c):
        head = [22, int16((c[1] + 30) * 4.25)]
        release, build = self.cal.release, self.cal.build
        if release >= 5:
            return (head + [0 if c[2] == 0 else 255] + word(c[3] * 244) + word(c[5] * 244) + word(c[7] * 244))
        if release > 2 or (release == 2 and build > 17):
            return head + [0, 0] + word(c[4] * 122) + word(c[6] * 122) + [0]
        return head + [int16(c[2] * 122), int16(c[3] * 122), 0]

    def _gpio_boost(self, c):
        release, build = self.cal.release, self.cal.build
        if release < 4 or (release == 4 and build < 3):
            return [9, int16(c[1]), int16(c[2]), int16(c[3] * 2.55), int16(c[4] * 2.55), int16(c[5]), 0, 0, 0]
        return [9] + [int16(v) for v in c[1:5]] + [int16(v * 2.55) for v in c[5:9]]

    def _tables(self):
        cell = self.cell
        self.element[590], self.element[591] = cell[2293], cell[2292]
        for i in range(592, 624, 2):
            self._word(i, cell[i])
        for i in range(624, 656, 2):
            self._pressure_word(i, cell[i])
        self._map(656, 256, lambda v: v * 4.25)
        self._map(912, 256, lambda v: v + 50)
        self._map(1168, 256, lambda v: v)
        stoichiometric = self.cal.AFR()
        self._map(1424, 256, lambda v: ((stoichiometric / v) - 0.5) * 255)
        self._map(1680, 512, lambda v: v * 2.55)

    def _injector_trims(self):
        for i in range(520, 536):
            v = self.cell[i]
            if v > 0:
                self.element[i] = 128 - int16(v * 8.533333)
            elif v == 0:
                self.element[i] = 128
            else:
                self.element[i] = int16(-v * 8.533333 + 127)

    def _stops(self):
        cell = self.cell
        self.element[2192:2196] = [cell[2290], cell[2291], cell[2295], cell[2294]]
        self.element[2260:2262] = [cell[2297], cell[2296]]
        # (image index, first cell, table, row axis)
        for target, source, table, rows in ((2196, 2242, 1, False), (2228, 2226, 1, True),
                                            (2262, 2274, 2, False), (2294, 2258, 2, True)):
            kind = self.cal.axis_kind(table, rows)
            for i in range(16):
                self._word(target + 2 * i, self.stop_to_unit(cell[source + i], kind))

    def stop_to_unit(self, v, kind):
        if kind in ("CLT", "MAT"):
            return (v + 40) * TEMPERATURE
        if kind in ("RAW MAP", "BLEND MAP"):
            return self.cal.KpaToCounts(v, False)
        if kind == "TPS":
            return v * 51
        if kind == "ACTUAL AFR":
            return ((self.cal.AFR() / v) - 0.5) * 255
        if kind == "RPM":
            return v
        if kind.startswith("GPIO"):
            return v * 2.55
        return 0  # no kind chosen: nothing to tell the unit


def sensor_words(scaler, offset, units):
    """Gain and zero word of a linear sensor, as whole numbers in 64-bit floats.

    A unit without an atmosphere (a flow sensor) makes the ratio 0. The gain is 0 then, and the zero
    word is taken from the shorter form that the long one reduces to, as that needs no division by it.
    """
    a, u = UNIT_A_U.get(units, (0.0, 0.0))
    ratio = (a - u) / 101.325
    gain = round(scaler * ratio * 20.46 * 4096)
    if ratio == 0:
        return gain, round((offset + u * scaler) * 204.6)
    return gain, round(-((((-offset) / scaler) - u) / ratio) * scaler * ratio * 204.6)


_HEX = ["%02X" % byte for byte in range(256)]


def s_records(element, release):
    """The S-record text of an image, line ends CR LF.

    An element that is no whole number is rounded first, and the padding, the digits and the sum all
    take the rounded number: so every line has 16 bytes. Negative numbers print their low byte.
    """
    lines = []
    for row in range(147 if release >= 5 else 137):
        address = BASE_ADDRESS + 16 * row
        values = [v if type(v) is int else int16(v) for v in element[16 * row:16 * row + 16]]
        total = 19 + (address & 255) + address // 256 + sum(values)
        digits = "".join([_HEX[v & 255] for v in values])
        lines.append("S113%04X%s%s\r\n" % (address, digits, _HEX[255 ^ (total & 255)]))
    lines.append("S9030000FC\r\n")
    return "".join(lines)


def image_of(file_bytes, release=None, build=None):
    """The 2501 image elements of a calibration file."""
    return Calibration(file_bytes, release, build).image()


def encode(file_bytes, release=None, build=None):
    """The S-record text of a calibration file, for the firmware of its header or for the one given."""
    calibration = Calibration(file_bytes, release, build)
    return s_records(calibration.image(), calibration.release)


# Random calibrations ------------------------------------------------------------------------------

# The builds on both sides of every change of rules.
FIRMWARE_CODES = (1000, 1005, 1099, 2000, 2006, 2007, 2017, 2018, 2099, 3000, 3001, 3099, 4000, 4002, 4003,
                  4099, 5000, 5001, 5099)
GPIO_FUNCTIONS = tuple(range(26))

# index or (first, count, stride), lowest, highest
RANGES = (
    (17, 0, 15), (18, -30, 30), (31, -30, 30), (33, -30, 30), (34, 2, 100), (35, 0.25, 10), (36, 0.25, 5),
    (37, 1, 30), (38, 0, 8000), (40, 0, 5), (41, 0, 5), (43, 1, 64), ((44, 7, 1), 0, 5), (51, -40, 150),
    (52, 1, 255), (53, 0, 20), (54, 0, 5), (55, 0, 5), (56, -30, 80), (57, 1, 255), (58, 1000, 20000),
    (60, 1000, 20000), (62, 0, 250), (63, 0, 250), (64, 0, 250), (65, 0, 1000), (66, 0, 250), (67, 0, 30),
    ((68, 16, 1), 0, 30), ((84, 20, 1), 0, 60), ((104, 20, 1), -30, 30), (125, 0, 1000),
    ((130, 8, 1), -50, 50), ((138, 8, 1), -50, 50), (148, 3, 30), (149, 3, 30), (151, 0, 5), (152, 0, 2.5),
    (153, 0, 1.5), (154, 0, 15), (155, -30, 80), (156, 0, 2.5), (157, 0, 1.5), ((158, 20, 1), 0, 250),
    ((178, 20, 1), -50, 50), (198, 0.85, 51.75), (200, 0, 250), (201, 0, 150), (202, 0.25, 2), (203, 0, 250),
    (204, 0, 250), (205, 0, 150), (206, 0, 15), (207, 0, 15), (208, 0, 3900), (209, 0, 3900), (211, 0, 150),
    ((212, 8, 2), 0, 12000), ((228, 8, 1), 0, 100), (236, 0, 1.5), ((237, 20, 1), -1000, 1000),
    (258, 0.25, 10), (259, 1, 15), (260, 2000, 20000), (266, 0, 800), (267, 0, 15), (277, 2, 12),
    (278, 0, 50), (279, 1000, 11000), (281, 0, 80), (282, 0, 11000), ((283, 10, 1), 9.77, 29.28),
    ((293, 10, 1), 0, 5), (303, 0, 5), (304, 0, 5), ((305, 4, 1), 1, 255), (309, 1, 100),
    ((310, 3, 1), -30, 80), ((313, 3, 1), 500, 2000), (318, 0, 10), (319, 0, 10), (320, 0, 3900),
    (321, 0, 3900), (322, 1, 100), ((592, 16, 2), 0, 20000), ((656, 256, 1), 0, 60),
    ((912, 256, 1), -50, 50), ((1168, 256, 1), 0, 100), ((1680, 512, 1), 0, 100), ((2312, 8, 1), -15, 15),
    ((2320, 8, 1), -15, 15),
)
WHOLE_NUMBERS = (
    (3, 0, 255), (4, 0, 255), (7, 0, 255), ((9, 8, 1), 0, 255), (2194, 0, 16), (2196, 1, 2), (2197, 0, 1),
    (2198, 1, 16), (2199, 0, 3), (2200, 1, 30), (2201, 50, 2000), (2202, 0, 7), (2203, 0, 40), (2204, 0, 1),
    (2205, 0, 3), (2206, 100, 2000), ((2207, 13, 1), 0, 12), (2220, 0, 1), (2221, 0, 1), (2222, 0, 1),
    (2223, 0, 1), ((2292, 6, 1), 8, 16),
)
# Cells that no element of the image is made from.
UNUSED = (list(range(19, 31)) + [32, 59, 61, 146, 147, 261] + list(range(213, 228, 2)) + list(range(262, 266)) +
          list(range(268, 275)) + list(range(323, 336)) + list(range(408, 504)) + list(range(512, 520)) +
          list(range(536, 560)) + list(range(584, 592)) + list(range(593, 656, 2)) + [2192, 2193, 2195] +
          list(range(2298, 2312)))
NAME_CHARACTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789 -_.()'"


def expand(places):
    return [places] if isinstance(places, int) else [places[0] + i * places[2] for i in range(places[1])]


_RANGE_CELLS = [(expand(where), low, high) for where, low, high in RANGES]
_WHOLE_CELLS = [(expand(where), low, high) for where, low, high in WHOLE_NUMBERS]


class Generator:
    """Random calibrations in range; the same seed gives the same files on every machine."""

    def __init__(self, seed):
        self.rng = random.Random(seed)

    def file(self):
        """The bytes of the next calibration file and its S-record text."""
        while True:
            data = self._candidate()
            try:
                return data, encode(data)
            except EncodeError:
                continue  # a sensor whose counts do not fit 16 bits; take another

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

    def _candidate(self):
        rng = self.rng
        self.cell = [0.0] * CELLS_IN_FILE
        code = rng.choice(FIRMWARE_CODES) if rng.random() < 0.8 else rng.randint(1, 5) * 1000 + rng.randint(0, 99)
        if rng.random() < 0.3:
            self._fill_unused()
        self._fill_ranges()
        self._fill_linked_scalars()
        self._fill_sensor()
        helper = self._helper(code)
        self._fill_pressures(helper)
        self._fill_gpio(helper)
        self._fill_fuel_ratio()
        self._fill_stops(helper)
        self._fill_texts()
        self._fill_trims()
        self._sometimes_leave_repairs(helper)
        return struct.pack("<3f%df" % CELLS_IN_FILE, 3.0, 10.2, code, *self.cell)

    def _helper(self, code):
        """The sensor as the encoder sees it, on the cells filled so far."""
        helper = Calibration.__new__(Calibration)
        helper.program_version = f32(10.2)
        helper.cell = [f32(v) for v in self.cell[:130]]
        helper.release, helper.build = code // 1000, code % 1000
        return helper

    def _fill_unused(self):
        for i in UNUSED:
            self.cell[i] = self.rng.randint(-100, 300)

    def _fill_ranges(self):
        cell, value, rng = self.cell, self.value, self.rng
        for places, low, high in _RANGE_CELLS:
            for i in places:
                cell[i] = value(low, high)
        for places, low, high in _WHOLE_CELLS:
            for i in places:
                cell[i] = rng.randint(low, high)

    def _fill_linked_scalars(self):
        cell, rng = self.cell, self.rng
        for i in range(3):
            cell[i] = rng.randint(0, 255)
        cell[5] = rng.randint(1, 58)
        cell[6] = rng.randint(int(cell[5]), 58)
        cell[8] = rng.choice((0, 1, 2, 3, 4, 5, 6, 7, 8, 10, 12, 15)) * 16 + rng.randint(0, 15)
        cell[150] = round(self.value(-15, 15) * 8) / 8
        cell[275], cell[276] = rng.choice((2, 4, 8, 16, 32, 64)), rng.choice((2, 4, 8, 16, 32, 64))
        cell[317] = rng.choice((255, 255, rng.randint(0, 255)))
        cell[316] = rng.randint(0, int(cell[317]))
        cell[2224] = rng.choice((0.08, 0.1, 0.5))

    def _fill_sensor(self):
        cell, rng = self.cell, self.rng
        bar = rng.choice((1.0, 2.0, 3.0, 4.0, 1.0, 2.0, 3.0, 2.5, 1.25, 5.0, 7.5, 10.0))
        cell[124] = bar
        cell[39] = bar if bar < 4 and bar == int(bar) else 4.0
        units = rng.randint(0, 6)
        cell[128], cell[129] = rng.randint(1, 30), units
        cell[1] = int(cell[1]) | 1 if units == 6 else int(cell[1]) & 254
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
        cell[126], cell[127] = max(round(scaler, digits), 0.0005), round(offset, digits)

    def _pressure(self, helper):
        """A pressure cell: a pressure that the sensor can measure, on the legacy scale."""
        pressure = self.value(helper.MAPMin(), helper.MAPMax())
        return helper.voltsToKPa(helper.pressureToVolts(f32(pressure)))

    def _fill_pressures(self, helper):
        cell, rng = self.cell, self.rng
        for i in (42, 210, 257, 280, *range(624, 656, 2)):
            cell[i] = self._pressure(helper)
        if rng.random() < 0.2:
            cell[210] = 0.0
        if rng.random() < 0.2:
            cell[257] = 0.0
        span = helper.MAPRange()
        entered = self.value(span * 0.05825 / 100, span * 0.0388)
        cell[199] = ((137 / (span * 0.0388)) * entered * helper.MAP_BAR()) / 34.3

    def _fill_gpio(self, helper):
        for pin in range(8):
            first = 336 + 9 * pin
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
            c[1], c[2] = rng.choice((1, 2, 1, 2, 0, 3)), rng.choice((30, 60, 120, 60, 24, 0))
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
        return c[1:]

    def _fill_fuel_ratio(self):
        cell, rng = self.cell, self.rng
        ratio = rng.choice((14.64, 14.7, 14.64, 14.64, 6.4, 9.0, 9.77, 1.0, 17.2))
        cell[2225] = ratio
        for i in range(1424, 1680):
            cell[i] = (14.7 / ratio) * self.value(ratio * 0.667, ratio + ratio)
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
        if not any(cell[2242:2246]):
            cell[2245] = cell[2246] or 1.0

    def _fill_texts(self):
        rng = self.rng
        name = "".join(rng.choice(NAME_CHARACTERS) for _ in range(rng.randint(1, 24))).ljust(24)
        self.cell[560:584] = [ord(character) for character in name]
        length = rng.choice((0, 1, 60, 500, rng.randint(0, 500)))
        self.cell[2328:2328 + max(0, length - 1)] = [rng.randint(32, 126) for _ in range(length - 1)]
        if length:
            self.cell[2327] = rng.randint(32, 126)

    def _fill_trims(self):
        """The cells as sent are copies of the user's, but for the eighth fuel trim: notes share its cell."""
        cell = self.cell
        cell[504:511] = cell[2320:2327]
        cell[511] = self.value(-15, 15)
        cell[520:536] = cell[2312:2320] * 2

    def _sometimes_leave_repairs(self, helper):
        cell, rng = self.cell, self.rng
        if rng.random() < 0.03:
            cell[138:146] = [0.0] * 8
        if rng.random() < 0.03:
            cell[2292] = 0.0
        # Stops are seeded on the default axes, with a pressure span whose rounding stays inside the limits.
        if rng.random() < 0.04 and 10 <= helper.MAPMax() < 1000:
            cell[2226:2290] = [0.0] * 64
            cell[2290] = cell[2291] = rng.choice((0.0, 55.0))


def write_pairs(count, seed, folder):
    """Writes count calibration files with their S-record files; answers the file names without extension."""
    generator = Generator(seed)
    names = []
    os.makedirs(folder, exist_ok=True)
    for number in range(count):
        data, text = generator.file()
        stem = os.path.join(folder, "%05d" % number)
        with open(stem + ".ZQ4OA", "wb") as file:
            file.write(data)
        with open(stem + ".s19", "wb") as file:
            file.write(text.encode("ascii"))
        names.append(stem)
    return names


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--out", required=True)
    options = parser.parse_args(arguments)
    write_pairs(options.count, options.seed, options.out)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
