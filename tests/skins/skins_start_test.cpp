// The desktop program's start writes the default skins and the help page into a fresh home.
#include <gtest/gtest.h>

#include <QTest>
#include <filesystem>

#include "app/context.h"
#include "lists/skins.h"
#include "online/urllist.h"
#include "shell/desktopshellui.h"
#include "shell/mainframe.h"
#include "support/testfiles.h"
#include "widgets/desktopui.h"

namespace tessarin {
namespace {

using testsupport::ReadFile;
using testsupport::TempFolder;
using testsupport::WriteFile;

TEST(DesktopStartSkins, AFreshHomeGetsBothDefaultSkinsAndTheHelpPage) {
  TempFolder folder;
  // Settings of an earlier run, so that no first-start dialog stops the start.
  WriteFile(folder / "Tessarin.inf", "Language=1\r\nMDIState=0\r\n");
  AppContext ctx(folder.Path());
  QtUserInterface ui(ctx);
  ctx.SetUi(&ui);
  ShellSession session;
  UrlTables sites;
  std::unique_ptr<MainFrame> frame = StartDesktop(ctx, session, ui, sites);
  ASSERT_NE(frame, nullptr);
  QTest::qWait(20);
  EXPECT_EQ(ReadFile(folder / "HTML/Default_FR.skin.zip"), DefaultSkinArchive(kDefaultSkinFR));
  EXPECT_EQ(ReadFile(folder / "HTML/Default_EN.skin.zip"), DefaultSkinArchive(kDefaultSkinEN));
  EXPECT_FALSE(DefaultSkinArchive(kDefaultSkinFR).empty());
  EXPECT_FALSE(ReadFile(folder / "HTML/help.htm").empty());
  frame->close();
  frame.reset();

  // The next start keeps a skin the user changed and writes a deleted one again.
  WriteFile(folder / "HTML/Default_FR.skin.zip", "changed by the user");
  std::filesystem::remove(folder / "HTML/Default_EN.skin.zip");
  frame = StartDesktop(ctx, session, ui, sites);
  ASSERT_NE(frame, nullptr);
  EXPECT_EQ(ReadFile(folder / "HTML/Default_FR.skin.zip"), "changed by the user");
  EXPECT_EQ(ReadFile(folder / "HTML/Default_EN.skin.zip"), DefaultSkinArchive(kDefaultSkinEN));
  frame->close();
  frame.reset();
  ctx.SetUi(nullptr);
}

}  // namespace
}  // namespace tessarin
