#ifndef TESTS_SUPPORT_TREES_H
#define TESTS_SUPPORT_TREES_H

// Loading documents and comparing trees, for the tests of every reader.

#include <gtest/gtest.h>

#include <KoXmlLib10.h>

#include <algorithm>
#include <string>
#include <vector>

// The whole tree as one string, depth first: names with their namespace in
// braces, attributes, the text in brackets, children in parentheses.
inline std::string Dump(const KoXmlLib10::CXmlElement* root) {
  using KoXmlLib10::CXmlAttribute;
  using KoXmlLib10::CXmlElement;
  std::string out;
  std::vector<const CXmlElement*> pending{root};
  while (!pending.empty()) {
    const CXmlElement* e = pending.back();
    pending.pop_back();
    if (!e) {
      out += ")";
      continue;
    }
    out += "(" + e->GetLocalName() + "{" + e->GetNamespaceURI() + "}";
    for (const CXmlAttribute* a : e->GetAttributes())
      out += " " + a->GetLocalName() + "{" + a->GetNamespaceURI() + "}=" + a->GetValue();
    out += "[" + e->GetText() + "]";
    pending.push_back(nullptr);
    std::vector<const CXmlElement*> children;
    for (const CXmlElement* c = e->GetFirstElement(); c; c = c->GetNextSiblingElement()) children.push_back(c);
    pending.insert(pending.end(), children.rbegin(), children.rend());
  }
  return out;
}

// Where two dumps part, with a little context; empty when they are equal.
inline std::string Mismatch(const std::string& a, const std::string& b) {
  if (a == b) return "";
  const size_t at = std::mismatch(a.begin(), a.begin() + std::min(a.size(), b.size()), b.begin()).first - a.begin();
  const size_t from = at < 40 ? 0 : at - 40;
  return a.substr(from, 80) + "\n" + b.substr(from, 80);
}

// Loads bytes through LoadXmlStream. Fails with the library's message, or
// when the load leaves no document element, so that callers can
// ASSERT_TRUE on it and never walk a missing tree.
inline ::testing::AssertionResult LoadBytes(KoXmlLib10::CXmlDocument& document, const std::string& bytes) {
  try {
    document.LoadXmlStream(reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), bytes.size());
  } catch (const KoXmlLib10::CKoException& e) {
    return ::testing::AssertionFailure() << "the load failed: " << e.GetFullMessage();
  }
  if (!document.GetDocumentElement()) return ::testing::AssertionFailure() << "the load built no document element";
  return ::testing::AssertionSuccess();
}

// The same for XML text given as a string (LoadXml).
inline ::testing::AssertionResult LoadText(KoXmlLib10::CXmlDocument& document, const std::string& xml) {
  try {
    document.LoadXml(xml.c_str());
  } catch (const KoXmlLib10::CKoException& e) {
    return ::testing::AssertionFailure() << "the load failed: " << e.GetFullMessage();
  }
  if (!document.GetDocumentElement()) return ::testing::AssertionFailure() << "the load built no document element";
  return ::testing::AssertionSuccess();
}

#endif
