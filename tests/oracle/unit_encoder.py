"""A second encoder for calibrations of every unit kind.

It shares no code with the program: the whole S-record text that the program makes from a
calibration file must equal the text made here, byte for byte.

Numbers: cells are 32-bit floats, arithmetic is done in 64 bits in the order written, and the named
sensor functions round their result to 32 bits when they return. What a formula gives is a 32-bit float
before it becomes a whole number, half to even: 50 * 2.55 is 127.49999999999999 in 64 bits, but a knock
threshold of 50 is byte 128, as 127.5 is the nearest 32-bit float and 128 its even neighbour. The two
sensor words alone are rounded in 64 bits.
"""

import math
import struct
from dataclasses import dataclass
from typing import Optional, Tuple

HEADER_BYTES = 12
MOST_CELLS = 3001
ELEMENTS = 2501
BASE_ADDRESS = 4352

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


class EncodeError(ValueError):
    """The calibration cannot become an image: a number does not fit, a division by zero, a bad index."""


# The kinds ------------------------------------------------------------------------------------------


@dataclass(frozen=True)
class Kind:
    """Where a unit kind keeps what. The defaults are those of the ORB A; None: the kind lacks it."""

    name: str
    number: float
    extension: str
    newest: Tuple[int, int]  # release and build of a file that does not know its firmware
    cells: int  # floats in a whole file
    pins: int
    first_block: int = 336
    rows: Tuple[int, int] = (137, 147)  # data lines of older and newer firmware
    newer_from: Optional[int] = 5
    display: int = 124
    scaler: int = 126
    offset: int = 127
    sensor: int = 128
    units: int = 129
    sent_trims: int = 520
    name_cell: int = 560
    speeds: int = 592
    pressures: int = 624
    advance: int = 656
    staged: Optional[int] = 1168
    ratios: int = 1424
    outputs: Tuple[int, int] = (1680, 1936)
    ratio: int = 2225
    user_trims: int = 2312
    user_fuel_trims: Optional[int] = 2320
    notes: int = 2327
    has_fuel: bool = True  # the fuel side, and axis words with stop points and sizes


KINDS = {kind.name: kind for kind in (
    Kind("A", 3.0, ".ZQ4OA", (5, 99), 2828, 8),
    Kind("L", 4.0, ".ZQ4OL", (7, 99), 2828, 9),
    Kind("C", 6.0, ".ZQ4OC", (3, 99), 2827, 13, first_block=334, user_trims=2311, user_fuel_trims=2319, notes=2326),
    Kind("D", 7.0, ".ZQ4OD", (5, 99), 2826, 7, staged=None, ratios=1168, outputs=(1424, 1680),
         user_trims=2310, user_fuel_trims=2318, notes=2325),
    Kind("D6", 8.0, ".ZQ4OD", (5, 99), 2826, 7, staged=None, ratios=1168, outputs=(1424, 1680),
         user_trims=2310, user_fuel_trims=2318, notes=2325),
    Kind("PZK-2", 5.0, ".ZQ4PZK", (5, 99), 1701, 4, first_block=94, rows=(64, 64), newer_from=None, display=84,
         scaler=86, offset=87, sensor=88, units=89, sent_trims=150, name_cell=166, speeds=192, pressures=224,
         advance=256, staged=None, ratios=1057, outputs=(512, 768), user_trims=1185, user_fuel_trims=None,
         notes=1200, has_fuel=False),
)}


def kind_of_number(number):
    for kind in KINDS.values():
        if kind.number == number:
            return kind
    raise EncodeError("no calibration file: kind %r" % number)


# Numbers --------------------------------------------------------------------------------------------

_F32 = struct.Struct("<f")


def f32(value):
    """The nearest 32-bit float."""
    try:
        return _F32.unpack(_F32.pack(value))[0]
    except OverflowError as error:
        raise EncodeError("too large for a 32-bit float: %r" % value) from error


def int16(value):
    """The 32-bit float of a number, half to even; a number outside 16 bits is an error."""
    try:
        whole = round(_F32.unpack(_F32.pack(value))[0])
    except (ValueError, OverflowError) as error:
        raise EncodeError("no number: %r" % value) from error
    if not -32768 <= whole <= 32767:
        raise EncodeError("does not fit 16 bits: %r" % value)
    return whole


def int16s(values):
    """int16 of each of a list."""
    layout = "<%df" % len(values)
    try:
        whole = [round(v) for v in struct.unpack(layout, struct.pack(layout, *values))]
    except (ValueError, OverflowError) as error:
        raise EncodeError("no number among %r" % values) from error
    if whole and not (-32768 <= min(whole) and max(whole) <= 32767):
        raise EncodeError("does not fit 16 bits: one of %r" % values)
    return whole


