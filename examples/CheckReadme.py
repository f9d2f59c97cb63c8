#!/usr/bin/env python3
"""Runs the commands of an example's README.md, and fails unless each prints what the page shows.

    CheckReadme.py UQL FOLDER

A command is an indented line that begins with "$ "; the indented lines below it, up to the next command or the end of
the block, are what it prints, errors included. `uql` is the program UQL, and FOLDER the directory in which a command
runs. Every query of the folder has to occur in a command.
"""
import os
import subprocess
import sys


def commands(lines):
    """The commands of the page: line number, command, and the lines shown."""
    found = []
    is_open = False
    for number, line in enumerate(lines, 1):
        text = line[4:] if line.startswith("    ") else None
        if text is None:
            is_open = False
        elif text.startswith("$ "):
            is_open = True
            found.append((number, text[2:], []))
        elif is_open:
            found[-1][2].append(text)
    return found


def main():
    uql, folder = sys.argv[1], sys.argv[2]
    with open(os.path.join(folder, "README.md"), encoding="utf-8") as file:
        page = commands(file.read().splitlines())
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    wrong = 0
    for number, command, shown in page:
        run = subprocess.run(["bash", "-c", 'uql() { "$UQL" "$@"; }\n' + command], cwd=folder, encoding="utf-8",
                             env=dict(environment, UQL=uql), stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        if run.stdout.splitlines() != shown:
            wrong += 1
            print("README.md:%d: %s\nprinted\n%sinstead of\n%s" % (number, command, run.stdout, "\n".join(shown)))
    for name in sorted(os.listdir(folder)):
        if name.endswith(".uql") and not any(name in command.split() for _, command, _ in page):
            wrong += 1
            print("README.md: no command with %s" % name)
    print("%d commands, %d faults" % (len(page), wrong))
    return 0 if page and not wrong else 1


if __name__ == "__main__":
    sys.exit(main())
