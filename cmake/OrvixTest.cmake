# orvix_add_test(<name> [XVFB] [TIMEOUT <s>] [LIBS <libs...>] [SOURCES <files...>])
# Builds tst_<name>.cpp of the calling folder into one CTest test. Tests run
# on the offscreen platform, or with XVFB on a virtual X server of their own,
# as a user's desktop would show them; every test gets the test support.
function(orvix_add_test name)
    cmake_parse_arguments(ARG "XVFB" "TIMEOUT" "LIBS;SOURCES" ${ARGN})
    set(target tst_${name})
    qt_add_executable(${target} tst_${name}.cpp ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE orvix_core orvix_testsupport Qt6::Test ${ARG_LIBS})
    if(ARG_XVFB)
        add_test(NAME ${name} COMMAND xvfb-run -a -s "-screen 0 1920x1080x24" $<TARGET_FILE:${target}>)
        set(platform "")
    else()
        add_test(NAME ${name} COMMAND ${target})
        set(platform "QT_QPA_PLATFORM=offscreen;")
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "${platform}QT_LOGGING_RULES=orvix.*.debug=false")
endfunction()
