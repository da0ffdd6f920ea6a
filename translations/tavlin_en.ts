<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="en_US">
<context>
    <name>AutoZoomProgressView</name>
    <message>
        <source>Starting analysis...</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ByteCount</name>
    <message>
        <source>%1 KB</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 MB</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 GB</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 TB</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 PB</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 EB</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Zero KB</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>1 byte</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 bytes</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>CanvasSwitch</name>
    <message>
        <source>Canvas</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Raw</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Preview</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ColorRow</name>
    <message>
        <source>Hue</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Saturation</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Brightness</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Color code</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ContentView</name>
    <message>
        <source>Tavlin</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>CountdownOverlayView</name>
    <message>
        <source>Get ready...</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>CountingDown</name>
    <message>
        <source>Starting in %1</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Get ready</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>CutButtons</name>
    <message>
        <source>End Cut</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Finish cut at playhead (⌘B)</source>
        <translation>Finish cut at playhead (Ctrl+B)</translation>
    </message>
    <message>
        <source>Start cut at playhead (⌘B)</source>
        <translation>Start cut at playhead (Ctrl+B)</translation>
    </message>
    <message>
        <source>Cancel cut (Esc)</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Reset all trims &amp; cuts</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>DeviceControl</name>
    <message>
        <source>Choose: %1</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>DevicePicker</name>
    <message>
        <source>None is connected.</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>EditorCanvas</name>
    <message>
        <source>Canvas</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>EditorPlaceholder</name>
    <message>
        <source>Library</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>This recording is saved.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>This version has no editor yet. Zoom and export the recording in a terminal:</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Commands</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
</context>
<context>
    <name>EditorToolbar</name>
    <message>
        <source>Library</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Keyframe</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>EmptyLibrary</name>
    <message>
        <source>No Recordings</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Start a new recording to get going.</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ExportOverlayView</name>
    <message>
        <source>Export Complete</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Export Failed</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Dismiss</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ExportProgressView</name>
    <message>
        <source>Exporting</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ExportSettingsView</name>
    <message>
        <source>Resolution</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Width</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Height</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Frame Rate</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Frames per second</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>HomeView</name>
    <message>
        <source>Library</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Name cannot be empty.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Name cannot contain "/" or ":" characters.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Name cannot start with a dot.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Name is too long (max 200 characters).</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>A recording with this name already exists.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>MMM d, yyyy</source>
        <extracomment>The date on a recording's card, in Qt's letters for the parts of a date.</extracomment>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>A recording's date and time.</extracomment>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>KeyframeControls</name>
    <message>
        <source>Speed</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Animation</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Details</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>KeystrokeRow</name>
    <message>
        <source>Keystroke capture enabled</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Enable Input Monitoring to capture keystrokes</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Open Settings</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>LibraryDialogs</name>
    <message>
        <source>Rename Recording</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Enter a new name for this recording.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Rename</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Error</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete Recording?</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>"%1" will be permanently deleted.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete %1 Recording?</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete %1 Recordings?</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 recording will be permanently deleted.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>%1 recordings will be permanently deleted.</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>NewRecordingButton</name>
    <message>
        <source>New Recording</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>NoKeyframe</name>
    <message>
        <source>No Keyframe Selected</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Click a keyframe on the timeline
or add a new one</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>NotificationBellView</name>
    <message>
        <source>What's new</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Unread</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>No notifications</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Read more</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>NotificationItem</name>
    <message>
        <source>Tavlin 1.4 is here!</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Check out what's new in this release.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Tavlin 1.5 is here!</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>PermissionView</name>
    <message>
        <source>Tavlin</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Tavlin needs screen recording access to capture your screen.
Please grant permission in System Settings.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Open System Settings</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Check Again</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>RecordToolbar</name>
    <message>
        <source>Mute microphone</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Unmute microphone</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Microphone</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Turn off camera</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Turn on camera</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Camera</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Record</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>RecordingView</name>
    <message>
        <source>Library</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Recording</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>RunningTake</name>
    <message>
        <source>Recording</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Stop Recording</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ScrollLine</name>
    <message>
        <source>Scroll</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>SelectionBar</name>
    <message>
        <source>%1 selected</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Deselect All</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Select All</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Clear selection</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>Settings</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>STORAGE</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Location</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Total Size</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>ABOUT</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Version</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Build</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>SidebarTabs</name>
    <message>
        <source>Style</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Zoom</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Inspector</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>SourceGrid</name>
    <message>
        <source>Windows</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Displays</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>No windows are open.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>No display can be recorded.</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>SourceSelection</name>
    <message>
        <source>Loading sources...</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Source</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Display</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Window</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>Spinner</name>
    <message>
        <source>Loading</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>StatusItem</name>
    <message>
        <source>Stop</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Stop it here, or with "tavi stop" in a terminal.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Stop Recording</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>TakeGrid</name>
    <message>
        <source>Recordings</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>TakeMenu</name>
    <message>
        <source>Rename...</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Delete...</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>TimelinePointer</name>
    <message>
        <source>Cut</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Restore Section</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Point</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Delete Point</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>TimelineView</name>
    <message>
        <source>Timeline</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>TransportButtons</name>
    <message>
        <source>Step Back</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Pause</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Play</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Step Forward</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>ZoomTab</name>
    <message>
        <source>AUTO ZOOM</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Intensity</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Generate</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Clear</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>tavi::DesktopSavePanel</name>
    <message>
        <source>Export</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>tavi::HomeViewModel</name>
    <message>
        <source>This recording is not there any more.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Could not rename: %1</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Could not delete: %1</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>tavi::RecordingViewModel</name>
    <message>
        <source>Display %1</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Unknown</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>tavi::TaviApp</name>
    <message>
        <source>The pointer of this desktop can't be followed, so nothing can be recorded here.</source>
        <translation type="unfinished" />
    </message>
</context>
<context>
    <name>tavi::UpdaterController</name>
    <message>
        <source>Tavlin was installed by your system's package manager, which also brings its updates.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Tavlin %1 is the newest version.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Tavlin %1 is available. "Check for Updates..." fetches it.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The update is refused: its file is too large.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>The update is refused: its signature is wrong.</source>
        <translation type="unfinished" />
    </message>
    <message>
        <source>Tavlin %1 was fetched and its signature is right. Install it with your package installer: %2</source>
        <translation type="unfinished" />
    </message>
</context>
</TS>