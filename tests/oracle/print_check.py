#!/usr/bin/env python3
"""Checks a printed calibration against what the command line tells of the same file.

    python3 print_check.py ZENTAQCTL FILE...

Every heading of the listing, in its order; every member with the value that `zentaqctl get` gives it, in the
section where it belongs; the paper in two sizes. One line for each fault, status 1 when there is any. The
headings and the members of each section are typed by hand here.
"""

import math
import re
import subprocess
import sys
from decimal import Decimal, ROUND_HALF_UP

ROW = re.compile(r"-?[0-9.]+ ")

FULL_HEADINGS = [
    "1.  WIZARD & BASIC PARAMETERS", "2.  FUEL ENRICHMENTS", "TPS/MAP BLEND TABLE",
    "MAP/TPS ACCELERATION ENRICHMENTS", "DE-ACCELERATION ENRICHMENT", "BATTERY VOLTAGE COMPENSATION",
    "STARTING ENRICHMENTS", "FUEL PUMP TURN-ON TIME", "MAT FUEL ENRICHMENT", "WARM-UP PARAMETERS",
    "OVERBOOST FUEL CUTOFF", "3.  VOLUMETRIC EFFICIENCY CORRECTION TABLE", "VOLUMETRIC EFFICIENCY (%GAMA)",
    "4.  STAGED PULSEWIDTH TABLE", "STAGED PULSEWIDTH (%PRIMARY)", "5.  ADVANCE TABLE", "ADVANCE (DEGREES)",
    "6.  COOLANT ADVANCE TABLE", "7.  MANIFOLD TEMP ADVANCE TABLE", "8.  DUAL PLUG TIMING-SPLIT",
    "9.  EGO PARAMETERS", "EGO/WIDEBAND CALIBRATION", "10. AIR FUEL RATIO TABLE",
    "             AIR TO FUEL RATIO", "11. KNOCK CONTROL PARAMETERS", "12. IDLE CONTROL PARAMETERS",
    "IDLE CONTROL SENSITIVITIES", "IDLE SPEED RESET RPM POINTS", "MIN/MAX DUTYCYCLE", "IDLE ADVANCE",
    "13. REV LIMITER PARAMETERS", "14. SENSOR PARAMETERS", "CLT SENSOR", "MAT SENSOR", "TPS SENSOR",
    "MAP SENSOR", "MAF SENSOR", "EGO SENSOR", "KNOCK SENSOR", "15. CYLINDER TRIMS",
    "16. General Purpose Input/Output", "-- SOFTWARE VERSION --",
]
IGNITION_HEADINGS = [
    "1.  WIZARD & BASIC PARAMETERS", "2.  ADVANCE TABLE", "ADVANCE (DEGREES)", "3.  EXTERNAL RETARD TABLE",
    "4.  DUAL PLUG TIMING-SPLIT", "5.  KNOCK CONTROL PARAMETERS", "6.  REV LIMITER PARAMETERS",
    "7.  SENSOR PARAMETERS", "8.  CYLINDER TRIMS", "9.  General Purpose Input/Output",
    "-- SOFTWARE VERSION --",
]
# A unit without a second row of injectors, and the split of two plugs.
WITHOUT = {"ORB D": ("4.  STAGED PULSEWIDTH TABLE", "STAGED PULSEWIDTH (%PRIMARY)", "8.  DUAL PLUG TIMING-SPLIT")}


def plain(number):
    return number


def rounded(number, places):
    """As the printed formats have it: half away from zero, of the number as its text has it."""
    return str(Decimal(repr(number)).quantize(Decimal(1).scaleb(-places), ROUND_HALF_UP))


def fixed(places):
    """A number with so many decimals."""
    def form(text):
        return rounded(float(text), places)
    return form


