"""Records through the real host and module, kills the process at random moments, and looks at what is
left: the files open as they are, every row is there but those of the last half second, and recover
makes a file of each that check calls clean.

Usage: kill_test.py QUORIL SENSORFILE MOMENTS [SEED]

MOMENTS are the kills per case; several recordings run beside each other.
"""

import collections
import concurrent.futures
import json
import os
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

QUORIL, SENSORFILE = (str(pathlib.Path(one).resolve()) for one in sys.argv[1:3])
MOMENTS = int(sys.argv[3])
SEED = int(sys.argv[4]) if len(sys.argv) > 4 else random.randrange(2**32)
PROMISE = 0.5  # s, of which rows may be lost
LONGEST = 2.0  # s, from the first row to the kill
BESIDE = 4
LIMIT = 60  # s
PIPE_PART = 65536  # bytes
# Recordings of this length follow each other where beginnings and ends are to be met. What comes
# between two of them waits for the second, so that all of them together have every row.
SHORT = 0.04  # s
PAUSE = 0.01  # s

# Every row of a recording has a number. `rate` is in rows per second; `many`: one short recording
# after the other, instead of one.
Case = collections.namedtuple("Case", "recorder binary rate many")
CASES = [
    Case("SensorFile", True, 200, False),
    Case("SensorFile", False, 200, False),
    Case("Kivra2Format", True, 200, False),
    Case("SensorFile", True, 8000, False),
    Case("SensorFile", False, 8000, False),
    Case("Kivra2Format", True, 8000, False),
    Case("SensorFile", True, 200, True),
    Case("SensorFile", False, 200, True),
    Case("Kivra2Format", True, 200, True),
]

FLOW = """
version: 1
plugins:
  - QuorilPluginSensorFile-2.5.0
filters:
  - {{name: imu, class: FilterImuSimulator, properties: [Rate: {rate}, Raw Counts: true]}}
  - {{name: seen, class: FilterProbe, properties: [Pins Number: 1]}}
  - name: rec
    class: FilterRecord{recorder}
    properties:
      - File Name: {path}
{properties}
      - Record: true
connections:
  - imu.frame -> seen.input#1
{connections}
script:
{script}
"""

PROPERTIES = {
    "SensorFile": """
      - Binary: {binary}
      - Pins Number: 2
      - ColNames#1: ACCX, ACCY, ACCZ
      - ColTypes#1: DOUBLE
      - ColNames#2: COUNT, LOSS, RATE
      - ColTypes#2: UINT32""",
    "Kivra2Format": """
      - Save Gyro: true""",
}

CONNECTIONS = {
    "SensorFile": """
  - imu.acc -> rec.input#1
  - imu.frame -> rec.input#2""",
    "Kivra2Format": """
  - imu.acc -> rec.3a
  - imu.accGain -> rec.3aGain
  - imu.accOffset -> rec.3aOff
  - imu.mag -> rec.3m
  - imu.magGain -> rec.3mGain
  - imu.magOffset -> rec.3mOff
  - imu.gyr -> rec.3g
  - imu.gyrGain -> rec.3gGain
  - imu.gyrOffset -> rec.3gOff
  - imu.frame -> rec.FrameNumber
  - imu.button -> rec.Button""",
}


def require(condition, message):
    if not condition:
        raise AssertionError(message)


def tool(*arguments, codes=(0,)):
    result = subprocess.run([SENSORFILE, *arguments], capture_output=True, text=True, timeout=LIMIT)
    require(result.returncode in codes, f"{arguments}: {result.returncode}\n{result.stderr}")
    return result.stdout


def name_of(case):
    encoding = "binary" if case.binary else "text"
    return (f"{case.recorder}, {encoding}, {case.rate} rows/s" +
            (", recordings that begin and end" if case.many else ""))


