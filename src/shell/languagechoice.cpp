#include "shell/languagechoice.h"

#include <cctype>
#include <filesystem>

#include "app/context.h"
#include "core/fileservices.h"

namespace tessarin {

namespace fs = std::filesystem;

std::vector<std::string> LanguageItems(const std::string& appFolder) {
  std::vector<std::string> items{kEnglishItem, kFrenchItem};
  std::error_code ec;
  for (fs::directory_iterator it(FsPath(appFolder), ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = PathText(it->path().filename());
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
