#ifndef KOXMLLIB10_GENERATEDSUPPORT_H
#define KOXMLLIB10_GENERATEDSUPPORT_H

#include <atomic>

#include "KoXmlLib10/Export.h"
#include "KoXmlLib10/MetaData.h"
#include "KoXmlLib10/SmartPtr.h"
#include "KoXmlLib10/Variant.h"
#include "KoXmlLib10/XmlGeneratedClass.h"

namespace KoXmlLib10 {

// The records of one generated class. They are created on the class's first
// use by `create`, while CXmlGeneratedClass::m_csInit is held, and freed with
// CXmlGeneratedClass::CleanMetaData when the program ends. Generated code
// keeps one of these per class as a namespace-scope static; its constructor
// is constexpr, so it is ready before any other static initialiser runs.
class CGeneratedMetaData {
 public:
  using CreateFunction = void (*)(CParentElementInfo*& info, CElementInfo**& elements,
                                  CAttributeInfo**& attributes);

  constexpr explicit CGeneratedMetaData(CreateFunction create) : m_create(create) {}
  ~CGeneratedMetaData() { CXmlGeneratedClass::CleanMetaData(m_info, m_elements, m_attributes); }
  CGeneratedMetaData(const CGeneratedMetaData&) = delete;
  CGeneratedMetaData& operator=(const CGeneratedMetaData&) = delete;

  CParentElementInfo* Info() { return Ready().m_info; }
  CElementInfo** Elements() { return Ready().m_elements; }
  CAttributeInfo** Attributes() { return Ready().m_attributes; }

 private:
  CGeneratedMetaData& Ready() {
    if (!m_ready.load(std::memory_order_acquire)) {
      CXmlGeneratedClass::m_csInit.Enter();
      if (!m_ready.load(std::memory_order_relaxed)) {
        try {
          m_create(m_info, m_elements, m_attributes);
        } catch (...) {
          CXmlGeneratedClass::m_csInit.Leave();
          throw;
        }
        m_ready.store(true, std::memory_order_release);
      }
      CXmlGeneratedClass::m_csInit.Leave();
    }
    return *this;
  }

  CreateFunction m_create;
  std::atomic<bool> m_ready{false};
  CParentElementInfo* m_info = nullptr;
  CElementInfo** m_elements = nullptr;
  CAttributeInfo** m_attributes = nullptr;
};

// The object a variant holds, as T (null when it holds none or another class).
template <class T>
CSmartPtr<T> ObjectFromVariant(const KoVariant& value) {
  CXmlObjectBase* object = value.GetXmlObject();  // a counted reference
  CSmartPtr<T> result(dynamic_cast<T*>(object));
  if (object) object->Release();
  return result;
}

}  // namespace KoXmlLib10

#endif
