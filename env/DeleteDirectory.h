// Deletion of a directory with everything in it.
#pragma once

// Both give false at the first thing that cannot be deleted, with the cause in the thread's last
// error; what was deleted until then stays deleted. Paths are built in buffers of 260 characters: a
// directory whose path has more than 257, or a file with more than 259, makes the deletion fail
// (ERROR_FILENAME_EXCED_RANGE), and so bounds the depth of the recursion. A null or empty path
// fails (ERROR_PATH_NOT_FOUND): it would stand for the root of the current drive.
// An entry whose name holds ".." is never deleted, and so keeps its directory from being deleted.
// An entry that is a link to a directory (a junction or a symbolic link) is removed itself; what it
// leads to is not touched. The path that is given is emptied, link or not.

// Fails on a read-only file.
[[nodiscard]] bool DeleteDirectory(const wchar_t* path);

// With mode 1, read-only files directly in the directory are deleted too; those in its
// subdirectories still make it fail.
[[nodiscard]] bool DeleteDirectoryForced(const wchar_t* path, int mode);
