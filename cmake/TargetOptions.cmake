# What every target of this project is compiled with. Set on the targets, never globally, so that a project which
# embeds the library keeps its own flags.

if(ORVUQL_SANITIZE AND ORVUQL_COVERAGE)
    message(FATAL_ERROR "ORVUQL_SANITIZE and ORVUQL_COVERAGE exclude each other: the counters hide what is found")
endif()

if(ORVUQL_LTO)
    # A static library would hand its half-compiled objects, and the optimiser's guesses at them, to whoever links it.
    if(DEFINED BUILD_SHARED_LIBS AND NOT BUILD_SHARED_LIBS)
        message(FATAL_ERROR "ORVUQL_LTO is for the shared library; a host that embeds the static one sets "
            "CMAKE_INTERPROCEDURAL_OPTIMIZATION for its whole build")
    endif()
    include(CheckIPOSupported)
    check_ipo_supported(LANGUAGES CXX)
endif()

# Warnings, sanitizers, coverage, link-time optimisation. -Wsign-conversion stays off: sizes are int in the language
# and std::size_t in the standard library, and a cast at every border would hide the casts that matter.
function(orvuql_target_options target)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    if(MSVC)
        # Sources are UTF-8, and the dialect is the standard's. That exported classes have bases and members of the
        # standard library (C4251, C4275) is no news to hosts, who build with the same one.
        target_compile_options(${target} PRIVATE /W4 /utf-8 /permissive- /Zc:__cplusplus /wd4251 /wd4275)
        set(fatal_warnings /WX)
    else()
        target_compile_options(${target} PRIVATE
            -Wall -Wextra -Wpedantic -Wconversion -Wno-sign-conversion -Wshadow)
        set(fatal_warnings -Werror)
    endif()
    # What mingw-w64's windows.h reads from the thread's block, at small addresses in a segment, g++ takes for arrays
    # at a null pointer.
    if(MINGW AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -Wno-array-bounds)
    endif()
    if(ORVUQL_WERROR)
        target_compile_options(${target} PRIVATE ${fatal_warnings})
    endif()
    if(ORVUQL_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${ORVUQL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
        # The static library has no link step of its own: what links it needs the run-time library too.
        target_link_options(${target} PUBLIC -fsanitize=${ORVUQL_SANITIZE})
        target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
        # Code that needs other stacks or sizes with them asks for these: each compiler tells in a way of its own.
        foreach(sanitizer address thread)
            if(ORVUQL_SANITIZE MATCHES "${sanitizer}")
                string(TOUPPER ${sanitizer} name)
                target_compile_definitions(${target} PRIVATE ORVUQL_${name}_SANITIZER=1)
            endif()
        endforeach()
        # What g++ 12 takes for uninitialised in instrumented code (<regex>, std::function) is not; the other builds
        # keep the warning.
        target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
        # And with the thread sanitizer it sees through a class's operator delete, but not through its operator new.
        if(ORVUQL_SANITIZE MATCHES "thread" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            target_compile_options(${target} PRIVATE -Wno-mismatched-new-delete)
        endif()
    endif()
    if(ORVUQL_COVERAGE)
        target_compile_options(${target} PRIVATE --coverage -fprofile-update=atomic)
        target_link_options(${target} PUBLIC --coverage)
    endif()
    if(ORVUQL_LTO)
        set_target_properties(${target} PROPERTIES INTERPROCEDURAL_OPTIMIZATION ON)
    endif()
endfunction()

# What belongs to the implementation, tests and tools (hosts need no more than C++17).
function(orvuql_target_sources_in_cxx20 target)
    target_compile_features(${target} PRIVATE cxx_std_20)
endfunction()
