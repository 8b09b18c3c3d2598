#include "frameworks/KeyValueObserving.hpp"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace {

struct Observation {
  __unsafe_unretained NSObject* observed;
  __unsafe_unretained NSObject* observer;
  std::string keyPath;
  void* context;

  friend bool operator==(const Observation&, const Observation&) = default;
};

std::vector<Observation>& observations() {
  static std::vector<Observation> all;
  return all;
}

}  // namespace

@implementation NSObject (KeyValueObserving)
- (void)addObserver:(NSObject*)observer
         forKeyPath:(NSString*)keyPath
            options:(NSKeyValueObservingOptions)options
            context:(void*)context {
  observations().push_back({self, observer, keyPath.UTF8String, context});
  if ((options & NSKeyValueObservingOptionInitial) == 0) return;
  [observer observeValueForKeyPath:keyPath ofObject:self change:nil context:context];
}
- (void)removeObserver:(NSObject*)observer forKeyPath:(NSString*)keyPath context:(void*)context {
  const Observation wanted{self, observer, keyPath.UTF8String, context};
  const auto found = std::ranges::find(observations(), wanted);
  if (found == observations().end()) std::abort();
  observations().erase(found);
}
@end

namespace fake {

void notifyKeyValueObservers(NSObject* observed, const std::string& keyPath) {
  const auto notified = observations();
  for (const Observation& each : notified) {
    if (each.observed != observed || each.keyPath != keyPath) continue;
    @autoreleasepool {
      [each.observer observeValueForKeyPath:[NSString stringWithUTF8String:keyPath.c_str()]
                                   ofObject:observed
                                     change:nil
                                    context:each.context];
    }
  }
}

std::size_t keyValueObserverCount() {
  return observations().size();
}

}  // namespace fake
