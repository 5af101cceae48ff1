#include "host/database/Identifier.h"

#include <windows.h>

#include <algorithm>

namespace {

bool IsLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); }

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }

bool NeedsQuotes(const IdentifierRules& rules, std::wstring_view name) {
    if (name.empty()) return true;
    // Databases that fold names to capitals follow the standard in this too: a name begins with a letter.
    const bool underscoreFirst = name[0] == L'_' && rules.Case != UnquotedCase::Upper;
    if (!IsLetter(name[0]) && !underscoreFirst) return true;
    for (const wchar_t c : name) {
        const bool plain =
            IsLetter(c) || IsDigit(c) || c == L'_' || rules.SpecialCharacters.find(c) != std::wstring::npos;
        if (!plain) return true;
        if (rules.Case == UnquotedCase::Upper && c >= L'a' && c <= L'z') return true;
        if (rules.Case == UnquotedCase::Lower && c >= L'A' && c <= L'Z') return true;
    }
    return rules.Keywords.count(Capitals(name)) > 0;
}

}  // namespace

std::wstring Capitals(std::wstring_view text) {
    std::wstring capitals(text);
    CharUpperBuffW(capitals.data(), static_cast<DWORD>(capitals.size()));
    return capitals;
}

std::wstring FormatName(const IdentifierRules& rules, std::wstring_view name) {
    if (rules.Quote.empty() || !NeedsQuotes(rules, name)) return std::wstring(name);
    // A driver that says "[" means the pair of brackets, in which only the closing one is doubled.
    const std::wstring close = rules.Quote == L"[" ? L"]" : rules.Quote;
    std::wstring quoted = rules.Quote;
    for (size_t i = 0; i < name.size();) {
        if (name.substr(i).starts_with(close)) {
            quoted += close;
            quoted += close;
            i += close.size();
        } else {
            quoted += name[i++];
        }
    }
    return quoted + close;
}

void AddKeywords(std::set<std::wstring>& keywords, std::wstring_view list) {
    size_t start = 0;
    while (start <= list.size()) {
        const size_t end = std::min(list.find(L',', start), list.size());
        std::wstring_view word = list.substr(start, end - start);
        while (!word.empty() && word.front() == L' ') word.remove_prefix(1);
        while (!word.empty() && word.back() == L' ') word.remove_suffix(1);
        if (!word.empty()) keywords.insert(Capitals(word));
        start = end + 1;
    }
}

const std::set<std::wstring>& OdbcKeywords() {
    static const std::set<std::wstring> keywords = [] {
        std::set<std::wstring> words;
        AddKeywords(
            words,
            L"ABSOLUTE,ACTION,ADA,ADD,ALL,ALLOCATE,ALTER,AND,ANY,ARE,AS,ASC,ASSERTION,AT,AUTHORIZATION,AVG,BEGIN,"
            L"BETWEEN,BIT,BIT_LENGTH,BOTH,BY,CASCADE,CASCADED,CASE,CAST,CATALOG,CHAR,CHARACTER,CHARACTER_LENGTH,"
            L"CHAR_LENGTH,CHECK,CLOSE,COALESCE,COLLATE,COLLATION,COLUMN,COMMIT,CONNECT,CONNECTION,CONSTRAINT,"
            L"CONSTRAINTS,CONTINUE,CONVERT,CORRESPONDING,COUNT,CREATE,CROSS,CURRENT,CURRENT_DATE,CURRENT_TIME,"
            L"CURRENT_TIMESTAMP,CURRENT_USER,CURSOR,DATE,DAY,DEALLOCATE,DEC,DECIMAL,DECLARE,DEFAULT,DEFERRABLE,"
            L"DEFERRED,DELETE,DESC,DESCRIBE,DESCRIPTOR,DIAGNOSTICS,DISCONNECT,DISTINCT,DOMAIN,DOUBLE,DROP,ELSE,END,"
            L"END-EXEC,ESCAPE,EXCEPT,EXCEPTION,EXEC,EXECUTE,EXISTS,EXTERNAL,EXTRACT,FALSE,FETCH,FIRST,FLOAT,FOR,"
            L"FOREIGN,FORTRAN,FOUND,FROM,FULL,GET,GLOBAL,GO,GOTO,GRANT,GROUP,HAVING,HOUR,IDENTITY,IMMEDIATE,IN,"
            L"INCLUDE,INDEX,INDICATOR,INITIALLY,INNER,INPUT,INSENSITIVE,INSERT,INT,INTEGER,INTERSECT,INTERVAL,INTO,"
            L"IS,ISOLATION,JOIN,KEY,LANGUAGE,LAST,LEADING,LEFT,LEVEL,LIKE,LOCAL,LOWER,MATCH,MAX,MIN,MINUTE,MODULE,"
            L"MONTH,NAMES,NATIONAL,NATURAL,NCHAR,NEXT,NO,NONE,NOT,NULL,NULLIF,NUMERIC,OCTET_LENGTH,OF,ON,ONLY,OPEN,"
            L"OPTION,OR,ORDER,OUTER,OUTPUT,OVERLAPS,PAD,PARTIAL,PASCAL,PLI,POSITION,PRECISION,PREPARE,PRESERVE,"
            L"PRIMARY,PRIOR,PRIVILEGES,PROCEDURE,PUBLIC,READ,REAL,REFERENCES,RELATIVE,RESTRICT,REVOKE,RIGHT,"
            L"ROLLBACK,ROWS,SCHEMA,SCROLL,SECOND,SECTION,SELECT,SESSION,SESSION_USER,SET,SIZE,SMALLINT,SOME,SPACE,"
            L"SQL,SQLCA,SQLCODE,SQLERROR,SQLSTATE,SQLWARNING,SUBSTRING,SUM,SYSTEM_USER,TABLE,TEMPORARY,THEN,TIME,"
            L"TIMESTAMP,TIMEZONE_HOUR,TIMEZONE_MINUTE,TO,TRAILING,TRANSACTION,TRANSLATE,TRANSLATION,TRIM,TRUE,"
            L"UNION,UNIQUE,UNKNOWN,UPDATE,UPPER,USAGE,USER,USING,VALUE,VALUES,VARCHAR,VARYING,VIEW,WHEN,WHENEVER,"
            L"WHERE,WITH,WORK,WRITE,YEAR,ZONE");
        return words;
    }();
    return keywords;
}
