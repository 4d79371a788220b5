#!/usr/bin/env python3
"""Writes the S-record text of every calibration file in a folder beside it, by the second encoder.

    python3 encode_files.py FOLDER
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import unit_encoder  # noqa: E402


def main(folder):
    for name in sorted(os.listdir(folder)):
        stem, extension = os.path.splitext(name)
        if not extension.startswith(".ZQ4"):
            continue
        with open(os.path.join(folder, name), "rb") as file:
            text = unit_encoder.encode(file.read())
        with open(os.path.join(folder, stem + ".s19"), "wb") as file:
            file.write(text.encode("ascii"))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
