"""The Debian package: what it says of itself, and that it works where nothing of the build is."""

import gzip
import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

VERSION = os.environ["TOF_VERSION"]
(PACKAGE,) = pathlib.Path(os.environ["TOF_PACKAGE_FOLDER"]).glob(f"tofcal_{VERSION}_*.deb")
FILES = {
    "usr/bin/tofcal",
    "usr/share/bash-completion/completions/tofcal",
    "usr/share/doc/tofcal/changelog.gz",
    "usr/share/doc/tofcal/copyright",
    "usr/share/man/man1/tofcal.1.gz",
}


def output_of(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, check=True, **options).stdout


class DebianPackage(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name) / "root"
        self.home = pathlib.Path(folder.name) / "home"
        self.home.mkdir()

    def dpkg(self, *arguments):
        """dpkg on a system of its own, which knows what is installed on this one. fakeroot stands in for
        the rights to own files; small containers are set up to leave out documents, which are wanted here."""
        return subprocess.run(
            ["fakeroot", "dpkg", "--root", self.root, "--force-not-root", "--log=/dev/null", "--path-include=*",
             *arguments],
            capture_output=True, text=True, check=False)

    def install(self):
        state = self.root / "var/lib/dpkg"
        for name in ("info", "updates", "triggers"):
            (state / name).mkdir(parents=True)
        shutil.copy("/var/lib/dpkg/status", state)
        answer = self.dpkg("--install", PACKAGE)
        self.assertEqual(answer.returncode, 0, answer.stderr)

    def installed_files(self):
        return {str(path.relative_to(self.root)) for path in (self.root / "usr").rglob("*") if path.is_file()}

    def tofcal(self, *arguments):
        """The installed program, in an empty home, with a plain environment."""
        return subprocess.run([self.root / "usr/bin/tofcal", *arguments], cwd=self.home, env={"PATH": "/usr/bin:/bin"},
                              capture_output=True, text=True, check=False)

    def field(self, name):
        return output_of("dpkg-deb", "--field", PACKAGE, name).strip()

    def test_names_itself_and_its_version(self):
        self.assertEqual(self.field("Package"), "tofcal")
        self.assertEqual(self.field("Version"), VERSION)
        self.assertEqual(self.field("Architecture"), output_of("dpkg", "--print-architecture").strip())

    def test_depends_on_the_libraries_that_the_program_is_linked_to(self):
        depended = {part.split()[0] for part in self.field("Depends").split(", ")}
        self.install()
        program = self.root / "usr/bin/tofcal"
        needed = {line.split()[1] for line in output_of("objdump", "-p", program).splitlines() if " NEEDED " in line}
        # The answer of ldd is "name => path (address)", of what those need as well; dpkg says whose the file is.
        lines = [line.split() for line in output_of("ldd", program).splitlines()]
        linked = [line[2] for line in lines if "=>" in line and line[0] in needed]
        owners = set()
        for path in linked:
            for known in (path, path.removeprefix("/usr"), os.path.realpath(path)):
                answer = subprocess.run(["dpkg-query", "--search", known], capture_output=True, text=True, check=False)
                if answer.returncode == 0:
                    owners.add(answer.stdout.split(":")[0])
                    break
        self.assertEqual(depended, owners)

    def test_installs_these_files_and_removes_them_again(self):
        self.install()
        self.assertEqual(self.installed_files(), FILES)
        self.assertIn("install ok installed", self.dpkg("--status", "tofcal").stdout)
        answer = self.dpkg("--remove", "tofcal")
        self.assertEqual(answer.returncode, 0, answer.stderr)
        self.assertEqual(self.installed_files(), set())

    def test_calibrates_where_it_is_installed(self):
        self.install()
        self.assertEqual(self.tofcal("--version").stdout, f"tofcal {VERSION}\n")
        answer = self.tofcal("calibrate", "--suppress-aic", "--json", "-")
        self.assertEqual((answer.returncode, answer.stderr), (0, ""))
        self.assertTrue(json.loads(answer.stdout)["ok"])
        self.assertTrue(list((self.home / "Logfiles").glob("CalibrationLog_*.txt")))

    def test_brings_a_change_log_that_begins_with_its_version(self):
        self.install()
        change_log = self.home / "changelog"
        change_log.write_bytes(gzip.decompress((self.root / "usr/share/doc/tofcal/changelog.gz").read_bytes()))
        parsed = output_of("dpkg-parsechangelog", "--file", change_log)
        self.assertIn(f"\nVersion: {VERSION}\n", parsed)
        self.assertIn(f"\nMaintainer: {self.field('Maintainer')}\n", parsed)

    def test_files_belong_to_the_system_and_others_may_read_them(self):
        for line in output_of("dpkg-deb", "--contents", PACKAGE).splitlines():
            mode, owner = line.split()[:2]
            self.assertEqual(owner, "root/root", line)
            self.assertIn(mode, ("drwxr-xr-x", "-rwxr-xr-x", "-rw-r--r--"), line)
