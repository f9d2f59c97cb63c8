# Finds a library that is nothing but headers, for tools and tests of this project.
#
#     orvuql_find_header_library(PACKAGE TARGET FOLDER)
#
# TARGET is the imported target that PACKAGE's own CMake files make, FOLDER that of its headers below the include path.
#
# A cross compiler must not see the headers of the machine that builds, among which such a library's are installed: then
# this folder alone is made visible, through a link in the build tree.
function(orvuql_find_header_library package target folder)
    if(NOT CMAKE_CROSSCOMPILING)
        find_package(${package} REQUIRED)
        return()
    endif()
    find_path(ORVUQL_${package}_INCLUDE_DIR NAMES ${folder} REQUIRED NO_CMAKE_FIND_ROOT_PATH
        PATHS /usr/include /usr/local/include)
    mark_as_advanced(ORVUQL_${package}_INCLUDE_DIR)
    set(include ${PROJECT_BINARY_DIR}/include/${package})
    file(MAKE_DIRECTORY ${include})
    file(CREATE_LINK ${ORVUQL_${package}_INCLUDE_DIR}/${folder} ${include}/${folder} SYMBOLIC)
    add_library(${target} INTERFACE IMPORTED)
    target_include_directories(${target} SYSTEM INTERFACE ${include})
endfunction()
