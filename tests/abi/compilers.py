#!/usr/bin/env python3
"""The compilers whose view of the headers matters, and how to call each on Linux.

    compilers.py TARGET ARGUMENT...

calls the compiler for TARGET with the arguments:

    linux        clang++
    mingw        g++ of mingw-w64: compiles the library for Windows
    clang-mingw  clang++ with g++'s conventions on Windows, since g++ does not print its tables in a readable form
    microsoft    clang++ in the dialect and with the ABI of Microsoft's compiler

Microsoft's own headers are not to be had here, so clang++ takes those of mingw-w64 for both Windows targets.
"""

import os
import shutil
import subprocess
import sys

CLANG = (("clang++-14", "clang++"), "clang-14")
MINGW = (("x86_64-w64-mingw32-g++-posix", "x86_64-w64-mingw32-g++"), "g++-mingw-w64-x86-64-posix")


def find(program):
    names, package = program
    for name in names:
        path = shutil.which(name)
        if path:
            return path
    return sys.exit(f"{names[0]} not found; on Debian it is in the package {package}")


def mingw_includes():
    """The folders of mingw-w64's headers, without those that belong to its compiler alone."""
    searched = subprocess.run([find(MINGW), "-E", "-x", "c++", "-v", os.devnull, "-o", os.devnull],
                              capture_output=True, text=True, check=True, env={**os.environ, "LC_ALL": "C"}).stderr
    listed = searched.partition("#include <...> search starts here:")[2].partition("End of search list.")[0]
    folders = [os.path.realpath(line.strip()) for line in listed.splitlines() if line.strip()]
    library = [folder for folder in folders if "/c++" in folder or "/gcc/" not in folder]
    if not any(os.path.exists(os.path.join(folder, "windows.h")) for folder in library):
        sys.exit(f"no windows.h where {find(MINGW)} searches:\n{searched}")
    return [argument for folder in library for argument in ("-isystem", folder)]


def command(target):
    """How to call the compiler for `target`."""
    if target == "linux":
        return [find(CLANG)]
    if target == "mingw":
        return [find(MINGW)]
    if target == "clang-mingw":
        return [find(CLANG), "--target=x86_64-w64-windows-gnu", "-nostdinc++", *mingw_includes()]
    if target == "microsoft":
        # What mingw-w64's headers need beside _MSC_VER: the version of g++ they ask for, and __declspec as a macro.
        return [find(CLANG), "--target=x86_64-pc-windows-msvc", "-nostdinc++", *mingw_includes(),
                "-fgnuc-version=12.0.0", "-D__declspec=__declspec", "-fno-ms-compatibility", "-Wgnu"]
    return sys.exit(f"unknown target '{target}'")


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(subprocess.run([*command(sys.argv[1]), *sys.argv[2:]], check=False).returncode)
