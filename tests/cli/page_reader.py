#!/usr/bin/env python3
"""Reads a page of `vxr report` as a browser without scripts does, and prints what is in it as one JSON document:
faults (of the HTML, of what it may load, of the hashes that let its own parts run), headings, verdicts, names (what is
isolated by <bdi>), sources (marked lines of the scene), commands, the number of findings' places, and the data for scripts.

page_reader.py PAGE
"""

import base64
import hashlib
import json
import re
import sys
from html.parser import HTMLParser

VOID = {"meta", "br", "img", "input", "hr", "link"}


class Page(HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.open = []
        self.faults = []
        self.ids = set()
        self.links = []
        self.policy = ""
        self.parts = {"script": [], "style": []}
        self.data = []
        self.caught = {"headings": [], "verdicts": [], "names": [], "sources": [], "commands": [], "marked": []}
        self.places = 0

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if len(values) != len(attributes):
            self.faults.append(f"<{tag}> says something twice")
        for name, value in attributes:
            if name == "style" or name.startswith("on"):
                self.faults.append(f"<{tag}> has {name}")
            if name == "src" and not value.startswith("data:"):
                self.faults.append(f"<{tag}> loads {value}")
            if name == "href":
                self.links.append(value)
            if name == "id":
                if value in self.ids:
                    self.faults.append(f"two elements have the id {value}")
                self.ids.add(value)
        if tag == "meta" and values.get("http-equiv") == "Content-Security-Policy":
            self.policy = values["content"]
        if tag not in VOID:
            self.open.append((tag, values))
        kinds = {"bdi": "names", "mark": "marked"}
        classes = (values.get("class") or "").split()
        kind = kinds.get(tag)
        if re.fullmatch("h[1-6]", tag):
            kind = "headings"
        elif "verdict" in classes:
            kind = "verdicts"
        elif "source" in classes:
            kind = "sources"
        elif "data-copy" in values:
            kind = "commands"
        if tag == "li" and any("places" in (v.get("class") or "").split() for t, v in self.open[-2:-1]):
            self.places += 1
        if kind:
            self.caught[kind].append("")
            self.open[-1][1]["_caught"] = kind

    def handle_endtag(self, tag):
        if not self.open or self.open[-1][0] != tag:
            self.faults.append(f"</{tag}> ends " + (f"<{self.open[-1][0]}>" if self.open else "nothing"))
        else:
            self.open.pop()

    def handle_data(self, data):
        tag, values = self.open[-1] if self.open else ("", {})
        if tag in self.parts:
            if values.get("type") == "application/json":
                self.data.append(data)
            else:
                self.parts[tag].append(data)
            return
        for _, values in self.open:
            if "_caught" in values:
                self.caught[values["_caught"]][-1] += data

    def finish(self):
        self.close()
        if self.open:
            self.faults.append(f"<{self.open[-1][0]}> does not end")
        for link in self.links:
            if not link.startswith("#"):
                self.faults.append(f"leads to {link}")
            elif link[1:] not in self.ids:
                self.faults.append(f"leads to {link}, which is nowhere")
        rules = dict(rule.strip().partition(" ")[::2] for rule in self.policy.split(";"))
        if rules.get("default-src") != "'none'":
            self.faults.append("does not forbid everything else")
        if set(rules) - {"default-src", "script-src", "style-src", "img-src", "base-uri", "form-action"}:
            self.faults.append(f"allows more: {self.policy}")
        for tag, parts in self.parts.items():
            for part in parts:
                digest = "'sha256-" + base64.b64encode(hashlib.sha256(part.encode()).digest()).decode() + "'"
                if rules.get(f"{tag}-src") != digest:
                    self.faults.append(f"the browser refuses its <{tag}>: {digest}")
            if len(parts) != 1:
                self.faults.append(f"{len(parts)} <{tag}>")


def main():
    page = Page()
    with open(sys.argv[1], encoding="utf-8", newline="") as file:
        page.feed(file.read())
    page.finish()
    data = json.loads("".join(page.data), parse_constant=lambda word: page.faults.append(f"{word} in JSON"))
    json.dump({"faults": page.faults, "places": page.places, **page.caught, "data": data}, sys.stdout)


main()
