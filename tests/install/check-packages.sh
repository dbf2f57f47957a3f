#!/usr/bin/env bash
# Builds the Debian packages from a built tree, unpacks them into a scratch
# root and builds every example against what was unpacked, through the
# unpacked pkg-config file and CMake package only. Also checks that the
# unpacked kavro-sim finds its scenario inside the unpacked root.
# Usage: check-packages.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build="$1"
source="$2"
scratch="$(mktemp -d)"
trap 'rm -rf "$scratch"' EXIT

(cd "$build" && cpack -G DEB -B "$scratch/debs" >"$scratch/cpack.log" 2>&1) || {
    cat "$scratch/cpack.log"
    exit 1
}
root="$scratch/root"
for deb in "$scratch"/debs/*.deb; do dpkg-deb -x "$deb" "$root"; done
for package in libkavrolibrary1 libkavrolibrary-dev kavro-tools; do
    ls "$scratch"/debs/${package}_*.deb >/dev/null
done

# (set -e does not stop at a failing test inside an && list: one per line.)
for file in usr/share/kavrolinuxlibrary/languages/ErrLang_en.dat usr/share/man/man1/kavro-sim.1.gz usr/share/man/man1/kavro.1.gz \
    usr/share/bash-completion/completions/kavro usr/lib/udev/rules.d/60-kavro-usbim.rules; do
    test -f "$root/$file" || { echo "the packages lack /$file" >&2; exit 1; }
done
pc="$(find "$root" -name KavroLibrary.pc)"
test -n "$pc" || { echo "the packages lack KavroLibrary.pc" >&2; exit 1; }
export PKG_CONFIG_PATH="$(dirname "$pc")"
cflags="$(pkg-config --cflags KavroLibrary)"
libs="$(pkg-config --libs KavroLibrary)"
case "$cflags" in "-I$root/"*) ;; *) echo "pkg-config names another prefix: $cflags" >&2; exit 1 ;; esac

for example in "$source"/examples/*.cpp; do
    name="$(basename "$example" .cpp)"
    g++ -std=c++17 -Wall -Werror $cflags "$example" -o "$scratch/$name" $libs
done

# The CMake package, the way an application's CMakeLists would use it.
mkdir -p "$scratch/app"
cat >"$scratch/app/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.16)
project(app CXX)
find_package(KavroLibrary REQUIRED)
add_executable(app $(ls "$source"/examples/*.cpp | head -n 1))
target_link_libraries(app PRIVATE KavroLibrary::KavroLibrary)
CMAKE
cmake -S "$scratch/app" -B "$scratch/app/build" -G Ninja -DCMAKE_PREFIX_PATH="$root/usr" >/dev/null
cmake --build "$scratch/app/build" >/dev/null

# kavro-sim finds the scenario installed beside it.
"$root/usr/bin/kavro-sim" --help | grep -F "$root/usr/share/kavrolibrary/default.scn" >/dev/null || {
    echo "kavro-sim does not find its scenario under $root" >&2
    "$root/usr/bin/kavro-sim" --help >&2
    exit 1
}
# The Python package, when built, imports from the unpacked root and finds
# the library there.
if ls "$scratch"/debs/python3-kavro_*.deb >/dev/null 2>&1; then
    PYTHONPATH="$(dirname "$(find "$root" -type d -name kavro -path '*dist-packages*')")" \
        /usr/bin/python3 -c "import kavro; kavro.KavroServer().LibraryVersion()" || {
        echo "the unpacked Python package does not import" >&2
        exit 1
    }
fi
echo "packages unpack and build the examples"
