# The version is written once, in the public header. ZYR_SOVERSION counts what breaks programs linked before; it is
# part of the names of the Debian packages.
file(STRINGS ${CMAKE_CURRENT_LIST_DIR}/../include/zyr/zyr_version.h ZYR_VERSION REGEX "^#define ZYR_VERSION_M|_PATCH [0-9]")
list(TRANSFORM ZYR_VERSION REPLACE "[^0-9]" "")
list(JOIN ZYR_VERSION "." ZYR_VERSION)
set(ZYR_SOVERSION 0)
set(ZYR_LIBRARY_VERSION ${ZYR_SOVERSION}.${ZYR_VERSION})
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
    ${CMAKE_CURRENT_LIST_DIR}/../include/zyr/zyr_version.h)
