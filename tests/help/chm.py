"""Reads what a compiled help file says about itself: its options, windows, topic numbers and search index.

The files inside are unpacked by chmls, of Debian's package fp-utils; what they mean is read here.
"""

import pathlib
import struct
import subprocess


def unpack(archive, folder):
    """All files of the archive, with their paths in it, below the folder."""
    subprocess.run(["chmls", "extractall", str(archive), str(folder)],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    found = {}
    for path in pathlib.Path(folder).rglob("*"):
        if path.is_file():
            found["/" + path.relative_to(folder).as_posix()] = path.read_bytes()
    return found


def text_at(data, offset):
    return data[offset:data.index(b"\0", offset)].decode("ascii")


def number(data, offset):
    return struct.unpack_from("<I", data, offset)[0]


# The entries of #SYSTEM that have a text.
SYSTEM_TEXTS = {0: "contents", 1: "index", 2: "default topic", 3: "title", 5: "default window"}


def system(files):
    """The archive's options: texts by name, and whether it has a full-text index."""
    data = files["/#SYSTEM"]
    options = {}
    offset = 4
    while offset < len(data):
        code, length = struct.unpack_from("<HH", data, offset)
        entry = data[offset + 4:offset + 4 + length]
        if code in SYSTEM_TEXTS:
            options[SYSTEM_TEXTS[code]] = text_at(entry, 0)
        elif code == 4:
            options["language"] = number(entry, 0)
            options["full-text search"] = number(entry, 8) == 1
        offset += 4 + length
    return options


def windows(files):
    """Each window's title, contents, index, default page and home page, by its name, and its properties."""
    data, strings = files["/#WINDOWS"], files["/#STRINGS"]
    count, size = struct.unpack_from("<II", data, 0)
    found = {}
    for window in range(count):
        at = 8 + window * size
        texts = [text_at(strings, number(data, at + place)) for place in (20, 96, 100, 104, 108)]
        found[text_at(strings, number(data, at + 8))] = (texts, number(data, at + 16))
    return found


def topic_numbers(files):
    """The page of each topic number."""
    data, strings = files["/#IVB"], files["/#STRINGS"]
    return {number(data, at): text_at(strings, number(data, at + 4)) for at in range(4, len(data), 8)}


def topics(files):
    """Title and path of each topic, in the order of the search index."""
    data, strings = files["/#TOPICS"], files["/#STRINGS"]
    found = []
    for at in range(0, len(data), 16):
        title, url = struct.unpack_from("<iI", data, at + 4)
        place = number(files["/#URLTBL"], url + 8)
        found.append((text_at(strings, title) if title != -1 else "", text_at(files["/#URLSTR"], place + 8)))
    return found


class Bits:
    """Numbers of the search index, from the highest bit of a byte down."""

    def __init__(self, data, offset):
        self.data, self.at, self.left = data, offset, 8

    def bit(self):
        self.left -= 1
        value = self.data[self.at] >> self.left & 1
        if self.left == 0:
            self.at, self.left = self.at + 1, 8
        return value

    def scaled(self, root):
        """So many ones, a zero, then the digits: `root` of them, and more for each one behind the first."""
        ones = 0
        while self.bit():
            ones += 1
        digits = root if ones == 0 else root + ones - 1
        value = 0
        for _ in range(digits):
            value = value << 1 | self.bit()
        return value if ones == 0 else value | 1 << digits

    def to_next_byte(self):
        if self.left != 8:
            self.at, self.left = self.at + 1, 8


def packed(data, offset):
    """A number in groups of seven bits, the lowest first, and where it ends."""
    value = shift = 0
    while True:
        byte = data[offset]
        value |= (byte & 0x7F) << shift
        offset, shift = offset + 1, shift + 7
        if byte < 0x80:
            return value, offset


def search_index(files):
    """The topics, by their places among `topics`, that each word stands in, in their titles or texts."""
    data = files["/$FIftiMain"]
    depth = struct.unpack_from("<H", data, 0x18)[0]
    scales = data[0x1E:0x24]
    assert scales[0] == scales[2] == scales[4] == 2, scales
    roots = scales[1], scales[3], scales[5]
    node_size = number(data, 0x2E)

    # The leftmost leaf, by the first entry of each node on the way.
    node = number(data, 0x14)
    for _ in range(depth - 1):
        length = data[node + 2]
        node = number(data, node + 4 + length - 1)

    found = {}
    while True:
        following, _, free = struct.unpack_from("<IHH", data, node)
        at, end, word = node + 8, node + node_size - free, ""
        while at < end:
            length, shared = data[at], data[at + 1]
            word = word[:shared] + data[at + 2:at + 1 + length].decode("ascii")
            at += 2 + length  # with what tells titles from texts
            count, at = packed(data, at)
            places = number(data, at)
            _, at = packed(data, at + 6)
            bits, topic = Bits(data, places), 0
            for _ in range(count):
                topic += bits.scaled(roots[0])
                for _ in range(bits.scaled(roots[1])):
                    bits.scaled(roots[2])
                bits.to_next_byte()
                found.setdefault(word, set()).add(topic)
        if following == 0:
            return found
        node = following
