#include <windows.h>

#include <cstring>
#include <exception>
#include <new>

#include "automation/App.h"
#include "automation/ComObject.h"
#include "automation/HostContexts.h"
#include "automation/RuntimeError.h"
#include <ocidl.h>

#include "brvSQLEditor_h.h"
#include "brvSQLEditor_i.c"  // NOLINT(bugprone-suspicious-include): the identifiers, made once
#include "component/clsSQLEditor.h"
#include "errors/modErrorHandler.h"
#include "forms/Events.h"
#include "forms/Surroundings.h"
#include "shared/modGlobal.h"

// The door: clsSQLEditor as a COM object with a dual interface. Invoke is written by hand, since Display takes its text
// in three ways and a type library marshaller refuses the one that every script engine uses (VT_BYREF | VT_VARIANT).

namespace {

enum MemberId : DISPID { IdConstructor = 1, IdDisplay = 2, IdDestructor = 3 };

struct MemberName {
    const wchar_t* Name;
    MemberId Id;
    const wchar_t* Argument;  // null: takes none
};

constexpr MemberName Members[] = {
    {L"Constructor", IdConstructor, L"Database"},
    {L"Display", IdDisplay, L"SQL"},
    {L"Destructor", IdDestructor, nullptr},
};

// The object in an argument, however it was passed. What a language writes for "no object" is nothing: Nothing, and the
// null and undefined of languages that have no Nothing.
Object ObjectArgument(const VARIANT& argument) {
    const Variant value(argument);
    if (value.IsNull() || value.IsEmpty() || value.IsMissing()) return Object();
    return value.ToObject();
}

// Owned by the caller; null when the library cannot be read.
ITypeInfo* LoadTypeInformation(REFGUID guid) noexcept try {
    if (!ReadyToThrow()) return nullptr;
    ComPtr<ITypeLib> library;
    ITypeInfo* info = nullptr;
    if (SUCCEEDED(LoadTypeLibEx(App::ModulePath().c_str(), REGKIND_NONE, library.Receive())))
        library->GetTypeInfoOfGuid(guid, &info);
    return info;
} catch (...) {
    return nullptr;
}

class SQLEditorObject final : public ComObject<_clsSQLEditor, ISupportErrorInfo, IProvideClassInfo> {
public:
    // ---- IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (count == nullptr) return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (info == nullptr) return E_POINTER;
        *info = nullptr;
        if (index != 0) return DISP_E_BADINDEX;
        *info = LoadTypeInformation(IID__clsSQLEditor);
        return *info != nullptr ? S_OK : TYPE_E_CANTLOADLIBRARY;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        if (names == nullptr || ids == nullptr) return E_POINTER;
        if (count == 0) return E_INVALIDARG;
        for (UINT at = 0; at < count; ++at) ids[at] = DISPID_UNKNOWN;
        for (const MemberName& member : Members) {
            if (lstrcmpiW(names[0], member.Name) != 0) continue;
            ids[0] = member.Id;
            HRESULT result = S_OK;
            for (UINT at = 1; at < count; ++at) {
                if (member.Argument != nullptr && lstrcmpiW(names[at], member.Argument) == 0) {
                    ids[at] = 0;
                } else {
                    result = DISP_E_UNKNOWNNAME;
                }
            }
            return result;
        }
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                     EXCEPINFO* exception, UINT* argumentError) override {
        if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
        if (id < IdConstructor || id > IdDestructor || (flags & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
        if (parameters == nullptr) return E_POINTER;
        const UINT expected = id == IdDestructor ? 0 : 1;
        if (parameters->cArgs != expected) return DISP_E_BADPARAMCOUNT;
        if (expected > 0 && parameters->rgvarg == nullptr) return E_POINTER;
        if (parameters->cNamedArgs > 0 &&
            (parameters->rgdispidNamedArgs == nullptr || *parameters->rgdispidNamedArgs != 0)) {
            if (argumentError != nullptr) *argumentError = 0;
            return DISP_E_PARAMNOTFOUND;
        }
        if (result != nullptr) VariantInit(result);
        if (exception != nullptr) *exception = {};
        return Guarded([&] { Call(id, *parameters); }, exception);
    }

    // ---- _clsSQLEditor, early bound
    HRESULT STDMETHODCALLTYPE Constructor(IDispatch** Database) override {
        return Guarded([&] { editor_.Constructor(Database != nullptr ? Object(*Database) : Object()); }, nullptr);
    }
    HRESULT STDMETHODCALLTYPE Display(BSTR* SQL) override {
        if (SQL == nullptr) return E_POINTER;
        return Guarded([&] { ShowText(TextOf(*SQL), [SQL](const std::wstring& sql) { WriteBstr(*SQL, sql); }); },
                       nullptr);
    }
    HRESULT STDMETHODCALLTYPE Destructor() override {
        return Guarded([&] { editor_.Destructor(); }, nullptr);
    }

    // ---- ISupportErrorInfo, IProvideClassInfo
    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) override {
        return iid == IID__clsSQLEditor ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
        if (info == nullptr) return E_POINTER;
        *info = LoadTypeInformation(CLSID_clsSQLEditor);
        return *info != nullptr ? S_OK : TYPE_E_CANTLOADLIBRARY;
    }

private:
    // Destruction hides the window, which runs host code.
    void Destroy() noexcept override {
        const HostContexts host;
        const Awareness awareness;
        delete this;
    }

    // Errors that even the reporting could not take become an HRESULT with IErrorInfo.
    template <class Work>
    HRESULT Guarded(Work&& work, EXCEPINFO* exception) noexcept {
        if (!ReadyToThrow()) return E_OUTOFMEMORY;
        // The host may release the object from inside the modal loop.
        const ComPtr<SQLEditorObject> held(this);
        HRESULT result = S_OK;
        modGlobal::Own();
        const HostContexts host;
        try {
            const Awareness awareness;
            Events::Call call;
            work();
            call.Rethrow();
        } catch (...) {
            const RuntimeError error = CurrentError();
            result = exception != nullptr ? FillException(error, exception) : PublishError(error);
        }
        return result;
    }

    void Call(DISPID id, DISPPARAMS& parameters) {
        switch (id) {
            case IdConstructor: {
                Object database;
                if (!Converted(L"Constructor", [&] { database = ObjectArgument(parameters.rgvarg[0]); })) return;
                editor_.Constructor(database);
                break;
            }
            case IdDisplay:
                Show(parameters.rgvarg[0]);
                break;
            default:
                editor_.Destructor();
                break;
        }
    }

    // An argument that is no object, or no text, is reported as an error of the member that it was meant for.
    template <class Conversion>
    static bool Converted(const wchar_t* routine, Conversion&& conversion) try {
        conversion();
        return true;
    } catch (...) {
        ReportError(clsSQLEditor::Module, routine);
        return false;
    }

    // Shows the text; `write` gets what it has become when it was edited. Also when the showing fails in the end: the
    // user's work goes back to the host whatever became of the window.
    template <class Write>
    void ShowText(std::wstring sql, Write&& write) {
        const std::wstring before = sql;
        const Surroundings surroundings;
        try {
            editor_.Display(sql);
        } catch (...) {
            if (sql != before) write(sql);
            throw;
        }
        if (sql != before) write(sql);  // else what the host's string holds is left alone, down to its address
    }

    static void WriteBstr(BSTR& text, const std::wstring& sql) {
        SysFreeString(std::exchange(text, Bstr(sql).Detach()));
    }

    // The variable that an argument stands for: by reference to a variant, which may refer to another one, and a wrong
    // one to itself. By value it is the argument.
    static VARIANT& VariableOf(VARIANT& argument) noexcept {
        constexpr int Deepest = 8;
        VARIANT* variable = &argument;
        for (int depth = 0; depth < Deepest && variable->vt == (VT_BYREF | VT_VARIANT) && variable->pvarVal != nullptr;
             ++depth) {
            variable = variable->pvarVal;
        }
        return *variable;
    }

    static bool IsTextByReference(const VARIANT& variable) noexcept {
        return variable.vt == (VT_BYREF | VT_BSTR) && variable.pbstrVal != nullptr;
    }

    void Show(VARIANT& argument) {
        std::wstring sql;
        const bool converted = Converted(L"Display", [&] {
            const VARIANT& variable = VariableOf(argument);
            if (variable.vt == (VT_BYREF | VT_VARIANT)) RaiseError(ErrorNumber::TypeMismatch);
            sql = IsTextByReference(variable) ? TextOf(*variable.pbstrVal) : Variant(variable).ToText();
        });
        if (!converted) return;
        ShowText(std::move(sql), [&argument](const std::wstring& edited) {
            // By the variable's present type: the host's code ran meanwhile and may have put anything into it.
            VARIANT& variable = VariableOf(argument);
            if (IsTextByReference(variable)) return WriteBstr(*variable.pbstrVal, edited);
            // By value there is no variable to write to; one that held another type becomes a text.
            if (&variable == &argument || variable.vt == (VT_BYREF | VT_VARIANT)) return;
            Variant written(edited);
            std::swap(static_cast<VARIANT&>(written), variable);
            // The old value is released last: an object's end runs host code again.
        });
    }

    clsSQLEditor editor_;
};

HRESULT CreateSQLEditor(REFIID iid, void** object) {
    if (!ReadyToThrow()) return E_OUTOFMEMORY;
    ComPtr<SQLEditorObject> made;
    try {
        made = ComPtr<SQLEditorObject>::Attach(new SQLEditorObject);
    } catch (...) {
        return PublishError(CurrentError());
    }
    return made->QueryInterface(iid, object);
}

}  // namespace

const ComClass SQLEditorClass{CLSID_clsSQLEditor, L"brvSQLEditor.clsSQLEditor",
                              L"The SQL Editor window of a spreadsheet's database add-in", &LIBID_brvSQLEditor,
                              &CreateSQLEditor};
