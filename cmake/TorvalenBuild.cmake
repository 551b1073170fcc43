# SPDX-License-Identifier: MIT
# Compiler settings that every target of the project shares.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

add_library(TorvalenBuildOptions INTERFACE)
target_compile_features(TorvalenBuildOptions INTERFACE cxx_std_17)
# Pixel and frame arithmetic is given to the last bit: no fused multiply-add.
target_compile_options(TorvalenBuildOptions INTERFACE
    -ffp-contract=off -Wall -Wextra -Wshadow -Wconversion -Woverloaded-virtual
    $<$<BOOL:${TORVALEN_WARNINGS_AS_ERRORS}>:-Werror>)
target_compile_definitions(TorvalenBuildOptions INTERFACE
    QT_DEPRECATED_WARNINGS
    QT_NO_CAST_TO_ASCII
    $<$<NOT:$<BOOL:${BUILD_SHARED_LIBS}>>:TORVALEN_STATIC>)

if(TORVALEN_SANITIZE)
    target_compile_options(TorvalenBuildOptions INTERFACE
        -fsanitize=${TORVALEN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(TorvalenBuildOptions INTERFACE -fsanitize=${TORVALEN_SANITIZE})
    target_compile_definitions(TorvalenBuildOptions INTERFACE TORVALEN_SANITIZED)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
    set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}" "$ORIGIN")
    find_program(TORVALEN_CCACHE ccache)
    if(TORVALEN_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
        set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
            CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${TORVALEN_CCACHE})
    endif()
    find_program(TORVALEN_MOLD mold)
    if(TORVALEN_MOLD)
        add_link_options(-fuse-ld=mold)
    endif()
endif()
