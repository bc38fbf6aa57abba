#!/usr/bin/env bash
# Writes the manual to build/release/docs/html and looks at it: Doxygen warns of nothing, so that every
# public member of every header, generated ones too, is documented, and links lead somewhere. Installs
# what a bare Debian 12 lacks.
#
# Usage: scripts/docs.sh
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing g++ cmake ninja-build doxygen python3 nlohmann-json3-dev libcli11-dev nettle-dev
build release -- brevantis_docs
docs=$root/build/release/docs
if [[ -s $docs/warnings.txt ]]; then
    head -n 40 "$docs/warnings.txt"
    fail "Doxygen has warned $(wc -l <"$docs/warnings.txt") times"
fi

say "checking the links"
python3 - "$docs/html" "$root" <<'PYTHON'
import html.parser
import pathlib
import sys
import urllib.parse

root = pathlib.Path(sys.argv[1])
# Beside the manual stand the files of the source tree.
sources = pathlib.Path(sys.argv[2])
pages = {}


class Page(html.parser.HTMLParser):
    def __init__(self):
        super().__init__()
        self.links, self.anchors = set(), set()

    def handle_starttag(self, tag, attributes):
        attributes = dict(attributes)
        for name in ("id", "name"):
            if attributes.get(name):
                self.anchors.add(attributes[name])
        for name in ("href", "src"):
            if attributes.get(name):
                self.links.add(attributes[name])


for path in root.glob("*.html"):  # and not what the search is made of
    page = Page()
    page.feed(path.read_text(encoding="utf-8"))
    pages[path.relative_to(root).as_posix()] = page

count, broken = 0, []
for name, page in sorted(pages.items()):
    for link in page.links:
        parts = urllib.parse.urlsplit(link)
        if parts.scheme or parts.netloc or not (parts.path or parts.fragment):
            continue
        count += 1
        target = urllib.parse.unquote(parts.path) or name
        fragment = urllib.parse.unquote(parts.fragment)
        if target.startswith("../"):
            if not (sources / target[3:]).exists():
                broken.append(f"{name}: {link}")
        elif not (root / target).exists():
            broken.append(f"{name}: {link}")
        # Of private classes in a class Doxygen writes the link and no section.
        elif fragment and fragment != "nested-classes" and target in pages and fragment not in pages[target].anchors:
            broken.append(f"{name}: {link}")
print(f"{len(pages)} pages, {count} links, {len(broken)} broken")
for each in broken[:40]:
    print(each)
sys.exit(bool(broken))
PYTHON
