// Turns wide text into UTF-8 and writes it.
#include "diag/Utf8Output.h"

#include <algorithm>
#include <utility>

namespace {

// A console takes no more than about 32 KB at a time.
constexpr std::size_t PieceCharacters = 8192;
// Of one UTF-16 unit.
constexpr std::size_t MostUtf8Bytes = 3;

bool IsHighSurrogate(wchar_t c) {
    return c >= 0xD800 && c <= 0xDBFF;
}

} // namespace

Utf8Output::Utf8Output(HANDLE handle) : m_handle(handle) {
    DWORD mode = 0;
    m_isConsole = GetConsoleMode(handle, &mode) != FALSE;
    m_pending.reserve(PieceCharacters);
}

Utf8Output::~Utf8Output() {
    Flush();
}

void Utf8Output::Put(std::wstring_view text) {
    while (!text.empty() && IsOpen()) {
        const std::size_t taken = std::min(text.size(), PieceCharacters - m_pending.size());
        m_pending.append(text.substr(0, taken));
        text.remove_prefix(taken);
        if (m_pending.size() == PieceCharacters) {
            // The two halves of a surrogate pair are converted together.
            const bool holdsBack = IsHighSurrogate(m_pending.back());
            const wchar_t last = m_pending.back();
            Pass(std::wstring_view(m_pending).substr(0, PieceCharacters - (holdsBack ? 1 : 0)));
            m_pending.assign(holdsBack ? 1 : 0, last);
        }
    }
}

void Utf8Output::Put(const CKORString& text) {
    Put(std::wstring_view(text.Text(), static_cast<std::size_t>(text.Length())));
}

void Utf8Output::Put(std::int64_t number) {
    Put(std::to_wstring(number));
}

void Utf8Output::Flush() {
    Pass(m_pending);
    m_pending.clear();
}

std::wstring Utf8Output::Take() {
    Flush();
    return std::exchange(m_kept, {});
}

bool Utf8Output::ReaderIsGone() const {
    return m_error == ERROR_BROKEN_PIPE || m_error == ERROR_NO_DATA ||
           m_error == ERROR_PIPE_NOT_CONNECTED;
}

void Utf8Output::Pass(std::wstring_view text) {
    if (text.empty() || !IsOpen()) {
        return;
    }
    if (m_keeps) {
        m_kept += text;
        return;
    }
    if (m_isConsole) {
        PassToConsole(text);
        return;
    }
    // A surrogate without its other half becomes U+FFFD: UTF-8 has no form for it.
    std::string bytes(text.size() * MostUtf8Bytes, '\0');
    const int count =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), bytes.data(),
                            static_cast<int>(bytes.size()), nullptr, nullptr);
    PassBytes(bytes.data(), static_cast<std::size_t>(count));
}

void Utf8Output::PassToConsole(std::wstring_view text) {
    while (!text.empty() && IsOpen()) {
        DWORD written = 0;
        if (WriteConsoleW(m_handle, text.data(), static_cast<DWORD>(text.size()), &written,
                          nullptr) == FALSE ||
            written == 0) {
            m_error = ERROR_WRITE_FAULT;
            return;
        }
        text.remove_prefix(written);
    }
}

void Utf8Output::PassBytes(const char* bytes, std::size_t count) {
    while (count > 0 && IsOpen()) {
        DWORD written = 0;
        if (WriteFile(m_handle, bytes, static_cast<DWORD>(count), &written, nullptr) == FALSE) {
            const DWORD error = GetLastError();
            m_error = error != ERROR_SUCCESS ? error : ERROR_WRITE_FAULT;
            return;
        }
        if (written == 0) {
            m_error = ERROR_WRITE_FAULT;
            return;
        }
        bytes += written;
        count -= written;
    }
}
