// A call that happens when the thread next looks for messages.
#pragma once

#include <windows.h>

#include <functional>

namespace html {

class PostedCall {
public:
    PostedCall() = default;
    PostedCall(const PostedCall&) = delete;
    PostedCall& operator=(const PostedCall&) = delete;
    ~PostedCall() { Cancel(); }

    // Replaces a call that did not happen yet. milliseconds: how long it waits at least.
    void Post(std::function<void()> call, DWORD milliseconds = 0);
    void Cancel();

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    HWND m_window = nullptr; // one window for each post, gone with the call
    std::function<void()> m_call;
};

} // namespace html
