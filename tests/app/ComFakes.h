// A page, its document and the control that shows it, as far as the dialog calls them: real COM
// objects of the test program that record what is done to them.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

struct IConnectionPoint;
struct IHTMLElement;
struct IOleClientSite;

namespace test {

class FakeObject;

// What COM knows of a fake: one of its interfaces.
struct Face {
    void* const* Vtable;
    FakeObject* Owner;
};

// Lives where the test says; the references are counted and must be given back by its end. Methods
// without an entry answer E_NOTIMPL.
class FakeObject {
public:
    FakeObject() = default;
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;
    virtual ~FakeObject();

    template <typename Interface>
    Interface* As(REFIID iid) {
        return reinterpret_cast<Interface*>(Find(iid));
    }
    HRESULT Query(REFIID iid, void** object);

    int References = 0;
    int AddRefs = 0; // calls so far
    // Called when a reference is taken or given back, before it is counted.
    std::function<void()> OnAddRef;
    std::function<void()> OnRelease;
    // What was called, in order; shared by the fakes of a test.
    std::vector<std::string>* Log = nullptr;

protected:
    struct Method {
        std::size_t Offset; // in the table of functions
        void* Function;
    };
    void Implement(REFIID iid, const std::vector<Method>& methods);
    void Note(const std::string& what) const;

private:
    struct Implementation {
        IID Iid;
        std::vector<void*> Vtable;
        Face Object;
    };
    Face* Find(REFIID iid);

    std::deque<Implementation> m_implementations;
};

class FakeStyle : public FakeObject {
public:
    FakeStyle();

    std::vector<VARIANT> Colors;
    std::function<void()> OnColor;
    std::vector<std::wstring> Cursors;
};

class FakeElement : public FakeObject {
public:
    FakeElement();
    IHTMLElement* Element();

    std::optional<std::wstring> ClassName;
    std::optional<std::wstring> Id;
    std::optional<std::wstring> Text;
    std::vector<std::wstring> InnerHtml; // as written
    std::function<void()> OnInnerHtml;
    FakeStyle* Style = nullptr;
};

// Calls a sink, with arguments in the order of COM, the last one first.
HRESULT FireAt(IDispatch* sink, DISPID event, std::vector<VARIANT> arguments);

// Has events: connects sinks and calls them.
class FakeSource : public FakeObject {
public:
    FakeSource();
    HRESULT Fire(DISPID event, std::vector<VARIANT> arguments) const;

    std::string Name;
    IID ConnectedTo = {};
    IDispatch* Sink = nullptr;
    std::function<void()> OnUnadvise; // before the sink is let go
};

// All elements of a document, asked for a name: itself where several have it.
class FakeCollection : public FakeObject {
public:
    FakeCollection();

    bool HasSeveral = false;
    std::vector<std::wstring> Asked;
};

class FakeDocument : public FakeSource {
public:
    FakeDocument();

    FakeElement* Sections = nullptr;
    FakeElement* Body = nullptr;
    FakeCollection* All = nullptr;
    std::wstring Url = L"res://C:\\Program%20Files/korcontrolcenter.exe/129";
    std::wstring State = L"complete";
    HWND Window = nullptr;
    std::vector<std::wstring> Asked;
};

class FakeEvent : public FakeObject {
public:
    FakeEvent();

    FakeElement* Source = nullptr;
};

class FakeBrowser : public FakeSource {
public:
    FakeBrowser();

    FakeDocument* Document = nullptr;
    IOleClientSite* Site = nullptr;
    std::vector<std::wstring> Navigated;
    std::function<void()> OnNavigate;
    std::vector<RECT> Rectangles;
    std::vector<UINT> Keys; // messages handed to it
    std::function<HRESULT(MSG*)> OnKey;
    std::vector<BOOL> FrameActivations;
    VARIANT_BOOL TakesDrops = VARIANT_TRUE;
};

} // namespace test
