#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "gamepagetestsupport.h"
#include "sheet/gamepage.h"
#include "zipworker/zipclass.h"

namespace tessarin {
namespace {

using gamepagetest::FixtureHome;
using testsupport::WriteFile;

std::string Img(const std::string& source) { return "<img border=\"0\" src=\"" + source + "\">"; }

void MakeFolder(const std::string& path) { std::filesystem::create_directories(path); }

TEST(ImageFor, AGamesOwnPictureThenItsParents) {
  FixtureHome home;
  MakeFolder(home.Path("snap"));
  home.ctx.settings.InfWrite("SnapPath", home.Path("snap"));
  WriteFile(home.Path("snap/mygame.png"), "png");
  EXPECT_EQ(ImageFor(home.ctx, "mygame", "", "Snap", ""), home.Path("snap/mygame.png"));
  // The parent here is the clone's parent.
  EXPECT_EQ(ImageFor(home.ctx, "mygamej", "mygame", "Snap", ""), home.Path("snap/mygame.png"));
  EXPECT_EQ(ImageFor(home.ctx, "lonely", "", "Snap", ""), "");
  // No setting: the application folder.
  WriteFile(home.Path("lonely.png"), "png");
  EXPECT_EQ(ImageFor(home.ctx, "lonely", "", "Titles", ""), home.Path("lonely.png"));
}

TEST(ImageFor, AnAddressFolderIsNotTested) {
  FixtureHome home;
  home.ctx.settings.InfWrite("FlyersPath", "HTTP://flyers.example.invalid/f");
  EXPECT_EQ(ImageFor(home.ctx, "nosuch", "", "Flyers", ""),
            "HTTP://flyers.example.invalid/f/nosuch.png");
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "#FLYER", 0, {}),
            Img("HTTP://flyers.example.invalid/f/mygame.png"));
}

TEST(ImageFor, PicturesOutOfTheKindsZip) {
  FixtureHome home;
  MakeFolder(home.Path("cab/pack"));
  WriteFile(home.Path("cab/pack/mygame.png"), "parent picture");
  myzip::ZipClass zip;
  ASSERT_EQ(zip.FileAdd(home.Path("cab/pack/*.*"), 0, false), 1);
  ASSERT_TRUE(zip.WriteZip(home.Path("cab/Cabinets.zip")));
  std::filesystem::remove_all(home.Path("cab/pack"));
  home.ctx.settings.InfWrite("CabinetsPath", home.Path("cab/"));
  // The clone has none of its own: the parent's comes out of the zip.
  EXPECT_EQ(ImageFor(home.ctx, "mygamej", "mygame", "Cabinets", ""), home.Path("Temp/mygame.png"));
  EXPECT_EQ(testsupport::ReadFile(home.Path("Temp/mygame.png")), "parent picture");
  EXPECT_EQ(FillGamePage(home.ctx, "mygamej", "#CABINET", 0, {}),
            Img("file://" + home.Path("Temp/mygame.png")));
}

TEST(ImageFor, ASiteUsesItsOwnCopies) {
  FixtureHome home;
  const std::string root = home.Path("out/");
  MakeFolder(root + "tessarin/images/marquees");
  WriteFile(root + "tessarin/images/marquees/mygame.png", "png");
  // A local picture doesn't count for a site.
  WriteFile(home.Path("lonely.png"), "png");
  EXPECT_EQ(ImageFor(home.ctx, "mygame", "", "Marquees", root), "../images/marquees/mygame.png");
  EXPECT_EQ(ImageFor(home.ctx, "mygamej", "mygame", "Marquees", root),
            "../images/marquees/mygame.png");
  EXPECT_EQ(ImageFor(home.ctx, "lonely", "", "Marquees", root), "");
  GamePageOptions site;
  site.siteLinks = true;
  site.siteRoot = root;
  EXPECT_EQ(FillGamePage(home.ctx, "mygamej", "#MARQUEE", 0, site),
            Img("../images/marquees/mygame.png"));
  EXPECT_EQ(FillGamePage(home.ctx, "lonely", "#MARQUEE", 0, site), std::string(NoImageBlock()));
}

TEST(FillGamePageImages, OnlinePatternsWhenNoPictureIsAtHand) {
  FixtureHome home;
  GamePageOptions options;
  options.onlineImages = true;
  options.onlinePatterns[1] = "http://img.example.invalid/titles/#ROMNAME#.png?t=#GAMENAME#";
  options.onlinePatterns[2] = "snaps/#ROMNAME#.png";
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "#SCRTITLE", 0, options),
            Img("http://img.example.invalid/titles/mygame.png?t=My Game") +
                "<br><font size=\"1\"><a href=\"http://img.example.invalid\">from "
                "img.example.invalid</a></font>");
  // Fewer than three "/": no credit line.
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "#SNAP", 0, options), Img("snaps/mygame.png"));
  // A kind without a pattern: the no-image block.
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "#CPO", 0, options), std::string(NoImageBlock()));
  // Patterns count only with the flag on.
  options.onlineImages = false;
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "#SCRTITLE", 0, options), std::string(NoImageBlock()));
}

TEST(FillGamePageImages, ALocalPictureWinsOverTheOnlineOne) {
  FixtureHome home;
  MakeFolder(home.Path("titles"));
  home.ctx.settings.InfWrite("TitlesPath", home.Path("titles/"));
  WriteFile(home.Path("titles/mygame.png"), "png");
  GamePageOptions options;
  options.onlineImages = true;
  options.onlinePatterns[1] = "http://img.example.invalid/titles/#ROMNAME#.png";
  EXPECT_EQ(FillGamePage(home.ctx, "mygame", "#SCRTITLE", 0, options),
            Img("file://" + home.Path("titles/mygame.png")));
}

}  // namespace
}  // namespace tessarin
