# Flags that every target of the project shares: link kor_options.
add_library(kor_options INTERFACE)
target_compile_features(kor_options INTERFACE cxx_std_17)
target_include_directories(kor_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_definitions(kor_options INTERFACE
    UNICODE _UNICODE STRICT NOMINMAX WIN32_LEAN_AND_MEAN
    WINVER=0x0601 _WIN32_WINNT=0x0601 NTDDI_VERSION=0x06010000)
target_compile_options(kor_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:
    -Wall -Wextra -Wpedantic -Werror -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
    -Wcast-qual -Wcast-align -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2 -Wundef
    -Wduplicated-cond -Wduplicated-branches -Wlogical-op -Wnull-dereference -Wextra-semi
    -ffunction-sections -fdata-sections -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=>)
# Address space randomisation with high entropy, no execution of data, the same bytes on every
# build, nothing that is not used.
target_link_options(kor_options INTERFACE
    -static -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat
    -Wl,--no-insert-timestamp -Wl,--gc-sections)

if(KOR_GUARDS)
    # -O1: undefined behaviour ends the process (exit code 29), the code stays readable in a debugger.
    target_compile_options(kor_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:
        -O1 -g -fsanitize=undefined -fsanitize-undefined-trap-on-error>)
elseif(KOR_COVERAGE)
    target_compile_options(kor_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-O0 -g --coverage>)
    target_link_options(kor_options INTERFACE --coverage)
else()
    target_compile_options(kor_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:
        -O2 -fstack-protector-strong -D_FORTIFY_SOURCE=2>)
    # Without it at the link too, the stack protector's own library is missing.
    target_link_options(kor_options INTERFACE -s -fstack-protector-strong)
endif()

# A static library of the product: kor_library(NAME SOURCES... [LINK LIBS...])
function(kor_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    # The options are for this build only: what is installed does not impose them.
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE $<BUILD_INTERFACE:kor_options>)
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
    kor_lint(${name})
endfunction()

# clang-tidy runs with each compilation, so a file is checked again only when it changed.
function(kor_lint target)
    if(KOR_TIDY)
        set(gcc /usr/lib/gcc/x86_64-w64-mingw32/12-posix/include/c++)
        set_property(TARGET ${target} PROPERTY CXX_CLANG_TIDY clang-tidy --quiet
            --extra-arg=--target=x86_64-w64-mingw32 --extra-arg=-std=gnu++17 --extra-arg=-Wno-unknown-warning-option
            --extra-arg=-Wno-unused-command-line-argument
            --extra-arg=-isystem${gcc} --extra-arg=-isystem${gcc}/x86_64-w64-mingw32)
    endif()
endfunction()
