#include "catalogue/Catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cwctype>
#include <map>
#include <set>
#include <tuple>
#include <vector>

namespace {

struct Texts {
    std::wstring Description, DragDrop, SelectText, ExecuteText;
};

Texts Expanded(const CatalogueSection& section, const CatalogueEntry& entry) {
    const CatalogueTexts texts = ExpandTexts(section, entry);
    return {texts.Description.Text(), texts.DragDrop.Text(), texts.SelectText.Text(), texts.ExecuteText.Text()};
}

struct Item : Texts {
    const CatalogueSection* Section;
    std::wstring Text;
    long Id;
};

// The whole catalogue, with the Ids that counting gives.
const std::vector<Item>& Items() {
    static const std::vector<Item> items = [] {
        std::vector<Item> all;
        for (const auto& section : CatalogueSections()) {
            for (const auto& entry : section.Entries) {
                all.push_back({Expanded(section, entry), &section, std::wstring(entry.Text), long(all.size())});
            }
        }
        return all;
    }();
    return items;
}

std::wstring Where(const Item& item) { return std::to_wstring(item.Id) + L" " + item.Text; }

const Item& At(long id, const wchar_t* text) {
    static const Item none{};
    if (id >= long(Items().size())) {
        ADD_FAILURE() << "no entry " << id;
        return none;
    }
    EXPECT_EQ(text, Items()[id].Text) << id;
    return Items()[id];
}

void ExpectTexts(long id, const wchar_t* text, const wchar_t* dragDrop, const wchar_t* executeText) {
    const Item& item = At(id, text);
    EXPECT_EQ(dragDrop, item.DragDrop) << id;
    EXPECT_EQ(executeText, item.ExecuteText) << id;
}

void ExpectDescription(long id, const wchar_t* text, const wchar_t* description) {
    EXPECT_EQ(description, At(id, text).Description) << id;
}

bool StartsWith(const std::wstring& text, std::wstring_view start) { return text.rfind(start, 0) == 0; }

std::vector<std::wstring> Sentences(std::wstring text) {
    std::vector<std::wstring> sentences;
    for (size_t end; (end = text.find(L". ")) != text.npos; text.erase(0, end + 2)) {
        // "e.g. :A1" does not end there.
        if (end >= 3 && text.compare(end - 3, 3, L"e.g") == 0) break;
        sentences.push_back(text.substr(0, end + 1));
    }
    sentences.push_back(text);
    return sentences;
}

}  // namespace

TEST(CatalogueTest, SectionsComeInTheirOrderWithTheirCounts) {
    using Row = std::tuple<long, long, long, long, std::wstring>;  // first Id, count, list, database type, category
    const std::vector<Row> expected = {
        {0, 25, 3, 0, L""},
        {25, 10, 1, 0, L""},
        {35, 1, 2, 4, L"SQL Commands"},
        {36, 18, 2, 4, L"Single Row Number Functions"},
        {54, 23, 2, 4, L"Single Row Character Functions"},
        {77, 8, 2, 4, L"Group Functions"},
        {85, 6, 2, 4, L"Date Functions"},
        {91, 10, 2, 4, L"Conversion Functions"},
        {101, 9, 2, 4, L"Other Functions"},
        {110, 5, 2, 4, L"Pseudo Columns"},
        {115, 10, 2, 4, L"Data Types"},
        {125, 24, 2, 4, L"Format Models"},
        {149, 24, 2, 8, L"Single Row Number Functions"},
        {173, 23, 2, 8, L"Single Row Character Functions"},
        {196, 14, 2, 8, L"Group Functions"},
        {210, 10, 2, 8, L"Date Functions"},
        {220, 2, 2, 8, L"Conversion Functions"},
        {222, 28, 2, 8, L"Other Functions"},
        {250, 27, 2, 8, L"Data Types"},
        {277, 5, 2, 8, L"Pseudo Columns"},
        {282, 1, 2, 8, L"SQL Commands"},
    };
    std::vector<Row> rows;
    for (const auto& section : CatalogueSections()) {
        rows.push_back({section.FirstId, long(section.Entries.size()), section.list, section.DBType,
                        std::wstring(section.Category)});
    }
    EXPECT_EQ(expected, rows);
}

