// How the declarations in this folder say since when something is there. They were written by us from the public
// reference pages and hold only what the leaves use; nothing in them comes from Apple's headers.
#pragma once

#ifdef __cplusplus
#define MAC_EXTERN extern "C"
#else
#define MAC_EXTERN extern
#endif

#define MAC_SINCE(version) __attribute__((availability(macos, introduced = version)))
#define MAC_DEPRECATED(version, last, instead) \
  __attribute__((availability(macos, introduced = version, deprecated = last, message = instead)))
/// A Core Foundation type that is an Objective-C object as well.
#define MAC_BRIDGED(type) __attribute__((objc_bridge(type)))
/// A function whose result its caller owns, and one whose result it does not.
#define MAC_RETURNS_RETAINED __attribute__((cf_returns_retained))
#define MAC_RETURNS_NOT_RETAINED __attribute__((cf_returns_not_retained))
