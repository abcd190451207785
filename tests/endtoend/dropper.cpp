// dropper.exe FILE: a small window to drag a file from. The end-to-end test presses the mouse in
// it, moves over the launcher and lets go. Prints what the target made of it, as OLE's effect.
#include <windows.h>

#include <ole2.h>
#include <shlobj.h>

#include <cstdio>

namespace {

constexpr wchar_t WindowClass[] = L"Dropper";
// In the corner of the test's screen, where no launcher reaches.
constexpr RECT Place = {1450, 1650, 1550, 1750};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

// Drops when the button is let go. It lives as long as the program.
class DropSource final : public IDropSource {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == IID_IDropSource ? this : nullptr;
        return *object != nullptr ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE QueryContinueDrag(BOOL escape, DWORD keys) override {
        if (escape) {
            return DRAGDROP_S_CANCEL;
        }
        return (keys & MK_LBUTTON) != 0 ? S_OK : DRAGDROP_S_DROP;
    }
    HRESULT STDMETHODCALLTYPE GiveFeedback(DWORD) override { return DRAGDROP_S_USEDEFAULTCURSORS; }
};

#pragma GCC diagnostic pop

IDataObject* g_data = nullptr; // what is dragged

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_LBUTTONDOWN) {
        DropSource source;
        DWORD effect = DROPEFFECT_NONE;
        DoDragDrop(g_data, &source, DROPEFFECT_COPY | DROPEFFECT_LINK, &effect);
        std::printf("%lu\n", effect);
        PostQuitMessage(0);
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// The file as the shell drags it; null where there is none.
IDataObject* DataOf(const wchar_t* path) {
    IShellFolder* folder = nullptr;
    LPCITEMIDLIST child = nullptr;
    void* data = nullptr;
    LPITEMIDLIST const list = ILCreateFromPathW(path);
    if (list != nullptr && SUCCEEDED(SHBindToParent(list, IID_IShellFolder,
                                                    reinterpret_cast<void**>(&folder), &child))) {
        folder->GetUIObjectOf(nullptr, 1, &child, IID_IDataObject, nullptr, &data);
        folder->Release();
    }
    ILFree(list);
    return static_cast<IDataObject*>(data);
}

} // namespace

int wmain(int argc, wchar_t** argv) {
    OleInitialize(nullptr);
    g_data = argc == 2 ? DataOf(argv[1]) : nullptr;
    if (g_data == nullptr) {
        return 1;
    }
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = Procedure;
    windowClass.lpszClassName = WindowClass;
    RegisterClassW(&windowClass);
    CreateWindowExW(WS_EX_TOPMOST, WindowClass, L"Dropper", WS_POPUP | WS_VISIBLE, Place.left,
                    Place.top, Place.right - Place.left, Place.bottom - Place.top, nullptr, nullptr,
                    nullptr, nullptr);
    MSG message = {};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        DispatchMessageW(&message);
    }
    g_data->Release();
    OleUninitialize();
    return 0;
}
