# What the build needs, installed only when missing. Sourced by run.sh and test.sh.
need_packages() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' ||
            missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "Installing:$missing"
    as_root=""
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "error: run as root, or install sudo, to get the packages:$missing" >&2
            exit 1
        }
        as_root="sudo"
    fi
    $as_root apt-get update -qq
    # shellcheck disable=SC2086
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
        $missing >/dev/null
}

build_packages="g++ cmake ninja-build ccache pkg-config libsqlite3-dev libutf8proc-dev libcli11-dev \
libgtest-dev zlib1g-dev libedit-dev libxlsxwriter-dev liborcus-dev libfreexl-dev nlohmann-json3-dev \
qt6-base-dev"
