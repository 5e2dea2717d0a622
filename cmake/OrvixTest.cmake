# orvix_add_test(<name> [XVFB] [TIMEOUT <s>] [LIBS <libs...>] [SOURCES <files...>]
#                [PARTS <part>=<function>,<function>... ...])
# Builds tst_<name>.cpp of the calling folder into one CTest test. Tests run
# on the offscreen platform, or with XVFB on a virtual X server of their own,
# as a user's desktop would show them; every test gets the test support.
# With PARTS the test's functions run as several CTest tests, <name>-<part>,
# each in a process of its own, so that two can run side by side.
function(orvix_add_test name)
    cmake_parse_arguments(ARG "XVFB;SESSION_BUS" "TIMEOUT" "LIBS;SOURCES;PARTS" ${ARGN})
    set(target tst_${name})
    qt_add_executable(${target} tst_${name}.cpp ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE orvix_core orvix_testsupport Qt6::Test ${ARG_LIBS})
    if(ARG_XVFB)
        set(command xvfb-run -a -s "-screen 0 1920x1080x24" $<TARGET_FILE:${target}>)
        set(platform "")
    else()
        set(command ${target})
        set(platform "QT_QPA_PLATFORM=offscreen;")
    endif()
    # A private session bus, as a desktop has: the accessibility bus is
    # found and started through it.
    if(ARG_SESSION_BUS)
        list(PREPEND command dbus-run-session --)
    endif()
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set(tests)
    if(ARG_PARTS)
        foreach(part IN LISTS ARG_PARTS)
            string(REPLACE "=" ";" pieces "${part}")
            list(GET pieces 0 suffix)
            list(GET pieces 1 functions)
            string(REPLACE "," ";" functions "${functions}")
            add_test(NAME ${name}-${suffix} COMMAND ${command} ${functions})
            list(APPEND tests ${name}-${suffix})
        endforeach()
    else()
        add_test(NAME ${name} COMMAND ${command})
        list(APPEND tests ${name})
    endif()
    set_tests_properties(${tests} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "${platform}QT_LOGGING_RULES=orvix.*.debug=false")
endfunction()
