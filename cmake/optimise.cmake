# zyr_optimise(OBJECTS): how the library's own sources are compiled, beyond the build type. The objects hold ordinary code
# too: the library is made from the intermediate code, which sees it whole; tests link the ordinary code, quickly.
set(ZYR_LTO_LINK "")
if(ZYR_LTO AND CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(ZYR_LTO_LINK -flto=auto)
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-fno-lto>)
endif()

function(zyr_optimise NAME)
    if(ZYR_LTO_LINK)
        target_compile_options(${NAME} PRIVATE ${ZYR_LTO_LINK} -ffat-lto-objects)
    endif()
    if(NOT ZYR_SIMD)
        target_compile_definitions(${NAME} PRIVATE ZYR_NO_SIMD)
    endif()
endfunction()
