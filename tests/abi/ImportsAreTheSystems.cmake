# cmake -D OBJDUMP=... -D DLL=... -P ImportsAreTheSystems.cmake
# Fails if the DLL needs another that is not part of Windows.

cmake_policy(VERSION 3.25)

set(system bcrypt.dll kernel32.dll msvcrt.dll ole32.dll oleaut32.dll)

execute_process(COMMAND ${OBJDUMP} -p ${DLL} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "DLL Name: [^\n]*" imports "${headers}")
if(NOT imports)
    message(FATAL_ERROR "${DLL} says nothing of what it needs")
endif()
foreach(import IN LISTS imports)
    string(REGEX REPLACE "DLL Name: *" "" name "${import}")
    string(TOLOWER "${name}" name)
    if(NOT name IN_LIST system)
        message(SEND_ERROR "${DLL} needs ${name}")
    endif()
endforeach()
