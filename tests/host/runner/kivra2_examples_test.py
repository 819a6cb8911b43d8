"""Runs the flows in examples/ that record and replay a Kivra2 unit or keep calibrations.

Usage: as program_test.py
"""

import json
import os
import struct
import sys
import unittest

from program_test import ROOT, ProgramTest

# Behind the first byte of a record's name: the name's room, element type, rows, columns.
RECORD_HEAD = 32 + 1 + 1 + 1
PLAIN_ROW = struct.Struct(">H6hB")
GYRO_ROW = struct.Struct(">H9hB")
PLAIN_COLUMNS = [b"COUNT", b"ACCX", b"ACCY", b"ACCZ", b"MAGX", b"MAGY", b"MAGZ", b"INFO"]
# The kinds of those columns in old files: C's unsigned short and short, and a flag.
OLD_KINDS = [4] + 6 * [5] + [10]
# Where a calibration section's format number stands: behind its opening, size and date.
FORMAT_OFFSET = 12 + 2 + 2 + 8 + 6


class Kivra2Examples(ProgramTest):
    def example(self, name, *arguments, **variables):
        result = self.quoril("run", str(ROOT / "examples" / f"{name}.yaml"), *arguments,
                             env={**os.environ, **variables})
        self.assert_ends(result, 0)
        return result

    def samples(self, path, pin):
        lines = [json.loads(line) for line in (self.folder / path).read_text().splitlines()]
        return [line for line in lines if line["pin"] == pin]

    def rows(self, path, layout, count):
        """The rows at the end of a recording: they are all that follows its headers."""
        data = (self.folder / path).read_bytes()
        return list(layout.iter_unpack(data[len(data) - count * layout.size:]))

    def record(self, path, name, count):
        """The doubles of a calibration record in a binary file."""
        data = (self.folder / path).read_bytes()
        return struct.unpack_from(f">{count}d", data, data.index(name) + RECORD_HEAD)

    def test_calibration_is_saved_and_loaded_in_both_encodings(self):
        matrices = []
        for binary in "true", "false":
            self.example("save-calibration", BINARY=binary, CALIB=f"{binary}.sf")
            self.example("load-calibration", BINARY=binary, CALIB=f"{binary}.sf",
                         SAMPLES=f"{binary}.jsonl")
            gain, = self.samples(f"{binary}.jsonl", "input#1")
            offset, = self.samples(f"{binary}.jsonl", "input#2")
            self.assertEqual((gain["rows"], gain["cols"]), (3, 3))
            self.assertEqual((offset["rows"], offset["cols"]), (1, 3))
            matrices.append((gain["values"], offset["values"]))
        self.assertNotEqual(matrices[0][0], [1, 0, 0, 0, 1, 0, 0, 0, 1])
        for binary, text in zip(*matrices):
            for one, other in zip(binary, text):
                self.assertAlmostEqual(one, other, places=4)

    def test_unit_with_gyroscope_and_missing_frames(self):
        self.example("kivra2-record", "--rate", "max", COUNT="5000")
        self.example("kivra2-replay", "--rate", "max", KEEP="false")
        frames = self.samples("kivra2.jsonl", "input#4")
        rows = self.rows("kivra2.bin", GYRO_ROW, len(frames))
        self.assertEqual([frame["values"][0] for frame in frames], [row[0] for row in rows])
        accelerations = [sample["values"] for sample in self.samples("kivra2.jsonl", "input#1")]
        self.assertEqual(accelerations, [list(row[1:4]) for row in rows])
        # Unpaced, the replay time stands still.
        self.assertEqual({frame["time"] for frame in frames}, {0})
        self.assertEqual({frame["values"][2] for frame in frames}, {100})

    def test_share_of_lost_frames_agrees_with_the_unit(self):
        self.example("kivra2-record", "--rate", "max", COUNT="20000")
        self.example("kivra2-replay", "--rate", "max", KEEP="false")
        frames = [sample["values"] for sample in self.samples("kivra2.jsonl", "input#4")]
        lost = frames[-1][0] + 1 - len(frames)
        self.assertAlmostEqual(lost / (frames[-1][0] + 1), 0.02, delta=0.005)
        # The player tells the share of each 200 frames; over all of them it is the unit's.
        shares = [share for _, share, _ in frames[200:]]
        self.assertAlmostEqual(sum(shares) / len(shares), lost / (frames[-1][0] + 1), delta=0.002)

    def test_frames_last_as_the_file_or_the_user_says(self):
        self.example("kivra2-record", "--rate", "max", COUNT="60")
        counters = [frame[0] for frame in self.rows("kivra2.bin", GYRO_ROW, 60)]
        steps = [1] + [after - before for before, after in zip(counters, counters[1:])]
        for period, variables in (0.01, {}), (0.003, {"KEEP": "false", "FORCE": "true",
                                                      "DELAY": "3"}):
            self.example("kivra2-replay", **variables)
            times = [sample["time"] for sample in self.samples("kivra2.jsonl", "input#1")]
            self.assertEqual(len(times), len(steps))
            expected = 0
            for step, time in zip(steps, times):
                expected += step * period
                self.assertAlmostEqual(time, expected, places=9)

    def test_unit_without_gyroscope(self):
        self.example("kivra2-record-plain", "--rate", "max", COUNT="300")
        self.example("kivra2-replay", "--rate", "max", INPUT="kivra2-plain.bin", KEEP="false")
        rows = self.rows("kivra2-plain.bin", PLAIN_ROW, 300)
        self.assertEqual([row[0] for row in rows], list(range(300)))
        fields = [sample["values"] for sample in self.samples("kivra2.jsonl", "input#2")]
        self.assertEqual(fields, [list(row[4:7]) for row in rows])
        buttons = [sample["values"] for sample in self.samples("kivra2.jsonl", "input#3")]
        self.assertEqual(buttons, [[row[7]] for row in rows])

    def make_old(self, path):
        """Turns a recording without gyroscope into one of the generation before."""
        data = bytearray((self.folder / path).read_bytes())
        for name, kind in zip(PLAIN_COLUMNS, OLD_KINDS):
            data[data.index(name + b"\0") - 1] = kind
        section = data.index(b"\x80\x36") - 12
        struct.pack_into(">H", data, section + FORMAT_OFFSET, 1)
        (self.folder / path).write_bytes(data)

    def test_recording_of_an_older_generation(self):
        self.example("kivra2-record-plain", "--rate", "max", COUNT="50")
        self.example("kivra2-replay", INPUT="kivra2-plain.bin", KEEP="false", SAMPLES="new.jsonl")
        self.make_old("kivra2-plain.bin")
        self.example("kivra2-replay", INPUT="kivra2-plain.bin", KEEP="false", SAMPLES="old.jsonl")
        for pin in "input#1", "input#2", "input#4":
            self.assertEqual([sample["values"] for sample in self.samples("old.jsonl", pin)],
                             [sample["values"] for sample in self.samples("new.jsonl", pin)])

    def test_missing_recording_is_told_in_one_line(self):
        result = self.quoril("run", str(ROOT / "examples" / "kivra2-replay.yaml"))
        path = os.path.realpath(self.folder) + "/kivra2.bin"
        self.assert_ends(result, 1)
        self.assertIn(f"cannot be set to 'kivra2.bin': File not valid. ({path} does not exist)\n",
                      result.stderr)
        self.assertEqual(result.stderr.count("\n"), 1)

    def test_saved_calibration_stands_in_for_the_unit(self):
        self.example("kivra2-save-calibration")
        self.assertEqual((self.folder / "kivra2.cal").stat().st_size, 296)
        self.assertEqual((self.folder / "kivra2.cal").read_bytes()[6:8], b"\0\3")
        self.example("kivra2-record", "--rate", "max", COUNT="10", OUTPUT="live.bin")
        self.example("kivra2-record-saved-calibration", COUNT="10", DURATION="500ms")
        saved = struct.unpack_from(">36d", (self.folder / "kivra2.cal").read_bytes(), 8)
        for path in "live.bin", "kivra2.bin":
            self.assertEqual(self.record(path, b"AccGain", 9), saved[:9])
            self.assertEqual(self.record(path, b"AccOffset", 3), saved[9:12])
            self.assertEqual(self.record(path, b"GyrGain", 9), saved[24:33])


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
