#pragma once

namespace tessarin {

class ListDialog;
struct UrlTables;

// The HTML page's two builds, as the list dialog's buildHtml hook: Command4 (`useIniFile`
// false) builds the site of the whole list or of the search the page's checks make; Command6
// asks for an INI file, loads its names under the working dialog and builds their site. The
// dialog is hidden while the build runs and comes back at its end, in every case. The on-line
// picture addresses come from `sites`, the program's site list; without it (a window opened
// on its own) they are read from the site list's file.
void BuildHtmlSiteFromDialog(ListDialog& dialog, bool useIniFile, const UrlTables* sites = nullptr);

}  // namespace tessarin
