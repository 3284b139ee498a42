#!/usr/bin/env bash
# Executes the commands of a guide in a copy of the tree.
#
#   guide.sh GUIDE [BUILD]     installs BUILD first; without it, uses the installed packages
#
# Code blocks are processed in order. A block with a language and a file name, such as
# "```c module.c", is written to that file. A block "```sh" is run and must succeed; a block "```text"
# directly after it is compared with its output, where "..." matches any text.
set -euo pipefail
guide=$(realpath "$1")
build=${2:+$(realpath "$2")}
tree=$(realpath "$(dirname "$0")/..")

scratch=$(mktemp -d)
block=
finish() {
    if [ -n "$block" ]; then
        printf '%s: these commands:\n%s\nprinted:\n%s\n' "$(basename "$guide")" "$(cat "$block.sh")" "$(cat "$block.printed")"
        [ ! -f "$block.expected" ] || printf 'instead of:\n%s\n' "$(cat "$block.expected")"
    fi >&3
    rm -rf "$scratch"
}
exec 3>&1
trap finish EXIT
mkdir "$scratch/tree" "$scratch/blocks"
tar -C "$tree" --exclude=./build --exclude=./.git -cf - . | tar -C "$scratch/tree" -xf -

if [ -n "$build" ]; then
    cmake --install "$build" --prefix "$scratch/installed" >/dev/null
    export PATH=$scratch/installed/bin:$PATH CMAKE_PREFIX_PATH=$scratch/installed
    PKG_CONFIG_PATH=$(dirname "$(find "$scratch/installed" -name tarnd_qrb.pc)")
    LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH")
    export PKG_CONFIG_PATH LD_LIBRARY_PATH
fi

# Each block becomes numbered files: 3.sh with its expected output 3.expected; or 4.text, the contents
# of a file, and 4.sh, which writes it.
awk -v blocks="$scratch/blocks" '
    /^```/ && !inside { inside = 1; language = substr($1, 4); name = $2; body = ""; next }
    /^```/ {
        inside = 0
        if (language == "sh") { file = ++count ".sh" }
        else if (language == "text" && adjacent) { file = count ".expected" }
        else if (name != "") {
            file = ++count ".text"
            print "mkdir -p $(dirname " name ") && cp " blocks "/" file " " name > (blocks "/" count ".sh")
        }
        else { next }
        printf "%s", body > (blocks "/" file)
        adjacent = language == "sh"
        next
    }
    inside { body = body $0 "\n"; next }
    /[^ ]/ { adjacent = 0 }
' "$guide"

# Returns whether the text in file $2 matches that in $1, where "..." matches any text.
matches() {
    local pattern
    pattern=$(sed 's/[][*?\\]/\\&/g; s/\.\.\./*/g' "$1")
    # shellcheck disable=SC2053
    [[ $(cat "$2") == $pattern ]]
}

cd "$scratch/tree"
for script in $(find "$scratch/blocks" -name '*.sh' | sort -V); do
    block=${script%.sh}
    # shellcheck disable=SC1090
    . "$script" >"$block.printed" 2>&1 3>&- </dev/null  # background processes must not inherit descriptor 3
    [ ! -f "$block.expected" ] || matches "$block.expected" "$block.printed"
done
block=
