# Toolchain for 32-bit ARM with hardware floating point. Tests run under qemu-arm.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
set(ZYR_TRIPLET arm-linux-gnueabihf)
set(ZYR_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm-root)
include(${CMAKE_CURRENT_LIST_DIR}/cross.cmake)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${ZYR_LIBC} -E LD_LIBRARY_PATH=${ZYR_LIBRARIES})
