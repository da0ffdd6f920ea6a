<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AutoZoomProgressView</name>
    <message>
        <source>Starting analysis...</source>
        <translation>Analyse beginnt …</translation>
    </message>
</context>
<context>
    <name>ByteCount</name>
    <message>
        <source>%1 KB</source>
        <translation>%1 KB</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1 MB</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 GB</translation>
    </message>
    <message>
        <source>%1 TB</source>
        <translation>%1 TB</translation>
    </message>
    <message>
        <source>%1 PB</source>
        <translation>%1 PB</translation>
    </message>
    <message>
        <source>%1 EB</source>
        <translation>%1 EB</translation>
    </message>
    <message>
        <source>Zero KB</source>
        <translation>0 KB</translation>
    </message>
    <message>
        <source>1 byte</source>
        <translation>1 Byte</translation>
    </message>
    <message>
        <source>%1 bytes</source>
        <translation>%1 Byte</translation>
    </message>
</context>
<context>
    <name>CanvasSwitch</name>
    <message>
        <source>Canvas</source>
        <translation>Leinwand</translation>
    </message>
    <message>
        <source>Raw</source>
        <translation>Roh</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
</context>
<context>
    <name>ColorRow</name>
    <message>
        <source>Hue</source>
        <translation>Farbton</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>Sättigung</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Helligkeit</translation>
    </message>
    <message>
        <source>Color code</source>
        <translation>Farbcode</translation>
    </message>
</context>
<context>
    <name>CommandBox</name>
    <message>
        <source>Copied</source>
        <translation>Kopiert</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
</context>
<context>
    <name>ContentView</name>
    <message>
        <source>Tavlin</source>
        <translation>Tavlin</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>CountdownOverlayView</name>
    <message>
        <source>Get ready...</source>
        <translation>Gleich geht’s los …</translation>
    </message>
</context>
<context>
    <name>CountingDown</name>
    <message>
        <source>Starting in %1</source>
        <translation>Start in %1</translation>
    </message>
    <message>
        <source>Get ready</source>
        <translation>Gleich geht’s los</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Choose in the desktop&apos;s dialog</source>
        <translation>Wählen Sie im Dialog der Arbeitsumgebung</translation>
    </message>
</context>
<context>
    <name>CutButtons</name>
    <message>
        <source>End Cut</source>
        <translation>Schnitt beenden</translation>
    </message>
    <message>
        <source>Finish cut at playhead (⌘B)</source>
        <translation>Schnitt am Abspielkopf beenden (Strg+B)</translation>
    </message>
    <message>
        <source>Start cut at playhead (⌘B)</source>
        <translation>Schnitt am Abspielkopf beginnen (Strg+B)</translation>
    </message>
    <message>
        <source>Cancel cut (Esc)</source>
        <translation>Schnitt abbrechen (Esc)</translation>
    </message>
    <message>
        <source>Reset all trims &amp; cuts</source>
        <translation>Alle Kürzungen und Schnitte zurücksetzen</translation>
    </message>
</context>
<context>
    <name>DeviceControl</name>
    <message>
        <source>Choose: %1</source>
        <translation>Auswählen: %1</translation>
    </message>
</context>
<context>
    <name>DevicePicker</name>
    <message>
        <source>None is connected.</source>
        <translation>Keins ist angeschlossen.</translation>
    </message>
</context>
<context>
    <name>EditorCanvas</name>
    <message>
        <source>Canvas</source>
        <translation>Leinwand</translation>
    </message>
</context>
<context>
    <name>EditorToolbar</name>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Keyframe</source>
        <translation>Keyframe</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
</context>
<context>
    <name>EmptyLibrary</name>
    <message>
        <source>No Recordings</source>
        <translation>Keine Aufnahmen</translation>
    </message>
    <message>
        <source>Start a new recording to get going.</source>
        <translation>Beginnen Sie mit einer neuen Aufnahme.</translation>
    </message>
