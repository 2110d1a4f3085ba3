#ifndef KOXMLLIB10_XMLOBJECTBASE_H
#define KOXMLLIB10_XMLOBJECTBASE_H

#include "KoXmlLib10/CriticalSection.h"
#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// Root of every bindable object. Objects are reference counted: created with
// a count of 0, kept through AddRef (usually by CSmartPtr), and deleted by
// the Release that brings the count to exactly 0.
class KOXML_API CXmlObjectBase {
 public:
  CXmlObjectBase();
  // A copy is a new object: it starts unreferenced.
  CXmlObjectBase(const CXmlObjectBase& other);
  // Assignment never touches the reference count of either side.
  CXmlObjectBase& operator=(const CXmlObjectBase& other);
  virtual ~CXmlObjectBase();

  // Both are safe from any thread and return the new count.
  int AddRef();
  int Release();

 private:
  CKOCriticalSection m_lock;  // guards m_refCount
  int m_refCount;
};

}  // namespace KoXmlLib10

#endif
