// kordiag page, kordiag sizes.
#include <windows.h>

#include <string>
#include <string_view>

#include "diag/Commands.h"
#include "diag/Reading.h"
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

// The template with everything in it that the launcher's window adds.
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

} // namespace

ExitCode RunPage(const Arguments& arguments, Streams& streams) {
    const PageState state;
    if (!arguments.Has(OptionDocument)) {
        streams.Out.Write(state.Page.PageHtml);
        return ExitCode::Answered;
    }
    std::wstring document;
    if (!MakeDocument(state.Page.PageHtml, document)) {
        streams.Err.Write(L"kordiag page: the program's resources are damaged\n");
        return ExitCode::No;
    }
    streams.Out.Write(document);
    return ExitCode::Answered;
}

ExitCode RunSizes(const Arguments& arguments, Streams& streams) {
    const PageState state(arguments.Dpi);
    return Answer(arguments, streams, [&](auto& output) { WriteSizes(output, state); });
}

void WriteSizes(JsonWriter& json, const PageState& state) {
    const ControlCenterPage& page = state.Page;
    json.BeginObject();
    json.Key(L"dpi").Number(std::int64_t{state.Dpi});
    json.Key(L"sectionBaseHeight").Number(page.SectionBaseHeight);
    json.Key(L"itemHeight").Number(page.ItemHeight);
    json.Key(L"baseWidth").Number(page.BaseWidth);
    json.Key(L"baseHeight").Number(page.BaseHeight);
    json.Key(L"windowWidth").Number(page.WindowWidth);
    json.Key(L"windowHeight").Number(page.WindowHeight);
    json.Key(L"rows").BeginArray();
    for (const std::int64_t height : state.RowHeights) {
        json.Number(height);
    }
    json.EndArray();
    json.EndObject();
}

void WriteSizes(Utf8Output& output, const PageState& state) {
    const ControlCenterPage& page = state.Page;
    output.Write(L"At ", state.Dpi, L" DPI, in pixels:\n");
    output.Write(L"  a section adds        ", page.SectionBaseHeight, L"\n");
    output.Write(L"  each shown item adds  ", page.ItemHeight, L"\n");
    output.Write(L"  window without rows   ", page.BaseWidth, L" x ", page.BaseHeight, L"\n");
    output.Write(L"  rows                 ");
    for (const std::int64_t height : state.RowHeights) {
        output.Write(L" ", height);
    }
    output.Write(state.RowHeights.Count() == 0 ? L" none\n" : L"\n");
    output.Write(L"  window                ", page.WindowWidth, L" x ", page.WindowHeight, L"\n");
}
