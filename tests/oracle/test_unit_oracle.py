"""Tests of the second encoder against numbers worked out by hand.

    python3 test_unit_oracle.py
"""

import collections
import math
import os
import struct
import sys
import tempfile
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import check_srecord  # noqa: E402
import random_calibrations  # noqa: E402
import unit_encoder  # noqa: E402
import unit_oracle  # noqa: E402


ORB_A = unit_encoder.KINDS["A"]


def plain_cells(kind=ORB_A):
    """Zero cells, but for those that the image divides by and the bar rating."""
    cell = [0.0] * kind.cells
    cell[39] = cell[kind.display] = 1.0
    if kind.has_fuel:
        cell[138] = 1.0
        cell[283:293] = [14.64] * 10
        cell[kind.ratios:kind.ratios + 256] = [14.7] * 256
        cell[2225] = 14.7
        cell[2242] = 1.0
        cell[2290] = cell[2291] = 0x37
        cell[2292:2298] = [16.0] * 6
    return cell


def file_of(cells, code=5099, version=10.2, kind=ORB_A):
    return struct.pack("<3f%df" % len(cells), kind.number, version, code, *cells)


def image(changes=None, code=5099, kind=ORB_A):
    cells = plain_cells(kind)
    for index, value in (changes or {}).items():
        cells[index] = value
    return unit_encoder.image_of(file_of(cells, code, kind=kind))


def block(parameters, code=5099):
    """The image bytes of input/output block 0 with its function and parameters."""
    cells = plain_cells()
    cells[336:336 + len(parameters)] = parameters
    return unit_encoder.image_of(file_of(cells, code))[336:345]


def lines_of(kind, code):
    return unit_encoder.encode(file_of(plain_cells(kind), code, kind=kind)).split("\r\n")


class Scalars(unittest.TestCase):
    def test_knock_threshold_of_50_is_byte_128_at_34(self):
        self.assertEqual(image({34: 50})[34], 128)  # 127.5, a tie, goes to the even 128
        self.assertEqual(image({34: 10})[34], 26)  # 25.5
        self.assertEqual(image({34: 30})[34], 76)  # 76.5

    def test_knock_threshold_stands_in_the_third_line(self):
        text = unit_encoder.encode(file_of([50.0 if i == 34 else v for i, v in enumerate(plain_cells())]))
        line = text.split("\r\n")[2]
        self.assertEqual(line[:8], "S1131120")
        self.assertEqual(line[8 + 4:8 + 6], "80")

    def test_tooth_offsets_count_back_from_14_and_wrap_at_60(self):
        for tooth, byte in ((20, 54), (14, 0), (13, 1), (1, 13), (15, 59), (58, 16)):
            self.assertEqual(image({5: tooth})[5], byte)
            self.assertEqual(image({6: tooth})[6], byte)

    def test_temperatures_span_the_byte_from_minus_40_to_150(self):
        self.assertEqual(image({51: -40})[51], 0)
        self.assertEqual(image({51: 150})[51], 255)
        self.assertEqual(image({51: 20})[51], 81)  # 60 * 255 / 190 = 80.53

    def test_rev_limit_is_a_word_with_the_high_byte_first(self):
        self.assertEqual(image({58: 7000})[58:60], [27, 88])

    def test_ties_go_to_the_even_byte(self):
        self.assertEqual(image({65: 10})[65], 2)  # 10 / 4 = 2.5
        self.assertEqual(image({65: 14})[65], 4)  # 3.5
        self.assertEqual(image({67: 2})[67], 8)  # 8.5

    def test_negative_injector_opening_keeps_its_low_byte(self):
        self.assertEqual(image({150: -1})[150], 248)

    def test_injector_scale_is_a_word_of_microseconds(self):
        self.assertEqual(image({148: 15})[148:150], [58, 152])

    def test_duty_byte_lies_between_the_duty_limits(self):
        self.assertEqual(image({316: 10, 317: 210, 309: 50})[309], 110)

    def test_lambda_gains_are_complements(self):
        self.assertEqual(image({305: 1, 306: 255, 307: 128, 308: 2})[305:309], [255, 1, 128, 254])

    def test_fixed_pulse_width_is_not_rounded_in_the_image(self):
        self.assertEqual(image({267: 1.25})[267], 12.5)

    def test_fixed_pulse_speed_is_rounded_then_truncated(self):
        self.assertEqual(image({266: 7.6})[266], 2)
        self.assertEqual(image({266: 7.4})[266], 1)

    def test_display_multiplier_and_bar_rating(self):
        self.assertEqual(image({124: 2.5, 39: 4})[124], 62)  # 62.5
        self.assertEqual(image({124: 2.5, 39: 4})[39], 4)

    def test_a_number_beyond_16_bits_is_an_error(self):
        with self.assertRaises(unit_encoder.EncodeError):
            image({58: 40000})

    def test_a_bar_rating_beyond_the_table_is_an_error(self):
        with self.assertRaises(unit_encoder.EncodeError):
            image({39: 5})


