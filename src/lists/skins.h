#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "sheet/gamepage.h"

namespace tessarin {

class AppContext;

// Skins: sets of HTML templates with their companion files, either a folder HTML/name.skin or
// an archive HTML/name.skin.zip under the application folder. Templates are bytes: they are
// read and written as they are, so a skin's encoding passes through unchanged.

inline constexpr std::string_view kDefaultSkinFR = "Default_FR.skin.zip";
inline constexpr std::string_view kDefaultSkinEN = "Default_EN.skin.zip";

// The built-in texts, used where a skin lacks a template. French when `languageNumber` is 0
// (Messages::kFrench), English otherwise; the list has no words and is the same in both.
std::string_view BuiltInList();
std::string_view BuiltInIndex(int languageNumber);
std::string_view BuiltInCompleteList(int languageNumber);
std::string_view BuiltInGamePage(int languageNumber);

// The bytes of a default skin archive by its file name (kDefaultSkinFR, kDefaultSkinEN); an
// empty view for any other name.
std::string_view DefaultSkinArchive(std::string_view fileName);

// True when the skin name's last four characters, lower-cased, are ".zip".
bool IsSkinArchiveName(std::string_view skinName);

// The skins a combo box offers: every entry of HTML/ whose name ends in ".skin" (folders and,
// as the listing gives them, plain files too), then every file ending in ".skin.zip", each by
// its name with the extension, in name order within each group.
std::vector<std::string> ListSkins(const std::string& appFolder);

// The folder of the skin named `skinName`, with a final separator, in `folder`:
// - an empty name gives HTML/ itself;
// - an archive is unpacked (hidden) into ctx.TempFolder, which is not emptied first, and
//   TempFolder is then the skin folder; when it can't be unpacked the user is shown message 143
//   under the title message 29, and the result is false;
// - any other name is HTML/name with a separator added; whether it exists isn't tested.
bool ResolveSkinFolder(AppContext& ctx, const std::string& skinName, std::string& folder);

// Reads a whole file into `text`, byte for byte. False (and `text` empty) when it can't be read.
bool LoadTemplate(const std::string& path, std::string& text);
// Writes a page byte for byte, replacing an older file. False when it can't be written.
bool WritePage(const std::string& path, std::string_view text);

// Copies every file of `skinFolder` whose name begins with `baseName` (the pattern
// "<baseName>*.*", case ignored) into `destFolder`. With `keepExisting`, a file of the same name
// that is already there is left as it is; otherwise it is replaced. Failures pass unnoticed.
void CopyCompanions(const std::string& skinFolder, std::string_view baseName,
                    const std::string& destFolder, bool keepExisting);

// The templates of a site, and where each is looked for.
enum class SkinPage { Index, Rom, ListRoms, Genre, Category, Manufacturer, Year, VerAdded };

struct SkinTemplate {
  std::string text;
  // The skin file whose text this is ("genre.htm", or "list.htm" standing in); empty when the
  // built-in text is used.
  std::string fileName;
};

// The template file of a page ("rom.htm", "genre.htm"...).
std::string_view SkinPageFile(SkinPage page);

// Finds a site template by its chain: the page's own file in the skin folder, then for the five
// group pages list.htm, then the built-in text (the built-in list for the group pages) in the
// language given. Companions are copied to `destFolder` when it isn't empty: those of the file
// that was used, and for the game page rom*.* always, even with the built-in text.
SkinTemplate LoadSiteTemplate(const std::string& skinFolder, SkinPage page, int languageNumber,
                              const std::string& destFolder);

// The page of a search result for one game, as the search dialog's Show makes it. The template
// is search.htm of the skin: HTML/search.htm with no skin, written there from the built-in game
// page when it is missing; with a skin, its search.htm, and when that is missing the built-in
// game page is written there and used. The page is filled for `romName` (not in site mode) and
// written to `outPath`, by default "Found.htm" in the temporary folder. The files search*.* of a
// folder skin (or of HTML/ with no skin) are copied beside the page unless a file of the name is
// there already, so that relative references work; an archive's files are in the temporary
// folder already (and are copied beside a page written elsewhere).
// Gives the path of the page; empty when the skin archive can't be unpacked (the user has been
// told) or the page can't be written.
std::string MakeFoundPage(AppContext& ctx, const std::string& skinName, const std::string& romName,
                          const GamePageOptions& options, const std::string& outPath = {});

}  // namespace tessarin
