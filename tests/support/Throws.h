#ifndef KOXML_TESTS_SUPPORT_THROWS_H
#define KOXML_TESTS_SUPPORT_THROWS_H

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <typeinfo>

#include "KoXmlLib10/Exceptions.h"

namespace testsupport {

template <class E>
bool IsA(const KoXmlLib10::CKoException& e) {
  if constexpr (std::is_same_v<E, KoXmlLib10::CKoException>)
    return true;
  else
    return dynamic_cast<const E*>(&e) != nullptr;
}

// Runs `action` and checks that it throws a library exception of class E
// (or one derived from it) whose full message, the chain of messages from
// the outermost exception inwards joined by line feeds, is `expected`.
template <class E = KoXmlLib10::CKoException, class Action>
::testing::AssertionResult ThrowsFull(Action&& action, const std::string& expected) {
  try {
    action();
  } catch (const KoXmlLib10::CKoException& e) {
    if (!IsA<E>(e))
      return ::testing::AssertionFailure() << "threw " << typeid(e).name() << " instead of " << typeid(E).name()
                                           << ": " << e.GetFullMessage();
    if (e.GetFullMessage() == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "full message was\n[" << e.GetFullMessage() << "]\nexpected\n["
                                         << expected << "]";
  }
  return ::testing::AssertionFailure() << "nothing was thrown, expected: " << expected;
}

// The same for the message of the outermost exception alone.
template <class E = KoXmlLib10::CKoException, class Action>
::testing::AssertionResult Throws(Action&& action, const std::string& expected) {
  try {
    action();
  } catch (const KoXmlLib10::CKoException& e) {
    if (!IsA<E>(e))
      return ::testing::AssertionFailure() << "threw " << typeid(e).name() << " instead of " << typeid(E).name()
                                           << ": " << e.GetFullMessage();
    if (e.GetMessage() == expected) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "message was [" << e.GetMessage() << "], expected [" << expected
                                         << "]";
  }
  return ::testing::AssertionFailure() << "nothing was thrown, expected: " << expected;
}

// The message of the library exception `action` throws, for comparing two
// failures with each other; a fixed text when nothing is thrown.
template <class Action>
std::string MessageOf(Action&& action) {
  try {
    action();
  } catch (const KoXmlLib10::CKoException& e) {
    return e.GetMessage();
  }
  return "(nothing was thrown)";
}

}  // namespace testsupport

#endif
