#pragma once

#include <functional>
#include <memory>
#include <string>

#include "automation/RuntimeError.h"
#include "host/database/Identifier.h"
#include "host/database/Odbc.h"
#include "host/database/Product.h"

// The numbers of the errors that this component raises, all with its own name as their source.
namespace DatabaseError {
inline constexpr const wchar_t* Source = L"brvADO";
inline constexpr long NoDictionary = ObjectErrorBase + 1;  // the driver cannot list tables
inline constexpr long NotConnected = ObjectErrorBase + 2;
inline constexpr long ConnectFailed = ObjectErrorBase + 3;
inline constexpr long StatementFailed = ObjectErrorBase + 4;
inline constexpr long ConnectionLost = ObjectErrorBase + 5;
inline constexpr long NoSuchColumns = ObjectErrorBase + 10;  // the columns of a table or view cannot be read
}  // namespace DatabaseError

// The run-time error for a failed ODBC call: the driver's texts followed by the SQLSTATE, the number ConnectionLost
// when that is what happened and `number` otherwise.
RuntimeError ErrorFromOdbc(const Odbc::Error& error, long number);

// What is known of an open connection. Read once when it is opened, so that asking for it cannot fail later.
struct SessionFacts {
    std::wstring ProductName;  // as the driver says it
    std::wstring ProductVersion;
    std::wstring Server;
    std::wstring Database;
    std::wstring UserName;
    std::wstring SchemaTerm;  // empty: the database has no schemas
    std::wstring
        DefaultSchema;  // where names without a prefix are looked for; empty when unknown or there are no schemas
    std::wstring SearchEscape;
    bool CatalogsAreSchemas = false;
    const Product* Kind = nullptr;
    IdentifierRules Rules;
};

// A connection that was opened, and opens again when it was lost. The connection string is kept for that, password
// included, for as long as the session lives.
class Session {
public:
    // Throws RuntimeError ConnectFailed. `loginTimeout` in seconds.
    Session(std::wstring connectionString, unsigned loginTimeout);
    ~Session();

    const SessionFacts& Facts() const noexcept { return facts_; }
    // Whether the connection is there; one that was lost is opened again, if that succeeds.
    bool IsAlive() noexcept;
    // The connection, opened again if it was lost. Throws RuntimeError ConnectionLost when that fails.
    std::shared_ptr<Odbc::Connection> Live();
    // Tells that a call on the connection failed; returns whether the connection is gone.
    bool NoteFailure(const Odbc::Error& error) noexcept;
    // Runs a reading of the catalogue. When the connection turns out to be lost, it is opened again and the reading is
    // run once more: nothing was changed by it.
    void Read(const std::function<void(Odbc::Connection&)>& reading);

private:
    void ReadFacts();

    std::wstring connectionString_;
    unsigned loginTimeout_;
    std::shared_ptr<Odbc::Connection> connection_;
    bool lost_ = false;
    SessionFacts facts_;
};
