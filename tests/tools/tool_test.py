"""What the tests of sensorfile's verbs share: the program, run as a user does.

Each file of tests is run with: FILE_test.py PROGRAM PROJECT_ROOT [TEST...]
"""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

import jsonschema

PROGRAM, ROOT = str(pathlib.Path(sys.argv[1]).resolve()), pathlib.Path(sys.argv[2]).resolve()
# Sanitizers keep what was freed and reserve large parts of the address space.
IS_SANITIZED = bool(os.environ.get("QUORIL_SANITIZE"))
# No test takes that long; a hanging one ends at last.
LIMIT = 240 if IS_SANITIZED else 60


class ToolTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, content):
        (self.folder / name).write_bytes(content)
        return name

    def tool(self, *arguments, **options):
        options = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True, **options}
        if "input" not in options:
            options.setdefault("stdin", subprocess.DEVNULL)
        return subprocess.run([PROGRAM, *arguments], cwd=self.folder, timeout=LIMIT, **options)

    def output_of(self, *arguments, code=0, stderr="", **options):
        """What is written to stdout by a call of which the rest is as given."""
        result = self.tool(*arguments, **options)
        self.assertEqual((result.returncode, result.stderr), (code, stderr))
        return result.stdout

    def read(self, name):
        return (self.folder / name).read_bytes()

    def assert_files(self, *names):
        """Nothing else is left in the folder."""
        self.assertEqual(sorted(one.name for one in self.folder.iterdir()), sorted(names))

    def json_of(self, *arguments, **options):
        """The one object that is written, which is as its schema says."""
        found = json.loads(self.output_of(*arguments, "--json", **options))
        self.assert_schema(found)
        return found

    def assert_schema(self, found):
        path = ROOT / "docs" / "schemas" / (found["schema"] + ".schema.json")
        schema = json.loads(path.read_text())
        jsonschema.Draft7Validator.check_schema(schema)
        jsonschema.validate(found, schema)

    def assert_fails(self, result, code=1):
        """Nothing on stdout, one line on stderr."""
        self.assertEqual((result.returncode, result.stdout), (code, ""), result.stderr)
        self.assertRegex(result.stderr, r"\Asensorfile: [^\n]+\n\Z")


def main():
    unittest.main(module="__main__", argv=[sys.argv[0], *sys.argv[3:]])
