#!/usr/bin/env python3
"""program_test.py SOURCE PROGRAM.exe window|console: proves of a release's program what Windows is told about it
before it runs: its protections, its manifest, its version, its size; and that its symbols lie beside it."""

import pathlib
import re
import struct
import sys
import xml.etree.ElementTree
import zlib

import pe

SOURCE, PATH, KIND = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2]), sys.argv[3]
LARGEST = 2_200_000

failures = []


def expect(condition, complaint):
    if not condition:
        failures.append(complaint)


def headers(program):
    expect(program.machine == 0x8664 and program.magic == 0x20B, "it is no 64-bit program")
    expect(program.subsystem == {"window": 2, "console": 3}[KIND], f"its subsystem is {program.subsystem}")
    for bit, meaning in ((0x0040, "is loaded anywhere (DYNAMIC_BASE)"), (0x0020, "in all of 64 bits (HIGH_ENTROPY_VA)"),
                         (0x0100, "runs no data (NX_COMPAT)"), (0x8000, "knows servers of desktops (TERMINAL_SERVER_AWARE)")):
        expect(program.protections & bit, f"its header doesn't say that it {meaning}")
    expect(not program.characteristics & 0x0001, "its relocations are stripped, so that it can't be moved")
    expect(program.characteristics & 0x0020, "it is not aware of large addresses")
    expect(program.image_base >= 1 << 32, f"its base {program.image_base:#x} lies low")
    address, size = program.directories[5]
    expect(address and size > 8, "it has no relocations")
    expect(program.time == 0, "the time of its linking is in it")


def sections(program):
    executable = [section.name for section in program.sections if section.flags & pe.EXECUTE]
    expect(executable == [".text"], f"sections that run: {executable}")
    for section in program.sections:
        expect(not (section.flags & pe.EXECUTE and section.flags & pe.WRITE), f"{section.name} can be written and run")
        expect(not section.flags & pe.SHARED, f"{section.name} is shared by processes")
        expect(not section.name.startswith(".debug"), f"{section.name} belongs into the file of symbols")


def imports(program):
    libraries = program.imports()
    kernel = libraries.get("kernel32.dll", [])
    expect("ExitProcess" in kernel or "GetLastError" in kernel, "its imports could not be read")
    expect("SetDefaultDllDirectories" in kernel, "it doesn't limit the search for libraries (SetDefaultDllDirectories)")
    strange = [name for name in libraries if re.match(r"lib|.*(gcc|stdc\+\+|pthread|ssp)", name)]
    expect(not strange, f"it needs libraries that Windows hasn't: {strange}")


def manifest(program, version):
    found = program.resources(pe.RT_MANIFEST)
    expect([name for name, _ in found] == [1], f"manifests: {[name for name, _ in found]}")
    root = xml.etree.ElementTree.fromstring(found[0][1])

    def texts(name):
        return [element.text for element in root.iter() if element.tag.rpartition("}")[2] == name]

    def attributes(name, attribute):
        return [element.get(attribute) for element in root.iter() if element.tag.rpartition("}")[2] == name]

    expect(texts("activeCodePage") == ["UTF-8"], "its code page isn't UTF-8")
    expect(texts("longPathAware") == ["true"], "it is not aware of long paths")
    expect(attributes("requestedExecutionLevel", "level") == ["asInvoker"], "it asks for other rights than its caller's")
    expect(attributes("requestedExecutionLevel", "uiAccess") == ["false"], "it asks for access to other windows")
    expect(attributes("supportedOS", "Id") == ["{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}"], "it doesn't name Windows 10")
    identity = root.find("{urn:schemas-microsoft-com:asm.v1}assemblyIdentity")
    expect(identity.get("version") == ".".join(map(str, version)), f"its manifest says version {identity.get('version')}")
    if KIND == "window":
        # Version 2, then version 1, and on what knows neither word the older element: per monitor since 8.1.
        expect(texts("dpiAwareness") == ["PerMonitorV2, PerMonitor"], f"dpiAwareness: {texts('dpiAwareness')}")
        expect(texts("dpiAware") == ["true/pm"], f"dpiAware: {texts('dpiAware')}")
        controls = [element.get("version") for element in root.iter("{urn:schemas-microsoft-com:asm.v1}assemblyIdentity")
                    if element.get("name") == "Microsoft.Windows.Common-Controls"]
        expect(controls == ["6.0.0.0"], f"common controls: {controls}")


def version_resource(program, version):
    found = program.resources(pe.RT_VERSION)
    expect(len(found) == 1, f"{len(found)} version resources")
    expect(pe.fixed_version(found[0][1]) == (version, version), f"its version is {pe.fixed_version(found[0][1])}")
    for text in ("FileDescription", "ProductName", "CompanyName", "LegalCopyright", PATH.name):
        expect(text.encode("utf-16-le") in found[0][1], f"its properties don't tell {text}")


def symbols(program):
    expect(program.symbol_count == 0, "it carries its symbols")
    link = program.section(".gnu_debuglink")
    expect(link is not None, "it doesn't know where its symbols are")
    name = link[:link.index(b"\0")].decode()
    expect(name == f"{PATH.stem}.debug", f"its symbols are said to be in {name}")
    beside = PATH.with_name(f"{PATH.stem}.debug")
    expect(struct.unpack("<I", link[-4:])[0] == zlib.crc32(beside.read_bytes()), f"{beside.name} is another program's")
    expect({"window": "WinMain", "console": "main"}[KIND] in pe.Program(beside).symbols(), f"{beside.name} is empty")


def counters(path):
    """What debug builds tell of themselves to who asks is not in here."""
    header = (SOURCE / "src/debug/CountersWindow_win32.h").read_text()
    name = re.search(r'kCountersClass\[\] = L"(\w+)"', header)[1]
    expect(name.encode("utf-16-le") not in path.read_bytes(), f"it has the window {name} of debug builds")


numbers = re.search(r"ZQ_VERSION_NUMBERS (.*)", (SOURCE / "resources/version.h").read_text())[1]
version = [int(number) for number in numbers.split(",")]
program = pe.Program(PATH)
headers(program)
sections(program)
imports(program)
manifest(program, version)
version_resource(program, version)
symbols(program)
counters(PATH)
size = PATH.stat().st_size
expect(size < LARGEST, f"it has {size} bytes, more than {LARGEST}")

for failure in failures:
    print(f"{PATH.name}: {failure}")
print(f"{PATH.name}: {size} bytes")
sys.exit(1 if failures else 0)
