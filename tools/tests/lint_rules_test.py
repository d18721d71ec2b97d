import re
import unittest
from pathlib import Path

RULES = Path(__file__).resolve().parent.parent.parent / ".clang-tidy"


class LintRules(unittest.TestCase):
    def test_every_check_taken_out_has_its_reason(self):
        text = RULES.read_text("utf-8")
        taken_out = set(re.findall(r"^  -([a-z-]+),?$", text, re.MULTILINE))
        reasons = set(re.findall(r"^# ([a-z]+(?:-[a-z]+)+): \S", text, re.MULTILINE))
        self.assertTrue(taken_out)
        self.assertEqual(taken_out, reasons)


if __name__ == "__main__":
    unittest.main()
