// Walks through two documents at once; entries meet by their names.
#include "diag/Comparison.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace {

// When a report was made, what was written when, how often users logged on since the computer was
// started, and whether names are left out says nothing about the computer.
constexpr const wchar_t* Uncounted[] = {L"date", L"written", L"session", L"redacted"};

// The arrays whose entries may come in any order, and what an entry is known by.
struct SetRow {
    const wchar_t* Array;
    const wchar_t* Member;
    const wchar_t* SecondMember; // may be null
};

constexpr SetRow Sets[] = {
    {L"queries", L"query", nullptr},    {L"installKeys", L"key", nullptr},
    {L"sections", L"key", nullptr},     {L"items", L"id", nullptr},
    {L"notBuilt", L"section", L"item"}, {L"roots", L"id", nullptr},
    {L"rtxRoots", L"id", nullptr},      {L"settings", L"name", nullptr},
};

std::wstring Shown(const JsonValue& entry, const wchar_t* member) {
    const JsonValue* const value = entry.Find(member);
    if (value == nullptr) {
        return L"?";
    }
    return value->Type == JsonValue::Kind::Text ? L"\"" + PrintableText(value->Text) + L"\""
                                                : value->Text;
}

// What is between the brackets of an entry's path.
std::wstring NameOfEntry(const JsonValue& array, std::size_t index, std::wstring_view arrayName) {
    const auto* const row =
        std::find_if(std::begin(Sets), std::end(Sets),
                     [&](const SetRow& candidate) { return arrayName == candidate.Array; });
    const JsonValue& entry = array.Values[index];
    if (row == std::end(Sets)) {
        return std::to_wstring(index);
    }
    const std::wstring name = Shown(entry, row->Member);
    return row->SecondMember != nullptr ? name + L", " + Shown(entry, row->SecondMember) : name;
}

// One for each of the value's values, all different: what follows the path of the value.
std::vector<std::wstring> StepsOf(const JsonValue& value, std::wstring_view name, bool isDocument) {
    std::vector<std::wstring> steps;
    std::map<std::wstring, std::size_t> counts;
    for (std::size_t i = 0; i < value.Values.size(); ++i) {
        const bool isMember = value.Type == JsonValue::Kind::Object;
        std::wstring step = isMember ? (isDocument ? L"" : L".") + PrintableText(value.Names[i])
                                     : L"[" + NameOfEntry(value, i, name) + L"]";
        const std::size_t count = ++counts[step];
        steps.push_back(count > 1 ? step + L"(" + std::to_wstring(count) + L")" : step);
    }
    return steps;
}

bool Counts(const JsonValue& value, std::size_t index) {
    return value.Type != JsonValue::Kind::Object ||
           std::find(std::begin(Uncounted), std::end(Uncounted), value.Names[index]) ==
               std::end(Uncounted);
}

class Comparison {
public:
    // name is that of the member; empty for a whole document and the entry of an array.
    void Compare(const std::wstring& path, std::wstring_view name, const JsonValue& a,
                 const JsonValue& b) {
        if (a.Type != b.Type || a.Text != b.Text) {
            Differences.push_back({path, &a, &b});
        } else if (!a.Values.empty() || !b.Values.empty()) {
            CompareValues(path, name, a, b);
        }
    }

    std::vector<Difference> Differences;

private:
    void CompareValues(const std::wstring& path, std::wstring_view name, const JsonValue& a,
                       const JsonValue& b) {
        const std::vector<std::wstring> stepsOfA = StepsOf(a, name, path.empty());
        const std::vector<std::wstring> stepsOfB = StepsOf(b, name, path.empty());
        std::map<std::wstring, std::size_t> left;
        for (std::size_t i = 0; i < stepsOfB.size(); ++i) {
            left.emplace(stepsOfB[i], i);
        }
        for (std::size_t i = 0; i < stepsOfA.size(); ++i) {
            const auto found = left.find(stepsOfA[i]);
            if (found == left.end()) {
                Add(path + stepsOfA[i], a, i, true);
                continue;
            }
            if (Counts(a, i)) {
                Compare(path + stepsOfA[i],
                        a.Type == JsonValue::Kind::Object ? std::wstring_view(a.Names[i]) : L"",
                        a.Values[i], b.Values[found->second]);
            }
            left.erase(found);
        }
        for (std::size_t i = 0; i < stepsOfB.size(); ++i) {
            if (left.count(stepsOfB[i]) > 0) {
                Add(path + stepsOfB[i], b, i, false);
            }
        }
    }

    // A value that only the one has.
    void Add(const std::wstring& path, const JsonValue& container, std::size_t index, bool isOfA) {
        if (Counts(container, index)) {
            const JsonValue* const value = &container.Values[index];
            Differences.push_back({path, isOfA ? value : nullptr, isOfA ? nullptr : value});
        }
    }
};

} // namespace

std::vector<Difference> Compare(const JsonValue& a, const JsonValue& b) {
    Comparison comparison;
    comparison.Compare(L"", L"", a, b);
    return std::move(comparison.Differences);
}
