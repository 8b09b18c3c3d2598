#pragma once

#include "Annotations.h"

#include <CoreFoundation/CoreFoundation.h>
#include <stdint.h>

typedef int IOReturn;
typedef uint32_t IOPMAssertionID;
enum : IOPMAssertionID { kIOPMNullAssertionID = 0 };
typedef enum IOPMUserActiveType : unsigned int {
  kIOPMUserActiveLocal,
  kIOPMUserActiveRemote,
} IOPMUserActiveType;

/// Zero when it succeeds. The number is one that it returned before, or none.
MAC_EXTERN IOReturn IOPMAssertionDeclareUserActivity(CFStringRef name, IOPMUserActiveType type,
                                                     IOPMAssertionID* assertion) MAC_SINCE(10.7.3);
