#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <chrono>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

/// Icons and the drawing of them into bitmaps, in place of AppKit.
namespace fake {

struct IconDrawing {
  std::set<std::string> failing;  ///< Of "bitmap", "colour", "context" and "png".
  CGSize iconSize{.width = 32, .height = 24};
  std::chrono::milliseconds timeout{0};  ///< How long drawing waits for another thread to draw, too.
  std::vector<std::uint8_t> png = {0x89, 'P', 'N', 'G'};

  // What was asked for, as of the last drawing.
  std::string file;
  CGRect place{};
  CGRect part{};
  unsigned long operation = 0;
  double opacity = 0;
  unsigned long interpolation = 0;
  long width = 0;  ///< Of the bitmap, in pixels.
  long height = 0;
  CGSize size{};  ///< Of the bitmap, in points.
  bool isPlainRGBA = false;
  bool isTagged = false;  ///< With the common colour space.
  unsigned long format = 0;
};

/// Tests set it anew.
IconDrawing& iconDrawing();

/// Whether one thread has drawn while another did.
bool drawingsMet();

/// How many states of drawing this thread has saved and not restored.
std::size_t savedGraphicsStates();

}  // namespace fake