TEST(CatalogueTest, IdsRunFrom0To282) {
    EXPECT_EQ(283, CatalogueSize);
    ASSERT_EQ(283u, Items().size());
    for (const Item& item : Items()) {
        EXPECT_GE(item.Id, item.Section->FirstId);
        EXPECT_LT(item.Id, item.Section->FirstId + long(item.Section->Entries.size()));
    }
    At(0, L"@");
    At(282, L"USE");
}

TEST(CatalogueTest, ListsAndDatabasesHaveTheirShare) {
    std::map<std::pair<long, long>, int> counts;
    for (const Item& item : Items()) ++counts[{item.Section->list, item.Section->DBType}];
    const std::map<std::pair<long, long>, int> expected = {{{1, 0}, 10}, {{2, 4}, 114}, {{2, 8}, 134}, {{3, 0}, 25}};
    EXPECT_EQ(expected, counts);
}

// What the rules say, restated from the entry's texts alone, with the exceptions by Id.
TEST(CatalogueTest, HostCommandsAreDraggedWithASemicolon) {
    const std::set<long> exceptions = {1, 2, 5, 16, 22};
    for (long id = 0; id <= 24; ++id) {
        const Item& item = Items()[id];
        EXPECT_FALSE(item.ExecuteText.empty()) << Where(item);
        if (!exceptions.count(id)) {
            EXPECT_EQ(item.ExecuteText + L";", item.DragDrop) << Where(item);
        }
    }
    ExpectTexts(1, L":", L":parameter", L"select :A1 from dual");
    ExpectTexts(2, L"&", L"&parameter", L"select '&my_param' from dual");
    ExpectTexts(5, L"CLEAR", L"CL[EAR] {BRE[AKS]  |  BUFF[ER]  |  COL[UMNS]  |  SCR[EEN] | SQL};",
                L"CL[EAR] {BRE[AKS] | BUFF[ER] | COL[UMNS] | SCR[EEN] | SQL}");
    ExpectTexts(16, L"RECORDSET_FROM_PROC", L"RECORDSET_FROM_PROC(text);",
                L"select RECORDSET_FROM_PROC(\"procedurecall(?)\")");
    ExpectTexts(22, L"START", L"START filename", L"START filename");
}

TEST(CatalogueTest, HostCommandsHaveTheSyntaxOfTheScriptProcessor) {
    const wchar_t* const syntax[25][2] = {
        {L"@", L"@filename"},
        {L":", L"select :A1 from dual"},
        {L"&", L"select '&my_param' from dual"},
        {L"ACCEPT", L"ACC[EPT] variable [PROMPT text|NOPROMPT]"},
        {L"BREAK", L"BRE[AK] [ON column [action [action]]] ..."},
        {L"CLEAR", L"CL[EAR] {BRE[AKS] | BUFF[ER] | COL[UMNS] | SCR[EEN] | SQL}"},
        {L"COLUMN FORMAT", L"COL[UMN] column FOR[MAT] format"},
        {L"COLUMN HEADING", L"COL[UMN] column HEA[DING] text"},
        {L"CONNECT", L"CONN[ECT] username/password@database"},
        {L"DESCRIBE", L"DESC[RIBE] object"},
        {L"DEFINE", L"DEF[INE] variable [= value]"},
        {L"DISCONNECT", L"DISC[ONNECT]"},
        {L"HELP", L"HELP"},
        {L"HOST", L"HO[ST] command"},
        {L"PAUSE", L"PAU[SE] [text]"},
        {L"PROMPT", L"PROMPT [text]"},
        {L"RECORDSET_FROM_PROC", L"select RECORDSET_FROM_PROC(\"procedurecall(?)\")"},
        {L"REMARK", L"REM[ARK] text"},
        {L"SET FEEDBACK", L"SET FEEDBACK {ON|OFF}"},
        {L"SET LONG", L"SET LONG n"},
        {L"SET PAGESIZE", L"SET PAGES[IZE] n"},
        {L"SET TIMING", L"SET TIMI[NG] {ON|OFF}"},
        {L"START", L"START filename"},
        {L"UNDEFINE", L"UNDEFINE variable_name"},
        {L"VARIABLE", L"VARIABLE variable_name"},
    };
    for (long id = 0; id < 25; ++id) EXPECT_EQ(syntax[id][1], At(id, syntax[id][0]).ExecuteText);
}

