#pragma once

#include "Annotations.h"

#include <stdint.h>

typedef struct _DNSServiceRef_t* DNSServiceRef;
typedef uint32_t DNSServiceFlags;
typedef int32_t DNSServiceErrorType;

enum {
  kDNSServiceErr_NoError = 0,
  kDNSServiceErr_BadParam = -65540,
};

typedef void (*DNSServiceRegisterReply)(DNSServiceRef sdRef, DNSServiceFlags flags, DNSServiceErrorType errorCode,
                                        const char* name, const char* regtype, const char* domain, void* context);

MAC_EXTERN DNSServiceErrorType DNSServiceRegister(DNSServiceRef* sdRef, DNSServiceFlags flags, uint32_t interfaceIndex,
                                                  const char* name, const char* regtype, const char* domain,
                                                  const char* host, uint16_t port, uint16_t txtLen,
                                                  const void* txtRecord, DNSServiceRegisterReply callBack,
                                                  void* context);
MAC_EXTERN int DNSServiceRefSockFD(DNSServiceRef sdRef);
MAC_EXTERN DNSServiceErrorType DNSServiceProcessResult(DNSServiceRef sdRef);
MAC_EXTERN void DNSServiceRefDeallocate(DNSServiceRef sdRef);
