"""Records a day of a 200 Hz unit in fast time, through the real host and module, replays it and records
the replay: not a row may be missing, doubled or shifted, the 16-bit frame counter turns every 328 s and
replay follows it, and the memory of the process does not grow.

Usage: day_test.py QUORIL SENSORFILE HOURS [FOLDER]

HOURS of recording; the files are made below FOLDER (the system's for temporary files if none is
named) and removed in the end: 2 GB for 24 hours.
"""

import json
import pathlib
import re
import subprocess
import sys
import tempfile
import threading
import time

QUORIL, SENSORFILE = (str(pathlib.Path(one).resolve()) for one in sys.argv[1:3])
RATE = 200  # rows per second
ROWS = round(float(sys.argv[3]) * 3600 * RATE)
PARENT = sys.argv[4] if len(sys.argv) > 4 else None
TURN = 65536  # rows after which the counter begins again
LIMIT = 7200  # s
GROWTH = 2048  # KiB of memory from the warm-up of a run to its end, that tables may still fill
DRIFT = 1e-6  # share of the time; 0.1 % is promised
DATES = re.compile(rb"\d\d/\d\d/\d{4}\t\d\d:\d\d:\d\d")

FLOW = """
version: 1
plugins: [QuorilPluginSensorFile-2.5.0]
filters:
{filters}
connections:
{connections}
{stop}
"""
SIMULATOR = f"""
  - name: source
    class: FilterImuSimulator
    properties:
      - Rate: {RATE}
      - Count: {ROWS}
      - Start Time: {1 / RATE}
      - Raw Counts: true
"""
KIVRA2_PLAYER = """
  - name: source
    class: FilterReplayKivra2Format
    properties:
      - Load File: {path}
      - Keep file frequency: false
      - Force Ticks: true
      - SampleDelay: 0
      - Replay: true
"""
PLAYER = """
  - name: source
    class: FilterReplaySensorFile
    properties:
      - Binary: {binary}
      - Load File: {path}
      - QuickProcess: true
      - TimeStampMode: {mode}
      - TimeStampColName: {column}
      - Replay: true
"""
KIVRA2_RECORDER = """
  - name: unit
    class: FilterRecordKivra2Format
    properties:
      - File Name: {path}
      - Record: true
"""
RECORDER = f"""
  - name: {{name}}
    class: FilterRecordSensorFile
    properties:
      - Binary: {{binary}}
      - Freq: {RATE}
      - Save Timestamp: true
      - File Name: {{path}}
      - TimeStampColName: TIME
{{pins}}
      - Record: true
"""
PROBE = """
  - name: seen
    class: FilterProbe
    properties:
      - Pins Number: 1
"""
# Column names of the pins of a recorder, with their type: what the simulator's pins hold, and the same
# columns as the player's pins have them.
SIMULATED_PINS = {"COUNT, LOSS, RATE": "UINT16", "ACCX, ACCY, ACCZ": "INT16"}
REPLAYED_PINS = {"COUNT": "UINT16", "LOSS": "UINT16", "RATE": "UINT16", "ACCX, ACCY, ACCZ": "INT16"}
SIMULATED = {"3a": "acc", "3aGain": "accGain", "3aOff": "accOffset", "3m": "mag",
             "3mGain": "magGain", "3mOff": "magOffset", "FrameNumber": "frame", "Button": "button"}


def require(condition, message):
    if not condition:
        raise AssertionError(message)


