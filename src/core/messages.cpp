#include "core/messages.h"

#include <string>
#include <string_view>

#include "core/fileservices.h"
#include "core/guard.h"
#include "core/log.h"
#include "core/settings.h"
#include "core/textutil.h"
#include "core/userinterface.h"
#include "core/version.h"

namespace tessarin::resources {
// english.txt and french.txt, compiled into the program: one message a line, line n is
// message n, LF line ends, UTF-8.
std::string_view MessageTable(std::string_view name);
}  // namespace tessarin::resources

namespace tessarin {

namespace {

constexpr int kTrackLoadMessages = 1301;
constexpr int kTrackWriteLanguageTemplate = 1302;

// Stands for a doubled "=" while a language line is split at its first single "=".
constexpr char kEscapedEquals = '\x1f';

using Table = std::array<std::string, Messages::kCount + 1>;

// Line n of the resource becomes entry n; a CR before the LF is dropped so that a table saved
// by a Windows editor still reads the same. Element 0 stays empty.
Table ParseTable(std::string_view bytes) {
  Table table;
  int number = 0;
  std::size_t start = 0;
  while (start < bytes.size() && number < Messages::kCount) {
    std::size_t end = bytes.find('\n', start);
    if (end == std::string_view::npos) end = bytes.size();
    std::string_view line = bytes.substr(start, end - start);
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    table[++number] = std::string(line);
    start = end + 1;
  }
  return table;
}

// Splits a file into lines the way every reader of Tessarin does: CR LF, LF and a lone CR each
// end a line.
template <class Visit>
void ForEachLine(std::string_view bytes, Visit&& visit) {
  std::size_t start = 0;
  while (start < bytes.size()) {
    std::size_t end = bytes.find_first_of("\r\n", start);
    if (end == std::string_view::npos) {
      visit(bytes.substr(start));
      return;
    }
    if (!visit(bytes.substr(start, end - start))) return;
    start = end + 1;
    if (bytes[end] == '\r' && start < bytes.size() && bytes[start] == '\n') ++start;
  }
}

std::string ReplaceAll(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  result.reserve(text.size());
  std::size_t start = 0;
  while (true) {
    const std::size_t hit = text.find(from, start);
    if (hit == std::string_view::npos) break;
    result.append(text.substr(start, hit - start));
    result.append(to);
    start = hit + from.size();
  }
  result.append(text.substr(start));
  return result;
}

}  // namespace

Messages::Messages(std::string appFolder, Settings& settings, Log& log)
    : m_appFolder(std::move(appFolder)), m_settings(settings), m_log(log) {
  // Texts are readable before start-up has chosen the language.
  m_lng = EnglishTable();
}

const std::string& Messages::Lng(int number) const {
  static const std::string kEmpty;
  if (number < 1 || number > kCount) return kEmpty;
  return m_lng[number];
}

const std::array<std::string, Messages::kCount + 1>& Messages::EnglishTable() {
  static const Table table = ParseTable(resources::MessageTable("english.txt"));
  return table;
}

const std::array<std::string, Messages::kCount + 1>& Messages::FrenchTable() {
  static const Table table = ParseTable(resources::MessageTable("french.txt"));
  return table;
}

void Messages::LoadMessages() {
  m_lng.fill(std::string());
  if (LanguageNumber == kFrench) {
    m_lng = FrenchTable();
    return;
  }
  m_lng = EnglishTable();
  if (LanguageNumber != kLanguageFile) return;

  RunGuarded(m_log, kTrackLoadMessages, [&] {
    // The key is consulted only when a file was picked in this run; at the next start the name
    // is empty, the path is the application folder itself, and the texts stay English. That is
    // how language files have always behaved, so it is kept.
    if (!LngFileName.empty()) {
      LngFileName = m_settings.InfRead("LngFile");
      if (LngFileName == "-1" || LngFileName.empty()) return;
    }
    if (LngFileName.empty()) return;
    const std::string path = FindFileNoCase(AddSlash(m_appFolder), LngFileName);
    if (!FileExists(path)) return;

    std::string bytes;
    if (!ReadWholeFile(path, bytes)) throw Failure(75, "Path/File access error");

    int count = 0;
    ForEachLine(bytes, [&](std::string_view line) {
      if (TrimBlanks(line).starts_with(';')) return true;
      const std::string escaped = ReplaceAll(line, "==", std::string_view(&kEscapedEquals, 1));
      const std::size_t equals = escaped.find('=');
      if (equals == std::string::npos) return true;
      ++count;
      std::string text = escaped.substr(equals + 1);
      for (char& c : text) {
        if (c == kEscapedEquals) c = '=';
      }
      m_lng[count] = std::move(text);
      return count < kCount;
    });
  });
}

bool Messages::WriteLanguageTemplate(UserInterface* ui) {
  bool written = false;
  RunGuarded(m_log, kTrackWriteLanguageTemplate, [&] {
    const std::string version = AppVersion();
    std::string content;
    const auto line = [&content](std::string_view text) {
      content.append(text);
      content.append("\r\n");
    };
    line("; Language file for TESSARIN " + version);
    line("; You have to write the translation of each string into your language");
    line("; and then to rename the file with the name of your language.");
    line("; Example : German.lng");
    line(";");
    line("; Fichier langue pour TESSARIN " + version);
    line("; Vous devez traduire chaque chaîne de texte dans votre langue");
    line("; et ensuite renommer le fichier du nom de votre langue.");
    line("; Exemple : Allemand.lng");
    line(";");
    // The template ends at the first message without text (125), so later messages stay
    // English in any translation made from it; translators have always worked this way.
    for (int number = 1; number <= kCount; ++number) {
      if (TrimBlanks(m_lng[number]).empty()) break;
      line("=" + ReplaceAll(m_lng[number], "=", "=="));
    }
    const std::string path = FindFileNoCase(AddSlash(m_appFolder), "language.lng");
    if (!WriteFileAtomically(path, content)) throw Failure(75, "Path/File access error");
    written = true;
  });
  if (written && ui != nullptr) {
    ui->ShowMessage(false,
                    "A Language.lng file was saved into your Tessarin folder.|"
                    "Edit this file into your notepad if you want to translate TESSARIN into your "
                    "language.|"
                    "Finally run again TESSARIN and set your language.",
                    std::string(), Icon::Information);
  }
  return written;
}

std::string WithLineBreaks(std::string_view message) {
  // The desktop's widgets and the terminal both take a plain LF as the line break.
  return ReplaceAll(message, "|", "\n");
}

}  // namespace tessarin
