# The headers that nearly every unit test includes, compiled once for each way in which test programs are compiled: most
# of the time that a test takes to compile goes into GoogleMock and the standard library.

set(test_headers
    <OrvUQL/OrvUQL.h>
    <gmock/gmock.h>
    <gtest/gtest.h>
    <algorithm>
    <cmath>
    <cstdint>
    <functional>
    <limits>
    <map>
    <memory>
    <ostream>
    <sstream>
    <string>
    <string_view>
    <utility>
    <vector>)

# Lets a program of unit tests use the headers, compiled with the library's definitions for the hosts of `library` and
# with `definitions`. Whatever else a precompiled header looks at has to be the same for all that share it.
function(orvuql_use_precompiled_headers target library definitions)
    if(NOT ORVUQL_PRECOMPILED_HEADERS OR library STREQUAL "")
        return()
    endif()
    set(kind orvuql_test_headers ${library} ${definitions})
    list(TRANSFORM kind REPLACE "^OrvUQL::" "")
    string(MAKE_C_IDENTIFIER "${kind}" headers)
    if(NOT TARGET ${headers})
        set(source ${CMAKE_BINARY_DIR}/${headers}.cpp)
        file(CONFIGURE OUTPUT ${source} CONTENT "// Its command line is that of the header.\n")
        add_library(${headers} OBJECT EXCLUDE_FROM_ALL ${source})
        orvuql_unit_test_options(${headers} "${library}")
        target_compile_definitions(${headers} PRIVATE ${definitions})
        target_precompile_headers(${headers} PRIVATE ${test_headers})
        orvuql_cache_with_precompiled_headers(${headers})
    endif()
    target_precompile_headers(${target} REUSE_FROM ${headers})
    orvuql_cache_with_precompiled_headers(${target})
endfunction()
