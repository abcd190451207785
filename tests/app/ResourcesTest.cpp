// The program's resources, as Windows finds them.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>

namespace {

std::string Resource(LPCWSTR name, LPCWSTR type) {
    const HRSRC found = FindResourceW(nullptr, name, type);
    EXPECT_NE(found, nullptr);
    if (found == nullptr) {
        return {};
    }
    return {static_cast<const char*>(LockResource(LoadResource(nullptr, found))),
            SizeofResource(nullptr, found)};
}

TEST(Resources, TheDialogTemplate) {
    const std::string bytes = Resource(MAKEINTRESOURCEW(102), RT_DIALOG);
    struct Template {
        WORD version, signature;
        DWORD help, exStyle, style;
        WORD items;
        short x, y, width, height;
        WORD menu, windowClass, title; // none, the standard one, empty
        WORD pointSize, weight;
        BYTE italic, characterSet;
        wchar_t font[13];
    };
    Template dialog = {};
    ASSERT_GE(bytes.size(), offsetof(Template, font) + sizeof(dialog.font));
    std::memcpy(&dialog, bytes.data(), offsetof(Template, font) + sizeof(dialog.font));
    EXPECT_EQ(dialog.version, 1);
    EXPECT_EQ(dialog.signature, 0xFFFF) << "the extended form";
    EXPECT_EQ(dialog.exStyle, static_cast<DWORD>(WS_EX_APPWINDOW));
    EXPECT_EQ(dialog.style, WS_POPUP | WS_VISIBLE | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME |
                                WS_MINIMIZEBOX | DS_SETFONT | DS_FIXEDSYS);
    EXPECT_EQ(dialog.items, 0);
    EXPECT_EQ(dialog.width, 603);
    EXPECT_EQ(dialog.height, 580);
    EXPECT_EQ(dialog.menu, 0);
    EXPECT_EQ(dialog.windowClass, 0);
    EXPECT_EQ(dialog.title, 0);
    EXPECT_EQ(dialog.pointSize, 8);
    EXPECT_STREQ(dialog.font, L"MS Shell Dlg");
}

// The lines of the page, each ended as Windows does.
constexpr const char* PageLines[] = {
    "<html>",
    "<head>",
    "<style>",
    "#bordertable table { BORDER-STYLE:solid; BORDER-COLOR:#AAAAAA; BORDER-WIDTH:1px }",
    "table.innertable{BORDER-WIDTH:0px}",
    "body { FONT: 68% franklin gothic,arial,helvetica; COLOR: #000000; line-height: 6pt; }",
    "td { FONT: 68% franklin gothic,arial,helvetica; COLOR: #000000; line-height: 12pt;}",
    "td.column {BORDER-STYLE:solid; BORDER-COLOR:#AAAAAA; BORDER-WIDTH:0px}",
    "h2 { MARGIN: 20px 0px -5px 10px; FONT: 130% franklin gothic,arial,helvetica; font-weight: bold; }",
    "</style>",
    "</head>",
    "<body>",
    "<div id=\"wholedocument\">",
    "<table width=\"100%\">",
    "<tr><td align=\"center\"><img src=\"res:/IMAGE/CONTROLCENTER.JPG\"></td></tr>",
    "</table>",
    "<table id=\"bordertable\" width=\"100%\">",
    "<tr><td width=\"100%\"><div id=\"Sections\"></div></td></tr>",
    "</table>",
    "</div>",
    "</body>",
    "</html>",
};

TEST(Resources, ThePageIsEightBitTextWithWindowsLineEnds) {
    std::string expected;
    for (const char* const line : PageLines) {
        expected += line;
        expected += "\r\n";
    }
    EXPECT_EQ(Resource(MAKEINTRESOURCEW(129), MAKEINTRESOURCEW(23)), expected);
}

TEST(Resources, TheBannerIsAJpeg) {
    const std::string picture = Resource(L"CONTROLCENTER.JPG", L"IMAGE");
    EXPECT_EQ(picture.substr(0, 3), "\xFF\xD8\xFF");
    EXPECT_EQ(picture.substr(picture.size() - 2), "\xFF\xD9");
}

TEST(Resources, TheIconHasASmallAndALargeImage) {
    const std::string group = Resource(MAKEINTRESOURCEW(134), RT_GROUP_ICON);
    const HICON icon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(134));
    EXPECT_NE(icon, nullptr);
    // Six bytes of header, then 14 for each image, its width first.
    std::string widths;
    for (std::size_t entry = 6; entry + 14 <= group.size(); entry += 14) {
        widths += group[entry];
    }
    EXPECT_NE(widths.find('\x10'), std::string::npos);
    EXPECT_NE(widths.find('\x20'), std::string::npos);
}

TEST(Resources, TheVersionInformationNamesTheProduct) {
    const std::string version = Resource(MAKEINTRESOURCEW(1), RT_VERSION);
    const std::wstring text(reinterpret_cast<const wchar_t*>(version.data()),
                            version.size() / sizeof(wchar_t));
    for (const wchar_t* const part :
         {L"Vantrel Imaging Library Control Center", L"korcontrolcenter.exe"}) {
        EXPECT_NE(text.find(part), std::wstring::npos) << testing::PrintToString(part);
    }
}

} // namespace
