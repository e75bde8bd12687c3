#!/usr/bin/env python3
"""Writes the seeds of frontdoor_fuzzer from those of the readers: make_frontdoor_seeds.py"""

import pathlib
import re

SEEDS = pathlib.Path(__file__).parent / "seeds"
SOURCE = (pathlib.Path(__file__).parent / "frontdoor_fuzzer.cpp").read_text()
PRJ = (b'PROJCS["WGS_1984_UTM_Zone_32N",GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,'
       b'298.257223563]],PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],'
       b'PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",0.0],PARAMETER["Central_Meridian",9.0],'
       b'PARAMETER["Scale_Factor",0.9996],PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]]')
TYPE_BY_NAME, SIZE, JSON, IN_PLACE = 23, 1, 2, 16


def table(name):
    """The extensions of one table of the target, in its order."""
    return re.findall(r'"([^"]+)"', re.search(name + r"\[\] = \{(.*?)\}", SOURCE, re.S).group(1))


def seed(name, extension, content, flags=JSON, beside=()):
    head = bytes([table("kExtensions").index(extension), 0, TYPE_BY_NAME, flags, len(beside)])
    for kind, text in beside:
        head += bytes([table("kBeside").index(kind), len(text) // 256, len(text) % 256])
    (SEEDS / "frontdoor").mkdir(exist_ok=True)
    (SEEDS / "frontdoor" / name).write_bytes(head + b"".join(text for _, text in beside) + content)


def main():
    for name, extension, flags, beside in (
            ("kap/chart.kap", "kap", SIZE, ()), ("jp2/utm.jp2", "jp2", SIZE, ()), ("ecw/code.ecw", "ecw", SIZE, ()),
            ("doq/quad.doq", "doq", SIZE, ()), ("adrg/information.gen", "gen", SIZE, ()), ("cadrg/big.on1", "on1", SIZE, ()),
            ("sid/bare.sid", "sid", SIZE, ()), ("rsf/v4.rsf", "rsf", SIZE, ()), ("tab/plain.tab", "tab", SIZE | JSON, ()),
            ("ers/utm.ers", "ers", SIZE, ()), ("worldfile/plain.tfw", "tfw", SIZE, [("prj", PRJ)]),
            ("worldfile/plain.tfw", "j2w", SIZE | JSON, [("prj", PRJ)]), ("geopdf_read/epsg.pdf", "pdf", IN_PLACE, ()),
            ("geopdf_read/points.pdf", "pdf", JSON, ()), ("pdf/update.pdf", "pdf", IN_PLACE, ()),
            ("geotiff/utm.tif", "tif", SIZE | IN_PLACE | JSON, ()), ("geotiff/points.tif", "tif", SIZE | IN_PLACE, ()),
            ("geotiff/utm_big_tiff.tif", "tiff", SIZE | IN_PLACE, ()),
            ("geotiff/bare.tif", "tif", SIZE, [("tfw", b"0.5\n0\n0\n-0.5\n676000\n5242000\n"), ("prj", PRJ)]),
            ("geotiff/bare.tif", "tif", SIZE, [("tif.aux.xml", b"<PAMDataset><GeoTransform>1,2,0,3,0,-2</GeoTransform></PAMDataset>")])):
        path = SEEDS / name
        seed(f"{extension}_{path.stem}_{flags}{len(beside)}", extension, path.read_bytes(), flags, beside)
    seed("asc_grid", "asc", b"ncols 2\nnrows 2\nxllcorner 676000\nyllcorner 5242000\ncellsize 5\nNODATA_value -1\n1 2\n3 4\n",
         SIZE, [("prj", PRJ)])


main()
