#!/usr/bin/env python3
"""The inputs of a fuzz target as one text file, an input a line: printable ASCII as it is, "\\" and other bytes as
\\xNN.

    corpus.py unpack FILE FOLDER              writes each input to a file of its own
    corpus.py pack FILE LIMIT FOLDER WITHOUT  the inputs of FOLDER that are not in WITHOUT, of LIMIT bytes at most
"""

import hashlib
import pathlib
import re
import sys


def line_of(data):
    return "".join(chr(byte) if 32 <= byte < 127 and byte != 92 else f"\\x{byte:02x}" for byte in data)


def data_of(line):
    text = re.sub(r"\\x([0-9a-f]{2})", lambda found: chr(int(found.group(1), 16)), line)
    return text.encode("latin-1")


def unpack(file, folder):
    out = pathlib.Path(folder)
    out.mkdir(parents=True, exist_ok=True)
    path = pathlib.Path(file)
    for line in path.read_text(encoding="ascii").splitlines() if path.exists() else []:
        data = data_of(line)
        (out / hashlib.sha1(data).hexdigest()).write_bytes(data)


def pack(file, limit, folder, without):
    known = {path.read_bytes() for path in pathlib.Path(without).iterdir()}
    inputs = {path.read_bytes() for path in pathlib.Path(folder).iterdir()} - known
    lines = []
    size = 0
    # By their hashes: an order that favours none and hardly changes when inputs come or go.
    for data in sorted(inputs, key=lambda data: hashlib.sha1(data).digest()):
        line = line_of(data) + "\n"
        if size + len(line) <= int(limit):
            size += len(line)
            lines.append(line)
    lines.sort(key=lambda line: (len(line), line))
    path = pathlib.Path(file)
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text("".join(lines), encoding="ascii")


{"unpack": unpack, "pack": pack}[sys.argv[1]](*sys.argv[2:])
