"""The manual page and the completion say what the program's help says."""

import os
import pathlib
import re
import subprocess
import tempfile
import unittest

import help_of_tofcal

PAGE = pathlib.Path(os.environ["TOF_MANUAL_PAGE"])
COMPLETION = pathlib.Path(os.environ["TOF_SOURCE"]) / "packaging" / "tofcal.bash"


class ManualPage(unittest.TestCase):
    def setUp(self):
        # Tags of paragraphs and the text, without the escapes of hyphens and fonts.
        self.page = re.sub(r"\\f.", "", PAGE.read_text("utf-8").replace("\\-", "-"))

    def section(self, title):
        return self.page.split(f"\n.SH {title}\n", 1)[1].split("\n.SH ", 1)[0]

    def test_has_a_section_for_every_command_and_for_no_other(self):
        sections = re.findall(r"^\.SS (.*)$", self.section("COMMANDS"), re.MULTILINE)
        self.assertEqual(sections, help_of_tofcal.commands())

    def test_shows_how_every_command_is_called(self):
        called = re.findall(r"^\.B tofcal ([a-z-]+)$", self.section("SYNOPSIS"), re.MULTILINE)
        self.assertEqual(sorted(set(called)), sorted(help_of_tofcal.commands()))

    def test_describes_every_option_and_no_other(self):
        described = set(re.findall(r"^\.TP\n\.BI? (--[\w-]+)", self.section("OPTIONS"), re.MULTILINE))
        offered = set().union(*map(help_of_tofcal.options, help_of_tofcal.commands()))
        self.assertEqual(described | {"--help", "--version"}, offered | help_of_tofcal.options())

    def test_is_formatted_without_a_warning(self):
        lint = subprocess.run(["mandoc", "-Tlint", "-Wwarning", PAGE], capture_output=True, text=True, check=False)
        self.assertEqual((lint.returncode, lint.stdout), (0, ""))
        shown = subprocess.run(["man", "--warnings", "-l", PAGE], capture_output=True, text=True, check=True,
                               env={**os.environ, "MANPAGER": "cat", "LC_ALL": "C.UTF-8"})
        self.assertEqual(shown.stderr, "")
        self.assertIn("EXIT STATUS", shown.stdout)


class Completion(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "spectra").mkdir()
        (self.folder / "instrument.xml").touch()

    def offered(self, *words):
        """What is offered for the last of `words`, which follow the program's name."""
        script = 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tofcal; printf "%s\\n" "${COMPREPLY[@]}"'
        answer = subprocess.run(["bash", "-c", script, "bash", COMPLETION, help_of_tofcal.PROGRAM, *words],
                                cwd=self.folder, capture_output=True, text=True, check=True)
        self.assertEqual(answer.stderr, "")
        return answer.stdout.split()

    def test_offers_every_command(self):
        self.assertEqual(sorted(self.offered("")), sorted([*help_of_tofcal.commands(), "--help", "--version"]))
        self.assertEqual(self.offered("cal"), ["calibrate"])

    def test_offers_every_option_of_a_command(self):
        for command in help_of_tofcal.commands():
            with self.subTest(command):
                self.assertEqual(sorted(self.offered(command, "--")), sorted(help_of_tofcal.options(command)))

    def test_offers_files_where_a_file_is_named(self):
        self.assertEqual(sorted(self.offered("calibrate", "--instrument", "")), ["instrument.xml", "spectra"])
        self.assertEqual(self.offered("calibrate", "--instrument", "=", "ins"), ["instrument.xml"])

    def test_offers_folders_where_a_folder_is_named(self):
        self.assertEqual(self.offered("calibrate", "--seed", "3", "--data", ""), ["spectra"])

    def test_offers_the_words_of_a_choice(self):
        self.assertEqual(self.offered("fit", "--weighting", ""), ["0", "1", "2"])
        self.assertEqual(self.offered("fit", "--terms", ""), ["auto"])

    def test_offers_nothing_for_a_number(self):
        self.assertEqual(self.offered("calibrate", "--seed", ""), [])

    def test_is_found_by_the_shell_under_the_programs_name(self):
        answer = subprocess.run(["bash", "-c", 'source "$1"; complete -p tofcal', "bash", COMPLETION],
                                capture_output=True, text=True, check=True)
        self.assertEqual(answer.stdout, "complete -F _tofcal tofcal\n")
