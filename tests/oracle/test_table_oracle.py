"""Tests of the second implementation of the table operations against numbers worked out by hand.

    python3 test_table_oracle.py
"""

import os
import random
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import table_oracle  # noqa: E402
from table_oracle import BASE, f32, round_to, text_of  # noqa: E402


def calibration(rows=8, columns=8):
    """Columns 500, 1000, ...; rows 30, 35, ... from the bottom up; every cell of a table that takes it 0."""
    cal = table_oracle.Calibration()
    for table in ("ADV", "GPO1", "GPO2"):
        cal.resize(table, rows, columns)
        for i in range(16):
            cal.store_header(table, True, i, 500.0 * (i + 1))
            cal.store_header(table, False, i, 30.0 + 5 * i)
    cal.cell[BASE["AFR"]:BASE["AFR"] + 256] = [14.0] * 256
    return cal


def fill(cal, table, stored_row, values):
    at = BASE[table] + stored_row * 16
    cal.cell[at:at + len(values)] = [f32(value) for value in values]


def line(cal, table, stored_row, count):
    at = BASE[table] + stored_row * 16
    return cal.cell[at:at + count]


def floats(*values):
    return [f32(value) for value in values]


class Numbers(unittest.TestCase):

    def test_a_32_bit_float_has_24_binary_digits(self):
        self.assertEqual(f32(16777217), 16777216)
        self.assertEqual(f32(0.1), 13421773 / 2 ** 27)
        self.assertEqual(f32(0.5), 0.5)

    def test_ties_go_to_the_even_digit(self):
        self.assertEqual(round_to(0.25, 1), f32(0.2))
        self.assertEqual(round_to(0.75, 1), f32(0.8))
        self.assertEqual(round_to(-0.25, 1), f32(-0.2))
        self.assertEqual(round_to(0.125, 2), f32(0.12))
        self.assertEqual(round_to(2.5, 0), 2)

    def test_what_only_looks_like_a_tie_is_rounded_as_it_is_held(self):
        self.assertEqual(round_to(f32(0.15), 1), f32(0.2))  # held as 0.150000006
        self.assertEqual(round_to(f32(0.35), 1), f32(0.3))  # held as 0.349999994

    def test_a_text_has_seven_digits(self):
        self.assertEqual(text_of(f32(37.12345678)), "37.12346")
        self.assertEqual(text_of(f32(9.7)), "9.7")
        self.assertEqual(text_of(-0.0), "0")


class Values(unittest.TestCase):

    def test_advance_is_stored_without_the_offset(self):
        cal = calibration()
        cal.cell[table_oracle.OFFSET] = 10.0
        cal.store("ADV", 0, 25.0)
        self.assertEqual(cal.cell[BASE["ADV"]], 15.0)
        self.assertEqual(cal.value("ADV", 0), 25.0)

    def test_ratios_are_stored_on_the_base_of_14_7_and_show_two_decimals(self):
        cal = calibration()
        cal.cell[table_oracle.RATIO] = f32(7.35)
        cal.store("AFR", 0, 8.0)
        self.assertEqual(cal.cell[BASE["AFR"]], 16.0)
        cal.cell[BASE["AFR"]] = f32(16.0124)
        self.assertEqual(cal.value("AFR", 0), f32(8.01))  # 8.0062

    def test_outputs_are_whole_percents(self):
        cal = calibration()
        cal.store("GPO1", 0, 50.5)
        self.assertEqual(cal.cell[BASE["GPO1"]], 50.0)
        cal.store("GPO1", 0, 101.0)
        self.assertEqual(cal.cell[BASE["GPO1"]], 50.0)

    def test_a_refused_value_leaves_the_cell(self):
        cal = calibration()
        cal.store("VE", 3, 50.0)
        cal.store("VE", 3, 50.1)
        self.assertEqual(cal.cell[BASE["VE"] + 3], 50.0)


