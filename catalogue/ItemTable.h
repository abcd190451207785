// Sections as data: a builder hands its rows to one loop, which makes the items.
#pragma once

#include "base/CKORString.h"
#include "catalogue/ControlCenterItem.h"
#include "catalogue/ControlCenterSection.h"
#include "catalogue/SectionBuilders.h"
#include "env/PathTests.h"
#include "registry/StringUtilities.h"

// How a row's relative text is joined to its base.
enum class Join {
    Plain,     // one behind the other, slashes kept as written
    PathPiece, // AppendPathPiece: with a backslash between them where none is
};

// One item. Bases holds the texts that targets begin with (the installation's folders, say).
// The members that have a value here may be left out of a row.
template <typename Bases>
struct ItemRow {
    const wchar_t* Label;
    CKORString Bases::*Base;
    const wchar_t* Relative;
    ControlCenterItemType Type;
    const wchar_t* Arguments = L"";
    // The item is made only if it holds.
    bool (*Condition)(const Bases& bases, const CKORString& target) = nullptr;
    Join JoinedBy = Join::Plain;
    // The label of a target that is not an existing file.
    const wchar_t* LabelUnlessFile = nullptr;
};

template <typename Bases>
CKORString TargetOf(const ItemRow<Bases>& row, const Bases& bases) {
    CKORString target(bases.*row.Base);
    if (row.JoinedBy == Join::PathPiece) {
        AppendPathPiece(target, row.Relative);
    } else {
        target += row.Relative;
    }
    return target;
}

template <typename Bases, std::size_t N>
void AddItems(ControlCenterSection& section, const ItemRow<Bases> (&rows)[N], const Bases& bases) {
    for (const ItemRow<Bases>& row : rows) {
        const CKORString target = TargetOf(row, bases);
        if (row.Condition != nullptr && !row.Condition(bases, target)) {
            continue;
        }
        const bool otherLabel = row.LabelUnlessFile != nullptr && !IsExistingFile(target.Text());
        section.Add(new ControlCenterItem(&section, otherLabel ? row.LabelUnlessFile : row.Label,
                                          L"", L"", target, row.Type, row.Arguments));
    }
}

// The section is in the list before its first item is made.
inline ControlCenterSection& AddSection(SectionTable& sections, const CKORString& key,
                                        const CKORString& title) {
    auto* const section = new ControlCenterSection(key, title);
    sections.Add(section);
    return *section;
}
