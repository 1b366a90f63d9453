#include "archive/zipreader.h"

#include <gtest/gtest.h>

#include <chrono>

#include "archive/zippath.h"
#include "generatedzips.h"
#include "ziptestutil.h"

namespace tessarin {
namespace {

using testing::GeneratedZips;
using testing::ListTree;
using testing::RawZip;
using testing::ReadAll;
using testing::TempFolder;
using testing::WriteAll;
namespace fs = std::filesystem;

// Records the events of a reader.
struct Recorder {
  std::vector<std::string> statuses;
  std::vector<std::pair<int, std::string>> errors;
  std::vector<int> percents;
  std::vector<std::string> logLines;
  int cancelAt = -1;  // percent at which to ask for a cancel

  void Attach(ZipExtractionClass& zip) {
    zip.Status = [this](const std::string& t) { statuses.push_back(t); };
    zip.ZipError = [this](int c, const std::string& t) { errors.emplace_back(c, t); };
    zip.Progress = [this](int p, bool& cancel) {
      percents.push_back(p);
      if (cancelAt >= 0 && p >= cancelAt) cancel = true;
    };
    zip.LogLine = [this](const std::string& l) { logLines.push_back(l); };
  }
  bool HasError(int code) const {
    for (const auto& e : errors) {
      if (e.first == code) return true;
    }
    return false;
  }
};

TEST(ZipReader, OpensAndDescribesEntries) {
  TempFolder tmp("zr-open");
  RawZip raw;
  raw.Add("docs/readme.txt", std::string(500, 'a'), true);
  raw.Add("b.bin", "0123456789", false);
  raw.comment = "hello";
  raw.Write(tmp / "t.zip");

  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_TRUE(zip.ZipIsOpen());
  EXPECT_EQ(zip.FileCount(), 2);
  EXPECT_EQ(zip.filename(1), "docs\\readme.txt");
  EXPECT_EQ(zip.filename(2), "b.bin");
  EXPECT_EQ(zip.filename(3), "");
  EXPECT_EQ(zip.FileUncompressedSize(1), 500u);
  EXPECT_LT(zip.FileCompressedSize(1), 500u);
  EXPECT_EQ(zip.FileCompressedSize(2), 10u);
  EXPECT_EQ(zip.ZipComment(), "hello");
  EXPECT_FALSE(zip.ZLibVersion().empty());
  // 0x5a21 is 2025-01-01, 0x6000 is 12:00:00.
  const ZipDateTime when = zip.FileDateAndTime(1);
  EXPECT_EQ(when.year, 2025);
  EXPECT_EQ(when.month, 1);
  EXPECT_EQ(when.day, 1);
  EXPECT_EQ(when.hour, 12);
  EXPECT_EQ(when.ToText(), "01/01/2025 12:00:00");
  EXPECT_EQ(rec.statuses, (std::vector<std::string>{"Ouverture du Zip", "Zip ouvert"}));
  EXPECT_TRUE(rec.errors.empty());
  zip.ZipClose();
  EXPECT_FALSE(zip.ZipIsOpen());
  EXPECT_EQ(rec.statuses.back(), "Zip fermé");
}

TEST(ZipReader, ExtractAllWritesTreeAndStatuses) {
  TempFolder tmp("zr-all");
  RawZip raw;
  raw.Add("docs/readme.txt", std::string(500, 'a'), true);
  raw.Add("b.bin", "0123456789", false);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  rec.statuses.clear();
  ASSERT_TRUE(zip.ExtractAllFiles(tmp / "out/deeper", true, true));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/deeper/docs/readme.txt"), std::string(500, 'a'));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/deeper/b.bin"), "0123456789");
  EXPECT_EQ(rec.statuses,
            (std::vector<std::string>{"Début d'extraction", "docs\\readme.txtExtraction ...\\",
                                      "b.binExtraction ...\\", "Extraction terminée"}));
  EXPECT_EQ(rec.percents, (std::vector<int>{50, 100}));
  EXPECT_TRUE(rec.errors.empty());

