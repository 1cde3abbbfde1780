#!/usr/bin/env python3
"""usage: unreached.py TRACE

Compares what a coverage trace of gcovr (--json) shows as unreached, lines and branches, with the tables of coverage.md.
Vector kernels that this machine does not have are left out. Exit status 1: a line that is in none of the tables."""

import json
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent


def listed():
    """The code of each table row, by file; one that ends in an ellipsis is the beginning of lines."""
    code = {}
    file = ""
    for line in (HERE / "coverage.md").read_text().splitlines():
        if line.startswith("## `"):
            file = line.split("`")[1]
        row = re.match(r"\| `(.*?)` \|", line)
        if row:
            code.setdefault(file, []).append(row.group(1).replace("\\|", "|"))
    return code


def is_listed(text, codes):
    return any(text.startswith(code[:-1]) if code.endswith("…") else text == code for code in codes)


def unreached(trace):
    for file in json.loads(pathlib.Path(trace).read_text())["files"]:
        if "avx" in file["file"] and all(line["count"] == 0 for line in file["lines"]):
            print(f"{file['file']}: not on this machine", file=sys.stderr)
            continue
        lines = (ROOT / file["file"]).read_text().splitlines()
        for line in file["lines"]:
            if line["gcovr/noncode"]:
                continue
            if line["count"] == 0 or any(branch["count"] == 0 for branch in line["branches"] if not branch["throw"]):
                yield file["file"], line["line_number"], lines[line["line_number"] - 1].strip()


def main():
    codes = listed()
    missing = [place for place in unreached(sys.argv[1]) if not is_listed(place[2], codes.get(place[0], []))]
    for file, number, text in missing:
        print(f"{file}:{number}: not reached: {text}")
    return 1 if missing else 0


if __name__ == "__main__":
    sys.exit(main())
