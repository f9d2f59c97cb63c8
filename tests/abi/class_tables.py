#!/usr/bin/env python3
"""Compares how a compiler lays out the public classes with what hosts count on.

    class_tables.py --slots SlotsItanium.txt --fields Fields.txt linux -I include AbiProbe.cpp

clang++, called for a target of compilers.py, prints the tables of virtual functions and the fields of every class
AbiProbeX of AbiProbe.cpp, which stands for its base X. Each class that a public header declares must be in the slots
file, and each slot must hold the function that the file says; what overrides it does not matter. Exits with 1 and one
line for each difference.
"""

import argparse
import re
import subprocess
import sys

import compilers

PROBE = "AbiProbe"
PUBLIC_HEADER = re.compile(r"/OrvUQL/\w+\.h$")


def tokens(text):
    """A declaration without what compilers spell differently: blanks, class keys, our own namespaces."""
    text = re.sub(r"\b(class|struct|enum) ", "", text)
    text = re.sub(r"\b(OrvUQL|detail)::", "", text).replace("_Bool", "bool")
    return " ".join(re.findall(r"\w+|::|\S", text))


def class_name(name):
    """RefCountImplOfIError in the probes is RefCountImpl<IError>."""
    return re.sub(r"^(\w+?)Of(I\w+)$", r"\1<\2>", name)


def function(text):
    """An entry of a table without the class that overrides it."""
    destructor = re.search(r"~\w+\(\).*\[(complete|(?:\w+ )?deleting)\]$", text)
    if destructor:
        kind = destructor.group(1)
        return f"{kind} destructor" if kind in ("complete", "deleting") else "destructor"
    text = re.sub(r" \[(pure|T = [^]]*)\]", "", text)
    return tokens(re.sub(r"(?:\w+(?:<[^(]*>)?::)+(~?\w+\()", r"\1", text, count=1))


def read_slots(path):
    """The slots file: {table: [function, ...]}, the base's functions included."""
    tables, current = {}, None
    with open(path, encoding="utf-8") as lines:
        for number, line in enumerate(lines, 1):
            line = line.rstrip()
            if not line or line.startswith("#"):
                continue
            slot = re.fullmatch(r"\s+(\d+)\s+(.*)", line)
            heading = re.fullmatch(r"(\S+(?: as \w+)?)(?: : (\S+))?", line)
            if slot and current is not None:
                if int(slot.group(1)) != len(current):
                    sys.exit(f"{path}:{number}: slot {slot.group(1)} follows slot {len(current) - 1}")
                text = slot.group(2)
                current.append(text if text.endswith("destructor") else tokens(text))
            elif heading and heading.group(1) not in tables:
                base = heading.group(2)
                if base and base not in tables:
                    sys.exit(f"{path}:{number}: {base} comes later")
                current = tables[heading.group(1)] = list(tables.get(base, []))
            else:
                sys.exit(f"{path}:{number}: cannot read '{line}'")
    return tables


def read_fields(path):
    """The fields file: {class: [field, ...]}."""
    with open(path, encoding="utf-8") as file:
        text = re.sub(r"\n +", " ", "".join(line for line in file if not line.startswith("#")))
    fields = {}
    for line in filter(None, text.splitlines()):
        name, separator, declarations = line.partition(": ")
        if not separator:
            sys.exit(f"{path}: cannot read '{line}'")
        fields[name] = [tokens(declaration) for declaration in declarations.split(", ")]
    return fields


