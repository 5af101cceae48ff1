# 32-bit Windows programs from a Linux machine. Executables run under Wine (see cmake/wine-run).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86)
set(BRV_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-cross.cmake)
