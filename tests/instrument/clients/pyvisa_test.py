"""PyVISA drives the instrument.

usage: pyvisa_test.py <cvar-scope>
"""
import sys
import unittest

import pyvisa

from scope_process import ScopeProcess, open_visa

PROGRAM = sys.argv.pop(1)


class PyVisaTest(unittest.TestCase):
    def setUp(self):
        self.scope = ScopeProcess(PROGRAM)
        self.addCleanup(self.scope.stop)
        self.manager = pyvisa.ResourceManager("@py")
        self.addCleanup(self.manager.close)
        self.visa = open_visa(self.manager, self.scope.port)

    def test_scale_reads_back_adapted(self):
        self.visa.write("CHANNEL1:SCALE 0.12345")
        self.assertEqual(self.visa.query("CHANNEL1:SCALE?"), "100E-3")
        self.visa.write("CHANNEL1:SCALE 1000")
        self.assertEqual(self.visa.query("CHANNEL1:SCALE?"), "10")
        self.assertEqual(float(self.visa.query("CHANNEL1:SCALE 20 MV;SCALE?")), 0.02)

    def test_settings_are_shared_and_status_is_not(self):
        other = open_visa(self.manager, self.scope.port)
        self.visa.write("CHANNEL1:SCALE 2;NOTHING")
        self.assertEqual(self.visa.query("*OPC?"), "1")
        self.assertEqual(other.query("CHANNEL1:SCALE?;*ESR?"), "2;0")
        self.assertEqual(self.visa.query("*ESR?"), "32")

    def test_errors_are_read_back(self):
        self.visa.write("CHANNEL1:SCALE three")
        self.visa.write("CHANNEL1:SCALE 3 A")
        self.visa.write("CHANNEL1:NOTHING 3")
        self.assertEqual(self.visa.query("SYSTem:ERRor:COUNt?"), "3")
        self.assertEqual(self.visa.query("SYSTem:ERRor?"), '-104,"Data type error"')
        self.assertEqual(self.visa.query("SYSTem:ERRor:NEXT?"), '-131,"Invalid suffix"')
        self.assertEqual(self.visa.query("syst:err?"), '-113,"Undefined header"')
        self.assertEqual(self.visa.query("syst:err?"), '0,"No error"')
        self.assertEqual(self.visa.query("CHANNEL1:SCALE?"), "100E-3")

    def test_line_of_100_kilobytes(self):
        command = "CHANNEL1:SCALE?;SCALE? MAX"
        count = 100_000 // (len(command) + 2) + 1
        line = ";:".join([command] * count)
        self.assertGreater(len(line), 100_000)
        self.assertEqual(self.visa.query(line), ";".join(["100E-3;10"] * count))

    def test_carriage_return_before_the_line_feed(self):
        self.visa.write_termination = "\r\n"
        self.assertEqual(self.visa.query("CHANNEL4:SCALE?"), "100E-3")

    def test_terminate_is_a_clean_exit(self):
        self.assertEqual(self.visa.query("*OPC?"), "1")
        self.assertEqual(self.scope.stop(), 0)


if __name__ == "__main__":
    unittest.main()
