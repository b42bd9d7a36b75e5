#!/usr/bin/env python3
"""built_files_test.py PLUGIN PROGRAM TOOLS: what macOS and a host read of the bundle and of vxr before they run them.

PLUGIN is the folder VORTANXR_AE.plugin, PROGRAM is vxr, TOOLS the folder of LLVM's tools, which read the files. What is
expected is written down here from the rules of the system and of hosts, and not taken from the build.
"""
import hashlib
import plistlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOLS = Path(sys.argv.pop())
PROGRAM = Path(sys.argv.pop())
PLUGIN = Path(sys.argv.pop())
CONTENTS = PLUGIN / "Contents"
CODE = CONTENTS / "MacOS" / "VORTANXR_AE"
PROCESSORS = ["arm64", "x86_64"]

SYSTEM = "/usr/lib/libSystem.B.dylib"
CORE_FOUNDATION = "/System/Library/Frameworks/CoreFoundation.framework/Versions/A/CoreFoundation"

# Each property: vendor, key, four zero bytes, the length of the data, the data. Numbers with their highest byte first.
PROPERTIES = b"".join([
    b"\x00\x00\x00\x00", b"\x00\x00\x00\x06",
    b"8BIM", b"kind", b"\x00\x00\x00\x00", b"\x00\x00\x00\x04", b"AEgx",
    b"8BIM", b"name", b"\x00\x00\x00\x00", b"\x00\x00\x00\x0c", b"\x09", b"VORTAN XR", b"\x00\x00",
    b"8BIM", b"catg", b"\x00\x00\x00\x00", b"\x00\x00\x00\x10", b"\x0e", b"General Plugin", b"\x00",
    b"8BIM", b"vers", b"\x00\x00\x00\x00", b"\x00\x00\x00\x04", b"\x00\x03\x00\x00",
    b"8BIM", b"mi64", b"\x00\x00\x00\x00", b"\x00\x00\x00\x10", b"\x0e", b"EntryPointFunc", b"\x00",
    b"8BIM", b"ma64", b"\x00\x00\x00\x00", b"\x00\x00\x00\x10", b"\x0e", b"EntryPointFunc", b"\x00",
])


def lines_of(tool, *arguments):
    run = subprocess.run([TOOLS / tool, *arguments], check=True, capture_output=True, text=True)
    return run.stdout.splitlines()


def load_commands(file, processor):
    """The file's kind and its load commands, each as its fields: {"cmd": "LC_UUID", ...}."""
    kind = None
    commands = []
    columns = None
    for line in lines_of("llvm-objdump", "--macho", f"--arch={processor}", "--private-headers", file):
        words = line.split()
        if words[:2] == ["magic", "cputype"]:
            columns = words
        elif columns and kind is None:
            kind = dict(zip(columns, words))["filetype"], words[len(columns) - 1:]
        elif words[:2] == ["Load", "command"]:
            commands.append({})
        elif commands and len(words) >= 2:
            commands[-1].setdefault(words[0], " ".join(words[1:]))
    return kind, commands


def of_kind(commands, *kinds):
    return [command for command in commands if command["cmd"] in kinds]


def needed_libraries(commands):
    loads = of_kind(commands, "LC_LOAD_DYLIB", "LC_LOAD_WEAK_DYLIB", "LC_REEXPORT_DYLIB", "LC_LAZY_LOAD_DYLIB",
                    "LC_LOAD_UPWARD_DYLIB")
    return sorted(command["name"].split(" (offset")[0] for command in loads)


def thin(file, processor):
    """The bytes of one processor's code."""
    with tempfile.TemporaryDirectory() as folder:
        one = Path(folder) / "code"
        lines_of("llvm-lipo", file, "-thin", processor, "-output", one)
        return one.read_bytes()


