#!/usr/bin/env bash
# Compares the exports, imports and dependencies of libtarnd_qrb with the declared ones.
#
#   exports.sh LIBRARY MAP NEEDED-LIBRARIES CONTRACT-HEADERS...
set -euo pipefail
library=$1 map=$2 expected_libraries=$3
shift 3

failed=0
expect_same() {  # WHAT EXPECTED ACTUAL
    if ! difference=$(diff <(echo "$2") <(echo "$3")); then
        printf '%s ("<" expected, ">" found):\n%s\n' "$1" "$difference"
        failed=1
    fi
}
names() { sed 's/@.*//' | sort -u; }

listed=$(sed -n '/global:/,/local:/s/^ *\([A-Za-z_0-9]*\);$/\1/p' "$map" | sort -u)
exported=$("${NM:-nm}" -D --defined-only "$library" | awk '$2 != "A" { print $3 }' | names)
expect_same "exported names" "$listed" "$exported"

# An import that neither the contract nor the C library declares is an unwanted dependency.
contract=$(cat "$@" | grep -oE '\b(Orm|Dbc)[A-Za-z0-9]+|\b[a-z_]+_(s|ex|get)\b' | sort -u)
undefined=$("${NM:-nm}" -D --undefined-only "$library" | awk '{ print $NF }')
foreign=$(grep -v '@GLIBC_' <<<"$undefined" | names \
    | grep -vE '^(__cxa_finalize|__gmon_start__|_ITM_.*)$' | comm -23 - <(echo "$contract"))
expect_same "undefined names without a declaration" "" "$foreign"

needed=$(readelf -d "$library" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | sort | paste -sd ' ')
expect_same "libraries needed" "$expected_libraries" "$needed"
runs_at_load=$(readelf -d "$library" | grep -cE 'INIT_ARRAYSZ +(1[0-9]|[2-9][0-9]|[0-9]{3,}) ' || true)
expect_same "static constructors" 0 "$runs_at_load"
exit "$failed"