  // Without folders only the names behind the last separator are kept.
  ASSERT_TRUE(zip.ExtractAllFiles(tmp / "flat", false, true));
  EXPECT_EQ(ListTree(tmp.Path() / "flat"), (std::vector<std::string>{"b.bin", "readme.txt"}));
}

TEST(ZipReader, OnlyFoldersGiveNoEntriesAndExtractAllSucceeds) {
  TempFolder tmp("zr-folders");
  RawZip raw;
  raw.Add("a/", "", false);
  raw.Add("a/b/", "", false);
  raw.Add("empty.txt", "", false);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_EQ(zip.FileCount(), 0);
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_TRUE(ListTree(tmp.Path() / "out").empty());
}

TEST(ZipReader, EmptyArchiveAndSplitArchive) {
  TempFolder tmp("zr-empty");
  RawZip empty;
  empty.Write(tmp / "empty.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "empty.zip"));
  EXPECT_EQ(zip.FileCount(), 0);
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));

  // The last part of an archive split over disks: the directory is said to be on another disk.
  RawZip raw;
  raw.Add("a.txt", "alpha", false);
  std::string bytes = raw.Bytes();
  bytes[bytes.size() - 22 + 4] = '\x01';
  testing::WriteAll(tmp.Path() / "split.zip", bytes);
  ASSERT_TRUE(zip.ZipOpen(tmp / "split.zip"));
  rec.statuses.clear();
  EXPECT_FALSE(zip.ExtractAllFiles(tmp / "split", true, true));
  EXPECT_EQ(rec.statuses, (std::vector<std::string>{"Début d'extraction", "Extraction terminée"}));
  EXPECT_TRUE(ListTree(tmp.Path() / "split").empty());
  EXPECT_TRUE(rec.errors.empty());
}

TEST(ZipReader, ColonInNameBecomesUnderscore) {
  TempFolder tmp("zr-colon");
  RawZip raw;
  raw.Add("game:1.txt", "one", false);
  raw.Add("dir/x:y:z.txt", "two", true);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  ASSERT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_EQ(ListTree(tmp.Path() / "out"),
            (std::vector<std::string>{"dir/x_y_z.txt", "game_1.txt"}));
}

TEST(ZipReader, BadCrcStoredIsWrittenDeflatedIsNot) {
  TempFolder tmp("zr-crc");
  RawZip raw;
  raw.Add("stored.txt", "stored data", false).crc ^= 0x1234;
  raw.Add("deflated.txt", std::string(300, 'z'), true).crc ^= 0x1234;
  raw.Add("good.txt", "fine", true);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/stored.txt"), "stored data");
  EXPECT_FALSE(fs::exists(tmp.Path() / "out/deflated.txt"));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/good.txt"), "fine");
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, 5);
  EXPECT_EQ(rec.errors[0].second, "Erreur de checksum dans deflated.txt");
}

TEST(ZipReader, UnknownMethodRaisesFourAndGoesOn) {
  TempFolder tmp("zr-method");
  RawZip raw;
  raw.Add("bzip.txt", "pretend bzip2", false).method = 12;
  raw.Add("next.txt", "next one", true);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, 4);
  EXPECT_EQ(rec.errors[0].second, "La méthode de compression pour bzip.txt n'est pas supportée");
  EXPECT_FALSE(fs::exists(tmp.Path() / "out/bzip.txt"));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/next.txt"), "next one");
}

TEST(ZipReader, NonZipAndMissingFile) {
  TempFolder tmp("zr-nonzip");
  WriteAll(tmp.Path() / "text.zip", "this is not a zip at all, only words\n");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  EXPECT_FALSE(zip.ZipOpen(tmp / "text.zip"));
  EXPECT_FALSE(zip.ZipIsOpen());
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, 2);
  EXPECT_EQ(rec.errors[0].second, "Le fichier " + (tmp / "text.zip") + " n'est pas un fichier Zip");

  rec.errors.clear();
  EXPECT_FALSE(zip.ZipOpen(tmp / "missing.zip"));
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, 10);
  EXPECT_EQ(rec.errors[0].second, "Le fichier " + (tmp / "missing.zip") + " n'existe pas");

  WriteAll(tmp.Path() / "empty.zip", "");
  EXPECT_FALSE(zip.ZipOpen(tmp / "empty.zip"));

  rec.errors.clear();
  EXPECT_FALSE(zip.ExtractAllFiles(tmp / "out", true, true));
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, 3);
  EXPECT_EQ(rec.errors[0].second, "Il n'y a pas de fichier Zip ouvert");
}

