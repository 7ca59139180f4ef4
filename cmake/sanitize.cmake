# ZYR_SANITIZE names sanitizers for the whole build, for example "address,undefined"; ZYR_COVERAGE asks for
# coverage counters, ZYR_FUZZ for those that a fuzzer follows.
if(ZYR_SANITIZE)
    add_compile_options(-fsanitize=${ZYR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZYR_SANITIZE})
endif()
if(ZYR_FUZZ)
    # Following every comparison as well would take half the time; the dictionary knows the words.
    add_compile_options(-fsanitize=fuzzer-no-link -fno-sanitize-coverage=trace-cmp)
endif()
if(ZYR_COVERAGE)
    add_compile_options(--coverage)
    add_link_options(--coverage)
endif()
