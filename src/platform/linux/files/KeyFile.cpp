#include "platform/linux/files/KeyFile.hpp"

namespace orvel {

GLibPointer<GKeyFile> parseKeyFile(const std::string& text) {
  GLibPointer<GKeyFile> keys(g_key_file_new());
  if (!g_key_file_load_from_data(keys.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr)) return nullptr;
  return keys;
}

}  // namespace orvel
