"""Keeps time for minutes by the real clock: a simulated unit at its own pace, and its recording replayed at
the pace of its time stamps. From the first row to the last it takes what the rows say, within 0.1 %.

Usage: pace_test.py QUORIL SECONDS

The program tells every row the moment it passes. A player that sleeps by itself, without the host's
pacing, is told of but not judged: it sleeps whole milliseconds and its calls add up.
"""

import pathlib
import subprocess
import sys
import tempfile
import threading
import time

QUORIL = str(pathlib.Path(sys.argv[1]).resolve())
RATE = 200
ROWS = round(float(sys.argv[2]) * RATE) + 1
DRIFT = 0.001  # share of the time

HEAD = """
version: 1
plugins: [QuorilPluginSensorFile-2.5.0]
filters:
  - {{name: seen, class: FilterProbe, properties: [Pins Number: 1]}}
{0}
"""
RECORD = HEAD.format(f"""
  - {{name: source, class: FilterImuSimulator, properties: [Rate: {RATE}, Count: {ROWS}]}}
  - name: rec
    class: FilterRecordSensorFile
    properties:
      - Binary: true
      - Freq: {RATE}
      - File Name: FILE
      - Pins Number: 2
      - "ColNames#1": COUNT, LOSS, RATE
      - "ColTypes#1": UINT32
      - "ColNames#2": ACCX, ACCY, ACCZ
      - "ColTypes#2": DOUBLE
      - Record: true
connections:
  - source.acc -> seen.input#1
  - source.frame -> rec.input#1
  - source.acc -> rec.input#2
""")
REPLAY = HEAD.format("""
  - name: source
    class: FilterReplaySensorFile
    properties: [Binary: true, Load File: FILE, QuickProcess: QUICK, Replay: true]
connections: [source.ACC -> seen.input#1]
stop: [{when: {source.Replay: false}}]
""")


def measure(what, folder, flow, *options):
    """The share by which the rows' time differs from the clock's."""
    path = folder / (what.replace(" ", "-") + ".yaml")
    path.write_text(flow)
    process = subprocess.Popen([QUORIL, "run", *options, "-q", str(path)], stdout=subprocess.PIPE)
    count, first, last, late = 0, None, None, 0.0
    for _ in process.stdout:
        last = time.monotonic()
        first = first or last
        late = max(late, last - first - count / RATE)
        count += 1
    if process.wait() != 0 or count != ROWS:
        raise AssertionError(f"{what}: exit code {process.returncode}, {count} rows")
    share = (last - first) * RATE / (count - 1) - 1
    print(f"{what}: {count} rows in {last - first:.4f} s, off by {share * 100:+.4f} %, "
          f"the latest row {late * 1000:.1f} ms late", flush=True)
    return share


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        file = str(folder / "rec.bin")
        shares = {"record": measure("record", folder, RECORD.replace("FILE", file))}
        replays = {"replay by the host": ("true", "--rate", "1"), "replay that sleeps": ("false",)}

        def replay(what, quick, *options):
            flow = REPLAY.replace("FILE", file).replace("QUICK", quick)
            shares[what] = measure(what, folder, flow, *options)

        threads = [threading.Thread(target=replay, args=(what, *arguments))
                   for what, arguments in replays.items()]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
    if not all(what in shares and abs(shares[what]) <= DRIFT
               for what in ("record", "replay by the host")):
        sys.exit("the pace drifts")


if __name__ == "__main__":
    main()
