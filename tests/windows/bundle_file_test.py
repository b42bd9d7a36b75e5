#!/usr/bin/env python3
"""bundle_file_test.py BUNDLE: what a host and Windows read of the bundle before they load it."""
import sys
import unittest

from portable_executable import PortableExecutable

BUNDLE = PortableExecutable(sys.argv.pop())

# Byte for byte, written from the host's rules and not taken from the build: little-endian numbers, and every
# four-character code reversed.
PROPERTIES = b"".join([
    b"\x01\x00", b"\x00\x00\x00\x00", b"\x05\x00\x00\x00",
    b"MIB8", b"dnik", b"\x00\x00\x00\x00", b"\x04\x00\x00\x00", b"xgEA",
    b"MIB8", b"eman", b"\x00\x00\x00\x00", b"\x0c\x00\x00\x00", b"\x09VORTAN XR\x00\x00",
    b"MIB8", b"gtac", b"\x00\x00\x00\x00", b"\x10\x00\x00\x00", b"\x0eGeneral Plugin\x00",
    b"MIB8", b"srev", b"\x00\x00\x00\x00", b"\x04\x00\x00\x00", b"\x00\x00\x03\x00",
    b"MIB8", b"4668", b"\x00\x00\x00\x00", b"\x10\x00\x00\x00", b"EntryPointFunc\x00\x00",
])


class BundleFile(unittest.TestCase):
    def test_is_a_library_for_64_bit_processors(self):
        self.assertEqual(BUNDLE.machine, 0x8664)
        self.assertTrue(BUNDLE.characteristics & 0x2000)

    def test_needs_no_library_but_the_systems_own(self):
        libraries = [name.lower() for name in BUNDLE.imported_libraries()]
        self.assertEqual(sorted(libraries), ["kernel32.dll", "msvcrt.dll"])

    def test_exports_its_entry_points_and_nothing_else(self):
        self.assertEqual(BUNDLE.exported_names(), ["EntryPointFunc", "Main_VORTANXR_AE"])

    def test_holds_the_properties_in_every_byte(self):
        # Windows stores names of resource types in capitals and finds them in any case.
        languages = [key[2] for key in BUNDLE.resources() if key[:2] == ("PIPL", 16000)]
        self.assertEqual(len(languages), 1, BUNDLE.resources().keys())
        self.assertEqual(BUNDLE.resources()["PIPL", 16000, languages[0]], PROPERTIES)


if __name__ == "__main__":
    unittest.main()
