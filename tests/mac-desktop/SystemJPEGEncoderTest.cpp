#include "platform/macos/CFPointer.hpp"
#include "platform/macos/SystemJPEGEncoder.hpp"

#include <CoreVideo/CVPixelBuffer.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <span>

namespace orvel {
namespace {

constexpr int width = 64;
constexpr int height = 32;

CFPointer<CVPixelBufferRef> greyPicture() {
  CVPixelBufferRef made = nullptr;
  EXPECT_EQ(CVPixelBufferCreate(nullptr, width, height, kCVPixelFormatType_32BGRA, nullptr, &made), kCVReturnSuccess);
  CFPointer<CVPixelBufferRef> picture(made);
  if (!picture) return picture;
  EXPECT_EQ(CVPixelBufferLockBaseAddress(picture.get(), 0), kCVReturnSuccess);
  std::memset(CVPixelBufferGetBaseAddress(picture.get()), 0x80, CVPixelBufferGetBytesPerRow(picture.get()) * height);
  EXPECT_EQ(CVPixelBufferUnlockBaseAddress(picture.get(), 0), kCVReturnSuccess);
  return picture;
}

TEST(SystemJPEGEncoder, MakesAWholeImageOfAPictureOfTheSystem) {
  const auto picture = greyPicture();
  ASSERT_TRUE(picture);
  SystemJPEGEncoder encoder;
  const auto image = encoder.encode({.width = width, .height = height, .native = picture.get()}, 0.5);
  ASSERT_TRUE(image);
  const std::span<const std::uint8_t> bytes(image->data.get(), image->size);
  ASSERT_GT(bytes.size(), 4u);
  EXPECT_EQ(bytes[0], 0xff);
  EXPECT_EQ(bytes[1], 0xd8);
  EXPECT_EQ(bytes[bytes.size() - 2], 0xff);
  EXPECT_EQ(bytes[bytes.size() - 1], 0xd9);
}

}  // namespace
}  // namespace orvel
