#include "KoXmlLib10/XmlObjectBase.h"

#include "foundation/ScopedLock.h"

namespace KoXmlLib10 {

CXmlObjectBase::CXmlObjectBase() : m_refCount(0) {}

CXmlObjectBase::CXmlObjectBase(const CXmlObjectBase&) : m_refCount(0) {}

CXmlObjectBase& CXmlObjectBase::operator=(const CXmlObjectBase&) { return *this; }

CXmlObjectBase::~CXmlObjectBase() = default;

int CXmlObjectBase::AddRef() {
  CScopedLock hold(m_lock);
  return ++m_refCount;
}

int CXmlObjectBase::Release() {
  int count;
  {
    CScopedLock hold(m_lock);
    count = --m_refCount;
  }
  // The lock is a member: it must be left before the object goes.
  if (count == 0) delete this;
  return count;
}

}  // namespace KoXmlLib10