</context>
<context>
    <name>Errors</name>
    <message>
        <source>&quot;%1&quot; is not there any more.</source>
        <translation>„%1“ ist nicht mehr da.</translation>
    </message>
    <message>
        <source>&quot;%1&quot; exists already.</source>
        <translation>„%1“ gibt es schon.</translation>
    </message>
    <message>
        <source>Cannot add microphone input.</source>
        <translation>Das Mikrofon lässt sich nicht als Eingang hinzufügen.</translation>
    </message>
    <message>
        <source>Cannot add audio output.</source>
        <translation>Der Ton lässt sich nicht als Ausgang hinzufügen.</translation>
    </message>
    <message>
        <source>Cannot add camera input.</source>
        <translation>Die Kamera lässt sich nicht als Eingang hinzufügen.</translation>
    </message>
    <message>
        <source>Cannot add camera output.</source>
        <translation>Das Kamerabild lässt sich nicht als Ausgang hinzufügen.</translation>
    </message>
    <message>
        <source>The system&apos;s media service does not answer; see that PipeWire runs.</source>
        <translation>Der Mediendienst des Systems antwortet nicht; bitte prüfen, ob PipeWire läuft.</translation>
    </message>
    <message>
        <source>%1 is not there; plug it in or choose another one.</source>
        <translation>%1 ist nicht da; bitte anschließen oder ein anderes Gerät wählen.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be used; another program may have it, or permission is missing.</source>
        <translation>%1 kann nicht benutzt werden; vielleicht hat es ein anderes Programm, oder die Erlaubnis fehlt.</translation>
    </message>
    <message>
        <source>%1 delivers no format that can be recorded; choose another one.</source>
        <translation>%1 liefert kein Format, das aufgenommen werden kann; bitte ein anderes Gerät wählen.</translation>
    </message>
    <message>
        <source>%1 sends nothing; see that it is switched on, or plug it in again.</source>
        <translation>%1 sendet nichts; bitte einschalten oder neu anschließen.</translation>
    </message>
    <message>
        <source>%1 is not connected by the system; see that WirePlumber, or another session manager of PipeWire, runs.</source>
        <translation>%1 wird vom System nicht verbunden; bitte prüfen, ob WirePlumber oder eine andere Sitzungsverwaltung von PipeWire läuft.</translation>
    </message>
    <message>
        <source>%1 can&apos;t be used.</source>
        <translation>%1 kann nicht benutzt werden.</translation>
    </message>
    <message>
        <source>The device</source>
        <translation>Das Gerät</translation>
    </message>
    <message>
        <source>No display server could be reached; start this from a graphical session or set DISPLAY</source>
        <translation>Kein Anzeigeserver ist erreichbar; bitte in einer grafischen Sitzung starten oder DISPLAY setzen</translation>
    </message>
    <message>
        <source>This Wayland desktop has no portal for screen casts; install xdg-desktop-portal with the back end of this desktop and log in again</source>
        <translation>Diese Wayland-Arbeitsfläche hat kein Portal für Bildschirmübertragungen; bitte xdg-desktop-portal mit der Anbindung dieser Arbeitsfläche installieren und neu anmelden</translation>
    </message>
    <message>
        <source>The display server lacks an extension that recording needs</source>
        <translation>Dem Anzeigeserver fehlt eine Erweiterung, die zum Aufnehmen gebraucht wird</translation>
    </message>
    <message>
        <source>The display&apos;s pixel format can&apos;t be recorded; set it to 24-bit colour</source>
        <translation>Das Pixelformat des Bildschirms kann nicht aufgenommen werden; bitte auf 24-Bit-Farbe stellen</translation>
    </message>
    <message>
        <source>The chosen source is not there; `tavi sources` lists what is</source>
        <translation>Die gewählte Quelle ist nicht da; `tavi sources` zeigt, was da ist</translation>
    </message>
    <message>
        <source>The recorded window was closed</source>
        <translation>Das aufgenommene Fenster wurde geschlossen</translation>
    </message>
    <message>
        <source>The recorded display was disconnected or switched off</source>
        <translation>Der aufgenommene Bildschirm wurde abgezogen oder ausgeschaltet</translation>
    </message>
    <message>
        <source>The display server ended the connection</source>
        <translation>Der Anzeigeserver hat die Verbindung beendet</translation>
    </message>
    <message>
        <source>The desktop did not start its screen cast; try again, and log in again if that doesn&apos;t help</source>
        <translation>Die Arbeitsfläche hat ihre Bildschirmübertragung nicht begonnen; bitte noch einmal versuchen und sich neu anmelden, wenn das nicht hilft</translation>
    </message>
    <message>
        <source>The desktop ended the screen cast, or the recorded source was closed</source>
        <translation>Die Arbeitsfläche hat die Bildschirmübertragung beendet, oder die aufgenommene Quelle wurde geschlossen</translation>
    </message>
    <message>
        <source>The recording failed</source>
        <translation>Die Aufnahme ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>A recording is running already; `tavi stop` ends it.</source>
        <translation>Es läuft schon eine Aufnahme; `tavi stop` beendet sie.</translation>
    </message>
    <message>
        <source>The folder %1 can&apos;t be used; set XDG_RUNTIME_DIR to a folder that is yours alone.</source>
        <translation>Der Ordner %1 kann nicht benutzt werden; bitte XDG_RUNTIME_DIR auf einen Ordner setzen, der nur Ihnen gehört.</translation>
    </message>
    <message>
        <source>The video can&apos;t be written.</source>
        <translation>Das Video kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>The file can&apos;t be opened</source>
        <translation>Die Datei lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>The file is no video that can be read</source>
        <translation>Die Datei ist kein lesbares Video</translation>
    </message>
    <message>
        <source>No video track found in recording</source>
        <translation>In der Aufnahme ist keine Videospur</translation>
    </message>
    <message>
        <source>The video can&apos;t be decoded</source>
        <translation>Das Video lässt sich nicht decodieren</translation>
    </message>
    <message>
        <source>The file can&apos;t be written</source>
        <translation>Die Datei lässt sich nicht schreiben</translation>
    </message>
    <message>
        <source>The disk is full; free some space and try again</source>
        <translation>Der Datenträger ist voll; bitte Platz schaffen und noch einmal versuchen</translation>
    </message>
    <message>
        <source>No video encoder works on this machine; run &quot;tavi doctor&quot;</source>
        <translation>Kein Video-Encoder arbeitet auf diesem Rechner; bitte „tavi doctor“ ausführen</translation>
    </message>
    <message>
        <source>The video encoder failed</source>
        <translation>Der Video-Encoder ist fehlgeschlagen</translation>
    </message>
    <message>
        <source>Media error</source>
        <translation>Medienfehler</translation>
    </message>
    <message>
        <source>it is a folder</source>
        <translation>sie ist ein Ordner</translation>
    </message>
    <message>
        <source>it is empty</source>
        <translation>sie ist leer</translation>
    </message>
    <message>
        <source>it has no index: it was cut short or is still being written</source>
        <translation>sie hat kein Verzeichnis: sie wurde abgebrochen oder wird noch geschrieben</translation>
    </message>
    <message>
        <source>its format is not supported</source>
        <translation>ihr Format wird nicht unterstützt</translation>
    </message>
    <message>
        <source>it has no tracks</source>
        <translation>sie hat keine Spuren</translation>
    </message>
    <message>
        <source>its picture size is out of bounds</source>
        <translation>ihre Bildgröße liegt außerhalb der Grenzen</translation>
    </message>
    <message>
        <source>its sound&apos;s rate or number of channels is out of bounds</source>
        <translation>Abtastrate oder Kanalzahl ihres Tons liegt außerhalb der Grenzen</translation>
    </message>
    <message>
        <source>no picture could be decoded</source>
        <translation>kein Bild konnte decodiert werden</translation>
    </message>
    <message>
        <source>no sound could be decoded</source>
        <translation>kein Ton konnte decodiert werden</translation>
    </message>
    <message>
        <source>No video track found in recording.</source>
        <translation>In der Aufnahme ist keine Videospur.</translation>
    </message>
    <message>
        <source>Export was cancelled.</source>
        <translation>Der Export wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Nothing was exported, no kept part of the take holds a picture</source>
        <translation>Nichts wurde exportiert, kein behaltener Teil der Aufnahme enthält ein Bild</translation>
    </message>
    <message>
        <source>&quot;%1&quot; can&apos;t be opened: there is no video in it.</source>
        <translation>„%1“ lässt sich nicht öffnen: Es ist kein Video darin.</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>Keine Berechtigung</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>Die Operation ist nicht erlaubt</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Datei oder Verzeichnis nicht gefunden</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>Auf dem Gerät ist kein Speicherplatz mehr verfügbar</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>Der zugewiesene Speicherplatz ist aufgebraucht</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>Das Dateisystem ist nur lesbar</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Eingabe-/Ausgabefehler</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>Die Datei existiert bereits</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>Ist kein Verzeichnis</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>Ist ein Verzeichnis</translation>
    </message>
    <message>
        <source>Directory not empty</source>
        <translation>Das Verzeichnis ist nicht leer</translation>
    </message>
    <message>
        <source>Device or resource busy</source>
        <translation>Das Gerät oder die Ressource ist belegt</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>Die Datei ist zu groß</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>Der Dateiname ist zu lang</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>Zu viele offene Dateien</translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation>Nicht genügend Hauptspeicher verfügbar</translation>
    </message>
    <message>
        <source>The recording can&apos;t be saved, since no folder can be made in %1 (%2). Make it a folder that you may write to, and try again.</source>
        <translation>Die Aufnahme lässt sich nicht speichern, denn in %1 lässt sich kein Ordner anlegen (%2). Bitte dort Schreibrechte einrichten oder einen beschreibbaren Ordner daraus machen und noch einmal versuchen.</translation>
    </message>
    <message>
        <source>The update can&apos;t be saved: %1.</source>
        <translation>Die Aktualisierung lässt sich nicht speichern: %1.</translation>
    </message>
    <message>
        <source>Updates are fetched over https only.</source>
        <translation>Aktualisierungen werden nur über https geholt.</translation>
    </message>
    <message>
        <source>The server of the updates doesn&apos;t answer in time.</source>
        <translation>Der Server der Aktualisierungen antwortet nicht rechtzeitig.</translation>
    </message>
    <message>
        <source>The server of the updates sends more than it said or may.</source>
        <translation>Der Server der Aktualisierungen sendet mehr, als er angekündigt hat oder darf.</translation>
    </message>
    <message>
        <source>The update can&apos;t be saved.</source>
        <translation>Die Aktualisierung lässt sich nicht speichern.</translation>
    </message>
    <message>
        <source>The updates can&apos;t be reached: %1.</source>
        <translation>Die Aktualisierungen sind nicht erreichbar: %1.</translation>
    </message>
    <message>
        <source>The update&apos;s file is shorter than it should be.</source>
        <translation>Die Datei der Aktualisierung ist kürzer, als sie sein sollte.</translation>
    </message>
    <message>
        <source>Invalid data found when processing input</source>
        <translation>Die Daten sind ungültig</translation>
    </message>
    <message>
        <source>The list of updates can&apos;t be read: %1 (line %2).</source>
        <translation>Die Liste der Aktualisierungen lässt sich nicht lesen: %1 (Zeile %2).</translation>
    </message>
    <message>
        <source>width and height must be even and at least 16 pixels</source>
        <translation>Breite und Höhe müssen gerade und mindestens 16 Pixel groß sein</translation>
    </message>
