#ifndef KOXMLLIB10_FOUNDATION_SCOPEDLOCK_H
#define KOXMLLIB10_FOUNDATION_SCOPEDLOCK_H

#include "KoXmlLib10/CriticalSection.h"

namespace KoXmlLib10 {

// Holds a CKOCriticalSection for the lifetime of a scope, also when an
// exception leaves it.
class CScopedLock {
 public:
  explicit CScopedLock(CKOCriticalSection& lock) : m_lock(lock) { m_lock.Enter(); }
  ~CScopedLock() { m_lock.Leave(); }
  CScopedLock(const CScopedLock&) = delete;
  CScopedLock& operator=(const CScopedLock&) = delete;

 private:
  CKOCriticalSection& m_lock;
};

}  // namespace KoXmlLib10

#endif
