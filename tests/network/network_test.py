"""Clients that are not ours against OrvantaBench, and liborvanta-visa against it and against an
instrument that is not ours; in a network of this process alone.
Usage: network_test.py ORVANTABENCH INSTRUMENT-SERVER [LIBORVANTA-VISA]"""

import re
import socket
import struct
import subprocess
import sys
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
        for line in iter(server.stdout.readline, "Listening\n"):
            if "BENCH:EVENT?" in line:
                break
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
        rpcb = struct.pack(">3I4s2I", 0x0607AF, 1, 3, b"tcp", 0, 0)  # no address, no owner
        mapping = struct.pack(">4I", 0x0607AF, 1, 6, 0)
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as mapper:
            mapper.settimeout(10)
            for version, arguments, status in (4, rpcb, 2), (3, rpcb, 2), (2, mapping, 0):
                xid = 100 + version
                call = struct.pack(">10I", xid, 0, 2, 100000, version, 3, 0, 0, 0, 0)
                mapper.sendto(call + arguments, (places["scope"], 111))
                answer = struct.unpack(">7I", mapper.recv(100)[:28])
                self.assertEqual(answer[:6], (xid, 1, 0, 0, 0, status))
        self.assertGreater(answer[6], 1023)

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

    def test_fault(self):
        for library in OUR_LIBRARIES:
            manager = self.visa(library)
            device = self.open(manager, places["scope-kvx"])
            device.write("BENCH:FAUL CUT,5")
            self.assertEqual(device.query("*IDN?"), "Varnh")
            device.write("BENCH:FAUL LOST")
            for _ in range(2):
                self.assert_fails(StatusCode.error_connection_lost, device.query, "*IDN?")
            again = self.open(manager, places["scope-kvx"])
            self.assertEqual(again.query("*CLS;SYST:ERR?"), '0,"No error"\n')

    def test_links_of_a_process_that_ends(self):
        script = """import pyvisa, sys
manager = pyvisa.ResourceManager(sys.argv[1])
for _ in range(16): manager.open_resource(f"TCPIP0::{sys.argv[2]}::INSTR")"""
        for library in OUR_LIBRARIES * 2:
            subprocess.run([sys.executable, "-c", script, library, places["video"]], check=True)

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


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
