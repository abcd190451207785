// Chooses, makes and measures fonts through GDI.
#include "wine/htmldocument/engine/FontCache.h"

#include <algorithm>
#include <cmath>

#include "wine/htmldocument/engine/TextTools.h"

namespace html {
namespace {

// Stand-ins for the usual sans-serif families, the most alike first.
constexpr std::wstring_view StandIns[] = {L"Liberation Sans", L"Arimo", L"Nimbus Sans",
                                          L"DejaVu Sans", L"Tahoma"};

// Pages say the same words again and again; damaged ones say a new one each time.
constexpr size_t MaxRememberedWidths = 2000;

int CALLBACK NoteFamily(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

} // namespace

FontCache::FontCache() : m_dc(CreateCompatibleDC(nullptr)) {}

FontCache::~FontCache() {
    DeleteDC(m_dc);
    for (const auto& entry : m_fonts) {
        DeleteObject(entry.second.handle);
    }
}

bool FontCache::IsInstalled(const std::wstring& family) {
    LOGFONTW sought = {};
    if (family.empty() || family.size() >= LF_FACESIZE) {
        return false;
    }
    std::copy(family.begin(), family.end(), sought.lfFaceName);
    sought.lfCharSet = DEFAULT_CHARSET;
    bool found = false;
    EnumFontFamiliesExW(m_dc, &sought, NoteFamily, reinterpret_cast<LPARAM>(&found), 0);
    return found;
}

std::wstring FontCache::InstalledFamily(const std::wstring& families) {
    const auto known = m_families.find(families);
    if (known != m_families.end()) {
        return known->second;
    }
    std::wstring installed;
    for (size_t start = 0; start <= families.size() && installed.empty();) {
        const size_t comma = std::min(families.find(L',', start), families.size());
        std::wstring name(Trim(std::wstring_view(families).substr(start, comma - start)));
        name.erase(std::remove_if(name.begin(), name.end(),
                                  [](wchar_t c) { return c == L'"' || c == L'\''; }),
                   name.end());
        if (IsInstalled(name)) {
            installed = name;
        }
        start = comma + 1;
    }
    for (const std::wstring_view standIn : StandIns) {
        if (installed.empty() && IsInstalled(std::wstring(standIn))) {
            installed = standIn;
        }
    }
    m_families[families] = installed;
    return installed;
}

Font& FontCache::FontOf(const Style& style) {
    const int size = std::max(1, static_cast<int>(std::lround(style.fontSize)));
    const Key key(style.fontFamily, size, style.bold, style.italic, style.underline);
    const auto known = m_fonts.find(key);
    if (known != m_fonts.end()) {
        return known->second;
    }
    Font font;
    font.handle =
        CreateFontW(-size, 0, 0, 0, style.bold ? FW_BOLD : FW_NORMAL, style.italic ? TRUE : FALSE,
                    style.underline ? TRUE : FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                    CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, VARIABLE_PITCH | FF_SWISS,
                    InstalledFamily(style.fontFamily).c_str());
    const HGDIOBJ previous = SelectObject(m_dc, font.handle);
    TEXTMETRICW metrics = {};
    if (GetTextMetricsW(m_dc, &metrics)) {
        font.ascent = metrics.tmAscent;
        font.descent = metrics.tmDescent;
        font.lineHeight = metrics.tmHeight + metrics.tmExternalLeading;
    }
    SelectObject(m_dc, previous);
    return m_fonts.emplace(key, font).first->second;
}

int FontCache::WidthOf(Font& font, std::wstring_view text) {
    const std::wstring key(text);
    const auto known = font.widths.find(key);
    if (known != font.widths.end()) {
        return known->second;
    }
    const HGDIOBJ previous = SelectObject(m_dc, font.handle);
    SIZE size = {};
    GetTextExtentPoint32W(m_dc, text.data(), static_cast<int>(text.size()), &size);
    SelectObject(m_dc, previous);
    if (font.widths.size() >= MaxRememberedWidths) {
        font.widths.clear();
    }
    font.widths[key] = size.cx;
    return size.cx;
}

} // namespace html
