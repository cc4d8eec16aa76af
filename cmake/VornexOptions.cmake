# vornex_options: what every target of ours is compiled with. Other people's code never sees it.
add_library(vornex_options INTERFACE)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

target_compile_options(vornex_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
                       -Wnon-virtual-dtor -Wcast-align -Werror)

if(VORNEX_SANITIZE STREQUAL "address")
  set(vornex_sanitizer -fsanitize=address,undefined -fno-sanitize-recover=all)
elseif(VORNEX_SANITIZE STREQUAL "thread")
  set(vornex_sanitizer -fsanitize=thread)
elseif(VORNEX_SANITIZE)
  message(FATAL_ERROR "VORNEX_SANITIZE is '${VORNEX_SANITIZE}'; it takes address, thread or nothing")
endif()
if(vornex_sanitizer)
  target_compile_options(vornex_options INTERFACE ${vornex_sanitizer} -fno-omit-frame-pointer -O1 -g1)
  target_link_options(vornex_options INTERFACE ${vornex_sanitizer})
endif()
