#pragma once

#import <Foundation/Foundation.h>

#import "NSApplication.h"
#import "NSEvent.h"
#import "NSImage.h"
#import "NSRunningApplication.h"
#import "NSStatusItem.h"
#import "NSWindow.h"
#import "NSWorkspace.h"
#import "NSWorkspaceOpening.h"
