"""clang_database.py SOURCE SCRATCH PART PARTS: a part of the files of src/, bundled, as clang understands them.

Reading the system's headers takes far more time than our own files do, so files that are compiled alike are included
into one, which is read once. Where two of them can't stand in one file, since both have a helper of the same name, one
goes to another bundle. Writes the bundles and SCRATCH/compile_commands.json, whose entries come from those of the
trees build/fuzz (clang, this system) and, for what is built for Windows alone, build/windows (GCC). Prints the bundles,
one a line.
"""
import json
import os
import shlex
import subprocess
import sys

source, scratch, part, parts = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
BUNDLED = 20
# These make code and warnings, and so don't keep two files from being read together.
NOT_FOR_READING = ("-O", "-W", "-g", "-f")


def compiled(tree):
    with open(os.path.join(source, "build", tree, "compile_commands.json"), encoding="utf-8") as file:
        found = [entry for entry in json.load(file) if entry["file"].startswith(source + "/src/")]
    if not found:
        sys.exit(f"build/{tree} compiles nothing of src/")
    return {entry["file"]: shlex.split(entry["command"]) for entry in found}


def for_clang(words):
    while not os.path.basename(words[0]).startswith("x86_64-w64-mingw32-"):
        words = words[1:]  # a launcher
    folder = subprocess.run([words[0], "-print-file-name=include/c++"], check=True, capture_output=True,
                            text=True).stdout.strip()
    headers = [f"-stdlib++-isystem{folder}"]
    headers += [word for below in ("x86_64-w64-mingw32", "backward") for word in ("-isystem", f"{folder}/{below}")]
    return ["clang++", "--target=x86_64-w64-windows-gnu", *headers, *words[1:]]


def split(words, file):
    """What a file is read with: where headers are looked for, and all else, but for headers precompiled for speed."""
    places, rest = [], []
    words = iter(words)
    for word in words:
        if word == "-isystem":
            places.append((word, next(words)))
        elif word.startswith("-I"):
            places.append((word,))
        elif word in ("-o", "-include", "-Xclang"):
            next(words)
        elif word not in ("-c", file) and not word.startswith(NOT_FOR_READING):
            rest.append(word)
    return places, tuple(rest)


def errors(words, bundle):
    run = subprocess.run([*words, "-w", "-fsyntax-only", "-ferror-limit=0", bundle], check=False, capture_output=True,
                         text=True)
    return [] if run.returncode == 0 else [line for line in run.stderr.splitlines() if "error:" in line]


def write(bundle, files):
    with open(bundle, "w", encoding="utf-8") as file:
        file.writelines(f'#include "{name}"\n' for name in files)


native = compiled("fuzz")
windows = {file: for_clang(words) for file, words in compiled("windows").items() if file not in native}
alike = {}
for file, words in sorted({**native, **windows}.items()):
    places, rest = split(words, file)
    all_places, files = alike.setdefault(rest, ({}, []))
    all_places.update(dict.fromkeys(places))
    files.append(file)

chunks = [([*rest, *(word for place in places for word in place)], files[i:i + BUNDLED])
          for rest, (places, files) in alike.items() for i in range(0, len(files), BUNDLED)]
database = []
for words, files in chunks[part::parts]:
    while files:
        bundle = os.path.join(scratch, f"bundle{len(database)}.cpp")
        refused = []
        write(bundle, files)
        while told := errors(words, bundle):
            if len(files) == 1:
                sys.exit("\n".join(told))
            at = {line.partition(":")[0] for line in told}
            kept = [file for file in files if file not in at]
            if len(kept) in (0, len(files)):  # it can't be told whose fault it is
                kept = files[:len(files) // 2]
            refused += [file for file in files if file not in kept]
            files = kept
            write(bundle, files)
        database.append({"directory": scratch, "file": bundle, "arguments": [*words, "-c", bundle]})
        files = refused
with open(os.path.join(scratch, "compile_commands.json"), "w", encoding="utf-8") as file:
    json.dump(database, file, indent=1)
print("\n".join(entry["file"] for entry in database))
