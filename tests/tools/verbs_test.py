"""What holds for every verb: on every kind of file, with pipes, full disks and other languages."""

import os
import random
import re
import resource
import signal
import subprocess
from typing import NamedTuple

from sample_files import (GAIN, IMU_ROWS, RANGE, binary_calib, binary_file, kivra2_calib,
                          legacy_file, text_file)
from tool_test import LIMIT, PROGRAM, ToolTest, main

DATE = ("--creation-time", "2020-02-03T04:05:06Z")
CSV = b"COUNT,TIME,ACCX\n0,0,1.5\n1,0.005,-2\n2,0.01,3\n"


class Call(NamedTuple):
    """A verb's arguments, in which IN and OUT stand for files."""

    arguments: tuple
    ending: str = ".bin"  # of OUT
    content: bytes = b""  # of IN, if only one kind of file will do


CALLS = [
    Call(("info", "IN")), Call(("info", "--json", "IN")),
    Call(("cat", "IN")), Call(("cat", "--format", "json", "IN")),
    Call(("convert", "IN", "OUT", "--to", "text")), Call(("convert", "IN", "OUT"), ".csv"),
    Call(("convert", "IN", "OUT"), ".npy"), Call(("convert", "IN", "OUT"), ".mat"),
    *[Call(("convert", "IN", "OUT"), ending) for ending in
      [".bin", ".txt", ".csv", ".jsonl", ".npy", ".h5", ".mat"]],
    Call(("cut", "IN", "OUT", "--rows", "0:")), Call(("cut", "IN", "OUT", "--seconds", "0:")),
    Call(("merge", "IN", "-o", "OUT")), Call(("merge", "IN", "-o", "OUT", "--json")),
    Call(("split", "IN", "--parts", "1", "-o", "OUT")),
    Call(("check", "IN")), Call(("check", "--json", "IN")),
    Call(("recover", "IN", "OUT")), Call(("recover", "IN", "OUT", "--json")),
    Call(("calib", "IN")), Call(("calib", "--json", "IN")),
    Call(("calib", "extract", "IN", "OUT")), Call(("calib", "insert", "IN", "IN", "OUT")),
    Call(("calib", "compare", "IN", "IN", "--json")),
    Call(("gen", "OUT", "--rows", "2000", *DATE)),
    Call(("gen", "OUT", "--rows", "2000", *DATE), ".txt"),
    Call(("plot", "IN", "-o", "OUT"), ".html"),
    Call(("import", "IN", "OUT", *DATE), content=CSV),
    Call(("import", "IN", "OUT", *DATE), ".txt", CSV),
    Call(("diff", "IN", "IN")), Call(("diff", "IN", "IN", "--json")),
    Call(("time", "IN")), Call(("time", "IN", "--json")),
    Call(("stats", "IN")), Call(("stats", "IN", "--json", "--allan", "TIME")),
    Call(("completion", "bash")), Call(("man",)),
]
WITHOUT_INPUT = {"gen", "completion", "man"}


class VerbTest(ToolTest):
    def kinds(self):
        numbers = random.Random(7)
        whole = binary_file(calib=[GAIN, RANGE])
        return {
            "a.bin": whole, "a.txt": text_file(calib=[GAIN, RANGE]),
            "little.bin": binary_file(order="<", calib=[GAIN]), "old.bin": legacy_file(),
            "calib.bin": binary_calib([GAIN]), "unit.cal": kivra2_calib(), "empty": b"",
            "cut.bin": whole[:-5], "cut.txt": text_file()[:-5], "head.bin": whole[:60],
            "none.bin": binary_file(rows=[]), "none.txt": text_file(rows=[]),
            "noise": bytes(numbers.randrange(256) for _ in range(1000)),
            "zeros.bin": whole + bytes(4096), "zeros.txt": text_file() + bytes(4096),
            "rows.csv": CSV,
        }

    def arguments_of(self, call, source="in", target="out"):
        names = {"IN": source, "OUT": target + call.ending}
        return [names.get(word, word) for word in call.arguments]

    def targets(self):
        return [one for one in self.folder.iterdir() if one.name.startswith("out")]

    def remove_targets(self):
        for target in self.targets():
            target.unlink()

    def writing_calls(self):
        """Without plots where the program cannot make them."""
        self.write("in", binary_file())
        left_out = "plot" if "without uPlot" in self.tool("plot", "in", "-o", "-").stderr else None
        return [call for call in CALLS if "OUT" in call.arguments and left_out not in call.arguments]


