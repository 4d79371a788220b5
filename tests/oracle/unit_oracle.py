#!/usr/bin/env python3
"""Writes random calibration files and the S-record text that a unit must get from each.

    python3 unit_oracle.py --kind A --count 1000 --seed 1 --out DIR

writes DIR/00000.ZQ4OA with DIR/00000.s19 beside it, and so on. A calibration that no image can be made
from, as a number does not fit or is divided by zero, has no .s19. With --sensors the files are of old
firmware and find their sensor in random_calibrations.SENSORS. The same kind and seed give the same files.
"""

import argparse
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import random_calibrations  # noqa: E402
import unit_encoder  # noqa: E402


def write_files(kind, count, seed, folder, sensors=None):
    generator = random_calibrations.Generator(kind, seed, sensors)
    os.makedirs(folder, exist_ok=True)
    for number in range(count):
        data, text = generator.file()
        stem = os.path.join(folder, "%05d" % number)
        with open(stem + kind.extension, "wb") as file:
            file.write(data)
        write_or_remove(stem + ".s19", text)


def write_or_remove(path, text):
    """No text of an earlier run may stand beside a calibration that has none."""
    if text is not None:
        with open(path, "wb") as file:
            file.write(text.encode("ascii"))
    elif os.path.exists(path):
        os.remove(path)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--kind", choices=sorted(unit_encoder.KINDS), default="A")
    parser.add_argument("--count", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--sensors", action="store_true")
    parser.add_argument("--out", required=True)
    options = parser.parse_args(arguments)
    sensors = random_calibrations.SENSORS if options.sensors else None
    write_files(unit_encoder.KINDS[options.kind], options.count, options.seed, options.out, sensors)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
