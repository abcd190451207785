// One link of the page.
#pragma once

#include <cstdint>

#include "base/CKORString.h"
#include "catalogue/Installation.h"

class ControlCenterSection;

// How a click starts the item. Any other value is reported as invalid when clicked.
enum ControlCenterItemType : std::int32_t {
    ItemProgram = 0,         // Path with Arguments as its parameters
    ItemFolder = 1,          // Path; Arguments are not passed
    ItemDocument = 2,        // Path by its file association; Arguments are not passed
    ItemElevatedProgram = 3, // as a program, with elevation unless the user has it already
    ItemHelpTopic = 4,       // the help viewer with Path immediately followed by Arguments
};

// The longest label, in characters, of all items that were ever made. Nothing reads it:
// docs/quirks.md.
extern std::int64_t LongestLabelLength;

// An item takes its id from the number of items that its section holds at that moment, so it is
// appended to the section before the next one is made.
class ControlCenterItem {
public:
    ControlCenterItem(const ControlCenterSection* section, const CKORString& label,
                      const CKORString& prefix, const CKORString& suffix, const CKORString& path,
                      ControlCenterItemType type, const CKORString& arguments);
    ControlCenterItem(const ControlCenterItem&) = delete;
    ControlCenterItem& operator=(const ControlCenterItem&) = delete;
    ~ControlCenterItem() = default;

    // Whether the target exists now, which is asked of the file system each time.
    bool IsShown() const;

    CKORString Label;
    CKORString Path; // the item is shown only if it exists
    CKORString Prefix;
    CKORString Suffix;
    CKORString Arguments;
    ControlCenterItemType Type;
    CKORString Id;
    const ControlCenterSection* Section; // not owned
    PathBase Base = nullptr;             // what Path begins with
    bool WasShown = false;               // by the last composition
};
