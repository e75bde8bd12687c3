#!/usr/bin/python3
"""Holds the command line against GDAL on a folder of real files, file by file.

conformance.py TOOL CORPUS [OUT.md]: writes the table and exits with 1 when a difference
has no reason. Each file is opened by GDAL in a process of its own, since some of them
end it.
"""
import collections
import datetime
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

from osgeo import gdal, osr

# A sidecar is read by GDAL only beside a raster: which driver makes one, and its name.
RASTER_BESIDE = {".tfw": ("GTiff", ".tif"), ".wld": ("GTiff", ".tif"), ".tab": ("GTiff", ".tif"),
                 ".pgw": ("PNG", ".png"), ".jgw": ("JPEG", ".jpg"), ".j2w": ("JP2OpenJPEG", ".jp2")}
SWEEP = "## Coordinate systems\n"
NO_REFERENCE_FILES = {".json", ".tsv", ".xml", ".prj", ".md"}

HALF_PIXEL = "the first pixel's corner by the rule of this format, half a pixel from GDAL's"
REASONS = {
    "RPFTOC01.ON2": "read as the frame that its header describes; GDAL joins the frames of the list",
    "fakedoq1.doq": "the keywords of its header place it at 0, 0 in NAD27; GDAL takes another header's fields",
    "byte_nogeoref.jp2": "the box inside the file places it; GDAL prefers the world file beside it",
    "texftus.ers": "cell sizes are metres here, whatever the unit of the system",
    "recursive_resources_and_oc_name_and_empty_ocg_name.pdf":
        "all control points are fitted; GDAL leaves out a rotation of some millionths",
    "adobe_style_geospatial.pdf": "all control points are fitted; GDAL leaves out a rotation of some millionths",
}


def peer_record(path):
    """What GDAL says of a file, as plain values."""
    with tempfile.TemporaryDirectory() as folder:
        target = str(path)
        beside = RASTER_BESIDE.get(path.suffix.lower())
        if beside:
            target = os.path.join(folder, path.stem + beside[1])
            make = gdal.GetDriverByName("MEM").Create("", 64, 64, 1)
            gdal.GetDriverByName(beside[0]).CreateCopy(target, make)
            shutil.copy(path, os.path.join(folder, path.name.lower()))
            with_prj = path.with_suffix(".prj")
            if with_prj.exists():
                shutil.copy(with_prj, folder)
        elif path.suffix.lower() == ".ers":
            target = shutil.copy(path, folder)
            with open(target[:-4], "wb") as pixels:
                pixels.truncate(1 << 30)  # a hole: GDAL asks that the raster is long enough
        dataset = gdal.Open(target)
        system = dataset.GetSpatialRef() or dataset.GetGCPSpatialRef()
        return {"size": [dataset.RasterXSize, dataset.RasterYSize],
                "terms": dataset.GetGeoTransform(can_return_null=True),
                "points": [(p.GCPPixel, p.GCPLine, p.GCPX, p.GCPY) for p in dataset.GetGCPs()],
                "wkt": system.ExportToWkt() if system else None}


def ask_peer(path):
    ours, theirs = os.pipe()
    child = os.fork()
    if child == 0:
        os.close(ours)
        os.dup2(os.open(os.devnull, os.O_WRONLY), 2)
        try:
            answer = peer_record(path)
        except Exception as failure:  # whatever it is, it is GDAL's answer
            answer = {"error": str(failure).splitlines()[0] if str(failure) else type(failure).__name__}
        with os.fdopen(theirs, "w") as out:
            json.dump(answer, out)
        os._exit(0)
    os.close(theirs)
    with os.fdopen(ours) as pipe:
        text = pipe.read()
    os.waitpid(child, 0)
    return json.loads(text) if text else {"error": "the process ended"}


def place(terms, column, row):
    return (terms[0] + terms[1] * column + terms[2] * row, terms[3] + terms[4] * column + terms[5] * row)


def apart(ours, theirs, size, shift=0.0):
    """The largest distance of two placements at the corners of a raster, in pixels of the second."""
    columns, rows = size
    unit = max(abs(v) for v in theirs[1:3] + theirs[4:6]) or 1.0
    far = 0.0
    for column, row in ((0, 0), (columns, 0), (0, rows), (columns, rows)):
        a, b = place(ours, column, row), place(theirs, column + shift, row + shift)
        far = max(far, abs(a[0] - b[0]) / unit, abs(a[1] - b[1]) / unit)
    return far


def page_scaled(ours, record, theirs):
    """A PDF page has as many pixels as one asks for: bring our terms to GDAL's number."""
    size = record.get("size")
    if not ours or not size:
        return ours
    by = [size[0] / theirs["size"][0], size[1] / theirs["size"][1]]
    return [ours[0], ours[1] * by[0], ours[2] * by[1], ours[3], ours[4] * by[0], ours[5] * by[1]]


def system_of(wkt):
    """The horizontal system, x before y."""
    system = osr.SpatialReference(wkt)
    system.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    system.StripVertical()
    return system


