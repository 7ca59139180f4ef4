# cmake -DNM=... -DLIBRARY=... -DMAP=... -P exports.cmake: a library exports the symbols of its version script, no
# more and no fewer.
execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY} OUTPUT_VARIABLE SYMBOLS
    COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" SYMBOLS "${SYMBOLS}")
list(TRANSFORM SYMBOLS REPLACE " .*" "")
file(READ ${MAP} LISTED)
string(REPLACE ";" "@" LISTED "${LISTED}")
string(REGEX MATCHALL "\n +[A-Za-z_0-9]+@" LISTED "${LISTED}")
list(TRANSFORM LISTED REPLACE "[\n @]" "")
list(SORT SYMBOLS)
list(SORT LISTED)
if(NOT SYMBOLS STREQUAL LISTED)
    message(FATAL_ERROR "exported: ${SYMBOLS}\nlisted: ${LISTED}")
endif()
