# Headers that nearly every source of a target includes, compiled once: reading them takes longer than all that most
# sources say.
#
# A source still includes what it uses: the preset `clang` compiles without this.

option(ORVUQL_PRECOMPILED_HEADERS "Compile the headers that most sources include once" ${PROJECT_IS_TOP_LEVEL})

function(orvuql_precompile_headers target)
    if(ORVUQL_PRECOMPILED_HEADERS)
        target_precompile_headers(${target} PRIVATE ${ARGN})
        orvuql_cache_with_precompiled_headers(${target})
    endif()
endfunction()

# ccache has to be told that it may take a precompiled header for what it was made of.
function(orvuql_cache_with_precompiled_headers target)
    find_program(ORVUQL_ENV env)
    mark_as_advanced(ORVUQL_ENV)
    if(ORVUQL_CCACHE AND ORVUQL_ENV AND CMAKE_CXX_COMPILER_LAUNCHER STREQUAL ORVUQL_CCACHE)
        set_target_properties(${target} PROPERTIES CXX_COMPILER_LAUNCHER
            "${ORVUQL_ENV};CCACHE_SLOPPINESS=pch_defines,time_macros;${ORVUQL_CCACHE}")
    endif()
endfunction()
