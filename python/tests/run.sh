#!/usr/bin/env bash
# Runs the tests of the Python package with the system's Python.
#
# Usage: run.sh PYTHON LIBRARY
set -euo pipefail

python=$1
export BREVANTIS_ASN1_LIBRARY=$2
package=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
if ! "$python" -c 'import pytest' 2>/dev/null; then
    echo "skipped: $python has no pytest (python3-pytest)"
    exit 77
fi
export PYTHONPATH=$package PYTHONDONTWRITEBYTECODE=1
exec "$python" -m pytest -q -p no:cacheprovider "$package/tests"
