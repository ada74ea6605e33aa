"""Checks that every link between the pages of a folder leads somewhere, and that no page loads anything from elsewhere.

Usage: check_links.py FOLDER
"""

import html.parser
import pathlib
import sys
import urllib.parse

folder = pathlib.Path(sys.argv[1]).resolve()


class Page(html.parser.HTMLParser):
    """The anchors of a page and its links: each a target, and whether the browser loads it by itself."""

    def __init__(self, path):
        super().__init__()
        self.anchors, self.links = {"", "top"}, []
        self.feed(path.read_text("utf-8"))

    def handle_starttag(self, tag, attrs):
        values = dict(attrs)
        self.anchors.update(values[name] for name in ("id", "name") if values.get(name))
        for name in ("href", "src"):
            if values.get(name):
                self.links.append((values[name], name == "src" or tag == "link"))


pages = {path: Page(path) for path in folder.rglob("*.html")}
faults = []
for path, page in pages.items():
    for link, loaded in page.links:
        parts = urllib.parse.urlsplit(link)
        if parts.scheme or parts.netloc:
            if loaded and parts.scheme != "data":
                faults.append(f"{path}: loads {link}")
            continue
        target = path if not parts.path else folder / parts.path[1:] if parts.path[0] == "/" else path.parent / parts.path
        target = pathlib.Path(urllib.parse.unquote(str(target))).resolve()
        if target.is_dir():
            target /= "index.html"
        anchor = urllib.parse.unquote(parts.fragment)
        if not target.exists() or target in pages and anchor not in pages[target].anchors:
            faults.append(f"{path}: {link} leads nowhere")
print(*faults, f"{len(pages)} pages, {len(faults)} wrong links", sep="\n")
sys.exit(1 if faults else 0)
