#!/usr/bin/env python3
"""Makes the installer by wixl: the files with their folders, and the registry values of the classes as
registering the DLLs writes them. The same files give the same installer, byte for byte.

usage: make_installer.py --version VERSION --source FOLDER --build FOLDER --runner RUNNER OUTPUT.msi
  --source: the project; --build: its Windows build; --runner: runs programs of Windows
wixl's input stays in the folder "installer" of the build.
"""

import argparse
import hashlib
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import uuid
import xml.etree.ElementTree as ElementTree

PRODUCT = "TofCalibrator"
FILE_TIME = 1704067200  # 2024-01-01, of all installed files and of the installer
FILETIME_OF_1970 = 116444736000000000  # in units of 100 ns since 1601
VT_FILETIME = struct.pack("<I", 64)
# Never changed: by it a newer installer finds the older installation.
UPGRADE_CODE = uuid.UUID("7cb17a94-9d2f-4a0a-8c46-3f1d6d0a9b52")
SERVERS = ["vorntofcaliblib.dll", "vorninstrument.dll"]
PROGRAMS = ["vorntofDirectFWComm.dll", "tofcal.exe"]
# Takes the identities of a real instrument's software: installed only where it is asked for.
STAND_IN = ["vorninstrument.dll", "vorntofDirectFWComm.dll"]
INTERFACES = ["vorntofcaliblib", "vorninstrument", "vorninstrumentcontrol", "vornmasstime"]


def files_of(source, build):
    """(folder below the installation's, file) of everything that is installed."""
    for name in SERVERS + PROGRAMS:
        yield "", build / name
    for name in INTERFACES:
        yield "interfaces", source / f"hosts/com/idl/{name}.idl"
        yield "interfaces", build / f"idl/{name}.tlb"
        yield "interfaces", build / f"idl/{name}.h"
    yield "interfaces", source / "hosts/com/idl/vorntof_direct_fw_comm.h"
    for file in sorted((source / "examples/windows").iterdir()):
        yield "examples", file
    yield "examples", source / "examples/virtual.xml"
    for file in sorted((source / "examples/recorded").glob("*.xml")):
        yield r"examples\recorded", file
    for file in sorted((source / "docs").glob("*.md")):
        yield "documentation", file


def identity(name):
    """The same for the same name, in every version."""
    return str(uuid.uuid5(UPGRADE_CODE, name)).upper()


def identifier(text):
    return "_" + re.sub(r"[^A-Za-z0-9_.]", "_", text)


def registered_values(runner, build, server):
    """(key, name, text) of each value, with the place of the installation for that of the build."""
    answer = subprocess.run([runner, build / "registered_values.exe", server], cwd=build,
                            capture_output=True, check=False)
    if answer.returncode != 0:
        sys.exit(f"{server}: {answer.stderr.decode()}")
    lines = [line.split("\t") for line in answer.stdout.decode("utf-8").splitlines()]
    paths = {text for key, name, text in lines if key.endswith("\\InprocServer32") and not name}
    if len(paths) != 1:
        sys.exit(f"{server}: its classes are in {sorted(paths)}; expected one file")
    folder = paths.pop().removesuffix(server)
    for key, name, text in lines:
        if text.startswith(folder):
            text = "[INSTALLDIR]" + text.removeprefix(folder)
        yield key, name, "[INSTALLDIR]" if text + "\\" == folder else text


def staged(folder, file, work):
    """A copy for wixl, which takes relative paths alone, of always the same age: the same bytes again."""
    copy = work / "files" / folder.replace("\\", "/") / file.name
    copy.parent.mkdir(parents=True, exist_ok=True)
    shutil.copyfile(file, copy)
    os.utime(copy, (FILE_TIME, FILE_TIME))
    return copy.relative_to(work)


def add_component(directory, folder, file, work):
    name = f"{folder}\\{file.name}".lstrip("\\")
    component = ElementTree.SubElement(directory, "Component", Id=identifier("c_" + name), Guid=identity(name), Win64="yes")
    ElementTree.SubElement(component, "File", Id=identifier("f_" + name), Name=file.name,
                          Source=str(staged(folder, file, work)), KeyPath="yes")
    return component