TEST(CatalogueTest, OneEntryAloneHasASelectText) {
    for (const Item& item : Items()) {
        EXPECT_EQ(item.Id == 16 ? L"select RECORDSET_FROM_PROC(\"procedurecall(?)\")" : L"", item.SelectText)
            << Where(item);
    }
}

TEST(CatalogueTest, AnsiCommandsAreDraggedAsTheyRun) {
    for (long id = 25; id <= 34; ++id) EXPECT_EQ(Items()[id].DragDrop, Items()[id].ExecuteText) << Where(Items()[id]);
    const wchar_t* const texts[10][2] = {
        {L"COMMIT", L"COMMIT"},
        {L"CREATE TABLE",
         L"CREATE TABLE table_name\r\n( column_name data_type\r\n, column_name data_type\r\n, ...\r\n)"},
        {L"CREATE VIEW", L"CREATE [OR REPLACE] VIEW view\r\n[alias, alias, ...]\r\nAS subquery"},
        {L"DELETE", L"DELETE FROM table [WHERE condition]"},
        {L"DROP", L"DROP {TABLE | VIEW} name"},
        {L"DROP VIEW", L"DROP VIEW view"},
        {L"INSERT", L"INSERT INTO table\r\n[(column, column, ...)]\r\n{VALUES (expr, expr, ...) | subquery}"},
        {L"SELECT",
         L"SELECT [ALL | DISTINCT]\r\ncolumn, column, ...\r\nFROM table, table, ...\r\n[WHERE condition(s)]\r\n"
         L"[GROUP BY expr, expr, ... [HAVING condition(s)]]\r\n[ORDER BY] expr/pos [ASC | DESC],... ]"},
        {L"ROLLBACK", L"ROLLBACK"},
        {L"UPDATE",
         L"UPDATE table SET\r\n{column = {expr | query} | (column, column, ...) = (subquery)}\r\n[WHERE condition(s)]"},
    };
    for (long id = 25; id <= 34; ++id) EXPECT_EQ(texts[id - 25][1], At(id, texts[id - 25][0]).DragDrop);
}

TEST(CatalogueTest, OracleExamplesSelectFromDual) {
    const std::set<long> prefixed = {110, 111, 112, 113}, spelledOut = {88, 92}, mismatched = {53};
    for (long id = 36; id <= 114; ++id) {
        const Item& item = Items()[id];
        if (!prefixed.count(id) && !spelledOut.count(id) && !mismatched.count(id)) {
            EXPECT_EQ(item.Text, item.DragDrop) << Where(item);
        }
        if (id != 92 && id != 53) {
            EXPECT_EQ(L"SELECT " + item.DragDrop + L" FROM DUAL", item.ExecuteText) << Where(item);
        }
    }
    ExpectTexts(35, L"COMMENT", L"COMMENT", L"COMMENT");
    ExpectTexts(53, L"TRUNC(n[,m])", L"TRUNC(n[,m]", L"SELECT TRUNC(n[,m]) FROM DUAL");
    ExpectTexts(61, L"NLS_LOWER(s [, nls_sort)]", L"NLS_LOWER(s [, nls_sort)]",
                L"SELECT NLS_LOWER(s [, nls_sort)] FROM DUAL");
    ExpectTexts(110, L"CURRVAL", L"sequence.CURRVAL", L"SELECT sequence.CURRVAL FROM DUAL");
    ExpectTexts(111, L"NEXTVAL", L"sequence.NEXTVAL", L"SELECT sequence.NEXTVAL FROM DUAL");
    ExpectTexts(112, L"LEVEL", L"[table.]LEVEL", L"SELECT [table.]LEVEL FROM DUAL");
    ExpectTexts(113, L"ROWID", L"[table.]ROWID", L"SELECT [table.]ROWID FROM DUAL");
    ExpectTexts(114, L"ROWNUM", L"ROWNUM", L"SELECT ROWNUM FROM DUAL");
}

TEST(CatalogueTest, OracleSpellsOutZonesAndCharacterSets) {
    const std::wstring zones = L"{AST|ADT|BST|BDT|CST|CDT|EST|GMT|HST|HDT|MST|MDT|NST|PST|YST|YDT}";
    EXPECT_EQ(L"NEW_TIME(d," + zones + L"," + zones + L" )", At(88, L"NEW_TIME(d,zone1,zone2)").DragDrop);
    EXPECT_EQ(L"SELECT NEW_TIME(d," + zones + L"," + zones + L" ) FROM DUAL", Items()[88].ExecuteText);
    const std::wstring sets = L"{US7ASII|WE8DEC|WE8HP|F7DEC|WE8EBCDIC500|WE8PC850|WE8ISO8859P1}";
    EXPECT_EQ(L"CONVERT(s, " + sets + L" , " + sets + L" )", At(92, L"CONVERT(s,dest,source)").DragDrop);
    EXPECT_EQ(L"SELECT CONVERT(s, " + sets + L" , " + sets + L") FROM DUAL", Items()[92].ExecuteText);
}

