"""Fits against numpy's least squares and GDAL's transformers, and left-out residuals against separate
fits, on random sets of points with and without a gross error. FIT_SETS sets how many sets there are."""

import os

import mapanchor
import pytest
from mapanchor import ControlPoint, Fit

numpy = pytest.importorskip("numpy")
gdal = pytest.importorskip("osgeo.gdal")
gdal.UseExceptions()

SETS = int(os.environ.get("FIT_SETS", "20"))
WIDTH, HEIGHT = 4000, 3000


def random_points(seed, gross):
    random = numpy.random.default_rng(seed)
    pixels = random.uniform((0, 0), (WIDTH, HEIGHT), (random.integers(14, 40), 2))
    scale, turn = random.uniform(0.5, 5), random.uniform(-3, 3)
    slopes = scale * numpy.array([[numpy.cos(turn), numpy.sin(turn)], [numpy.sin(turn), -numpy.cos(turn)]])
    world = pixels @ slopes.T + (4e5, 5e6)
    pixels = pixels + random.normal(size=pixels.shape)
    pixels[0] += 20 * gross
    return pixels, world


def terms(pixels, order):
    """In units near 1, so that nothing is lost."""
    x, y = ((pixels - (WIDTH / 2, HEIGHT / 2)) / WIDTH).T
    return numpy.array([x**i * y**j for i in range(order + 1) for j in range(order + 1 - i)]).T


def least_squares(pixels, world, places, order):
    middle = world.mean(axis=0)
    solved = numpy.linalg.lstsq(terms(pixels, order), world - middle, rcond=None)[0]
    return terms(places, order) @ solved + middle


def by_gdal(pixels, world, places, options):
    raster = gdal.GetDriverByName("MEM").Create("", WIDTH, HEIGHT)
    raster.SetGCPs([gdal.GCP(x, y, 0, p, l) for (p, l), (x, y) in zip(pixels.tolist(), world.tolist())], "")
    transformer = gdal.Transformer(raster, None, options)
    return numpy.array([transformer.TransformPoint(0, *place)[1][:2] for place in places.tolist()])


@pytest.mark.parametrize(
    "kind, order, options",
    [
        (Fit.AFFINE, 1, ["METHOD=GCP_POLYNOMIAL", "MAX_GCP_ORDER=1"]),
        (Fit.POLYNOMIAL2, 2, ["METHOD=GCP_POLYNOMIAL", "MAX_GCP_ORDER=2"]),
        (Fit.POLYNOMIAL3, 3, ["METHOD=GCP_POLYNOMIAL", "MAX_GCP_ORDER=3"]),
        (Fit.THIN_PLATE_SPLINE, None, ["METHOD=GCP_TPS"]),
    ],
)
def test_fits_are_those_of_numpy_and_gdal(kind, order, options):
    places = numpy.array([(x, y) for x in (0, 1700, WIDTH) for y in (0, 900, HEIGHT)], float)
    for seed in range(SETS):
        pixels, world = random_points(seed, seed % 2)
        fit = mapanchor.fit([ControlPoint(*p, *w) for p, w in zip(pixels, world)], kind)
        ours = numpy.array([fit.to_world(*place) for place in places])
        # Relative to the coordinates, which are 5e6.
        if order:
            assert numpy.abs(ours - least_squares(pixels, world, places, order)).max() < 1e-9 * 5e6, seed
        assert numpy.abs(ours - by_gdal(pixels, world, places, options)).max() < 1e-9 * 5e6, seed


def test_parameters_of_the_affine_are_those_of_numpy():
    for seed in range(SETS):
        pixels, world = random_points(seed, seed % 2)
        design = numpy.column_stack([pixels, numpy.ones(len(pixels))])
        middle = world.mean(axis=0)
        solved = numpy.linalg.lstsq(design, world - middle, rcond=None)[0]
        solved[2] += middle
        points = [ControlPoint(*p, *w) for p, w in zip(pixels, world)]
        ours = mapanchor.fit(points, Fit.AFFINE).affine
        assert ours == pytest.approx(solved.T.ravel(), rel=1e-9), seed


@pytest.mark.parametrize("kind", [Fit.AFFINE, Fit.CONFORMAL, Fit.POLYNOMIAL2, Fit.PROJECTIVE, Fit.THIN_PLATE_SPLINE])
def test_left_out_residuals_are_those_of_separate_fits(kind):
    for seed in range(SETS // 4):
        pixels, world = random_points(seed, seed % 2)
        points = [ControlPoint(*p, *w) for p, w in zip(pixels, world)]
        report = mapanchor.report(points, kind, width=WIDTH, height=HEIGHT)
        for i, residual in enumerate(report.residuals):
            others = mapanchor.fit(points[:i] + points[i + 1 :], kind, width=WIDTH, height=HEIGHT)
            distance = numpy.hypot(*(numpy.array(others.to_world(*pixels[i])) - world[i]))
            # Positions themselves have 9e-10 between neighbours.
            assert residual.left_out_map_units == pytest.approx(distance, rel=1e-9, abs=3e-9), (seed, i)


def test_a_report_names_the_gross_error():
    pixels, world = random_points(1, 1)
    points = [ControlPoint(*p, *w) for p, w in zip(pixels, world)]
    report = mapanchor.report(points, Fit.AFFINE, width=WIDTH, height=HEIGHT)
    assert [residual.suspect for residual in report.residuals] == [True] + [False] * (len(points) - 1)
    assert report.rmse_adjusted_pixels > report.rmse_pixels
    assert 0 < report.hull_share < 1 and report.shape.startswith("1 pixel is ")
    assert sum(fit.chosen for fit in mapanchor.compare(points)) == 1
    with pytest.raises(mapanchor.Error):
        mapanchor.report(points[:2], Fit.AFFINE)
    exact = mapanchor.report([mapanchor.Point(0, 0, 0, 0), mapanchor.Point(9, 0, 9, 0), mapanchor.Point(0, 9, 0, -9)])
    assert exact.rmse_adjusted_pixels is None and exact.residuals[0].left_out_pixels is None
