"""Other people's clients and PyVISA on liborvanta-visa with OrvantaBench, in a network of this
process alone.
Usage: network_test.py ORVANTABENCH [LIBORVANTA-VISA]"""

import itertools
import re
import socket
import struct
import subprocess
import sys
import threading
import unittest

import pyvisa
from pyvisa.constants import StatusCode

BENCH, *OUR_LIBRARIES = sys.argv[1:]
MESSAGE_AVAILABLE = 16  # in the status byte
places = {}  # addresses of the instruments, by their names


def ip(arguments):
    subprocess.run(["ip", *arguments.split()], check=True)


def start(add_cleanup, *command):
    """Start a server, and return the lines that it prints about its instruments."""
    server = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
    add_cleanup(lambda: (server.kill(), server.communicate()))
    return list(itertools.takewhile(lambda line: "BENCH:EVENT?" not in line, server.stdout))


def setUpModule():
    ip("link set lo up")
    for line in start(unittest.addModuleCleanup, BENCH):
        name, address = re.match(r"(.+): TCPIP0::(.+?)::inst0::INSTR", line).groups()
        places[name] = address


class NetworkTest(unittest.TestCase):
    def visa(self, library):
        manager = pyvisa.ResourceManager(library)
        self.addCleanup(manager.close)
        return manager

    def open(self, manager, address, device="inst0"):
        name = f"TCPIP0::{address}::{device}::INSTR"
        opened = manager.open_resource(name, write_termination="\n")
        self.addCleanup(opened.close)
        return opened

    def connect(self, address, port=5025):
        """Connect to a raw socket, and return it with a reader of its lines."""
        connection = socket.create_connection((address, port), timeout=60)
        self.addCleanup(connection.close)
        answers = connection.makefile("rb")
        self.addCleanup(answers.close)
        return connection, answers

    def assert_fails(self, status, call, *arguments):
        with self.assertRaises(pyvisa.VisaIOError) as caught:
            call(*arguments)
        self.assertEqual(caught.exception.error_code, status)

    def test_another_host(self):
        names = ("scope", "scope-kvx", "analyzer", "analyzer-qan", "analyzer-qel", "video")
        for address in "10.9.8.2", "0.0.0.0":
            script = f"""ip link add host type veth peer name here netns $PPID
ip address add 10.9.8.2/24 broadcast + dev host && ip link set host up
exec "{BENCH}" --address {address}"""
            lines = start(self.addCleanup, "unshare", "--net", "sh", "-ec", script)
            self.addCleanup(ip, "link delete here")
            ip("address add 10.9.8.1/24 broadcast + dev here")
            ip("link set here up")
            found = subprocess.check_output(["lxi", "discover"], text=True)
            self.assertRegex(found, 'Found "Varnholt,LPA4004.*" on address 10.9.8.2')
            managers = [self.visa(library) for library in ("@py", *OUR_LIBRARIES)]
            for i, name in enumerate(names):
                vxi11, raw = lines[i].removeprefix(name + ": ").strip().split(", ")
                self.assertEqual(vxi11, f"TCPIP0::10.9.8.2::inst{i}::INSTR")
                for manager in managers:
                    identity = self.open(manager, "10.9.8.2", name).query("*IDN?")
                    with manager.open_resource(vxi11, write_termination="\n") as device:
                        self.assertEqual(device.query("*IDN?"), identity)
                with managers[0].open_resource(raw, read_termination="\n") as device:
                    self.assertEqual(device.query("*IDN?") + "\n", identity)
            self.doCleanups()

    def test_options(self):
        printed_by = lambda *options: start(self.addCleanup, BENCH, *options)
        self.assertEqual(
            printed_by("--address", "127.0.2.0", "--port", "6000", "--no-portmapper")[5],
            "video: TCPIP0::127.0.2.6::6000::SOCKET\n",
        )
        printed_by("--address", "127.0.3.0", "--time-scale", "0")
        scope, answers = self.connect("127.0.3.4")
        scope.sendall(b"TIM:RANG 600;:SING;*TRG;*OPC?\n")
        self.assertEqual(answers.readline(), b"1\n")
        for options, status, text in (
            (["--version"], 0, "OrvantaBench"),
            (["--address", "::1"], 2, "an IPv4 address"),
            (["--port", "65531"], 2, "a number from 1 to 65530"),  # six ports follow
            (["--time-scale", "inf"], 2, "a number that is not negative"),
            (["here"], 2, "--help"),
            (["--address", "224.0.0.1"], 1, "No client can reach 224.0.0.1"),
            ([], 1, "port 111.*\n.*rpcbind or another OrvantaBench"),
            (["--no-portmapper"], 1, "port 5025.*\n.*already running"),
        ):
            run = subprocess.run([BENCH, *options], capture_output=True, text=True, check=False)
            self.assertEqual(run.returncode, status, options)
            self.assertRegex(run.stdout + run.stderr, text)

    def test_newer_portmapper_version(self):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as mapper:
            mapper.settimeout(10)
            call = struct.pack(">10I", 77, 0, 2, 100000, 4, 3, 0, 0, 0, 0)
            mapper.sendto(call, (places["scope"], 111))
            mismatch = struct.pack(">8I", 77, 1, 0, 0, 0, 2, 2, 2)
            self.assertEqual(mapper.recv(100), mismatch)

    def test_clients(self):
        for library in "@py", *OUR_LIBRARIES:
            with self.subTest(library):
                manager = self.visa(library)
                one = self.open(manager, places["scope"])
                two = self.open(manager, places["video"], "Scope")
                one.write("CHAN2:SCAL 0.123;SCAL?")
                self.assertEqual(two.query("CHAN2:SCAL?;SCAL 0.2"), "0.123\n")
                self.assertEqual(one.read_stb() & MESSAGE_AVAILABLE, MESSAGE_AVAILABLE)
                self.assertEqual(one.read(), "0.123\n")

                one.timeout = 100
                one.write("SING;*TRG;*OPC?")
                self.assertEqual(one.read_stb() & MESSAGE_AVAILABLE, 0)
                self.assert_fails(StatusCode.error_timeout, one.read)
                one.timeout = 10000
                self.assertEqual(one.read(), "1\n")

                one.write("*IDN?")
                one.clear()
                one.timeout = 50
                self.assert_fails(StatusCode.error_timeout, one.read)

    def test_faults(self):
        idn, cut = "Varnholt,KVX1044,100101,1.00\n", "Varnh"
        late, lost = StatusCode.error_timeout, StatusCode.error_connection_lost
        locked = StatusCode.error_resource_locked
        for command, outcomes in (  # of the queries that follow
            ("BENCH:FAULT LATE,600s", [late]),
            ("BENCH:FAULT CUT,5", [cut, idn]),
            ("BENCH:FAULT BUSY,600s", [locked, locked]),
            ("BENCH:FAULT TRIGGER;:TIM:RANG 1ms;:SING;*TRG", [late]),
            ("BENCH:FAULT LATE,600s;:BENCH:FAULT NONE", [idn]),
            ("BENCH:FAULT LOST", [lost, lost]),
        ):
            for library in OUR_LIBRARIES:
                with self.subTest(command, library=library):
                    device = self.open(self.visa(library), places["scope-kvx"])
                    device.timeout = 300
                    device.write(command)
                    for outcome in outcomes:
                        if isinstance(outcome, str):
                            self.assertEqual(device.query("*IDN?"), outcome)
                        else:
                            self.assert_fails(outcome, device.query, "*IDN?")
            other, answers = self.connect(places["scope-kvx"])
            other.sendall(b"BENCH:FAULT NONE\n*CLS;SYST:ERR?\n")
            self.assertEqual(answers.readline(), b'0,"No error"\n', command)

    def test_a_client_that_never_reads(self):
        greedy, records = self.connect(places["scope-kvx"])
        queries = b"CHAN1:DATA?\n" * 50
        greedy.sendall(b"ACQ:POIN MAX;:FORM REAL,32\n" + queries + b"CHAN1:SCAL 0.123;SCAL?\n")
        other, answers = self.connect(places["scope-kvx"])
        other.sendall(b"CHAN1:SCAL?\n")
        self.assertEqual(answers.readline(), b"0.2\n")
        for _ in range(50):
            self.assertEqual(len(records.read(2000010)), 2000010)
        self.assertEqual(records.readline(), b"0.123\n")
        other.sendall(b"*RST\n")

    def test_waiting_clients_go_on(self):
        waiting, answers = self.connect(places["scope"])
        waiting.sendall(b"BENCH:FAULT TRIG;:SING;*TRG;*OPC?\n")
        other, _ = self.connect(places["scope"])
        other.sendall(b"BENCH:FAULT NONE\n")
        self.assertEqual(answers.readline(), b"1\n")
        for library in OUR_LIBRARIES:
            manager = self.visa(library)
            one, two = (self.open(manager, places["video"]) for _ in range(2))
            one.lock_excl()
            locking = threading.Thread(target=two.lock_excl, args=[600000])
            locking.start()
            self.assertEqual(one.query("*OPC?"), "1\n")
            one.unlock()
            locking.join(60)
            self.assertFalse(locking.is_alive())
            self.assert_fails(StatusCode.error_resource_locked, one.query, "*OPC?")

    def test_links_of_a_process_that_ends(self):
        script = """import pyvisa, sys
manager = pyvisa.ResourceManager(sys.argv[1])
for _ in range(16): manager.open_resource(f"TCPIP0::{sys.argv[2]}::INSTR")"""
        for library in OUR_LIBRARIES * 2:
            subprocess.run([sys.executable, "-c", script, library, places["video"]], check=True)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
