#ifndef KOXMLLIB10_SMARTPTR_H
#define KOXMLLIB10_SMARTPTR_H

#include <utility>

// Intrusive reference-counting pointer over AddRef/Release: it holds one
// reference to its object for as long as it points at it.
template <class T>
class CSmartPtr {
 public:
  CSmartPtr() : m_p(nullptr) {}
  CSmartPtr(T* p) : m_p(p) { Acquire(); }
  CSmartPtr(const CSmartPtr& other) : m_p(other.m_p) { Acquire(); }
  // From a pointer to a derived class.
  template <class U>
  CSmartPtr(const CSmartPtr<U>& other) : m_p(other.get()) { Acquire(); }
  ~CSmartPtr() { Drop(); }

  CSmartPtr& operator=(const CSmartPtr& other) { return *this = other.m_p; }
  CSmartPtr& operator=(T* p) {
    // Take the new reference first: p may be kept alive only by this pointer.
    CSmartPtr held(p);
    std::swap(m_p, held.m_p);
    return *this;
  }

  T* operator->() const { return m_p; }
  T& operator*() const { return *m_p; }
  T* get() const { return m_p; }
  explicit operator bool() const { return m_p != nullptr; }

 private:
  void Acquire() {
    if (m_p) m_p->AddRef();
  }
  void Drop() {
    if (m_p) m_p->Release();
  }

  T* m_p;
};

#endif
