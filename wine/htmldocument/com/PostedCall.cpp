// A message-only window carries the call.
#include "wine/htmldocument/com/PostedCall.h"

#include <utility>

namespace html {
namespace {
constexpr UINT CallMessage = WM_APP;
}

void PostedCall::Post(std::function<void()> call, DWORD milliseconds) {
    Cancel();
    m_call = std::move(call);
    m_window =
        CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(m_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetWindowLongPtrW(m_window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(Procedure));
    if (milliseconds == 0) {
        PostMessageW(m_window, CallMessage, 0, 0);
    } else {
        SetTimer(m_window, 1, milliseconds, nullptr);
    }
}

void PostedCall::Cancel() {
    if (m_window != nullptr) {
        DestroyWindow(std::exchange(m_window, nullptr));
    }
    m_call = nullptr;
}

LRESULT CALLBACK PostedCall::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != CallMessage && message != WM_TIMER) {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    auto* const self = reinterpret_cast<PostedCall*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    const std::function<void()> call = std::move(self->m_call);
    self->Cancel();
    call();
    return 0;
}

} // namespace html
