<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AppCategory</name>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="24"/>
        <source>Sound &amp; Video</source>
        <translation>Multimedia</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="25"/>
        <source>Programming</source>
        <translation>Entwicklung</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="26"/>
        <source>Education</source>
        <translation>Bildung</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="27"/>
        <source>Games</source>
        <translation>Spiele</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="28"/>
        <source>Graphics</source>
        <translation>Grafik</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="29"/>
        <source>Internet</source>
        <translation>Internet</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="30"/>
        <source>Office</source>
        <translation>Büro</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="31"/>
        <source>Science</source>
        <translation>Wissenschaft</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="32"/>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="33"/>
        <source>System Tools</source>
        <translation>Systemwerkzeuge</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="34"/>
        <source>Accessories</source>
        <translation>Zubehör</translation>
    </message>
    <message>
        <location filename="../src/sources/appcategories.cpp" line="35"/>
        <source>Other</source>
        <translation>Sonstige</translation>
    </message>
</context>
<context>
    <name>SourceTitles</name>
    <message>
        <location filename="../src/sources/sourcetitles.cpp" line="21"/>
        <source>Shortcuts</source>
        <translation>Kurzbefehle</translation>
    </message>
</context>
<context>
    <name>StatusMenu</name>
    <message>
        <location filename="../src/app/statusmenu.cpp" line="301"/>
        <source>Version</source>
        <translation>Version</translation>
    </message>
</context>
<context>
    <name>SystemStrings</name>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="17"/>
        <source>Quit %@</source>
        <translation>%@ beenden</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="18"/>
        <source>Settings…</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="19"/>
        <source>System Settings</source>
        <translation>Systemeinstellungen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="20"/>
        <source>Open at Login</source>
        <translation>Bei der Anmeldung öffnen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="21"/>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="22"/>
        <source>Menus</source>
        <translation>Menüs</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="23"/>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="24"/>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="25"/>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="26"/>
        <source>Duplicate</source>
        <translation>Duplizieren</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="27"/>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="28"/>
        <source>Untitled</source>
        <translation>Ohne Titel</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="29"/>
        <source>%@ copy</source>
        <translation>%@ Kopie</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="30"/>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="31"/>
        <source>No Selection</source>
        <translation>Keine Auswahl</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="32"/>
        <source>No Items</source>
        <translation>Keine Objekte</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="33"/>
        <source>Not Available</source>
        <translation>Nicht verfügbar</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="34"/>
        <source>Show Search</source>
        <translation>Suche anzeigen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="35"/>
        <source>Check for Updates</source>
        <translation>Nach Updates suchen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="36"/>
        <source>Update Available</source>
        <translation>Update verfügbar</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="37"/>
        <source>Automatic Updates</source>
        <translation>Automatische Updates</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="38"/>
        <source>Don’t Show</source>
        <translation>Nicht anzeigen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="39"/>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="40"/>
        <source>Submenu</source>
        <translation>Untermenü</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="41"/>
        <source>Add Folder</source>
        <translation>Ordner hinzufügen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="42"/>
        <source>Sort By</source>
        <translation>Sortieren nach</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="43"/>
        <source>Date Added</source>
        <translation>Hinzugefügt am</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="44"/>
        <source>Date Modified</source>
        <translation>Geändert am</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="45"/>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="46"/>
        <source>Add Shortcut</source>
        <translation>Kurzbefehl hinzufügen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="47"/>
        <source>This item is unavailable.</source>
        <translation>Dieses Objekt ist nicht verfügbar.</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="48"/>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="49"/>
        <source>All Applications</source>
        <translation>Alle Anwendungen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="50"/>
        <source>Favorites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="51"/>
        <source>Keyboard Shortcut</source>
        <translation>Tastenkombination</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="52"/>
        <source>No Shortcut</source>
        <translation>Keine Tastenkombination</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="53"/>
        <source>Press keys</source>
        <translation>Tasten drücken</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="54"/>
        <source>Remove Shortcut</source>
        <translation>Tastenkombination entfernen</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="55"/>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="56"/>
        <source>About %@</source>
        <translation>Über %@</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="57"/>
        <source>Send Feedback</source>
        <translation>Feedback senden</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="58"/>
        <source>Recents</source>
        <translation>Zuletzt benutzt</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="59"/>
        <source>Clear Menu</source>
        <translation>Menü leeren</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="60"/>
        <source>Number of Items</source>
        <translation>Anzahl der Objekte</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="61"/>
        <source>Separator</source>
        <translation>Trennlinie</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="62"/>
        <source>Files &amp; Folders</source>
        <translation>Dateien &amp; Ordner</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="63"/>
        <source>Catalog</source>
        <translation>Katalog</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="64"/>
        <source>%@: %@</source>
        <translation>%@: %@</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="65"/>
        <source>Are you sure you want to delete “%@”?</source>
        <translation>Möchtest du „%@“ wirklich löschen?</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="66"/>
        <source>You can’t undo this action.</source>
        <translation>Diese Aktion kann nicht widerrufen werden.</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="67"/>
        <source>Content</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="68"/>
        <source>Shortcut used by another action</source>
        <translation>Tastenkombination wird von einer anderen Aktion verwendet</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="69"/>
        <source>Other</source>
        <translation>Andere</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="70"/>
        <source>Icon</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="71"/>
        <source>None</source>
        <translation>Ohne</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="72"/>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="73"/>
        <source>Purple</source>
        <translation>Violett</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="74"/>
        <source>Pink</source>
        <translation>Rosa</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="75"/>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="76"/>
        <source>Orange</source>
        <translation>Orange</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="77"/>
        <source>Yellow</source>
        <translation>Gelb</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="78"/>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <location filename="../src/catalog/systemstrings.cpp" line="79"/>
        <source>Graphite</source>
        <translation>Graphit</translation>
    </message>
