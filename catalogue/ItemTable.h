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

// Whether an item is made. Without a test it always is.
template <typename Bases>
struct ItemCondition {
    bool (*Holds)(const CKORString& tested) = nullptr;
    CKORString Bases::* Tested = nullptr; // null: the item's target
    // The reason to note when it is not made, which is always a folder's; null when another row
    // takes its place.
    const wchar_t* Otherwise = nullptr;
};

// For conditions.
inline bool IsDirectory(const CKORString& path) {
    return IsExistingDirectory(path.Text());
}

// One item. Bases holds the texts that targets begin with (the installation's folders, say).
// The members that have a value here may be left out of a row.
template <typename Bases>
struct ItemRow {
    const wchar_t* Label;
    CKORString Bases::* Base;
    const wchar_t* Relative;
    ControlCenterItemType Type;
    const wchar_t* Arguments = L"";
    ItemCondition<Bases> Condition = {};
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

inline PathBase PathBaseOf(PathBase base) {
    return base;
}

// The texts of a version of Flow Forge, which no question of the installation gives.
template <typename Bases>
PathBase PathBaseOf(CKORString Bases::*) {
    return nullptr;
}

// False when the row's condition does not hold, with a note unless it is one of alternatives.
template <typename Bases>
bool IsMade(Catalogue& catalogue, const ControlCenterSection& section, const ItemRow<Bases>& row,
            const Bases& bases, const CKORString& target) {
    const ItemCondition<Bases>& condition = row.Condition;
    const CKORString& tested = condition.Tested != nullptr ? bases.*condition.Tested : target;
    if (condition.Holds == nullptr || condition.Holds(tested)) {
        return true;
    }
    if (condition.Otherwise != nullptr) {
        catalogue.Omissions.Add(
            {section.Title, row.Label, condition.Otherwise, Looked::AtFolder, tested,
             PathBaseOf(condition.Tested != nullptr ? condition.Tested : row.Base)});
    }
    return false;
}

template <typename Bases, std::size_t N>
void AddItems(Catalogue& catalogue, ControlCenterSection& section, const ItemRow<Bases> (&rows)[N],
              const Bases& bases) {
    const CKORString nothing;
    for (const ItemRow<Bases>& row : rows) {
        const CKORString target = TargetOf(row, bases);
        if (!IsMade(catalogue, section, row, bases, target)) {
            continue;
        }
        const bool otherLabel = row.LabelUnlessFile != nullptr && !IsExistingFile(target.Text());
        auto* const item =
            new ControlCenterItem(&section, otherLabel ? row.LabelUnlessFile : row.Label, nothing,
                                  nothing, target, row.Type, row.Arguments);
        item->Base = PathBaseOf(row.Base);
        section.Add(item);
    }
}

// The section is in the list before its first item is made.
inline ControlCenterSection& AddSection(Catalogue& catalogue, const CKORString& key,
                                        const CKORString& title) {
    auto* const section = new ControlCenterSection(key, title);
    catalogue.Add(section);
    return *section;
}
