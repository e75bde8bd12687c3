"""The package together with numpy, affine, pyproj, rasterio, shapely and geopandas."""

import math

import pytest

import mapanchor
from mapanchor import CoordSys, Point, Reference, Transform

numpy = pytest.importorskip("numpy")

CODES = [4326, 3857, 32632, 25832, 2154, 27700, 31370, 3413, 5514, 4979]
GRID = [Point(c, r, 100.0 + 2 * c + r % 7, 500.0 - 2 * r) for c in (0, 20, 50, 90) for r in (0, 20, 45, 70)]


@pytest.mark.parametrize("kind", ["affine", "poly2", "tps"])
def test_arrays_are_converted_as_single_positions(kind):
    transform = mapanchor.fit(GRID, kind)
    columns, rows = numpy.meshgrid(numpy.linspace(0, 90, 5), numpy.arange(0, 70, 30, dtype="int16"))
    x, y = transform.to_world(columns, rows)
    assert x.shape == columns.shape == (3, 5)
    singles = [transform.to_world(c, r) for c, r in zip(columns.flat, rows.flat)]
    assert numpy.array_equal(numpy.stack([x.ravel(), y.ravel()], axis=1), singles)
    back = transform.to_pixel(x, y)
    assert numpy.allclose(back[0], columns, atol=1e-6) and numpy.allclose(back[1], rows, atol=1e-6)


def test_shapes_are_kept():
    transform = Transform(2, 0, 100, 0, -2, 500)
    for column, row, shape in [
        ([1, 2], 3, (2,)),
        (numpy.zeros((0, 4)), 1, (0, 4)),
        (numpy.array([5.0]), numpy.array([6.0]), (1,)),
        (numpy.zeros((3, 1)), numpy.zeros((1, 2)), (3, 2)),
        (numpy.arange(12).reshape(3, 4).T, numpy.float32(1), (4, 3)),
    ]:
        x, y = transform.to_world(column, row)
        assert x.shape == y.shape == shape
        assert numpy.array_equal(x, numpy.broadcast_to(100 + 2 * numpy.asarray(column), shape))
    assert transform.to_world(numpy.float32(1), numpy.int16(2)) == (102.0, 496.0)
    assert isinstance(transform.to_world(numpy.float32(1), numpy.int16(2))[0], float)
    given = numpy.ones(2)
    transform.to_world(given, given)
    assert given.tolist() == [1, 1]
    longitude, latitude = CoordSys(2154).from_geodetic([3.0, 0.0], [46.5, -90.0])
    assert longitude[0] == pytest.approx(700000) and numpy.isnan([longitude[1], latitude[1]]).all()
    with pytest.raises(ValueError):
        transform.to_world([1, 2], [1, 2, 3])


def test_affine():
    affine = pytest.importorskip("affine")
    terms = affine.Affine(2, 0.1, 100, 0.2, -2, 500)
    reference = Reference(transform=terms)
    assert reference.affine == tuple(terms)[:6] and Transform(terms) == reference.transform
    assert reference.to_affine() == terms == reference.transform.to_affine()
    reference.affine = affine.Affine.scale(3)
    assert reference.transform.to_affine() == affine.Affine.scale(3)
    with pytest.raises(ValueError):
        Transform((1, 0, 0, 0, 1, 0, 0, 0, 2))


@pytest.mark.parametrize("code", CODES)
def test_systems_pass_to_pyproj_and_back(code):
    pyproj = pytest.importorskip("pyproj")
    theirs, ours = pyproj.CRS.from_epsg(code), CoordSys(code)
    assert CoordSys(theirs) == ours and pyproj.CRS(ours) == theirs and ours == theirs
    to_ours = pyproj.Transformer.from_crs(4326, theirs, always_xy=True)
    area = theirs.area_of_use
    longitude, latitude = (area.west + area.east) / 2, min((area.south + area.north) / 2, 80)
    assert CoordSys(4326).convert_to(theirs, longitude, latitude) == pytest.approx(
        to_ours.transform(longitude, latitude), abs=1e-6
    )


def test_rasterio(tmp_path):
    rasterio = pytest.importorskip("rasterio")
    from rasterio.transform import from_origin

    profile = {"driver": "GTiff", "width": 40, "height": 30, "count": 1, "dtype": "uint8"}
    for name, extra in [("corner.tif", {}), ("point.tif", {"AREA_OR_POINT": "Point"})]:
        file = tmp_path / name
        with rasterio.open(
            file, "w", crs="EPSG:32632", transform=from_origin(676000, 5242000, 0.5, 0.25), **profile
        ) as made:
            made.update_tags(**extra)
        ours = mapanchor.read(file)
        with rasterio.open(file) as theirs:
            assert ours.to_affine() == theirs.transform and ours.bounds == pytest.approx(tuple(theirs.bounds))
            assert ours.size == (theirs.width, theirs.height) and CoordSys(theirs.crs) == ours.crs
            assert rasterio.crs.CRS.from_user_input(ours.crs) == theirs.crs
            x, y = ours.transform.to_world(numpy.arange(5) + 0.5, 7.5)
            assert numpy.allclose([x, y], theirs.xy([7] * 5, range(5)))
    mapanchor.write(Reference("EPSG:3857", (2, 0, 10, 0, -2, 20)), file)
    with rasterio.open(file) as theirs:
        assert tuple(theirs.transform)[:6] == (2, 0, 10, 0, -2, 20) and theirs.crs.to_epsg() == 3857


def test_footprints_are_geometries():
    shapely = pytest.importorskip("shapely.geometry")
    pyproj = pytest.importorskip("pyproj")
    geopandas = pytest.importorskip("geopandas")
    reference = Reference(pyproj.CRS(32632), (10, 0, 400000, 0, -10, 5300000))
    reference.size = (2000, 1000)
    area = shapely.shape(reference.footprint())
    table = geopandas.GeoDataFrame.from_features([reference, Reference()], crs=CoordSys(4326))
    assert table.geometry[1] is None and table.geometry[0].equals(area)
    assert table.crs == CoordSys(table.crs) and list(table.columns) == ["geometry", "file", "kind", "epsg"]
    box = table[:1].to_crs(reference.crs).total_bounds
    assert box == pytest.approx(reference.bounds, abs=0.5)
    assert math.isclose(table[:1].to_crs(reference.crs).area[0], 2000 * 1000 * 100, rel_tol=1e-5)
    crossing = Reference("EPSG:4326", (0.5, 0, 179, 0, -0.5, 10))
    assert shapely.shape(crossing.footprint(width=8, height=4)).geom_type == "MultiPolygon"
