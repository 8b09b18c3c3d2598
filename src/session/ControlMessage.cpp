#include "session/ControlMessage.hpp"

#include <boost/json/basic_parser_impl.hpp>
#include <boost/system/error_code.hpp>

#include <cmath>
#include <cstddef>
#include <string_view>
#include <utility>
#include <variant>

namespace orvel {
namespace {

constexpr std::size_t deepestNesting = 512;
constexpr std::size_t longestKey = 16;

/// The same number as an integer, when it is one.
std::optional<std::int64_t> integerOf(double number) {
  constexpr double beyond = 9223372036854775808.0;  // the first that is too large
  if (number < -beyond || number >= beyond || std::trunc(number) != number) return std::nullopt;
  return static_cast<std::int64_t>(number);
}

/// Takes the values under the keys that matter out of the stream of a document's parts.
class Reader {
 public:
  // The parser finds these by their names.
  // NOLINTBEGIN(readability-identifier-naming)
  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

  using Error = boost::system::error_code;
  using Text = std::string_view;

  bool on_document_begin(Error&) { return true; }
  bool on_document_end(Error&) { return true; }
  bool on_object_begin(Error&) { return enter(true); }
  bool on_object_end(std::size_t, Error&) { return leave(); }
  bool on_array_begin(Error&) { return enter(false); }
  bool on_array_end(std::size_t, Error&) { return leave(); }

  bool on_key_part(Text part, std::size_t, Error&) {
    if (depth_ == 1 && key_.size() <= longestKey) key_ += part;
    return true;
  }
  bool on_key(Text part, std::size_t size, Error& error) {
    on_key_part(part, size, error);
    if (depth_ == 1) expect(std::exchange(key_, {}));
    return true;
  }

  bool on_string_part(Text part, std::size_t, Error&) {
    if (isAmongIDs() && message_.ids->size() < ControlMessage::mostIDs) id_ += part;
    if (auto* const text = wanted<std::string>()) {
      if (!*text) text->emplace();
      text->value() += part;
    }
    return true;
  }
  bool on_string(Text part, std::size_t size, Error& error) {
    on_string_part(part, size, error);
    if (!isAmongIDs()) return passOver();
    if (message_.ids->size() < ControlMessage::mostIDs) message_.ids->push_back(std::exchange(id_, {}));
    return true;
  }

  bool on_number_part(Text, Error&) { return true; }
  bool on_int64(std::int64_t number, Text, Error&) { return takeNumber(number, static_cast<double>(number)); }
  bool on_uint64(std::uint64_t number, Text, Error&) {
    // Comes only where the signed type is too small.
    return takeNumber(std::nullopt, static_cast<double>(number));
  }
  bool on_double(double number, Text, Error&) { return takeNumber(integerOf(number), number); }
  bool on_bool(bool, Error&) { return passOver(); }
  bool on_null(Error&) { return passOver(); }
  bool on_comment_part(Text, Error&) { return true; }
  bool on_comment(Text, Error&) { return true; }
  // NOLINTEND(readability-identifier-naming)

  std::optional<ControlMessage> message() && {
    if (!kind_) return std::nullopt;
    message_.kind = *std::move(kind_);
    return std::move(message_);
  }

 private:
  using Slot =
      std::variant<std::monostate, std::optional<std::string>*, std::optional<std::int64_t>*, std::optional<double>*>;

  Slot slotFor(Text key) {
    if (key == "t") return &kind_;
    if (key == "proof") return &message_.proof;
    if (key == "device") return &message_.device;
    if (key == "width") return &message_.width;
    if (key == "fps") return &message_.fps;
    if (key == "quality") return &message_.quality;
    return {};
  }

  /// The value of `key` comes next. Of a key that comes twice the last counts.
  void expect(Text key) {
    if (!isObject_) return;
    wanted_ = slotFor(key);
    if (auto* const text = wanted<std::string>()) text->reset();
    if (auto* const integer = wanted<std::int64_t>()) integer->reset();
    if (auto* const number = wanted<double>()) number->reset();
    onIDs_ = key == "ids";
    if (onIDs_) message_.ids.reset();
  }

  /// Where the value that is being read goes, if it is one of that type.
  template <class Value>
  std::optional<Value>* wanted() {
    auto* const slot = std::get_if<std::optional<Value>*>(&wanted_);
    return slot && depth_ == 1 ? *slot : nullptr;
  }

  bool takeNumber(std::optional<std::int64_t> asInteger, double asDouble) {
    if (auto* const integer = wanted<std::int64_t>()) *integer = asInteger;
    if (auto* const number = wanted<double>()) *number = asDouble;
    return passOver();
  }

  bool enter(bool isObject) {
    if (depth_ == 0) isObject_ = isObject;
    if (depth_ == 1 && onIDs_ && !isObject) message_.ids.emplace();
    ++depth_;
    return true;
  }
  bool leave() {
    --depth_;
    return passOver();
  }
  /// A value has ended that is no text to be kept.
  bool passOver() {
    if (isAmongIDs()) message_.ids.reset();  // not an array of strings, then
    if (depth_ == 1) {
      wanted_ = {};
      onIDs_ = false;
    }
    return true;
  }
  bool isAmongIDs() const { return depth_ == 2 && onIDs_ && message_.ids; }

  std::size_t depth_ = 0;
  bool isObject_ = false;
  std::string key_;
  Slot wanted_;         // where the value of the key just read goes
  bool onIDs_ = false;  // the value of "ids" is being read
  std::string id_;
  std::optional<std::string> kind_;
  ControlMessage message_;
};

}  // namespace

std::optional<ControlMessage> ControlMessage::parse(std::span<const std::uint8_t> data) {
  boost::json::basic_parser<Reader> parser({.max_depth = deepestNesting});
  boost::system::error_code error;
  const auto* text = reinterpret_cast<const char*>(data.data());
  const std::size_t read = parser.write_some(false, text, data.size(), error);
  if (error || read < data.size()) return std::nullopt;
  return std::move(parser.handler()).message();
}

}  // namespace orvel
