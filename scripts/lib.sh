# Shared by the scripts of this folder; not run by itself.

# need PACKAGE...: installs the Debian packages that are missing, quietly, and says so only when there is
# something to do.
need() {
    local missing=() package
    for package in "$@"; do
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    [ "${#missing[@]}" -gt 0 ] || return 0

    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing and installing them needs root or sudo: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}" >&2
    local log
    log=$(mktemp)
    if ! { "${as_root[@]}" apt-get update &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        echo "The packages could not be installed: ${missing[*]}" >&2
        return 1
    fi
    rm -f "$log"
}

# quietly COMMAND...: runs it and shows its output only when it fails.
quietly() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

build_packages=(cmake ninja-build g++ pkg-config)
inspect_packages=(libavcodec-dev libavformat-dev libavutil-dev libcli11-dev libfmt-dev
    nlohmann-json3-dev)
test_packages=(clang libgtest-dev libgmock-dev libssl-dev python3 python3-jsonschema python3-selenium
    chromium chromium-driver ffmpeg groff-base mandoc)
bench_packages=(libbenchmark-dev ffmpeg libgstreamer-plugins-bad1.0-dev libavcodec-dev libavutil-dev)
instruction_packages=(libbenchmark-dev valgrind)
