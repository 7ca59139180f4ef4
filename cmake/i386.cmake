# Toolchain for 32-bit code of this machine, which runs it through that code's own loader.
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
set(ZYR_TRIPLET i686-linux-gnu)
set(ZYR_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/i386-root)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR ${ZYR_LIBC}/lib/ld-linux.so.2 --library-path ${ZYR_LIBC}/lib:${ZYR_LIBRARIES})
