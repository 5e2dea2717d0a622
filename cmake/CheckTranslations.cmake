# Run by the build: every shipped language must translate every text the
# program shows. lupdate reads the sources into copies of the .ts files (the
# ones in the source tree stay as they are); a text left unfinished stops the
# build and is named, with the command that adds it for translation.
# In: LUPDATE, SOURCE_DIR, SOURCES_LIST (an lupdate @-file), TS_FILES, OUT_DIR.
set(copies)
foreach(ts IN LISTS TS_FILES)
    get_filename_component(name "${ts}" NAME)
    configure_file("${ts}" "${OUT_DIR}/${name}" COPYONLY)
    list(APPEND copies "${OUT_DIR}/${name}")
endforeach()
execute_process(COMMAND "${LUPDATE}" -silent -locations none -no-obsolete -I "${SOURCE_DIR}" "@${SOURCES_LIST}" -ts ${copies}
                RESULT_VARIABLE failed)
if(failed)
    message(FATAL_ERROR "lupdate could not read the sources")
endif()

set(missing 0)
set(report "")
foreach(copy IN LISTS copies)
    get_filename_component(name "${copy}" NAME)
    file(READ "${copy}" text)
    # A ";" would split CMake's list of matches.
    string(REPLACE ";" "," text "${text}")
    string(REGEX MATCHALL "<source>[^<]*</source>[ \t\r\n]*(<comment>[^<]*</comment>[ \t\r\n]*)?<translation type=\"unfinished\""
           unfinished "${text}")
    foreach(message IN LISTS unfinished)
        math(EXPR missing "${missing} + 1")
        string(REGEX MATCH "<source>[^<]*</source>" source "${message}")
        string(APPEND report "  ${name}: ${source}\n")
    endforeach()
endforeach()
if(missing GREATER 0)
    message(FATAL_ERROR "${missing} texts the program shows have no translation:\n${report}"
                        "Add them with `cmake --build <build> --target update_translations`, translate them in "
                        "res/translations/*.ts (Qt Linguist), and build again.")
endif()
