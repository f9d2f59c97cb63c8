"""Counting instructions with valgrind's callgrind: what its profiles say, and two of its runs at a time."""
import concurrent.futures
import os
import re


def instructions_inside(profile, library, may_be_unused=False):
    """The instructions that callgrind saw in the functions of an object file, whoever called them. `library` is how its
    name begins, or a tuple of those of several."""
    names = {}  # of object files; the first mention of a number has the name
    current = None
    is_call = False
    total = 0
    for line in profile:
        if line.startswith(("ob=", "cob=")):
            number, name = re.match(r"c?ob=\((\d+)\)(?: (.*))?$", line).groups()
            if name:
                names[number] = os.path.basename(name)
            if line.startswith("ob="):
                current = names[number]
        elif line.startswith("calls="):
            is_call = True  # the next line is what the called function needed
        elif line[0].isdigit() or line[0] in "+-*":
            if not is_call and current is not None and current.startswith(library):
                total += int(line.split()[1])
            is_call = False
    if not may_be_unused and not any(name.startswith(library) for name in names.values()):
        raise SystemExit("the program does not use %s" % (library,))
    return total


def side_by_side(function, arguments):
    with concurrent.futures.ThreadPoolExecutor(max_workers=min(2, os.cpu_count() or 1)) as pool:
        return list(pool.map(function, arguments))
