#include "platform/macos/SystemLoginItemService.hpp"

#import <ServiceManagement/ServiceManagement.h>

namespace orvel {

bool SystemLoginItemService::isEnabled() const {
  return SMAppService.mainAppService.status == SMAppServiceStatusEnabled;
}

bool SystemLoginItemService::enter() {
  return [SMAppService.mainAppService registerAndReturnError:nil];
}

bool SystemLoginItemService::remove() {
  SMAppService* service = SMAppService.mainAppService;
  const SMAppServiceStatus status = service.status;
  if (status == SMAppServiceStatusNotRegistered || status == SMAppServiceStatusNotFound) return false;
  return [service unregisterAndReturnError:nil];
}

}  // namespace orvel
