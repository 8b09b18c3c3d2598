#include "platform/macos/SystemApplicationBundles.hpp"

#include "platform/macos/CFPointer.hpp"
#include "platform/macos/NativeText.hpp"

#import <Foundation/Foundation.h>

#include <utility>

namespace orvel {
namespace {

std::vector<std::string> applicationFolders() {
  @autoreleasepool {
    std::vector<std::string> folders = {"/Applications", "/Applications/Utilities", "/System/Applications",
                                        "/System/Applications/Utilities"};
    if (const auto home = NativeText::fromNS(NSHomeDirectory())) folders.push_back(*home + "/Applications");
    return folders;
  }
}

/// Nothing for anything but a text: those who write bundles put there what they like.
std::optional<std::string> textIn(CFTypeRef value) {
  if (value == nullptr || CFGetTypeID(value) != CFStringGetTypeID()) return std::nullopt;
  return NativeText::fromCF(static_cast<CFStringRef>(value));
}

}  // namespace

SystemApplicationBundles::SystemApplicationBundles() : searchPaths_(applicationFolders()) {}

std::vector<std::string> SystemApplicationBundles::searchPaths() const {
  return searchPaths_;
}

std::string_view SystemApplicationBundles::suffix() const {
  return ".app";
}

std::optional<std::vector<std::string>> SystemApplicationBundles::list(const std::string& folder) {
  @autoreleasepool {
    NSString* path = NativeText::toNS(folder);
    if (path == nil) return std::nullopt;
    NSArray<NSString*>* names = [NSFileManager.defaultManager contentsOfDirectoryAtPath:path error:nil];
    if (names == nil) return std::nullopt;
    std::vector<std::string> entries;
    for (NSString* name in names) {
      if (auto entry = NativeText::fromNS(name)) entries.push_back(std::move(*entry));
    }
    return entries;
  }
}

std::optional<ApplicationBundle> SystemApplicationBundles::read(const std::string& path, const std::string&) {
  @autoreleasepool {
    NSString* location = NativeText::toNS(path);
    if (location == nil) return std::nullopt;
    // An NSBundle may be kept by its class, and would go on returning what was on disk when it was made.
    const CFPointer<CFBundleRef> bundle(CFBundleCreate(nullptr, (__bridge CFURLRef)[NSURL fileURLWithPath:location]));
    if (!bundle) return std::nullopt;
    auto identifier = textIn(CFBundleGetIdentifier(bundle.get()));
    if (!identifier) return std::nullopt;
    return ApplicationBundle{
        .identifier = std::move(*identifier),
        .displayName = textIn(CFBundleGetValueForInfoDictionaryKey(bundle.get(), CFSTR("CFBundleDisplayName"))),
        .name = textIn(CFBundleGetValueForInfoDictionaryKey(bundle.get(), CFSTR("CFBundleName")))};
  }
}

}  // namespace orvel
