#pragma once

#include <glib-object.h>

#include <memory>
#include <string>
#include <string_view>

namespace orvel {

struct ReleaseGLib {
  void operator()(GKeyFile* file) const noexcept { g_key_file_unref(file); }
  void operator()(GVariant* value) const noexcept { g_variant_unref(value); }
  void operator()(char* text) const noexcept { g_free(text); }
  template <class Object>
  void operator()(Object* object) const noexcept {
    g_object_unref(object);
  }
};

/// Owns what a function of GLib has handed over.
template <class Content>
using GLibPointer = std::unique_ptr<Content, ReleaseGLib>;

/// A text that may be null, which counts as empty.
inline std::string_view viewOf(const char* text) {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

/// The groups, keys and values of a text in the form that desktop entries have. Null when it is damaged. Threads: any.
inline GLibPointer<GKeyFile> parseKeyFile(const std::string& text) {
  GLibPointer<GKeyFile> keys(g_key_file_new());
  if (!g_key_file_load_from_data(keys.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr)) return nullptr;
  return keys;
}

}  // namespace orvel
