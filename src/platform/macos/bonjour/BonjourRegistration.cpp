#include "platform/macos/bonjour/BonjourRegistration.hpp"

#include "base/UTF8.hpp"
#include "platform/ServiceName.hpp"

#include <arpa/inet.h>

namespace orvel {

BonjourRegistration::BonjourRegistration(const BonjourService& service) {
  // The library may abort the program for it.
  if (!isValidUTF8(service.name)) {
    error_ = kDNSServiceErr_BadParam;
    return;
  }
  constexpr DNSServiceFlags none = 0;
  constexpr std::uint32_t everyInterface = 0;
  error_ = DNSServiceRegister(
      &reference_, none, everyInterface, fittingServiceName(service.name).c_str(), service.type.c_str(), nullptr,
      nullptr, htons(service.port), 0, nullptr,
      [](DNSServiceRef, DNSServiceFlags, DNSServiceErrorType error, const char*, const char*, const char*, void* self) {
        static_cast<BonjourRegistration*>(self)->answered(error);
      },
      this);
  // What a failed call leaves behind is nobody's.
  if (error_ != kDNSServiceErr_NoError) reference_ = nullptr;
}

BonjourRegistration::~BonjourRegistration() {
  if (reference_ != nullptr) DNSServiceRefDeallocate(reference_);
}

int BonjourRegistration::descriptor() const {
  return reference_ == nullptr ? -1 : DNSServiceRefSockFD(reference_);
}

void BonjourRegistration::process() {
  const DNSServiceErrorType error = DNSServiceProcessResult(reference_);
  if (error != kDNSServiceErr_NoError) error_ = error;
}

void BonjourRegistration::answered(DNSServiceErrorType error) {
  error_ = error;
  isConfirmed_ = error == kDNSServiceErr_NoError;
}

}  // namespace orvel
