#!/usr/bin/env python3
"""Measures what a whole process costs: its start, and `mapanchor batch` over archives against loops
over GDAL in C++ and in Python.

bench-archive.py BIN TABLE   BIN holds mapanchor and gdal_loop; the results go into TABLE (Markdown),
                             between its marks for them
--scale F                    archives of F times the usual number of files
--runs N                     runs of each command in turn, of which the one with the least processor time counts
--keep FOLDER                archives are made there once, and kept; default: a temporary folder

Processor time is user and system time of a process with all of its children, so that the load of
other programs on the machine distorts it less than the time on the clock.
"""

import argparse
import collections
import os
import pathlib
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
Cost = collections.namedtuple("Cost", "processor clock megabytes")

PYTHON_LOOP = """
import multiprocessing, sys
from osgeo import gdal, osr
gdal.UseExceptions()
def read(name):
    raster = gdal.Open(name)
    system = raster.GetSpatialRef()
    return (raster.RasterXSize, raster.GetGeoTransform(), raster.GetGCPCount(),
            system.ExportToWkt(["FORMAT=WKT2_2019"]) if system else "",
            raster.GetMetadataItem("AREA_OR_POINT"))
names = sys.stdin.read().split("\\n")[:-1]
with multiprocessing.get_context("fork").Pool(2) as pool:
    for _ in pool.imap(read, names, chunksize=64):
        pass
    pool.close()
    pool.join()
"""


def run(words, names=None, statuses=(0, 3)):
    """What one run costs; its output goes nowhere."""
    begin = time.monotonic()
    with open(names or os.devnull, "rb") as listed:
        process = subprocess.Popen([str(word) for word in words], stdin=listed, stdout=subprocess.DEVNULL)
        _, status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode not in statuses:
        raise SystemExit(f"{' '.join(map(str, words))} ended with {process.returncode}")
    return Cost(used.ru_utime + used.ru_stime, time.monotonic() - begin, used.ru_maxrss / 1024)


def drop_caches():
    """Forgets what the system read of files and folders. Only root may, and not in every container."""
    os.sync()
    try:
        pathlib.Path("/proc/sys/vm/drop_caches").write_text("3", encoding="ascii")
    except OSError:
        return False
    return True


def in_turn(commands, runs, before=lambda: None):
    """The run of each command with the least processor time, to which whatever else the machine does can
    only add; `before` is called before each run."""
    costs = [[(before(), run(*command))[1] for command in commands] for _ in range(runs)]
    return [min(column) for column in zip(*costs)]


class Archives:
    def __init__(self, folder, scale):
        self.folder = folder
        self.scale = scale

    def make(self, kind, count, per_folder=1000):
        """A list of names."""
        count = max(1, int(count * self.scale))
        folder = self.folder / f"{kind}-{count}-{per_folder}"
        if not folder.exists():
            subprocess.run([HERE / "make-archive.py", kind, str(count), folder, "--per-folder",
                            str(per_folder)], check=True)
            time.sleep(3)  # a folder that has just changed is listed for each file
        names = sorted(str(path) for path in folder.rglob("*") if path.is_file())
        listed = folder.with_suffix(".names")
        listed.write_text("".join(f"{name}\n" for name in names))
        return listed, names


def every_150th_code():
    """Codes from all of EPSG's projected systems."""
    listed = subprocess.run(["projinfo", "--list-crs", "projected", "--authority", "EPSG"], check=True,
                            capture_output=True, text=True).stdout
    return [line.split()[0] for line in listed.splitlines()][::150]


# None of the systems whose text is answered for without reading it.
OTHER_PRJ = ('PROJCS["DHDN_3_Degree_Gauss_Zone_3",GEOGCS["GCS_Deutsches_Hauptdreiecksnetz",'
             'DATUM["D_Deutsches_Hauptdreiecksnetz",SPHEROID["Bessel_1841",6377397.155,299.1528128]],'
             'PRIMEM["Greenwich",0.0],UNIT["Degree",0.0174532925199433]],PROJECTION["Gauss_Kruger"],'
             'PARAMETER["False_Easting",3500000.0],PARAMETER["False_Northing",0.0],'
             'PARAMETER["Central_Meridian",9.0],PARAMETER["Scale_Factor",1.0],'
             'PARAMETER["Latitude_Of_Origin",0.0],UNIT["Meter",1.0]]')


