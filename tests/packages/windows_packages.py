#!/usr/bin/env python3
"""windows_packages.py SOURCE BUILD PACKAGES: proves what is in the packages for Windows, and that the manifests tell
version, addresses and checksums of those very files."""

import hashlib
import json
import pathlib
import re
import sys
import zipfile

sys.path.insert(0, str(pathlib.Path(sys.argv[1]) / "tests/programs"))
import pe  # noqa: E402

SOURCE, BUILD, PACKAGES = map(pathlib.Path, sys.argv[1:])
PROGRAMS = {"Zeroquill.exe": "src", "ZQExMan.exe": "src", "zqwipe.exe": "src/cli"}
TEXTS = {"LICENSE": "LICENSE", "CLI11-LICENSE.txt": "src/cli/CLI11-LICENSE.txt",
         "Zeroquill.chm": "resources/help/Zeroquill.chm"}

failures = []


def expect(condition, complaint):
    if not condition:
        failures.append(complaint)


def digest(name):
    return hashlib.sha256((PACKAGES / name).read_bytes()).hexdigest()


header = (SOURCE / "resources/version.h").read_text()
version = re.search(r'ZQ_VERSION_TEXT "(.*)"', header)[1]
numbers = [int(number) for number in re.search(r"ZQ_VERSION_NUMBERS (.*)", header)[1].split(",")]
portable, setup = f"Zeroquill-{version}-portable.zip", f"Zeroquill-{version}-setup.exe"
symbols = f"Zeroquill-{version}-symbols.zip"
expect(sorted(path.name for path in PACKAGES.iterdir()) == sorted([portable, setup, symbols, "scoop", "winget"]),
       f"packages: {sorted(path.name for path in PACKAGES.iterdir())}")

with zipfile.ZipFile(PACKAGES / portable) as archive:
    names = {name for name in archive.namelist() if not name.endswith("/")}
    expect(names == {f"Zeroquill/{name}" for name in [*PROGRAMS, *TEXTS]}, f"{portable} holds {sorted(names)}")
    for name, folder in PROGRAMS.items():
        expect(archive.read(f"Zeroquill/{name}") == (BUILD / folder / name).read_bytes(), f"{name} is another one")
    for name, path in TEXTS.items():
        expect(archive.read(f"Zeroquill/{name}") == (SOURCE / path).read_bytes(), f"{name} is another one")
with zipfile.ZipFile(PACKAGES / symbols) as archive:
    expect(sorted(archive.namelist()) == sorted(f"{pathlib.Path(name).stem}.debug" for name in PROGRAMS),
           f"{symbols} holds {archive.namelist()}")

installer = pe.Program(PACKAGES / setup)
expect(pe.fixed_version(installer.resources(pe.RT_VERSION)[0][1]) == (numbers, numbers), "the installer's version")
expect(b'level="asInvoker"' in installer.resources(pe.RT_MANIFEST)[0][1], "the installer asks for elevation")
for bit in (0x0020, 0x0040, 0x0100):
    expect(installer.protections & bit, f"the installer lacks the protection {bit:#x}")

winget = {path.name: path.read_text() for path in (PACKAGES / "winget").iterdir()}
package = "Zeroquill.Zeroquill"
expect(sorted(winget) == sorted(f"{package}{kind}.yaml" for kind in ("", ".installer", ".locale.en-US")),
       f"winget: {sorted(winget)}")
for name, text in winget.items():
    fields = dict(line.strip().split(": ", 1) for line in text.splitlines() if ": " in line)
    expect(fields["PackageIdentifier"] == package, f"{name}: {fields['PackageIdentifier']}")
    expect(fields["PackageVersion"] == f'"{version}"', f"{name}: {fields['PackageVersion']}")
    expect(fields["ManifestVersion"] == "1.6.0", f"{name}: {fields['ManifestVersion']}")
    if name == f"{package}.installer.yaml":
        expect(fields["InstallerUrl"] == f"https://example.org/files/{setup}", f"winget: {fields['InstallerUrl']}")
        expect(fields["InstallerSha256"] == digest(setup).upper(), "winget has another installer's checksum")
        expect(fields["InstallerType"] == "nullsoft" and fields["Scope"] == "user", "winget runs it otherwise")

scoop = json.loads((PACKAGES / "scoop/zeroquill.json").read_text())
archive = scoop["architecture"]["64bit"]
expect(scoop["version"] == version, f"scoop: {scoop['version']}")
expect(archive["url"] == f"https://example.org/files/{portable}", f"scoop: {archive['url']}")
expect(archive["hash"] == digest(portable), "scoop has another archive's checksum")
expect(archive["extract_dir"] == "Zeroquill" and scoop["bin"] in PROGRAMS, "scoop looks for other names")

for failure in failures:
    print(failure)
for name in (portable, setup, symbols):
    print(f"{name}: {(PACKAGES / name).stat().st_size} bytes")
sys.exit(1 if failures else 0)
