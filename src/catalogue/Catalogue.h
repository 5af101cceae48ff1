#pragma once

#include <span>

#include "catalogue/CatalogueEntry.h"
#include "catalogue/ItemText.h"

// The sections in the order of their Ids, which have no gaps: from 0 to CatalogueSize - 1.
inline constexpr long CatalogueSize = 283;
std::span<const CatalogueSection> CatalogueSections();

// An entry's texts as they are shown, dragged and run. Lines are joined by CR LF, with none after the last.
struct CatalogueTexts {
    ItemText Description;
    ItemText DragDrop;
    ItemText SelectText;
    ItemText ExecuteText;
};

// The texts that the entry names, and the others by the rule of its section. Throws std::bad_alloc alone.
CatalogueTexts ExpandTexts(const CatalogueSection& Section, const CatalogueEntry& Entry);
