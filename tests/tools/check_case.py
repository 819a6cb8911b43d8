"""What the tests of sensorfile check share."""

from tool_test import ToolTest


class CheckTest(ToolTest):
    def report(self, content, *arguments, code=3):
        name = self.write("a", content)
        return self.json_of("check", name, *arguments, code=code)

    def found(self, content, *arguments, code=3):
        """Code, offset, row and column of each defect."""
        defects = self.report(content, *arguments, code=code)["defects"]
        return [(one["code"], one["offset"], one["row"], one["column"]) for one in defects]

    def codes(self, content, *arguments, code=3):
        return [one[0] for one in self.found(content, *arguments, code=code)]

    def assert_clean(self, content, *arguments):
        report = self.report(content, *arguments, code=0)
        self.assertEqual((report["defects"], report["clean"]), ([], True))

    def assert_one(self, content, expected, words="", *arguments, code=3):
        """One defect, which is as expected: code, offset, row, column."""
        report = self.report(content, *arguments, code=code)
        self.assertEqual([(one["code"], one["offset"], one["row"], one["column"])
                          for one in report["defects"]], [expected])
        self.assertIn(words, report["defects"][0]["message"])


def row_text(*values):
    return "".join(f"{value}\t" for value in values).encode() + b"\n"


def patched(content, offset, replacement):
    return content[:offset] + replacement + content[offset + len(replacement):]
