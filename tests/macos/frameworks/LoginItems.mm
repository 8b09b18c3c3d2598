#include "frameworks/LoginItems.hpp"

#include "runtime/Foundation.hpp"

#import <ServiceManagement/ServiceManagement.h>

namespace {

BOOL refuse(NSError** error, NSInteger code) {
  if (error != nullptr) *error = objectivec::error("SMAppServiceErrorDomain", code, "refused");
  return NO;
}

}  // namespace

@implementation SMAppService
+ (SMAppService*)mainAppService {
  static SMAppService* service = [[SMAppService alloc] init];
  return service;
}
- (SMAppServiceStatus)status {
  return static_cast<SMAppServiceStatus>(fake::loginItems().status);
}
- (BOOL)registerAndReturnError:(NSError**)error {
  fake::LoginItems& items = fake::loginItems();
  items.calls.push_back("register");
  if (items.fails) return refuse(error, 1);
  if (items.status == SMAppServiceStatusRequiresApproval) return refuse(error, 11);
  if (items.status == SMAppServiceStatusEnabled) return refuse(error, 12);
  items.status = SMAppServiceStatusEnabled;
  return YES;
}
- (BOOL)unregisterAndReturnError:(NSError**)error {
  fake::LoginItems& items = fake::loginItems();
  items.calls.push_back("unregister");
  if (items.fails) return refuse(error, 6);
  items.status = SMAppServiceStatusNotRegistered;
  return YES;
}
@end

namespace fake {

LoginItems& loginItems() {
  static LoginItems items;
  return items;
}

}  // namespace fake
