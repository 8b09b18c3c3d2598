# The files of the macOS leaves, for the build on a Mac and for the checks elsewhere.
set(ORVEL_MACOS_SOURCES
    CFText.cpp
    SystemAccessibilityTree.cpp
    SystemDisplays.cpp
    SystemEventPoster.cpp
    FoundationText.mm
    SystemScreenRecordingAccess.cpp
    SystemTrustCheck.mm
    events/SystemDefined.mm
    events/TextPieces.cpp
)
