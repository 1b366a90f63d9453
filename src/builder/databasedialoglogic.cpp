#include "builder/databasedialoglogic.h"

#include "app/context.h"
#include "core/fileservices.h"
#include "core/messages.h"
#include "core/settings.h"
#include "core/work.h"
#include "store/gamerecord.h"
#include "store/indexfile.h"

namespace tessarin {

namespace {

size_t ElementOfBox(int box, int comboChoice) {
  if (box == kComboPathBox) return static_cast<size_t>(kComboFirstElement + comboChoice);
  return static_cast<size_t>(box + 1);
}

// The files of Text1(1) to Text1(9), as their captions name them.
constexpr std::array<std::string_view, 10> kBoxFiles = {"",
                                                        "History.dat",
                                                        "Mameinfo.dat",
                                                        "Cheat.dat",
                                                        "Command.dat",
                                                        "Hiscore.dat",
                                                        "Wizsort.ini",
                                                        "Nplayers.ini / Multiplayer.ini",
                                                        "Aspect.ini",
                                                        "Controls.ini"};

}  // namespace

void DatabasePaths::Load(AppContext& ctx) {
  m_elements = LoadDataFilePaths(ctx);
  const std::string rom = ctx.settings.InfRead("RomPath");
  m_romPath = rom == "-1" ? std::string() : rom;
  m_combo = 0;
}

std::string DatabasePaths::BoxText(int box) const {
  if (box == kRomPathBox) return m_romPath;
  if (box < 0 || box > kComboPathBox) return {};
  return m_elements[ElementOfBox(box, m_combo)];
}

void DatabasePaths::LeaveBox(int box, const std::string& text) {
  if (box == kRomPathBox) {
    m_romPath = text;
    return;
  }
  if (box < 0 || box > kComboPathBox) return;
  m_elements[ElementOfBox(box, m_combo)] = text;
}

void DatabasePaths::ChooseCombo(int choice) {
  if (choice < 0 || choice >= static_cast<int>(kComboFiles.size())) return;
  m_combo = choice;
}

void DatabasePaths::ChooseRomFolder(AppContext& ctx, const std::string& folder) {
  if (folder.empty()) return;
  m_romPath = AddSlash(folder);
  ctx.settings.InfWrite("RomPath", m_romPath);
}

void DatabasePaths::Save(AppContext& ctx) const { SavePaths(ctx, m_elements, m_romPath); }

std::string PathBoxLabel(int box, const Messages& messages) {
  if (box == 0) return messages.Lng(83);
  if (box == 8 || box == 9) {
    return std::string(kBoxFiles[static_cast<size_t>(box)]) +
           " (n'est plus utilis\xC3\xA9 par Tessarin)";
  }
  if (box > 0 && box < 8)
    return messages.Lng(84) + std::string(kBoxFiles[static_cast<size_t>(box)]);
  if (box == kComboPathBox) return messages.Lng(87);
  if (box == kRomPathBox) return messages.Lng(88);
  return {};
}

std::string PathBoxFilter(int box, const Messages& messages) {
  const std::string all = "|" + messages.Lng(33) + "|*.*";
  if (box == 0) return messages.Lng(32) + "|*.exe" + all;
  if (box >= 1 && box <= 5) return "*.dat|*.dat" + all;
  return "*.ini|*.ini" + all;
}

bool UpdateButtonsEnabled(const std::string& appFolder) {
  return FileExists(IndexFilePath(appFolder));
}

std::vector<std::string> SelectionEntries(const Messages& messages) {
  std::vector<std::string> entries;
  for (int e = 0; e < kUpdateEntryCount; ++e) {
    const auto entry = static_cast<UpdateEntry>(e);
    entries.push_back(entry == UpdateEntry::Roms ? messages.Lng(45)
                                                 : std::string(UpdateEntryFile(entry)));
  }
  return entries;
}

std::string SelectedUpdateLabel(const UpdateReport& report) {
  std::string label;
  for (const std::string& line : report.lines) {
    if (!label.empty()) label += '\n';
    label += line;
  }
  return label;
}

bool UpdateFromFilesAndSave(AppContext& ctx, Work& work) {
  const bool done = UpdateFromFiles(ctx, work);
  if (ctx.store.GameCount() > 0) {
    SaveIndex(ctx.store, ctx.log, &work, IndexFilePath(ctx.AppFolder()));
  }
  return done;
}

int ScanRomsAndSave(AppContext& ctx, Work& work) {
  int matches = -1;
  ScanRoms(ctx, work, false, &matches);
  if (matches >= 0) SaveIndex(ctx.store, ctx.log, &work, IndexFilePath(ctx.AppFolder()));
  return matches;
}

void HeldMessagesUi::ShowMessage(bool modeless, const std::string& text, const std::string& title,
                                 Icon icon) {
  std::lock_guard lock(m_mutex);
  m_held.push_back({modeless, text, title, icon});
  m_given.push_back({modeless, text, title, icon});
}

bool HeldMessagesUi::AskYesNo(const std::string& text, const std::string& title, Icon icon) {
  return m_target.AskYesNo(text, title, icon);
}

std::string HeldMessagesUi::ChooseFile(const std::string& title, const std::string& startPath,
                                       const std::string& filter, bool save) {
  return m_target.ChooseFile(title, startPath, filter, save);
}

void HeldMessagesUi::OpenDocument(const std::string& pathOrAddress) {
  m_target.OpenDocument(pathOrAddress);
}

void HeldMessagesUi::Release() {
  std::vector<Held> held;
  {
    std::lock_guard lock(m_mutex);
    held.swap(m_held);
  }
  for (const Held& message : held) {
    m_target.ShowMessage(message.modeless, message.text, message.title, message.icon);
  }
}

bool HeldMessagesUi::Gave(const std::string& text) const {
  std::lock_guard lock(m_mutex);
  for (const Held& message : m_given) {
    if (message.text == text) return true;
  }
  return false;
}

std::vector<HeldMessagesUi::Held> HeldMessagesUi::Given() const {
  std::lock_guard lock(m_mutex);
  return m_given;
}

ScopedUi::ScopedUi(AppContext& ctx, UserInterface& ui) : m_ctx(ctx), m_previous(&ctx.Ui()) {
  m_ctx.SetUi(&ui);
}

ScopedUi::~ScopedUi() { m_ctx.SetUi(m_previous); }

}  // namespace tessarin
