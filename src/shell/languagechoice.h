#pragma once

#include <string>
#include <vector>

namespace tessarin {

class AppContext;

inline constexpr const char* kEnglishItem = "English";
inline constexpr const char* kFrenchItem =
    "Fran\xC3\xA7"
    "ais";
inline constexpr const char* kOtherItem = "Other...";

// The language list of the chooser and of the options: "English", "Français", the name (less its
// last four characters) of each *.lng file of the application folder in the order the folder
// gives them, and "Other...".
std::vector<std::string> LanguageItems(const std::string& appFolder);

// The chooser's first proposal: "Français" on a French system, else "English".
std::string DefaultLanguageItem(bool frenchSystem);

// The item that shows the current language: "Français" for 0, "English" for 1, the language
// file's name less ".lng" for 2.
std::string CurrentLanguageItem(const AppContext& ctx);

// The chooser's button: sets LanguageNumber by the item ("Other..." is English and writes the
// template; a file name is 2, with LngFile written). The key Language is not written.
void ApplyChooserChoice(AppContext& ctx, const std::string& item);

}  // namespace tessarin
