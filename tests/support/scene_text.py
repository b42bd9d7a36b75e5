"""Reads the text of a scene, by the rules of docs/composition-format.md, into plain objects.

It shares nothing with the programs under test. It reads valid scenes only.
"""

import re
import struct
from dataclasses import dataclass, field
from pathlib import Path

TOKEN = re.compile(rb'"((?:\$"|[^"])*)"|[A-Za-z_]\w*|[-.\d][-+.\da-fA-FxX]*|[^\0]')
BLANK = re.compile(rb"(?:[ \t\r\n]|/[^\r\n]*)*")


def single(text):
    """The number as a float holds it."""
    return struct.unpack("<f", struct.pack("<f", float(text)))[0]


def last_component(path):
    return re.split(r"[:\\/]", path)[-1]


@dataclass
class Footage:
    numbered: bool
    blend: str
    alpha: str
    written: str
    path: Path = None  # None: it is missing


@dataclass
class Composition:
    blend: str
    name: str
    entries: list = field(default_factory=list)


@dataclass
class Object:
    word: str
    name: str
    line: int
    keys: list = field(default_factory=list)  # of numbers, in the order of the file
    light: dict = field(default_factory=lambda: {
        "TYPE": "OMNI", "SHADOW": "NONE", "COLOR": [1.0, 1.0, 1.0], "INTENSITY": 1.0, "ANGLE": 30.0})


class SceneText:
    def __init__(self, path):
        self.folder = Path(path).parent
        self.bytes = Path(path).read_bytes()
        self.at = 0
        self.settings = {"ASPECT": 1.0, "WRITTEN ASPECT": "1", "FIELDS": "NONE", "LOCAL": False}
        self.passes = []
        self.objects = []
        assert [self.take(), self.take(), self.take()] == ["VORTAN", "XR", "COMPOSITION"]
        self.read_settings()
        self.root = self.composition()
        while self.peek() in ("FILE", "FSEQ"):
            self.passes.append(self.footage(self.take(), True))
        while self.peek() in ("CAMERA", "LIGHT", "NULL"):
            self.objects.append(self.object(self.take()))

    # ---- Tokens. A string is a tuple, so that it is no word.

    def scan(self):
        begin = BLANK.match(self.bytes, self.at).end()
        return TOKEN.match(self.bytes, begin)

    def peek(self):
        found = self.scan()
        return found[0].decode("latin-1") if found and found[1] is None else None

    def take(self):
        found = self.scan()
        self.at = found.end()
        if found[1] is not None:
            return (found[1].replace(b'$"', b'"').decode(),)
        return found[0].decode("latin-1")

    def name(self):
        return self.take()[0]

    def real(self):
        return single(self.take())

    # ---- The parts of the file.

    def read_settings(self):
        while True:
            word = self.take()
            if word == "COMPOSITION":
                return
            if word == "RESOLUTION":
                self.settings[word] = (int(self.take()), int(self.take()))
            elif word == "LOCAL":
                self.settings[word] = True
            elif word == "ASPECT":
                self.settings["WRITTEN ASPECT"] = self.take()
                self.settings[word] = single(self.settings["WRITTEN ASPECT"])
            elif word == "FIELDS":
                self.settings[word] = self.take()
            else:
                self.settings[word] = int(re.match(r"-?\d+", self.take())[0])

    def composition(self):
        made = Composition(self.take(), self.name())
        # Without a block there are no entries, and whatever stands in its place is dropped.
        if self.take() != "{":
            return made
        while (word := self.take()) != "}":
            if word == "COMPOSITION":
                made.entries.append(self.composition())
            elif word in ("FILE", "FSEQ"):
                made.entries.append(self.footage(word, False))
        return made

    def footage(self, word, top):
        blend = "".join(self.take() for _ in range(3)) if top else self.take()
        alpha = self.take()
        # From the first quote to the last one of its line.
        begin = self.bytes.index(b'"', self.at) + 1
        self.at = re.compile(rb"[\r\n]").search(self.bytes, begin).start()
        written = self.bytes[begin:self.bytes.rindex(b'"', begin, self.at)].decode()
        beside = self.folder / last_component(written)
        found = next((one for one in (Path(written), beside) if one.is_file()), None)
        return Footage(word == "FSEQ", blend, alpha, written, found)

    def object(self, word):
        made = Object(word, self.name(), self.bytes.count(b"\n", 0, self.at) + 1)
        assert self.take() == "{"
        while (entry := self.take()) != "}":
            if entry == "KEY":
                frame = int(re.match(r"-?\d+", self.take())[0])
                numbers = []
                while re.match(r"[-.\d]", self.peek() or ""):
                    numbers.append(self.real())
                made.keys.append([frame] + numbers)
            elif entry == "COLOR":
                made.light[entry] = [self.real() for _ in range(3)]
            elif entry in ("INTENSITY", "ANGLE"):
                made.light[entry] = self.real()
            else:
                made.light[entry] = self.take()
        return made