TEST(ZipReader, CommentHoldingTheEndSignature) {
  TempFolder tmp("zr-comment");
  RawZip raw;
  raw.Add("a.txt", "alpha", false);
  static const char kComment[] = "x PK\x05\x06 y PK\x05\x06\x01\x02 end";
  raw.comment = std::string(kComment, sizeof kComment - 1);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_EQ(zip.ZipComment(), raw.comment);
  EXPECT_EQ(zip.FileCount(), 1);

  ASSERT_TRUE(zip.ZipOpen((GeneratedZips() / "py_comment.zip").string()));
  EXPECT_EQ(zip.ZipComment(),
            std::string("before PK\x05\x06 after, the signature sits in the comment"));
  ASSERT_EQ(zip.FileCount(), 1);
  std::string content;
  ASSERT_TRUE(zip.ExtractToMemory(1, content));
  EXPECT_EQ(content, "alpha\n");
}

TEST(ZipReader, ExistingTargetWithoutOverwrite) {
  TempFolder tmp("zr-exists");
  RawZip raw;
  raw.Add("a.txt", "new", false);
  raw.Write(tmp / "t.zip");
  WriteAll(tmp.Path() / "out/a.txt", "old");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, false));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/a.txt"), "old");
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, 11);
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/a.txt"), "new");
}

TEST(ZipReader, CancelEndsWithFalseAndNoFinalStatus) {
  TempFolder tmp("zr-cancel");
  RawZip raw;
  for (int i = 0; i < 4; ++i) raw.Add("f" + std::to_string(i), "data", false);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  rec.cancelAt = 50;
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_FALSE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_EQ(ListTree(tmp.Path() / "out"), (std::vector<std::string>{"f0", "f1"}));
  EXPECT_NE(rec.statuses.back(), "Extraction terminée");
}

TEST(ZipReader, ExtractSingleFileWritesOnlyThatEntry) {
  TempFolder tmp("zr-single");
  RawZip raw;
  raw.Add("one/a.txt", "A", false);
  raw.Add("two/b.txt", "B", true);
  raw.Add("c.txt", "C", false);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_TRUE(zip.ExtractSingleFile(2, tmp / "out", true, true));
  EXPECT_EQ(ListTree(tmp.Path() / "out"), (std::vector<std::string>{"two/b.txt"}));
  EXPECT_EQ(rec.percents, (std::vector<int>{100, 100, 100}));
}

TEST(ZipReader, FindEntryIgnoresCaseAndSeparator) {
  TempFolder tmp("zr-find");
  RawZip raw;
  raw.Add("Snap/PacMan.png", "png1", false);
  raw.Add("snap/pacman.png", "png2", false);  // a second one of the same name: the first wins
  raw.Add("other.png", "png3", false);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_EQ(zip.FindEntry("snap/pacman.png"), 1);
  EXPECT_EQ(zip.FindEntry("SNAP\\PACMAN.PNG"), 1);
  EXPECT_EQ(zip.FindEntry("other.png"), 3);
  EXPECT_EQ(zip.FindEntry("pacman.png"), 0);
  std::string content;
  ASSERT_TRUE(zip.ExtractToMemory(zip.FindEntry("Other.PNG"), content));
  EXPECT_EQ(content, "png3");
}

// --- Hostile archives -------------------------------------------------------------------

