#!/usr/bin/env python3
"""Holds the statuses and attributes of VISA, as headers of FOLDER define them, against PyVISA's.
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
