// What must hold of kordiag's answers whatever the installation is: a thousand of them, drawn at
// random.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "diag/PageState.h"
#include "tests/diag/Captured.h"
#include "tests/diag/FakeEngine.h"
#include "tests/support/GuardedMemory.h"
#include "tests/support/TestInstallation.h"

namespace {

// Makes an installation in which anything may be missing or wrong.
class RandomInstallation {
public:
    explicit RandomInstallation(std::mt19937& random) : m_random(random), m_isRight(Draw(8) == 0) {
        SetAny(test::InstallKey, L"installdir", L"C:\\KorTest\\Lib\\");
        SetAny(test::InstallKey + L"\\KOR", L"ExamplesRootPath", L"C:\\KorTest\\Ex");
        SetAny(test::InstallKey + L"\\ActiveKor", L"ExamplesRootPath", L"C:\\KorTest\\AEx");
        SetAny(test::FlowForgeKey, L"InstallationPath", L"C:\\KorTest\\FF");
        SetAny(test::VersionsKey + L"\\3.0", L"InstallationPath", L"C:\\KorTest\\FF");
        SetAny(test::VersionsKey + L"\\2.1", L"InstallationPath", L"C:\\KorTest\\FF");
        SetAny(L"Wow6432Node\\" + test::VersionsKey + L"\\2.1", L"InstallationPath",
               L"C:\\KorTest\\FF");
        SetAny(test::LibraryKey, L"KorVersion", L"1");
        SetAny(test::LibraryKey, L"KORType", Draw(2) == 0 ? L"Development" : L"Runtime");
        if (Draw(2) == 0) {
            m_installed.MakeKey(test::LibraryKey + L"\\RTX");
        }
        // What is there decides what else there might be.
        MakeSomeTargets();
        MakeSomeTargets();
        if (m_isRight && Draw(2) == 0) {
            TakeOneFileAway();
        }
    }

private:
    std::size_t Draw(std::size_t count) { return m_random() % count; }

    // The right text, or anything else.
    void SetAny(const std::wstring& key, const wchar_t* value, const wchar_t* text) {
        constexpr const wchar_t* Folders[] = {L"C:\\KorTest\\Lib", L"C:\\KorTest\\Gone\\", L""};
        const DWORD number = 1;
        switch (m_isRight ? 7 : Draw(8)) {
        case 0:
            break;
        case 1:
            m_installed.SetBytes(key, value, REG_DWORD, &number, sizeof number);
            break;
        case 2:
            m_installed.SetText(L"Wow6432Node\\" + key, value, text);
            break;
        case 3:
            m_installed.SetText(key, value, Folders[Draw(std::size(Folders))]);
            break;
        default:
            m_installed.SetText(key, value, text);
        }
    }

    // Seldom all, since files take the most time.
    void MakeSomeTargets() {
        const bool isWhole = m_isRight || Draw(10) == 0;
        for (const wchar_t* const path :
             {L"C:\\KorTest\\FF\\FlowForge.exe", L"C:\\KorTest\\Lib\\ActiveKOR\\Controls\\kor.ocx",
              L"C:\\KorTest\\FF\\Tools\\FlowForgeRuntimeManager.exe",
              L"C:\\KorTest\\Lib\\Tutorial videos\\a"}) {
            if (isWhole || Draw(2) == 0) {
                m_installed.MakeFile(path);
            }
        }
        const PageState state;
        for (const ControlCenterSection* const section : state.Page.Sections) {
            for (const ControlCenterItem* const item : *section) {
                const bool isHere = wcsncmp(item->Path.Text(), L"C:\\KorTest\\", 11) == 0;
                if (isHere && !item->IsShown() && (isWhole || Draw(6) == 0)) {
                    item->Type == ItemFolder ? m_installed.MakeFolder(item->Path.Text())
                                             : m_installed.MakeFile(item->Path.Text());
                }
            }
        }
    }

    // So that one fault alone is not sound, wherever it is.
    void TakeOneFileAway() {
        std::vector<std::wstring> files;
        const PageState state;
        for (const ControlCenterSection* const section : state.Page.Sections) {
            for (const ControlCenterItem* const item : *section) {
                if (item->WasShown && item->Type != ItemFolder) {
                    files.emplace_back(item->Path.Text());
                }
            }
        }
        m_installed.DeleteFileOf(files[Draw(files.size())]);
    }

    test::TestInstallation m_installed;
    std::mt19937& m_random;
    bool m_isRight; // all of it
};

using Ids = std::vector<std::string>;

// The ids of the links, in their order.
Ids ShownOnPage(const std::string& page) {
    constexpr std::string_view Opening = "<SPAN class=item id=";
    Ids ids;
    for (std::size_t at = page.find(Opening); at != page.npos; at = page.find(Opening, at)) {
        at += Opening.size();
        ids.push_back(page.substr(at, page.find(' ', at) - at));
    }
    return ids;
}

Ids ShownInCatalogue(const std::string& json) {
    constexpr std::string_view Id = "\"id\":\"";
    constexpr std::string_view Shown = "\"shown\":";
    Ids ids;
    for (std::size_t at = json.find(Id); at != json.npos; at = json.find(Id, at)) {
        at += Id.size();
        const std::string id = json.substr(at, json.find('"', at) - at);
        if (json[json.find(Shown, at) + Shown.size()] == 't') {
            ids.push_back(id);
        }
    }
    return ids;
}

// A hundred installations each, so that parts can run beside each other.
class RandomInstallations : public testing::TestWithParam<int> {};

TEST_P(RandomInstallations, AreSeenAlikeByCheckCatalogueAndPage) {
    constexpr int Count = 100;
    // The same installations on every run, unless others are asked for.
    const char* const given = std::getenv("KOR_TEST_SEED");
    const int first = (given != nullptr ? std::atoi(given) : 1000) + GetParam() * Count;
    const test::FakeEngine engine;
    int sound = 0;
    for (int seed = first; seed < first + Count && !HasFailure(); ++seed) {
        SCOPED_TRACE("KOR_TEST_SEED=" + std::to_string(seed));
        // Guards take more time than all else; every tenth installation has them.
        const auto unguarded = seed % 10 != 0 ? std::make_unique<test::PlainMemory>() : nullptr;
        std::mt19937 random(static_cast<unsigned>(seed));
        const RandomInstallation installation(random);
        const std::string catalogue = test::OutputOf({L"catalogue", L"--json"});
        const std::string page = test::OutputOf({L"page"});
        const std::string check = test::OutputOf({L"check", L"--json"});
        EXPECT_EQ(ShownInCatalogue(catalogue), ShownOnPage(page));
        if (check.find("\"verdict\":\"sound\"") != std::string::npos) {
            ++sound;
            EXPECT_EQ(catalogue.find("\"shown\":false"), std::string::npos) << check;
            EXPECT_NE(catalogue.find("\"shown\":true"), std::string::npos) << check;
        } else {
            EXPECT_NE(check.find("\"verdict\":\"broken\""), std::string::npos);
        }
    }
    EXPECT_GT(sound, 0) << "the draw makes sound installations, too";
    std::printf("seeds %d to %d: %d installations are sound\n", first, first + Count - 1, sound);
}

INSTANTIATE_TEST_SUITE_P(Parts, RandomInstallations, testing::Range(0, 10));

} // namespace
