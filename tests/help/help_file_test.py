#!/usr/bin/env python3
"""help_file_test.py SOURCE: proves of the help file that every topic opens, that no link is dead, that each number
leads to its topic, that all of it is found by contents, index and search, and that it says what the program says.
"""

import html.parser
import pathlib
import re
import sys
import tempfile

import chm

SOURCE = pathlib.Path(sys.argv[1])
MANUAL = SOURCE / "docs/manual"
PROJECT = SOURCE / "resources/help"
ARCHIVE = PROJECT / "Zeroquill.chm"

failures = []


def expect(condition, complaint):
    if not condition:
        failures.append(complaint)


class Page(html.parser.HTMLParser):
    """A page's title, headings, links, anchors, pictures, captions of the program's, messages and words."""

    def __init__(self, text):
        super().__init__()
        self.title, self.heading = "", ""
        self.links, self.pictures, self.anchors = [], [], set()
        self.captions, self.messages = [], []
        self.text, self.open = "", []
        self.feed(text)
        self.close()

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if "id" in values:
            self.anchors.add(values["id"])
        if tag in ("a", "link"):
            self.links.append(values["href"])
        elif tag == "img":
            self.pictures.append(values["src"])
            expect(values.get("alt"), f"{values['src']} has no text for those who can't see it")
        if tag == "b":
            self.captions.append("")
        if tag == "dt":
            self.messages.append("")
        if tag not in ("meta", "link", "img"):
            self.open.append(tag)

    def handle_endtag(self, tag):
        expect(self.open and self.open.pop() == tag, f"</{tag}> closes something else in {self.title}")

        self.text += " "

    def handle_data(self, data):
        self.text += data
        if "title" in self.open:
            self.title += data
        if "h1" in self.open:
            self.heading += data
        if "b" in self.open:
            self.captions[-1] += data
        if "dt" in self.open:
            # What differs from time to time stands in italics.
            self.messages[-1] += "\0" if "i" in self.open else data


def site_map(text):
    """Name and page of each entry of a contents or index file."""
    entries = re.findall(r"<object.*?</object>", text, re.S)
    pairs = []
    for entry in entries:
        values = dict(re.findall(r'<param name="(\w+)" value="(.*?)">', entry))
        pairs.append((values["Name"], values.get("Local")))
    return pairs


def said_by_the_program():
    """All texts in the program's sources, without access keys, and the whole of each that stands in parts."""
    texts = set()
    for path in [*SOURCE.glob("src/**/*.cpp"), *SOURCE.glob("src/**/*.h"), SOURCE / "resources/dialogs.rc"]:
        source = path.read_text(encoding="utf-8")
        for run in re.findall(r'"(?:[^"\\\n]|\\.)*"(?:\s*"(?:[^"\\\n]|\\.)*")*', source):
            whole = "".join(re.findall(r'"((?:[^"\\\n]|\\.)*)"', run))
            texts.add(plain(whole.replace('\\"', '"').replace("&", "")))
    return texts


def plain(text):
    return " ".join(text.split())


def is_said(message, texts):
    """Each part between what differs is the beginning, the middle or the end of some text."""
    return all(any(plain(part) in text for text in texts) for part in message.split("\0") if plain(part) not in ("", "."))


def check_pages(pages):
    for name, page in pages.items():
        expect(page.title and page.title == page.heading, f"{name}: title '{page.title}', heading '{page.heading}'")
        for link in page.links:
            target, _, anchor = link.partition("#")
            expect((MANUAL / (target or name)).is_file(), f"{name}: a dead link to {link}")
            expect(not anchor or anchor in pages[target or name].anchors, f"{name}: a dead link to {link}")
        for picture in page.pictures:
            expect((MANUAL / picture).is_file(), f"{name}: no picture {picture}")
    reached, waiting = set(), ["index.html"]
    while waiting:
        name = waiting.pop()
        if name in pages and name not in reached:
            reached.add(name)
            waiting += [link.partition("#")[0] for link in pages[name].links]
    expect(reached == set(pages), f"not reached by links from the first page: {set(pages) - reached}")
    shown = {picture for page in pages.values() for picture in page.pictures}
    expect(shown == {path.name for path in MANUAL.glob("*.png")}, "pictures that no page shows")


def check_words(pages):
    texts = said_by_the_program()
    captions = {text.rstrip(".").rstrip(":") for text in texts}
    for name, page in pages.items():
        for caption in page.captions:
            expect(plain(caption.replace("&", "")) in captions, f"{name}: the program has no caption '{caption}'")
        for message in page.messages:
            expect(is_said(message, texts), f"{name}: the program has no message '{message}'")
    expect(sum(len(page.messages) for page in pages.values()) > 40, "few messages are told")


