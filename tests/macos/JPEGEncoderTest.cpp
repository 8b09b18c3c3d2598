#include "CaptureTest.hpp"
#include "platform/macos/SystemJPEGEncoder.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace orvel {
namespace {

using testing::ElementsAre;

class JPEGEncoderTest : public CaptureTest {
 protected:
  void SetUp() override {
    CaptureTest::SetUp();
    encoder_ = std::make_unique<SystemJPEGEncoder>();
  }

  void TearDown() override {
    encoder_.reset();
    CaptureTest::TearDown();
  }

  std::optional<SharedBytes> encode(double quality) {
    return encoder_->encode({.width = 1000, .height = 800, .native = buffer_.get()}, quality);
  }

  const fake::ImageCoding& coding_ = fake::imageCoding();
  fake::PixelBuffer buffer_;
  std::unique_ptr<SystemJPEGEncoder> encoder_;
};

TEST_F(JPEGEncoderTest, OneContextServesAllImages) {
  EXPECT_TRUE(encode(0.5));
  EXPECT_TRUE(encode(0.6));
  EXPECT_EQ(coding_.contexts, 1);
  EXPECT_EQ(coding_.cachesIntermediates, false);
  EXPECT_FALSE(coding_.managesColours);
}

TEST_F(JPEGEncoderTest, AnImageIsOfTheBufferInDeviceColoursAndThatQuality) {
  EXPECT_TRUE(encode(0.45));
  EXPECT_TRUE(encode(0.2));
  EXPECT_THAT(coding_.pictures, ElementsAre(buffer_.get(), buffer_.get()));
  EXPECT_THAT(coding_.qualities, ElementsAre(0.45, 0.2));
  EXPECT_NE(coding_.usedColours, nullptr);
  EXPECT_EQ(coding_.usedColours, coding_.colours);
}

TEST_F(JPEGEncoderTest, TheImageIsNotCopied) {
  fake::imageCoding().size = 1234;
  const auto jpeg = encode(0.5);
  ASSERT_TRUE(jpeg);
  EXPECT_EQ(jpeg->size, 1234u);
  EXPECT_EQ(jpeg->data.get(), coding_.bytes);
}

TEST_F(JPEGEncoderTest, AnImageMayOutliveTheEncoderAndGoOnAnyThread) {
  auto jpeg = encode(0.5);
  ASSERT_TRUE(jpeg);
  encoder_.reset();
  EXPECT_EQ(jpeg->data.get()[jpeg->size - 1], 0xff);
  std::thread([bytes = std::move(jpeg)]() mutable { bytes.reset(); }).join();
}

TEST_F(JPEGEncoderTest, ItWorksOnAThreadWithoutAPool) {
  std::thread([this] { EXPECT_TRUE(encode(0.5)); }).join();
}

TEST_F(JPEGEncoderTest, AnImageThatCannotBeMadeIsNothing) {
  fake::imageCoding().works = false;
  EXPECT_FALSE(encode(0.5));
}

TEST_F(JPEGEncoderTest, APictureThatIsNotTheSystemsIsNothing) {
  const std::uint8_t bytes[4] = {};
  EXPECT_FALSE(encoder_->encode({.bytes = bytes, .bytesPerRow = 4, .width = 1, .height = 1}, 0.5));
  EXPECT_TRUE(coding_.pictures.empty());
}

TEST_F(JPEGEncoderTest, WithoutColoursThereIsNoImage) {
  fake::imageCoding().hasColours = false;
  encoder_ = std::make_unique<SystemJPEGEncoder>();
  EXPECT_FALSE(encode(0.5));
}

}  // namespace
}  // namespace orvel
