#include "catalog/AppEntry.hpp"

namespace orvel {

boost::json::object AppEntry::json() const {
  return {{"id", id}, {"name", name}, {"running", running}};
}

}  // namespace orvel
