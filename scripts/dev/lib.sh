# Functions that the scripts share. Scripts source this file in the root of the repository; it is not run by itself.
#
# Progress goes to standard error: a status line that keeps changing on a terminal, else one line for each phase when
# it ends. Standard output is for results.

# on_terminal: progress can be shown as a status line.
on_terminal() { [ -t 2 ] && [ "${TERM:-dumb}" != dumb ]; }

# columns: the width of the terminal.
columns() {
    local size
    size=$(stty size <&2 2>/dev/null) || size='0 0'
    size=${size#* }
    echo "$((size > 0 ? size : 80))"
}

# duration SECONDS: as 12 s or 3 min 05 s.
duration() {
    if [ "$1" -lt 60 ]; then
        echo "$1 s"
    else
        printf '%d min %02d s\n' $(($1 / 60)) $(($1 % 60))
    fi
}

# phase TITLE COMMAND...: runs the command and shows that it is alive. Shows all of its output when it fails.
phase() {
    local title=$1 log status=0 start=$SECONDS
    shift
    log=$(mktemp)
    run_into "$log" "$title" "$@" || status=$?
    if [ "$status" -eq 0 ]; then
        echo "$title: $(duration $((SECONDS - start)))" >&2
    else
        cat "$log" >&2
        echo "$title: failed" >&2
    fi
    rm -f "$log"
    return "$status"
}

# run_into LOG TITLE COMMAND...: runs the command with its output in the log. On a terminal the status line is TITLE,
# the time and the last line of the log.
run_into() {
    local log=$1 title=$2
    shift 2
    if ! on_terminal; then
        "$@" >"$log" 2>&1
        return
    fi
    set -m  # a process group for the command, so that an interrupt ends all of it
    "$@" >"$log" 2>&1 </dev/null &
    set +m
    local pid=$! start=$SECONDS width line
    trap 'kill -- -"$pid"; printf "\n" >&2; exit 130' INT TERM
    width=$(columns)
    while kill -0 "$pid" 2>/dev/null; do
        line="$title: $(duration $((SECONDS - start)))  $(tail -n 1 "$log" | tr -d '[:cntrl:]')"
        printf '\r\033[K%s' "${line:0:width - 1}" >&2
        sleep "$((SECONDS - start < 2 ? 0 : 1)).1"
    done
    trap - INT TERM
    printf '\r\033[K' >&2
    wait "$pid"
}

# quietly COMMAND...: runs a short command and shows its output only when it fails.
quietly() {
    local log status=0
    log=$(mktemp)
    "$@" >"$log" 2>&1 || status=$?
    [ "$status" -eq 0 ] || cat "$log" >&2
    rm -f "$log"
    return "$status"
}

# need PACKAGE...: installs the Debian packages that are missing. Does nothing when there are none.
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
            echo "These packages are missing, and installing them needs root or sudo: ${missing[*]}" >&2
            return 1
        fi
        as_root=(sudo)
        sudo true  # asks for the password before the status line
    fi
    echo "Missing packages: ${missing[*]}" >&2
    phase 'Updating the list of packages' "${as_root[@]}" apt-get -q update
    phase "Installing packages (${#missing[@]})" "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -q -o DPkg::Lock::Timeout=300 install -y --no-install-recommends "${missing[@]}"
}

# list_from ARRAY COMMAND...: sets the array to the lines that the command prints. No line at all is an error: a list
# that is empty by mistake makes a check pass that looks at nothing.
list_from() {
    local -n list_from_array=$1
    local output
    output=$("${@:2}") || return
    if [ -z "$output" ]; then
        echo "an empty list: ${*:2}" >&2
        return 1
    fi
    mapfile -t list_from_array <<<"$output"
}

# test_programs FOLDER...: the test programs that the CMakeLists.txt of these folders of tests/ define.
test_programs() {
    local folder
    for folder in "$@"; do
        sed -En 's/^(\w+_test|add_executable)\((\w+_test)\b.*/\2/p' "tests/$folder/CMakeLists.txt" | grep . || {
            echo "no test programs in tests/$folder/CMakeLists.txt" >&2
            return 1
        }
    done
}

# counted N WHAT: records how much a check looked at. .ci/run compares it with the floor of the step.
counted() { [ -z "${QVNALU_COUNTS:-}" ] || echo "$1 $2" >>"$QVNALU_COUNTS"; }

# cached FOLDER NAME: a value of the CMake cache in a build folder.
cached() { sed -n "s/^$2:[A-Z]*=//p" "$1/CMakeCache.txt"; }

# compiler_of FOLDER: the compiler that a build folder is configured for. CMake does not notice a new version of it.
compiler_of() {
    echo "CXX=${CXX:-}"
    "$(cached "$1" CMAKE_CXX_COMPILER)" --version 2>/dev/null | head -n 1
}

# why_stale FOLDER SOURCES: why a build folder cannot be used as it is. Prints nothing when it can.
why_stale() {
    local folder=$1
    if [ ! "$(cached "$folder" CMAKE_HOME_DIRECTORY)" -ef "$2" ]; then
        echo "it was made for $(cached "$folder" CMAKE_HOME_DIRECTORY)"
    elif [ ! "$(cached "$folder" CMAKE_CACHEFILE_DIR)" -ef "$folder" ]; then
        echo "it was made as $(cached "$folder" CMAKE_CACHEFILE_DIR)"
    elif [ -e "$folder/compiler.txt" ] && [ "$(compiler_of "$folder")" != "$(cat "$folder/compiler.txt")" ]; then
        echo 'it was made with another compiler'
    fi
}

