# cmake -DNM=... -DLIBRARY=... -DMAP=... [-DHEADERS=...] -P exports.cmake: a library exports the symbols of its
# version script, no more and no fewer, and its public headers declare the same ones with ZYR_API.
execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY} OUTPUT_VARIABLE SYMBOLS
    COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" SYMBOLS "${SYMBOLS}")
list(TRANSFORM SYMBOLS REPLACE " .*" "")

# read_names(VARIABLE PATTERN WHOLE FILE...): what PATTERN finds in the files, reduced from WHOLE to its name. A text
# with semicolons would be a list.
function(read_names VARIABLE PATTERN WHOLE)
    set(NAMES "")
    foreach(FILE ${ARGN})
        file(READ ${FILE} TEXT)
        string(REPLACE ";" "@" TEXT "${TEXT}")
        string(REGEX MATCHALL "${PATTERN}" FOUND "${TEXT}")
        list(TRANSFORM FOUND REPLACE "${WHOLE}" "\\1")
        list(APPEND NAMES ${FOUND})
    endforeach()
    list(SORT NAMES)
    set(${VARIABLE} "${NAMES}" PARENT_SCOPE)
endfunction()

read_names(LISTED "\n +[A-Za-z_0-9]+@" "\n +([A-Za-z_0-9]+)@" ${MAP})
list(SORT SYMBOLS)
if(NOT SYMBOLS STREQUAL LISTED)
    message(FATAL_ERROR "exported: ${SYMBOLS}\nlisted: ${LISTED}")
endif()
read_names(DECLARED "\nZYR_API [^(@]+[(@]|\nextern ZYR_API [^(@]+@" ".*[ *]([A-Za-z_0-9]+)[(@]" ${HEADERS})
if(HEADERS AND NOT SYMBOLS STREQUAL DECLARED)
    message(FATAL_ERROR "exported: ${SYMBOLS}\ndeclared: ${DECLARED}")
endif()
