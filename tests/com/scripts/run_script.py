#!/usr/bin/env python3
"""Runs a VBScript under the script engine and looks at what it printed: the engine itself ends with 0, and
says nothing, whatever goes wrong in a script.

usage: run_script.py --runner RUNNER [--before FILE.vbs] SCRIPT.vbs PATTERN ...
  SCRIPT may be a page of the documents: its block of VBScript is run
  --before: put before the script; PATTERN: regular expressions, each of which must match a line, the last
  one the last line
"""

import argparse
import pathlib
import re
import subprocess
import sys
import tempfile


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--runner", type=pathlib.Path, required=True)
    parser.add_argument("--before", type=pathlib.Path)
    parser.add_argument("script")
    parser.add_argument("patterns", nargs="+")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        script = options.script
        text = b""
        if options.before:
            text = options.before.read_bytes() + pathlib.Path(script).read_bytes()
        elif script.endswith(".md"):
            text = re.search(rb"^```vbscript\n(.*?)^```", pathlib.Path(script).read_bytes(), re.MULTILINE | re.DOTALL)[1]
        if text:
            script = "script.vbs"
            (pathlib.Path(folder) / script).write_bytes(text)
        run = subprocess.run([options.runner, "cscript", "//nologo", script], cwd=folder,
                             capture_output=True, text=True, check=False)
    print(run.stdout + run.stderr)
    lines = run.stdout.splitlines()
    missing = [pattern for pattern in options.patterns if not any(re.fullmatch(pattern, line) for line in lines)]
    if not lines or not re.fullmatch(options.patterns[-1], lines[-1]):
        missing.append(options.patterns[-1] + " at the end")
    for pattern in missing:
        print(f"no line: {pattern}")
    return 1 if missing or run.returncode != 0 else 0


if __name__ == "__main__":
    sys.exit(main())