class Interpolation(unittest.TestCase):

    def test_fills_a_block_from_its_corners(self):
        cal = calibration()
        fill(cal, "VE", 7, [0, 9, 10])
        fill(cal, "VE", 5, [20, 9, 40])
        table_oracle.interpolate(cal, "VE", 1, 1, 3, 3)
        self.assertEqual(line(cal, "VE", 7, 3), [0, 5, 10])
        self.assertEqual(line(cal, "VE", 6, 3), [10, 17.5, 25])
        self.assertEqual(line(cal, "VE", 5, 3), [20, 30, 40])

    def test_of_one_row_rounds_to_one_decimal(self):
        cal = calibration()
        fill(cal, "VE", 0, [0, 9, 9, 10])
        table_oracle.interpolate(cal, "VE", 8, 1, 8, 4)
        self.assertEqual(line(cal, "VE", 0, 4), floats(0, 3.3, 6.7, 10))

    def test_keeps_the_bits_of_what_looks_the_same(self):
        cal = calibration()
        fill(cal, "VE", 7, [5.00000048, 0, 5])
        table_oracle.interpolate(cal, "VE", 1, 1, 1, 3)
        self.assertEqual(line(cal, "VE", 7, 3), [f32(5.00000048), 5, 5])

    def test_of_ratios_leaves_one_decimal(self):
        cal = calibration()
        cal.cell[table_oracle.RATIO] = f32(14.7)
        fill(cal, "AFR", 7, [14.64, 13.26])
        table_oracle.interpolate(cal, "AFR", 1, 1, 1, 2)
        self.assertEqual([cal.value("AFR", 112), cal.value("AFR", 113)], floats(14.6, 13.3))


class Smoothing(unittest.TestCase):

    def test_counts_the_cell_itself_and_sees_new_values(self):
        cal = calibration()
        fill(cal, "VE", 7, [10, 20])
        table_oracle.smooth(cal, "VE", 5, 1, 1, 1, 2)
        self.assertEqual(line(cal, "VE", 7, 2), [15, 17.5])

    def test_at_its_gentlest_counts_the_cell_five_times(self):
        cal = calibration()
        fill(cal, "VE", 7, [10, 20])
        table_oracle.smooth(cal, "VE", 1, 1, 1, 1, 2)
        # (5 * 10 + 20) / 6, then (11.7 + 5 * 20) / 6
        self.assertEqual(line(cal, "VE", 7, 2), floats(11.7, 18.6))

    def test_reaches_two_cells_and_not_beyond_the_block(self):
        cal = calibration()
        fill(cal, "VE", 7, [6, 0, 0, 12, 40])
        fill(cal, "VE", 6, [50, 50, 50, 50, 50])
        table_oracle.smooth(cal, "VE", 5, 1, 1, 1, 4)
        # 6 / 3; 14 / 4; (2 + 3.5 + 12) / 4 is 4.375; (3.5 + 4.4 + 12) / 3
        self.assertEqual(line(cal, "VE", 7, 5), floats(2, 3.5, 4.4, 6.6, 40))