# Section, member, how its number is printed. One line of the section ends with it, or with it and a unit.
FULL_VALUES = [
    ("1.", "scale1", fixed(3)), ("1.", "INJ_On", fixed(3)), ("1.", "MT", fixed(5)), ("1.", "INJ_Number", plain),
    ("1.", "BHP", fixed(0)), ("1.", "INJ_FlowRate", fixed(2)),
    ("2.", "TBSOFF", plain), ("2.", "ACE0", plain), ("2.", "ACE1", plain), ("2.", "ACE2", plain),
    ("2.", "ACE3", plain), ("2.", "ACE4", plain), ("2.", "ACE5", plain), ("2.", "ACE6", plain),
    ("2.", "ACE7", plain), ("2.", "DCCL_0", plain), ("2.", "DCCL_1", plain), ("2.", "DCCL_3", "pressure"),
    ("2.", "DCCL_4", plain), ("2.", "SEPW", plain), ("2.", "SECLT", fixed(0)), ("2.", "ASE0", plain),
    ("2.", "ASE1", plain), ("2.", "FPT", plain), ("2.", "MAP_Max", "pressure"), ("2.", "BSTCTTM", plain),
    ("5.", "Initial_Advance", fixed(0)),
    ("9.", "EGO_TMP", fixed(0)), ("9.", "CONDIV", plain), ("9.", "AVRDIV", plain), ("9.", "Register_Number", plain),
    ("9.", "EGO_LMT", plain), ("9.", "EGO_RPM", plain), ("9.", "EGO_MAP", "pressure"),
    ("11.", "KNK_MIN", plain), ("11.", "KNK_ATK", plain), ("11.", "KNK_MAX", plain), ("11.", "KNK_DCY", plain),
    ("11.", "KNK_RPM", plain),
    ("12.", "Reset_Duty", plain), ("12.", "IAC_Start", plain), ("12.", "POSPGAIN", plain),
    ("12.", "NEGPGAIN", plain), ("12.", "POSDGAIN", plain), ("12.", "NEGDGAIN", plain),
    ("12.", "IAC_RPM_HI", plain), ("12.", "IAC_RPM_LO", plain), ("12.", "MinDuty", plain),
    ("12.", "MaxDuty", plain), ("12.", "IS_ADV", plain), ("12.", "IS_RTD", plain),
    ("13.", "REV_Limiter", plain), ("13.", "REV_AuxLimiter", plain), ("13.", "REV_Hysteresis", plain),
    ("14.", "CLT_FailHigh", plain), ("14.", "CLT_FailLow", plain), ("14.", "CLT_Default", fixed(0)),
    ("14.", "MAT_FailHigh", plain), ("14.", "MAT_FailLow", plain), ("14.", "MAT_Default", fixed(0)),
    ("14.", "TPS_FCV", plain), ("14.", "TPS_WOV", plain), ("14.", "TPS_FailHigh", plain),
    ("14.", "TPS_FailLow", plain), ("14.", "TPS_Default", plain), ("14.", "MAP_FailHigh", plain),
    ("14.", "MAP_FailLow", plain), ("14.", "MAP_Default", "pressure"), ("14.", "MAP_FIL", plain),
    ("14.", "MAFMax", plain), ("14.", "EGO_RPML", plain), ("14.", "EGO_FailTime", plain),
    ("14.", "EGO_SUD", plain), ("14.", "KNK_Timer", plain),
]
IGNITION_VALUES = [
    ("2.", "Initial_Advance", fixed(0)),
    ("5.", "KNK_MIN", plain), ("5.", "KNK_ATK", plain), ("5.", "KNK_MAX", plain), ("5.", "KNK_DCY", plain),
    ("5.", "KNK_RPM", plain),
    ("6.", "REV_Limiter", plain), ("6.", "REV_AuxLimiter", plain), ("6.", "REV_Hysteresis", plain),
    ("7.", "MAP_FailHigh", plain), ("7.", "MAP_FailLow", plain), ("7.", "MAP_Default", "pressure"),
    ("7.", "MAP_FIL", plain), ("7.", "KNK_Timer", plain),
]
# Section, start of the lines, member: all its elements stand behind it, line by line.
FULL_CURVES = [
    ("2.", "ERPM", "BLDTBL"), ("2.", "TPS%", "LOWBLD"), ("2.", "MICROSEC", "BATCom"),
    ("6.", "ADV (DEG)", "CLTTBL"), ("7.", "ADV (DEG)", "MATADV"), ("8.", "SPLIT", "SPLITBL"),
    ("9.", "Volts", "X"), ("9.", "AFR", "Y"), ("12.", "RPM", "ISRPM"), ("12.", "DEG C", "ISTMP"),
]
IGNITION_CURVES = [("4.", "SPLIT", "SPLITBL")]
# Section, table, digits of a cell.
FULL_GRIDS = [("3.", "VE", 2, 0), ("4.", "SPW", 2, 0), ("5.", "ADV", 1, 1), ("10.", "AFR", 2, 2)]
IGNITION_GRIDS = [("2.", "ADV", 1, 1)]


