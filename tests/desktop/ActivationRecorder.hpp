#pragma once

#include "base/Guarded.hpp"
#include "desktop/BusService.hpp"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvel {

/// A program on a message bus that is asked to show itself, and records the platform data of each request.
///
/// Threads: as the service.
class ActivationRecorder {
 public:
  using PlatformData = std::map<std::string, std::string>;  // its texts

  ActivationRecorder(const std::string& address, const std::string& name)
      : service_(address, name, [this](GDBusMessage* call) { return record(call); }) {}

  std::vector<PlatformData> requests() const {
    return requests_.withLock([](const std::vector<PlatformData>& requests) { return requests; });
  }

 private:
  GVariant* record(GDBusMessage* call) {
    GVariant* body = g_dbus_message_get_body(call);
    if (std::string_view(g_dbus_message_get_member(call)) != "Activate" || body == nullptr) return nullptr;
    PlatformData data;
    const GLibPointer<GVariant> entries(g_variant_get_child_value(body, 0));
    GVariantIter entry;
    g_variant_iter_init(&entry, entries.get());
    const char* key = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_loop(&entry, "{&sv}", &key, &value)) data[key] = g_variant_get_string(value, nullptr);
    requests_.withLock([&](std::vector<PlatformData>& requests) { requests.push_back(data); });
    return g_variant_new_tuple(nullptr, 0);
  }

  Guarded<std::vector<PlatformData>> requests_;
  const BusService service_;
};

}  // namespace orvel