TEST(ZipReaderHostile, TraversalNamesNeverLeaveTheDestination) {
  TempFolder tmp("zr-traversal");
  RawZip raw;
  raw.Add("../evil1.txt", "x", false);
  raw.Add("a/../../evil2.txt", "x", true);
  raw.Add("/tmp/evil3.txt", "x", false);
  raw.Add("..\\evil4.txt", "x", false);
  raw.Add("C:\\evil5.txt", "x", false);
  raw.Add("c:/evil6.txt", "x", false);
  raw.Add("a/b/../../../evil7.txt", "x", false);
  raw.Add("\\evil8.txt", "x", false);
  raw.Add("..", "x", false);
  raw.Add(std::string("nul\0evil9.txt", 13), "x", false);
  raw.Add("ok/./fine.txt", "fine", false);
  raw.Write(tmp / "t.zip");
  const fs::path dest = tmp.Path() / "a" / "b" / "dest";
  for (const bool keep : {true, false}) {
    ZipExtractionClass zip;
    Recorder rec;
    rec.Attach(zip);
    ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
    EXPECT_TRUE(zip.ExtractAllFiles(dest.string(), keep, true));
    int refused = 0;
    for (const auto& e : rec.errors) {
      EXPECT_EQ(e.first, 7) << e.second;
      ++refused;
    }
    EXPECT_EQ(refused, 10);
    EXPECT_EQ(rec.logLines.size(), 10u);
    EXPECT_NE(rec.logLines[0].find("..\\evil1.txt"), std::string::npos);
    // The whole temporary tree holds the zip and the one good file, nothing else.
    std::vector<std::string> all = ListTree(tmp.Path());
    EXPECT_EQ(all, (std::vector<std::string>{keep ? "a/b/dest/ok/fine.txt" : "a/b/dest/fine.txt",
                                             "t.zip"}));
    fs::remove_all(dest);
  }
}

TEST(ZipReaderHostile, SafeEntryParts) {
  EXPECT_EQ(SafeEntryParts("a\\b\\c.txt"), (std::vector<std::string>{"a", "b", "c.txt"}));
  EXPECT_EQ(SafeEntryParts("a//./b:c"), (std::vector<std::string>{"a", "b_c"}));
  EXPECT_FALSE(SafeEntryParts("..\\x"));
  EXPECT_FALSE(SafeEntryParts("x\\..\\y"));
  EXPECT_FALSE(SafeEntryParts("Z:x"));
  EXPECT_FALSE(SafeEntryParts("/x"));
  EXPECT_FALSE(SafeEntryParts(""));
  EXPECT_FALSE(SafeEntryParts("./"));
  EXPECT_TRUE(SafeEntryParts("..."));  // a plain, odd file name
  EXPECT_TRUE(SafeEntryParts("1:x"));  // no drive letter: the colon becomes '_'
}

TEST(ZipReaderHostile, SizesThatLie) {
  TempFolder tmp("zr-lies");
  const std::string text(4000, 'q');
  RawZip raw;
  // Compressed size pointing past the end of the file.
  auto& past = raw.Add("past.txt", text, true);
  past.compressedSize = 0x7ffffff0;
  // Uncompressed size smaller than the data really is.
  raw.Add("small.txt", text, true).uncompressedSize = 100;
  // Uncompressed size far bigger than the data: no buffer of that size may be made.
  auto& huge = raw.Add("huge.txt", text, true);
  huge.uncompressedSize = 0xfffffff0u;
  huge.centralUncompressed = 0xfffffff0u;
  // A stored entry longer than the file.
  raw.Add("storedpast.txt", "abc", false).compressedSize = 0x10000000;
  // A local header offset past the end.
  raw.Add("offset.txt", "abc", false).offsetOverride = 0x7fff0000;
  raw.Add("good.txt", "good", true);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  ASSERT_EQ(zip.FileCount(), 6);
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_EQ(ListTree(tmp.Path() / "out"), (std::vector<std::string>{"good.txt"}));
  ASSERT_EQ(rec.errors.size(), 5u);
  EXPECT_EQ(rec.errors[0], std::make_pair(6, std::string("Le fichier past.txt est endommagé")));
  EXPECT_EQ(rec.errors[1].first, 5);
  EXPECT_EQ(rec.errors[2].first, 5);
  EXPECT_EQ(rec.errors[3].first, 6);
  EXPECT_EQ(rec.errors[4].first, 6);
  std::string content;
  EXPECT_FALSE(zip.ExtractToMemory(3, content, 1 << 20));  // bigger than allowed
  EXPECT_TRUE(content.empty());
}