</context>
<context>
    <name>ExportOverlayView</name>
    <message>
        <source>Export Complete</source>
        <translation>Export fertig</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>In Dateien anzeigen</translation>
    </message>
    <message>
        <source>Export Failed</source>
        <translation>Export fehlgeschlagen</translation>
    </message>
    <message>
        <source>Dismiss</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>ExportProgressView</name>
    <message>
        <source>Exporting</source>
        <translation>Export läuft</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>ExportSettingsView</name>
    <message>
        <source>Resolution</source>
        <translation>Auflösung</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>Frame Rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>Frames per second</source>
        <translation>Bilder pro Sekunde</translation>
    </message>
</context>
<context>
    <name>HomeView</name>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Name cannot be empty.</source>
        <translation>Der Name darf nicht leer sein.</translation>
    </message>
    <message>
        <source>Name cannot contain &quot;/&quot; or &quot;:&quot; characters.</source>
        <translation>Der Name darf weder „/“ noch „:“ enthalten.</translation>
    </message>
    <message>
        <source>Name cannot start with a dot.</source>
        <translation>Der Name darf nicht mit einem Punkt beginnen.</translation>
    </message>
    <message>
        <source>Name is too long (max 200 characters).</source>
        <translation>Der Name ist zu lang (höchstens 200 Zeichen).</translation>
    </message>
    <message>
        <source>A recording with this name already exists.</source>
        <translation>Eine Aufnahme mit diesem Namen gibt es schon.</translation>
    </message>
    <message>
        <source>MMM d, yyyy</source>
        <extracomment>The date on a recording&apos;s card, in Qt&apos;s letters for the parts of a date.</extracomment>
        <translation>d. MMM yyyy</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>A recording&apos;s date and time.</extracomment>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>Inspector</name>
    <message>
        <source>Aspect Ratio</source>
        <translation>Seitenverhältnis</translation>
    </message>
    <message>
        <source>Background Size</source>
        <translation>Hintergrundgröße</translation>
    </message>
    <message>
        <source>Black</source>
        <translation>Schwarz</translation>
    </message>
    <message>
        <source>White</source>
        <translation>Weiß</translation>
    </message>
    <message>
        <source>Custom</source>
        <translation>Eigene</translation>
    </message>
    <message>
        <source>Gradient</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Blur</source>
        <translation>Unschärfe</translation>
    </message>
    <message>
        <source>Aurora</source>
        <translation>Polarlicht</translation>
    </message>
    <message>
        <source>APPEARANCE</source>
        <translation>AUSSEHEN</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Preset</source>
        <translation>Vorlage</translation>
    </message>
    <message>
        <source>Blur Radius</source>
        <translation>Unschärferadius</translation>
    </message>
    <message>
        <source>aurora</source>
        <translation>Polarlicht</translation>
    </message>
    <message>
        <source>sunset</source>
        <translation>Sonnenuntergang</translation>
    </message>
    <message>
        <source>ocean</source>
        <translation>Ozean</translation>
    </message>
    <message>
        <source>forest</source>
        <translation>Wald</translation>
    </message>
    <message>
        <source>lavender</source>
        <translation>Lavendel</translation>
    </message>
    <message>
        <source>ember</source>
        <translation>Glut</translation>
    </message>
    <message>
        <source>Animate</source>
        <translation>Bewegt</translation>
    </message>
    <message>
        <source>Corner Radius</source>
        <translation>Eckenradius</translation>
    </message>
    <message>
        <source>Shadow</source>
        <translation>Schatten</translation>
    </message>
    <message>
        <source>Radius</source>
        <translation>Radius</translation>
    </message>
    <message>
        <source>Opacity</source>
        <translation>Deckkraft</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Slow</source>
        <translation>Sanft</translation>
    </message>
    <message>
        <source>Medium</source>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>Fast</source>
        <translation>Flott</translation>
    </message>
    <message>
        <source>Rapid</source>
        <translation>Rasch</translation>
    </message>
    <message>
        <source>CURSOR</source>
        <translation>ZEIGER</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Pointer</source>
        <translation>Pfeil</translation>
    </message>
    <message>
        <source>System</source>
        <translation>System</translation>
    </message>
    <message>
        <source>Circle</source>
        <translation>Kreis</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Smoothing</source>
        <translation>Glättung</translation>
    </message>
    <message>
        <source>KEYSTROKES</source>
        <translation>TASTEN</translation>
    </message>
    <message>
        <source>Display Duration</source>
        <translation>Anzeigedauer</translation>
    </message>
    <message>
        <source>Margin</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>Border</source>
        <translation>Rand</translation>
    </message>
    <message>
        <source>Top Left</source>
        <translation>Oben links</translation>
    </message>
    <message>
        <source>Top Right</source>
        <translation>Oben rechts</translation>
    </message>
    <message>
        <source>Bottom Left</source>
        <translation>Unten links</translation>
    </message>
    <message>
        <source>Bottom Right</source>
        <translation>Unten rechts</translation>
    </message>
    <message>
        <source>CAMERA</source>
        <translation>KAMERA</translation>
    </message>
    <message>
        <source>No camera recorded</source>
        <translation>Keine Kamera aufgenommen</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>16:9</source>
        <translation>16:9</translation>
    </message>
    <message>
        <source>Auto</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>S</source>
        <translation>S</translation>
    </message>
    <message>
        <source>M</source>
        <translation>M</translation>
    </message>
    <message>
        <source>L</source>
        <translation>L</translation>
    </message>
    <message>
        <source>midnight</source>
        <translation>Mitternacht</translation>
    </message>
    <message>
        <source>berry</source>
        <translation>Beere</translation>
    </message>
    <message>
        <source>moss</source>
        <translation>Moos</translation>
    </message>
    <message>
        <source>peach</source>
        <translation>Pfirsich</translation>
    </message>
    <message>
        <source>steel</source>
        <translation>Stahl</translation>
    </message>
    <message>
        <source>candy</source>
        <translation>Bonbon</translation>
    </message>
