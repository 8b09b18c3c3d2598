#pragma once

#import <AppKit/AppKit.h>

#include <string>

/// The pictures that the system knows by name.
namespace fake {

/// A name that the system does not know; empty when it knows all.
std::string& unknownSymbol();

std::string symbolOf(NSImage* image);
std::string descriptionOf(NSImage* image);

}  // namespace fake
