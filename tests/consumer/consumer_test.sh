#!/bin/sh
# consumer_test.sh REPOSITORY WORK [BUILD]: a host's own project, built and run with the lines that README.md shows, by
# CMake and by pkg-config. With BUILD the driver is first installed from there, into WORK; without, it is in the system.
set -eu
repository=$1
work=$2
rm -rf "$work"
mkdir -p "$work/panel"
if [ -n "${3:-}" ]; then
  for component in runtime dev tools; do
    cmake --install "$3" --component "$component" --prefix "$work/installed" >/dev/null
  done
  export CMAKE_PREFIX_PATH="$work/installed"
  PKG_CONFIG_PATH=$(dirname "$(find "$work/installed" -name vornex_label_tcp.pc)")
  LD_LIBRARY_PATH=$(dirname "$(find "$work/installed" -name libvornex_label_tcp.so.1)")
  export PKG_CONFIG_PATH LD_LIBRARY_PATH
fi

cp "$repository/tests/consumer/panel.cpp" "$work/panel"
cd "$work/panel"
sed -n '/^```cmake$/,/^```$/{/^```/d;p}' "$repository/README.md" >CMakeLists.txt
grep -F 'pkg-config --cflags' "$repository/README.md" >build.sh

{ cmake -B build && cmake --build build; } >build.log 2>&1 || { cat build.log; exit 1; }
build/panel
echo "ok    find_package, as README.md shows it"
sh -eu build.sh
./panel
echo "ok    pkg-config, as README.md shows it"