def dumped_slots(dump):
    """The tables of the probes: {table: [function, ...]}."""
    tables, probe, current = {}, None, None
    for line in dump.splitlines():
        heading = re.match(r"(VFTable|Vtable) for (.*) \(\d+ entr", line)
        entry = re.match(r"\s*\d+ \| (.*)", line)
        base = re.match(r"\s*-- \((.*), \d+\) vtable address --", line)
        if heading:
            path = re.findall(r"'([^']+)'", heading.group(2))
            probe = class_name(path[-1][len(PROBE):]) if path[-1].startswith(PROBE) else None
            current = None
            # Microsoft's ABI: one dump for each table, the first base's first.
            if probe and heading.group(1) == "VFTable":
                current = tables[probe if probe not in tables else f"{probe} as {tokens(path[0])}"] = []
        elif not line.strip():
            probe = None
        elif probe and entry and entry.group(1).startswith("offset_to_top"):
            current = None
        elif probe and base and current is None:
            # Itanium: one dump for all tables of a class; the first names the class itself, a further one its base.
            current = tables[probe if probe not in tables else f"{probe} as {tokens(base.group(1))}"] = []
        elif probe and entry and not entry.group(1).endswith(" RTTI"):
            current.append(function(entry.group(1)))
    return tables


def dumped_fields(dump):
    """The classes' own fields: {class: [field, ...]}."""
    fields = {}
    for record in dump.split("*** Dumping AST Record Layout\n")[1:]:
        lines = re.findall(r"^[ \d:-]+ \| ( *)(.*)$", record.partition("\n\n")[0], re.MULTILINE)
        # What is indented once and not a base, "(base)", or the pointer to a table, "(... pointer)", is a field.
        own = [tokens(text) for indent, text in lines if indent == "  " and not text.endswith(")")]
        fields.setdefault(tokens(lines[0][1]).replace(" ", ""), own)
    return fields


def declared_classes(preprocessed):
    """The classes that the public headers declare for the compiler's target, templates left out."""
    classes, public = [], False
    for line in preprocessed.splitlines():
        marker = re.match(r'# \d+ "(.*?)"', line)
        if marker:
            public = bool(PUBLIC_HEADER.search(marker.group(1)))
        found = public and re.match(r"class\s+(?:__\w+\s*\(.*?\)+\s+)?(\w+)\s*(?::[^:]|\{)", line)
        if found:
            classes.append(found.group(1))
    return classes


def compare(what, expected, got, exact):
    """A line for each difference. Unless `exact`, more may follow what is expected."""
    for name, wanted in expected.items():
        found = got.get(name, [])
        for position in range(max(len(wanted), len(found)) if exact else len(wanted)):
            want = wanted[position] if position < len(wanted) else "nothing"
            have = found[position] if position < len(found) else "nothing"
            if want != have:
                yield f"{name}: {what} {position}: expected {want}, got {have}"


def run(command):
    result = subprocess.run(command, capture_output=True, text=True, check=False)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)}\n{result.stderr}")
    return result.stdout


def main():
    parser = argparse.ArgumentParser(description="Compares a compiler's class layout with what hosts count on.")
    parser.add_argument("--slots", required=True)
    parser.add_argument("--fields", required=True)
    parser.add_argument("target", choices=("linux", "clang-mingw", "microsoft"))
    parser.add_argument("arguments", nargs=argparse.REMAINDER)
    options = parser.parse_args()
    command = [*compilers.command(options.target), *options.arguments]

    declared = declared_classes(run([*command, "-E"]))
    # The tables come from the generation of code: -fsyntax-only prints none.
    dumps = ["-Xclang", "-fdump-vtable-layouts", "-Xclang", "-fdump-record-layouts"]
    dump = run([*command, "-c", "-o", "/dev/null", *dumps])

    slots, got = read_slots(options.slots), dumped_slots(dump)
    if not got or not declared:
        sys.exit("the compiler printed no tables")

    def is_declared(name):
        # A class of one system only is no part of the others' headers. Instances of templates always are.
        return name.partition(" as ")[0] in declared or "<" in name

    expected = {name: table for name, table in slots.items() if is_declared(name)}
    differences = [f"{name}: not in {options.slots}" for name in {*declared, *got} - slots.keys()]
    differences += compare("slot", expected, got, exact=True)
    fields = {name: own for name, own in read_fields(options.fields).items() if is_declared(name)}
    differences += compare("field", fields, dumped_fields(dump), exact=False)
    compared = sum(map(len, [*expected.values(), *fields.values()]))
    print("\n".join(sorted(differences)) if differences else f"{compared} slots and fields as expected")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