</context>
<context>
    <name>UpdateWindow</name>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="19"/>
        <source>Download</source>
        <translation>Herunterladen</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="20"/>
        <location filename="../src/app/updatewindow.cpp" line="74"/>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="22"/>
        <source>Software Update</source>
        <translation>Softwareaktualisierung</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="62"/>
        <source>Checking for updates…</source>
        <translation>Nach Aktualisierungen wird gesucht …</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="67"/>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="79"/>
        <source>Quillon %1 is available</source>
        <translation>Quillon %1 ist verfügbar</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="80"/>
        <source>You have version %1.</source>
        <translation>Sie haben Version %1.</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="84"/>
        <source>Release notes</source>
        <translation>Versionshinweise</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="94"/>
        <source>Later</source>
        <translation>Später</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="96"/>
        <source>You’re up to date!</source>
        <translation>Quillon ist auf dem neuesten Stand!</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="97"/>
        <source>Quillon %1 is the newest version available.</source>
        <translation>Quillon %1 ist die neueste verfügbare Version.</translation>
    </message>
    <message>
        <location filename="../src/app/updatewindow.cpp" line="99"/>
        <source>Update check failed</source>
        <translation>Die Suche nach Aktualisierungen ist fehlgeschlagen</translation>
    </message>
</context>
<context>
    <name>Updates</name>
    <message>
        <location filename="../src/app/updates.cpp" line="75"/>
        <source>Update checks are turned off in this build.</source>
        <translation>In dieser Ausgabe ist die Suche nach Aktualisierungen abgeschaltet.</translation>
    </message>
