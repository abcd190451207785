// A section for each installed version of Flow Forge, in either view of the registry.
#include <cstdlib>
#include <cwchar>

#include "catalogue/ItemTable.h"
#include "catalogue/SectionBuilders.h"
#include "registry/CRegistryKey.h"

namespace {

constexpr wchar_t VersionsKey[] =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Installed Versions";
constexpr wchar_t VersionsKey32Bit[] =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Vantrel\\Vantrel Flow Forge\\Installed Versions";
constexpr wchar_t ActiveRuntimeKey[] =
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantrel\\Vantrel Flow Forge\\Active Runtime";
constexpr wchar_t InstallationPathValue[] = L"InstallationPath";
constexpr wchar_t ExamplesPathValue[] = L"ExamplesPath";

// What the targets of one version's section begin with.
struct Version {
    CKORString Name;
    CKORString InstallFolder;
    CKORString ExamplesFolder;
    CKORString RuntimeManagerPath;
};

bool IsVersion21(const CKORString& name) {
    return kor::EqualIgnoringCase(name.Text(), L"2.1");
}

bool IsNotVersion21(const CKORString& name) {
    return !IsVersion21(name);
}

using V = Version;

constexpr ItemRow<V> ProductItems[] = {
    {L"Vantrel Flow Forge", &V::InstallFolder, L"FlowForge.exe", ItemProgram},
    {L"Velnora utility", &V::ExamplesFolder,
     L"/Example HMI/DotNetExamples/Examples/Velnora/bin/x86/Release/Velnora.exe", ItemProgram},
    // The labels of the two are crossed: docs/quirks.md.
    {L"Vantrel Flow Forge Help file",
     &V::InstallFolder,
     L"Documentation/FlowForgeUserGuide.chm",
     ItemDocument,
     L"",
     {IsVersion21, &V::Name}},
    {L"Vantrel Flow Forge User Guide",
     &V::InstallFolder,
     L"Documentation/FlowForgeHelp.chm",
     ItemDocument,
     L"",
     {IsNotVersion21, &V::Name}},
    {L"Flow Forge Documentation", &V::InstallFolder, L"/Documentation", ItemFolder},
    {L"Flow Forge Tools", &V::InstallFolder, L"/Tools", ItemFolder},
};

// The newest version's manager, the same in every section.
constexpr ItemRow<V> RuntimeManagerItem[] = {
    {L"Flow Forge Runtime Manager", &V::RuntimeManagerPath, L"", ItemProgram},
};

// Goes down into a listed subkey and back up, whether or not it could be opened: docs/quirks.md.
class VisitedSubKey {
public:
    VisitedSubKey(CRegistryKey& key, const CKORString& name) : m_key(key) {
        static_cast<void>(m_key.OpenRelative(name));
    }
    VisitedSubKey(const VisitedSubKey&) = delete;
    VisitedSubKey& operator=(const VisitedSubKey&) = delete;
    ~VisitedSubKey() { static_cast<void>(m_key.OpenRelative(L"..")); }

private:
    CRegistryKey& m_key;
};

// The runtime manager of the newest version that has one; empty when none has. Only names of two
// pieces take part, and of equal versions the first one met is kept.
CKORString FindRuntimeManager(CRegistryKey& key, const CTable1D<CKORString>& names) {
    CKORString manager;
    std::int64_t bestMajor = 0;
    std::int64_t bestMinor = 0;
    for (const CKORString& name : names) {
        const CTable1D<CKORString> pieces = name.Split(L".");
        if (pieces.Count() != 2) {
            continue;
        }
        const std::int64_t major = _wtoi(pieces[0].Text());
        const std::int64_t minor = _wtoi(pieces[1].Text());
        const bool isNewer = major > bestMajor || (major == bestMajor && minor > bestMinor);
        if (!isNewer) {
            continue;
        }
        const VisitedSubKey visited(key, name);
        if (!key.ValueExists(InstallationPathValue)) {
            continue;
        }
        CKORString path;
        key.ReadString(InstallationPathValue, path);
        path += L"/Tools/FlowForgeRuntimeManager.exe";
        if (kor::PathExists(path.Text())) {
            manager = path;
            bestMajor = major;
            bestMinor = minor;
        }
    }
    return manager;
}

// Reads the version's folders; false when it has no install folder.
bool ReadFolders(CRegistryKey& key, Version& version) {
    if (!key.ValueExists(InstallationPathValue)) {
        return false;
    }
    key.ReadString(InstallationPathValue, version.InstallFolder);
    // Also behind one that is there already: docs/quirks.md.
    version.InstallFolder += L"\\";
    if (key.ValueExists(ExamplesPathValue)) {
        key.ReadString(ExamplesPathValue, version.ExamplesFolder);
        version.ExamplesFolder += L"\\";
    } else {
        version.ExamplesFolder = version.InstallFolder;
    }
    return true;
}

const wchar_t* WhyWithoutFolders(const CRegistryKey& key) {
    return key.IsOpen() ? L"the version's key has no value \"InstallationPath\""
                        : L"the version's key, or one listed beside it, cannot be read";
}

CKORString KeyOf(const CKORString& versionName, bool is32Bit) {
    return CKORString(is32Bit ? VersionsKey32Bit : VersionsKey) + L"\\" + versionName;
}

CKORString TitleOf(const CKORString& versionName, bool is32Bit) {
    return L"Flow Forge " + versionName + (is32Bit ? L" (32-bit)" : L"");
}

void AddVersionSection(Catalogue& catalogue, const Version& version, bool is32Bit) {
    const CKORString title = TitleOf(version.Name, is32Bit);
    const CKORString program = version.InstallFolder + L"FlowForge.exe";
    if (!kor::PathExists(program.Text()) &&
        !kor::PathExists((version.InstallFolder + L"/Tools").Text())) {
        catalogue.Omissions.Add({title, L"", L"neither FlowForge.exe nor a Tools folder exists",
                                 Looked::AtFile, program, nullptr, KeyOf(version.Name, is32Bit)});
        return;
    }
    // The key does not tell the two views apart: docs/quirks.md.
    ControlCenterSection& section = AddSection(catalogue, L"FLOWFORGE-" + version.Name, title);
    if (kor::PathExists(program.Text())) {
        AddItems(catalogue, section, ProductItems, version);
    }
    AddItems(catalogue, section, RuntimeManagerItem, version);
}

} // namespace

