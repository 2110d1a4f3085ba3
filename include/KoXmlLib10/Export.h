#ifndef KOXMLLIB10_EXPORT_H
#define KOXMLLIB10_EXPORT_H

// Everything is hidden by default; KOXML_API marks the public interface.
#if defined(KOXML_BUILDING_LIBRARY)
#define KOXML_API __attribute__((visibility("default")))
#else
#define KOXML_API
#endif

#endif
