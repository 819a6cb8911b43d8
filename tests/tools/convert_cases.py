"""What the tests of convert share."""

import json
import random
import struct

from sample_files import CODES, TYPES
from tool_test import ToolTest

ALL = [(f"C{code}", name) for code, (_, name) in TYPES.items()]


def random_rows(count, seed=1):
    """Values of all types that text keeps as well."""
    dice = random.Random(seed)

    def value(kind):
        letter = TYPES[CODES[kind]][0]
        if kind == "bool":
            return dice.randrange(2)
        if kind.endswith("char"):
            return dice.randrange(33, 127)
        if letter == "f":
            return dice.randrange(-4000, 4000) / 32
        if letter == "d":
            return dice.randrange(-10**9, 10**9) / 10**5
        bits = 8 * struct.calcsize(letter)
        low = -2**(bits - 1) if letter.islower() else 0
        return dice.choice([low, low + 2**bits - 1, low + dice.randrange(2**bits), 0])
    return [[value(kind) for _, kind in ALL] for _ in range(count)]


class ConvertTest(ToolTest):
    def convert(self, *arguments, code=0, stderr=""):
        self.assertEqual(self.output_of("convert", *arguments, code=code, stderr=stderr), "")

    def info(self, name):
        return json.loads(self.output_of("info", "--json", name))

    def header_of(self, name):
        info = self.info(name)
        return {key: info[key] for key in ["header", "columns", "calibration", "rows"]}

    def rows_of(self, name):
        return self.output_of("cat", name).splitlines()[1:]

    def fails(self, *arguments, message, code=1):
        """Exactly this is told, and no file is left behind."""
        before = sorted(one.name for one in self.folder.iterdir())
        result = self.tool("convert", *arguments)
        self.assert_fails(result, code)
        self.assertEqual(result.stderr, "sensorfile: " + message + "\n")
        self.assert_files(*before)