TEST(ZipReaderHostile, DirectoryThatLies) {
  TempFolder tmp("zr-dirlies");
  RawZip raw;
  raw.Add("a.txt", "alpha", false);
  raw.Add("b.txt", "beta", false);
  std::string bytes = raw.Bytes();
  const std::size_t end = bytes.size() - 22;
  // The entry count claims 65,535 entries: the two real ones are read, and no more.
  std::string many = bytes;
  many[end + 8] = many[end + 10] = '\xff';
  many[end + 9] = many[end + 11] = '\xff';
  WriteAll(tmp.Path() / "many.zip", many);
  ZipExtractionClass zip;
  ASSERT_TRUE(zip.ZipOpen(tmp / "many.zip"));
  EXPECT_EQ(zip.FileCount(), 2);
  // The directory's offset points past the end: no zip.
  std::string offset = bytes;
  offset[end + 19] = '\x7f';
  WriteAll(tmp.Path() / "offset.zip", offset);
  EXPECT_FALSE(zip.ZipOpen(tmp / "offset.zip"));
  // The directory's size is larger than the file.
  std::string size = bytes;
  size[end + 15] = '\x40';
  WriteAll(tmp.Path() / "size.zip", size);
  EXPECT_FALSE(zip.ZipOpen(tmp / "size.zip"));
  // A name length that runs past the directory stops the reading there.
  std::string name = bytes;
  const std::size_t second =
      name.find(std::string("PK\x01\x02", 4), name.find(std::string("PK\x01\x02", 4)) + 4);
  name[second + 28] = '\xff';
  WriteAll(tmp.Path() / "name.zip", name);
  ASSERT_TRUE(zip.ZipOpen(tmp / "name.zip"));
  EXPECT_EQ(zip.FileCount(), 1);
}

TEST(ZipReaderHostile, EveryTruncationIsHandled) {
  TempFolder tmp("zr-trunc");
  RawZip raw;
  raw.Add("a/one.txt", std::string(2000, 'a'), true);
  raw.Add("two.txt", "two two two", false);
  raw.comment = "comment";
  const std::string bytes = raw.Bytes();
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    WriteAll(tmp.Path() / "cut.zip", bytes.substr(0, cut));
    // Cut from the front too: what is left may look like a zip with its offsets wrong.
    WriteAll(tmp.Path() / "front.zip", bytes.substr(cut));
    for (const char* name : {"cut.zip", "front.zip"}) {
      ZipExtractionClass zip;
      if (zip.ZipOpen(tmp / name)) zip.ExtractAllFiles(tmp / "out", true, true);
      std::string content;
      for (int i = 1; i <= zip.FileCount(); ++i) zip.ExtractToMemory(i, content);
    }
  }
  for (const std::string& file : ListTree(tmp.Path())) {
    EXPECT_TRUE(file == "cut.zip" || file == "front.zip" || file == "out/a/one.txt" ||
                file == "out/two.txt")
        << file;
  }
}

// --- Archives of other programs -----------------------------------------------------------

struct Expected {
  std::string name;
  std::string content;
};

void ExpectArchive(const std::string& file, const std::vector<Expected>& expected, int fileCount) {
  SCOPED_TRACE(file);
  TempFolder tmp("zr-foreign");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen((GeneratedZips() / file).string()));
  EXPECT_EQ(zip.FileCount(), fileCount);
  EXPECT_TRUE(zip.ExtractAllFiles(tmp.Text(), true, true));
  EXPECT_TRUE(rec.errors.empty()) << (rec.errors.empty() ? "" : rec.errors[0].second);
  for (const Expected& e : expected) {
    EXPECT_EQ(ReadAll(tmp.Path() / e.name), e.content) << e.name;
  }
  EXPECT_EQ(ListTree(tmp.Path()).size(), static_cast<std::size_t>(fileCount));
}

std::string FoxText() {
  std::string text;
  for (int i = 0; i < 40; ++i) text += "The quick brown fox jumps over the lazy dog.\n";
  return text;
}

