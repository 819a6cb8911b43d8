#!/usr/bin/env python3
"""Checks that programs and libraries are linked so that faults in them are hard to use.

usage: check_hardening.py [--release] FILE...

Each file is to lie at a random address, to have its tables of addresses read-only before it runs, no
memory that can be both written and run, and no code that is changed when it is loaded. With --release,
which is for the builds that users run, functions are also to guard their stack. Prints what is missing
and exits with 1 if there is anything.

check_hardening.py --self-test COMPILER checks the check itself on programs linked well and badly.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

GUARD = "__stack_chk_fail"


def read(file):
    """What readelf tells of a file: header, segments, dynamic section and dynamic symbols."""
    return subprocess.run(["readelf", "--wide", "--file-header", "--program-headers", "--dynamic",
                           "--dyn-syms", str(file)],
                          check=True, stdout=subprocess.PIPE, text=True).stdout


def segments(text):
    """Names and flags of the segments, such as ('LOAD', 'RE')."""
    pattern = r"^  (\w+) +0x\w+ 0x\w+ 0x\w+ 0x\w+ 0x\w+ ([R ][W ][E ])"
    return [(name, flags.replace(" ", "")) for name, flags in re.findall(pattern, text, re.M)]


def imports(text):
    """Names of the functions taken from other files."""
    return set(re.findall(r" UND (\w+)", text))


def missing(text):
    """What a file's linking lacks."""
    found = segments(text)
    named = dict(found)
    lacks = []
    if "LOAD" not in named:
        return ["no segments were found"]
    if not re.search(r"^  Type: +DYN", text, re.M):
        lacks.append("it lies at a fixed address")
    if "GNU_RELRO" not in named:
        lacks.append("no table is made read-only")
    if not re.search(r"\((?:FLAGS|FLAGS_1|BIND_NOW)\).*\b(?:NOW|BIND_NOW)\b", text):
        lacks.append("functions are bound late, so that their table stays writable")
    if "GNU_STACK" not in named or "E" in named["GNU_STACK"]:
        lacks.append("the stack can be run")
    if any("W" in flags and "E" in flags for name, flags in found if name == "LOAD"):
        lacks.append("a segment can be both written and run")
    if "(TEXTREL)" in text or re.search(r"\(FLAGS\).*\bTEXTREL\b", text):
        lacks.append("code is changed when it is loaded")
    return lacks


def complaints(files, is_release):
    """Lines such as 'bin/quoril: the stack can be run'."""
    texts = {file: read(file) for file in files}
    lines = [f"{file}: {lack}" for file, text in texts.items() for lack in missing(text)]
    if is_release:
        lines += [f"{file}: no function guards its stack"
                  for file, text in texts.items() if GUARD not in imports(text)]
    return lines


def self_test(compiler):
    """Each way to link badly is found, and found alone."""
    good = ["-O2", "-fPIE", "-pie", "-Wl,-z,relro,-z,now,-z,noexecstack", "-fstack-protector-all"]
    cases = {
        "": [],
        "fixed address": ["-fno-PIE", "-no-pie"],
        "no table": ["-Wl,-z,norelro"],
        "bound late": ["-Wl,-z,lazy"],
        "stack can be run": ["-Wl,-z,execstack"],
        "guards its stack": ["-fno-stack-protector"],
    }
    with tempfile.TemporaryDirectory() as folder:
        source = pathlib.Path(folder) / "main.c"
        source.write_text("int main(int count, char** texts) { return count + texts[0][0]; }\n")
        program = source.with_suffix("")
        for wanted, flags in cases.items():
            subprocess.run([compiler, "-x", "c", *good, *flags, str(source), "-o", str(program)],
                           check=True)
            found = complaints([program], True)
            assert len(found) == (1 if wanted else 0) and all(wanted in line for line in found), \
                (wanted, found)
        # The last one, without guards.
        assert complaints([program], False) == []


def main():
    arguments = sys.argv[1:]
    if len(arguments) == 2 and arguments[0] == "--self-test":
        self_test(arguments[1])
        return 0
    is_release = arguments[:1] == ["--release"]
    files = arguments[1:] if is_release else arguments
    if not files:
        print(__doc__, file=sys.stderr)
        return 2
    lines = complaints(files, is_release)
    print("\n".join(lines) if lines else f"{len(files)} files are hardened")
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main())
