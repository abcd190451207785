// Tells the end-to-end test what this Windows answers for the measures that the window's size is
// made of, as "NAME VALUE" lines.
#include <windows.h>

#include <cstdio>

int main() {
    // The launcher's manifest says the same. Else Wine 10 answers for a screen of 96 dots an inch.
    SetProcessDPIAware();
    const struct {
        const char* name;
        int index;
    } metrics[] = {{"SM_CXVSCROLL", SM_CXVSCROLL},
                   {"SM_CYHSCROLL", SM_CYHSCROLL},
                   {"SM_CXDLGFRAME", SM_CXDLGFRAME},
                   {"SM_CYDLGFRAME", SM_CYDLGFRAME},
                   {"SM_CYMENU", SM_CYMENU}};
    for (const auto& metric : metrics) {
        std::printf("%s %d\n", metric.name, GetSystemMetrics(metric.index));
    }
    return 0;
}
