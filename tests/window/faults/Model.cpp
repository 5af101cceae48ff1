#include "Model.h"

#include <utility>

namespace {

// Error numbers of the language.
constexpr long TypeMismatch = 13;
constexpr long NotSet = 91;
constexpr long BadNull = 94;
constexpr long AlreadyShown = 400;
constexpr long NeedsObject = 424;
constexpr long NoMember = 438;
constexpr long NoElement = 35601;

// Error numbers that have a meaning of their own.
constexpr long Base = -2147221504;
constexpr long NoDictionary = Base + 1;
constexpr long TreeFull = Base + 2;
constexpr long NoColumns = Base + 10;

constexpr const wchar_t* Title = L"brvSQLEditor";
constexpr const wchar_t* Host = L"brvADO";
const std::wstring CrLf = L"\r\n";

std::wstring Joined(const std::vector<std::wstring>& texts, const wchar_t* between) {
    std::wstring all;
    for (size_t at = 0; at < texts.size(); ++at) all += (at > 0 ? between : L"") + texts[at];
    return all;
}

bool InRange(long number) { return number > Base && number - Base < 65535; }

}  // namespace

// ---- the host's side

bool Model::NameIsUnknown(const std::wstring& member) const {
    return case_ && case_->Way == Fault::UnknownName && case_->Member == member;
}

Model::Got Model::Call(const std::wstring& member) {
    if (NameIsUnknown(member)) throw Fails{NoMember};
    outcome_.Calls.push_back(member);
    if (!case_ || case_->Member != member || ++seen_ != case_->Occurrence) return Got::Right;
    switch (case_->Way) {
        case Fault::MissingMember:
            throw Fails{NoMember};
        case Fault::Text:
            return Got::Text;
        case Fault::PlainObject:
            return Got::PlainObject;
        case Fault::Null:
            return Got::Null;
        case Fault::Empty:
            return Got::Empty;
        case Fault::Nothing:
            return Got::Nothing;
        case Fault::Reenters:
            Display();
            return Got::Right;
        case Fault::Forgets:
            host_ = false;
            owner_.clear();
            plural_ = L"Schemas";
            ++connection_;
            return Got::Right;
        default:
            break;
    }
    if (const auto raised = ExceptionOf(case_->Way)) {
        throw Fails{raised->Number, raised->Source, raised->Description};
    }
    return Got::Right;
}

Model::Got Model::HostCall(const std::wstring& member) {
    if (!host_) throw Fails{NotSet};
    return Call(member);
}

bool Model::ToBoolean(Got got, bool right) { return ToLong(got, right ? 1 : 0) != 0; }

long Model::ToLong(Got got, long right) {
    switch (got) {
        case Got::Text:
            throw Fails{TypeMismatch};
        case Got::PlainObject:
            throw Fails{NoMember};  // it has no default member
        case Got::Null:
            throw Fails{BadNull};
        case Got::Nothing:
            throw Fails{NotSet};
        case Got::Empty:
            return 0;
        default:
            return right;
    }
}

std::wstring Model::ToText(Got got, const std::wstring& right) {
    if (got == Got::Text) return L"no such thing";
    if (got == Got::Empty) return L"";
    ToLong(got, 0);  // fails alike
    return right;
}

// ---- reporting and telling

void Model::Report(const std::wstring& place, const Fails& error) {
    outcome_.Reports.push_back(place + L" " + std::to_wstring(error.Number) + L" " + error.Source);
}

void Model::Tell(const std::wstring& title, const std::wstring& text) {
    outcome_.Boxes.push_back(title + L": " + text);
}

bool Model::IsOwn(const Fails& error) { return error.Source == Title && InRange(error.Number); }

Outcome Model::Done(const std::wstring& left) {
    outcome_.Left = left;
    return outcome_;
}

// ---- Constructor and Display

void Model::Constructor() try {
    struct Counted {
        long& Count;
        bool Changed = false;
        ~Counted() {
            if (Changed) ++Count;
        }
    } counted{connection_};
    const bool connected = ToBoolean(Call(L"Connected"), true);
    counted.Changed = true;
    if (!connected) {
        host_ = false;
        owner_.clear();
        adapter_ = Adapter::NotConnected;
        plural_.clear();
        return;
    }
    host_ = true;
    const std::wstring catalog = ToText(HostCall(L"CurrentCatalog"), L"");
    const std::wstring user = ToText(HostCall(L"UserName"), L"SCOTT");
    owner_ = catalog.empty() ? user : catalog;
    type_ = ToLong(HostCall(L"DBType"), 4);
    const std::wstring term = ToText(HostCall(L"SchemaTerm"), L"");
    plural_ = term.empty() ? L"Schemas" : term + L"s";
    adapter_ = Adapter::NotConnected;
    switch (HostCall(L"Dictionary")) {
        case Got::Null:
        case Got::Empty:
            throw Fails{TypeMismatch};
        case Got::Text:
            throw Fails{NeedsObject};
        case Got::Nothing:
            break;
        default:
            adapter_ = Adapter::Connected;
            break;
    }
} catch (const Fails& error) {
    Report(L"clsSQLEditor.Constructor", error);
}

