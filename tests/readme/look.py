#!/usr/bin/env python3
"""Builds the documentation site and looks at every page of it in Chromium: no broken link, no missing
picture, no blank page, nothing from elsewhere: look.py <folder of the API reference> <folder to build in>

A second site with one fault of each kind proves first that they are found.
"""

import functools
import http.server
import json
import os
import pathlib
import queue
import subprocess
import sys
import tempfile
import threading

HERE = pathlib.Path(__file__).resolve().parent
CHROMIUM = "/usr/bin/chromium"
BROKEN = {
    "index.html": '<p id="a">Forty letters and more, so that it is not blank.<a href="#b">b</a><a href="two.html#c">c</a>'
                  '<a href="no.html">no</a><img src="no.png" width="9"><script src="http://localhost:9/a.js"></script>',
    "two.html": "<p>short",
}
EXPECTED = ["/index.html: loads http://localhost:9/a.js", "/index.html: no picture no.png",
            "/index.html: broken link to /no.html", "/index.html: no /index.html#b", "/index.html: no /two.html#c",
            "/two.html: is blank"]


class Handler(http.server.SimpleHTTPRequestHandler):
    def do_GET(self):
        if self.path != "/look":
            return super().do_GET()
        page = (HERE / "look.html").read_bytes()
        self.send_response(200)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.end_headers()
        self.wfile.write(page)

    def do_POST(self):
        self.server.reports.put(json.loads(self.rfile.read(int(self.headers["Content-Length"]))))
        self.send_response(204)
        self.end_headers()

    def log_message(self, *_):
        pass


def is_of_doxygen(fault):
    """Some versions of Doxygen link their own indexes to letters that these have not, and list for crawlers
    what no one reads."""
    return fault.startswith("/api/") and ("#index_" in fault or fault.startswith("/api/doxygen_crawl.html"))


def look(site):
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Handler, directory=str(site)))
    server.reports = queue.Queue()
    threading.Thread(target=server.serve_forever, daemon=True).start()
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as home:
        browser = subprocess.Popen(
            [CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu", "--remote-debugging-port=0",
             f"--user-data-dir={home}", f"http://127.0.0.1:{server.server_port}/look"],
            env=os.environ | {"HOME": home}, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            return server.reports.get(timeout=150)
        except queue.Empty:
            sys.exit("the browser has not come to the end of the site in 150 seconds")
        finally:
            browser.terminate()
            browser.wait()
            server.shutdown()


def main():
    reference, build = (pathlib.Path(argument) for argument in sys.argv[1:3])
    if not os.path.exists(CHROMIUM):
        print("skipped: chromium is not installed")
        return 77
    built = subprocess.run([sys.executable, HERE.parent.parent / "scripts/site.py", reference, build])
    if built.returncode:
        return built.returncode
    with tempfile.TemporaryDirectory() as broken:
        for name, text in BROKEN.items():
            (pathlib.Path(broken) / name).write_text(text)
        found = look(broken)["faults"]
        missed = [fault for fault in EXPECTED if fault not in found]
        if missed:
            sys.exit(f"these faults are not found: {missed}, but {found}")
    report = look(build / "html")
    faults = [fault for fault in report["faults"] if not is_of_doxygen(fault)]
    print(f"{report['pages']} pages, {report['links']} links and parts, {len(faults)} faults")
    print(*faults, sep="\n")
    return 1 if faults or report["pages"] < 15 else 0


sys.exit(main())
