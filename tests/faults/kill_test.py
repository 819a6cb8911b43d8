"""Records through the real host and module, kills the process at random moments, and looks at what is
left: the file opens as it is, every row is there but those of the last half second, and recover makes
a file of it that check calls clean.

Usage: kill_test.py QUORIL SENSORFILE MOMENTS [SEED]

MOMENTS are the kills per encoding; several recordings run beside each other.
"""

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
RATE = 200  # rows per second
PROMISE = 0.5  # s, of which rows may be lost
LONGEST = 2.0  # s, from the first row to the kill
BESIDE = 4
LIMIT = 60  # s

FLOW = """
version: 1
plugins:
  - QuorilPluginSensorFile-2.5.0
filters:
  - name: imu
    class: FilterImuSimulator
    properties:
      - Rate: {rate}
  - name: rec
    class: FilterRecordSensorFile
    properties:
      - File Name: {path}
      - Binary: {binary}
      - Freq: {rate}
      - Pins Number: 2
      - ColNames#1: ACCX, ACCY, ACCZ
      - ColTypes#1: DOUBLE
      - ColNames#2: COUNT, LOSS, RATE
      - ColTypes#2: UINT32
      - Record: true
  - name: seen
    class: FilterProbe
    properties:
      - Pins Number: 1
connections:
  - imu.acc -> rec.input#1
  - imu.frame -> rec.input#2
  - imu.frame -> seen.input#1
"""


def require(condition, message):
    if not condition:
        raise AssertionError(message)


def tool(*arguments, codes=(0,)):
    result = subprocess.run([SENSORFILE, *arguments], capture_output=True, text=True, timeout=LIMIT)
    require(result.returncode in codes, f"{arguments}: {result.returncode}\n{result.stderr}")
    return result.stdout


def record_and_kill(folder, binary, delay):
    """The path, and the number of the last row that went into the recorder."""
    path = folder / "rec"
    flow = folder / "flow.yaml"
    flow.write_text(FLOW.format(rate=RATE, path=path, binary=str(binary).lower()))
    process = subprocess.Popen([QUORIL, "run", "--rate", "1", "-q", str(flow)],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    first = process.stdout.readline()
    require(first, "nothing was recorded")
    killed = time.monotonic() + delay
    last = first
    while time.monotonic() < killed:
        last = process.stdout.readline()
    os.kill(process.pid, signal.SIGKILL)
    for line in process.stdout:
        if line.endswith(b"}\n"):
            last = line
    require(process.wait(LIMIT) == -signal.SIGKILL, "it ended by itself")
    return path, int(json.loads(last)["values"][0])


def look_at(path, folder, binary, seen):
    """The number of rows before `seen` that are lost."""
    info = json.loads(tool("info", "--json", str(path), codes=(0, 3)))
    require(info["encoding"] == ("binary" if binary else "text"), "another encoding")
    counts = [int(line) for line in
              tool("cat", "--no-header", "--columns", "COUNT", str(path), codes=(0, 3)).split()]
    require(counts == list(range(counts[0], counts[0] + len(counts))) if counts else True,
            "rows are missing within the file")
    last = counts[-1] if counts else -1
    mended = folder / "mended"
    tool("recover", str(path), str(mended), codes=(0, 3))
    tool("check", str(mended))
    return seen - last


def kill_once(binary, delay):
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        path, seen = record_and_kill(folder, binary, delay)
        lost = look_at(path, folder, binary, seen)
        require(lost <= PROMISE * RATE,
                f"{lost} rows of the time before the kill after {delay:.3f} s are lost")
        return lost


def main():
    print(f"seed {SEED}")
    numbers = random.Random(SEED)
    failed = 0
    for binary in (True, False):
        delays = [numbers.uniform(0.0, LONGEST) for _ in range(MOMENTS)]
        with concurrent.futures.ThreadPoolExecutor(BESIDE) as pool:
            losses = []
            for future in [pool.submit(kill_once, binary, delay) for delay in delays]:
                try:
                    losses.append(future.result())
                except AssertionError as error:
                    print(error)
                    failed += 1
        print(f"{'binary' if binary else 'text'}: {len(losses)} kill(s) survived, at most "
              f"{max(losses, default=0) / RATE:.3f} s lost")
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
