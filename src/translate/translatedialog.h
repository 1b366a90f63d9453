#pragma once

#include <array>
#include <functional>
#include <string>

#include "translate/translatefiles.h"
#include "widgets/formdialog.h"

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace tessarin {

class AppContext;

// The translation window (Form8): a tick, a path and a "..." button for each of the eight data
// files, "Edit dictionaries" that prepares TRANSLATE.DIC.txt when it is missing and opens it in
// the desktop's editor, and "Translation" that translates the ticked files in place under the
// working dialog. All of the work is in dictionary.h and translatefiles.h.
class TranslateDialog final : public FormDialog {
  Q_OBJECT
 public:
  TranslateDialog(QWidget* parent, AppContext& ctx);
  ~TranslateDialog() override;

  // The buttons' actions, callable without a click.
  void Browse(int file);    // Command1(file)
  void EditDictionaries();  // Command2
  void TranslateTicked();   // Command3

  // Opens the dictionary in the desktop's program for text files; false when there is none.
  // Tests put their own here.
  std::function<bool(const std::string& path)> OpenEditor;

  TranslationPaths Paths() const;
  TranslationChecks Checks() const;
  // The last run's outcome, per file.
  const TranslationReport& LastReport() const { return m_report; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void SaveState() override;

  AppContext& m_ctx;
  std::array<QCheckBox*, kTranslationFileCount> m_checks{};
  std::array<QLabel*, kTranslationFileCount> m_checkTexts{};
  std::array<QLineEdit*, kTranslationFileCount> m_paths{};
  QPushButton* m_edit;
  QPushButton* m_translate;
  TranslationReport m_report;
};

}  // namespace tessarin
