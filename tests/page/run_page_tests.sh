#!/usr/bin/env bash
# run_page_tests.sh [ARGUMENT...]: looks at the page in both browsers, side by side, each with a gateway of its own, since
# most of the time is spent waiting for a lamp. Arguments are those of pytest.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

export PYTHONDONTWRITEBYTECODE=1 ZEL_PROGRAMS=$PWD/../../build/release/bin ZEL_CACHE=$PWD/../../build/release/cache
# Debian's own Python, because others do not find Debian's packages.
look() {
  /usr/bin/python3 -m pytest -q -p no:cacheprovider -o python_files='*_test.py' -k "$@"
}

log=$(mktemp)
trap 'rm -f "$log"' EXIT
look firefox "$@" >"$log" 2>&1 &
other=$!
status=0
look "not firefox" "$@" || status=$?
wait "$other" || status=$?
cat "$log"
exit "$status"
