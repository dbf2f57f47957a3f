#!/usr/bin/env bash
# Installs a built tree into a private prefix as an ordinary user (when run
# as root, as the user nobody) and builds an example against it with
# pkg-config: the install succeeds without writing outside the prefix, and
# the installed library finds its error texts in the prefix.
# Usage: check-private-prefix.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build="$1"
source="$2"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT
chmod 777 "$scratch"
as_user() {
    if [ "$(id -u)" = 0 ]; then runuser -u nobody -- "$@"; else "$@"; fi
}
# The install lists what it wrote in the build folder; an ordinary user owns
# the build folder they install from.
if [ "$(id -u)" = 0 ]; then
    touch "$build/install_manifest.txt"
    chmod a+w "$build/install_manifest.txt"
fi

as_user cmake --install "$build" --prefix "$scratch/prefix" >"$scratch/install.log" 2>&1 || {
    cat "$scratch/install.log"
    exit 1
}
if [ -x "$scratch/prefix/bin/kavro" ]; then
    libdir="$(dirname "$(find "$scratch/prefix" -name 'libKavroLibrary.so.1' | head -n 1)")"
    texts="$(as_user env LD_LIBRARY_PATH="$libdir" "$scratch/prefix/bin/kavro" error 0x2112 2>&1)"
    case "$texts" in
    *"below the measuring range"*) ;;
    *) echo "the installed library does not find its error texts: $texts" >&2; exit 1 ;;
    esac
fi
export PKG_CONFIG_PATH="$(dirname "$(find "$scratch/prefix" -name KavroLibrary.pc)")"
example="$(ls "$source"/examples/*.cpp | head -n 1)"
g++ -std=c++17 $(pkg-config --cflags KavroLibrary) "$example" -o "$scratch/example" $(pkg-config --libs KavroLibrary)
# kavro-sim finds the scenario installed beside it.
"$scratch/prefix/bin/kavro-sim" --help | grep -F "$scratch/prefix/share/kavrolibrary/default.scn" >/dev/null || {
    echo "kavro-sim does not find its scenario in the prefix:" >&2
    "$scratch/prefix/bin/kavro-sim" --help >&2
    exit 1
}
echo "a private prefix installs and builds an example"
