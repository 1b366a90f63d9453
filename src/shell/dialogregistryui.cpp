// Where each subsystem's dialogs join the frame: a subsystem adds one line here, registering the
// panel entry and menu entries that open its dialog. Entries nobody registers stay disabled.
#include "app/context.h"
#include "archive/ziptoolsdialog.h"
#include "builder/databasedialog.h"
#include "builder/downloadsites.h"
#include "images/imageorganiserdialog.h"
#include "layouts/layoutsdialog.h"
#include "lists/copytasksdialog.h"
#include "lists/folderscandialog.h"
#include "lists/htmlsiteui.h"
#include "lists/inisetdialog.h"
#include "lists/listdialog.h"
#include "lists/skins.h"
#include "lists/xmllistdialog.h"
#include "online/updatedialog.h"
#include "online/urllist.h"
#include "search/searchdialog.h"
#include "search/searchhooks.h"
#include "sheet/gamepage.h"
#include "sheet/gamesheetdialog.h"
#include "shell/mainframe.h"
#include "translate/translatedialog.h"

namespace tessarin {

void RegisterSubsystemDialogs(MainFrame& frame) {
  // Panel entries: 0 search, 1 database, 2 lists, 4 translation, 5 zip, 6 images.
  // Menu entries: MnuRecherche, MnuUpdateData, MnuAtomicLayouts, MnuXML2List, MnuCopyTasks.
  const auto search = [](MainFrame& f) -> QWidget* {
    return SearchDialog::Create(
        &f, f.Context(), f.Sites().Tables, [&f] { f.ShowPanel(); }, [&f] { f.UnloadPanel(); });
  };
  // What the search's actions open: the sheet, the HTML page, the INI set.
  SearchDialogHookTable().OpenGameSheet = [](QWidget* parent, AppContext& ctx,
                                             const std::string& rom) {
    OpenGameSheet(parent, ctx, rom);
  };
  SearchDialogHookTable().OpenAtomicFeOptions = [](QWidget* parent, AppContext& ctx) {
    OpenIniSetDialog(parent, ctx);
  };
  SearchGamePageHooks().FillGamePage = [&frame](AppContext& ctx, const std::string& pageTemplate,
                                                const std::string& rom, bool onlineImages) {
    GamePageOptions options;
    options.onlineImages = onlineImages;
    if (const UrlTables* sites = frame.Sites().Tables) {
      for (size_t i = 1; i < options.onlinePatterns.size(); ++i) {
        options.onlinePatterns[i] = sites->OnlineImages[i];
      }
    }
    return FillGamePage(ctx, rom, pageTemplate, 0, options);
  };
  SearchGamePageHooks().DefaultTemplate = [&frame] {
    return std::string(BuiltInGamePage(frame.Context().messages.LanguageNumber));
  };
  frame.RegisterPanelDialog(0, search);
  frame.RegisterMenuDialog(QStringLiteral("MnuRecherche"), search);
  frame.RegisterPanelDialog(1, [](MainFrame& f) {
    return new DatabaseDialog(
        &f, f.Context(),
        DownloadListFromTables(f.Sites().Tables, f.Sites().Reload, f.Sites().Write));
  });
  frame.RegisterPanelDialog(2, [](MainFrame& f) {
    ListDialogHooks hooks;
    hooks.buildHtml = [&f](ListDialog& dialog, bool useIniFile) {
      BuildHtmlSiteFromDialog(dialog, useIniFile, f.Sites().Tables);
    };
    hooks.openFolderScan = [&f](ListDialog& dialog) { OpenFolderScanDialog(&dialog, f.Context()); };
    return new ListDialog(&f, f.Context(), hooks);
  });
  frame.RegisterPanelDialog(4, [](MainFrame& f) { return new TranslateDialog(&f, f.Context()); });
  frame.RegisterPanelDialog(5, [](MainFrame& f) { return new ZipToolsDialog(&f, f.Context()); });
  frame.RegisterPanelDialog(6,
                            [](MainFrame& f) { return new ImageOrganiserDialog(&f, f.Context()); });

  const auto refreshPanel = [&frame] {
    if (frame.Panel()) frame.Panel()->RefreshDatabaseLabel();
  };
  frame.RegisterMenuDialog(QStringLiteral("MnuUpdateData"), [refreshPanel](MainFrame& f) {
    return new UpdateDialog(&f, f.Context(), refreshPanel);
  });
  frame.DataUpdateCheck = [&frame, refreshPanel](bool automatic) {
    RunDataUpdateCheck(&frame, frame.Context(), automatic, refreshPanel);
  };
  frame.RegisterMenuDialog(QStringLiteral("MnuAtomicLayouts"),
                           [](MainFrame& f) { return new LayoutsDialog(&f, f.Context()); });
  frame.RegisterMenuDialog(QStringLiteral("MnuXML2List"),
                           [](MainFrame& f) { return new XmlListDialog(&f, f.Context()); });
  frame.RegisterMenuDialog(QStringLiteral("MnuCopyTasks"),
                           [](MainFrame& f) { return new CopyTasksDialog(&f, f.Context()); });
}

}  // namespace tessarin
