"""The bench's documentation, followed word by word. The first argument is the file."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

from laboratory import LIBRARY, open_instrument, resource_manager, use_a_laboratory_of_our_own

with open(sys.argv.pop(1), encoding="utf-8") as file:
    DOCUMENT = file.read()


HOSTS = re.findall(r"^\| `TCPIP0::([a-z-]+)::INSTR`", DOCUMENT, re.MULTILINE)


def sections():
    """The hosts that each heading of a table of commands names, and the commands below it."""
    for section in DOCUMENT.split("\n### ")[1:]:
        heading, text = section.split("\n## ")[0].split("\n", 1)
        hosts = re.findall(r"`([a-z-]+)`", heading)
        cells = re.findall(r"^\| (.*?) \|", text, re.MULTILINE)
        yield hosts or HOSTS, re.findall(r"`(.*?)`", "".join(cells))


class DocumentationTest(unittest.TestCase):
    def setUp(self):
        use_a_laboratory_of_our_own(self)

    def test_every_command_is_known(self):
        manager = resource_manager()
        self.addCleanup(manager.close)
        checked = 0
        for hosts, commands in sections():
            for host in hosts:
                instrument = open_instrument(manager, host, read_termination="\n")
                for command in commands:
                    header = re.sub(r"\[.*?\]|<\d>|[a-z]", "", command)
                    checked += 1
                    with self.subTest(host=host, command=command, header=header):
                        error = ""
                        for unit in (header, header + "?"):
                            instrument.write("*CLS;" + unit)
                            instrument.clear()
                            error += instrument.query("SYST:ERR?")
                        self.assertLess(error.count("Undefined header"), 2, error)
        self.assertGreater(checked, 120)

    def test_the_example_plots(self):
        (example,) = re.findall(r"```python\n(.*?)```", DOCUMENT, re.DOTALL)
        with tempfile.TemporaryDirectory() as directory:
            picture = os.path.join(directory, "trace.png")
            subprocess.run(
                [sys.executable, "-c", example, LIBRARY, picture],
                env=dict(os.environ, MPLBACKEND="Agg", MPLCONFIGDIR=directory),
                check=True,
                timeout=120,
            )
            self.assertGreater(os.path.getsize(picture), 10000)


if __name__ == "__main__":
    unittest.main()
