#pragma once

#include <string>
#include <string_view>

// A database product: what the editor needs to know beyond what ODBC tells.
struct Product {
    const wchar_t* NamePart;  // a part of what SQL_DBMS_NAME says, compared without regard to case
    const wchar_t* Name;      // the name to show
    long DBType;              // the database type code of the host's objects
    // A query for the schema in which a name without a prefix is looked for; null: none is known.
    const wchar_t* DefaultSchemaQuery = nullptr;
    // The product has no schemas, but its catalogues are used like schemas.
    bool CatalogsAreSchemas = false;
    // Words that cannot be a name without quotes beyond those that ODBC reserves and the driver reports.
    const wchar_t* Keywords = L"";
    // How the names of the product's own tables begin, where its driver calls them tables like any other; null: it does
    // not.
    const wchar_t* SystemPrefix = nullptr;
};

// The product whose name part occurs in `dbmsName`; a general one when none does. `hasSchemas` chooses between the two
// general ones.
const Product& FindProduct(std::wstring_view dbmsName, bool hasSchemas);

// The name to show for a database type code when no connection is there to describe; "Database" for a code without a
// product.
std::wstring ProductName(long dbType);
