"""The rows of docs/performance.md as data: what is measured, what it is compared with, and the goal.

The `{}` in the name of a benchmark stands for the size: SIZES has the size of the document and that of a smoke run.
"""

from dataclasses import dataclass
from typing import Optional

# program: (measured, smoke run)
SIZES = {
    "import_bench": (1_000_000, 1_000),
    "texture_bench": (4096, 256),
}


@dataclass(frozen=True)
class Beside:
    """What a row is compared with. The goal is met up to `goal` times this time or, instead, up to `more_ms` above it."""
    text: str
    name: str
    goal: Optional[float] = None
    more_ms: Optional[float] = None


@dataclass(frozen=True)
class Row:
    work: str
    program: str
    name: str
    peer: Optional[Beside] = None
    limit: Optional[Beside] = None
    some_processors: bool = False  # left out where the processor cannot run it


@dataclass(frozen=True)
class Growth:
    """One cost against one size, over at least three decades where the format allows it."""
    what: str
    program: str
    name: str
    sizes: tuple
    note: str = "linear"


@dataclass(frozen=True)
class Memory:
    """A counter of a benchmark in bytes, for each unit of another of its counters."""
    what: str
    program: str
    name: str
    unit: str
    unit_counter: str
    counter: str = "peak_bytes"


ROWS = [
    Row("read a scene of 63 MB, a million KEY lines in 10,000 objects", "import_bench", "read/text/{}",
        peer=Beside("RapidJSON, SAX, full precision, into the same records", "json/text/{}", 0.40),
        limit=Beside("one `memchr` over the bytes", "memchr/text/{}", 35)),
    Row("the same, whole process: `vxr check --quiet`", "import_bench", "check/text/{}/manual_time",
        peer=Beside("`wc -w`", "words/text/{}/manual_time", 0.60)),
    Row("import the same into the embedded host", "import_bench", "import/text/{}",
        peer=Beside("reading alone", "read/text/{}", 3)),
    Row("write the same, corrected, as a script for After Effects; time elapsed, on all processors", "import_bench",
        "script/text/{}/real_time", peer=Beside("reading alone", "read/text/{}", 2)),
    Row("read 100,000 keys of one object", "import_bench", "read/keys_in_one_object/100000",
        peer=Beside("the same keys in 100 objects", "read/keys_in_100_objects/100000", 1.5)),
    Row("`vxr check --quiet` of a scene with six TIFF, PNG, TGA, JPEG and RLA files, whole process", "import_bench",
        "check/pictures/manual_time",
        peer=Beside("`stat` of the same files", "stat/pictures/manual_time", more_ms=15)),
    Row("`vxr check --quiet` of 1,000 scenes of 1,000 keys; time elapsed, on two processors", "import_bench",
        "check/thousand/jobs:2/real_time",
        peer=Beside("on one processor", "check/thousand/jobs:1/real_time", 0.55)),
    Row("`vxr check --quiet` of 100 sequences in a folder of 100,000 files, whole process", "import_bench",
        "check/sequences/100000/manual_time",
        peer=Beside("`ls -fU` of the folder", "list/sequences/100000/manual_time", 2)),
]
# Goals for each picture: load against the peer and the limit, save against both, save into a file against the limit.
_TEXTURE_GOALS = [
    ("flat", 0.50, 2, 0.50, 2, 2),
    ("photographic", 0.42, 9, 0.50, 8, 8),
    ("noise", 0.45, 2.5, 0.20, 2, 1.3),
]
for _picture, _load_peer, _load_limit, _save_peer, _save_limit, _file_limit in _TEXTURE_GOALS:
    ROWS += [
        Row(f"load a {_picture} texture of 4096 x 4096 pixels, RGB and alpha, into the host's bitmap", "texture_bench",
            f"load/texture/{_picture}/{{}}",
            peer=Beside("libtiff, PackBits, and the expansion to 16 bits", f"load/tiff/{_picture}/{{}}", _load_peer),
            limit=Beside("expansion alone", f"expand/{_picture}/{{}}", _load_limit)),
        Row(f"save the same ({_picture}), the bytes thrown away by the system", "texture_bench",
            f"save/texture/{_picture}/{{}}",
            peer=Beside("libtiff and the split into planes", f"save/tiff/{_picture}/{{}}", _save_peer),
            limit=Beside("split alone", f"split/{_picture}/{{}}", _save_limit)),
        Row(f"save the same ({_picture}) into a file", "texture_bench", f"save_file/texture/{_picture}/{{}}",
            peer=Beside("libtiff and the split into planes", f"save_file/tiff/{_picture}/{{}}", _save_peer),
            limit=Beside("the split alone and `write` of the same bytes", f"split_write/{_picture}/{{}}",
                         _file_limit)),
        Row(f"read the same ({_picture}) through OpenImageIO", "texture_bench", f"image/texture/{_picture}/{{}}",
            peer=Beside("OpenImageIO reading the TIFF", f"image/tiff/{_picture}/{{}}", 0.60)),
    ]
