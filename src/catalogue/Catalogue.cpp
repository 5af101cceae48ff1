#include "catalogue/Catalogue.h"

#include "catalogue/Catalogue_AnsiSQL.h"
#include "catalogue/Catalogue_HostCommands.h"
#include "catalogue/Catalogue_Oracle.h"
#include "catalogue/Catalogue_SQLServer.h"
#include "shared/Vocabulary.h"
#include "sql/DatabaseTypes.h"

namespace {

using CatalogueList::DatabaseSpecific, CatalogueList::HostCommands;
constexpr long AnsiSQL = CatalogueList::AnsiSql;
constexpr long AnyDatabase = 0, Oracle = DatabaseType::Oracle, SQLServer = DatabaseType::SqlServer;

constexpr std::wstring_view NoCategory = L"";
constexpr std::wstring_view SQLCommands = L"SQL Commands";
constexpr std::wstring_view NumberFunctions = L"Single Row Number Functions";
constexpr std::wstring_view CharacterFunctions = L"Single Row Character Functions";
constexpr std::wstring_view GroupFunctions = L"Group Functions";
constexpr std::wstring_view DateFunctions = L"Date Functions";
constexpr std::wstring_view ConversionFunctions = L"Conversion Functions";
constexpr std::wstring_view OtherFunctions = L"Other Functions";
constexpr std::wstring_view FormatModels = L"Format Models";
constexpr std::wstring_view PseudoColumns = L"Pseudo Columns";
constexpr std::wstring_view DataTypes = L"Data Types";

// The order is that of the Ids: SQL Server's categories come in an order of their own.
constexpr CatalogueSection Sections[] = {
    {0, HostCommands, AnyDatabase, NoCategory, TextRule::HostCommand, Catalogue_HostCommands::Commands},
    {25, AnsiSQL, AnyDatabase, NoCategory, TextRule::Statement, Catalogue_AnsiSQL::Commands},

    {35, DatabaseSpecific, Oracle, SQLCommands, TextRule::Statement, Catalogue_Oracle::SQLCommands},
    {36, DatabaseSpecific, Oracle, NumberFunctions, TextRule::SelectFromDual,
     Catalogue_Oracle::SingleRowNumberFunctions},
    {54, DatabaseSpecific, Oracle, CharacterFunctions, TextRule::SelectFromDual,
     Catalogue_Oracle::SingleRowCharacterFunctions},
    {77, DatabaseSpecific, Oracle, GroupFunctions, TextRule::SelectFromDual, Catalogue_Oracle::GroupFunctions},
    {85, DatabaseSpecific, Oracle, DateFunctions, TextRule::SelectFromDual, Catalogue_Oracle::DateFunctions},
    {91, DatabaseSpecific, Oracle, ConversionFunctions, TextRule::SelectFromDual,
     Catalogue_Oracle::ConversionFunctions},
    {101, DatabaseSpecific, Oracle, OtherFunctions, TextRule::SelectFromDual, Catalogue_Oracle::OtherFunctions},
    {110, DatabaseSpecific, Oracle, PseudoColumns, TextRule::SelectFromDual, Catalogue_Oracle::PseudoColumns},
    {115, DatabaseSpecific, Oracle, DataTypes, TextRule::NoExample, Catalogue_Oracle::DataTypes},
    {125, DatabaseSpecific, Oracle, FormatModels, TextRule::FormatOfDate, Catalogue_Oracle::FormatModels},

    {149, DatabaseSpecific, SQLServer, NumberFunctions, TextRule::Select,
     Catalogue_SQLServer::SingleRowNumberFunctions},
    {173, DatabaseSpecific, SQLServer, CharacterFunctions, TextRule::Select,
     Catalogue_SQLServer::SingleRowCharacterFunctions},
    {196, DatabaseSpecific, SQLServer, GroupFunctions, TextRule::SelectFromTable, Catalogue_SQLServer::GroupFunctions},
    {210, DatabaseSpecific, SQLServer, DateFunctions, TextRule::Select, Catalogue_SQLServer::DateFunctions},
    {220, DatabaseSpecific, SQLServer, ConversionFunctions, TextRule::Select, Catalogue_SQLServer::ConversionFunctions},
    {222, DatabaseSpecific, SQLServer, OtherFunctions, TextRule::Select, Catalogue_SQLServer::OtherFunctions},
    {250, DatabaseSpecific, SQLServer, DataTypes, TextRule::NoExample, Catalogue_SQLServer::DataTypes},
    {277, DatabaseSpecific, SQLServer, PseudoColumns, TextRule::Select, Catalogue_SQLServer::PseudoColumns},
    {282, DatabaseSpecific, SQLServer, SQLCommands, TextRule::Statement, Catalogue_SQLServer::SQLCommands},
};

// Each section begins where the one before it ends, so a missing or doubled entry anywhere does not compile.
constexpr bool IdsHaveNoGap() {
    long next = 0;
    for (const CatalogueSection& section : Sections) {
        if (section.FirstId != next) return false;
        next += static_cast<long>(section.Entries.size());
    }
    return next == CatalogueSize;
}
static_assert(IdsHaveNoGap(), "the Ids must run from 0 to 282, each section beginning with the one that it states");

constexpr long CountOf(long list, long dbType) {
    long count = 0;
    for (const CatalogueSection& section : Sections) {
        if (section.list == list && section.DBType == dbType) count += static_cast<long>(section.Entries.size());
    }
    return count;
}
static_assert(CountOf(HostCommands, AnyDatabase) == 25);
static_assert(CountOf(AnsiSQL, AnyDatabase) == 10);
static_assert(CountOf(DatabaseSpecific, Oracle) == 114);
static_assert(CountOf(DatabaseSpecific, SQLServer) == 134);

constexpr bool EntriesAreComplete() {
    for (const CatalogueSection& section : Sections) {
        if (section.Category.empty() != (section.list != DatabaseSpecific)) return false;
        for (const CatalogueEntry& entry : section.Entries) {
            if (entry.Text.empty() || entry.Description.empty()) return false;
        }
    }
    return true;
}
static_assert(EntriesAreComplete(),
              "every entry needs a text and a description, and every database-specific one a category");

// So that no other text need be searched for it when the component is loaded.
constexpr bool OnlyHostCommandsNameTheEdition() {
    for (const CatalogueSection& section : Sections) {
        for (const CatalogueEntry& entry : section.Entries) {
            const bool named = entry.Description.find(EditionMark) != entry.Description.npos;
            if (named && section.Rule != TextRule::HostCommand) return false;
        }
    }
    return true;
}
static_assert(OnlyHostCommandsNameTheEdition(),
              "the edition is written into descriptions of the host's commands alone");

ItemText ExpandDescription(TextRule rule, std::wstring_view description) {
    const size_t at = rule == TextRule::HostCommand ? description.find(EditionMark) : description.npos;
    if (at == description.npos) return ItemText::Constant(description);
    return ItemText::Joined({description.substr(0, at), HostEditionName, description.substr(at + EditionMark.size())});
}

ItemText ExecuteTextByRule(TextRule rule, std::wstring_view text, std::wstring_view dragDrop) {
    switch (rule) {
        case TextRule::HostCommand:
            return ItemText::Constant(text);
        case TextRule::Statement:
            return ItemText::Constant(dragDrop);
        case TextRule::SelectFromDual:
            return ItemText::Joined({L"SELECT ", dragDrop, L" FROM DUAL"});
        case TextRule::FormatOfDate:
            return ItemText::Joined({L"SELECT TO_CHAR( SYSDATE ,'", text, L"') FROM DUAL"});
        case TextRule::Select:
            return ItemText::Joined({L"SELECT ", dragDrop});
        case TextRule::SelectFromTable:
            return ItemText::Joined({L"SELECT ", dragDrop, L" FROM table"});
        case TextRule::NoExample:
            break;
    }
    return {};
}

}  // namespace

std::span<const CatalogueSection> CatalogueSections() { return Sections; }

CatalogueTexts ExpandTexts(const CatalogueSection& Section, const CatalogueEntry& Entry) {
    CatalogueTexts texts;
    texts.Description = ExpandDescription(Section.Rule, Entry.Description);
    texts.SelectText = ItemText::Constant(Entry.SelectText.value_or(L""));
    const std::wstring_view dragDrop = Entry.DragDrop.value_or(Entry.Text);
    texts.ExecuteText = Entry.ExecuteText ? ItemText::Constant(*Entry.ExecuteText)
                                          : ExecuteTextByRule(Section.Rule, Entry.Text, dragDrop);
    texts.DragDrop = Section.Rule == TextRule::HostCommand && !Entry.DragDrop
                         ? ItemText::Joined({texts.ExecuteText.View(), L";"})
                         : ItemText::Constant(dragDrop);
    return texts;
}
