#ifndef KOXMLLIB10_EXCEPTIONS_H
#define KOXMLLIB10_EXCEPTIONS_H

#include <cstdarg>
#include <memory>
#include <string>

#include "KoXmlLib10/Export.h"

namespace KoXmlLib10 {

// Root of every exception the library throws. Deliberately not derived from
// std::exception: callers catch this hierarchy by reference.
class KOXML_API CKoException {
 public:
  CKoException();
  explicit CKoException(std::string message);
  CKoException(std::string message, const CKoException& inner);
  CKoException(const CKoException& other);
  virtual ~CKoException();
  virtual CKoException* Clone() const;

  CKoException& operator=(const CKoException& other);

  std::string GetMessage() const;
  const CKoException* GetInnerException() const;
  std::string GetFullMessage() const;

 private:
  std::string m_message;
  std::unique_ptr<CKoException> m_inner;
};

#define KOXML_DECLARE_EXCEPTION(Name, Base)                        \
  class KOXML_API Name : public Base {                             \
   public:                                                         \
    Name();                                                        \
    explicit Name(std::string message);                            \
    Name(std::string message, const CKoException& inner);          \
    Name(const CKoException& other);                               \
    Name(const Name& other);                                       \
    Name& operator=(const Name& other) = default;                  \
    ~Name() override;                                              \
    CKoException* Clone() const override;                          \
  };

KOXML_DECLARE_EXCEPTION(CKoValidationException, CKoException)
KOXML_DECLARE_EXCEPTION(CKoInvalidValueException, CKoValidationException)
KOXML_DECLARE_EXCEPTION(CKoInvalidNamespaceException, CKoValidationException)
KOXML_DECLARE_EXCEPTION(CKoInvalidParamException, CKoException)
KOXML_DECLARE_EXCEPTION(CKoInvalidStateException, CKoException)
KOXML_DECLARE_EXCEPTION(CKoOverFlowException, CKoException)

#undef KOXML_DECLARE_EXCEPTION

// printf-style formatting into a std::string; builds every library message.
KOXML_API std::string FormatString(const char* format, ...)
    __attribute__((format(printf, 1, 2)));
KOXML_API std::string FormatV(const char* format, va_list args);

}  // namespace KoXmlLib10

#endif
