#include "shell/pathwizard.h"

#include <QDir>
#include <QStandardPaths>
#include <QString>
#include <algorithm>

#include "app/context.h"
#include "core/fileservices.h"

namespace tessarin {

namespace {
constexpr std::array<std::string_view, 9> kFolders = {
    "", "", "roms", "titles", "snap", "marquees", "cabinets", "cpanel", "flyers"};
}  // namespace

WizardEnvironment SystemWizardEnvironment() {
  WizardEnvironment env;
  env.FileExists = [](const std::string& p) { return tessarin::FileExists(p); };
  env.FolderExists = [](const std::string& p) { return tessarin::FolderExists(p); };
  env.FindOnPath = [](const std::string& name) {
    return QStandardPaths::findExecutable(QString::fromStdString(name)).toStdString();
  };
  env.HomeFolder = QDir::homePath().toStdString();
#ifdef _WIN32
  env.WindowsDefaults = true;
#endif
  return env;
}

PathWizard::PathWizard(AppContext& ctx, WizardEnvironment env)
    : m_ctx(ctx), m_env(std::move(env)) {}

int PathWizard::QuestionNumber() const {
  if (m_step < 1 || m_step > kLastStep) return 67;
  return 93 + m_step;  // 94 to 101
}

std::string PathWizard::DefaultFor(int step) const {
  if (step == 1) {
    if (m_env.WindowsDefaults) {
      return m_env.FileExists("c:\\mame\\mame.exe") ? "c:\\mame\\mame.exe"
                                                    : "c:\\mame32\\mame32.exe";
    }
    // Where Debian's package puts it, else whatever the PATH finds.
    if (m_env.FileExists("/usr/games/mame")) return "/usr/games/mame";
    const std::string onPath = m_env.FindOnPath ? m_env.FindOnPath("mame") : std::string();
    return onPath.empty() ? "/usr/games/mame" : onPath;
  }
  if (step < 2 || step > kLastStep) return {};
  const std::string base = BaseFolder();
  const char separator = base.empty() ? '/' : base.back();
  return base + std::string(kFolders[static_cast<size_t>(step)]) + separator;
}

std::string PathWizard::BaseFolder() const {
  const std::string& exe = m_executable;
  const size_t cut = exe.find_last_of("\\/");
  if (cut == std::string::npos) {
    if (m_env.WindowsDefaults) {
      return m_env.FolderExists("c:\\mame\\") ? "c:\\mame\\" : "c:\\mame32\\";
    }
    return m_env.HomeFolder + "/mame/";
  }
  std::string base = exe.substr(0, cut + 1);
  // A system-wide emulator keeps its roms and pictures in the user's own mame folder.
  if (!m_env.WindowsDefaults && (base == "/usr/games/" || base == "/usr/bin/" ||
                                 base == "/usr/local/bin/" || base == "/usr/local/games/")) {
    return m_env.HomeFolder + "/mame/";
  }
  return base;
}

void PathWizard::Continue(const std::string& boxText) {
  if (m_step >= 1 && m_step <= kLastStep) {
    m_ctx.settings.InfWrite(kKeys[static_cast<size_t>(m_step)], boxText);
    if (m_step == 1) {
      m_previousVisible = true;
      m_executable = boxText;
    }
  }
  ++m_step;
  m_boxText = DefaultFor(m_step);
}

void PathWizard::Previous(const std::string& boxText) {
  m_step = std::max(m_step - 2, 0);
  Continue(boxText);
}

}  // namespace tessarin
