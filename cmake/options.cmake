# Flags that every target of the project shares: link kor_options.
add_library(kor_options INTERFACE)
target_compile_features(kor_options INTERFACE cxx_std_17)
target_include_directories(kor_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(kor_options INTERFACE
    UNICODE _UNICODE STRICT NOMINMAX WIN32_LEAN_AND_MEAN
    WINVER=0x0601 _WIN32_WINNT=0x0601 NTDDI_VERSION=0x06010000)
# The options of GCC go to compilers that know them.
set(gnu_cxx "$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU,Clang>>")
set(gnu_link "$<CXX_COMPILER_ID:GNU,Clang>")
target_compile_options(kor_options INTERFACE
    $<${gnu_cxx}:
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wcast-qual -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wundef
    -Wnull-dereference -Wextra-semi -Wredundant-decls -Wsuggest-override -Wzero-as-null-pointer-constant
    -ffunction-sections -fdata-sections -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=>
    $<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:
    -Wduplicated-cond -Wduplicated-branches -Wlogical-op>)
# Address space randomisation with high entropy, no execution of data, the same bytes on every
# build, nothing that is not used. Windows 7 is the oldest: to a program for an older one it gives other
# system metrics.
target_link_options(kor_options INTERFACE
    $<${gnu_link}:
    -static -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat
    -Wl,--no-insert-timestamp -Wl,--gc-sections
    -Wl,--major-os-version=6 -Wl,--minor-os-version=1
    -Wl,--major-subsystem-version=6 -Wl,--minor-subsystem-version=1>)

# What the product's own code is compiled with besides; tests and the equipment under wine/ are not.
add_library(kor_product_options INTERFACE)
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    target_compile_options(kor_product_options INTERFACE
        # The names and lines for support; they are not linked into the programs.
        $<${gnu_cxx}:-g1 -fstack-protector-strong -D_FORTIFY_SOURCE=2>)
    # Without it at the link too, the stack protector's own library is missing.
    target_link_options(kor_options INTERFACE $<${gnu_link}:-s -fstack-protector-strong>)
else()
    # Every test program is linked from the same archives: lld takes a tenth of GNU ld's time. Less
    # debug information keeps them small; the product's own code has all of it.
    target_link_options(kor_options INTERFACE
        -specs=${PROJECT_SOURCE_DIR}/cmake/lld.specs -fno-use-linker-plugin)
    target_compile_options(kor_options INTERFACE
        # Where a precompiled header is long, GCC says with a note each time that it leaves this out.
        $<$<COMPILE_LANGUAGE:CXX>:-g1 -Wno-misleading-indentation>)
    target_compile_options(kor_product_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-g>)
endif()
if(KOR_GUARDS)
    # Undefined behaviour ends the process (exit code 29).
    target_compile_options(kor_product_options INTERFACE
        $<$<COMPILE_LANGUAGE:CXX>:-fsanitize=undefined -fsanitize-undefined-trap-on-error>)
endif()
if(KOR_COVERAGE)
    target_compile_options(kor_product_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:--coverage>)
    target_link_options(kor_options INTERFACE --coverage)
endif()

# kor_precompile(TARGET OF HEADERS...): has TARGET compiled with the headers of OF precompiled, which
# makes them when it is TARGET itself.
function(kor_precompile target of)
    if(target STREQUAL of)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    else()
        target_precompile_headers(${target} REUSE_FROM ${of})
    endif()
endfunction()

# The target kor_NAME, a static library of the product: kor_library(NAME SOURCES... [LINK LIBS...])
function(kor_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(kor_${name} STATIC ${ARG_SOURCES})
    # The options are for this build only: what is installed does not impose them.
    target_link_libraries(kor_${name} PUBLIC ${ARG_LINK} PRIVATE $<BUILD_INTERFACE:kor_options>
        $<BUILD_INTERFACE:kor_product_options>)
    target_include_directories(kor_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
    # What is shipped goes without, and so shows that each file includes what it needs.
    if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
        kor_precompile(kor_${name} kor_base <windows.h> <algorithm> <cstdint> <cwchar> <string>)
    endif()
endfunction()
