#!/usr/bin/env python3
"""schema_test.py VORNEX_LABEL SCHEMA LABELS_PAGE EXAMPLE: the label file's schema and its reader take and refuse the same files.

What a schema cannot say (names that stand twice, structures that are not there, extents) is for the reader alone.
"""
import json
import os
import re
import subprocess
import sys
import tempfile

import jsonschema

TOOL, SCHEMA, PAGE, EXAMPLE = sys.argv[1:5]

# Key: values that a label may have under it, and values that it may not. `None` in front: the label's other keys.
VALUES = {
    "name": (["A", "Motor 1", "\u00e4", "A%", "@x"], ["", "A.B", "A[1]", "A%%", "@memory", 3, None]),
    "type": (["3", "11", "INT", "int", " REAL ", "INT[1..4]", "4[0..2,-1..3]/16", "ARRAY [1..2] OF INT",
              "array[0..1]of array [1..2] of BYTE", "REAL*8", "STRING(20)", "string( 255 )", "STRING(8)[1..2]",
              "1[0x0..0x1f]"],
             ["", "0", "12", "INT[", "INT[1]", "INT[1..]", "INT(3)", "STRING(0)", "STRING(256)", "STRING()", "ARRAY",
              "ARRAY OF INT", "ARRAY [1..2]", "ARRAY [1..2] INT", "REAL*0", "REAL*", "INT[1..2]x", "[1..2]", 3, None,
              "INT[1..2]/"]),
    "at": ([0, 4294967291, "100", "0x64", "0XfF"], [-1, 4294967296, "", "x", "-1", "0x", "0x1G", "0x100000000", 1.5,
                                                    True, None, []]),
    "view": (["u8", "hex", "s16"], ["", "U8", "i16", 3]),
    "unit": (["", "bar"], [3, None]),
    "decimals": ([0, 17], [-1, 18, 1.5, "2", None]),
    "scale": ([0.1, -2, 1e-30, 100], [0, "0.1", None, True]),
    "offset": ([0, -5.5], ["1", None]),
    "min": ([0, -1e9, 18446744073709551615], ["1", []]),
    "max": ([0, 1.5], ["1", {}]),
    "low": ([0, 1.5], ["1"]),
    "high": ([0, 1.5], ["1"]),
    "states": ([{}, {"0": "off", "0x10": "by hand", "-1": "bad"}, {"0": "raw"}, {"0": "x@"}],
               [[], "off", {"off": "0"}, {"0": 1}, {"0": ""}, {"0": " a"}, {"0": "a,b"}, {"0": "a=b"}, {"0": "@a"},
                {"0": "raw(1)"}, {"0": "12"}, {"0": "1e5"}, {"0": "0x1F"}, {"0": "nan"}, {"": "a"}, {"1.5": "a"}]),
    "bits": ([{}, {"Door": 0, "Over load": 15}], [[], {"Door": -1}, {"Door": 64}, {"Door": "1"}, {"A.B": 1}, {"": 1},
                                                  {"A*": 1}, {"Door": 1.5}]),
    "description": (["", "a \"b\""], [3]),
    "sim": (["", "const(1)"], [3]),
    "colour": ([], ["red"]),
}

# Whole files: text, and whether it is taken.
FILES = [
    ({"format": 1, "labels": []}, True),
    ({"format": 1, "labels": [], "$schema": "labels.schema.json", "target": "plc:2000"}, True),
    ({"format": 1, "labels": [], "target": "[::1]:65535"}, True),
    ({"format": 1, "labels": [], "target": ""}, True),
    ({"format": 1, "labels": [], "target": "plc"}, False),
    ({"format": 1, "labels": [], "target": "plc:0"}, False),
    ({"format": 1, "labels": [], "target": "plc:65536"}, False),
    ({"format": 2, "labels": []}, False),
    ({"format": "1", "labels": []}, False),
    ({"labels": []}, False),
    ({"format": 1}, False),
    ({"format": 1, "labels": {}}, False),
    ({"format": 1, "labels": [], "lables": []}, False),
    ({"format": 1, "labels": [3]}, False),
    ([], False),
    ({"format": 1, "labels": [], "structs": []}, False),
]
STRUCTS = [
    ("T", {"size": 2, "members": []}, True),
    ("T 1", {"size": "0x10", "members": [{"name": "A", "type": "INT", "at": 0}]}, True),
    ("3D", {"size": 2, "members": []}, True),
    ("T", {"size": 0, "members": []}, False),
    ("T", {"size": "0", "members": []}, False),
    ("T", {"size": 2}, False),
    ("T", {"members": []}, False),
    ("T", {"size": 2, "members": [], "pad": 1}, False),
    ("T", {"size": 2, "members": [{"name": "A", "type": "INT"}]}, False),
    ("3", {"size": 2, "members": []}, False),
    ("T.A", {"size": 2, "members": []}, False),
    ("T/2", {"size": 2, "members": []}, False),
    ("T(2)", {"size": 2, "members": []}, False),
    (" T", {"size": 2, "members": []}, False),
    ("array", {"size": 2, "members": []}, False),
]


def rows():
    yield from ((text, taken) for text, taken in FILES)
    for name, struct, taken in STRUCTS:
        yield {"format": 1, "structs": {name: struct}, "labels": []}, taken
    label = {"name": "A", "type": "DINT", "at": 0}
    for key, (good, bad) in VALUES.items():
        for value, taken in [(value, True) for value in good] + [(value, False) for value in bad]:
            yield {"format": 1, "labels": [{**label, key: value}]}, taken
    for key in label:
        yield {"format": 1, "labels": [{k: v for k, v in label.items() if k != key}]}, False


def takes(path):
    run = subprocess.run([TOOL, "labels", "convert", path, "--to", "json", "--strict", "-q"], capture_output=True,
                         text=True, timeout=60)
    if run.returncode not in (0, 2):
        sys.exit(f"{path}: exit code {run.returncode}: {run.stderr}")
    return run.returncode == 0, run.stderr


def main():
    with open(SCHEMA, encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    failures = []
    count = 0
    with tempfile.TemporaryDirectory() as folder:
        for content, taken in rows():
            count += 1
            path = os.path.join(folder, "file.json")
            with open(path, "w", encoding="utf-8") as file:
                json.dump(content, file)
            byReader, words = takes(path)
            bySchema = validator.is_valid(content)
            if (byReader, bySchema) != (taken, taken):
                failures.append(f"{json.dumps(content)}: expected {taken}, reader {byReader}, schema {bySchema} {words}")
    with open(EXAMPLE, encoding="utf-8") as file:
        example = re.sub(r"(?m)^\s*//.*$", "", file.read())
    failures += [f"{EXAMPLE}: {error.message}" for error in validator.iter_errors(json.loads(example))]
    with open(PAGE, encoding="utf-8") as file:
        table = file.read().split("has these keys")[1].split("The views are")[0]
    documented = dict(re.findall(r"\n\| `(\w+)` \| (.*) \|", table))
    described = {key: value["description"] for key, value in schema["definitions"]["label"]["properties"].items()}
    if documented != described:
        failures.append(f"the page's keys and the schema's differ: {set(documented.items()) ^ set(described.items())}")
    print("\n".join(failures + [f"{count} files, {len(failures)} differences"]))
    sys.exit(1 if failures else 0)


main()