</context>
<context>
    <name>KeyframeControls</name>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Animation</source>
        <translation>Animation</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Einzelheiten</translation>
    </message>
</context>
<context>
    <name>KeystrokeRow</name>
    <message>
        <source>Keystroke capture enabled</source>
        <translation>Tasten werden aufgenommen</translation>
    </message>
    <message>
        <source>Enable Input Monitoring to capture keystrokes</source>
        <translation>Zugriff auf die Eingabegeräte erlauben, um Tasten aufzunehmen</translation>
    </message>
    <message>
        <source>Open Settings</source>
        <translation>Einstellungen öffnen</translation>
    </message>
    <message>
        <source>Until then a take has no clicks, no scrolling and no keys. This allows them, once you have logged out and in again:</source>
        <translation>Bis dahin hat eine Aufnahme keine Klicks, kein Scrollen und keine Tasten. Dies erlaubt sie, sobald Sie sich ab- und wieder angemeldet haben:</translation>
    </message>
    <message>
        <source>Every program that you run can then read what you type, passwords included.</source>
        <translation>Jedes Programm, das Sie starten, kann dann lesen, was Sie tippen, auch Kennwörter.</translation>
    </message>
</context>
<context>
    <name>LeaveAlert</name>
    <message>
        <source>Stop Exporting?</source>
        <translation>Export abbrechen?</translation>
    </message>
    <message>
        <source>The film isn&apos;t finished yet. Leaving the recording now cancels its export.</source>
        <translation>Der Film ist noch nicht fertig. Wer die Aufnahme jetzt verlässt, bricht den Export ab.</translation>
    </message>
    <message>
        <source>Keep Exporting</source>
        <translation>Weiter exportieren</translation>
    </message>
    <message>
        <source>Stop and Leave</source>
        <translation>Abbrechen und verlassen</translation>
    </message>
