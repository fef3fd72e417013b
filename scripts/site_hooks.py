# SPDX-FileCopyrightText: The orv_ext_cm authors
# SPDX-License-Identifier: Apache-2.0

"""What mkdocs calls while it makes the site: see scripts/make_site.py.

A forge draws sequence pictures, shows folders and hides comments of the tests by itself. Here the
pictures are drawn, and links to folders, which are no pages, become plain text.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
sys.dont_write_bytecode = True
import sequence_picture  # noqa: E402

PICTURE = re.compile(r"^```mermaid\n(.*?)^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"(?<!!)\[([^\]]+)\]\(([^)\s#:]+)\)")


def on_page_markdown(markdown, page, config, **_):
    folder = pathlib.Path(config["docs_dir"], page.file.src_path).parent
    markdown = PICTURE.sub(
        lambda block: f'<div style="overflow-x:auto">{sequence_picture.draw(block[1])}</div>', markdown)
    return LINK.sub(lambda link: link[1] if (folder / link[2]).is_dir() else link[0], markdown)


def slugify(heading, _):
    """The name of a heading, as a forge makes it."""
    return re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")
