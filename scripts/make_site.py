#!/usr/bin/env python3
# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""Makes a site of the pages, with search and the API reference, and checks its links.

usage: make_site.py ROOT SITE [--api FOLDER]
       make_site.py --self-test

ROOT is the project. SITE is replaced as a whole; the API reference, which Doxygen has made in FOLDER,
is in SITE/api. A link to a file or a heading that the site does not have is an error. Without FOLDER
there is no reference, and links to it are errors too.
"""

import argparse
import html.parser
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import urllib.parse

# Everything that pages link to. Folders of code are no pages; scripts/site_hooks.py handles them.
CONTENT = ["README.md", "CONTRIBUTING.md", "CHANGELOG.md", "SECURITY.md", "LICENSE", "docs", "examples"]
REFERENCE = "api/index.html"
MENU = [
    ("Start", ["README.md", "docs/tutorial.md", "docs/glossary.md"]),
    ("Use", ["docs/orvhost.md", "docs/models-in-yang.md", "docs/vendor-modules.md",
             "docs/netconf.md", "docs/validate.md", "docs/record.md", "docs/performance.md"]),
    ("Build on it", ["docs/host-in-fifty-lines.md", "docs/embedding.md",
                     "docs/writing-an-interceptor.md", "docs/client.md",
                     "docs/model.md", "docs/api.md", REFERENCE]),
    ("Change it", ["CONTRIBUTING.md", "docs/architecture.md", "docs/store.md", "docs/testing.md",
                   "docs/decisions/README.md", "docs/releasing.md", "SECURITY.md", "CHANGELOG.md"]),
]
SETTINGS = """site_name: orv_ext_cm
docs_dir: {content}
site_dir: {site}
use_directory_urls: false
theme:
  name: material
  font: false
  palette: {{primary: indigo}}
  features: [navigation.sections, navigation.top]
plugins:
  - search
markdown_extensions:
  - tables
  - fenced_code
  - sane_lists
  - toc:
      permalink: true
      slugify: !!python/name:site_hooks.slugify
hooks: [{hooks}]
nav:
{menu}
"""


class Page(html.parser.HTMLParser):
    """What a page links to, and the names in it."""

    def __init__(self, text):
        super().__init__()
        self.links, self.names = [], set()
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src") and value is not None:
                self.links.append(value)
            elif name == "id" or (name == "name" and tag == "a"):
                self.names.add(value)


def broken_links(site, is_checked):
    """A line for each link to what the site does not have, of the pages that are checked."""
    pages = {path: Page(path.read_text(errors="replace")) for path in sorted(site.rglob("*.html"))}
    for path, page in pages.items():
        for link in page.links if is_checked(path.relative_to(site)) else []:
            url = urllib.parse.urlsplit(link)
            if url.scheme or url.netloc:
                continue
            place = urllib.parse.unquote(url.path)
            # The page that a server shows for any wrong address begins its links at the root.
            start = site if place.startswith("/") else path.parent
            target = (start / place.lstrip("/")).resolve() if place else path
            if target.is_dir():
                target /= "index.html"
            if not target.is_file():
                yield f"{path.relative_to(site)}: {link}: no such file"
            elif url.fragment and target in pages and target.suffix == ".html" and \
                    urllib.parse.unquote(url.fragment) not in pages[target].names:
                yield f"{path.relative_to(site)}: {link}: no such heading"


def title_of(page):
    """The first heading, without marks."""
    heading = re.search(r"^# (.+)$", page.read_text(), re.MULTILINE)[1]
    return heading.replace("`", "")


def menu(root, has_reference):
    lines = []
    for title, pages in MENU:
        lines.append(f"  - {title}:")
        for page in pages:
            if page != REFERENCE:
                lines.append(f'    - "{title_of(root / page)}": {page}')
            elif has_reference:
                lines.append(f"    - All headers and classes: {page}")
    return "\n".join(lines)


def make(root, site, reference):
    with tempfile.TemporaryDirectory() as name:
        content = pathlib.Path(name, "content")
        content.mkdir()
        for entry in CONTENT:
            source = root / entry
            (shutil.copytree if source.is_dir() else shutil.copy)(source, content / entry)
        if reference:
            shutil.copytree(reference, content / "api")
        settings = pathlib.Path(name, "mkdocs.yml")
        hooks = root / "scripts/site_hooks.py"
        settings.write_text(SETTINGS.format(content=content, site=site, hooks=hooks,
                                            menu=menu(root, reference is not None)))
        subprocess.run(["mkdocs", "build", "--quiet", "--clean", "--config-file", settings],
                       check=True, env={**os.environ, "PYTHONPATH": str(hooks.parent)})


def self_test():
    good = {"index.html": '<a href="sub/page.html#here">x</a><a href="https://example.org/">y</a>'
                          '<img src="a%20b.svg"><a href="#top" id="top">z</a><a href="sub">w</a>',
            "sub/page.html": '<h1 id="here">h</h1><a href="../index.html">x</a>',
            "sub/index.html": "", "a b.svg": ""}
    faults = [("index.html", "sub/page.html", "sub/pages.html", "no such file"),
              ("index.html", "#here", "#there", "no such heading"),
              ("index.html", "a%20b", "ab", "no such file"),
              ("index.html", 'id="top"', "", "no such heading"),
              ("sub/page.html", "../index.html", "index2.html", "no such file")]
    for name, old, new, word in [(None, "", "", None), *faults]:
        with tempfile.TemporaryDirectory() as folder:
            site = pathlib.Path(folder).resolve()
            (site / "sub").mkdir()
            for path, text in good.items():
                (site / path).write_text(text.replace(old, new, 1) if path == name else text)
            reports = list(broken_links(site, lambda path: True))
            if [word in report for report in reports] != ([] if word is None else [True]):
                sys.exit(f"{old} -> {new}: {reports}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    resolved = lambda name: pathlib.Path(name).resolve()
    parser.add_argument("root", nargs="?", type=resolved)
    parser.add_argument("site", nargs="?", type=resolved)
    parser.add_argument("--api", type=resolved, help="the pages of Doxygen")
    parser.add_argument("--self-test", action="store_true")
    options = parser.parse_args()
    if options.self_test:
        return self_test()
    make(options.root, options.site, options.api)
    # Doxygen answers for the links between its own pages.
    reports = list(broken_links(options.site, lambda path: path.parts[0] != "api"))
    print("\n".join(reports) if reports else f"{options.site}/index.html")
    return 1 if reports else 0


sys.exit(main())