class Curves(unittest.TestCase):
    def test_barometric_advance_moves_down_four_places_as_it_stands(self):
        got = image({130: -20, 137: 7})
        self.assertEqual((got[126], got[133]), (-20, 7))

    def test_barometric_trim_stands_two_places_up_plus_50(self):
        self.assertEqual(image({138: -50, 145: 3})[140:148], [0, 50, 50, 50, 50, 50, 50, 53])

    def test_empty_barometric_trim_is_seeded(self):
        self.assertEqual(image({138: 0})[140:148], [0, 7, 15, 22, 30, 37, 45, 53])

    def test_sensor_cells_never_reach_the_image(self):
        self.assertEqual(image({127: 99, 128: 99})[128:130], [0, 0])

    def test_air_temperature_advance_is_shifted_by_30(self):
        self.assertEqual(image({104: -30, 105: 30, 106: 0})[104:107], [0, 255, 128])  # 127.5

    def test_battery_compensation_in_steps_of_8_microseconds(self):
        self.assertEqual(image({237: -1000, 238: 1000, 239: 0})[237:240], [0, 250, 125])

    def test_lambda_curve_uses_the_petrol_ratio_whatever_the_fuel(self):
        got = image({283: 14.625, 284: 29.28, 285: 9.76, 2225: 9.0})
        self.assertEqual(got[283:286], [128, 0, 255])  # (1.0010 - 0.5) * 255 = 127.76

    def test_blend_curve_is_words_at_every_second_place(self):
        self.assertEqual(image({212: 3000, 213: 77, 226: 12000})[212:228],
                         [11, 184] + [0] * 12 + [46, 224])


class Tables(unittest.TestCase):
    def test_corner_cells(self):
        got = image({656: 60, 911: 10, 912: -50, 1167: 50, 1168: 100, 1423: 1, 1680: 100, 2191: 50})
        self.assertEqual((got[656], got[911]), (255, 42))  # 42.5
        self.assertEqual((got[912], got[1167]), (0, 100))
        self.assertEqual((got[1168], got[1423]), (100, 1))
        self.assertEqual((got[1680], got[2191]), (255, 128))  # 127.5

    def test_fuel_ratio_table_uses_the_fuel(self):
        self.assertEqual(image({1424: 14.7})[1424], 128)  # (1 - 0.5) * 255 = 127.5
        self.assertEqual(image({1424: 29.4})[1424], 0)

    def test_a_fuel_without_a_ratio_reads_as_petrol(self):
        self.assertEqual(image({2225: 0, 1424: 14.64})[1424], 128)

    def test_speed_axis(self):
        self.assertEqual(image({592: 500, 593: 9, 622: 8000})[592:594], [1, 244])
        self.assertEqual(image({592: 500, 593: 9, 622: 8000})[622:624], [31, 64])

    def test_dimensions_stand_columns_first(self):
        got = image({2292: 9, 2293: 10, 2294: 11, 2295: 12, 2296: 13, 2297: 14})
        self.assertEqual(got[590:592], [10, 9])
        self.assertEqual(got[2194:2196], [12, 11])
        self.assertEqual(got[2260:2262], [14, 13])

    def test_name_stands_as_character_codes(self):
        self.assertEqual(image({560: 65, 583: 32})[560:584], [65] + [0] * 22 + [32])


