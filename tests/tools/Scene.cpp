#include "tools/Scene.hpp"

#include <algorithm>
#include <cmath>
#include <random>

namespace orvel::phone {
namespace {

constexpr int screenWidth = 1280;
constexpr int screenHeight = 800;
constexpr int noiseGrain = 3;

void addNoise(Picture& screen, unsigned seed) {
  std::mt19937 random(seed);
  for (int top = 0; top < screen.height; top += noiseGrain) {
    for (int left = 0; left < screen.width; left += noiseGrain) {
      const auto brightness = static_cast<std::uint8_t>(random() >> 24);
      for (int y = top; y < std::min(top + noiseGrain, screen.height); ++y) {
        for (int x = left; x < std::min(left + noiseGrain, screen.width); ++x) screen.at(x, y) = brightness;
      }
    }
  }
}

void addStrip(Picture& screen, const Scene& scene) {
  const TimeStrip strip(*scene.time);
  const int right = std::min(screen.width, scene.left + TimeStrip::columns * scene.block);
  const int bottom = std::min(screen.height, scene.top + TimeStrip::rows * scene.block);
  for (int y = scene.top; y < bottom; ++y) {
    for (int x = scene.left; x < right; ++x) {
      screen.at(x, y) = strip.isDark((x - scene.left) / scene.block, (y - scene.top) / scene.block) ? 0 : 255;
    }
  }
}

/// How much of a pixel lies between two places in its row or column.
double share(int pixel, double from, double to) {
  return std::max(0.0, std::min(to, pixel + 1.0) - std::max(from, static_cast<double>(pixel)));
}

/// The mean brightness of a rectangle.
std::uint8_t mean(const Picture& screen, double left, double top, double right, double bottom) {
  double sum = 0;
  double area = 0;
  for (int y = static_cast<int>(top); y < std::min(screen.height, static_cast<int>(std::ceil(bottom))); ++y) {
    for (int x = static_cast<int>(left); x < std::min(screen.width, static_cast<int>(std::ceil(right))); ++x) {
      const double weight = share(x, left, right) * share(y, top, bottom);
      sum += weight * screen.at(x, y);
      area += weight;
    }
  }
  return static_cast<std::uint8_t>(std::lround(sum / area));
}

}  // namespace

Picture uniform(int width, int height, std::uint8_t brightness) {
  return {width, height, std::vector<std::uint8_t>(static_cast<std::size_t>(width * height), brightness)};
}

Picture cropped(const Picture& picture, int width, int height) {
  Picture part = uniform(width, height, 0);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) part.at(x, y) = picture.at(x, y);
  }
  return part;
}

Picture Scene::picture(double scaleX, double scaleY) const {
  Picture screen = uniform(screenWidth, screenHeight, 128);
  if (noise) addNoise(screen, *noise);
  if (time) addStrip(screen, *this);
  if (scaleX == 1 && scaleY == 1) return screen;
  Picture scaled = uniform(static_cast<int>(screenWidth * scaleX), static_cast<int>(screenHeight * scaleY), 0);
  const double stepX = static_cast<double>(screenWidth) / scaled.width;
  const double stepY = static_cast<double>(screenHeight) / scaled.height;
  for (int y = 0; y < scaled.height; ++y) {
    for (int x = 0; x < scaled.width; ++x) {
      scaled.at(x, y) = mean(screen, x * stepX, y * stepY, (x + 1) * stepX, (y + 1) * stepY);
    }
  }
  return scaled;
}

void invertBlock(Picture& picture, const Scene& scene, int column, int row) {
  const int left = scene.left + column * scene.block;
  const int top = scene.top + row * scene.block;
  for (int y = top; y < top + scene.block; ++y) {
    for (int x = left; x < left + scene.block; ++x)
      picture.at(x, y) = static_cast<std::uint8_t>(255 - picture.at(x, y));
  }
}

}  // namespace orvel::phone
