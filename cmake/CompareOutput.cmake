# cmake -D PROGRAM=... -D EXPECTED=... -P CompareOutput.cmake
# Fails unless PROGRAM succeeds and prints exactly what the file EXPECTED holds.

execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE got RESULT_VARIABLE result)
file(READ ${EXPECTED} expected)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ended with ${result}; it printed\n${got}")
endif()
if(NOT got STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} printed\n${got}expected\n${expected}")
endif()
