# SPDX-License-Identifier: MIT
# Configures a project that adds the sources: nothing but the libraries may be part of it.
include(${CMAKE_CURRENT_LIST_DIR}/Run.cmake)

file(REMOVE_RECURSE ${WORK_DIR}/subproject-build)
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/subproject -B ${WORK_DIR}/subproject-build -G ${GENERATOR}
    -DTORVALEN_SOURCE_DIR=${TORVALEN_SOURCE_DIR} -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_BUILD_TYPE=${BUILD_TYPE})
