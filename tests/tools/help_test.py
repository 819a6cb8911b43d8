"""Tests of what the program tells of itself: help, manual pages, completion scripts."""

import re
import subprocess

from tool_test import LIMIT, PROGRAM, ToolTest, main


class HelpTest(ToolTest):
    def verbs(self):
        text = self.output_of("--help").split("\nVerbs:\n")[1].split("\n\n")[0]
        return re.findall(r"^  (\w+)", text, re.MULTILINE)


class Help(HelpTest):
    def test_every_verb_tells_its_options(self):
        self.assertIn("cat", self.verbs())
        for verb in self.verbs():
            with self.subTest(verb):
                text = self.output_of(verb, "--help")
                self.assertTrue(text.startswith(f"Usage: sensorfile {verb} [OPTION...]"), text)
                self.assertIn("\nOptions:\n  -h, --help ", text)
                for line in text.splitlines():
                    self.assertLessEqual(len(line), 80)

    def test_values_and_arguments_are_named(self):
        text = self.output_of("merge", "--help")
        self.assertIn("Usage: sensorfile merge [OPTION...] IN... --output", text)
        self.assertIn("  -o, --output ", text)
        text = self.output_of("cat", "--help")
        self.assertIn("  --rows FIRST:LAST  ", text)
        self.assertIn("  --encoding text|binary|auto\n", text)
        self.assertNotIn("{", text)

    def test_verbs_below_have_their_own_help(self):
        text = self.output_of("calib", "extract", "--help")
        self.assertTrue(text.startswith("Usage: sensorfile calib extract [OPTION...] IN OUT\n"))


class Man(HelpTest):
    def test_pages_are_made_for_the_program_and_each_verb(self):
        for verb in [None, *self.verbs()]:
            with self.subTest(verb):
                page = self.output_of("man", *([verb] if verb else []))
                lint = subprocess.run(["mandoc", "-T", "lint", "-W", "warning"], input=page,
                                      capture_output=True, text=True, timeout=LIMIT)
                complaints = [line for line in lint.stdout.splitlines() if "date" not in line]
                self.assertEqual(complaints, [])

    def test_a_page_holds_what_the_help_holds(self):
        page = self.output_of("man", "calib")
        read = subprocess.run(["mandoc", "-T", "utf8"], input=page, capture_output=True, text=True,
                              timeout=LIMIT).stdout
        read = re.sub(".\b", "", read)
        for words in ["sensorfile-calib - Show, take out", "sensorfile calib [OPTION...] [FILE]",
                      "--record NAME", "--tolerance", "compare returns 0 for the same records"]:
            self.assertIn(words, " ".join(read.split()))

    def test_unknown_verbs_have_none(self):
        self.assert_fails(self.tool("man", "dance"), code=2)


class Completion(HelpTest):
    def completed_by_bash(self, *words):
        script = """eval "$(%s completion bash)"
COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _sensorfile; printf '%%s\\n' "${COMPREPLY[@]}"
""" % PROGRAM
        result = subprocess.run(["bash", "-u", "-c", script, "bash", "sensorfile", *words],
                                capture_output=True, text=True, timeout=LIMIT)
        self.assertEqual(result.stderr, "")
        return result.stdout.split()

    def test_bash_completes_verbs_options_and_values(self):
        self.assertEqual(self.completed_by_bash("inf"), ["info"])
        self.assertEqual(self.completed_by_bash("mer"), ["merge"])
        self.assertEqual(self.completed_by_bash("cat", "--for"), ["--format"])
        self.assertEqual(self.completed_by_bash("cat", "--format", ""), ["csv", "tsv", "json"])
        self.assertEqual(self.completed_by_bash("cat", "a.bin", "--format", "t"), ["tsv"])
        self.assertEqual(self.completed_by_bash("calib", "ex"), ["extract"])
        self.assertEqual(self.completed_by_bash("calib", "extract", "--to", "k"), ["kivra2"])
        self.assertEqual(self.completed_by_bash("completion", ""), ["-h", "--help", "bash", "zsh",
                                                                    "fish"])

    def test_bash_leaves_files_to_the_shell(self):
        self.assertEqual(self.completed_by_bash("cat", "a.b"), [])

    def test_fish_completes_verbs_options_and_values(self):
        script = self.output_of("completion", "fish")
        for line, expected in [("sensorfile mer", "merge"), ("sensorfile cat --for", "--format"),
                               ("sensorfile cat --format t", "tsv"),
                               ("sensorfile calib extract --to k", "kivra2")]:
            result = subprocess.run(["fish", "--no-config", "-c",
                                     script + f"\ncomplete -C '{line}'"],
                                    capture_output=True, text=True, timeout=LIMIT,
                                    env={"HOME": str(self.folder), "PATH": "/usr/bin:/bin"})
            self.assertEqual(result.stderr, "")
            self.assertEqual([one.split("\t")[0] for one in result.stdout.splitlines()],
                             [expected], line)

    def test_zsh_takes_the_script(self):
        script = self.output_of("completion", "zsh")
        self.assertTrue(script.startswith("#compdef sensorfile\n"))
        result = subprocess.run(["zsh", "-n"], input=script, capture_output=True, text=True,
                                timeout=LIMIT)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for verb in self.verbs():
            self.assertIn(f"_sensorfile_{verb}() {{", script)

    def test_other_shells_are_wrong_usage(self):
        self.assertEqual(self.tool("completion", "tcsh").returncode, 2)


if __name__ == "__main__":
    main()
