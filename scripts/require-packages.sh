# Sourced by the quick-start scripts: makes sure the Debian packages the
# build needs are present, installing them when run as root.
# What every build needs; scripts ask for more by name (the tests, packaging).
KAVRO_PACKAGES="cmake ninja-build g++ pkg-config libxml2-dev"
# What the Python package kavro (-DKAVRO_BUILD_PYTHON=ON) needs to build, test and plot.
KAVRO_PYTHON_PACKAGES="python3-dev pybind11-dev python3-pybind11 python3-numpy python3-pytest python3-matplotlib"

kavro_require_packages() {
    local missing=""
    for package in $KAVRO_PACKAGES "$@"; do
        if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
            missing="$missing $package"
        fi
    done
    [ -z "$missing" ] && return 0
    if [ "$(id -u)" = "0" ] && command -v apt-get >/dev/null; then
        echo "Installing Debian packages:$missing"
        export DEBIAN_FRONTEND=noninteractive
        apt-get update -qq >/dev/null && apt-get install -y -qq $missing >/dev/null || {
            echo "Could not install:$missing" >&2
            exit 1
        }
    else
        echo "Please install these Debian packages first: sudo apt-get install$missing" >&2
        exit 1
    fi
}

# Configures and builds one build folder:
#   kavro_build DIR [--target TARGET] [cmake args...]
# The configuration is refreshed with the arguments each time (cheap when
# nothing changed), so that one folder serves the demo and the tests.
kavro_build() {
    local dir="$1"
    shift
    local target=()
    if [ "${1:-}" = "--target" ]; then
        target=(--target "$2")
        shift 2
    fi
    mkdir -p "$dir"
    echo "Building in ${dir#"$KAVRO_ROOT"/} (the log is in ${dir#"$KAVRO_ROOT"/}/build.log) ..."
    {
        cmake -S "$KAVRO_ROOT" -B "$dir" -G Ninja "$@" &&
            cmake --build "$dir" "${target[@]}"
    } >"$dir/build.log" 2>&1 || {
        tail -n 60 "$dir/build.log"
        echo "The build failed; the whole log is in $dir/build.log" >&2
        exit 1
    }
}