void BuildFlowForgeVersionsSection(Catalogue& catalogue, bool is32Bit) {
    CRegistryKey key;
    // A probe without a use: docs/quirks.md.
    if (key.Open(ActiveRuntimeKey, false)) {
        key.Close(false);
    }
    const wchar_t* const versionsKey = is32Bit ? VersionsKey32Bit : VersionsKey;
    if (!key.Open(versionsKey, false)) {
        catalogue.Omissions.Add({TitleOf(L"versions", is32Bit), L"",
                                 L"the registry key does not exist or cannot be read",
                                 Looked::AtRegistryKey, versionsKey, nullptr});
        return;
    }
    CTable1D<CKORString> names;
    key.EnumSubKeyNames(names);
    const CKORString runtimeManager = FindRuntimeManager(key, names);
    for (const CKORString& name : names) {
        const VisitedSubKey visited(key, name);
        Version version;
        version.Name = name;
        version.RuntimeManagerPath = runtimeManager;
        if (ReadFolders(key, version)) {
            AddVersionSection(catalogue, version, is32Bit);
        } else {
            catalogue.Omissions.Add({TitleOf(name, is32Bit), L"", WhyWithoutFolders(key),
                                     Looked::AtRegistryKey, KeyOf(name, is32Bit), nullptr});
        }
    }
    key.CloseIfOpen();
}
