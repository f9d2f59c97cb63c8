# cmake -D FOLDER=... -D PATTERNS=... -D LIST=... -D EXCEPT=... -P EveryFileIsListed.cmake
# Fails if a file below FOLDER whose name matches one of PATTERNS, and not the regular expression EXCEPT, is not a line
# of the file LIST.

file(STRINGS ${LIST} listed)
set(found)
foreach(pattern IN LISTS PATTERNS)
    file(GLOB_RECURSE files ${FOLDER}/${pattern})
    list(APPEND found ${files})
endforeach()
if(NOT found)
    message(FATAL_ERROR "No file below ${FOLDER} matches ${PATTERNS}")
endif()

list(FILTER found EXCLUDE REGEX "${EXCEPT}[^/]*$")
list(REMOVE_ITEM found ${listed})
foreach(file IN LISTS found)
    message(SEND_ERROR "${file} is in no list of a CMakeLists.txt")
endforeach()
