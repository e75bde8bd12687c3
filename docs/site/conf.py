"""The documentation site; scripts/site.py lays out its pages and calls Sphinx."""

import os

project = "MapAnchor"
author = "The MapAnchor authors"
version = release = os.environ.get("MAPANCHOR_VERSION", "")
extensions = ["myst_parser"]
myst_heading_anchors = 4
smartquotes = False
html_theme = "furo"
html_title = f"MapAnchor {version}".strip()
html_static_path = ["static"]
html_css_files = ["site.css"]
html_extra_path = ["extra"]
html_show_sourcelink = False
html_copy_source = False
html_show_copyright = False
html_show_sphinx = False
html_last_updated_fmt = None
