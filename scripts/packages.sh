# shellcheck shell=bash
# The Debian packages that Lumora is built with, and their installation. Other scripts source this file.

# What the programs need; the tests and benchmarks need more.
# shellcheck disable=SC2034
PROGRAM_PACKAGES=(cmake ninja-build g++ ccache pkg-config qt6-base-dev libqt6sql6-sqlite libqt6sql6-psql libsqlite3-dev
    python3)
# shellcheck disable=SC2034
BUILD_PACKAGES=("${PROGRAM_PACKAGES[@]}" libgtest-dev libgmock-dev libbenchmark-dev postgresql
    mariadb-server libqt6sql6-mysql libqt6sql6-odbc libsqliteodbc odbc-postgresql)
# shellcheck disable=SC2034
FUZZ_PACKAGES=(cmake ninja-build ccache clang-14 libclang-rt-14-dev libstdc++-12-dev)

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Runs a command as root.
as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "Installing packages needs root or sudo." >&2
        return 1
    fi
}

# The tests start database servers of their own; none is to run on this machine because we install the programs.
keep_postgresql_stopped() {
    local settings=/etc/postgresql-common/createcluster.conf
    if [ ! -e "$settings" ]; then
        as_root mkdir -p "${settings%/*}"
        echo 'create_main_cluster = false' | as_root tee "$settings" >/dev/null
    fi
}

# Debian asks this program before a package starts a service. One that the machine has stays in force.
service_policy=/usr/sbin/policy-rc.d

# Keeps services stopped that packages bring from now on; false when the machine has a policy of its own.
forbid_services() {
    [ ! -e "$service_policy" ] || return 1
    printf '#!/bin/sh\nexit 101\n' | as_root tee "$service_policy" >/dev/null
    as_root chmod 755 "$service_policy"
}

# The package enables its service, which would start with the machine.
allow_services() {
    as_root rm -f "$service_policy"
    if command -v systemctl >/dev/null && is_installed mariadb-server; then
        as_root systemctl disable --quiet mariadb.service || true
    fi
}

apt_install() {
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --quiet --quiet --yes -o Dpkg::Use-Pty=0 --no-install-recommends "$@"
}

# In a shell of its own, which takes the policy away again however the installation ends.
install_without_services() (
    if forbid_services; then
        trap allow_services EXIT
    fi
    apt_install "$@"
)

# Installs those of the given packages that are missing. Does nothing, and asks for nothing, when all are there.
install_packages() {
    if ! command -v dpkg-query >/dev/null; then
        echo "== This is no Debian: going on without looking for $*" >&2
        return
    fi
    local missing=() package
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    if [ "${#missing[@]}" -eq 0 ]; then
        return
    fi
    echo "== Installing ${missing[*]}"
    case " ${missing[*]} " in
    *' postgresql '*) keep_postgresql_stopped ;;
    esac
    as_root apt-get update --quiet --quiet
    case " ${missing[*]} " in
    *' mariadb-server '*) install_without_services "${missing[@]}" ;;
    *) apt_install "${missing[@]}" ;;
    esac
}
