#pragma once

// The host's database type codes that make a difference. All others are alike.
namespace DatabaseType {
inline constexpr long ActiveDirectory = 1;
inline constexpr long Informix = 2;
inline constexpr long Oracle = 4;
inline constexpr long SqlServer = 8;
inline constexpr long Db2 = 13;    // and Derby
inline constexpr long MySql = 17;  // MariaDB and SQLite too
inline constexpr long Access = 24;
inline constexpr long AdaptiveServer = 26;
inline constexpr long Postgres = 27;  // and its relatives
inline constexpr long Firebird = 28;  // and InterBase
inline constexpr long SqlAnywhere = 40;
}  // namespace DatabaseType
