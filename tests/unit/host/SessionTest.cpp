#include "host/database/Session.h"

#include <gtest/gtest.h>

#include "host/database/RowReader.h"
#include "SampleDatabase.h"
#include "support/PatchedFunction.h"

// What becomes of a session whose connection goes, which the driver of SQLite never says.
namespace {

bool dead = false;
bool failing = false;
int executed = 0;

SQLRETURN SQL_API AttributeInstead(SQLHDBC, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER, SQLINTEGER*) noexcept {
    if (attribute != SQL_ATTR_CONNECTION_DEAD) return SQL_ERROR;
    *static_cast<SQLUINTEGER*>(value) = dead ? SQL_CD_TRUE : SQL_CD_FALSE;
    return SQL_SUCCESS;
}

SQLRETURN SQL_API ExecuteInstead(SQLHSTMT, SQLCHAR*, SQLINTEGER) noexcept {
    ++executed;
    if (failing) dead = true;
    return SQL_ERROR;
}

class DeadConnections {
public:
    DeadConnections() : attribute_(L"odbc32.dll", "SQLGetConnectAttrW", reinterpret_cast<void*>(&AttributeInstead)) {
        EXPECT_TRUE(attribute_);
        dead = failing = false;
        executed = 0;
    }

private:
    PatchedFunction attribute_;
};

}  // namespace

TEST(Session, OpensAConnectionThatDiedOnce) {
    const auto session = OpenEmpty();
    const DeadConnections connections;
    const auto first = session->Live();
    EXPECT_EQ(first, session->Live());
    EXPECT_TRUE(session->IsAlive());
    dead = true;
    const auto second = session->Live();
    EXPECT_NE(first, second);
    dead = false;
    EXPECT_EQ(second, session->Live()) << "it is there again";
    // A failure of the statement keeps the connection. A failure of the connection makes the next call open it again.
    EXPECT_FALSE(session->NoteFailure(Odbc::Error({{L"42000", 0, L""}})));
    EXPECT_EQ(second, session->Live());
    EXPECT_TRUE(session->NoteFailure(Odbc::Error({{L"08S01", 0, L""}})));
    const auto third = session->Live();
    EXPECT_NE(second, third);
    EXPECT_EQ(third, session->Live());
}

TEST(Session, ReadsOnceMoreWhereTheConnectionWasLost) {
    const auto session = OpenEmpty();
    std::vector<std::shared_ptr<Odbc::Connection>> seen;
    const auto read = [&](const wchar_t* state, int failures) {
        seen.clear();
        session->Read([&](Odbc::Connection& connection) {
            const auto live = session->Live();
            EXPECT_EQ(live.get(), &connection);
            seen.push_back(live);
            if (static_cast<int>(seen.size()) <= failures) throw Odbc::Error({{state, 0, L""}});
        });
    };
    read(L"", 0);
    EXPECT_EQ(1u, seen.size());
    read(L"08S01", 1);
    ASSERT_EQ(2u, seen.size());
    EXPECT_NE(seen[0], seen[1]);
    EXPECT_THROW(read(L"08S01", 2), Odbc::Error);
    EXPECT_EQ(2u, seen.size());
    EXPECT_THROW(read(L"42000", 1), Odbc::Error);
    EXPECT_EQ(1u, seen.size());
}

TEST(Session, KeepsInMindThatAStatementLostTheConnection) {
    const auto session = OpenEmpty();
    const DeadConnections connections;
    const auto before = session->Live();
    {
        const PatchedFunction execute(L"odbc32.dll", "SQLExecDirect", reinterpret_cast<void*>(&ExecuteInstead));
        ASSERT_TRUE(execute);
        if (before->TextEncoding() != Odbc::Encoding::NarrowUtf8) GTEST_SKIP() << "the driver is called otherwise";
        EXPECT_THROW(RowReader(session, L"select 1", 0), RuntimeError);
        EXPECT_EQ(before, session->Live()) << "it did not say so";
        failing = true;
        EXPECT_THROW(RowReader(session, L"select 1", 0), RuntimeError);
    }
    EXPECT_EQ(2, executed);
    // The driver may say that it lives, once it was asked.
    dead = false;
    EXPECT_NE(before, session->Live());
}

