#!/usr/bin/env python3
"""Checks that the files that a Debian package names to the desktop are in it, and that no file holds
the path where it was built. Usage: check-contents.py PACKAGE SOURCE-FOLDER"""
import configparser
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

with tempfile.TemporaryDirectory() as folder:
    subprocess.run(["dpkg-deb", "--extract", sys.argv[1], folder], check=True)
    share = pathlib.Path(folder, "usr/share")
    wanted = []
    for entry in (share / "applications").iterdir():
        desktop = configparser.ConfigParser(interpolation=None)
        desktop.read(entry)
        keys = desktop["Desktop Entry"]
        wanted += [share / f"icons/hicolor/{size}x{size}/apps/{keys['Icon']}.png"
                   for size in (48, 128, 256)]
        wanted += [share.parent / "bin" / keys[key].split()[0] for key in ("Exec", "StartupWMClass")]
    for metainfo in (share / "metainfo").iterdir():
        for launchable in ElementTree.parse(metainfo).iter("launchable"):
            wanted.append(share / "applications" / launchable.text)
    wrong = [f"not in the package: {path}" for path in wanted if not path.is_file()]
    wrong += [f"holds the path where it was built: {path}" for path in pathlib.Path(folder).rglob("*")
              if path.is_file() and sys.argv[2].encode() in path.read_bytes()]
    sys.exit("\n".join(wrong) if wrong or not wanted else None)
