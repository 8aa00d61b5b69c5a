"""What the instrument writes into the event log while clients use it.

usage: log_test.py <cvar-scope> <cvar-log>
"""
import json
import re
import socket
import subprocess
import sys
import unittest

from scope_process import ScopeProcess

LOG_PROGRAM = sys.argv.pop(2)
PROGRAM = sys.argv.pop(1)


class LogTest(unittest.TestCase):
    def setUp(self):
        self.scope = ScopeProcess(PROGRAM)
        self.addCleanup(self.scope.stop)

    def entries(self, *arguments):
        output = subprocess.run([LOG_PROGRAM, "--json", *arguments], capture_output=True,
                                text=True, timeout=20, check=True,
                                env=self.scope.environment).stdout
        return [json.loads(line) for line in output.splitlines()]

    def texts(self):
        return [(entry["type"], entry["text"]) for entry in self.entries("--source", "CvarScope")]

    def ask(self, text):
        """Sends lines, reads until the instrument has closed, and gives the client's address."""
        with socket.create_connection(("127.0.0.1", self.scope.port), timeout=20) as client:
            address = "127.0.0.1:%d" % client.getsockname()[1]
            client.sendall(text.encode())
            client.shutdown(socket.SHUT_WR)
            while client.recv(4096):
                pass
        return address

    def test_a_session_is_logged_from_start_to_stop(self):
        client = self.ask("CHANNEL1:SCALE 0.5\nTRIGGER:SOURCE C9\nNO:SUCH? 1\nNO:SUCH 'a b', 2\n")
        other = self.ask("*IDN?\n")
        self.assertEqual(self.scope.stop(), 0)
        self.assertEqual(self.texts(), [
            (4, f"Started: listens on 127.0.0.1 port {self.scope.port}"),
            (4, f"Client connected: {client}"),
            (2, f'Setting refused: TRIGGER:SOURCE C9 of {client}: -224,"Illegal parameter value"'),
            (2, f"Setting refused: NO:SUCH 'a b', 2 of {client}: -113,\"Undefined header\""),
            (4, f"Client gone: {client}"),
            (4, f"Client connected: {other}"),
            (4, f"Client gone: {other}"),
            (4, "Stopped"),
        ])

    def test_a_client_that_is_there_at_the_end_is_gone_before_the_stop(self):
        with socket.create_connection(("127.0.0.1", self.scope.port), timeout=20) as client:
            client.sendall(b"*IDN?\n")
            self.assertTrue(client.recv(4096))
            self.assertEqual(self.scope.stop(), 0)
        kinds = [re.sub(":.*", "", text) for _, text in self.texts()]
        self.assertEqual(kinds, ["Started", "Client connected", "Client gone", "Stopped"])

    def test_entries_name_program_and_process(self):
        self.assertEqual(self.scope.stop(), 0)
        for entry in self.entries():
            self.assertEqual(entry["source"], "CvarScope")
            self.assertEqual(entry["program"], "cvar-scope")
            self.assertEqual(entry["process"], self.scope.process.pid)


if __name__ == "__main__":
    unittest.main()
