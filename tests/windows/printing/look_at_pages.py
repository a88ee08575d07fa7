"""look_at_pages.py FOLDER: looks at the pages that printing_test.exe has printed.
look_at_pages.py --text FILE TEXT: whether a PostScript or PDF file has the text of TEXT on the same pages.

Ghostscript turns each NAME.ps of the folder into pictures and text. NAME.txt says what text each page has,
NAME-screen-DPI-PAGE.png how the preview draws a page.
"""
import pathlib
import re
import subprocess
import sys
import unicodedata

WHITE, BLACK = (255, 255, 255), (0, 0, 0)
failures = []


def expect(condition, what):
    if not condition:
        failures.append(what)
        print("FAILED:", what)


class Picture:
    """Of a portable pixmap: rows of (red, green, blue)."""

    def __init__(self, data):
        fields = re.match(rb"P6\s+(?:#[^\n]*\n\s*)*(\d+)\s+(\d+)\s+255\s", data)
        self.width, self.height = int(fields[1]), int(fields[2])
        self.bytes = data[fields.end():]

    def row(self, y):
        start = 3 * self.width * y
        return self.bytes[start:start + 3 * self.width]

    def colours(self, top=0, bottom=None):
        """The set of all colours of some rows."""
        found = set()
        for y in range(top, self.height if bottom is None else bottom):
            row = self.row(y)
            if row.count(b"\xff") == len(row):
                continue
            found.update(zip(row[0::3], row[1::3], row[2::3]))
        return found

    def grey(self):
        return [[255 - row[3 * x + 1] for x in range(self.width)]
                for row in map(self.row, range(self.height))]


def ghostscript(*arguments):
    return subprocess.run(["gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", *arguments],
                          check=True, capture_output=True).stdout


def pages_of(postscript, dpi, smooth=False):
    bits = ["-dTextAlphaBits=4", "-dGraphicsAlphaBits=4"] if smooth else []
    stream = ghostscript("-sDEVICE=ppmraw", f"-r{dpi}", *bits, "-sOutputFile=-", str(postscript))
    pictures = []
    while stream:
        picture = Picture(stream)
        size = 3 * picture.width * picture.height
        picture.bytes, stream = picture.bytes[:size], picture.bytes[size:]
        pictures.append(picture)
    return pictures


def words(text):
    """Without blanks, which a page has none of, and without the signs that the tests' font lacks."""
    return "".join(c for c in unicodedata.normalize("NFC", text)
                   if unicodedata.category(c)[0] not in "ZC" and not "\u4e00" <= c <= "\u9fff" and c != "\ufffd")


def check_each_page(document, text):
    expected = [words(page) for page in text.read_text("utf-8").split("\f")[:-1]]
    count = len(pages_of(document, 10))
    expect(count == len(expected), f"{document.name}: {count} pages, {len(expected)} wanted")
    for number, wanted in enumerate(expected, 1):
        page = words(ghostscript("-sDEVICE=txtwrite", f"-dFirstPage={number}", f"-dLastPage={number}",
                                 "-sOutputFile=-", str(document)).decode())
        expect(page == wanted, f"{document.name}: page {number} has another text:\n{page}\nwanted\n{wanted}")
    print(f"{document.name}: {count} pages compared")


def check_text(folder, name, numbers):
    """The printed pages hold the text of the pages of these numbers, in that order."""
    expected = (folder / f"{name}.txt").read_text("utf-8").split("\f")[:-1]
    if numbers is None:
        numbers = range(1, len(expected) + 1)
    printed = ghostscript("-sDEVICE=txtwrite", "-sOutputFile=-", str(folder / f"{name}.ps")).decode()
    count = len(pages_of(folder / f"{name}.ps", 10))
    expect(count == len(numbers), f"{name}: {count} pages, {len(numbers)} wanted")
    wanted = "".join(words(expected[number - 1]) for number in numbers)
    expect(words(printed) == wanted, f"{name}: the text is not that of the pages {list(numbers)}:\n{printed}")


