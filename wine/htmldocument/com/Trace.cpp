// Composes the description and puts it in place of the previous one.
#include "wine/htmldocument/com/Trace.h"

#include <cmath>

#include "wine/htmldocument/com/ComObjects.h"
#include "wine/htmldocument/com/Json.h"
#include "wine/htmldocument/com/Modes.h"

namespace html {
namespace {

constexpr wchar_t PathVariable[] = L"KOR_HTML_TRACE";

std::string Number(double value) {
    return std::to_string(std::lround(value));
}

std::string Flag(bool value) {
    return value ? "true" : "false";
}

std::string ColorText(COLORREF color) {
    constexpr char Digits[] = "0123456789abcdef";
    std::string text = "\"#";
    for (const BYTE part : {GetRValue(color), GetGValue(color), GetBValue(color)}) {
        text += Digits[part >> 4];
        text += Digits[part & 0xF];
    }
    return text + '"';
}

bool IsTraced(const Node& node) {
    return node.Tag() == L"img" || node.Tag() == L"h2" || node.Tag() == L"td" ||
           node.Tag() == L"span" || node.Tag() == L"a" ||
           (node.Tag() == L"div" && node.FindAttribute(L"id") != nullptr);
}

// One object for each element of interest that is shown, in document order.
void DescribeBoxes(const Node& node, const Page& page, const Layout& layout, POINT scroll,
                   std::string& json) {
    Area area;
    if (IsTraced(node) && layout.AreaOf(node, area)) {
        const Style style = page.StyleOf(node);
        json += json.back() == '[' ? "\n  {" : ",\n  {";
        json += "\"tag\":" + JsonText(node.Tag()) +
                ",\"id\":" + JsonText(node.AttributeOr(L"id", L"")) +
                ",\"class\":" + JsonText(node.AttributeOr(L"class", L"")) +
                ",\"text\":" + JsonText(node.InnerText()) + ",\"x\":" + Number(area.x - scroll.x) +
                ",\"y\":" + Number(area.y - scroll.y) + ",\"width\":" + Number(area.width) +
                ",\"height\":" + Number(area.height) + ",\"color\":" + ColorText(style.color) +
                ",\"cursor\":" + JsonText(style.cursor);
        if (node.Tag() == L"img") {
            json += ",\"loaded\":" + Flag(page.ImageOf(node) != nullptr);
        }
        json += '}';
    }
    for (const NodePtr& child : node.Children()) {
        DescribeBoxes(*child, page, layout, scroll, json);
    }
}

bool WriteWholeFile(const std::wstring& path, const std::string& bytes) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    DWORD written = 0;
    const bool good =
        WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
        written == bytes.size();
    CloseHandle(file);
    return good;
}

// Empty where nobody asked.
std::wstring TracePath() {
    wchar_t path[MAX_PATH] = {};
    const DWORD length = GetEnvironmentVariableW(PathVariable, path, ARRAYSIZE(path));
    return length < ARRAYSIZE(path) ? path : L"";
}

} // namespace

Trace::Trace() : m_path(TracePath()) {}

void Trace::NoteWrite(const std::wstring& id, std::wstring_view markup) {
    ++m_writes;
    if (!m_path.empty()) {
        m_markup[id] = markup;
    }
}

std::string Trace::Describe(Page& page, ViewWindow& view, bool loaded) const {
    RECT client = {};
    POINT corner = {};
    const POINT scroll = {view.Scroll().Left(), view.Scroll().Top()};
    const bool shown = view.Handle() != nullptr;
    if (shown) {
        GetClientRect(view.Handle(), &client);
        ClientToScreen(view.Handle(), &corner);
    }
    std::string json = "{\"sequence\":" + std::to_string(m_sequence) +
                       ",\"loaded\":" + Flag(loaded) + ",\"dpi\":" + std::to_string(view.Dpi()) +
                       ",\"window\":{\"x\":" + Number(corner.x) + ",\"y\":" + Number(corner.y) +
                       ",\"width\":" + Number(client.right) +
                       ",\"height\":" + Number(client.bottom) + "}";
    json += ",\"contentHeight\":" + Number(shown ? std::ceil(view.CurrentLayout().height) : 0) +
            ",\"scrollTop\":" + Number(scroll.y) + ",\n \"innerHtml\":{";
    for (const auto& entry : m_markup) {
        json +=
            (json.back() == '{' ? "" : ",") + JsonText(entry.first) + ":" + JsonText(entry.second);
    }
    json += "},\n \"url\":" + JsonText(url) + ",\"oddities\":\"" + oddities +
            "\",\"downloadControl\":" + std::to_string(downloadControl) +
            ",\"menus\":" + std::to_string(menus) +
            ",\"newWindows\":" + std::to_string(newWindows) +
            ",\"focus\":" + Flag(shown && GetFocus() == view.Handle()) +
            ",\n \"writes\":" + std::to_string(m_writes) +
            ",\"calls\":" + std::to_string(Modes::Calls()) +
            ",\n \"objects\":" + std::to_string(ModuleLock::Count()) + ",\n \"boxes\":[";
    if (shown) {
        DescribeBoxes(page.Root(), page, view.CurrentLayout(), scroll, json);
    }
    return json + "]}\n";
}

void Trace::WriteEnd() {
    const std::wstring path = TracePath();
    if (!path.empty()) {
        WriteWholeFile(path + L".end", "{\"objects\":" + std::to_string(ModuleLock::Count()) +
                                           ",\"calls\":" + std::to_string(Modes::Calls()) + "}\n");
    }
}

void Trace::Write(Page& page, ViewWindow& view, bool loaded) {
    if (m_path.empty()) {
        return;
    }
    ++m_sequence;
    const std::wstring temporary = m_path + L".new";
    if (WriteWholeFile(temporary, Describe(page, view, loaded))) {
        MoveFileExW(temporary.c_str(), m_path.c_str(), MOVEFILE_REPLACE_EXISTING);
    }
}

} // namespace html
