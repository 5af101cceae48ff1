#include "host/database/Session.h"

namespace {

std::wstring FirstValue(Odbc::Connection& connection, const wchar_t* query) {
    try {
        Odbc::Statement statement(connection);
        statement.Execute(query);
        if (!statement.Fetch()) return {};
        std::wstring value = statement.Text(1).value_or(L"");
        while (!value.empty() && value.back() == L' ') value.pop_back();  // DB2 pads the name of a schema
        return value;
    } catch (const Odbc::Error&) {
        return {};  // the schema is then unknown, which every reader of the facts can live with
    }
}

UnquotedCase CaseOf(std::optional<unsigned> identifierCase) {
    if (identifierCase == SQL_IC_UPPER) return UnquotedCase::Upper;
    if (identifierCase == SQL_IC_LOWER) return UnquotedCase::Lower;
    return UnquotedCase::AsItIs;
}

}  // namespace

RuntimeError ErrorFromOdbc(const Odbc::Error& error, long number) {
    RuntimeError result;
    result.Number = error.ConnectionLost() ? DatabaseError::ConnectionLost : number;
    result.Source = DatabaseError::Source;
    result.Description = error.Text() + L" (SQLSTATE " + error.State() + L")";
    return result;
}

Session::Session(std::wstring connectionString, unsigned loginTimeout)
    : connectionString_(std::move(connectionString)), loginTimeout_(loginTimeout) {
    try {
        connection_ = std::make_shared<Odbc::Connection>(connectionString_, loginTimeout_);
        ReadFacts();
    } catch (const Odbc::Error& error) {
        RuntimeError failure = ErrorFromOdbc(error, DatabaseError::ConnectFailed);
        failure.Number = DatabaseError::ConnectFailed;
        throw failure;
    }
}

Session::~Session() { SecureZeroMemory(connectionString_.data(), connectionString_.size() * sizeof(wchar_t)); }

void Session::ReadFacts() {
    Odbc::Connection& connection = *connection_;
    const auto text = [&](SQLUSMALLINT item) { return connection.InfoText(item).value_or(L""); };

    facts_.ProductName = text(SQL_DBMS_NAME);
    facts_.ProductVersion = text(SQL_DBMS_VER);
    facts_.Server = text(SQL_SERVER_NAME);
    facts_.Database = connection.CurrentCatalog();
    if (facts_.Database.empty()) facts_.Database = text(SQL_DATABASE_NAME);
    facts_.UserName = text(SQL_USER_NAME);
    facts_.SearchEscape = text(SQL_SEARCH_PATTERN_ESCAPE);

    // A driver without schemas says so in one of two places.
    const std::wstring schemaTerm = text(SQL_SCHEMA_TERM);
    const bool hasSchemas = !schemaTerm.empty() && connection.InfoLong(SQL_SCHEMA_USAGE).value_or(1) != 0;
    facts_.Kind = &FindProduct(facts_.ProductName, hasSchemas);
    if (hasSchemas) {
        facts_.SchemaTerm = schemaTerm;
        if (facts_.Kind->DefaultSchemaQuery)
            facts_.DefaultSchema = FirstValue(connection, facts_.Kind->DefaultSchemaQuery);
    } else if (facts_.Kind->CatalogsAreSchemas) {
        facts_.CatalogsAreSchemas = true;
        facts_.SchemaTerm = text(SQL_CATALOG_TERM);
        facts_.DefaultSchema = connection.CurrentCatalog();
    }
    // The terms come in any case ("schema", "OWNER") and are shown as a heading.
    if (!facts_.SchemaTerm.empty()) {
        CharLowerBuffW(facts_.SchemaTerm.data(), static_cast<DWORD>(facts_.SchemaTerm.size()));
        CharUpperBuffW(facts_.SchemaTerm.data(), 1);
    }

    IdentifierRules& rules = facts_.Rules;
    rules.Quote = text(SQL_IDENTIFIER_QUOTE_CHAR);
    if (rules.Quote == L" ") rules.Quote.clear();  // the standard's word for: no quoted names
    rules.Case = CaseOf(connection.InfoShort(SQL_IDENTIFIER_CASE));
    rules.SpecialCharacters = text(SQL_SPECIAL_CHARACTERS);
    rules.Keywords = OdbcKeywords();
    AddKeywords(rules.Keywords, text(SQL_KEYWORDS));
    AddKeywords(rules.Keywords, facts_.Kind->Keywords);
}

bool Session::IsAlive() noexcept {
    try {
        return !Live()->IsDead();
    } catch (...) {
        return false;
    }
}

std::shared_ptr<Odbc::Connection> Session::Live() {
    if (!lost_ && !connection_->IsDead()) return connection_;
    lost_ = true;
    try {
        connection_ = std::make_shared<Odbc::Connection>(connectionString_, loginTimeout_);
    } catch (const Odbc::Error& error) {
        RuntimeError failure = ErrorFromOdbc(error, DatabaseError::ConnectionLost);
        failure.Number = DatabaseError::ConnectionLost;
        failure.Description =
            L"The connection to the database was lost and could not be opened again: " + failure.Description;
        throw failure;
    }
    lost_ = false;
    return connection_;
}

bool Session::NoteFailure(const Odbc::Error& error) noexcept {
    if (error.ConnectionLost() || connection_->IsDead()) lost_ = true;
    return lost_;
}

void Session::Read(const std::function<void(Odbc::Connection&)>& reading) {
    for (int attempt = 1;; ++attempt) {
        const std::shared_ptr<Odbc::Connection> connection = Live();
        try {
            reading(*connection);
            return;
        } catch (const Odbc::Error& error) {
            if (!NoteFailure(error) || attempt == 2) throw;
        }
    }
}
