#!/usr/bin/env python3
"""Fails when tofcal.exe gives another result than the native program for the same command line.

Times of the wall clock and paths apart, the JSON documents and the log files must be the same to the
last digit. Exit code 77: skipped, as the native program or the spectra are not there.

usage: same_results.py CASE --native PROGRAM --windows PROGRAM.exe --runner RUNNER --data FOLDER
"""

import argparse
import json
import pathlib
import subprocess
import sys
import tempfile

OF_THE_MACHINE = {"wall_seconds", "date", "files"}
EXAMPLES = pathlib.Path(__file__).parents[2] / "examples"
# Of the law sqrt(m) = 6.5e-4 (t - 300), each time a few tenths of a nanosecond off.
PAIRS = """# mass time_ns
118.08626 17018.41
322.04812 27909.02
622.02896 38670.11
922.00980 47015.33
1521.97148 60319.87
2121.93315 71168.55
"""


def cases(data):
    """Name -> arguments, and the folder of spectra that they need."""
    ladder = data / "ladder"
    return {
        "AbundanceImmune": (["calibrate", "--seed", "7"], None),
        "AnotherSeed": (["calibrate", "--seed", "3", "--spectra", "4"], None),
        "Traditional": (["calibrate", "--seed", "4", "--suppress-aic", "--trad-weighting", "1"], None),
        "Failure": (["calibrate", "--seed", "4", "--fail", "SpecParser.GetCalibrantPeakAttributes:3"], None),
        "Recorded": (["calibrate", "--instrument", str(EXAMPLES / "recorded/ladder.xml"), "--data", str(ladder)], ladder),
        "FitOfPairs": (["fit", "pairs.txt", "--terms", "auto"], None),
        "FitOfASpectrum": (
            ["fit", "--spectrum", str(ladder / "spectrum.mzML"), "--masses", str(ladder / "reference_masses.txt"),
             "--A", "0.000678", "--t0", "258", "--peak-window", "0.2", "--terms", "auto"], ladder),
        "ConformanceSuite": (["check-instrument", "--seed", "5"], None),
    }


def result_of(program, arguments, folder):
    (folder / "pairs.txt").write_text(PAIRS, encoding="ascii")
    # A relative path: a program of Windows knows the drives' roots by other names.
    given = arguments + ["--json", "Ergebnis_\u00b5.json"]
    if arguments[0] != "fit":
        given += ["--base-folder", "Me\u00dfreihe \u03b4"]
    run = subprocess.run(program + given, cwd=folder, capture_output=True, text=True, check=False)
    document = (folder / "Ergebnis_\u00b5.json").read_text(encoding="utf-8")
    logs = {file.name: file.read_bytes() for file in sorted(folder.glob("Me\u00dfreihe \u03b4/Logfiles/*"))}
    return run, json.loads(document), logs


def differences(native, windows, place=""):
    """The places where two JSON documents differ, with what is there."""
    if isinstance(native, dict) and isinstance(windows, dict):
        if native.keys() != windows.keys():
            yield f"{place}: keys {sorted(native)} and {sorted(windows)}"
        for key in native.keys() & windows.keys() - OF_THE_MACHINE:
            yield from differences(native[key], windows[key], f"{place}/{key}")
    elif isinstance(native, list) and isinstance(windows, list) and len(native) == len(windows):
        for i, (one, other) in enumerate(zip(native, windows)):
            yield from differences(one, other, f"{place}/{i}")
    elif repr(native) != repr(windows):
        yield f"{place}: {native!r}, under Windows {windows!r}"


def complaints(native, windows):
    (run, document, logs), (windows_run, windows_document, windows_logs) = native, windows
    if run.returncode != windows_run.returncode:
        yield f"exit code {run.returncode}, under Windows {windows_run.returncode}: {windows_run.stderr}"
    if run.stderr != windows_run.stderr:
        yield f"says {run.stderr!r}, under Windows {windows_run.stderr!r}"
    yield from differences(document, windows_document)
    if logs.keys() != windows_logs.keys():
        yield f"logs {sorted(logs)}, under Windows {sorted(windows_logs)}"
    for name in logs.keys() & windows_logs.keys():
        if logs[name] != windows_logs[name]:
            yield f"{name} differs"
    if "files" in document:
        names = [[pathlib.PureWindowsPath(file).name for file in one["files"]] for one in (document, windows_document)]
        if names[0] != names[1] or len(names[0]) != len(logs):
            yield f"names {names[0]}, under Windows {names[1]}, of the files {sorted(logs)}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("case")
    for name in ("native", "windows", "runner", "data"):
        parser.add_argument(f"--{name}", type=pathlib.Path, required=True)
    options = parser.parse_args()
    arguments, needed = cases(options.data)[options.case]
    for path in filter(None, (options.native, needed)):
        if not path.exists():
            print(f"skipped: {path} is not there")
            return 77
    with tempfile.TemporaryDirectory() as folder:
        native_folder, windows_folder = (pathlib.Path(folder) / name for name in ("native", "windows"))
        native_folder.mkdir()
        windows_folder.mkdir()
        found = list(complaints(result_of([options.native], arguments, native_folder),
                                result_of([options.runner, options.windows], arguments, windows_folder)))
    print("\n".join(found))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
