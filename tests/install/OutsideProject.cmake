# SPDX-License-Identifier: MIT
# Installs the build into a fresh prefix, moves that, and builds and runs a project that finds the package there.
include(${CMAKE_CURRENT_LIST_DIR}/Run.cmake)

set(prefix ${WORK_DIR}/prefix)
file(REMOVE_RECURSE ${prefix} ${prefix}-moved ${WORK_DIR}/outside-build)
run(${CMAKE_COMMAND} --install ${TORVALEN_BUILD_DIR} --prefix ${prefix})
# The package must not remember where it was installed.
file(RENAME ${prefix} ${prefix}-moved)
run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/outside -B ${WORK_DIR}/outside-build -G ${GENERATOR}
    -DCMAKE_PREFIX_PATH=${prefix}-moved -DCMAKE_CXX_COMPILER=${CXX_COMPILER} -DCMAKE_BUILD_TYPE=${BUILD_TYPE})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/outside-build)
run(${WORK_DIR}/outside-build/outside)
