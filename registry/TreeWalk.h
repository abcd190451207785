// The state of a walk through a tree of keys. It is a stack of its own because keys may be nested
// deeper than the program's stack reaches.
#pragma once

#include <algorithm>
#include <cstdint>

#include "base/CKORString.h"
#include "base/CTable1D.h"

// One for each key from the start of the walk to where it is now.
struct WalkLevel {
    CTable1D<CKORString> Names; // of the subkeys
    std::int64_t Next = 0;      // the subkey that is walked, or the next one
    std::int64_t TargetLength = 0;

    bool IsDone() const { return Next == Names.Count(); }
};

class TreeWalk {
public:
    WalkLevel& Push() {
        if (m_depth == m_levels.Count()) {
            m_levels.SetSize(std::max<std::int64_t>(8, 2 * m_depth), true);
        }
        return m_levels[m_depth++] = WalkLevel();
    }
    void Pop() { m_levels[--m_depth] = WalkLevel(); }
    bool IsEmpty() const { return m_depth == 0; }
    WalkLevel& Top() { return m_levels[m_depth - 1]; }

private:
    CTable1D<WalkLevel> m_levels;
    std::int64_t m_depth = 0;
};
