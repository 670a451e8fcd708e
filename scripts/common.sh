# What the scripts of this folder share; sourced, not run.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

buildPackages=(
    build-essential cmake ninja-build
    qtbase5-dev qttools5-dev libqt5serialport5-dev libqt5svg5-dev qtmultimedia5-dev
    libqt5sql5-sqlite libqwt-qt5-dev qttranslations5-l10n
    librsvg2-bin sqlite3 cmark-gfm xvfb fonts-dejavu-core
)
testPackages=(clang-format-14 clang-tidy-14 imagemagick desktop-file-utils appstream man-db)
packagingPackages=(dpkg-dev file)
packageCheckPackages=(lintian debootstrap openbox xdotool tesseract-ocr)
fuzzPackages=(clang-14 libclang-rt-14-dev)

say() { printf '%s\n' "$*" >&2; }

isInstalled() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# installMissing <package>... : installs those that are not there, quietly; needs root or sudo.
installMissing() {
    local missing=() package
    for package in "$@"; do
        isInstalled "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    local asRoot=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || { say "Please install: ${missing[*]}"; return 1; }
        asRoot=(sudo)
    fi
    say "Installing ${missing[*]}"
    local log
    log=$(mktemp)
    if ! { "${asRoot[@]}" apt-get update -qq &&
           "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive \
               apt-get install -y -qq --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}

# build <preset> [<target>...] : configures and builds; the log is shown only when it fails.
build() {
    local preset=$1
    shift
    local targets=()
    [ $# -eq 0 ] || targets=(--target "$@")
    say "Building ($preset)"
    mkdir -p "$root/build"
    local log=$root/build/$preset.log
    if ! (cd "$root" && cmake --preset "$preset" &&
          cmake --build --preset "$preset" "${targets[@]}") >"$log" 2>&1; then
        grep -E 'error:|Error|FAILED' -A3 "$log" | head -n 60 >&2
        say "The whole log: ${log#"$root"/}"
        return 1
    fi
}

# startVirtualDisplay <width>x<height> : sets DISPLAY and displayProcess.
startVirtualDisplay() {
    local numberFile
    numberFile=$(mktemp)
    Xvfb -displayfd 3 -screen 0 "$1x24" -dpi 96 -nolisten tcp 3>"$numberFile" >/dev/null 2>&1 &
    displayProcess=$!
    local waited=0
    until [ -s "$numberFile" ]; do
        sleep 0.1
        waited=$((waited + 1))
        if [ $waited -gt 200 ] || ! kill -0 "$displayProcess" 2>/dev/null; then
            say "The virtual display did not start."
            return 1
        fi
    done
    DISPLAY=:$(cat "$numberFile")
    export DISPLAY
    rm -f "$numberFile"
}

# useSimulators : prepares for simulate; whatever it starts ends with the script.
useSimulators() {
    processes=()
    folder=$(mktemp -d)
    trap endSimulators EXIT
    trap 'exit 130' INT TERM
}

endSimulators() {
    local process
    for process in ${processes[@]+"${processes[@]}"}; do
        kill "$process" 2>/dev/null || true
        wait "$process" 2>/dev/null || true
    done
    rm -rf "$folder"
}

# simulate <name> <option>... : starts one instrument and waits until its port is there. The array
# `ports` says where ports are looked for, `bin` where the programs are.
simulate() {
    local name=$1 ready=$folder/$1.ready
    shift
    "$bin/nox8-sim" --port "$name" ${ports[@]+"${ports[@]}"} "$@" >"$ready" &
    processes+=($!)
    local waited=0
    until [ -s "$ready" ]; do
        sleep 0.1
        waited=$((waited + 1))
        [ $waited -lt 100 ] || { say "The simulated instrument $name did not start."; return 1; }
    done
}

# simulateThree <option>... : three instruments whose sensors stand in neighbouring baths that settle;
# the options are those of the third.
simulateThree() {
    simulate SIM1 --model "NOX B" --serial 1234 --seed 1 --rate 8 \
        --start 23.50 --set-point 25.00 --settling 30 --noise 3
    simulate SIM2 --model "NOX CM1 rev.4" --serial 4071 --own-name "Bath 2" --seed 2 --rate 16 \
        --start 23.38 --set-point 24.88 --settling 32 --noise 3
    simulate SIM3 --model "NOX D" --serial 2218 --seed 3 --rate 8 \
        --start 23.58 --set-point 25.06 --settling 28 --noise 3 "$@"
}
