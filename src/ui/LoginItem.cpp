#include "ui/LoginItem.hpp"

namespace orvel {

bool LoginItem::isEnabled() const {
  return service_.isEnabled();
}

bool LoginItem::set(bool on) {
  return on ? service_.enter() : service_.remove();
}

}  // namespace orvel
