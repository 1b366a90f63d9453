#include "lists/listfile.h"

#include <QSaveFile>
#include <QString>

namespace tessarin {

namespace {

constexpr size_t kBlockSize = 1 << 20;

}  // namespace

ListFile::ListFile() = default;

ListFile::~ListFile() { Close(); }

bool ListFile::Create(const std::string& path) {
  Close();
  m_failed = false;
  m_buffer.clear();
  m_buffer.reserve(kBlockSize + 4096);
  m_file = std::make_unique<QSaveFile>(QString::fromUtf8(path.data(), qsizetype(path.size())));
  // A list on a device or in a folder that can't take a temporary file is still written.
  m_file->setDirectWriteFallback(true);
  if (!m_file->open(QIODevice::WriteOnly)) {
    m_file.reset();
    return false;
  }
  return true;
}

bool ListFile::IsOpen() const { return m_file != nullptr; }

void ListFile::Write(std::string_view bytes) {
  if (!m_file) return;
  m_buffer.append(bytes);
  if (m_buffer.size() >= kBlockSize) Flush();
}

void ListFile::WriteLine(std::string_view line) {
  Write(line);
  Write("\r\n");
}

bool ListFile::Flush() {
  if (!m_file || m_buffer.empty()) return !m_failed;
  const auto size = static_cast<qint64>(m_buffer.size());
  if (m_file->write(m_buffer.data(), size) != size) m_failed = true;
  m_buffer.clear();
  return !m_failed;
}

bool ListFile::Close() {
  if (!m_file) return false;
  Flush();
  bool ok = !m_failed;
  if (ok) {
    ok = m_file->commit();
  } else {
    m_file->cancelWriting();
    m_file->commit();
  }
  m_file.reset();
  return ok;
}

}  // namespace tessarin
