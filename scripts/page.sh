#!/usr/bin/env bash
# Clicks through the page of the viewer in headless Chromium. Where Chromium, its driver or Selenium
# are missing and cannot be installed, it is skipped with a line that says so.
#
# Usage: scripts/page.sh [FOLDER-FOR-PICTURES]
set -euo pipefail
# shellcheck source=scripts/setup.sh
source "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing g++ cmake ninja-build ca-certificates nlohmann-json3-dev libcli11-dev nettle-dev
(install_missing chromium chromium-driver python3-selenium) || true
build release -- brevantis_derview
say "the page of derview in a browser"
status=0
/usr/bin/python3 "$root/tests/derview/page_test.py" "$root/build/release/bin/derview" \
    "$@" || status=$?
((status == 0 || status == 77))
