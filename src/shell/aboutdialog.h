#pragma once

#include <QDialog>

namespace tessarin {

class AppContext;

// The version, the database version, the freeware line with its link, and a summary of the
// system for bug reports.
class AboutDialog final : public QDialog {
  Q_OBJECT
 public:
  AboutDialog(QWidget* parent, AppContext& ctx);

  // The facts shown by the system button; "System information not available for the moment"
  // (in French for a French run) when there are none.
  static QString SystemFacts(const AppContext& ctx);
};

}  // namespace tessarin