class Pressures(unittest.TestCase):
    def test_old_firmware_clamps_the_byte(self):
        self.assertEqual(image({42: 100}, 2000)[42], 255)  # 983.65 counts
        self.assertEqual(image({42: 10}, 2000)[42], 98)  # 98.365

    def test_old_firmware_takes_counts_per_bar_in_the_axis(self):
        self.assertEqual(image({624: 100}, 2000)[624:626], [3, 216])  # 984
        self.assertEqual(image({39: 2, 124: 2, 624: 100}, 2000)[624:626], [1, 236])  # 491.825

    def test_new_firmware_goes_through_the_volts(self):
        # (100 / 0.1016618 - 100) / (876 / 1024) = 1032.9 counts; a quarter of it does not fit the byte
        got = image({42: 100, 624: 100})
        self.assertEqual(got[624:626], [4, 9])
        self.assertEqual(got[42], 255)

    def test_pressure_below_the_scale_clamps_to_0(self):
        self.assertEqual(image({280: 1})[280], 0)

    def test_cleared_limits_stay_0(self):
        got = image({210: 0, 257: 0}, 5099)
        self.assertEqual((got[210], got[257]), (0, 0))

    def test_default_sensor_words(self):
        # 0.05295 * 20.46 * 4096 = 4437.43 = 17 * 256 + 85; -0.54738 * 204.6 = -111.99, its high byte is 0
        self.assertEqual(image()[262:266], [17, 85, 0, 144])

    def test_absolute_and_gauge_pounds(self):
        # ratio 14.696 / 101.325 for both; the gauge sensor's zero moves by 14.696 * 0.1 volts
        self.assertEqual(unit_encoder.sensor_words(0.1, 1.5, "PSIA"), (1215, 307))
        self.assertEqual(unit_encoder.sensor_words(0.1, 1.5, "PSIG"), (1215, 6))

    def test_columns_of_mercury(self):
        self.assertEqual(unit_encoder.sensor_words(0.01, 0.25, "mmHg"), (6286, 51))
        self.assertEqual(unit_encoder.sensor_words(0.25, 0.25, "inHg"), (6187, 51))

    def test_flow_sensor_has_no_gain(self):
        self.assertEqual(unit_encoder.sensor_words(0.05, 0.5, "%Flow"), (0, 102))


class Trims(unittest.TestCase):
    def test_injector_trim_bytes(self):
        for trim, byte in ((15, 0), (7.5, 64), (0, 128), (-7.5, 191), (-15, 255)):
            self.assertEqual(image({2312: trim})[520], byte)

    def slots(self, cylinders):
        cells = plain_cells()
        cells[8] = cylinders * 16 + 3
        cells[2312:2320] = [1, 2, 3, 4, 5, 6, 7, 8]
        calibration = unit_encoder.Calibration(file_of(cells))
        calibration.Initialize_Trims()
        return calibration.cell[520:536]

    def test_slots_repeat_after_one_engine_cycle(self):
        self.assertEqual(self.slots(4), [1, 2, 3, 4] * 4)
        self.assertEqual(self.slots(6), [1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, 1, 2, 3, 4])
        self.assertEqual(self.slots(1), [1] * 16)

    def test_no_and_too_many_cylinders_count_as_eight(self):
        for cylinders in (0, 8, 9, 12, 15):
            self.assertEqual(self.slots(cylinders), [1, 2, 3, 4, 5, 6, 7, 8] * 2)

    def test_fuel_trim_bytes(self):
        self.assertEqual(image({504: 5, 511: -15})[504:512], [55, 50, 50, 50, 50, 50, 50, 35])


