#!/bin/sh
# check_exports.sh LIBRARY LIST [--write]
# Compares the names that a built library exports with the agreed list; --write makes the list. Lines
# of the list that begin with # are notes.
set -eu
library=$1
list=$2

names() {
    case $library in
        *.dll) x86_64-w64-mingw32-objdump -p "$library" |
            awk '/^\[Ordinal\/Name Pointer\] Table/ {on = 1; next} on && /^$/ {exit} on {print $NF}' ;;
        *) nm -D --defined-only "$library" | awk '$2 != "A" {print $3}' | sed 's/@.*//' ;;
    esac | LC_ALL=C sort
}

actual=$(mktemp)
trap 'rm -f "$actual"' EXIT
{ grep '^#' "$list" || true; names; } >"$actual"
if [ "${3:-}" = --write ]; then
    cat "$actual" >"$list"
    exit
fi

if ! diff -u "$list" "$actual"; then
    echo "The exports differ from the agreed list: '+' is exported and not agreed, '-' is agreed and missing." >&2
    echo "If the change is meant: tools/check_exports.sh $library $list --write" >&2
    exit 1
fi
echo "$(grep -vc '^#' "$actual") exports, all agreed"
