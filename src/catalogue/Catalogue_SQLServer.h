#pragma once

#include "catalogue/CatalogueEntry.h"

// SQL Server, by category. The wording is part of the contract with hosts and users, doubled full stops included: do
// not correct it. Laid out by hand, so that every entry reads like the next.
// clang-format off
namespace Catalogue_SQLServer {

inline constexpr CatalogueEntry SingleRowNumberFunctions[] = {
    {.Text = L"ABS(n)", .Description = L"Returns the absolute, positive value of the given numeric expression n."},
    {.Text = L"ACOS(n)",
     .Description = L"Returns the angle, in radians from 0 to pi, whose cosine is n (-1 to 1), as a float."},
    {.Text = L"ASIN(n)",
     .Description = L"Returns the angle, in radians from -pi/2 to pi/2, whose sine is n (-1 to 1), as a float."},
    {.Text = L"ATAN(n)",
     .Description = L"Returns the angle, in radians between -pi/2 and pi/2, whose tangent is n, as a float."},
    {.Text = L"ATN2(n1,n2)",
     .Description = L"Returns the angle, in radians from -pi to pi, between the positive x-axis and the line from the "
                    L"origin to the point with y = n1 and x = n2, as a float."},
    {.Text = L"CEILING(n)",
     .Description = L"Returns n rounded up to a whole number: the smallest one greater than or equal to n."},
    {.Text = L"COS(n)", .Description = L"Returns the cosine of an angle of n radians as a float."},
    {.Text = L"COT(n)",
     .Description = L"Returns the cotangent of an angle of n radians, the reciprocal of TAN(n), as a float."},
    {.Text = L"DEGREES(n)",
     .Description = L"Returns an angle of n radians in degrees. Where n is an integer, so is the result."},
    {.Text = L"EXP(n)",
     .Description = L"Returns the exponential value of n, that is e raised to the power n, as a float."},
    {.Text = L"FLOOR(n)",
     .Description = L"Returns n rounded down to a whole number: the largest one less than or equal to n."},
    {.Text = L"ISNUMERIC(expr)",
     .Description = L"Returns 1 if expr can be converted to at least one of the numeric data types, otherwise 0. "
                    L"Strings such as '+' and '$' give 1, too."},
    {.Text = L"LOG(n)",
     .Description = L"Returns the natural logarithm (base e) of n as a float; n must be greater than 0."},
    {.Text = L"LOG10(n)",
     .Description = L"Returns the base-10 logarithm of n, which must be greater than 0, as a float."},
    {.Text = L"PI()", .Description = L"Returns the constant pi, 3.14159265358979, as a float."},
    {.Text = L"POWER(n1,n2)",
     .Description = L"Returns n1 raised to the power n2. The type of n1 decides that of the result: an integer n1 "
                    L"gives an integer."},
    {.Text = L"RADIANS(n)",
     .Description = L"Returns an angle of n degrees in radians. Write n with a decimal point, since an integer n gives "
                    L"an integer result."},
    {.Text = L"RAND( [seed] )",
     .Description = L"Returns a pseudo-random float between 0 and 1, both excluded; the same seed always gives the "
                    L"same value. Without a seed, all rows of one query get the same value."},
    {.Text = L"ROUND(n, length [, function] )",
     .Description = L"Returns n rounded to length decimal places, or left of the decimal point if length is negative; "
                    L"a function other than 0 truncates n instead."},
    {.Text = L"SIGN(n)", .Description = L"Returns 1 if n is positive, 0 if it is zero or -1 if it is negative."},
    {.Text = L"SIN(n)", .Description = L"Returns the sine of an angle of n radians as a float."},
    {.Text = L"SQUARE(n)", .Description = L"Returns n multiplied by itself, as a float."},
    {.Text = L"SQRT(n)", .Description = L"Returns the square root of n as a float; a negative n is an error."},
    {.Text = L"TAN(n)", .Description = L"Returns the tangent of an angle of n radians as a float."},
};

inline constexpr CatalogueEntry SingleRowCharacterFunctions[] = {
    {.Text = L"ASCII(s)",
     .Description = L"Returns the ASCII code value of the leftmost character of a character expression s."},
    {.Text = L"CHAR(n)",
     .Description = L"Returns the character that has the code n, an integer from 0 through 255; NULL for any other n."},
    {.Text = L"CHARINDEX( expr1, expr2 [, start] )",
     .Description = L"Returns the position at which string expr1 first occurs in string expr2, searched from position "
                    L"start on (default 1); 0 if it is not found."},
    {.Text = L"DIFFERENCE(s1, s2)",
     .Description = L"Returns how well the SOUNDEX codes of s1 and s2 match, from 0 (not at all) to 4 (the codes are "
                    L"the same or nearly so)."},
    {.Text = L"LEFT(s,n)", .Description = L"Returns the first n characters of string s, or all of s if it is shorter."},
    {.Text = L"LEN(s)", .Description = L"Returns the number of characters in string s, not counting trailing blanks."},
    {.Text = L"LOWER(s)", .Description = L"Returns string s with its uppercase letters converted to lowercase."},
    {.Text = L"LTRIM(s)", .Description = L"Returns string s without its leading blanks."},
    {.Text = L"NCHAR(n)",
     .Description = L"Returns the Unicode character that has the code n, 0 through 65535, or through 1114111 if the "
                    L"database's collation supports supplementary characters."},
    {.Text = L"PATINDEX( '%s%' , expr)",
     .Description = L"Returns the position at which the pattern s, with the wildcards of LIKE, first occurs in expr; 0 "
                    L"if it is not found. With % on both sides it is found anywhere."},
    {.Text = L"REPLACE(s, find, replace)",
     .Description = L"Returns string s with each occurrence of find changed to replace; what counts as an occurrence "
                    L"depends on the collation."},
    {.Text = L"QUOTENAME(s [, quote_char] )",
     .Description = L"Returns s as a delimited identifier, in brackets unless quote_char names another delimiter; NULL "
                    L"if s has more than 128 characters."},
    {.Text = L"REPLICATE(s,n)", .Description = L"Returns string s repeated n times; NULL if n is negative."},
    {.Text = L"REVERSE(s)", .Description = L"Returns the characters of string s in reverse order."},
    {.Text = L"RIGHT(s,n)", .Description = L"Returns the last n characters of string s, or all of s if it is shorter."},
    {.Text = L"RTRIM(s)", .Description = L"Returns string s without its trailing blanks."},
    {.Text = L"SOUNDEX(s)",
     .Description = L"Returns a four-character code for how string s sounds in English: its first letter and three "
                    L"digits. DIFFERENCE compares two such codes."},
    {.Text = L"SPACE(n)", .Description = L"Returns a string of n blanks; NULL if n is negative."},
    {.Text = L"STR(n [, length [, decimal ]] )",
     .Description = L"Returns n as a right-justified string of length characters (default 10), with decimal digits "
                    L"after the point (default 0); asterisks if it does not fit."},
    {.Text = L"STUFF(s1, start, length, s2)",
     .Description = L"Returns string s1 with length characters deleted from position start on and s2 inserted in their "
                    L"place."},
    {.Text = L"SUBSTRING(expr, start, length )",
     .Description = L"Returns length characters of expr, or bytes if it is binary, from position start on; the first "
                    L"position is 1."},
    {.Text = L"UNICODE(s)",
     .Description = L"Returns the Unicode code value of the first character of string s as an int."},
    {.Text = L"UPPER(s)", .Description = L"Returns string s with its lowercase letters converted to uppercase."},
};

inline constexpr CatalogueEntry GroupFunctions[] = {
    {.Text = L"SUM( [DISTINCT | ALL] expr )",
     .Description = L"Returns the sum of all the values, or only the DISTINCT values, in the expression. SUM can be "
                    L"used with numeric columns only. Null values are ignored."},
    {.Text = L"MIN( [DISTINCT | ALL] expr )",
     .Description = L"Returns the lowest value of expr, leaving out NULL; DISTINCT has no effect on it."},
    {.Text = L"MAX( [DISTINCT | ALL] expr )",
     .Description = L"Returns the highest value of expr, leaving out NULL; the result is NULL if there are no rows."},
    {.Text = L"COUNT(  { [DISTINCT | ALL] expr } | * )",
     .Description = L"Returns the number of rows as COUNT(*), else the number of values of expr that are not NULL, "
                    L"with DISTINCT of different ones; the result is an int."},
    {.Text = L"COUNT_BIG(  { [DISTINCT | ALL] expr } | * )",
     .Description = L"Returns the same number as COUNT, but as a bigint, so that it can exceed 2147483647."},
    {.Text = L"AVG( [DISTINCT | ALL] n)",
     .Description = L"Returns the average of all the values, or only the DISTINCT values, of n, without NULL. The "
                    L"average of integers is cut to an integer."},
    {.Text = L"STDEV(expr)",
     .Description = L"Returns the sample standard deviation of the values of expr as a float; NULL for a single "
                    L"value."},
    {.Text = L"STDEVP(expr)",
     .Description = L"Returns the standard deviation of the values of expr, taken as the whole population, as a float; "
                    L"0 for a single value."},
    {.Text = L"VAR(expr)",
     .Description = L"Returns the sample variance of the values of expr as a float, with their number less 1 as the "
                    L"divisor; NULL if there is only one."},
    {.Text = L"VARP(expr)",
     .Description = L"Returns the variance of the values of expr, taken as the whole population, as a float, with "
                    L"their number as the divisor."},
    {.Text = L"BINARY_CHECKSUM( * | expression [, ...] )",
     .Description = L"Returns an int computed from the binary values of a row or a list of expressions, so that 'a' "
                    L"and 'A' differ; it usually changes when one of them does."},
    {.Text = L"CHECKSUM( * | expression [, ...] )",
     .Description = L"Returns an int hash value of a row or a list of expressions for hash indexes. It follows the "
                    L"collation: 'a' and 'A' give the same where case is ignored. Other values can share one."},
    {.Text = L"CHECKSUM_AGG( [DISTINCT | ALL] expr )",
     .Description = L"Returns an int checksum of the integer values in a group, which does not depend on the order of "
                    L"the rows. NULL is left out."},
    {.Text = L"GROUPING( column_name )",
     .Description = L"Returns 1 in a summary row in which ROLLUP, CUBE or GROUPING SETS has set column_name to NULL, "
                    L"and 0 in any other row.",
     .ExecuteText = L""},
};

inline constexpr CatalogueEntry DateFunctions[] = {
    {.Text = L"DATEADD( datepart, n, d )",
     .Description = L"Returns a new datetime value based on adding an interval to the specified date.",
     .DragDrop = L"DATEADD( { yyyy | qq | mm | dy | dd | ww | hh | mi | ss | ms }, n, d )"},
    {.Text = L"DATEDIFF( datepart, d1, d2 )",
     .Description = L"Returns the number of datepart boundaries from date d1 to date d2, as an int, negative if d2 is "
                    L"earlier. Between December 31 and January 1 lies 1 by yyyy, mm and dd alike.",
     .DragDrop = L"DATEDIFF( { yyyy | qq | mm | dy | dd | ww | hh | mi | ss | ms }, d1, d2 )"},
    {.Text = L"DATENAME( datepart, d )",
     .Description = L"Returns the specified part of date d as a character string; a month or weekday is given by its "
                    L"name in the language of the session.",
     .DragDrop = L"DATENAME( { yyyy | qq | mm | dy | dd | ww | hh | mi | ss | ms }, d )"},
    {.Text = L"DATEPART( datepart, d )",
     .Description = L"Returns the specified part of date d as an integer, for example dy, the day of the year, or ww, "
                    L"the week of the year.",
     .DragDrop = L"DATEPART( { yyyy | qq | mm | dy | dd | ww | hh | mi | ss | ms }, d )"},
    {.Text = L"DAY(d)", .Description = L"Returns the day of the month of date d, an integer from 1 to 31."},
    {.Text = L"GETDATE()",
     .Description = L"Returns the current date and time of the server as a datetime value, without a time zone."},
    {.Text = L"ISDATE(expr)",
     .Description = L"Returns 1 if expr is a valid datetime value by the language and date format settings of the "
                    L"session, otherwise 0."},
    {.Text = L"MONTH(d)", .Description = L"Returns the month of date d, an integer from 1 (January) to 12."},
    {.Text = L"YEAR(d)", .Description = L"Returns the year of date d as an integer, such as 2000."},
    {.Text = L"GETUTCDATE()",
     .Description = L"Returns the current Coordinated Universal Time (UTC) as a datetime value, derived from the clock "
                    L"of the server."},
};

inline constexpr CatalogueEntry ConversionFunctions[] = {
    {.Text = L"CAST( expr AS datatype )",
     .Description = L"Returns expr converted to the given data type, in the notation of the SQL standard; for a choice "
                    L"of formats use CONVERT."},
    {.Text = L"CONVERT( datatype [(len)], expr [, style] )",
     .Description = L"Returns expr converted to the given data type, of length len (default 30); style selects the "
                    L"format of dates, money and float values as strings, for example 120 for yyyy-mm-dd hh:mi:ss."},
};

inline constexpr CatalogueEntry OtherFunctions[] = {
    {.Text = L"APP_NAME()",
     .Description = L"Returns the name that the client application gave itself when it opened the session."},
    {.Text = L"CASE",
     .Description = L"Returns the expr3 of the first WHEN whose expr2 equals expr1, otherwise expr4, or NULL without "
                    L"an ELSE. CASE WHEN condition THEN takes the first condition that is true.",
     .DragDrop = L"CASE expr1 WHEN expr2 THEN expr3 [...] [ ELSE expr4 ] END"},
    {.Text = L"COALESCE(expr [,...])",
     .Description = L"Returns the first of its expressions that is not NULL, or NULL if all of them are."},
    {.Text = L"DATALENGTH(expr)",
     .Description = L"Returns the number of bytes that the value of expr takes up, trailing blanks included; NULL if "
                    L"expr is NULL."},
    {.Text = L"@@ERROR", .Description = L"Returns the error number for the last Transact-SQL statement executed."},
    {.Text = L"HOST_ID()",
     .Description = L"Returns the workstation identification number: the process ID of the client application, as a "
                    L"string."},
    {.Text = L"HOST_NAME()",
     .Description = L"Returns the name of the workstation, as the client application gave it when it connected."},
    {.Text = L"ISNULL(check_expr, replace_expr)",
     .Description = L"Returns check_expr if it is not NULL, otherwise replace_expr converted to the data type of "
                    L"check_expr."},
    {.Text = L"NEWID()",
     .Description = L"Returns a new globally unique identifier (GUID) of type uniqueidentifier, a different one at "
                    L"every call."},
    {.Text = L"NULLIF(expr1, expr2)",
     .Description = L"Returns NULL if the two expressions are equal, otherwise the value of expr1."},
    // DragDrop ends with a blank.
    {.Text = L"PARSENAME(s,n)",
     .Description = L"Returns part n of the qualified object name s: 1 object, 2 owner (schema), 3 database, 4 server; "
                    L"NULL if s lacks it. Whether the object exists is not checked.",
     .DragDrop = L"PARSENAME( 'objectname' , {1(object) | 2(owner) | 3(database) | 4(server)} ) "},
    // Listed once more near the end of this section: both stay.
    {.Text = L"USER_NAME(n)", .Description = L"Returns a user database username from a given identification number n."},
    {.Text = L"@@CONNECTIONS",
     .Description = L"Returns how many connections have been attempted since SQL Server was started, failed ones "
                    L"included."},
    {.Text = L"@@DBTS",
     .Description = L"Returns the last timestamp (rowversion) value that was used in the current database."},
    {.Text = L"@@LANGUAGE",
     .Description = L"Returns the name of the language that the session is using, such as us_english."},
    {.Text = L"@@LANGID",
     .Description = L"Returns the ID of the language that the session is using, as listed in the column langid of "
                    L"syslanguages."},
    {.Text = L"@@MAX_CONNECTIONS",
     .Description = L"Returns how many users at most can be connected to the server at the same time; the configured "
                    L"limit may be lower."},
    {.Text = L"@@SPID", .Description = L"Returns the ID of the current session, the server process ID, as a smallint."},
    {.Text = L"@@SERVERNAME",
     .Description = L"Returns the name of the local server; for a named instance, followed by a backslash and the "
                    L"instance name."},
    {.Text = L"@@SERVICENAME",
     .Description = L"Returns MSSQLSERVER if this is the default instance of SQL Server, otherwise the name of the "
                    L"instance."},
    {.Text = L"@@VERSION",
     .Description = L"Returns one string with the version, processor architecture, build date and edition of SQL "
                    L"Server, and the operating system that it runs on."},
    {.Text = L"SUSER_ID( [s] )",
     .Description = L"Returns the identification number of login s, by default of the current login. In SQL Server "
                    L"2000 it is always NULL; use SUSER_SID there."},
    {.Text = L"SUSER_NAME( [n] )",
     .Description = L"Returns the name of the login that has the identification number n, by default of the current "
                    L"login. In SQL Server 2000 this is NULL; use SUSER_SNAME there."},
    {.Text = L"SUSER_SID( [s] )",
     .Description = L"Returns the security identification number (SID) of login s, by default of the current login, as "
                    L"a binary value."},
    {.Text = L"SUSER_SNAME( [n] )",
     .Description = L"Returns the name of the login that has the security identification number (SID) n, by default of "
                    L"the current login."},
    {.Text = L"USER_ID(s)",
     .Description = L"Returns the identification number of the user named s in the current database; NULL if there is "
                    L"none."},
    {.Text = L"USER_NAME(n)", .Description = L"Returns a user database username from a given identification number n."},
    {.Text = L"HAS_DBACCESS(s)",
     .Description = L"Returns 1 if the current user has access to the database named s, 0 if not, and NULL if there is "
                    L"no such database."},
};

inline constexpr CatalogueEntry DataTypes[] = {
    {.Text = L"BIGINT",
     .Description = L"Integer (whole number) data from -2^63 (-9223372036854775808) through 2^63-1 "
                    L"(9223372036854775807)."},
    {.Text = L"BINARY",
     .Description = L"Fixed-length binary data of up to 8000 bytes; a column or variable without a stated length has 1 "
                    L"byte."},
    {.Text = L"BIT",
     .Description = L"Integer data that is 0, 1 or NULL; up to eight columns of this type share one byte."},
    {.Text = L"CHAR",
     .Description = L"Fixed-length character data of up to 8000 bytes, in the code page of the collation; a column or "
                    L"variable without a stated length has 1 byte."},
    {.Text = L"CURSOR",
     .Description = L"A type for variables and OUTPUT parameters that refer to a cursor; columns cannot have it."},
    {.Text = L"DATETIME",
     .Description = L"Date and time of day from January 1, 1753 to December 31, 9999, in 8 bytes and rounded to 1/300 "
                    L"of a second."},
    // The last minus sign is an en dash.
    {.Text = L"DECIMAL", .Description = L"Fixed precision and scale numeric data from -10^38 +1 through 10^38 –1."},
    {.Text = L"FLOAT",
     .Description = L"Approximate (floating point) numbers of up to 1.79E+308, positive or negative; FLOAT without a "
                    L"precision takes 8 bytes and keeps 15 digits."},
    {.Text = L"IMAGE",
     .Description = L"Variable-length binary data of up to 2^31-1 (2147483647) bytes; superseded by VARBINARY(MAX) in "
                    L"SQL Server 2005."},
    {.Text = L"INT",
     .Description = L"Integer (whole number) data from -2^31 (-2147483648) through 2^31-1 (2147483647), in 4 bytes."},
    {.Text = L"MONEY",
     .Description = L"Monetary amounts from -922337203685477.5808 to 922337203685477.5807, with four decimal places "
                    L"and in 8 bytes."},
    {.Text = L"NCHAR",
     .Description = L"Fixed-length Unicode character data of up to 4000 byte pairs, filled up with blanks; a "
                    L"supplementary character takes two of them."},
    {.Text = L"NTEXT",
     .Description = L"Variable-length Unicode character data of up to 2^30-1 (1073741823) characters; superseded by "
                    L"NVARCHAR(MAX) in SQL Server 2005."},
    {.Text = L"NUMERIC",
     .Description = L"The same as DECIMAL: numeric data with a fixed precision of 1 to 38 digits (default 18) and a "
                    L"fixed scale (default 0)."},
    {.Text = L"NVARCHAR",
     .Description = L"Variable-length Unicode character data of up to 4000 byte pairs, two for a supplementary "
                    L"character; NVARCHAR(MAX), from SQL Server 2005 on, holds up to 2^31-1 bytes."},
    {.Text = L"REAL",
     .Description = L"Approximate (floating point) numbers of up to 3.40E+38, positive or negative, in 4 bytes and "
                    L"with 7 significant digits; the same as FLOAT(24)."},
    {.Text = L"SMALLDATETIME",
     .Description = L"Date and time of day from January 1, 1900 to June 6, 2079, in 4 bytes and rounded to the "
                    L"minute."},
    {.Text = L"SMALLINT",
     .Description = L"Integer (whole number) data from -2^15 (-32768) through 2^15-1 (32767), in 2 bytes."},
    {.Text = L"SMALLMONEY",
     .Description = L"Monetary amounts from -214748.3648 to 214748.3647, with four decimal places and in 4 bytes."},
    {.Text = L"SQL_VARIANT",
     .Description = L"A type whose values can each have their own base type, such as INT or VARCHAR; TEXT, NTEXT, "
                    L"IMAGE and TIMESTAMP are among those excluded."},
    {.Text = L"TABLE", .Description = L"A special data type used to store a result set for later processing."},
    {.Text = L"TEXT",
     .Description = L"Variable-length non-Unicode character data of up to 2^31-1 (2147483647) bytes; superseded by "
                    L"VARCHAR(MAX) in SQL Server 2005."},
    {.Text = L"TIMESTAMP",
     .Description = L"An 8-byte binary number, unique in the database, that changes whenever its row is inserted or "
                    L"updated; it holds no date or time. ROWVERSION is another name for it."},
    {.Text = L"TINYINT", .Description = L"Integer (whole number) data from 0 through 255, in one byte."},
    {.Text = L"UNIQUEIDENTIFIER",
     .Description = L"A globally unique identifier (GUID) in 16 bytes, such as NEWID() creates."},
    {.Text = L"VARBINARY",
     .Description = L"Variable-length binary data of up to 8000 bytes; VARBINARY(MAX), from SQL Server 2005 on, holds "
                    L"up to 2^31-1 bytes."},
    {.Text = L"VARCHAR",
     .Description = L"Variable-length character data of up to 8000 bytes, in the code page of the collation; "
                    L"VARCHAR(MAX), from SQL Server 2005 on, holds up to 2^31-1 bytes."},
};

inline constexpr CatalogueEntry PseudoColumns[] = {
    {.Text = L"CURRENT_TIMESTAMP",
     .Description = L"Returns the current date and time. This function is equivalent to GETDATE()."},
    {.Text = L"CURRENT_USER",
     .Description = L"Returns the name of the current user in the current database, as USER_NAME() does."},
    {.Text = L"SESSION_USER",
     .Description = L"Returns the name of the user in whose context the session runs in the current database; it can "
                    L"serve as the DEFAULT of a column."},
    {.Text = L"SYSTEM_USER",
     .Description = L"Returns the name of the current login, in the form DOMAIN\\name with Windows Authentication; the "
                    L"database user may have another name."},
    {.Text = L"USER", .Description = L"Returns the database user name of the current user, the same as CURRENT_USER."},
};

inline constexpr CatalogueEntry SQLCommands[] = {
    {.Text = L"USE", .Description = L"Changes the database context to the specified database.."},
};

}  // namespace Catalogue_SQLServer
