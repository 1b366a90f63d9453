// Where each subsystem's dialogs join the frame: a subsystem adds one line here, registering the
// panel entry and menu entries that open its dialog. Entries nobody registers stay disabled.
#include "archive/ziptoolsdialog.h"
#include "lists/htmlsiteui.h"
#include "lists/listdialog.h"
#include "search/searchdialog.h"
#include "shell/mainframe.h"

namespace tessarin {

void RegisterSubsystemDialogs(MainFrame& frame) {
  // Panel entries: 0 search, 1 database, 2 lists, 4 translation, 5 zip, 6 images.
  // Menu entries: MnuRecherche, MnuUpdateData, MnuAtomicLayouts, MnuXML2List, MnuCopyTasks.
  frame.RegisterPanelDialog(2, [](MainFrame& f) {
    return new ListDialog(&f, f.Context(), ListDialogHooks{BuildHtmlSiteFromDialog, {}});
  });
  frame.RegisterPanelDialog(5, [](MainFrame& f) { return new ZipToolsDialog(&f, f.Context()); });
  frame.RegisterPanelDialog(0, [](MainFrame& f) {
    return SearchDialog::Create(
        &f, f.Context(), f.Sites().Tables, [&f] { f.ShowPanel(); }, [&f] { f.UnloadPanel(); });
  });
  frame.RegisterMenuDialog(QStringLiteral("MnuRecherche"), [](MainFrame& f) {
    return SearchDialog::Create(
        &f, f.Context(), f.Sites().Tables, [&f] { f.ShowPanel(); }, [&f] { f.UnloadPanel(); });
  });
}

}  // namespace tessarin
