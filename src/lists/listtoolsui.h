#pragma once

#include "lists/textlists.h"  // IniFileFilter

// Small pieces the list tool windows share: named controls, the ini filter of their choosers and
// labels that act on the control they stand beside.

#include <QString>
#include <string>
#include <utility>

class QAbstractButton;
class QLabel;
class QPushButton;
class QWidget;

namespace tessarin {

class Messages;

// A control of type T made with `args` and the parent, under the object name `name`.
template <class T, class... Args>
T* NamedControl(QWidget* parent, const char* name, Args&&... args) {
  auto* control = new T(std::forward<Args>(args)..., parent);
  control->setObjectName(QString::fromLatin1(name));
  return control;
}

// A "..." button that opens a chooser, as narrow as its text allows.
QPushButton* BrowseButton(QWidget* parent, const char* name);

// A click on `label` clicks `target`: toggles a check box, selects a radio button.
void ClickThrough(QLabel* label, QAbstractButton* target);

}  // namespace tessarin
