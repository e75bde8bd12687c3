"""Answers that are values of Python; the module fills them."""

from dataclasses import dataclass
from typing import TYPE_CHECKING, Optional, Tuple

if TYPE_CHECKING:
    from . import Reference


@dataclass(frozen=True)
class Diagnostic:
    """A remark on a reading; docs/diagnostics.md explains each id."""

    id: str
    severity: str
    """"note", "warning" or "error"."""
    text: str
    file: str = ""
    line: Optional[int] = None
    place: str = ""
    """Within the file: a tag, a field or an object of a PDF."""


@dataclass(frozen=True)
class Origin:
    """Where a value is written."""

    value: str
    """Such as "system", "transform" or "point 3"."""
    file: str
    place: str
    """Within the file: a line, a byte, a tag, an element or an object of a PDF."""


@dataclass(frozen=True)
class Source:
    """One place where the georeferencing of a raster is written."""

    kind: str
    """"internal" for the raster's own, "aux.xml", "PRJ" or a kind such as "WLD"."""
    files: Tuple[str, ...]
    reference: Optional["Reference"]
    """What it states on its own; None when it states nothing, and `failure` says why."""
    failure: str
    wins: bool
    """read() takes its position."""
    wins_in_gdal: bool
    """GDAL takes its position."""
    pixels: Optional[float]
    """How far it puts the corners of the raster from where the winner puts them; None when unknown."""
    metres: Optional[float]
    diagnostics: Tuple[Diagnostic, ...]


@dataclass(frozen=True)
class Map:
    """One map of a PDF; `page` and `number`, both from 1, are what read() expects as `page` and `map`."""

    name: str
    page: int
    number: int
    box: Tuple[float, float, float, float]
    """Left, bottom, right and top of what encloses it, in points from the lower left of the page."""
    area: float
    """Of its outline, in square points."""
    crs: str
    """Name and code of its system; empty when it is not understood."""
    in_use: bool
    """read() takes it unless another is named."""
    fault: str
    """Why it cannot be read; usually empty."""
