#!/usr/bin/env python3
"""Compares the statuses and attributes of VISA that headers of FOLDER define with PyVISA's.
Usage: constants_test.py FOLDER"""
import pathlib
import re
import sys

from pyvisa import constants

text = "".join((pathlib.Path(sys.argv[1]) / name).read_text()
               for name in ("StatusCodes.def", "VisaTypes.h"))
found = re.findall(r"\((VI_\w+), (0x\w+),|(VI_(?:ATTR|INTF)_\w+) = (\w+);", text)
ours = {status or attribute: int(pattern or value, 0)
        for status, pattern, attribute, value in found}
wrong = {name for name, value in ours.items()
         if hasattr(constants, name) and getattr(constants, name) % 2**32 != value}
if wrong or len(ours) < 60:
    sys.exit(f"{len(ours)} constants, of which differ: {wrong}")
