#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace orvel::phone {

/// Why something could not be done, with a sentence for people.
struct Error {
  enum class Kind {
    unreachable,  ///< No connection came about.
    ended,        ///< The connection has ended.
    timedOut,     ///< Nothing came within the time allowed; the connection stands.
    denied,       ///< The host refused the proof, or what was asked for.
    unexpected,   ///< The host said something that a phone cannot make sense of.
    local,        ///< A file or the input of this program is at fault.
  };

  Kind kind = Kind::ended;
  std::string text;
};

/// `error`, in the words `late` when it is that something took too long.
inline Error explained(Error error, std::string_view late) {
  if (error.kind == Error::Kind::timedOut) error.text = late;
  return error;
}

/// Nothing when all went well.
using Failure = std::optional<Error>;

/// A value, or why there is none. Threads: as its value.
template <class Value>
class [[nodiscard]] Result {
 public:
  Result(Value value) : content_(std::move(value)) {}
  Result(Error error) : content_(std::move(error)) {}

  explicit operator bool() const { return content_.index() == 0; }

  /// The value; only when there is one.
  Value& operator*() { return *std::get_if<0>(&content_); }
  const Value& operator*() const { return *std::get_if<0>(&content_); }
  Value* operator->() { return std::get_if<0>(&content_); }
  const Value* operator->() const { return std::get_if<0>(&content_); }

  /// Why there is no value; only when there is none.
  const Error& error() const { return *std::get_if<1>(&content_); }

 private:
  std::variant<Value, Error> content_;
};

}  // namespace orvel::phone
