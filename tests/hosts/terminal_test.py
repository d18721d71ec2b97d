"""What a person at a terminal sees of tofcal, and what Ctrl-C does: on a pseudo-terminal."""

import json
import os
import pathlib
import pty
import subprocess
import tempfile
import unittest

PROGRAM = os.environ["TOFCAL"]
CTRL_C = b"\x03"


class Terminal(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def run_on_terminal(self, *arguments, press=None, after=None):
        """Exit status and what the terminal showed; the key is pressed when `after` was shown."""
        child, terminal = pty.fork()
        if child == 0:
            os.execv(PROGRAM, [PROGRAM, *arguments])
        shown = b""
        while True:
            try:
                part = os.read(terminal, 4096)
            except OSError:  # the other end is closed
                break
            shown += part
            if press and after in shown:
                os.write(terminal, press)
                press = None
        os.close(terminal)
        return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), shown.decode("utf-8")

    def calibrate(self, name, *arguments):
        return ["calibrate", "--base-folder", str(self.folder / name), *arguments]

    def abort_output(self, name):
        return ["--json", str(self.folder / f"{name}.json"), "--trace", str(self.folder / f"{name}.trace")]

    def putting_back(self, name):
        """How the trace says that the instrument was put back: each setpoint with its value."""
        lines = (self.folder / f"{name}.trace").read_text("latin-1").splitlines()
        first = max(i for i, line in enumerate(lines) if "Entry" in line and "RestorePreAutotuneInstrumentState" in line)
        return lines[first:]

    def log_files(self, name):
        """Their names without date and time."""
        return sorted(path.name.split("_20")[0] for path in (self.folder / name / "Logfiles").iterdir())

    def test_shows_stage_spectra_and_time_and_clears_the_line(self):
        status, shown = self.run_on_terminal(*self.calibrate("run", "--suppress-aic"))
        self.assertEqual(status, 0)
        self.assertIn("\rcollecting flight times: 5 of 11 spectra, about 6 s of instrument time left",
                      shown.replace("\033[K", ""))
        behind_the_line = shown.rsplit("\r\033[K", 1)[1]
        self.assertTrue(behind_the_line.startswith("  expected m/z "), behind_the_line)

    def test_shows_nothing_where_standard_error_is_no_terminal(self):
        answer = subprocess.run([PROGRAM, *self.calibrate("run", "--suppress-aic")], stdin=subprocess.DEVNULL,
                                capture_output=True, text=True, check=True)
        self.assertEqual(answer.stderr, "")

    def test_ctrl_c_asks_for_an_abort(self):
        """It is what an abort by the instrument's own clock is: message, files, and the instrument's state."""
        status, shown = self.run_on_terminal(*self.calibrate("key", "--real-time", *self.abort_output("key")),
                                             press=CTRL_C, after=b" of 242 spectra")
        self.assertEqual(status, 1)
        self.assertIn("calibration failed: [1] User aborted", shown)

        status, unattended = self.run_on_terminal(
            *self.calibrate("clock", "--abort-after", "0.5", *self.abort_output("clock")))
        self.assertEqual(status, 1)
        self.assertIn("calibration failed: [1] User aborted", unattended)

        by_key, by_clock = (json.loads((self.folder / f"{name}.json").read_text("utf-8")) for name in ("key", "clock"))
        for result in by_key, by_clock:
            self.assertFalse(result["ok"])
        self.assertEqual(by_key["status"], by_clock["status"])
        self.assertEqual(by_key["coefficients"], by_clock["coefficients"])
        self.assertEqual(self.log_files("key"), self.log_files("clock"))
        self.assertEqual(self.putting_back("key"), self.putting_back("clock"))


if __name__ == "__main__":
    unittest.main()
