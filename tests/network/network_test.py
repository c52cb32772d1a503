"""Clients that are not ours against OrvantaBench, and liborvanta-visa against it and against an
instrument that is not ours; in a network of this process alone.
Usage: network_test.py ORVANTABENCH INSTRUMENT-SERVER [LIBORVANTA-VISA]"""

import os
import re
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

import numpy
import pyvisa
from pyvisa.constants import StatusCode

BENCH, INSTRUMENT, *OUR_LIBRARIES = sys.argv[1:]
FOREIGN_ADDRESS = "127.0.1.1"
places = {}  # addresses of the instruments, by their names


def setUpModule():
    subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
    for command in [BENCH], [INSTRUMENT, FOREIGN_ADDRESS]:
        server = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        unittest.addModuleCleanup(lambda server=server: (server.kill(), server.communicate()))
        if command[0] == BENCH:
            for line in iter(server.stdout.readline, ""):
                if "BENCH:EVENT?" in line:
                    break
                name, address = re.match(r"(.+): TCPIP0::(.+?)::inst0::INSTR", line).groups()
                places[name] = address
    for _ in range(100):
        with socket.socket() as probe:
            if probe.connect_ex((FOREIGN_ADDRESS, 111)) == 0:
                return
        time.sleep(0.05)


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

    def assert_fails(self, status, call, *arguments):
        with self.assertRaises(pyvisa.VisaIOError) as caught:
            call(*arguments)
        self.assertEqual(caught.exception.error_code, status)

    def test_lxi(self):
        for name, address in places.items():
            for options in [], ["--raw", "--port", "5025"]:
                command = ["lxi", "scpi", *options, "--address", address, "*IDN?"]
                self.assertRegex(subprocess.check_output(command, text=True), "^Varnholt,", name)
        command = ["lxi", "benchmark", "--count", "500", "--address", address]
        self.assertIn("requests/second", subprocess.check_output(command, text=True))

    def test_portmapper_by_datagram(self):
        for version, expected in [4, (2, 2, 2)], [3, (2, 2, 2)]:
            self.assertEqual(self.get_port(version)[5:], expected)
        self.assertGreater(self.get_port(2)[6], 1023)

    def get_port(self, version):
        call = struct.pack(">14I", 1, 0, 2, 100000, version, 3, 0, 0, 0, 0, 0x0607AF, 1, 6, 0)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as mapper:
            mapper.settimeout(10)
            mapper.sendto(call, (places["scope"], 111))
            answer = mapper.recv(100)
        return struct.unpack(f">{len(answer) // 4}I", answer)

    def test_every_instrument(self):
        for library in "@py", *OUR_LIBRARIES:
            manager = self.visa(library)
            for name, address in places.items():
                with self.subTest(name, library=library):
                    device = self.open(manager, address)
                    self.assertRegex(device.query("*CLS;*IDN?"), "^Varnholt,")
                    if name != "video":
                        query = "CHAN1:DATA?"
                        if "analyzer" in name:
                            query = "TRAC? TRACE1"
                            device.write("INIT:CONT OFF;:SWE:TIME 1e-3;:INIT")
                        binary = device.query_binary_values(f"FORM REAL,32;:{query}")
                        text = device.query_ascii_values(f"FORM ASC;:{query}")
                        numpy.testing.assert_array_equal(numpy.float32(text), binary)
                    device.write("*IDN?")
                    self.assertEqual(device.read_stb() & 16, 16)
                    device.clear()
                    self.assertEqual(device.read_stb() & 16, 0)
                    device.timeout = 50
                    self.assert_fails(StatusCode.error_timeout, device.read)

    def test_two_clients_and_time(self):
        for library in "@py", *OUR_LIBRARIES:
            with self.subTest(library):
                manager = self.visa(library)
                one = self.open(manager, places["scope"])
                two = self.open(manager, places["video"], "Scope")
                one.write("CHAN2:SCAL 0.123;SCAL?")
                self.assertEqual(two.query("CHAN2:SCAL?;SCAL 0.2"), "0.123\n")
                self.assertEqual(one.read(), "0.123\n")
                one.timeout = 100
                one.write("SING;*TRG;*OPC?")
                self.assertEqual(one.read_stb() & 16, 0)
                self.assert_fails(StatusCode.error_timeout, one.read)
                one.timeout = 10000
                self.assertEqual(one.read(), "1\n")
                two.write("BENCH:FAUL BUSY,300ms")
                for refused in one.read, one.read_stb, lambda: one.write("*IDN?"):
                    self.assertRaises(pyvisa.VisaIOError, refused)
                time.sleep(0.4)

    def test_faults(self):
        for library in OUR_LIBRARIES:
            manager = self.visa(library)
            device = self.open(manager, places["scope-kvx"])
            other = self.open(manager, places["scope-kvx"])
            device.write("*CLS")
            for fault, status in [
                ("LATE,500ms", StatusCode.error_timeout),
                ("TRIG;:SING;*TRG", StatusCode.error_timeout),
                ("BUSY,1", StatusCode.error_resource_locked),
                ("LOST", StatusCode.error_connection_lost),
            ]:
                device.write("BENCH:FAUL CUT,5")
                self.assertEqual(device.query("*IDN?"), "Varnh")
                device.timeout = 50
                device.write("BENCH:FAUL " + fault)
                self.assert_fails(status, device.query, "*IDN?")
                device.timeout = 5000
                time.sleep(1.1 if "BUSY" in fault else 0)
                if "LOST" not in fault:
                    device.clear()
            self.assert_fails(StatusCode.error_connection_lost, device.query, "*IDN?")
            other.write("TIM:RANG 1ms;:BENCH:LAT RF,10ms,0;:BENCH:OVER 1;SEED 7;:SING;*TRG")
            event = other.query_ascii_values("BENCH:EVENT?")
            self.assertAlmostEqual(event[2], 10.0)
            self.assertEqual(event[5], 1)
            with self.open(manager, places["scope-kvx"]) as again:
                again.lock_excl()
                self.assert_fails(StatusCode.error_resource_locked, other.query, "*IDN?")
            self.assertEqual(other.query("SYST:ERR?"), '0,"No error"\n')

    def test_links_of_a_process_that_ends(self):
        for library in OUR_LIBRARIES:
            script = (
                f"import os, pyvisa; manager = pyvisa.ResourceManager({library!r})\n"
                f"for _ in range(16): manager.open_resource('TCPIP0::{places['video']}::INSTR')\n"
            )
            for _ in range(2):
                subprocess.run([sys.executable, "-c", script], check=True)

    def test_instrument_of_others(self):
        for library in OUR_LIBRARIES:
            device = self.open(self.visa(library), FOREIGN_ADDRESS)
            self.assertEqual(device.query("0123456789" * 99), "0123456789" * 99 + "\n\n")
            device.write("x")
            device.clear()
            self.assert_fails(StatusCode.error_timeout, device.read)
            device.assert_trigger()
            device.lock_excl()
            self.assertEqual(device.read_stb(), 0x81)
            device.unlock()
            self.assertEqual(device.read_stb(), 1)
            self.assert_fails(StatusCode.error_nonsupported_operation, device.control_ren, 6)

    def test_hosts_file(self):
        for library in OUR_LIBRARIES:
            with tempfile.TemporaryDirectory() as directory:
                os.makedirs(directory + "/Varnholt/Orvanta")
                with open(directory + "/Varnholt/Orvanta/instruments.ini", "w") as file:
                    file.write("[Instruments]\nb=scope.local::inst1\na=10.0.0.2\nc=no::such::name\n")
                os.environ["XDG_DATA_HOME"] = directory
                self.assertEqual(
                    self.visa(library).list_resources(),
                    ("TCPIP0::10.0.0.2::inst0::INSTR", "TCPIP0::scope.local::inst1::INSTR"),
                )


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
