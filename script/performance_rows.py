"""The rows of docs/performance.md as data: what is measured, beside what, and what the goal is.

Names of benchmarks hold `{}` where the size stands: SIZES has the size that is written down and the one of a smoke run.
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
    """What a row is compared with, and the largest ratio of the row's time to its time that meets the goal."""
    text: str
    name: str
    goal: Optional[float] = None


@dataclass(frozen=True)
class Row:
    work: str
    program: str
    name: str
    peer: Optional[Beside] = None
    limit: Optional[Beside] = None


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
    """The counter peak_bytes of a benchmark, for each unit of another of its counters."""
    what: str
    program: str
    name: str
    unit: str
    unit_counter: str


ROWS = [
    Row("read a scene of 63 MB, a million KEY lines in 10,000 objects", "import_bench", "read/text/{}",
        peer=Beside("RapidJSON, SAX, full precision, into the same records", "json/text/{}", 0.50),
        limit=Beside("one `memchr` over the bytes", "memchr/text/{}", 12)),
    Row("the same, whole process: `vxr check --quiet`", "import_bench", "check/text/{}/manual_time",
        peer=Beside("`wc -w`", "words/text/{}/manual_time", 0.60)),
    Row("import the same into the embedded host", "import_bench", "import/text/{}",
        peer=Beside("reading alone", "read/text/{}", 4)),
]

GROWTHS = [
    Growth(f"{what}: {work_text}", "import_bench", f"{work}/{factor}/{{}}", sizes, note)
    for what, factor, sizes, note in [
        ("bytes of text (KEY lines)", "text", (1_000, 10_000, 100_000, 1_000_000), "linear"),
        ("layers", "layers", (10, 100, 1_000, 10_000), "linear"),
        ("depth of nesting", "nesting", (1, 10, 100, 1_000), "linear"),
        ("objects", "objects", (10, 100, 1_000, 10_000), "linear"),
        ("keys in one object", "keys_in_one_object", (100, 1_000, 10_000, 100_000), "square, deliberate"),
    ]
    for work, work_text in [("read", "reading"), ("import", "importing")]
]

MEMORY = [
    Memory("reading 63 MB", "import_bench", "read/text/{}", "byte of file", "file_bytes"),
    Memory("importing the same", "import_bench", "import/text/{}", "byte of file", "file_bytes"),
]
