# The files of the macOS leaves, for the build on a Mac and for the checks elsewhere.
set(ORVEL_MACOS_SOURCES
    ../posix/HostName.cpp
    ../posix/NetworkInterfaces.cpp
    CFText.cpp
    SystemAccessibilityTree.cpp
    SystemDisplays.cpp
    SystemEventPoster.cpp
    FoundationText.mm
    SystemLoginItemService.mm
    SystemMachine.cpp
    SystemPreferences.mm
    SystemScreenRecordingAccess.cpp
    SystemTrustCheck.mm
    events/SystemDefined.mm
    events/TextPieces.cpp
)
