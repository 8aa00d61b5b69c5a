#!/usr/bin/env python3
"""Holds the instructions of the core operations against the recorded ones.

usage: operation_costs.py [--record] <program> <valgrind> <compiler>

The counts stand in operation_costs.json, per operation, for the compiler that made the program. An
operation that costs 3 % more or less fails the test: a gain is recorded too, so that it is kept.
Without valgrind, or with a compiler of another version, the test is skipped.
"""
import json
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

RECORD = Path(__file__).with_name("operation_costs.json")
TOLERANCE = 0.03
TIMES = 1000
SKIPPED = 77
# The C library picks its string functions by the processor; these are there on every one.
PLAIN_PROCESSOR = "glibc.cpu.hwcaps=" + ",".join(
    f"-{feature}" for feature in ("AVX", "AVX2", "AVX512F", "AVX512VL", "AVX512BW", "AVX512CD",
                                  "AVX512DQ", "ERMS", "FSRM", "BMI2", "RTM", "SSE4_2", "SSE4_1",
                                  "SSSE3"))


def count(program, valgrind):
    with tempfile.TemporaryDirectory() as folder:
        environment = {"PATH": os.environ.get("PATH", ""), "GLIBC_TUNABLES": PLAIN_PROCESSOR,
                       "LC_ALL": "C", "VORTANA_HOME": folder}
        done = subprocess.run(
            [valgrind, "--tool=callgrind", "--combine-dumps=no", f"--callgrind-out-file={folder}/out",
             program], env=environment, text=True, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT, check=False)
        if done.returncode != 0:
            sys.exit(f"operation_costs: the program failed\n{done.stdout[-3000:]}")
        costs = {}
        for dump in sorted(Path(folder).glob("out.*"), key=lambda path: int(path.suffix[1:])):
            text = dump.read_text()
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
            total = re.search(r"^(?:totals|summary): (\d+)$", text, re.M)
            if name and total:
                costs[name.group(1)] = int(total.group(1)) / TIMES
        if not costs:
            sys.exit(f"operation_costs: nothing was counted\n{done.stdout[-3000:]}")
        return costs


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--record"]
    if len(arguments) != 3:
        print("operation_costs: skipped: valgrind is missing, or the build is not one for it")
        return SKIPPED
    program, valgrind, compiler = arguments
    if "--record" in sys.argv:
        RECORD.write_text(json.dumps({"compiler": compiler, "instructions": {
            name: round(cost, 1) for name, cost in count(program, valgrind).items()}}, indent=2) + "\n")
        return 0
    record = json.loads(RECORD.read_text())
    if record["compiler"] != compiler:
        print(f"operation_costs: skipped: recorded with {record['compiler']}, this is {compiler}")
        return SKIPPED
    costs = count(program, valgrind)
    recorded = record["instructions"]
    wrong = set(costs) ^ set(recorded)
    print(f"{'operation':28}{'recorded':>10}{'now':>10}")
    for name in recorded:
        if name not in costs:
            continue
        beyond = abs(costs[name] - recorded[name]) > TOLERANCE * recorded[name]
        print(f"{name:28}{recorded[name]:10.1f}{costs[name]:10.1f}{'  <' if beyond else ''}")
        if beyond:
            wrong.add(name)
    if wrong:
        print(f"operation_costs: beyond {TOLERANCE:.0%} of the record: {', '.join(sorted(wrong))}\n"
              f"operation_costs: when that is meant, record anew: {sys.argv[0]} --record "
              f"{program} {valgrind} '{compiler}'")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
