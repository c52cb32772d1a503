"""The bench and its handbook under an unmodified PyVISA. The first argument is the handbook."""

import os
import re
import subprocess
import sys
import tempfile
import unittest

import pyvisa

LIBRARY = os.environ["BENCH_LIBRARY"]
with open(sys.argv.pop(1), encoding="utf-8") as file:
    HANDBOOK = file.read()
HOSTS = re.findall(r"^\| `TCPIP0::([a-z-]+)::INSTR`", HANDBOOK, re.MULTILINE)


def rows():
    """Each command in the tables: its host, its pattern, its values and its value at power-up."""
    for section in HANDBOOK.split("\n### ")[1:]:
        heading, text = section.split("\n## ")[0].split("\n", 1)
        for commands, values, power_up in re.findall(r"^\| (`.*?) \| (.*?) \|(.*)\|$", text, re.M):
            for command in re.findall(r"`(.*?)`", commands):
                for host in re.findall(r"`([a-z-]+)`", heading) or HOSTS:
                    yield host, command, values, power_up.strip(" `")


def short(text):
    return re.sub("[a-z]", "", text)


class HandbookTest(unittest.TestCase):
    def setUp(self):
        self.manager = pyvisa.ResourceManager(LIBRARY + "@ivi")
        self.addCleanup(self.manager.close)

    def open(self, host):
        return self.manager.open_resource(f"TCPIP0::{host}::INSTR", read_termination="\n")

    def send(self, instrument, command):
        """Send a command, and return the number of the error that it leaves."""
        instrument.write("*CLS;" + command)
        instrument.clear()
        return int(instrument.query("SYST:ERR?").split(",")[0])

    def check_setting(self, instrument, header, values, power_up):
        """Every value in the handbook is accepted and answered, and no other is."""
        longest = re.sub(r"[\[\]]", "", header)
        query = short(re.sub(r"\[.*?\]", "", header)) + "?"
        self.assertEqual(instrument.query(query), power_up)
        if limits := re.match(r"(\S+) to (\S+?):?( ([A-Za-z]+).*)?$", values):
            low, high, unit = limits[1], limits[2], limits[4] or ""
            unit = unit if unit in ("V", "s", "Hz", "dB", "dBm", "PCT") else ""
            answers = {value + unit: value for value in (power_up, low, high)}
            below, above = float(low) - 1 - abs(float(low)), float(high) * 1.01 + 1
            errors = {below: -222, above: -222}
            for limit, value in (("MIN", low), ("MAXIMUM", high), ("DEF", power_up)):
                self.assertEqual(instrument.query(f"{query} {limit}"), value)
        elif values.startswith("a switch"):
            answers = {"OFF": "0", "ON": "1", "0": "0", "1": "1"}
            errors = {"NONE": -104}
        else:
            choices = re.findall("`(.*?)`", values)
            answers = {name: short(name) for name in (*choices, *map(short, choices))}
            errors = {"NONE": -224}
        self.assertGreater(len(answers), 0, values)
        for value, answer in answers.items():
            self.assertEqual(self.send(instrument, f"{longest} {value}"), 0, value)
            self.assertIn(instrument.query(query), (answer, answer + ",0"))
        for value, error in errors.items():
            self.assertEqual(self.send(instrument, f"{longest} {value}"), error, value)
        if not header.startswith("*"):
            instrument.write("*RST")
            self.assertEqual(instrument.query(query), power_up)

    def test_every_command(self):
        checked = 0
        for host, command, values, power_up in rows():
            header = re.sub(r"<(\d)>", r"\1", command)
            with self.subTest(host=host, command=command), self.open(host) as instrument:
                instrument.write("*RST")
                checked += 1
                if power_up:
                    self.check_setting(instrument, header, values, power_up)
                    continue
                header = re.sub(r"\[.*?\]", "", header)
                expected = re.search(r"(-2\d\d) (while|before)", values)
                error = int(expected[1]) if expected else 0
                for form in (header, short(header)):
                    self.assertEqual(self.send(instrument, form), error, form)
                self.assertEqual(self.send(instrument, header + " 1,2,3"), -108)
        self.assertGreater(checked, 150)

    def test_the_example_plots(self):
        (example,) = re.findall(r"```python\n(.*?)```", HANDBOOK, re.DOTALL)
        with tempfile.TemporaryDirectory() as directory:
            picture = os.path.join(directory, "trace.png")
            subprocess.run(
                [sys.executable, "-c", example, LIBRARY, picture],
                env=dict(os.environ, MPLBACKEND="Agg", MPLCONFIGDIR=directory),
                check=True,
                timeout=120,
            )
            self.assertTrue(os.path.exists(picture))


if __name__ == "__main__":
    unittest.main()
