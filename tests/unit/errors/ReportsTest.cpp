#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <vector>

// A report names the procedure that failed. Few of them can be made to fail in a test, so the sources are read: each
// report has the name of the procedure that it stands in, and each event handler has a report.
namespace {

using Texts = std::vector<std::string>;

struct Source {
    std::string Path;  // from src on
    Texts Lines;
};

// What begins at a line that is not indented, up to the next one.
struct Procedure {
    std::string File;
    std::string Class;  // or namespace; empty for a helper
    std::string Name;
    std::string Text;

    std::string Place() const { return File + " " + Class + "::" + Name; }
};

bool EndsWith(const std::string& text, const std::string& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool IsWordCharacter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

const std::vector<Source>& Sources() {
    namespace fs = std::filesystem;
    static const std::vector<Source> all = [] {
        const fs::path root(u8"" BRV_SOURCES);
        std::vector<Source> sources;
        for (const fs::directory_entry& found : fs::recursive_directory_iterator(root)) {
            if (found.path().extension() != ".cpp" && found.path().extension() != ".h") continue;
            Source source{"/" + found.path().lexically_relative(root).generic_string(), {}};
            std::ifstream file(found.path());
            for (std::string line; std::getline(file, line);) {
                if (!line.empty() && line.back() == '\r') line.pop_back();
                source.Lines.push_back(line);
            }
            EXPECT_FALSE(source.Lines.empty()) << source.Path;
            sources.push_back(std::move(source));
        }
        return sources;
    }();
    return all;
}

// The word before the first bracket of a heading, with what qualifies it.
std::string NameIn(const std::string& heading) {
    const size_t bracket = heading.find('(');
    if (bracket == heading.npos) return {};
    size_t start = bracket;
    while (start > 0 && (IsWordCharacter(heading[start - 1]) || heading[start - 1] == ':' || heading[start - 1] == '~'))
        --start;
    return heading.substr(start, bracket - start);
}

std::vector<Procedure> ReadProcedures() {
    std::vector<Procedure> all;
    for (const Source& source : Sources()) {
        if (!EndsWith(source.Path, ".cpp")) continue;
        for (const std::string& line : source.Lines) {
            const bool begins = !line.empty() && std::isalpha(static_cast<unsigned char>(line[0])) != 0;
            if (begins || line.rfind("[[", 0) == 0) {
                const std::string name = NameIn(line);
                const size_t colons = name.rfind("::");
                const bool helper = colons == name.npos;
                all.push_back(
                    {source.Path, helper ? "" : name.substr(0, colons), helper ? name : name.substr(colons + 2), ""});
            }
            if (!all.empty() && all.back().File == source.Path) all.back().Text += line + "\n";
        }
    }
    return all;
}

const std::vector<Procedure>& Procedures() {
    static const std::vector<Procedure> all = ReadProcedures();
    return all;
}

// What stands between the brackets of each call of a function.
Texts ArgumentsOf(const std::string& function, const std::string& text) {
    Texts all;
    for (size_t at = text.find(function + "("); at != text.npos; at = text.find(function + "(", at + 1)) {
        if (at > 0 && IsWordCharacter(text[at - 1])) continue;
        const size_t start = at + function.size() + 1;
        size_t end = start;
        for (int depth = 1; end < text.size(); ++end) {
            if (text[end] == '(') ++depth;
            if (text[end] == ')' && --depth == 0) break;
        }
        all.push_back(text.substr(start, end - start));
    }
    return all;
}

// The first text in the arguments.
std::string TextIn(const std::string& arguments) {
    const size_t start = arguments.find("L\"");
    if (start == arguments.npos) return {};
    return arguments.substr(start + 2, arguments.find('"', start + 2) - start - 2);
}

// Reports that do not name the procedure that they stand in.
struct Other {
    const char* Place;
    const char* Arguments;
};
constexpr Other Others[] = {
    // The two events of a class.
    {"/component/clsSQLEditor.cpp clsSQLEditor::clsSQLEditor", "Module, L\"Class_Initialize\""},
    {"/component/clsSQLEditor.cpp clsSQLEditor::~clsSQLEditor", "Module, L\"Class_Terminate\""},
    {"/catalogue/clsListItem.cpp clsListItem::clsListItem", "Module, L\"Class_Initialize\""},
    {"/catalogue/clsListItem.cpp clsListItem::~clsListItem", "Module, L\"Class_Initialize\""},
    // Parts of one event.
    {"/statements/frmSQLEditor_DragDrop.cpp frmSQLEditor::m_InsertLater", "Module, L\"rtbSQL_OLEDragDrop\""},
    {"/statements/frmSQLEditor_DragDrop.cpp frmSQLEditor::m_InsertFiles", "Module, L\"rtbSQL_OLEDragDrop\""},
    // Modules without a constant for their name.
    {"/component/modGlobal.cpp modGlobal::Main", "L\"modGlobal\", L\"Main\""},
    {"/editor/modWinAPI.cpp modWinAPI::SetWindowTopMost", "L\"modWinAPI\", L\"SetWindowTopMost\""},
    // What the node was, beside the name.
    {"/browser/modLists_TreeNodes.cpp modLists::m_ClearNode", "Module, L\"m_ClearNode\", Debug"},
    // These are told the procedure.
    {"/browser/frmSQLEditor_Browser.cpp ::ReportOrTell", "frmSQLEditor::Module, Routine"},
    {"/browser/modLists_TreeNodes.cpp modLists::ReportUnlessOwn", "Module, Routine"},
    {"/editor/frmSQLEditor_Edit.cpp frmSQLEditor::m_Copy", "Module, Routine"},
    {"/statements/frmSQLEditor_Builders.cpp ::Trapped", "frmSQLEditor::Module, Routine"},
    {"/component/SQLEditorServer.cpp ::", "clsSQLEditor::Module, routine"},
};

// Properties have the word that their accessor begins with.
std::string ReportedName(const Procedure& one) {
    static const std::map<std::string, std::set<std::string>> properties = {
        {"clsDictionary", {"Connected", "Schemas", "Objects", "Columns", "DataTypeDesc"}},
        {"clsListItem",
         {"Category", "DBType", "DeleteText", "Description", "DragDrop", "ExecuteText", "Id", "InsertText", "list",
          "SelectText", "Text", "UpdateText"}},
    };
    const auto of = properties.find(one.Class);
    return (of != properties.end() && of->second.count(one.Name) != 0 ? "Get " : "") + one.Name;
}

// Told which procedure to report.
constexpr const char* Reporters[] = {"ReportOrTell", "ReportUnlessOwn", "m_Copy", "Trapped", "Converted"};

bool Reports(const Procedure& one) {
    if (!ArgumentsOf("ReportError", one.Text).empty()) return true;
    return std::any_of(std::begin(Reporters), std::end(Reporters), [&](const char* reporter) {
        const Texts calls = ArgumentsOf(reporter, one.Text);
        return std::any_of(calls.begin(), calls.end(),
                           [](const std::string& call) { return call.find("L\"") != call.npos; });
    });
}

// The procedure is one whose whole body is in a trap.
bool IsTrapped(const Procedure& one) {
    return one.Text.find("\n} catch (") != std::string::npos || one.Text.find("; } catch (") != std::string::npos;
}

}  // namespace

TEST(Reports, NameTheProcedureThatTheyStandIn) {
    int found = 0;
    std::set<std::string> seen;
    for (const Procedure& one : Procedures()) {
        if (one.File.rfind("/errors/", 0) == 0) continue;
        for (const std::string& arguments : ArgumentsOf("ReportError", one.Text)) {
            ++found;
            const auto* const other = std::find_if(std::begin(Others), std::end(Others),
                                                   [&](const Other& each) { return each.Place == one.Place(); });
            if (other != std::end(Others)) {
                EXPECT_EQ(other->Arguments, arguments) << one.Place();
                seen.insert(one.Place());
                continue;
            }
            EXPECT_EQ("Module, L\"" + ReportedName(one) + "\"", arguments) << one.Place();
            // A constant of its class, or of its namespace.
            EXPECT_TRUE(one.Class == "frmSQLEditor" || one.Class == "clsSQLEditor" || one.Class == "clsListItem" ||
                        one.Class == "clsDictionary" || one.Class == "modLists")
                << one.Place();
        }
    }
    EXPECT_LT(120, found);
    EXPECT_EQ(std::size(Others), seen.size()) << "a place has no report any more";
}

TEST(Reports, NameTheProcedureThatTellsItsName) {
    // Cut reports what it cannot copy as Copy does; a node is added by several procedures with one trap; the parts of a
    // statement are built like the procedures that build them alone.
    const std::map<std::string, Texts> others = {
        {"ReportUnlessOwn in Added", {"m_AddNode"}},
        {"m_Copy in mnuEditCut_Click", {"mnuEditCopy_Click"}},
    };
    std::map<std::string, int> found;
    for (const Procedure& one : Procedures()) {
        for (const char* const reporter : {"ReportOrTell", "ReportUnlessOwn", "m_Copy"}) {
            Texts names;
            for (const std::string& call : ArgumentsOf(reporter, one.Text)) {
                if (call.find("L\"") != call.npos) names.push_back(TextIn(call));
            }
            if (names.empty()) continue;
            ++found[reporter];
            const auto other = others.find(std::string(reporter) + " in " + one.Name);
            EXPECT_EQ(other != others.end() ? other->second : Texts{one.Name}, names) << one.Place();
        }
    }
    EXPECT_EQ((std::map<std::string, int>{{"ReportOrTell", 2}, {"ReportUnlessOwn", 7}, {"m_Copy", 5}}), found);
}

TEST(Reports, NameTheMembersOfWhichTheArgumentsAreWrong) {
    Texts names;
    Texts built;
    for (const Procedure& one : Procedures()) {
        for (const std::string& call : ArgumentsOf("Converted", one.Text)) names.push_back(TextIn(call));
        for (const std::string& call : ArgumentsOf("Trapped", one.Text)) built.push_back(TextIn(call));
    }
    std::erase(names, "");
    std::erase(built, "");
    EXPECT_EQ((Texts{"Constructor", "Display"}), names);
    EXPECT_EQ((Texts{"m_BuildTable", "m_BuildStmtSampleRows", "m_BuildTable"}), built);
}

// A class is called in reports as in the sources.
TEST(Reports, NameTheClass) {
    std::map<std::string, std::string> found;
    for (const Source& source : Sources()) {
        std::string within;
        for (const std::string& line : source.Lines) {
            for (const char* const word : {"class ", "namespace "}) {
                if (line.rfind(word, 0) != 0 || line.find(';') != line.npos) continue;
                const size_t start = std::char_traits<char>::length(word);
                size_t end = start;
                while (end < line.size() && IsWordCharacter(line[end])) ++end;
                within = line.substr(start, end - start);
            }
            if (line.find("wchar_t* Module = L\"") != line.npos) found[within] = TextIn(line);
        }
    }
    EXPECT_EQ((std::map<std::string, std::string>{{"clsDictionary", "clsDictionary"},
                                                  {"clsListItem", "clsListItem"},
                                                  {"clsSQLEditor", "clsSQLEditor"},
                                                  {"frmSQLEditor", "frmSQLEditor"},
                                                  {"modLists", "modLists"}}),
              found);
}

TEST(Reports, AreMadeByEachProcedureWithATrap) {
    // The host gets no type information, which it can do without.
    const std::set<std::string> silent = {"/component/SQLEditorServer.cpp LoadTypeInformation"};
    int trapped = 0;
    for (const Procedure& one : Procedures()) {
        if (one.File.rfind("/forms/", 0) == 0 || one.File.rfind("/automation/", 0) == 0) continue;
        if (!IsTrapped(one) || silent.count(one.File + " " + one.Name) != 0) continue;
        ++trapped;
        EXPECT_TRUE(Reports(one)) << one.Place();
    }
    EXPECT_LT(120, trapped);
}

// Events are called by Windows, which knows no exceptions.
TEST(Reports, AreMadeByEachEventHandler) {
    std::set<std::string> handlers;
    for (const Source& source : Sources()) {
        if (source.Path != "/editor/frmSQLEditor.h") continue;
        for (const std::string& line : source.Lines) {
            const std::string name = NameIn(line);
            const size_t rule = name.find('_');
            if (line.rfind("    ", 0) != 0 || line.find(';') == line.npos || line.find("//") < line.find('(')) continue;
            if (rule == name.npos || name.rfind("m_", 0) == 0 || rule == 0) continue;
            handlers.insert(name);
        }
    }
    EXPECT_EQ(1U, handlers.erase("rtbSQL_OLEDragDrop"));  // what fails in it is the dragging program's to know
    EXPECT_LT(70U, handlers.size());
    for (const char* const own : {"Idle", "KeyPreview", "ColoursChanged", "MenuHighlighted", "MenusClosed"})
        handlers.insert(own);
    for (const Procedure& one : Procedures()) {
        if (one.Class != "frmSQLEditor" || handlers.erase(one.Name) == 0) continue;
        EXPECT_TRUE(IsTrapped(one)) << one.Place();
        EXPECT_TRUE(Reports(one)) << one.Place();
    }
    EXPECT_EQ(std::set<std::string>(), handlers) << "not found in the sources";
}
