#!/usr/bin/env python3
"""Writes inputs for the fuzz targets to start from: the queries of the conformance files, the patterns, numbers and
JSON texts in them, and pieces of the files themselves.

    make_seeds.py CONFORMANCE_FOLDER TARGET OUTPUT_FOLDER
"""

import hashlib
import pathlib
import re
import sys

STRING = re.compile(r"'((?:[^']|'')*)'")
NUMBER = re.compile(r"-?[0-9][0-9.,]*(?:[eE][+-]?[0-9]+)?")
PATTERN_CALL = re.compile(r"'((?:[^']|'')*)'\.Reg\w+\(\s*'((?:[^']|'')*)'(?:\s*,\s*'((?:[^']|'')*)')?", re.IGNORECASE)


def unquoted(text):
    return (text or "").replace("''", "'")


def queries(lines):
    # Repeats of repeats take all the time that an expression is given.
    return [line[2:] for line in lines if line.startswith("? ") and not re.search(r"[+*}?]\)[+*{]", line)]


def seeds(target, lines):
    if target in ("parse", "evaluate"):
        return queries(lines)
    if target == "number":
        strings = [unquoted(text) for query in queries(lines) for text in STRING.findall(query)]
        numbers = [text for query in queries(lines) for text in NUMBER.findall(query)]
        return [text for text in strings if len(text) < 40] + numbers
    if target == "regex":
        calls = [call for query in queries(lines) for call in PATTERN_CALL.findall(query)]
        return ["\n".join((unquoted(pattern), unquoted(subject), unquoted(form))) for subject, pattern, form in calls]
    if target == "json":
        return [line.split(" ", 2)[2] for line in lines if re.match(r"set (props|var) \S", line)]
    if target == "uqlt":
        # Some settings with the queries behind them.
        pieces = [lines[start : start + 8] for start in range(0, len(lines), 8)]
        return ["\n".join(piece) + "\n" for piece in pieces]
    return []


def main():
    folder, target, output = sys.argv[1:]
    out = pathlib.Path(output)
    out.mkdir(parents=True, exist_ok=True)
    for file in sorted(pathlib.Path(folder).glob("*.uqlt")):
        for seed in seeds(target, file.read_text(encoding="utf-8").splitlines()):
            data = seed.encode("utf-8")
            (out / hashlib.sha1(data).hexdigest()).write_bytes(data)


if __name__ == "__main__":
    main()
