#pragma once

#include "base/Executor.hpp"
#include "base/Guarded.hpp"
#include "base/SharedBytes.hpp"
#include "input/FrameDecoder.hpp"
#include "input/HeldKeys.hpp"
#include "mirror/ScreenMirror.hpp"
#include "session/Network.hpp"

#include <boost/json/object.hpp>
#include <boost/uuid/uuid.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

class AppCatalog;
class CursorSnap;
class EventPoster;
class KeyboardDriver;
class Machine;
class MediaDriver;
class PairingStore;
class PermissionGate;
class PointerDriver;
class ScreenRecordingAccess;
class TrustCheck;
struct ControlMessage;

using SessionID = boost::uuids::uuid;

/// What a session needs of the hub that made it. Threads: any.
class SessionHub {
 public:
  virtual ~SessionHub() = default;

  /// Announces the names of the connected phones anew.
  virtual void publishClients() = 0;

  /// The session's phone has left, but what it had sent is still to be done: counts it no more among the phones, and
  /// keeps it until it leaves. False when it is not known, or when too many do so already.
  virtual bool linger(const SessionID& id) = 0;

  /// Forgets the session. Harmless when it is not known.
  virtual void leave(const SessionID& id) = 0;

  /// Says whether a phone sees the screen.
  virtual void setMirroring(bool on) = 0;
};

/// What all sessions share.
struct SessionServices {
  AppCatalog& apps;
  EventPoster& events;
  KeyboardDriver& keyboard;
  HeldKeys& keys;
  const Machine& machine;
  MediaDriver& media;
  ScreenMirror& mirror;
  PairingStore& pairing;
  PermissionGate& permission;
  PointerDriver& pointer;
  QueueFactory& queues;
  ScreenRecordingAccess& recording;
  CursorSnap& snap;
  TrustCheck& trust;
};

/// Messages of a phone that were read but must wait, in the order of arrival, and how much memory they take.
///
/// Threads: one at a time.
class PendingMessages {
 public:
  struct Item {
    MessageType type = MessageType::text;
    std::string payload;

    /// The bytes that it takes, about.
    std::size_t cost() const { return sizeof(Item) + payload.size(); }

    Message message() const {
      return {.type = type, .payload = {reinterpret_cast<const std::uint8_t*>(payload.data()), payload.size()}};
    }
  };

  bool empty() const { return items_.empty(); }

  /// The bytes that all of them take, about.
  std::size_t cost() const { return cost_; }

  void push(const Message& message) {
    items_.push_back({message.type, std::string(message.payload.begin(), message.payload.end())});
    cost_ += items_.back().cost();
  }

  /// Takes out the oldest; there must be one.
  Item pop() {
    Item oldest = std::move(items_.front());
    items_.pop_front();
    cost_ -= oldest.cost();
    return oldest;
  }

  void clear() {
    items_.clear();
    cost_ = 0;
  }

 private:
  std::deque<Item> items_;
  std::size_t cost_ = 0;
};

/// One connected phone: greets it, checks its proof, and carries out what it sends.
///
/// The handlers run on the connection's serial queue, slow work on a second serial queue. While what the phone has
/// caused but not yet taken (replies unsent, work not done) exceeds a bound, its messages are read, so that its end is
/// noticed, but all except those for the pointer wait. When too many of them wait, nothing more is read from it.
///
/// Threads: any for the public operations.
class ClientSession final : public std::enable_shared_from_this<ClientSession> {
 public:
  /// `services` must outlive the session.
  ClientSession(std::unique_ptr<Transport> transport, std::weak_ptr<SessionHub> hub, const SessionServices& services);
  ~ClientSession();
  ClientSession(const ClientSession&) = delete;
  ClientSession& operator=(const ClientSession&) = delete;

  /// Opens the connection. Called once, when the hub knows the session.
  void start();

  /// Sends one message as compact JSON. A message that is not valid UTF-8 is dropped.
  void send(const boost::json::object& json);

  /// Sends one image of the screen, and calls `sent` when the network has taken it. A phone that has not proved that it
  /// knows the token gets none; then `sent` is called at once. Threads: the connection's queue.
  void sendMirrorFrame(SharedBytes jpeg, Task sent);

  /// Closes the connection; the session then takes itself down on its own queue.
  void cancel();

  const SessionID& id() const { return id_; }

  /// Whether the phone has proved that it knows the token.
  bool authenticated() const { return authenticated_; }

  /// The name that the phone gave itself; "iPhone" until then.
  std::string deviceName() const;

 private:
  void stateChanged(Transport::State state);
  void sendHello();
  void receiveNext();
  void received(std::optional<Message> message);
  void hungUp();
  bool mustWait(const Message& message) const;
  bool isFull() const;
  bool hasEnded() const { return *ended_; }
  void handle(const Message& message);
  void handlePending();
  void teardown();
  void finishLater();
  void finishPending();

  struct Request;
  void handleControl(std::span<const std::uint8_t> data);
  void authenticate(const ControlMessage& message);
  void remember(const std::string& device, const std::string& proof);
  void deny();
  void pong();
  void getApps();
  void getIcons(const ControlMessage& request);
  void reveal();

  void startMirror(std::int64_t width, std::int64_t fps, double quality);
  void mirrorStarted(std::uint64_t start, const ScreenMirror::Outcome& outcome);
  void stopMirror();

  void handleInput(std::span<const std::uint8_t> frame);
  void carryOut(const FrameDecoder::Move& move);
  void carryOut(const FrameDecoder::Button& button);
  void carryOut(const FrameDecoder::Scroll& scroll);
  void carryOut(const FrameDecoder::Key& key);
  void carryOut(const FrameDecoder::Text& text);
  void carryOut(const FrameDecoder::Media& media);
  void carryOut(const FrameDecoder::App& app);
  void carryOut(const FrameDecoder::Click& click);
  void carryOut(const FrameDecoder::MoveAbsolute& move);

  void pressAfterTexts(Task press);
  void typeLater(Task task, std::size_t cost);
  void releaseAll();
  void releaseAfterTexts();

  void sendText(std::string json);
  void handOff(Task task, std::size_t cost);
  void answerLater(std::function<boost::json::object()> compose, std::size_t cost);
  void settle(std::size_t cost);

  static constexpr std::size_t taskCost = 256;  // bytes that a task in a queue takes, about

  const SessionID id_;
  const std::unique_ptr<Transport> transport_;
  const std::weak_ptr<SessionHub> hub_;
  const SessionServices& services_;
  const std::unique_ptr<Executor> work_;
  const std::string nonce_;
  std::atomic<bool> authenticated_ = false;
  Guarded<std::string> deviceName_;
  const HeldKeys::Phone phone_;
  std::atomic<std::size_t> backlog_ = 0;  // bytes caused by the phone and not yet dealt with
  PendingMessages pending_;               // read, but not handled for the backlog's sake
  bool handlesPendingSoon_ = false;
  std::size_t typingLeft_ = 0;  // texts, and keys behind them, that are still to be typed
  bool readingPaused_ = false;
  bool readsToTheEnd_ = false;      // the phone sends no more, so there is little left to be read
  bool owningMirror_ = false;       // this session has started the capture and not stopped it since
  std::uint64_t mirrorStarts_ = 0;  // how often it has asked for it
  const std::shared_ptr<std::atomic<bool>> ended_ = std::make_shared<std::atomic<bool>>(false);  // the work asks, too
  bool lingers_ = false;  // the phone has left, and what it had sent is still to be done
};

}  // namespace orvel
