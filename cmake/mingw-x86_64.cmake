# 64-bit Windows programs from a Linux machine. Executables run under Wine (see cmake/wine-run).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(BRV_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-cross.cmake)
