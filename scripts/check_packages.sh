#!/usr/bin/env bash
# Makes the packages and tries them: the archive from another folder, the Debian package in a root of
# its own, and a project that gets the library in every way there is; and a build with libc++. Works
# in build/packages/, for about five minutes without a compiler cache.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh dpkg-dev file man-db libc++-14-dev libc++abi-14-dev
work=$PWD/build/packages
rm -rf "$work"
mkdir -p "$work"

quietly() {
  "$@" >"$work/log" 2>&1 || { cat "$work/log" && return 1; }
}

# NAME OPTION...: builds a release without tests, with the packages' defaults.
build() {
  quietly cmake -G Ninja -S . -B "$work/$1" -D CMAKE_BUILD_TYPE=Release -D VRN_TESTS=OFF \
    -D CMAKE_COMPILE_WARNING_AS_ERROR=ON "${@:2}"
  quietly cmake --build "$work/$1"
}

# WAY COMPILER STANDARD OPTION...: builds and runs the project; of it nothing but its own program is
# installed.
consume() {
  echo "$*"
  local built
  built=$(mktemp -d "$work/consumer.XXXX")
  quietly cmake -G Ninja -S tests/package -B "$built" -D WAY="$1" \
    -D CMAKE_CXX_COMPILER="$2" -D CMAKE_CXX_STANDARD="$3" -D CMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -D CMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic" "${@:4}"
  quietly cmake --build "$built"
  quietly ctest --test-dir "$built" --output-on-failure
  quietly cmake --install "$built" --prefix "$built/installed"
  diff <(cd "$built/installed" && find . -type f) <(echo ./bin/consumer)
}

echo "archive"
build static
(cd "$work/static" && quietly cpack -G TGZ && quietly cpack -G DEB)
unpacked="$work/elsewhere"
mkdir "$unpacked"
tar -xzf "$work"/static/*.tar.gz -C "$unpacked" --strip-components=1
mv "$work/static" "$work/gone"
diff <(cd / && "$unpacked/bin/vrn" run -e 'print(6 * 7);') <(echo 42)
if ldd "$unpacked/bin/vrn" | grep -E 'stdc|gcc|xxhash'; then exit 1; fi

echo "Debian package"
deb=$(echo "$work"/gone/*.deb)
dpkg-checkbuilddeps -d "$(dpkg-deb -f "$deb" Depends)" /dev/null
scratch=$work/root
mkdir -p "$scratch/var/lib/dpkg"/{info,updates,triggers}
touch "$scratch/var/lib/dpkg"/{status,available}
as_root=()
((EUID == 0)) || as_root=(sudo)
in_scratch() {
  quietly "${as_root[@]}" dpkg --root="$scratch" --force-depends --log=/dev/null "$@"
}
in_scratch --install "$deb"
diff <("$scratch/usr/bin/vrn" run -e 'print(6 * 7);') <(echo 42)
MANPATH=$scratch/usr/share/man man -w vrn >/dev/null
in_scratch --purge vornscript
diff <(cd "$scratch" && find . -path ./var -prune -o -print) <(echo .)

build shared -D BUILD_SHARED_LIBS=ON -D VRN_HOST=OFF -D VRN_TOOLS=OFF
quietly cmake --install "$work/shared" --prefix "$work/shared_prefix"
# Nothing is to be seen but what stands in the headers.
library=$(find "$work/shared_prefix" -name libvornscript.so)
nm -DC --defined-only "$library" | cut -d' ' -f3- >"$work/seen"
[[ -s $work/seen ]]
while read -r name; do
  grep -qrw "${name#vorn::}" include || { echo "$name is seen" && exit 1; }
done < <(sed -E 's/^(typeinfo( name)?|vtable) for //; s/^(vorn::[a-z_]+).*/\1/' "$work/seen" | sort -u)

for compiler in g++ clang++; do
  for prefix in "$unpacked" "$work/shared_prefix"; do
    echo "pkg-config $compiler $prefix"
    quietly tests/package/pkg_config.sh "$prefix" "$compiler" -fvisibility=hidden
  done
done

echo "libc++"
build libcxx -D CMAKE_CXX_COMPILER=clang++ -D CMAKE_CXX_FLAGS=-stdlib=libc++ -D VRN_INSTALL=OFF
tests/host_test.sh "$work/libcxx/vornscript"
tests/tool_test.sh "$work/libcxx/vrn"

consume find_package g++ 20 -D CMAKE_PREFIX_PATH="$unpacked"
consume find_package clang++ 23 -D CMAKE_PREFIX_PATH="$unpacked"
consume find_package g++ 23 -D CMAKE_PREFIX_PATH="$work/shared_prefix"
consume find_package clang++ 20 -D CMAKE_PREFIX_PATH="$work/shared_prefix"
consume add_subdirectory g++ 20
consume FetchContent clang++ 23