TEST(ZipReaderForeign, PythonZipfile) {
  ExpectArchive("py_stored.zip",
                {{"readme.txt", FoxText()}, {"docs/inner/deep.txt", "deep file\n"}}, 2);
  std::string png = "\x89PNG";
  for (int k = 0; k < 8; ++k) {
    for (int i = 0; i < 256; ++i) png += static_cast<char>(i);
  }
  ExpectArchive("py_deflated.zip", {{"readme.txt", FoxText()}, {"snap/pacman.png", png}}, 2);
  std::string second;
  for (int i = 0; i < 10; ++i) second += "second entry\n";
  ExpectArchive("py_descriptor.zip", {{"streamed.txt", FoxText()}, {"second.txt", second}}, 2);
  ExpectArchive("py_zip64.zip", {{"forced64.txt", FoxText()}}, 1);
  ExpectArchive("py_comment.zip", {{"a.txt", "alpha\n"}}, 1);

  ZipExtractionClass zip;
  ASSERT_TRUE(zip.ZipOpen((GeneratedZips() / "py_deflated.zip").string()));
  const ZipDateTime when = zip.FileDateAndTime(zip.FindEntry("snap/pacman.png"));
  EXPECT_EQ(when.ToText(), "17/05/2001 13:45:30");
}

TEST(ZipReaderForeign, InfoZip) {
  std::string notes;
  for (int i = 0; i < 60; ++i)
    notes += "line " + std::to_string(i) + " of a text that deflates well\n";
  const std::vector<Expected> tree = {
      {"tree/notes.txt", notes}, {"tree/sub/inner.txt", "inner file\n"}, {"tree/one.bin", "x"}};
  ExpectArchive("iz_deflated.zip", tree, 3);
  ExpectArchive("iz_stored.zip", tree, 3);
  ExpectArchive("iz_descriptor.zip", tree, 3);
  ExpectArchive("iz_zip64.zip", tree, 3);
  ExpectArchive("iz_comment.zip", {{"tree/notes.txt", notes}}, 1);
  ZipExtractionClass zip;
  ASSERT_TRUE(zip.ZipOpen((GeneratedZips() / "iz_comment.zip").string()));
  EXPECT_EQ(zip.ZipComment(), "Rom pack comment");
}

TEST(ZipReaderForeign, SeventyThousandEntriesByName) {
  ZipExtractionClass zip;
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(zip.ZipOpen((GeneratedZips() / "many.zip").string()));
  const auto opened = std::chrono::steady_clock::now();
  EXPECT_EQ(zip.FileCount(), 70000);
  const int entry = zip.FindEntry("IMG/pic65432.png");
  ASSERT_GT(entry, 0);
  EXPECT_EQ(zip.filename(entry), "img\\pic65432.png");
  std::string content;
  ASSERT_TRUE(zip.ExtractToMemory(entry, content));
  EXPECT_EQ(content, "p65432");
  TempFolder tmp("zr-many");
  ASSERT_TRUE(zip.ExtractSingleFile(zip.FindEntry("img/pic00007.png"), tmp.Text(), false, true));
  EXPECT_EQ(ReadAll(tmp.Path() / "pic00007.png"), "p00007");
  // Generous bound: the open reads 8 MB of directory and should take a few tens of ms.
  EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(opened - start).count(), 3000);
}