def round_to(value, decimals):
    scale = 10.0 ** decimals
    return round(value * scale) / scale


def printed(value):
    """An element that stands in the image as its cell has it: half to even, hexadecimal text of 32 bits."""
    try:
        whole = round(value)
    except (ValueError, OverflowError) as error:
        raise EncodeError("no number: %r" % value) from error
    if not -2 ** 31 <= whole < 2 ** 31:
        raise EncodeError("does not fit 32 bits: %r" % value)
    return whole


def word(value):
    """High and low byte. The high byte is truncated toward zero, so -1 gives (0, 255)."""
    x = int16(value)
    return [int(x / 256), x & 255]


def temperature_byte(value):
    return int16((value + 40) * TEMPERATURE)


# The calibration ------------------------------------------------------------------------------------


class Calibration:
    """The cells of one opened file, and what the encoder asks about them."""

    def __init__(self, data, sensors=None):
        """sensors: known sensors, (volts per unit, volts at zero, units code) by their number."""
        if len(data) < HEADER_BYTES:
            raise EncodeError("no calibration file: %d bytes" % len(data))
        number, self.program_version, self.code = struct.unpack_from("<3f", data)
        self.kind = kind_of_number(number)
        count = (len(data) - HEADER_BYTES) // 4
        if count > MOST_CELLS:
            raise EncodeError("more than %d cells" % MOST_CELLS)
        self.cell = list(struct.unpack_from("<%df" % count, data, HEADER_BYTES))
        self.cell += [0.0] * (MOST_CELLS - count)
        try:
            self._take_firmware()
            self._repair_sensor(sensors or {})
            self._repair()
            self._check_control_bytes()
        except (ZeroDivisionError, OverflowError, ValueError) as error:
            raise EncodeError(str(error)) from error

    def _take_firmware(self):
        if math.isfinite(self.code) and round(self.code) == 0:
            # Neither a release nor a build: the firmware is unknown.
            self.release, self.build = self.kind.newest
            return
        self.release = int(self.code / 1000)
        if not -32768 <= self.release <= 32767:
            raise EncodeError("firmware code %r" % self.code)
        self.build = int16(self.code - self.release * 1000)

    def newer(self):
        """Whether rows, columns and stop points of the output tables reach the unit."""
        return self.kind.newer_from is not None and self.release >= self.kind.newer_from

    # What opening a file puts right -------------------------------------------------------------

    def _repair_sensor(self, sensors):
        """A file of old firmware knows its sensor by the bar rating only."""
        if int(self.code / 1000) >= 3 or self.release < 3:
            return
        rating = self.MAP_BAR()
        number = int(rating) if rating in (1, 2, 3, 4) else 4
        self.cell[self.kind.sensor] = float(number)
        if number in sensors:
            scaler, offset, units = sensors[number]
            self.cell[self.kind.scaler] = f32(scaler)
            self.cell[self.kind.offset] = f32(offset)
            self.cell[self.kind.units] = float(units)

    def _repair(self):
        cell = self.cell
        if not self.kind.has_fuel:
            return
        if not any(cell[2242:2246]):
            self._seed_stops()
        if cell[2290] == 0 and cell[2291] == 0:
            cell[2290] = cell[2291] = 3 * 16 + 7.0  # rows BLEND MAP, columns RPM
        if self._main_rows() == 0:
            cell[2292:2298] = [16.0] * 6
        if not any(cell[138:146]):
            cell[138:146] = [-50.0, -43.0, -35.0, -28.0, -20.0, -13.0, -5.0, 3.0]
            cell[2225] = f32(14.64)

    def _check_control_bytes(self):
        """They are 8-bit numbers without sign."""
        for value in self.cell[:3]:
            if not 0 <= int16(value) <= 255:
                raise EncodeError("control byte %r" % value)

    def _seed_stops(self):
        cell = self.cell
        for i in range(16):
            at = self.kind.pressures + 2 * i
            low, high = self.MAPMin(), self.MAPMax()
            if self.pressure_reader(at) < low:
                self.pressure_writer(at, f32(low + 0.1))
            if self.pressure_reader(at) > high:
                self.pressure_writer(at, f32(high - 0.1))
            cell[2242 + i] = cell[2274 + i] = cell[self.kind.speeds + 2 * i]
            cell[2226 + i] = cell[2258 + i] = self.pressure_reader(at)

    def _main_rows(self):
        cell = self.cell
        if self.program_version <= f32(9.44) and cell[2292] == 0 and cell[2293] == 0:
            cell[2292] = cell[2293] = 16.0
        return cell[2292]

    # The sensor -----------------------------------------------------------------------------------

    def MAP_BAR(self):
        cell, display = self.cell, self.kind.display
        if cell[39] == 0:
            cell[39] = 1.0
        if cell[display] == 0:
            cell[display] = cell[39]
        return cell[display]

    def MAP_Scaler(self):
        scaler = self.cell[self.kind.scaler]
        return f32(0.05295) if scaler == 0 else f32(round_to(scaler, 4))

    def MAP_Offset(self):
        if self.cell[self.kind.scaler] == 0:
            return f32(-0.54738)
        return f32(round_to(self.cell[self.kind.offset], 4))

    def MAPUnits(self):
        code = round(self.cell[self.kind.units])
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
        if self.cell[self.kind.ratio] == 0:
            self.cell[self.kind.ratio] = f32(14.64)
        return self.cell[self.kind.ratio]

    def axis_kind(self, table, rows):
        packed = self.cell[2289 + table]
        code = int16(int(packed / 16)) if rows else int16(packed) & 15
        return AXIS_KINDS[code] if 1 <= code <= 15 else ""

    def cylinders(self):
        count = (int16(self.cell[8]) & 240) // 16
        return count if 1 <= count <= 8 else 8

    def Initialize_Trims(self):
        """Fuel trims are copied one to one. The sixteen injector cells are event slots in firing order,
        which repeat after one engine cycle, so user trim k stands in every slot k + n, k + 2n, ..."""
        cell, kind = self.cell, self.kind
        if kind.user_fuel_trims is not None:
            cell[504:512] = cell[kind.user_fuel_trims:kind.user_fuel_trims + 8]
        cylinders = self.cylinders()
        for i in range(16):
            cell[kind.sent_trims + i] = cell[kind.user_trims + i % cylinders]

    # The image ------------------------------------------------------------------------------------

    def image(self):
        """ConvertData on a fresh object: 2501 elements, one unit byte each, as numbers."""
        walk = _Image if self.kind.has_fuel else _IgnitionImage
        try:
            return walk(self).element
        except (ZeroDivisionError, OverflowError, ValueError) as error:
            raise EncodeError(str(error)) from error


