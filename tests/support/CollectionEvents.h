#ifndef TESTS_SUPPORT_COLLECTIONEVENTS_H
#define TESTS_SUPPORT_COLLECTIONEVENTS_H

// A collection listener that records every event it is told, for the tests
// of object and primitive collections.

#include <KoXmlLib10.h>

#include <functional>
#include <string>
#include <vector>

struct RecordedEvent {
  KoXmlLib10::CXmlObjectBase* sender;
  KoXmlLib10::IEventSink::MsgType type;
  void* data;
  // What the data pointed at while the event was told: the index of a
  // remove event, or what `peek` made of an add event's value.
  std::string seen;
};

class CEventRecorder : public KoXmlLib10::IEventSink {
 public:
  // Turns the data of an add event into text while it is still valid.
  std::function<std::string(void*)> peek;

  void OnEvent(KoXmlLib10::CXmlObjectBase* sender, MsgType type, void* data) override {
    std::string seen;
    if (data && (type == MsgTypeCollectionRemove || type == MsgTypeCollectionRemoveComplete))
      seen = std::to_string(*static_cast<int*>(data));
    else if (data && peek)
      seen = peek(data);
    events.push_back({sender, type, data, seen});
  }

  // The event types as digits, in the order told ("1 2 0").
  std::string Types() const {
    std::string out;
    for (const RecordedEvent& e : events) out += (out.empty() ? "" : " ") + std::to_string(e.type);
    return out;
  }

  std::vector<RecordedEvent> events;
};

#endif
