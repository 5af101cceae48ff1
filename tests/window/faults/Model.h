#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Fault.h"

// What has to come of a case: the procedures as they are described, written down once more without a window, a tree or
// an object, so that for each call that fails in each way there is an answer that was not taken from the component.

struct Outcome {
    std::vector<std::wstring> Calls;    // of the host's objects
    std::vector<std::wstring> Reports;  // "module.procedure number source"
    std::vector<std::wstring> Boxes;    // "title: text"
    std::wstring Left;                  // what the step leaves: of the tree, or in the editor
};

// What the host of these tests has.
namespace Browsed {
inline const std::vector<std::wstring> Names{L"one", L"two", L"three"};  // schemas, and tables or views of each
inline const std::vector<std::wstring> ColumnNames{L"A", L"B"};
inline const wchar_t* const Schema = L"one";  // the one that is opened, and the table in it
}  // namespace Browsed

class Model {
public:
    explicit Model(std::optional<Case> wanted) : case_(std::move(wanted)) {}

    // Constructor and the first Display, with a Constructor before it in which all is well when `connected`. Left:
    // status text and root, "<not shown>" without a window.
    Outcome Start(bool connected = false);
    // The same, and a second Display of the same window; what it leaves.
    Outcome StartTwice();
    // Branches of the tree. Left: the texts of the branch joined by "|", columns with their properties in brackets.
    Outcome Schemas();
    Outcome Objects(int folders);  // one folder, or the tables and then the views
    Outcome Columns(bool read);    // whether they were read before
    // Entries of the Action menu by their captions; `Create` is of the tables. Left: what is inserted.
    Outcome OfTable(const std::wstring& entry);
    Outcome OfView(const std::wstring& entry);  // its columns were not read
    Outcome OfFolder(const std::wstring& entry);

private:
    struct Fails {
        long Number;
        std::wstring Source = L"brvSQLEditor";
        std::wstring Description = L"";
    };
    enum class Got { Right, Text, PlainObject, Null, Empty, Nothing };
    using Texts = std::vector<std::wstring>;
    // What a collection's items are used for; throws what the use throws.
    using Use = std::function<void(Got, size_t)>;

    // The host's side.
    Got Call(const std::wstring& member);
    Got HostCall(const std::wstring& member);  // of the database that the component keeps
    bool NameIsUnknown(const std::wstring& member) const;
    static bool ToBoolean(Got got, bool right);
    static long ToLong(Got got, long right);
    static std::wstring ToText(Got got, const std::wstring& right);

    // Reporting and telling.
    void Report(const std::wstring& place, const Fails& error);
    void Tell(const std::wstring& title, const std::wstring& text);
    static bool IsOwn(const Fails& error);
    Outcome Done(const std::wstring& left);

    // Constructor and Display.
    void Constructor();
    void Display();

    // Collections: whether there is one, and its items.
    bool IsCollection(Got got, const std::wstring& name);
    void ForEach(bool there, const std::wstring& name, size_t count, const Use& use);
    bool AskedFor(const std::wstring& member);  // through the adapter, whose getters have traps of their own
    void Expand(const std::function<void()>& populate);
    void PopulateObjects(Texts& branch);
    void PopulateColumns(Texts& names, std::vector<Texts>& properties);
    void Resuming(const std::function<void()>& step);
    std::wstring DataTypeDesc();

    // Builders.
    std::wstring Format(const std::wstring& name);
    std::wstring BuildTable(const std::wstring& name);
    std::wstring Built(const std::wstring& procedure, const std::function<std::wstring()>& build);
    std::wstring Folder(const std::wstring& before, const std::wstring& behind);
    static std::wstring Inserted(const std::wstring& statement);

    std::optional<Case> case_;
    int seen_ = 0;
    Outcome outcome_;

    // What the component keeps.
    bool host_ = false;
    std::wstring owner_;
    long type_ = 0;
    std::wstring plural_;
    enum class Adapter { None, NotConnected, Connected } adapter_ = Adapter::None;
    bool starting_ = false;
    bool displaying_ = false;
    bool made_ = false;
    bool loaded_ = false;
    long connection_ = 0;  // grows with each connection that was given
    long filledFor_ = 0;   // the one that the window was filled for
    bool shown_ = false;
    std::wstring status_;
    std::wstring root_ = L"<none>";
};
