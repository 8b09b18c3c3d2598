#pragma once

#import "NSGraphics.h"

#pragma clang assume_nonnull begin

@interface NSImage : NSObject <NSCopying>
@property NSSize size;
- (void)drawInRect:(NSRect)place
          fromRect:(NSRect)part
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction;
@end

#pragma clang assume_nonnull end
