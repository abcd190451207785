// Hovering over items and clicking them.
#include <gtest/gtest.h>
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <algorithm>
#include <memory>

#include "app/CkorcontrolcenterDlg.h"
#include "tests/app/ComFakes.h"
#include "tests/support/ImportHook.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TestInstallation.h"

namespace {

using Lines = std::vector<std::string>;

class ItemActivation : public testing::Test {
protected:
    ItemActivation() {
        m_element.Style = &m_style;
        m_element.Log = &m_log;
        m_style.Log = &m_log;
    }

    // Replaces the catalogue by one section for each key; item i of section s has the path
    // "<s>:<i>" and the arguments "args".
    void Fill(const std::vector<std::pair<const wchar_t*, int>>& sections) {
        while (m_dialog.Sections.Count() > 0) {
            delete m_dialog.Sections[m_dialog.Sections.Count() - 1];
            m_dialog.Sections.RemoveLast();
        }
        for (const auto& [key, items] : sections) {
            auto* const section = new ControlCenterSection(key, key);
            const std::int64_t number = m_dialog.Sections.Count();
            m_dialog.Sections.Add(section);
            for (int i = 0; i < items; ++i) {
                section->Add(
                    new ControlCenterItem(section, L"label", L"", L"",
                                          CKORString::Format(L"%d:%d", static_cast<int>(number), i),
                                          ItemFolder, L"args"));
            }
        }
    }

    // The path that a click on an element with this id opens; empty when nothing is opened.
    std::wstring Click(const std::optional<std::wstring>& id,
                       const std::optional<std::wstring>& text = L"text") {
        test::FakeElement element;
        element.Id = id;
        element.Text = text;
        std::wstring opened;
        int count = 0;
        HOOK_IMPORT(execute, ShellExecuteW, [&](HWND, LPCWSTR, LPCWSTR file, auto...) -> HINSTANCE {
            ++count;
            opened = file;
            return nullptr;
        });
        EXPECT_EQ(m_dialog.OnItemClick(element.Element()), S_OK);
        EXPECT_EQ(count, opened.empty() ? 0 : 1);
        return opened;
    }

