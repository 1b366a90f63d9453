#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "shell/options.h"
#include "shell/startup.h"

namespace tessarin {

class AppContext;
class MainFrame;
class QtUserInterface;

// The site tables of a run with the routines that read and write their file.
SiteTablesAccess SiteAccess(AppContext& ctx, UrlTables& tables);
// Reads the database of the application folder when there is one.
void LoadDatabase(AppContext& ctx);

// The start of the desktop program once the single-instance lock is held: the start-up steps
// with their dialogs, then the frame. Gives null when the run must end (no temporary folder;
// the user has been told).
std::unique_ptr<MainFrame> StartDesktop(AppContext& ctx, ShellSession& session, QtUserInterface& ui,
                                        UrlTables& sites);

// The whole desktop program: arguments, single instance, start, event loop, close. Gives the
// process's exit code.
int RunDesktopProgram(int argc, char** argv);

}  // namespace tessarin
