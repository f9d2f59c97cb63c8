#!/usr/bin/env python3
"""Runs the commands that a page of the documentation shows, and fails unless each prints what the page says.

    CheckPage.py UQL PAGE

A command is an indented line that begins with "$ "; the indented lines below it, up to the next command or the end of
the block, are what it prints, errors included. `cat FILE`, the first time, is taken the other way round: what the page
shows is what the file holds. `uql` is the program UQL, and commands run in a folder of their own.
"""
import os
import subprocess
import sys
import tempfile


def commands(lines):
    """The commands of the page: line number, command, and the lines shown."""
    found = []
    is_open = False
    for number, line in enumerate(lines, 1):
        if line and not line.startswith("    "):
            is_open = False
        elif line.startswith("    $ "):
            is_open = True
            found.append((number, line[6:], []))
        elif is_open:
            found[-1][2].append(line[4:])
    for _, _, shown in found: # blank lines belong to a block that goes on behind them
        while shown and not shown[-1]:
            shown.pop()
    return found


def run(uql, command, folder):
    environment = dict(os.environ, LC_ALL="C.UTF-8", UQL=uql, NO_COLOR="1")
    result = subprocess.run(["bash", "-c", 'uql() { "$UQL" "$@"; }\n' + command], cwd=folder, encoding="utf-8",
                            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, check=False)
    return result.stdout


def main():
    uql, path = sys.argv[1], sys.argv[2]
    with open(path, encoding="utf-8") as file:
        page = commands(file.read().splitlines())
    wrong = 0
    with tempfile.TemporaryDirectory() as folder:
        for number, command, shown in page:
            words = command.split()
            if len(words) == 2 and words[0] == "cat" and not os.path.exists(os.path.join(folder, words[1])):
                with open(os.path.join(folder, words[1]), "w", encoding="utf-8") as file:
                    file.write("\n".join(shown) + "\n")
                continue
            printed = run(uql, command, folder)
            if printed.splitlines() != shown:
                wrong += 1
                print("%s:%d: %s\nprinted\n%sinstead of\n%s" % (path, number, command, printed, "\n".join(shown)))
    print("%d commands, %d faults" % (len(page), wrong))
    return 0 if page and not wrong else 1


if __name__ == "__main__":
    sys.exit(main())
