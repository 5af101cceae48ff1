#include "editor/frmSQLEditor.h"

void frmSQLEditor::mnuFileNew_Click() {}

void frmSQLEditor::mnuFileOpen_Click() {}

void frmSQLEditor::mnuFileSave_Click() {}

void frmSQLEditor::mnuFileSaveAs_Click() {}
