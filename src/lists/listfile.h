#pragma once

#include <memory>
#include <string>
#include <string_view>

class QSaveFile;

namespace tessarin {

// An output list written in one go: the lines go to a temporary file beside the target, which
// replaces the target when the writer is closed, so a crash halfway never leaves a torn list in
// place of a good one. A cancelled or failed run still closes, and so keeps the lines written
// up to then. Writes are gathered in a block before they reach the disk.
class ListFile final {
 public:
  ListFile();
  ~ListFile();
  ListFile(const ListFile&) = delete;
  ListFile& operator=(const ListFile&) = delete;

  // Creates the file (replacing any older one at the end). False when it can't be created.
  bool Create(const std::string& path);
  void Write(std::string_view bytes);
  // Writes the text and a CR LF.
  void WriteLine(std::string_view line);
  // Puts the file in place. False when it could not be written or renamed.
  bool Close();
  bool IsOpen() const;

 private:
  bool Flush();

  std::unique_ptr<QSaveFile> m_file;
  std::string m_buffer;
  bool m_failed = false;
};

}  // namespace tessarin
