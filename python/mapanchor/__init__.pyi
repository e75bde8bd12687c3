from enum import Enum
from os import PathLike
from typing import Any, Dict, Generic, List, Optional, Protocol, Sequence, Tuple, TypeVar, Union, overload

from ._values import Diagnostic as Diagnostic
from ._values import Map as Map
from ._values import Origin as Origin
from ._values import Source as Source
from ._words import Word

_Path = Union[str, bytes, "PathLike[str]", "PathLike[bytes]"]
_Affine = Tuple[float, float, float, float, float, float]

_Got = TypeVar("_Got", covariant=True)
_Given = TypeVar("_Given", contravariant=True)

class _Part(Generic[_Got, _Given]):
    """A property to which more can be assigned than it returns."""

    def __get__(self, owner: Any, type: Any = None) -> _Got: ...
    def __set__(self, owner: Any, value: _Given) -> None: ...

class _HasWkt(Protocol):
    def to_wkt(self) -> str: ...

_System = Union["CoordSys", str, int, _HasWkt]
_Terms = Union[_Affine, Sequence[float]]
_Numbers = Any
"""A float, or what numpy makes an array of."""

__version__: str

class Type(Word):
    """The kinds of reference that have a type. A member is a str; its text will do in its place."""

    RSF = "RSF"
    WLD = "WLD"
    TIF = "TIF"
    TAB = "TAB"
    ERS = "ERS"
    DOQ = "DOQ"
    KAP = "KAP"
    SID = "SID"
    ECW = "ECW"
    PDF = "PDF"
    POINTS = "POINTS"
    AUX = "AUX"
    VRT = "VRT"
    KML = "KML"
    GEOTIFF = "TIF"
    MRSID = "SID"
    DOQQ = "DOQ"

class Fit(Word):
    """The kinds of fit through control points, by the words of the command line."""

    AFFINE = "affine"
    CONFORMAL = "conformal"
    POLY2 = "poly2"
    POLY3 = "poly3"
    PROJECTIVE = "projective"
    TPS = "tps"
    BILINEAR = "bilinear"
    NONE = "none"
    POLYNOMIAL2 = "poly2"
    POLYNOMIAL3 = "poly3"
    THIN_PLATE_SPLINE = "tps"

class Box(Word):
    """The box of a PDF page that a raster shows."""

    ART = "art"
    TRIM = "trim"
    BLEED = "bleed"
    CROP = "crop"
    MEDIA = "media"

class Error(Exception):
    """A failure of the library: a message, where it comes from, and what distinguishes it."""

    message: str
    source: str
    detail: str

class MissingFileError(Error, FileNotFoundError):
    """There is no such file."""

class FileAccessError(Error, OSError):
    """A file cannot be opened or read."""

class ReadError(Error, OSError):
    """A reference cannot be read."""

class WriteError(Error, OSError):
    """A reference cannot be saved; the old file is there still."""

class UnsupportedFileError(Error, ValueError):
    """A file is of no kind that is read."""

class NotSupportedError(Error, ValueError):
    """A kind of reference cannot do what was asked."""

class InvalidContentError(Error, ValueError):
    """A file holds nothing that can be used."""

class InvalidFileError(Error, ValueError):
    """A file breaks the rules of its kind."""

class InvalidTransformError(Error, ValueError):
    """A transform in a file cannot be used."""

class InvalidCoordSysError(Error, ValueError):
    """A coordinate system is not understood, or has no value at a position."""

class ParameterError(Error, ValueError):
    """An option has a value that cannot be used."""


class Point:
    """A control point: a whole pixel and its position in the coordinate system."""

    column: int
    row: int
    x: float
    y: float
    z: float
    name: str
    enabled: bool
    def __init__(
        self, column: int, row: int, x: float, y: float, z: float = 0.0, name: str = "", enabled: bool = True
    ) -> None: ...

