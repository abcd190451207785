// The table of modes, and the count of calls.
#include "wine/htmldocument/com/Modes.h"

#include <windows.h>

#include <array>
#include <cwchar>
#include <optional>

namespace html {
namespace {

constexpr wchar_t ModesVariable[] = L"KOR_HTML_MODES";
constexpr std::wstring_view Worst = L"worst"; // all that are marked
constexpr std::wstring_view Fail = L"fail=";  // and the number of a call, from 1
constexpr UINT UnknownModeExit = 86;

constexpr struct {
    std::wstring_view name;
    Mode mode;
    bool inWorst;
} Table[] = {
    {L"at-once", Mode::AtOnce, false},
    {L"late-complete", Mode::LateComplete, true},
    {L"download-events", Mode::DownloadEvents, true},
    {L"no-key-ups", Mode::NoKeyUps, true},
    {L"asked-after-click", Mode::AskedAfterClick, true},
    {L"own-refresh-key", Mode::OwnRefreshKey, true},
    {L"silent-refresh", Mode::SilentRefresh, true},
    {L"context-menu", Mode::ContextMenu, true},
    {L"drops", Mode::Drops, true},
    {L"navigation-fails", Mode::NavigationFails, false},
    {L"unasked-navigation", Mode::UnaskedNavigation, true},
    {L"stale-sinks", Mode::StaleSinks, true},
    {L"asks-everything", Mode::AsksEverything, true},
    {L"refuses-optional", Mode::RefusesOptional, false},
};

std::wstring Variable() {
    std::array<wchar_t, 512> value{};
    const DWORD length =
        GetEnvironmentVariableW(ModesVariable, value.data(), static_cast<DWORD>(value.size()));
    return std::wstring(value.data(), length < value.size() ? length : 0);
}

// Calls the function with each name; false as soon as that is.
template <class Function>
bool ForEachName(std::wstring_view text, Function function) {
    while (!text.empty()) {
        const size_t comma = text.find(L',');
        const std::wstring_view name = text.substr(0, comma);
        if (!name.empty() && !function(name)) {
            return false;
        }
        text.remove_prefix(comma == std::wstring_view::npos ? text.size() : comma + 1);
    }
    return true;
}

// The number of a name "fail=N"; nothing for any other.
std::optional<unsigned> FailingCall(std::wstring_view name) {
    if (name.substr(0, Fail.size()) != Fail) {
        return std::nullopt;
    }
    return static_cast<unsigned>(
        std::wcstoul(std::wstring(name.substr(Fail.size())).c_str(), nullptr, 10));
}

unsigned g_calls = 0;
unsigned g_failing = 0;

} // namespace

Modes Modes::FromEnvironment() {
    Modes modes;
    if (!Parse(Variable(), modes)) {
        ExitProcess(UnknownModeExit);
    }
    return modes;
}

bool Modes::Parse(std::wstring_view text, Modes& modes) {
    return ForEachName(text, [&modes](std::wstring_view name) {
        bool known = FailingCall(name).value_or(0) != 0;
        for (const auto& row : Table) {
            if (name == row.name || (name == Worst && row.inWorst)) {
                modes.m_set.set(static_cast<size_t>(row.mode));
                known = true;
            }
        }
        return known;
    });
}

bool Modes::CallFails() {
    unsigned failing = 0;
    ForEachName(Variable(), [&failing](std::wstring_view name) {
        failing = FailingCall(name).value_or(failing);
        return true;
    });
    if (failing != g_failing) {
        g_failing = failing;
        g_calls = 0;
    }
    return ++g_calls == g_failing;
}

unsigned Modes::Calls() {
    return g_calls;
}

} // namespace html
