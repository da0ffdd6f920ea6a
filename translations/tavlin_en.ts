<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>AutoZoomProgressView</name>
    <message>
        <source>Starting analysis...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ByteCount</name>
    <message>
        <source>%1 KB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 TB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 PB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 EB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zero KB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 byte</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CanvasSwitch</name>
    <message>
        <source>Canvas</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Raw</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preview</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ColorRow</name>
    <message>
        <source>Hue</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Color code</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CommandBox</name>
    <message>
        <source>Copied</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Copy</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ContentView</name>
    <message>
        <source>Tavlin</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CountdownOverlayView</name>
    <message>
        <source>Get ready...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CountingDown</name>
    <message>
        <source>Starting in %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Get ready</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose in the desktop&apos;s dialog</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>CutButtons</name>
    <message>
        <source>End Cut</source>
        <translation type="unfinished"></translation>
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
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Reset all trims &amp; cuts</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DeviceControl</name>
    <message>
        <source>Choose: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DevicePicker</name>
    <message>
        <source>None is connected.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>EditorCanvas</name>
    <message>
        <source>Canvas</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>EditorToolbar</name>
    <message>
        <source>Library</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keyframe</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>EmptyLibrary</name>
    <message>
        <source>No Recordings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start a new recording to get going.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Errors</name>
    <message>
        <source>&quot;%1&quot; is not there any more.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; exists already.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot add microphone input.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot add audio output.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot add camera input.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot add camera output.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The system&apos;s media service does not answer; see that PipeWire runs.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not there; plug it in or choose another one.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 can&apos;t be used; another program may have it, or permission is missing.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 delivers no format that can be recorded; choose another one.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 sends nothing; see that it is switched on, or plug it in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not connected by the system; see that WirePlumber, or another session manager of PipeWire, runs.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 can&apos;t be used.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No display server could be reached; start this from a graphical session or set DISPLAY</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This Wayland desktop has no portal for screen casts; install xdg-desktop-portal with the back end of this desktop and log in again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The display server lacks an extension that recording needs</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The display&apos;s pixel format can&apos;t be recorded; set it to 24-bit colour</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The chosen source is not there; `tavi sources` lists what is</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The recorded window was closed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The recorded display was disconnected or switched off</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The display server ended the connection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The desktop did not start its screen cast; try again, and log in again if that doesn&apos;t help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The desktop ended the screen cast, or the recorded source was closed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The recording failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A recording is running already; `tavi stop` ends it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The folder %1 can&apos;t be used; set XDG_RUNTIME_DIR to a folder that is yours alone.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The video can&apos;t be written.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file can&apos;t be opened</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file is no video that can be read</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No video track found in recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The video can&apos;t be decoded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The file can&apos;t be written</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The disk is full; free some space and try again</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No video encoder works on this machine; run &quot;tavi doctor&quot;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The video encoder failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Media error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it is a folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it is empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it has no index: it was cut short or is still being written</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>its format is not supported</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it has no tracks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>its picture size is out of bounds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>its sound&apos;s rate or number of channels is out of bounds</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no picture could be decoded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no sound could be decoded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No video track found in recording.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export was cancelled.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Nothing was exported, no kept part of the take holds a picture</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The list of updates can&apos;t be read: %1 (line %2).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; can&apos;t be opened: there is no video in it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File exists</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Directory not empty</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Device or resource busy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File too large</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The recording can&apos;t be saved, since no folder can be made in %1 (%2). Make it a folder that you may write to, and try again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update can&apos;t be saved: %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Updates are fetched over https only.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server of the updates doesn&apos;t answer in time.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server of the updates sends more than it said or may.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update can&apos;t be saved.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The updates can&apos;t be reached: %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update&apos;s file is shorter than it should be.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Invalid data found when processing input</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>width and height must be even and at least 16 pixels</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExportOverlayView</name>
    <message>
        <source>Export Complete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Export Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExportProgressView</name>
    <message>
        <source>Exporting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExportSettingsView</name>
    <message>
        <source>Resolution</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Width</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Height</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frame Rate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frames per second</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>HomeView</name>
    <message>
        <source>Library</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name cannot be empty.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name cannot contain &quot;/&quot; or &quot;:&quot; characters.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name cannot start with a dot.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name is too long (max 200 characters).</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A recording with this name already exists.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MMM d, yyyy</source>
        <extracomment>The date on a recording&apos;s card, in Qt&apos;s letters for the parts of a date.</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>A recording&apos;s date and time.</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Inspector</name>
    <message>
        <source>Aspect Ratio</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Background Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Black</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>White</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Custom</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Gradient</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Blur</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Aurora</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>APPEARANCE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Background</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Color</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Preset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Blur Radius</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>aurora</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>sunset</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ocean</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>forest</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>lavender</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ember</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Animate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Corner Radius</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Shadow</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Radius</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Opacity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>None</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Slow</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Medium</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fast</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rapid</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CURSOR</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Style</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pointer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>System</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Circle</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Smoothing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>KEYSTROKES</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Display Duration</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Margin</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Border</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Top Left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Top Right</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bottom Left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bottom Right</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>CAMERA</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No camera recorded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Position</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>16:9</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>S</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>M</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>L</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>midnight</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>berry</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>moss</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>peach</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>steel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>candy</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>KeyframeControls</name>
    <message>
        <source>Speed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Animation</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Details</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>KeystrokeRow</name>
    <message>
        <source>Keystroke capture enabled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enable Input Monitoring to capture keystrokes</source>
        <translation>Allow access to the input devices to capture keystrokes</translation>
    </message>
    <message>
        <source>Open Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Until then a take has no clicks, no scrolling and no keys. This allows them, once you have logged out and in again:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Every program that you run can then read what you type, passwords included.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LeaveAlert</name>
    <message>
        <source>Stop Exporting?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The film isn&apos;t finished yet. Leaving the recording now cancels its export.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keep Exporting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop and Leave</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LibraryDialogs</name>
    <message>
        <source>Rename Recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Enter a new name for this recording.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rename</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Error</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete Recording?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&quot;%1&quot; will be permanently deleted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete %1 Recording?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete %1 Recordings?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 recording will be permanently deleted.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 recordings will be permanently deleted.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NewRecordingButton</name>
    <message>
        <source>New Recording</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NoKeyframe</name>
    <message>
        <source>No Keyframe Selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Click a keyframe on the timeline
