#!/usr/bin/env python3
"""Builds the documentation site: site.py <folder of the API reference> <output folder>

The README is the front page, and every file of docs/ is a page. SECTIONS orders those that it
names and that exist; all others follow in its first section. A warning of Sphinx, such as a link
to a missing page, is an error. Exit status 77: Sphinx, MyST or the theme is not installed.
"""

import importlib.util
import os
import pathlib
import re
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
NEEDED = ("sphinx", "myst_parser", "furo")
# Files outside docs/ that are pages of the site.
PAGES = {"README.md": "index", "CHANGELOG.md": "changelog", "CONTRIBUTING.md": "contributing",
         "examples/SOURCES.md": "example-sources"}
SECTIONS = {
    "Use it": ["cookbook", "georeference", "formats", "coordinate-systems", "diagnostics", "scale-out"],
    "Call it": ["python", "c", "languages", "api"],
    "Trust it": ["conformance", "performance", "reliability"],
    "Work on it": ["architecture", "contributing", "changelog", "example-sources"],
}


def lay_out(stage):
    """The pages under the names that they have in the site, with their links changed to match."""
    names = {file: page + ".md" for file, page in PAGES.items() if (ROOT / file).exists()}
    names |= {f"docs/{path.name}": path.name for path in (ROOT / "docs").glob("*.md")}
    for file, name in names.items():
        folder = pathlib.PurePosixPath(file).parent

        def link(match):
            mark, text, target = match[1], match[2], match[3]
            target, _, anchor = target.partition("#")
            if not target or ":" in target:
                return match[0]
            path = os.path.normpath(folder / target)
            if path in names:
                if text == match[3]:  # a path means nothing on the site: the title of the page
                    text = re.search(r"^# (.*)", (ROOT / path).read_text(encoding="utf-8"), re.M)[1]
                return f"[{text}]({names[path]}{'#' + anchor if anchor else ''})"
            if not (ROOT / path).exists():
                sys.exit(f"site: {file} has a link to {target}, which does not exist")
            if not mark:
                return text  # a file of the tree that is not a page
            shutil.copy(ROOT / path, stage)
            return f"![{text}]({pathlib.PurePosixPath(path).name})"

        text = (ROOT / file).read_text(encoding="utf-8")
        parts = re.split(r"(^```.*?^```$)", text, flags=re.S | re.M)
        parts[::2] = [re.sub(r"(!?)\[([^\]]*)\]\(([^)\s]+)\)", link, part) for part in parts[::2]]
        (stage / name).write_text("".join(parts), encoding="utf-8")


def add_contents(stage):
    there = {path.stem for path in stage.glob("*.md")} - {"index"}
    known = {page for pages in SECTIONS.values() for page in pages}
    with open(stage / "index.md", "a", encoding="utf-8") as index:
        for title, pages in SECTIONS.items():
            pages = [page for page in pages if page in there]
            if title == next(iter(SECTIONS)):
                pages += sorted(there - known)
            index.write(f"\n```{{toctree}}\n:hidden:\n:caption: {title}\n\n" + "\n".join(pages) + "\n```\n")


def main():
    reference, output = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    missing = [name for name in NEEDED if importlib.util.find_spec(name) is None]
    if missing:
        print("site: not installed:", *missing)
        return 77
    stage = output / "pages"
    shutil.rmtree(output, ignore_errors=True)
    stage.mkdir(parents=True)
    (stage / "static").mkdir()
    (stage / "extra").mkdir()
    lay_out(stage)
    site = ROOT / "docs/site"
    shutil.copy(site / "conf.py", stage)
    shutil.copy(site / "site.css", stage / "static")
    shutil.copy(ROOT / "examples/read_reference.cpp", stage)
    if (reference / "index.html").exists():
        shutil.copytree(reference, stage / "extra/api")
        shutil.copy(site / "api.md", stage)
    add_contents(stage)
    version = re.search(r"^project\(MapAnchor VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text(), re.M)[1]
    made = subprocess.run(
        [sys.executable, "-m", "sphinx", "-b", "html", "-W", "--keep-going", "-q", "-d", output / "doctrees", stage,
         output / "html"], env=os.environ | {"MAPANCHOR_VERSION": version, "PYTHONDONTWRITEBYTECODE": "1"})
    if made.returncode == 0:
        print(f"documentation: {output / 'html/index.html'}")
    return made.returncode


sys.exit(main())
