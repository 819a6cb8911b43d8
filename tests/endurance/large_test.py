"""Files beyond 4 GiB and the tool's verbs: rows, offsets and shares of progress are those of a small file.

Usage: large_test.py SENSORFILE sparse|written [FOLDER]

"sparse" has rows around 4 GiB and a hole before them: seconds. "written" writes a binary file and a text
file that long, reads them through and through and removes them in the end: minutes, and 9 GB of
disk, below FOLDER (the system's for temporary files if none is named).
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
MEMORY = 64 << 20  # bytes that any verb may take, however long the file is


def require(condition, message):
    if not condition:
        raise AssertionError(message)


def limit_memory():
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))


def tool(*arguments, code=0):
    started = time.monotonic()
    result = subprocess.run([SENSORFILE, *map(str, arguments)], capture_output=True, text=True,
                            timeout=LIMIT, preexec_fn=limit_memory)
    print(f"{arguments[0]}: {time.monotonic() - started:.1f} s", flush=True)
    require(result.returncode == code,
            f"{arguments}: {result.returncode}\n{result.stdout}\n{result.stderr}")
    return result.stdout


def on_terminal(*arguments, code):
    """The output of a verb that shows its progress: shares that grow, and never beyond the whole."""
    mine, terminal = pty.openpty()
    with tempfile.TemporaryFile() as output:
        process = subprocess.Popen([SENSORFILE, *map(str, arguments)], stderr=terminal,
                                   stdin=subprocess.DEVNULL, stdout=output,
                                   preexec_fn=limit_memory)
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


class Written:
    """Rows of a 16-bit counter and 30 axes, which come again when the counter does: a whole turn of it is
    made once and written until the file is long enough."""

    AXES = [f"V{i:02}" for i in range(30)]
    ROW = struct.Struct(">H30h")
    TURN = 65536

    def __init__(self, folder):
        self.folder = folder
        self.turn = [(number, *((number * (37 + axis) + axis) % 20001 - 10000
                                for axis in range(30))) for number in range(self.TURN)]
        self.bytes = b"".join(self.ROW.pack(*row) for row in self.turn)
        self.text = "".join("".join(f"{value}\t" for value in row) + "\n"
                            for row in self.turn).encode()

    def write(self, name, content):
        """The path and the number of rows of a file of somewhat more than 4 GiB."""
        head, table = self.folder / ("head" + name), self.folder / "head.csv"
        table.write_text(",".join(["COUNT", *self.AXES]) + "\n" + ",".join("0" * 31) + "\n")
        columns = ["COUNT=UINT16", *(f"{axis}=INT16" for axis in self.AXES)]
        tool("import", table, head, "--frequency", "200", "--columns", ",".join(columns))
        row_size = self.ROW.size if head.suffix == ".bin" else 31 * 2 + 1
        turns = FOUR_GIB // len(content) + 3
        path = self.folder / name
        with open(path, "wb") as file:
            file.write(head.read_bytes()[:-row_size])
            for _ in range(turns):
                file.write(content)
        require(path.stat().st_size > FOUR_GIB, "too small")
        print(f"{name}: {path.stat().st_size} bytes, {turns * self.TURN} rows")
        return path, turns * self.TURN

    def bytes_of(self, first, end):
        """Of rows, binary."""
        skipped = first % self.TURN
        turns = self.bytes * ((end - first + skipped) // self.TURN + 1)
        return turns[skipped * self.ROW.size:(skipped + end - first) * self.ROW.size]

    def require_rows(self, path, first, end):
        """The file ends with these rows."""
        count = json.loads(tool("info", "--json", path))["rows"]
        require(count == end - first, f"{path.name}: {count} rows")
        with open(path, "rb") as file:
            file.seek(-count * self.ROW.size, os.SEEK_END)
            while first < end:
                piece = min(end, first + self.TURN)
                require(file.read((piece - first) * self.ROW.size) == self.bytes_of(first, piece),
                        f"{path.name}: other rows from {first} on")
                first = piece

    @staticmethod
    def look_at(path, rows):
        info = json.loads(tool("info", "--json", path))
        require(info["rows"] == rows, f"{path.name}: {info['rows']} rows")
        tool("check", path)
        tool("time", "--max-loss=0%", "--max-backward=0", "--max-repeated=0", path)

    def look(self):
        part = self.folder / "part.bin"
        binary, rows = self.write("a.bin", self.bytes)
        self.look_at(binary, rows)
        # The rows on both sides of 4 GiB, and a part that is larger than 4 GiB itself.
        border = FOUR_GIB // self.ROW.size
        tool("cut", "--rows", f"{border - 1000}:{border + 1000}", binary, part)
        self.require_rows(part, border - 1000, border + 1000)
        tool("cut", "--rows", f"10:{rows - 10}", binary, part, "--force")
        require(part.stat().st_size > FOUR_GIB, "too small")
        self.require_rows(part, 10, rows - 10)
        binary.unlink()
        part.unlink()

        text, rows = self.write("a.txt", self.text)
        self.look_at(text, rows)
        tail = ["--rows", f"{rows - 1000}:"]
        wanted = "".join(",".join(map(str, row)) + "\n" for row in self.turn[-1000:])
        require(tool("cat", "--no-header", *tail, text) == wanted, "cat gives other rows")
        tool("cut", *tail, text, self.folder / "part.txt")
        require(tool("cat", "--no-header", self.folder / "part.txt") == wanted,
                "cut gives other rows")
        tool("convert", text, part, "--to", "binary")
        self.require_rows(part, 0, rows)


def main():
    with tempfile.TemporaryDirectory(dir=PARENT) as name:
        folder = pathlib.Path(name)
        if sys.argv[2] == "sparse":
            Sparse(folder / "a.bin").look()
        else:
            Written(folder).look()
    print(f"no verb took more than {MEMORY >> 20} MiB of memory")


if __name__ == "__main__":
    try:
        main()
    except AssertionError as error:
        sys.exit(str(error))
