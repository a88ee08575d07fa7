#!/usr/bin/env python3
"""sections_test.py PROGRAM.exe: proves that a text that nobody reads isn't linked, by a program with two."""

import pathlib
import sys

data = pathlib.Path(sys.argv[1]).read_bytes()
read, left = b"is read by the program" in data, b"is read by nobody at all" in data
print(f"the text that is read: {read}, the other one: {left}")
sys.exit(0 if read and not left else 1)
