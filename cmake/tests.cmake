# GoogleTest from Debian's source package; every test program runs in a Wine prefix of its own.
set(KOR_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "GoogleTest's sources (package googletest)")
set(INSTALL_GTEST OFF)
set(gtest_disable_pthreads ON)
add_subdirectory(${KOR_GOOGLETEST_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_SOURCE_DIR}/wine/in-prefix.sh)

# kor_test(NAME SOURCES... [LINK LIBS...] [UNGUARDED]): the test program NAME, one CTest entry.
# UNGUARDED is for tests that keep more than some ten thousand blocks of memory at a time: each
# guarded block takes two of the 65,530 mappings that a Linux process may have.
function(kor_test name)
    cmake_parse_arguments(ARG "UNGUARDED" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    if(ARG_UNGUARDED)
        target_link_libraries(${name} PRIVATE ${ARG_LINK} test_support_unguarded kor_options)
    else()
        target_link_libraries(${name} PRIVATE ${ARG_LINK} test_support kor_options)
    endif()
    kor_lint(${name})
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()
