// The dialog with a page in a control, both fakes, and an installation.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <utility>

#include "app/CkorcontrolcenterDlg.h"
#include "tests/app/ModalRun.h"
#include "tests/support/TestInstallation.h"

namespace test {

class HostedDialog : public testing::Test {
protected:
    HostedDialog() {
        m_installation.SetText(test::LibraryKey, L"KorVersion", L"1");
        m_installation.SetText(test::LibraryKey, L"KORType", L"Development");
    }

    // The dialog from its start to its end. At each turn of its message loop something is done, or
    // it gets a message.
    template <typename... Turns>
    INT_PTR Run(Turns... turns) {
        return RunModal(m_dialog, m_page, {Do(std::move(turns))...});
    }
    Turn Completed() {
        return Do([this] { m_page.Complete(); });
    }

    // What the document would do with a key.
    HRESULT AskHost(UINT message, WPARAM key) {
        IDocHostUIHandler* handler = nullptr;
        EXPECT_EQ(m_page.Browser.Site->QueryInterface(IID_PPV_ARGS(&handler)), S_OK);
        MSG asked = {};
        asked.message = message;
        asked.wParam = key;
        const HRESULT result = handler->TranslateAccelerator(&asked, nullptr, 0);
        handler->Release();
        return result;
    }

    // How often the page was filled.
    std::size_t Fills() const { return m_page.Sections.InnerHtml.size(); }

    SIZE WindowSize() const {
        RECT window = {};
        GetWindowRect(m_dialog.m_hWnd, &window);
        return {window.right - window.left, window.bottom - window.top};
    }

    TestInstallation m_installation;
    FakePage m_page;
    CkorcontrolcenterDlg m_dialog;
};

} // namespace test
