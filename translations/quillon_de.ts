<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>SystemStrings</name>
    <message>
        <source>Quit %@</source>
        <translation>%@ beenden</translation>
    </message>
    <message>
        <source>Settings…</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <source>System Settings</source>
        <translation>Systemeinstellungen</translation>
    </message>
    <message>
        <source>Open at Login</source>
        <translation>Bei der Anmeldung öffnen</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Menus</source>
        <translation>Menüs</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>Duplizieren</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Ohne Titel</translation>
    </message>
    <message>
        <source>%@ copy</source>
        <translation>%@ Kopie</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>No Selection</source>
        <translation>Keine Auswahl</translation>
    </message>
    <message>
        <source>No Items</source>
        <translation>Keine Objekte</translation>
    </message>
    <message>
        <source>Not Available</source>
        <translation>Nicht verfügbar</translation>
    </message>
    <message>
        <source>Show Search</source>
        <translation>Suche anzeigen</translation>
    </message>
    <message>
        <source>Check for Updates</source>
        <translation>Nach Updates suchen</translation>
    </message>
    <message>
        <source>Update Available</source>
        <translation>Update verfügbar</translation>
    </message>
    <message>
        <source>Automatic Updates</source>
        <translation>Automatische Updates</translation>
    </message>
    <message>
        <source>Don’t Show</source>
        <translation>Nicht anzeigen</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Submenu</source>
        <translation>Untermenü</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>Ordner hinzufügen</translation>
    </message>
    <message>
        <source>Sort By</source>
        <translation>Sortieren nach</translation>
    </message>
    <message>
        <source>Date Added</source>
        <translation>Hinzugefügt am</translation>
    </message>
    <message>
        <source>Date Modified</source>
        <translation>Geändert am</translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Optionen</translation>
    </message>
    <message>
        <source>Add Shortcut</source>
        <translation>Kurzbefehl hinzufügen</translation>
    </message>
    <message>
        <source>This item is unavailable.</source>
        <translation>Dieses Objekt ist nicht verfügbar.</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>All Applications</source>
        <translation>Alle Anwendungen</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>Keyboard Shortcut</source>
        <translation>Tastenkombination</translation>
    </message>
    <message>
        <source>No Shortcut</source>
        <translation>Keine Tastenkombination</translation>
    </message>
    <message>
        <source>Press keys</source>
        <translation>Tasten drücken</translation>
    </message>
    <message>
        <source>Remove Shortcut</source>
        <translation>Tastenkombination entfernen</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>About %@</source>
        <translation>Über %@</translation>
    </message>
    <message>
        <source>Send Feedback</source>
        <translation>Feedback senden</translation>
    </message>
    <message>
        <source>Recents</source>
        <translation>Zuletzt benutzt</translation>
    </message>
    <message>
        <source>Clear Menu</source>
        <translation>Menü leeren</translation>
    </message>
    <message>
        <source>Number of Items</source>
        <translation>Anzahl der Objekte</translation>
    </message>
    <message>
        <source>Separator</source>
        <translation>Trennlinie</translation>
    </message>
    <message>
        <source>Files &amp; Folders</source>
        <translation>Dateien &amp; Ordner</translation>
    </message>
    <message>
        <source>Catalog</source>
        <translation>Katalog</translation>
    </message>
    <message>
        <source>%@: %@</source>
        <translation>%@: %@</translation>
    </message>
    <message>
        <source>Are you sure you want to delete “%@”?</source>
        <translation>Möchtest du „%@“ wirklich löschen?</translation>
    </message>
    <message>
        <source>You can’t undo this action.</source>
        <translation>Diese Aktion kann nicht widerrufen werden.</translation>
    </message>
    <message>
        <source>Content</source>
        <translation>Inhalt</translation>
    </message>
    <message>
        <source>Shortcut used by another action</source>
        <translation>Tastenkombination wird von einer anderen Aktion verwendet</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Andere</translation>
    </message>
    <message>
        <source>Icon</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Ohne</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>Purple</source>
        <translation>Violett</translation>
    </message>
    <message>
        <source>Pink</source>
        <translation>Rosa</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>Orange</source>
        <translation>Orange</translation>
    </message>
    <message>
        <source>Yellow</source>
        <translation>Gelb</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>Graphite</source>
        <translation>Graphit</translation>
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
    <name>SettingsWindow</name>
    <message>
        <source>Search panel:</source>
        <translation>Suche:</translation>
    </message>
    <message>
        <source>Menu at the mouse:</source>
        <translation>Menü am Mauszeiger:</translation>
    </message>
</context>
</TS>
