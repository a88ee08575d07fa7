"""Tells which sentences of the program stand neither in a row of the walk's message boxes nor among those that are
said in another way: boxes.py BOXES OTHERS SOURCE..."""
import re
import sys

ESCAPES = {"n": "\n", "r": "\r", "t": "\t", '"': '"', "\\": "\\", "0": "\0"}
# Comments, then character literals, then runs of string literals: what comes first swallows the others in it.
TOKENS = re.compile(r"""//[^\n]*|/\*.*?\*/|'(?:\\.|[^'\\])+'|((?:"(?:\\.|[^"\\])*"\s*)+)""", re.S)


def texts_of(path):
    """The string literals of a source file, those that follow one another as one."""
    with open(path, encoding="utf-8") as file:
        source = file.read()
    for match in TOKENS.finditer(source):
        if match.group(1) is None:
            continue
        parts = re.findall(r'"((?:\\.|[^"\\])*)"', match.group(1), re.S)
        yield re.sub(r"\\(.)", lambda m: ESCAPES.get(m.group(1), m.group(0)), "".join(parts))


def is_sentence(text):
    return len(text) >= 15 and text.count(" ") >= 2 and re.search(r"[A-Za-z][.?](\s|$)", text) is not None


def main():
    boxes, others, sources = sys.argv[1], sys.argv[2], sys.argv[3:]
    said = "\n".join(texts_of(boxes))
    with open(others, encoding="utf-8") as file:
        elsewhere = {line.rstrip("\n") for line in file if not line.startswith("#")}
    found, missing = set(), []
    for source in sources:
        for text in texts_of(source):
            if not is_sentence(text):
                continue
            found.add(text)
            if text.strip() not in said and text not in elsewhere:
                missing.append(f"{source}: {text}")
    stale = sorted(elsewhere - found - {""})
    for line in missing:
        print("neither a box of the walk nor said in another way:", line)
    for line in stale:
        print("said nowhere any more:", line)
    return 1 if missing or stale or not found else 0


sys.exit(main())
