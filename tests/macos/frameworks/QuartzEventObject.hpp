#pragma once

#include "frameworks/Quartz.hpp"

#import <Foundation/Foundation.h>

/// What a CGEventRef points to.
@interface QuartzEventObject : NSObject {
 @public
  fake::QuartzEvent event_;
}
@end

namespace fake {

/// Nil when no more can be made.
QuartzEventObject* makeQuartzEvent(std::uint32_t type) __attribute__((ns_returns_retained));

}  // namespace fake
