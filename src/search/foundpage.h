#pragma once

// The HTML page of a game that the search dialog's Show opens when HTML is ticked.

#include <string>
#include <vector>

#include "search/searchhooks.h"

namespace tessarin {

class AppContext;

enum class FoundPageResult {
  Written,        // Found.htm is in the temporary folder
  CantUnzipSkin,  // the skin archive couldn't be unpacked (message 143)
  NoPageRoutine,  // the program has no page routine to fill the template with
};

// The skins of Combo18: every folder "HTML/*.skin" and every file "HTML/*.skin.zip" of the
// program folder, by name. (Named apart from the skins' own ListSkins, which also takes plain
// files named *.skin: the two are one symbol in one program.)
std::vector<std::string> ListSearchSkins(const std::string& appFolder);

// Builds TempFolder + "Found.htm" for `romName` from the skin `skinName` (the text of Combo18;
// empty for "HTML/search.htm"), copying the skin's "search*.*" pictures beside it when the skin is
// a folder. `pagePath` receives the page's path.
FoundPageResult ShowFoundPage(AppContext& ctx, const GamePageHooks& hooks,
                              const std::string& skinName, const std::string& romName,
                              bool onlineImages, std::string& pagePath);

}  // namespace tessarin