void Model::Display() {
    // The window is there before anything else, and is filled when it is touched for the first time.
    const auto load = [this] {
        if (!loaded_ && adapter_ == Adapter::Connected) root_ = plural_;
        if (!loaded_) filledFor_ = connection_;
        loaded_ = true;
    };
    if (!made_) {
        made_ = true;
        if (!owner_.empty()) {
            load();
            if (root_ == L"<none>") Report(L"frmSQLEditor.Constructor", {NoElement});
        }
    }
    if (displaying_ || !starting_) {
        Report(L"frmSQLEditor.Display", {AlreadyShown});
        return;
    }
    displaying_ = true;
    load();
    if (filledFor_ != connection_) {
        filledFor_ = connection_;
        root_ = adapter_ == Adapter::Connected ? plural_ : L"<none>";
    }
    try {
        status_ = adapter_ == Adapter::Connected ? ToText(HostCall(L"DBTypeName"), L"Type " + std::to_wstring(type_))
                                                 : L"Not connected to a database";
        shown_ = true;
    } catch (const Fails& error) {
        Report(L"frmSQLEditor.Display", error);
        shown_ = false;
    }
    displaying_ = false;
}

Outcome Model::Start(bool connected) {
    starting_ = true;
    if (connected) {
        const auto wanted = std::exchange(case_, std::nullopt);
        Constructor();
        outcome_ = {};
        case_ = wanted;
    }
    Constructor();
    Display();
    return Done(shown_ ? status_ + L"/" + root_ : L"<not shown>");
}

Outcome Model::StartTwice() {
    Start();
    Display();
    return Done(shown_ ? status_ + L"/" + root_ : L"<not shown>");
}

// ---- collections

bool Model::IsCollection(Got got, const std::wstring& name) {
    if (got == Got::Nothing) return false;
    if (got != Got::Right) throw Fails{TypeMismatch};
    try {
        Call(name + L"._NewEnum");  // there is none, whatever is given instead
    } catch (const Fails& error) {
        if (error.Number != NoMember) throw;
    }
    if (NameIsUnknown(name + L".Count") || NameIsUnknown(name + L".Item")) throw Fails{TypeMismatch};
    return true;
}

void Model::ForEach(bool there, const std::wstring& name, size_t count, const Use& use) {
    if (!there) throw Fails{NotSet};
    const auto items = static_cast<size_t>(ToLong(Call(name + L".Count"), static_cast<long>(count)));
    if (items > 0) {
        // Whether it counts from 1 shows at the last item, or else at one with the number 0.
        try {
            Call(name + L".Item");
        } catch (const Fails&) {
            Call(name + L".Item");
        }
    }
    for (size_t at = 0; at < items; ++at) use(Call(name + L".Item"), at);
}

bool Model::AskedFor(const std::wstring& member) try {
    return IsCollection(Call(L"Dictionary." + member), member);
} catch (const Fails& error) {
    if (error.Source == Host) {
        if (member == L"Objects" && error.Number == NoDictionary) throw Fails{NoDictionary, Title, error.Description};
        if (member == L"Columns" && InRange(error.Number)) throw;
    }
    Report(L"clsDictionary.Get " + member, error);
    return false;
}

std::wstring Model::DataTypeDesc() try {
    return ToText(Call(L"Dictionary.DataTypeDesc"), L"number");
} catch (const Fails& error) {
    Report(L"clsDictionary.Get DataTypeDesc", error);
    return L"";
}

void Model::Expand(const std::function<void()>& populate) try { populate(); } catch (const Fails& error) {
    if (error.Source == Title && error.Number == TreeFull) {
        Tell(Title,
             L"Exceeded the maximum number of items in the database object list. Try collapsing/closing a few branches "
             L"and try it again.");
        return;
    }
    Report(L"frmSQLEditor.trvDBObjects_Expand", error);
}

