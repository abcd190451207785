// How the document behaves where MSHTML's documentation leaves several ways, or one that hurts: a
// test chooses with the environment variable KOR_HTML_MODES. See README.md.
#pragma once

#include <bitset>
#include <string>
#include <string_view>

namespace html {

enum class Mode {
    AtOnce,
    LateComplete,
    DownloadEvents,
    NoKeyUps,
    AskedAfterClick,
    OwnRefreshKey,
    SilentRefresh,
    ContextMenu,
    Drops,
    NavigationFails,
    UnaskedNavigation,
    StaleSinks,
    AsksEverything,
    RefusesOptional,
    Count
};

class Modes {
public:
    // What KOR_HTML_MODES names now. A name that is not in the table ends the process: a test that
    // misspells a mode must not pass without it.
    static Modes FromEnvironment();
    // text: names separated by commas. False when one is unknown.
    static bool Parse(std::wstring_view text, Modes& modes);
    bool Has(Mode mode) const { return m_set.test(static_cast<size_t>(mode)); }

    // Counts a call of the host or the browser control; true for the one that "fail=N" names. The
    // count is the process's and begins anew when N changes.
    static bool CallFails();
    static unsigned Calls();

private:
    std::bitset<static_cast<size_t>(Mode::Count)> m_set;
};

} // namespace html
