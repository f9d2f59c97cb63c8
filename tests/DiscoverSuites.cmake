# cmake -D "PROGRAM=..." -D NAME=... -D PREFIX=... -D "PROPERTIES=..." -D OUTPUT=... -P DiscoverSuites.cmake
# Asks a program of unit tests which suites it has, and writes a file for CTest with one test for each, which runs all
# tests of the suite in one process. PROPERTIES are those of each.
#
# Where it takes a while until a program runs (sanitizers, Wine), one process for each single test would take longer
# than the tests do.

execute_process(COMMAND ${PROGRAM} --gtest_list_tests
    OUTPUT_VARIABLE listed ERROR_VARIABLE errors RESULT_VARIABLE result TIMEOUT 180)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} --gtest_list_tests ended with ${result}:\n${listed}${errors}")
endif()

# A line that is not indented has the name of a suite and a point, and perhaps a remark on its type.
string(REPLACE "\r" "" listed "${listed}")
string(REGEX MATCHALL "\n[^ \n]+\\.( +#[^\n]*)?\n " lines "\n${listed}")
set(text "")
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^\n([^ \n]+)\\..*" "\\1" suite "${line}")
    set(command "")
    foreach(argument IN LISTS PROGRAM)
        string(APPEND command " [==[${argument}]==]")
    endforeach()
    set(test "[==[${PREFIX}${NAME}.${suite}]==]")
    string(APPEND text "add_test(${test}${command} [==[--gtest_filter=${suite}.*]==] --gtest_color=no)\n")
    string(APPEND text "set_tests_properties(${test} PROPERTIES ${PROPERTIES})\n")
endforeach()
if(text STREQUAL "")
    message(FATAL_ERROR "${PROGRAM} has no tests:\n${listed}")
endif()
file(WRITE ${OUTPUT} "${text}")
