#include "shell/languagechoice.h"

#include <cctype>
#include <filesystem>

#include "core/context.h"

namespace tessarin {

namespace fs = std::filesystem;

namespace {
fs::path PathOf(const std::string& utf8) {
  return fs::path(std::u8string(utf8.begin(), utf8.end()));
}
std::string Utf8Of(const fs::path& path) {
  const std::u8string text = path.u8string();
  return std::string(text.begin(), text.end());
}
}  // namespace

std::vector<std::string> LanguageItems(const std::string& appFolder) {
  std::vector<std::string> items{kEnglishItem, kFrenchItem};
  std::error_code ec;
  for (fs::directory_iterator it(PathOf(appFolder), ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = Utf8Of(it->path().filename());
    if (name.size() < 4) continue;
    std::string ending = name.substr(name.size() - 4);
    for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (ending != ".lng" || !it->is_regular_file(ec)) continue;
    items.push_back(name.substr(0, name.size() - 4));
  }
  items.push_back(kOtherItem);
  return items;
}

std::string DefaultLanguageItem(bool frenchSystem) {
  return frenchSystem ? kFrenchItem : kEnglishItem;
}

std::string CurrentLanguageItem(const AppContext& ctx) {
  switch (ctx.messages.LanguageNumber) {
    case Messages::kFrench:
      return kFrenchItem;
    case Messages::kLanguageFile: {
      const std::string& name = ctx.messages.LngFileName;
      return name.size() >= 4 ? name.substr(0, name.size() - 4) : std::string();
    }
    default:
      return kEnglishItem;
  }
}

void ApplyChooserChoice(AppContext& ctx, const std::string& item) {
  if (item == kFrenchItem) {
    ctx.messages.LanguageNumber = Messages::kFrench;
  } else if (item == kEnglishItem) {
    ctx.messages.LanguageNumber = Messages::kEnglish;
  } else if (item == kOtherItem) {
    ctx.messages.LanguageNumber = Messages::kEnglish;
    // The template holds the English texts.
    ctx.messages.LoadMessages();
    ctx.messages.WriteLanguageTemplate(&ctx.Ui());
  } else {
    ctx.messages.LanguageNumber = Messages::kLanguageFile;
    ctx.messages.LngFileName = item + ".lng";
    ctx.settings.InfWrite("LngFile", ctx.messages.LngFileName);
  }
}

}  // namespace tessarin
