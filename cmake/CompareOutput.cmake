# cmake -D PROGRAM=... -D EXPECTED=... [-D STATUS=1] [-D CRLF=ON] -P CompareOutput.cmake
# Fails unless PROGRAM succeeds and prints exactly what the file EXPECTED holds; with a STATUS other than 0, unless it
# ends with that, and what it prints and its errors together are so. With CRLF its lines end as the C library of Windows
# ends them.

if(NOT DEFINED STATUS)
    set(STATUS 0)
endif()
if(STATUS EQUAL 0)
    execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE got RESULT_VARIABLE result)
else()
    execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE got ERROR_VARIABLE got RESULT_VARIABLE result)
endif()
file(READ ${EXPECTED} expected)
if(CRLF)
    string(REPLACE "\r\n" "\n" got "${got}")
endif()
if(NOT result EQUAL STATUS)
    message(FATAL_ERROR "${PROGRAM} ended with ${result}; it printed\n${got}")
endif()
if(NOT got STREQUAL expected)
    message(FATAL_ERROR "${PROGRAM} printed\n${got}expected\n${expected}")
endif()
