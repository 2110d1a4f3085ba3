#ifndef KOXMLLIB10_BINDING_CACHEDCAST_H
#define KOXMLLIB10_BINDING_CACHEDCAST_H

// dynamic_cast for the reading engine's hot paths. Internal: not installed.
//
// Reading asks the same questions of every object it fills (is it nillable,
// is the property a collection) and the answers depend only on the object's
// dynamic type and on which subobject the pointer designates. A
// dynamic_cast walks the class hierarchy (comparing type names) every time;
// each thread here remembers the answers for the last few types as offsets.

#include <cstddef>
#include <typeinfo>

namespace KoXmlLib10::readcast {

template <class Target, class Source>
Target* CachedDynamicCast(Source* object) {
  if (!object) return nullptr;
  struct Entry {
    const std::type_info* type;
    std::ptrdiff_t sourceOffset;  // of the Source subobject in the complete object
    std::ptrdiff_t targetOffset;  // of the Target subobject from the Source one
    bool castable;
  };
  constexpr int kEntries = 8;
  struct Cache {
    Entry entries[kEntries];
    int next;
  };
  thread_local Cache cache = {};

  const std::type_info* type = &typeid(*object);
  char* const source = reinterpret_cast<char*>(object);
  const std::ptrdiff_t sourceOffset = source - static_cast<char*>(dynamic_cast<void*>(object));
  for (const Entry& entry : cache.entries)
    if (entry.type == type && entry.sourceOffset == sourceOffset)
      return entry.castable ? reinterpret_cast<Target*>(source + entry.targetOffset) : nullptr;

  Target* const target = dynamic_cast<Target*>(object);
  cache.entries[cache.next] = {type, sourceOffset, target ? reinterpret_cast<char*>(target) - source : 0,
                               target != nullptr};
  cache.next = (cache.next + 1) % kEntries;
  return target;
}

}  // namespace KoXmlLib10::readcast

#endif
