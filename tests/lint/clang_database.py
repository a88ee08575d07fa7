"""clang_database.py SOURCE SCRATCH: the compile commands of all files of src/ as clang understands them.

Writes SCRATCH/compile_commands.json from those of the trees build/fuzz (clang, this system) and, for what is
built for Windows alone, build/windows (GCC), and prints the files, one a line.
"""
import json
import os
import shlex
import subprocess
import sys

source, scratch = sys.argv[1:]


def entries(tree):
    with open(os.path.join(source, "build", tree, "compile_commands.json"), encoding="utf-8") as file:
        found = [entry for entry in json.load(file) if entry["file"].startswith(source + "/src/")]
    if not found:
        sys.exit(f"build/{tree} compiles nothing of src/")
    return {entry["file"]: entry for entry in found}


def for_clang(entry):
    words = shlex.split(entry["command"])
    while not os.path.basename(words[0]).startswith("x86_64-w64-mingw32-"):
        words.pop(0)  # a launcher
    folder = subprocess.run([words[0], "-print-file-name=include/c++"], check=True, capture_output=True,
                            text=True).stdout.strip()
    headers = [f"-stdlib++-isystem{folder}"]
    headers += [word for part in ("x86_64-w64-mingw32", "backward") for word in ("-isystem", f"{folder}/{part}")]
    # Warnings are GCC's, which knows options that clang doesn't.
    options = [word for word in words[1:] if not word.startswith("-W")]
    command = ["clang++", "--target=x86_64-w64-windows-gnu", *headers, *options]
    return {"directory": entry["directory"], "file": entry["file"], "arguments": command}


native = entries("fuzz")
windows = {file: for_clang(entry) for file, entry in entries("windows").items() if file not in native}
database = {**native, **windows}
os.makedirs(scratch, exist_ok=True)
with open(os.path.join(scratch, "compile_commands.json"), "w", encoding="utf-8") as file:
    json.dump([database[name] for name in sorted(database)], file, indent=1)
print("\n".join(sorted(database)))
