#ifndef KOXML_TESTS_SUPPORT_TEMPFILES_H
#define KOXML_TESTS_SUPPORT_TEMPFILES_H

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace testsupport {

// A path in the test temporary folder that no other test process uses, so
// that test programs of several build trees can run at the same time.
inline std::string TempPath(const std::string& name) {
  return ::testing::TempDir() + "koxml-" + std::to_string(static_cast<long>(getpid())) + "-" + name;
}

}  // namespace testsupport

#endif
