"""Cases worked out by hand for the second implementation of AutoVE."""

import unittest

from auto_ve_oracle import AutoVe

SPEEDS = [1000.0 * i for i in range(1, 9)]  # mean size 7000 / 8 = 875
PRESSURES = [20.0 + 10 * i for i in range(8)]  # mean size 70 / 8 = 8.75


class Rule(unittest.TestCase):
    def setUp(self):
        self.rule = AutoVe(SPEEDS, PRESSURES, [0.0] * 256, 15.0)

    def test_half_a_cell_away_on_one_axis(self):
        # 2500 rpm at 30 kPa: columns 1 and 2 are 500 / 875 = 0.5714 away, weight 1.25 / 0.5714 = 2.1875,
        # (0 + 2.1875 * 8) / 100 = 0.175.
        self.rule.sample(2500.0, 30.0, 8.0)
        self.assertAlmostEqual(self.rule.sums[1, 1], 0.175, places=6)
        self.assertAlmostEqual(self.rule.sums[2, 1], 0.175, places=6)
        # One row up: sqrt(0.5714^2 + (10 / 8.75)^2) = 1.2778, too far.
        self.assertNotIn((1, 2), self.rule.sums)

    def test_on_both_headers_the_cell_takes_what_the_one_before_took(self):
        # p = 2 (1000 is the last below 2000: number 1; + 1 = 2 counts from 1): columns 0 to 2 from 0.
        # Cell 0,1 comes first, 1000 / 875 = 1.142857 away: 1.25 / 1.142857 * 8 / 100 = 0.0875. Then 1,0 at
        # 10 / 8.75, the same distance, and 1,1 itself takes its 0.0875 over.
        self.rule.sample(2000.0, 30.0, 8.0)
        self.assertAlmostEqual(self.rule.sums[0, 1], 0.0875, places=6)
        self.assertAlmostEqual(self.rule.sums[1, 1], 0.0875, places=6)

    def test_the_limit_holds(self):
        for _ in range(5000):
            self.rule.sample(2500.0, 30.0, 60.0)
        self.assertEqual(self.rule.sums[1, 1], 15.0)
        self.assertEqual(self.rule.written_back()[16 + 1], 15.0)


if __name__ == "__main__":
    unittest.main()
