"""What the package gives out compares, copies, pickles and shows itself as values of Python do."""

import copy
import logging
import pickle
import subprocess
import sys

import pytest

import mapanchor
from mapanchor import ControlPoint, CoordSys, Fit, Point, Reference, Transform, Type

GRID = [Point(c, r, 100.0 + 2 * c + r % 7, 500.0 - 2 * r) for c in (0, 20, 50, 90) for r in (0, 20, 45, 70)]
TERMS = (0.5, 0.0, 676000.0, 0.0, -0.5, 5242000.0)


@pytest.mark.parametrize(
    "value, other",
    [
        (Point(1, 2, 3, 4, 5, "süß", False), Point(1, 2, 3, 4, 5, "süß")),
        (ControlPoint(1.5, 2, 3, 4), ControlPoint(1.5, 2, 3, 4.1)),
        (Transform(*TERMS), Transform(0.5, 0, 676000, 0, -0.5, 5242001)),
        *((mapanchor.fit(GRID, kind), mapanchor.fit(GRID[1:], kind)) for kind in Fit if kind != Fit.NONE),
        (CoordSys("EPSG:25832+7837"), CoordSys("EPSG:25832")),
        (CoordSys('CoordSys Earth Projection 8, 62, "m", -111, 0, 0.9996, 500000, 0'), CoordSys(32612)),
        (Reference("EPSG:32632", TERMS, GRID), Reference("EPSG:32633", TERMS, GRID)),
        (Reference("EPSG:32632", mapanchor.fit(GRID, "tps"), GRID), Reference("EPSG:32632", None, GRID)),
        (mapanchor.Diagnostic("read-from", "note", "text"), mapanchor.Diagnostic("read-from", "error", "text")),
        (Type.WLD, Type.RSF),
    ],
    ids=lambda value: type(value).__name__,
)
def test_values_compare_and_copy(value, other):
    for twin in (copy.copy(value), copy.deepcopy(value), pickle.loads(pickle.dumps(value))):
        assert twin == value and type(twin) is type(value) and repr(twin) == repr(value)
        if type(value).__hash__:
            assert hash(twin) == hash(value)
    assert value != other and value != "other" and "other" != value
    assert (type(value).__hash__ is None) == isinstance(value, (Point, ControlPoint, Reference))


@pytest.mark.parametrize("name", ["points.rsf", "points.tab", "map.tfw"])
@pytest.mark.parametrize("fit", [Fit.AFFINE, Fit.POLY2, Fit.TPS])
def test_what_was_read_pickles(tmp_path, name, fit):
    made = Reference("EPSG:32632", mapanchor.fit(GRID), GRID)
    made.size = (100, 80)
    mapanchor.write(made, tmp_path / name, image_name="map.tif", sync=False)
    reading = mapanchor.read(tmp_path / name, fit=fit, width=100, height=80, explain=True)
    twin = pickle.loads(pickle.dumps(reading))
    assert twin == reading == mapanchor.read(tmp_path / name, fit=fit, width=100, height=80)
    assert (twin.kind, twin.files, twin.diagnostics) == (reading.kind, reading.files, reading.diagnostics)
    assert twin.origins == reading.origins != []
    assert twin.transform.to_world(7, 9) == reading.transform.to_world(7, 9)
    assert reading.size == (100, 80) and reading.bounds == twin.bounds


def test_heights_and_failures_pickle():
    reading = Reference("EPSG:25832+7837", TERMS)
    reading.pixel_is_point = True
    assert pickle.loads(pickle.dumps(reading)) == reading != Reference("EPSG:25832+7837", TERMS)
    with pytest.raises(mapanchor.Error) as caught:
        mapanchor.read("missing.tfw")
    twin = pickle.loads(pickle.dumps(caught.value))
    assert (type(twin), str(twin), twin.source) == (type(caught.value), str(caught.value), caught.value.source)


def test_enumerations_are_texts(tmp_path):
    assert Fit.TPS == "tps" == str(Fit.TPS) == f"{Fit.TPS}" and Fit("Polynomial2") is Fit.POLY2
    assert Type("geotiff") is Type.TIF is Type.GEOTIFF and "wld" != Type.WLD == "WLD"
    (tmp_path / "place.txt").write_text("0.5\n0\n0\n-0.5\n676000.25\n5241999.75\n")
    assert mapanchor.read(tmp_path / "place.txt", "wld").kind == Type.WLD
    with pytest.raises(ValueError, match="'xyz' is unknown as a Fit; known are affine, "):
        mapanchor.fit(GRID, "xyz")


def test_sizes_and_bounds():
    reference = Reference(transform=(2, 0, 100, 0, -2, 500))
    assert reference.size is reference.bounds is None
    reference.size = (10, 20)
    assert reference.bounds == (100, 460, 120, 500)
    assert reference.__geo_interface__["geometry"] is None
    reference.transform = mapanchor.fit([Point(0, 0, 0, 0), Point(10, 0, 0, 10), Point(0, 20, -20, 0)])
    assert reference.bounds == pytest.approx((-20, 0, 0, 10), abs=1e-9)
    with pytest.raises(ValueError, match="no coordinate system"):
        reference.footprint()


def test_sources_name_who_wins(tmp_path):
    raster = tmp_path / "photo.jpg"
    raster.write_bytes(b"no picture")
    for name, shift in (("jgw", 0), ("jpgw", 3)):
        raster.with_suffix("." + name).write_text(f"0.5\n0\n0\n-0.5\n{676000.25 + shift}\n5241999.75\n")
    found = mapanchor.sources(raster, width=20, height=10)
    assert [(s.kind, s.wins, s.pixels) for s in found] == [("WLD", True, 0.0), ("WLD", False, 6.0)]
    assert pickle.loads(pickle.dumps(found)) == found and found[1].reference.affine[2] == 676003
    assert mapanchor.sources(__file__) == []


def test_the_log_is_silent_until_it_is_asked_for(tmp_path):
    handlers = logging.getLogger("mapanchor").handlers
    assert any(isinstance(handler, logging.NullHandler) for handler in handlers)
    (tmp_path / "bad.tfw").write_text("0\n0\n0\n0\n0\n0\n")
    code = "import mapanchor\ntry: mapanchor.read('bad.tfw', 'WLD')\nexcept mapanchor.Error: print('raised')"
    ran = subprocess.run([sys.executable, "-c", code], cwd=tmp_path, capture_output=True, text=True)
    assert (ran.stdout, ran.stderr) == ("raised\n", "")