class Blocks(unittest.TestCase):
    def test_switched_outputs(self):
        self.assertEqual(block([1, 0, 0, 5000, 0, 0, 0, 100], 2000), [3, 0, 0, 19, 136, 0, 0, 3, 216])
        for function in (2, 4, 5):
            self.assertEqual(block([function, 5000, 0, 0, 0, 100], 2000),
                             [3, 19, 136, 255, 255, 3, 216, 255, 255])
        self.assertEqual(block([6, 5000]), [3, 19, 136, 255, 255, 0, 0, 0, 0])
        self.assertEqual(block([9, 256, 0, 512, 0, 100, 0, 10], 2000), [3, 1, 0, 2, 0, 3, 216, 0, 98])
        self.assertEqual(block([10, 256, 0, 512, 0, 100, 0, 10], 2000), [2, 1, 0, 2, 0, 3, 216, 0, 98])

    def test_functions_without_parameters(self):
        for function, code in ((0, 0), (11, 6), (22, 16)):
            self.assertEqual(block([function] + [9] * 8), [code] + [0] * 8)

    def test_fan_and_torque_converter(self):
        self.assertEqual(block([3, 150, -40, 1]), [4, 255, 0, 1, 0, 0, 0, 0, 0])
        self.assertEqual(block([7, 60, 40, 100, 0, 10, 0, 2], 2000), [5, 60, 40, 3, 216, 0, 98, 2, 0])

    def test_simple_inputs(self):
        self.assertEqual(block([12, 50, 20])[:6], [18, 50, 20, 0, 0, 0])
        self.assertEqual(block([13, 1000]), [25, 3, 232] + [0] * 6)
        self.assertEqual(block([14, 80, 1500])[:3], [26, 80, 1500])
        self.assertEqual(block([15, 3000, 0, 20]), [27, 11, 184, 20] + [0] * 5)
        self.assertEqual(block([16, -30, 30])[:3], [17, 0, 255])
        self.assertEqual(block([17, 50, -50]), [20, 255, 0] + [0] * 6)
        self.assertEqual(block([18, 50, -50]), [21, 255, 0] + [0] * 6)
        self.assertEqual(block([19, -30, 30])[:4], [19, 0, 255, 0])
        self.assertEqual(block([21, 27.5])[:3], [31, 27.5, 0])
        self.assertEqual(block([23, 1000, 500, 4000, 0, 100, 0, 1], 2000), [28, 244, 122, 15, 160, 3, 216, 1, 0])

    def test_unknown_function_leaves_the_block(self):
        self.assertEqual(block([24, 1, 2, 3]), [0] * 9)

    def test_frequency_codes_change_after_release_2_build_6(self):
        for code in (1000, 2006):
            self.assertEqual([block([8, 1, f], code)[2] for f in (60, 120)], [0, 1])
        for code in (2007, 3000, 5099):
            self.assertEqual([block([8, 1, f], code)[2] for f in (30, 60)], [0, 1])

    def test_unknown_frequency_keeps_the_code_of_the_block_before(self):
        cells = plain_cells()
        cells[336:339] = [8, 1, 60]
        cells[345:348] = [8, 2, 99]
        got = unit_encoder.image_of(file_of(cells))
        self.assertEqual(got[345:348], [1, 2, 1])

    def test_full_table_other_than_1_or_2_becomes_1(self):
        self.assertEqual(block([8, 3, 30])[:3], [1, 1, 0])

    def test_timed_advance_by_firmware(self):
        cells = [20, 0, 1, 2, 3, 4, 5, 6, 7]
        self.assertEqual(block(cells, 5000), [22, 128, 255, 1, 232, 3, 208, 5, 184])
        self.assertEqual(block([20, 0, 0], 5000), [22, 128, 0, 0, 0, 0, 0, 0, 0])
        for code in (4099, 3000, 2018):
            self.assertEqual(block(cells, code), [22, 128, 0, 0, 1, 110, 2, 98, 0])
        for code in (1099, 2017):
            self.assertEqual(block(cells, code), [22, 128, 122, 244, 0, 0, 0, 0, 0])

    def test_boost_control_by_firmware(self):
        cells = [25, 1, 2, 3, 4, 100, 20, 40, 60]
        for code in (4003, 5000):
            self.assertEqual(block(cells, code), [9, 1, 2, 3, 4, 255, 51, 102, 153])
        for code in (4002, 3099):
            self.assertEqual(block([25, 1, 2, 20, 40, 5], code), [9, 1, 2, 51, 102, 5, 0, 0, 0])


