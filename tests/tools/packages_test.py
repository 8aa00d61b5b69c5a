#!/usr/bin/env python3
"""Holds the package list of ./run and ./check against the table of the README."""
import re
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]


class Packages(unittest.TestCase):
    def test_readme_names_what_is_installed_and_no_more(self):
        listed = set()
        for line in (TOP / "tools" / "debian_packages").read_text().splitlines():
            if line and not line.startswith("#"):
                kind, package, purpose = line.split(maxsplit=2)
                self.assertIn(kind, ("run", "package", "check"))
                self.assertTrue(purpose)
                listed.add(package)
        section = (TOP / "README.md").read_text().split("\n## Dependencies\n")[1]
        rows = [row for row in section.split("\n\n")[1].splitlines() if row.startswith("| `")]
        named = set()
        for row in rows:
            named.update(re.findall(r"`([^`]+)`", row.split("|")[1]))
        self.assertEqual(listed, named)


if __name__ == "__main__":
    unittest.main()
