#!/usr/bin/env python3
"""Compares what the DLL exports with what the public headers declare as exported.

    dll_exports.py OBJDUMP DLL COMPILER-ARGUMENT... HEADER

Succeeds if the two agree: all that a host can call is there, and nothing else, in particular nothing of the standard
library, which is part of the DLL, and nothing of the library's own inside. Prints how much of each kind is exported.
"""

import json
import re
import subprocess
import sys
from collections import Counter

import compilers


def exported_names(objdump, dll):
    text = subprocess.run([objdump, "-p", dll], capture_output=True, text=True, check=True).stdout
    table = text.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
    return set(re.findall(r"^\s*\[\s*\d+\].* (\S+)$", table, re.M))


def declarations(arguments):
    """The compiler's syntax tree of all whose names tell that they are the library's."""
    command = [*compilers.command("clang-mingw"), *arguments, "-fsyntax-only",
               "-Xclang", "-ast-dump=json", "-Xclang", "-ast-dump-filter=Orv"]
    text = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    decoder = json.JSONDecoder()
    position = 0
    while position < len(text):
        tree, end = decoder.raw_decode(text, position)
        yield tree
        position = end + len(text[end:]) - len(text[end:].lstrip())


def is_exported(node):
    return any(child.get("kind") == "DLLImportAttr" for child in node.get("inner", []))


class Interface:
    """What the headers mark, as the names that the linker sees."""

    def __init__(self):
        self.required = {}  # name: kind
        self.allowed = {}
        self.inline = {}  # of exported classes: each module has its own, the library where a table names it

    def add_class(self, node, scope):
        name = "".join(f"{len(part)}{part}" for part in scope)
        name = f"N{name}E" if len(scope) > 1 else name
        if node.get("definitionData", {}).get("isPolymorphic"):
            self.required[f"_ZTV{name}"] = "table of virtual functions"
            self.required[f"_ZTI{name}"] = "type information"
            self.allowed[f"_ZTS{name}"] = "type information"

    def add_function(self, node, names):
        name = node["mangledName"]
        if node.get("pure") or node.get("explicitlyDeleted"):
            return
        kind = {"CXXConstructorDecl": "constructor", "CXXDestructorDecl": "destructor",
                "CXXMethodDecl": "member function"}.get(node["kind"], "function")
        names[name] = kind
        # Constructors and destructors have forms of their own for base classes, destructors also one that frees.
        if kind == "constructor":
            self.allowed[name.replace("C1", "C2")] = kind
        elif kind == "destructor":
            self.allowed[name.replace("D1", "D0")] = kind
            self.allowed[name.replace("D1", "D2")] = kind

    def add(self, node, scope, in_exported_class=False):
        if node.get("kind") in ("ClassTemplateDecl", "FunctionTemplateDecl"):
            return
        if node.get("kind") in ("NamespaceDecl", "CXXRecordDecl"):
            scope = [*scope, node.get("name", "")]
        if node.get("kind") == "CXXRecordDecl":
            in_exported_class = is_exported(node)
        if is_exported(node):
            if node["kind"] == "CXXRecordDecl":
                if "definitionData" in node:
                    self.add_class(node, scope)
            elif "mangledName" in node:
                self.add_function(node, self.required)
        elif in_exported_class and "mangledName" in node:
            self.add_function(node, self.inline)
        for child in node.get("inner", []):
            self.add(child, scope, in_exported_class)

    def kind(self, name):
        thunk = re.sub(r"^_ZThn?\d+_", "_Z", name)
        if thunk != name and (thunk in self.required or thunk in self.inline):
            return "way into a member function from a second base"
        return self.required.get(name) or self.allowed.get(name) or self.inline.get(name)


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    objdump, dll, *arguments = sys.argv[1:]
    exported = exported_names(objdump, dll)
    interface = Interface()
    for tree in declarations(arguments):
        interface.add(tree, [])
    missing = sorted(set(interface.required) - exported)
    unknown = sorted(name for name in exported if not interface.kind(name))
    for name in missing:
        print(f"not exported: {interface.required[name]} {name}")
    for name in unknown:
        print(f"exported, but no header says so: {name}")
    for kind, count in sorted(Counter(interface.kind(name) for name in exported if interface.kind(name)).items()):
        print(f"{count:5} {kind}")
    print(f"{len(exported):5} in all")
    sys.exit(1 if missing or unknown or not exported else 0)


if __name__ == "__main__":
    main()
