#pragma once

#include <optional>
#include <string>
#include <vector>

#include "automation/Collection.h"
#include "automation/Variant.h"
#include "catalogue/ItemText.h"

// One entry of the reference, or the record of the active item of the object browser. Filled once by Constructor and
// only read afterwards. A getter that fails reports and returns an empty text or 0.
class clsListItem {
public:
    // What reports and logs call it.
    static constexpr const wchar_t* Module = L"clsListItem";

    clsListItem();
    ~clsListItem();
    clsListItem(const clsListItem&) = delete;
    clsListItem& operator=(const clsListItem&) = delete;

    std::wstring Category() const;
    // `Commands`: an array whose elements become the texts of the task commands, in index order; missing or empty:
    // none.
    void Constructor(ItemText Text, long Id, long list, long DBType, ItemText Category, ItemText Description,
                     ItemText DragDrop, ItemText SelectText, ItemText InsertText, ItemText UpdateText,
                     ItemText DeleteText, ItemText ExecuteText, const Variant& Commands = Variant::Missing());
    // The same for the active item, whose texts may be as long as a schema is large: taken over, not copied.
    void Constructor(long list, ItemText SelectText, ItemText InsertText, ItemText UpdateText, ItemText DeleteText,
                     std::vector<std::wstring> Commands);
    long DBType() const;
    std::wstring DeleteText() const;
    std::wstring Description() const;
    void Destructor();
    std::wstring DragDrop() const;
    std::wstring ExecuteText() const;
    // The command at a position counted from 0; empty beyond the last one. A negative position is an error of the
    // collection, 32767 an overflow: both are reported and give the empty text.
    std::wstring GetCommand(short Index) const;
    long Id() const;
    std::wstring InsertText() const;
    long list() const;  // 1 ANSI SQL, 2 database-specific, 3 the host's own commands
    std::wstring SelectText() const;
    std::wstring Text() const;
    std::wstring UpdateText() const;

private:
    void AddCommand(std::wstring Command);  // error 91 after Destructor

    ItemText text_;
    long id_ = 0;
    long list_ = 0;
    long dbType_ = 0;
    ItemText category_;
    ItemText description_;
    ItemText dragDrop_;
    ItemText selectText_;
    ItemText insertText_;
    ItemText updateText_;
    ItemText deleteText_;
    ItemText executeText_;
    std::optional<Collection<std::wstring>> commands_;
};
