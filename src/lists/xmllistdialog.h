#pragma once

#include <string>

#include "lists/initools.h"
#include "widgets/formdialog.h"

class QCheckBox;
class QLineEdit;

namespace tessarin {

class AppContext;

// The XML to list window (Form21): the rom names and/or descriptions of an emulator XML file
// written as a list, without the database.
class XmlListDialog final : public FormDialog {
  Q_OBJECT
 public:
  XmlListDialog(QWidget* parent, AppContext& ctx);
  ~XmlListDialog() override;

  // Command2; `destination` stands for the save chooser's answer when not empty.
  void MakeList(const std::string& destination = {});
  // Command1; `file` stands for the file chooser's answer when not empty.
  void BrowseSource(const std::string& file = {});
  XmlListOptions Options() const;

 private:
  void SaveState() override;

  AppContext& m_ctx;
  QLineEdit* m_source;
  QCheckBox* m_romNames;
  QCheckBox* m_gameNames;
  QCheckBox* m_addZip;
  QCheckBox* m_noClone;
};

}  // namespace tessarin
