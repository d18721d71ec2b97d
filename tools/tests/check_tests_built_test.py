import json
import subprocess
import tempfile
import unittest
from pathlib import Path

CHECKER = Path(__file__).resolve().parent.parent / "check_tests_built"


class CheckTestsBuilt(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for name in ("tests/deep/peak_test.cpp", "tests/fake.h", "bench/fit_bench.cpp", "hosts/main.cpp"):
            path = self.root / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text("", "utf-8")

    def check(self, *built):
        """With a compile database that holds the files `built`."""
        build = self.root / "build"
        build.mkdir()
        entries = [{"directory": str(build), "file": file, "command": ""} for file in built]
        (build / "compile_commands.json").write_text(json.dumps(entries), "utf-8")
        answer = subprocess.run([CHECKER, "--root", self.root, build], capture_output=True, text=True, check=False)
        self.assertEqual(answer.stderr, "")
        return answer.returncode, answer.stdout

    def test_accepts_files_that_are_in_a_target(self):
        absolute = str(self.root / "bench/fit_bench.cpp")
        self.assertEqual(self.check("../tests/deep/peak_test.cpp", absolute), (0, ""))

    def test_names_a_test_that_is_in_no_target(self):
        code, said = self.check("../bench/fit_bench.cpp")
        self.assertEqual(code, 1)
        self.assertTrue(said.startswith("tests/deep/peak_test.cpp: "), said)

    def test_accepts_a_file_that_only_the_second_build_has(self):
        self.check("../bench/fit_bench.cpp")
        second = self.root / "windows"
        second.mkdir()
        entry = {"directory": str(second), "file": "../tests/deep/peak_test.cpp", "command": ""}
        (second / "compile_commands.json").write_text(json.dumps([entry]), "utf-8")
        answer = subprocess.run([CHECKER, "--root", self.root, self.root / "build", second],
                                capture_output=True, text=True, check=False)
        self.assertEqual((answer.returncode, answer.stdout, answer.stderr), (0, "", ""))

    def test_names_a_benchmark_that_is_in_no_target(self):
        code, said = self.check("../tests/deep/peak_test.cpp")
        self.assertEqual(code, 1)
        self.assertTrue(said.startswith("bench/fit_bench.cpp: "), said)

    def test_fails_without_a_compile_database(self):
        answer = subprocess.run([CHECKER, "--root", self.root, self.root / "build"], capture_output=True, text=True,
                                check=False)
        self.assertEqual(answer.returncode, 1)
        self.assertIn("compile_commands.json: not there", answer.stderr)


if __name__ == "__main__":
    unittest.main()
