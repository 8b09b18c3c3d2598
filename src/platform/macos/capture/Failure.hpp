#pragma once

#include "mirror/CaptureService.hpp"

#import <Foundation/Foundation.h>

/// Why the system captures nothing, in its own words where it has any. Threads: any.
namespace orvel::Failure {

/// It says so itself. Nil when it does not say why.
CaptureFailure because(NSError* error);

/// It says nothing at all.
CaptureFailure silence();

}  // namespace orvel::Failure
