"""Files beyond 4 GiB and the tool's verbs: rows, offsets and shares of progress are those of a small file.

Usage: large_test.py SENSORFILE sparse|written [FOLDER]

"sparse" has rows around 4 GiB and a hole before them: seconds. "written" makes a binary file of 5 GB and
a text file of as many, reads them through and through and removes them in the end: many minutes,
and 10 GB of disk at most, below FOLDER (the system's for temporary files if none is named).
"""

import json
import os
import pathlib
import pty
import re
import resource
import struct
import subprocess
import sys
import tempfile
import time

SENSORFILE = str(pathlib.Path(sys.argv[1]).resolve())
PARENT = sys.argv[3] if len(sys.argv) > 3 else None
LIMIT = 7200  # s
FOUR_GIB = 1 << 32
MEMORY = 64 * 1024  # KiB that any verb may take, however long the file is


def require(condition, message):
    if not condition:
        raise AssertionError(message)


def tool(*arguments, code=0):
    started = time.monotonic()
    result = subprocess.run([SENSORFILE, *map(str, arguments)], capture_output=True, text=True,
                            timeout=LIMIT)
    print(f"{arguments[0]}: {time.monotonic() - started:.1f} s", flush=True)
    require(result.returncode == code,
            f"{arguments}: {result.returncode}\n{result.stdout}\n{result.stderr}")
    return result.stdout


def on_terminal(*arguments, code):
    """The output of a verb that shows its progress: shares that grow, and never beyond the whole."""
    mine, terminal = pty.openpty()
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen([SENSORFILE, *map(str, arguments)], stderr=terminal,
                                   stdin=subprocess.DEVNULL, stdout=output)
        os.close(terminal)
        told = b""
        try:
            while block := os.read(mine, 65536):
                told += block
        except OSError:
            pass  # a terminal's way to say that nobody writes any more
        process.wait(LIMIT)
        os.close(mine)
        output.seek(0)
        text = output.read()
    require(process.returncode == code, f"{arguments}: {process.returncode}\n{told}")
    shares = [int(share) for share in re.findall(rb"(\d+) %", told)]
    print(f"progress of {arguments[0]}: {len(shares)} shares, {shares[:1]} to {shares[-1:]}")
    require(shares == sorted(shares) and all(share <= 100 for share in shares), f"{shares}")
    return text


class Sparse:
    """Rows of 500 columns: few of them make a long file."""

    COLUMNS = [("COUNT", "I", 6), ("TIME", "d", 9)] + [(f"V{i:03}", "d", 9) for i in range(498)]
    ROW = struct.Struct(">" + "".join(letter for _, letter, _ in COLUMNS))
    BESIDE = 10

    def __init__(self, path):
        self.path = path
        magic = struct.pack(">III", 0xAF243246, 0x56FE1289, 0x9078BC29)
        date = bytes([23, 5, 17, 10, 4, 31])
        header = magic + struct.pack(">HHQ", 0x8034, 0x0101, 40 + 34 * len(self.COLUMNS)) + date
        header += struct.pack(">dH", 200.0, len(self.COLUMNS))
        for name, letter, code in self.COLUMNS:
            header += struct.pack(">BB32s", struct.calcsize(">" + letter), code, name.encode())
        header += magic + struct.pack(">HHQ", 0x8036, 0x0200, 32) + date + struct.pack(">HQ", 2, 0)
        header += magic + struct.pack(">HH", 0x8035, 0x0100)
        self.start = len(header)
        self.border = FOUR_GIB // self.ROW.size
        self.rows = self.border + self.BESIDE
        with open(path, "wb") as file:
            file.write(header)
            file.seek(self.start + (self.border - self.BESIDE) * self.ROW.size)
            for number in range(self.border - self.BESIDE, self.rows):
                file.write(self.ROW.pack(*self.values(number)))
            file.write(b"end")  # of a row that was cut

    @staticmethod
    def values(number):
        return (number, number / 200) + (0.5,) * 498

    def look(self):
        info = json.loads(tool("info", "--json", self.path, code=3))
        require(info["rows"] == self.rows, f"{info['rows']} rows")
        first = self.border - self.BESIDE
        wanted = "".join(f"{number},{number / 200:.10g}\n" for number in range(first, self.rows))
        columns = ["--no-header", "--columns", "COUNT,TIME"]
        require(tool("cat", *columns, "--rows", f"{first}:", self.path, code=3) == wanted,
                "cat gives other rows")
        part = self.path.parent / "part.bin"
        tool("cut", "--rows", f"{first}:", self.path, part, code=3)
        require(tool("cat", *columns, part) == wanted, "cut gives other rows")
        tool("check", part)

        found = json.loads(on_terminal("check", "--json", self.path, code=3))
        end = self.start + self.rows * self.ROW.size
        offsets = [defect.get("offset") for defect in found["defects"]]
        require(end in offsets, f"the cut row at {end} is not told: {found['defects']}")
        require(found["rows"] == self.rows, f"{found['rows']} rows were checked")
        timing = json.loads(on_terminal("time", "--json", self.path, code=3))
        require(timing["rows"] == self.rows, f"{timing['rows']} rows were timed")


