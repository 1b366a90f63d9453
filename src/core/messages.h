#pragma once

#include <array>
#include <string>
#include <string_view>

namespace tessarin {

class Log;
class Settings;
class UserInterface;

// The numbered message table, 1 to 473, filled in the user's language.
class Messages final {
 public:
  static constexpr int kCount = 473;
  // LanguageNumber values.
  static constexpr int kFrench = 0;
  static constexpr int kEnglish = 1;
  static constexpr int kLanguageFile = 2;

  Messages(std::string appFolder, Settings& settings, Log& log);

  // Message n, 1 to 473; the empty text for any other number.
  const std::string& Lng(int number) const;

  // The text of a control that has no message of its own (the program's additions to the
  // table's windows): French when the table is French, else English.
  const char* OwnText(const char* english, const char* french) const {
    return LanguageNumber == kFrench ? french : english;
  }

  int LanguageNumber = kEnglish;
  // The language file's name with its .lng ending; empty until the user picks one in this run.
  std::string LngFileName;

  // Rebuilds the table from LanguageNumber and LngFileName.
  void LoadMessages();

  // Writes language.lng (the English texts up to the first empty message) into the application
  // folder, then tells the user where it is. Gives false when the file can't be written.
  bool WriteLanguageTemplate(UserInterface* ui);

  // The built-in tables, straight from the program's resources.
  static const std::array<std::string, kCount + 1>& EnglishTable();
  static const std::array<std::string, kCount + 1>& FrenchTable();

 private:
  std::string m_appFolder;
  Settings& m_settings;
  Log& m_log;
  std::array<std::string, kCount + 1> m_lng;
};

// A message with each "|" turned into a line break, for showing.
std::string WithLineBreaks(std::string_view message);

}  // namespace tessarin
