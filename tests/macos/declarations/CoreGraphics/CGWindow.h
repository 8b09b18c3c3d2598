#pragma once

MAC_EXTERN bool CGPreflightScreenCaptureAccess(void) MAC_SINCE(10.15);
MAC_EXTERN bool CGRequestScreenCaptureAccess(void) MAC_SINCE(10.15);
