#!/usr/bin/env bash
# Every function and type that the documentation names exists; every family is in the overview, and
# in the example that includes them all.
set -euo pipefail
cd "$1"

failed=0
pages=$(ls docs/*.md docs/man/* | grep -v adding-a-query)  # which makes names of its own
named=$(cat $pages | grep -oE '\b((BDS|IFPDT|IF|IP6?|SYSAPI|VLAN|L2IF|FIB6?|ACL|ACLIPv6|QOS|QRB|UTIL|MEM|Tarn|g)_[A-Za-z0-9_]+|(Orm|Dbc)[A-Za-z0-9]+)\b' | sort -u)
declared=$(cat include/tarnd_qrb/*.h platform/include/tarnd_platform/*.h | grep -oE '\w+' | sort -u)
if unknown=$(comm -23 <(echo "$named") <(echo "$declared") | grep .); then
    echo "named in the documentation, declared nowhere:" $unknown
    failed=1
fi
for header in include/tarnd_qrb/*.h; do
    family=tarnd_qrb_$(basename "$header" .h)
    grep -q "tarnd_qrb/$(basename "$header")" examples/ask/ask.c \
        || { echo "examples/ask/ask.c lacks $header"; failed=1; }
    grep -qw "$family" docs/man/tarnd_qrb.7 || { echo "docs/man/tarnd_qrb.7 lacks $family"; failed=1; }
done
exit "$failed"