</context>
<context>
    <name>LibraryDialogs</name>
    <message>
        <source>Rename Recording</source>
        <translation>Aufnahme umbenennen</translation>
    </message>
    <message>
        <source>Enter a new name for this recording.</source>
        <translation>Geben Sie dieser Aufnahme einen neuen Namen.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Delete Recording?</source>
        <translation>Aufnahme löschen?</translation>
    </message>
    <message>
        <source>&quot;%1&quot; will be permanently deleted.</source>
        <translation>„%1“ wird endgültig gelöscht.</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete %1 Recording?</source>
        <translation>%1 Aufnahme löschen?</translation>
    </message>
    <message>
        <source>Delete %1 Recordings?</source>
        <translation>%1 Aufnahmen löschen?</translation>
    </message>
    <message>
        <source>%1 recording will be permanently deleted.</source>
        <translation>%1 Aufnahme wird endgültig gelöscht.</translation>
    </message>
    <message>
        <source>%1 recordings will be permanently deleted.</source>
        <translation>%1 Aufnahmen werden endgültig gelöscht.</translation>
    </message>
</context>
<context>
    <name>NewRecordingButton</name>
    <message>
        <source>New Recording</source>
        <translation>Neue Aufnahme</translation>
    </message>
</context>
<context>
    <name>NoKeyframe</name>
    <message>
        <source>No Keyframe Selected</source>
        <translation>Kein Keyframe ausgewählt</translation>
    </message>
    <message>
        <source>Click a keyframe on the timeline
