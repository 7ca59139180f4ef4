# add_zyr_test(NAME SOURCE... [LIBS LIBRARY...]): one GoogleTest program; ctest lists each of its cases by itself.
include(GoogleTest)
function(add_zyr_test NAME)
    cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
    add_executable(${NAME} ${ARG_UNPARSED_ARGUMENTS})
    target_link_libraries(${NAME} PRIVATE ${ARG_LIBS} zyr_warnings GTest::gtest GTest::gtest_main)
    target_compile_definitions(${NAME} PRIVATE ZYR_SAMPLES="${PROJECT_SOURCE_DIR}/samples")
    # GCC 12 sees overlaps in std::string that are not there.
    target_compile_options(${NAME} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> $<$<CONFIG:Release>:-O1>)
    gtest_discover_tests(${NAME} DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
endfunction()
