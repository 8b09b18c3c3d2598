#pragma once

#import "NSApplication.h"
#import "NSBitmapImageRep.h"
#import "NSColorSpace.h"
#import "NSEvent.h"
#import "NSEventMonitor.h"
#import "NSGraphics.h"
#import "NSGraphicsContext.h"
#import "NSImage.h"
#import "NSImageSymbol.h"
#import "NSRunningApplication.h"
#import "NSStatusItem.h"
#import "NSWindow.h"
#import "NSWorkspace.h"
#import "NSWorkspaceOpening.h"

#import <Foundation/Foundation.h>
