#include "frameworks/Workspace.hpp"

#include "frameworks/IconDrawing.hpp"
#include "runtime/Foundation.hpp"

#import <AppKit/AppKit.h>

#include <algorithm>

const NSNotificationName NSWorkspaceDidActivateApplicationNotification =
    @"NSWorkspaceDidActivateApplicationNotification";
NSString* const NSWorkspaceApplicationKey = @"NSWorkspaceApplicationKey";

namespace {

NSString* textOrNil(const std::optional<std::string>& text) {
  return text ? objectivec::text(*text) : nil;
}

NSURL* locationOrNil(const std::optional<std::string>& path) {
  return path ? [NSURL fileURLWithPath:objectivec::text(*path)] : nil;
}

void note(const std::string& call) {
  fake::workspace().calls.push_back(call);
}

}  // namespace

@implementation NSRunningApplication {
  fake::Program program_;
}
+ (NSRunningApplication*)of:(const fake::Program&)program {
  NSRunningApplication* application = [[self alloc] init];
  application->program_ = program;
  return application;
}
+ (instancetype)runningApplicationWithProcessIdentifier:(pid_t)process {
  const auto& programs = fake::workspace().programs;
  const auto found = std::ranges::find(programs, process, &fake::Program::process);
  return found == programs.end() ? nil : [self of:*found];
}
- (BOOL)isTerminated {
  const auto& programs = fake::workspace().programs;
  const auto found = std::ranges::find(programs, program_.process, &fake::Program::process);
  return found == programs.end() || found->hasEnded;
}
- (BOOL)isActive {
  return fake::workspace().front == program_.process;
}
- (NSApplicationActivationPolicy)activationPolicy {
  return static_cast<NSApplicationActivationPolicy>(program_.policy);
}
- (NSString*)localizedName {
  return textOrNil(program_.name);
}
- (NSString*)bundleIdentifier {
  return textOrNil(program_.identifier);
}
- (NSURL*)bundleURL {
  return locationOrNil(program_.path);
}
- (pid_t)processIdentifier {
  return program_.process;
}
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
  note("activate " + std::to_string(program_.process) + " with " + std::to_string(options));
  if (program_.refusesActivation) return NO;
  if (!program_.ignoresActivation && !program_.comesLate) fake::workspace().front = program_.process;
  return YES;
}
- (BOOL)activateFromApplication:(NSRunningApplication*)application options:(NSApplicationActivationOptions)options {
  return [self activateWithOptions:options];
}
- (BOOL)terminate {
  note("terminate " + std::to_string(program_.process));
  return YES;
}
- (BOOL)forceTerminate {
  note("kill " + std::to_string(program_.process));
  return YES;
}
@end

@implementation NSWorkspaceOpenConfiguration
@synthesize activates = activates_;
@synthesize createsNewApplicationInstance = createsNewApplicationInstance_;
+ (instancetype)configuration {
  return [[self alloc] init];
}
@end

@implementation NSWorkspace {
  NSNotificationCenter* center_;
}
+ (NSWorkspace*)sharedWorkspace {
  static NSWorkspace* workspace = [[NSWorkspace alloc] init];
  return workspace;
}
- (instancetype)init {
  center_ = [[NSNotificationCenter alloc] init];
  return self;
}
- (NSNotificationCenter*)notificationCenter {
  return center_;
}
- (NSArray<NSRunningApplication*>*)runningApplications {
  NSMutableArray<NSRunningApplication*>* all = [NSMutableArray arrayWithCapacity:0];
  for (const fake::Program& program : fake::workspace().programs) [all addObject:[NSRunningApplication of:program]];
  return all;
}
- (NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)identifier {
  const auto& locations = fake::workspace().locations;
  const auto found = locations.find(identifier.UTF8String);
  return found == locations.end() ? nil : locationOrNil(found->second);
}
- (NSImage*)iconForFile:(NSString*)path {
  fake::iconDrawing().file = path.UTF8String;
  NSImage* icon = [[NSImage alloc] init];
  icon.size = fake::iconDrawing().iconSize;
  return icon;
}
- (void)openApplicationAtURL:(NSURL*)location
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(void (^)(NSRunningApplication*, NSError*))handler {
  note(std::string("open ") + location.path.UTF8String + (configuration.activates ? " in front" : "") +
       (configuration.createsNewApplicationInstance ? " once more" : ""));
}
@end

namespace fake {

Workspace& workspace() {
  static Workspace workspace;
  return workspace;
}

void bringAnotherToFront() {
  objectivec::notify(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceDidActivateApplicationNotification,
                     @{});
}

void comeToFront(int process) {
  workspace().front = process;
  NSRunningApplication* program = [NSRunningApplication runningApplicationWithProcessIdentifier:process];
  objectivec::notify(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceDidActivateApplicationNotification,
                     @{NSWorkspaceApplicationKey : program});
}

std::size_t workspaceObservers() {
  return objectivec::observerCount(NSWorkspace.sharedWorkspace.notificationCenter);
}

}  // namespace fake