class Stops(unittest.TestCase):
    def stop(self, kind, value, code=5099):
        """A stop on an axis of this kind, before it is rounded to a word."""
        calibration = unit_encoder.Calibration(file_of(plain_cells(), code))
        return unit_encoder._Image(calibration).stop_to_unit(value, unit_encoder.AXIS_KINDS[kind])

    def test_kinds(self):
        self.assertAlmostEqual(self.stop(1, 150), 255)
        self.assertAlmostEqual(self.stop(6, -40), 0)
        self.assertAlmostEqual(self.stop(4, 5), 255)
        self.assertAlmostEqual(self.stop(5, 14.7), 127.5, places=4)
        self.assertAlmostEqual(self.stop(7, 6000), 6000)
        self.assertAlmostEqual(self.stop(8, 100), 255)
        self.assertAlmostEqual(self.stop(15, 20), 51)
        self.assertAlmostEqual(self.stop(2, 100, 2000), 983.65, places=3)
        self.assertAlmostEqual(self.stop(3, 100, 2000), 983.65, places=3)

    def test_every_axis_has_its_place(self):
        got = image({2242: 6000, 2241: 5, 2274: 100, 2273: 150, 2290: 0x47, 2291: 0x18})
        self.assertEqual(got[2192:2194], [0x47, 0x18])
        self.assertEqual(got[2196:2198], [23, 112])  # table 1, first column: 6000
        self.assertEqual(got[2258:2260], [0, 255])  # table 1, last row: 5 volts
        self.assertEqual(got[2262:2264], [0, 255])  # table 2, first column: 100 %
        self.assertEqual(got[2324:2326], [0, 255])  # table 2, last row: 150 degrees

    def test_a_negative_count_has_a_truncated_high_byte(self):
        # (0 / 0.1016618 - 100) / (876 / 1024) = -116.89 counts
        self.assertEqual(image({2226: 0})[2228:2230], [0, 256 - 117])

    def test_release_4_has_no_stops(self):
        got = image({2242: 6000, 2248: 6000}, 4099)
        self.assertEqual(got[2192:2208], [0] * 16)
        self.assertEqual(got[2208:2210], [23, 112])
        self.assertEqual(image({2242: 6000}, 5000)[2196:2198], [23, 112])

    def test_missing_stops_are_taken_from_the_main_axes(self):
        cells = plain_cells()
        cells[2242] = 0
        cells[592:624:2] = [500.0 * (i + 1) for i in range(16)]
        cells[624:656:2] = [0.5, 200.0] + [10.0 + i for i in range(14)]
        cells[2290] = cells[2291] = 0
        calibration = unit_encoder.Calibration(file_of(cells, 2000))
        self.assertEqual(calibration.cell[2242:2258], [500.0 * (i + 1) for i in range(16)])
        self.assertEqual(calibration.cell[2226:2230], [unit_encoder.f32(1.1), unit_encoder.f32(103.9), 10, 11])
        self.assertEqual(calibration.cell[2258:2290], calibration.cell[2226:2258])
        self.assertEqual(calibration.cell[2290:2292], [55, 55])

    def test_missing_dimensions_become_16(self):
        self.assertEqual(image({2292: 0, 2293: 10})[590:592], [16, 16])


class Records(unittest.TestCase):
    def test_first_line_of_zeros_sums_up_to_its_header(self):
        lines = unit_encoder.s_records([0] * 2501, 147).split("\r\n")
        self.assertEqual(lines[0], "S1131100" + "00" * 16 + "DB")  # 255 - 36
        self.assertEqual(lines[1], "S1131110" + "00" * 16 + "CB")  # 255 - 52

    def test_small_checksum_has_two_digits(self):
        element = [0] * 2501
        element[0] = 0xDB - 5
        self.assertTrue(unit_encoder.s_records(element, 147).startswith("S1131100D6" + "00" * 15 + "05\r\n"))

    def test_256_prints_as_00_with_an_unchanged_checksum(self):
        cells = plain_cells()
        cells[3] = 255.5
        self.assertEqual(unit_encoder.image_of(file_of(cells))[3], 256)
        element = [0] * 2501
        element[3] = 256
        self.assertEqual(unit_encoder.s_records(element, 147), unit_encoder.s_records([0] * 2501, 147))

    def test_negative_and_broken_numbers_print_two_digits(self):
        element = [0] * 2501
        element[0:4] = [-20, 15.7, 12.5, -0.3]
        line = unit_encoder.s_records(element, 147).split("\r\n")[0]
        self.assertEqual(line[8:16], "EC100C00")
        self.assertIsNone(check_srecord.check_line(line))

    def test_number_of_lines(self):
        for count, last in ((64, "S11314F0"), (137, "S1131980"), (147, "S1131A20")):
            rows = unit_encoder.s_records([0] * 2501, count).split("\r\n")
            self.assertEqual(len(rows), count + 2)  # the end record and the text behind its line end
            self.assertEqual(rows[count - 1][:8], last)
            self.assertEqual(rows[count:], ["S9030000FC", ""])

    def test_a_number_as_it_stands_prints_its_low_byte_up_to_32_bits(self):
        element = [40000, 1e6, -300.0] + [0] * 2498
        self.assertEqual(unit_encoder.s_records(element, 147)[8:14], "4040D4")
        for bad in (3e9, -3e9, math.inf, math.nan):
            with self.assertRaises(unit_encoder.EncodeError):
                unit_encoder.s_records([bad] + [0] * 2500, 147)


