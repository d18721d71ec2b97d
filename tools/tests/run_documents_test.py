"""Which lines of a page run_documents takes for commands."""

import importlib.machinery
import importlib.util
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
TOOL = pathlib.Path(__file__).resolve().parent.parent / "run_documents"
LOADER = importlib.machinery.SourceFileLoader("run_documents", str(TOOL))
run_documents = importlib.util.module_from_spec(importlib.util.spec_from_loader("run_documents", LOADER))
LOADER.exec_module(run_documents)


class Commands(unittest.TestCase):
    def test_are_the_lines_of_shell_blocks(self):
        page = "text\n```sh\ntrue\n\n# a comment\nfalse  # answers 1\n```\n```text\nno command\n```\n"
        self.assertEqual(run_documents.commands(page), [(3, "true", 0), (6, "false", 1)])

    def test_may_go_on_in_the_next_line(self):
        page = "```sh\necho one \\\n  two\n```\n"
        self.assertEqual(run_documents.commands(page), [(3, "echo one  two", 0)])

    def test_are_left_out_with_a_reason_alone(self):
        page = "<!-- not run here: it takes hours -->\n\n```sh\nsleep 9999\n```\n```sh\ntrue\n```\n"
        self.assertEqual(run_documents.commands(page), [(7, "true", 0)])
        page = "<!-- not run here -->\n```sh\ntrue\n```\n"
        self.assertEqual(run_documents.commands(page), [(3, "true", 0)])


if __name__ == "__main__":
    unittest.main()
