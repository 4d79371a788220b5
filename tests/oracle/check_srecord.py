#!/usr/bin/env python3
"""Checks Motorola S-record files: form, byte count and checksum of every line.

    python3 check_srecord.py FILE...

prints one line for each fault and ends with status 1 when there is any. It knows nothing of
calibrations and takes nothing from an encoder.
"""

import re
import sys

ADDRESS_BYTES = {"0": 2, "1": 2, "2": 3, "3": 4, "5": 2, "6": 3, "7": 4, "8": 3, "9": 2}
LINE = re.compile(r"S([0-9])((?:[0-9A-F]{2})+)")
END_TYPES = "789"


def check_line(line):
    """The fault of one line without its line end, or None."""
    match = LINE.fullmatch(line)
    if not match:
        return "not S, a type and pairs of upper-case hexadecimal digits"
    kind, numbers = match.group(1), bytes.fromhex(match.group(2))
    if kind not in ADDRESS_BYTES:
        return "type S%s is not in use" % kind
    if numbers[0] != len(numbers) - 1:
        return "count says %d, the line has %d" % (numbers[0], len(numbers) - 1)
    if numbers[0] < ADDRESS_BYTES[kind] + 1:
        return "too short for its address"
    expected = 0xFF - sum(numbers[:-1]) % 256
    if numbers[-1] != expected:
        return "checksum is %02X, should be %02X" % (numbers[-1], expected)
    return None


def check(text):
    """The faults of a whole text, each with its line number; an empty list when it is valid."""
    faults = []
    if not text.endswith("\r\n"):
        faults.append("the last line does not end with CR LF")
    lines = text.split("\r\n")
    if lines[-1] == "":
        lines.pop()
    for number, line in enumerate(lines, 1):
        fault = check_line(line)
        if fault:
            faults.append("line %d: %s" % (number, fault))
        elif line[1] in END_TYPES and number != len(lines):
            faults.append("line %d: an end record before the end" % number)
    if not lines or lines[-1][:1] != "S" or lines[-1][1:2] not in tuple(END_TYPES):
        faults.append("no end record")
    return faults


def memory(text):
    """Address to byte, from the data records of a valid text. A byte told twice is an error."""
    found = {}
    for line in text.split("\r\n"):
        if line[:2] not in ("S1", "S2", "S3"):
            continue
        width = ADDRESS_BYTES[line[1]]
        numbers = bytes.fromhex(line[2:])
        address = int.from_bytes(numbers[1:1 + width], "big")
        for offset, byte in enumerate(numbers[1 + width:-1]):
            if address + offset in found:
                raise ValueError("address %X is told twice" % (address + offset))
            found[address + offset] = byte
    return found


def main(paths):
    faults = 0
    for path in paths:
        with open(path, "rb") as file:
            text = file.read().decode("ascii", "replace")
        for fault in check(text):
            print("%s: %s" % (path, fault))
            faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
