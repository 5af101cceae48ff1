# GoogleTest, compiled with the compiler of this build from the source that the distribution's package installs.
# Elsewhere: -DBRV_GOOGLETEST=<folder of a GoogleTest source tree>. Without it the tests are left out.
set(BRV_GOOGLETEST /usr/src/googletest CACHE PATH "Source tree of GoogleTest")

if(EXISTS ${BRV_GOOGLETEST}/CMakeLists.txt)
    # The win32 thread model of the compiler has no pthreads to look for.
    set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
    add_subdirectory(${BRV_GOOGLETEST} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
    foreach(library gtest gtest_main gmock gmock_main)
        target_compile_options(${library} PRIVATE -Og)  # its own time is nothing beside that of its compilation
        target_include_directories(${library} BEFORE PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/cmake/googletest)
    endforeach()
    set(BRV_HAVE_GOOGLETEST ON)
else()
    message(STATUS "No GoogleTest source in ${BRV_GOOGLETEST}: the tests are not built")
    set(BRV_HAVE_GOOGLETEST OFF)
endif()
