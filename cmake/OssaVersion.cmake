# Writes RESULT, a source that tells VERSION and the commit of the tree SOURCE; touched only when that changes.
find_package(Git QUIET)
set(COMMIT "")
if(GIT_FOUND)
    execute_process(COMMAND ${GIT_EXECUTABLE} -C ${SOURCE} rev-parse --short=10 HEAD
        OUTPUT_VARIABLE COMMIT ERROR_QUIET OUTPUT_STRIP_TRAILING_WHITESPACE)
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/OssaVersion.cpp.in ${RESULT} @ONLY)
