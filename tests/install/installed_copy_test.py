#!/usr/bin/env python3
"""Uses an installed copy the way a client does.

usage: installed_copy_test.py case build-folder libdir cmake compiler
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
README = HERE.parents[1] / "README.md"
STRICT = ["-std=c++20", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion", "-Wshadow",
          "-Wnon-virtual-dtor", "-Werror"]


class InstalledCopy:
    def __init__(self, build, libdir, cmake, compiler):
        self.build, self.prefix = Path(build), Path(build, "installed")
        self.libdir = self.prefix / libdir
        self.cmake, self.compiler = cmake, compiler
        self.includes = self.prefix / "include" / "cvars"

    def run(self, command, **options):
        print("$", *map(str, command), flush=True)
        subprocess.run([str(part) for part in command], check=True, **options)

    def output_of(self, command, **options):
        done = subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE,
                              text=True, **options)
        return done.stdout

    def run_program(self, program, folder):
        """Runs a client with a home of its own."""
        environment = dict(os.environ, VORTANA_HOME=str(folder), LD_LIBRARY_PATH=str(self.libdir))
        self.run([program], env=environment)

    def install(self, _):
        """Makes the copy anew, for the other cases."""
        shutil.rmtree(self.prefix, ignore_errors=True)
        self.run([self.cmake, "--install", self.build, "--prefix", self.prefix])

    def cmake_consumer(self, folder):
        self.run([self.cmake, "-S", HERE / "consumer", "-B", folder, "-G", "Ninja",
                  f"-DCMAKE_PREFIX_PATH={self.prefix}", f"-DCMAKE_CXX_COMPILER={self.compiler}",
                  f"-DCMAKE_CXX_FLAGS={' '.join(STRICT[1:])}"])
        self.run([self.cmake, "--build", folder])
        self.run([folder / "platform_consumer"])
        self.run_program(folder / "consumer", folder)

    def pkg_config_consumer(self, folder):
        environment = dict(os.environ, PKG_CONFIG_PATH=str(self.libdir / "pkgconfig"))
        flags = self.output_of(["pkg-config", "--cflags", "--libs", "cvars"], env=environment).split()
        self.run([self.compiler, *STRICT, HERE / "consumer" / "main.cpp", "-o", folder / "consumer",
                  *flags])
        self.run_program(folder / "consumer", folder)

    def headers(self, folder):
        """Every installed header compiles on its own, without a warning."""
        headers = sorted(self.includes.rglob("*.h"))
        if not headers:
            raise SystemExit("no header is installed")
        for header in headers:
            source = folder / (header.stem + ".cpp")
            source.write_text(f'#include "{header.relative_to(self.includes)}"\n')
        # Included as a client's own header is, so that warnings are not hushed.
        self.run([self.compiler, *STRICT, "-fsyntax-only", "-I", self.includes,
                  *sorted(folder.glob("*.cpp"))])

    def library_names(self, _):
        """The libraries are found by a name that changes with the major version."""
        for library in ("libcvars.so", "libcvars_platform.so"):
            header = self.output_of(["objdump", "-p", self.libdir / library])
            name = re.search(r"SONAME\s+(\S+)", header).group(1)
            if name != f"{library}.0":
                raise SystemExit(f"{library} calls itself {name}")

    def readme_snippets(self, folder):
        """Every C++ snippet of the README compiles, as the body of a program unless it has a main."""
        snippets = re.findall(r"^```cpp\n(.*?)^```", README.read_text(encoding="utf-8"),
                              re.DOTALL | re.MULTILINE)
        if not snippets:
            raise SystemExit("the README has no snippet")
        for number, snippet in enumerate(snippets):
            if not re.search(r"\bmain\s*\(", snippet):
                includes = "".join(re.findall(r"^#include.*\n", snippet, re.MULTILINE))
                body = re.sub(r"^#include.*\n", "", snippet, flags=re.MULTILINE)
                snippet = f"{includes}int main() {{\n{body}}}\n"
            source = folder / f"snippet{number}.cpp"
            source.write_text(snippet)
            self.run([self.compiler, *STRICT, "-Wno-unused-variable", "-I", self.includes, source,
                      "-o", folder / f"snippet{number}", "-L", self.libdir, "-lcvars",
                      "-lcvars_platform"])
            self.run_program(folder / f"snippet{number}", folder)


def main():
    case, *place = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder:
        getattr(InstalledCopy(*place), case)(Path(folder))


if __name__ == "__main__":
    main()
