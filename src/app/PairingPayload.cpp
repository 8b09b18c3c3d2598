#include "app/PairingPayload.hpp"

#include "session/Machine.hpp"
#include "session/NetworkInfo.hpp"
#include "session/PairingStore.hpp"

#include <boost/json/object.hpp>
#include <boost/json/serialize.hpp>

namespace orvel {
namespace {

constexpr int payloadVersion = 1;

}  // namespace

std::string pairingPayload(const Machine& machine, PairingStore& pairing, std::uint16_t port) {
  return boost::json::serialize(boost::json::object{{"v", payloadVersion},
                                                    {"host", NetworkInfo::localAddress(machine).value_or("")},
                                                    {"port", port},
                                                    {"token", pairing.token()},
                                                    {"name", displayName(machine)}});
}

}  // namespace orvel
