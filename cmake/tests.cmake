# GoogleTest from Debian's source package; every test program runs in a Wine prefix of its own.
set(KOR_GOOGLETEST_DIR /usr/src/googletest CACHE PATH "GoogleTest's sources (package googletest)")
# Its options are to take the values that are set here.
set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
set(INSTALL_GTEST OFF)
set(gtest_disable_pthreads ON)
add_subdirectory(${KOR_GOOGLETEST_DIR} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${PROJECT_SOURCE_DIR}/wine/on-one-processor.sh ${PROJECT_SOURCE_DIR}/wine/in-prefix.py)

# kor_test(NAME SOURCES... [LINK LIBS...] [LONG PATTERN]): the test program NAME, one CTest entry; the
# tests that match PATTERN are an entry of their own, NAME.long, which a quick run leaves out.
function(kor_test name)
    cmake_parse_arguments(ARG "" "LONG" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE ${ARG_LINK} test_support kor_options)
    kor_precompile(${name} test_support)
    if(ARG_LONG)
        add_test(NAME ${name} COMMAND ${name} --gtest_filter=-${ARG_LONG})
        add_test(NAME ${name}.long COMMAND ${name} --gtest_filter=${ARG_LONG})
        set_tests_properties(${name}.long PROPERTIES TIMEOUT 300 LABELS long COST 100
            FAIL_REGULAR_EXPRESSION "Running 0 tests")
    else()
        add_test(NAME ${name} COMMAND ${name})
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
endfunction()

# kor_beside(NAME FILES...): copies of the files in the folder of the test program NAME, where
# test::BesideProgram finds them on whatever machine.
function(kor_beside name)
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS ${ARGN})
    add_custom_command(TARGET ${name} POST_BUILD
        COMMAND ${CMAKE_COMMAND} -E copy_if_different ${ARGN} $<TARGET_FILE_DIR:${name}>)
endfunction()
