"""What docs/python.md and the package's own texts show is what happens."""

import doctest
import pathlib
import re
import shutil

import mapanchor
import pytest

ROOT = pathlib.Path(__file__).parents[2]


@pytest.fixture
def examples(tmp_path, monkeypatch):
    for file in (ROOT / "examples").glob("*.*"):
        shutil.copy(file, tmp_path)
    monkeypatch.chdir(tmp_path)


def run(text, name):
    test = doctest.DocTestParser().get_doctest(text, {}, name, name, 0)
    assert test.examples
    report = []
    doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(test, out=report.append)
    assert report == [], "".join(report)


def test_the_page_holds(examples):
    for peer in ("affine", "geopandas", "numpy", "pyproj", "rasterio", "shapely"):
        pytest.importorskip(peer)
    page = (ROOT / "docs" / "python.md").read_text()
    run("\n".join(re.findall(r"^```python\n(.*?)^```$", page, re.M | re.S)), "docs/python.md")


def test_the_texts_hold(examples):
    run(mapanchor.__doc__, "mapanchor")
