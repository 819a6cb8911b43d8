#!/usr/bin/env python3
"""Checks that includes between the project's folders point one way.

usage: check_includes.py ROOT

Prints each include that points the wrong way as file:line and exits with 1 if there is one.
With --self-test it checks itself on a small tree of its own, good and bad.
"""

import pathlib
import re
import sys
import tempfile

# Folder -> folders of the project that its files may include, itself apart. The longest folder
# that a file lies in counts.
ALLOWED = {
    "text": set(),
    "sensorfile": set(),
    "framework": set(),
    "host": {"framework", "text"},
    "filters": {"framework", "sensorfile"},
    "plugin": {"filters", "framework", "sensorfile"},
    "tools": {"sensorfile", "text"},
}
SOURCES = {".cpp", ".hpp", ".h", ".ipp"}
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')


def folder_of(path):
    """The first folder of a path from the root."""
    return path.split("/", 1)[0]


def wrong_includes(root):
    """Lines such as 'filters/A.cpp:3: filters must not include host/Flow.hpp'."""
    wrong = []
    for folder, allowed in ALLOWED.items():
        for source in sorted((root / folder).rglob("*")):
            if source.suffix not in SOURCES:
                continue
            name = source.relative_to(root).as_posix()
            for number, line in enumerate(source.read_text(encoding="utf-8").splitlines(), 1):
                match = INCLUDE.match(line)
                if match is None:
                    continue
                target = match.group(1)
                if target.startswith("."):
                    wrong.append(f"{name}:{number}: {target} is not named from the root")
                elif "/" in target and (root / target).exists():
                    if folder_of(target) not in allowed | {folder}:
                        wrong.append(f"{name}:{number}: {folder} must not include {target}")
                elif (source.parent / target).exists():
                    wrong.append(f"{name}:{number}: {target} is not named from the root")
    return wrong


def self_test():
    """Each wrong direction is found, each right one passes."""
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name in list(ALLOWED) + ["tests"]:
            (root / name).mkdir()
            (root / name / "A.hpp").write_text("#pragma once\n")
        for name, allowed in ALLOWED.items():
            for target in list(ALLOWED) + ["tests"]:
                source = root / name / "Probe.cpp"
                source.write_text(f'\n#include <vector>\n#include "{target}/A.hpp"\n')
                found = wrong_includes(root)
                right = target == name or target in allowed
                assert found == ([] if right else
                                 [f"{name}/Probe.cpp:3: {name} must not include {target}/A.hpp"]), \
                    (name, target, found)
                source.unlink()
        (root / "host" / "Probe.cpp").write_text('#include "A.hpp"\n#include "../host/A.hpp"\n')
        assert len(wrong_includes(root)) == 2


def main():
    if sys.argv[1:] == ["--self-test"]:
        self_test()
        return 0
    if len(sys.argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    root = pathlib.Path(sys.argv[1])
    if not (root / "framework").is_dir():
        print(f"{root}: not the project's root", file=sys.stderr)
        return 2
    wrong = wrong_includes(root)
    print("\n".join(wrong) if wrong else "all includes point one way")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
