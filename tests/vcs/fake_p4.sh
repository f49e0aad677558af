#!/bin/sh
# Stands in for the Perforce command-line client in tests. Every call is
# appended to $FAKE_P4_DIR/calls.log as one line: the working directory and
# the arguments, separated by tabs. The answer is replayed from recorded
# files in $FAKE_P4_DIR: <verb>.<n>.out (standard output), .err (standard
# error) and .rc (exit code) for the n-th call of that verb, or <verb>.out
# and so on for every call. "@ROOT@" in a recording stands for
# $FAKE_P4_ROOT. With -i the standard input is kept as <verb>.<n>.in.
dir="${FAKE_P4_DIR:?FAKE_P4_DIR is not set}"

if [ "$1" = "-V" ]; then
    echo "Rev. P4/LINUX26X86_64/2023.1/0000000 (fake)"
    exit 0
fi

{
    printf '%s' "$(pwd)"
    for argument in "$@"; do printf '\t%s' "$argument"; done
    printf '\n'
} >> "$dir/calls.log"

verb=
for argument in "$@"; do
    case "$argument" in
        -z*) ;;
        *) verb="$argument"; break ;;
    esac
done

count_file="$dir/.count.$verb"
count=$(( $(cat "$count_file" 2>/dev/null || echo 0) + 1 ))
echo "$count" > "$count_file"

for argument in "$@"; do
    if [ "$argument" = "-i" ]; then
        cat > "$dir/$verb.$count.in"
        break
    fi
done

base="$dir/$verb.$count"
if [ ! -e "$base.out" ] && [ ! -e "$base.err" ] && [ ! -e "$base.rc" ]; then
    base="$dir/$verb"
fi
if [ ! -e "$base.out" ] && [ ! -e "$base.err" ] && [ ! -e "$base.rc" ]; then
    echo "fake p4: nothing recorded for '$verb' call $count" >&2
    exit 1
fi
[ -f "$base.out" ] && sed "s|@ROOT@|${FAKE_P4_ROOT}|g" "$base.out"
[ -f "$base.err" ] && sed "s|@ROOT@|${FAKE_P4_ROOT}|g" "$base.err" >&2
code=0
[ -f "$base.rc" ] && code=$(cat "$base.rc")
exit "$code"