TEST(CatalogueTest, DataTypesHaveNoExample) {
    for (const Item& item : Items()) {
        if (item.Section->Category == L"Data Types") {
            EXPECT_EQ(item.Text, item.DragDrop) << Where(item);
            EXPECT_EQ(L"", item.ExecuteText) << Where(item);
        } else {
            EXPECT_EQ(item.Id == 209, item.ExecuteText.empty()) << Where(item);
        }
    }
}

TEST(CatalogueTest, FormatModelsShowTheCurrentDate) {
    for (long id = 125; id <= 148; ++id) {
        const Item& item = Items()[id];
        EXPECT_EQ(item.Text, item.DragDrop);
        EXPECT_EQ(L"SELECT TO_CHAR( SYSDATE ,'" + item.Text + L"') FROM DUAL", item.ExecuteText);
    }
    ExpectTexts(139, L"DD", L"DD", L"SELECT TO_CHAR( SYSDATE ,'DD') FROM DUAL");
}

TEST(CatalogueTest, SQLServerExamplesSelect) {
    const std::set<long> spelledOut = {210, 211, 212, 213, 223, 232};
    for (long id = 149; id <= 281; ++id) {
        const Item& item = Items()[id];
        if (!spelledOut.count(id)) {
            EXPECT_EQ(item.Text, item.DragDrop) << Where(item);
        }
        if (id >= 196 && id <= 208) {
            EXPECT_EQ(L"SELECT " + item.DragDrop + L" FROM table", item.ExecuteText) << Where(item);
        } else if (id != 209 && (id < 250 || id > 276)) {
            EXPECT_EQ(L"SELECT " + item.DragDrop, item.ExecuteText) << Where(item);
        }
    }
    ExpectTexts(209, L"GROUPING( column_name )", L"GROUPING( column_name )", L"");
    ExpectTexts(282, L"USE", L"USE", L"USE");
    ExpectTexts(199, L"COUNT(  { [DISTINCT | ALL] expr } | * )", L"COUNT(  { [DISTINCT | ALL] expr } | * )",
                L"SELECT COUNT(  { [DISTINCT | ALL] expr } | * ) FROM table");
    ExpectTexts(223, L"CASE", L"CASE expr1 WHEN expr2 THEN expr3 [...] [ ELSE expr4 ] END",
                L"SELECT CASE expr1 WHEN expr2 THEN expr3 [...] [ ELSE expr4 ] END");
    ExpectTexts(232, L"PARSENAME(s,n)",
                L"PARSENAME( 'objectname' , {1(object) | 2(owner) | 3(database) | 4(server)} ) ",
                L"SELECT PARSENAME( 'objectname' , {1(object) | 2(owner) | 3(database) | 4(server)} ) ");
}

TEST(CatalogueTest, SQLServerSpellsOutTheDatePart) {
    const std::wstring parts = L"{ yyyy | qq | mm | dy | dd | ww | hh | mi | ss | ms }";
    for (long id = 210; id <= 213; ++id) {
        std::wstring expected = Items()[id].Text;
        const size_t at = expected.find(L"datepart");
        ASSERT_NE(expected.npos, at);
        EXPECT_EQ(expected.replace(at, 8, parts), Items()[id].DragDrop);
    }
    ExpectTexts(210, L"DATEADD( datepart, n, d )",
                L"DATEADD( { yyyy | qq | mm | dy | dd | ww | hh | mi | ss | ms }, n, d )",
                L"SELECT DATEADD( { yyyy | qq | mm | dy | dd | ww | hh | mi | ss | ms }, n, d )");
}

TEST(CatalogueTest, UserNameIsListedTwiceWithTheSameTexts) {
    const Item &first = At(233, L"USER_NAME(n)"), &second = At(248, L"USER_NAME(n)");
    EXPECT_EQ(first.Description, second.Description);
    EXPECT_EQ(first.DragDrop, second.DragDrop);
    EXPECT_EQ(first.ExecuteText, second.ExecuteText);
}

