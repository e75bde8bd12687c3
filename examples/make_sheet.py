#!/usr/bin/env python3
"""Draws sheet.png and sheet.pdf, the scanned map sheet of the examples, with nothing but Python.

The sheet has a grid of one kilometre in UTM zone 32 (EPSG:25832) north of Innsbruck, and was put on the
scanner 1.5 degrees askew: one pixel is 5 m. Run it in this folder: ./make_sheet.py
"""

import math
import zlib

WIDTH, HEIGHT = 1200, 900
WEST, NORTH, METRES = 676000.0, 5240000.0, 5.0
TURN = math.radians(1.5)
GLYPHS = {
    "0": (7, 5, 5, 5, 7), "1": (2, 6, 2, 2, 7), "2": (7, 1, 7, 4, 7), "3": (7, 1, 7, 1, 7), "4": (5, 5, 7, 1, 1),
    "5": (7, 4, 7, 1, 7), "6": (7, 4, 7, 5, 7), "7": (7, 1, 1, 1, 1), "8": (7, 5, 7, 5, 7), "9": (7, 5, 7, 1, 7),
}


def to_pixel(east, north):
    """Column and line, counted from the outer corner of the top left pixel."""
    x, y = (east - WEST) / METRES, (NORTH - north) / METRES
    return 120 + x * math.cos(TURN) - y * math.sin(TURN), 40 + x * math.sin(TURN) + y * math.cos(TURN)


class Page:
    def __init__(self):
        self.rows = [bytearray([1] * WIDTH) for _ in range(HEIGHT)]

    def dot(self, column, line, size=1):
        for y in range(int(line), int(line) + size):
            for x in range(int(column), int(column) + size):
                if 0 <= x < WIDTH and 0 <= y < HEIGHT:
                    self.rows[y][x] = 0

    def line(self, start, end, size=1):
        (x0, y0), (x1, y1) = to_pixel(*start), to_pixel(*end)
        steps = int(max(abs(x1 - x0), abs(y1 - y0))) + 1
        for i in range(steps + 1):
            self.dot(x0 + (x1 - x0) * i / steps, y0 + (y1 - y0) * i / steps, size)

    def text(self, place, text):
        column, line = to_pixel(*place)
        for i, letter in enumerate(text):
            for y, bits in enumerate(GLYPHS[letter]):
                for x in range(3):
                    if bits & (4 >> x):
                        self.dot(column + 16 * i + 4 * x, line + 4 * y, 4)

    def packed(self):
        return [bytes(sum(row[x + b] << (7 - b) for b in range(8)) for x in range(0, WIDTH, 8)) for row in self.rows]


def draw():
    page = Page()
    for km in range(6):
        east = WEST + 1000 * km
        page.line((east, NORTH), (east, NORTH - 4000), 3 if km in (0, 5) else 1)
        page.text((east - 120, NORTH - 4060), str(int(east) // 1000))
    for km in range(5):
        north = NORTH - 1000 * km
        page.line((WEST, north), (WEST + 5000, north), 3 if km in (0, 4) else 1)
        page.text((WEST - 470, north + 50), str(int(north) // 1000))
    river = [(WEST + 50 * i, NORTH - 2300 - 700 * math.sin(i / 17) - 9 * i) for i in range(101)]
    for start, end in zip(river, river[1:]):
        page.line(start, end, 5)
    for peak in range(3):
        for height in range(5):
            ring = [
                (
                    WEST + 900 + 1500 * peak + (130 + 90 * height) * math.cos(i / 20 * math.pi),
                    NORTH - 900 - 120 * peak + (90 + 70 * height) * math.sin(i / 20 * math.pi),
                )
                for i in range(41)
            ]
            for start, end in zip(ring, ring[1:]):
                page.line(start, end)
    return page.packed()


def write_png(rows):
    def chunk(kind, content):
        body = kind + content
        return len(content).to_bytes(4, "big") + body + zlib.crc32(body).to_bytes(4, "big")

    head = WIDTH.to_bytes(4, "big") + HEIGHT.to_bytes(4, "big") + bytes([1, 0, 0, 0, 0])
    data = zlib.compress(b"".join(b"\0" + row for row in rows), 9)
    with open("sheet.png", "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", data) + chunk(b"IEND", b""))


def write_pdf(rows):
    """One page on which a pixel of the scan is 0.5 points, at 144 dpi."""
    image = zlib.compress(b"".join(rows), 9)
    content = b"q %d 0 0 %d 0 0 cm /Sheet Do Q" % (WIDTH // 2, HEIGHT // 2)
    bodies = [
        b"<< /Type /Catalog /Pages 2 0 R >>",
        b"<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
        b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 %d %d] /Contents 4 0 R"
        b" /Resources << /XObject << /Sheet 5 0 R >> >> >>" % (WIDTH // 2, HEIGHT // 2),
        b"<< /Length %d >>\nstream\n%s\nendstream" % (len(content), content),
        b"<< /Type /XObject /Subtype /Image /Width %d /Height %d /ColorSpace /DeviceGray /BitsPerComponent 1"
        b" /Filter /FlateDecode /Length %d >>\nstream\n%s\nendstream" % (WIDTH, HEIGHT, len(image), image),
    ]
    out = bytearray(b"%PDF-1.7\n%\xe2\xe3\xcf\xd3\n")
    places = []
    for number, body in enumerate(bodies, 1):
        places.append(len(out))
        out += b"%d 0 obj\n%s\nendobj\n" % (number, body)
    start = len(out)
    out += b"xref\n0 %d\n0000000000 65535 f \n" % (len(bodies) + 1)
    out += b"".join(b"%010d 00000 n \n" % place for place in places)
    out += b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (len(bodies) + 1, start)
    with open("sheet.pdf", "wb") as file:
        file.write(out)


def write_points():
    """Corners of the grid as they were clicked, to the pixel; the one named P7 was typed wrongly."""
    crosses = [(0, 0), (2, 0), (5, 0), (1, 1), (4, 1), (3, 2), (0, 2), (5, 2), (2, 3), (0, 4), (3, 4), (5, 4)]
    with open("sheet.csv", "w", encoding="ascii") as out:
        out.write("name,pixel,line,x,y\n")
        for i, (east, north) in enumerate(crosses, 1):
            place = (WEST + 1000 * east, NORTH - 1000 * north)
            column, line = to_pixel(*place)
            wrong = 30 if i == 7 else 0
            out.write("P%d,%d,%d,%d,%d\n" % (i, round(column) + wrong, round(line), *place))


if __name__ == "__main__":
    sheet = draw()
    write_png(sheet)
    write_pdf(sheet)
    write_points()
