#!/usr/bin/env python3
"""Reads a form and prints where each of its widgets lies in the window, in pixels of a screen with
the given dots per inch: name, x, y, width, height. Usage: widget-geometry.py FORM DPI"""
import sys
import xml.etree.ElementTree as ElementTree


def show(widget, left, top, dpi):
    rect = widget.find("property[@name='geometry']/rect")
    if rect is not None:
        x, y, width, height = (int(rect.findtext(side)) * dpi // 96
                               for side in ("x", "y", "width", "height"))
        left, top = left + x, top + y
        print(widget.get("name"), left, top, width, height)
    for child in widget.findall("widget"):
        show(child, left, top, dpi)


show(ElementTree.parse(sys.argv[1]).find("widget"), 0, 0, int(sys.argv[2]))
