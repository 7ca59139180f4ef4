# What cmake --install puts in place: the public headers, the libraries, the tool with its pages and completions, and
# files for pkg-config and CMake. All of them find each other from their own place, so that an installed tree can be
# moved.
include(CMakePackageConfigHelpers)
set(ZYR_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/ZYRsubtitle)

install(TARGETS zyrsubtitle EXPORT ZYRsubtitle LIBRARY)
install(DIRECTORY include/zyr DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
set(ZYR_PC_FILES zyrsubtitle)
if(NOT ZYR_TARGET)
    install(TARGETS zyrhost zyrhost_static zyr_platform EXPORT ZYRsubtitle LIBRARY ARCHIVE)
    list(APPEND ZYR_PC_FILES zyrhost)
endif()
if(TARGET zyrcaptions)
    install(TARGETS zyrcaptions EXPORT ZYRsubtitle LIBRARY)
    list(APPEND ZYR_PC_FILES zyrcaptions)
endif()
if(TARGET zyrsub)
    install(TARGETS zyrsub RUNTIME)
endif()

file(RELATIVE_PATH ZYR_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
foreach(NAME IN LISTS ZYR_PC_FILES)
    configure_file(cmake/${NAME}.pc.in ${PROJECT_BINARY_DIR}/${NAME}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${NAME}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

install(EXPORT ZYRsubtitle NAMESPACE ZYRsubtitle:: DESTINATION ${ZYR_CMAKE_DIR}
    FILE ZYRsubtitleConfig.cmake)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZYRsubtitleConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZYRsubtitleConfigVersion.cmake DESTINATION ${ZYR_CMAKE_DIR})
