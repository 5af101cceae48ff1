#include "catalogue/modLists.h"
void modLists::CreateListItems() {}
