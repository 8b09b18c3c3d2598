#pragma once

#include <cstddef>
#include <optional>
#include <vector>

/// A scripted Core Image, which makes JPEG images of the size that a test wants.
namespace fake {

struct ImageCoding {
  bool hasColours = true;  ///< Whether there is a colour space.
  bool works = true;
  std::size_t size = 300'000;

  int contexts = 0;  ///< How many were made, and what the newest was made with.
  std::optional<bool> cachesIntermediates;
  bool managesColours = true;
  const void* colours = nullptr;      ///< The newest colour space.
  const void* usedColours = nullptr;  ///< And that of the newest image.
  std::vector<const void*> pictures;  ///< The buffers that were encoded.
  std::vector<double> qualities;      ///< As the options say.
  const void* bytes = nullptr;        ///< Where those of the newest image are.
};

/// Tests set it anew.
ImageCoding& imageCoding();

}  // namespace fake
