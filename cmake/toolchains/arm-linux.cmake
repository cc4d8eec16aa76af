# Cross build for a board with 32-bit ARM Linux, by the vendor's SDK or Debian's cross compiler:
#
#   cmake -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/arm-linux.cmake \
#         -DVORNEX_ARM_PREFIX=/opt/sdk/bin/arm-vendor-linux-gnueabi- -DCMAKE_SYSROOT=/opt/sdk/sysroot \
#         -DVORNEX_QT=4 -DQT4_ROOT=/opt/sdk/qt-4.8
#
# VORNEX_ARM_PREFIX  the compiler's path up to "gcc" (default arm-linux-gnueabihf-)
# VORNEX_ARM_SUFFIX  what follows "gcc" in the compilers' names: -11 for Debian's arm-linux-gnueabihf-g++-11, say
# VORNEX_ARM_FLAGS   what the SDK's manual compiles with: -march=armv7-a -mfpu=neon -mfloat-abi=softfp, say. They have
#                    to be those that the board's Qt was compiled with, -mfloat-abi above all
# CMAKE_SYSROOT      the board's headers and libraries (not needed when the compiler has a sysroot of its own)
# VORNEX_QEMU        qemu-arm, to run the tests on this machine (default: qemu-arm or qemu-arm-static, when installed;
#                    empty: none)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(VORNEX_ARM_PREFIX arm-linux-gnueabihf- CACHE STRING "Path and name of the cross compiler up to gcc")
set(VORNEX_ARM_SUFFIX "" CACHE STRING "What follows gcc and g++ in the compilers' names")
set(VORNEX_ARM_FLAGS "" CACHE STRING "Compiler options of the board")
# The little projects that CMake tries the compiler with read this file too, and get these variables handed on.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VORNEX_ARM_PREFIX VORNEX_ARM_SUFFIX VORNEX_ARM_FLAGS)

set(CMAKE_C_COMPILER "${VORNEX_ARM_PREFIX}gcc${VORNEX_ARM_SUFFIX}")
set(CMAKE_CXX_COMPILER "${VORNEX_ARM_PREFIX}g++${VORNEX_ARM_SUFFIX}")
set(CMAKE_C_FLAGS_INIT "${VORNEX_ARM_FLAGS}")
set(CMAKE_CXX_FLAGS_INIT "${VORNEX_ARM_FLAGS}")

# Header-only libraries have no architecture: when the sysroot lacks them, those of this machine serve. Everything
# else comes from the sysroot alone.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE BOTH)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

if(NOT DEFINED VORNEX_QEMU)
  find_program(VORNEX_QEMU NAMES qemu-arm qemu-arm-static DOC "Runs programs of the board on this machine")
endif()
if(VORNEX_QEMU AND CMAKE_SYSROOT)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${VORNEX_QEMU};-L;${CMAKE_SYSROOT}")
endif()
