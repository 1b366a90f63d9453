#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>

namespace tessarin {

class AppContext;

// What the wizard asks of the machine when it proposes defaults; tests give their own.
struct WizardEnvironment {
  std::function<bool(const std::string&)> FileExists;
  std::function<bool(const std::string&)> FolderExists;
  // The full path of a program found on the PATH, or empty.
  std::function<std::string(const std::string&)> FindOnPath;
  // The user's home folder, with no final separator.
  std::string HomeFolder;
  // True where the emulator is a Windows program (c:\mame\mame.exe...).
  bool WindowsDefaults = false;
};
// The environment of this machine.
WizardEnvironment SystemWizardEnvironment();

// The path wizard: step 0 explains, steps 1 to 8 ask for the emulator and seven folders, each
// saved under its key when the user continues; after step 8 the wizard ends.
class PathWizard final {
 public:
  static constexpr int kLastStep = 8;
  static constexpr std::array<std::string_view, 9> kKeys = {
      "",          "DataFile1",    "RomPath",      "TitlesPath",
      "SnapPath",  "MarqueesPath", "CabinetsPath", "CpanelPath",
      "FlyersPath"};

  PathWizard(AppContext& ctx, WizardEnvironment env);

  int Step() const { return m_step; }
  bool Finished() const { return m_step > kLastStep; }

  // The message number of the current question (67, the explanation, at step 0).
  int QuestionNumber() const;
  // The text the box shows at the current step (its default).
  const std::string& BoxText() const { return m_boxText; }
  bool BoxVisible() const { return m_step >= 1; }
  bool BrowseVisible() const { return m_step >= 1; }
  bool PreviousVisible() const { return m_previousVisible; }
  // The browse of step 1 chooses a file; the others a folder.
  bool BrowseIsFile() const { return m_step == 1; }

  // "Continue": writes `boxText` under the key of the current step (steps 1 to 8), then moves to
  // the next step and puts its default in the box.
  void Continue(const std::string& boxText);
  // "Previous": steps two back (not below 0) and runs Continue from there, so the box's text
  // is saved under the key of the step two back. That is how the wizard has always worked.
  void Previous(const std::string& boxText);

  // The default of a step: the emulator for step 1, a folder under the base folder for 2 to 8.
  std::string DefaultFor(int step) const;
  // The base folder of the defaults, with a final separator.
  std::string BaseFolder() const;

 private:
  AppContext& m_ctx;
  WizardEnvironment m_env;
  int m_step = 0;
  bool m_previousVisible = false;
  std::string m_boxText;
  // The emulator chosen at step 1, the base of the folder defaults.
  std::string m_executable;
};

}  // namespace tessarin
