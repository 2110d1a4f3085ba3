#ifndef KOXMLLIB10_CRITICALSECTION_H
#define KOXMLLIB10_CRITICALSECTION_H

#include <pthread.h>

#include "KoXmlLib10/Export.h"

// A plain, non-recursive mutex: the same thread must not Enter() twice.
// Copying an object that owns one gives the copy its own, unlocked mutex;
// assignment leaves both mutexes as they are.
class KOXML_API CKOCriticalSection {
 public:
  CKOCriticalSection();
  CKOCriticalSection(const CKOCriticalSection& other);
  CKOCriticalSection& operator=(const CKOCriticalSection& other);
  virtual ~CKOCriticalSection();

  void Enter();
  void Leave();

 private:
  pthread_mutex_t m_mutex;
};

#endif