class AddedLines(unittest.TestCase):

    def test_a_column_is_the_mean_of_its_neighbors_and_rounds_what_it_moves(self):
        cal = calibration()
        fill(cal, "VE", 0, [1, 1.5, 2.25, 3, 4, 5, 6, 7.75, 33])
        table_oracle.add_column(cal, "VE", 2)
        self.assertEqual(cal.headers("VE", True), [500, 750, 1000, 1500, 2000, 2500, 3000, 3500, 4000])
        self.assertEqual(line(cal, "VE", 0, 10), floats(1, 1.2, 1.5, 2.2, 3, 4, 5, 6, 7.8, 0))

    def test_a_first_column_has_half_of_the_first_header_unrounded(self):
        cal = calibration()
        cal.store_header("VE", True, 0, 500.5)
        fill(cal, "SPW", 7, [1.25, 2.25])
        table_oracle.add_column(cal, "ADV", 1)
        self.assertEqual(cal.headers("VE", True)[:3], [250.25, 500.5, 1000])
        self.assertEqual(line(cal, "SPW", 7, 3), floats(1.2, 1.2, 2.2))

    def test_a_row_moves_values_as_they_are(self):
        cal = calibration()
        for row, value in enumerate([1.25, 2, 3.75, 4.25]):
            fill(cal, "VE", row, [value])
        table_oracle.add_row(cal, "VE", 6)  # stored row 2
        self.assertEqual(cal.headers("VE", False), [30, 35, 37.5, 40, 45, 50, 55, 60, 65])
        # (3.75 + 2) / 2 is 2.875
        self.assertEqual([line(cal, "VE", row, 1)[0] for row in range(5)], floats(1.25, 2, 2.9, 3.75, 4.25))

    def test_a_row_below_the_last_is_a_rounded_copy(self):
        cal = calibration()
        fill(cal, "VE", 0, [1.25])
        table_oracle.add_row(cal, "VE", 8)
        self.assertEqual(cal.headers("VE", False)[:3], [15, 30, 35])
        self.assertEqual([line(cal, "VE", row, 1)[0] for row in range(2)], floats(1.2, 1.25))

    def test_a_stop_is_refused_by_the_kind_of_its_axis(self):
        cal = calibration()
        cal.cell[table_oracle.AXIS_WORD["GPO1"]] = 4 * 16 + 8.0  # volts, percent
        cal.store_header("GPO1", False, 0, 5.1)
        cal.store_header("GPO1", True, 0, 100.0)
        self.assertEqual(cal.header("GPO1", False, 0), 30)
        self.assertEqual(cal.header("GPO1", True, 0), 100)

    def test_a_refused_header_stays(self):
        cal = calibration()
        cal.store_header("VE", False, 0, 20.0)  # 10 is below the least pressure, 10.34
        table_oracle.add_row(cal, "VE", 8)
        self.assertEqual(cal.headers("VE", False)[:3], [20, 20, 35])

    def test_an_output_table_changes_alone(self):
        cal = calibration()
        fill(cal, "GPO1", 0, [10, 13])
        table_oracle.add_column(cal, "GPO1", 2)
        self.assertEqual(line(cal, "GPO1", 0, 3), [10, 12, 13])  # 11.5 is a tie
        self.assertEqual([cal.columns(table) for table in ("GPO1", "GPO2", "VE")], [9, 8, 8])

    def test_there_are_no_more_than_sixteen(self):
        cal = calibration(16, 16)
        before = list(cal.cell)
        table_oracle.add_column(cal, "VE", 1)
        table_oracle.add_row(cal, "VE", 1)
        self.assertEqual(cal.cell, before)


class RemovedLines(unittest.TestCase):

    def test_a_column_goes_and_the_others_close_up(self):
        cal = calibration(8, 9)
        fill(cal, "VE", 3, [1, 2, 3.25, 4, 5, 6, 7, 8, 9])
        table_oracle.remove_column(cal, "SPW", 2)
        self.assertEqual(cal.headers("VE", True), [500, 1500, 2000, 2500, 3000, 3500, 4000, 4500])
        self.assertEqual(line(cal, "VE", 3, 9), [1, 3.25, 4, 5, 6, 7, 8, 9, 9])

    def test_a_row_goes_and_those_above_come_down(self):
        cal = calibration(9, 8)
        for row in range(9):
            fill(cal, "VE", row, [row + 0.25])
        table_oracle.remove_row(cal, "VE", 9)
        self.assertEqual(cal.headers("VE", False), [35, 40, 45, 50, 55, 60, 65, 70])
        self.assertEqual([line(cal, "VE", row, 1)[0] for row in (0, 1, 7, 8)], [1.25, 2.25, 8.25, 8.25])

    def test_there_are_no_fewer_than_eight(self):
        cal = calibration()
        before = list(cal.cell)
        table_oracle.remove_column(cal, "VE", 1)
        table_oracle.remove_row(cal, "VE", 1)
        self.assertEqual(cal.cell, before)