TEST(CatalogueTest, DescriptionsAreVerbatim) {
    ExpectDescription(0, L"@", L"Executes the SQL in a file.");
    ExpectDescription(1, L":", L"Create a bind parameter e.g. :my_param or a bound cell e.g. :A1.");
    ExpectDescription(2, L"&", L"Create a substitution parameter e.g. &my_param. :A1.");
    ExpectDescription(3, L"ACCEPT", L"Reads input from the user and stores it in a substitution variable.");
    ExpectDescription(4, L"BREAK",
                      L"Specifies how formatting with change in a report: suppress duplicate values, skip lines when "
                      L"column value changes.");
    ExpectDescription(5, L"CLEAR", L"Resets or removes the current setting for the specified option.");
    ExpectDescription(6, L"COLUMN FORMAT", L"Sets the formatting attributes for the given column.");
    ExpectDescription(7, L"COLUMN HEADING", L"Sets the heading text for the given column.");
    ExpectDescription(8, L"CONNECT", L"Connects to the database.");
    ExpectDescription(9, L"DESCRIBE", L"Lists the column definitions for the given table or view.");
    ExpectDescription(10, L"DEFINE", L"Defines a bind variable or prints the details of a bind variable.");
    ExpectDescription(11, L"DISCONNECT", L"Disconnects from the database.");
    ExpectDescription(12, L"HELP", L"Displays the Kolvex Omnia help file.");
    ExpectDescription(13, L"HOST", L"Executes a operating system command.");
    ExpectDescription(14, L"PAUSE", L"Shows the specified message in a message box.");
    ExpectDescription(15, L"PROMPT", L"Shows the specified message in a message box.");
    ExpectDescription(16, L"RECORDSET_FROM_PROC",
                      L"Retrieves a recordset (output cursor or ref cursor) from a database procedure.");
    ExpectDescription(17, L"REMARK", L"Begins a comment in a command file.");
    ExpectDescription(18, L"SET FEEDBACK", L"Prints a feedback line under the retrieved data.");
    ExpectDescription(19, L"SET LONG",
                      L"Specifies how many characters are printed for a LongVarchar column; Long (Oracle) or Text "
                      L"(Sql Server).");
    ExpectDescription(20, L"SET PAGESIZE", L"Sets the size of the page in rows. Used when page breaks are defined.");
    ExpectDescription(21, L"SET TIMING", L"Times the execution of each command.");
    ExpectDescription(22, L"START", L"Executes the SQL in a file.");
    ExpectDescription(23, L"UNDEFINE", L"Undefines a substitution (&) variable.");
    ExpectDescription(24, L"VARIABLE", L"Defines bind (:) variables..");
    ExpectDescription(25, L"COMMIT", L"Saves the changes in the current transaction to the database.");
    ExpectDescription(26, L"CREATE TABLE", L"Creates a new table.");
    ExpectDescription(27, L"CREATE VIEW", L"Creates a new view of one or more tables and/or views.");
    ExpectDescription(28, L"DELETE", L"Removes rows from a table.");
    ExpectDescription(29, L"DROP", L"Removes objects from the database.");
    ExpectDescription(30, L"DROP VIEW", L"Deletes a database view.");
    ExpectDescription(31, L"INSERT", L"Adds new rows to a table.");
    ExpectDescription(32, L"SELECT", L"Queries one or more tables or views.");
    ExpectDescription(33, L"ROLLBACK", L"Undoes all changes made.");
    ExpectDescription(34, L"UPDATE",
                      L"Changes the values of columns in rows that meet the where condition in a table.");
    ExpectDescription(36, L"ABS(n)", L"Absolute value of n.");
    ExpectDescription(53, L"TRUNC(n[,m])", L"n truncated to m decimal places; m defaults to 0.");
    ExpectDescription(63, L"REPLACE(s,find[,replace])",
                      L"String s, with every occurrence of string find replaced by the string replace..");
    ExpectDescription(64, L"RPAD(s1,n[,s2])",
                      L"String s1, right-padded to display length n with the suquence of characters in s2.");
    ExpectDescription(77, L"AVG( [DISTINCT | ALL] n)", L"Average value of n, ignoring nulls..");
    ExpectDescription(86, L"LAST_DAY(d)", L"Date of last day of month containing d.");
    ExpectDescription(87, L"MONTHS_BETWEEN(d,e)", L"Number of months by which e prcedes d.");
    ExpectDescription(99, L"TO_NUMBER(s [,fmt [,nls_lang]] )",
                      L"String s, which is a character value containing a number in the format specified by the "
                      L"optoinal fmt, converted to a NUMBER value..");
    ExpectDescription(101, L"DECODE(expr,s1,r1, [s2,r2,]...[default])",
                      L"If expr equals any string s, returns the following string r; if not, returns default.");
    ExpectDescription(110, L"CURRVAL", L"Current value of sequence for the current session.");
    ExpectDescription(112, L"LEVEL", L"1 for a root node, 2 for a child node, etc.");
    ExpectDescription(115, L"CHAR(size)", L"Fixed-length character string of size characters.");
    ExpectDescription(125, L"CC", L"Century; Use SCC for BC dates.");
    ExpectDescription(149, L"ABS(n)", L"Returns the absolute, positive value of the given numeric expression n.");
    ExpectDescription(173, L"ASCII(s)",
                      L"Returns the ASCII code value of the leftmost character of a character expression s.");
    ExpectDescription(196, L"SUM( [DISTINCT | ALL] expr )",
                      L"Returns the sum of all the values, or only the DISTINCT values, in the expression. SUM can be "
                      L"used with numeric columns only. Null values are ignored.");
    ExpectDescription(210, L"DATEADD( datepart, n, d )",
                      L"Returns a new datetime value based on adding an interval to the specified date.");
    ExpectDescription(226, L"@@ERROR", L"Returns the error number for the last Transact-SQL statement executed.");
    ExpectDescription(233, L"USER_NAME(n)", L"Returns a user database username from a given identification number n.");
    ExpectDescription(250, L"BIGINT",
                      L"Integer (whole number) data from -2^63 (-9223372036854775808) through 2^63-1 "
                      L"(9223372036854775807).");
    ExpectDescription(256, L"DECIMAL", L"Fixed precision and scale numeric data from -10^38 +1 through 10^38 \u20131.");
    ExpectDescription(270, L"TABLE", L"A special data type used to store a result set for later processing.");
    ExpectDescription(277, L"CURRENT_TIMESTAMP",
                      L"Returns the current date and time. This function is equivalent to GETDATE().");
    ExpectDescription(282, L"USE", L"Changes the database context to the specified database..");
}

