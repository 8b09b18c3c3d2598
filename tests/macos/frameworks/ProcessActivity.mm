#include "frameworks/ProcessActivity.hpp"

#include <algorithm>
#include <cstdlib>

@interface ActivityToken : NSObject {
 @public
  fake::BegunActivity begun_;
}
@end
@implementation ActivityToken
@end

@implementation NSProcessInfo
+ (NSProcessInfo*)processInfo {
  static NSProcessInfo* const info = [[NSProcessInfo alloc] init];
  return info;
}
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
  if (reason.length == 0) std::abort();
  ActivityToken* token = [[ActivityToken alloc] init];
  token->begun_ = {options, reason.UTF8String};
  fake::activities().push_back(token->begun_);
  return token;
}
- (void)endActivity:(id<NSObject>)activity {
  auto& all = fake::activities();
  const auto found = std::ranges::find(all, static_cast<ActivityToken*>(activity)->begun_);
  if (found == all.end()) std::abort();
  all.erase(found);
}
@end

std::vector<fake::BegunActivity>& fake::activities() {
  static std::vector<BegunActivity> all;
  return all;
}