class Formulas(unittest.TestCase):

    def result(self, formula, value):
        cal = calibration()
        fill(cal, "VE", 7, [value])
        table_oracle.apply(cal, "VE", formula, 1, 1, 1, 1)
        return line(cal, "VE", 7, 1)[0]

    def test_each_does_what_it_says(self):
        for formula, result in (("=12", 12), ("+3", 43), ("-2", 38), ("*1.05", 42), ("/4", 10), ("+5%", 42),
                                ("-5%", 38)):
            self.assertEqual(self.result(formula, 40), result, formula)

    def test_counts_from_the_number_of_the_text(self):
        self.assertEqual(self.result("+5%", 41.2), f32(43.26))

    def test_is_all_or_nothing(self):
        cal = calibration()
        fill(cal, "VE", 7, [40, 49])
        table_oracle.apply(cal, "VE", "+3", 1, 1, 1, 2)
        self.assertEqual(line(cal, "VE", 7, 2), [40, 49])


class NewAxes(unittest.TestCase):

    def test_take_the_values_between_the_old_ones(self):
        cal = calibration()
        for row, values in enumerate([[0, 10], [20, 50]]):
            fill(cal, "VE", row, values)
        columns = [500.0, 750.0, 1000.0] + [2000.0 + 500 * i for i in range(5)]
        rows = [30.0, 32.5] + [40.0 + 5 * i for i in range(6)]
        table_oracle.rebin(cal, "ADV", columns, rows)
        self.assertEqual(line(cal, "VE", 0, 3), [0, 5, 10])
        self.assertEqual(line(cal, "VE", 1, 3), [10, 20, 30])
        self.assertEqual(cal.headers("VE", True), columns)
        self.assertEqual(cal.headers("VE", False), rows)

    def test_hold_the_ends_and_keep_the_old_points(self):
        cal = calibration()
        fill(cal, "VE", 0, [1.25, 2, 3, 4, 5, 6, 7, 8.75])
        table_oracle.rebin(cal, "VE", [100.0, 500.0, 1000.0, 1500.0, 2000.0, 2500.0, 3000.0, 9000.0], None)
        self.assertEqual(line(cal, "VE", 0, 8), floats(1.2, 1.25, 2, 3, 4, 5, 6, 8.8))

    def test_can_have_another_length(self):
        cal = calibration()
        table_oracle.rebin(cal, "GPO2", [100.0 * i for i in range(1, 13)], None)
        self.assertEqual([cal.columns(table) for table in ("GPO2", "GPO1", "VE")], [12, 8, 8])

    def test_are_refused_with_one_cell(self):
        cal = calibration()
        fill(cal, "VE", 0, [60])
        before = list(cal.cell)
        table_oracle.rebin(cal, "VE", [100.0 * i for i in range(1, 9)], None)
        self.assertEqual(cal.cell, before)


class Cases(unittest.TestCase):

    def test_are_the_same_for_the_same_seed(self):
        for operation in table_oracle.OPERATIONS:
            lines = [table_oracle.case_line(0, *table_oracle.random_case(random.Random(3), operation))
                     for _ in range(2)]
            self.assertEqual(*lines)

    def test_are_of_all_sizes_and_tables(self):
        rng = random.Random(4)
        sizes, tables = set(), set()
        for _ in range(300):
            table, _, before, _ = table_oracle.random_case(rng, "interpolate")
            tables.add(table)
            sizes.add(before.rows(table))
        self.assertEqual(sizes, set(range(8, 17)))
        self.assertEqual(tables, set(BASE))


if __name__ == "__main__":
    unittest.main()
