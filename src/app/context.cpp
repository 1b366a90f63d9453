#include "app/context.h"

#include <QStandardPaths>
#include <QString>
#include <filesystem>
#include <system_error>

#include "core/fileservices.h"

namespace tessarin {

namespace {

// Answers nothing and asks nobody: a context works before a front end is attached, and a
// question then gets the careful answer, "no".
class QuietInterface final : public UserInterface {
 public:
  void ShowMessage(bool, const std::string&, const std::string&, Icon) override {}
  bool AskYesNo(const std::string&, const std::string&, Icon) override { return false; }
  std::string ChooseFile(const std::string&, const std::string&, const std::string&,
                         bool) override {
    return {};
  }
  void OpenDocument(const std::string&) override {}
};

QuietInterface& Quiet() {
  static QuietInterface quiet;  // stateless, so sharing it between contexts is harmless
  return quiet;
}

}  // namespace

void RemoveStaleTempFilesOfRun(const std::string& appFolder) {
  RemoveStaleTempFiles(appFolder, kStaleTempAge);
  RemoveStaleTempFiles(AddSlash(appFolder) + "DataFiles", kStaleTempAge);
}

bool FolderIsWritable(const std::string& folder) {
  if (!FolderExists(folder)) return false;
  const std::string probe = AddSlash(folder) + ".tessarin-write-test";
  if (!WriteFileAtomically(probe, "")) return false;
  KillQuiet(probe);
  return true;
}

AppContext::AppContext(const std::string& appFolder)
    : log(AddSlash(appFolder)),
      settings(AddSlash(appFolder) + "Tessarin.inf", log),
      messages(AddSlash(appFolder), settings, log),
      m_appFolder(AddSlash(appFolder)),
      m_ui(&Quiet()) {}

void AppContext::SetUi(UserInterface* ui) { m_ui = ui ? ui : &Quiet(); }

std::string ResolveAppFolder(const std::string& homeArgument, const std::string& executableFolder) {
  if (!homeArgument.empty()) {
    std::error_code ec;
    std::filesystem::create_directories(FsPath(homeArgument), ec);
    return AddSlash(PathText(std::filesystem::absolute(FsPath(homeArgument), ec)));
  }
  if (!executableFolder.empty() && FolderIsWritable(executableFolder)) {
    return AddSlash(executableFolder);
  }
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  const std::string folder = AddSlash(data.toStdString()) + "tessarin";
  std::error_code ec;
  std::filesystem::create_directories(FsPath(folder), ec);
  return AddSlash(folder);
}

}  // namespace tessarin
