# orvix_add_test(<name> [GUI] [TIMEOUT <s>] [LIBS <libs...>])
# Builds tests/auto/<name>/tst_<name>.cpp into one CTest test. GUI tests run on
# the offscreen platform; every test gets the project's test support.
function(orvix_add_test name)
    cmake_parse_arguments(ARG "GUI" "TIMEOUT" "LIBS;SOURCES" ${ARGN})
    set(target tst_${name})
    qt_add_executable(${target} tst_${name}.cpp ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE orvix_core orvix_testsupport Qt6::Test ${ARG_LIBS})
    add_test(NAME ${name} COMMAND ${target})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT}
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;QT_LOGGING_RULES=orvix.*.debug=false")
endfunction()
