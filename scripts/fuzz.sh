#!/usr/bin/env bash
# Fuzzes each target for a number of seconds (default 300), with the address and undefined-behaviour sanitizers. What a
# target finds it leaves in build/fuzz/findings, and the script fails.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
install_packages "${FUZZ_PACKAGES[@]}"
seconds=${1:-300}

echo "== Building the fuzz targets"
cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++-14 \
    -DCMAKE_CXX_FLAGS="-fsanitize=fuzzer-no-link" -DLUMORA_SANITIZE=address,undefined -DLUMORA_QT=OFF -DLUMORA_FUZZ=ON \
    -DCMAKE_UNITY_BUILD=ON >/dev/null
cmake --build build/fuzz

corpus=build/fuzz/corpus
rm -rf "$corpus" && mkdir -p "$corpus"/{parser,visual,model,query,titles,filter} build/fuzz/findings
number=0
while IFS= read -r statement; do
    number=$((number + 1))
    for start in 0 1; do
        printf '%s%s' "$start" "$statement" >"$corpus/parser/$number-$start"
        printf '%s%s' "$start" "$statement" >"$corpus/visual/$number-$start"
    done
done <fuzz/seeds/statements.txt
while IFS= read -r filter; do
    number=$((number + 1))
    printf '0%s' "$filter" >"$corpus/filter/$number"
done <fuzz/seeds/filters.txt
cp samples/orders.model "$corpus/model/"
cp samples/queries/*.qry "$corpus/query/"
cp samples/queries/01-*.qry "$corpus/titles/"
printf '[PanelTitles]\nttlAll=alle\n\n[RFETitles]\nttlFields=Felder\n' >"$corpus/titles/old"

for target in parser visual model query titles filter; do
    echo "== Fuzzing $target for $seconds s"
    build/fuzz/bin/fuzz_$target -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=20000 \
        -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$target-" "$corpus/$target" \
        >"build/fuzz/$target.log" 2>&1 || { tail -n 60 "build/fuzz/$target.log"; exit 1; }
    grep -E '^(Done|stat::number_of_executed_units)' "build/fuzz/$target.log"
done
