"""The Python package as a script meets it."""

import ast
import dataclasses
import inspect
import logging
import math
import pathlib
import shutil
import threading
import time

import pytest

import mapanchor
from mapanchor import CoordSys, Fit, Point, Reference, Transform, Type

TERMS = (0.5, 0.0, 676000.0, 0.0, -0.5, 5242000.0)
WLD = "0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n"
GRID = [Point(c, r, 100.0 + 2 * c, 500.0 - 2 * r) for c in (0, 20, 50, 90) for r in (0, 20, 45, 70)]


@pytest.fixture
def map_file(tmp_path):
    (tmp_path / "map.tfw").write_text(WLD)
    (tmp_path / "map.prj").write_text(CoordSys("EPSG:32632").wkt)
    return tmp_path / "map.tfw"


def test_read_by_name(map_file):
    reference = mapanchor.read(map_file)
    assert (reference.kind, reference.anchor, reference.affine) == ("WLD", "corner", TERMS)
    assert (reference.crs.epsg, reference.crs.unit, reference.crs.geodetic) == ("EPSG:32632", "metre", False)
    assert reference.transform.to_world(2, 4) == (676001.0, 5241998.0)
    assert reference.transform.to_pixel(676001.0, 5241998.0) == (2.0, 4.0)
    assert reference.vertical_unit is None and reference.points == []


def test_a_raster_is_read_from_its_sidecars(map_file, caplog, capfd):
    raster = map_file.with_suffix(".tif")
    raster.write_text("no raster")
    reference = mapanchor.read(raster)
    assert (reference.kind, reference.affine, reference.size) == ("WLD", TERMS, None)
    assert reference.files == [str(map_file), str(map_file.with_suffix(".prj"))]
    assert [(d.id, d.severity) for d in reference.diagnostics] == [("read-from", "note")]
    origins = mapanchor.read(raster, explain=True).origins
    assert [(o.value, o.file, o.place) for o in origins][0] == ("pixel size", str(map_file), "lines 1 and 4")
    with pytest.raises(mapanchor.InvalidContentError):
        mapanchor.read(raster, source="tab")
    assert caplog.records == [] and capfd.readouterr().err == ""


@pytest.mark.parametrize("name", ["copy.jgw", "copy.tab", "copy.rsf", "copy.ers", "süß \udcff.tfw"])
@pytest.mark.parametrize("path", [str, pathlib.Path, lambda text: str(text).encode("utf-8", "surrogateescape")])
def test_write_reads_back(map_file, name, path):
    target = map_file.parent / name
    options = {"width": 200, "height": 100, "image_name": "map.tif", "sync": False, "overwrite": False}
    saving = mapanchor.write(mapanchor.read(map_file), path(target), **options)
    assert (saving.exact, saving.same_crs, saving.metres) == (True, True, pytest.approx(0, abs=1e-3))
    with pytest.raises(mapanchor.Error):
        mapanchor.write(mapanchor.read(map_file), path(target), **options)
    back = mapanchor.read(path(target), width=200, height=100)
    assert back.transform.to_world(100, 100) == pytest.approx((676050.0, 5241950.0), abs=1e-9)
    assert back.used_file == str(target)


@pytest.mark.parametrize(
    "name, content, type, raised, also",
    [
        ("missing.tfw", None, Type.WLD, mapanchor.MissingFileError, FileNotFoundError),
        ("bad.tfw", "no numbers\n", None, mapanchor.UnsupportedFileError, ValueError),
        ("bad.tfw", "0\n0\n0\n0\n0\n0\n", Type.WLD, mapanchor.Error, Exception),
        ("bad.pdf", "%PDF-1.4\n", None, mapanchor.Error, Exception),
        ("bad.doq", "", Type.DOQQ, mapanchor.NotSupportedError, ValueError),
    ],
)
def test_failures_are_exceptions(tmp_path, name, content, type, raised, also):
    file = tmp_path / name
    if content is not None:
        file.write_text(content)
    with pytest.raises(raised) as caught:
        mapanchor.read(file, type, width=10, height=10, strict_transform=True)
    assert isinstance(caught.value, also) and isinstance(caught.value, mapanchor.Error)
    assert caught.value.source and str(caught.value).endswith(f"({caught.value.source})")


