#!/usr/bin/python3
"""Prints the number of instructions that each query executes in the library and in the platform.

    instructions.py PROGRAM

Callgrind counts one call with example arguments. Instructions of the C library are not included.
"""

import pathlib
import subprocess
import sys
import tempfile


def section(file):
    """The name of a section and its instruction count for each library."""
    name, library, is_call, counts = None, None, False, {}
    for line in file.read_text(encoding="utf-8").splitlines():
        if line.startswith("desc: Trigger: Client Request: "):
            name = line.rpartition(": ")[2]
        elif line.startswith("ob="):
            library = pathlib.Path(line[3:]).name.partition(".")[0]
        elif line.startswith("calls="):
            is_call = True
        elif line[:1] in "0123456789+-*" and line:
            if not is_call:
                counts[library] = counts.get(library, 0) + int(line.split()[1])
            is_call = False
    return name, counts


def main():
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run(
            ["valgrind", "--tool=callgrind", "--compress-strings=no", f"--callgrind-out-file={folder}/part", sys.argv[1]],
            check=True,
            capture_output=True,
        )
        parts = sorted(pathlib.Path(folder).glob("part.*"), key=lambda part: int(part.suffix[1:]))
        sections = [section(part) for part in parts]
    print("| Query | In the library | In the platform |")
    print("| --- | ---: | ---: |")
    listed = set()
    for name, counts in sections:
        if name is not None and name not in listed:
            listed.add(name)
            print(f"| `{name}` | {counts.get('libtarnd_qrb', 0)} | {counts.get('libtarnd_platform', 0)} |")


main()