// A Zip64 archive past 4 GiB, made sparse so that it costs no disk: a stored entry of 4.5 GiB
// of zeros (never extracted) and a small entry behind it, whose local header offset and the
// directory's offset need the Zip64 fields.
TEST(ZipReaderForeign, Zip64PastFourGigabytes) {
  TempFolder tmp("zr-big");
  const fs::path path = tmp.Path() / "big.zip";
  const std::uint64_t bigSize = 4500ull * 1024 * 1024;
  std::string head;
  RawZip::P32(head, 0x04034b50);
  RawZip::P16(head, 45);
  RawZip::P16(head, 0);
  RawZip::P16(head, 0);
  RawZip::P16(head, 0);
  RawZip::P16(head, 0x21);
  RawZip::P32(head, 0);
  RawZip::P32(head, 0xffffffffu);
  RawZip::P32(head, 0xffffffffu);
  RawZip::P16(head, 7);
  RawZip::P16(head, 20);
  head += "big.bin";
  RawZip::P16(head, 1);
  RawZip::P16(head, 16);
  RawZip::P64(head, bigSize);
  RawZip::P64(head, bigSize);
  const std::uint64_t smallOffset = head.size() + bigSize;
  const std::string small = "the small one";
  std::string tail;
  RawZip::P32(tail, 0x04034b50);
  RawZip::P16(tail, 20);
  RawZip::P16(tail, 0);
  RawZip::P16(tail, 0);
  RawZip::P16(tail, 0);
  RawZip::P16(tail, 0x21);
  RawZip::P32(tail, testing::Crc(small));
  RawZip::P32(tail, static_cast<std::uint32_t>(small.size()));
  RawZip::P32(tail, static_cast<std::uint32_t>(small.size()));
  RawZip::P16(tail, 9);
  RawZip::P16(tail, 0);
  tail += "small.txt";
  tail += small;
  const std::uint64_t cdOffset = smallOffset + tail.size();
  std::string cd;
  auto central = [&](const std::string& name, std::uint32_t crc, std::uint64_t size,
                     std::uint64_t offset, bool bigSizes) {
    RawZip::P32(cd, 0x02014b50);
    RawZip::P16(cd, 45);
    RawZip::P16(cd, 45);
    RawZip::P16(cd, 0);
    RawZip::P16(cd, 0);
    RawZip::P16(cd, 0);
    RawZip::P16(cd, 0x21);
    RawZip::P32(cd, crc);
    RawZip::P32(cd, bigSizes ? 0xffffffffu : static_cast<std::uint32_t>(size));
    RawZip::P32(cd, bigSizes ? 0xffffffffu : static_cast<std::uint32_t>(size));
    RawZip::P16(cd, static_cast<std::uint32_t>(name.size()));
    const bool bigOffset = offset >= 0xffffffffu;
    RawZip::P16(cd, (bigSizes ? 16 : 0) + (bigOffset ? 8 : 0) + 4);
    RawZip::P16(cd, 0);
    RawZip::P16(cd, 0);
    RawZip::P16(cd, 0);
    RawZip::P32(cd, 0);
    RawZip::P32(cd, bigOffset ? 0xffffffffu : static_cast<std::uint32_t>(offset));
    cd += name;
    RawZip::P16(cd, 1);
    RawZip::P16(cd, (bigSizes ? 16 : 0) + (bigOffset ? 8 : 0));
    if (bigSizes) {
      RawZip::P64(cd, size);
      RawZip::P64(cd, size);
    }
    if (bigOffset) RawZip::P64(cd, offset);
  };
  central("big.bin", 0, bigSize, 0, true);
  central("small.txt", testing::Crc(small), small.size(), smallOffset, false);
  const std::uint64_t zip64End = cdOffset + cd.size();
  RawZip::P32(cd, 0x06064b50);
  RawZip::P64(cd, 44);
  RawZip::P16(cd, 45);
  RawZip::P16(cd, 45);
  RawZip::P32(cd, 0);
  RawZip::P32(cd, 0);
  RawZip::P64(cd, 2);
  RawZip::P64(cd, 2);
  RawZip::P64(cd, zip64End - cdOffset);
  RawZip::P64(cd, cdOffset);
  RawZip::P32(cd, 0x07064b50);
  RawZip::P32(cd, 0);
  RawZip::P64(cd, zip64End);
  RawZip::P32(cd, 1);
  RawZip::P32(cd, 0x06054b50);
  RawZip::P16(cd, 0);
  RawZip::P16(cd, 0);
  RawZip::P16(cd, 2);
  RawZip::P16(cd, 2);
  RawZip::P32(cd, 0xffffffffu);
  RawZip::P32(cd, 0xffffffffu);
  RawZip::P16(cd, 0);
  {
    std::ofstream out(path, std::ios::binary);
    out << head;
    out.seekp(static_cast<std::streamoff>(smallOffset));
    out << tail << cd;
  }
  ASSERT_EQ(fs::file_size(path), cdOffset + cd.size());

  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(path.string()));
  ASSERT_EQ(zip.FileCount(), 2);
  EXPECT_EQ(zip.FileUncompressedSize(1), bigSize);
  EXPECT_EQ(zip.Entry(2).localHeaderOffset, smallOffset);
  ASSERT_TRUE(zip.ExtractSingleFile(2, tmp / "out", false, true));
  EXPECT_EQ(ReadAll(tmp.Path() / "out/small.txt"), small);
  EXPECT_TRUE(rec.errors.empty());
  // Python's zipfile reads the same file the same way: the test archive itself is sound.
  EXPECT_EQ(testing::Shell("python3 -c " +
                           testing::Quote("import sys,zipfile; z=zipfile.ZipFile(sys.argv[1]); "
                                          "sys.exit(0 if z.read('small.txt')==b'the small one' "
                                          "else 1)") +
                           " " + testing::Quote(path.string())),
            0);
}

}  // namespace
TEST(ZipReader, EntriesThatShareTheirBytesAreRefused) {
  TempFolder tmp("zr-overlap");
  const std::string text(5000, 'z');
  RawZip raw;
  raw.Add("one.txt", text, true);
  // A second entry on the first one's local header: the same bytes written twice.
  raw.Add("two.txt", text, true).offsetOverride = 0;
  raw.Write(tmp / "bomb.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  EXPECT_FALSE(zip.ZipOpen(tmp / "bomb.zip"));
  EXPECT_FALSE(zip.ZipIsOpen());
  EXPECT_EQ(zip.FileCount(), 0);
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, kZipOverlapping);
  EXPECT_NE(rec.errors[0].second.find("bomb.zip"), std::string::npos);
}

