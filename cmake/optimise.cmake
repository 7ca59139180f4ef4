# zyr_optimise(OBJECTS): how the library's own sources are compiled, beyond the build type; called when all of them are known.
# The objects hold ordinary code too: the library is made from the intermediate code, which sees it whole; tests link the
# ordinary code, quickly.
set(ZYR_LTO_LINK "")
if(ZYR_LTO AND CMAKE_BUILD_TYPE STREQUAL "Release" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    set(ZYR_LTO_LINK -flto=auto)
    add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-fno-lto>)
endif()

# ZYR_SMALL: what most bytes of a file pass through is compiled for speed, what may run for every byte of a file or pixel of a
# caption with functions copied into others only where that is nearly free, all else for size.
set(ZYR_FAST_SOURCES "/usual_text|_usual|/lines/|/frame_pump|/zyr_subtitle")
set(ZYR_HOT_SOURCES "/(text|format)/|/caption_text|/font_draw|/glyph_cache")
set(ZYR_COLD_SOURCES "/ssa_override|/style_list|/sami_classes|/subviewer_header|/subrip.cpp|/subviewer.cpp")
set(ZYR_HOT_OPTIONS -O2 --param=max-inline-insns-auto=8 --param=inline-unit-growth=10
    --param=early-inlining-insns=4 -freorder-blocks-algorithm=simple)

function(zyr_optimise NAME)
    if(ZYR_LTO_LINK)
        target_compile_options(${NAME} PRIVATE ${ZYR_LTO_LINK} -ffat-lto-objects)
    endif()
    if(NOT ZYR_SIMD)
        target_compile_definitions(${NAME} PRIVATE ZYR_NO_SIMD)
    endif()
    if(ZYR_SMALL)
        get_target_property(SOURCES ${NAME} SOURCES)
        foreach(SOURCE IN LISTS SOURCES)
            set(OPTIONS -Os)
            if("/${SOURCE}" MATCHES "${ZYR_FAST_SOURCES}")
                set(OPTIONS -O3)
            elseif("/${SOURCE}" MATCHES "${ZYR_HOT_SOURCES}" AND NOT "/${SOURCE}" MATCHES "${ZYR_COLD_SOURCES}")
                set(OPTIONS ${ZYR_HOT_OPTIONS})
            endif()
            set_property(SOURCE ${SOURCE} TARGET_DIRECTORY ${NAME} APPEND PROPERTY COMPILE_OPTIONS ${OPTIONS})
        endforeach()
    endif()
endfunction()
