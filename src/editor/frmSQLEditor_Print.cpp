#include "editor/frmSQLEditor.h"

void frmSQLEditor::mnuFilePrint_Click() {}
