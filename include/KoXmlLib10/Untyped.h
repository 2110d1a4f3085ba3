#ifndef KOXMLLIB10_UNTYPED_H
#define KOXMLLIB10_UNTYPED_H

#include <string>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/SmartPtr.h"
#include "KoXmlLib10/XmlCollection.h"
#include "KoXmlLib10/XmlObjectBase.h"

namespace KoXmlLib10 {

class CElementCol;
class CAttributeCol;
class CXmlElement;

// One attribute of untyped content.
class KOXML_API CAttribute : public CXmlObjectBase {
 public:
  CAttribute(const char* name, const char* value, const char* namespaceUri);
  ~CAttribute() override;

  CXmlObjectBase* GetBase() override;
  using CXmlObjectBase::GetBase;
  // Both return the attribute's own namespace.
  std::string GetNamespace() const override;
  std::string GetTargetNamespace() const override;

  std::string GetName() const { return m_name; }
  void SetName(const char* name);
  std::string GetValue() const { return m_value; }
  void SetValue(const char* value);
  CSmartPtr<CAttribute> Clone() const;

  // Change hooks; nothing here.
  virtual void FireOnChangeName();
  virtual void FireOnChangeNamespace();

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                 const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;
  // Attributes are read by their collection: always throws.
  CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CXmlSerializationContext& ctx,
                           bool choiceMayBeEmpty) override;

 private:
  std::string m_name;
  std::string m_value;
  std::string m_namespace;
};

// The attributes of an xs:anyAttribute wildcard or of a CElement, each checked
// against the namespace restriction when it is added by name or read.
class KOXML_API CAttributeCol : public CXmlCollection {
 public:
  CAttributeCol(const char* namespaceUri, const char* namespaceRestriction, const char* targetNamespace);
  ~CAttributeCol() override;

  // The collection's namespace.
  std::string GetTargetNamespace() const override;

  // Appends without any namespace test.
  CSmartPtr<CAttribute> Add(CAttribute* attribute);
  CSmartPtr<CAttribute> Add(const char* name);
  CSmartPtr<CAttribute> Add(const char* name, const char* value);
  CSmartPtr<CAttribute> Add(const char* name, const char* value, const char* namespaceUri);
  CSmartPtr<CAttribute> Item(int index) const;
  CXmlCollectionIterator<CAttribute> begin() const { return CXmlCollectionIterator<CAttribute>(GetHead()); }
  CXmlCollectionIterator<CAttribute> end() const { return CXmlCollectionIterator<CAttribute>(nullptr); }
  CSmartPtr<CAttributeCol> Clone() const;

  std::string GetNamespaceRestriction() const { return m_namespaceRestriction; }

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                 const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;
  // Adds every attribute of `element`; returns `firstChild` unchanged.
  CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild, const CXmlSerializationContext& ctx,
                           bool choiceMayBeEmpty) override;

 private:
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

// One element of untyped content (xs:any, or an element declared without a
// type): name, namespace, text, attributes and child elements, constrained by
// a wildcard namespace restriction.
class KOXML_API CElement : public CXmlObjectBase {
 public:
  CElement(const char* name, const char* namespaceUri, const char* namespaceRestriction,
           const char* targetNamespace);
  // The namespace is its own restriction; a wildcard keyword is refused.
  CElement(const char* name, const char* namespaceUri);
  // Accepts any namespace.
  explicit CElement(const char* name);
  // Untyped copy of a bindable object, as it would be written.
  CElement(CXmlObjectBase* object, const char* defaultNamespace);
  ~CElement() override;
  CElement(const CElement&) = delete;
  CElement& operator=(const CElement&) = delete;

  CXmlObjectBase* GetBase() override;
  using CXmlObjectBase::GetBase;
  // Both return the element's own namespace.
  std::string GetNamespace() const override;
  std::string GetTargetNamespace() const override;

  void Init(const char* name, const char* namespaceUri, const char* namespaceRestriction,
            const char* targetNamespace);
  // Parses the text and reads its document element into this element.
  void FromXml(const char* xml);
  using CXmlObjectBase::FromXml;
  void CopyXmlElement(CXmlElement* source);
  // Checks this element, its attributes and its descendants against the
  // restriction; the stored restriction is not changed.
  void SetNamespaceRestrictions(const char* namespaceRestriction, const char* targetNamespace);
  CSmartPtr<CElement> Clone() const;

  std::string GetName() const { return m_name; }
  void SetName(const char* name);
  std::string GetText() const { return m_text; }
  void SetText(const char* text);
  std::string GetDefaultNamespace() const { return m_defaultNamespace; }
  std::string GetNamespaceRestriction() const { return m_namespaceRestriction; }
  CAttributeCol* GetAttributes() const { return m_attributes.get(); }
  CElementCol* GetElements() const { return m_elements.get(); }

  // Change hooks; nothing here.
  virtual void FireOnChangeName();
  virtual void FireOnChangeNamespace();
  virtual void FireOnChangeText();

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                 const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;
  // `firstChild` is the element at the cursor; consumes it when its
  // namespace satisfies the restriction and returns its next sibling.
  CXmlElement* FromXml_Int(CXmlElement* parentElement, CXmlElement* firstChild,
                           const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) override;

 private:
  friend class CElementCol;
  std::string m_name;
  std::string m_text;
  std::string m_namespace;
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
  CSmartPtr<CAttributeCol> m_attributes;
  CSmartPtr<CElementCol> m_elements;
  std::string m_defaultNamespace;
};

// A run of untyped elements.
class KOXML_API CElementCol : public CXmlCollection {
 public:
  // The two counts are not used: the collection accepts any number of items.
  CElementCol(const char* namespaceUri, const char* namespaceRestriction, const char* targetNamespace, int, int);
  ~CElementCol() override;

  // Both return the collection's target namespace.
  std::string GetNamespace() const override;
  std::string GetTargetNamespace() const override;

  CSmartPtr<CElement> Add(CElement* element);
  CSmartPtr<CElement> Add(const char* name);
  CSmartPtr<CElement> Add(const char* name, const char* namespaceUri);
  CSmartPtr<CElement> Item(int index) const;
  CXmlCollectionIterator<CElement> begin() const { return CXmlCollectionIterator<CElement>(GetHead()); }
  CXmlCollectionIterator<CElement> end() const { return CXmlCollectionIterator<CElement>(nullptr); }
  CSmartPtr<CElementCol> Clone() const;

  std::string GetNamespaceRestriction() const { return m_namespaceRestriction; }

  // Collects only elements of exactly this local name and namespace.
  virtual CXmlElement* FromXmlLockElementName_Int(std::string name, std::string namespaceUri,
                                                  CXmlElement* parentElement, CXmlElement* cursor,
                                                  const CXmlSerializationContext& ctx);

 protected:
  void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* elementNamespace,
                 const CXmlSerializationContext& ctx, bool choiceMayBeEmpty) const override;
  CXmlElement* FromXml_Int(CXmlElement* parentElement, CXmlElement* cursor, const CXmlSerializationContext& ctx,
                           bool choiceMayBeEmpty) override;

 private:
  friend class CElement;
  std::string m_namespaceRestriction;
  std::string m_targetNamespace;
};

}  // namespace KoXmlLib10

#endif
