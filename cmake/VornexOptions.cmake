# vornex_options: what every target of ours is compiled with. Other people's code never sees it.
add_library(vornex_options INTERFACE)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

target_compile_options(vornex_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                       -Wnon-virtual-dtor -Wcast-align -Werror)

# The same bytes wherever the sources lie.
target_compile_options(vornex_options INTERFACE "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=."
                       "-ffile-prefix-map=${PROJECT_BINARY_DIR}=build")
# g++ notes on ARM that it passed some templates otherwise before version 7; nothing here is mixed with such code.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(vornex_options INTERFACE -Wno-psabi)
endif()

if(VORNEX_SANITIZE STREQUAL "address")
  # Not vptr: it opens a pipe to look at memory, and takes a good object for a bad one where no descriptor is left, which
  # is what the simulator is tried with.
  set(vornex_sanitizer -fsanitize=address,undefined -fno-sanitize=vptr -fno-sanitize-recover=all)
elseif(VORNEX_SANITIZE STREQUAL "thread")
  set(vornex_sanitizer -fsanitize=thread)
elseif(VORNEX_SANITIZE)
  message(FATAL_ERROR "VORNEX_SANITIZE is '${VORNEX_SANITIZE}'; it takes address, thread or nothing")
endif()
if(vornex_sanitizer)
  target_compile_options(vornex_options INTERFACE ${vornex_sanitizer} -fno-omit-frame-pointer -O1 -g1)
  target_link_options(vornex_options INTERFACE ${vornex_sanitizer})
endif()

# vornex_runnable(TARGET RESULT): what a test hands to exec to run TARGET; in a cross build a script that calls the
# emulator, because the machine cannot.
function(vornex_runnable target result)
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    set(script "${CMAKE_CURRENT_BINARY_DIR}/emulated/${target}")
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR " " emulator)
    file(GENERATE OUTPUT "${script}" CONTENT "#!/bin/sh\nexec ${emulator} $<TARGET_FILE:${target}> \"$@\"\n"
         FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
    set(${result} "${script}" PARENT_SCOPE)
  else()
    set(${result} "$<TARGET_FILE:${target}>" PARENT_SCOPE)
  endif()
endfunction()
