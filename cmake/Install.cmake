# `cmake --install`: headers, library, uql, and the files by which CMake (find_package) and pkg-config find them.

include(CMakePackageConfigHelpers)

install(TARGETS OrvUQL
    EXPORT OrvUQLTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/OrvUQL)
install(EXPORT OrvUQLTargets NAMESPACE OrvUQL:: DESTINATION ${package_dir})
configure_package_config_file(cmake/OrvUQLConfig.cmake.in ${PROJECT_BINARY_DIR}/OrvUQLConfig.cmake
    INSTALL_DESTINATION ${package_dir})
# Before 1.0 a minor version may change the interface.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/OrvUQLConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/OrvUQLConfig.cmake ${PROJECT_BINARY_DIR}/OrvUQLConfigVersion.cmake
    DESTINATION ${package_dir})

# The .pc file finds its tree from its own place, so an installed tree can be moved (`cmake --install --prefix`).
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
    set(pc_libdir "${CMAKE_INSTALL_FULL_LIBDIR}")
    set(pc_includedir "${CMAKE_INSTALL_FULL_INCLUDEDIR}")
else()
    file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" up "${up}")
    set(pc_prefix "\${pcfiledir}/${up}")
    set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
get_target_property(library_type OrvUQL TYPE)
set(pc_cflags "")
set(pc_libs "")
if(library_type STREQUAL "STATIC_LIBRARY")
    # Linked by a C compiler, a static C++ library needs its run-time library named.
    set(pc_cflags " -DORVUQL_STATIC")
    set(pc_libs " -lstdc++")
endif()
configure_file(cmake/OrvUQL.pc.in ${PROJECT_BINARY_DIR}/OrvUQL.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/OrvUQL.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(TARGET uql)
    if(NOT IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" AND NOT IS_ABSOLUTE "${CMAKE_INSTALL_BINDIR}")
        file(RELATIVE_PATH bin_to_lib "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
        set_target_properties(uql PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
    endif()
    install(TARGETS uql RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    # (Made where the build can make them.)
    set(beside ${PROJECT_BINARY_DIR}/tools/uql)
    install(FILES ${beside}/uql.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
    install(FILES ${beside}/uql.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME uql OPTIONAL)
    install(FILES ${beside}/uql.fish DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d OPTIONAL)
    install(FILES ${beside}/uql.zsh DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions RENAME _uql OPTIONAL)
endif()
