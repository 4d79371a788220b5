"""Random datalogs through `zentaqctl log export`, read back by a second reader: every value, name, unit and marker.

test_exports.py ZENTAQCTL
"""

import random
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from read_exports import NEWER_COLUMNS, OLDER_FIELDS, read_csv, read_datalog, read_mlg, read_msl

PROGRAM = ""
LOGS = 60
UNITS = {"Time": "s", "RPM": "rpm", "TPS": "v", "CLT": "C", "MAT": "C", "BATTV": "v", "PRIADV": "deg", "PRIPW": "ms",
         "PRIDUTY": "%", "AAFR": ":1", "CHKE": "", "GPIO1": "", "GPIO20": ""}


def value(chance, name):
    """A field as a logger writes it, and now and then one that stretches the formats."""
    if name == "CHKE":
        return str(chance.randrange(2))
    if name.startswith("GPIO"):
        return chance.choice([" 0", str(chance.randrange(256))])
    return chance.choice([
        str(chance.randrange(-40, 9000)),
        f"{chance.uniform(-99, 260):.1f}",
        f"{chance.uniform(-9, 30):.3f}",
        f"{chance.uniform(-1, 1):.6f}",
        "0", "-0.5", "1e-05", "123456.75", " 7"])


def data_line(chance, names, step, separator):
    fields = []
    for name in names:
        if name == "Frame":
            fields.append(str(step))
        elif name == "Seconds":
            fields.append(f"{step * 0.02:.2f}")
        elif name == "RPM":
            fields.append(str(chance.randrange(1, 12000)))
        else:
            fields.append(value(chance, name))
    return separator.join(fields)


def damaged(chance, line, separator):
    fields = line.split(separator)
    kind = chance.randrange(4)
    if kind == 0:
        return separator.join(fields[:chance.randrange(1, len(fields))])
    if kind == 1:
        fields[chance.randrange(2, len(fields))] = "abc"
    elif kind == 2:
        fields[chance.randrange(2, len(fields))] = ""
    else:
        fields[chance.randrange(2, len(fields))] = "\x01\x7f\xff"
    return separator.join(fields)


def random_datalog(chance):
    banner = chance.choice(["4.10", "4.5", "4.0"])
    names = OLDER_FIELDS if banner == "4.0" else NEWER_COLUMNS
    separator = chance.choice("\t,") if banner == "4.0" else "\t"
    lines = [f"ZENTAQ {banner} DATALOG\tZQA-405099",
             "\t".join(["1", "10", "90"] + ["0"] * 20 + [chance.choice(["kPa", "psi", "inHg"]), "14.7"]),
             separator.join(names)]
    step = 0
    for _ in range(chance.randrange(1, 60)):
        step += chance.choice([1, 1, 1, 2, 50])
        lines.append(data_line(chance, names, step, separator))
        if chance.random() < 0.1:
            lines.append(damaged(chance, data_line(chance, names, step, separator), separator))
    end = chance.choice(["\r\n", "\n"])
    text = end.join(lines) + end
    if chance.random() < 0.3:  # the power was cut in the middle of a line
        text += data_line(chance, names, step + 1, separator).rsplit(separator, chance.randrange(1, 20))[0]
    return text.encode("latin-1")


def random_marks(chance, rows):
    times = sorted(chance.uniform(0, rows[-1]["Time"] * 1.1) for _ in range(chance.randrange(4)))
    return [(round(time, 2), f"lap {i} - {chance.choice(['start', 'missfire?', 'gear 3'])}")
            for i, time in enumerate(times)]


def as_float32(number_):
    return struct.unpack("f", struct.pack("f", number_))[0]


class Exports(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def export(self, log, form):
        out = log.with_suffix("." + form)
        told = subprocess.run([PROGRAM, "log", "export", log, "-o", out, "--to", form], capture_output=True, timeout=60)
        self.assertEqual(told.returncode, 0, told.stderr)
        return out.read_bytes()

    def check_computed(self, at, row, channels):
        """Not in a newer log: two turns of the engine, and what is left of them."""
        if "IPP" in row:
            return
        cycle = 120000 / row["RPM"]
        for name, wanted in [("IPP", cycle), ("PRIOFFTIME", max(0, cycle - row["PRIPW"])),
                             ("SECOFFTIME", max(0, cycle - row["SECPW"]))]:
            self.assertAlmostEqual(channels[name], wanted, delta=abs(wanted) * 2e-6 + 0.0006, msg=f"{at} {name}")

    def check_values(self, export, rows, at, exact):
        self.assertEqual(len(export.rows), len(rows), at)
        self.assertEqual(export.names[0], "Time")
        for number_, (got, row) in enumerate(zip(export.rows, rows)):
            channels = dict(zip(export.names, got))
            for name, wanted in row.items():
                if name in ("Time", "Frame"):
                    self.assertAlmostEqual(channels[name], wanted, delta=max(0.0006, wanted * 1e-6), msg=f"{at} {name}")
                else:
                    self.assertEqual(channels[name], exact(wanted), f"{at} row {number_} {name}")
            self.check_computed(f"{at} row {number_}", row, channels)

    def check_names(self, export, at):
        self.assertEqual(len(set(export.names)), len(export.names), at)
        channels = dict(zip(export.names, export.units))
        for name, unit in UNITS.items():
            self.assertEqual(channels[name], unit, f"{at} {name}")

    def check_marks(self, export, marks, rows, at):
        before = [sum(row["Time"] < time for row in rows) for time, _ in marks]
        self.assertEqual([text for _, text in export.marks], [text for _, text in marks], at)
        self.assertEqual([place for place, _ in export.marks], before, at)

    def test_every_value_name_unit_and_marker_comes_out(self):
        for seed in range(LOGS):
            chance = random.Random(seed)
            log = Path(self.folder.name) / f"{seed}.dat"
            log.write_bytes(random_datalog(chance))
            rows = read_datalog(log.read_bytes())
            marks = random_marks(chance, rows)
            if marks:
                text = "".join(f"{time}\t{text}\n" for time, text in marks)
                Path(str(log) + ".marks").write_text(text, encoding="utf-8")
            for form, reader, exact in [("csv", read_csv, float), ("msl", read_msl, float), ("mlg", read_mlg, as_float32)]:
                at = f"log {seed} as {form}"
                export = reader(self.export(log, form))
                self.check_names(export, at)
                self.check_values(export, rows, at, exact)
                if form != "csv":
                    self.check_marks(export, marks, rows, at)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop(1)
    unittest.main()
