// kordiag roots.
#include "diag/Commands.h"
#include "diag/Reading.h"
#include "registry/CRegistryKey.h"
#include "registry/RootTables.h"

namespace {

// Key objects take the layout of the moment in which they are made.
class LayoutInForce {
public:
    explicit LayoutInForce(bool rtxLayout) : m_before(CRegistryKey::RtxMode()) {
        CRegistryKey::SetRtxMode(rtxLayout);
    }
    LayoutInForce(const LayoutInForce&) = delete;
    LayoutInForce& operator=(const LayoutInForce&) = delete;
    ~LayoutInForce() { CRegistryKey::SetRtxMode(m_before); }

private:
    bool m_before;
};

bool Exists(const kor::SymbolicRoot& root, bool rtxLayout) {
    const LayoutInForce layout(rtxLayout);
    CRegistryKey key;
    return key.OpenSymbolic(root.Id, L"", false);
}

// Calls the function with each root, its hive's name and its key without the last backslash.
template <typename Function>
void ForEachRoot(bool rtxLayout, Function function) {
    std::uint32_t id = 1;
    while (const kor::SymbolicRoot* const root =
               kor::FindSymbolicRoot(static_cast<SymbolicRootId>(id))) {
        const kor::RootLocation& location = root->In(rtxLayout);
        const std::wstring_view prefix(location.Prefix);
        function(id, *root, kor::FindRealRoot(kor::HandleOf(location.Hive))->Name,
                 prefix.substr(0, prefix.size() - 1));
        ++id;
    }
}

} // namespace

ExitCode RunRoots(const Arguments& arguments, Streams& streams) {
    const bool rtxLayout = arguments.Has(OptionRtx);
    return Answer(arguments, streams, [&](auto& output) { WriteRoots(output, rtxLayout); });
}

void WriteRoots(JsonWriter& json, bool rtxLayout) {
    json.BeginArray();
    ForEachRoot(rtxLayout, [&](std::uint32_t id, const kor::SymbolicRoot& root, const wchar_t* hive,
                               std::wstring_view subKey) {
        json.BeginObject();
        json.Key(L"id").Number(std::int64_t{id});
        json.Key(L"name");
        if (root.Name != nullptr) {
            json.Text(std::wstring_view(root.Name));
        } else {
            json.Null();
        }
        json.Key(L"root").Text(std::wstring_view(hive));
        json.Key(L"subkey").Text(subKey);
        json.Key(L"exists").Boolean(Exists(root, rtxLayout));
        json.Key(L"volatileClass").Number(std::int64_t{root.VolatileClass});
        json.EndObject();
    });
    json.EndArray();
}

void WriteRoots(Utf8Output& output, bool rtxLayout) {
    ForEachRoot(rtxLayout, [&](std::uint32_t id, const kor::SymbolicRoot& root, const wchar_t* hive,
                               std::wstring_view subKey) {
        output.Write(std::int64_t{id}, L" ",
                     root.Name != nullptr ? root.Name : L"(no name, only an id)",
                     Exists(root, rtxLayout) ? L"" : L", does not exist", L", volatile class ",
                     std::int64_t{root.VolatileClass}, L"\n  ", hive, L"\\", subKey, L"\n");
    });
}