    test::TestInstallation m_installation;
    Lines m_log;
    test::FakeStyle m_style;
    test::FakeElement m_element;
    test::FakeElement m_other;
    CkorcontrolcenterDlg m_dialog;
};

TEST_F(ItemActivation, HoveringSetsColorAndCursor) {
    EXPECT_EQ(m_dialog.OnItemMouseOver(m_element.Element()), S_OK);
    ASSERT_EQ(m_style.Colors.size(), 1U);
    EXPECT_EQ(m_style.Colors[0].vt, VT_I4);
    EXPECT_EQ(m_style.Colors[0].lVal, 0xFF0000);
    EXPECT_EQ(m_style.Cursors, std::vector<std::wstring>{L"hand"});
    EXPECT_EQ(m_log, (Lines{"color", "cursor"}));
    EXPECT_EQ(m_style.References, 0);
}

TEST_F(ItemActivation, LeavingResetsTheColorOnly) {
    EXPECT_EQ(m_dialog.OnItemMouseOut(m_element.Element()), S_OK);
    ASSERT_EQ(m_style.Colors.size(), 1U);
    EXPECT_EQ(m_style.Colors[0].vt, VT_I4);
    EXPECT_EQ(m_style.Colors[0].lVal, 0x0000FF);
    EXPECT_EQ(m_log, (Lines{"color"})) << "the cursor stays";
    EXPECT_EQ(m_style.References, 0);
}

TEST_F(ItemActivation, OneReferenceToTheHoveredElementIsHeld) {
    m_dialog.OnItemMouseOver(m_element.Element());
    EXPECT_EQ(m_element.References, 1);
    m_dialog.OnItemMouseOver(m_element.Element());
    EXPECT_EQ(m_element.References, 1);
    EXPECT_EQ(m_element.AddRefs, 1) << "it is the hovered one already";
    m_dialog.OnItemMouseOver(m_other.Element());
    EXPECT_EQ(m_element.References, 0);
    EXPECT_EQ(m_other.References, 1);
    m_dialog.OnItemMouseOut(m_element.Element());
    EXPECT_EQ(m_other.References, 0) << "whichever element is left";
    m_dialog.OnItemMouseOut(m_element.Element());
    EXPECT_EQ(m_element.References, 0);
    EXPECT_EQ(m_other.References, 0);
}

TEST_F(ItemActivation, TheNewReferenceIsTakenBeforeTheElementIsKept) {
    m_dialog.OnItemMouseOver(m_other.Element());
    m_element.OnAddRef = [&] {
        m_element.OnAddRef = nullptr;
        // Leaves the element that is kept now.
        m_dialog.OnItemMouseOut(m_other.Element());
        EXPECT_EQ(m_other.References, 0) << "the former one was kept until now";
        EXPECT_EQ(m_element.References, 0);
    };
    m_dialog.OnItemMouseOver(m_element.Element());
    EXPECT_EQ(m_element.AddRefs, 1);
    EXPECT_EQ(m_element.References, 1);
    m_dialog.OnItemMouseOut(m_element.Element());
}

TEST_F(ItemActivation, TheFormerElementIsReleasedAfterTheNewOneIsKept) {
    m_dialog.OnItemMouseOver(m_other.Element());
    m_other.OnRelease = [&] {
        m_other.OnRelease = nullptr;
        EXPECT_EQ(m_element.References, 1);
        m_dialog.OnItemMouseOut(m_element.Element());
        EXPECT_EQ(m_element.References, 0) << "the new one was kept already";
    };
    m_dialog.OnItemMouseOver(m_element.Element());
    EXPECT_EQ(m_other.References, 0);
}

TEST_F(ItemActivation, TheStyleIsReleasedBeforeTheHoveredElementChanges) {
    int changes = 0;
    const auto change = [&] {
        ++changes;
        EXPECT_EQ(m_log.back(), changes == 1 ? "cursor" : "color");
        EXPECT_EQ(m_style.References, 0);
    };
    m_element.OnAddRef = change;
    m_element.OnRelease = change;
    m_dialog.OnItemMouseOver(m_element.Element());
    EXPECT_EQ(changes, 1);
    m_dialog.OnItemMouseOut(m_element.Element());
    EXPECT_EQ(changes, 2);
}

TEST_F(ItemActivation, AnElementWithoutStyleIsHoveredToo) {
    m_element.Style = nullptr;
    EXPECT_EQ(m_dialog.OnItemMouseOver(m_element.Element()), S_OK);
    EXPECT_EQ(m_element.References, 1);
    EXPECT_EQ(m_dialog.OnItemMouseOut(m_element.Element()), S_OK);
    EXPECT_EQ(m_element.References, 0);
    EXPECT_TRUE(m_log.empty());
}

TEST_F(ItemActivation, TheDialogsEndReleasesTheHoveredElement) {
    auto dialog = std::make_unique<CkorcontrolcenterDlg>();
    dialog->OnItemMouseOver(m_element.Element());
    ASSERT_EQ(m_element.References, 1);
    dialog.reset();
    EXPECT_EQ(m_element.References, 0);
}

struct ClickCase {
    const wchar_t* id;
    const wchar_t* opened;
};

TEST_F(ItemActivation, TheIdNamesTheItem) {
    Fill({{L"KOR", 3},
          {L"A_B", 4},
          {L"TOOLS", 2},
          {L"tools", 5},
          {L"", 1},
          {L"EMPTY", 0},
          {L"LONG", 12}});
    const ClickCase cases[] = {
        {L"KOR_2", L"0:2"},
        {L"kor_0", L"0:0"}, // in any case
        {L"KoR_1", L"0:1"},
        {L"A_B_3", L"1:3"}, // at the last '_'
        {L"KOR_x", L"0:0"}, // no number is 0
        {L"KOR_", L"0:0"},
        {L"KOR_ 2", L"0:2"},
        {L"KOR_1x", L"0:1"},
        {L"KOR_+2", L"0:2"},
        {L"TOOLS_1", L"2:1"},
        {L"TOOLS_4", L"3:4"}, // the first section of the key has too few
        {L"TOOLS_5", L""},
        {L"LONG_010", L"6:10"}, // not octal
        {L"LONG_0x1", L"6:0"},  // nor hexadecimal
        {L"_0", L"4:0"},
        {L"KOR_3", L""},
        {L"KOR_-1", L""},
        {L"KOR_-2", L""},
        {L"KOR_-4096", L""}, // another page of memory
        {L"KOR_-1000000", L""},
        {L"KOR_-2147483648", L""},
        {L"KOR_2147483647", L""},
        {L"KOR_99999999999999999999", L""},
        {L"EMPTY_0", L""},
        {L"NONE_0", L""},
        {L"KOR2", L""},
        {L"KOR", L""},
        {L"", L""},
    };
    for (const ClickCase& c : cases) {
        EXPECT_EQ(Click(c.id), c.opened) << testing::PrintToString(std::wstring(c.id));
    }
}

TEST_F(ItemActivation, ABlankInTheKeyIsNeverMatched) {
    Fill({{L"A B", 1}});
    EXPECT_STREQ((*m_dialog.Sections[0])[0]->Id.Text(), L"A-B_0");
    EXPECT_EQ(Click(L"A-B_0"), L"") << "the id has '-' where the key has a blank";
}

TEST_F(ItemActivation, APlaceWithoutAnItemIsPassedOver) {
    Fill({{L"K", 1}, {L"K", 1}});
    ControlCenterSection& section = *m_dialog.Sections[0];
    delete section[0];
    section[0] = nullptr;
    EXPECT_EQ(Click(L"K_0"), L"1:0");
}

TEST_F(ItemActivation, AnEmptyPathLaunchesNothing) {
    Fill({{L"K", 1}});
    (*m_dialog.Sections[0])[0]->Path = L"";
    EXPECT_EQ(Click(L"K_0"), L"");
}

TEST_F(ItemActivation, AnElementWithoutIdOrTextIsIgnored) {
    Fill({{L"K", 1}});
    EXPECT_EQ(Click(std::nullopt), L"");
    EXPECT_EQ(Click(L"K_0", std::nullopt), L"");
    EXPECT_EQ(Click(std::nullopt, std::nullopt), L"");
    EXPECT_EQ(Click(L"K_0", L""), L"0:0") << "an empty text is one";
}

TEST_F(ItemActivation, TheTextsOfAnElementAreFreed) {
    Fill({{L"K", 1}});
    // Themselves: a copy that is freed instead leaves the original behind.
    std::vector<BSTR> allocated;
    std::vector<BSTR> freed;
    HOOK_IMPORT(allocate, SysAllocString, [&](const OLECHAR* text) {
        allocated.push_back(allocate.Original(text));
        return allocated.back();
    });
    HOOK_IMPORT(free, SysFreeString, [&](BSTR text) {
        if (text != nullptr) {
            freed.push_back(text);
        }
        free.Original(text);
    });
    for (const std::size_t count : {2U, 1U}) {
        allocated.clear();
        freed.clear();
        Click(L"K_0", count == 2 ? std::optional<std::wstring>(L"text") : std::nullopt);
        EXPECT_EQ(allocated.size(), count);
        EXPECT_TRUE(
            std::is_permutation(freed.begin(), freed.end(), allocated.begin(), allocated.end()));
    }
}

TEST_F(ItemActivation, TheTextsAreAskedForInOrderAndFreedAfterTheLaunch) {
    Fill({{L"K", 1}});
    Lines log;
    HOOK_IMPORT(allocate, SysAllocString, [&](const OLECHAR* text) {
        log.push_back("allocate " + test::Narrow(text));
        return allocate.Original(text);
    });
    HOOK_IMPORT(free, SysFreeString, [&](BSTR text) {
        if (text != nullptr) {
            log.push_back("free " + test::Narrow(text));
        }
        free.Original(text);
    });
    HOOK_IMPORT(execute, ShellExecuteW, [&](auto...) -> HINSTANCE {
        log.emplace_back("launch");
        return nullptr;
    });
    test::FakeElement element;
    element.Id = L"K_0";
    element.Text = L"text";
    m_dialog.OnItemClick(element.Element());
    ASSERT_EQ(log.size(), 5U);
    EXPECT_EQ(Lines(log.begin(), log.begin() + 3),
              (Lines{"allocate text", "allocate K_0", "launch"}));
    std::sort(log.begin() + 3, log.end());
    EXPECT_EQ(Lines(log.begin() + 3, log.end()), (Lines{"free K_0", "free text"}));
}

// A message box of the shell's lets F5 through.
TEST_F(ItemActivation, PathAndArgumentsOutliveTheCatalogue) {
    const int types[] = {ItemProgram, ItemFolder, ItemDocument, ItemElevatedProgram, ItemHelpTopic};
    for (const int type : types) {
        SCOPED_TRACE(type);
        Fill({{L"K", 1}});
        ControlCenterItem& item = *(*m_dialog.Sections[0])[0];
        item.Type = static_cast<ControlCenterItemType>(type);
        item.Path = L"C:\\path";
        item.Arguments = L"arguments";
        std::wstring file;
        std::wstring parameters;
        HOOK_IMPORT(admin, IsUserAnAdmin, [&]() -> BOOL {
            m_dialog.BuildSections();
            return TRUE;
        });
        HOOK_IMPORT(open, ShellExecuteW,
                    [&](HWND, LPCWSTR, LPCWSTR what, LPCWSTR with, auto...) -> HINSTANCE {
                        m_dialog.BuildSections();
                        file = what;
                        parameters = with != nullptr ? with : L"";
                        return nullptr;
                    });
        HOOK_IMPORT(start, ShellExecuteExW, [&](SHELLEXECUTEINFOW* what) -> BOOL {
            m_dialog.BuildSections();
            file = what->lpFile;
            parameters = what->lpParameters;
            return TRUE;
        });
        test::FakeElement element;
        element.Id = L"K_0";
        element.Text = L"text";
        m_dialog.OnItemClick(element.Element());
        const bool isTopic = type == ItemHelpTopic;
        const bool isProgram = type == ItemProgram || type == ItemElevatedProgram;
        EXPECT_EQ(file, isTopic ? L"hh.exe" : L"C:\\path");
        EXPECT_EQ(parameters, isTopic ? L"C:\\patharguments" : isProgram ? L"arguments" : L"");
    }
}

TEST_F(ItemActivation, AClickPassesPathArgumentsAndType) {
    Fill({{L"K", 1}});
    ControlCenterItem& item = *(*m_dialog.Sections[0])[0];
    item.Type = ItemHelpTopic;
    item.Path = L"C:\\a b\\help.chm";
    item.Arguments = L"::/topic.htm";
    std::wstring parameters;
    HOOK_IMPORT(execute, ShellExecuteW,
                [&](HWND, LPCWSTR, LPCWSTR, LPCWSTR given, auto...) -> HINSTANCE {
                    parameters = given;
                    return nullptr;
                });
    test::FakeElement element;
    element.Id = L"K_0";
    element.Text = L"";
    m_dialog.OnItemClick(element.Element());
    EXPECT_EQ(parameters, L"C:\\a b\\help.chm::/topic.htm");
}

} // namespace
