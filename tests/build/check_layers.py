#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The layers point one way: the families in the order of FSKIT_FAMILIES (platform first), then
the tool, the Python package and the tests. A family's DEPENDS names exactly the families its
sources include, all below it; of those it includes <fskit/NAME.h> and *_internal.h (of platform
any header). The tool and python/ include those and TOOL_INTERFACES.
Usage: check_layers.py <source tree>"""

import pathlib
import re
import sys

# Family headers that say they are there for the tool too.
TOOL_INTERFACES = {"ini/files.h", "ini/lossless.h", "platform/ascii.h"}
TOP_LAYERS = ("tools", "python", "tests", "fuzz")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def cmake_list(text, command):
    """The words of every `command(...)` call, comments left out."""
    text = re.sub(r"#[^\n]*", "", text)
    return [call.split() for call in re.findall(command + r"\s*\(([^)]*)\)", text)]


def family_order(root):
    for words in cmake_list((root / "CMakeLists.txt").read_text(), "set"):
        if words and words[0] == "FSKIT_FAMILIES":
            return words[1:]
    sys.exit("FSKIT_FAMILIES not found in CMakeLists.txt")


def declared_depends(root, family):
    calls = cmake_list((root / family / "CMakeLists.txt").read_text(), "fskit_family")
    if len(calls) != 1 or calls[0][0] != family:
        sys.exit(f"{family}/CMakeLists.txt: expected one fskit_family({family} ...)")
    words = calls[0]
    return set(words[words.index("DEPENDS") + 1:]) if "DEPENDS" in words else set()


def includes(folder):
    """(file, included name, quoted) for every include of the sources under `folder`."""
    for path in sorted(folder.rglob("*")):
        if path.suffix in (".c", ".cpp", ".h") and path.is_file():
            for quote, name in INCLUDE.findall(path.read_text(errors="replace")):
                yield path, name, quote == '"'


def layer_of(name, quoted, families):
    """The family or top layer an include names, or None (system, export.h, ...)."""
    if quoted:
        first = name.split("/")[0]
        return first if first in families or first in TOP_LAYERS else None
    match = re.fullmatch(r"fskit/(\w+)\.h", name)
    return match.group(1) if match and match.group(1) in families else None


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    families = family_order(root)
    rank = {family: i for i, family in enumerate(families)}
    problems = []

    for family in families:
        depends = declared_depends(root, family)
        used = set()
        for path, name, quoted in includes(root / family):
            layer = layer_of(name, quoted, families)
            if layer is None or layer == family:
                continue
            where = path.relative_to(root)
            if layer in TOP_LAYERS or rank[layer] > rank[family]:
                problems.append(f"{where}: includes {name}, a layer above {family}")
            else:
                used.add(layer)
                if quoted and layer != "platform" and not name.endswith("_internal.h"):
                    problems.append(f"{where}: includes {name}, a private header of {layer}")
        for missing in sorted(used - depends):
            problems.append(f"{family}: includes {missing} but DEPENDS does not name it")
        for unused in sorted(depends - used):
            problems.append(f"{family}: DEPENDS names {unused} but no source includes it")
        for higher in sorted(d for d in depends if d in rank and rank[d] >= rank[family]):
            problems.append(f"{family}: DEPENDS names {higher}, which is not below it")

    for top in ("tools", "python"):
        for path, name, quoted in includes(root / top):
            layer = layer_of(name, quoted, families)
            private = not name.endswith("_internal.h") and name not in TOOL_INTERFACES
            if quoted and layer in rank and private:
                problems.append(f"{path.relative_to(root)}: includes {name}, a family's private header")
            if layer in ("tests", "fuzz") or (layer in TOP_LAYERS and layer != top):
                problems.append(f"{path.relative_to(root)}: includes {name}")

    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
