"""Runs cvar-scope for a test, on a free port and in a home of its own."""
import atexit
import os
import re
import shutil
import subprocess
import tempfile


class ScopeProcess:
    """The instrument as a child process; ended by SIGTERM, which it answers with a clean exit."""

    def __init__(self, program):
        # Kept to the end of the test program, so that a test can look at what was left there.
        home = tempfile.mkdtemp(prefix="vortana-home-")
        atexit.register(shutil.rmtree, home, ignore_errors=True)
        self.environment = dict(os.environ, VORTANA_HOME=home, VORTANA_JOURNAL="none")
        self.process = subprocess.Popen([program, "--port", "0"], stdout=subprocess.PIPE, text=True,
                                        env=self.environment)
        greeting = self.process.stdout.readline()
        found = re.fullmatch(r"cvar-scope listens on 127\.0\.0\.1 port (\d+)\n", greeting)
        if found is None:
            self.process.kill()
            raise RuntimeError(f"unexpected greeting: {greeting!r}")
        self.port = int(found[1])

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.stop()

    def stop(self):
        """Ends the instrument and gives its exit code."""
        if self.process.poll() is None:
            self.process.terminate()
        code = self.process.wait(timeout=20)
        self.process.stdout.close()
        return code


def open_visa(manager, port):
    """A PyVISA session with the instrument at a port."""
    session = manager.open_resource(f"TCPIP::127.0.0.1::{port}::SOCKET")
    session.read_termination = "\n"
    session.write_termination = "\n"
    session.timeout = 20000
    return session