class Transform:
    """From columns and rows to the units of a coordinate system; immutable. Two are equal when their terms
    are, or the control points that they were fitted through."""

    @overload
    def __init__(self, a: float, b: float, c: float, d: float, e: float, f: float) -> None:
        """x = a * column + b * row + c, y = d * column + e * row + f; ValueError without an inverse."""
    @overload
    def __init__(self, terms: _Terms) -> None:
        """Of the same six in a sequence, or of an affine.Affine."""
    @property
    def kind(self) -> Fit:
        """The kind of fit."""
    @property
    def affine(self) -> Optional[_Affine]:
        """The six terms in the order of the constructor; None for a transform that is not affine."""
    def to_affine(self) -> Any:
        """An affine.Affine of the same terms, which needs the package affine; ValueError for a transform
        that is not affine."""
    @overload
    def to_world(self, column: float, row: float) -> Tuple[float, float]: ...
    @overload
    def to_world(self, column: _Numbers, row: _Numbers) -> Tuple[Any, Any]:
        """The position of a pixel. ValueError where the transform has no value; of arrays two arrays of
        their common shape, with NaN there."""
    @overload
    def to_pixel(self, x: float, y: float) -> Tuple[float, float]: ...
    @overload
    def to_pixel(self, x: _Numbers, y: _Numbers) -> Tuple[Any, Any]:
        """The column and row of a position, as to_world()."""
    def __copy__(self) -> Transform: ...
    def __deepcopy__(self, memo: Any) -> Transform: ...

class CoordSys:
    """A coordinate system. Two are equal when is_same() says so."""

    def __init__(self, system: _System) -> None:
        """Of a code, a URN, well-known text, PROJJSON, a PROJ string, a MapInfo clause, ER
        Mapper names, a name or the path of a PRJ file; of a number of EPSG; or of an object with to_wkt(),
        such as a pyproj.CRS. InvalidCoordSysError, a ValueError, when it is not understood."""
    @property
    def name(self) -> str:
        """As its text states it."""
    @property
    def epsg(self) -> Optional[str]:
        """Such as "EPSG:32632"; None when no system of EPSG is the same."""
    @property
    def wkt(self) -> str:
        """Well-known text 1, the horizontal part; version 2 where 1 cannot describe it."""
    @property
    def whole_wkt(self) -> str:
        """The same with the vertical part and the epoch."""
    @property
    def wkt2(self) -> str:
        """Well-known text 2 of 2019, of the whole system."""
    def to_wkt(self) -> str:
        """The same as wkt2; by it pyproj, rasterio and geopandas accept a CoordSys."""
    @property
    def esri(self) -> Optional[str]:
        """ESRI's well-known text, as in a PRJ file; None when it cannot describe the system."""
    @property
    def projjson(self) -> Optional[str]:
        """PROJJSON, of the whole system."""
    @property
    def proj(self) -> Optional[str]:
        """A PROJ string, which does not name the datum."""
    @property
    def horizontal(self) -> CoordSys:
        """The horizontal part of a compound system; any other system itself."""
    @property
    def vertical(self) -> Optional[CoordSys]:
        """The vertical part of a compound system."""
    @property
    def epoch(self) -> Optional[float]:
        """The epoch of the coordinates as a decimal year."""
    @property
    def geodetic(self) -> bool:
        """True when x and y are longitude and latitude."""
    @property
    def unit(self) -> Optional[str]:
        """The unit of the horizontal axes."""
    def to_geodetic(self, x: _Numbers, y: _Numbers) -> Tuple[Any, Any]:
        """Longitude and latitude in degrees, on the system's own datum. InvalidCoordSysError where there
        is no value; of arrays two arrays, with NaN there."""
    def from_geodetic(self, longitude: _Numbers, latitude: _Numbers) -> Tuple[Any, Any]:
        """The way back."""
    def is_same(self, other: _System, tolerance: Optional[float] = None) -> bool:
        """By what they are; with a tolerance by place, in metres on the Earth."""
    def distance_to(self, other: _System) -> float:
        """How far apart the two place the same coordinates, in metres; inf without a way."""
    def convert_to(self, other: _System, x: _Numbers, y: _Numbers) -> Tuple[Any, Any]:
        """The position in the other system, across datums; arrays as in to_geodetic()."""

