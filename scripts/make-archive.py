#!/usr/bin/env python3
"""Makes an archive of small generated files, the same bytes each time, to measure and test with.

make-archive.py geotiff COUNT FOLDER   GeoTIFFs of 20 systems
make-archive.py world COUNT FOLDER     world files without rasters
make-archive.py placed COUNT FOLDER    world files with a prj, which count as one
make-archive.py pdf COUNT FOLDER       geospatial PDFs of one page
make-archive.py mixed COUNT FOLDER     of 1,000 files 850 GeoTIFFs, 50 of them with a world file beside
                                       them, and 50 world files with a prj; hard links to a few hundred
                                       files in FOLDER.sources, so that a million fit on any disk

A folder below FOLDER holds 1,000 files, or --per-folder N.
"""

import argparse
import os
import pathlib
import struct

# Projected and geographic systems of the EPSG registry: code and a place in it, in its units.
SYSTEMS = tuple((32601 + zone * 3, 500000.0, 5200000.0) for zone in range(14)) + (
    (25832, 600000.0, 5300000.0), (2154, 700000.0, 6600000.0), (27700, 400000.0, 300000.0),
    (3857, 1100000.0, 6000000.0), (4326, 11.0, 48.0), (4258, 12.0, 47.0))
SIDE = 8  # pixels of a raster's width and height

SHORT, LONG, DOUBLE = 3, 4, 12
SIZES = {SHORT: 2, LONG: 4, DOUBLE: 8}
FORMATS = {SHORT: "H", LONG: "I", DOUBLE: "d"}


def is_geographic(code):
    return 4000 < code < 5000


def place(number):
    """(code, x, y, pixel size) of the file with that number."""
    code, x, y = SYSTEMS[number % len(SYSTEMS)]
    step = 0.0001 if is_geographic(code) else 0.5
    return code, x + number % 997 * step * SIDE, y - number % 991 * step * SIDE, step


