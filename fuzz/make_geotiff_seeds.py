#!/usr/bin/env python3
"""Writes the seeds of geotiff_fuzzer: tiny TIFFs, each with one way to state its place."""

import pathlib
import struct

SHORT, LONG, DOUBLE, ASCII, LONG8 = 3, 4, 12, 2, 16
CODES = {SHORT: "H", LONG: "I", DOUBLE: "d", LONG8: "Q"}


def pack(order, kind, values):
    if kind == ASCII:
        return values.encode() + b"\0"
    return struct.pack(f"{order}{len(values)}{CODES[kind]}", *values)


def tiff(order, tags, big=False):
    """A raster of 2 by 2 pixels with these tags: {number: (kind, values)}."""
    tags = {256: (SHORT, [2]), 257: (SHORT, [2]), 258: (SHORT, [8]), 259: (SHORT, [1]), 262: (SHORT, [1]),
            273: (LONG, [0]), 277: (SHORT, [1]), 278: (SHORT, [2]), 279: (LONG, [4]), **tags}
    head, entry, slot = (16, 20, 8) if big else (8, 12, 4)
    offset = "Q" if big else "I"
    at = head + (8 if big else 2) + entry * len(tags) + slot
    tags[273] = (LONG, [at])
    body, rows = b"\1\2\3\4", b""
    for number in sorted(tags):
        kind, values = tags[number]
        data = pack(order, kind, values)
        count = len(data) if kind == ASCII else len(values)
        if len(data) > slot:
            where = at + len(body)
            body += data
            data = struct.pack(order + offset, where)
        rows += struct.pack(order + "HH" + offset, number, kind, count) + data.ljust(slot, b"\0")
    mark = b"II" if order == "<" else b"MM"
    top = struct.pack(order + "HHHQ", 43, 8, 0, head) if big else struct.pack(order + "HI", 42, head)
    size = struct.pack(order + ("Q" if big else "H"), len(tags))
    return mark + top + size + rows + bytes(slot) + body


def keys(*rows):
    return (SHORT, [1, 1, 0, len(rows)] + [part for row in rows for part in row])


SCALE, POINTS, MATRIX, KEYS, NUMBERS, TEXTS, META = 33550, 33922, 34264, 34735, 34736, 34737, 42112
UTM = keys((1024, 0, 1, 1), (1025, 0, 1, 1), (3072, 0, 1, 32633))
PLACE = {SCALE: (DOUBLE, [10, 10, 0]), POINTS: (DOUBLE, [0, 0, 0, 500000, 4100000, 0])}
THREE = [0, 0, 0, 500000, 4100000, 0, 2, 0, 0, 500020, 4100000, 0, 0, 2, 0, 500000, 4099980, 0]



def own_system(unit):
    """A projected system that the file itself describes, in this unit."""
    return tiff("<", {**PLACE, NUMBERS: (DOUBLE, [6378137, 298.25, 46.5, 3.0, 44.0, 49.0, 7e5, 6.6e6]),
                      TEXTS: (ASCII, "one of its own|"),
                      KEYS: keys((1024, 0, 1, 1), (1026, TEXTS, 15, 0), (2048, 0, 1, 32767), (2050, 0, 1, 32767),
                                 (2056, 0, 1, 32767), (2057, NUMBERS, 1, 0), (2059, NUMBERS, 1, 1),
                                 (3072, 0, 1, 32767), (3074, 0, 1, 32767), (3075, 0, 1, 8), (3076, 0, 1, unit),
                                 (3078, NUMBERS, 1, 4), (3079, NUMBERS, 1, 5), (3084, NUMBERS, 1, 3),
                                 (3085, NUMBERS, 1, 2), (3086, NUMBERS, 1, 6), (3087, NUMBERS, 1, 7))})


SEEDS = {
    "bare": tiff("<", {}),
    "utm": tiff("<", {**PLACE, KEYS: UTM}),
    "utm_big_endian": tiff(">", {**PLACE, KEYS: UTM}),
    "utm_big_tiff": tiff("<", {**PLACE, KEYS: UTM}, big=True),
    "point": tiff("<", {**PLACE, KEYS: keys((1024, 0, 1, 2), (1025, 0, 1, 2), (2048, 0, 1, 4326))}),
    "matrix": tiff("<", {MATRIX: (DOUBLE, [3, 4, 0, 5, 4, -3, 0, 6, 0, 0, 0, 0, 0, 0, 0, 1]), KEYS: UTM}),
    "points": tiff("<", {POINTS: (DOUBLE, THREE), KEYS: UTM}),
    "no_size": tiff("<", {MATRIX: (DOUBLE, [0] * 15 + [1])}),
    "own_system": own_system(9001),
    "unit_that_nobody_knows": own_system(21033),
    "heights": tiff("<", {**PLACE, KEYS: keys((1024, 0, 1, 1), (3072, 0, 1, 32633), (4096, 0, 1, 5703),
                                              (4099, 0, 1, 9001))}),
    "unit": tiff("<", {**PLACE, META: (ASCII, '<GDALMetadata><Item name="UNITTYPE" sample="0" role="unittype">'
                                              "sft</Item></GDALMetadata>")}),
}

folder = pathlib.Path(__file__).parent / "seeds" / "geotiff"
folder.mkdir(parents=True, exist_ok=True)
for name, content in SEEDS.items():
    (folder / f"{name}.tif").write_bytes(content)
