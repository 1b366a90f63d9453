#include "shell/options.h"

#include "app/context.h"
#include "shell/languagechoice.h"

namespace tessarin {

OptionsModel::OptionsModel(AppContext& ctx, SiteTablesAccess sites)
    : m_ctx(ctx), m_sites(std::move(sites)) {}

void OptionsModel::Load() {
  if (m_sites.Reload) m_sites.Reload();
  LanguageList = LanguageItems(m_ctx.AppFolder());
  LanguageText = CurrentLanguageItem(m_ctx);
  const Settings& settings = m_ctx.settings;
  EmulatorPath = settings.InfReadOrEmpty("DataFile1");
  RomPath = settings.InfReadOrEmpty("RomPath");
  for (size_t i = 0; i < DataFiles.size(); ++i) {
    DataFiles[i] = settings.InfReadOrEmpty("DataFile" + std::to_string(i + 2));
  }
  for (size_t i = 0; i < ImagePaths.size(); ++i) {
    ImagePaths[i] = settings.InfReadOrEmpty(kImagePathKeys[i]);
  }
}

std::vector<std::string> OptionsModel::SearchEngineNames() const {
  std::vector<std::string> names;
  if (!m_sites.Tables) return names;
  const std::vector<std::string>& engines = m_sites.Tables->SearchEngines;
  for (size_t i = 1; i < engines.size(); ++i) {
    names.push_back(engines[i].substr(0, engines[i].find(':')));
  }
  return names;
}

namespace {
// Row `index` (from 0) of the engines, which the tables keep from 1; null outside.
std::string* EngineRow(UrlTables* tables, int index) {
  if (!tables || index < 0 || index >= tables->SearchEngineCount()) return nullptr;
  return &tables->SearchEngines[static_cast<size_t>(index) + 1];
}
}  // namespace

std::string OptionsModel::SearchEngineAddress(int index) const {
  const std::string* entry = EngineRow(m_sites.Tables, index);
  if (!entry) return {};
  const size_t colon = entry->find(':');
  return colon == std::string::npos ? std::string() : entry->substr(colon + 1);
}

void OptionsModel::SetSearchEngineAddress(int index, const std::string& address) {
  std::string* entry = EngineRow(m_sites.Tables, index);
  if (!entry) return;
  *entry = entry->substr(0, entry->find(':')) + ":" + address;
}

bool OptionsModel::AddSearchSite(const std::string& name, const std::string& address) {
  if (name.empty() || address.empty() || !m_sites.Tables) return false;
  m_sites.Tables->SearchEngines.push_back(name + ":" + address);
  return true;
}

std::string OptionsModel::OnlineImage(int kind) const {
  if (!m_sites.Tables || kind < 0 || kind >= 6) return {};
  return m_sites.Tables->OnlineImages[static_cast<size_t>(kind) + 1];
}

void OptionsModel::SetOnlineImage(int kind, const std::string& pattern) {
  if (!m_sites.Tables || kind < 0 || kind >= 6) return;
  m_sites.Tables->OnlineImages[static_cast<size_t>(kind) + 1] = pattern;
}

bool OptionsModel::Save() {
  Messages& messages = m_ctx.messages;
  Settings& settings = m_ctx.settings;
  const int before = messages.LanguageNumber;
  settings.InfWrite("DataFile1", EmulatorPath);
  settings.InfWrite("RomPath", RomPath);
  if (LanguageText == kFrenchItem) {
    messages.LanguageNumber = Messages::kFrench;
    settings.InfWrite("Language", messages.LanguageNumber);
    messages.LoadMessages();
  } else if (LanguageText == kEnglishItem) {
    messages.LanguageNumber = Messages::kEnglish;
    settings.InfWrite("Language", messages.LanguageNumber);
    messages.LoadMessages();
  } else if (LanguageText == kOtherItem) {
    messages.LanguageNumber = Messages::kEnglish;
    messages.LoadMessages();
    messages.WriteLanguageTemplate(&m_ctx.Ui());
  } else {
    messages.LanguageNumber = Messages::kLanguageFile;
    messages.LngFileName = LanguageText + ".lng";
    settings.InfWrite("LngFile", messages.LngFileName);
    settings.InfWrite("Language", messages.LanguageNumber);
    messages.LoadMessages();
  }
  const bool changed = messages.LanguageNumber != before;
  if (changed) m_ctx.SearchMayClose = true;
  for (size_t i = 0; i < DataFiles.size(); ++i) {
    settings.InfWrite("DataFile" + std::to_string(i + 2), DataFiles[i]);
  }
  for (size_t i = 0; i < ImagePaths.size(); ++i) {
    settings.InfWrite(kImagePathKeys[i], ImagePaths[i]);
  }
  return changed;
}

void OptionsModel::Unload() {
  if (m_sites.Write) m_sites.Write();
}

}  // namespace tessarin
