# Other people's libraries that tools, tests, benchmarks and fuzzers use, found here and nowhere else. The driver itself
# needs QtCore alone (VornexQt.cmake).
find_package(Threads REQUIRED)

# vornex_header_library(TARGET NAME HEADER PACKAGE): a library of headers; their warnings are not ours. NAME_INCLUDE_DIR
# says where it lies when the compiler and the sysroot do not know it.
function(vornex_header_library target name header package)
  find_path(${name}_INCLUDE_DIR ${header} DOC "Folder that holds ${header}")
  if(NOT ${name}_INCLUDE_DIR)
    message(FATAL_ERROR "${header} is missing (Debian: ${package}); -D${name}_INCLUDE_DIR=DIR says where it is")
  endif()
  add_library(${target} INTERFACE)
  target_include_directories(${target} SYSTEM INTERFACE "${${name}_INCLUDE_DIR}")
endfunction()

if(VORNEX_TOOLS)
  vornex_header_library(vornex_cli11 CLI11 CLI/CLI.hpp libcli11-dev)
  vornex_header_library(vornex_json JSON nlohmann/json.hpp nlohmann-json3-dev)
  vornex_header_library(vornex_asio ASIO asio.hpp libasio-dev)
  target_compile_definitions(vornex_asio INTERFACE ASIO_STANDALONE)
  target_link_libraries(vornex_asio INTERFACE Threads::Threads)
endif()
if(VORNEX_TESTS)
  find_package(GTest REQUIRED)
  include(GoogleTest)
endif()
if(VORNEX_BENCH AND NOT VORNEX_BENCH_COUNTS_ONLY)
  # The peers are Qt 5 and libmodbus: where they are missing, only the driver's own benchmarks are built.
  find_package(Qt5SerialBus QUIET)
  find_package(PkgConfig QUIET)
  if(PKG_CONFIG_FOUND)
    pkg_check_modules(libmodbus QUIET IMPORTED_TARGET libmodbus)
  endif()
endif()
