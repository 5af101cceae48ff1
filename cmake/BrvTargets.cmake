# Compile and link options of every target of ours, and the functions that make the three kinds of them.

configure_file(${CMAKE_SOURCE_DIR}/cmake/Version.h.in ${CMAKE_BINARY_DIR}/generated/automation/Version.h @ONLY)

include_directories(${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
add_compile_definitions(UNICODE _UNICODE WINVER=0x0A00 _WIN32_WINNT=0x0A00)
add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wall> $<$<COMPILE_LANGUAGE:CXX>:-Wextra>
    $<$<COMPILE_LANGUAGE:CXX>:-ffunction-sections> $<$<COMPILE_LANGUAGE:CXX>:-fdata-sections>)

# Most of a compilation is the reading of headers and the making of the same templates: several sources of a target are compiled as one.
# OFF compiles each apart: quicker for whoever changes one file again and again, and shows whether each includes what it needs.
option(BRV_JOIN_SOURCES "Compile several sources of a target as one" ON)
set(CMAKE_UNITY_BUILD ${BRV_JOIN_SOURCES})
set(CMAKE_UNITY_BUILD_BATCH_SIZE 24)
if(BRV_JOIN_SOURCES)
    # It takes a source that is included for a header.
    add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
endif()

# A build whose every program and DLL ends at the first undefined behaviour, wrong index or damaged block of the heap, for scripts/test-traps.
# MinGW brings no run-time library for the sanitizers, so a check that fails is an instruction that the processor does not have.
option(BRV_TRAPS "End at undefined behaviour and at damage to the heap" OFF)
if(BRV_TRAPS)
    # All that GCC counts as undefined but vptr, which it drops by itself where there is no run-time library. What it counts apart:
    # conversions that do not fit and indices behind the end of what closes a structure. Division of floating-point numbers by zero is
    # left out: it has a result, which the conversion to an integer is then caught at.
    set(brv_traps -fsanitize=undefined,float-cast-overflow,bounds-strict -fsanitize-undefined-trap-on-error -fstack-protector-strong)
    # -O1 and no common tails, so that a trap tells the line that it is for.
    add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-O1> $<$<COMPILE_LANGUAGE:C,CXX>:-g> $<$<COMPILE_LANGUAGE:C,CXX>:-fno-crossjumping>
        $<$<COMPILE_LANGUAGE:C,CXX>:-fno-omit-frame-pointer>)
    foreach(option IN LISTS brv_traps)
        add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:${option}>)
    endforeach()
    add_link_options(-fstack-protector-strong)
    add_compile_definitions($<$<COMPILE_LANGUAGE:CXX>:_GLIBCXX_ASSERTIONS>)
    # Takes the place of new and delete in each program and DLL from here on.
    add_library(brv_checked_heap OBJECT ${CMAKE_SOURCE_DIR}/tests/unit/traps/CheckedHeap.cpp)
    link_libraries(brv_checked_heap)
    set(brv_heap_sweep ${CMAKE_SOURCE_DIR}/tests/unit/traps/HeapSweep.cpp)
endif()

# No run-time library beside a DLL or program; loaded at a random address; data not executable.
# The reading of a type library and the .def files need names without the @bytes of stdcall.
add_link_options(-static -static-libgcc -static-libstdc++
    -Wl,--dynamicbase -Wl,--nxcompat -Wl,--disable-auto-image-base -Wl,--gc-sections
    $<$<CONFIG:Release>:-s>)
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    add_link_options(-Wl,--high-entropy-va)
else()
    add_link_options(-Wl,--enable-stdcall-fixup)
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(brv_widl_width --win64)
    find_program(BRV_WIDL NAMES x86_64-w64-mingw32-widl widl)
else()
    set(brv_widl_width --win32)
    find_program(BRV_WIDL NAMES i686-w64-mingw32-widl widl)
endif()
if(NOT BRV_WIDL)
    message(FATAL_ERROR "widl, the IDL compiler of MinGW-w64, was not found (Debian: mingw-w64-tools)")
endif()


# The standard type library that every type library refers to: Windows' own, else Wine's.
set(brv_stdole_folders /usr/lib/i386-linux-gnu/wine/i386-windows /usr/lib/x86_64-linux-gnu/wine/x86_64-windows
    /usr/lib/wine/i386-windows /usr/lib/wine/x86_64-windows /usr/lib32/wine/i386-windows)
if(DEFINED ENV{SystemRoot})
    list(PREPEND brv_stdole_folders "$ENV{SystemRoot}/System32")
endif()
find_path(BRV_STDOLE_FOLDER NAMES stdole2.tlb NO_CMAKE_FIND_ROOT_PATH PATHS ${brv_stdole_folders})
# With BRV_INSTALLING the library is still being installed, and the target "groundwork", which needs none, is all that is built.
if(NOT BRV_STDOLE_FOLDER AND NOT DEFINED ENV{BRV_INSTALLING})
    message(FATAL_ERROR "stdole2.tlb, the standard type library, was not found (Debian: libwine:i386)")
