# cmake -D UMBRELLA=... -D LIST=... -P UmbrellaIncludesAll.cmake
# Fails if a public header (a line of the file LIST) is not included by the umbrella header.

file(STRINGS ${LIST} headers)
file(READ ${UMBRELLA} umbrella)
list(REMOVE_ITEM headers ${UMBRELLA})
foreach(header IN LISTS headers)
    cmake_path(GET header FILENAME name)
    string(FIND "${umbrella}" "#include \"OrvUQL/${name}\"" position)
    if(position EQUAL -1)
        message(SEND_ERROR "${UMBRELLA} does not include ${name}")
    endif()
endforeach()
