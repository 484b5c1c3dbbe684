#!/usr/bin/env bash
# Builds everything for another machine (windows, arm64, s390x or i386), runs the tests there, under
# an emulator, and compares what the example and the test scripts print with what they print here:
# alike but for the sign of what is not a number. Installs what is missing.
set -euo pipefail
cd "$(dirname "$0")/.."

target=${1:-}
build=$PWD/build/$target
signal=TERM suffix=
case $target in
  windows)
    packages=(g++-mingw-w64-x86-64-posix wine wine64)
    # In a folder of Windows of its own, without a desktop. Ctrl-C ends a program there.
    # File names are those of the system in the locale's characters.
    emulator=(env LC_ALL=C.UTF-8 WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
      "WINEPREFIX=$build/wine" wine)
    signal=INT suffix=.exe
    ;;
  arm64)
    packages=(g++-aarch64-linux-gnu qemu-user)
    emulator=(qemu-aarch64 -L /usr/aarch64-linux-gnu)
    ;;
  s390x)
    packages=(g++-s390x-linux-gnu qemu-user)
    emulator=(qemu-s390x -L /usr/s390x-linux-gnu)
    ;;
  i386)
    # The kernel runs it; threads come to a halt under QEMU.
    packages=(g++-i686-linux-gnu)
    emulator=(env)
    ;;
  *) echo "Usage: $0 windows|arm64|s390x|i386" >&2 && exit 2 ;;
esac
scripts/install_packages.sh "${packages[@]}"
scripts/build.sh release
mkdir -p "$build"
[[ $target != windows ]] || "${emulator[@]}" wineboot --init

configure=(-G Ninja --toolchain "$PWD/cmake/toolchains/$target.cmake" -D CMAKE_BUILD_TYPE=Release)

# What the project needs, for that machine: GoogleTest from its source, and headers.
needed=$build/needed
mkdir -p "$needed/include" "$needed/share/cmake"
cp -r /usr/include/{xxhash.h,CLI,nlohmann} "$needed/include"
cp -r /usr/share/cmake/{CLI11,nlohmann_json} "$needed/share/cmake"
cmake "${configure[@]}" -S /usr/src/googletest -B "$build/googletest" -D BUILD_GMOCK=OFF \
  -D CMAKE_INSTALL_PREFIX="$needed" >/dev/null
cmake --build "$build/googletest" --target install >/dev/null

# Several sources at a time with little optimisation: that takes less time, and warns of what it does
# not see through.
cmake "${configure[@]}" -S . -B "$build" -D CMAKE_PREFIX_PATH="$needed" \
  -D CMAKE_COMPILE_WARNING_AS_ERROR=ON -D CMAKE_UNITY_BUILD=ON \
  -D CMAKE_CXX_FLAGS_RELEASE="-O1 -Wno-maybe-uninitialized" \
  -D CMAKE_CROSSCOMPILING_EMULATOR="$(IFS=';' && echo "${emulator[*]}")"
cmake --build "$build"
# Packages are the same for all machines.
ctest --test-dir "$build" --output-on-failure --parallel "$(nproc)" --exclude-regex '^package'

scripts/check_example.sh "$signal" "${emulator[@]}" "$build/vornscript$suffix"

# The tests compare what they expect, this all that is written, of each case.
cases=$build/cases
rm -rf "$cases"
mkdir "$cases"
find tests/scripts -name '*.vrs' | while read -r file; do
  name=$(tr / . <<<"${file%.vrs}")
  awk -v name="$cases/$name" '/^\/\/---/ { ++count } { print > (name "." count ".vrs") }' "$file"
done
run() { timeout 60 "$@" 2>&1 | scripts/mask_output.sh | sed 's/-nan/nan/g; s#Z:/#/#g'; }
compare() {  # OTHER... FILE
  local arguments=(run --verbose --timeout 3 "${@: -1}")
  diff <(run build/release/vrn "${arguments[@]}") <(run "${@:1:$#-1}" "${arguments[@]}") ||
    { echo "${@: -1}" && return 1; }
}
export -f run compare
printf '%s\n' "$cases"/*.vrs examples/test_simple.vrs |
  xargs --delimiter='\n' --max-args=1 --max-procs="$(nproc)" \
    bash -c 'compare "$@"' compare "${emulator[@]}" "$build/vrn$suffix"