def add_values(component, values):
    for key, name, text in values:
        attributes = {"Root": "HKCR", "Key": key, "Type": "string", "Value": text}
        if name:
            attributes["Name"] = name
        ElementTree.SubElement(component, "RegistryValue", attributes)


class Folders:
    """The directories of the installation, made when the first file needs them."""

    def __init__(self, root):
        self.made = {"": root}

    def at(self, folder):
        if folder not in self.made:
            above, _, name = folder.rpartition("\\")
            self.made[folder] = ElementTree.SubElement(self.at(above), "Directory", Id=identifier("d_" + folder), Name=name)
        return self.made[folder]


def source_of(options, work):
    wix = ElementTree.Element("Wix", xmlns="http://schemas.microsoft.com/wix/2006/wi")
    product = ElementTree.SubElement(
        wix, "Product", Id=identity("product " + options.version), Name=PRODUCT, Language="1033", Version=options.version,
        UpgradeCode=str(UPGRADE_CODE).upper(), Manufacturer=PRODUCT)
    ElementTree.SubElement(
        product, "Package", InstallerVersion="200", Compressed="yes",
        InstallScope="perMachine", Description="Calibrates the mass axis of a time-of-flight mass spectrometer",
        Manufacturer=PRODUCT)
    ElementTree.SubElement(product, "Media", Id="1", Cabinet="files.cab", EmbedCab="yes")
    ElementTree.SubElement(product, "MajorUpgrade", DowngradeErrorMessage="A newer version is installed.")
    top = ElementTree.SubElement(product, "Directory", Id="TARGETDIR", Name="SourceDir")
    program_files = ElementTree.SubElement(top, "Directory", Id="ProgramFiles64Folder")
    folders = Folders(ElementTree.SubElement(program_files, "Directory", Id="INSTALLDIR", Name=PRODUCT))
    calibrator = ElementTree.SubElement(product, "Feature", Id="Calibrator", Level="1", Title="Calibrator and tofcal")
    stand_in = ElementTree.SubElement(
        product, "Feature", Id="StandInInstrument", Level="2", Title="Stand-in for the instrument's software")
    for folder, file in files_of(options.source, options.build):
        component = add_component(folders.at(folder), folder, file, work)
        if file.name in SERVERS:
            add_values(component, registered_values(options.runner, options.build, file.name))
        feature = stand_in if file.name in STAND_IN else calibrator
        ElementTree.SubElement(feature, "ComponentRef", Id=component.get("Id"))
    return wix


def run(command, folder):
    answer = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False)
    if answer.returncode != 0:
        sys.exit(answer.stdout + answer.stderr)
    return answer.stdout


def make_repeatable(installer, work):
    """Puts a name made from the content for wixl's random one, and a fixed time for that of the run."""
    summary = run(["msiinfo", "suminfo", installer], work)
    name = re.search(r"\{[0-9A-F-]{36}\}", summary)[0].encode("ascii")
    content = installer.read_bytes()
    start = content.index(name)
    digest = hashlib.sha256()
    for file in [work / "source.wxs", *sorted((work / "files").rglob("*.*"))]:
        digest.update(file.read_bytes())
    content = content.replace(name, f"{{{identity(digest.hexdigest())}}}".encode("ascii"))
    time = struct.pack("<Q", FILETIME_OF_1970 + FILE_TIME * 10_000_000)
    # The summary is a stream of some hundred bytes.
    beginning, stream, rest = content[:start], content[start:start + 4096], content[start + 4096:]
    stream = re.sub(VT_FILETIME + b"(?s:.{8})", lambda _: VT_FILETIME + time, stream)
    installer.write_bytes(beginning + stream + rest)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--version", required=True)
    for name in ("--source", "--build", "--runner"):
        parser.add_argument(name, type=pathlib.Path, required=True)
    parser.add_argument("output", type=pathlib.Path)
    options = parser.parse_args()
    work = options.output.parent / "installer"
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir()
    tree = ElementTree.ElementTree(source_of(options, work))
    ElementTree.indent(tree)
    tree.write(work / "source.wxs", encoding="utf-8", xml_declaration=True)
    run(["wixl", "--arch", "x64", "--output", options.output, "source.wxs"], work)
    make_repeatable(options.output, work)


if __name__ == "__main__":
    main()
