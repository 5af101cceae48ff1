#include "support/HostFakes.h"

#include <gtest/gtest.h>

#include "support/CountedObject.h"

namespace {

FakeErrors* currentErrors = nullptr;

Object MakeRecorder() {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    made->Define(L"Constructor", [](const Arguments& a) {
        currentErrors->Constructed.push_back(a[0].ToText() + L"," + a[1].ToText() + L"," + a[2].ToText() + L"," +
                                             a[3].ToText());
        return Variant();
    });
    const auto told = [](const wchar_t* name) {
        return [name](const Arguments& a) {
            std::wstring entry = name;
            for (size_t at = 0; at < a.Count(); ++at)
                entry += L"," + (a.Has(at) ? a[at].ToText() : std::wstring(L"<missing>"));
            currentErrors->Told.push_back(entry);
            return Variant();
        };
    };
    made->Define(L"Alert", told(L"Alert"));
    made->Define(L"LogEvent", told(L"LogEvent"));
    made->Define(L"DisplayAlerts", [](const Arguments&) { return Variant(currentErrors->DisplayAlerts ? -1L : 0L); });
    made->DefineLet(L"DisplayAlerts", [](const Variant& value) { currentErrors->DisplayAlerts = value.ToBoolean(); });
    made->Define(L"ErrorMessage", [](const Arguments& a) {
        if (currentErrors->ErrorMessageFails ||
            (currentErrors->MessageFailures > 0 && currentErrors->MessageFailures-- > 0))
            RaiseError(ObjectErrorBase + 77, L"brvError", L"the log is full");
        Report report;
        report.Module = a[0].ToText();
        report.Routine = a[1].ToText();
        const Object error = a[2].ToObject();
        report.Number = error.Get(L"Number").ToLong();
        report.Source = error.Get(L"Source").ToText();
        report.Description = error.Get(L"Description").ToText();
        error.Get(L"HelpFile").ToText();
        error.Get(L"HelpContext").ToLong();
        error.Get(L"LastDllError").ToLong();
        report.Line = a[3].ToLong();
        report.DebugMissing = !a.Has(4);
        if (!report.DebugMissing) report.Debug = a[4].ToText();
        EXPECT_EQ(5U, a.Count());
        currentErrors->Reports.push_back(report);
        if (currentErrors->OnReport) currentErrors->OnReport();
        return Variant();
    });
    return held;
}

class RecorderFactory final : public StackObject<IClassFactory> {
public:
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID iid, void** object) override {
        *object = nullptr;
        if (currentErrors->CannotBeCreated) return E_ACCESSDENIED;
        if (currentErrors->CreateFailures > 0 && currentErrors->CreateFailures-- > 0) return E_ACCESSDENIED;
        ++currentErrors->Created;
        Object made = MakeRecorder();
        if (currentErrors->Wrap) made = currentErrors->Wrap(made);
        return made.Dispatch()->QueryInterface(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

RecorderFactory recorderFactory;

}  // namespace

FakeErrors::FakeErrors() {
    currentErrors = this;
    CLSID id;
    if (FAILED(CLSIDFromProgID(L"brvError.clsError", &id))) {
        ADD_FAILURE() << "brvError.clsError is not registered: run the tests by ./test";
        return;
    }
    // A class object that the process has registered itself comes before the one of the registry.
    EXPECT_EQ(S_OK, CoRegisterClassObject(id, &recorderFactory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_));
}

FakeErrors::~FakeErrors() {
    CoRevokeClassObject(cookie_);
    currentErrors = nullptr;
    EXPECT_EQ(looked_, Reports.size()) << "not all reports were looked at: " << testing::PrintToString(Places());
}

Report FakeErrors::Only() {
    looked_ = Reports.size();
    EXPECT_EQ(1U, Reports.size()) << testing::PrintToString(Places());
    return Reports.empty() ? Report() : Reports.front();
}

void FakeErrors::Forget() {
    Reports.clear();
    looked_ = 0;
}

std::wstring FakeErrors::Places() {
    looked_ = Reports.size();
    std::wstring places;
    for (const Report& report : Reports) {
        if (!places.empty()) places += L"|";
        places += report.Place() + L" " + std::to_wstring(report.Number);
    }
    return places;
}

FakeDatabase::FakeDatabase() {
    Members[L"Connected"] = [](const Arguments&) { return Variant(true); };
    Members[L"CurrentCatalog"] = [](const Arguments&) { return Variant(L""); };
    Members[L"UserName"] = [](const Arguments&) { return Variant(L"SCOTT"); };
    Members[L"DBType"] = [](const Arguments&) { return Variant(4L); };
    Members[L"SchemaTerm"] = [](const Arguments&) { return Variant(L""); };
    Members[L"Dictionary"] = [this](const Arguments&) { return Variant(MakeDictionary()); };
    Members[L"DBTypeName"] = [](const Arguments& a) { return Variant(L"Type " + a[0].ToText()); };
}

Object FakeDatabase::Make() { return Logging(Members, L""); }

Object FakeDatabase::MakeDictionary() { return Logging(DictionaryMembers, L"Dictionary."); }

Object FakeDatabase::Logging(const AllMembers& members, const std::wstring& before) {
    auto* made = new DynamicObject;
    const Object held = Object::Attach(made);
    for (const auto& [name, member] : members) {
        made->Define(name, [this, entry = before + name, member = member](const Arguments& a) {
            Log.push_back(entry);
            return member(a);
        });
    }
    return held;
}

std::wstring FakeDatabase::Logged() const {
    std::wstring all;
    for (const std::wstring& entry : Log) all += entry + L" ";
    return all;
}

std::wstring FakeDatabase::Taken() {
    std::wstring all = Logged();
    Log.clear();
    return all;
}