def starts(tool, archives, runs):
    """(what, our seconds, the peer's words, the peer's seconds)"""
    _, tiffs = archives.make("geotiff", 20)
    _, worlds = archives.make("world", 20)
    _, pdfs = archives.make("pdf", 20)
    _, placed = archives.make("placed", 20)
    with_system = next(name for name in placed if name.endswith(".tfw"))
    same = {kind: archives.folder / f"placed.{kind}" for kind in ("tab", "rsf", "ers")}
    for target in same.values():
        run([tool, "convert", "--quiet", "--overwrite", "--size", "100x100", with_system, target])
    other = archives.folder / "other.tfw"
    other.write_text("1\n0\n0\n-1\n3500000\n5500000\n", encoding="ascii")
    other.with_suffix(".prj").write_text(OTHER_PRJ, encoding="ascii")
    gdal = ["gdalinfo", tiffs[0]]
    for what, ours, peer in (
            ("`ext`", ["ext", "map.tif"], gdal),
            ("`info` of a world file", ["info", worlds[0]], gdal),
            ("`info` of a world file with a prj of a UTM zone", ["info", with_system], gdal),
            ("`info` of a world file with another prj", ["info", other], gdal),
            ("`info` of a TAB file with a system", ["info", same["tab"]], gdal),
            ("`info` of an RSF file with a system", ["info", same["rsf"]], gdal),
            ("`info` of an ERS file with a system", ["info", same["ers"]], gdal),
            ("`info` of a GeoTIFF", ["info", tiffs[0]], gdal),
            ("`info` of a PDF", ["info", pdfs[0]], ["gdalinfo", pdfs[0]]),
            ("`crs EPSG:32632`", ["crs", "EPSG:32632"], ["projinfo", "EPSG:32632"]),
            ("`crs EPSG:25832`", ["crs", "EPSG:25832"], ["projinfo", "EPSG:25832"])):
        mine, theirs = in_turn([([tool, *ours],), (peer,)], runs)
        yield what, mine.processor, peer[0] + (" of the PDF" if peer[-1] == pdfs[0] else ""), theirs.processor
    codes = every_150th_code()
    costs = [in_turn([([tool, "crs", code],), (["projinfo", code],)], 1) for code in codes]
    mine, theirs = (sum(cost.processor for cost in column) / len(codes) for column in zip(*costs))
    yield f"`crs` of {len(codes)} systems, the mean", mine, "projinfo", theirs


def start_table(rows):
    yield "| Process | Ours | Peer | Ours / peer |"
    yield "|---|---:|---:|---:|"
    for what, mine, peer, theirs in rows:
        yield f"| {what} | {mine * 1e3:.1f} ms | {theirs * 1e3:.1f} ms ({peer}) | {mine / theirs:.2f} |"


KINDS = (("geotiff", 100_000, "GeoTIFFs of 20 systems"), ("world", 100_000, "world files"), ("pdf", 10_000, "PDFs"))


def batch_rows(tool, loop, archives, runs, **before):
    yield ("| Files | Program | Files per second | Processor time per file | "
           "Times ours |")
    yield "|---|---|---:|---:|---:|"
    for kind, count, what in KINDS:
        listed, names = archives.make(kind, count)
        programs = [("`batch --jobs 2`", [tool, "batch", "--quiet", "--jobs", "2"])]
        if kind != "world":  # which GDAL does not open by itself
            programs += [("GDAL in C++, 2 threads", [loop, "2"]),
                         ("GDAL in Python, 2 processes", ["/usr/bin/python3", "-c", PYTHON_LOOP])]
        costs = in_turn([(words, listed) for _, words in programs], runs, **before)
        for (program, _), cost in zip(programs, costs):
            ratio = f"{cost.processor / costs[0].processor:.1f}" if cost is not costs[0] else ""
            yield (f"| {len(names):,} {what} | {program} | {len(names) / cost.clock:,.0f} | "
                   f"{cost.processor / len(names) * 1e6:.0f} us | {ratio} |")


def growth_table(tool, archives, runs):
    yield "| GeoTIFFs in one folder | `batch --jobs 2`, processor time per file | `info` of one of them |"
    yield "|---:|---:|---:|"
    for count in (1_000, 100_000):
        listed, names = archives.make("geotiff", count, 10_000_000)
        batch, info = in_turn([([tool, "batch", "--quiet", "--jobs", "2"], listed), ([tool, "info", names[0]],)],
                              runs)
        yield (f"| {len(names):,} | {batch.processor / len(names) * 1e6:.0f} us | "
               f"{info.processor * 1e3:.1f} ms |")


def replace(table, mark, lines):
    """Puts the lines between <!-- mark --> and <!-- end -->."""
    text = table.read_text(encoding="utf-8")
    head, rest = text.split(f"<!-- {mark} -->\n", 1)
    tail = rest.split("<!-- end -->\n", 1)[1]
    body = "".join(f"{line}\n" for line in lines)
    table.write_text(f"{head}<!-- {mark} -->\n{body}<!-- end -->\n{tail}", encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--scale", type=float, default=1.0)
    parser.add_argument("--runs", type=int, default=3)
    parser.add_argument("--keep", type=pathlib.Path)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("table", type=pathlib.Path)
    options = parser.parse_args()
    tool, loop = options.folder / "mapanchor", options.folder / "gdal_loop"
    with tempfile.TemporaryDirectory() as scratch:
        if options.keep:
            options.keep.mkdir(parents=True, exist_ok=True)
        archives = Archives(options.keep or pathlib.Path(scratch), options.scale)
        few = Archives(archives.folder, 1.0)
        replace(options.table, "starts", start_table(starts(tool, few, options.runs * 5)))
        replace(options.table, "archives", batch_rows(tool, loop, archives, options.runs))
        if drop_caches():
            tenth = Archives(archives.folder, options.scale / 10)
            replace(options.table, "cold", batch_rows(tool, loop, tenth, 1, before=drop_caches))
        else:
            print("bench-archive: the caches may not be dropped here; that table stays as it is", file=sys.stderr)
        replace(options.table, "folders", growth_table(tool, archives, options.runs))
    return 0


if __name__ == "__main__":
    sys.exit(main())
