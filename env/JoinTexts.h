// Two texts in one fixed buffer. The runtime's bounded copies end the process when a text does not
// fit; a path that is too long must only make its operation fail.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cwchar>

// Writes first and second, one after the other, into the buffer. False when they do not fit with
// their terminator: the buffer is unchanged then, and the thread's last error is
// ERROR_FILENAME_EXCED_RANGE. Neither text may lie in the buffer.
template <std::size_t Size>
[[nodiscard]] bool JoinTexts(wchar_t (&buffer)[Size], const wchar_t* first, const wchar_t* second) {
    const std::size_t firstLength = std::wcslen(first);
    const std::size_t secondLength = std::wcslen(second);
    if (firstLength >= Size || secondLength >= Size - firstLength) {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return false;
    }
    std::wmemcpy(buffer, first, firstLength);
    std::wmemcpy(buffer + firstLength, second, secondLength + 1);
    return true;
}
