// Reading what is dropped.
#include "wine/htmldocument/com/DropTarget.h"

#include <shellapi.h>

#include <array>

namespace html {
namespace {

// The first of the files; empty where there is none.
std::wstring FirstFile(IDataObject& data) {
    FORMATETC format = {CF_HDROP, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL};
    STGMEDIUM medium = {};
    std::array<wchar_t, MAX_PATH> path{};
    if (data.GetData(&format, &medium) == S_OK) {
        DragQueryFileW(static_cast<HDROP>(medium.hGlobal), 0, path.data(), MAX_PATH);
        ReleaseStgMedium(&medium);
    }
    return path.data();
}

} // namespace

HRESULT DropTarget::DragEnter(IDataObject*, DWORD keys, POINTL at, DWORD* effect) {
    return DragOver(keys, at, effect);
}

HRESULT DropTarget::DragOver(DWORD, POINTL, DWORD* effect) {
    if (effect == nullptr) {
        return E_POINTER;
    }
    *effect &= static_cast<DWORD>(DROPEFFECT_COPY) | DROPEFFECT_LINK;
    return S_OK;
}

HRESULT DropTarget::Drop(IDataObject* data, DWORD keys, POINTL at, DWORD* effect) {
    const std::wstring file = data != nullptr ? FirstFile(*data) : std::wstring();
    if (!file.empty() && m_control != nullptr) {
        m_control->Navigate(L"file:///" + file);
    }
    return DragOver(keys, at, effect);
}

} // namespace html
