"""A series of measurements by PyVISA and numpy alone, held against what the program found.

The first argument is the folder in which the program left its results.
"""

import glob
import sys
import unittest

import numpy

from laboratory import open_instrument, resource_manager, use_a_laboratory_of_our_own

SPAN = 1.2  # seconds of a record, half of them before the trigger
RESULTS_FOLDER = sys.argv.pop(1)


def delays_of_the_program():
    """The delays to RF and to the sink in milliseconds, a row for each."""
    (results,) = glob.glob(RESULTS_FOLDER + "/OrvantaDemo*_Results.txt")
    with open(results, encoding="utf-8") as file:
        lines = dict(line.rstrip("\n").split(":") for line in file)
    return numpy.array([lines[name].split() for name in ("Source2RF Delay", "Source2Snk Delay")],
                       dtype=float)


def edges(source, rf, sink):
    """The indices at which the source changes, the RF burst starts and the sink changes."""
    source_edge = numpy.flatnonzero(source - source[0] > 0.035)[0]
    level = (rf - rf.min()) / (rf.max() - rf.min())
    on = numpy.flatnonzero(numpy.convolve(level > 0.25, numpy.ones(8), "valid") == 8)
    return source_edge, on[on >= source_edge][0], numpy.flatnonzero(sink >= 0.060)[0]


class MeasurementTest(unittest.TestCase):
    def setUp(self):
        use_a_laboratory_of_our_own(self)
        manager = resource_manager()
        self.addCleanup(manager.close)
        self.oscilloscope = open_instrument(manager, "oscilloscope", timeout=5000)
        self.analyzer = open_instrument(manager, "spectrum-analyzer", timeout=5000)

    def set_up(self):
        for command in (
            "TRIG:A:SOUR CH1",
            "TRIG:A:EDGE:SLOP POS",
            "TRIG:A:LEV1 0.027",
            "TIM:SCAL 0.1",
            "TIM:REF 50",
            "CHAN1:STAT ON",
            "CHAN1:SCAL 0.05",
            "CHAN1:POS -3",
            "CHAN2:STAT ON",
            "CHAN2:SCAL 0.05",
            "CHAN2:POS -3",
            "FORM REAL,32",
        ):
            self.assertEqual(self.oscilloscope.query(command + ";*OPC?"), "1\n")
        for command in (
            "FREQ:CENT 5.192e9",
            "FREQ:SPAN 0",
            "TRIG1:SOUR EXT",
            "TRIG1:HOLD -0.6",
            f"SWE:TIME {SPAN}",
            "FORM REAL,32",
            "INIT:CONT OFF",
        ):
            self.assertEqual(self.analyzer.query(command + ";*OPC?"), "1\n")

    @staticmethod
    def fetch(instrument, query):
        return instrument.query_binary_values(query, datatype="f", container=numpy.array)

    def measure(self):
        """The delays in milliseconds, and the time between two samples."""
        source = [1.0]
        while not -0.05 < source[0] < 0.3:  # not usable: the light was on when the record began
            self.assertEqual(self.oscilloscope.query("SING;*TRG;*OPC?"), "1\n")
            source = self.fetch(self.oscilloscope, "CHAN1:DATA?")
        self.analyzer.write(f"SWE:POIN {len(source)}")
        rf = self.fetch(self.analyzer, f"TRAC? TRACE1, {len(source)}")
        sink = self.fetch(self.oscilloscope, "CHAN2:DATA?")
        self.assertTrue(len(source) == len(rf) == len(sink))
        sample = 1000 * SPAN / (len(source) - 1)
        source_edge, rf_edge, sink_edge = edges(source, rf, sink)
        return (rf_edge - source_edge) * sample, (sink_edge - source_edge) * sample, sample

    def test_finds_the_delays_that_the_program_finds(self):
        expected = delays_of_the_program()
        self.set_up()
        measured = numpy.array([self.measure() for _ in range(expected.shape[1])]).T
        self.assertEqual(self.oscilloscope.query("SYST:ERR?"), '0,"No error"\n')
        self.assertEqual(self.analyzer.query("SYST:ERR?"), '0,"No error"\n')
        print("PyVISA:", measured[:2].tolist(), "the program:", expected.tolist(), sep="\n")
        numpy.testing.assert_allclose(measured[:2], expected, rtol=0, atol=measured[2, 0])


if __name__ == "__main__":
    unittest.main()
