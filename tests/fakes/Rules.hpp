#pragma once

#include "catalog/AppCatalog.hpp"
#include "fakes/FakeComputer.hpp"
#include "fakes/FakeMachine.hpp"
#include "fakes/ScriptedScreen.hpp"
#include "fakes/ScriptedTree.hpp"
#include "input/CursorSnap.hpp"
#include "input/HeldKeys.hpp"
#include "input/KeyboardDriver.hpp"
#include "input/MediaDriver.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "mirror/ScreenMirror.hpp"
#include "session/ClientSession.hpp"
#include "session/PairingStore.hpp"

#include <memory>

namespace orvel {

/// The real rules that sessions stand on, over a computer of fakes and a desktop of the test's choice.
struct Rules {
  /// `Desktop` posts events, has displays and is trusted or not.
  template <class Desktop>
  Rules(Desktop& desktop, Clock& clock, QueueFactory& queues)
      : pointerQueue(queues.makeSerialQueue()),
        snapQueue(queues.makeSerialQueue()),
        mirrorQueue(queues.makeSerialQueue()),
        permission(desktop),
        pointer(desktop, desktop, clock, *pointerQueue),
        keyboard(desktop, clock),
        keys(desktop),
        media(desktop),
        snap({.clock = clock, .permission = permission, .pointer = pointer, .queue = *snapQueue, .tree = tree}),
        services{.apps = apps,
                 .events = desktop,
                 .keyboard = keyboard,
                 .keys = keys,
                 .machine = machine,
                 .media = media,
                 .mirror = mirror,
                 .pairing = pairing,
                 .permission = permission,
                 .pointer = pointer,
                 .queues = queues,
                 .recording = screen,
                 .snap = snap,
                 .trust = desktop} {}

  /// What sessions share, with a permission gate of the test's choice.
  SessionServices servicesUnder(PermissionGate& gate) {
    return {.apps = services.apps,
            .events = services.events,
            .keyboard = services.keyboard,
            .keys = services.keys,
            .machine = services.machine,
            .media = services.media,
            .mirror = services.mirror,
            .pairing = services.pairing,
            .permission = gate,
            .pointer = services.pointer,
            .queues = services.queues,
            .recording = services.recording,
            .snap = services.snap,
            .trust = services.trust};
  }

  FakeMachine machine;
  FakeComputer computer;
  MemoryPreferences preferences;
  ScriptedTree tree;
  ScriptedScreen screen;
  ScriptedEncoder encoder;
  const std::unique_ptr<Executor> pointerQueue;
  const std::unique_ptr<Executor> snapQueue;
  const std::unique_ptr<Executor> mirrorQueue;
  AppCatalog apps{computer, computer};
  PairingStore pairing{preferences};
  PermissionGate permission;
  PointerDriver pointer;
  KeyboardDriver keyboard;
  HeldKeys keys;
  MediaDriver media;
  CursorSnap snap;
  ScreenMirror mirror{{.access = screen, .capture = screen, .encoder = encoder, .queue = *mirrorQueue}};
  const SessionServices services;
};

}  // namespace orvel
