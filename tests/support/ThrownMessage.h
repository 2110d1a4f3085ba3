#ifndef TESTS_SUPPORT_THROWNMESSAGE_H
#define TESTS_SUPPORT_THROWNMESSAGE_H

#include <string>

#include <KoXmlLib10.h>

// The message of the exception of class E that `action` throws, or a marker
// that makes the comparison fail when it throws nothing.
template <class E, class Action>
std::string ThrownMessage(Action action) {
  try {
    action();
  } catch (const E& e) {
    return e.GetMessage();
  }
  return "<nothing thrown>";
}

#endif
