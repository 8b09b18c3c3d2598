#pragma once

#include <glib-object.h>

#include <memory>

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

}  // namespace orvel
