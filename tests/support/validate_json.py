#!/usr/bin/env python3
"""Validates JSON documents against the schemas of docs/schema.

  validate_json.py SCHEMAS DOCUMENTS

DOCUMENTS is a folder of files NAME.NUMBER.json, each one or more documents for SCHEMAS/NAME.json, one after the other,
and NAME.NUMBER.jsonl, one document a line. Prints each fault with its place, and fails if there is one or nothing to
validate.
"""

import json
import sys
from pathlib import Path

from jsonschema import Draft202012Validator, RefResolver


def validators(schemas):
    """A validator for each schema; the schemas themselves are valid, too."""
    loaded = {path.name: json.loads(path.read_text(encoding="utf-8")) for path in schemas.glob("*.json")}
    for schema in loaded.values():
        Draft202012Validator.check_schema(schema)
    return {
        name.removesuffix(".json"): Draft202012Validator(schema, resolver=RefResolver(name, schema, store=loaded))
        for name, schema in loaded.items()
    }


def documents(path):
    text = path.read_text(encoding="utf-8")
    if path.suffix == ".jsonl":
        yield from (json.loads(line) for line in text.splitlines())
        return
    decoder = json.JSONDecoder()
    at = 0
    while text[at:].strip():
        document, end = decoder.raw_decode(text[at:].lstrip())
        at += len(text[at:]) - len(text[at:].lstrip()) + end
        yield document


def main():
    schemas, folder = map(Path, sys.argv[1:])
    by_name = validators(schemas)
    count = faults = 0
    for path in sorted(folder.iterdir()):
        validator = by_name[path.name.split(".")[0]]
        for document in documents(path):
            count += 1
            for error in list(validator.iter_errors(document))[:5]:
                faults += 1
                place = "/".join(map(str, error.absolute_path))
                print(f"{path.name}: {place}: {error.message[:300]}", file=sys.stderr)
    if count == 0:
        sys.exit("error: there is nothing to validate")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