class Memory(threading.Thread):
    """Looks at the resident memory of a process while it runs, KiB."""

    def __init__(self, process):
        super().__init__(daemon=True)
        self.path = pathlib.Path(f"/proc/{process.pid}/status")
        self.process = process
        self.sizes = []
        self.warm = None
        self.start()

    def look(self):
        found = re.search(r"VmRSS:\s+(\d+)", self.path.read_text())
        if found:
            self.sizes.append(int(found.group(1)))

    def end_warm_up(self):
        self.look()
        self.warm = max(self.sizes)

    def growth(self):
        """From the largest of the warm-up, half of the time if nobody ended it, to the largest."""
        if self.warm is None:
            self.warm = max(self.sizes[:max(1, len(self.sizes) // 2)])
        return max(self.sizes) - self.warm

    def run(self):
        while self.process.poll() is None:
            self.look()
            time.sleep(0.02)


def recorder(name, path, pins):
    lines = [f"      - Pins Number: {len(pins)}"]
    for number, (columns, kind) in enumerate(pins.items(), 1):
        lines += [f"      - ColNames#{number}: {columns}", f"      - ColTypes#{number}: {kind}"]
    return RECORDER.format(name=name, path=path, binary=is_binary(path), pins="\n".join(lines))


def is_binary(path):
    return str(path.suffix == ".bin").lower()


class Seen:
    """Follows the samples of a replay as a probe tells them: frame counters and time stamps."""

    def __init__(self):
        self.rows = 0
        self.worst = 0.0

    def follow(self, stream, end_warm_up):
        number = 0
        worst = 0.0
        for line in stream:
            stamp = float(line[line.index(b'"time":') + 7:line.index(b',"rows"')])
            counter = line[line.index(b'"values":[') + 10:-3].split(b",")[0]
            require(int(float(counter)) == number % TURN, f"row {number} is another: {line}")
            number += 1
            if number == ROWS // 5:
                end_warm_up()
            worst = max(worst, abs(stamp - number / RATE))
        self.rows, self.worst = number, worst


def run(what, folder, filters, connections, seen=None):
    flow = folder / "flow.yaml"
    flow.write_text(FLOW.format(
        filters="".join(filters), connections="".join(f"  - {one}\n" for one in connections),
        stop="stop: [{when: {source.Replay: false}}]" if seen else ""))
    started = time.monotonic()
    with tempfile.TemporaryFile() as errors:
        process = subprocess.Popen([QUORIL, "run", "--rate", "max", "-q", str(flow)],
                                   stdout=subprocess.PIPE, stderr=errors)
        memory = Memory(process)
        try:
            (seen or Seen()).follow(process.stdout, memory.end_warm_up)
        finally:
            process.stdout.close()
            process.wait(LIMIT)
        memory.join()
        errors.seek(0)
        told = errors.read()
    require((process.returncode, told) == (0, b""), f"{what}: {process.returncode} {told}")
    growth = memory.growth()
    drift = ""
    if seen:
        require(seen.rows == ROWS, f"{what}: {seen.rows} rows")
        require(seen.worst <= DRIFT * ROWS / RATE, f"{what}: time is off by {seen.worst} s")
        drift = f", time off by at most {seen.worst:.1e} s"
    print(f"{what}: {ROWS} rows in {time.monotonic() - started:.1f} s, memory {memory.warm} KiB and "
          f"{growth:+} KiB to the end{drift}", flush=True)
    require(growth <= GROWTH, f"{what}: the memory grows")


def tool(*arguments):
    result = subprocess.run([SENSORFILE, *arguments], capture_output=True, text=True, timeout=LIMIT)
    require(result.returncode == 0, f"{arguments}: {result.returncode}\n{result.stdout}\n"
                                    f"{result.stderr}")
    return result.stdout


def without_dates(path, binary):
    """The head of a file with its dates replaced, and a stream at what follows."""
    stream = open(path, "rb")
    head = bytearray(stream.read(4096))
    if binary:
        columns = int.from_bytes(head[38:40], "big")
        for section in (0, 40 + 34 * columns):
            head[section + 24:section + 30] = bytes(6)
    else:
        head = DATES.sub(b"", head)
    return bytes(head), stream


def require_equal(one, other, binary):
    head, stream = without_dates(one, binary)
    other_head, other_stream = without_dates(other, binary)
    with stream, other_stream:
        require(head == other_head, f"{one.name} and {other.name} differ in their heads")
        while block := stream.read(1 << 24):
            require(block == other_stream.read(1 << 24), f"{one.name} and {other.name} differ")
        require(not other_stream.read(1), f"{other.name} is longer")


def require_counted(path, row_size, place):
    """The big-endian 16-bit counter is in every row, one after the other, through all its turns."""
    content = path.read_bytes()
    content = content[len(content) - ROWS * row_size:]
    for byte, shift in ((0, 8), (1, 0)):
        turn = bytes(i >> shift & 0xff for i in range(TURN))
        wanted = (turn * (ROWS // TURN + 1))[:ROWS]
        require(content[place + byte::row_size] == wanted, f"{path.name}: rows are out of order")


def look_at(path, has_time):
    tool("check", str(path))
    info = json.loads(tool("info", "--json", str(path)))
    require(info["rows"] == ROWS, f"{path.name}: {info['rows']} rows")
    limits = ["--max-loss=0%", "--max-backward=0", "--max-repeated=0"]
    tool("time", *limits, *(["--max-drift=1ppm"] if has_time else []), str(path))
    print(f"{path.name}: {path.stat().st_size} bytes, clean", flush=True)


def main():
    with tempfile.TemporaryDirectory(dir=PARENT) as name:
        folder = pathlib.Path(name)
        # The unit's own recorder has COUNT, samples and INFO; the others a time stamp, too.
        unit, rows, text = folder / "unit.bin", folder / "rows.bin", folder / "rows.txt"
        run("record", folder,
            [SIMULATOR, KIVRA2_RECORDER.format(path=unit),
             recorder("rec0", rows, SIMULATED_PINS), recorder("rec1", text, SIMULATED_PINS)],
            [f"source.{pin} -> unit.{name}" for name, pin in SIMULATED.items()] +
            [f"source.{pin} -> rec{i}.{name}" for i in (0, 1) for pin, name in
             (("time", "TimeStampPin"), ("frame", "input#1"), ("acc", "input#2"))])
        require_counted(unit, row_size=15, place=0)
        require_counted(rows, row_size=20, place=8)
        for path in (unit, rows, text):
            look_at(path, has_time=path != unit)
        print(f"the counter turned {(ROWS - 1) // TURN} times")

        again = folder / "again.bin"
        run("replay by frames of unit.bin", folder,
            [KIVRA2_PLAYER.format(path=unit), KIVRA2_RECORDER.format(path=again), PROBE],
            [f"source.{name} -> unit.{name}" for name in SIMULATED] +
            ["source.FrameNumber -> seen.input#1"], Seen())
        require_equal(unit, again, binary=True)

        for mode, column in (("Ticks", "COUNT"), ("FrameNumber", "TIME")):
            for path in (rows, text):
                again = folder / f"again{path.suffix}"
                run(f"replay by {mode} of {path.name}", folder,
                    [PLAYER.format(path=path, mode=mode, column=column, binary=is_binary(path)),
                     recorder("rec", again, REPLAYED_PINS), PROBE],
                    [f"source.{pin} -> rec.{name}" for pin, name in
                     (("TIME", "TimeStampPin"), ("COUNT", "input#1"), ("LOSS", "input#2"),
                      ("RATE", "input#3"), ("ACC", "input#4"))] +
                    ["source.COUNT -> seen.input#1"], Seen())
                require_equal(path, again, binary=path == rows)
                again.unlink()


if __name__ == "__main__":
    try:
        main()
    except AssertionError as error:
        sys.exit(str(error))
