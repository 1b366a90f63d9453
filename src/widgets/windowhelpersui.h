#pragma once

// The small window helpers every dialog uses: texts, choosers, placement, the custom check
// pictures and the end-of-operation message.

#include <QString>
#include <string>
#include <string_view>

class QAbstractButton;
class QLabel;
class QLineEdit;
class QWidget;

namespace tessarin {

class AppContext;

// Bytes from the program or a file as text to show: UTF-8 when valid, else Windows-1252.
QString ToQt(std::string_view bytes);
// A message with each "|" turned into a line break.
QString MessageText(std::string_view message);
// Text typed by the user, as UTF-8 bytes.
inline std::string FromQt(const QString& text) { return text.toStdString(); }

// The folder chooser. Gives the chosen folder with a final separator; on a cancel the empty
// text when `cancelKeeps`, else `startPath`.
std::string BrowseFolderDialog(QWidget* owner, const std::string& startPath,
                               const std::string& title, bool cancelKeeps);
// The open or save file chooser with a "name|pattern|..." filter; the empty text on a cancel.
std::string FileDialog(QWidget* owner, const std::string& fileName, bool save,
                       const std::string& filter, const std::string& title = {});

// Places `form` a little above the middle of `parent` (the screen when null).
void CenterForm(QWidget* form, QWidget* parent = nullptr);
// Trims the box's text and selects it all.
void SelectAllText(QLineEdit* box);
// Makes every line edit under `form` select its text when it gets the focus.
void SelectAllOnFocus(QWidget* form);
// Gives the form's text boxes and buttons a flat edge.
void FlatControls(QWidget* form);
// The system's beep; every icon gives the same sound here.
void BeepFor(int icon);

// Puts a stored top-left position on `window` when it lies on a screen; otherwise leaves it.
// Gives true when the position was applied.
bool ApplyStoredPosition(QWidget* window, int left, int top);

// The progress picture of `percent` (frame percent / 5, held between 0 and 20).
void SetProgressPicture(QLabel* target, int percent);
// Custom radio and check pictures: the state is the widget's "Tag" property ("" off, "1" on).
void SetCheckPicture(QLabel* target, bool isRadio);
void ToggleCheck(QLabel* target, bool isRadio);
QString Tag(const QWidget* target);
void SetTag(QWidget* target, const QString& tag);

// The end-of-operation message box. `frame` is restored first when it is minimised.
void ShowMessage(QWidget* frame, AppContext& ctx, bool modeless, const std::string& text,
                 const std::string& title, int icon);

}  // namespace tessarin
