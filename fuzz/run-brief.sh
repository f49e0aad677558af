#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each one briefly on a scratch
# copy of its seeds, so a crash the seeds or a short run can reach fails CI.
#
#   fuzz/run-brief.sh [seconds per target]     (default 30)
set -euo pipefail
here="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
seconds="${1:-30}"
build="${ORBIN_FUZZ_BUILD_DIR:-$here/build-fuzz}"
out="$here/fuzz-out"

CC=clang CXX=clang++ cmake -S "$here" -B "$build" -G Ninja \
    -DORBIN_FUZZ=ON -DORBIN_BUILD_TESTS=OFF -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
targets=(fuzz_kor_table_reader fuzz_kor_sql_parser fuzz_kor_sql_like_pattern)
cmake --build "$build" -j "${ORBIN_JOBS:-2}" --target "${targets[@]}"

run() {
    local target=$1 area=$2 dict=$3
    local corpus="$out/$target"
    rm -rf "$corpus" && mkdir -p "$corpus"
    cp "$here/fuzz/$area/corpus/"* "$corpus/"
    echo "fuzz: $target for ${seconds}s"
    "$build/fuzz/$target" -max_total_time="$seconds" -print_final_stats=1 \
        ${dict:+-dict="$here/fuzz/$area/$dict"} "$corpus" 2>&1 | tail -n 5
}

run fuzz_kor_table_reader engine table.dict
run fuzz_kor_sql_parser query sql.dict
run fuzz_kor_sql_like_pattern query ""