class Checker(unittest.TestCase):
    GOOD = "S10411228048\r\nS9030000FC\r\n"

    def test_valid_text(self):
        self.assertEqual(check_srecord.check(self.GOOD), [])
        self.assertEqual(check_srecord.memory(self.GOOD), {0x1122: 0x80})

    def test_every_fault_is_found(self):
        for bad in (self.GOOD.replace("48", "49"), self.GOOD.replace("S104", "S105"),
                    self.GOOD.replace("80", "0"), self.GOOD.replace("FC", "fc"),
                    self.GOOD.replace("S9030000FC\r\n", ""), self.GOOD[:-2], "S9030000FC\r\n" + self.GOOD,
                    self.GOOD.replace("S1", "S4"), ""):
            self.assertNotEqual(check_srecord.check(bad), [], repr(bad))

    def test_a_byte_told_twice_is_an_error(self):
        with self.assertRaises(ValueError):
            check_srecord.memory("S10411228048\r\n" + self.GOOD)


class Kinds(unittest.TestCase):
    """What differs from the ORB A, by hand from the table of the kinds."""

    L, C, D, D6, PZK = (unit_encoder.KINDS[name] for name in ("L", "C", "D", "D6", "PZK-2"))

    def test_files_have_their_length_and_number(self):
        found = {kind.name: (kind.number, 12 + 4 * kind.cells) for kind in unit_encoder.KINDS.values()}
        self.assertEqual(found, {"A": (3, 11324), "L": (4, 11324), "C": (6, 11320), "D": (7, 11316),
                                 "D6": (8, 11316), "PZK-2": (5, 6816)})

    def test_lines_by_release(self):
        for kind, newer in ((ORB_A, 5), (self.L, 5), (self.C, 5), (self.D, 5), (self.D6, 5)):
            self.assertEqual(len(lines_of(kind, (newer - 1) * 1000 + 99)), 137 + 2, kind.name)
            self.assertEqual(len(lines_of(kind, newer * 1000)), 147 + 2, kind.name)
        for code in (1000, 4099, 5000, 9000):
            self.assertEqual(len(lines_of(self.PZK, code)), 64 + 2)

    def test_a_file_without_firmware_is_of_the_newest(self):
        for kind, lines in ((ORB_A, 147), (self.L, 147), (self.C, 137), (self.D, 147), (self.PZK, 64)):
            self.assertEqual(len(lines_of(kind, 0)), lines + 2, kind.name)

    def test_stop_points_of_an_older_orb_l_are_cleared(self):
        self.assertEqual(image({2242: 6000}, 4099, self.L)[2192:2208], [0] * 16)
        self.assertEqual(image({2242: 6000}, 5000, self.L)[2196:2198], [23, 112])

    def test_blocks(self):
        # The last byte of the last block, of function 1: pressure word c7 of 100 kPa is 984 = 3 * 256 + 216.
        for kind, last in ((ORB_A, 399), (self.L, 408), (self.C, 442), (self.D, 390), (self.PZK, 121)):
            got = image({last: 1, last + 7: 100}, 2000, kind)
            self.assertEqual(got[last:last + 9], [3, 0, 0, 0, 0, 0, 0, 3, 216], kind.name)
            beyond = image({last + 9: 1}, 2000, kind)
            self.assertNotEqual(beyond[last + 9], 3, kind.name)

    def test_tables_of_orb_d(self):
        got = image({1168: 29.4, 1423: 14.7, 1424: 100, 1680: 50, 1936: 77}, kind=self.D)
        self.assertEqual((got[1168], got[1423], got[1424], got[1680]), (0, 128, 255, 128))
        self.assertEqual(got[1936:2192], [0] * 256)

    def test_user_trims(self):
        for kind, first in ((ORB_A, 2312), (self.L, 2312), (self.C, 2311), (self.D, 2310), (self.PZK, 1185)):
            place = 150 if kind is self.PZK else 520
            got = image({first: 15, first + 7: -15}, kind=kind)
            self.assertEqual(got[place:place + 16], ([0] + [128] * 6 + [255]) * 2, kind.name)

    def test_user_fuel_trims_are_copied_for_the_next_time(self):
        for kind, first in ((ORB_A, 2320), (self.C, 2319), (self.D, 2318)):
            cells = plain_cells(kind)
            cells[first], cells[first + 7] = 5, -5
            calibration = unit_encoder.Calibration(file_of(cells, kind=kind))
            calibration.Initialize_Trims()
            self.assertEqual((calibration.cell[504], calibration.cell[511]), (5, -5), kind.name)

    def test_pzk_places(self):
        got = image({84: 2, 85: 400, 130: -30, 149: 30, 166: 65, 192: 500, 256: 60, 511: 10, 512: 100, 1023: 50,
                     39: 2}, kind=self.PZK)
        self.assertEqual(got[84:86], [50, 100])
        self.assertEqual((got[130], got[149], got[166]), (0, 255, 65))
        self.assertEqual(got[192:194], [1, 244])
        self.assertEqual((got[256], got[511], got[512], got[1023]), (255, 42, 255, 128))
        self.assertEqual(image({224: 100}, 2000, self.PZK)[224:226], [3, 216])
        # The default sensor, as on the ORB A.
        self.assertEqual(got[86:90], [17, 85, 0, 144])

    def test_pzk_lacks_the_fuel_side(self):
        lacking = (7, *range(9, 18), 52, 53, 65, 66, 90, 93, 190, 191)
        got = image({i: 3 for i in lacking}, kind=self.PZK)
        self.assertEqual([got[i] for i in lacking], [0] * len(lacking))
        self.assertEqual(got[1024:], [0] * (2501 - 1024))

    def test_pzk_file_without_a_cell_has_an_image(self):
        self.assertEqual(len(unit_encoder.encode(struct.pack("<3f", 5, 10.2, 5099)).split("\r\n")), 66)