TEST(ZipReader, AnExtractionThatWouldNotFitStopsWithAClearError) {
  TempFolder tmp("zr-space");
  RawZip raw;
  raw.Add("a.txt", std::string(600, 'a'), true);
  raw.Add("b.txt", std::string(600, 'b'), true);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  std::vector<std::string> logged;
  zip.LogLine = [&](const std::string& line) { logged.push_back(line); };
  zip.FreeSpace = [](const fs::path&) -> std::uint64_t { return 1000; };
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_FALSE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_TRUE(ListTree(tmp.Path() / "out").empty());
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, kZipNoSpace);
  EXPECT_NE(rec.errors[0].second.find("1200 octets > 1000"), std::string::npos);
  ASSERT_EQ(logged.size(), 1u);
  // One entry alone fits.
  rec.errors.clear();
  EXPECT_TRUE(zip.ExtractSingleFile(1, tmp / "out", true, true));
  EXPECT_EQ(ListTree(tmp.Path() / "out"), (std::vector<std::string>{"a.txt"}));
}

#ifndef _WIN32
TEST(ZipReader, ALinkInsideTheDestinationIsNotFollowedOutOfIt) {
  TempFolder tmp("zr-link");
  fs::create_directories(tmp.Path() / "out");
  fs::create_directories(tmp.Path() / "elsewhere");
  fs::create_directory_symlink(tmp.Path() / "elsewhere", tmp.Path() / "out/link");
  RawZip raw;
  raw.Add("link/evil.txt", "evil", false);
  raw.Add("fine/good.txt", "good", false);
  raw.Write(tmp / "t.zip");
  ZipExtractionClass zip;
  Recorder rec;
  rec.Attach(zip);
  ASSERT_TRUE(zip.ZipOpen(tmp / "t.zip"));
  EXPECT_TRUE(zip.ExtractAllFiles(tmp / "out", true, true));
  EXPECT_FALSE(fs::exists(tmp.Path() / "elsewhere/evil.txt"));
  EXPECT_TRUE(fs::exists(tmp.Path() / "out/fine/good.txt"));
  ASSERT_EQ(rec.errors.size(), 1u);
  EXPECT_EQ(rec.errors[0].first, kZipUnsafeName);
}
#endif

}  // namespace tessarin
