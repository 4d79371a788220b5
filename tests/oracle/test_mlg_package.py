"""MLG files of `zentaqctl log export`, read by the published reader of the tuning community.

test_mlg_package.py ZENTAQCTL FOLDER: FOLDER/node_modules holds the reader. Where it or node is missing the test says so
and is passed over.
"""

import json
import random
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

from read_exports import TABLE, read_datalog
from test_exports import UNITS, as_float32, random_datalog, random_marks

PROGRAM = ""
READER = Path()
PASSED_OVER = 77
LOGS = 12

READ = """
const { Parser } = require(process.argv[1]);
const fs = require('fs');
const all = process.argv.slice(2).map((path) => {
  const file = fs.readFileSync(path);
  const content = file.buffer.slice(file.byteOffset, file.byteOffset + file.byteLength);
  return new Parser(content).parse(() => {});
});
process.stdout.write(JSON.stringify(all));
"""


class PublishedReader(unittest.TestCase):
    def exported(self, folder, seed):
        """A log with its markers, and its MLG file."""
        chance = random.Random(1000 + seed)
        log = folder / f"{seed}.dat"
        content, _ = random_datalog(chance)
        log.write_bytes(content)
        rows = read_datalog(content)
        marks, marks_file = random_marks(chance, rows)
        Path(str(log) + ".marks").write_text(marks_file, encoding="utf-8", newline="")
        out = log.with_suffix(".mlg")
        subprocess.run([PROGRAM, "log", "export", log, "-o", out, "--to", "mlg"], check=True, timeout=60, capture_output=True)
        return rows, marks, out

    def test_reads_every_value_and_marker(self):
        with tempfile.TemporaryDirectory() as folder:
            logs = [self.exported(Path(folder), seed) for seed in range(LOGS)]
            read = subprocess.run(["node", "-e", READ, READER, *(out for _, _, out in logs)], check=True, timeout=60,
                                  capture_output=True)
            for number, (log, parsed) in enumerate(zip(logs, json.loads(read.stdout), strict=True)):
                self.check(log, parsed, f"log {number}")

    def check(self, log, parsed, at):
        rows, marks, _ = log
        units = {field["name"]: field["units"] for field in parsed["fields"]}
        self.assertEqual(list(units), ["Time", *TABLE], at)
        for unit, names in UNITS.items():
            self.assertEqual({units[name] for name in names}, {unit}, at)
        values = [record for record in parsed["records"] if record["type"] == "field"]
        # It tells where a marker stands, and not its text.
        told, before = [], 0
        for record in parsed["records"]:
            if record["type"] == "marker":
                told.append(before)
            else:
                before += 1
        self.assertEqual(len(values), len(rows), at)
        self.assertEqual(told, [sum(row["Time"] < time for row in rows) for time, _ in marks], at)
        for record, row in zip(values, rows):
            for name, wanted in row.items():
                if name in ("Time", "Frame"):
                    self.assertAlmostEqual(record[name], wanted, delta=max(0.0006, wanted * 1e-6), msg=f"{at} {name}")
                else:
                    self.assertEqual(record[name], as_float32(wanted), f"{at} {name}")


if __name__ == "__main__":
    PROGRAM, where = sys.argv.pop(1), sys.argv.pop(1)
    READER = Path(where).resolve() / "node_modules" / "mlg-converter"
    if shutil.which("node") is None or not READER.is_dir():
        print(f"Passed over: there is no node, or no reader of MLG files in {where} (scripts/install-mlg-reader).")
        sys.exit(PASSED_OVER)
    unittest.main()
