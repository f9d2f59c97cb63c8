# Our own builds go through ccache where it is installed: the presets compile the same sources again and again.
if(PROJECT_IS_TOP_LEVEL AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    find_program(ORVUQL_CCACHE ccache)
    mark_as_advanced(ORVUQL_CCACHE)
    if(ORVUQL_CCACHE)
        set(CMAKE_CXX_COMPILER_LAUNCHER ${ORVUQL_CCACHE})
    endif()
endif()