TEST(CatalogueTest, NoTwoEntriesShareASentence) {
    const std::map<long, long> sameAs = {{22, 0}, {15, 14}, {248, 233}};
    std::map<std::wstring, long> seen;
    for (const Item& item : Items()) {
        if (const auto same = sameAs.find(item.Id); same != sameAs.end()) {
            EXPECT_EQ(Items()[same->second].Description, item.Description) << Where(item);
            continue;
        }
        for (const auto& sentence : Sentences(item.Description)) {
            const auto [place, fresh] = seen.emplace(sentence, item.Id);
            EXPECT_TRUE(fresh) << Where(item) << L" says the same as " << place->second << L": " << sentence;
        }
    }
}

// Those that DescriptionsAreVerbatim does not pin keep to stricter rules.
TEST(CatalogueTest, OtherDescriptionsSayEnoughAndEachItsOwn) {
    const std::set<long> known = {36,  53,  63,  64,  77,  86,  87,  99,  101, 110, 112, 115, 125,
                                  149, 173, 196, 210, 226, 233, 248, 250, 256, 270, 277, 282};
    constexpr size_t sensibleLength = 25;
    const auto lettersOf = [](const std::wstring& text) {
        std::wstring letters;
        for (const wchar_t c : text) {
            if (std::iswalnum(c)) letters += wchar_t(std::towlower(c));
        }
        return letters;
    };
    const auto isKnown = [&](const Item& item) { return item.Id <= 34 || known.count(item.Id); };
    std::set<std::wstring> seen;
    for (const Item& item : Items()) {
        if (isKnown(item)) seen.insert(lettersOf(item.Description));
    }
    int checked = 0;
    for (const Item& item : Items()) {
        if (isKnown(item)) continue;
        ++checked;
        const std::wstring& text = item.Description;
        EXPECT_TRUE(seen.insert(lettersOf(text)).second) << Where(item) << L" says the same as another: " << text;
        EXPECT_GE(text.size(), sensibleLength) << Where(item) << L": " << text;
        EXPECT_TRUE(text.ends_with(L'.')) << Where(item) << L": " << text;
        EXPECT_EQ(text.npos, text.find(L"..", text.size() - 2)) << Where(item) << L": " << text;
        EXPECT_EQ(std::count(text.begin(), text.end(), L'('), std::count(text.begin(), text.end(), L')'))
            << Where(item) << L": " << text;
        if (item.Section->DBType == 8 && item.Section->Category != L"Data Types") {
            EXPECT_TRUE(StartsWith(text, L"Returns ")) << Where(item) << L": " << text;
        }
    }
    EXPECT_EQ(283 - 35 - int(known.size()), checked);
}