TEST(Session, TellsThatItsConnectionCannotBeOpenedAgain) {
    const auto session = OpenEmpty();
    const DeadConnections connections;
    {
        const PatchedFunction connect(
            L"odbc32.dll", "SQLDriverConnectW",
            reinterpret_cast<void*>(static_cast<SQLRETURN(SQL_API*)(SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*,
                                                                    SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT)>(
                [](SQLHDBC, SQLHWND, SQLWCHAR*, SQLSMALLINT, SQLWCHAR*, SQLSMALLINT, SQLSMALLINT*, SQLUSMALLINT)
                    SQL_API -> SQLRETURN { return SQL_ERROR; })));
        ASSERT_TRUE(connect);
        dead = true;
        try {
            session->Live();
            FAIL() << "was opened";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(DatabaseError::ConnectionLost, error.Number);
            EXPECT_EQ(L"brvADO", error.Source);
            EXPECT_EQ(
                0u, error.Description.find(L"The connection to the database was lost and could not be opened again: "));
        }
        EXPECT_FALSE(session->IsAlive());
    }
    EXPECT_FALSE(session->IsAlive()) << "the driver says so of the new one too";
    dead = false;
    EXPECT_TRUE(session->IsAlive());
}

TEST(Connection, GivesUpWhatWasNotCommitted) {
    static std::wstring calls;
    calls.clear();
    const auto disconnect = static_cast<SQLRETURN(SQL_API*)(SQLHDBC)>([](SQLHDBC) SQL_API -> SQLRETURN {
        calls += L"disconnect ";
        return calls.find(L"rolled") == std::wstring::npos ? SQL_ERROR : SQL_SUCCESS;
    });
    const auto end = static_cast<SQLRETURN(SQL_API*)(SQLSMALLINT, SQLHANDLE, SQLSMALLINT)>(
        [](SQLSMALLINT, SQLHANDLE, SQLSMALLINT how) SQL_API -> SQLRETURN {
            calls += how == SQL_ROLLBACK ? L"rolled back " : L"committed ";
            return SQL_SUCCESS;
        });
    const PatchedFunction patched(L"odbc32.dll", "SQLDisconnect", reinterpret_cast<void*>(disconnect));
    const PatchedFunction ended(L"odbc32.dll", "SQLEndTran", reinterpret_cast<void*>(end));
    ASSERT_TRUE(patched);
    ASSERT_TRUE(ended);
    { const Odbc::Connection connection(L"Driver=SQLite3;Database=:memory:", 5); }
    EXPECT_EQ(L"disconnect rolled back disconnect ", calls);
}

namespace {

// A driver that does not know how long a value is, and gives it in two pieces.
int pieces = 0;

SQLRETURN SQL_API DataInstead(SQLHSTMT, SQLUSMALLINT, SQLSMALLINT type, SQLPOINTER buffer, SQLLEN room,
                              SQLLEN* indicator) noexcept {
    if (++pieces > 2) return SQL_NO_DATA;
    if (type == SQL_C_BINARY) {
        memset(buffer, 0xA0 + pieces, static_cast<size_t>(room));
        *indicator = pieces == 1 ? SQL_NO_TOTAL : 2;
    } else {
        auto* const text = static_cast<wchar_t*>(buffer);
        const size_t count = static_cast<size_t>(room) / sizeof(wchar_t) - 1;
        for (size_t at = 0; at < count; ++at) text[at] = pieces == 1 ? L'x' : L'y';
        text[count] = L'\0';
        *indicator = pieces == 1 ? SQL_NO_TOTAL : 2 * static_cast<SQLLEN>(sizeof(wchar_t));
    }
    return SQL_SUCCESS;
}

}  // namespace

TEST(Statement, ReadsValuesOfWhichTheDriverDoesNotKnowTheLength) {
    const auto session = OpenEmpty();
    RunSql(*session, L"create table t (a text, b blob)");
    RunSql(*session, L"insert into t values ('', x'00')");
    Odbc::Statement statement(*session->Live());
    statement.Execute(L"select a, b from t");
    ASSERT_TRUE(statement.Fetch());
    const PatchedFunction data(L"odbc32.dll", "SQLGetData", reinterpret_cast<void*>(&DataInstead));
    ASSERT_TRUE(data);
    pieces = 0;
    const std::wstring text = statement.Text(1).value_or(L"");
    EXPECT_EQ(L"xyy", text.substr(text.size() - 3)) << text.size();
    EXPECT_EQ(text.size() - 2, text.find(L'y'));
    EXPECT_EQ(2, pieces);
    pieces = 0;
    const std::wstring digits = statement.Text(2).value_or(L"");
    ASSERT_LT(6u, digits.size());
    EXPECT_EQ(L"A1A2A2", digits.substr(digits.size() - 6)) << digits.size();
    EXPECT_EQ(2, pieces);
}
