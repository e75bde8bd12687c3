#!/usr/bin/env python3
"""Packs the coastline that `mapanchor preview` draws: make-coast.py <folder of world-atlas> <coast.bin>

Source: Natural Earth 4.1 (https://www.naturalearthdata.com), land at 1:110m and 1:50m, which is in the public
domain, as the TopoJSON files land-110m.json and land-50m.json of the npm package world-atlas 2.0.2:

    npm pack world-atlas@2.0.2 && tar xzf world-atlas-2.0.2.tgz
    scripts/make-coast.py package tools/mapanchor/data/coast.bin

The file is bytes: for each of the two scales the number of rings, then for each ring the number of points and
the points. A number is a varint (7 bits a byte, low bits first, 128 for "more follows"). A point is the
difference in longitude and latitude from the point before it, in hundredths of a degree, zigzag coded; the first
one of a scale is the difference from 0, 0. Longitudes run on past 180 degrees, rings are not closed, and a ring
around a pole ends a whole turn from where it begins.
"""

import json
import pathlib
import sys

PER_DEGREE = 100
TURN = 360 * PER_DEGREE
SMALLEST = {"110m": 0, "50m": 4}  # the least box of a ring, in hundredths of a degree: less is a dot


def arcs_of(topology):
    (scale_x, scale_y), (left, bottom) = topology["transform"]["scale"], topology["transform"]["translate"]
    arcs = []
    for deltas in topology["arcs"]:
        x = y = 0
        arc = []
        for dx, dy in deltas:
            x, y = x + dx, y + dy
            arc.append((x * scale_x + left, y * scale_y + bottom))
        arcs.append(arc)
    return arcs


def rings_of(topology):
    arcs = arcs_of(topology)
    for geometry in topology["objects"]["land"]["geometries"]:
        for polygon in geometry["arcs"]:
            for indices in polygon:
                ring = []
                for index in indices:
                    arc = arcs[index] if index >= 0 else arcs[~index][::-1]
                    ring += arc if not ring else arc[1:]
                yield ring


def quantised(ring):
    """Whole hundredths of a degree without repeated points; longitudes run on past 180 degrees."""
    points = []
    for longitude, latitude in ring:
        x, y = round(longitude * PER_DEGREE), round(latitude * PER_DEGREE)
        if points:
            x -= TURN * round((x - points[-1][0]) / TURN)
        if not points or points[-1] != (x, y):
            points.append((x, y))
    if len(points) > 1 and points[0] == points[-1]:
        points.pop()
    return points


def is_large(points, smallest):
    """Rings at the pole itself come from the flat maps that the data were made for."""
    sides = [max(side) - min(side) for side in zip(*points)]
    return len(points) > 2 and max(sides) >= smallest and sides[1] > 0


def varint(value):
    coded = bytearray()
    while value > 127:
        coded.append(value & 127 | 128)
        value >>= 7
    return bytes(coded) + bytes([value])


def zigzag(value):
    return varint(value << 1 if value >= 0 else (-value << 1) - 1)


def packed(rings):
    coded, before = varint(len(rings)), (0, 0)
    for ring in rings:
        coded += varint(len(ring))
        for point in ring:
            coded += zigzag(point[0] - before[0]) + zigzag(point[1] - before[1])
            before = point
    return coded


def main():
    folder, target = map(pathlib.Path, sys.argv[1:])
    coded = b""
    for scale, smallest in SMALLEST.items():
        topology = json.loads((folder / f"land-{scale}.json").read_text())
        rings = [ring for ring in map(quantised, rings_of(topology)) if is_large(ring, smallest)]
        coded += packed(rings)
        print(f"{scale}: {len(rings)} rings, {sum(map(len, rings))} points, {len(coded)} bytes so far")
    target.write_bytes(coded)


if __name__ == "__main__":
    main()
