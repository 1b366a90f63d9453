#pragma once

#include <array>
#include <memory>
#include <string>

#include "sheet/artwork.h"
#include "widgets/formdialog.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QWidget;

namespace tessarin {

class AppContext;
class GameDetailsLoader;
struct SheetText;

// The game sheet (Form5): one game's texts on three pages and its pictures in six kinds, with a
// button that fetches the missing pictures. Each opening is a window of its own; it shows the
// game it was opened for until it is closed. The texts come from ShowGameText (sheettext.h),
// the pictures from FindArtwork and the program's own PNG loader, the download from
// DownloadArtwork (artwork.h).
class GameSheetDialog final : public FormDialog {
  Q_OBJECT
 public:
  // Sets CurrentRom and runs the load step: position, kind, fonts, captions, page 0, ShowGame.
  // Sheets opened from the same parent share one details loader (its clone index) and the
  // picture zips read so far, so that only the first pays for reading them.
  GameSheetDialog(QWidget* parent, AppContext& ctx, const std::string& romName);
  ~GameSheetDialog() override;

  void ShowGame();
  void ShowPage(int page);
  void ShowArtwork(const std::string& rom, const std::string& parent, const std::string& kind);
  // Command6: fetches the six pictures of CurrentRom, then presses the Titles button.
  void Download();
  // Command5(i): shows kind i and makes it the kind on show.
  void ShowKind(int index);

  const std::string& CurrentRom() const { return m_currentRom; }
  const std::string& CurrentTitle() const { return m_currentTitle; }
  const std::string& CurrentClone() const { return m_currentClone; }
  const std::string& CurrentParent() const { return m_currentParent; }
  const std::string& CurrentArtwork() const { return m_currentArtwork; }
  int CurrentPage() const { return m_page; }
  // The picture on show, as decoded (null when Label2 tells that there is none).
  const QImage& ShownPicture() const;
  // The file of the picture on show; empty when there is none.
  const std::string& ShownFile() const { return m_shownFile; }
  // The progress steps the last ShowArtwork passed, in order.
  const std::vector<int>& ProgressSteps() const { return m_progressSteps; }

 private:
  class PictureTarget;
  void SaveState() override;
  void ApplyFonts();
  void SetProgress(int percent);
  void ShowPicture(const QImage& image);
  void Yield();

  AppContext& m_ctx;
  std::shared_ptr<GameDetailsLoader> m_loader;
  std::shared_ptr<ArtworkZipCache> m_zips;
  std::unique_ptr<PictureTarget> m_target;
  std::string m_currentRom;
  std::string m_currentTitle;
  std::string m_currentClone;
  std::string m_currentParent;
  std::string m_currentArtwork;
  std::string m_shownFile;
  std::vector<int> m_progressSteps;
  int m_page = 0;

  std::array<QWidget*, 3> m_frames{};
  QLabel* m_label1;
  std::array<QPlainTextEdit*, 9> m_text{};  // Text1 to Text8 at 1..8
  QWidget* m_pane;                          // Image1: the frame the picture lies in
  QLabel* m_picture1;
  QLabel* m_picture2;
  QLabel* m_label2;
  QLabel* m_image2;
  std::array<QPushButton*, 6> m_kindButtons{};
};

// Opens a sheet for `romName` beside the others, without blocking, and gives it; it deletes
// itself when closed. The search dialog calls this on a double click.
GameSheetDialog* OpenGameSheet(QWidget* parent, AppContext& ctx, const std::string& romName);

}  // namespace tessarin
