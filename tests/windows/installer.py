#!/usr/bin/env python3
"""Installs into a fresh Wine prefix, or uninstalls there and fails when anything is left.

usage: installer.py install|uninstall --installer FILE.msi --runner RUNNER
TOF_WINE_PREFIX names the prefix; uninstalling removes it in the end.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys

PREFIX = pathlib.Path(os.environ["TOF_WINE_PREFIX"])
INSTALLATION = PREFIX / "drive_c/Program Files/TofCalibrator"
STATE_BEFORE = PREFIX / "state_before"
INSTALLED = ["vorntofcaliblib.dll", "tofcal.exe",
             "interfaces/vorntofcaliblib.idl", "interfaces/vorntofcaliblib.tlb", "interfaces/vorntofcaliblib.h",
             "examples/calibrate.vbs", "examples/client.cpp", "examples/virtual.xml",
             "documentation/com_component.md"]
STAND_IN = ["vorninstrument.dll", "vorntofDirectFWComm.dll"]
# Where programs are entered. The system's own services write elsewhere at any time.
OF_PROGRAMS = re.compile(r"(?i)\\Software\\(Wow6432Node\\)?(Classes|Microsoft\\Windows\\CurrentVersion)\\")
# What all installers have their entries in.
OF_ALL_INSTALLERS = re.compile(
    r"Installer(\\(Features|Products|UpgradeCodes|UserData(\\S-1-5-18(\\(Components|Products))?)?))?$")
OF_THIS_ONE = re.compile(r"(?i)vorn|tofcal")


def run(runner, *command):
    answer = subprocess.run([runner, *command], cwd=PREFIX.parent, capture_output=True, text=True, check=False)
    if answer.returncode != 0:
        sys.exit(f"{command} ended with {answer.returncode}: {answer.stdout}{answer.stderr}")


def registry(runner):
    """All keys of programs, and all keys and values that name something of this installer."""
    found = set()
    for root in ("HKLM", "HKCU"):
        file = PREFIX / "export.reg"
        run(runner, "reg", "export", root, f"Z:{file}", "/y")
        for line in file.read_text(encoding="utf-16").splitlines():
            key = line.strip("[]") if line.startswith("[") else ""
            if OF_PROGRAMS.search(key) and not OF_ALL_INSTALLERS.search(key) or OF_THIS_ONE.search(line):
                found.add(line)
    return found


def files():
    folders = [PREFIX / "drive_c" / name for name in ("Program Files", "Program Files (x86)", "windows/Installer", "ProgramData")]
    return {str(file.relative_to(PREFIX)) for folder in folders for file in folder.rglob("*")}


def install(runner, installer):
    shutil.rmtree(PREFIX, ignore_errors=True)
    PREFIX.mkdir(parents=True)
    # Makes the prefix. The script engine registers itself when it is first used.
    script = PREFIX / "nothing.vbs"
    script.write_text("", encoding="ascii")
    run(runner, "cscript", "//nologo", f"{PREFIX.name}/{script.name}")
    STATE_BEFORE.write_text("\n".join(sorted(registry(runner) | files())), encoding="utf-8")
    run(runner, "msiexec", "/i", f"Z:{installer}", "/qn")
    found = [f"not installed: {name}" for name in INSTALLED if not (INSTALLATION / name).is_file()]
    found += [f"installed unasked: {name}" for name in STAND_IN if (INSTALLATION / name).exists()]
    run(runner, "msiexec", "/i", f"Z:{installer}", "ADDLOCAL=StandInInstrument", "/qn")
    return found + [f"not installed: {name}" for name in STAND_IN if not (INSTALLATION / name).is_file()]


def remove_prefix():
    # Services of the prefix still write into it for a while.
    for option in ("--kill", "--wait"):
        subprocess.run(["wineserver", option], env=dict(os.environ, WINEPREFIX=str(PREFIX)), check=False)
    shutil.rmtree(PREFIX)


def uninstall(runner, installer):
    run(runner, "msiexec", "/x", f"Z:{installer}", "/qn")
    before = set(STATE_BEFORE.read_text(encoding="utf-8").splitlines())
    left = sorted((registry(runner) | files()) - before)
    remove_prefix()
    return [f"left behind: {name}" for name in left]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("step", choices=["install", "uninstall"])
    parser.add_argument("--installer", type=pathlib.Path, required=True)
    parser.add_argument("--runner", type=pathlib.Path, required=True)
    options = parser.parse_args()
    step = install if options.step == "install" else uninstall
    found = step(options.runner.resolve(), options.installer.resolve())
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
