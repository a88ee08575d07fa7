"""Reads what Windows reads of a program before it runs: headers, sections, imports and resources of a 64-bit PE file.
Only what the tests ask for, by the published layout of the format; a file that breaks it raises an error."""

import pathlib
import struct

WRITE, EXECUTE, SHARED = 0x80000000, 0x20000000, 0x10000000
RT_MANIFEST, RT_VERSION, RT_GROUP_ICON = 24, 16, 14


class Section:
    def __init__(self, name, size, address, raw_size, raw_at, flags):
        self.name, self.size, self.address = name, size, address
        self.raw_size, self.raw_at, self.flags = raw_size, raw_at, flags


class Program:
    def __init__(self, path):
        self.data = pathlib.Path(path).read_bytes()
        if self.data[:2] != b"MZ":
            raise ValueError("no MZ")
        at = struct.unpack_from("<I", self.data, 0x3C)[0]
        if self.data[at:at + 4] != b"PE\0\0":
            raise ValueError("no PE header")
        (self.machine, count, self.time, self.symbols_at, self.symbol_count, optional_size,
         self.characteristics) = struct.unpack_from("<HHIIIHH", self.data, at + 4)
        optional = at + 24
        self.magic = struct.unpack_from("<H", self.data, optional)[0]
        self.image_base = struct.unpack_from("<Q", self.data, optional + 24)[0]
        self.subsystem, self.protections = struct.unpack_from("<HH", self.data, optional + 68)
        directories = struct.unpack_from("<I", self.data, optional + 108)[0]
        self.directories = [struct.unpack_from("<II", self.data, optional + 112 + 8 * index)
                            for index in range(directories)]
        table = optional + optional_size
        self.strings_at = self.symbols_at + 18 * self.symbol_count
        self.sections = []
        for index in range(count):
            name, size, address, raw_size, raw_at, flags = struct.unpack_from("<8sIIII12xI", self.data,
                                                                              table + 40 * index)
            self.sections.append(Section(self._long_name(name), size, address, raw_size, raw_at, flags))

    def _long_name(self, name):
        """A name of more than eight bytes stands in the table of strings: "/" and its place."""
        text = name.rstrip(b"\0").decode()
        if not text.startswith("/"):
            return text
        return self._text(self.strings_at + int(text[1:]))

    def _text(self, at):
        return self.data[at:self.data.index(b"\0", at)].decode()

    def section(self, name):
        """The section's bytes, or none."""
        for section in self.sections:
            if section.name == name:
                return self.data[section.raw_at:section.raw_at + min(section.size or section.raw_size, section.raw_size)]
        return None

    def _at(self, address):
        """The place in the file of an address in memory."""
        for section in self.sections:
            if section.address <= address < section.address + section.raw_size:
                return section.raw_at + address - section.address
        raise ValueError(f"address {address:#x} is in no section")

    def imports(self):
        """The names of functions by library."""
        found = {}
        at = self._at(self.directories[1][0])
        while True:
            names, _, _, library, _ = struct.unpack_from("<IIIII", self.data, at)
            if library == 0:
                return found
            functions = found.setdefault(self._text(self._at(library)).lower(), [])
            entry = self._at(names)
            while name := struct.unpack_from("<Q", self.data, entry)[0]:
                if name >> 63 == 0:
                    functions.append(self._text(self._at(name) + 2))
                entry += 8
            at += 20

    def resources(self, kind):
        """The resources of a kind, each as its name (number or text) and bytes."""
        start = self._at(self.directories[2][0])

        def entries(offset):
            named, numbered = struct.unpack_from("<HH", self.data, start + offset + 12)
            for index in range(named + numbered):
                name, value = struct.unpack_from("<II", self.data, start + offset + 16 + 8 * index)
                if name >> 31:
                    place = start + (name & 0x7FFFFFFF)
                    length = struct.unpack_from("<H", self.data, place)[0]
                    name = self.data[place + 2:place + 2 + 2 * length].decode("utf-16-le")
                yield name, value

        found = []
        for number, names in entries(0):
            if number != kind:
                continue
            for name, languages in entries(names & 0x7FFFFFFF):
                for _, leaf in entries(languages & 0x7FFFFFFF):
                    address, size = struct.unpack_from("<II", self.data, start + leaf)
                    place = self._at(address)
                    found.append((name, self.data[place:place + size]))
        return found

    def symbols(self):
        """The names in the table of symbols."""
        names, index = [], 0
        while index < self.symbol_count:
            place = self.symbols_at + 18 * index
            name = self.data[place:place + 8]
            if name[:4] == b"\0\0\0\0":
                names.append(self._text(self.strings_at + struct.unpack_from("<I", name, 4)[0]))
            else:
                names.append(name.rstrip(b"\0").decode())
            index += 1 + self.data[place + 17]
        return names


def fixed_version(resource):
    """File and product version of a version resource, each as four numbers."""
    at = resource.index(struct.pack("<I", 0xFEEF04BD))
    file_high, file_low, product_high, product_low = struct.unpack_from("<IIII", resource, at + 8)

    def four(high, low):
        return [high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF]

    return four(file_high, file_low), four(product_high, product_low)
