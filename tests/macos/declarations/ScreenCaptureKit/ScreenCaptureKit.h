#pragma once

#import "SCShareableContent.h"
#import "SCStream.h"