Outcome Model::Schemas() {
    Texts branch;
    Expand([&] {
        try {
            const bool there = AskedFor(L"Schemas");
            branch.clear();
            if (!there) {
                branch.emplace_back(L"Current Schema");
                return;
            }
            ForEach(there, L"Schemas", Browsed::Names.size(), [&](Got got, size_t at) {
                const std::wstring text = got == Got::Null ? L"" : ToText(got, Browsed::Names[at]);
                branch.push_back(text.empty() ? L"Current Schema" : text);
            });
        } catch (const Fails& error) {
            if (IsOwn(error)) throw;
            Report(L"modLists.PopulateDBObjSchemas", error);
        }
    });
    return Done(Joined(branch, L"|"));
}

void Model::PopulateObjects(Texts& branch) try {
    branch.clear();
    const bool there = AskedFor(L"Objects");
    ForEach(there, L"Objects", Browsed::Names.size(),
            [&](Got got, size_t at) { branch.push_back(ToText(got, Browsed::Names[at])); });
} catch (const Fails& error) {
    if (error.Source == Title && error.Number == NoDictionary) {
        Tell(Title,
             L"No database dictionary information could be found. You may want to try a different driver / provider.");
        return;
    }
    if (IsOwn(error)) throw;
    Report(L"modLists.PopulateDBObjTablesViews", error);
}

Outcome Model::Objects(int folders) {
    Texts both;
    for (int folder = 0; folder < folders; ++folder) {
        Texts branch;
        Expand([&] { PopulateObjects(branch); });
        both.push_back(Joined(branch, L"|"));
    }
    return Done(Joined(both, L"/"));
}

// What the host's component says of its columns is told, and the next statement follows.
void Model::Resuming(const std::function<void()>& step) try { step(); } catch (const Fails& error) {
    if (error.Source != Host || error.Number != NoColumns) throw;
    Tell(L"SQL Editor", error.Description);
}

void Model::PopulateColumns(Texts& names, std::vector<Texts>& properties) try {
    bool there = false;
    Resuming([&] { there = AskedFor(L"Columns"); });
    names.clear();
    properties.clear();
    if (!there) return;
    Resuming([&] {
        ForEach(there, L"Columns", Browsed::ColumnNames.size(), [&](Got got, size_t at) {
            names.emplace_back();
            properties.emplace_back();
            Resuming([&] {
                ForEach(IsCollection(got, L"Properties"), L"Properties", 3, [&](Got property, size_t position) {
                    if (property != Got::Right) throw Fails{TypeMismatch};  // it is no array
                    if (position == 0) properties.back().emplace_back(L"TABLE_CAT=null");
                    if (position == 1) {
                        names.back() = Browsed::ColumnNames[at];
                        properties.back().emplace_back(L"COLUMN_NAME=" + names.back());
                    }
                    if (position == 2) {
                        properties.back().emplace_back(L"DATA_TYPE=3");
                        properties.back().back() = L"DATA_TYPE=" + DataTypeDesc();
                    }
                });
            });
        });
    });
} catch (const Fails& error) {
    if (IsOwn(error)) throw;
    Report(L"modLists.PopulateDBObjColumns", error);
}

Outcome Model::Columns(bool read) {
    Texts names{L"(undefined)"};
    std::vector<Texts> properties;
    if (read) {
        names = Browsed::ColumnNames;
        for (const std::wstring& name : names) {
            properties.push_back({L"TABLE_CAT=null", L"COLUMN_NAME=" + name, L"DATA_TYPE=number"});
        }
    }
    Expand([&] { PopulateColumns(names, properties); });
    Texts shown;
    for (size_t at = 0; at < names.size(); ++at) {
        shown.push_back(names[at] + (at < properties.size() ? L"[" + Joined(properties[at], L",") + L"]" : L""));
    }
    return Done(Joined(shown, L"|"));
}

// ---- builders

std::wstring Model::Format(const std::wstring& name) { return ToText(HostCall(L"FormatName"), L"[" + name + L"]"); }

std::wstring Model::Built(const std::wstring& procedure, const std::function<std::wstring()>& build) try {
    return build();
} catch (const Fails& error) {
    Report(L"frmSQLEditor." + procedure, error);
    return L"";
}

std::wstring Model::BuildTable(const std::wstring& name) {
    return Built(L"m_BuildTable", [&] { return std::wstring(Browsed::Schema) + L"." + Format(name); });
}

std::wstring Model::Inserted(const std::wstring& statement) {
    return statement.empty() ? L"" : CrLf + statement + L";" + CrLf;
}

