# Shared by scripts/run and scripts/test: installs the Debian packages the
# build needs (quietly, only those missing) and builds into build/.
# Sourced, not run.

QUILLET_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
QUILLET_BUILD="$QUILLET_ROOT/build"

QUILLET_PACKAGES=(
    cmake ninja-build g++
    qt6-base-dev            # Qt Core, Gui, Widgets, PrintSupport, Test
    fonts-liberation        # metric-compatible Arial and Courier faces
    libbenchmark-dev        # the benchmarks under bench/
    xvfb xauth xdotool imagemagick   # a real window for scripts/screenshot and the end-to-end test
    python3 e2fsprogs       # the end-to-end test's driver; chattr makes its read-only list
    qt6-charts-dev qt6-svg-dev libqt6opengl6-dev   # quillet-report chart (Charts needs OpenGL's CMake files)
    python3-jsonschema      # the report tests validate every JSON output against its schema
    poppler-utils           # pdftotext and pdfinfo read the printouts back in the tests
    libcups2-dev            # hands finished printouts to the print system
    cups printer-driver-cups-pdf   # a default printer that prints to PDF, for the printing tests
)

quillet_as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

quillet_install_packages() {
    local missing=()
    local package
    for package in "${QUILLET_PACKAGES[@]}"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    quillet_as_root apt-get update -qq
    quillet_as_root apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# The configuration is quiet unless it fails; the build shows Ninja's
# progress, [done/total] a step, so a long build never looks like a hang.
quillet_build() {
    local log
    log=$(mktemp)
    echo "Configuring the build in $QUILLET_BUILD"
    if ! cmake -S "$QUILLET_ROOT" -B "$QUILLET_BUILD" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        echo "The build could not be configured." >&2
        return 1
    fi
    rm -f "$log"
    echo "Building"
    if ! cmake --build "$QUILLET_BUILD"; then
        echo "The build failed." >&2
        return 1
    fi
}
