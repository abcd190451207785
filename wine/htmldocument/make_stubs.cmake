# Writes OUTPUT: for each of the INTERFACES a class that answers E_NOTIMPL to every method, made from
# the tool chain's own headers. A class derives from these and overrides what it needs.
# INTERFACES: header:interface[:base with methods of its own], separated by commas.
#   cmake -DHEADERS=DIR -DINTERFACES=oleidl.h:IOleObject,... -DOUTPUT=Stubs.h -P make_stubs.cmake
cmake_minimum_required(VERSION 3.25)

# The text between the braces of the interface's C++ declaration. Semicolons, which separate list
# elements here, are written as @ until the end.
function(interface_body header interface result)
    string(FIND "${header}" "\n${interface} : public " start)
    if(start EQUAL -1)
        message(FATAL_ERROR "No declaration of ${interface}")
    endif()
    string(SUBSTRING "${header}" ${start} 60000 tail)
    string(FIND "${tail}" "{" open)
    string(FIND "${tail}" "\n}@" close)
    math(EXPR open "${open} + 1")
    math(EXPR length "${close} - ${open}")
    string(SUBSTRING "${tail}" ${open} ${length} body)
    string(REGEX REPLACE "\\) = 0@" ") override { return E_NOTIMPL; }" body "${body}")
    set(${result} "${body}" PARENT_SCOPE)
endfunction()

set(text "// Made by make_stubs.cmake.\n#pragma once\n\n#include <windows.h>\n")
foreach(file IN ITEMS ole2.h ocidl.h docobj.h urlmon.h mshtml.h mshtmhst.h)
    string(APPEND text "#include <${file}>\n")
endforeach()
string(APPEND text "\nnamespace html {\n
// An IUnknown that is destroyed through its own destructor.
class UnknownStub : public IUnknown {
protected:
    virtual ~UnknownStub() = default@
}@\n")
string(REPLACE "," ";" interfaces "${INTERFACES}")
foreach(entry IN LISTS interfaces)
    string(REPLACE ":" ";" names "${entry}")
    list(POP_FRONT names file interface)
    if(NOT file STREQUAL loaded)
        file(READ ${HEADERS}/${file} header)
        string(REPLACE ";" "@" header "${header}")
        set(loaded ${file})
    endif()
    string(APPEND text "\nclass ${interface}Stub : public ${interface} {\npublic:\n")
    foreach(name IN LISTS names ITEMS ${interface})
        interface_body("${header}" ${name} body)
        string(APPEND text "${body}")
    endforeach()
    string(APPEND text "protected:\n    virtual ~${interface}Stub() = default@\n}@\n")
endforeach()
string(APPEND text "\n} // namespace html\n")
string(REPLACE "@" ";" text "${text}")
file(WRITE ${OUTPUT} "${text}")