class Reference:
    """The georeferencing of one raster or page. Any part may be missing. Two are equal when they place a
    raster alike, whatever file they were read from."""

    def __init__(
        self,
        crs: Optional[_System] = None,
        transform: Union[Transform, _Terms, None] = None,
        points: Sequence[Point] = (),
    ) -> None: ...
    crs: _Part[Optional[CoordSys], Optional[_System]]
    """The coordinate system; whatever CoordSys() understands can be assigned."""
    transform: _Part[Optional[Transform], Union[Transform, _Terms, None]]
    """From pixels to the system; six terms or an affine.Affine can be assigned."""
    affine: _Part[Optional[_Affine], _Terms]
    """The six terms of the transform; None when it is missing or not affine. An affine.Affine can be
    assigned."""
    points: _Part[List[Point], Sequence[Point]]
    """A copy of the control points: assign a list to change them."""
    @property
    def pixel_is_point(self) -> bool:
        """The source states positions of pixel centres; the transform is not moved by it."""
    @pixel_is_point.setter
    def pixel_is_point(self, value: bool) -> None: ...
    @property
    def size(self) -> Optional[Tuple[int, int]]:
        """Width and height of the raster in pixels; None when they are not known."""
    @size.setter
    def size(self, size: Optional[Tuple[int, int]]) -> None: ...
    @property
    def bounds(self) -> Optional[Tuple[float, float, float, float]]:
        """Left, bottom, right and top of the raster's outer edge in the units of the system; None without
        a size or a transform. Of a curved transform at 257 positions per side."""
    @property
    def vertical_unit(self) -> Optional[Tuple[str, float]]:
        """The name of the unit of heights and how many make a metre."""
    @property
    def kind(self) -> str:
        """What it was read as, such as "WLD"; empty for one that was not read."""
    @property
    def anchor(self) -> str:
        """Where in the top left pixel column 0, row 0 is: "corner" or "centre"."""
    @property
    def used_file(self) -> str:
        """The file that was read, where another was read in place of the named one."""
    @property
    def files(self) -> List[str]:
        """All files that took part in the reading."""
    @property
    def diagnostics(self) -> List[Diagnostic]:
        """What was guessed, rounded, replaced or left out, and where the answer comes from."""
    @property
    def origins(self) -> List[Origin]:
        """Where each value is written, for one that was read with `explain`."""
    def to_affine(self) -> Any:
        """An affine.Affine from the outer corner of the raster, as rasterio counts, whatever the anchor is;
        needs the package affine. ValueError without an affine transform."""
    def footprint(self, *, width: int = 0, height: int = 0) -> Dict[str, Any]:
        """The area of the raster on WGS 84 as a geometry of GeoJSON, which shapely.geometry.shape() accepts;
        a MultiPolygon where it crosses the antimeridian. ValueError where there is none."""
    @property
    def __geo_interface__(self) -> Dict[str, Any]:
        """A feature of GeoJSON with the footprint, or without a geometry where there is none."""

class Saving:
    """A save, and what reading the file back showed."""

    @property
    def taken_back(self) -> bool:
        """An exact save was required and failed; the old file is there again."""
    @property
    def verified(self) -> bool:
        """The file was read back."""
    @property
    def exact(self) -> bool:
        """Nothing that the kind holds differs by more than the tolerance."""
    @property
    def confirmed_by_gdal(self) -> bool: ...
    @property
    def pixels(self) -> Optional[float]:
        """The largest distance found; None where nothing could be compared."""
    @property
    def metres(self) -> Optional[float]: ...
    @property
    def same_crs(self) -> bool: ...
    @property
    def text(self) -> str:
        """One sentence, such as "read back: at most 0.000 pixels, 0.000 m; the same system"."""
    @property
    def diagnostics(self) -> List[Diagnostic]:
        """What the kind cannot hold, what was rounded, and what differs."""

def read(
    path: _Path,
    type: Union[Type, str, None] = None,
    *,
    width: int = 0,
    height: int = 0,
    fit: Union[Fit, str] = "affine",
    strict_transform: bool = False,
    strict_crs: bool = False,
    box: Union[Box, str, None] = None,
    dpi: Optional[float] = None,
    source: str = "",
    page: int = 1,
    map: str = "",
    shown: bool = False,
    password: str = "",
    strict_pdf: bool = False,
    explain: bool = False,
) -> Reference:
    """Reads what a person means by the name: the file itself, or the sidecars of a raster, of
    which `source` picks one; with `type` as that kind.

    A PDF is read beyond the rules of its dialects unless `strict_pdf` is set, and its size is that
    of its page at `dpi`. `page` counts from 1; `map` is a name, a number from 1, or "largest";
    `shown` is the page as viewers draw it.
    """

def sources(
    path: _Path, *, fit: Union[Fit, str] = "affine", width: int = 0, height: int = 0
) -> List[Source]:
    """Every place where the georeferencing of a raster is written, and how far apart they are. A raster
    without any has an empty list."""

