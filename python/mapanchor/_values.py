"""Answers that are values of Python; the module fills them."""

from dataclasses import dataclass
from typing import Any, Optional, Tuple


@dataclass(frozen=True)
class Diagnostic:
    id: str
    severity: str
    text: str
    file: str = ""
    line: Optional[int] = None
    place: str = ""


@dataclass(frozen=True)
class Origin:
    value: str
    file: str
    place: str


@dataclass(frozen=True)
class Source:
    kind: str
    files: Tuple[str, ...]
    reference: Any  # a Reference, which this page cannot name
    failure: str
    wins: bool
    wins_in_gdal: bool
    pixels: Optional[float]
    metres: Optional[float]
    diagnostics: Tuple[Diagnostic, ...]


@dataclass(frozen=True)
class Map:
    name: str
    page: int
    number: int
    box: Tuple[float, float, float, float]
    area: float
    crs: str
    in_use: bool
    fault: str
