#include "editor/frmSQLEditor.h"

void frmSQLEditor::CreateMenus() {
    for (MenuItem* entry : {&mnuFileNew, &mnuFileOpen, &mnuFileSave, &mnuFileSaveAs}) mnuFile.Append(*entry);
    mnuFile.AppendSeparator();
    mnuFile.Append(mnuFilePrint);
    mnuFile.AppendSeparator();
    mnuFile.Append(mnuFileClose);

    for (MenuItem* entry : {&mnuEditCut, &mnuEditCopy, &mnuEditPaste, &mnuEditDelete}) mnuEdit.Append(*entry);
    mnuEdit.AppendSeparator();
    for (MenuItem* entry : {&mnuEditMakeLowerCase, &mnuEditMakeUpperCase}) mnuEdit.Append(*entry);
    mnuEdit.AppendSeparator();
    for (MenuItem* entry : {&mnuFind, &mnuFindNext, &mnuEditReplace, &mnuEditGoto}) mnuEdit.Append(*entry);
    mnuEdit.AppendSeparator();
    for (MenuItem* entry : {&mnuEditSelectAll, &mnuEditTimeDate}) mnuEdit.Append(*entry);

    for (MenuItem* entry : {&mnuActionSelect, &mnuActionInsert, &mnuActionUpdate, &mnuActionDelete, &mnuActionExecute,
                            &mnuActionCreate, &mnuActionTasks}) {
        mnuAction.Append(*entry);
    }
    for (MenuItem& task : mnuActionTask) mnuActionTasks.Append(task);

    for (MenuItem* entry : {&mnuViewStatusBar, &mnuViewObjectBrowser, &mnuViewSystem}) mnuView.Append(*entry);
    mnuViewStatusBar.SetChecked(true);
    mnuViewObjectBrowser.SetChecked(true);

    mnuFileNew.Click = [this] { mnuFileNew_Click(); };
    mnuFileOpen.Click = [this] { mnuFileOpen_Click(); };
    mnuFileSave.Click = [this] { mnuFileSave_Click(); };
    mnuFileSaveAs.Click = [this] { mnuFileSaveAs_Click(); };
    mnuFilePrint.Click = [this] { mnuFilePrint_Click(); };
    mnuFileClose.Click = [this] { mnuFileClose_Click(); };
    mnuEdit.Click = [this] { mnuEdit_Click(); };
    mnuEditCut.Click = [this] { mnuEditCut_Click(); };
    mnuEditCopy.Click = [this] { mnuEditCopy_Click(); };
    mnuEditPaste.Click = [this] { mnuEditPaste_Click(); };
    mnuEditDelete.Click = [this] { mnuEditDelete_Click(); };
    mnuEditMakeLowerCase.Click = [this] { mnuEditMakeLowerCase_Click(); };
    mnuEditMakeUpperCase.Click = [this] { mnuEditMakeUpperCase_Click(); };
    mnuFind.Click = [this] { mnuFind_Click(); };
    mnuFindNext.Click = [this] { mnuFindNext_Click(); };
    mnuEditSelectAll.Click = [this] { mnuEditSelectAll_Click(); };
    mnuEditTimeDate.Click = [this] { mnuEditTimeDate_Click(); };
    mnuViewStatusBar.Click = [this] { mnuViewStatusBar_Click(); };
    mnuViewSystem.Click = [this] { mnuViewSystem_Click(); };
    mnuViewObjectBrowser.Click = [this] { mnuViewObjectBrowser_Click(); };

    mnuAction.Click = [this] { mnuAction_Click(); };
    mnuActionSelect.Click = [this] { mnuActionSelect_Click(); };
    mnuActionInsert.Click = [this] { mnuActionInsert_Click(); };
    mnuActionUpdate.Click = [this] { mnuActionUpdate_Click(); };
    mnuActionDelete.Click = [this] { mnuActionDelete_Click(); };
    mnuActionExecute.Click = [this] { mnuActionExecute_Click(); };
    mnuActionCreate.Click = [this] { mnuActionCreate_Click(); };
    for (size_t Index = 0; Index < mnuActionTask.size(); ++Index) {
        mnuActionTask[Index].Click = [this, Index] { mnuActionTask_Click(static_cast<short>(Index)); };
    }

    for (MenuItem* menu : {&mnuFile, &mnuEdit, &mnuAction, &mnuView}) Menus.Append(*menu);
    Menus.Create(Handle());
}