def maps(path: _Path) -> List[Map]:
    """The maps of all pages of a PDF, at most 10,000; a warning says when there are more."""

def write(
    reference: Reference,
    path: _Path,
    type: Union[Type, str, None] = None,
    *,
    width: int = 0,
    height: int = 0,
    image_name: _Path = "",
    strict_transform: bool = False,
    strict_crs: bool = False,
    dpi: Optional[float] = None,
    verify: bool = True,
    tolerance: Optional[float] = None,
    require_exact: bool = False,
    overwrite: bool = True,
    sync: bool = True,
) -> Saving:
    """Saves by the file's name, or as `type`. A raster or PDF that is there is georeferenced in place.

    The file is read back and compared unless `verify` is false; with `require_exact` a save that differs
    by more than `tolerance` pixels (0.001, and 1 mm, without it) is taken back. Without `overwrite` a file
    that is there is not replaced; without `sync` a power failure may spoil the file. The size is that of
    the reading unless it is given.
    """

class ControlPoint:
    """A control point with the fraction of its pixel; rows count downwards from the top edge. Where one is
    expected, a Point will do."""

    column: float
    row: float
    x: float
    y: float
    z: float
    name: str
    enabled: bool
    @overload
    def __init__(
        self,
        column: float,
        row: float,
        x: float,
        y: float,
        z: float = 0.0,
        name: str = "",
        enabled: bool = True,
    ) -> None: ...
    @overload
    def __init__(self, point: Point) -> None: ...

class Residual:
    """How far a fit is from one point. What is not known is None."""

    @property
    def dx_pixels(self) -> Optional[float]:
        """Rightwards: where the fit has the position, minus the point's pixel."""
    @property
    def dy_pixels(self) -> Optional[float]:
        """The same downwards."""
    @property
    def pixels(self) -> Optional[float]: ...
    @property
    def map_units(self) -> Optional[float]: ...
    @property
    def left_out_pixels(self) -> Optional[float]:
        """The distance from the fit through all other points."""
    @property
    def left_out_map_units(self) -> Optional[float]: ...
    @property
    def suspect(self) -> bool:
        """The point stands out from the others by more than chance explains."""

class Alternative:
    """One fit among those that the points can carry."""

    @property
    def kind(self) -> Fit: ...
    @property
    def left_out_rmse_pixels(self) -> Optional[float]:
        """Root mean square of the left-out residuals; None when there is nothing to compare it by."""
    @property
    def worse(self) -> bool:
        """Its left-out residuals are larger than those of the best, by more than chance explains."""
    @property
    def chosen(self) -> bool:
        """The simplest fit that is not worse."""
    @property
    def reason(self) -> str:
        """Why there is nothing to compare it by; usually empty."""

class FitReport:
    """A fit, and how well it explains its points. What is not known is None."""

    @property
    def transform(self) -> Transform: ...
    @property
    def residuals(self) -> List[Residual]:
        """One for each point, disabled ones too."""
    @property
    def used(self) -> int: ...
    @property
    def rmse(self) -> Optional[float]:
        """Root mean square of the residuals, in map units."""
    @property
    def rmse_pixels(self) -> Optional[float]: ...
    @property
    def rmse_adjusted_pixels(self) -> Optional[float]:
        """The same over the degrees of freedom that are left."""
    @property
    def left_out_rmse_pixels(self) -> Optional[float]: ...
    @property
    def max_pixels(self) -> Optional[float]: ...
    @property
    def hull_share(self) -> Optional[float]:
        """Of the raster, the part that the points' hull covers; None without its size."""
    @property
    def near_line(self) -> bool: ...
    @property
    def shape(self) -> str:
        """Scale, rotation and shear in a sentence."""

def fit(
    points: Sequence[Union[ControlPoint, Point]],
    kind: Union[Fit, str] = "affine",
    *,
    width: int = 0,
    height: int = 0,
) -> Transform:
    """The transform through the points that are enabled; Error when they cannot carry it."""

def report(
    points: Sequence[Union[ControlPoint, Point]],
    kind: Union[Fit, str] = "affine",
    *,
    width: int = 0,
    height: int = 0,
) -> FitReport:
    """The same with its residuals, left-out residuals and suspects."""

def compare(
    points: Sequence[Union[ControlPoint, Point]], *, width: int = 0, height: int = 0
) -> List[Alternative]:
    """All fits that the points carry, from simple to rich, compared by their left-out residuals."""