def system_verdict(ours, theirs, corners):
    if not theirs:
        return ("peer cannot", "it finds no coordinate system") if ours else ("equal", "")
    if not ours:
        return "system differs", "none here"
    a, b = system_of(ours), system_of(theirs)
    if a.IsSame(b):
        return "equal", ""
    if a.IsProjected() != b.IsProjected():
        return "system differs", a.GetName() + " here"
    unit = max(abs(v) for corner in corners for v in corner) or 1.0
    moved = osr.CoordinateTransformation(a, b).TransformPoints(corners)
    far = max(abs(p[i] - q[i]) for p, q in zip(corners, moved) for i in (0, 1))
    return ("equal", "the same system in other words") if far < 1e-9 * unit else \
        ("system differs", a.GetName() + " here")


def points_verdict(record, theirs):
    ours = [(p["pixel"], p["line"], p["x"], p["y"]) for p in record.get("gcps", {}).get("gcpList", [])]
    if ours == [tuple(p) for p in theirs]:
        return "equal", ""
    if ours == [(int(p[0]), int(p[1]), p[2], p[3]) for p in theirs]:
        return "on purpose", "pixels of control points are whole numbers here"
    return "unexplained", "control points differ"


def verdict(path, record, peer):
    mine = record["mapanchor"]
    terms, peer_terms = record.get("geoTransform"), peer.get("terms")
    placed = bool(terms or record.get("gcps"))
    peer_placed = bool(peer_terms or peer.get("points"))
    if not mine["ok"]:
        words = mine["error"].get("detail") or mine["error"].get("message") or mine["error"]["type"]
        texts = [d["text"] for d in mine["diagnostics"]] or [words]
        note = texts[-1].replace(str(path), path.name)
        return ("we cannot" if peer_placed or peer.get("wkt") else "neither"), note
    if not placed or not peer_placed:
        if placed:
            return "peer cannot", peer.get("error", "no reference")
        if peer_placed:
            return "we cannot", "no transform: " + "; ".join(d["text"] for d in mine["diagnostics"])
        return ("equal", "no placement") if peer.get("wkt") or "error" not in peer else ("neither", "no placement")
    if path.name in REASONS:
        return "on purpose", REASONS[path.name]
    if not peer_terms:
        found, note = points_verdict(record, peer["points"])
    elif not terms:
        return "we cannot", "points alone: " + "; ".join(d["text"] for d in mine["diagnostics"])
    else:
        if path.suffix.lower() == ".pdf":
            terms = page_scaled(terms, record, peer)
        found, note = "equal", ""
        if apart(terms, peer_terms, peer["size"]) > 1e-6:
            half = min(apart(terms, peer_terms, peer["size"], s) for s in (0.5, -0.5)) < 1e-6
            found, note = ("on purpose", HALF_PIXEL) if half else ("unexplained", "placement differs")
    if found == "unexplained":
        return found, note
    corners = [place(peer_terms, *pixel) for pixel in ((0, 0), peer["size"])] if peer_terms else \
        [tuple(p[2:]) for p in peer["points"]]
    system = system_verdict(record.get("coordinateSystem", {}).get("wkt"), peer.get("wkt"), corners)
    return system if found == "equal" else (found, note)


def our_records(tool, files):
    run = subprocess.run([tool, "info", "--json", "-"], input="\n".join(map(str, files)) + "\n",
                         stdout=subprocess.PIPE, text=True, check=False)
    return [json.loads(line) for line in run.stdout.splitlines()]


def what_the_sweep_wrote(path):
    """The section of `make crs-sweep`, which this table leaves as it is."""
    text = pathlib.Path(path).read_text(encoding="utf-8") if pathlib.Path(path).exists() else ""
    return text[text.index(SWEEP):] if SWEEP in text else ""


def main():
    tool, corpus = sys.argv[1], pathlib.Path(sys.argv[2])
    kept = what_the_sweep_wrote(sys.argv[3]) if len(sys.argv) > 3 else ""
    out = open(sys.argv[3], "w", encoding="utf-8") if len(sys.argv) > 3 else sys.stdout
    gdal.UseExceptions()
    osr.UseExceptions()
    gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")
    files = sorted(f for f in corpus.rglob("*") if f.is_file() and f.suffix.lower() not in NO_REFERENCE_FILES)
    records = our_records(tool, files)
    if not files or len(records) != len(files):
        sys.exit(f"{len(records)} answers for {len(files)} files")
    rows = []
    for path, record in zip(files, records):
        rows.append((path, *verdict(path, record, ask_peer(path))))
    version = subprocess.run([tool, "--version"], stdout=subprocess.PIPE, text=True, check=True).stdout.strip()
    counts = collections.Counter(row[1] for row in rows)
    print(f"# Conformance\n\nEvery file of the corpus of real files, read by name, against GDAL {gdal.__version__} "
          f"({version}, {datetime.date.today()}; made by `make conformance`).\n\n| verdict | files |\n|---|---|", file=out)
    for name, count in sorted(counts.items()):
        print(f"| {name} | {count} |", file=out)
    print("\nEqual: the same system, and the same place within a millionth of a pixel at the corners. A sidecar is "
          "shown to GDAL\nbeside a raster of its kind. Neither: nothing in the file places it, or both refuse it.\n\n"
          "| file | verdict | |\n|---|---|---|", file=out)
    for path, found, note in rows:
        note = " ".join(note.split()).replace(f"{path.parent}/", "").replace("|", "\\|")
        print(f"| {path.relative_to(corpus)} | {found} | {note[:160]} |", file=out)
    print(end=f"\n{kept}" if kept else "", file=out)
    sys.exit(1 if counts["unexplained"] else 0)


main()
