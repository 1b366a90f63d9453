#pragma once

namespace tessarin {

class ListDialog;

// The HTML page's two builds, as the list dialog's buildHtml hook: Command4 (`useIniFile`
// false) builds the site of the whole list or of the search the page's checks make; Command6
// asks for an INI file, loads its names under the working dialog and builds their site. The
// dialog is hidden while the build runs and comes back at its end, in every case.
void BuildHtmlSiteFromDialog(ListDialog& dialog, bool useIniFile);

}  // namespace tessarin
