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

# vornex-edge takes two libraries more, which boards need not have: vornex_with_edge says whether it is built.
set(vornex_with_edge OFF)
if(VORNEX_TOOLS AND VORNEX_EDGE)
  find_package(Protobuf QUIET)
  find_package(ZLIB QUIET)
  find_path(MOSQUITTO_INCLUDE_DIR mosquitto.h DOC "Folder that holds mosquitto.h")
  find_library(MOSQUITTO_LIBRARY mosquitto DOC "libmosquitto")
  if(TARGET protobuf::libprotobuf-lite AND TARGET protobuf::protoc AND TARGET ZLIB::ZLIB AND MOSQUITTO_INCLUDE_DIR AND MOSQUITTO_LIBRARY)
    set(vornex_with_edge ON)
    add_library(vornex_mosquitto INTERFACE)
    target_include_directories(vornex_mosquitto SYSTEM INTERFACE "${MOSQUITTO_INCLUDE_DIR}")
    target_link_libraries(vornex_mosquitto INTERFACE "${MOSQUITTO_LIBRARY}")
  elseif(VORNEX_EDGE STREQUAL "auto")
    message(STATUS "No vornex-edge: it needs libmosquitto, protobuf-lite, protoc and zlib (Debian: libmosquitto-dev, "
                   "libprotobuf-dev, protobuf-compiler)")
  else()
    message(FATAL_ERROR "vornex-edge needs libmosquitto, protobuf-lite, protoc and zlib (Debian: libmosquitto-dev, "
                        "libprotobuf-dev, protobuf-compiler); -DVORNEX_EDGE=OFF leaves it out")
  endif()
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
