<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>Lanternbud</name>
    <message>
        <source>left</source>
        <translation>links</translation>
    </message>
    <message>
        <source>right</source>
        <translation>rechts</translation>
    </message>
    <message>
        <source>Version %@</source>
        <translation>Version %@</translation>
    </message>
    <message>
        <source>Build %@</source>
        <translation>Build %@</translation>
    </message>
    <message>
        <source>Copyright © 2026 the Lanternbud developers</source>
        <translation>Copyright © 2026 die Lanternbud-Entwickler</translation>
    </message>
    <message>
        <source>&amp;Manual</source>
        <translation>&amp;Handbuch</translation>
    </message>
    <message>
        <source>Open the manual</source>
        <translation>Handbuch öffnen</translation>
    </message>
    <message>
        <source>S&amp;upport</source>
        <translation>S&amp;upport</translation>
    </message>
    <message>
        <source>Open the support page</source>
        <translation>Support-Seite öffnen</translation>
    </message>
    <message>
        <source>Save Diagnostic &amp;Report…</source>
        <translation>&amp;Diagnosebericht speichern…</translation>
    </message>
    <message>
        <source>Saves Lanternbud’s logs, the journal and what the Bluetooth and sound systems say of their devices in one file to send to support.</source>
        <translation>Speichert die Protokolle von Lanternbud, das Journal und die Angaben der Bluetooth- und Audiosysteme zu ihren Geräten in einer Datei, die Sie an den Support senden können.</translation>
    </message>
    <message>
        <source>&amp;Hide the second half of Bluetooth addresses</source>
        <translation>Zweite Hälfte der Bluetooth-&amp;Adressen ausblenden</translation>
    </message>
    <message>
        <source>A device’s whole address can identify it and its owner.</source>
        <translation>Die vollständige Adresse eines Geräts kann das Gerät und seinen Besitzer erkennbar machen.</translation>
    </message>
    <message>
        <source>Show in &amp;Folder</source>
        <translation>Im &amp;Ordner zeigen</translation>
    </message>
    <message>
        <source>Show the report in its folder</source>
        <translation>Den Bericht in seinem Ordner zeigen</translation>
    </message>
    <message>
        <source>Add Device</source>
        <translation>Gerät hinzufügen</translation>
    </message>
    <message>
        <source>Add by Address</source>
        <translation>Per Adresse hinzufügen</translation>
    </message>
    <message>
        <source>Enter the address of a Bluetooth device to add it manually.</source>
        <translation>Geben Sie die Adresse eines Bluetooth-Geräts ein, um es von Hand hinzuzufügen.</translation>
    </message>
    <message>
        <source>To find the address, go to System Preferences ‣ Bluetooth and make sure that “Show Bluetooth in menu bar” is checked. Then Option-click the macOS Bluetooth menu at the top of the screen and look for the address under the device.</source>
        <translation>Die Adresse steht in den Details des Geräts in den Bluetooth-Einstellungen Ihrer Arbeitsumgebung, oder führen Sie „bluetoothctl devices Paired“ in einem Terminal aus.</translation>
    </message>
    <message>
        <source>Bluetooth address</source>
        <translation>Bluetooth-Adresse</translation>
    </message>
    <message>
        <source>The device has already been added.</source>
        <translation>Das Gerät wurde bereits hinzugefügt.</translation>
    </message>
    <message>
        <source>This computer knows no Bluetooth device at %@. Pair the device in your desktop’s Bluetooth settings first, then add it here.</source>
        <translation>Dieser Computer kennt kein Bluetooth-Gerät mit der Adresse %@. Koppeln Sie das Gerät zuerst in den Bluetooth-Einstellungen Ihrer Arbeitsumgebung und fügen Sie es dann hier hinzu.</translation>
    </message>
    <message>
        <source>Run this script after &amp;connecting:</source>
        <translation>Dieses Skript nach dem &amp;Verbinden ausführen:</translation>
    </message>
    <message>
        <source>Connect script</source>
        <translation>Skript nach dem Verbinden</translation>
    </message>
    <message>
        <source>Run this script after &amp;disconnecting:</source>
        <translation>Dieses Skript nach dem &amp;Trennen ausführen:</translation>
    </message>
    <message>
        <source>Disconnect script</source>
        <translation>Skript nach dem Trennen</translation>
    </message>
    <message>
        <source>Scripts of %@</source>
        <translation>Skripte von %@</translation>
    </message>
    <message>
        <source>Run the connect script</source>
        <translation>Skript nach dem Verbinden ausführen</translation>
    </message>
    <message>
        <source>Run the disconnect script</source>
        <translation>Skript nach dem Trennen ausführen</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>This script does not run until “Run this script after connecting” is ticked.</source>
        <translation>Dieses Skript läuft erst, wenn „Dieses Skript nach dem Verbinden ausführen“ angekreuzt ist.</translation>
    </message>
    <message>
        <source>This script does not run until “Run this script after disconnecting” is ticked.</source>
        <translation>Dieses Skript läuft erst, wenn „Dieses Skript nach dem Trennen ausführen“ angekreuzt ist.</translation>
    </message>
    <message>
        <source>Unable to write script to the folder.</source>
        <translation>Das Skript konnte nicht in den Ordner geschrieben werden.</translation>
    </message>
    <message numerus="yes">
        <source>about %n hours left</source>
        <translation>
            <numerusform>noch etwa %n Stunde</numerusform>
            <numerusform>noch etwa %n Stunden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>about %n minutes left</source>
        <translation>
            <numerusform>noch etwa %n Minute</numerusform>
            <numerusform>noch etwa %n Minuten</numerusform>
        </translation>
    </message>
    <message>
        <source>Battery history</source>
        <translation>Akkuverlauf</translation>
    </message>
    <message>
        <source>No battery levels have been read yet; they are kept while the device is connected.</source>
        <translation>Noch keine Akkustände gelesen; sie werden festgehalten, solange das Gerät verbunden ist.</translation>
    </message>
    <message>
        <source>Last read: %1</source>
        <translation>Zuletzt gelesen: %1</translation>
    </message>
    <message>
        <source>now</source>
        <translation>jetzt</translation>
    </message>
    <message>
        <source>Your Mac could not connect to “%@”.</source>
        <translation>Ihr Computer konnte keine Verbindung zu „%@“ herstellen.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>The Bluetooth connection timed out.</source>
        <translation>Die Bluetooth-Verbindung hat das Zeitlimit überschritten.</translation>
    </message>
    <message>
        <source>Please make sure that Bluetooth is enabled in the Bluetooth pane in System Settings.</source>
        <translation>Bitte stellen Sie sicher, dass Bluetooth in den Bluetooth-Einstellungen Ihrer Arbeitsumgebung eingeschaltet ist.</translation>
    </message>
    <message>
        <source>Please make sure that Bluetooth is On in the Bluetooth pane in System Preferences.</source>
        <translation>Bitte stellen Sie sicher, dass Bluetooth in den Bluetooth-Einstellungen Ihrer Arbeitsumgebung eingeschaltet ist.</translation>
    </message>
    <message>
        <source>Bluetooth reported error %@.</source>
        <translation>Bluetooth meldete den Fehler %@.</translation>
    </message>
    <message>
        <source>Lanternbud is in your tray</source>
        <translation>Lanternbud ist in Ihrer Systemleiste</translation>
    </message>
    <message>
        <source>Click a device&apos;s icon to connect or disconnect it. Right-click it for its menu.</source>
        <translation>Klicken Sie auf das Symbol eines Geräts, um es zu verbinden oder zu trennen. Ein Rechtsklick öffnet sein Menü.</translation>
    </message>
    <message>
        <source>Open Bluetooth &amp;Settings</source>
        <translation>Bluetooth-&amp;Einstellungen öffnen</translation>
    </message>
    <message>
        <source>Add a Device</source>
        <translation>Gerät hinzufügen</translation>
    </message>
    <message>
        <source>Select the Bluetooth device that you want to add to the menu bar:</source>
        <translation>Wählen Sie das Bluetooth-Gerät, das Sie der Systemleiste hinzufügen möchten:</translation>
    </message>
    <message>
        <source>Paired devices</source>
        <translation>Gekoppelte Geräte</translation>
    </message>
    <message>
        <source>Add by &amp;Address…</source>
        <translation>Per &amp;Adresse hinzufügen…</translation>
    </message>
    <message>
        <source>The Bluetooth service is not running, so Lanternbud cannot see the paired devices. Start it with “sudo systemctl start bluetooth” in a terminal, and they appear here.</source>
        <translation>Der Bluetooth-Dienst läuft nicht, daher sieht Lanternbud die gekoppelten Geräte nicht. Starten Sie ihn in einem Terminal mit „sudo systemctl start bluetooth“, dann erscheinen sie hier.</translation>
    </message>
    <message>
        <source>No Bluetooth device is paired with this computer. Pair one in your desktop’s Bluetooth settings, and it appears here.</source>
        <translation>Mit diesem Computer ist kein Bluetooth-Gerät gekoppelt. Koppeln Sie eines in den Bluetooth-Einstellungen Ihrer Arbeitsumgebung, dann erscheint es hier.</translation>
    </message>
    <message>
        <source>Every paired device is in Lanternbud already. Pair another one in your desktop’s Bluetooth settings, and it appears here.</source>
        <translation>Alle gekoppelten Geräte sind bereits in Lanternbud. Koppeln Sie ein weiteres in den Bluetooth-Einstellungen Ihrer Arbeitsumgebung, dann erscheint es hier.</translation>
    </message>
    <message>
        <source>The device is no longer paired with this computer.</source>
        <translation>Das Gerät ist nicht mehr mit diesem Computer gekoppelt.</translation>
    </message>
    <message>
        <source>No Bluetooth settings program was found. Pair the device in a terminal with bluetoothctl (scan on, then pair and trust its address), and it appears here.</source>
        <translation>Es wurde kein Programm für die Bluetooth-Einstellungen gefunden. Koppeln Sie das Gerät in einem Terminal mit bluetoothctl (scan on, dann pair und trust mit seiner Adresse), dann erscheint es hier.</translation>
    </message>
    <message>
        <source>Ad&amp;vanced…</source>
        <translation>&amp;Erweitert…</translation>
    </message>
    <message>
        <source>Scripts of the device</source>
        <translation>Skripte des Geräts</translation>
    </message>
    <message>
        <source>Remove the device</source>
        <translation>Gerät entfernen</translation>
    </message>
    <message>
        <source>Start Lanternbud at &amp;login</source>
        <translation>Lanternbud beim A&amp;nmelden starten</translation>
    </message>
    <message>
        <source>Devices</source>
        <translation>Geräte</translation>
    </message>
    <message>
        <source>Add a paired device</source>
        <translation>Gekoppeltes Gerät hinzufügen</translation>
    </message>
    <message>
        <source>Add a device that is paired with this computer</source>
        <translation>Ein Gerät hinzufügen, das mit diesem Computer gekoppelt ist</translation>
    </message>
    <message>
        <source>Remove the selected device from Lanternbud</source>
        <translation>Das ausgewählte Gerät aus Lanternbud entfernen</translation>
    </message>
    <message>
        <source>Add a device by its address</source>
        <translation>Ein Gerät über seine Adresse hinzufügen</translation>
    </message>
    <message>
        <source>Device name</source>
        <translation>Gerätename</translation>
    </message>
    <message>
        <source>Icon in the tray</source>
        <translation>Symbol in der Systemleiste</translation>
    </message>
    <message>
        <source>Choose the device&apos;s picture in the tray</source>
        <translation>Das Bild des Geräts in der Systemleiste wählen</translation>
    </message>
    <message>
        <source>Sho&amp;w in the tray</source>
        <translation>In der System&amp;leiste anzeigen</translation>
    </message>
    <message>
        <source>&amp;Connect only: a click never disconnects</source>
        <translation>Nur &amp;verbinden: Ein Klick trennt nie</translation>
    </message>
    <message>
        <source>&amp;Keep the sound input when connecting</source>
        <translation>Audioeingang beim Verbinden beibe&amp;halten</translation>
    </message>
    <message>
        <source>Show the &amp;battery level</source>
        <translation>Akkustand an&amp;zeigen</translation>
    </message>
    <message>
        <source>Wa&amp;rn when the battery is low</source>
        <translation>Bei schwachem Akku &amp;warnen</translation>
    </message>
    <message>
        <source>Start Lanternbud at login</source>
        <translation>Lanternbud beim Anmelden starten</translation>
    </message>
    <message>
        <source>&amp;Icon:</source>
        <translation>&amp;Symbol:</translation>
    </message>
    <message>
        <source>&amp;Shortcut:</source>
        <translation>&amp;Tastenkürzel:</translation>
    </message>
    <message>
        <source>Battery</source>
        <translation>Akku</translation>
    </message>
    <message>
        <source>Click + to add a paired device.</source>
        <translation>Klicken Sie auf +, um ein gekoppeltes Gerät hinzuzufügen.</translation>
    </message>
    <message>
        <source>Remove Device</source>
        <translation>Gerät entfernen</translation>
    </message>
    <message>
        <source>Remove “%@” from Lanternbud?</source>
        <translation>„%@“ aus Lanternbud entfernen?</translation>
    </message>
    <message>
        <source>Its tray icon, its connect and disconnect scripts and its shortcut %@ go with it. The device stays paired with this computer.</source>
        <translation>Sein Symbol in der Systemleiste, seine Skripte zum Verbinden und Trennen und sein Tastenkürzel %@ werden mit entfernt. Das Gerät bleibt mit diesem Computer gekoppelt.</translation>
    </message>
    <message>
        <source>Its tray icon and its connect and disconnect scripts go with it. The device stays paired with this computer.</source>
        <translation>Sein Symbol in der Systemleiste und seine Skripte zum Verbinden und Trennen werden mit entfernt. Das Gerät bleibt mit diesem Computer gekoppelt.</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>L</source>
        <translation>L</translation>
    </message>
    <message>
        <source>R</source>
        <translation>R</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Battery Level</source>
        <translation>Akkustand</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>Getrennt</translation>
    </message>
    <message>
        <source>Fixing Sound Output</source>
        <translation>Tonausgabe wird repariert</translation>
    </message>
    <message>
        <source> (Not Sound Output)</source>
        <translation> (nicht die Tonausgabe)</translation>
    </message>
    <message>
        <source>Not paired</source>
        <translation>Nicht gekoppelt</translation>
    </message>
    <message>
        <source>sound output</source>
        <translation>Tonausgabe</translation>
    </message>
    <message>
        <source>not the sound output</source>
        <translation>nicht die Tonausgabe</translation>
    </message>
    <message>
        <source>Unknown device</source>
        <translation>Unbekanntes Gerät</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Verbinden</translation>
    </message>
    <message>
        <source>Make Sound Output</source>
        <translation>Als Tonausgabe verwenden</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Connecting…</source>
        <translation>Wird verbunden…</translation>
    </message>
    <message>
        <source>Disconnecting…</source>
        <translation>Wird getrennt…</translation>
    </message>
    <message>
        <source>Settings…</source>
        <translation>Einstellungen…</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>The help could not be opened.</source>
        <translation>Die Hilfe konnte nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>No program on this computer opens web pages. The page is %@.</source>
        <translation>Kein Programm auf diesem Computer öffnet Webseiten. Die Seite ist %@.</translation>
    </message>
    <message>
        <source>Show the co&amp;nnected pictures</source>
        <translation>Bilder für &amp;verbunden zeigen</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
    <message>
        <source>Wand</source>
        <translation>Zauberstab</translation>
    </message>
    <message>
        <source>Earbuds</source>
        <translation>Ohrhörer</translation>
    </message>
    <message>
        <source>Phone</source>
        <translation>Telefon</translation>
    </message>
    <message>
        <source>Headset</source>
        <translation>Headset</translation>
    </message>
    <message>
        <source>Headset with microphone</source>
        <translation>Headset mit Mikrofon</translation>
    </message>
    <message>
        <source>Box</source>
        <translation>Box</translation>
    </message>
    <message>
        <source>Boombox</source>
        <translation>Kofferradio</translation>
    </message>
    <message>
        <source>Smart speaker</source>
        <translation>Smart Speaker</translation>
    </message>
    <message>
        <source>Wide speaker</source>
        <translation>Breiter Lautsprecher</translation>
    </message>
    <message>
        <source>Round speaker</source>
        <translation>Runder Lautsprecher</translation>
    </message>
    <message>
        <source>Conference speaker</source>
        <translation>Konferenzlautsprecher</translation>
    </message>
    <message>
        <source>Desktop speaker</source>
        <translation>Schreibtischlautsprecher</translation>
    </message>
    <message>
        <source>Mouse</source>
        <translation>Maus</translation>
    </message>
    <message>
        <source>Mouse with buttons</source>
        <translation>Maus mit Tasten</translation>
    </message>
    <message>
        <source>Graphics tablet</source>
        <translation>Grafiktablett</translation>
    </message>
    <message>
        <source>Keyboard</source>
        <translation>Tastatur</translation>
    </message>
    <message>
        <source>Game controller</source>
        <translation>Gamecontroller</translation>
    </message>
    <message>
        <source>Controller</source>
        <translation>Controller</translation>
    </message>
    <message>
        <source>Headphones</source>
        <translation>Kopfhörer</translation>
    </message>
    <message>
        <source>Collecting the log files</source>
        <translation>Protokolldateien werden gesammelt</translation>
    </message>
    <message>
        <source>Asking BlueZ about the adapters and paired devices</source>
        <translation>BlueZ wird nach den Adaptern und gekoppelten Geräten gefragt</translation>
    </message>
    <message>
        <source>Asking the sound server about its devices</source>
        <translation>Der Soundserver wird nach seinen Geräten gefragt</translation>
    </message>
    <message>
        <source>Reading the journal</source>
        <translation>Das Journal wird gelesen</translation>
    </message>
    <message>
        <source>Writing the report</source>
        <translation>Der Bericht wird geschrieben</translation>
    </message>
    <message>
        <source>%1: left bud at %2 %</source>
        <translation>%1: linker Ohrhörer bei %2 %</translation>
    </message>
    <message>
        <source>%1: right bud at %2 %</source>
        <translation>%1: rechter Ohrhörer bei %2 %</translation>
    </message>
    <message>
        <source>%1: battery at %2 %</source>
        <translation>%1: Akku bei %2 %</translation>
    </message>
    <message>
        <source>Charge it now: it will turn off soon.</source>
        <translation>Jetzt aufladen: Es schaltet sich bald aus.</translation>
    </message>
    <message>
        <source>Charge it soon.</source>
        <translation>Bald aufladen.</translation>
    </message>
    <message>
        <source>the desktop refused it</source>
        <translation>die Arbeitsumgebung hat es abgelehnt</translation>
    </message>
    <message>
        <source>the desktop did not take it</source>
        <translation>die Arbeitsumgebung hat es nicht übernommen</translation>
    </message>
    <message>
        <source>Lanternbud Settings</source>
        <translation>Lanternbud-Einstellungen</translation>
    </message>
    <message>
        <source>&amp;Devices</source>
        <translation>&amp;Geräte</translation>
    </message>
    <message>
        <source>Ab&amp;out</source>
        <translation>Ü&amp;ber</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Save state</source>
        <translation>Speicherstatus</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Your changes could not be saved (%@); they apply until Lanternbud quits.</source>
        <translation>Ihre Änderungen konnten nicht gespeichert werden (%@); sie gelten, bis Lanternbud beendet wird.</translation>
    </message>
    <message>
        <source>Changes are saved as you make them.</source>
        <translation>Änderungen werden sofort gespeichert.</translation>
    </message>
    <message>
        <source>Lanternbud Report %1</source>
        <translation>Lanternbud-Bericht %1</translation>
    </message>
    <message>
        <source>Save Diagnostic Report</source>
        <translation>Diagnosebericht speichern</translation>
    </message>
    <message>
        <source>Compressed archives (*.tar.gz)</source>
        <translation>Komprimierte Archive (*.tar.gz)</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Saving Diagnostic Report</source>
        <translation>Diagnosebericht wird gespeichert</translation>
    </message>
    <message>
        <source>The report was cancelled; nothing was saved.</source>
        <translation>Der Bericht wurde abgebrochen; es wurde nichts gespeichert.</translation>
    </message>
    <message>
        <source>Saved the report as “%@”.</source>
        <translation>Der Bericht wurde als „%@“ gespeichert.</translation>
    </message>
    <message>
        <source>The report could not be saved.</source>
        <translation>Der Bericht konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>The diagnostic report could not be saved.</source>
        <translation>Der Diagnosebericht konnte nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Tab moves to the next field; Ctrl+Tab types a tab.</source>
        <translation>Tab springt zum nächsten Feld; Strg+Tab fügt einen Tabulator ein.</translation>
    </message>
    <message>
        <source>Please select the User &gt; Library &gt; Application Scripts folder to save the scripts.</source>
        <translation>Bitte wählen Sie den Ordner, der den Skriptordner von Lanternbud enthält.</translation>
    </message>
    <message>
        <source>Please select the User &gt; Library &gt; Application Scripts &gt; </source>
        <translation>Bitte wählen Sie den Skriptordner </translation>
    </message>
    <message>
        <source> folder to save the scripts.</source>
        <translation>, um die Skripte zu speichern.</translation>
    </message>
    <message>
        <source>A shortcut is one combination of keys.</source>
        <translation>Ein Tastenkürzel ist eine einzige Tastenkombination.</translation>
    </message>
    <message>
        <source>A shortcut needs a key.</source>
        <translation>Ein Tastenkürzel braucht eine Taste.</translation>
    </message>
    <message>
        <source>“%@” is not a modifier key.</source>
        <translation>„%@“ ist keine Zusatztaste.</translation>
    </message>
    <message>
        <source>A shortcut needs a key besides its modifiers.</source>
        <translation>Ein Tastenkürzel braucht außer den Zusatztasten eine weitere Taste.</translation>
    </message>
    <message>
        <source>Use Ctrl, Alt or the Super key with it; only function keys may stand alone.</source>
        <translation>Verwenden Sie dazu Strg, Alt oder die Super-Taste; nur Funktionstasten dürfen allein stehen.</translation>
    </message>
    <message>
        <source>it is the shortcut of %@ already.</source>
        <translation>es ist bereits das Tastenkürzel von %@.</translation>
    </message>
    <message>
        <source>this desktop offers programs no global shortcuts.</source>
        <translation>diese Arbeitsumgebung bietet Programmen keine globalen Tastenkürzel.</translation>
    </message>
    <message>
        <source>Connect or disconnect %@</source>
        <translation>%@ verbinden oder trennen</translation>
    </message>
    <message>
        <source>It is the shortcut of %@ already.</source>
        <translation>Es ist bereits das Tastenkürzel von %@.</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Keyboard shortcut</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Click, then press the keys: Ctrl, Alt or Super with a key, or a function key alone</source>
        <translation>Klicken, dann die Tasten drücken: Strg, Alt oder Super mit einer Taste, oder eine Funktionstaste allein</translation>
    </message>
    <message>
        <source>Clear the keyboard shortcut</source>
        <translation>Tastenkürzel löschen</translation>
    </message>
    <message>
        <source>%1 cannot be the shortcut: %2</source>
        <translation>%1 kann nicht das Tastenkürzel sein: %2</translation>
    </message>
    <message>
        <source>This desktop offers programs no global shortcuts. Bind “lanternbud-ctl toggle %@” to a key in your desktop’s keyboard settings instead.</source>
        <translation>Diese Arbeitsumgebung bietet Programmen keine globalen Tastenkürzel. Legen Sie stattdessen in den Tastatureinstellungen Ihrer Arbeitsumgebung eine Taste für „lanternbud-ctl toggle %@“ fest.</translation>
    </message>
    <message>
        <source>The shortcut does nothing: %@</source>
        <translation>Das Tastenkürzel ist wirkungslos: %@</translation>
    </message>
    <message>
        <source>The desktop set it to %@.</source>
        <translation>Die Arbeitsumgebung hat es auf %@ gesetzt.</translation>
    </message>
    <message>
        <source>There is no display, so the devices get no tray icons. Lanternbud keeps running: lanternbud-ctl lists, connects and disconnects the devices meanwhile.</source>
        <translation>Es gibt keine Anzeige, daher erhalten die Geräte keine Symbole in der Systemleiste. Lanternbud läuft weiter: lanternbud-ctl listet die Geräte derweil auf, verbindet und trennt sie.</translation>
    </message>
    <message>
        <source>The desktop shows no tray, so the devices get no icons. On GNOME, install and enable the AppIndicator extension (the Debian package gnome-shell-extension-appindicator), then log in again; other desktops need a panel with a system tray. Lanternbud keeps running: lanternbud-ctl lists, connects and disconnects the devices meanwhile.</source>
        <translation>Die Arbeitsumgebung zeigt keine Systemleiste, daher erhalten die Geräte keine Symbole. Installieren und aktivieren Sie unter GNOME die Erweiterung AppIndicator (das Debian-Paket gnome-shell-extension-appindicator) und melden Sie sich dann neu an; andere Arbeitsumgebungen brauchen eine Leiste mit einem Systembereich. Lanternbud läuft weiter: lanternbud-ctl listet die Geräte derweil auf, verbindet und trennt sie.</translation>
    </message>
    <message>
        <source>Lanternbud has no tray icons</source>
        <translation>Lanternbud hat keine Symbole in der Systemleiste</translation>
    </message>
    <message>
        <source>Tray icons</source>
        <translation>Symbolfarbe in der Leiste</translation>
    </message>
    <message>
        <source>&amp;Tray icons:</source>
        <translation>Symbol&amp;farbe in der Leiste:</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>Custom (%@)</source>
        <translation>Eigene (%@)</translation>
    </message>
    <message>
        <source>X11 has no key for %@</source>
        <translation>X11 kennt keine Taste für %@</translation>
    </message>
    <message>
        <source>this keyboard has no key for %@</source>
        <translation>diese Tastatur hat keine Taste für %@</translation>
    </message>
    <message>
        <source>another program holds %@</source>
        <translation>ein anderes Programm belegt %@</translation>
    </message>
</context>
</TS>