TEST(CatalogueTest, DescriptionsAreSentences) {
    for (const Item& item : Items()) {
        const std::wstring& text = item.Description;
        EXPECT_TRUE(text.ends_with(L'.')) << Where(item);
        EXPECT_LE(text.size(), 200u) << Where(item);
        EXPECT_EQ(text.npos, text.find(L"  ")) << Where(item);
        EXPECT_EQ(text.npos, text.find_first_of(L"{}\r\n")) << Where(item);
        EXPECT_NE(L' ', text.front()) << Where(item);
        // A typographic character other than the dash of DECIMAL has slipped in by mistake.
        for (const wchar_t c : text) EXPECT_TRUE(c < 0x7F || (item.Id == 256 && c == 0x2013)) << Where(item);
    }
}

TEST(CatalogueTest, LinesAreJoinedByCrLfAndNothingElseControls) {
    int multiline = 0;
    for (const Item& item : Items()) {
        for (std::wstring text : {item.Text, item.Description, item.DragDrop, item.SelectText, item.ExecuteText}) {
            EXPECT_FALSE(text.ends_with(L'\n')) << Where(item);
            for (size_t at; (at = text.find(L"\r\n")) != text.npos; ++multiline) text.erase(at, 2);
            EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](wchar_t c) { return c >= L' '; })) << Where(item);
        }
    }
    // Ends of lines in the five long ANSI commands, dragged and run.
    EXPECT_EQ(2 * (4 + 2 + 2 + 5 + 2), multiline);
}

TEST(CatalogueTest, BlanksAtTheEndsAreTheOnesThatAreMeant) {
    for (const Item& item : Items()) {
        EXPECT_FALSE(StartsWith(item.DragDrop, L" ")) << Where(item);
        EXPECT_EQ(item.Id == 232, item.DragDrop.ends_with(L' ')) << Where(item);
        EXPECT_EQ(item.Id == 232, item.ExecuteText.ends_with(L' ')) << Where(item);
        EXPECT_FALSE(item.Text.ends_with(L' ')) << Where(item);
    }
}

TEST(CatalogueTest, WhatAnEntryNamesWinsOverTheRule) {
    const CatalogueEntry byRule = {.Text = L"t", .Description = L"d"};
    const CatalogueEntry named = {
        .Text = L"t", .Description = L"d", .DragDrop = L"", .SelectText = L"s", .ExecuteText = L""};
    const std::vector<std::tuple<TextRule, std::wstring, std::wstring>> expected = {
        {TextRule::HostCommand, L"t;", L"t"},
        {TextRule::Statement, L"t", L"t"},
        {TextRule::SelectFromDual, L"t", L"SELECT t FROM DUAL"},
        {TextRule::FormatOfDate, L"t", L"SELECT TO_CHAR( SYSDATE ,'t') FROM DUAL"},
        {TextRule::Select, L"t", L"SELECT t"},
        {TextRule::SelectFromTable, L"t", L"SELECT t FROM table"},
        {TextRule::NoExample, L"t", L""},
    };
    for (const auto& [rule, dragDrop, executeText] : expected) {
        CatalogueSection section = CatalogueSections()[0];
        section.Rule = rule;
        const Texts texts = Expanded(section, byRule);
        EXPECT_EQ(dragDrop, texts.DragDrop);
        EXPECT_EQ(executeText, texts.ExecuteText);
        EXPECT_EQ(L"", texts.SelectText);
        const Texts own = Expanded(section, named);
        EXPECT_EQ(L"", own.DragDrop);
        EXPECT_EQ(L"", own.ExecuteText);
        EXPECT_EQ(L"s", own.SelectText);
    }
}
