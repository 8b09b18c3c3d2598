#include "desktop/Picture.hpp"
#include "program/LoginFixture.hpp"
#include "tools/MirrorSession.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace orvel {
namespace {

using testing::Contains;
using testing::HasSubstr;

const std::string letter =
    "Dear Anna,\n\nwhat you read here was typed by a phone, and is read by it.\n"
    "1234567890 ABCDEFGHIJKLMNOPQRSTUVWXYZ abcdefghijklmnopqrstuvwxyz\n";

Picture shownBy(std::string_view jpeg) {
  const auto bytes = std::make_shared<const std::string>(jpeg);
  const auto shown = decodedJPEG({{bytes, reinterpret_cast<const std::uint8_t*>(bytes->data())}, bytes->size()});
  return shown.value_or(Picture());
}

struct MirroredDesktopTest : LoginFixture {
  /// The newest picture, once no more come.
  std::string lastFrame(phone::MirrorSession& mirror) {
    std::string newest;
    for (phone::Seconds limit = phoneTimeout;; limit = phone::Seconds(1)) {
      const auto frame = mirror.next(limit);
      if (!frame) return newest;
      newest = frame->jpeg();
    }
  }

  /// Has no cursor blink, after which pictures would come for ever.
  void holdCursorStill() {
    const auto folder = desktop.home() / ".config/gtk-3.0";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "settings.ini") << "[Settings]\ngtk-cursor-blink=false\n";
  }

  void write(const std::string& text) {
    phone->sendFrame(*phone::appFrame(phone::AppAction::activate, "org.xfce.mousepad"));
    const auto isOpen = Contains(HasSubstr("Mousepad"));
    ASSERT_TRUE(eventually([&] { return testing::Value(view.windowTitles(), isOpen); }));
    phone->sendFrame(*phone::textFrame(text));
    ASSERT_FALSE(phone->finishWork(phoneTimeout));
    phone->sendFrame(phone::moveAbsoluteFrame(1, 1));
  }
};

TEST_F(MirroredDesktopTest, ThePhoneSeesWhatTheScreenShows) {
  holdCursorStill();
  write(letter);
  phone::MirrorSession mirror(*phone);
  const auto size = mirror.start({.width = 900, .fps = 12, .quality = 0.45}, phoneTimeout);
  ASSERT_TRUE(size);
  const std::string jpeg = lastFrame(mirror);
  std::ofstream(ORVEL_SCREENSHOTS "/mirrored.jpg", std::ios::binary) << jpeg;
  const Picture mirrored = shownBy(jpeg);
  ASSERT_EQ(mirrored.width, size->width);
  ASSERT_EQ(mirrored.height, size->height);
  EXPECT_GE(similarity(mirrored, averaged(view.picture(), size->width, size->height)), 0.95);
  EXPECT_LT(similarity(mirrored, Picture(size->width, size->height)), 0.9) << "which is not all black";
}

TEST_F(MirroredDesktopTest, WhatIsTypedMeanwhileIsInTheLastPicture) {
  holdCursorStill();
  write("");
  phone::MirrorSession mirror(*phone);
  const auto size = mirror.start({.width = 900, .fps = 5, .quality = 0.45}, phoneTimeout);
  ASSERT_TRUE(size);
  const Picture before = shownBy(lastFrame(mirror));
  phone->sendFrame(*phone::textFrame(letter));
  const Picture after = shownBy(lastFrame(mirror));
  EXPECT_GE(similarity(after, averaged(view.picture(), size->width, size->height)), 0.95);
  EXPECT_LT(similarity(before, after), 0.99);
}

}  // namespace
}  // namespace orvel
