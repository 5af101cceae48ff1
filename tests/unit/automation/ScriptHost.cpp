#include "ScriptHost.h"

#include <map>
#include <utility>

#include "support/CountedObject.h"
#include "automation/RuntimeError.h"

class ScriptHost::Site : public CountedObject<IActiveScriptSite, 1> {
public:
    std::map<std::wstring, Object> Objects;
    RuntimeError Failure;

    HRESULT STDMETHODCALLTYPE GetLCID(LCID* lcid) override {
        *lcid = LOCALE_USER_DEFAULT;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item, ITypeInfo** info) override {
        if (info != nullptr) *info = nullptr;
        if (item != nullptr) *item = nullptr;
        const auto found = Objects.find(name);
        if (found == Objects.end()) return TYPE_E_ELEMENTNOTFOUND;
        if ((mask & SCRIPTINFO_IUNKNOWN) != 0) {
            *item = found->second.Dispatch();
            (*item)->AddRef();
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnStateChange(SCRIPTSTATE) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnScriptError(IActiveScriptError* error) override {
        EXCEPINFO exception{};
        if (SUCCEEDED(error->GetExceptionInfo(&exception))) Failure = ErrorFromHresult(DISP_E_EXCEPTION, &exception);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnEnterScript() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE OnLeaveScript() override { return S_OK; }

private:
    virtual ~Site() = default;
};

ScriptHost::ScriptHost(const wchar_t* language) : site_(new Site) {
    CLSID id;
    CheckHresult(CLSIDFromProgID(language, &id));
    CheckHresult(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IActiveScript),
                                  reinterpret_cast<void**>(&engine_)));
    CheckHresult(engine_->QueryInterface(__uuidof(IActiveScriptParse), reinterpret_cast<void**>(&parser_)));
    CheckHresult(engine_->SetScriptSite(site_));
    CheckHresult(parser_->InitNew());
    CheckHresult(engine_->SetScriptState(SCRIPTSTATE_CONNECTED));
}

ScriptHost::~ScriptHost() {
    if (parser_ != nullptr) parser_->Release();
    if (engine_ != nullptr) {
        engine_->Close();
        engine_->Release();
    }
    site_->Release();
}

void ScriptHost::AddObject(const std::wstring& name, const Object& object) {
    site_->Objects[name] = object;
    CheckHresult(engine_->AddNamedItem(name.c_str(), SCRIPTITEM_ISVISIBLE));
}

void ScriptHost::Run(const std::wstring& code) { Parse(code, SCRIPTTEXT_ISVISIBLE, nullptr); }

Variant ScriptHost::Evaluate(const std::wstring& expression) {
    Variant result;
    Parse(expression, SCRIPTTEXT_ISEXPRESSION, result.Receive());
    return result;
}

void ScriptHost::Parse(const std::wstring& code, DWORD flags, VARIANT* result) {
    site_->Failure = {};
    EXCEPINFO exception{};
    const HRESULT outcome =
        parser_->ParseScriptText(code.c_str(), nullptr, nullptr, nullptr, 0, 0, flags, result, &exception);
    if (site_->Failure.Number != 0) throw std::exchange(site_->Failure, {});
    if (FAILED(outcome)) throw ErrorFromHresult(outcome, &exception);
}
