# What makes a fault in a library or program hard to use: the same in every build, whatever flags come from outside. The
# sanitizers have instruments of their own, which these would get in the way of.

# A library's calls of its own functions are not for a program's function of the same name to take over.
add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,-Bsymbolic-functions>)

if(NOT ZYR_SANITIZE)
    include(CheckPIESupported)
    check_pie_supported()
    # The checked forms of libc's functions come with optimisation only.
    add_compile_options(-fstack-protector-strong "$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
    add_link_options(-Wl,-z,relro,-z,now,-z,noexecstack
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:-Wl,-z,defs>)
endif()
