from enum import Enum
from os import PathLike
from typing import ClassVar, Iterable, List, Optional, Tuple, Union

Path = Union[str, bytes, PathLike]
Affine = Tuple[float, float, float, float, float, float]

__version__: str

class Type:
    """The kinds of reference that have a type."""

    GEOTIFF: ClassVar[Type]
    TAB: ClassVar[Type]
    RSF: ClassVar[Type]
    WLD: ClassVar[Type]
    MRSID: ClassVar[Type]
    ECW: ClassVar[Type]
    ERS: ClassVar[Type]
    DOQQ: ClassVar[Type]
    KAP: ClassVar[Type]
    PDF: ClassVar[Type]
    name: str
    value: int

class Fit:
    """The kinds of fit through control points."""

    AFFINE: ClassVar[Fit]
    CONFORMAL: ClassVar[Fit]
    POLYNOMIAL2: ClassVar[Fit]
    POLYNOMIAL3: ClassVar[Fit]
    PROJECTIVE: ClassVar[Fit]
    THIN_PLATE_SPLINE: ClassVar[Fit]
    BILINEAR: ClassVar[Fit]
    NONE: ClassVar[Fit]
    name: str
    value: int

class Box:
    """The box of a PDF page that a raster shows."""

    ART: ClassVar[Box]
    TRIM: ClassVar[Box]
    BLEED: ClassVar[Box]
    CROP: ClassVar[Box]
    MEDIA: ClassVar[Box]
    name: str
    value: int

class Error(Exception):
    """A failure of the library: a message, where it comes from, and what distinguishes it."""

    message: str
    source: str
    detail: str

class MissingFileError(Error, FileNotFoundError): ...
class FileAccessError(Error, OSError): ...
class ReadError(Error, OSError): ...
class WriteError(Error, OSError): ...
class UnsupportedFileError(Error, ValueError): ...
class NotSupportedError(Error, ValueError): ...
class InvalidContentError(Error, ValueError): ...
class InvalidFileError(Error, ValueError): ...
class InvalidTransformError(Error, ValueError): ...
class InvalidCoordSysError(Error, ValueError): ...
class ParameterError(Error, ValueError): ...

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
        self, column: int, row: int, x: float, y: float, z: float = ..., name: str = ..., enabled: bool = ...
    ) -> None: ...

class Transform:
    """From columns and rows to the units of a coordinate system; immutable."""

    def __init__(self, a: float, b: float, c: float, d: float, e: float, f: float) -> None:
        """x = a * column + b * row + c, y = d * column + e * row + f; ValueError without an inverse."""
    @property
    def kind(self) -> Fit: ...
    @property
    def affine(self) -> Optional[Affine]:
        """The six terms in the order of the constructor; None for a transform that is not affine."""
    def to_world(self, column: float, row: float) -> Tuple[float, float]:
        """ValueError where the transform has no value."""
    def to_pixel(self, x: float, y: float) -> Tuple[float, float]: ...

class CoordSys:
    """A coordinate system."""

    def __init__(self, text: str) -> None:
        """Of a code, a URN, well-known text, PROJJSON, a PROJ string, a MapInfo clause, ER
        Mapper names, a name or the path of a PRJ file; ValueError when it is not understood."""
    @property
    def name(self) -> str: ...
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
    @property
    def esri(self) -> Optional[str]:
        """ESRI's well-known text, as in a PRJ file; None when it cannot describe the system."""
    @property
    def projjson(self) -> Optional[str]: ...
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
    def unit(self) -> Optional[str]: ...
    def to_geodetic(self, x: float, y: float) -> Tuple[float, float]:
        """Longitude and latitude in degrees, on the system's own datum."""
    def from_geodetic(self, longitude: float, latitude: float) -> Tuple[float, float]: ...
    def is_same(self, other: CoordSys, tolerance: Optional[float] = ...) -> bool:
        """By what they are; with a tolerance by place, in metres on the Earth."""
    def distance_to(self, other: CoordSys) -> float:
        """How far apart the two place the same coordinates, in metres; inf without a way."""
    def convert_to(self, other: CoordSys, x: float, y: float) -> Tuple[float, float]:
        """The position in the other system, across datums."""

