# Shared by the scripts of this repository: source it after `set -eu`, from the repository's root.

# need PACKAGE...: installs the Debian packages that are missing.
need() {
  missing=
  for package in "$@"; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing="$missing $package"
  done
  [ -z "$missing" ] && return 0
  echo "Installing$missing"
  as_root=
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "Not root: please run  apt-get install$missing" >&2; exit 1; }
    as_root=sudo
  fi
  # shellcheck disable=SC2086
  { $as_root apt-get update -qq &&
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq -oDPkg::Lock::Timeout=300 --no-install-recommends $missing; } \
    >"${TMPDIR:-/tmp}/vornex-apt.log" 2>&1 || { cat "${TMPDIR:-/tmp}/vornex-apt.log" >&2; exit 1; }
}

# What building library, tools and tests takes.
need_build() {
  need cmake ninja-build g++ pkg-config qtbase5-dev libcli11-dev nlohmann-json3-dev libasio-dev libgtest-dev \
    libmosquitto-dev libprotobuf-dev protobuf-compiler libqwt-qt5-dev libqt5svg5-dev
}

# build FOLDER [CMAKE OPTION...]: configures and builds; prints the log only when it fails.
build() {
  build_only all "$@"
}

# build_only "TARGET..." FOLDER [CMAKE OPTION...]: the same for some targets.
build_only() {
  targets=$1
  folder=$2
  shift 2
  mkdir -p "$folder"
  # shellcheck disable=SC2086
  if ! { cmake -G Ninja -B "$folder" "$@" && cmake --build "$folder" --target $targets; } >"$folder/build.log" 2>&1; then
    grep -E 'error|FAILED|CMake Error' -A 5 "$folder/build.log" >&2 || tail -n 40 "$folder/build.log" >&2
    echo "The build failed; its log is $folder/build.log" >&2
    exit 1
  fi
}

# qt4_roots [ARCHIVE-OR-FOLDER...]: one line "ARCHITECTURE FOLDER" for each Qt 4.8 given, where ARCHITECTURE is x86_64 or
# armhf and FOLDER is what QT4_ROOT takes. Archives are unpacked below build-qt4/. Without arguments: every archive in the
# folder QT4_ARCHIVES, default ../shared/qt4 beside the checkout; no line when there is none.
qt4_roots() {
  if [ $# -eq 0 ]; then
    set -- "${QT4_ARCHIVES:-../shared/qt4}"/*.tar.xz
    [ -e "$1" ] || return 0
  fi
  for given in "$@"; do
    folder=$given
    if [ ! -d "$given" ]; then
      [ -r "$given" ] || { echo "$given: no archive or folder of Qt 4.8 there" >&2; exit 1; }
      folder=build-qt4/$(basename "$given" .tar.xz)
      if [ ! -e "$folder/.complete" ] || [ "$given" -nt "$folder/.complete" ]; then
        rm -rf "$folder"
        mkdir -p "$folder"
        tar -xf "$given" -C "$folder" || { echo "$given: cannot be unpacked" >&2; exit 1; }
        touch "$folder/.complete"
      fi
    fi
    library=$(find "$folder" -maxdepth 3 -path '*/lib/libQtCore.so' | head -n 1)
    [ -n "$library" ] || { echo "$given: holds no lib/libQtCore.so" >&2; exit 1; }
    root=$(cd "$(dirname "$library")/.." && pwd)
    grep -q 'QT_VERSION_STR *"4\.8\.' "$root/include/QtCore/qglobal.h" ||
      { echo "$given: include/QtCore/qglobal.h is not Qt 4.8's" >&2; exit 1; }
    case $(readelf -h "$library" | sed -n 's/^ *Machine: *//p') in
      *X86-64) echo "x86_64 $root" ;;
      ARM) echo "armhf $root" ;;
      *) echo "$given: is neither for x86-64 nor for 32-bit ARM" >&2; exit 1 ;;
    esac
  done
}

# qt4_root ARCHITECTURE: the folder of the first Qt 4.8 found for it, as above; nothing when there is none.
qt4_root() {
  qt4_found=$(qt4_roots) || exit 1
  printf '%s\n' "$qt4_found" | sed -n "s/^$1 //p" | head -n 1
}

# build_for_board FOLDER QT4_ROOT [CMAKE OPTION...]: builds for 32-bit ARM against that Qt 4.8, with the oldest compiler
# that Debian has for it. Programs run by `qemu-arm -L build-armhf-sysroot`.
build_for_board() {
  need g++-11-arm-linux-gnueabihf qemu-user binutils
  scripts/make-armhf-sysroot build-armhf-sysroot >&2
  board_folder=$1
  board_qt=$2
  shift 2
  build "$board_folder" -DVORNEX_QT=4 -DQT4_ROOT="$board_qt" -DVORNEX_ARM_SUFFIX=-11 \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/toolchains/arm-linux.cmake" -DCMAKE_SYSROOT="$PWD/build-armhf-sysroot" "$@"
}
