// The fonts of a page and the widths of its words.
#pragma once

#include <windows.h>

#include <map>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_map>

#include "wine/htmldocument/engine/Style.h"

namespace html {

// Device pixels.
struct Font {
    HFONT handle = nullptr;
    int ascent = 0;
    int descent = 0;
    int lineHeight = 0;
    std::unordered_map<std::wstring, int> widths; // of the words that were measured lately
};

// Owns the fonts; they live as long as the cache.
class FontCache {
public:
    FontCache();
    FontCache(const FontCache&) = delete;
    FontCache& operator=(const FontCache&) = delete;
    ~FontCache();

    Font& FontOf(const Style& style);
    int WidthOf(Font& font, std::wstring_view text);

private:
    using Key = std::tuple<std::wstring, int, bool, bool, bool>;
    // The first of the families that is installed, otherwise the first of those that a bare
    // machine may have.
    std::wstring InstalledFamily(const std::wstring& families);
    bool IsInstalled(const std::wstring& family);

    HDC m_dc;
    std::map<Key, Font> m_fonts;
    std::unordered_map<std::wstring, std::wstring> m_families;
};

} // namespace html
