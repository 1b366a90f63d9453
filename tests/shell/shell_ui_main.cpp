// One QApplication for the whole test binary, offscreen, with a private temporary folder so
// that the start-up's "tessarin" temporary folder never meets a real run's.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTemporaryDir>
#include <memory>

namespace {

class QtEnvironment final : public ::testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    m_temp = std::make_unique<QTemporaryDir>();
    ASSERT_TRUE(m_temp->isValid());
    qputenv("TMPDIR", m_temp->path().toUtf8());
    static int argc = 1;
    static char name[] = "test_shell";
    static char* argv[] = {name, nullptr};
    m_app = std::make_unique<QApplication>(argc, argv);
  }
  void TearDown() override {
    m_app.reset();
    m_temp.reset();
  }

 private:
  std::unique_ptr<QTemporaryDir> m_temp;
  std::unique_ptr<QApplication> m_app;
};

[[maybe_unused]] ::testing::Environment* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
