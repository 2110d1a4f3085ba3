#ifndef TESTS_SUPPORT_GENERATORVERSION_H
#define TESTS_SUPPORT_GENERATORVERSION_H

// The entry points refuse to run for generated code of another version:
// tests that use them declare the library's own version for their duration.

#include <gtest/gtest.h>

#include <KoXmlLib10.h>

class WithGeneratorVersion : public ::testing::Test {
 protected:
  void SetUp() override {
    KoXmlLib10::GetGeneratorVersion(m_major, m_minor);
    KoXmlLib10::SetGeneratorVersion(10, 1);
  }
  void TearDown() override { KoXmlLib10::SetGeneratorVersion(m_major, m_minor); }

 private:
  int m_major = 0, m_minor = 0;
};

#endif
