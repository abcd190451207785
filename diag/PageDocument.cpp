// Assembles the document from the program's resources.
#include "diag/PageDocument.h"

#include <windows.h>

#include <string_view>

#include "res/resource.h"

namespace {

// Data of the program's resources; not owned.
std::string_view ResourceBytes(const wchar_t* name, const wchar_t* type) {
    const HRSRC found = FindResourceW(nullptr, name, type);
    const HGLOBAL loaded = found != nullptr ? LoadResource(nullptr, found) : nullptr;
    const void* const bytes = loaded != nullptr ? LockResource(loaded) : nullptr;
    if (bytes == nullptr) {
        return {};
    }
    return {static_cast<const char*>(bytes), SizeofResource(nullptr, found)};
}

std::wstring Base64(std::string_view bytes) {
    constexpr wchar_t Digits[] =
        L"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::wstring text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = bytes.size() - i < 3 ? bytes.size() - i : 3;
        unsigned group = 0;
        for (std::size_t j = 0; j < 3; ++j) {
            group = group * 256 + (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0U);
        }
        for (std::size_t j = 0; j < 4; ++j) {
            text += j <= count ? Digits[(group >> (18 - 6 * j)) & 63U] : L'=';
        }
    }
    return text;
}

// Puts text in front of, or in place of, the mark in the page's template.
bool Insert(std::wstring& page, std::wstring_view mark, std::wstring_view text, bool replaces) {
    const std::size_t place = page.find(mark);
    if (place == std::wstring::npos) {
        return false;
    }
    page.replace(place, replaces ? mark.size() : 0, text);
    return true;
}

} // namespace

bool MakeDocument(const CKORString& sections, std::wstring& document) {
    const std::string_view page =
        ResourceBytes(MAKEINTRESOURCEW(IDR_HTML_KORCONTROLCENTER_DIALOG), RT_HTML);
    const std::string_view banner = ResourceBytes(L"CONTROLCENTER.JPG", L"IMAGE");
    // The template is ASCII.
    document.assign(page.begin(), page.end());
    constexpr std::wstring_view BannerAddress = L"res:/IMAGE/CONTROLCENTER.JPG";
    constexpr std::wstring_view SectionsOpening = L"<div id=\"Sections\">";
    return !banner.empty() &&
           Insert(document, L"<style>", L"<meta charset=\"utf-8\">\r\n", false) &&
           Insert(document, BannerAddress, L"data:image/jpeg;base64," + Base64(banner), true) &&
           Insert(document, SectionsOpening, std::wstring(SectionsOpening) + sections.Text(), true);
}
