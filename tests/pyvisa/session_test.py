"""What an unmodified PyVISA does with the bench."""

import os
import signal
import subprocess
import sys
import tempfile
import unittest
from concurrent.futures import ThreadPoolExecutor

import numpy
import pyvisa
from pyvisa.constants import InterfaceType, RENLineOperation, StatusCode

from laboratory import open_instrument, resource_manager, use_a_laboratory_of_our_own

HOSTS = [
    "oscilloscope",
    "oscilloscope-kvx",
    "spectrum-analyzer",
    "spectrum-analyzer-qan",
    "spectrum-analyzer-qel",
    "video-analyzer",
]
MESSAGE_AVAILABLE = 0x10
ERROR_AVAILABLE = 0x04


def start_python(statements, environment=None):
    """Start another interpreter on the bench."""
    script = "from laboratory import *; manager = resource_manager(); " + statements
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

    def open(self, host, **attributes):
        instrument = open_instrument(self.manager, host, **attributes)
        self.addCleanup(instrument.close)
        return instrument

    def test_lists_every_instrument(self):
        names = tuple(f"TCPIP0::{host}::inst0::INSTR" for host in HOSTS)
        self.assertEqual(self.manager.list_resources(), names)
        self.assertEqual(self.manager.list_resources("?*"), names)
        self.assertEqual(self.manager.list_resources("TCPIP?*oscilloscope::?*INSTR"), names[:1])
        self.assertEqual(self.manager.list_resources("USB?*"), ())
        for info in self.manager.list_resources_info().values():
            self.assertEqual(info.interface_type, InterfaceType.tcpip)
            self.assertEqual(info.resource_class, "INSTR")

    def test_opens_by_every_spelling(self):
        for name in (
            "TCPIP0::oscilloscope::INSTR",
            "TCPIP::oscilloscope::inst0::INSTR",
            "tcpip0::OSCILLOSCOPE::Inst0::instr",
        ):
            with self.subTest(name), self.manager.open_resource(name) as instrument:
                self.assertIsInstance(instrument, pyvisa.resources.TCPIPInstrument)
                self.assertEqual(instrument.resource_name, "TCPIP0::oscilloscope::inst0::INSTR")
        with self.assertRaises(pyvisa.VisaIOError) as raised:
            open_instrument(self.manager, "printer")
        self.assertEqual(raised.exception.error_code, StatusCode.error_resource_not_found)

    def test_terminations(self):
        for host in HOSTS:
            for ending in ("\r\n", "\n", ""):
                with self.subTest(host=host, ending=ending):
                    instrument = self.open(host, write_termination=ending)
                    self.assertEqual(instrument.write_termination, ending)
                    identity = instrument.query("*IDN?")
                    self.assertRegex(identity, r"^Varnholt,\w+,\d{6},1\.00\n$")
                    instrument.read_termination = "\n"
                    self.assertEqual(instrument.read_termination, "\n")
                    self.assertEqual(instrument.query("*IDN?"), identity[:-1])

    def test_attributes(self):
        oscilloscope = self.open("oscilloscope")
        other = self.open("oscilloscope", timeout=777)
        for timeout in (0, 5000, float("+inf")):
            oscilloscope.timeout = timeout
            self.assertEqual(oscilloscope.timeout, timeout)
        self.assertEqual(other.timeout, 777)
        self.assertEqual(oscilloscope.interface_type, InterfaceType.tcpip)
        self.assertEqual(oscilloscope.interface_number, 0)
        self.assertEqual(oscilloscope.resource_class, "INSTR")
        self.assertTrue(oscilloscope.send_end)
        oscilloscope.send_end = False
        self.assertFalse(oscilloscope.send_end)

    def test_every_trace_in_both_formats(self):
        scope_traces = [f"CHAN{channel}:DATA?" for channel in (1, 2, 3, 4)]
        for host, points in (("oscilloscope", 12000), ("oscilloscope-kvx", 20000)):
            oscilloscope = self.open(host)
            for channel in (2, 4):
                oscilloscope.write(f"CHAN{channel}:STAT ON")
            self.compare_formats(oscilloscope, scope_traces, points)
        for host in (name for name in HOSTS if name.startswith("spectrum")):
            self.compare_formats(self.open(host), ["TRAC? TRACE1"], 1001)

    def compare_formats(self, instrument, queries, points):
        for query in queries:
            for termination in (None, "\n"):
                with self.subTest(instrument=instrument, query=query, termination=termination):
                    instrument.read_termination = termination
                    instrument.write("FORM REAL,32")
                    binary = instrument.query_binary_values(
                        query, datatype="f", container=numpy.array
                    )
                    instrument.write("FORM ASC")
                    text = instrument.query_ascii_values(query, container=numpy.array)
                    self.assertEqual(len(binary), points)
                    self.assertGreater(len(set(binary)), points // 20)
                    numpy.testing.assert_array_equal(text.astype(numpy.float32), binary)
        self.assertEqual(instrument.query("SYST:ERR?").strip(), '0,"No error"')

    def test_status_byte_clear_and_remote(self):
        analyzer = self.open("video-analyzer")
        self.assertEqual(analyzer.stb, 0)
        analyzer.write("NONSENSE;*OPC?")
        self.assertEqual(analyzer.stb, MESSAGE_AVAILABLE | ERROR_AVAILABLE)
        analyzer.clear()
        self.assertEqual(analyzer.stb, ERROR_AVAILABLE)
        with self.assertRaises(pyvisa.VisaIOError) as raised:
            analyzer.read()
        self.assertEqual(raised.exception.error_code, StatusCode.error_timeout)
        self.assertEqual(analyzer.query("SYST:ERR?"), '-113,"Undefined header"\n')
        self.assertEqual(analyzer.stb, 0)
        for mode in RENLineOperation:
            self.assertEqual(analyzer.control_ren(mode), StatusCode.success)

    def test_processes_and_sessions_share_settings_not_answers(self):
        here = self.open("oscilloscope")
        beside = self.open("oscilloscope")
        here.write("CHAN1:SCAL 0.123;SCAL?")
        there = "open_instrument(manager, 'oscilloscope')"
        printed = run_python(
            f"scope = {there}; scope.write('*OPC?'); print(scope.stb, end=' '); scope.clear(); "
            "print(scope.query('CHAN1:SCAL?;:CHAN1:SCAL 0.25;SCAL?;FOO'))"
        )
        self.assertEqual(printed, (f"{MESSAGE_AVAILABLE} 0.123;0.25", "", 0))
        self.assertEqual(here.read(), "0.123\n")  # an answer from before
        self.assertEqual(beside.query("CHAN1:SCAL?"), "0.25\n")
        self.assertEqual(beside.query("SYST:ERR?").split(",")[0], "-113")

    def test_processes_take_turns(self):
        def other_answers(offset):
            """Nobody else gets a turn between the setting and the query of a message."""
            return run_python(
                "scope = open_instrument(manager, 'oscilloscope'); print([answer for answer in ("
                f"scope.query('CHAN3:OFFS {offset};:CHAN1:DATA?;:CHAN3:OFFS?').split(';')[-1] "
                f"for _ in range(200)) if float(answer) != {offset}])"
            )

        with ThreadPoolExecutor() as pool:
            for printed in pool.map(other_answers, (0.125, 0.25, 0.375)):
                self.assertEqual(printed, ("[]", "", 0))

    def test_the_laboratory_closes_behind_the_last(self):
        statements = (
            "scope = open_instrument(manager, 'oscilloscope'); "
            "print(scope.query('CHAN1:SCAL?;:CHAN1:SCAL 0.5').strip()); "
        )
        fresh = ("0.2", "", 0)
        with tempfile.TemporaryDirectory() as directory:
            environment = dict(os.environ, XDG_RUNTIME_DIR=directory)
            self.assertEqual(run_python(statements, environment), fresh)
            self.assertEqual(os.listdir(directory), [])
            killed = run_python(statements + "import os; os.kill(os.getpid(), 9)", environment)
            self.assertEqual(killed[2], -signal.SIGKILL)
            (name,) = os.listdir(directory)
            self.assertEqual(run_python(statements, environment), fresh)

            # Whatever lies under the file's name, there is a bench, and it stays.
            file = os.path.join(directory, name)
            target = os.path.join(directory, "target")
            for make in (
                lambda: os.mkdir(file),
                lambda: os.mkfifo(file),
                lambda: (open(target, "wb").close(), os.symlink(target, file)),
            ):
                make()
                self.assertEqual(run_python(statements, environment), fresh)
                self.assertTrue(os.path.lexists(file))
                os.rmdir(file) if os.path.isdir(file) else os.remove(file)
            self.assertEqual(os.path.getsize(target), 0)

    def test_the_laboratory_stays_for_those_who_are_left(self):
        """Neither the end of a child nor that of the first user takes it from the others."""
        scope = "scope = open_instrument(manager, 'oscilloscope'); "
        query = "print(scope.query('CHAN1:SCAL?').strip(), flush=True); "
        have_a_child = "import os, sys; os.fork() or sys.exit(); os.wait(); "
        with tempfile.TemporaryDirectory() as directory:
            environment = dict(os.environ, XDG_RUNTIME_DIR=directory)
            clients = []
            for statements in ("scope.write('CHAN1:SCAL 0.5'); " + have_a_child, ""):
                clients.append(start_python(scope + statements + query + "input()", environment))
                self.assertEqual(clients[-1].stdout.readline(), "0.5\n")
            first, second = clients
            self.assertEqual(first.communicate("\n", timeout=60), ("", ""))
            self.assertEqual(run_python(scope + query, environment), ("0.5", "", 0))
            self.assertEqual(second.communicate("\n", timeout=60), ("", ""))
            self.assertEqual(os.listdir(directory), [])

    def test_the_latecomers_laboratory_stays(self):
        """Somebody tidies up: a new laboratory is opened, and the old one's end leaves it alone."""
        with tempfile.TemporaryDirectory() as directory:
            environment = dict(os.environ, XDG_RUNTIME_DIR=directory)
            wait = "scope = open_instrument(manager, 'oscilloscope'); print(flush=True); input()"
            clients = []
            for _ in range(2):
                clients.append(start_python(wait, environment))
                clients[-1].stdout.readline()
                (name,) = os.listdir(directory)
                if len(clients) == 1:
                    os.remove(os.path.join(directory, name))
            for client, left in zip(clients, ([name], [])):
                self.assertEqual(client.communicate("\n", timeout=60), ("", ""))
                self.assertEqual(os.listdir(directory), left)

    def test_exits_while_threads_go_on(self):
        statements = (
            "import threading; scope = open_instrument(manager, 'oscilloscope'); "
            "query = lambda: [scope.query('*IDN?') for _ in iter(int, 1)]; "
            "threading.Thread(target=query, daemon=True).start(); "
            "import ctypes; ctypes.CDLL(None).exit(0)"
        )
        for _ in range(20):
            self.assertEqual(run_python(statements), ("", "", 0))

    def test_exits_with_everything_open(self):
        for ending in (
            "",
            "scope.close(); manager.close()",
            "manager.close()",
            "del manager",
            "manager.close(); import os; os.closerange(3, 256)",
        ):
            with self.subTest(ending):
                self.assertEqual(
                    run_python(
                        "scope = open_instrument(manager, 'oscilloscope'); "
                        "scope.write('*IDN?'); " + ending
                    ),
                    ("", "", 0),
                )


if __name__ == "__main__":
    unittest.main()