def check_archive(files, pages):
    for path in MANUAL.iterdir():
        expect(files.get("/" + path.name) == path.read_bytes(), f"{path.name} isn't in the archive as it is here")
    for kind in ("hhc", "hhk"):
        expect(files.get(f"/Zeroquill.{kind}") == (PROJECT / f"Zeroquill.{kind}").read_bytes(),
               f"Zeroquill.{kind} isn't in the archive as it is here")
    inside = {path[1:] for path in files if path[1] not in "#$_"} - {"Zeroquill.hhc", "Zeroquill.hhk"}
    expect(inside == {path.name for path in MANUAL.iterdir()}, f"the archive has other files: {sorted(inside)}")

    expect(chm.system(files) == {"title": "Zeroquill Help", "default topic": "index.html", "default window": "main",
                                 "contents": "Zeroquill.hhc", "index": "Zeroquill.hhk", "language": 0x409,
                                 "full-text search": True}, f"#SYSTEM says {chm.system(files)}")

    windows = chm.windows(files)
    expect(list(windows) == ["main"], f"windows: {list(windows)}")
    texts, properties = windows["main"]
    expect(texts == ["Zeroquill Help", "Zeroquill.hhc", "Zeroquill.hhk", "index.html", "index.html"], f"main: {texts}")
    three_panes, search = 0x20, 0x400
    expect(properties & three_panes and properties & search, f"main has the properties {properties:#x}")

    # The program's own numbers, and the page behind each.
    numbers = dict(re.findall(r"kHelpOn(\w+) = (\d+);", (SOURCE / "src/core/state/Help.h").read_text()))
    wanted = {int(numbers["Folder"]): "/folder.html", int(numbers["OpenJob"]): "/openjob.html",
              int(numbers["DriveWipe"]): "/freespace.html", int(numbers["Preferences"]): "/preferences.html"}
    expect(sorted(wanted) == [5, 6, 10, 11], f"the program asks for {sorted(wanted)}")
    expect(chm.topic_numbers(files) == wanted, f"topic numbers: {chm.topic_numbers(files)}")
    dialogs = (SOURCE / "resources/dialogs.rc").read_text(encoding="utf-8")
    for page, form in (("folder", "frmFolder"), ("openjob", "frmOpenJob"), ("freespace", "frmDriveWipe"),
                       ("preferences", "frmPreferences")):
        caption = re.search(rf'IDD_{form} .*?CAPTION "(.*?)"', dialogs, re.S).group(1)
        expect(caption in files[f"/{page}.html"].decode(), f"{page}.html doesn't speak of '{caption}'")


def check_ways(files, pages):
    contents = site_map(files["/Zeroquill.hhc"].decode("ascii"))
    listed = [page for _, page in contents if page]
    expect(sorted(listed) == sorted(pages), f"contents: {sorted(set(listed) ^ set(pages))}")
    for name, page in contents:
        expect(page is None or pages[page].title == name, f"contents: '{name}' leads to another title")
    linked = [link for link in pages["index.html"].links if link.endswith(".html")]
    expect(["index.html", *dict.fromkeys(linked)] == listed, "contents and first page have another order")

    index = site_map(files["/Zeroquill.hhk"].decode("ascii"))
    expect([name.lower() for name, _ in index] == sorted(name.lower() for name, _ in index), "the index isn't sorted")
    expect(len({name for name, _ in index}) == len(index), "a keyword stands twice in the index")
    expect({page for _, page in index} == set(pages) - {"index.html"}, "the index doesn't lead to all pages")

    # Every word of every page is found by the search, in its page.
    topics = [url for _, url in chm.topics(files)]
    found = {}
    for word, places in chm.search_index(files).items():
        found.setdefault(word.strip("."), set()).update(places)
    for name, page in pages.items():
        expect(name in topics, f"{name} is no topic of the search")
        # The compiler takes a word as it is without its apostrophes.
        for word in set(re.findall(r"[a-z][a-z0-9]*", page.text.lower().replace("'", ""))):
            expect(topics.index(name) in found.get(word, ()), f"{name}: '{word}' isn't found by the search")


def main():
    pages = {}
    for path in sorted(MANUAL.glob("*.html")):
        text = path.read_bytes()
        expect(text.isascii(), f"{path.name} isn't ASCII, where the search would split words")
        pages[path.name] = Page(text.decode("ascii", "replace"))
    expect(len(pages) > 15, "few pages")
    with tempfile.TemporaryDirectory() as folder:
        files = chm.unpack(ARCHIVE, folder)
    check_pages(pages)
    check_words(pages)
    check_archive(files, pages)
    check_ways(files, pages)
    for failure in failures:
        print(failure)
    print(f"{len(pages)} topics, {len(failures)} failures")
    return 1 if failures else 0


sys.exit(main())
