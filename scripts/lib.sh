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
    $as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing; } \
    >"${TMPDIR:-/tmp}/vornex-apt.log" 2>&1 || { cat "${TMPDIR:-/tmp}/vornex-apt.log" >&2; exit 1; }
}

# What building library, tools and tests takes.
need_build() {
  need cmake ninja-build g++ pkg-config qtbase5-dev libcli11-dev nlohmann-json3-dev libasio-dev libgtest-dev
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
