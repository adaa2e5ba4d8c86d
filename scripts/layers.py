#!/usr/bin/env python3
"""Holds every include of the library against the order of its folders: a folder includes only those above it, and the
core neither Qt nor what is below it. Prints what breaks the rule; fails when anything does."""

import pathlib
import re
import sys

# From top to bottom, as docs/architecture.md tells the story.
CORE = ["platform", "support", "sqlparse", "metadata", "model", "titles", "statement", "query", "querytext", "reading",
        "querybase", "controls", "screen", "panel"]
QT = {"qtsql": CORE, "widgets": CORE}  # these two do not know each other
# The model made from a dataset stands with the metadata, above the model that it is one of.
EXCEPTIONS = {("metadata/Vdsstruc.h", "model")}

root = pathlib.Path(__file__).resolve().parent.parent / "lumora"
faults = []
for path in sorted(root.glob("*/**/*")):
    if path.suffix not in (".h", ".cpp"):
        continue
    place = path.relative_to(root).as_posix()
    folder = place.split("/")[0]
    if folder not in CORE and folder not in QT:
        faults.append(f"{place}: the folder {folder} has no place in the order")
        continue
    allowed = CORE[:CORE.index(folder) + 1] if folder in CORE else QT[folder] + [folder]
    for kind, name in re.findall(r'^#include ([<"])([^">]+)', path.read_text(), re.M):
        if kind == "<":
            if folder in CORE and re.match(r"Q[A-Z]|Qt", name):
                faults.append(f"{place}: the core includes <{name}>")
            continue
        parts = name.split("/")
        if parts[0] != "lumora":
            faults.append(f'{place}: "{name}" does not begin with lumora/')
        elif len(parts) == 2:
            if folder in CORE:
                faults.append(f'{place}: "{name}" is for those who use the library')
        elif parts[1] not in allowed and (place, parts[1]) not in EXCEPTIONS:
            faults.append(f'{place}: "{name}" stands below it')
print("\n".join(faults) if faults else "All includes point upwards")
sys.exit(1 if faults else 0)
