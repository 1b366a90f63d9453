#pragma once

// The desktop's trash inside a test's own folder for the length of a test, so that nothing a
// test deletes lands in the trash of whoever runs the tests.

#include <QByteArray>
#include <QtGlobal>
#include <filesystem>
#include <string>

namespace tessarin::testsupport {

class ScopedTrash {
 public:
  // `home` (ending with '/') becomes HOME, and its "data" folder the user's data folder, which
  // holds the trash. With `makeDataFolder` false that folder is left for the program to make.
  explicit ScopedTrash(const std::string& home, bool makeDataFolder = true)
      : m_oldHome(qgetenv("HOME")),
        m_oldData(qgetenv("XDG_DATA_HOME")),
        m_hadData(qEnvironmentVariableIsSet("XDG_DATA_HOME")),
        m_files(home + "data/Trash/files/") {
    std::filesystem::create_directories(makeDataFolder ? home + "data" : home);
    qputenv("HOME", QByteArray::fromStdString(home));
    qputenv("XDG_DATA_HOME", QByteArray::fromStdString(home + "data"));
  }
  ~ScopedTrash() {
    qputenv("HOME", m_oldHome);
    if (m_hadData) {
      qputenv("XDG_DATA_HOME", m_oldData);
    } else {
      qunsetenv("XDG_DATA_HOME");
    }
  }
  ScopedTrash(const ScopedTrash&) = delete;
  ScopedTrash& operator=(const ScopedTrash&) = delete;

  // Where trashed files go.
  const std::string& Files() const { return m_files; }

 private:
  QByteArray m_oldHome;
  QByteArray m_oldData;
  bool m_hadData;
  std::string m_files;
};

}  // namespace tessarin::testsupport
