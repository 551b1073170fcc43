# SPDX-License-Identifier: MIT
# torvalen_add_tests(<program> LIBRARIES <libs…> CLASSES <tst_Class…> [DISPLAY_CLASSES <tst_Class…>]
#                    [GL_CLASSES <tst_Class…>])
#
# Builds one program of the subsystem's test classes, each in a source of its name in the current folder, and
# makes each class a test of its own. DISPLAY_CLASSES run on a virtual X server of their own; GL_CLASSES do too and
# carry the label "gl".
function(torvalen_add_tests program)
    cmake_parse_arguments(ARG "" "" "LIBRARIES;CLASSES;DISPLAY_CLASSES;GL_CLASSES" ${ARGN})
    set(classes ${ARG_CLASSES} ${ARG_DISPLAY_CLASSES} ${ARG_GL_CLASSES})
    set(sources ${classes})
    list(TRANSFORM sources APPEND ".cpp")
    add_executable(${program} ${sources})
    target_link_libraries(${program} PRIVATE TorvalenTestSupport ${ARG_LIBRARIES})
    foreach(class IN LISTS classes)
        string(REPLACE "tst_" "" name ${class})
        set(command $<TARGET_FILE:${program}> ${class})
        set(environment "QT_QPA_PLATFORM=offscreen")
        if(class IN_LIST ARG_DISPLAY_CLASSES OR class IN_LIST ARG_GL_CLASSES)
            set(command xvfb-run -a -s "-screen 0 1920x1200x24 +extension GLX" ${command})
            set(environment "QT_QPA_PLATFORM=xcb")
        endif()
        add_test(NAME ${program}.${name} COMMAND ${command})
        set_tests_properties(${program}.${name} PROPERTIES
            TIMEOUT 300
            FAIL_REGULAR_EXPRESSION "QObject::connect: ;QObject::disconnect: ;QSignalSpy: ;runtime error: "
            ENVIRONMENT "${environment};ASAN_OPTIONS=detect_leaks=1;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0")
        if(class IN_LIST ARG_GL_CLASSES)
            set_tests_properties(${program}.${name} PROPERTIES LABELS gl)
        endif()
    endforeach()
endfunction()
