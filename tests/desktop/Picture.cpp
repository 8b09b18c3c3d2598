#include "desktop/Picture.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <span>

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#include <stb/stb_image.h>

namespace orvel {
namespace {

constexpr int window = 8;
constexpr int windowStep = 4;

struct FreeImage {
  void operator()(stbi_uc* image) const noexcept { stbi_image_free(image); }
};

std::uint32_t colourOf(double red, double green, double blue) {
  const auto part = [](double value) { return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 255.0))); };
  return part(red) << 16 | part(green) << 8 | part(blue);
}

double channelOf(std::uint32_t colour, int channel) {
  return colour >> (8 * channel) & 0xff;
}

/// How much of each old pixel is in a new one, along one axis.
struct Share {
  int place = 0;
  double weight = 0;
};

std::vector<Share> sharesOf(int place, int length, int oldLength) {
  const double scale = static_cast<double>(oldLength) / length;
  const double begin = place * scale;
  const double end = begin + scale;
  std::vector<Share> shares;
  for (int old = static_cast<int>(begin); old < std::min<double>(oldLength, std::ceil(end)); ++old) {
    const double weight = std::min<double>(end, old + 1) - std::max<double>(begin, old);
    if (weight > 1e-9) shares.push_back({old, weight / scale});
  }
  return shares;
}

std::vector<double> brightnessOf(const Picture& picture) {
  std::vector<double> brightness;
  brightness.reserve(picture.pixels.size());
  for (const std::uint32_t colour : picture.pixels) {
    brightness.push_back(0.299 * channelOf(colour, 2) + 0.587 * channelOf(colour, 1) + 0.114 * channelOf(colour, 0));
  }
  return brightness;
}

/// Of one window, whose left top corner is given.
double windowSimilarity(std::span<const double> one, std::span<const double> other, std::size_t corner,
                        std::size_t stride) {
  constexpr double count = window * window;
  double sumA = 0, sumB = 0, sumAA = 0, sumBB = 0, sumAB = 0;
  for (std::size_t y = 0; y < window; ++y) {
    for (std::size_t x = 0; x < window; ++x) {
      const double a = one[corner + y * stride + x];
      const double b = other[corner + y * stride + x];
      sumA += a, sumB += b, sumAA += a * a, sumBB += b * b, sumAB += a * b;
    }
  }
  const double meanA = sumA / count, meanB = sumB / count;
  const double varianceA = sumAA / count - meanA * meanA, varianceB = sumBB / count - meanB * meanB;
  const double covariance = sumAB / count - meanA * meanB;
  constexpr double c1 = 0.01 * 255 * 0.01 * 255, c2 = 0.03 * 255 * 0.03 * 255;
  return (2 * meanA * meanB + c1) * (2 * covariance + c2) /
         ((meanA * meanA + meanB * meanB + c1) * (varianceA + varianceB + c2));
}

}  // namespace

Picture::Picture(const PixelBuffer& buffer) : Picture(buffer.width, buffer.height) {
  for (int y = 0; y < height; ++y) {
    const std::uint8_t* source = buffer.bytes + buffer.bytesPerRow * static_cast<std::size_t>(y);
    for (int x = 0; x < width; ++x, source += 4) at(x, y) = source[2] << 16 | source[1] << 8 | source[0];
  }
}

void Picture::fill(int x, int y, int columns, int rows, std::uint32_t colour) {
  for (int row = std::max(y, 0); row < std::min(y + rows, height); ++row) {
    for (int column = std::max(x, 0); column < std::min(x + columns, width); ++column) at(column, row) = colour;
  }
}

PixelBuffer Picture::buffer() const {
  return {reinterpret_cast<const std::uint8_t*>(pixels.data()), 4 * static_cast<std::size_t>(width), width, height};
}

std::optional<Picture> decodedJPEG(const SharedBytes& image) {
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<stbi_uc, FreeImage> decoded(
      stbi_load_from_memory(image.data.get(), static_cast<int>(image.size), &width, &height, &channels, 3));
  if (!decoded) return std::nullopt;
  Picture picture(width, height);
  const stbi_uc* source = decoded.get();
  for (std::uint32_t& pixel : picture.pixels) {
    pixel = source[0] << 16 | source[1] << 8 | source[2];
    source += 3;
  }
  return picture;
}

Picture averaged(const Picture& picture, int width, int height) {
  std::vector<std::vector<Share>> columns;
  for (int x = 0; x < width; ++x) columns.push_back(sharesOf(x, width, picture.width));
  Picture result(width, height);
  for (int y = 0; y < height; ++y) {
    const auto rows = sharesOf(y, height, picture.height);
    for (int x = 0; x < width; ++x) {
      double sums[3] = {};
      for (const Share& row : rows) {
        for (const Share& column : columns[static_cast<std::size_t>(x)]) {
          const std::uint32_t colour = picture.at(column.place, row.place);
          for (int i = 0; i < 3; ++i) sums[i] += channelOf(colour, i) * row.weight * column.weight;
        }
      }
      result.at(x, y) = colourOf(sums[2], sums[1], sums[0]);
    }
  }
  return result;
}

double similarity(const Picture& one, const Picture& other) {
  if (one.width != other.width || one.height != other.height) return 0;
  const auto a = brightnessOf(one), b = brightnessOf(other);
  double sum = 0;
  int count = 0;
  for (int y = 0; y + window <= one.height; y += windowStep) {
    for (int x = 0; x + window <= one.width; x += windowStep, ++count) {
      sum += windowSimilarity(a, b, static_cast<std::size_t>(y) * one.width + x, static_cast<std::size_t>(one.width));
    }
  }
  return sum / count;
}

Picture pageOfText(int width, int height) {
  std::mt19937 random(7);
  Picture page(width, height, 0xffffff);
  page.fill(0, 0, width, 24, 0x303846);
  // Letters of 9 by 13 pixels, made of strokes two pixels wide, some of them missing.
  for (int y = 40; y + 13 < height; y += 24) {
    for (int x = width / 10; x + 9 < width - width / 10; x += 11) {
      const auto letter = random();
      if (letter % 6 == 0) continue;
      const std::uint32_t ink = letter % 97 == 0 ? 0x2050c0 : 0x303030;
      if (letter & 0x100) page.fill(x, y, 2, 13, ink);
      if (letter & 0x200) page.fill(x + 6, y + 5, 2, 8, ink);
      if (letter & 0x400) page.fill(x, y + 5, 8, 2, ink);
      if (letter & 0x800) page.fill(x, y + 11, 8, 2, ink);
      if (letter & 0x1000) page.fill(x + 3, y, 2, 6, ink);
    }
  }
  return page;
}

Picture photograph(int width, int height) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> noise(-4, 4);
  Picture photo(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double u = static_cast<double>(x) / width, v = static_cast<double>(y) / height;
      const double hill = v > 0.6 + 0.15 * std::sin(9 * u) ? 0.45 : 1;
      const double wave = 30 * std::sin(40 * u + 13 * v) * std::sin(31 * v), grain = noise(random);
      photo.at(x, y) = colourOf(hill * (90 + 120 * v + wave) + grain, hill * (140 + 60 * u + wave) + grain,
                                hill * (230 - 110 * v) + grain);
    }
  }
  return photo;
}

}  // namespace orvel
