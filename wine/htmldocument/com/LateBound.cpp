// Finds the type information of MSHTML's interfaces in the registry.
#include "wine/htmldocument/com/LateBound.h"

#include <oleauto.h>

namespace html {
namespace {

// {3050F1C5-98B5-11CF-BB82-00AA00BDCE0B}
constexpr GUID MshtmlLibrary = {
    0x3050f1c5, 0x98b5, 0x11cf, {0xbb, 0x82, 0x00, 0xaa, 0x00, 0xbd, 0xce, 0x0b}};
constexpr WORD MshtmlLibraryVersion = 4;

} // namespace

HRESULT TypeInfoOf(REFIID iid, ITypeInfo** info) {
    ComPtr<ITypeLib> library;
    const HRESULT result =
        LoadRegTypeLib(MshtmlLibrary, MshtmlLibraryVersion, 0, 0, library.GetAddressOf());
    return FAILED(result) ? result : library->GetTypeInfoOfGuid(iid, info);
}

} // namespace html
