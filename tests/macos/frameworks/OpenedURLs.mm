#include "frameworks/OpenedURLs.hpp"

#import <AppKit/AppKit.h>

fake::OpenedURLs& fake::openedURLs() {
  static OpenedURLs state;
  return state;
}

@implementation NSWorkspace (Opening)
- (BOOL)openURL:(NSURL*)url {
  fake::openedURLs().all.push_back(url.absoluteString.UTF8String);
  return YES;
}
@end
