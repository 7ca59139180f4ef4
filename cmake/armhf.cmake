# Toolchain for 32-bit ARM with hardware floating point; the environment's ZYR_ARM_ROOT has the libraries beyond libc
# (script/arm makes it). Tests run under qemu-arm.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(CMAKE_C_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-gcc)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)

set(ZYR_ARM_ROOT $ENV{ZYR_ARM_ROOT})
set(ZYR_ARM_LIBRARIES ${ZYR_ARM_ROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}:${ZYR_ARM_ROOT}/lib/${CMAKE_LIBRARY_ARCHITECTURE})
set(CMAKE_FIND_ROOT_PATH ${ZYR_ARM_ROOT} /usr/${CMAKE_LIBRARY_ARCHITECTURE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(KIND LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${KIND} ONLY)
endforeach()
# What the libraries need of each other is found neither at link time nor at run time otherwise.
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,-rpath-link,${ZYR_ARM_LIBRARIES})
set(CMAKE_SHARED_LINKER_FLAGS_INIT -Wl,-rpath-link,${ZYR_ARM_LIBRARIES})
set(CMAKE_CROSSCOMPILING_EMULATOR
    qemu-arm -L /usr/${CMAKE_LIBRARY_ARCHITECTURE} -E LD_LIBRARY_PATH=${ZYR_ARM_LIBRARIES})