_BY_PIXEL = Beside("pixel by pixel, bounds tested in each call", "draw/pixels/{}", 0.125)
ROWS += [
    Row("draw a picture of 4096 x 4096 pixels into a frame", "texture_bench", "draw/texture/{}",
        peer=_BY_PIXEL, limit=Beside("`memcpy` of the bytes moved", "draw/memcpy/{}", 1.9)),
    Row("the same, compiled for x86-64-v3", "texture_bench", "draw/texture_v3/{}",
        peer=_BY_PIXEL, limit=Beside("`memcpy` of the bytes moved", "draw/memcpy/{}", 1.25), some_processors=True),
]

GROWTHS = [
    Growth(f"{what}: {work_text}", "import_bench", f"{work}/{factor}/{{}}", sizes)
    for what, factor, sizes in [
        ("bytes of text (KEY lines)", "text", (1_000, 10_000, 100_000, 1_000_000)),
        ("layers", "layers", (10, 100, 1_000, 10_000)),
        ("depth of nesting", "nesting", (1, 10, 100, 1_000)),
        ("objects", "objects", (10, 100, 1_000, 10_000)),
        ("keys in one object", "keys_in_one_object", (100, 1_000, 10_000, 100_000)),
    ]
    for work, work_text in [("read", "reading"), ("import", "importing")]
]
GROWTHS += [
    Growth("bytes of text (KEY lines): writing the script", "import_bench",
           "script/text/{}/real_time", (1_000, 10_000, 100_000, 1_000_000)),
    Growth("bytes of text (KEY lines): the project as JSON", "import_bench", "project_json/text/{}",
           (1_000, 10_000, 100_000, 1_000_000)),
    Growth("scenes checked in one run", "import_bench", "check/scenes/{}/manual_time", (10, 100, 1_000, 10_000)),
    Growth("findings of a check in one file", "import_bench", "check/findings/{}/manual_time", (10, 100, 1_000, 10_000)),
    Growth("sequences, and their files, a thousand each: checking", "import_bench", "check/sequences/{}/manual_time",
           (1_000, 10_000, 100_000)),
    Growth("pixels: loading a texture", "texture_bench", "load/pixels/{}", (4_096, 65_536, 1_048_576, 16_777_216)),
    Growth("pixels: saving a texture", "texture_bench", "save/pixels/{}", (4_096, 65_536, 1_048_576, 16_777_216)),
    Growth("alpha channels: loading a texture", "texture_bench", "load/alphas/{}", (10, 100, 1_000, 10_000)),
    Growth("alpha channels: saving a texture", "texture_bench", "save/alphas/{}", (10, 100, 1_000, 10_000)),
    # OpenImageIO takes up to 1,024 channels.
    Growth("alpha channels: reading through OpenImageIO", "texture_bench", "image/alphas/{}", (10, 100, 1_000)),
    Growth("chunks skipped", "texture_bench", "load/skipped_chunks/{}", (1_000, 10_000, 100_000, 1_000_000)),
]

MEMORY = [
    Memory("reading 63 MB", "import_bench", "read/text/{}", "byte of file", "file_bytes"),
    Memory("importing the same", "import_bench", "import/text/{}", "byte of file", "file_bytes"),
    Memory("writing its script", "import_bench", "script/text/{}/real_time", "byte of script", "script_bytes"),
    Memory("the project of the same as JSON", "import_bench", "project_json/text/{}", "key", "keys"),
    Memory("that JSON itself", "import_bench", "project_json/text/{}", "key", "keys", "json_bytes"),
    Memory("loading a photographic texture into the host's bitmap", "texture_bench", "load/bitmap/photographic/{}",
           "pixel", "pixels"),
    Memory("loading the same with libtiff, the bitmap there already", "texture_bench", "load/tiff/photographic/{}",
           "pixel", "pixels"),
    Memory("loading it as a value of 8 bits", "texture_bench", "load/facade/photographic/{}", "pixel", "pixels"),
    Memory("saving it", "texture_bench", "save_file/texture/photographic/{}", "pixel", "pixels"),
    Memory("reading it through OpenImageIO, the image's memory there already", "texture_bench",
           "image/texture/photographic/{}", "pixel", "pixels"),
    Memory("OpenImageIO reading the TIFF", "texture_bench", "image/tiff/photographic/{}", "pixel", "pixels"),
]
