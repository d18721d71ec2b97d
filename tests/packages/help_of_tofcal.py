"""What `tofcal --help` and the help of each command say."""

import os
import re
import subprocess

PROGRAM = os.environ["TOFCAL"]
_OPTION = re.compile(r"^  (?:-\w,)?(--[\w-]+)(?: |$)", re.MULTILINE)


def help_text(*command):
    return subprocess.run([PROGRAM, *command, "--help"], capture_output=True, text=True, check=True).stdout


def commands():
    listed = help_text().split("\nSubcommands:\n", 1)[1]
    return re.findall(r"^  ([a-z][a-z-]*) ", listed, re.MULTILINE)


def options(*command):
    """The long options of a command, or of the program itself."""
    return set(_OPTION.findall(help_text(*command)))
