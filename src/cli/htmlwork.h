#pragma once

// What the commands that write HTML (page, site) set up before they start.

#include <array>
#include <string>

namespace tessarin {

class AppContext;
class CliSession;

// A fresh temporary folder of the command's own, `folderName` below the system's temporary
// folder (skin archives are unpacked and pages made there; it is never the desktop program's,
// which a running instance may be using), and the application folder as a start of the program
// leaves it: the HTML folder, the help page, the default skins. False, with the folder named on
// standard error, when the folder can't be made.
bool PrepareHtmlWork(CliSession& session, const std::string& folderName);

// The on-line picture addresses of the site list, 1 to 6 (0 unused).
std::array<std::string, 7> OnlinePicturePatterns(AppContext& ctx);

}  // namespace tessarin
