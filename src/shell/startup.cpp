#include "shell/startup.h"

#include <QLockFile>
#include <QString>

#include "app/context.h"
#include "core/fileservices.h"
#include "core/guard.h"

namespace tessarin {

namespace resources {
std::string_view ShellResource(std::string_view name);
}

InstanceLock::InstanceLock(const std::string& appFolder)
    : m_lock(std::make_unique<QLockFile>(
          QString::fromStdString(AddSlash(appFolder) + std::string(kInstanceLockName)))) {
  // A running instance may hold its lock for days: only a dead owner makes the lock stale.
  m_lock->setStaleLockTime(0);
}

InstanceLock::~InstanceLock() = default;

bool InstanceLock::TryLock() { return m_lock->tryLock(0); }

int ReadLanguageKey(const AppContext& ctx) {
  const int language = ctx.settings.InfReadNumber("Language");
  return language == -1 ? Messages::kEnglish : language;
}

StartResult StartUp(AppContext& ctx, ShellSession& session, const StartUpSteps& steps) {
  ctx.log.DeleteLog();
  RemoveStaleTempFilesOfRun(ctx.AppFolder());
  session.PriorityChoice = 1;
  ctx.settings.InfLoad();
  // A first start that was cut short (the program killed at the chooser) left a settings file
  // behind with its mark still set: the first-start steps run again until they have ended once.
  if (!FileExists(ctx.settings.FilePath()) || ctx.settings.InfRead(kFirstStartPendingKey) == "1") {
    ctx.FirstRun = true;
    // Creates the settings file, so the frame opens maximised.
    ctx.settings.InfWrite("MDIState", 2);
    ctx.settings.InfWrite(kFirstStartPendingKey, "1");
    if (steps.ChooseLanguage) steps.ChooseLanguage();
    ctx.messages.LoadMessages();
    if (steps.RunPathWizard) steps.RunPathWizard();
    ctx.settings.InfWrite(kFirstStartPendingKey, "0");
  } else {
    ctx.messages.LanguageNumber = ReadLanguageKey(ctx);
  }
  ctx.messages.LoadMessages();
  MakeAppFolders(ctx);
  if (!MakeTempFolder(ctx)) return StartResult::TempFolderFailed;
  ExtractSkinFR(ctx, steps);
  ExtractSkinEN(ctx, steps);
  if (steps.LoadIndex) steps.LoadIndex();
  if (steps.LoadUrlList) steps.LoadUrlList();
  return StartResult::Ready;
}

void MakeAppFolders(AppContext& ctx) {
  RunGuarded(ctx.log, 1101, [&] {
    const std::string& app = ctx.AppFolder();
    for (const char* name : {"Downloads", "DataFiles", "HTML"}) {
      const std::string folder = app + name;
      if (!FolderExists(folder)) MakeFolder(folder);
    }
    const std::string html = AddSlash(app + "HTML");
    const std::string help = FindFileNoCase(html, "help.htm");
    if (!FileExists(help)) WriteFileAtomically(help, DefaultHelpPage());
  });
}

bool MakeTempFolder(AppContext& ctx, const std::string& systemTemp) {
  ctx.TempFolder.clear();
  const std::string base = systemTemp.empty() ? GetTempFolderPath() : AddSlash(systemTemp);
  if (!base.empty()) {
    const std::string candidate = base + "tessarin";
    ShellDelete(candidate, true);
    MakeFolder(candidate);
    if (FolderExists(candidate)) {
      ctx.TempFolder = AddSlash(candidate);
      return true;
    }
  }
  // There is no Windows folder to try here; the last resort is the application folder.
  const std::string fallback = ctx.AppFolder() + "Temp";
  ShellDelete(fallback, true);
  MakeFolder(fallback);
  if (!FolderExists(fallback)) return false;
  ctx.TempFolder = AddSlash(fallback);
  return true;
}

std::string TempFolderFailureText(const AppContext& ctx) {
  return ctx.AppFolder() + "Temp\n" + ctx.messages.Lng(310);
}

bool ExtractResourceIfMissing(const std::string& folder, std::string_view name,
                              std::string_view bytes) {
  if (bytes.empty()) return false;
  const std::string target = FindFileNoCase(folder, std::string(name));
  if (FileExists(target)) return false;
  return WriteFileAtomically(target, bytes);
}

namespace {
void ExtractSkin(AppContext& ctx, const StartUpSteps& steps, std::string_view name, int point) {
  RunGuarded(ctx.log, point, [&] {
    if (!steps.SkinResource) return;
    ExtractResourceIfMissing(AddSlash(ctx.AppFolder() + "HTML"), name, steps.SkinResource(name));
  });
}
}  // namespace

void ExtractSkinFR(AppContext& ctx, const StartUpSteps& steps) {
  ExtractSkin(ctx, steps, "Default_FR.skin.zip", 1102);
}

void ExtractSkinEN(AppContext& ctx, const StartUpSteps& steps) {
  ExtractSkin(ctx, steps, "Default_EN.skin.zip", 1103);
}

std::string_view DefaultHelpPage() { return resources::ShellResource("help.htm"); }

void CloseRun(AppContext& ctx, const FrameState& frame) {
  RunGuarded(ctx.log, 1104, [&] {
    ctx.settings.InfWrite("Language", ctx.messages.LanguageNumber);
    ctx.settings.InfWrite("MDILeft", frame.Left);
    ctx.settings.InfWrite("MDITop", frame.Top);
    ctx.settings.InfWrite("MDIState", frame.State);
  });
  if (!ctx.TempFolder.empty()) ShellDelete(ctx.TempFolder, true);
}

}  // namespace tessarin
