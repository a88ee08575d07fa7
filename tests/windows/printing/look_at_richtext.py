"""look_at_richtext.py FOLDER: reads the rich text that printing_test.exe has kept, with unrtf.

NAME.runs says what it should hold: records ended by the byte 30, each of points, bold, colour and text, with tabs
between them. Compared are all characters but blanks, each with its weight and colour, in their order. unrtf says
nothing of a size that comes after another; the system's own reader is asked for these.
"""
import html
import html.parser
import pathlib
import subprocess
import sys

# Three signs that unrtf's own table for HTML gives by wrong names: of the zodiac as angle brackets, the sharp of music
# as a suit of cards. Each has to come out as itself or as just that.
MISTAKEN = {"\u2649": html.unescape("&lang;"), "\u264A": html.unescape("&rang;"), "\u266F": html.unescape("&diams;")}


class Reader(html.parser.HTMLParser):
    """Collects (character, bold, colour)."""

    def __init__(self):
        super().__init__(convert_charrefs=False)
        self.styles = [{"bold": False, "colour": "#000000"}]
        self.tags = []
        self.characters = []
        self.high = None
        self.in_body = False

    def handle_starttag(self, tag, attributes):
        if tag == "body":
            self.in_body = True
        if tag in ("br", "img", "meta", "hr"):
            return
        style = dict(self.styles[-1])
        for name, value in attributes:
            if tag == "font" and name == "color":
                style["colour"] = value
        if tag == "b":
            style["bold"] = True
        self.tags.append(tag)
        self.styles.append(style)

    def handle_endtag(self, tag):
        if tag in ("br", "img", "meta", "hr"):
            return
        # A cell that ends closes what was opened in it.
        if tag not in self.tags:
            return
        while self.tags:
            self.styles.pop()
            if self.tags.pop() == tag:
                return

    def put(self, unit):
        if 0xD800 <= unit < 0xDC00:
            self.high = unit
            return
        if 0xDC00 <= unit < 0xE000 and self.high is not None:
            unit = 0x10000 + ((self.high - 0xD800) << 10) + (unit - 0xDC00)
            self.high = None
        style = self.styles[-1]
        if self.in_body and chr(unit) not in " \n\t\r":
            self.characters.append((chr(unit), style["bold"], style["colour"]))

    def handle_data(self, data):
        for character in data:
            self.put(ord(character))

    def handle_entityref(self, name):
        self.handle_data(html.unescape(f"&{name};"))

    def handle_charref(self, name):
        self.put(int(name[1:], 16) if name[0] in "xX" else int(name))


def expected(path):
    characters = []
    for record in path.read_bytes().decode("utf-8").split("\x1e")[:-1]:
        _, bold, colour, text = record.split("\t", 3)
        characters += [(c, bold == "1", colour) for c in text if c not in " \n\t\r"]
    return characters


def main(folder):
    failed = False
    folder = folder.resolve()
    paths = sorted(folder.glob("*.runs"))
    if not paths:
        print("FAILED: nothing was kept")
        return 1
    for path in paths:
        reader = Reader()
        reader.feed(subprocess.run(["unrtf", "--html", "--nopict", str(path.with_suffix(".rtf"))], check=True,
                                   capture_output=True, cwd=folder).stdout.decode("utf-8", "surrogatepass"))
        wanted = expected(path)
        wrong = next((i for i, (read, right) in enumerate(zip(reader.characters, wanted))
                      if read not in (right, (MISTAKEN.get(right[0]), *right[1:]))), None)
        if wrong is None and len(reader.characters) != len(wanted):
            wrong = min(len(reader.characters), len(wanted))
        if wrong is not None:
            failed = True
            print(f"FAILED: {path.stem}, character {wrong} of {len(wanted)}: read "
                  f"{reader.characters[wrong:wrong + 12]}, wanted {wanted[wrong:wrong + 12]}")
        else:
            print(f"{path.stem}: {len(wanted)} characters as they should be")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main(pathlib.Path(sys.argv[1])))
