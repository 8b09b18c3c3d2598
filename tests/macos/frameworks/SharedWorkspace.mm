#import <AppKit/AppKit.h>

@implementation NSWorkspace
+ (NSWorkspace*)sharedWorkspace {
  static NSWorkspace* workspace = [[NSWorkspace alloc] init];
  return workspace;
}
@end
