option(OSSA_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)
option(OSSA_PRECOMPILED_HEADERS "Precompile the Qt headers" ON)
option(OSSA_FUZZERS "Build tests/fuzz; needs clang and the sanitizers fuzzer-no-link,address" OFF)
set(OSSA_SANITIZERS "" CACHE STRING "Comma-separated sanitizers, e.g. address,undefined")

find_program(OSSA_CCACHE ccache)
if(OSSA_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER
        /usr/bin/env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${OSSA_CCACHE})
endif()
find_program(OSSA_MOLD mold)

add_library(ossa_build_flags INTERFACE)
target_compile_definitions(ossa_build_flags INTERFACE
    QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_FOREACH
    QT_DISABLE_DEPRECATED_BEFORE=0x050F00
    $<$<CONFIG:Debug>:QT_FORCE_ASSERTS>)
target_compile_options(ossa_build_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    -Wformat=2 -Wundef -Wextra-semi -Wzero-as-null-pointer-constant -Wmissing-declarations
    $<$<CXX_COMPILER_ID:GNU>:-Wsuggest-override;-Wduplicated-cond;-Wlogical-op;-fpch-preprocess>
    $<$<CXX_COMPILER_ID:Clang>:-Winconsistent-missing-destructor-override;-Xclang;-fno-pch-timestamp>
    $<$<BOOL:${OSSA_WARNINGS_AS_ERRORS}>:-Werror;-Wno-error=deprecated-declarations>)
target_link_options(ossa_build_flags INTERFACE LINKER:--as-needed)
if(OSSA_MOLD)
    target_link_options(ossa_build_flags INTERFACE -fuse-ld=mold)
endif()
if(OSSA_SANITIZERS)
    # Instrumented code misleads this warning, also in the standard library's headers.
    target_compile_options(ossa_build_flags INTERFACE
        -fsanitize=${OSSA_SANITIZERS}
        $<$<CXX_COMPILER_ID:GNU>:-Wno-error=maybe-uninitialized>)
    target_link_options(ossa_build_flags INTERFACE -fsanitize=${OSSA_SANITIZERS})
else()
    target_link_options(ossa_build_flags INTERFACE LINKER:--no-undefined)
endif()

# Where things are installed: libraries of ours in a folder of their own, plug-ins below it.
include(GNUInstallDirs)
set(OSSA_LIBRARY_DIR ${CMAKE_INSTALL_LIBDIR}/ossa)
set(OSSA_PLUGIN_DIR ${OSSA_LIBRARY_DIR}/plugins)
file(RELATIVE_PATH OSSA_LIBRARIES_FROM_PROGRAM /${CMAKE_INSTALL_BINDIR} /${OSSA_LIBRARY_DIR})
file(RELATIVE_PATH OSSA_PLUGINS_FROM_PROGRAM /${CMAKE_INSTALL_BINDIR} /${OSSA_PLUGIN_DIR})

# HEADER: ossa_pch.h, or ossa_pch_model.h for what links no widgets.
function(ossa_precompile target header)
    if(OSSA_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/${header})
    endif()
endfunction()

# Shared host library NAME, exported symbols marked <NAME>_EXPORT in upper case. Headers are
# included as "NAME/Header.h". Only what stands after USES can be included or linked. PRECOMPILED:
# the header that all its sources share.
function(ossa_add_library name)
    cmake_parse_arguments(arg "" "PRECOMPILED" "SOURCES;USES;PRIVATE" ${ARGN})
    add_library(${name} SHARED ${arg_SOURCES})
    generate_export_header(${name}
        EXPORT_FILE_NAME ${PROJECT_BINARY_DIR}/export/${name}/${name}_export.h)
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/host> $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/export>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/ossa>)
    target_link_libraries(${name} PUBLIC ${arg_USES} PRIVATE ossa_build_flags ${arg_PRIVATE})
    if(arg_PRECOMPILED)
        ossa_precompile(${name} ${arg_PRECOMPILED})
    endif()
    set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN")
    install(TARGETS ${name} EXPORT OssaTargets
        LIBRARY DESTINATION ${OSSA_LIBRARY_DIR} COMPONENT program)
endfunction()

# A program of ours, beside its libraries.
function(ossa_install_program name)
    set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/${OSSA_LIBRARIES_FROM_PROGRAM}")
    install(TARGETS ${name} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT program)
endfunction()

# Plug-in NAME: a MODULE of NAME_door.cpp around an OBJECT library NAME_code, so that tests can
# link the code that the application only ever loads.
function(ossa_add_plugin name)
    cmake_parse_arguments(arg "" "" "SOURCES;USES" ${ARGN})
    add_library(${name}_code OBJECT ${arg_SOURCES})
    target_include_directories(${name}_code PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${name}_code PUBLIC ${arg_USES} PRIVATE ossa_build_flags)
    ossa_precompile(${name}_code ossa_pch.h)
    add_library(${name} MODULE $<TARGET_OBJECTS:${name}_code>)
    target_link_libraries(${name} PRIVATE ${arg_USES} ossa_build_flags)
    set_target_properties(${name} PROPERTIES
        PREFIX "" AUTOMOC OFF LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/plugins
        INSTALL_RPATH "$ORIGIN/..")
    install(TARGETS ${name} LIBRARY DESTINATION ${OSSA_PLUGIN_DIR} COMPONENT program)
endfunction()

# Tests of what links no widgets say so: their main() makes no QApplication. SERVICES is the header,
# without ".h", of the object that main() makes after it: the services which the tests ask for.
function(ossa_add_test name)
    cmake_parse_arguments(arg "NO_WIDGETS" "SERVICES" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ossa_build_flags ossa_test_support Qt5::Test ${arg_LINK})
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/main.cpp)
    if(arg_SERVICES)
        get_filename_component(services ${arg_SERVICES} NAME)
        target_compile_definitions(${name} PRIVATE OSSA_TEST_SERVICES=${services}
            OSSA_TEST_SERVICES_HEADER="${arg_SERVICES}.h")
    endif()
    if(arg_NO_WIDGETS)
        target_compile_definitions(${name} PRIVATE OSSA_NO_WIDGETS)
        ossa_precompile(${name} ossa_pch_tests_model.h)
    else()
        ossa_precompile(${name} ossa_pch_tests.h)
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT
        "QT_QPA_PLATFORM=offscreen;OSSA_ROOT=${PROJECT_SOURCE_DIR};OSSA_BUILD=${PROJECT_BINARY_DIR}")
endfunction()