class Diagnostic:
    """A remark on a reading; docs/diagnostics.md explains each id."""

    @property
    def id(self) -> str: ...
    @property
    def severity(self) -> str:
        """"note", "warning" or "error"."""
    @property
    def text(self) -> str: ...
    @property
    def file(self) -> str: ...
    @property
    def line(self) -> Optional[int]: ...

class Origin:
    """Where a value is written."""

    @property
    def value(self) -> str:
        """Such as "system", "transform" or "point 3"."""
    @property
    def file(self) -> str: ...
    @property
    def place(self) -> str:
        """Within the file: a line, a byte, a tag, an element or an object of a PDF."""

class Reference:
    """The georeferencing of one raster or page. Any part may be missing."""

    crs: Optional[CoordSys]
    points: List[Point]
    """A copy of the control points: assign a list to change them."""
    pixel_is_point: bool
    """The source states positions of pixel centres; the transform is not moved by it."""
    def __init__(
        self,
        crs: Optional[CoordSys] = ...,
        transform: Optional[Transform] = ...,
        points: Iterable[Point] = ...,
    ) -> None: ...
    @property
    def transform(self) -> Optional[Transform]: ...
    @transform.setter
    def transform(self, transform: Optional[Transform]) -> None: ...
    @property
    def affine(self) -> Optional[Affine]: ...
    @affine.setter
    def affine(self, terms: Affine) -> None: ...
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
    def size(self) -> Optional[Tuple[int, int]]:
        """Width and height of the raster in pixels; None when they are not known."""
    @property
    def diagnostics(self) -> List[Diagnostic]:
        """What was guessed, rounded, replaced or left out, and where the answer comes from."""
    @property
    def origins(self) -> List[Origin]:
        """Where each value is written, for one that was read with `explain`."""

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
    path: Path,
    type: Optional[Type] = ...,
    *,
    width: int = ...,
    height: int = ...,
    fit: Fit = ...,
    strict_transform: bool = ...,
    strict_crs: bool = ...,
    box: Optional[Box] = ...,
    dpi: Optional[float] = ...,
    source: str = ...,
    page: int = ...,
    map: str = ...,
    shown: bool = ...,
    password: str = ...,
    strict_pdf: bool = ...,
    explain: bool = ...,
) -> Reference:
    """Reads what a person means by the name: the file itself, or the sidecars of a raster, of
    which `source` picks one; with `type` as that kind.

    A PDF is read beyond the rules of its dialects unless `strict_pdf` is set, and its size is that
    of its page at `dpi`. `page` counts from 1; `map` is a name, a number from 1, or "largest";
    `shown` is the page as viewers draw it.
    """

def write(
    reference: Reference,
    path: Path,
    type: Optional[Type] = ...,
    *,
    width: int = ...,
    height: int = ...,
    image_name: Path = ...,
    strict_transform: bool = ...,
    strict_crs: bool = ...,
    dpi: Optional[float] = ...,
    verify: bool = ...,
    tolerance: Optional[float] = ...,
    require_exact: bool = ...,
    overwrite: bool = ...,
    sync: bool = ...,
) -> Saving:
    """Saves by the file's name, or as `type`. A raster or PDF that is there is georeferenced in place.

    The file is read back and compared unless `verify` is false; with `require_exact` a save that differs
    by more than `tolerance` pixels (0.001, and 1 mm, without it) is taken back. Without `overwrite` a file
    that is there is not replaced; without `sync` a power failure may spoil the file. The size is that of
    the reading unless it is given.
    """

def fit(points: Iterable[Point], kind: Fit = ..., *, width: int = ..., height: int = ...) -> Transform:
    """The transform through the points that are enabled; Error when they cannot carry it."""
