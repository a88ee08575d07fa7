#!/usr/bin/env python3
"""Makes one table of the records that `zqwipe --json` has left in the folders: table.py FOLDER... >table.csv"""

import csv
import json
import pathlib
import sys

OUTCOMES = {0: "all gone", 1: "something kept", 2: "refused", 3: "cancelled"}


def line_of(path):
    try:
        told = json.loads(path.read_text(encoding="utf-8"))
        totals = told["totals"]
        reasons = told["refused"] + [item["reason"] for item in told["items"] if "reason" in item] + told["failures"]
        return [path.name, OUTCOMES[told["exitCode"]], totals["wiped"], totals["kept"], totals["bytesWiped"],
                told["verified"], told["method"], told["passes"], told.get("started", ""), ", ".join(reasons)]
    except (OSError, ValueError, KeyError) as error:
        # A record that can't be read proves nothing.
        return [path.name, "unreadable record", "", "", "", "", "", "", "", repr(error)]


table = csv.writer(sys.stdout, delimiter=";", lineterminator="\n")
table.writerow(["record", "outcome", "wiped", "kept", "bytes", "read back", "method", "passes", "started", "reasons"])
for folder in sys.argv[1:]:
    for record in sorted(pathlib.Path(folder).glob("*.json")):
        table.writerow(line_of(record))