def rows_from(path, row_size, count, at_end=False, first=0):
    """Bytes of rows of a binary file, whose head's size is found by the number of rows."""
    size = path.stat().st_size
    start = size - json.loads(tool("info", "--json", path))["rows"] * row_size
    with open(path, "rb") as file:
        file.seek(size - count * row_size if at_end else start + first * row_size)
        return file.read(count * row_size)


def require_same_rows(one, other, size):
    """The last `size` bytes of both, which have heads of the same length."""
    require(one.stat().st_size == other.stat().st_size, "one is longer")
    with open(one, "rb") as a, open(other, "rb") as b:
        for file in (a, b):
            file.seek(-size, os.SEEK_END)
        while block := a.read(1 << 24):
            require(block == b.read(1 << 24), f"{one.name} and {other.name} differ")


def look_written(folder):
    row_size = 28  # COUNT, TIME_NS and nine axes of raw counts
    rows = 5_000_000_000 // row_size
    binary, text, part = folder / "a.bin", folder / "a.txt", folder / "part.bin"
    date = ["--creation-time", "2017-05-23T10:04:31Z"]
    tool("gen", binary, "--layout", "counts", "--rows", rows, "--frequency", 2000, *date)
    require(binary.stat().st_size > FOUR_GIB, "too small")

    def look(path):
        info = json.loads(tool("info", "--json", path))
        require(info["rows"] == rows, f"{path.name}: {info['rows']} rows")
        tool("check", path)
        tool("time", "--max-loss=0%", "--max-drift=1ppm", "--max-backward=0", "--max-repeated=0",
             path)

    look(binary)
    # The rows on both sides of 4 GiB, and a part that is larger than 4 GiB itself.
    border = FOUR_GIB // row_size
    tool("cut", "--rows", f"{border - 1000}:{border + 1000}", binary, part)
    require(rows_from(part, row_size, 2000) ==
            rows_from(binary, row_size, 2000, first=border - 1000), "cut gives other rows")
    tool("cut", "--rows", f"1000:{rows - 1000}", binary, part, "--force")
    require(part.stat().st_size > FOUR_GIB, "too small")
    require(rows_from(part, row_size, 1000, at_end=True) ==
            rows_from(binary, row_size, 1000, first=rows - 2000), "cut gives other rows")
    part.unlink()

    # Text rows are three times as long. Calibration is not exact in text, hence 3.
    rows = 60_000_000
    tool("cut", "--rows", f":{rows}", binary, part)
    binary.unlink()
    tool("convert", part, text, "--to", "text", code=3)
    require(text.stat().st_size > FOUR_GIB, "too small")
    look(text)
    tail = ["--rows", f"{rows - 1000}:"]
    require(tool("cat", *tail, text) == tool("cat", *tail, part), "cat of the text gives other rows")
    tool("cut", *tail, text, folder / "tail.txt")
    require(tool("cat", folder / "tail.txt") == tool("cat", *tail, part), "cut gives other rows")
    again = folder / "again.bin"
    tool("convert", text, again, "--to", "binary")
    require_same_rows(part, again, rows * row_size)


def main():
    with tempfile.TemporaryDirectory(dir=PARENT) as name:
        folder = pathlib.Path(name)
        if sys.argv[2] == "sparse":
            Sparse(folder / "a.bin").look()
        else:
            look_written(folder)
    peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    print(f"no verb took more than {peak} KiB of memory")
    require(peak <= MEMORY, "a verb takes memory for the length of its file")


if __name__ == "__main__":
    try:
        main()
    except AssertionError as error:
        sys.exit(str(error))
