#ifndef KOXML_TESTS_SUPPORT_CUSTOMCLASS_H
#define KOXML_TESTS_SUPPORT_CUSTOMCLASS_H

// A generated-shaped class whose records a test makes: a group type, element
// and attribute records of the test's choosing, and one value that every
// record reads and writes. It owns its records.

#include "support/TestModel.h"

namespace testmodel {

class CCustom : public CXmlGeneratedClass {
 public:
  CCustom(XmlElementGroupType group, std::initializer_list<CElementInfo*> elements,
          std::initializer_list<CAttributeInfo*> attributes = {})
      : m_info(new CParentElementInfo(group, XmlElementTypeElement, "custom", kNs, true, false, -1, ItemType_none,
                                      nullptr, false)),
        m_elements(Elements(elements)),
        m_attributes(Attributes(attributes)) {
    SetElementName("custom");
  }
  ~CCustom() override { CleanMetaData(m_info, m_elements, m_attributes); }
  CXmlObjectBase* GetBase() override { return this; }
  std::string GetTargetNamespace() const override { return kNs; }
  std::string GetNamespace() const override { return kNs; }
  void AccessProperty(int, bool get, KoVariant& v) override {
    if (get) v = value;
    else value = v;
  }
  CParentElementInfo* GetClassInfo() override { return m_info; }
  CElementInfo** GetClassElementInfo() override { return m_elements; }
  CAttributeInfo** GetClassAttributeInfo() override { return m_attributes; }
  void Init() override { value.SetInvalid(); }

  KoVariant value;

 private:
  CParentElementInfo* m_info;
  CElementInfo** m_elements;
  CAttributeInfo** m_attributes;
};

}  // namespace testmodel

#endif
