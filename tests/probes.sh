#!/usr/bin/env bash
# Checks that every static probe of the sources has a note in the library; if gdb is installed, that it
# stops at a probe and reads its arguments.
#
#   probes.sh SOURCE-DIRECTORY LIBRARY SHELL
set -euo pipefail
cd "$1"
library=$2 shell=$3

placed=$(grep -rohE '\bQRB_PROBE\([a-z0-9_]+,' --include='*.cpp' --include='*.h' --exclude=probes.h --exclude-dir=build . | sed 's/.*(//; s/,//' | sort -u)
described=$(readelf -n "$library" | awk '/Provider: tarnd_qrb$/ { ours = 1; next } ours { print $2; ours = 0 }' | sort -u)
diff <(echo "$placed") <(echo "$described") || { echo '"<": in the sources, ">": in the library'; exit 1; }

command -v gdb >/dev/null || exit 0
commands=$(mktemp)
trap 'rm -f "$commands"' EXIT
cat >"$commands" <<'GDB'
set breakpoint pending on
break -probe-stap tarnd_qrb:log_line
commands
silent
printf "probe: %d %s: %s", $_probe_arg0, (char*)$_probe_arg1, (char*)$_probe_arg3
continue
end
run
GDB
printed=$(gdb -nx -batch -x "$commands" --args "$shell" data/access-switch.json IF_GetIfNameByIndex 4711 2>&1)
grep -qF 'probe: 3 IF_GetIfNameByIndex: orm read key[4711] failed' <<<"$printed" || { echo "$printed"; exit 1; }
