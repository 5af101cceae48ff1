#pragma once

#include "support/Component.h"
#include "support/EditorTree.h"

// A database as the repository's own database component opens it.
class RealDatabase {
public:
    explicit RealDatabase(const std::wstring& connection);
    const Object& Host() const { return host_; }

    // Runs statements one by one; each that fails is a failure of the test.
    void Run(const std::vector<std::wstring>& statements);
    // Whether the database takes the statement; why not in `failure`.
    bool Takes(const std::wstring& statement, std::wstring& failure);
    // The first row's values as text; empty when there is none. NULL is "<null>".
    std::vector<std::wstring> FirstRow(const std::wstring& query);

private:
    Object host_;
};

// From the environment that ./test sets; without it the test fails.
std::wstring SampleShop();  // the SQLite file that ./run shows
std::wstring PostgresServer();
std::wstring MariaDbServer();
// An SQLite database in a file that goes with the test.
class ScratchFile {
public:
    ScratchFile();
    ~ScratchFile();
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    std::wstring Connection() const;

private:
    std::wstring unixPath_;
    std::wstring path_;
};
// Stops or starts the PostgreSQL server and waits until that is done.
void SwitchPostgres(const wchar_t* what);

class DatabasesFixture : public ComponentFixture {
protected:
    // The window over the database; `work` runs inside.
    void Inside(RealDatabase& database, const std::function<void()>& work);
    // Opens the branch of a schema's tables and views.
    void OpenSchema(const wchar_t* schema);
    HTREEITEM Folder(const wchar_t* schema, const wchar_t* folder) const;

    EditorTree Tree;
};
