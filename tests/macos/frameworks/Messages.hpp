#pragma once

#import <Foundation/Foundation.h>

extern "C" void objc_msgSend();

namespace fake {

/// Sends a message that is known by its selector alone, as frameworks do.
template <class... Arguments>
void sendMessage(id receiver, SEL selector, Arguments... arguments) {
  reinterpret_cast<void (*)(id, SEL, Arguments...)> (&objc_msgSend)(receiver, selector, arguments...);
}

}  // namespace fake