@pytest.mark.parametrize("kind", [kind for kind in Fit if kind != "none"])
def test_every_fit_goes_both_ways(kind):
    transform = mapanchor.fit(GRID, kind, width=100, height=100)
    assert transform.kind == kind
    assert (transform.affine is None) == (kind not in (Fit.AFFINE, Fit.CONFORMAL))
    for p in GRID:
        assert transform.to_world(p.column, p.row) == pytest.approx((p.x, p.y), abs=1e-6)
        assert transform.to_pixel(p.x, p.y) == pytest.approx((p.column, p.row), abs=1e-6)


@pytest.mark.parametrize("dpi", [0, -72, 1e300, 1e-300, math.nan])
def test_no_page_has_such_a_resolution(map_file, tmp_path, dpi):
    sheet = shutil.copy(pathlib.Path(__file__).parents[2] / "examples" / "sheet.pdf", tmp_path)
    for work in (mapanchor.read, lambda *a, **k: mapanchor.write(mapanchor.read(map_file), *a, **k)):
        with pytest.raises(mapanchor.Error, match="dots per inch"):
            work(sheet, dpi=dpi)


def test_what_cannot_be_made(map_file):
    missing = map_file.parent / "no" / "copy.tfw"
    with pytest.raises(mapanchor.Error) as caught:
        mapanchor.write(mapanchor.read(map_file), missing, Type.WLD)
    assert isinstance(caught.value, OSError)
    for raised, make in [
        (mapanchor.Error, lambda: mapanchor.fit(GRID[:1])),
        (ValueError, lambda: Transform(1, 2, 0, 2, 4, 0)),
        (mapanchor.InvalidCoordSysError, lambda: CoordSys("nowhere")),
        (mapanchor.InvalidCoordSysError, lambda: CoordSys("CoordSys Earth Projection 99")),
        (mapanchor.InvalidCoordSysError, lambda: CoordSys(2154).from_geodetic(0, -90)),
        (TypeError, lambda: CoordSys(1.5)),
        (TypeError, lambda: Transform(1, 0, 0, 0, 1, 0).to_world("1", 2)),
        (mapanchor.MissingFileError, lambda: mapanchor.sources(missing)),
        (mapanchor.MissingFileError, lambda: mapanchor.maps(missing)),
        (mapanchor.InvalidContentError, lambda: mapanchor.maps(map_file)),
        (ValueError, lambda: mapanchor.read(map_file, "nothing")),
        (ValueError, lambda: mapanchor.read(map_file).footprint()),
        (TypeError, lambda: mapanchor.read(17)),
    ]:
        with pytest.raises(raised):
            make()


def test_reference_parts_are_set_and_unset():
    reference = Reference(CoordSys("EPSG:4326"), points=GRID[:2])
    assert reference.crs.geodetic and reference.transform is None and len(reference.points) == 2
    reference.affine = TERMS
    reference.points = [Point(1, 2, 3.0, 4.0, name="süß", enabled=False)]
    point = reference.points[0]
    assert (reference.affine, point.name, point.enabled, point.z) == (TERMS, "süß", False, 0.0)
    reference.crs = reference.transform = None
    assert reference.crs is None and reference.affine is None
    system = CoordSys("EPSG:32632")
    longitude, latitude = system.to_geodetic(500000.0, 5242000.0)
    assert longitude == pytest.approx(9.0, abs=1e-12) and 47.0 < latitude < 48.0
    assert system.from_geodetic(longitude, latitude) == pytest.approx((500000.0, 5242000.0), abs=1e-6)


