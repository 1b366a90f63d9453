// The text list's pieces: the field table, the separator and settings rules, the header and the
// line format, CSV cells, and the Build button up to the file choice.

#include "lists/textlists.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/settings.h"
#include "liststestsupport.h"

namespace tessarin {
namespace {

using liststest::TestHome;

TEST(ListFields, AreTheFortySevenEntriesInOrder) {
  const auto& fields = ListFields();
  ASSERT_EQ(fields.size(), 47u);
  const char* names[] = {"RomName",
                         "GameName",
                         "Year",
                         "CloneOf",
                         "RomOf",
                         "SampleOf",
                         "Manufacturer",
                         "nPlayers",
                         "Genre",
                         "Category",
                         "VerAdded",
                         "Mature",
                         "Bios",
                         "Rom",
                         "Chip",
                         "DipSwitch",
                         "Display Type",
                         "Display Rotate",
                         "Resolution",
                         "DisplayRefresh",
                         "SoundChannels",
                         "InputPlayers",
                         "InputButtons",
                         "InputCoins",
                         "InputService",
                         "InputControlType",
                         "InputTilt",
                         "DriverStatus",
                         "DriverColor",
                         "DriverSound",
                         "DriverPaletteSize",
                         "GotIt",
                         "Cheat",
                         "Command",
                         "Hiscore",
                         "History",
                         "MameInfo",
                         "Display Aspect",
                         "DriverEmulation",
                         "DriverGraphic",
                         "DriverCocktail",
                         "DriverProtection",
                         "DriverSaveState",
                         "Runnable",
                         "SampleName",
                         "Disk",
                         "BiosSet"};
  for (size_t i = 0; i < 47; ++i) EXPECT_EQ(fields[i].name, names[i]) << i;
  EXPECT_EQ(fields[11].kind, ListFieldKind::YesNo);
  EXPECT_EQ(fields[31].kind, ListFieldKind::YesNo);
  EXPECT_EQ(fields[32].kind, ListFieldKind::YesNo);
  EXPECT_EQ(fields[34].kind, ListFieldKind::YesNo);
  EXPECT_EQ(fields[43].kind, ListFieldKind::YesNo);
  EXPECT_EQ(fields[33].kind, ListFieldKind::Present);
  EXPECT_EQ(fields[35].kind, ListFieldKind::Present);
  EXPECT_EQ(fields[36].kind, ListFieldKind::Present);
  for (size_t i : {13u, 14u, 15u, 45u, 46u}) EXPECT_EQ(fields[i].kind, ListFieldKind::Multi) << i;
  int texts = 0;
  for (const auto& f : fields) texts += f.kind == ListFieldKind::Text ? 1 : 0;
  EXPECT_EQ(texts, 47 - 5 - 3 - 5);
  EXPECT_EQ(FindListField("Display Type"), 16);
  EXPECT_EQ(FindListField("BiosSet"), 46);
  EXPECT_EQ(FindListField("biosset"), -1);
}

TEST(ListSeparator, FollowsTheRadioElseTheOtherText) {
  EXPECT_EQ(ListSeparator(SeparatorRadio::Tab, "x"), "\t");
  EXPECT_EQ(ListSeparator(SeparatorRadio::Semicolon, "x"), ";");
  EXPECT_EQ(ListSeparator(SeparatorRadio::Comma, "x"), ",");
  EXPECT_EQ(ListSeparator(SeparatorRadio::Space, "x"), " ");
  EXPECT_EQ(ListSeparator(SeparatorRadio::Other, "|"), "|");
  EXPECT_EQ(ListSeparator(SeparatorRadio::None, "|"), "|");
  // Other selected and Text1 empty: a single space; likewise with no radio at all.
  EXPECT_EQ(ListSeparator(SeparatorRadio::Other, ""), " ");
  EXPECT_EQ(ListSeparator(SeparatorRadio::None, ""), " ");
}

TEST(ListSeparator, IsStoredWithTabAsAWordAndReadBack) {
  EXPECT_EQ(SeparatorSettingText("\t"), "TAB");
  EXPECT_EQ(SeparatorSettingText(";"), ";");
  EXPECT_EQ(RadioFromSeparatorSetting(";", ""), SeparatorRadio::Semicolon);
  EXPECT_EQ(RadioFromSeparatorSetting(",", ""), SeparatorRadio::Comma);
  EXPECT_EQ(RadioFromSeparatorSetting("", "|"), SeparatorRadio::Space);
  EXPECT_EQ(RadioFromSeparatorSetting(" ", "|"), SeparatorRadio::Space);
  EXPECT_EQ(RadioFromSeparatorSetting("TAB", "|"), SeparatorRadio::Tab);
  EXPECT_EQ(RadioFromSeparatorSetting("|", "|"), SeparatorRadio::Other);
  EXPECT_EQ(RadioFromSeparatorSetting("-1", ""), SeparatorRadio::None);
  EXPECT_EQ(RadioFromSeparatorSetting("#", "|"), SeparatorRadio::None);
  // The fixed ones win over an Other text that happens to be the same.
  EXPECT_EQ(RadioFromSeparatorSetting(";", ";"), SeparatorRadio::Semicolon);
}

TEST(ListSettings, OtherTextIsTheFirstCharacter) {
  EXPECT_EQ(OtherTextFromSetting("|x"), "|");
  EXPECT_EQ(OtherTextFromSetting("-1"), "");
  EXPECT_EQ(OtherTextFromSetting(""), "");
}

TEST(ListSettings, OtherTextOutsideAsciiIsOneWholeCharacter) {
  EXPECT_EQ(OtherTextFromSetting("\xC2\xA7"), "\xC2\xA7");  // the section sign, in UTF-8
  EXPECT_EQ(OtherTextFromSetting("\xC3\xA9x"), "\xC3\xA9");
  EXPECT_EQ(OtherTextFromSetting("\xA7x"), "\xA7");  // a lone byte of an older setting
}

TEST(ListSettings, SelectionShorterOrLongerThanTheList) {
  std::vector<bool> selected(47, false);
  EXPECT_EQ(SelectionSettingText({true, false, true}), "101");
  ApplySelectionSetting("101", selected);
  EXPECT_TRUE(selected[0]);
  EXPECT_FALSE(selected[1]);
  EXPECT_TRUE(selected[2]);
  for (size_t i = 3; i < 47; ++i) EXPECT_FALSE(selected[i]) << i;
  std::vector<bool> all(47, false);
  ApplySelectionSetting(std::string(60, '1'), all);
  EXPECT_EQ(all.size(), 47u);
  for (const bool on : all) EXPECT_TRUE(on);
  // A missing key leaves the list as it is, though "-1" ends in a "1".
  std::vector<bool> none(47, false);
  ApplySelectionSetting("-1", none);
  EXPECT_FALSE(none[1]);
  std::vector<bool> keep(47, true);
  ApplySelectionSetting("", keep);
  EXPECT_TRUE(keep[0]);
}

ListSelection Select(std::initializer_list<const char*> names) {
  ListSelection selected{};
  for (const char* name : names) selected[static_cast<size_t>(FindListField(name))] = true;
  return selected;
}

TEST(TextListFormat, FirstWorkedExample) {
  TextListFormat format{";", "\"", false};
  EXPECT_EQ(TextListHeader(Select({"RomName", "GameName", "Year", "Cheat"}), format),
            "\"RomName\";\"GameName\";\"Year\";\"Cheat\";");
  std::string line;
  FormatListLine({"mygame", "My Game", "1980", "False"}, format, line);
  EXPECT_EQ(line, "\"mygame\";\"My Game\";\"1980\";\"False\"");
}

TEST(TextListFormat, SecondWorkedExampleDropsOneOfTwoSeparators) {
  TextListFormat format{",", "", false};
  // The example shows Chip behind Cheat; a real list puts the columns in the table's order
  // (Chip is entry 14, Cheat 32), which the end-to-end test checks. The line rule is the same.
  std::string line;
  FormatListLine(
      {"mygame", "My Game", "1980", "False", "cpu", "cpu0", "1000000", "audio", "speaker", ""},
      format, line);
  EXPECT_EQ(line, "mygame,My Game,1980,False,cpu,cpu0,1000000,audio,speaker,");
  EXPECT_EQ(TextListHeader(Select({"RomName", "GameName", "Year", "Cheat", "Chip"}), format),
            "RomName,GameName,Year,Chip,Cheat,");
}

TEST(TextListFormat, ValuesAreWrittenAsTheyStand) {
  TextListFormat format{";", "\"", false};
  std::string line;
  FormatListLine({"a;b", "say \"hi\""}, format, line);
  EXPECT_EQ(line, "\"a;b\";\"say \"hi\"\"");
  TextListFormat bare{";", "", false};
  FormatListLine({"x", "ends;"}, bare, line);
  // Only the one separator behind the last cell goes.
  EXPECT_EQ(line, "x;ends;");
  FormatListLine({}, bare, line);
  EXPECT_EQ(line, "");
}

TEST(TextListFormat, ASeparatorOfSeveralBytesIsDroppedWhole) {
  TextListFormat format{"\xC2\xA7", "", false};
  std::string line;
  FormatListLine({"pacman", "1980"}, format, line);
  EXPECT_EQ(line,
            "pacman\xC2\xA7"
            "1980");
  TextListFormat quoted{"\xC2\xA7", "\"", false};
  FormatListLine({"pacman", "1980"}, quoted, line);
  EXPECT_EQ(line, "\"pacman\"\xC2\xA7\"1980\"");
}

TEST(TextListFormat, CsvQuotesOnlyWhenNeeded) {
  TextListFormat csv{",", "", true};
  EXPECT_EQ(TextListHeader(Select({"RomName", "Display Type"}), csv), "RomName,Display Type");
  std::string line;
  FormatListLine({"mygame", "My, Game", "say \"hi\"", "two\r\nlines", "", " pad"}, csv, line);
  EXPECT_EQ(line, "mygame,\"My, Game\",\"say \"\"hi\"\"\",\"two\r\nlines\",,\" pad\"");
  TextListFormat all{";", "\"", true};
  FormatListLine({"a", "b;c"}, all, line);
  EXPECT_EQ(line, "\"a\";\"b;c\"");
}

TEST(TextListFormat, CsvTextsAreUtf8) {
  std::string line;
  FormatListLine({"Pok\xE9mon", "Caf\xC3\xA9", "\x80"}, TextListFormat{",", "", true}, line);
  EXPECT_EQ(line, "Pok\xC3\xA9mon,Caf\xC3\xA9,\xE2\x82\xAC");
  // Entities the database keeps are resolved as the windows show them.
  FormatListLine({"AT&amp;T", "&lt;unknown&gt;", "VEB &quot;Karl Marx&quot;"},
                 TextListFormat{",", "", true}, line);
  EXPECT_EQ(line, "AT&T,<unknown>,\"VEB \"\"Karl Marx\"\"\"");
  // The classic list keeps the bytes as they are.
  FormatListLine({"Pok\xE9mon"}, TextListFormat{",", "", false}, line);
  EXPECT_EQ(line, "Pok\xE9mon");
}

TEST(PrepareTextList, NoFieldAsksNothingButKeepsTheSeparator) {
  TestHome home;
  TextListControls controls;
  controls.radio = SeparatorRadio::Tab;
  EXPECT_FALSE(PrepareTextList(home.ctx, controls).has_value());
  EXPECT_TRUE(home.ui.choices.empty());
  EXPECT_EQ(home.ctx.settings.InfRead("Frm7Separateur"), "TAB");
}

TEST(PrepareTextList, AsksForTheFileAndStopsOnACancel) {
  TestHome home;
  TextListControls controls;
  controls.radio = SeparatorRadio::None;
  controls.quotes = true;
  controls.selected[0] = true;
  controls.iniFile = "  names.ini ";
  EXPECT_FALSE(PrepareTextList(home.ctx, controls).has_value());
  ASSERT_EQ(home.ui.choices.size(), 1u);
  EXPECT_EQ(home.ui.choices[0].title, "Building a list");
  EXPECT_EQ(home.ui.choices[0].startPath, "List.txt");
  EXPECT_EQ(home.ui.choices[0].filter, "Text file (txt)|*.txt|All files|*.*|");
  EXPECT_TRUE(home.ui.choices[0].save);
  EXPECT_EQ(home.ctx.settings.InfRead("Frm7Separateur"), " ");

  home.ui.files.push_back(home.Path("out.txt"));
  const auto request = PrepareTextList(home.ctx, controls);
  ASSERT_TRUE(request.has_value());
  EXPECT_EQ(request->outputPath, home.Path("out.txt"));
  EXPECT_EQ(request->format.separator, " ");
  EXPECT_EQ(request->format.quote, "\"");
  EXPECT_EQ(request->iniFile, "  names.ini ");
}

TEST(ListDialogFilters, AreTheMessagesWithTheirPatterns) {
  TestHome home;
  EXPECT_EQ(IniFileFilter(home.ctx.messages), "Ini files (*.ini)|*.ini|All files |*.*|");
}

TEST(ListSkinNames, FoldersAndFilesThenArchives) {
  TestHome home;
  namespace fs = std::filesystem;
  fs::create_directories(home.Path("HTML/Zeta.skin"));
  fs::create_directories(home.Path("HTML/alpha.skin"));
  liststest::WriteFile(home.Path("HTML/Beta.skin"), "x");
  liststest::WriteFile(home.Path("HTML/Default_EN.skin.zip"), "x");
  liststest::WriteFile(home.Path("HTML/a.SKIN.ZIP"), "x");
  liststest::WriteFile(home.Path("HTML/notes.txt"), "x");
  const std::vector<std::string> expected = {"alpha.skin", "Beta.skin", "Zeta.skin", "a.SKIN.ZIP",
                                             "Default_EN.skin.zip"};
  EXPECT_EQ(ListSkinNames(home.Folder()), expected);
}

}  // namespace
}  // namespace tessarin