class CodeDirectory:
    """The part of a signature that names the code and holds a hash of every page of it. Numbers are big-endian."""

    def __init__(self, code, commands):
        place, = of_kind(commands, "LC_CODE_SIGNATURE")
        begin = int(place["dataoff"])
        blob = code[begin:begin + int(place["datasize"])]
        magic, length, count = struct.unpack_from(">III", blob)
        assert magic == 0xFADE0CC0 and length <= len(blob) and count >= 1, "no signature"
        slots = dict(struct.unpack_from(">II", blob, 12 + 8 * i) for i in range(count))
        directory = blob[slots[0]:]
        (magic, length, _version, self.flags, hashes, name, _special, slots, self.limit, self.hash_size, self.hash_kind,
         _platform, page) = struct.unpack_from(">IIIIIIIIIBBBB", directory)
        assert magic == 0xFADE0C02 and length <= len(directory), "no code directory"
        self.begin = begin
        self.name = directory[name:directory.index(b"\0", name)].decode()
        self.page_bytes = 1 << page
        self.hashes = [directory[hashes + i * self.hash_size:hashes + (i + 1) * self.hash_size] for i in range(slots)]


class BuiltFile:
    """What holds for the bundle's code and for the program."""

    file = kind = name = None

    def each_processor(self):
        return [(processor, *load_commands(self.file, processor)) for processor in PROCESSORS]

    def test_has_code_for_both_processors(self):
        archs = " ".join(lines_of("llvm-lipo", self.file, "-archs")).split()
        self.assertEqual(sorted(archs), PROCESSORS)

    def test_is_of_its_kind(self):
        for processor, (kind, flags), _commands in self.each_processor():
            with self.subTest(processor):
                self.assertEqual(kind, self.kind)
                self.assertIn("TWOLEVEL", flags)

    def test_needs_nothing_but_the_system(self):
        for processor, _kind, commands in self.each_processor():
            with self.subTest(processor):
                self.assertEqual(needed_libraries(commands), [CORE_FOUNDATION, SYSTEM])
                self.assertEqual(of_kind(commands, "LC_RPATH", "LC_DYLD_ENVIRONMENT"), [])

    def test_runs_on_macos_11(self):
        for processor, _kind, commands in self.each_processor():
            with self.subTest(processor):
                version, = of_kind(commands, "LC_BUILD_VERSION")
                self.assertEqual((version["platform"], version["minos"]), ("macos", "11.0"))
                self.assertEqual(of_kind(commands, "LC_VERSION_MIN_MACOSX"), [])

    def test_takes_every_missing_symbol_from_a_library(self):
        for processor in PROCESSORS:
            with self.subTest(processor):
                lines = lines_of("llvm-nm", "-m", "--undefined-only", f"--arch={processor}", self.file)
                lines = [line.strip() for line in lines if "(undefined)" in line]
                self.assertGreater(len(lines), 20)
                elsewhere = [line for line in lines
                             if not line.endswith(("(from libSystem)", "(from CoreFoundation)"))]
                self.assertEqual(elsewhere, [])
                self.assertTrue(any("_CFURLCreateWithFileSystemPath " in line for line in lines))

    def test_lets_exceptions_through_every_function(self):
        # Functions that the short table cannot describe lead to the long one, by their place in it.
        long_table = {"arm64": 0x03, "x86_64": 0x04}
        for processor in PROCESSORS:
            with self.subTest(processor):
                short = lines_of("llvm-objdump", "--macho", f"--arch={processor}", "--unwind-info", self.file)
                found = re.findall(r"function offset=0x(\w+), encoding(?:\[\d+\])?=0x(\w+)", "\n".join(short))
                functions = [(int(offset, 16), int(encoding, 16)) for offset, encoding in found]
                self.assertGreater(len(functions), 100)
                led = {encoding & 0xFFFFFF: offset for offset, encoding in functions
                       if encoding >> 24 & 0xF == long_table[processor]}
                self.assertGreater(len(led), 10)
                with tempfile.TemporaryDirectory() as folder:
                    code = Path(folder) / "code"
                    code.write_bytes(thin(self.file, processor))
                    rows = "\n".join(lines_of("llvm-dwarfdump", "--eh-frame", code))
                rows = re.findall(r"^(\w+) \w+ \w+ FDE cie=\w+ pc=(\w+)\.\.\.", rows, re.MULTILINE)
                begins = {int(place, 16): int(begin, 16) & 0xFFFFFFFF for place, begin in rows}
                wrong = {hex(offset): hex(place) for place, offset in led.items() if begins.get(place) != offset}
                self.assertEqual(wrong, {})

    def test_is_signed_ad_hoc_over_every_page(self):
        for processor, _kind, commands in self.each_processor():
            with self.subTest(processor):
                code = thin(self.file, processor)
                directory = CodeDirectory(code, commands)
                self.assertTrue(directory.flags & 0x2, "ad hoc")
                self.assertEqual(directory.name, self.name)
                self.assertEqual(directory.limit, directory.begin, "signed up to the signature itself")
                self.assertEqual((directory.hash_kind, directory.hash_size), (2, 32), "SHA-256")
                pages = [code[at:min(at + directory.page_bytes, directory.limit)]
                         for at in range(0, directory.limit, directory.page_bytes)]
                self.assertEqual(directory.hashes, [hashlib.sha256(page).digest() for page in pages])


