#pragma once

#include <cstdint>
#include <string>

namespace orvel {

class Machine;
class PairingStore;

/// The JSON text that the pairing QR code encodes. Threads: any.
std::string pairingPayload(const Machine& machine, PairingStore& pairing, std::uint16_t port);

}  // namespace orvel