class Opening(unittest.TestCase):
    def test_old_firmware_of_a_newer_unit_finds_its_sensor_by_the_bar_rating(self):
        sensors = {2: (0.1, 0.5, 2), 4: (0.2, 0.6, 3)}
        for bar, scaler, units in ((2, 0.1, "PSIA"), (2.5, 0.2, "PSIG"), (4, 0.2, "PSIG")):
            cells = plain_cells()
            cells[124] = bar
            calibration = unit_encoder.Calibration(file_of(cells, 0), sensors)
            self.assertEqual(calibration.MAP_Scaler(), unit_encoder.f32(scaler))
            self.assertEqual(calibration.MAPUnits(), units)
        untouched = unit_encoder.Calibration(file_of(plain_cells(), 2099), sensors)
        self.assertEqual(untouched.MAP_Scaler(), unit_encoder.f32(0.05295))

    def test_a_control_byte_beyond_8_bits_is_an_error(self):
        for value in (-1, 256, 255.5):
            with self.assertRaises(unit_encoder.EncodeError):
                image({2: value})
        self.assertEqual(image({2: 254.5})[2], 254)

    def test_a_file_that_is_too_long_is_an_error(self):
        self.assertEqual(len(image({})), 2501)
        unit_encoder.encode(file_of(plain_cells() + [7.0] * (3001 - 2828)))
        with self.assertRaises(unit_encoder.EncodeError):
            unit_encoder.encode(file_of(plain_cells() + [7.0] * (3002 - 2828)))

    def test_a_ratio_of_0_in_the_table_is_an_error(self):
        for index in (1424, 1679, 283):
            with self.assertRaises(unit_encoder.EncodeError):
                image({index: 0})

    def test_program_up_to_9_44_kept_no_sizes(self):
        cells = plain_cells()
        cells[2292:2298] = [0.0] * 6
        got = unit_encoder.image_of(file_of(cells, version=9.44))
        self.assertEqual((got[590:592], got[2194:2196]), ([16, 16], [0, 0]))
        got = unit_encoder.image_of(file_of(cells, version=9.45))
        self.assertEqual((got[590:592], got[2194:2196]), ([16, 16], [16, 16]))

    def test_an_axis_word_beyond_a_byte_names_no_row_axis(self):
        cells = plain_cells()
        cells[2290] = 0x137
        calibration = unit_encoder.Calibration(file_of(cells))
        self.assertEqual((calibration.axis_kind(1, True), calibration.axis_kind(1, False)), ("", "RPM"))


