// Questions about a path or a text that are asked before something is shown or used. Each takes a
// null or empty text, which is no path and no URL; the file system is not touched for it.
#pragma once

namespace kor {

// Whether there is something of that path, as the shell sees it.
bool PathExists(const wchar_t* path);

} // namespace kor

// Whether the path exists and is a directory. False with the thread's last error set when it cannot
// be examined.
bool IsExistingDirectory(const wchar_t* path);

// Whether the path exists and is not a directory.
bool IsExistingFile(const wchar_t* path);

// Whether the text begins with "ftp://", "ftps://", "http://" or "https://", compared with case;
// no other scheme is one.
bool IsUrl(const wchar_t* text);