Outcome Model::OfTable(const std::wstring& entry) {
    host_ = true;
    const std::wstring table = Browsed::Schema;
    const Texts& columns = Browsed::ColumnNames;
    const size_t last = columns.size() - 1;
    // All are built whichever is wanted.
    const std::wstring select = Built(L"m_GetStmtSelectTable", [&] {
        std::wstring text;
        for (size_t at = 0; at <= last; ++at) text += (at == 0 ? L"SELECT " : L", ") + Format(columns[at]) + CrLf;
        return text + L"FROM " + BuildTable(table) + CrLf;
    });
    const std::wstring insert = Built(L"m_GetStmtInsertTable", [&] {
        std::wstring text = L"INSERT INTO " + BuildTable(table) + CrLf;
        for (size_t at = 0; at <= last; ++at) text += (at == 0 ? L"( " : L", ") + Format(columns[at]) + CrLf;
        text += L") VALUES" + CrLf;
        for (size_t at = 0; at <= last; ++at) text += (at == 0 ? L"( " : L", ") + columns[at] + L"_value" + CrLf;
        return text + L")";
    });
    const std::wstring update = Built(L"m_GetStmtUpdateTable", [&] {
        const std::wstring head = L"UPDATE " + BuildTable(table) + CrLf;
        std::wstring set;
        std::wstring where;
        for (size_t at = 0; at <= last; ++at) {
            set += (at == 0 ? L"SET " : L", ") + Format(columns[at]) + L" = value" + CrLf;
            where += (at == 0 ? L"WHERE " : L" AND ") + Format(columns[at]) + L" = value" + (at < last ? CrLf : L"");
        }
        return head + set + where;
    });
    const std::wstring remove = Built(L"m_GetStmtDeleteTable", [&] {
        std::wstring text = L"DELETE FROM " + BuildTable(table) + CrLf;
        for (size_t at = 0; at <= last; ++at) {
            text += (at == 0 ? L"WHERE\t" : L"AND\t") + Format(columns[at]) + L" = value" + (at < last ? CrLf : L"");
        }
        return text;
    });
    const std::wstring count = L"SELECT COUNT(*) FROM " + BuildTable(table);
    const std::wstring sample = L"SELECT * FROM " + BuildTable(table) + L" WHERE rownum <= 100";
    return Done(Inserted(entry == L"Select"           ? select
                         : entry == L"Insert"         ? insert
                         : entry == L"Update"         ? update
                         : entry == L"Delete"         ? remove
                         : entry == L"Count rows"     ? count
                         : entry == L"Describe table" ? L"DESCRIBE one.one"
                                                      : sample));
}

Outcome Model::OfView(const std::wstring& entry) {
    host_ = true;
    const std::wstring count = L"SELECT COUNT(*) FROM " + BuildTable(Browsed::Schema);
    const std::wstring sample = L"SELECT * FROM " + BuildTable(Browsed::Schema) + L" WHERE rownum <= 100";
    return Done(Inserted(entry == L"Select"          ? L""
                         : entry == L"Count rows"    ? count
                         : entry == L"Describe view" ? L"DESCRIBE one.one"
                                                     : sample));
}

std::wstring Model::Folder(const std::wstring& before, const std::wstring& behind) {
    std::wstring text;
    for (const std::wstring& name : Browsed::Names) {
        text += (text.empty() ? L"" : L";" + CrLf) + before + BuildTable(name) + behind;
    }
    return text;
}

Outcome Model::OfFolder(const std::wstring& entry) {
    host_ = true;
    const std::wstring select = Folder(L"SELECT * FROM ", L"");
    const std::wstring count = Folder(L"SELECT COUNT(*) FROM ", L"");
    std::wstring describe;
    for (const std::wstring& name : Browsed::Names) {
        describe += (describe.empty() ? L"" : L";" + CrLf) + L"DESCRIBE one." + name;
    }
    const std::wstring sample = Folder(L"SELECT * FROM ", L" WHERE rownum <= 100");
    if (entry == L"Create") {
        try {
            // Whatever it answers: the statement is in its argument.
            const Got got = HostCall(L"ShowCreateTableDialog1");
            return Done(got == Got::Right ? Inserted(L"CREATE TABLE x") : L"");
        } catch (const Fails& error) {
            Report(L"frmSQLEditor.mnuActionCreate_Click", error);
            return Done(L"");
        }
    }
    return Done(Inserted(entry == L"Select"                     ? select
                         : entry == L"Count rows in all tables" ? count
                         : entry == L"Describe all tables"      ? describe
                                                                : sample));
}
