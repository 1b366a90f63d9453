#pragma once

#include <QDialog>
#include <functional>

#include "shell/options.h"

class QComboBox;
class QLineEdit;
class QPushButton;

namespace tessarin {

class AppContext;

// The options: language, emulator, roms, data files, picture folders, online pictures and
// search sites. Paths are saved by the save button only; the two site tables change at once.
class OptionsDialog final : public QDialog {
  Q_OBJECT
 public:
  OptionsDialog(QWidget* parent, AppContext& ctx, SiteTablesAccess sites);

  // Called after a save that changed the language, so the search dialog is built again.
  std::function<void()> LanguageChanged;

  void done(int result) override;

 private:
  void Fill();
  void OnSave();
  void OnAddSite();
  QPushButton* BrowseButton(const char* name);

  AppContext& m_ctx;
  OptionsModel m_model;
  bool m_unloaded = false;
  QComboBox* m_language;
  QLineEdit* m_emulator;
  QLineEdit* m_roms;
  QComboBox* m_dataFiles;
  QLineEdit* m_dataFilePath;
  QComboBox* m_imageKinds;
  QLineEdit* m_imagePath;
  QComboBox* m_onlineKinds;
  QLineEdit* m_onlinePattern;
  QComboBox* m_sites;
  QLineEdit* m_siteAddress;
};

}  // namespace tessarin
