// A connection object for the SQL Editor over ODBC: it has the members that the editor asks for by name. Everything is
// read when it is asked for. Header only; link with odbc32, ole32 and oleaut32.
#pragma once

#include <windows.h>
#include <ole2.h>
#include <oleauto.h>
#include <sql.h>
#include <sqlext.h>

#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace example {

// A variant that frees what it holds.
class Value {
public:
    Value() { VariantInit(&variant_); }
    Value(const std::wstring& text) : Value() {
        variant_.vt = VT_BSTR;
        variant_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    Value(long number) : Value() {
        variant_.vt = VT_I4;
        variant_.lVal = number;
    }
    Value(IDispatch* object) : Value() {  // takes the reference over
        variant_.vt = VT_DISPATCH;
        variant_.pdispVal = object;
    }
    Value(const Value& other) : Value() { VariantCopy(&variant_, const_cast<VARIANT*>(&other.variant_)); }
    Value(Value&& other) noexcept : Value() { std::swap(variant_, other.variant_); }
    Value& operator=(Value other) noexcept {
        std::swap(variant_, other.variant_);
        return *this;
    }
    ~Value() { VariantClear(&variant_); }
    VARIANT* Get() { return &variant_; }

private:
    VARIANT variant_;
};

// An object that is reached by the names of its members. Made with new, freed by its last Release.
class Members : public IDispatch {
public:
    // Arguments in their natural order. An exception reaches the caller as a description.
    using Member = std::function<Value(std::vector<VARIANT*>&)>;

    void Define(const wchar_t* name, Member member) {
        names_.push_back(name);
        members_.push_back(std::move(member));
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (object == nullptr) return E_POINTER;
        *object = iid == IID_IUnknown || iid == IID_IDispatch ? this : nullptr;
        if (*object == nullptr) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        for (UINT other = 0; other < count; ++other) ids[other] = DISPID_UNKNOWN;
        for (size_t at = 0; count == 1 && at < names_.size(); ++at) {
            if (_wcsicmp(names_[at].c_str(), names[0]) == 0) return ids[0] = static_cast<DISPID>(at + 1), S_OK;
        }
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT* result,
                                     EXCEPINFO* exception, UINT*) override {
        if (id < 1 || static_cast<size_t>(id) > members_.size()) return DISP_E_MEMBERNOTFOUND;
        try {
            std::vector<VARIANT*> arguments;
            for (UINT at = given->cArgs; at > 0; --at) {
                VARIANT* argument = &given->rgvarg[at - 1];
                arguments.push_back(argument->vt == (VT_BYREF | VT_VARIANT) ? argument->pvarVal : argument);
            }
            Value answer = members_[static_cast<size_t>(id) - 1](arguments);
            if (result != nullptr) *result = *answer.Get(), VariantInit(answer.Get());
            return S_OK;
        } catch (const std::exception& error) {
            if (exception == nullptr) return E_FAIL;
            *exception = {};
            exception->scode = E_FAIL;
            const std::string text = error.what();
            exception->bstrDescription = SysAllocString(std::wstring(text.begin(), text.end()).c_str());
            return DISP_E_EXCEPTION;
        }
    }

private:
    virtual ~Members() = default;
    ULONG references_ = 1;
    std::vector<std::wstring> names_;
    std::vector<Member> members_;
};

inline std::wstring TextOf(const std::vector<VARIANT*>& arguments, size_t position) {
    Value text;
    if (position >= arguments.size() || arguments[position]->vt == VT_NULL) return {};
    if (FAILED(VariantChangeType(text.Get(), arguments[position], 0, VT_BSTR))) return {};
    return text.Get()->bstrVal != nullptr ? std::wstring(text.Get()->bstrVal, SysStringLen(text.Get()->bstrVal)) : L"";
}

inline long NumberOf(const std::vector<VARIANT*>& arguments, size_t position) {
    Value number;
    if (position >= arguments.size() || FAILED(VariantChangeType(number.Get(), arguments[position], 0, VT_I4)))
        return 0;
    return number.Get()->lVal;
}

// A collection: Count, and Item from 1.
inline IDispatch* Collection(std::vector<Value> items) {
    auto* object = new Members;
    object->Define(L"Count", [count = static_cast<long>(items.size())](auto&) { return Value(count); });
    object->Define(L"Item", [items = std::move(items)](auto& arguments) {
        return items.at(static_cast<size_t>(NumberOf(arguments, 0) - 1));
    });
    return object;
}

// A property of a column: name, value, attribute.
inline Value Property(const std::wstring& name, Value value) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, 3);
    if (array == nullptr) throw std::bad_alloc();
    Value parts[] = {Value(name), std::move(value), Value(0L)};
    for (LONG at = 0; at < 3; ++at) SafeArrayPutElement(array, &at, parts[at].Get());
    Value property;
    property.Get()->vt = VT_ARRAY | VT_VARIANT;
    property.Get()->parray = array;
    return property;
}

// Made by std::make_shared: the objects that it hands out keep it alive, since the editor keeps them.
class OdbcDatabase : public std::enable_shared_from_this<OdbcDatabase> {
public:
    // Throws std::runtime_error with what the driver says.
    explicit OdbcDatabase(std::wstring connection) {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
        SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
        if (!SQL_SUCCEEDED(SQLDriverConnectW(connection_, nullptr, connection.data(), SQL_NTS, nullptr, 0, nullptr,
                                             SQL_DRIVER_NOPROMPT))) {
            const std::runtime_error error = Failure(SQL_HANDLE_DBC, connection_);
            Free();
            throw error;
        }
    }
    ~OdbcDatabase() {
        SQLDisconnect(connection_);
        Free();
    }
    OdbcDatabase(const OdbcDatabase&) = delete;
    OdbcDatabase& operator=(const OdbcDatabase&) = delete;

