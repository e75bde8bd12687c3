#!/usr/bin/env python3
"""Fail where the folders under src/ and tools/ include one another in a circle.

An arrow goes from a folder to each other folder whose headers its files include, whether
the include names a path in the tree or a staged header such as <Tellurion/BString.h>.
With --list, print each folder and the folders that it includes.
"""
import collections
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.M)
STAGED = ("Tellurion/", "GeoCalc/", "MapAnchor/", "VellumLib/")


def folder_of(path):
    """The folder that a file counts for; the files of one format count for its folder."""
    return str(path.parent.relative_to(ROOT))


def sources():
    for top in ("src", "tools"):
        for path in sorted((ROOT / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path


def graph(files):
    headers = collections.defaultdict(list)
    for path in files:
        if path.suffix == ".h":
            headers[path.name].append(path)
    arrows = collections.defaultdict(lambda: collections.defaultdict(list))
    for path in files:
        for name in INCLUDE.findall(path.read_text(encoding="utf-8")):
            found = [h for h in headers[pathlib.PurePath(name).name]
                     if name.startswith(STAGED) or ("/" + str(h)).endswith("/" + name)]
            if name.startswith(STAGED):
                below = name.startswith(("Tellurion/", "GeoCalc/"))
                found = [h for h in found if (ROOT / "src/foundation" in h.parents) == below]
            if len(found) > 1:
                sys.exit(f"{path}: {name} is the name of several headers: {', '.join(map(str, found))}")
            if found and folder_of(found[0]) != folder_of(path):
                arrows[folder_of(path)][folder_of(found[0])].append((path, name))
    return arrows


def circles(arrows):
    """Groups of folders that reach one another."""
    def reach(start):
        seen, todo = set(), [start]
        while todo:
            for target in arrows.get(todo.pop(), {}):
                if target not in seen:
                    seen.add(target)
                    todo.append(target)
        return seen
    reached = {folder: reach(folder) for folder in list(arrows)}
    groups = set()
    for folder, others in reached.items():
        if folder in others:
            groups.add(frozenset(o for o in others if folder in reached.get(o, ())))
    return groups


def main():
    arrows = graph(list(sources()))
    if "--list" in sys.argv[1:]:
        for folder in sorted(arrows):
            print(folder, "->", ", ".join(sorted(arrows[folder])))
    groups = circles(arrows)
    for group in groups:
        print("circle:", ", ".join(sorted(group)), file=sys.stderr)
        for folder in sorted(group):
            for target in sorted(set(arrows[folder]) & group):
                path, name = arrows[folder][target][0]
                print(f"  {folder} -> {target}: {path.relative_to(ROOT)} includes {name}"
                      f" and {len(arrows[folder][target]) - 1} more", file=sys.stderr)
    return 1 if groups else 0


if __name__ == "__main__":
    sys.exit(main())
