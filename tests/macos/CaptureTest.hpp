#pragma once

#include "MacTest.hpp"
#include "frameworks/DisplayList.hpp"
#include "frameworks/ImageCoding.hpp"
#include "frameworks/ScreenCapture.hpp"
#include "runtime/Dispatch.hpp"

namespace orvel {

/// A test with a scripted ScreenCaptureKit and Core Image. It ends what it captures itself, before `TearDown` of this.
class CaptureTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::screenCapture() = {};
    fake::imageCoding() = {};
    fake::displayList() = {};
  }

  void TearDown() override {
    dispatch::letTimePass();
    fake::forgetHeldBack();
    fake::finishAnswers();
    MacTest::TearDown();
  }
};

}  // namespace orvel
