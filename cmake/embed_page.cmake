# A page as one file, and that as C++: cmake -DPAGE=DIR -DHTML=NAME -DSTYLES=a;b -DSCRIPTS=a;b -DOUT=FILE.cpp -DNAME=VARIABLE
# -P embed_page.cmake. @STYLE@ and @SCRIPT@ of the page are filled here, what else it leaves open is the program's.
cmake_minimum_required(VERSION 3.25)
function(join_files OUT_TEXT)
    set(TEXT "")
    foreach(FILE IN LISTS ARGN)
        file(READ "${PAGE}/${FILE}" PART)
        string(APPEND TEXT "${PART}")
    endforeach()
    set(${OUT_TEXT} "${TEXT}" PARENT_SCOPE)
endfunction()

join_files(STYLE ${STYLES})
join_files(SCRIPT ${SCRIPTS})
file(READ "${PAGE}/${HTML}" TEXT)
string(REPLACE "@STYLE@" "${STYLE}" TEXT "${TEXT}")
string(REPLACE "@SCRIPT@" "${SCRIPT}" TEXT "${TEXT}")
file(WRITE "${OUT}.html" "${TEXT}")
file(READ "${OUT}.html" BYTES HEX)
string(REGEX REPLACE "(................................)" "\\1\n    " BYTES "${BYTES}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," BYTES "${BYTES}")
file(WRITE "${OUT}" "// Made by cmake/embed_page.cmake from ${HTML} and its parts.\n#include <string_view>\n
static constexpr char PAGE[] = {\n    ${BYTES}\n};\nextern const std::string_view ${NAME};\nconst std::string_view ${NAME}(PAGE, sizeof PAGE);\n")
