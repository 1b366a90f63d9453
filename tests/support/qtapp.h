#pragma once

// The application object of a window test binary: made offscreen (unless the caller chose a
// platform) before the first test and dropped after the last. Including this header is enough.

#include <gtest/gtest.h>

#include <QApplication>
#include <memory>

namespace tessarin::testsupport {

class OffscreenApplication final : public ::testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "tessarin-test";
    static char* argv[] = {name, nullptr};
    m_app = std::make_unique<QApplication>(argc, argv);
  }
  void TearDown() override { m_app.reset(); }

 private:
  std::unique_ptr<QApplication> m_app;
};

// One per test binary, however many of its files include this header.
inline ::testing::Environment* const kOffscreenApplication =
    ::testing::AddGlobalTestEnvironment(new OffscreenApplication);

}  // namespace tessarin::testsupport