    // What Constructor takes.
    IDispatch* Object() {
        const auto self = shared_from_this();
        auto* object = new Members;
        object->Define(L"Connected", [](auto&) { return Value(-1L); });
        object->Define(L"CurrentCatalog", [](auto&) { return Value(L""); });
        object->Define(L"UserName", [self](auto&) { return Value(self->Info(SQL_USER_NAME)); });
        // What statements look like, here "LIMIT": see the table in docs\hosting.md.
        object->Define(L"DBType", [](auto&) { return Value(17L); });
        object->Define(L"SchemaTerm", [self](auto&) { return Value(self->Info(SQL_SCHEMA_TERM)); });
        object->Define(L"DBTypeName",
                       [self](auto&) { return Value(self->Info(SQL_DBMS_NAME) + L" " + self->Info(SQL_DBMS_VER)); });
        // A name in quotes is right in every database: the dictionary gives it as it was created.
        object->Define(L"FormatName", [self](auto& arguments) {
            const std::wstring quote = self->Info(SQL_IDENTIFIER_QUOTE_CHAR);
            std::wstring name = TextOf(arguments, 0);
            if (quote == L" " || quote.empty()) return Value(name);  // there are no quoted names
            for (size_t at = 0; (at = name.find(quote, at)) != std::wstring::npos; at += 2 * quote.size())
                name.insert(at, quote);
            return Value(quote + name + quote);
        });
        object->Define(L"Dictionary", [self](auto&) { return Value(self->Dictionary()); });
        return object;
    }

private:
    IDispatch* Dictionary() {
        const auto self = shared_from_this();
        auto* object = new Members;
        object->Define(L"Schemas", [](auto&) { return Value(static_cast<IDispatch*>(nullptr)); });
        object->Define(L"Objects", [self](auto& arguments) {
            std::wstring type = NumberOf(arguments, 0) == 2 ? L"VIEW" : L"TABLE";
            return Value(Collection(self->Read(
                [&](SQLHSTMT statement) {
                    return SQLTablesW(statement, nullptr, 0, nullptr, 0, nullptr, 0, type.data(), SQL_NTS);
                },
                [](const Row& row) { return Value(row(3)); })));
        });
        object->Define(L"Columns", [self](auto& arguments) {
            // The name is a pattern: the characters of patterns are escaped.
            const std::wstring escape = self->Info(SQL_SEARCH_PATTERN_ESCAPE);
            std::wstring table;
            for (const wchar_t letter : TextOf(arguments, 1)) {
                if (letter == L'_' || letter == L'%' || escape == std::wstring(1, letter)) table += escape;
                table += letter;
            }
            return Value(Collection(self->Read(
                [&](SQLHSTMT statement) {
                    return SQLColumnsW(statement, nullptr, 0, nullptr, 0, table.data(), SQL_NTS, nullptr, 0);
                },
                [](const Row& row) {
                    return Value(
                        Collection({Property(L"COLUMN_NAME", Value(row(4))), Property(L"TYPE_NAME", Value(row(6))),
                                    Property(L"IS_NULLABLE", Value(row(18)))}));
                })));
        });
        object->Define(L"DataTypeDesc", [](auto& arguments) { return Value(L"Type " + TextOf(arguments, 0)); });
        return object;
    }

    using Row = std::function<std::wstring(SQLUSMALLINT)>;

    template <class Ask, class Make>
    std::vector<Value> Read(Ask ask, Make make) {
        SQLHSTMT statement = SQL_NULL_HSTMT;
        SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement);
        std::vector<Value> items;
        bool good = SQL_SUCCEEDED(ask(statement));
        // Each column is read once, from the left: not every driver can go back.
        while (good) {
            const SQLRETURN fetched = SQLFetch(statement);
            if (fetched == SQL_NO_DATA) break;
            good = SQL_SUCCEEDED(fetched);
            if (!good) break;
            items.push_back(make([&](SQLUSMALLINT column) {
                wchar_t text[512] = L"";
                SQLLEN length = 0;
                SQLGetData(statement, column, SQL_C_WCHAR, text, sizeof text, &length);
                return length == SQL_NULL_DATA ? std::wstring() : std::wstring(text);
            }));
        }
        std::runtime_error error("");
        if (!good) error = Failure(SQL_HANDLE_STMT, statement);
        SQLFreeHandle(SQL_HANDLE_STMT, statement);
        if (!good) throw error;
        return items;
    }

    std::wstring Info(SQLUSMALLINT what) {
        wchar_t text[256] = L"";
        SQLSMALLINT length = 0;
        SQLGetInfoW(connection_, what, text, sizeof text, &length);
        return text;
    }

    static std::runtime_error Failure(SQLSMALLINT kind, SQLHANDLE handle) {
        char state[6] = "", text[512] = "";
        SQLSMALLINT length = 0;
        SQLGetDiagRecA(kind, handle, 1, reinterpret_cast<SQLCHAR*>(state), nullptr, reinterpret_cast<SQLCHAR*>(text),
                       sizeof text, &length);
        return std::runtime_error(text);
    }

    void Free() {
        SQLFreeHandle(SQL_HANDLE_DBC, connection_);
        SQLFreeHandle(SQL_HANDLE_ENV, environment_);
    }

    SQLHENV environment_ = SQL_NULL_HENV;
    SQLHDBC connection_ = SQL_NULL_HDBC;
};

}  // namespace example