def test_log_lines_reach_the_logger(map_file, caplog, capfd):
    map_file.write_text("0\n0\n0\n0\n0\n0\n")
    with caplog.at_level(logging.INFO, "mapanchor"), pytest.raises(mapanchor.Error):
        mapanchor.read(map_file, Type.WLD)
    line = "BRefWLD::Read Failure A & E (or B & C) are zero!"
    assert ("mapanchor", logging.ERROR, line) in caplog.record_tuples
    caplog.clear()
    with caplog.at_level(logging.CRITICAL, "mapanchor"), pytest.raises(mapanchor.Error):
        mapanchor.read(map_file, Type.WLD)
    assert caplog.records == [] and capfd.readouterr().err == ""


def test_other_threads_run_while_a_file_is_read(tmp_path):
    slow = tmp_path / "slow.rsf"  # a spline through so many points takes a second
    rows = (f"p {i * i % 4001} {i} 0 {i * i % 3989} {i * 7 % 1501} 0 1" for i in range(1500))
    slow.write_text("\n".join(["1 1500", *rows]))
    began, ended = threading.Event(), threading.Event()

    def read():
        began.set()
        mapanchor.read(slow, Type.RSF, fit=Fit.THIN_PLATE_SPLINE)
        ended.set()

    reader = threading.Thread(target=read)
    reader.start()
    began.wait()
    time.sleep(0.05)
    assert not ended.is_set()
    reader.join()
    assert ended.is_set()


def test_hints_name_what_is_there():
    page = ast.parse(pathlib.Path(mapanchor.__file__).with_name("__init__.pyi").read_text())
    hinted = {node.name: node for node in page.body if isinstance(node, (ast.ClassDef, ast.FunctionDef))}
    values = {name for name in mapanchor.__all__ if dataclasses.is_dataclass(getattr(mapanchor, name))}
    assert {name for name in hinted if name[0] != "_"} | values == set(mapanchor.__all__)
    for name in set(mapanchor.__all__) - values:
        there = getattr(mapanchor, name)
        assert there.__doc__ == ast.get_docstring(hinted[name]), name
        if inspect.isclass(there) and not issubclass(there, (BaseException, str)):
            of_class = [getattr(node, "target", node) for node in hinted[name].body]
            members = {getattr(node, "id", getattr(node, "name", "_")) for node in of_class}
            members = {member for member in members if member[0] != "_"}
            there_are = {member for member, _ in inspect.getmembers(there) if member[0] != "_"}
            assert members == there_are, name
            for member in there_are:
                if callable(getattr(there, member)):
                    assert list(inspect.signature(getattr(there, member)).parameters)[0] == "self", member
        if not inspect.isclass(there):
            assert list(inspect.signature(there).parameters) == [
                argument.arg for argument in hinted[name].args.args + hinted[name].args.kwonlyargs
            ]
    for words in (mapanchor.Type, Fit, mapanchor.Box):
        hints = {node.targets[0].id: node.value.value for node in hinted[words.__name__].body[1:]}
        assert hints == {member: word.value for member, word in words.__members__.items()}


def test_hints_are_checked_by_mypy(tmp_path, monkeypatch):
    api = pytest.importorskip("mypy.api")
    (tmp_path / "use.py").write_text(
        """import mapanchor
mapanchor.read('a', 'WLD', fit='tps', box=mapanchor.Box.CROP).crs = 4326
mapanchor.Reference(mapanchor.CoordSys('EPSG:4326'), (1, 0, 0, 0, 1, 0)).footprint()['type']
x: float = mapanchor.Transform(1, 0, 0, 0, 1, 0).to_world(1, 2)[0]
word: str = mapanchor.Type.WLD
mapanchor.read(3)
mapanchor.read('a').kind = 'WLD'
"""
    )
    monkeypatch.chdir(tmp_path)
    (tmp_path / "mapanchor").symlink_to(pathlib.Path(mapanchor.__file__).parent)  # wherever it is installed
    said, _, _ = api.run(["--strict", "use.py"])
    assert [line.split(":")[1] for line in said.splitlines()[:-1]] == ["6", "7"], said
