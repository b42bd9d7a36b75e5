"""The installed library in a project of others: the blocks of the README as printed, what the headers include, what the
library exports, and what is said of another version.

    package_test.py CMAKE BUILD COMPILER FLAGS
"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CMAKE, BUILD, COMPILER, FLAGS = sys.argv[1], Path(sys.argv[2]), sys.argv[3], sys.argv[4]
PROJECT = Path(__file__).resolve().parents[2]
INCLUDE = re.compile(r"^\s*#\s*include\s*(\S+)", re.MULTILINE)


def run(*command, code=0, **options):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False, **options)
    if code is not None and done.returncode != code:
        raise AssertionError(f"{command}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done


def block(language):
    """The README's one block in this language."""
    found = re.findall(rf"^```{language}\n(.*?)^```$", (PROJECT / "README.md").read_text(encoding="utf-8"),
                       re.MULTILINE | re.DOTALL)
    assert len(found) == 1, f"{len(found)} blocks in {language}"
    return found[0]


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = Path(cls.folder.name)
        # Elsewhere than it is built for, as a user unpacks it.
        cls.prefix = cls.root / "installed"
        for component in ("library", "development"):
            run(CMAKE, "--install", BUILD, "--prefix", cls.prefix, "--component", component)
        cls.include = cls.prefix / "include"
        (cls.library,) = cls.prefix.glob("lib/**/libvortanxr.so")
        cls.version = re.search(r'VORTANXR_VERSION "(\d+)\.(\d+)\.(\d+)"',
                                (cls.include / "vortanxr/version.h").read_text(encoding="utf-8")).groups()

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def project(self, name, needed):
        """A folder with the README's project, which asks for this version, and the files that it reads."""
        folder = self.root / name
        folder.mkdir()
        script = block("cmake")
        self.assertIn("find_package(vortanxr 1.0 REQUIRED)", script)
        (folder / "CMakeLists.txt").write_text(script.replace("vortanxr 1.0", f"vortanxr {needed}"), encoding="utf-8")
        (folder / "shot_reader.cpp").write_text(block("cpp"), encoding="utf-8")
        shutil.copy(PROJECT / "examples/square/courtyard_020.aec", folder / "shot.aec")
        shutil.copy(PROJECT / "examples/textures/tiny.txl", folder / "cloth.txl")
        return folder

    def configure(self, folder, code=0):
        return run(CMAKE, "-S", folder, "-B", folder / "build", f"-DCMAKE_PREFIX_PATH={self.prefix}",
                   f"-DCMAKE_CXX_COMPILER={COMPILER}", f"-DCMAKE_CXX_FLAGS={FLAGS} -Wall -Wextra -Wpedantic -Werror",
                   code=code)

    def test_the_blocks_of_the_readme_run_as_printed(self):
        folder = self.project("printed", "1.0")
        self.configure(folder)
        run(CMAKE, "--build", folder / "build")
        done = run(folder / "build/shot_reader", cwd=folder)
        # One camera with three keys, a picture of 4 x 2: as the files say.
        self.assertEqual(done.stdout, "Camera: 3 keys\n4 x 2\n")
        (folder / "shot.aec").write_text("VORTAN XR COMPOSITION\nFPS abc\n", encoding="utf-8")
        refused = run(folder / "build/shot_reader", cwd=folder, code=1)
        self.assertEqual(refused.stderr, 'shot.aec:2:5: error: expected a number after FPS, found "abc" [expected-number]\n')

    def test_another_version_is_not_found(self):
        major, minor, _ = map(int, self.version)
        for name, needed in (("the next minor version", f"{major}.{minor + 1}"), ("the next major version", f"{major + 1}.0"),
                             ("the major version before", f"{major - 1}.0")):
            with self.subTest(name):
                done = self.configure(self.project(needed, needed), code=1)
                self.assertIn(f'compatible with requested version "{needed}"', done.stderr)
                self.assertIn("version: " + ".".join(self.version), done.stderr)

    def test_a_program_says_which_older_library_it_runs_with(self):
        major, minor, patch = self.version
        newer = f"{major}.{int(minor) + 1}.0"
        include = self.root / "newer/include"
        shutil.copytree(self.include, include)
        header = include / "vortanxr/version.h"
        text = header.read_text(encoding="utf-8")
        changed = text.replace(f"VORTANXR_VERSION_MINOR {minor}", f"VORTANXR_VERSION_MINOR {int(minor) + 1}")
        changed = changed.replace(f'VORTANXR_VERSION "{major}.{minor}.{patch}"', f'VORTANXR_VERSION "{newer}"')
        self.assertEqual(changed.count(str(int(minor) + 1)), text.count(str(int(minor) + 1)) + 2)
        header.write_text(changed, encoding="utf-8")
        folder = self.project("newer_program", "1.0")
        program = folder / "shot_reader"
        run(COMPILER, "-std=c++17", *FLAGS.split(), "-I", include, folder / "shot_reader.cpp", "-o", program, self.library,
            f"-Wl,-rpath,{self.library.parent}")
        done = run(program, cwd=folder, code=1)
        self.assertEqual(done.stderr, f"shot.aec: error: this program was built for version {newer} of the library vortanxr and "
                         f"runs with version {'.'.join(self.version)}; install the library again [library-too-old]\n")

    def test_headers_include_nothing_private(self):
        headers = sorted(self.include.rglob("*"))
        names = {str(header.relative_to(self.include)) for header in headers if header.is_file()}
        self.assertEqual(names, {f"vortanxr/{name}.h" for name in ("diagnostic", "scene", "texture", "version")})
        for name in sorted(names):
            with self.subTest(name):
                for included in INCLUDE.findall((self.include / name).read_text(encoding="utf-8")):
                    self.assertTrue(included[1:-1] in names or re.fullmatch(r"<[a-z_]+>", included), included)
                # Alone, in the oldest standard that the package asks for, with nothing of the project's in reach.
                alone = self.root / "alone.cpp"
                alone.write_text(f"#include <{name}>\n#include <{name}>\n", encoding="utf-8")
                for standard in ("c++17", "c++20"):
                    run(COMPILER, f"-std={standard}", "-fsyntax-only", "-Wall", "-Wextra", "-Wpedantic", "-Wconversion",
                        "-Wshadow", "-Werror", "-I", self.include, alone)

    def test_the_library_exports_what_the_headers_declare(self):
        lines = run("nm", "--dynamic", "--demangle", "--defined-only", self.library).stdout.splitlines()
        exported = {line.split(" ", 2)[2].split("(")[0].split("[")[0].split("@")[0] for line in lines}
        # Beside them a linker may list the version, and a sanitizer its own.
        self.assertEqual({name for name in exported if not re.search("^VORTANXR_1$|asan|ubsan|sancov|odr", name)}, {
            "vortanxr::v1::library_version", "vortanxr::v1::text_of", "vortanxr::v1::detail::read_scene",
            "vortanxr::v1::detail::read_texture"})

    def test_the_library_needs_only_the_compilers_and_the_systems(self):
        dynamic = run("readelf", "--dynamic", self.library).stdout
        self.assertIn(f"soname: [libvortanxr.so.{self.version[0]}]", dynamic)
        needed = re.findall(r"NEEDED\).*\[(\S+?)\.so", dynamic)
        self.assertIn("libc", needed)
        self.assertLessEqual(set(needed), {"libstdc++", "libm", "libgcc_s", "libc", "ld-linux-x86-64", "ld-linux-aarch64"})


unittest.main(argv=sys.argv[:1])