def make_script(folder, many):
    # The last action keeps the run from ending before the kill.
    lines = [f"  - {{at: {LIMIT}s, set: {{imu.Rate: 1}}}}"]
    if many:
        for number in range(1, int(2 * LONGEST / (SHORT + PAUSE))):
            end = number * (SHORT + PAUSE)
            lines.append(f"  - {{at: {1000 * (end - PAUSE):.0f}ms, set: {{rec.Record: false}}}}")
            lines.append(f"  - {{at: {1000 * end:.0f}ms, set: {{rec.File Name: "
                         f"{folder}/rec{number:03}, rec.Record: true}}}}")
    return "\n".join(lines)


def write_flow(folder, case):
    values = {"binary": str(case.binary).lower()}
    flow = folder / "flow.yaml"
    flow.write_text(FLOW.format(
        rate=case.rate, recorder=case.recorder, path=folder / "rec000",
        properties=PROPERTIES[case.recorder].format(**values),
        connections=CONNECTIONS[case.recorder], script=make_script(folder, case.many)))
    return flow


def last_line(data):
    """The last whole line of the data, and what follows it."""
    *lines, rest = data.rsplit(b"\n", 2)
    return (lines[-1] if lines else None), rest


def record_and_kill(folder, case, delay):
    """The number of the last row that was seen to go into the recorder."""
    process = subprocess.Popen([QUORIL, "run", "--rate", "1", "-q", str(write_flow(folder, case))],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    last, rest = process.stdout.readline(), b""
    require(last, "nothing was recorded")
    moment = time.monotonic() + delay
    is_killed = False
    while True:
        if not is_killed and time.monotonic() >= moment:
            os.kill(process.pid, signal.SIGKILL)
            is_killed = True
        data = process.stdout.read1(PIPE_PART)
        if not data:
            break
        line, rest = last_line(rest + data)
        last = line or last
    require(process.wait(LIMIT) == -signal.SIGKILL, "it ended by itself")
    return int(json.loads(last)["values"][0])


def rows_of(path):
    """The numbers of the rows of a file."""
    # The process was killed between the making of the file and its first row, which brings the
    # header, in one piece.
    if path.stat().st_size == 0:
        return []
    columns = ["--no-header", "--columns", "COUNT"]
    return [int(line) for line in tool("cat", *columns, str(path), codes=(0, 3)).split()]


def look_at(path, case):
    if path.stat().st_size == 0:
        return
    info = json.loads(tool("info", "--json", str(path), codes=(0, 3)))
    require(info["encoding"] == ("binary" if case.binary else "text"), "another encoding")
    mended = f"{path}.mended"
    tool("recover", str(path), mended, codes=(0, 3))
    tool("check", mended)


def kill_once(case, delay):
    """The number of rows before the kill that are lost."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        seen = record_and_kill(folder, case, delay)
        files = sorted(folder.glob("rec*"))
        rows = [row for path in files for row in rows_of(path)]
        require(rows == list(range(len(rows))), f"{delay:.3f} s: rows are missing in between")
        lost = seen + 1 - len(rows)
        require(lost <= PROMISE * case.rate, f"{delay:.3f} s: the last {lost} rows are lost")
        # The one that the kill met, and one that had ended.
        for path in files[-2:]:
            look_at(path, case)
        return lost


def kill_often(case, delays):
    """The number of kills that were not survived."""
    losses, failed = [], 0
    with concurrent.futures.ThreadPoolExecutor(BESIDE) as pool:
        for future in [pool.submit(kill_once, case, delay) for delay in delays]:
            try:
                losses.append(future.result())
            except AssertionError as error:
                print(error)
                failed += 1
    print(f"{name_of(case)}: {len(losses)} kill(s) survived, at most "
          f"{max(losses, default=0) / case.rate:.3f} s lost", flush=True)
    return failed


def main():
    print(f"seed {SEED}")
    numbers = random.Random(SEED)
    failed = 0
    for case in CASES:
        failed += kill_often(case, [numbers.uniform(0.0, LONGEST) for _ in range(MOMENTS)])
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
