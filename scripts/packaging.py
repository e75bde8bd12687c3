#!/usr/bin/env python3
"""Fail where the files of packages say another thing than the build: the version, whose place is
CMakeLists.txt, options that CMake does not have, and functions of the C interface."""
import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def text(name):
    return (ROOT / name).read_text(encoding="utf-8")


def found(pattern, name):
    return re.findall(pattern, text(name), re.M)


def versions():
    version = found(r"^project\(MapAnchor VERSION ([0-9.]+)", "CMakeLists.txt")
    stated = {"debian/changelog": found(r"\Amapanchor \(([0-9.]+)\)", "debian/changelog"),
              "packaging/vcpkg/vcpkg.json": [json.loads(text("packaging/vcpkg/vcpkg.json"))["version"]]}
    return [f"{name} states version {other}, CMakeLists.txt {version}"
            for name, other in stated.items() if other != version]


def options():
    known = set()
    for path in [ROOT / "CMakeLists.txt", *ROOT.glob("src/**/CMakeLists.txt"), *ROOT.glob("tools/**/CMakeLists.txt")]:
        known.update(re.findall(r"(?:option|set)\((MAPANCHOR_\w+)", path.read_text(encoding="utf-8")))
    wrong = []
    for name in ("debian/rules", "packaging/vcpkg/portfile.cmake", "packaging/conan/conanfile.py"):
        used = set(found(r"(?:-D|\b)(MAPANCHOR_[A-Z_]+)", name))
        if not used:
            wrong.append(f"{name} sets no option")
        wrong += [f"{name} sets {option}, which CMake does not have" for option in sorted(used - known)]
    compile(text("packaging/conan/conanfile.py"), "packaging/conan/conanfile.py", "exec")
    return wrong


def functions():
    declared = set(found(r"^MAPANCHOR_C_EXPORT .*?\b(mapanchor_\w+)\(", "capi/mapanchor.h"))
    lists = {"capi/mapanchor.map": set(found(r"^ +(mapanchor_\w+);", "capi/mapanchor.map")),
             "debian/libmapanchor0.symbols": set(found(r"^ (mapanchor_\w+)@", "debian/libmapanchor0.symbols"))}
    return [f"{name} differs from capi/mapanchor.h in {', '.join(sorted(declared ^ listed))}"
            for name, listed in lists.items() if declared != listed]


def main():
    wrong = versions() + options() + functions()
    for line in wrong:
        print("packaging:", line, file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