class EveryVerb(VerbTest):
    def test_all_verbs_are_here(self):
        text = self.output_of("--help").split("\nVerbs:\n")[1].split("\n\n")[0]
        self.assertEqual(sorted(re.findall(r"^  (\w+)", text, re.MULTILINE)),
                         sorted({call.arguments[0] for call in CALLS}))

    def test_every_kind_of_file_is_read_or_refused(self):
        for name, content in self.kinds().items():
            self.write("in", content)
            for call in CALLS:
                with self.subTest(name=name, call=call.arguments):
                    result = self.tool(*self.arguments_of(call), text=False)
                    self.assertIn(result.returncode, [0, 1, 2, 3], result.stderr)
                    if result.returncode == 0:
                        self.assertNotIn(b"sensorfile: ", result.stderr)
                    else:
                        self.assertNotEqual(result.stderr + result.stdout, b"")
                    if result.returncode in (1, 2):
                        self.assertEqual(self.targets(), [])
                    self.remove_targets()

    def test_the_standard_input_is_as_good_as_a_file(self):
        for name in ["a.bin", "a.txt", "little.bin", "cut.bin", "calib.bin", "noise", "rows.csv"]:
            content = self.kinds()[name]
            self.write("in", content)
            for call in CALLS:
                if call.arguments.count("IN") != 1 or "split" in call.arguments:
                    continue
                with self.subTest(name=name, call=call.arguments):
                    direct = self.tool(*self.arguments_of(call), text=False)
                    files = [one.read_bytes() for one in self.targets()]
                    self.remove_targets()
                    piped = self.tool(*self.arguments_of(call, "-"), input=content, text=False)
                    self.assertEqual(piped.returncode, direct.returncode, piped.stderr)
                    # Pages tell the name of what they show.
                    self.assertEqual([one.read_bytes().replace(b"standard input", b"in")
                                      for one in self.targets()], files)
                    self.remove_targets()
                    self.assertEqual(piped.stdout.replace(b"standard input", b"in"),
                                     direct.stdout.replace(b"standard input", b"in"))

    def test_the_environment_language_changes_nothing(self):
        german = {**os.environ, "LC_ALL": "de_DE.UTF-8", "LANG": "de_DE.UTF-8"}
        plain = {**os.environ, "LC_ALL": "C"}
        self.write("in", self.kinds()["a.bin"])
        for call in CALLS:
            outputs = []
            for environment in [german, plain]:
                result = self.tool(*self.arguments_of(call), text=False, env=environment)
                outputs.append((result.returncode, result.stdout, result.stderr,
                                [one.read_bytes() for one in self.targets()]))
                self.remove_targets()
            self.assertEqual(outputs[0], outputs[1], call)

    def test_a_missing_file_is_told_by_its_name(self):
        for call in CALLS:
            if "IN" not in call.arguments:
                continue
            result = self.tool(*self.arguments_of(call, "missing"))
            self.assertIn(result.returncode, [1, 2], call)
            self.assertIn("missing", result.stderr)
            self.assertEqual(self.targets(), [])


class EveryOutput(VerbTest):
    def call(self, call, **options):
        content = call.content or self.kinds()["a.bin"]
        self.write("in", content)
        return self.tool(*self.arguments_of(call), **options)

    def test_nothing_is_overwritten_without_force(self):
        for call in self.writing_calls():
            with self.subTest(call.arguments):
                self.assertIn(self.call(call).returncode, [0, 3])
                target, = self.targets()
                whole = target.read_bytes()
                target.write_bytes(b"old")
                result = self.call(call)
                self.assertEqual(result.returncode, 1)
                self.assertIn("is there already; --force overwrites it", result.stderr)
                self.assertEqual([target], self.targets())
                self.assertEqual(target.read_bytes(), b"old")
                forced = self.tool(*self.arguments_of(call), "--force")
                self.assertIn(forced.returncode, [0, 3], forced.stderr)
                self.assertEqual(target.read_bytes(), whole)
                self.remove_targets()

    def test_a_full_disk_is_told_and_nothing_is_left(self):
        rows = [IMU_ROWS[i % 10] for i in range(20_000)]
        for call in self.writing_calls():
            with self.subTest(call.arguments):
                self.write("in", call.content or binary_file(rows=rows, calib=[GAIN]))
                result = self.tool(*self.arguments_of(call), preexec_fn=limit_files)
                self.assertEqual(result.returncode, 1, result.stdout)
                self.assertRegex(result.stderr, r"(?m)^sensorfile: .*\bout\b")
                self.assertNotIn(".part", result.stderr)
                self.assertEqual(self.targets(), [])

    def test_a_full_file_system_is_told_and_nothing_is_left(self):
        """In a file system of its own, where the system allows that; else as above."""
        self.write("in", binary_file(rows=IMU_ROWS * 1000, calib=[GAIN]))
        (self.folder / "small").mkdir()
        script = ('if mount -t tmpfs -o size=64k none small; then :; else ulimit -f 1; fi; '
                  '"$@"; code=$?; ls -A small; exit $code')
        call = [PROGRAM, "cut", "in", "small/out", "--rows", "0:"]
        shell = ["sh", "-c", "trap '' XFSZ; " + script, "sh", *call]
        own = ["unshare", "--mount", "--map-root-user"]
        if subprocess.run([*own, "true"], capture_output=True).returncode == 0:
            shell = own + shell
        result = subprocess.run(shell, cwd=self.folder, capture_output=True, text=True,
                                timeout=LIMIT)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertRegex(result.stderr, r"(?m)^sensorfile: .*small/out\b")

    def test_a_folder_that_is_not_there_is_told(self):
        for call in self.writing_calls():
            with self.subTest(call.arguments):
                self.write("in", call.content or self.kinds()["a.bin"])
                result = self.tool(*self.arguments_of(call, target="none/out"))
                self.assertEqual(result.returncode, 1)
                self.assertIn("none", result.stderr)

    def test_the_standard_output_gets_the_same_bytes(self):
        for call in self.writing_calls():
            if "split" in call.arguments:
                continue
            with self.subTest(call.arguments):
                self.call(call)
                target, = self.targets()
                whole = target.read_bytes()
                self.remove_targets()
                if call.ending != ".bin":
                    continue  # the name's ending has its part
                arguments = ["-" if word == "OUT" else word for word in call.arguments]
                arguments = ["in" if word == "IN" else word for word in arguments]
                self.assertEqual(self.tool(*arguments, text=False).stdout, whole)


def limit_files():
    """No file gets larger than a few bytes; what the system would do to the process is ignored."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (100, 100))


if __name__ == "__main__":
    main()
