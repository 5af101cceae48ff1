#include "sql/Scope.h"

#include <gtest/gtest.h>

#include <string>

// The name at a caret, and the tables of its statement. "|" marks the caret.
namespace {

using namespace Sql;

std::string Narrow(std::wstring text) { return {text.begin(), text.end()}; }

struct Marked {
    std::wstring Text;
    size_t Caret;
    explicit Marked(std::wstring text) : Text(std::move(text)), Caret(Text.find(L'|')) { Text.erase(Caret, 1); }
};

// "qualifier.qualifier.begun|whole@start-end", or "no code".
std::string Name(const std::wstring& text, long type = 0) {
    const Marked marked(text);
    const NameAtCaret name = NameAt(marked.Text, marked.Caret, DialectOf(type));
    if (!name.IsCode) return "no code";
    std::wstring all;
    for (const std::wstring& one : name.Qualifiers) all += one + L".";
    return Narrow(all + name.Begun + L"|" + name.Whole + L"@" + std::to_wstring(name.Start) + L"-" +
                  std::to_wstring(name.End));
}

// "schema.table=alias, ..."
std::string Tables(const std::wstring& text, long type = 0) {
    const Marked marked(text);
    std::wstring all;
    for (const TableReference& one : TablesAt(marked.Text, marked.Caret, DialectOf(type), Words(type))) {
        if (!all.empty()) all += L", ";
        if (!one.Schema.empty()) all += one.Schema + L".";
        all += one.Table;
        if (!one.Alias.empty()) all += L"=" + one.Alias;
    }
    return Narrow(all);
}

TEST(Scope, TheNameAtTheCaret) {
    EXPECT_EQ("sel|sel@0-3", Name(L"sel|"));
    EXPECT_EQ("se|select@0-6", Name(L"se|lect 1"));
    EXPECT_EQ("|@7-7", Name(L"select | from t"));
    EXPECT_EQ("|@0-0", Name(L"|"));
    EXPECT_EQ("select|select@0-6", Name(L"select|"));
    EXPECT_EQ("o.|@9-9", Name(L"select o.| from orders o"));
    EXPECT_EQ("o.id|id@9-11", Name(L"select o.id| from orders o"));
    EXPECT_EQ("s.o.i|id@11-13", Name(L"select s.o.i|d"));
    EXPECT_EQ("o.i|i@11-12", Name(L"select o . i|"));
    EXPECT_EQ("my schema.Order Details.|@30-30", Name(L"x \"my schema\".[Order Details].|", 8)) << "names in quotes";
}

TEST(Scope, AQuotedNameThatIsBegun) {
    EXPECT_EQ("Ord|Ord@7-11", Name(L"select \"Ord|"));
    EXPECT_EQ("Ord|Ord@7-11", Name(L"select \"Ord|er from t")) << "its end is not known";
    EXPECT_EQ("Ord|Order@7-14", Name(L"select \"Ord|er\" from t"));
    EXPECT_EQ("|@14-14", Name(L"select \"Order\"|")) << "it is whole";
    EXPECT_EQ("a\"b|a\"b@7-12", Name(L"select \"a\"\"b|"));
    EXPECT_EQ("Ord|Ord@7-11", Name(L"select [Ord|", 8));
    EXPECT_EQ("Ord|Ord@7-11", Name(L"select `Ord|", 17));
}

TEST(Scope, NoNameInCommentsAndStrings) {
    EXPECT_EQ("no code", Name(L"-- sel|"));
    EXPECT_EQ("no code", Name(L"-- s|el\r\nselect"));
    EXPECT_EQ("no code", Name(L"/* sel|ect */"));
    EXPECT_EQ("no code", Name(L"/* sel|"));
    EXPECT_EQ("no code", Name(L"select 'a|b'"));
    EXPECT_EQ("no code", Name(L"select 'ab|"));
    EXPECT_EQ("no code", Name(L"select '|"));
    EXPECT_EQ("|@11-11", Name(L"select 'ab'|"));
    EXPECT_EQ("|@5-5", Name(L"/* */|"));
    EXPECT_EQ("s|s@5-6", Name(L"/**/ s|"));
}

TEST(Scope, TheTablesOfAStatement) {
    EXPECT_EQ("orders=o", Tables(L"select o.| from orders o"));
    EXPECT_EQ("orders=o", Tables(L"select o.| from orders AS o where 1 = 1"));
    EXPECT_EQ("sales.orders=o, customer=c", Tables(L"select | from sales.orders o, customer c"));
    EXPECT_EQ("orders=o, customer=c, line",
              Tables(L"select | from orders o join customer c on o.a = c.a left join line on 1 = 1"));
    EXPECT_EQ("sales.Order Details=d", Tables(L"select | from db.sales.\"Order Details\" d"));
    EXPECT_EQ("orders", Tables(L"update orders set |"));
    EXPECT_EQ("orders", Tables(L"insert into orders (|) values (1, 2)"));
    EXPECT_EQ("orders=o", Tables(L"delete from orders o where |"));
    EXPECT_EQ("orders", Tables(L"select * from orders where | "));
    EXPECT_EQ("orders", Tables(L"select * from orders order by |"));
    EXPECT_EQ("a=x, b=y", Tables(L"merge into a x using b y on (x.i = y.i) when matched then update set |"));
    EXPECT_EQ("a, b=x", Tables(L"select | from a cross apply b x"));
    EXPECT_EQ("a, b=x, c", Tables(L"select | from only a, lateral b x, c"));
    EXPECT_EQ("a", Tables(L"drop table if exists a|"));
    // Brackets that nothing has opened.
    EXPECT_EQ("orders=o, line", Tables(L"select ) ) ) from orders o, line where |"));
    for (size_t count = 1; count <= 64; ++count)
        EXPECT_EQ("t", Tables(L"select a" + std::wstring(count, L')') + L", b from t where |")) << count;
}

// Each word that a table stands behind, and each that ends a list of them.
TEST(Scope, TheWordsAroundTables) {
    for (const wchar_t* const word :
         {L"from", L"using", L"join", L"into", L"update", L"table", L"apply", L"FROM", L"Join"})
        EXPECT_EQ("t=a", Tables(std::wstring(word) + L" t a |")) << Narrow(word);
    for (const wchar_t* const word : {L"select", L"where", L"delete", L"merge", L"on", L"frame", L"joins"})
        EXPECT_EQ("", Tables(std::wstring(word) + L" t a |")) << Narrow(word);
    // Behind these two a comma leads to another table.
    EXPECT_EQ("t, u", Tables(L"select | from t, u"));
    EXPECT_EQ("t, u", Tables(L"delete from x using t, u where |").substr(3));
    EXPECT_EQ("t", Tables(L"update t, u |"));
    for (const wchar_t* const word : {L"select", L"where", L"group", L"having", L"order", L"set", L"values", L"union",
                                      L"intersect", L"except", L"minus", L"window"})
        EXPECT_EQ("t", Tables(L"select | from t " + std::wstring(word) + L" b, c", 4)) << Narrow(word);
    for (const wchar_t* const word : {L"only", L"lateral", L"if", L"exists", L"not"})
        EXPECT_EQ("t", Tables(L"select | from " + std::wstring(word) + L" t")) << Narrow(word);
}

TEST(Scope, SubqueriesAndFunctionsAreNoTables) {
    EXPECT_EQ("inner_one=i, last_one=l", Tables(L"select | from (select a, b from inner_one i) s, last_one l"));
    EXPECT_EQ("t", Tables(L"select max(a, b), | from t where x in (1, 2, 3)"));
    EXPECT_EQ("t", Tables(L"select | from series(1, 2) s, t"));
    EXPECT_EQ("t", Tables(L"select a, b from t group by a, b order by c, |"));
    EXPECT_EQ("", Tables(L"select |"));
    EXPECT_EQ("", Tables(L"|"));
    EXPECT_EQ("", Tables(L"select * from |"));
    EXPECT_EQ("o", Tables(L"select x from o where o.|"));
    EXPECT_EQ("", Tables(L"select * from sales.|"));
    EXPECT_EQ("", Tables(L"select ) ) from ( , |"));
}

TEST(Scope, OneStatementOfSeveral) {
    EXPECT_EQ("b", Tables(L"select 1 from a; select | from b; select 3 from c"));
    EXPECT_EQ("a", Tables(L"select | from a; select 2 from b"));
    EXPECT_EQ("", Tables(L"select 1 from a; |"));
    EXPECT_EQ("b", Tables(L"select 1 from a;\r\nselect 2 from b where |"));
    EXPECT_EQ("b", Tables(L"select 1 from a;\r\nselect 2 from b where\r\n\r\n  |"));
}

}  // namespace