or add a new one</source>
        <translation>Klicken Sie auf ein Keyframe der Zeitleiste
oder fügen Sie eines hinzu</translation>
    </message>
</context>
<context>
    <name>NotificationBellView</name>
    <message>
        <source>What&apos;s new</source>
        <translation>Neuigkeiten</translation>
    </message>
    <message>
        <source>Unread</source>
        <translation>Ungelesen</translation>
    </message>
    <message>
        <source>No notifications</source>
        <translation>Keine Mitteilungen</translation>
    </message>
    <message>
        <source>Read more</source>
        <translation>Mehr lesen</translation>
    </message>
</context>
<context>
    <name>NotificationItem</name>
    <message>
        <source>Tavlin 1.4 is here!</source>
        <translation>Tavlin 1.4 ist da!</translation>
    </message>
    <message>
        <source>Check out what&apos;s new in this release.</source>
        <translation>Sehen Sie, was in dieser Version neu ist.</translation>
    </message>
    <message>
        <source>Tavlin 1.5 is here!</source>
        <translation>Tavlin 1.5 ist da!</translation>
    </message>
</context>
<context>
    <name>PermissionView</name>
    <message>
        <source>Tavlin</source>
        <translation>Tavlin</translation>
    </message>
    <message>
        <source>Tavlin needs screen recording access to capture your screen.
Please grant permission in System Settings.</source>
        <translation>Tavlin braucht die Erlaubnis, Ihren Bildschirm aufzunehmen.
Bitte erteilen Sie sie in den Einstellungen Ihres Desktops.</translation>
    </message>
    <message>
        <source>Open System Settings</source>
        <translation>Einstellungen öffnen</translation>
    </message>
    <message>
        <source>Check Again</source>
        <translation>Erneut prüfen</translation>
    </message>
</context>
<context>
    <name>PortalContent</name>
    <message>
        <source>chosen in the desktop&apos;s dialog</source>
        <translation>wird im Dialog des Desktops gewählt</translation>
    </message>
    <message>
        <source>A window</source>
        <translation>Ein Fenster</translation>
    </message>
</context>
<context>
    <name>RecordToolbar</name>
    <message>
        <source>Mute microphone</source>
        <translation>Mikrofon ausschalten</translation>
    </message>
    <message>
        <source>Unmute microphone</source>
        <translation>Mikrofon einschalten</translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation>Mikrofon</translation>
    </message>
    <message>
        <source>Turn off camera</source>
        <translation>Kamera ausschalten</translation>
    </message>
    <message>
        <source>Turn on camera</source>
        <translation>Kamera einschalten</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnehmen</translation>
    </message>
</context>
<context>
    <name>RecordingView</name>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
</context>
<context>
    <name>RunningTake</name>
    <message>
        <source>Recording</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Stop Recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
</context>
<context>
    <name>ScrollLine</name>
    <message>
        <source>Scroll</source>
        <translation>Blättern</translation>
    </message>
</context>
<context>
    <name>SelectionBar</name>
    <message>
        <source>%1 selected</source>
        <translation>%1 ausgewählt</translation>
    </message>
    <message>
        <source>Deselect All</source>
        <translation>Auswahl aufheben</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Alle auswählen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Clear selection</source>
        <translation>Auswahl aufheben</translation>
    </message>
</context>
<context>
    <name>SettingsView</name>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>STORAGE</source>
        <translation>SPEICHER</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Ort</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>In Dateien anzeigen</translation>
    </message>
    <message>
        <source>Total Size</source>
        <translation>Gesamtgröße</translation>
    </message>
    <message>
        <source>ABOUT</source>
        <translation>ÜBER</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Build</source>
        <translation>Build</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation>Nach Updates suchen …</translation>
    </message>
</context>
<context>
    <name>SidebarTabs</name>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
</context>
<context>
    <name>SourceGrid</name>
    <message>
        <source>Windows</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>Displays</source>
        <translation>Bildschirme</translation>
    </message>
    <message>
        <source>No windows are open.</source>
        <translation>Kein Fenster ist offen.</translation>
    </message>
    <message>
        <source>No display can be recorded.</source>
        <translation>Kein Bildschirm kann aufgenommen werden.</translation>
    </message>
</context>
<context>
    <name>SourceSelection</name>
    <message>
        <source>Loading sources...</source>
        <translation>Quellen werden geladen …</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Display</source>
        <translation>Bildschirm</translation>
    </message>
    <message>
        <source>Window</source>
        <translation>Fenster</translation>
    </message>
</context>
<context>
    <name>Spinner</name>
    <message>
        <source>Loading</source>
        <translation>Wird geladen</translation>
    </message>
