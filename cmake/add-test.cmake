# kor_add_test(NAME TIMEOUT COMMAND...): an entry of CTest that is more than one run of a test program.
function(kor_add_test name timeout)
    add_test(NAME ${name} COMMAND ${PROJECT_SOURCE_DIR}/wine/on-one-processor.sh ${ARGN})
    set_tests_properties(${name} PROPERTIES TIMEOUT ${timeout})
endfunction()
