import subprocess
import tempfile
import unittest
from pathlib import Path

CHECKER = Path(__file__).resolve().parent.parent / "check_includes"


class CheckIncludes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for name in ("component/calibrator.h", "instruments/peaks/finder.h", "hosts/cli/main.h",
                     "tests/fake.h", "bench/tables.h"):
            self.write(name, "#pragma once\n")

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, "utf-8")

    def check(self):
        answer = subprocess.run([CHECKER, self.root], capture_output=True, text=True, check=False)
        self.assertEqual(answer.stderr, "")
        return answer.returncode, answer.stdout

    def assert_accepts(self, name, include):
        self.write(name, f"{include}\n")
        self.assertEqual(self.check(), (0, ""))

    def assert_rejects(self, name, include, why):
        self.write(name, f"// first line\n{include}\n")
        code, said = self.check()
        self.assertEqual(code, 1)
        self.assertTrue(said.startswith(f"{name}:2: {include.strip()}: "), said)
        self.assertIn(why, said)

    def test_accepts_includes_that_point_inwards(self):
        for name, include in (
            ("component/a.cpp", '#include "component/calibrator.h"'),
            ("component/b.cpp", "#include <vector>"),
            ("instruments/a.cpp", '#include "component/calibrator.h"'),
            ("instruments/b.cpp", '#include "instruments/peaks/finder.h"'),
            ("instruments/c.cpp", "#include <Eigen/Dense>"),
            ("hosts/a.cpp", '#include "instruments/peaks/finder.h"'),
            ("hosts/b.cpp", '#include "component/calibrator.h"  // the façade'),
            ("tests/a_test.cpp", '#include "tests/fake.h"'),
            ("tests/b_test.cpp", "#include <gtest/gtest.h>"),
            ("bench/a_bench.cpp", '#include "tests/fake.h"'),
            ("component/c.cpp", "// #include <windows.h>"),
        ):
            with self.subTest(name):
                self.assert_accepts(name, include)

    def test_rejects_the_component_looking_outwards(self):
        only = "component/ may include only component"
        self.assert_rejects("component/a.cpp", '#include "instruments/peaks/finder.h"', only)

    def test_rejects_the_component_looking_at_a_host(self):
        only = "component/ may include only component"
        self.assert_rejects("component/deep/a.h", '#include "hosts/cli/main.h"', only)

    def test_rejects_the_component_including_a_library(self):
        for include in ("#include <fmt/format.h>", "#include <unistd.h>", "#include <math.h>"):
            with self.subTest(include):
                self.assert_rejects("component/a.cpp", include, "C++ standard library")

    def test_rejects_an_instrument_looking_at_a_host(self):
        self.assert_rejects("instruments/a.cpp", '#include "hosts/cli/main.h"',
                            "instruments/ may include only component, instruments")

    def test_rejects_a_program_looking_at_the_tests(self):
        for name in ("component/a.h", "instruments/a.h", "hosts/a.h"):
            with self.subTest(name):
                self.assert_rejects(name, '#include "tests/fake.h"', "may include only")
                (self.root / name).unlink()

    def test_rejects_tests_looking_at_the_benchmarks(self):
        self.assert_rejects("tests/a_test.cpp", '#include "bench/tables.h"', "may include only")

    def test_angle_brackets_and_blanks_are_no_way_around(self):
        self.assert_rejects("component/a.cpp", "  #  include <hosts/cli/main.h>", "may include only")

    def test_rejects_paths_that_do_not_start_at_the_root(self):
        for include in ('#include "calibrator.h"', '#include "../instruments/peaks/finder.h"',
                        '#include "/component/calibrator.h"'):
            with self.subTest(include):
                self.assert_rejects("component/a.cpp", include, "from the project's root")

    def test_rejects_a_way_back_out_of_an_allowed_folder(self):
        self.assert_rejects("component/a.cpp", '#include "component/../hosts/cli/main.h"', "without ..")

    def test_rejects_a_missing_file(self):
        self.assert_rejects("component/a.cpp", '#include "component/gone.h"', "no such file")

    def test_rejects_what_it_cannot_follow(self):
        self.assert_rejects("component/a.cpp", "#include HEADER", "through a macro")

    def test_names_every_wrong_line(self):
        self.write("component/a.cpp", '#include "hosts/cli/main.h"\n#include <vector>\n#include <fmt/core.h>\n')
        code, said = self.check()
        self.assertEqual(code, 1)
        self.assertEqual([line.split(": ")[0] for line in said.splitlines()],
                         ["component/a.cpp:1", "component/a.cpp:3"])


if __name__ == "__main__":
    unittest.main()
