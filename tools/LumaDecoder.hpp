#pragma once

#include "tools/LumaPicture.hpp"
#include "tools/MirrorSession.hpp"
#include "tools/PhoneResult.hpp"

#include <cstdint>
#include <string_view>
#include <vector>

namespace orvel::phone {

/// Reads how bright the pixels of JPEGs are, which takes much less than their colours.
///
/// Threads: one at a time.
class LumaDecoder {
 public:
  /// The picture in a JPEG that has this size, until the next call. A picture of any other size is not touched.
  Result<LumaPicture> decode(std::string_view jpeg, MirrorSize size);

 private:
  std::vector<std::uint8_t> pixels_;
};

}  // namespace orvel::phone