class _Walk:
    """What every kind's walk over its image is made of."""

    def __init__(self, cal):
        self.cal = cal
        self.kind = cal.kind
        self.cell = cal.cell
        self.element = [0] * ELEMENTS
        # A frequency that the firmware does not know keeps the code of the previous full-table block,
        # and 0 stands before the first of them in each run.
        self.frequency_code = 0
        self.walk()

    def walk(self):
        raise NotImplementedError

    # Single elements ------------------------------------------------------------------------------

    def _map(self, index, count, formula, source=None):
        start = index if source is None else source
        self.element[index:index + count] = int16s([formula(v) for v in self.cell[start:start + count]])

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
        counts = self.cal.KpaToCounts(self.cell[index], True)
        self.element[index] = int16(counts if math.isnan(counts) else min(255, max(0, counts)))

    def _counts(self, kpa):
        return word(self.cal.KpaToCounts(kpa, False))

    # What all kinds have in the same places -------------------------------------------------------

    def _engine_layout(self):
        self._plain(0, 1, 2, 3, 4)
        for i in (5, 6):
            tooth = int16(14 - self.cell[i])
            self.element[i] = tooth + 60 if tooth < 0 else tooth
        self._plain(8)

    def _knock_and_sensors(self):
        self._times(2.55, 34)
        self._times(8.5, 35, 36, 37)
        self._over(51, 38)
        self._plain(39)
        self._times(51, 40, 41)
        self._pressure8(42, False)
        self._plain(43)
        self._times(51, *range(44, 51))
        self._temperature(51)
        self._times(51, 54, 55)
        self._temperature(56)
        self._plain(57)

    def _rev_limit(self):
        self._word(58, self.cell[58])
        self._word(60, self.cell[60])
        self._plain(62, 63, 64)
        # The cell already stands without the engine's offset.
        self._times(4.25, 67)
        self._map(68, 16, lambda v: v * 4.25)

    def _display_multiplier(self, index):
        if self.cell[index] == 0:
            self.cell[index] = 1.0
        self._times(25, index)
        self._over(4, index + 1)

    def _sensor_words(self, index):
        cal = self.cal
        gain, zero = sensor_words(cal.MAP_Scaler(), cal.MAP_Offset(), cal.MAPUnits())
        self._word(index, gain)
        self._word(index + 2, zero)

    def _axes(self):
        for i in range(0, 32, 2):
            at = self.kind.speeds + i
            self._word(at, self.cell[at])
        for i in range(0, 32, 2):
            at = self.kind.pressures + i
            self.element[at:at + 2] = self._counts(self.cell[at])

    def _name(self):
        self._map(self.kind.name_cell, 24, lambda v: v)

    def _advance_table(self):
        self._map(self.kind.advance, 256, lambda v: v * 4.25)

    def _output_tables(self):
        for first in self.kind.outputs:
            self._map(first, 256, lambda v: v * 2.55)

    def _cylinder_trims(self):
        for i in range(self.kind.sent_trims, self.kind.sent_trims + 16):
            v = self.cell[i]
            if v > 0:
                self.element[i] = 128 - int16(v * 8.533333)
            elif v == 0:
                self.element[i] = 128
            else:
                self.element[i] = int16(-v * 8.533333 + 127)

    # Input/output blocks --------------------------------------------------------------------------

    def _gpio(self):
        first = self.kind.first_block
        for index in range(first, first + 9 * self.kind.pins, 9):
            block = self.cell[index:index + 9]
            encoded = self._gpio_block(index, block)
            # Bytes that a function does not name stay as they were found: 0 in a fresh object.
            self.element[index:index + len(encoded)] = encoded

    def _gpio_block(self, index, c):
        function = c[0]
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
            code = 20 if function == 17 else 21
            return [code, int16((c[1] + 50) * 2.55), int16((c[2] + 50) * 2.55)] + [0] * 6
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


