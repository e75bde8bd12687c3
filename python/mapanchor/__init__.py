"""Reads and writes where rasters and maps lie on the Earth.

>>> import mapanchor
>>> reference = mapanchor.read("innsbruck.tfw")
>>> reference.crs.epsg, reference.transform.to_world(0, 0)
('EPSG:32632', (676000.0, 5242000.0))
>>> mapanchor.write(reference, "copy.jgw").exact
True

Longitude comes before latitude and easting before northing everywhere. Failures of the library are
exceptions of the family Error. What it logs goes to the logger "mapanchor".
"""

import logging

from . import _mapanchor
from ._mapanchor import *  # noqa: F403

logging.getLogger("mapanchor").addHandler(logging.NullHandler())

__all__ = [name for name in dir(_mapanchor) if not name.startswith("_")]
__version__ = _mapanchor.__version__
