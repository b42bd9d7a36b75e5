"""Reads the parts of a 64-bit Windows program that the tests need: imports, exports, resources."""
import struct


class PortableExecutable:
    def __init__(self, path):
        with open(path, "rb") as file:
            self.bytes = file.read()
        if self.bytes[:2] != b"MZ":
            raise ValueError("no MZ header")
        header, = self.numbers("I", 0x3C)
        if self.bytes[header:header + 4] != b"PE\0\0":
            raise ValueError("no PE header")
        self.machine, sections, *_, optional_size, self.characteristics = self.numbers("HHIIIHH", header + 4)
        optional = header + 24
        if self.numbers("H", optional) != (0x20B,):
            raise ValueError("not a 64-bit program")
        count, = self.numbers("I", optional + 108)
        self.directories = [self.numbers("II", optional + 112 + 8 * i) for i in range(count)]
        table = optional + optional_size
        self.sections = []  # (address, size in memory, offset in the file, size in the file)
        for i in range(sections):
            size, address, raw_size, raw = self.numbers("IIII", table + 40 * i + 8)
            self.sections.append((address, size, raw, raw_size))

    def numbers(self, form, offset):
        return struct.unpack_from("<" + form, self.bytes, offset)

    def offset(self, address):
        for start, size, raw, raw_size in self.sections:
            if start <= address < start + min(size, raw_size):
                return raw + address - start
        raise ValueError(f"address {address:#x} is in no section")

    def text(self, address):
        begin = self.offset(address)
        return self.bytes[begin:self.bytes.index(b"\0", begin)].decode("ascii")

    def imported_libraries(self):
        """The names as written, including libraries that are loaded on first use."""
        names = []
        for directory, entry_bytes, name_at in ((1, 20, 12), (13, 32, 4)):
            address, size = self.directories[directory]
            at = self.offset(address) if size else None
            while at is not None:
                name, = self.numbers("I", at + name_at)
                if name == 0:
                    break
                names.append(self.text(name))
                at += entry_bytes
        return names

    def exported_names(self):
        address, size = self.directories[0]
        if size == 0:
            return []
        count, _, names = self.numbers("III", self.offset(address) + 24)
        return [self.text(self.numbers("I", self.offset(names) + 4 * i)[0]) for i in range(count)]

    def resources(self):
        """{(type, id, language): bytes}; types and ids are numbers or texts."""
        address, size = self.directories[2]
        if size == 0:
            return {}
        root = self.offset(address)

        def name(value):
            if not value & 0x80000000:
                return value
            at = root + (value & 0x7FFFFFFF)
            length, = self.numbers("H", at)
            return self.bytes[at + 2:at + 2 + 2 * length].decode("utf-16-le")

        def entries(at):
            named, numbered = self.numbers("HH", at + 12)
            for i in range(named + numbered):
                key, value = self.numbers("II", at + 16 + 8 * i)
                yield name(key), value

        found = {}
        for kind, kinds in entries(root):
            for number, numbers in entries(root + (kinds & 0x7FFFFFFF)):
                for language, leaf in entries(root + (numbers & 0x7FFFFFFF)):
                    data, data_bytes = self.numbers("II", root + leaf)
                    begin = self.offset(data)
                    found[kind, number, language] = self.bytes[begin:begin + data_bytes]
        return found
