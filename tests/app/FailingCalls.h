// The calls that the test program makes to a COM object which is not its own, one of which fails.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <string>

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
    // The call that failed: the interface and the number of the method.
    std::string Failed() const {
        return std::string(m_failedInterface) + " " + std::to_string(m_failedMethod);
    }
    // What the last release by the test program said to be left.
    ULONG References() const { return m_references; }

    // What the watched methods do first.
    bool NextFails(const char* interfaceName, std::size_t method) {
        if (++m_calls != m_failing) {
            return false;
        }
        m_failedInterface = interfaceName;
        m_failedMethod = method;
        return true;
    }
    void NoteReferences(ULONG references) { m_references = references; }

private:
    int m_failing;
    int m_calls = 0;
    ULONG m_references = 0;
    const char* m_failedInterface = "";
    std::size_t m_failedMethod = 0;
};

} // namespace test
