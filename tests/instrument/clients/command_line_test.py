"""Command-line clients drive the instrument: lxi of lxi-tools and nc.

usage: command_line_test.py <cvar-scope> <identity>
"""
import subprocess
import sys
import unittest

from scope_process import ScopeProcess

IDENTITY = sys.argv.pop(2)
PROGRAM = sys.argv.pop(1)


class CommandLineTest(unittest.TestCase):
    def setUp(self):
        self.scope = ScopeProcess(PROGRAM)
        self.addCleanup(self.scope.stop)

    def run_client(self, *arguments, text=""):
        result = subprocess.run(arguments, input=text, capture_output=True, text=True, timeout=20,
                                check=True)
        return result.stdout

    def ask_nc(self, text):
        return self.run_client("nc", "-N", "127.0.0.1", str(self.scope.port), text=text)

    def test_lxi_asks_the_identity(self):
        answer = self.run_client("lxi", "scpi", "--address", "127.0.0.1", "--port",
                                 str(self.scope.port), "--raw", "*IDN?")
        self.assertEqual(answer.strip(), IDENTITY)

    def test_nc_asks_the_identity(self):
        self.assertEqual(self.ask_nc("*IDN?\n"), IDENTITY + "\n")

    def test_nc_gets_every_answer_before_the_end(self):
        lines = "CHANNEL3:SCALE 5\r\nCHANNEL3:SCALE?\r\n*OPC?;*TST?\r\n"
        self.assertEqual(self.ask_nc(lines), "5\n1;0\n")


class StartTest(unittest.TestCase):
    def test_port_in_use_is_said(self):
        with ScopeProcess(PROGRAM) as scope:
            result = subprocess.run([PROGRAM, "--port", str(scope.port)], capture_output=True,
                                    text=True, timeout=20, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("Address already in use", result.stderr)

    def test_greeting_says_how_to_talk_to_it(self):
        with ScopeProcess(PROGRAM) as scope:
            self.assertIn(f"nc -N 127.0.0.1 {scope.port}", scope.process.stdout.readline())


if __name__ == "__main__":
    unittest.main()
