import json
import subprocess
import tempfile
import unittest
from pathlib import Path

MUTATE = Path(__file__).resolve().parent.parent / "mutate"

PROGRAM = """\
int Larger(int a, int b) { return a > b ? a : b; }
int Unused(int a) { return a + 5; }
int main() { return Larger(2, 3) == 3 && Larger(4, 1) == 4 ? 0 : 1; }
"""
NINJA = """\
rule program
  command = g++ -o $out $in
build program: program {source}
"""


class Mutate(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.source = self.root / "source"
        self.build = self.root / "build"
        self.source.mkdir()
        self.build.mkdir()
        self.file = self.source / "larger.cpp"
        self.file.write_text(PROGRAM, "utf-8")
        (self.build / "build.ninja").write_text(NINJA.format(source=self.file), "utf-8")
        self.results = self.root / "results.jsonl"

    def mutate(self, mode, *options):
        return subprocess.run(
            [MUTATE, mode, "--source", self.source, "--build", self.build, "--files", "*.cpp",
             "--stage", "program=./program", "--out", self.results, "--number", "30", *options],
            capture_output=True, text=True, check=True).stdout

    def test_draws_the_same_changes_by_the_same_seed(self):
        first = self.mutate("list", "--seed", "7")
        self.assertEqual(self.mutate("list", "--seed", "7"), first)
        self.assertIn("'>' -> '<'", first)

    def test_tells_what_the_tests_notice_and_puts_the_file_back(self):
        self.mutate("run")
        self.assertEqual(self.file.read_text("utf-8"), PROGRAM)
        rows = [json.loads(line) for line in self.results.read_text("utf-8").splitlines()]
        status = {(row["line"], row["old"], row["new"]): row["status"] for row in rows}
        self.assertEqual(status[1, ">", "<"], "killed")
        self.assertEqual(status[1, ">", ">="], "survived", "equal numbers are as large as each other")
        self.assertEqual(status[2, "+", "-"], "survived", "nothing calls it")
        self.assertIn("survived", self.mutate("report"))

    def test_goes_on_where_it_stopped(self):
        self.mutate("run")
        finished = self.results.read_text("utf-8")
        lines = finished.splitlines(keepends=True)
        self.results.write_text("".join(lines[:-2]), "utf-8")
        self.mutate("run")
        again = self.results.read_text("utf-8").splitlines()
        self.assertEqual([json.loads(line)["id"] for line in again],
                         [json.loads(line)["id"] for line in lines])


if __name__ == "__main__":
    unittest.main()
