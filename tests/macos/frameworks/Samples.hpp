#pragma once

#include "frameworks/ScreenCapture.hpp"

#import <Foundation/Foundation.h>

namespace fake {

/// An object that stands for a sample buffer of Core Media. The leaf gets it as a CMSampleBufferRef.
id makeSample(const Sample& sample);

}  // namespace fake
