#!/bin/sh
# Runs one test with a private HOME and XDG folders that vanish afterwards.
set -u
dir=$(mktemp -d "${TMPDIR:-/tmp}/orbin-test.XXXXXX") || exit 1
trap 'rm -rf "$dir"' EXIT INT TERM
mkdir -p "$dir/home" "$dir/config" "$dir/data" "$dir/cache" "$dir/runtime"
chmod 700 "$dir/runtime"
HOME="$dir/home" XDG_CONFIG_HOME="$dir/config" XDG_DATA_HOME="$dir/data" \
XDG_CACHE_HOME="$dir/cache" XDG_RUNTIME_DIR="$dir/runtime" ORBIN_TEST_TMP="$dir" \
  "$@"
