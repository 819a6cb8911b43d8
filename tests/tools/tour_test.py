"""Runs the commands of docs/sensorfile.md, one after the other in an empty folder, and compares what
they write with what the page shows.

With QUORIL_RENEW_TOUR=1 the page is written anew with the present outputs. Blocks that begin with
"```console" hold commands behind "$ " and their outputs; a line "..." stands for any lines. What a
command writes to the standard error is shown behind its output.
"""

import os
import pathlib
import re
import subprocess

from tool_test import LIMIT, PROGRAM, ROOT, ToolTest, main

PAGE = ROOT / "docs" / "sensorfile.md"
BLOCK = re.compile(r"```console\n(.*?)```", re.DOTALL)


def split_block(block):
    """Pairs of a command and the output below it."""
    pairs = []
    for line in block.splitlines(keepends=True):
        if line.startswith("$ "):
            pairs.append([line[2:].rstrip("\n"), ""])
        else:
            pairs[-1][1] += line
    return pairs


def pattern_of(text):
    lines = [r"(?:[^\n]*\n)*?" if line == "...\n" else re.escape(line)
             for line in text.splitlines(keepends=True)]
    return r"\A" + "".join(lines) + r"\Z"


class Tour(ToolTest):
    def run_command(self, command):
        path = f"{pathlib.Path(PROGRAM).parent}:/usr/bin:/bin"
        result = subprocess.run(["bash", "-c", command], cwd=self.folder, timeout=LIMIT, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, env={**os.environ, "PATH": path})
        return result.stdout + result.stderr

    def test_commands_write_what_the_page_shows(self):
        renewed = []
        for block in BLOCK.findall(PAGE.read_text()):
            new = ""
            for command, shown in split_block(block):
                output = self.run_command(command)
                is_as_shown = re.match(pattern_of(shown), output)
                new += f"$ {command}\n{shown if is_as_shown else output}"
                if "QUORIL_RENEW_TOUR" not in os.environ:
                    self.assertTrue(is_as_shown, f"$ {command}\n{output}\ninstead of\n{shown}")
            renewed.append(new)
        self.assertGreater(len(renewed), 5)
        if "QUORIL_RENEW_TOUR" in os.environ:
            blocks = iter(renewed)
            PAGE.write_text(BLOCK.sub(lambda _: f"```console\n{next(blocks)}```",
                                      PAGE.read_text()))


if __name__ == "__main__":
    main()
