#include "frameworks/SymbolImage.hpp"

#include "runtime/Foundation.hpp"

@interface SymbolImage : NSImage {
 @public
  std::string name_;
  std::string description_;
  BOOL isTemplate_;
}
@end

@implementation SymbolImage
- (BOOL)isTemplate {
  return isTemplate_;
}
- (void)setTemplate:(BOOL)isTemplate {
  isTemplate_ = isTemplate;
}
@end

@implementation NSImage (Symbol)
+ (instancetype)imageWithSystemSymbolName:(NSString*)name accessibilityDescription:(NSString*)description {
  if (name.UTF8String == fake::unknownSymbol()) return nil;
  SymbolImage* image = [[SymbolImage alloc] init];
  image->name_ = name.UTF8String;
  if (description != nil) image->description_ = description.UTF8String;
  return image;
}
- (BOOL)isTemplate {
  return NO;
}
- (void)setTemplate:(BOOL)isTemplate {
}
@end

namespace fake {

std::string& unknownSymbol() {
  static std::string name;
  return name;
}

std::string symbolOf(NSImage* image) {
  return static_cast<SymbolImage*>(image)->name_;
}

std::string descriptionOf(NSImage* image) {
  return static_cast<SymbolImage*>(image)->description_;
}

}  // namespace fake
