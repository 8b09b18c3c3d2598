#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// The accessibility of the system: one element, which is wherever it is looked for.
namespace fake {

/// A value, or why there is none.
using Attribute = std::variant<std::string, CGPoint, CGSize, AXError>;

struct Accessibility {
  std::optional<AXError> searchFailure;
  bool isNothingThere = false;                  ///< The search succeeds and finds nothing.
  std::map<std::string, Attribute> attributes;  ///< What is not in here has no value.
  std::vector<float> timeouts;                  ///< Those that were set for everything.
  std::vector<std::pair<float, float>> searches;
  bool isAskedElsewhere = false;       ///< On another thread than the main one, which is wrong for windows of our own.
  std::vector<std::string> questions;  ///< The attributes that were asked for.
};

/// Tests set it anew.
Accessibility& accessibility();

}  // namespace fake