</context>
<context>
    <name>StatusItem</name>
    <message>
        <source>Stop</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Stop it here, or with &quot;tavi stop&quot; in a terminal.</source>
        <translation>Beenden Sie sie hier oder mit „tavi stop“ in einem Terminal.</translation>
    </message>
    <message>
        <source>Stop Recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
</context>
<context>
    <name>TakeGrid</name>
    <message>
        <source>Recordings</source>
        <translation>Aufnahmen</translation>
    </message>
</context>
<context>
    <name>TakeMenu</name>
    <message>
        <source>Rename...</source>
        <translation>Umbenennen …</translation>
    </message>
    <message>
        <source>Show in Finder</source>
        <translation>In Dateien anzeigen</translation>
    </message>
    <message>
        <source>Delete...</source>
        <translation>Löschen …</translation>
    </message>
</context>
<context>
    <name>TimelinePointer</name>
    <message>
        <source>Cut</source>
        <translation>Schnitt</translation>
    </message>
    <message>
        <source>Restore Section</source>
        <translation>Abschnitt wiederherstellen</translation>
    </message>
    <message>
        <source>Point</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>Delete Point</source>
        <translation>Punkt löschen</translation>
    </message>
</context>
<context>
    <name>TimelineView</name>
    <message>
        <source>Timeline</source>
        <translation>Zeitleiste</translation>
    </message>
</context>
<context>
    <name>TransportButtons</name>
    <message>
        <source>Step Back</source>
        <translation>Schritt zurück</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Step Forward</source>
        <translation>Schritt vor</translation>
    </message>
</context>
<context>
    <name>ZoomTab</name>
    <message>
        <source>AUTO ZOOM</source>
        <translation>AUTO-ZOOM</translation>
    </message>
    <message>
        <source>Intensity</source>
        <translation>Stärke</translation>
    </message>
    <message>
        <source>Generate</source>
        <translation>Erzeugen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Entfernen</translation>
    </message>
</context>
<context>
    <name>tavi::AutoZoomViewModel</name>
    <message>
        <source>Detecting activity regions...</source>
        <translation>Bereiche mit Bewegung werden gesucht …</translation>
    </message>
    <message>
        <source>Simulating camera movements...</source>
        <translation>Kamerafahrten werden berechnet …</translation>
    </message>
    <message>
        <source>Generating keyframes...</source>
        <translation>Keyframes werden erzeugt …</translation>
    </message>
    <message>
        <source>Complete</source>
        <translation>Fertig</translation>
    </message>
</context>
<context>
    <name>tavi::CrosshairViewModel</name>
    <message>
        <source>%1 % from the left, %2 % from the top. Arrow keys move, with Shift further; Return points the zoom there, Escape ends</source>
        <translation>%1 % von links, %2 % von oben. Pfeiltasten bewegen, mit Umschalt weiter; Eingabe richtet den Zoom dorthin, Esc beendet</translation>
    </message>
    <message>
        <source>Return points the selected zoom at a place</source>
        <translation>Eingabe richtet den gewählten Zoom auf eine Stelle</translation>
    </message>
    <message>
        <source>Select a keyframe at the playhead to point its zoom at a place</source>
        <translation>Ein Keyframe am Abspielkopf wählen, um seinen Zoom auf eine Stelle zu richten</translation>
    </message>
</context>
<context>
    <name>tavi::DesktopSavePanel</name>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
</context>
<context>
    <name>tavi::EditorScreenViewModel</name>
    <message>
        <source>%1m %2s left</source>
        <translation>noch %1 min %2 s</translation>
    </message>
    <message>
        <source>%1s left</source>
        <translation>noch %1 s</translation>
    </message>
</context>
<context>
    <name>tavi::ExportSettingsViewModel</name>
    <message>
        <source>Custom</source>
        <translation>Eigene</translation>
    </message>
    <message>
        <source>%1 fps</source>
        <translation>%1 fps</translation>
    </message>
</context>
<context>
    <name>tavi::HomeViewModel</name>
    <message>
        <source>This recording is not there any more.</source>
        <translation>Diese Aufnahme ist nicht mehr da.</translation>
    </message>
    <message>
        <source>Could not rename: %1</source>
        <translation>Umbenennen ging nicht: %1</translation>
    </message>
    <message>
        <source>Could not delete: %1</source>
        <translation>Löschen ging nicht: %1</translation>
    </message>
</context>
<context>
    <name>tavi::RecordingViewModel</name>
    <message>
        <source>Display %1</source>
        <translation>Bildschirm %1</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>A recording is running</source>
        <translation>Eine Aufnahme läuft</translation>
    </message>
    <message>
        <source>This desktop doesn&apos;t tell where the pointer is: the film will show no pointer, and nothing to zoom to can be found.</source>
        <translation>Diese Arbeitsumgebung verrät nicht, wo der Mauszeiger ist: Der Film zeigt keinen, und es lässt sich nichts zum Heranzoomen finden.</translation>
    </message>
    <message>
        <source>This desktop paints the pointer into the picture: the editor can&apos;t move, restyle or hide it, and nothing to zoom to can be found.</source>
        <translation>Diese Arbeitsumgebung malt den Mauszeiger ins Bild: Der Editor kann ihn nicht bewegen, umgestalten oder ausblenden, und es lässt sich nichts zum Heranzoomen finden.</translation>
    </message>