endif()
list(TRANSFORM brv_stdole_folders PREPEND -L)
set(brv_widl ${BRV_WIDL} ${brv_widl_width} -I${CMAKE_SOURCE_DIR}/cmake/idl -I${CMAKE_SOURCE_DIR}/src
    -I${CMAKE_BINARY_DIR}/generated ${brv_stdole_folders})

# Most of a test's compilation is the reading of the platform's and the test library's headers: that is done once for all of them. OFF
# shows whether each file includes what it needs. The component's sources do without: read in this way, GCC 12 no longer knows
# the library's headers for such, and warns of what it takes for wrong there (memcpy into a text of one character).
option(BRV_PRECOMPILED_HEADERS "Read the platform's headers once for all tests" ON)

set(brv_test_options -Og -fno-function-sections -fno-data-sections)
function(brv_precompile_test name)
    # What a test itself does takes no time, its compilation does; and the linker takes twice as long for a section a function.
    target_compile_options(${name} PRIVATE ${brv_test_options})
    if(NOT BRV_PRECOMPILED_HEADERS)
        return()
    endif()
    set(owner brv_precompiled_tests)
    if(NOT TARGET ${owner})
        file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/generated/${owner}.cpp CONTENT "// The headers are all.\n")
        add_library(${owner} OBJECT ${CMAKE_BINARY_DIR}/generated/${owner}.cpp)
        target_link_libraries(${owner} PRIVATE gtest)
        target_compile_options(${owner} PRIVATE ${brv_test_options})
        target_precompile_headers(${owner} PRIVATE
            <windows.h> <ole2.h> <oleauto.h> <algorithm> <functional> <map> <memory> <string> <vector> <gtest/gtest.h>)
    endif()
    target_precompile_headers(${name} REUSE_FROM ${owner})
endfunction()

# brv_add_type_library(<name> <file.idl>)
# Compiles the IDL to <name>.tlb, <name>_h.h and <name>_i.c in the build folder. Defines the target <name>_idl for
# add_dependencies and the variable <name>_IDL_FOLDER (include path, also for the resource script) at the caller's.
# The file begins with import "oaidl.idl"; its library says importlib("stdole2.tlb").
function(brv_add_type_library name idl)
    set(folder ${CMAKE_BINARY_DIR}/generated/${name}_idl)
    set(outputs ${folder}/${name}.tlb ${folder}/${name}_h.h ${folder}/${name}_i.c)
    get_filename_component(idl ${idl} ABSOLUTE)
    add_custom_command(OUTPUT ${outputs}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
        COMMAND ${brv_widl} -t -o ${folder}/${name}.tlb ${idl}
        COMMAND ${brv_widl} -h -o ${folder}/${name}_h.h ${idl}
        COMMAND ${brv_widl} -u -o ${folder}/${name}_i.c ${idl}
        DEPENDS ${idl} ${CMAKE_BINARY_DIR}/generated/automation/Version.h
        COMMENT "Type library ${name}.tlb"
        VERBATIM)
    add_custom_target(${name}_idl DEPENDS ${outputs})
    set(${name}_IDL_FOLDER ${folder} PARENT_SCOPE)
endfunction()

# brv_add_com_server(<name> [TYPE_LIBRARY] SOURCES ... DEF x.def RC x.rc LIBRARIES ...)
# An in-process server <name>.dll in the bin folder. With TYPE_LIBRARY its resource script includes what brv_add_type_library(<name> ...)
# has made.
function(brv_add_com_server name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "TYPE_LIBRARY" "DEF" "SOURCES;RC;LIBRARIES")
    add_library(${name} SHARED ${arg_SOURCES} ${CMAKE_SOURCE_DIR}/src/automation/ThreadStorage.cpp ${arg_DEF} ${arg_RC})
    set_target_properties(${name} PROPERTIES PREFIX "" IMPORT_PREFIX "lib" OUTPUT_NAME ${name})
    if(arg_TYPE_LIBRARY)
        add_dependencies(${name} ${name}_idl)
        target_include_directories(${name} PRIVATE ${CMAKE_BINARY_DIR}/generated/${name}_idl)
        set_property(SOURCE ${arg_RC} APPEND PROPERTY OBJECT_DEPENDS ${CMAKE_BINARY_DIR}/generated/${name}_idl/${name}.tlb)
    endif()
    brv_resource_inputs(${arg_RC})
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
    # No function of it is called for an exception of the processor: Windows then calls none, whatever somebody has written into the chain of
    # handlers. 64-bit programs have no such chain.
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        target_link_options(${name} PRIVATE -Wl,--no-seh)
    endif()
    # Sections that begin at whole pages of the file are mapped, not read, when the server is loaded.
    target_link_options(${name} PRIVATE -Wl,--file-alignment,4096)
