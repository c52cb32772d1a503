"""What an unmodified PyVISA does with the bench, in one process and in several."""

import os
import signal
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

import numpy
from pyvisa.constants import RENLineOperation

from laboratory import open_instrument, resource_manager, use_a_laboratory_of_our_own

SCOPE = "scope = open_instrument(manager, 'oscilloscope'); "


def start_python(statements, environment=None):
    """Start another interpreter on the bench."""
    script = "from laboratory import *; manager = resource_manager(); " + SCOPE + statements
    return subprocess.Popen(
        [sys.executable, "-X", "dev", "-W", "error", "-c", script],
        cwd=os.path.dirname(os.path.abspath(__file__)),
        env=environment,
        stdin=subprocess.PIPE,
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
    )


def run_python(statements, environment=None):
    """Run another interpreter on the bench; return what it prints, complains, and its exit code."""
    process = start_python(statements, environment)
    output, errors = process.communicate(timeout=60)
    return output.strip(), errors, process.returncode


class SessionTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        use_a_laboratory_of_our_own(cls)
        cls.manager = resource_manager()
        cls.addClassCleanup(cls.manager.close)

    def test_every_instrument(self):
        names = self.manager.list_resources()
        self.assertEqual(len(names), 6)
        for name in names:
            with self.manager.open_resource(name) as instrument:
                self.assertEqual(instrument.resource_name, name)
                self.assertRegex(instrument.query("*IDN?"), r"^Varnholt,\w+,\d{6},1\.00\n$")
                instrument.timeout = float("+inf")
                self.assertEqual(instrument.timeout, float("+inf"))
                self.assertEqual(instrument.stb, 0)
                for mode in RENLineOperation:
                    instrument.control_ren(mode)
                query = "CHAN1:DATA?" if "oscilloscope" in name else "TRAC? TRACE1"
                if "video" not in name:
                    instrument.write("FORM REAL,32")
                    binary = instrument.query_binary_values(
                        query, datatype="f", container=numpy.array
                    )
                    instrument.write("FORM ASC")
                    text = instrument.query_ascii_values(query, container=numpy.array)
                    self.assertGreater(len(set(binary)), 50)
                    numpy.testing.assert_array_equal(text.astype(numpy.float32), binary)
                self.assertEqual(instrument.query("SYST:ERR?").strip(), '0,"No error"')

    def test_processes_share_settings_not_answers(self):
        here = open_instrument(self.manager, "oscilloscope")
        self.addCleanup(here.close)
        here.write("*CLS;CHAN1:SCAL 0.123;SCAL?")
        printed = run_python(
            "scope.write('*OPC?'); print(scope.stb, end=' '); scope.clear(); "
            "print(scope.query('CHAN1:SCAL?;:CHAN1:SCAL 0.25;SCAL?;FOO'))"
        )
        self.assertEqual(printed, ("16 0.123;0.25", "", 0))
        self.assertEqual(here.read(), "0.123\n")  # an answer from before
        self.assertEqual(here.query("CHAN1:SCAL?"), "0.25\n")
        self.assertEqual(here.query("SYST:ERR?").split(",")[0], "-113")

    def test_processes_take_turns(self):
        def other_answers(offset):
            """Nobody else gets a turn between the setting and the query of a message."""
            return run_python(
                "print([answer for answer in ("
                f"scope.query('CHAN3:OFFS {offset};:CHAN1:DATA?;:CHAN3:OFFS?').split(';')[-1] "
                f"for _ in range(200)) if float(answer) != {offset}])"
            )

        with ThreadPoolExecutor() as pool:
            for printed in pool.map(other_answers, (0.125, 0.25, 0.375)):
                self.assertEqual(printed, ("[]", "", 0))

    def test_the_laboratory_stays_for_those_who_are_left(self):
        """Neither the end of a child nor that of the first user takes it from the others."""
        set_up = "scope.write('CHAN1:SCAL 0.5'); "
        query = "print(scope.query('CHAN1:SCAL?').strip(), flush=True); "
        have_a_child = "import os, sys; os.fork() or sys.exit(); os.wait(); "
        with tempfile.TemporaryDirectory() as directory:
            environment = dict(os.environ, XDG_RUNTIME_DIR=directory)
            clients = []
            for statements in (set_up + have_a_child, ""):
                clients.append(start_python(statements + query + "input()", environment))
                self.assertEqual(clients[-1].stdout.readline(), "0.5\n")
            for client in clients:
                self.assertEqual(run_python(query, environment), ("0.5", "", 0))
                self.assertEqual(client.communicate("\n", timeout=60), ("", ""))
            self.assertEqual(os.listdir(directory), [])

            # Whoever is killed leaves it behind, to be found as new; so is what has its name.
            self.assertEqual(
                run_python(set_up + "import os; os.kill(os.getpid(), 9)", environment)[2],
                -signal.SIGKILL,
            )
            (name,) = os.listdir(directory)
            file = os.path.join(directory, name)
            self.assertEqual(run_python(query, environment), ("0.2", "", 0))
            os.symlink("/dev/null", file)
            self.assertEqual(run_python(query, environment), ("0.2", "", 0))
            self.assertTrue(os.path.islink(file))

            # Somebody tidies up: a new one is opened, and the old one's end leaves it alone.
            os.remove(file)
            clients = []
            for _ in range(2):
                clients.append(start_python(query + "input()", environment))
                clients[-1].stdout.readline()
                if len(clients) == 1:
                    os.remove(file)
            for client, left in zip(clients, ([name], [])):
                self.assertEqual(client.communicate("\n", timeout=60), ("", ""))
                self.assertEqual(os.listdir(directory), left)

    def test_exits(self):
        thread = (
            "import threading; query = lambda: [scope.query('*IDN?') for _ in iter(int, 1)]; "
            "threading.Thread(target=query, daemon=True).start(); "
            "import ctypes; ctypes.CDLL(None).exit(0)"
        )
        for ending in ["", "manager.close()", "del manager"] + 20 * [thread]:
            self.assertEqual(run_python("scope.write('*IDN?'); " + ending), ("", "", 0))


if __name__ == "__main__":
    unittest.main()