</context>
<context>
    <name>tavi::TaviApp</name>
    <message>
        <source>The pointer of this desktop can&apos;t be followed, so nothing can be recorded here.</source>
        <translation>Dem Zeiger dieses Desktops kann nicht gefolgt werden; darum kann hier nichts aufgenommen werden.</translation>
    </message>
    <message>
        <source>An export is running. Open the other recording when it is done.</source>
        <translation>Es läuft ein Export. Die andere Aufnahme bitte öffnen, wenn er fertig ist.</translation>
    </message>
</context>
<context>
    <name>tavi::TimelineStopsViewModel</name>
    <message>
        <source>Cut from %1 to %2</source>
        <translation>Schnitt von %1 bis %2</translation>
    </message>
    <message>
        <source>Start of the film, %1</source>
        <translation>Anfang des Films, %1</translation>
    </message>
    <message>
        <source>End of the film, %1</source>
        <translation>Ende des Films, %1</translation>
    </message>
    <message>
        <source>Keyframe %1, from %2 to %3</source>
        <translation>Keyframe %1, von %2 bis %3</translation>
    </message>
    <message>
        <source>Start of keyframe %1, %2</source>
        <translation>Anfang von Keyframe %1, %2</translation>
    </message>
    <message>
        <source>End of keyframe %1, %2</source>
        <translation>Ende von Keyframe %1, %2</translation>
    </message>
    <message>
        <source>Zoom of %1 at %2</source>
        <translation>Zoom %1 bei %2</translation>
    </message>
    <message>
        <source>Curve of keyframe %1</source>
        <translation>Kurve von Keyframe %1</translation>
    </message>
    <message>
        <source>Return goes there, Delete restores it</source>
        <translation>Eingabe springt dorthin, Entf stellt ihn wieder her</translation>
    </message>
    <message>
        <source>Return selects it, Delete removes it</source>
        <translation>Eingabe wählt es aus, Entf löscht es</translation>
    </message>
    <message>
        <source>Return adds a point at the playhead</source>
        <translation>Eingabe setzt am Abspielkopf einen Punkt</translation>
    </message>
    <message>
        <source>Up and Down zoom, Return moves it to the playhead, Delete removes it</source>
        <translation>Hoch und Runter zoomen, Eingabe holt ihn zum Abspielkopf, Entf löscht ihn</translation>
    </message>
    <message>
        <source>Return moves it to the playhead</source>
        <translation>Eingabe holt es zum Abspielkopf</translation>
    </message>
</context>
<context>
    <name>tavi::UpdaterController</name>
    <message>
        <source>Tavlin was installed by your system&apos;s package manager, which also brings its updates.</source>
        <translation>Tavlin wurde von der Paketverwaltung Ihres Systems installiert; sie bringt auch seine Updates.</translation>
    </message>
    <message>
        <source>Tavlin %1 is the newest version.</source>
        <translation>Tavlin %1 ist die neueste Version.</translation>
    </message>
    <message>
        <source>Tavlin %1 is available. &quot;Check for Updates...&quot; fetches it.</source>
        <translation>Tavlin %1 ist verfügbar. „Nach Updates suchen …“ holt es.</translation>
    </message>
    <message>
        <source>The update is refused: its file is too large.</source>
        <translation>Das Update wird abgelehnt: Seine Datei ist zu groß.</translation>
    </message>
    <message>
        <source>The update is refused: its signature is wrong.</source>
        <translation>Das Update wird abgelehnt: Seine Signatur ist falsch.</translation>
    </message>
    <message>
        <source>Tavlin %1 was fetched and its signature is right. Install it with your package installer: %2</source>
        <translation>Tavlin %1 wurde geholt, und seine Signatur stimmt. Installieren Sie es mit Ihrem Paketinstallationsprogramm: %2</translation>
    </message>
</context>
<context>
    <name>tavi::ZoomTabViewModel</name>
    <message>
        <source>Linear</source>
        <translation>Linear</translation>
    </message>
    <message>
        <source>Ease In</source>
        <translation>Sanft an</translation>
    </message>
    <message>
        <source>Ease Out</source>
        <translation>Sanft aus</translation>
    </message>
    <message>
        <source>Ease In-Out</source>
        <translation>Sanft an-aus</translation>
    </message>
    <message>
        <source>Spring</source>
        <translation>Feder</translation>
    </message>
    <message numerus="yes">
        <source>%n keyframes generated</source>
        <translation>
            <numerusform>%n Keyframe erzeugt</numerusform>
            <numerusform>%n Keyframes erzeugt</numerusform>
        </translation>
    </message>
    <message>
        <source>KEYFRAME %1</source>
        <translation>KEYFRAME %1</translation>
    </message>
</context>
</TS>