</context>
<context>
    <name>HotKeyRecorder</name>
    <message>
        <source>Super</source>
        <translation>Super</translation>
    </message>
    <message>
        <source>Add to GNOME Keyboard Shortcuts</source>
        <translation>Zu den GNOME-Tastenkürzeln hinzufügen</translation>
    </message>
    <message>
        <source>Remove from GNOME Keyboard Shortcuts</source>
        <translation>Aus den GNOME-Tastenkürzeln entfernen</translation>
    </message>
    <message>
        <source>GNOME runs “%1” on %2.</source>
        <translation>GNOME führt „%1“ mit %2 aus.</translation>
    </message>
    <message>
        <source>This session does not let programs set global shortcuts. GNOME can run “%1” for you.</source>
        <translation>Diese Sitzung erlaubt Programmen keine globalen Tastenkürzel. GNOME kann „%1“ für Sie ausführen.</translation>
    </message>
    <message>
        <source>This session does not let programs set global shortcuts. Bind “%1” to a key in your desktop’s keyboard settings.</source>
        <translation>Diese Sitzung erlaubt Programmen keine globalen Tastenkürzel. Legen Sie „%1“ in den Tastatureinstellungen Ihrer Arbeitsumgebung auf eine Taste.</translation>
    </message>
</context>
<context>
    <name>PortalHotKeys</name>
    <message>
        <source>Show or hide the Quillon search panel</source>
        <translation>Die Quillon-Suche ein- oder ausblenden</translation>
    </message>
    <message>
        <source>Open the Quillon menu at the mouse</source>
        <translation>Das Quillon-Menü am Mauszeiger öffnen</translation>
    </message>
    <message>
        <source>Quillon shortcut %1</source>
        <translation>Quillon-Tastenkürzel %1</translation>
    </message>
</context>
<context>
    <name>QShortcut</name>
    <message>
        <source>Ctrl</source>
        <translation>Strg</translation>
    </message>
    <message>
        <source>Alt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Umschalt</translation>
    </message>
</context>
<context>
    <name>GeneralPane</name>
    <message>
        <source>Quillon is updated with the rest of your system, by your distribution.</source>
        <translation>Quillon wird von Ihrer Distribution zusammen mit dem übrigen System aktualisiert.</translation>
    </message>
</context>
<context>
    <name>ContentPane</name>
    <message>
        <source>Move Up</source>
        <translation>Nach oben</translation>
    </message>
    <message>
        <source>Move Down</source>
        <translation>Nach unten</translation>
    </message>
</context>
<context>
    <name>MenusPane</name>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Items</source>
        <translation>Objekte</translation>
    </message>
</context>
<context>
    <name>AddItemButtons</name>
    <message>
        <source>Add Files</source>
        <translation>Dateien hinzufügen</translation>
    </message>
</context>
<context>
    <name>LoginItem</name>
    <message>
        <source>%1 cannot be written, so Quillon cannot start at login.</source>
        <translation>%1 ist nicht beschreibbar, daher kann Quillon nicht bei der Anmeldung starten.</translation>
    </message>
</context>
<context>
    <name>MenuBuilder</name>
    <message>
        <source>More</source>
        <translation>Weitere</translation>
    </message>
    <message>
        <source>Loading…</source>
        <translation>Wird geladen …</translation>
    </message>
</context>
<context>
    <name>FolderEntries</name>
    <message numerus="yes">
        <source>%Ln more items</source>
        <translation>
            <numerusform>%Ln weiteres Objekt</numerusform>
            <numerusform>%Ln weitere Objekte</numerusform>
        </translation>
    </message>
    <message>
        <source>Open Folder</source>
        <translation>Ordner öffnen</translation>
    </message>
</context>
<context>
    <name>UpdateChecker</name>
    <message>
        <source>The update feed %1 is not an https address.</source>
        <translation>Die Aktualisierungsquelle %1 ist keine https-Adresse.</translation>
    </message>
    <message>
        <source>The update feed is larger than %1 MB.</source>
        <translation>Die Aktualisierungsquelle ist größer als %1 MB.</translation>
    </message>
    <message>
        <source>The update feed was ignored: its signature could not be read (%1).</source>
        <translation>Die Aktualisierungsquelle wurde übergangen: Ihre Signatur konnte nicht gelesen werden (%1).</translation>
    </message>
    <message>
        <source>The update feed was ignored: its signature does not match.</source>
        <translation>Die Aktualisierungsquelle wurde übergangen: Ihre Signatur passt nicht.</translation>
    </message>
    <message>
        <source>too large</source>
        <translation>zu groß</translation>
    </message>
</context>
</TS>
