"""Runs both programs in another time zone and under a locale with a decimal comma: what they write, on
their outputs and into files, is the same to the byte, but for the dates of new recordings.

Usage: environment_test.py QUORIL SENSORFILE LOCALE_FOLDER
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

QUORIL, SENSORFILE = (str(pathlib.Path(one).resolve()) for one in sys.argv[1:3])
PLAIN = {"TZ": "UTC", "LC_ALL": "C"}
OTHER = {"TZ": "Pacific/Auckland", "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8",
         "LOCPATH": str(pathlib.Path(sys.argv[3]).resolve())}
LIMIT = 60  # s
DATE = ["--creation-time", "2016-12-31T23:59:59Z"]
# Each in a folder of its own, one after the other; the names say what is there already.
CALLS = [
    ["gen", "a.bin", "--layout", "counts", "--rows", "3000", *DATE],
    ["gen", "b.bin", "--rows", "3000", "--jitter", "0.001", "--lose", "0.5%", *DATE],
    ["gen", "b.txt", "--rows", "500", *DATE],
    *[[verb, name] for verb in ("info", "check", "time", "stats") for name in ("a.bin", "b.bin",
                                                                                "b.txt")],
    *[[verb, "--json", "b.txt"] for verb in ("info", "check", "time", "stats")],
    ["cat", "b.txt"], ["cat", "a.bin", "--calibrated"], ["cat", "b.bin", "--format", "json"],
    ["convert", "a.bin", "a.txt", "--to", "text"], ["convert", "a.txt", "a2.bin", "--to", "binary"],
    ["convert", "b.bin", "b.csv"], ["convert", "b.bin", "b.jsonl"], ["convert", "b.bin", "b.npy"],
    ["convert", "b.bin", "b.mat"],
    ["import", "b.csv", "c.bin", *DATE], ["import", "b.csv", "c.txt", *DATE],
    ["cut", "b.bin", "d.bin", "--rows", "100:200"], ["split", "b.bin", "--rows", "1000"],
    ["diff", "a.bin", "a2.bin"], ["diff", "a.bin", "a.txt"], ["calib", "a.bin"],
    ["calib", "--json", "a.bin"], ["recover", "b.txt", "e.txt"], ["plot", "b.bin", "-o", "b.html"],
    ["gen", "x.bin", "--rows", "1,5"], ["time", "b.bin", "--max-jitter", "0,5ms"],
    ["time", "b.bin", "--max-jitter", "0.5ms", "--max-loss", "0.1%"],
    ["info", "none.bin"], ["--help"],
]
FLOW = """
version: 1
plugins: [QuorilPluginSensorFile-2.5.0]
filters:
  - {name: imu, class: FilterImuSimulator, properties: [Rate: 819.2, Count: 500, Acc Bias: 0.25]}
  - {name: probe, class: FilterProbe, properties: [Pins Number: 1]}
  - name: rec
    class: FilterRecordSensorFile
    properties: [Binary: "${BINARY}", Freq: 819.2, File Name: "${OUTPUT}", Pins Number: 1,
                 "ColNames#1": "X, Y, Z", "ColTypes#1": DOUBLE, Record: true]
connections: [imu.acc -> probe.input#1, imu.acc -> rec.input#1]
"""


def without_dates(content):
    return re.sub(rb"\d\d/\d\d/\d{4}\t\d\d:\d\d:\d\d", b"date", content)


def contents(folder):
    return {one.name: one.read_bytes() for one in sorted(folder.iterdir())}


class Environment(unittest.TestCase):
    def folder(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        return pathlib.Path(folder.name)

    def run_in(self, folder, variables, *command):
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith("LC_") and name not in ("LANG", "LANGUAGE")}
        result = subprocess.run(command, cwd=folder, env={**environment, **variables},
                                capture_output=True, timeout=LIMIT)
        return result.returncode, result.stdout, result.stderr

    def test_the_other_environment_is_one(self):
        folder = self.folder()
        self.assertEqual(self.run_in(folder, OTHER, "locale", "decimal_point")[1], b",\n")
        self.assertEqual(self.run_in(folder, OTHER, "date", "-d", "@0", "+%z")[1], b"+1200\n")

    def test_every_verb_writes_the_same(self):
        plain, other = self.folder(), self.folder()
        for call in CALLS:
            with self.subTest(call):
                expected = self.run_in(plain, PLAIN, SENSORFILE, *call)
                self.assertEqual(self.run_in(other, OTHER, SENSORFILE, *call), expected)
                self.assertIn(expected[0], (0, 1, 2, 3))
        self.assertEqual(list(contents(plain)), list(contents(other)))
        for name, content in contents(plain).items():
            with self.subTest(name):
                self.assertEqual(contents(other)[name], content)
        self.assertGreater(len(contents(plain)), 15)

    def test_new_recordings_are_dated_in_utc(self):
        for variables in (PLAIN, OTHER):
            folder = self.folder()
            before = self.run_in(folder, PLAIN, "date", "+%d/%m/%Y\t%H:%M")[1]
            self.run_in(folder, variables, SENSORFILE, "gen", "a.txt", "--rows", "1")
            after = self.run_in(folder, PLAIN, "date", "+%d/%m/%Y\t%H:%M")[1]
            self.assertIn((folder / "a.txt").read_bytes().splitlines()[1][:16],
                          (before.strip(), after.strip()))

    def test_a_flow_records_and_writes_the_same(self):
        for binary in ("true", "false"):
            found = []
            for variables in (PLAIN, OTHER):
                folder = self.folder()
                (folder / "flow.yaml").write_text(FLOW)
                variables = {**variables, "BINARY": binary, "OUTPUT": "rec"}
                found.append([self.run_in(folder, variables, QUORIL, *call)
                              for call in (["run", "--rate", "max", "-q", "flow.yaml"],
                                           ["graph", "flow.yaml"], ["check", "flow.yaml"],
                                           ["inspect", "FilterImuSimulator"])])
                content = (folder / "rec").read_bytes()
                if binary == "true":
                    columns = int.from_bytes(content[38:40], "big")
                    for section in (0, 40 + 34 * columns):
                        content = content[:section + 24] + bytes(6) + content[section + 30:]
                found[-1].append(without_dates(content))
            self.assertEqual(found[0], found[1])
            self.assertEqual([code for code, _, _ in found[0][:-1]], [0, 0, 0, 0], found[0])
            self.assertGreater(len(found[0][-1]), 500 * 24)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0]])
