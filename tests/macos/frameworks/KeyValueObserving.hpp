#pragma once

#import <Foundation/Foundation.h>

#include <cstddef>
#include <string>

/// Observers of properties. One that is removed without having been added ends the program, as on a Mac.
namespace fake {

/// Notifies the observers of that property that it has another value.
void notifyKeyValueObservers(NSObject* observed, const std::string& keyPath);

std::size_t keyValueObserverCount();

}  // namespace fake
