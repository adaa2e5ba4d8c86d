#!/usr/bin/env bash
# Prints what including each public header of the core costs: how many headers of ours come with it, the time to compile
# a file that includes nothing else, and that time against a file with <string>, <vector>, <memory> and <functional>.
#
#   header-weight.sh [HEADER ...]     CXX: the compiler (g++); RUNS: how often each is compiled (7; the median counts)
set -euo pipefail
cd "$(dirname "$0")/.."
cxx=${CXX:-g++}
runs=${RUNS:-7}

# The median of the processor time of compiling the standard input, in milliseconds.
cost() {
    local source=$1 i TIMEFORMAT='%3U'
    for ((i = 0; i < runs; ++i)); do
        { time "$cxx" -std=c++20 -fsyntax-only -I. -x c++ - <<< "$source" > /dev/null; } 2>&1
    done | sort -n | sed -n "$(((runs + 1) / 2))p" | awk '{ printf "%d", $1 * 1000 }'
}

own_headers() {
    "$cxx" -std=c++20 -MM -I. -x c++ - <<< "#include \"$1\"" | grep -o 'lumora/[^ ]*\.h' | sort -u | wc -l
}

headers=("$@")
if ((${#headers[@]} == 0)); then
    mapfile -t headers < <(grep -o '^lumora/[^ ,]*\.h' docs/public-names.txt | grep -v -e /qtsql/ -e /widgets/ -e /designer/)
fi
standard=$(cost $'#include <string>\n#include <vector>\n#include <memory>\n#include <functional>')
printf '| header | of ours | ms | times |\n|---|---:|---:|---:|\n'
printf '| `<string>`, `<vector>`, `<memory>`, `<functional>` | | %d | 1.00 |\n' "$standard"
for header in "${headers[@]}"; do
    own=$(cost "#include \"$header\"")
    printf '| `%s` | %d | %d | %s |\n' "$header" "$(($(own_headers "$header") - 1))" "$own" \
        "$(awk -v a="$own" -v b="$standard" 'BEGIN { printf "%.2f", a / b }')"
done