class BundleCode(BuiltFile, unittest.TestCase):
    file = CODE
    kind = "BUNDLE"
    name = "VORTANXR_AE"

    def test_exports_its_entry_points_and_nothing_else(self):
        for processor in PROCESSORS:
            with self.subTest(processor):
                symbols = lines_of("llvm-nm", "--extern-only", "--defined-only", "--just-symbol-name",
                                   f"--arch={processor}", self.file)
                symbols = [line for line in symbols if line and not line.endswith(":")]
                self.assertEqual(sorted(symbols), ["_EntryPointFunc", "_Main_VORTANXR_AE"])
                trie = lines_of("llvm-objdump", "--macho", f"--arch={processor}", "--exports-trie", self.file)
                exported = [line.split()[1] for line in trie if line.startswith("0x")]
                self.assertEqual(sorted(exported), ["_EntryPointFunc", "_Main_VORTANXR_AE"])


class Program(BuiltFile, unittest.TestCase):
    file = PROGRAM
    kind = "EXECUTE"
    name = "vxr"

    def test_may_be_loaded_anywhere(self):
        for processor, (_kind, flags), _commands in self.each_processor():
            with self.subTest(processor):
                self.assertIn("PIE", flags)


class BundleFolder(unittest.TestCase):
    def test_holds_these_files_and_no_others(self):
        files = sorted(str(path.relative_to(PLUGIN)) for path in PLUGIN.rglob("*") if not path.is_dir())
        self.assertEqual(files, ["Contents/Info.plist", "Contents/MacOS/VORTANXR_AE", "Contents/PkgInfo",
                                 "Contents/Resources/VORTANXR_AE.rsrc"])

    def test_says_what_it_is_in_info_plist(self):
        plist = plistlib.loads((CONTENTS / "Info.plist").read_bytes())
        self.assertEqual(plist["CFBundlePackageType"], "AEgx")
        self.assertEqual(plist["CFBundleSignature"], "FXTC")
        self.assertEqual(plist["CFBundleExecutable"], "VORTANXR_AE")
        self.assertEqual(plist["CFBundleInfoDictionaryVersion"], "6.0")
        self.assertRegex(plist["CFBundleIdentifier"], r"^[A-Za-z0-9-]+(\.[A-Za-z0-9_-]+)+$")
        self.assertRegex(plist["CFBundleVersion"], r"^\d+\.\d+\.\d+$")
        self.assertEqual(plist["CFBundleShortVersionString"], plist["CFBundleVersion"])
        self.assertFalse([value for value in plist.values() if "@" in value])

    def test_says_it_again_in_pkginfo(self):
        self.assertEqual((CONTENTS / "PkgInfo").read_bytes(), b"AEgxFXTC")

    def test_holds_the_properties_in_every_byte(self):
        fork = (CONTENTS / "Resources" / "VORTANXR_AE.rsrc").read_bytes()
        data, resource_map, _data_bytes, _map_bytes = struct.unpack_from(">IIII", fork)
        types, = struct.unpack_from(">H", fork, resource_map + 24)
        types += resource_map
        self.assertEqual(struct.unpack_from(">H4sHH", fork, types)[:3], (0, b"PiPL", 0), "one type, one resource")
        reference, = struct.unpack_from(">H", fork, types + 8)
        number, _name, place = struct.unpack_from(">hHI", fork, types + reference)
        self.assertEqual(number, 16000)
        begin = data + (place & 0xFFFFFF)
        length, = struct.unpack_from(">I", fork, begin)
        self.assertEqual(fork[begin + 4:begin + 4 + length], PROPERTIES)


if __name__ == "__main__":
    unittest.main()
