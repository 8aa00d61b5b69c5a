"""Plays a recorded session through PyVISA and checks every answer.

usage: recorded_session_test.py <cvar-scope> <identity>
"""
import sys
from pathlib import Path

import pyvisa

from scope_process import ScopeProcess, open_visa


def read_session(path, identity):
    """The (line number, command, answer or None) of each command of a session file."""
    steps = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("> "):
            steps.append((number, line[2:], None))
        elif line.startswith("< "):
            begin, command, _ = steps.pop()
            steps.append((begin, command, line[2:].replace("{identity}", identity)))
        elif line and not line.startswith("#"):
            sys.exit(f"{path}:{number}: neither sent nor answered")
    return steps


def main(program, identity):
    path = Path(__file__).with_name("recorded_session.txt")
    steps = read_session(path, identity)
    failures = 0
    manager = pyvisa.ResourceManager("@py")
    with ScopeProcess(program) as scope:
        visa = open_visa(manager, scope.port)
        for number, command, expected in steps:
            if expected is None:
                visa.write(command)
                continue
            answer = visa.query(command)
            if answer != expected:
                failures += 1
                print(f"{path}:{number}: {command}\n  expected {expected}\n  answered {answer}")
        visa.close()
    manager.close()
    print(f"{len(steps)} commands, {failures} wrong answers")
    return 1 if failures or not steps else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
