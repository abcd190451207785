// The calls that the test program makes to a COM object which is not its own, one of which fails.
#pragma once

#include <windows.h>

#include <functional>

namespace test {

// One at a time. The object's interfaces that are known here are watched, and those that it gives
// out in turn; calls from anywhere else than the test program's own code go by unseen.
class FailingCalls {
public:
    // The call of that number fails, without being made; 0: none does.
    explicit FailingCalls(int failing);
    FailingCalls(const FailingCalls&) = delete;
    FailingCalls& operator=(const FailingCalls&) = delete;
    ~FailingCalls();

    // Makes the object, which is a call too, and watches it.
    HRESULT Make(const std::function<HRESULT()>& make, REFIID iid, void** object);

    int Calls() const { return m_calls; }
    // What the last release by the test program said to be left.
    ULONG References() const { return m_references; }

    // What the watched methods do first.
    bool NextFails() { return ++m_calls == m_failing; }
    void NoteReferences(ULONG references) { m_references = references; }

private:
    int m_failing;
    int m_calls = 0;
    ULONG m_references = 0;
};

} // namespace test
