#!/usr/bin/env bash
# Checks that every function and type named in the documentation exists, and that every header is in the
# overview page and in the example that includes them all.
set -euo pipefail
cd "$1"

failed=0
pages=$(ls docs/*.md docs/man/* | grep -v adding-a-query)  # which defines new names
named=$(cat $pages | grep -oE '\b((BDS|IFPDT|IF|IP6?|SYSAPI|VLAN|L2IF|FIB6?|ACL|ACLIPv6|QOS|QRB|UTIL|MEM|Tarn|g)_[A-Za-z0-9_]+|(Orm|Dbc)[A-Za-z0-9]+)\b' | sort -u)
declared=$(cat include/tarnd_qrb/*.h platform/include/tarnd_platform/*.h | grep -oE '\w+' | sort -u)
if unknown=$(comm -23 <(echo "$named") <(echo "$declared") | grep .); then
    echo "named in the documentation, but not declared:" $unknown
    failed=1
fi
for header in include/tarnd_qrb/*.h; do
    family=tarnd_qrb_$(basename "$header" .h)
    grep -q "tarnd_qrb/$(basename "$header")" examples/query_module/query_module.c \
        || { echo "examples/query_module/query_module.c lacks $header"; failed=1; }
    grep -qw "$family" docs/man/tarnd_qrb.7 || { echo "docs/man/tarnd_qrb.7 lacks $family"; failed=1; }
done
exit "$failed"
