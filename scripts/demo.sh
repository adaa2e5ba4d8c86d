#!/usr/bin/env bash
# Builds the program, makes the sample database, fills a data model from it and asks it a question, and shows three
# saved queries: their words, their SQL, their rows. Where there is a screen it then starts the desktop program.
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
install_packages "${PROGRAM_PACKAGES[@]}"

build=build/demo
database=$build/orders.sqlite
model=samples/orders.model
lumora=$build/bin/lumora

# Runs a command whose output matters only when it fails.
quietly() {
    local log=$build/demo.log
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# show NUMBER QUERY [OPTION...]: the query samples/queries/QUERY.qry; the options are those of "lumora run".
show() {
    local number=$1 query=samples/queries/$2.qry
    shift 2
    printf '\n== Question %s: %s (%s)\n\nIn words:\n\n' \
        "$number" "$(sed -n 's/^QueryName=//p' "$query")" "$query"
    "$lumora" words "$model" "$query"
    printf '\nAs SQL:\n\n'
    "$lumora" sql --strict "$model" "$query"
    printf '\nThe answer (lumora run'
    [ "$#" -eq 0 ] || printf ' %s' "$@"
    printf '):\n\n'
    "$lumora" run "$database" "$model" "$query" "$@"
}

# A model straight from the database, a statement turned into rows of words over it, and the answer.
ask_filled_model() {
    local filled=$build/filled.model query=$build/large-orders.qry statement=samples/large-orders.sql
    printf '\n== A data model filled from the database (lumora fill)\n\n'
    "$lumora" fill "$database" >"$filled"
    printf '%s tables, %s fields, links found by the foreign keys:\n\n' \
        "$(sed -n 's/^TableCount=//p' "$filled")" "$(sed -n 's/^FieldCount=//p' "$filled")"
    sed -n 's/^\[Link:\(.*\)-\(.*\)\]$/    \1 -> \2/p' "$filled"
    printf '\n== A question to it, written as SQL (%s) and turned into words\n\n' "$statement"
    "$lumora" visual --strict "$filled" "$statement" >"$query"
    "$lumora" words "$filled" "$query"
    printf '\n'
    "$lumora" run "$database" "$filled" "$query" --limit 5
}

# The same database on screen, with the saved queries in a folder of its own. The window stays when the script ends.
start_desk() {
    local queries=$build/queries
    [ -d "$queries" ] || cp -R samples/queries "$queries"
    printf '\n== Starting Lumora Desk\n\n'
    "$build/bin/lumora-desk" "$database" "$model" --queries "$queries" >"$build/desk.log" 2>&1 &
    local desk=$!
    sleep 3
    if ! kill -0 "$desk" 2>/dev/null; then
        cat "$build/desk.log" >&2
        return 1
    fi
    echo 'Its window is open. Take a query from the list, change its words, and press F5.'
}

mkdir -p "$build"
echo "== Building $lumora"
quietly cmake --preset release -B "$build" -DLUMORA_TESTS=OFF -DLUMORA_BENCH=OFF -DLUMORA_WERROR=OFF
targets=(lumora)
[ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || targets+=(lumora-desk)
quietly cmake --build "$build" --target "${targets[@]}"
echo "== Making $database, a shop for tents, tools and walking boots"
python3 samples/make_orders_db.py "$database"

ask_filled_model

show 1 01-customers-in-norway --limit 8
show 2 05-nested-brackets --limit 8
show 3 10-parameters --param Country=Germany --param Word=tent --param Since=2023-01-01
[ -z "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || start_desk
