# SPDX-License-Identifier: MIT
# run(<command…>) runs a command and ends the test, with all that the command said, where it fails.
function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    list(JOIN ARGV " " line)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "failed with ${result}: ${line}\n${output}")
    endif()
    message(STATUS "${line}")
endfunction()
