# Sourced by the quick-start scripts: makes sure the Debian packages the
# build needs are present, installing them when run as root.
KAVRO_PACKAGES="cmake ninja-build g++ pkg-config libxml2-dev libgtest-dev"

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

# Configures (once) and builds one build folder: kavro_build DIR [cmake args...]
kavro_build() {
    local dir="$1"
    shift
    mkdir -p "$dir"
    echo "Building in ${dir#"$KAVRO_ROOT"/} (the log is in ${dir#"$KAVRO_ROOT"/}/build.log) ..."
    {
        if [ ! -f "$dir/build.ninja" ]; then cmake -S "$KAVRO_ROOT" -B "$dir" -G Ninja "$@"; fi &&
            cmake --build "$dir"
    } >"$dir/build.log" 2>&1 || {
        tail -n 60 "$dir/build.log"
        echo "The build failed; the whole log is in $dir/build.log" >&2
        exit 1
    }
}
