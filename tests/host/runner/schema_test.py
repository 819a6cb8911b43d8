"""Holds docs/flow.schema.json against the examples and against broken variants of one flow.

Usage: schema_test.py PROJECT_ROOT [QUORIL]
With the program named, every broken variant must be refused by it, too.
"""

import copy
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

import jsonschema
import yaml

ROOT = pathlib.Path(sys.argv[1])
PROGRAM = sys.argv[2] if len(sys.argv) > 2 else None
SCHEMA = json.loads((ROOT / "docs/flow.schema.json").read_text())
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)

GOOD = {
    "version": 1,
    "layouts": ["main", {"name": "io", "period": "5ms"}],
    "filters": [
        {"name": "a", "class": "FilterMatrixSource", "properties": [{"Matrix": "1 2"}]},
        {"name": "b", "class": "FilterProbe", "layout": "io", "properties": [{"Pins Number": 2}]},
    ],
    "connections": [
        "a.matrix -> b.input#1 {buffer: 64, lifo: false}",
        {"from": "a.matrix", "to": "b.input#2", "buffer": 3, "lifo": True},
    ],
    "script": [
        {"at": "1.5s", "set": {"a.Time Stamp": 1.5}},
        {"at": "2 min", "command": "a.Send"},
    ],
    "stop": [{"for": "10s"}, {"when": {"a.Matrix": "1"}}, {"finished": True}],
}

# Path to a value, and what to put there; no value: taken away.
BROKEN = [
    (["version"], 2),
    (["version"], None),
    (["filters"], None),
    (["filter"], []),
    (["layouts", 0], "a b"),
    (["layouts", 1, "period"], "5"),
    (["layouts", 1, "thread"], 1),
    (["filters", 0, "name"], None),
    (["filters", 0, "name"], "a.b"),
    (["filters", 0, "class"], None),
    (["filters", 0, "clas"], "x"),
    (["filters", 0, "properties"], {"Matrix": "1"}),
    (["filters", 0, "properties", 0], {"Matrix": "1", "Time Stamp": 1}),
    (["filters", 0, "properties", 0, "Matrix"], [1, 2]),
    (["connections", 0], "a.matrix b.input#1"),
    (["connections", 0], "a -> b.input#1"),
    (["connections", 1, "to"], None),
    (["connections", 1, "from"], "a"),
    (["connections", 1, "buffer"], 0),
    (["connections", 1, "buffer"], 1000001),
    (["connections", 1, "buffer"], 1.5),
    (["connections", 1, "lifo"], "maybe"),
    (["script", 0, "at"], None),
    (["script", 0, "at"], "1,5s"),
    (["script", 0, "at"], 3),
    (["script", 0, "set"], None),
    (["script", 0, "set"], {}),
    (["script", 0, "set"], {"Matrix": 1}),
    (["script", 0, "command"], "a.Send"),
    (["script", 1, "command"], "Send"),
    (["stop", 0, "for"], "10 h"),
    (["stop", 0, "when"], {"a.Matrix": "1"}),
    (["stop", 1, "when"], {}),
    (["stop", 2, "finished"], False),
]


def broken_flow(path, value):
    flow = copy.deepcopy(GOOD)
    target = flow
    for key in path[:-1]:
        target = target[key]
    if value is None:
        del target[path[-1]]
    else:
        target[path[-1]] = value
    return flow


class SchemaTest(unittest.TestCase):
    def program_accepts(self, flow):
        with tempfile.NamedTemporaryFile("w", suffix=".yaml") as file:
            yaml.safe_dump(flow, file, sort_keys=False)
            file.flush()
            return subprocess.run([PROGRAM, "check", file.name], capture_output=True).returncode == 0

    def test_schema_is_a_schema(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_examples_are_valid(self):
        examples = sorted((ROOT / "examples").glob("*.yaml"))
        self.assertGreaterEqual(len(examples), 4)
        for path in examples:
            with self.subTest(path.name):
                VALIDATOR.validate(yaml.safe_load(path.read_text()))

    def test_good_flow_is_valid(self):
        VALIDATOR.validate(GOOD)
        if PROGRAM:
            self.assertTrue(self.program_accepts(GOOD))

    def test_broken_flows_are_refused(self):
        for path, value in BROKEN:
            with self.subTest(path=path, value=value):
                flow = broken_flow(path, value)
                self.assertFalse(VALIDATOR.is_valid(flow))
                if PROGRAM:
                    self.assertFalse(self.program_accepts(flow))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