class Check:
    def __init__(self, ctl, path):
        self.ctl, self.path, self.faults = ctl, path, []
        self.lines = self.told("print").split("\n")
        self.kind = self.told("info").split("\n")[1].split(":")[1].strip()
        self.heads = IGNITION_HEADINGS if self.kind == "PZK-2" else FULL_HEADINGS

    def told(self, command, *more):
        done = subprocess.run([self.ctl, command, self.path, *more], capture_output=True, text=True, check=False)
        return done.stdout if done.returncode == 0 else ""

    def fault(self, text):
        self.faults.append("%s: %s" % (self.path.rsplit("/", 1)[-1], text))

    def section(self, number):
        """The lines from the heading of this number to the next numbered heading."""
        numbered = [head for head in self.heads if head[0].isdigit() or head.startswith("--")]
        wanted = next(head for head in numbered if head.startswith(number))
        if wanted not in self.lines:
            return []
        first = self.lines.index(wanted) + 1
        last = first
        while last < len(self.lines) and self.lines[last] not in numbered:
            last += 1
        return self.lines[first:last]

    def value(self, member):
        return self.told("get", member).strip()

    def headings(self, wanted):
        place = 0
        for heading in wanted:
            found = next((i for i in range(place, len(self.lines)) if self.lines[i].startswith(heading)), None)
            if found is None:
                self.fault("no heading %r behind line %d" % (heading, place))
            else:
                place = found

    def values(self, wanted):
        for number, member, form in wanted:
            told = self.value(member)
            if not told:
                self.fault("the command line has no " + member)
                continue
            texts = [told.split()[0]] if form == "pressure" else [form(told.split()[0])]
            if form == "pressure":
                texts.append("%g" % round(float(told.split()[0]), 1))
                texts.append("%g" % round(float(told.split()[0]), 0))
            ends = [line.split(" = ", 1)[1].split()[0] for line in self.section(number)
                    if " = " in line and line.split(" = ", 1)[1].split()]
            if member == "Initial_Advance" and not ends[-1].isdigit() and float(told) == 0:
                continue  # its format has no digit for a zero
            numbers = [float(end) for end in ends if self.is_number(end)]
            if not any(abs(float(text) - number) <= 1e-5 * abs(number) for text in texts for number in numbers):
                self.fault("section %s does not tell %s %s" % (number, member, texts[0]))

    def curves(self, wanted):
        for number, start, member in wanted:
            told = self.value(member).split()
            printed = []
            for line in self.section(number):
                if line.startswith(start):
                    printed += line[len(start):].split()
            if member == "SPLITBL":
                told = told[:len(printed)]
            if not told or printed != told:
                self.fault("section %s has %s as %s, the command line as %s" % (number, member, printed, told))

    def grids(self, wanted):
        for number, table, digits, places in wanted:
            rows = [line.split("\t") for line in self.told("table", table).strip().split("\n")]
            if len(rows) < 2:
                self.fault("the command line has no table " + table)
                continue
            block = [line for line in self.section(number) if ROW.match(line) or line.startswith("RPM")]
            head = [line.split()[1:] for line in block if line.startswith("RPM")]
            columns = [cell for part in head for cell in part]
            if len(columns) != len(rows[0]) - 1 or not all(map(self.near, rows[0][1:], columns)):
                self.fault("the columns of %s are %s" % (table, head))
            cells = [line.split()[1:] for line in block if not line.startswith("RPM")]
            heads = [line.split()[0] for line in block if not line.startswith("RPM")]
            if not all(self.near(one[0], head) for one, head in zip(rows[1:], heads)):
                self.fault("the rows of %s are %s" % (table, heads))
            for row, printed in zip(rows[1:], cells):
                shape = re.compile(r"-?\d{%d,}%s" % (digits, r"\.\d{%d}" % places if places else ""))
                if len(printed) != len(row) - 1 or not all(map(self.near, row[1:], printed)) or not all(
                        shape.fullmatch(cell) for cell in printed):
                    self.fault("a row of %s is %s, not %s" % (table, printed, row[1:]))
            if len(cells) != len(rows) - 1:
                self.fault("%s has %d rows of %d" % (table, len(cells), len(rows) - 1))

    @staticmethod
    def is_number(text):
        try:
            float(text)
        except ValueError:
            return False
        return True

    @staticmethod
    def near(told, printed):
        """The head of a row, with the decimals that are printed."""
        places = len(printed.split(".")[1]) if "." in printed else 0
        return abs(float(told) - float(printed)) <= 0.5 * 10 ** -places + 1e-6 * max(1, abs(float(told)))

    def has_scale(self):
        """Without one the sensor has no pressures that could be told."""
        return math.isfinite(float(self.value("MAPRange") or "nan"))

    def run(self):
        ignition = self.kind == "PZK-2"
        headings = self.heads
        for name, missing in WITHOUT.items():
            if name == self.kind:
                headings = [heading for heading in headings if heading not in missing]
        self.headings(headings)
        self.values(IGNITION_VALUES if ignition else FULL_VALUES)
        staged = "4.  STAGED PULSEWIDTH TABLE" in headings
        split = ignition or "8.  DUAL PLUG TIMING-SPLIT" in headings
        self.curves([c for c in (IGNITION_CURVES if ignition else FULL_CURVES) if split or c[2] != "SPLITBL"])
        self.grids([g for g in (IGNITION_GRIDS if ignition else FULL_GRIDS) if staged or g[1] != "SPW"])
        return self.faults


def main():
    faults, checked = [], 0
    for path in sys.argv[2:]:
        check = Check(sys.argv[1], path)
        if check.has_scale():
            faults += check.run()
            checked += 1
    for fault in faults:
        print(fault)
    print("%d files checked" % checked)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
