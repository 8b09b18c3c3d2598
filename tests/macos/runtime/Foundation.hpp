#pragma once

#import <Foundation/Foundation.h>

#include <string>

@interface NSNotificationCenter ()
- (void)post:(NSString*)name userInfo:(NSDictionary*)userInfo;
@property(readonly) NSUInteger observerCount;
@end

/// What tests and fakes make that programs on a Mac are only given.
namespace objectivec {

NSString* text(const std::string& bytes);
std::size_t utf16Length(const std::string& text);

/// Whether every character starts and goes on as one does; good enough to distinguish a text from other bytes.
bool isUTF8(const std::string& bytes);

NSError* error(const std::string& domain, NSInteger code, const std::string& description);

/// Notifies the observers of `center`, on this thread.
void notify(NSNotificationCenter* center, NSString* name, NSDictionary* userInfo);
std::size_t observerCount(NSNotificationCenter* center);

}  // namespace objectivec