def geotiff(number):
    code, x, y, step = place(number)
    geographic = is_geographic(code)
    keys = [1024, 0, 1, 2 if geographic else 1, 1025, 0, 1, 1, 2048 if geographic else 3072, 0, 1, code]
    pixels = bytes((number + i) % 256 for i in range(SIDE * SIDE))
    entries = [(256, SHORT, [SIDE]), (257, SHORT, [SIDE]), (258, SHORT, [8]), (259, SHORT, [1]),
               (262, SHORT, [1]), (273, LONG, [8]), (277, SHORT, [1]), (278, SHORT, [SIDE]),
               (279, LONG, [len(pixels)]), (33550, DOUBLE, [step, step, 0.0]),
               (33922, DOUBLE, [0.0, 0.0, 0.0, x, y, 0.0]),
               (34735, SHORT, [1, 1, 0, len(keys) // 4, *keys])]
    directory = 8 + len(pixels)
    behind = directory + 2 + 12 * len(entries) + 4
    table = struct.pack("<H", len(entries))
    values = b""
    for tag, kind, numbers in entries:
        packed = struct.pack(f"<{len(numbers)}{FORMATS[kind]}", *numbers)
        if len(packed) > 4:
            table += struct.pack("<HHII", tag, kind, len(numbers), behind + len(values))
            values += packed
        else:
            table += struct.pack("<HHI", tag, kind, len(numbers)) + packed.ljust(4, b"\0")
    return struct.pack("<2sHI", b"II", 42, directory) + pixels + table + struct.pack("<I", 0) + values


def world(number):
    _, x, y, step = place(number)
    return f"{step}\n0\n0\n-{step}\n{x + step / 2!r}\n{y - step / 2!r}\n".encode()


def prj(number):
    """WGS 84, or a UTM zone of it."""
    code = place(number)[0]
    geographic = ('GEOGCS["GCS_WGS_1984",DATUM["D_WGS_1984",SPHEROID["WGS_1984",6378137.0,298.257223563]],'
                  'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]]')
    if is_geographic(code):
        return f"{geographic}\n".encode()
    zone = code - 32600 if 32600 < code <= 32660 else 32
    return (f'PROJCS["WGS_1984_UTM_Zone_{zone}N",{geographic},PROJECTION["Transverse_Mercator"],'
            'PARAMETER["False_Easting",500000.0],PARAMETER["False_Northing",0.0],'
            f'PARAMETER["Central_Meridian",{zone * 6 - 183}.0],PARAMETER["Scale_Factor",0.9996],'
            'PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]]\n').encode()


def pdf(number):
    west, south = 10 + number % 997 * 0.01, 45 + number % 991 * 0.002
    corners = f"{south} {west} {south + 0.1} {west} {south + 0.1} {west + 0.1} {south} {west + 0.1}"
    objects = (
        "<</Type/Catalog/Pages 2 0 R>>",
        "<</Type/Pages/Kids[3 0 R]/Count 1>>",
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 600 800]/Resources<<>>/Contents 4 0 R/VP[<</Type/Viewport"
        "/BBox[50 50 550 750]/Measure 5 0 R>>]>>",
        "<</Length 0>>stream\n\nendstream",
        f"<</Type/Measure/Subtype/GEO/GCS 6 0 R/GPTS[{corners}]/LPTS[0 0 0 1 1 1 1 0]"
        "/Bounds[0 0 0 1 1 1 1 0]>>",
        "<</Type/GEOGCS/EPSG 4326>>")
    text, places = "%PDF-1.7\n", []
    for i, item in enumerate(objects, 1):
        places.append(len(text))
        text += f"{i} 0 obj\n{item}\nendobj\n"
    rows = "".join(f"{at:010d} 00000 n \n" for at in places)
    size = len(objects) + 1
    return (f"{text}xref\n0 {size}\n0000000000 65535 f \n{rows}trailer\n<</Size {size}/Root 1 0 R>>\n"
            f"startxref\n{len(text)}\n%%EOF\n").encode()


KINDS = {"geotiff": [(".tif", geotiff)], "world": [(".tfw", world)],
         "placed": [(".tfw", world), (".prj", prj)], "pdf": [(".pdf", pdf)]}


def folder_of(options, number):
    folder = options.folder / f"{number // options.per_folder:04d}"
    if number % options.per_folder == 0:
        folder.mkdir(parents=True, exist_ok=True)
    return folder


def make_alike(options, contents):
    for number in range(options.count):
        folder = folder_of(options, number)
        for extension, content in contents:
            (folder / f"file{number:07d}{extension}").write_bytes(content(number))


def make_mixed(options):
    sources = options.folder.with_name(options.folder.name + ".sources")
    sources.mkdir(parents=True, exist_ok=True)
    variants = 400  # 1,000,000 / 400 links to one file; ext4 allows 65,000
    for number in range(variants):
        for extension, content in ((".tif", geotiff), (".tfw", world), (".prj", prj)):
            (sources / f"{number}{extension}").write_bytes(content(number))
    for number in range(options.count):
        turn = number % 1000
        # From 800 on pairs of a raster and a world file, from 900 on of a world file and its prj.
        if turn < 800:
            stem, extension = number, ".tif"
        elif turn < 900:
            stem, extension = number - turn % 2, (".tif", ".tfw")[turn % 2]
        else:
            stem, extension = number - turn % 2, (".tfw", ".prj")[turn % 2]
        name = folder_of(options, number) / f"file{stem:07d}{extension}"
        os.link(sources / f"{stem % variants}{extension}", name)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kind", choices=(*KINDS, "mixed"))
    parser.add_argument("count", type=int)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--per-folder", type=int, default=1000)
    options = parser.parse_args()
    if options.kind == "mixed":
        return make_mixed(options)
    return make_alike(options, KINDS[options.kind])


if __name__ == "__main__":
    main()
