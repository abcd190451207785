// What every test with a real browser control needs: the library registered, a trace file of its
// own, and a host.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "tests/htmldocument/BrowserHost.h"
#include "tests/htmldocument/TraceReader.h"

namespace test {

class HostTest : public testing::Test {
protected:
    static void SetUpTestSuite();
    void SetUp() override;
    // Whatever a test does, nothing may be left behind.
    void TearDown() override;

    // A host with the page open and the markup in its element "Sections".
    void Show(const std::wstring& markup, SIZE client = {680, 600});
    Json Trace() const;
    // The middle of the element's box in the document's window; the test fails where there is none.
    POINT MiddleOf(const std::wstring& id) const;
    // The mouse's own messages, straight to the document's window.
    void MoveTo(POINT client) const;
    void ClickAt(POINT client) const;

    std::unique_ptr<BrowserHost> host;
};

// Whether the library's objects are all gone.
bool LibraryIsIdle();

} // namespace test
