#include "session/ControlMessage.hpp"

#include <boost/json/basic_parser_impl.hpp>

#include <cstddef>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

constexpr std::size_t deepestNesting = 512;
constexpr std::size_t longestKey = 16;

/// Takes the values under the keys that matter out of the stream of a document's parts.
class Reader {
 public:
  // The parser finds these by their names.
  // NOLINTBEGIN(readability-identifier-naming)
  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

  using Error = boost::json::error_code;
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
    if (depth_ == 1) {
      onIDs_ = isObject_ && key_ == "ids";
      wanted_ = slotFor(std::exchange(key_, {}));
      // Of a key that comes twice the last counts.
      if (wanted_) wanted_->reset();
      if (onIDs_) ids_.reset();
    }
    return true;
  }

  bool on_string_part(Text part, std::size_t, Error&) {
    if (isAmongIDs() && ids_->size() < ControlMessage::mostIDs) id_ += part;
    if (depth_ != 1 || !wanted_) return true;
    if (!*wanted_) wanted_->emplace();
    wanted_->value() += part;
    return true;
  }
  bool on_string(Text part, std::size_t size, Error& error) {
    on_string_part(part, size, error);
    if (!isAmongIDs()) return passOver();
    if (ids_->size() < ControlMessage::mostIDs) ids_->push_back(std::exchange(id_, {}));
    return true;
  }

  bool on_number_part(Text, Error&) { return true; }
  bool on_int64(std::int64_t, Text, Error&) { return passOver(); }
  bool on_uint64(std::uint64_t, Text, Error&) { return passOver(); }
  bool on_double(double, Text, Error&) { return passOver(); }
  bool on_bool(bool, Error&) { return passOver(); }
  bool on_null(Error&) { return passOver(); }
  bool on_comment_part(Text, Error&) { return true; }
  bool on_comment(Text, Error&) { return true; }
  // NOLINTEND(readability-identifier-naming)

  std::optional<ControlMessage> message() && {
    if (!kind_) return std::nullopt;
    return ControlMessage{*std::move(kind_), std::move(proof_), std::move(device_), std::move(ids_)};
  }

 private:
  std::optional<std::string>* slotFor(Text key) {
    if (!isObject_) return nullptr;
    if (key == "t") return &kind_;
    if (key == "proof") return &proof_;
    if (key == "device") return &device_;
    return nullptr;
  }

  bool enter(bool isObject) {
    if (depth_ == 0) isObject_ = isObject;
    if (depth_ == 1 && onIDs_ && !isObject) ids_.emplace();
    ++depth_;
    return true;
  }
  bool leave() {
    --depth_;
    return passOver();
  }
  /// A value has ended that is no text to be kept.
  bool passOver() {
    if (isAmongIDs()) ids_.reset();  // not an array of strings, then
    if (depth_ == 1) {
      wanted_ = nullptr;
      onIDs_ = false;
    }
    return true;
  }
  bool isAmongIDs() const { return depth_ == 2 && onIDs_ && ids_; }

  std::size_t depth_ = 0;
  bool isObject_ = false;
  std::string key_;
  std::optional<std::string>* wanted_ = nullptr;  // where the value of the key just read goes
  bool onIDs_ = false;                            // the value of "ids" is being read
  std::string id_;
  std::optional<std::string> kind_;
  std::optional<std::string> proof_;
  std::optional<std::string> device_;
  std::optional<std::vector<std::string>> ids_;
};

}  // namespace

std::optional<ControlMessage> ControlMessage::parse(std::span<const std::uint8_t> data) {
  boost::json::basic_parser<Reader> parser({.max_depth = deepestNesting});
  boost::json::error_code error;
  const auto* text = reinterpret_cast<const char*>(data.data());
  const std::size_t read = parser.write_some(false, text, data.size(), error);
  if (error || read < data.size()) return std::nullopt;
  return std::move(parser.handler()).message();
}

}  // namespace orvel
