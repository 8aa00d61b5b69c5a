#!/usr/bin/env python3
"""Holds tools/check_includes against small trees of a few files each."""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL = Path(__file__).resolve().parents[2] / "tools" / "check_includes"


class CheckIncludes(unittest.TestCase):
    def run_on(self, tree):
        with tempfile.TemporaryDirectory() as folder:
            for name, text in tree.items():
                path = Path(folder, name)
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            done = subprocess.run([sys.executable, str(TOOL), folder], capture_output=True, text=True)
        return done.returncode, done.stdout

    def assert_allowed(self, tree):
        code, output = self.run_on(tree)
        self.assertEqual(code, 0, output)

    def assert_refused(self, tree, *texts):
        code, output = self.run_on(tree)
        self.assertEqual(code, 1, output)
        for text in texts:
            self.assertIn(text, output)

    def test_arrows_that_point_down_are_allowed(self):
        self.assert_allowed({
            "shared/includes/Variant.h": "#include <cstdint>\n",
            "platform/include/platform/Home.h": '#include "Variant.h"\n',
            "platform/src/home/Home.cpp": '#include "platform/Home.h"\n#include <sys/stat.h>\n',
            "shared/includes/CvarImpl.h": '#include "Variant.h"\n#include "platform/Home.h"\n',
            "libraries/cvars/diagnostics/EventLogClient.h": '#include "Variant.h"\n',
            "libraries/cvars/CCvarDouble.h": '#include "CvarImpl.h"\n#include "EventLogClient.h"\n',
            "libraries/client/CvarObject.h": '#include "CCvarDouble.h"\n',
            "shared/includes/Cvars.h": '#include "CvarObject.h"\n#include "platform/Home.h"\n',
            "instrument/model/Scope.h": '#include "Cvars.h"\n',
            "instrument/remote/Server.cpp": '#include "model/Scope.h"\n#include <boost/asio.hpp>\n',
            "tests/instrument/ServerTest.cpp": '#include "Scope.h"\n#include "model/Scope.h"\n',
            "tests/instrument/Scope.h": "",
        })

    def test_component_never_includes_the_libraries(self):
        self.assert_refused(
            {"components/reg_exp/RegExp.cpp": '\n#include "CCvarDouble.h"\n',
             "libraries/cvars/CCvarDouble.h": ""},
            "components/reg_exp/RegExp.cpp:2: components may not include cvars")

    def test_components_do_not_know_each_other(self):
        self.assert_refused(
            {"components/reg_exp/RegExp.cpp": '#include "components/tattler/Client.h"\n',
             "components/tattler/Client.h": ""},
            "the parts of components/ do not know each other")

    def test_value_type_does_not_know_the_template_base(self):
        self.assert_refused(
            {"shared/includes/Variant.h": '#include "CvarImpl.h"\n', "shared/includes/CvarImpl.h": ""},
            "values may not include template")

    def test_platform_does_not_know_the_libraries(self):
        self.assert_refused(
            {"platform/src/home/Home.cpp": '#include "libraries/cvars/NumericText.h"\n',
             "libraries/cvars/NumericText.h": ""},
            "platform may not include cvars")

    def test_library_does_not_know_the_client_kit(self):
        self.assert_refused(
            {"libraries/cvars/CCvarDouble.cpp": '#include "CvarObject.h"\n',
             "libraries/client/CvarObject.h": ""},
            "cvars may not include client")

    def test_diagnostics_know_no_concrete_cvar(self):
        self.assert_refused(
            {"libraries/cvars/diagnostics/EventLogClient.cpp": '#include "CCvarDouble.h"\n',
             "libraries/cvars/CCvarDouble.h": ""},
            "diagnostics may not include cvars")

    def test_front_ends_do_not_know_each_other(self):
        self.assert_refused(
            {"instrument/remote/Server.h": '#include "panel/Panel.h"\n', "instrument/panel/Panel.h": ""},
            "remote may not include panel")

    def test_benchmark_does_not_know_the_tests(self):
        self.assert_refused(
            {"benchmarks/Double.cpp": '#include "tests/support/RecordingListener.h"\n',
             "tests/support/RecordingListener.h": ""},
            "benchmarks may not include tests")

    def test_angle_brackets_do_not_hide_a_breach(self):
        self.assert_refused(
            {"platform/src/Home.cpp": "#include <CCvarDouble.h>\n", "libraries/cvars/CCvarDouble.h": ""},
            "platform may not include cvars")

    def test_library_stands_on_the_standard_library_alone(self):
        self.assert_refused(
            {"libraries/cvars/CCvarDouble.cpp": "#include <boost/any.hpp>\n#include <png.h>\n"},
            "not on <boost/any.hpp>", "not on <png.h>")

    def test_quoted_include_must_be_in_the_tree(self):
        self.assert_refused({"tests/Test.cpp": '#include "Gone.h"\n'}, '"Gone.h" is nowhere in the tree')

    def test_ring_of_two_files(self):
        self.assert_refused(
            {"shared/includes/Left.h": '#include "Right.h"\n',
             "shared/includes/Right.h": '#include "Left.h"\n'},
            "ring of includes: shared/includes/Left.h -> shared/includes/Right.h -> "
            "shared/includes/Left.h")

    def test_file_that_includes_itself(self):
        self.assert_refused({"tests/Test.h": '#include "Test.h"\n'},
                            "ring of includes: tests/Test.h -> tests/Test.h")

    def test_commented_include_counts_for_nothing(self):
        self.assert_allowed({
            "platform/src/Home.cpp":
                '// #include "CCvarDouble.h"\n/*\n#include "CCvarDouble.h"\n*/\n',
            "libraries/cvars/CCvarDouble.h": "",
        })

    def test_build_folder_is_not_read(self):
        self.assert_allowed({"build/dev/Generated.h": '#include "Gone.h"\n'})


if __name__ == "__main__":
    unittest.main()
