# Shared by the toolchains for other machines: the compilers are named after ZYR_TRIPLET, libc is theirs, ZYR_ROOT has the
# libraries beyond it (script/cross makes it).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${ZYR_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${ZYR_TRIPLET}-g++)
set(ZYR_LIBC /usr/${ZYR_TRIPLET})
set(ZYR_LIBRARIES ${ZYR_ROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}:${ZYR_ROOT}/lib/${CMAKE_LIBRARY_ARCHITECTURE})
set(CMAKE_FIND_ROOT_PATH ${ZYR_ROOT} ${ZYR_LIBC})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(KIND LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${KIND} ONLY)
endforeach()
# What the libraries need of each other is found neither at link time nor at run time otherwise.
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,-rpath-link,${ZYR_LIBRARIES})
set(CMAKE_SHARED_LINKER_FLAGS_INIT -Wl,-rpath-link,${ZYR_LIBRARIES})
