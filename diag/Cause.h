// Why something of an installation is not as it should be: a code for scripts, words for people,
// and what to do about it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/CKORString.h"

// A code never changes its meaning. docs/kordiag.md lists them.
enum class Code {
    NothingInstalled,
    ValueMissing,
    ValueEmpty,
    ValueOfWrongType,
    ValueUnreadable,
    ValueInOtherView,
    BaseWithoutBackslash,
    TargetMissing,
    ManagerMissing,
    FolderEmpty,
    HelpFileBlocked,
    HelpViewerMissing,
    NoProgramForType,
    NoHtmlEngine,
    PageNotLoadable,
};

inline constexpr const wchar_t* CodeWords[] = {
    L"nothing-installed",      L"value-missing",     L"value-empty",
    L"value-of-wrong-type",    L"value-unreadable",  L"value-in-other-view",
    L"base-without-backslash", L"target-missing",    L"manager-missing",
    L"folder-empty",           L"help-file-blocked", L"help-viewer-missing",
    L"no-program-for-type",    L"no-html-engine",    L"page-not-loadable",
};

struct Cause {
    const wchar_t* Word() const { return CodeWords[static_cast<std::size_t>(Kind)]; }

    Code Kind;
    CKORString Found;
    CKORString Remedy;                 // the step in words, in front of the command if there is one
    std::vector<std::wstring> Command; // the exact command, word by word; empty when there is none
};

// The words as one command line, in the way that programs of Windows take theirs apart.
std::wstring CommandLineOf(const std::vector<std::wstring>& words);
