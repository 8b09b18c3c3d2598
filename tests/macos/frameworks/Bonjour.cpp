#include "frameworks/Bonjour.hpp"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <thread>

namespace {

constexpr DNSServiceErrorType serviceNotRunning = -65563;

}  // namespace

struct _DNSServiceRef_t {
  DNSServiceRegisterReply reply = nullptr;
  void* context = nullptr;
  std::array<int, 2> ends{-1, -1};  // ours and the daemon's
  const std::thread::id thread = std::this_thread::get_id();
};

namespace fake {
namespace {

void note(DNSServiceRef reference, int socketQueries) {
  bonjour().change([&](Bonjour::State& state) {
    state.socketQueries += socketQueries;
    if (reference->thread != std::this_thread::get_id()) ++state.wrongThreadUses;
  });
}

}  // namespace

Bonjour::State Bonjour::state() {
  return state_.withLock([](const State& state) { return state; });
}

void Bonjour::change(const std::function<void(State&)>& how) {
  state_.withLock([&](State& state) { how(state); });
}

void Bonjour::answer(DNSServiceErrorType error) {
  change([&](State& state) { write(state.living.at(0)->ends[1], &error, sizeof error); });
}

void Bonjour::die() {
  change([](State& state) { shutdown(state.living.at(0)->ends[1], SHUT_RDWR); });
}

Bonjour& bonjour() {
  static Bonjour bonjour;
  return bonjour;
}

}  // namespace fake

extern "C" {

DNSServiceErrorType DNSServiceRegister(DNSServiceRef* sdRef, DNSServiceFlags flags, uint32_t interfaceIndex,
                                       const char* name, const char* regtype, const char* domain, const char* host,
                                       uint16_t port, uint16_t txtLen, const void* txtRecord,
                                       DNSServiceRegisterReply callBack, void* context) {
  const auto delay = fake::bonjour().state().delay;
  if (delay) delay();
  DNSServiceErrorType refusal = kDNSServiceErr_NoError;
  fake::bonjour().change([&](fake::Bonjour::State& state) {
    state.requests.push_back({.flags = flags,
                              .interfaceIndex = interfaceIndex,
                              .name = name,
                              .type = regtype,
                              .hasDomainOrHost = domain != nullptr || host != nullptr,
                              .port = port,
                              .hasText = txtLen != 0 || txtRecord != nullptr});
    if (state.refusals.empty()) return;
    refusal = state.refusals.front();
    if (state.refusals.size() > 1) state.refusals.pop_front();
  });
  if (refusal != kDNSServiceErr_NoError) {
    // The library has freed it by then, but does not take it back.
    *sdRef = reinterpret_cast<DNSServiceRef>(1);
    return refusal;
  }
  *sdRef = new _DNSServiceRef_t{.reply = callBack, .context = context};
  socketpair(AF_UNIX, SOCK_STREAM, 0, (*sdRef)->ends.data());
  fake::bonjour().change([&](fake::Bonjour::State& state) { state.living.push_back(*sdRef); });
  return kDNSServiceErr_NoError;
}

int DNSServiceRefSockFD(DNSServiceRef sdRef) {
  fake::note(sdRef, 1);
  return sdRef->ends[0];
}

DNSServiceErrorType DNSServiceProcessResult(DNSServiceRef sdRef) {
  fake::note(sdRef, 0);
  DNSServiceErrorType error = 0;
  if (read(sdRef->ends[0], &error, sizeof error) != sizeof error) return serviceNotRunning;
  sdRef->reply(sdRef, 0, error, "name", "type", "local.", sdRef->context);
  return kDNSServiceErr_NoError;
}

void DNSServiceRefDeallocate(DNSServiceRef sdRef) {
  fake::note(sdRef, 0);
  fake::bonjour().change([&](fake::Bonjour::State& state) { std::erase(state.living, sdRef); });
  for (const int end : sdRef->ends) close(end);
  delete sdRef;
}

}  // extern "C"