endfunction()

# brv_add_program(<name> [WINDOWED] SOURCES ... [RC x.rc] LIBRARIES ...)
# <name>.exe in the bin folder with wmain as its entry (wWinMain with WINDOWED).
function(brv_add_program name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "WINDOWED" "" "SOURCES;RC;LIBRARIES")
    add_executable(${name} ${arg_SOURCES} ${arg_RC})
    if(arg_WINDOWED)
        set_target_properties(${name} PROPERTIES WIN32_EXECUTABLE ON)
    endif()
    brv_resource_inputs(${arg_RC})
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_options(${name} PRIVATE -municode)
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
endfunction()

# brv_add_test(<name> SOURCES ... [APP] [SHARED] [SCREENLESS] [RC x.rc] [LIBRARIES ...] [LABELS ...] [ARGUMENTS ...] [TIMEOUT seconds])
# A GoogleTest program and one ctest entry for it: each start of Wine costs more than most tests. It is linked with what is in
# tests/support, whose main function it has unless a source brings one. With APP it is a program with a title, its name, and a
# version, 1.2.3 (see automation/App.h). SHARED: takes long and hardly depends on the width, so that ./test runs a
# third of its cases in the second one, without a display. SCREENLESS: looks at nothing that is drawn, so that it always runs
# without one. The label is the last folder of the caller's path.
function(brv_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "APP;SHARED;SCREENLESS" "TIMEOUT" "SOURCES;RC;LIBRARIES;LABELS;ARGUMENTS")
    if(arg_APP)
        configure_file(${CMAKE_SOURCE_DIR}/cmake/TestApp.cpp.in ${CMAKE_BINARY_DIR}/generated/${name}App.cpp @ONLY)
        list(APPEND arg_SOURCES ${CMAKE_BINARY_DIR}/generated/${name}App.cpp)
    endif()
    add_executable(${name} ${arg_SOURCES} ${brv_heap_sweep} ${arg_RC})
    brv_resource_inputs(${arg_RC})
    target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE test_support ${arg_LIBRARIES})
    brv_precompile_test(${name})
    add_test(NAME ${name} COMMAND ${name} ${arg_ARGUMENTS})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 120)
    endif()
    if(BRV_TRAPS)
        math(EXPR arg_TIMEOUT "3 * ${arg_TIMEOUT}")
    endif()
    if(NOT arg_LABELS)
        get_filename_component(arg_LABELS ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    endif()
    # What may take long is begun first, so that nothing long is left for the end.
    # Wine's debugger ends a program that crashed, at times with 0.
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} COST ${arg_TIMEOUT} LABELS "${arg_LABELS}"
        FAIL_REGULAR_EXPRESSION "Unhandled exception:")
    math(EXPR limit "${arg_TIMEOUT} - 10")
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT BRV_TIME_LIMIT=${limit})
    if(arg_SHARED)
        set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT BRV_IS_SHARED=1)
    endif()
    if(arg_SCREENLESS)
        set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT BRV_SCREENLESS=1)
    endif()
endfunction()

# brv_add_script_test(<name> [SCREENLESS] COMMAND script arguments... [TIMEOUT seconds] [LABELS ...])
# A test that a script makes of whole programs. It is left out by ./test --quick. SCREENLESS: as above; prefixes that the script
# makes draw nothing either.
function(brv_add_script_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "SCREENLESS" "TIMEOUT" "COMMAND;LABELS")
    add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/cmake/in-slot ${CMAKE_CURRENT_SOURCE_DIR}/${arg_COMMAND})
    get_filename_component(folder ${CMAKE_CURRENT_SOURCE_DIR} NAME)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${arg_TIMEOUT} COST ${arg_TIMEOUT} LABELS "${folder};system;${arg_LABELS}")
    if(arg_SCREENLESS)
        set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT BRV_SCREENLESS=1)
    endif()
endfunction()

# windres reports no dependencies: a resource script is compiled again when anything that it may include has changed.
function(brv_resource_inputs)
    foreach(rc IN LISTS ARGN)
        get_filename_component(folder ${rc} ABSOLUTE)
        get_filename_component(folder ${folder} DIRECTORY)
        file(GLOB inputs CONFIGURE_DEPENDS ${folder}/*.manifest ${folder}/*.ico ${folder}/*.bmp ${folder}/*.png ${folder}/*.h)
        set_property(SOURCE ${rc} APPEND PROPERTY OBJECT_DEPENDS ${inputs} ${CMAKE_BINARY_DIR}/generated/automation/Version.h)
    endforeach()
endfunction()
