#!/usr/bin/env bash
# Builds with warnings as errors and runs all tests, on SQLite and on servers of PostgreSQL and MariaDB that
# they start.
# LUMORA_TEST_PRESETS names the presets to do that with, one after the other (default: release).
set -euo pipefail
cd "$(dirname "$0")/.."
# shellcheck source=scripts/packages.sh
. scripts/packages.sh
install_packages "${BUILD_PACKAGES[@]}"
export LUMORA_REQUIRE_POSTGRES=1 LUMORA_REQUIRE_MARIADB=1 LUMORA_REQUIRE_ODBC=1

for preset in ${LUMORA_TEST_PRESETS:-release}; do
    echo "== Building ($preset)"
    cmake --preset "$preset" -DLUMORA_WERROR=ON
    cmake --build --preset "$preset"
    echo "== Testing ($preset)"
    ctest --preset "$preset" --parallel "$(nproc)"
done
