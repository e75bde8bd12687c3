#!/usr/bin/env python3
"""Writes the seeds of the PDF fuzz targets: small files, and bytes for those that choose."""

import pathlib
import random
import zlib

UTM = ('PROJCS["UTM 33N",GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],'
       'PRIMEM["Greenwich",0],UNIT["degree",0.0174532925199433]],PROJECTION["Transverse_Mercator"],'
       'PARAMETER["central_meridian",15],PARAMETER["scale_factor",0.9996],'
       'PARAMETER["false_easting",500000],UNIT["metre",1]]')
CATALOG = ["<</Type/Catalog/Pages 2 0 R/Metadata 9 0 R>>", "<</Type/Pages/Kids[3 0 R]/Count 1>>"]
CONTENT = b"q 2 0 0 2 9 9 cm 0 0 m 9 9 l 1 2 3 4 5 6 c 0 0 5 5 re W n /X Do BT 1 0 0 1 5 5 Tm (a\\)b)Tj ET Q"


def stream(data, keys=""):
    return f"<<{keys}/Length {len(data)}>>\nstream\n".encode() + data + b"\nendstream"


def objects(page, *more):
    page = f"<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]{page}>>"
    bodies = [*CATALOG, page, *more]
    return [body.encode() if isinstance(body, str) else body for body in bodies]


def with_table(bodies):
    # The parser looks for a trailer in the last half kibibyte, and fails where there is less.
    text, table = b"%PDF-1.6\n%" + b" " * 500 + b"\n", b"0000000000 65535 f \n"
    for number, body in enumerate(bodies, 1):
        table += b"%010d 00000 n \n" % len(text)
        text += b"%d 0 obj\n" % number + body + b"\nendobj\n"
    size = len(bodies) + 1
    return text + b"xref\n0 %d\n" % size + table + (
        b"trailer\n<</Root 1 0 R/Size %d>>\nstartxref\n%d\n%%%%EOF\n" % (size, len(text)))


def updated(file):
    page = b"3 0 obj\n<</Type/Page/Parent 2 0 R/MediaBox[0 0 9 9]>>\nendobj\n"
    return file + page + b"xref\n3 1\n%010d 00000 n \ntrailer\n<</Root 1 0 R/Size 4/Prev %d>>\n" % (
        len(file), file.rindex(b"xref\n0")) + b"startxref\n%d\n%%%%EOF\n" % (len(file) + len(page))


def with_streams(bodies):
    """Objects 1 to n in object stream n + 1, listed by cross-reference stream n + 2."""
    count, head, content = len(bodies), b"", b""
    for number, body in enumerate(bodies, 1):
        head += b"%d %d " % (number, len(content))
        content += body + b" "
    text = b"%PDF-1.6\n%" + b" " * 500 + b"\n"
    rows, place = b"\0\0\0\xff", len(text)
    for index in range(count):
        rows += b"\2" + (count + 1).to_bytes(2, "big") + bytes([index])
    packed = zlib.compress(head + content)
    text += b"%d 0 obj\n" % (count + 1) + stream(
        packed, f"/Type/ObjStm/N {count}/First {len(head)}/Filter/FlateDecode") + b"\nendobj\n"
    rows += b"\1" + place.to_bytes(2, "big") + b"\0" + b"\1" + len(text).to_bytes(2, "big") + b"\0"
    start = len(text)
    return text + b"%d 0 obj\n" % (count + 2) + stream(
        zlib.compress(rows), f"/Type/XRef/Root 1 0 R/Size {count + 3}/W[1 2 1]/Filter/FlateDecode"
    ) + b"\nendobj\nstartxref\n%d\n%%%%EOF\n" % start


def viewport(system):
    return objects("/VP[<</Type/Viewport/BBox[0 0 612 792]/Measure 4 0 R>>]",
                   "<</Type/Measure/Bounds[0 0 0 1 1 1 1 0]/GCS 5 0 R/GPTS[47 15 48 15 48 16 47 16]"
                   "/LPTS[0 0 0 1 1 1 1 0]>>", f"<</Type/PROJCS{system}>>")


def lgidict(place, projection, count=1):
    entry = (f"<</Type/LGIDict/Version(2.1){place}/Neatline[(0)(0)(0)(800)(600)(800)(600)(0)]"
             f"/Projection<</Type/Projection{projection}>>>>")
    return objects("/LGIDict[" + "4 0 R " * count + "]", entry)


def files():
    drawn = objects("/Contents 4 0 R/Resources<</XObject<</X 5 0 R>>/Properties<</MC0<</Name(L)>>>>>>",
                    stream(zlib.compress(CONTENT), "/Filter/FlateDecode"),
                    stream(b"1 0 0 RG 0 0 m 1 1 l S", "/Type/XObject/Subtype/Form/BBox[0 0 9 9]"),
                    *["null"] * 3, stream(b"<x:xmpmeta/>", "/Type/Metadata/Subtype/XML"))
    matrix = "/CTM[(2)(0)(0)(2)(400000)(5200000)]"
    points = "/Registration[[(0)(0)(400000)(5200000)][(600)(0)(401200)(5200000)][(0)(800)(400000)(5201600)]]"
    utm = "/ProjectionType(UT)/Datum(WGE)/Zone 33/Hemisphere(N)"
    conic = ("/ProjectionType(LE)/Datum(NAR)/Units(USSF)/StandardParallelOne(38)/StandardParallelTwo(40)"
             "/CentralMeridian(-98)/OriginLatitude(37)/FalseEasting(500000)")
    measure = viewport("/WKT(" + UTM + ")")
    tagged = objects("/Tags[//// /]", "<</Type/StructTreeRoot/K[5 0 R]>>", "<</S/Document/P 4 0 R/K[6 0 R 0]>>",
                     "<</S/Feature/T(CoordinateSystem)/P 5 0 R/Pg 3 0 R/A<</O/UserProperties/P[]>>>>")
    tagged[0] = b"<</Type/Catalog/Pages 2 0 R/StructTreeRoot 4 0 R/MarkInfo<</Marked true>>>>"
    return {
        "pdf": {"tagged": with_table(tagged), "table": with_table(drawn), "update": updated(with_table(objects(""))),
                "streams": with_streams(measure)},
        "xref": {"table": with_table(drawn), "update": updated(with_table(measure)),
                 "streams": with_streams(measure)},
        "geopdf_read": {"wkt": with_table(measure), "epsg": with_table(viewport("/EPSG 32633")),
                        "streams": with_streams(viewport("/EPSG 4326")),
                        "matrix": with_table(lgidict(matrix, utm)), "points": with_table(lgidict(points, utm, 2)),
                        "conic": with_table(lgidict(matrix, conic))},
    }


def choices():
    for target in ("measure", "lgidict", "wide"):
        for index in range(4):
            source = random.Random(index)
            # Mostly honest choices, more odd ones from seed to seed.
            data = bytes(source.randrange(256) if source.random() < index / 6 else 0 for _ in range(160))
            yield target, f"odd_{index}", data


def main():
    seeds = pathlib.Path(__file__).parent / "seeds"
    made = [(target, f"{name}.pdf", data) for target, group in files().items() for name, data in group.items()]
    for target, name, data in made + list(choices()):
        (seeds / target).mkdir(parents=True, exist_ok=True)
        (seeds / target / name).write_bytes(data)


if __name__ == "__main__":
    main()
