#!/usr/bin/env python3
"""Makes the Debian packages of the build that is there, and looks into them.

usage: debian_packages_test.py <build-folder> <libdir> <cpack> <version>
"""
import shutil
import socket
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "instrument" / "clients"))
from scope_process import ScopeProcess

BUILD, LIBDIR, CPACK, VERSION = sys.argv[1:5]
del sys.argv[1:5]
SAME_LIBRARIES = f"libcvars0 (= {VERSION})"
COMPONENTS = ("asynchronous_notifier", "event_log", "message_box", "physical_unit", "reg_exp",
              "tattler")


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.mkdtemp(prefix="packages-")
        cls.addClassCleanup(shutil.rmtree, folder)
        made = subprocess.run([CPACK, "--config", str(Path(BUILD, "CPackConfig.cmake")), "-B", folder],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if made.returncode != 0:
            raise RuntimeError(made.stdout)
        cls.root = Path(folder, "root")
        cls.fields, cls.files = {}, {}
        for package in Path(folder).glob("*.deb"):
            name = output_of("dpkg-deb", "-f", str(package), "Package").strip()
            cls.fields[name] = {
                field: output_of("dpkg-deb", "-f", str(package), field).strip()
                for field in ("Depends", "Recommends", "Description", "Maintainer", "Section",
                              "Version")}
            cls.files[name] = {line.split(maxsplit=5)[5].split(" -> ")[0][2:]
                               for line in output_of("dpkg-deb", "-c", str(package)).splitlines()
                               if not line.startswith("d")}
            subprocess.run(["dpkg-deb", "-x", str(package), str(cls.root)], check=True)

    def assert_holds(self, package, *files):
        self.assertLessEqual(set(files), self.files[package])

    def test_libraries_bring_what_they_load(self):
        lib = f"usr/{LIBDIR}"
        self.assertEqual(self.files["libcvars0"], {
            f"{lib}/libcvars.so.0", f"{lib}/libcvars.so.{VERSION}",
            f"{lib}/libcvars_platform.so.0", f"{lib}/libcvars_platform.so.{VERSION}",
            f"{lib}/DbgHelp.dll", f"{lib}/psapi.dll", f"{lib}/user32.dll",
            f"{lib}/vortana-dump-helper", "usr/share/doc/libcvars0/copyright",
            *(f"{lib}/cvars/components/cvars_{name}.{kind}" for name in COMPONENTS
              for kind in ("so", "reg"))})

    def test_development_files_are_apart(self):
        lib = f"usr/{LIBDIR}"
        self.assert_holds(
            "libcvars-dev", f"{lib}/libcvars.so", f"{lib}/libcvars_platform.so",
            f"{lib}/pkgconfig/cvars.pc", "usr/libexec/cvars/cvars_compile_resources",
            *(f"{lib}/cmake/cvars/{name}.cmake" for name in (
                "cvarsConfig", "cvarsConfigVersion", "cvarsTargets", "CvarsComponents",
                "CvarsResources", "CvarsVersions")),
            *(f"usr/include/cvars/{name}" for name in (
                "Cvars.h", "IVorCvar.h", "CCvarDouble.h", "platform/Registry.h")))

    def test_programs_are_apart(self):
        self.assertEqual(self.files["cvars-tools"], {
            "usr/bin/cvar-log", "usr/bin/tattler-monitor", "usr/share/doc/cvars-tools/copyright"})
        self.assertEqual(self.files["cvar-scope"], {
            "usr/bin/cvar-scope", "usr/share/doc/cvar-scope/copyright"})

    def test_no_file_is_in_two_packages(self):
        self.assertEqual(sum(map(len, self.files.values())), len(set().union(*self.files.values())))

    def test_dependencies(self):
        for name, fields in self.fields.items():
            depends = fields["Depends"].split(", ")
            self.assertEqual(SAME_LIBRARIES in depends, name != "libcvars0", name)
            for library in ("libc6", "libstdc++6"):
                self.assertTrue(any(part.startswith(f"{library} (>= ") for part in depends), name)
        self.assertEqual(self.fields["cvar-scope"]["Recommends"], "cvars-tools")

    def test_descriptions(self):
        sections = {"libcvars0": "libs", "libcvars-dev": "libdevel", "cvars-tools": "utils",
                    "cvar-scope": "electronics"}
        self.assertEqual({name: fields["Section"] for name, fields in self.fields.items()}, sections)
        for name, fields in self.fields.items():
            self.assertEqual(fields["Version"], VERSION)
            self.assertEqual(fields["Maintainer"], "The cvars project")
            summary, text = fields["Description"].split("\n", 1)
            self.assertLessEqual(len(summary), 80, name)
            self.assertTrue(text.strip(), name)

    def test_instrument_runs_from_what_the_packages_hold(self):
        lines = b"CHANNEL1:SCALE 50 MV;SCALE?\n*IDN?\n"
        with ScopeProcess(str(self.root / "usr/bin/cvar-scope")) as scope:
            with socket.create_connection(("127.0.0.1", scope.port), timeout=20) as client:
                client.sendall(lines)
                client.shutdown(socket.SHUT_WR)
                answers = b"".join(iter(lambda: client.recv(4096), b""))
            mapped = Path(f"/proc/{scope.process.pid}/maps").read_text()
        # Volts are known to a component, and the log is one.
        self.assertEqual(answers.decode(), f"50E-3\nVortana,CVAR-SCOPE,0,{VERSION}\n")
        for module in (f"libcvars.so.{VERSION}", "cvars/components/cvars_physical_unit.so",
                       "cvars/components/cvars_event_log.so"):
            self.assertIn(f"{self.root}/usr/{LIBDIR}/{module}", mapped)


if __name__ == "__main__":
    if shutil.which("dpkg-deb") is None or shutil.which("dpkg-shlibdeps") is None:
        print("dpkg-deb or dpkg-shlibdeps is not installed")
        sys.exit(77)
    unittest.main()