# configure FOLDER [-S SOURCES] CMAKE-OPTION...: configures a build folder unless it is configured with these options already; ninja
# notices changes of CMakeLists.txt. A folder that was made for other sources or with another compiler, or in which CMake
# fails although it succeeds in a new one, is made anew.
configure() {
    local folder=$1 sources=. reason
    shift
    [ "$1" != -S ] || sources=$2
    if [ -e "$folder/CMakeCache.txt" ]; then
        reason=$(why_stale "$folder" "$sources")
        if [ -n "$reason" ]; then
            echo "Configuring $folder anew: $reason" >&2
            rm -rf "$folder"
        elif [ "$folder/options.txt" -nt CMakePresets.json ] && [ "$(cat "$folder/options.txt")" = "$*" ]; then
            return 0
        fi
    fi
    if [ ! -e "$folder/CMakeCache.txt" ]; then
        phase "Configuring $folder" cmake "$@" -B "$folder" || return
    elif ! cmake "$@" -B "$folder" >/dev/null 2>&1; then
        rm -rf "$folder.new"
        quietly cmake "$@" -B "$folder.new" || return
        echo "Configuring $folder anew: CMake fails in the folder as it is" >&2
        rm -rf "$folder" "$folder.new"
        phase "Configuring $folder" cmake "$@" -B "$folder" || return
    fi
    compiler_of "$folder" >"$folder/compiler.txt"
    echo "$*" >"$folder/options.txt"
}

# configure_preset PRESET
configure_preset() { configure "build/$1" --preset "$1"; }

# build FOLDER [TARGET...]: builds in a folder that is configured; everything without a target. Silent when nothing is
# left to build. When the failure is not that of a compiler, ninja_error is what ninja reports.
build() {
    local folder=$1 log status=0 start=$SECONDS targets=()
    shift
    ninja_error=
    [ "$#" -eq 0 ] || targets=(--target "$@")
    log=$(mktemp)
    run_into "$log" "Building $folder" \
        env NINJA_STATUS='[%f of %t] ' cmake --build "$folder" ${targets[@]+"${targets[@]}"} || status=$?
    if [ "$status" -ne 0 ]; then
        grep -v '^\[[0-9]* of [0-9]*\] ' "$log" >&2 || true
        echo "Building $folder: failed" >&2
        ninja_error=$(sed -n 's/^ninja: error: //p' "$log" | head -n 1)
    elif ! grep -qx 'ninja: no work to do.' "$log"; then
        echo "Building $folder: $(sed -En 's/^\[([0-9]+) of [0-9]+\] .*/\1/p' "$log" | tail -n 1) steps," \
            "$(duration $((SECONDS - start)))" >&2
    fi
    rm -f "$log"
    return "$status"
}

# build_preset PRESET [TARGET...]: configures and builds build/PRESET. When that fails in a way that a stale folder can
# cause (ninja cannot run CMake again, or needs a library that is gone), configures and builds once more.
build_preset() {
    local preset=$1 folder=build/$1
    shift
    configure_preset "$preset" || return
    ! build "$folder" "$@" || return 0

    case $ninja_error in
        '' | 'unknown target'*) return 1 ;;
    esac
    rm -f "$folder/options.txt"
    configure_preset "$preset" || return
    ! build "$folder" "$@" || return 0

    case $ninja_error in
        "'$PWD/"*) return 1 ;;
        "'/"*' missing '*) ;;
        *) return 1 ;;
    esac
    echo "Configuring $folder anew: $ninja_error" >&2
    rm -rf "$folder"
    configure_preset "$preset" && build "$folder" "$@"
}

# junit_count FILE NAME: an attribute of the results that ctest wrote.
junit_count() { sed -En "s/^[[:space:]]+$2=\"([0-9]+)\"$/\1/p" "$1" | head -n 1; }

# run_tests PRESET [CTEST OPTION...]: runs the tests of build/PRESET. No test at all is an error.
run_tests() {
    local preset=$1 option results log status=0 start=$SECONDS tests failed skipped
    shift
    results=$(mktemp)
    local command=(ctest --preset "$preset" -j "$(nproc)" --no-tests=error --output-junit "$results" "$@")
    for option in "$@"; do
        case $option in
            -N | -V* | --show-only* | --verbose | --extra-verbose | --print-labels)
                "${command[@]}"
                return
                ;;
        esac
    done
    if [ -t 1 ]; then
        "${command[@]}" --progress || status=$?
    else
        log=$(mktemp)
        "${command[@]}" >"$log" 2>&1 || status=$?
        [ "$status" -eq 0 ] || grep -Ev '^ *Start +[0-9]+:|^ *[0-9]+/[0-9]+ Test .* Passed ' "$log" >&2 || true
        rm -f "$log"
    fi
    tests=$(junit_count "$results" tests)
    failed=$(junit_count "$results" failures)
    skipped=$(($(junit_count "$results" skipped) + $(junit_count "$results" disabled)))
    rm -f "$results"
    [ -n "$tests" ] || return "$((status > 0 ? status : 1))"
    echo "Tests of build/$preset: $((tests - failed - skipped)) of $tests passed, $skipped skipped," \
        "$(duration $((SECONDS - start)))"
    counted "$((tests - failed - skipped))" 'tests'
    return "$status"
}

build_packages=(cmake ninja-build g++ pkg-config)
inspect_packages=(libavcodec-dev libavformat-dev libavutil-dev libcli11-dev libfmt-dev
    nlohmann-json3-dev)
test_packages=(clang libgtest-dev libgmock-dev libssl-dev python3 python3-jsonschema python3-selenium
    chromium chromium-driver ffmpeg groff-base mandoc)
bench_packages=(libbenchmark-dev ffmpeg libgstreamer-plugins-bad1.0-dev libavcodec-dev libavutil-dev)
instruction_packages=(libbenchmark-dev valgrind)