def long_lines(picture):
    """(left, right) in pixels of the black lines in a row that are longer than six inches in eight and a half."""
    found = set()
    for y in range(picture.height):
        row = picture.row(y)
        for match in re.finditer(rb"(?:\0\0\0){%d,}" % (picture.width * 6 // 9), row):
            found.add((match.start() // 3, match.end() // 3))
    return found


def check_headings(name, page, dpi):
    lines = long_lines(page)
    expect(lines, f"{name}: no lines around the headings")
    for left, right in lines:
        expect(abs(left - dpi) <= 2 and abs(right - 7.5 * dpi) <= 2,
               f"{name}: a heading goes from {left / dpi:.3f} to {right / dpi:.3f} inches, 1 to 7.5 wanted")


def check_logo(name, page, dpi, colours):
    """It begins at 1 and 0.3 inches and is 3.125 by 0.625 large."""
    ink = [(x, y) for y in range(int(0.95 * dpi)) for x, value in enumerate(zip(*[iter(page.row(y))] * 3))
           if max(value) < 200 or max(value) - min(value) > 100]
    expect(ink, f"{name}: no logo")
    if not ink:
        return
    left, right = min(x for x, _ in ink) / dpi, max(x for x, _ in ink) / dpi
    top, bottom = min(y for _, y in ink) / dpi, max(y for _, y in ink) / dpi
    expect(1 <= left <= 1.2 and 3.2 <= right <= 4.125 and 0.3 <= top <= 0.45 and 0.75 <= bottom <= 0.925,
           f"{name}: the logo is at {left:.2f}..{right:.2f}, {top:.2f}..{bottom:.2f} inches")
    orange = any(r > 180 and g < 130 and b < 100 for r, g, b in page.colours(0, int(0.95 * dpi)))
    expect(orange == colours, f"{name}: the logo has {'no ' if colours else ''}colours")


def likeness(one, other):
    """How alike two pictures' ink is spread, 1 at most: the correlation over fields of 6 pixels a side."""
    field = 6
    width, height = min(one.width, other.width) // field, min(one.height, other.height) // field
    sums = []
    for picture in (one, other):
        grey = picture.grey()
        sums.append([sum(sum(row[x * field:(x + 1) * field]) for row in grey[y * field:(y + 1) * field])
                     for y in range(height) for x in range(width)])
    means = [sum(values) / len(values) for values in sums]
    first, second = ([value - mean for value in values] for values, mean in zip(sums, means))
    product = sum(a * b for a, b in zip(first, second))
    return product / (sum(a * a for a in first) * sum(b * b for b in second)) ** 0.5


def check_screen(folder, name):
    pictures = sorted(folder.glob(f"{name}-screen-*.png"))
    expect(pictures, f"{name}: no picture of the screen")
    for path in pictures:
        dpi, number = map(int, re.search(r"-(\d+)-(\d+)\.png$", path.name).groups())
        screen = Picture(subprocess.run(["convert", str(path), "-depth", "8", "ppm:-"], check=True,
                                        capture_output=True).stdout)
        paper = pages_of(folder / f"{name}.ps", dpi, smooth=True)[number - 1]
        expect(abs(screen.width - paper.width) <= 2 and abs(screen.height - paper.height) <= 2,
               f"{path.name}: the paper has another size")
        alike = likeness(screen, paper)
        print(f"{path.name}: likeness to the printed page {alike:.3f}")
        expect(alike > 0.9, f"{path.name}: the printed page looks otherwise, likeness {alike:.3f}")


def main(folder):
    for name in ("a4", "letter", "scripts"):
        check_text(folder, name, None)
        check_screen(folder, name)
        dpi = 150
        first = pages_of(folder / f"{name}.ps", dpi)[0]
        check_headings(name, first, dpi)
        check_logo(name, first, dpi, True)
        below = first.colours(int(0.95 * dpi))
        expect((0, 0, 255) in below, f"{name}: no blue heading")
        if name == "scripts":
            expect((255, 0, 0) in below, f"{name}: no red heading")
    for name, size in (("a4", (595, 842)), ("letter", (612, 792))):
        page = pages_of(folder / f"{name}.ps", 72)[0]
        expect((page.width, page.height) == size, f"{name}: the paper is {page.width} by {page.height} points")

    check_text(folder, "copies-by-page", [2, 2, 3, 3])
    check_text(folder, "copies-collated", [2, 3, 2, 3])
    check_text(folder, "dialog", [2, 3])

    check_text(folder, "black", None)
    dpi = 150
    page = pages_of(folder / "black.ps", dpi)[0]
    check_headings("black", page, dpi)
    check_logo("black", page, dpi, False)
    expect(page.colours(int(0.95 * dpi)) <= {WHITE, BLACK}, "black: text in grey")
    expect(all(r == g == b for r, g, b in page.colours()), "black: colours on a printer that has none")
    return 1 if failures else 0


if __name__ == "__main__":
    if sys.argv[1] == "--text":
        check_each_page(pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3]))
        sys.exit(1 if failures else 0)
    sys.exit(main(pathlib.Path(sys.argv[1])))
