# cpack -G DEB        one Debian package for each component
# cpack -G TGZ        everything below one folder, to be unpacked anywhere
# cpack -G TGZ -D CPACK_VORNEX_BOARD=ON    what the board needs, laid out for /usr/local, with checksums inside
#
# Two builds of one commit give the same bytes when SOURCE_DATE_EPOCH is set; see package/Stage.cmake.
set(VORNEX_MAINTAINER "The vornex-label-tcp developers <developers@vornex-label-tcp.dev>" CACHE STRING
    "Name and address of who builds the packages")

# CPack takes the architecture of this machine when nothing else is said, in a cross build as well.
execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -dumpmachine OUTPUT_VARIABLE triple OUTPUT_STRIP_TRAILING_WHITESPACE)
if(triple MATCHES "^arm.*gnueabihf$")
  set(vornex_arch armhf)
elseif(triple MATCHES "^arm.*gnueabi$")
  set(vornex_arch armel)
elseif(triple MATCHES "^(x86_64|aarch64)")
  string(REGEX REPLACE "^x86_64.*" amd64 vornex_arch "${triple}")
  string(REGEX REPLACE "^aarch64.*" arm64 vornex_arch "${vornex_arch}")
else()
  set(vornex_arch "${CMAKE_SYSTEM_PROCESSOR}")
endif()

set(CPACK_PACKAGE_NAME vornex-label-tcp)
set(CPACK_PACKAGE_VENDOR "vornex-label-tcp")
set(CPACK_PACKAGE_CONTACT "${VORNEX_MAINTAINER}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_FILE_NAME "vornex-label-tcp-${PROJECT_VERSION}-${vornex_arch}")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_STRIP_FILES ON)
set(CPACK_MONOLITHIC_INSTALL OFF)
set(CPACK_COMPONENTS_ALL runtime dev)
if(VORNEX_TOOLS)
  list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(vornex_with_edge)
  list(APPEND CPACK_COMPONENTS_ALL edge)
endif()
set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/cmake/package/Generators.cmake")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package/Stage.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/package/Repack.cmake")
set(CPACK_VORNEX_SOURCE "${PROJECT_SOURCE_DIR}")
set(CPACK_VORNEX_ARCH "${vornex_arch}")

set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE "${vornex_arch}")
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(this_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME "libvornex-label-tcp${PROJECT_VERSION_MAJOR}")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION
    "A host loads this library, hands it the labels of a controller and the bytes\nthat come over TCP, and reads and writes variables by name.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME libvornex-label-tcp-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} ${this_version}, qtbase5-dev")
set(CPACK_DEBIAN_DEV_PACKAGE_RECOMMENDS vornex-label-tools)  # whose pages its own pages point to
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "Headers, CMake package, pkg-config file and the documentation for hosts of the\ndriver library.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME vornex-label-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} ${this_version}")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION
    "vornex-label reads, writes and watches a controller's variables by label;\nvornex-sim is a controller to try it on.")
set(CPACK_DEBIAN_EDGE_PACKAGE_NAME vornex-edge)
set(CPACK_DEBIAN_EDGE_PACKAGE_SECTION net)
set(CPACK_DEBIAN_EDGE_PACKAGE_DEPENDS "${CPACK_DEBIAN_RUNTIME_PACKAGE_NAME} ${this_version}")
set(CPACK_DEBIAN_EDGE_PACKAGE_RECOMMENDS vornex-label-tools)  # whose pages are its manual
set(CPACK_DEBIAN_EDGE_PACKAGE_SUGGESTS mosquitto)
set(CPACK_COMPONENT_EDGE_DESCRIPTION
    "vornex-edge publishes a controller's variables to an MQTT broker as Sparkplug B\nand takes commands back, one process for each controller.")

# The library's name is its package's; hosts that link it get the dependency from here.
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY >=)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/package/triggers")
if(CMAKE_CROSSCOMPILING)
  # dpkg-shlibdeps knows this machine's libraries alone, so a package for another one names Debian 12's itself.
  set(c_library "libc6 (>= 2.36), libgcc-s1 (>= 3.5), libstdc++6 (>= 12), libqt5core5a (>= 5.15.2)")
  set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libc6 (>= 2.4), libstdc++6 (>= 4.1.1), libqt5core5a (>= 5.15.2)")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS}, ${c_library}")
else()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
endif()
include(CPack)