class RandomFiles(unittest.TestCase):
    COUNT = 300

    @classmethod
    def setUpClass(cls):
        cls.pairs = {}
        for name, kind in unit_encoder.KINDS.items():
            generator = random_calibrations.Generator(kind, 11)
            cls.pairs[name] = [generator.file() for _ in range(cls.COUNT)]

    def test_texts_are_valid_records(self):
        for name, pairs in self.pairs.items():
            texts = [text for _, text in pairs if text is not None]
            self.assertGreater(len(texts), self.COUNT * 3 // 4, name)
            self.assertLess(len(texts), self.COUNT, name)
            for text in texts:
                self.assertEqual(check_srecord.check(text), [])

    def test_records_hold_the_image(self):
        for name, pairs in self.pairs.items():
            for data, text in pairs[:30]:
                if text is None:
                    continue
                memory = check_srecord.memory(text)
                self.assertEqual(min(memory), 4352)
                self.assertIn(len(memory) // 16, unit_encoder.KINDS[name].rows)
                element = unit_encoder.image_of(data)
                for i in range(len(memory)):
                    self.assertEqual(memory[4352 + i], round(element[i]) % 256)

    def test_every_function_axis_release_and_unit_occurs_on_every_kind(self):
        for name, pairs in self.pairs.items():
            kind = unit_encoder.KINDS[name]
            seen = collections.defaultdict(set)
            for data, text in pairs:
                if text is not None:
                    self._note(unit_encoder.Calibration(data), seen)
            self.assertLessEqual(set(range(10)), seen["release"], name)
            self.assertLessEqual({(2, 6), (2, 7), (2, 17), (2, 18), (4, 2), (4, 3)}, seen["firmware"], name)
            self.assertLessEqual({"kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow", ""}, seen["units"], name)
            self.assertLessEqual(set(range(32)), seen["function"], name)
            if kind.has_fuel:
                self.assertEqual(seen["rows"], set(unit_encoder.AXIS_KINDS), name)
                self.assertEqual(seen["columns"], set(unit_encoder.AXIS_KINDS), name)

    @staticmethod
    def _note(calibration, seen):
        kind = calibration.kind
        seen["release"].add(calibration.release)
        seen["firmware"].add((calibration.release, calibration.build))
        seen["units"].add(calibration.MAPUnits())
        seen["function"].update(calibration.cell[kind.first_block:kind.first_block + 9 * kind.pins:9])
        for table in (1, 2) if kind.has_fuel else ():
            seen["rows"].add(calibration.axis_kind(table, True))
            seen["columns"].add(calibration.axis_kind(table, False))

    def test_a_thousand_files_have_every_function_on_every_pin(self):
        kind = unit_encoder.KINDS["C"]
        generator = random_calibrations.Generator(kind, 1)
        seen = [set() for _ in range(kind.pins)]
        for _ in range(1000):
            cells = struct.unpack_from("<451f", generator._candidate().ljust(2000, b"\0"), 12)
            for pin, functions in enumerate(seen):
                functions.add(cells[334 + 9 * pin])
        for functions in seen:
            self.assertLessEqual(set(random_calibrations.GPIO_FUNCTIONS), functions)

    def test_the_same_seed_gives_the_same_files(self):
        again = random_calibrations.Generator(ORB_A, 11)
        self.assertEqual([again.file() for _ in range(5)], self.pairs["A"][:5])
        self.assertNotEqual(random_calibrations.Generator(ORB_A, 12).file(), self.pairs["A"][0])

    def test_command_line_writes_pairs(self):
        for name, kind in unit_encoder.KINDS.items():
            with tempfile.TemporaryDirectory() as folder:
                arguments = ["--kind", name, "--count", "20", "--seed", "11", "--out", folder]
                self.assertEqual(unit_oracle.main(arguments), 0)
                for number, (data, text) in enumerate(self.pairs[name][:20]):
                    stem = os.path.join(folder, "%05d" % number)
                    with open(stem + kind.extension, "rb") as file:
                        self.assertEqual(file.read(), data)
                    self.assertEqual(os.path.exists(stem + ".s19"), text is not None)
                    if text is not None:
                        with open(stem + ".s19", "rb") as file:
                            self.assertEqual(file.read().decode("ascii"), text)


class Files(unittest.TestCase):
    def test_what_is_no_calibration_is_refused(self):
        for data in (b"", struct.pack("<2f", 3, 10.2), struct.pack("<4f", 2, 10.2, 5099, 0),
                     struct.pack("<4f", 9, 10.2, 5099, 0), struct.pack("<4f", 3.5, 10.2, 5099, 0)):
            with self.assertRaises(unit_encoder.EncodeError):
                unit_encoder.encode(data)

    def test_build_is_the_rest_of_the_code(self):
        for code, firmware in ((2017, (2, 17)), (2006.5, (2, 6)), (2017.5, (2, 18)), (12, (0, 12)), (0, (5, 99))):
            calibration = unit_encoder.Calibration(file_of(plain_cells(), code))
            self.assertEqual((calibration.release, calibration.build), firmware)


if __name__ == "__main__":
    unittest.main()
