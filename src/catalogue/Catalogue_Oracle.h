#pragma once

#include "catalogue/CatalogueEntry.h"

// Oracle, by category. The wording is part of the contract with hosts and users, odd brackets and doubled full stops
// included: do not correct it. Laid out by hand, so that every entry reads like the next.
// clang-format off
namespace Catalogue_Oracle {

inline constexpr CatalogueEntry SQLCommands[] = {
    {.Text = L"COMMENT",
     .Description = L"Stores a comment in the data dictionary: COMMENT ON TABLE name IS 'text' for a table or view, "
                    L"COMMENT ON COLUMN table.column IS 'text' for a column. An empty text ('') removes it."},
};

inline constexpr CatalogueEntry SingleRowNumberFunctions[] = {
    {.Text = L"ABS(n)", .Description = L"Absolute value of n."},
    {.Text = L"CEIL(n)", .Description = L"Smallest whole number that is not less than n."},
    {.Text = L"COS(n)", .Description = L"Cosine of an angle of n radians."},
    {.Text = L"COSH(n)", .Description = L"Hyperbolic cosine of n: half the sum of EXP(n) and EXP(-n)."},
    {.Text = L"EXP(n)", .Description = L"e (2.71828183...) raised to the power n."},
    {.Text = L"FLOOR(n)", .Description = L"Largest whole number that is not greater than n."},
    {.Text = L"LN(n)", .Description = L"Natural logarithm (base e) of n, which must be greater than 0."},
    {.Text = L"LOG(m,n)", .Description = L"Logarithm of n to the base m; both must be positive, and m must not be 1."},
    {.Text = L"MOD(m,n)", .Description = L"Remainder of m divided by n, with the sign of m; m itself if n is 0."},
    {.Text = L"POWER(m,n)", .Description = L"m raised to the power n; a negative m requires an integer n."},
    {.Text = L"ROUND(n[,m])",
     .Description = L"n rounded to m decimal places; m defaults to 0, a negative m rounds digits left of the decimal "
                    L"point."},
    {.Text = L"SIGN(n)", .Description = L"Sign of n: -1 for a negative n, 0 for zero and 1 for a positive one."},
    {.Text = L"SIN(n)", .Description = L"Sine of an angle of n radians."},
    {.Text = L"SINH(n)", .Description = L"Hyperbolic sine of n: half the difference of EXP(n) and EXP(-n)."},
    {.Text = L"SQRT(n)", .Description = L"Square root of n, which must not be negative."},
    {.Text = L"TAN(n)", .Description = L"Tangent of an angle of n radians."},
    {.Text = L"TANH(n)", .Description = L"Hyperbolic tangent of n: SINH(n) divided by COSH(n)."},
    // DragDrop lacks the closing parenthesis, ExecuteText has it.
    {.Text = L"TRUNC(n[,m])",
     .Description = L"n truncated to m decimal places; m defaults to 0.",
     .DragDrop = L"TRUNC(n[,m]",
     .ExecuteText = L"SELECT TRUNC(n[,m]) FROM DUAL"},
};

inline constexpr CatalogueEntry SingleRowCharacterFunctions[] = {
    {.Text = L"CHR(n)", .Description = L"Character that has the code n in the database character set."},
    {.Text = L"CONCAT(s1,s2)", .Description = L"String s1 followed by string s2, the same as s1 || s2."},
    {.Text = L"INITCAP(s)",
     .Description = L"String s, with the first letter of each word capitalized and the rest of it in lowercase. A "
                    L"character that is neither letter nor digit ends a word."},
    {.Text = L"LOWER(s)", .Description = L"String s, with all letters in lowercase."},
    {.Text = L"LPAD(s1,n[,s2])",
     .Description = L"String s1, left-padded to display length n with the characters of s2, by default one blank; an "
                    L"s1 that is longer is cut to length n."},
    {.Text = L"LTRIM(s[,set])",
     .Description = L"String s, without those leading characters that occur in set; set defaults to one blank."},
    {.Text = L"NLS_INITCAP(s [, nls_sort])",
     .Description = L"String s, with each word capitalized by the rules of nls_sort, by default those of the session: "
                    L"with 'NLS_SORT = XDutch', ijsland becomes IJsland."},
    {.Text = L"NLS_LOWER(s [, nls_sort)]",
     .Description = L"String s, with all letters in lowercase by the linguistic rules of nls_sort, given as 'NLS_SORT "
                    L"= sort'; it defaults to the sort sequence of the session."},
    {.Text = L"NLS_UPPER(s [, nls_sort])",
     .Description = L"String s, with all letters in uppercase by the rules of nls_sort or of the session. The result "
                    L"can be longer: with 'NLS_SORT = XGerman', a sharp s becomes SS."},
    {.Text = L"REPLACE(s,find[,replace])",
     .Description = L"String s, with every occurrence of string find replaced by the string replace.."},
    {.Text = L"RPAD(s1,n[,s2])",
     .Description = L"String s1, right-padded to display length n with the suquence of characters in s2."},
    {.Text = L"RTRIM(s[,set])",
     .Description = L"String s, without those trailing characters that occur in set; if set is omitted, blanks are "
                    L"removed."},
    {.Text = L"SOUNDEX(s)",
     .Description = L"Phonetic code of string s, a letter and three digits, the same for many words that sound alike "
                    L"in English however they are spelled."},
    {.Text = L"SUBSTR(s,m[,n])",
     .Description = L"Part of string s that begins at character m and is n characters long, or extends to the end if n "
                    L"is omitted; a negative m counts from the end of s."},
    {.Text = L"SUBSTRB(s,m[,n])",
     .Description = L"Part of string s, like SUBSTR, but with the start m and the length n in bytes instead of "
                    L"characters."},
    {.Text = L"TRANSLATE(s,from,to)",
     .Description = L"String s, with each character that occurs in from replaced by the corresponding character of to, "
                    L"or removed if to is too short to have one."},
    {.Text = L"UPPER(s)", .Description = L"String s, with all letters in uppercase."},
    {.Text = L"ASCII(s)",
     .Description = L"Code of the first character of s in the database character set, as a decimal number."},
    {.Text = L"INSTR(s1,s2[,n[,m]])",
     .Description = L"Position of the mth occurrence of s2 in s1, searched from character n on; 0 if there is none. n "
                    L"and m default to 1; a negative n searches backward from the end."},
    {.Text = L"INSTRB(s1,s2[,n[,m]])",
     .Description = L"Position of the mth occurrence of s2 in s1, like INSTR, but with the start n and the result in "
                    L"bytes instead of characters."},
    {.Text = L"LENGTH(s)",
     .Description = L"Number of characters in string s, including the trailing blanks of a CHAR value; null if s is "
                    L"null."},
    {.Text = L"LENGTHB(s)",
     .Description = L"Length of string s in bytes, which in a single-byte character set equals LENGTH(s)."},
    {.Text = L"NLSSORT(s[, nls_sort])",
     .Description = L"Sort key of string s, a RAW value whose bytes put strings in the order of nls_sort, given as "
                    L"'NLS_SORT = sort', or of the session's sort sequence."},
};

inline constexpr CatalogueEntry GroupFunctions[] = {
    {.Text = L"AVG( [DISTINCT | ALL] n)", .Description = L"Average value of n, ignoring nulls.."},
    {.Text = L"COUNT( [ALL] *)",
     .Description = L"Number of rows in the group, including duplicates and rows that contain nulls."},
    {.Text = L"COUNT( [DISTINCT | ALL] expr )",
     .Description = L"Number of rows in which expr is not null, or with DISTINCT the number of different values of "
                    L"expr, not counting null."},
    {.Text = L"MAX( [DISTINCT | ALL] expr )",
     .Description = L"Greatest value of expr in the group, not counting nulls; DISTINCT and ALL give the same result."},
    {.Text = L"MIN( [DISTINCT | ALL] expr )",
     .Description = L"Least value of expr in the group, not counting nulls; numbers, strings and dates can be "
                    L"compared."},
    {.Text = L"STDDEV( [DISTINCT | ALL] n )",
     .Description = L"Sample standard deviation of n, the square root of its VARIANCE; 0 for a single value."},
    {.Text = L"SUM( [DISTINCT | ALL] n )",
     .Description = L"Sum of the values of n, leaving out nulls; with DISTINCT, equal values are added only once."},
    {.Text = L"VARIANCE( [DISTINCT | ALL] n )",
     .Description = L"Sample variance of n, with the number of values less 1 as the divisor; 0 if there is only one "
                    L"value."},
};

inline constexpr CatalogueEntry DateFunctions[] = {
    {.Text = L"ADD_MONTHS(d,n)",
     .Description = L"Date d plus n months; the last day of the resulting month if d is the last day of its month or "
                    L"the resulting month is too short."},
    {.Text = L"LAST_DAY(d)", .Description = L"Date of last day of month containing d."},
    {.Text = L"MONTHS_BETWEEN(d,e)", .Description = L"Number of months by which e prcedes d."},
    {.Text = L"NEW_TIME(d,zone1,zone2)",
     .Description = L"Date and time in time zone zone2 at the moment when it is d in time zone zone1.",
     .DragDrop = L"NEW_TIME(d,{AST|ADT|BST|BDT|CST|CDT|EST|GMT|HST|HDT|MST|MDT|NST|PST|YST|YDT},"
                 L"{AST|ADT|BST|BDT|CST|CDT|EST|GMT|HST|HDT|MST|MDT|NST|PST|YST|YDT} )"},
    {.Text = L"NEXT_DAY(d,s)",
     .Description = L"Date of the first day after d that is the weekday s, a name or abbreviation in the date language "
                    L"of the session."},
    {.Text = L"SYSDATE",
     .Description = L"Current date and time of the database server's clock, to the second, as a DATE value."},
};

inline constexpr CatalogueEntry ConversionFunctions[] = {
    {.Text = L"CHARTOROWID(s)",
     .Description = L"String s, which must be a row address in text form, converted to a ROWID value."},
    // US7ASII: so in both places. The example ends without the blank that DragDrop has before its parenthesis.
    {.Text = L"CONVERT(s,dest,source)",
     .Description = L"String s, converted from character set source to character set dest; source defaults to the "
                    L"database character set.",
     .DragDrop = L"CONVERT(s, {US7ASII|WE8DEC|WE8HP|F7DEC|WE8EBCDIC500|WE8PC850|WE8ISO8859P1} , "
                 L"{US7ASII|WE8DEC|WE8HP|F7DEC|WE8EBCDIC500|WE8PC850|WE8ISO8859P1} )",
     .ExecuteText = L"SELECT CONVERT(s, {US7ASII|WE8DEC|WE8HP|F7DEC|WE8EBCDIC500|WE8PC850|WE8ISO8859P1} , "
                    L"{US7ASII|WE8DEC|WE8HP|F7DEC|WE8EBCDIC500|WE8PC850|WE8ISO8859P1}) FROM DUAL"},
    {.Text = L"HEXTORAW(s)",
     .Description = L"String s, which consists of hexadecimal digits, converted to a RAW value with one byte for every "
                    L"two digits."},
    {.Text = L"RAWTOHEX(raw)", .Description = L"String that gives each byte of raw as two hexadecimal digits."},
    {.Text = L"ROWIDTOCHAR(rowid)", .Description = L"Row address rowid, converted to a string of 18 characters."},
    {.Text = L"TO_CHAR(expr [,fmt [, nls_num_fmt]] )",
     .Description = L"Number or date expr, converted to a string in the format fmt. nls_num_fmt is a text such as "
                    L"'NLS_NUMERIC_CHARACTERS = '',.''' for numbers or 'NLS_DATE_LANGUAGE = German' for dates."},
    {.Text = L"TO_DATE( s [,fmt [, nls_lang]] )",
     .Description = L"String s, which is a date in the format fmt, converted to a DATE value; fmt defaults to the "
                    L"session's date format, nls_lang is a text such as 'NLS_DATE_LANGUAGE = German'."},
    {.Text = L"TO_MULTI_BYTE(s)",
     .Description = L"String s, with its single-byte characters converted to the corresponding multibyte characters of "
                    L"the database character set, as far as there are any."},
    {.Text = L"TO_NUMBER(s [,fmt [,nls_lang]] )",
     .Description = L"String s, which is a character value containing a number in the format specified by the optoinal "
                    L"fmt, converted to a NUMBER value.."},
    {.Text = L"TO_SINGLE_BYTE(s)",
     .Description = L"String s, with its multibyte characters converted to the corresponding single-byte characters of "
                    L"the database character set, as far as there are any."},
};

inline constexpr CatalogueEntry OtherFunctions[] = {
    {.Text = L"DECODE(expr,s1,r1, [s2,r2,]...[default])",
     .Description = L"If expr equals any string s, returns the following string r; if not, returns default."},
    {.Text = L"DUMP(expr [,fmt [,start [,len]]] )",
     .Description = L"Data type code, length in bytes and internal bytes of expr, from byte start on, len of them, by "
                    L"default all; fmt 10 shows them in decimal (the default), 16 in hexadecimal notation."},
    {.Text = L"GREATEST( expr [,expr] ...)",
     .Description = L"Greatest of the listed values, all of which are converted to the type of the first one and "
                    L"compared without blank-padding; null if any of them is null."},
    {.Text = L"LEAST( expr [,expr] ... )",
     .Description = L"Least of the listed values. The type of the first one decides how they are compared, and a "
                    L"single null makes the result null."},
    {.Text = L"NVL(expr1,expr2)", .Description = L"expr2 if expr1 is null, otherwise expr1."},
    {.Text = L"UID",
     .Description = L"Integer that identifies the user of the session, the USER_ID of that user in the view "
                    L"ALL_USERS."},
    {.Text = L"USER", .Description = L"Name of the user who logged on to the session."},
    {.Text = L"USERENV(option)",
     .Description = L"Information about the current session; option says which, for example 'SESSIONID', 'TERMINAL' or "
                    L"'LANGUAGE'. SYS_CONTEXT supersedes it from Oracle 8i on."},
    {.Text = L"VSIZE(expr)",
     .Description = L"Number of bytes that the value of expr takes up in the internal format of the database; null if "
                    L"expr is null."},
};

// They take a prefix, except ROWNUM.
inline constexpr CatalogueEntry PseudoColumns[] = {
    {.Text = L"CURRVAL",
     .Description = L"Current value of sequence for the current session.",
     .DragDrop = L"sequence.CURRVAL"},
    {.Text = L"NEXTVAL",
     .Description = L"Next value of sequence, generated once for each row that the statement handles, even where it is "
                    L"named twice.",
     .DragDrop = L"sequence.NEXTVAL"},
    {.Text = L"LEVEL",
     .Description = L"1 for a root node, 2 for a child node, etc.",
     .DragDrop = L"[table.]LEVEL"},
    {.Text = L"ROWID",
     .Description = L"Address of the row, made up of its data file, block and place in the block; access by it is "
                    L"usually the fastest.",
     .DragDrop = L"[table.]ROWID"},
    {.Text = L"ROWNUM",
     .Description = L"Number of the row in the order in which the query selects its rows, beginning with 1 and "
                    L"assigned before ORDER BY sorts them."},
};

inline constexpr CatalogueEntry DataTypes[] = {
    {.Text = L"CHAR(size)", .Description = L"Fixed-length character string of size characters."},
    {.Text = L"DATE",
     .Description = L"Date and time of day, to the second, from January 1, 4712 BC to December 31, 9999 AD."},
    {.Text = L"LONG",
     .Description = L"Variable-length character string of up to 2 gigabytes less one byte, kept for compatibility: "
                    L"CLOB is preferred. A table can have only one LONG or LONG RAW column."},
    {.Text = L"LONG RAW",
     .Description = L"Variable-length raw binary data of up to 2 gigabytes, kept for compatibility: BLOB is preferred. "
                    L"It counts as the one LONG column that a table can have."},
    {.Text = L"MLSLABEL",
     .Description = L"Binary form of an operating system security label, as Trusted Oracle stores it. Standard Oracle "
                    L"7 accepts the type, but such a column holds only nulls."},
    {.Text = L"NUMBER(p,s)",
     .Description = L"Number of up to p significant decimal digits (1 to 38), rounded to s places after the decimal "
                    L"point (-84 to 127)."},
    {.Text = L"RAW(size)",
     .Description = L"Variable-length raw binary data of at most size bytes, up to 2000 (255 in Oracle 7), never "
                    L"converted between character sets; size must be given."},
    {.Text = L"RAW MLSLABEL",
     .Description = L"Raw binary form of a Trusted Oracle security label. Outside Trusted Oracle a column of this type "
                    L"holds only nulls."},
    {.Text = L"ROWID",
     .Description = L"Address of a row in its table, as the pseudo column of the same name returns it; shown as a "
                    L"string of 18 characters."},
    {.Text = L"VARCHAR2(size)",
     .Description = L"Variable-length character string of at most size bytes, or characters where the length is "
                    L"declared so, up to 4000 bytes (2000 in Oracle 7); there is no default for size."},
};

inline constexpr CatalogueEntry FormatModels[] = {
    {.Text = L"CC", .Description = L"Century; Use SCC for BC dates."},
    {.Text = L"YYYY", .Description = L"4-digit year; use SYYYY for a minus sign before BC dates."},
    {.Text = L"IYYY",
     .Description = L"4-digit year by the ISO 8601 standard, the year to which the week IW belongs; around January 1 "
                    L"it can differ from YYYY."},
    {.Text = L"YEAR", .Description = L"Year, spelled out; use SYEAR to mark BC dates with a minus sign."},
    {.Text = L"RR",
     .Description = L"2-digit year; when a string is converted to a date, the century is inferred from the two digits "
                    L"and the current year."},
    {.Text = L"Q", .Description = L"Quarter of the year, 1 to 4; January to March is 1."},
    {.Text = L"MM", .Description = L"Month as two digits, 01 (January) to 12."},
    {.Text = L"RM", .Description = L"Month as a Roman numeral, I (January) to XII, padded with blanks to 4 places."},
    {.Text = L"MONTH",
     .Description = L"Name of the month in the date language of the session, padded with blanks to the length of the "
                    L"longest name; use Month for an initial capital only."},
    {.Text = L"MON",
     .Description = L"Abbreviated name of the month in the date language of the session, such as JAN in English; use "
                    L"Mon for Jan."},
    {.Text = L"WW", .Description = L"Week of the year, 01 to 53; week 1 is January 1 to January 7."},
    {.Text = L"W", .Description = L"Week of the month, 1 to 5; week 1 is the first seven days of the month."},
    {.Text = L"IW",
     .Description = L"Week of the year by the ISO 8601 standard, 01 to 53; weeks begin on Monday, and week 1 contains "
                    L"January 4."},
    {.Text = L"DDD", .Description = L"Day of the year, 001 to 366."},
    {.Text = L"DD", .Description = L"Day of the month, 01 to 31."},
    {.Text = L"D",
     .Description = L"Day of the week, 1 to 7; the territory of the session (NLS_TERRITORY) decides which day is 1."},
    {.Text = L"DAY",
     .Description = L"Name of the weekday, padded with blanks to the length of the longest name; use FMDAY to leave "
                    L"the blanks out."},
    {.Text = L"DY",
     .Description = L"Abbreviated name of the weekday in the date language of the session, such as TUE in English; use "
                    L"Dy for Tue."},
    {.Text = L"J", .Description = L"Julian day number; January 1, 4712 BC is day 1."},
    {.Text = L"HH", .Description = L"Hour of the 12-hour clock, 01 to 12; the same as HH12."},
    {.Text = L"HH24", .Description = L"Hour of the 24-hour clock, 00 to 23."},
    {.Text = L"MI", .Description = L"Minute of the hour, 00 to 59."},
    {.Text = L"SS", .Description = L"Second of the minute, 00 to 59."},
    {.Text = L"SSSSS", .Description = L"Number of seconds since midnight, 00000 to 86399."},
};

}  // namespace Catalogue_Oracle
