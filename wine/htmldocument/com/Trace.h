// Tells tests what the page looks like: a JSON file, written anew with each change, if the
// environment variable KOR_HTML_TRACE names one.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "wine/htmldocument/com/ViewWindow.h"
#include "wine/htmldocument/engine/Page.h"

namespace html {

class Trace {
public:
    Trace();
    bool IsWanted() const { return !m_path.empty(); }
    // Remembers markup that was written into an element.
    void NoteWrite(const std::wstring& id, std::wstring_view markup);
    // Readers see the file before or after, never in between.
    void Write(Page& page, ViewWindow& view, bool loaded);
    // As the process ends, or lets go of the library: how many objects are left, beside the trace
    // in a file whose name ends in ".end".
    static void WriteEnd();

    // What else is told.
    std::wstring url;
    std::string oddities; // answers of the host against COM's rules
    LONG downloadControl = -1;
    unsigned menus = 0;      // of the engine's own
    unsigned newWindows = 0; // likewise

private:
    std::string Describe(Page& page, ViewWindow& view, bool loaded) const;

    std::wstring m_path; // empty: nobody asked
    unsigned m_sequence = 0;
    unsigned m_writes = 0;
    std::map<std::wstring, std::wstring> m_markup;
};

} // namespace html