or add a new one</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NotificationBellView</name>
    <message>
        <source>What&apos;s new</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unread</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No notifications</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Read more</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NotificationItem</name>
    <message>
        <source>Tavlin 1.4 is here!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check out what&apos;s new in this release.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavlin 1.5 is here!</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PermissionView</name>
    <message>
        <source>Tavlin</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavlin needs screen recording access to capture your screen.
Please grant permission in System Settings.</source>
        <translation>Tavlin needs screen recording access to capture your screen.
Please grant permission in your desktop&apos;s settings.</translation>
    </message>
    <message>
        <source>Open System Settings</source>
        <translation>Open Settings</translation>
    </message>
    <message>
        <source>Check Again</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PortalContent</name>
    <message>
        <source>chosen in the desktop&apos;s dialog</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A window</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RecordToolbar</name>
    <message>
        <source>Mute microphone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unmute microphone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Turn off camera</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Turn on camera</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Camera</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Record</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RecordingView</name>
    <message>
        <source>Library</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RunningTake</name>
    <message>
        <source>Recording</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Recording</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ScrollLine</name>
    <message>
        <source>Scroll</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SelectionBar</name>
    <message>
        <source>%1 selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Deselect All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select All</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>Settings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>STORAGE</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Location</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Total Size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>ABOUT</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Version</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Build</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SidebarTabs</name>
    <message>
        <source>Style</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SourceGrid</name>
    <message>
        <source>Windows</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Displays</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No windows are open.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No display can be recorded.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SourceSelection</name>
    <message>
        <source>Loading sources...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Display</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Window</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Spinner</name>
    <message>
        <source>Loading</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>StatusItem</name>
    <message>
        <source>Stop</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop it here, or with &quot;tavi stop&quot; in a terminal.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Recording</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TakeGrid</name>
    <message>
        <source>Recordings</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TakeMenu</name>
    <message>
        <source>Rename...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>Show in Files</translation>
    </message>
    <message>
        <source>Delete...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TimelinePointer</name>
    <message>
        <source>Cut</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Restore Section</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Point</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete Point</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TimelineView</name>
    <message>
        <source>Timeline</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TransportButtons</name>
    <message>
        <source>Step Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pause</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Play</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Step Forward</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ZoomTab</name>
    <message>
        <source>AUTO ZOOM</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Intensity</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Generate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::AutoZoomViewModel</name>
    <message>
        <source>Detecting activity regions...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Simulating camera movements...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Generating keyframes...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Complete</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::CrosshairViewModel</name>
    <message>
        <source>%1 % from the left, %2 % from the top. Arrow keys move, with Shift further; Return points the zoom there, Escape ends</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Return points the selected zoom at a place</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select a keyframe at the playhead to point its zoom at a place</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::DesktopSavePanel</name>
    <message>
        <source>Export</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::EditorScreenViewModel</name>
    <message>
        <source>%1m %2s left</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1s left</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::ExportSettingsViewModel</name>
    <message>
        <source>Custom</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::HomeViewModel</name>
    <message>
        <source>This recording is not there any more.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not rename: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not delete: %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::RecordingViewModel</name>
    <message>
        <source>Display %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A recording is running</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This desktop doesn&apos;t tell where the pointer is: the film will show no pointer, and nothing to zoom to can be found.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This desktop paints the pointer into the picture: the editor can&apos;t move, restyle or hide it, and nothing to zoom to can be found.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::TaviApp</name>
    <message>
        <source>The pointer of this desktop can&apos;t be followed, so nothing can be recorded here.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An export is running. Open the other recording when it is done.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::TimelineStopsViewModel</name>
    <message>
        <source>Cut from %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start of the film, %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>End of the film, %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Keyframe %1, from %2 to %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Start of keyframe %1, %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>End of keyframe %1, %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom of %1 at %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Curve of keyframe %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Return goes there, Delete restores it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Return selects it, Delete removes it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Return adds a point at the playhead</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Up and Down zoom, Return moves it to the playhead, Delete removes it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Return moves it to the playhead</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::UpdaterController</name>
    <message>
        <source>Tavlin was installed by your system&apos;s package manager, which also brings its updates.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavlin %1 is the newest version.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavlin %1 is available. &quot;Check for Updates...&quot; fetches it.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update is refused: its file is too large.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The update is refused: its signature is wrong.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavlin %1 was fetched and its signature is right. Install it with your package installer: %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tavi::ZoomTabViewModel</name>
    <message>
        <source>Linear</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ease In</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ease Out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ease In-Out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Spring</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%n keyframes generated</source>
        <translation type="unfinished">
            <numerusform></numerusform>
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>KEYFRAME %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