class _IgnitionImage(_Walk):
    """The image of a unit without a fuel side."""

    def walk(self):
        self._engine_layout()
        self._knock_and_sensors()
        self._rev_limit()
        self._display_multiplier(84)
        self._sensor_words(86)
        self._gpio()
        self._map(130, 20, lambda v: (v + 30) * 4.25)
        self._name()
        self._axes()
        self._advance_table()
        self._output_tables()
        self.cal.Initialize_Trims()
        self._cylinder_trims()


class _Image(_Walk):
    """The image of a unit with fuel and ignition, in index order."""

    def walk(self):
        self._engine_layout()
        self._plain(7, *range(9, 18))
        self._knock_and_sensors()
        self._plain(52, 53)
        self._rev_limit()
        self._over(4, 65)
        self._plain(66)
        self._advance_curves()
        self._fuel()
        self._sensor_words(262)
        self.element[266] = int(int16(self.cell[266]) / 4)
        self.element[267] = f32(self.cell[267] * 10)
        self._ego_and_idle()
        self._gpio()
        # The fuel trim bytes are part of the walk, so they come from the cells as the file holds them;
        # the copy from the user's trims runs after the walk, before the injector trim bytes.
        self._map(504, 8, lambda v: v + 50)
        self._name()
        self._tables()
        self.cal.Initialize_Trims()
        self._cylinder_trims()
        self._stops()
        if not self.cal.newer():
            self.element[2192:2208] = [0] * 16

    def _advance_curves(self):
        cell = self.cell
        self._map(84, 20, lambda v: v * 4.25)
        self._map(104, 20, lambda v: (v + 30) * 4.25)
        self._display_multiplier(124)
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
        self._pressure8(257, False)
        self._times(16, 258, 259)
        self._word(260, cell[260])

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

    def _duty(self, index):
        low, high = self.cell[316], self.cell[317]
        self._one(index, (high - low) * (self.cell[index] / 100) + low)

    def _tables(self):
        cell, kind = self.cell, self.kind
        self.element[590], self.element[591] = cell[2293], cell[2292]
        self._axes()
        self._advance_table()
        self._map(912, 256, lambda v: v + 50)
        if kind.staged is not None:
            self._map(kind.staged, 256, lambda v: v)
        stoichiometric = self.cal.AFR()
        self._map(kind.ratios, 256, lambda v: ((stoichiometric / v) - 0.5) * 255)
        self._output_tables()

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


# The text -------------------------------------------------------------------------------------------

_HEX = ["%02X" % byte for byte in range(256)]


def s_records(element, rows):
    """The S-record text of an image, line ends CR LF.

    An element that is no whole number is rounded first, and the padding, the digits and the sum all
    take the rounded number: so every line has 16 bytes. Negative numbers print their low byte.
    """
    lines = []
    for row in range(rows):
        address = BASE_ADDRESS + 16 * row
        values = [v if type(v) is int else printed(v) for v in element[16 * row:16 * row + 16]]
        total = 19 + (address & 255) + address // 256 + sum(values)
        digits = "".join([_HEX[v & 255] for v in values])
        lines.append("S113%04X%s%s\r\n" % (address, digits, _HEX[255 ^ (total & 255)]))
    lines.append("S9030000FC\r\n")
    return "".join(lines)


def image_of(file_bytes, sensors=None):
    """The 2501 image elements of a calibration file."""
    return Calibration(file_bytes, sensors).image()


def encode(file_bytes, sensors=None):
    """The S-record text of a calibration file, for the firmware of its header."""
    calibration = Calibration(file_bytes, sensors)
    return s_records(calibration.image(), calibration.kind.rows[calibration.newer()])
