<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de">
<context>
    <name>Zelto</name>
    <message>
        <source> GiB</source>
        <translation> GiB</translation>
    </message>
    <message>
        <source> min</source>
        <translation> min</translation>
    </message>
    <message>
        <source> px</source>
        <translation> px</translation>
    </message>
    <message>
        <source>"%@" cannot be renamed.</source>
        <translation>„%@“ kann nicht umbenannt werden.</translation>
    </message>
    <message>
        <source>"%@" cannot be renamed: its file is missing.</source>
        <translation>„%@“ kann nicht umbenannt werden: Die Datei fehlt.</translation>
    </message>
    <message>
        <source>"%@" is not a key path</source>
        <translation>„%@“ ist kein Schlüsselpfad</translation>
    </message>
    <message>
        <source>")", AND or OR</source>
        <translation>„)“, AND oder OR</translation>
    </message>
    <message>
        <source>"," or "}"</source>
        <translation>„,“ oder „}“</translation>
    </message>
    <message>
        <source>% size</source>
        <translation>Größe in %</translation>
    </message>
    <message>
        <source>%@
Copies the link. With Ctrl: opens it in the browser.</source>
        <translation>%@
Kopiert den Link. Mit Strg: öffnet ihn im Browser.</translation>
    </message>
    <message>
        <source>%@ (gone)</source>
        <translation>%@ (nicht mehr da)</translation>
    </message>
    <message>
        <source>%@ (package %@)</source>
        <translation>%@ (Paket %@)</translation>
    </message>
    <message>
        <source>%@ Delete them in the library once that is mended.</source>
        <translation>%@ Löschen Sie sie in der Bibliothek, sobald das behoben ist.</translation>
    </message>
    <message>
        <source>%@ Import it again once that is mended.</source>
        <translation>%@ Importieren Sie die Datei noch einmal, sobald das behoben ist.</translation>
    </message>
    <message>
        <source>%@ Make room, or see to it that the folder for temporary files can be written, and try again.</source>
        <translation>%@ Schaffen Sie Platz, oder sorgen Sie dafür, dass in den Ordner für temporäre Dateien geschrieben werden kann, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>%@ The links above stay valid; what came after them was not uploaded.</source>
        <translation>%@ Die Links oben bleiben gültig; was danach kam, wurde nicht hochgeladen.</translation>
    </message>
    <message>
        <source>%@ The picture is kept until you try again or discard it.</source>
        <translation>%@ Das Bild wird aufbewahrt, bis Sie es noch einmal versuchen oder es verwerfen.</translation>
    </message>
    <message>
        <source>%@ What it changed before that stays so; ask again for the rest.</source>
        <translation>%@ Was bis dahin geändert wurde, bleibt so; fordern Sie den Rest noch einmal an.</translation>
    </message>
    <message>
        <source>%@ What it had not finished of the import, `zelto import --resume` goes on with.</source>
        <translation>%@ Was vom Import noch fehlt, setzt `zelto import --resume` fort.</translation>
    </message>
    <message>
        <source>%@ With --force it is replaced, if it is a file and none of the layers.</source>
        <translation>%@ Mit --force wird sie ersetzt, wenn sie eine Datei und keine der Ebenen ist.</translation>
    </message>
    <message>
        <source>%@ already does something else in Zelto. Choose other keys.</source>
        <translation>%@ hat in Zelto schon eine andere Aufgabe. Wählen Sie andere Tasten.</translation>
    </message>
    <message>
        <source>%@ answered %d (%@).</source>
        <translation>%@ hat mit %d geantwortet (%@).</translation>
    </message>
    <message>
        <source>%@ asks for the password without encryption.</source>
        <translation>%@ verlangt das Passwort ohne Verschlüsselung.</translation>
    </message>
    <message>
        <source>%@ before %@</source>
        <translation>%@ vor dem %@</translation>
    </message>
    <message>
        <source>%@ broke off.</source>
        <translation>Die Verbindung zu %@ ist abgebrochen.</translation>
    </message>
    <message>
        <source>%@ broke off: only %@ of %@ came.</source>
        <translation>Die Verbindung zu %@ ist abgebrochen: Nur %@ von %@ sind angekommen.</translation>
    </message>
    <message>
        <source>%@ cannot be read from: %@</source>
        <translation>%@ kann nicht gelesen werden: %@</translation>
    </message>
    <message>
        <source>%@ cannot be written here; choose another --format</source>
        <translation>%@ kann hier nicht geschrieben werden; wählen Sie ein anderes --format</translation>
    </message>
    <message>
        <source>%@ copy</source>
        <translation>%@ (Kopie)</translation>
    </message>
    <message>
        <source>%@ did not say where the file is.</source>
        <translation>%@ hat nicht mitgeteilt, wo die Datei ist.</translation>
    </message>
    <message>
        <source>%@ does not answer.</source>
        <translation>%@ antwortet nicht.</translation>
    </message>
    <message>
        <source>%@ does not say what it sends.</source>
        <translation>%@ gibt nicht an, was gesendet wird.</translation>
    </message>
    <message>
        <source>%@ files are missing</source>
        <translation>%@ Dateien fehlen</translation>
    </message>
    <message>
        <source>%@ files of the live folder “%@” are gone</source>
        <translation>%@ Dateien des Live-Ordners „%@“ sind verschwunden</translation>
    </message>
    <message>
        <source>%@ from %@ to %@</source>
        <translation>%@ vom %@ bis zum %@</translation>
    </message>
    <message numerus="yes">
        <source>%@ groups are left</source>
        <comment>counted</comment>
        <extracomment>for one: 1 group is left</extracomment>
        <translation>
            <numerusform>Noch 1 Gruppe</numerusform>
            <numerusform>Noch %@ Gruppen</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ has no property "%@" to follow.</source>
        <translation>%@ hat keine Eigenschaft „%@“, der gefolgt werden kann.</translation>
    </message>
    <message>
        <source>%@ hidden</source>
        <translation>%@ ausgeblendet</translation>
    </message>
    <message>
        <source>%@ imported</source>
        <translation>%@ importiert</translation>
    </message>
    <message>
        <source>%@ imported, %@ not</source>
        <translation>%@ importiert, %@ nicht</translation>
    </message>
    <message>
        <source>%@ is not set up yet: its part below says what it needs.</source>
        <translation>%@ ist noch nicht eingerichtet: Der Abschnitt unten sagt, was noch fehlt.</translation>
    </message>
    <message>
        <source>%@ is on this computer or its network, where this request must not go.</source>
        <translation>%@ liegt auf diesem Computer oder in seinem Netzwerk, wohin diese Anfrage nicht gehen darf.</translation>
    </message>
    <message>
        <source>%@ is taken by another program. Choose other keys, or free them there.</source>
        <translation>%@ wird von einem anderen Programm verwendet. Wählen Sie andere Tasten, oder geben Sie sie dort frei.</translation>
    </message>
    <message numerus="yes">
        <source>%@ items</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item</extracomment>
        <translation>
            <numerusform>1 Objekt</numerusform>
            <numerusform>%@ Objekte</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ items selected</source>
        <translation>%@ Objekte ausgewählt</translation>
    </message>
    <message numerus="yes">
        <source>%@ links copied to clipboard!</source>
        <comment>counted</comment>
        <extracomment>for one: 1 link copied to clipboard!</extracomment>
        <translation>
            <numerusform>1 Link in die Zwischenablage kopiert!</numerusform>
            <numerusform>%@ Links in die Zwischenablage kopiert!</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%@ memberships</source>
        <comment>counted</comment>
        <extracomment>for one: 1 membership</extracomment>
        <translation>
            <numerusform>1 Zuordnung</numerusform>
            <numerusform>%@ Zuordnungen</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ more</source>
        <translation>%@ weitere</translation>
    </message>
    <message numerus="yes">
        <source>%@ more files were not sent.</source>
        <comment>counted</comment>
        <extracomment>for one: One more file was not sent.</extracomment>
        <translation>
            <numerusform>Eine weitere Datei wurde nicht gesendet.</numerusform>
            <numerusform>%@ weitere Dateien wurden nicht gesendet.</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ needs a value.</source>
        <translation>%@ braucht einen Wert.</translation>
    </message>
    <message>
        <source>%@ of %@</source>
        <translation>%@ von %@</translation>
    </message>
    <message>
        <source>%@ of %@ items</source>
        <translation>%@ von %@ Objekten</translation>
    </message>
    <message>
        <source>%@ of %@ selected</source>
        <translation>%@ von %@ ausgewählt</translation>
    </message>
    <message>
        <source>%@ of the pixels differ, by up to %d of 255</source>
        <translation>%@ der Pixel unterscheiden sich, um bis zu %d von 255</translation>
    </message>
    <message>
        <source>%@ on %@</source>
        <translation>%@ am %@</translation>
    </message>
    <message>
        <source>%@ pages</source>
        <translation>%@ Seiten</translation>
    </message>
    <message numerus="yes">
        <source>%@ pictures</source>
        <comment>counted</comment>
        <extracomment>for one: 1 picture</extracomment>
        <translation>
            <numerusform>1 Bild</numerusform>
            <numerusform>%@ Bilder</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ sends from one address to the next without end.</source>
        <translation>%@ leitet endlos von einer Adresse zur nächsten weiter.</translation>
    </message>
    <message>
        <source>%@ sends on to “%@”, for which the file is not meant.</source>
        <translation>%@ leitet an „%@“ weiter, wofür die Datei nicht bestimmt ist.</translation>
    </message>
    <message>
        <source>%@ sends to an address without encryption.</source>
        <translation>%@ leitet an eine Adresse ohne Verschlüsselung weiter.</translation>
    </message>
    <message>
        <source>%@ sent something else (%@).</source>
        <translation>%@ hat etwas anderes gesendet (%@).</translation>
    </message>
    <message>
        <source>%@ shown, %@ hidden</source>
        <translation>%@ angezeigt, %@ ausgeblendet</translation>
    </message>
    <message numerus="yes">
        <source>%@ sidebar entries or tags</source>
        <comment>counted</comment>
        <extracomment>for one: 1 sidebar entry or tag</extracomment>
        <translation>
            <numerusform>1 Eintrag der Seitenleiste oder Schlagwort</numerusform>
            <numerusform>%@ Einträge der Seitenleiste oder Schlagwörter</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ since %@</source>
        <translation>%@ seit dem %@</translation>
    </message>
    <message>
        <source>%@ stopped answering in the middle.</source>
        <translation>%@ hat mitten in der Antwort aufgehört.</translation>
    </message>
    <message numerus="yes">
        <source>%@ taken out</source>
        <comment>counted</comment>
        <extracomment>for one: 1 taken out</extracomment>
        <translation>
            <numerusform>1 herausgenommen</numerusform>
            <numerusform>%@ herausgenommen</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ takes no connection.</source>
        <translation>%@ nimmt keine Verbindung an.</translation>
    </message>
    <message numerus="yes">
        <source>%@ times</source>
        <comment>counted</comment>
        <extracomment>for one: %@ time</extracomment>
        <translation>
            <numerusform>%@ Mal</numerusform>
            <numerusform>%@ Mal</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ to %@</source>
        <translation>%@ bis %@</translation>
    </message>
    <message>
        <source>%@ took too long.</source>
        <translation>%@ hat zu lange gebraucht.</translation>
    </message>
    <message>
        <source>%@ until %@</source>
        <translation>%@ bis zum %@</translation>
    </message>
    <message>
        <source>%@ was removed from the library while the backup was made</source>
        <translation>%@ wurde aus der Bibliothek entfernt, während die Sicherung erstellt wurde</translation>
    </message>
    <message>
        <source>%@ · Copied</source>
        <translation>%@ · Kopiert</translation>
    </message>
    <message>
        <source>%@, %@ items</source>
        <translation>%@, %@ Objekte</translation>
    </message>
    <message>
        <source>%@, %d of %d in the library</source>
        <translation>%@, %d von %d in der Bibliothek</translation>
    </message>
    <message>
        <source>%@, %d × %d pixels</source>
        <translation>%@, %d × %d Pixel</translation>
    </message>
    <message>
        <source>%@, ascending</source>
        <translation>%@, aufsteigend</translation>
    </message>
    <message>
        <source>%@, descending</source>
        <translation>%@, absteigend</translation>
    </message>
    <message>
        <source>%@, extension kept</source>
        <translation>%@, Endung bleibt</translation>
    </message>
    <message>
        <source>%@, to %@</source>
        <translation>%@, an %@</translation>
    </message>
    <message>
        <source>%@, to %@. A password is missing: import it again.</source>
        <translation>%@, an %@. Ein Passwort fehlt: Importieren Sie die Beschreibung noch einmal.</translation>
    </message>
    <message>
        <source>%@, zip archive</source>
        <translation>%@, Zip-Archiv</translation>
    </message>
    <message>
        <source>%@. Everything is there.</source>
        <translation>%@. Es ist alles da.</translation>
    </message>
    <message>
        <source>%@: %@ more</source>
        <translation>%@: %@ weitere</translation>
    </message>
    <message>
        <source>%@: %@ of %@ items</source>
        <translation>%@: %@ von %@ Objekten</translation>
    </message>
    <message>
        <source>%@: %@, %@ in %@</source>
        <translation>%@: %@, %@ in %@</translation>
    </message>
    <message>
        <source>%@: %@, which differs</source>
        <translation>%@: %@ (abweichend)</translation>
    </message>
    <message>
        <source>%@: is a link, which can't be made where the backup is</source>
        <translation>%@: ist eine Verknüpfung, die am Ort der Sicherung nicht angelegt werden kann</translation>
    </message>
    <message>
        <source>%@: is no file, and is not in the backup</source>
        <translation>%@: ist keine Datei und nicht in der Sicherung enthalten</translation>
    </message>
    <message>
        <source>%@: is not as it was when an older backup was made, which shares it</source>
        <translation>%@: ist nicht mehr so wie bei einer älteren Sicherung, die dieselbe Datei enthält</translation>
    </message>
    <message>
        <source>%@: the file has another name, “%@”; “zelto verify --repair” names it after its item</source>
        <translation>%@: Die Datei hat einen anderen Namen, „%@“; „zelto verify --repair“ benennt sie nach ihrem Objekt</translation>
    </message>
    <message>
        <source>%@: the file is missing</source>
        <translation>%@: Die Datei fehlt</translation>
    </message>
    <message>
        <source>%@: the file's content has changed since it was imported</source>
        <translation>%@: Der Inhalt der Datei hat sich seit dem Import geändert</translation>
    </message>
    <message>
        <source>%@: the thumbnail is missing</source>
        <translation>%@: Die Miniatur fehlt</translation>
    </message>
    <message>
        <source>%@; zelto import --resume goes on with the missing files, zelto import --forget gives them up</source>
        <translation>%@; zelto import --resume macht mit den fehlenden Dateien weiter, zelto import --forget gibt sie auf</translation>
    </message>
    <message>
        <source>%d Items</source>
        <translation>%d Objekte</translation>
    </message>
    <message>
        <source>%d Stars</source>
        <translation>%d Sterne</translation>
    </message>
    <message>
        <source>%d completions</source>
        <translation>%d Vervollständigungen</translation>
    </message>
    <message>
        <source>%d files are gone from its folder and stay in the library. Put them back, or synchronise it now to remove them.</source>
        <translation>%d Dateien sind aus dem Ordner verschwunden und bleiben in der Bibliothek. Legen Sie sie zurück, oder gleichen Sie den Ordner jetzt ab, um sie zu entfernen.</translation>
    </message>
    <message>
        <source>%d files are gone from “%@”, and their items are kept. If a drive is not connected, connect it; to remove them from the library, run `zelto livefolders sync --remove-missing "%@"`</source>
        <translation>%d Dateien sind aus „%@“ verschwunden; ihre Objekte bleiben erhalten. Ist ein Laufwerk nicht verbunden, verbinden Sie es; um sie aus der Bibliothek zu entfernen, führen Sie `zelto livefolders sync --remove-missing "%@"` aus</translation>
    </message>
    <message>
        <source>%d files cannot be copied into the live folder.</source>
        <translation>%d Dateien können nicht in den Live-Ordner kopiert werden.</translation>
    </message>
    <message numerus="yes">
        <source>%d files copied into the live folder</source>
        <comment>counted</comment>
        <extracomment>for one: 1 file copied into the live folder</extracomment>
        <translation>
            <numerusform>1 Datei in den Live-Ordner kopiert</numerusform>
            <numerusform>%d Dateien in den Live-Ordner kopiert</numerusform>
        </translation>
    </message>
    <message>
        <source>%d files could not be imported. The first is “%@”: %@</source>
        <translation>%d Dateien konnten nicht importiert werden. Die erste ist „%@“: %@</translation>
    </message>
    <message>
        <source>%d files could not be imported: %@</source>
        <translation>%d Dateien konnten nicht importiert werden: %@</translation>
    </message>
    <message numerus="yes">
        <source>%d files exported</source>
        <comment>counted</comment>
        <extracomment>for one: %d file exported</extracomment>
        <translation>
            <numerusform>%d Datei exportiert</numerusform>
            <numerusform>%d Dateien exportiert</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d files exported into %@</source>
        <comment>counted</comment>
        <extracomment>for one: %d file exported into %@</extracomment>
        <translation>
            <numerusform>%d Datei nach %@ exportiert</numerusform>
            <numerusform>%d Dateien nach %@ exportiert</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d files named after their items</source>
        <comment>counted</comment>
        <extracomment>for one: 1 file named after its item</extracomment>
        <translation>
            <numerusform>1 Datei nach ihrem Objekt benannt</numerusform>
            <numerusform>%d Dateien nach ihren Objekten benannt</numerusform>
        </translation>
    </message>
    <message>
        <source>%d files of the library had lost their entries and were taken back.</source>
        <translation>%d Dateien der Bibliothek hatten ihre Einträge verloren und wurden wieder aufgenommen.</translation>
    </message>
    <message>
        <source>%d files of “%@” cannot be found. The import is kept: go on with it, or forget it.</source>
        <translation>%d Dateien von „%@“ sind nicht zu finden. Der Import wird aufbewahrt: Setzen Sie ihn fort, oder verwerfen Sie ihn.</translation>
    </message>
    <message>
        <source>%d files or folders cannot be found in “%@”. %@</source>
        <translation>%d Dateien oder Ordner sind in „%@“ nicht zu finden. %@</translation>
    </message>
    <message>
        <source>%d files stay where they were copied to.</source>
        <translation>%d Dateien bleiben, wohin sie kopiert wurden.</translation>
    </message>
    <message>
        <source>%d files were copied, but may not be safe on the disk. Their originals stay where they were.</source>
        <translation>%d Dateien wurden kopiert, sind aber womöglich nicht sicher auf dem Datenträger. Ihre Originale bleiben, wo sie waren.</translation>
    </message>
    <message>
        <source>%d files were copied, but their originals stay where they were.</source>
        <translation>%d Dateien wurden kopiert, aber ihre Originale bleiben, wo sie waren.</translation>
    </message>
    <message>
        <source>%d files were not copied into the live folder.</source>
        <translation>%d Dateien wurden nicht in den Live-Ordner kopiert.</translation>
    </message>
    <message>
        <source>%d files were not exported. The first is “%@”: %@</source>
        <translation>%d Dateien wurden nicht exportiert. Die erste ist „%@“: %@</translation>
    </message>
    <message numerus="yes">
        <source>%d fingerprints made</source>
        <comment>counted</comment>
        <extracomment>for one: 1 fingerprint made</extracomment>
        <translation>
            <numerusform>1 Fingerabdruck erstellt</numerusform>
            <numerusform>%d Fingerabdrücke erstellt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d folders</source>
        <comment>counted</comment>
        <extracomment>for one: 1 folder</extracomment>
        <translation>
            <numerusform>1 Ordner</numerusform>
            <numerusform>%d Ordner</numerusform>
        </translation>
    </message>
    <message>
        <source>%d folders of the library belong to no item</source>
        <translation>%d Ordner der Bibliothek gehören zu keinem Objekt</translation>
    </message>
    <message>
        <source>%d folders of the library belong to no item and could not be taken back. The first is “%@”.</source>
        <translation>%d Ordner der Bibliothek gehören zu keinem Objekt und konnten nicht wieder aufgenommen werden. Der erste ist „%@“.</translation>
    </message>
    <message>
        <source>%d imported items could not be taken out of the library again.</source>
        <translation>%d importierte Objekte konnten nicht wieder aus der Bibliothek genommen werden.</translation>
    </message>
    <message>
        <source>%d imported, %d not</source>
        <translation>%d importiert, %d nicht</translation>
    </message>
    <message numerus="yes">
        <source>%d imports were cut off</source>
        <comment>counted</comment>
        <extracomment>for one: an import was cut off</extracomment>
        <translation>
            <numerusform>ein Import wurde unterbrochen</numerusform>
            <numerusform>%d Importe wurden unterbrochen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item</extracomment>
        <translation>
            <numerusform>1 Objekt</numerusform>
            <numerusform>%d Objekte</numerusform>
        </translation>
    </message>
    <message>
        <source>%d items added to the import queue</source>
        <translation>%d Objekte in die Import-Warteschlange aufgenommen</translation>
    </message>
    <message>
        <source>%d items can't be read, so that their files were not checked</source>
        <translation>%d Objekte können nicht gelesen werden, ihre Dateien wurden daher nicht geprüft</translation>
    </message>
    <message>
        <source>%d items cannot be deleted.</source>
        <translation>%d Objekte können nicht gelöscht werden.</translation>
    </message>
    <message>
        <source>%d items cannot be kept in place of the others.</source>
        <translation>%d Objekte können nicht anstelle der anderen behalten werden.</translation>
    </message>
    <message>
        <source>%d items cannot be moved back.</source>
        <translation>%d Objekte können nicht zurückbewegt werden.</translation>
    </message>
    <message>
        <source>%d items cannot be put into the live folder.</source>
        <translation>%d Objekte können nicht in den Live-Ordner gelegt werden.</translation>
    </message>
    <message>
        <source>%d items cannot be restored.</source>
        <translation>%d Objekte können nicht wiederhergestellt werden.</translation>
    </message>
    <message numerus="yes">
        <source>%d items checked</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item checked</extracomment>
        <translation>
            <numerusform>1 Objekt geprüft</numerusform>
            <numerusform>%d Objekte geprüft</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items deleted</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item deleted</extracomment>
        <translation>
            <numerusform>1 Objekt gelöscht</numerusform>
            <numerusform>%d Objekte gelöscht</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items imported</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item imported</extracomment>
        <translation>
            <numerusform>1 Objekt importiert</numerusform>
            <numerusform>%d Objekte importiert</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items noted</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item noted</extracomment>
        <translation>
            <numerusform>1 Objekt mit Notizen versehen</numerusform>
            <numerusform>%d Objekte mit Notizen versehen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items rated</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item rated</extracomment>
        <translation>
            <numerusform>1 Objekt bewertet</numerusform>
            <numerusform>%d Objekte bewertet</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items restored</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item restored</extracomment>
        <translation>
            <numerusform>1 Objekt wiederhergestellt</numerusform>
            <numerusform>%d Objekte wiederhergestellt</numerusform>
        </translation>
    </message>
    <message>
        <source>%d items selected</source>
        <translation>%d Objekte ausgewählt</translation>
    </message>
    <message numerus="yes">
        <source>%d items tagged</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item tagged</extracomment>
        <translation>
            <numerusform>1 Objekt verschlagwortet</numerusform>
            <numerusform>%d Objekte verschlagwortet</numerusform>
        </translation>
    </message>
    <message>
        <source>%d layers</source>
        <translation>%d Ebenen</translation>
    </message>
    <message>
        <source>%d live folders</source>
        <translation>%d Live-Ordner</translation>
    </message>
    <message numerus="yes">
        <source>%d live folders removed</source>
        <comment>counted</comment>
        <extracomment>for one: 1 live folder removed; its folder stays on the disk</extracomment>
        <translation>
            <numerusform>1 Live-Ordner entfernt; sein Ordner bleibt auf dem Datenträger</numerusform>
            <numerusform>%d Live-Ordner entfernt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d look like pictures you have</source>
        <comment>counted</comment>
        <extracomment>for one: 1 looks like a picture you have</extracomment>
        <translation>
            <numerusform>1 sieht einem vorhandenen Bild ähnlich</numerusform>
            <numerusform>%d sehen vorhandenen Bildern ähnlich</numerusform>
        </translation>
    </message>
    <message>
        <source>%d more</source>
        <translation>%d weitere</translation>
    </message>
    <message>
        <source>%d new live folders created</source>
        <translation>%d neue Live-Ordner angelegt</translation>
    </message>
    <message>
        <source>%d of %d images could not be downloaded:</source>
        <translation>%d von %d Bildern konnten nicht heruntergeladen werden:</translation>
    </message>
    <message>
        <source>%d of 5</source>
        <translation>%d von 5</translation>
    </message>
    <message>
        <source>%d of its entries were left out, the first is %@.</source>
        <translation>%d Einträge daraus wurden ausgelassen, der erste ist %@.</translation>
    </message>
    <message>
        <source>%d of these cannot be live folders.</source>
        <translation>%d davon können keine Live-Ordner sein.</translation>
    </message>
    <message>
        <source>%d pictures are incomplete: only a part of each can be drawn. The first is “%@”</source>
        <translation>%d Bilder sind unvollständig: Von jedem kann nur ein Teil gezeichnet werden. Das erste ist „%@“</translation>
    </message>
    <message numerus="yes">
        <source>%d pictures are not there now; ask again when their disk is back</source>
        <comment>counted</comment>
        <extracomment>for one: 1 picture is not there now; ask again when its disk is back</extracomment>
        <translation>
            <numerusform>1 Bild ist jetzt nicht da; wiederholen Sie den Befehl, wenn sein Datenträger wieder da ist</numerusform>
            <numerusform>%d Bilder sind jetzt nicht da; wiederholen Sie den Befehl, wenn ihr Datenträger wieder da ist</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d pictures show nothing, or cannot be read</source>
        <comment>counted</comment>
        <extracomment>for one: 1 picture shows nothing, or cannot be read</extracomment>
        <translation>
            <numerusform>1 Bild zeigt nichts oder kann nicht gelesen werden</numerusform>
            <numerusform>%d Bilder zeigen nichts oder können nicht gelesen werden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d smart folders changed</source>
        <comment>counted</comment>
        <extracomment>for one: 1 smart folder changed</extracomment>
        <translation>
            <numerusform>1 intelligenter Ordner geändert</numerusform>
            <numerusform>%d intelligente Ordner geändert</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d smart folders made</source>
        <comment>counted</comment>
        <extracomment>for one: 1 smart folder made</extracomment>
        <translation>
            <numerusform>1 intelligenter Ordner angelegt</numerusform>
            <numerusform>%d intelligente Ordner angelegt</numerusform>
        </translation>
    </message>
    <message>
        <source>%d stars or more</source>
        <translation>%d Sterne oder mehr</translation>
    </message>
    <message>
        <source>%d × %d</source>
        <translation>%d × %d</translation>
    </message>
    <message>
        <source>%d × %d pixels, from %d, %d</source>
        <translation>%d × %d Pixel, ab %d, %d</translation>
    </message>
    <message>
        <source>%d, %d</source>
        <translation>%d, %d</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>&amp;Hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Archives in archives, at most</source>
        <translation>&amp;Archive in Archiven, höchstens</translation>
    </message>
    <message>
        <source>&amp;Area</source>
        <translation>Be&amp;reich</translation>
    </message>
    <message>
        <source>&amp;Ask before a row is removed</source>
        <translation>&amp;Nachfragen, bevor ein Eintrag entfernt wird</translation>
    </message>
    <message>
        <source>&amp;Back Up Now</source>
        <translation>Jetzt &amp;sichern</translation>
    </message>
    <message>
        <source>&amp;Bring Zelto forward</source>
        <translation>Zelto nach &amp;vorn holen</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Verbinden</translation>
    </message>
    <message>
        <source>&amp;Count which features are used, day by day</source>
        <translation>&amp;Zählen, welche Funktionen an welchem Tag verwendet werden</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Dunkel</translation>
    </message>
    <message>
        <source>&amp;Disconnect</source>
        <translation>T&amp;rennen</translation>
    </message>
    <message>
        <source>&amp;E-mail</source>
        <translation>&amp;E-Mail</translation>
    </message>
    <message>
        <source>&amp;Enlarge pictures smaller than their cell</source>
        <translation>Bilder ver&amp;größern, die kleiner als ihr Feld sind</translation>
    </message>
    <message>
        <source>&amp;Erase Counts</source>
        <translation>Zählungen &amp;löschen</translation>
    </message>
    <message>
        <source>&amp;Files and folders, at most</source>
        <translation>&amp;Dateien und Ordner, höchstens</translation>
    </message>
    <message>
        <source>&amp;Folder</source>
        <translation>&amp;Ordner</translation>
    </message>
    <message>
        <source>&amp;Folder…</source>
        <translation>&amp;Ordner…</translation>
    </message>
    <message>
        <source>&amp;Icon</source>
        <translation>S&amp;ymbol</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importieren…</translation>
    </message>
    <message>
        <source>&amp;Keep</source>
        <translation>&amp;Behalten</translation>
    </message>
    <message>
        <source>&amp;Keep tags, notes and ratings in the files</source>
        <translation>&amp;Schlagwörter, Notizen und Bewertungen in den Dateien behalten</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>&amp;Link…</source>
        <translation>Ver&amp;knüpfen…</translation>
    </message>
    <message>
        <source>&amp;Look again after</source>
        <translation>Erneut &amp;nachsehen nach</translation>
    </message>
    <message>
        <source>&amp;Look for new versions once a day</source>
        <translation>Täglich nach &amp;neuen Versionen suchen</translation>
    </message>
    <message>
        <source>&amp;Make a thumbnail of small pictures, too</source>
        <translation>Auch von kleinen Bildern eine &amp;Miniatur anlegen</translation>
    </message>
    <message>
        <source>&amp;Medium</source>
        <translation>&amp;Mittel</translation>
    </message>
    <message>
        <source>&amp;Move…</source>
        <translation>&amp;Verschieben…</translation>
    </message>
    <message>
        <source>&amp;New…</source>
        <translation>&amp;Neu…</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen…</translation>
    </message>
    <message>
        <source>&amp;Packed how many times smaller, at most</source>
        <translation>&amp;Packungsfaktor, höchstens</translation>
    </message>
    <message>
        <source>&amp;Password</source>
        <translation>&amp;Passwort</translation>
    </message>
    <message>
        <source>&amp;Play a sound and flash the screen</source>
        <translation>&amp;Ton abspielen und Bildschirm aufblitzen lassen</translation>
    </message>
    <message>
        <source>&amp;Read all of every file, too</source>
        <translation>Auch alle Dateien vollständig &amp;lesen</translation>
    </message>
    <message>
        <source>&amp;Reduce motion</source>
        <translation>Bewegung &amp;verringern</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation>&amp;Speichern…</translation>
    </message>
    <message>
        <source>&amp;Share to</source>
        <translation>&amp;Teilen über</translation>
    </message>
    <message>
        <source>&amp;Show Screenshots in the sidebar</source>
        <translation>„&amp;Bildschirmfotos“ in der Seitenleiste anzeigen</translation>
    </message>
    <message>
        <source>&amp;Show in Files</source>
        <translation>Im &amp;Dateimanager zeigen</translation>
    </message>
    <message>
        <source>&amp;Show them in Recent</source>
        <translation>In „&amp;Neueste“ anzeigen</translation>
    </message>
    <message>
        <source>&amp;Small</source>
        <translation>&amp;Klein</translation>
    </message>
    <message>
        <source>&amp;Start Zelto when you log in</source>
        <translation>&amp;Zelto beim Anmelden starten</translation>
    </message>
    <message>
        <source>&amp;Tag what is imported by color and size</source>
        <translation>Importiertes nach &amp;Farbe und Größe verschlagworten</translation>
    </message>
    <message>
        <source>&amp;Take today's picture formats, too</source>
        <translation>Auch &amp;heutige Bildformate annehmen</translation>
    </message>
    <message>
        <source>&amp;Unlink</source>
        <translation>Verknüpfung auf&amp;heben</translation>
    </message>
    <message>
        <source>&amp;Unpacked size, at most</source>
        <translation>&amp;Entpackte Größe, höchstens</translation>
    </message>
    <message>
        <source>&amp;User</source>
        <translation>&amp;Benutzer</translation>
    </message>
    <message>
        <source>&amp;Verify</source>
        <translation>&amp;Prüfen</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Write them for the file manager, too</source>
        <translation>Auch für den &amp;Dateimanager schreiben</translation>
    </message>
    <message>
        <source>--all needs a --title for the project</source>
        <translation>--all braucht einen --title für das Projekt</translation>
    </message>
    <message>
        <source>--percent and --width or --height exclude each other</source>
        <translation>--percent und --width oder --height schließen einander aus</translation>
    </message>
    <message>
        <source>--quality is for --format %@</source>
        <translation>--quality gilt für --format %@</translation>
    </message>
    <message>
        <source>--resume and --forget exclude each other</source>
        <translation>--resume und --forget schließen einander aus</translation>
    </message>
    <message>
        <source>0 … 5</source>
        <translation>0 … 5</translation>
    </message>
    <message>
        <source>1 Star</source>
        <translation>1 Stern</translation>
    </message>
    <message>
        <source>1 file is missing</source>
        <translation>1 Datei fehlt</translation>
    </message>
    <message>
        <source>1 file of the library had lost its entry and was taken back.</source>
        <translation>1 Datei der Bibliothek hatte ihren Eintrag verloren und wurde wieder aufgenommen.</translation>
    </message>
    <message>
        <source>1 file was not copied into the live folder.</source>
        <translation>1 Datei wurde nicht in den Live-Ordner kopiert.</translation>
    </message>
    <message>
        <source>1 item added to the import queue</source>
        <translation>1 Objekt in die Import-Warteschlange aufgenommen</translation>
    </message>
    <message>
        <source>1 page</source>
        <translation>1 Seite</translation>
    </message>
    <message>
        <source>1 star or more</source>
        <translation>1 Stern oder mehr</translation>
    </message>
    <message>
        <source>100 %</source>
        <translation>100 %</translation>
    </message>
    <message>
        <source>7-Zip archive</source>
        <translation>7-Zip-Archiv</translation>
    </message>
    <message>
        <source>A Client ID has letters and digits only.</source>
        <translation>Eine Client-ID besteht nur aus Buchstaben und Ziffern.</translation>
    </message>
    <message>
        <source>A Nextcloud makes the links itself, and wants an app password where a second factor is used. Any other WebDAV folder needs the address at which everybody can read what lies in it. The password is kept in the desktop's keyring and nowhere else.</source>
        <translation>Eine Nextcloud erzeugt die Links selbst und verlangt ein App-Passwort, wenn ein zweiter Faktor verwendet wird. Jeder andere WebDAV-Ordner braucht die Adresse, unter der alle lesen können, was darin liegt. Das Passwort wird nur im Schlüsselbund der Arbeitsumgebung aufbewahrt.</translation>
    </message>
    <message>
        <source>A colon is missing behind “%@”.</source>
        <translation>Hinter „%@“ fehlt ein Doppelpunkt.</translation>
    </message>
    <message>
        <source>A comma or “]” is missing.</source>
        <translation>Ein Komma oder „]“ fehlt.</translation>
    </message>
    <message>
        <source>A comma or “}” is missing.</source>
        <translation>Ein Komma oder „}“ fehlt.</translation>
    </message>
    <message>
        <source>A description begins with “{”.</source>
        <translation>Eine Beschreibung beginnt mit „{“.</translation>
    </message>
    <message>
        <source>A document of %d × %d pixels is too large: other programs open none with a side of more than %d.</source>
        <translation>Ein Dokument von %d × %d Pixeln ist zu groß: Andere Programme öffnen keines mit einer Seite von mehr als %d.</translation>
    </message>
    <message>
        <source>A folder takes folders and archives. Choose a project in it.</source>
        <translation>In einen Ordner passen Ordner und Archive. Wählen Sie ein Projekt darin.</translation>
    </message>
    <message>
        <source>A form has a content type of its own: leave out the header.</source>
        <translation>Ein Formular hat einen eigenen Inhaltstyp: Lassen Sie den Header weg.</translation>
    </message>
    <message>
        <source>A header holds only plain letters, digits and signs.</source>
        <translation>Ein Header enthält nur einfache Buchstaben, Ziffern und Zeichen.</translation>
    </message>
    <message>
        <source>A live folder that is selected is off, or was not there. Its items come back with it.</source>
        <translation>Ein ausgewählter Live-Ordner ist deaktiviert oder war nicht da. Seine Objekte kommen mit ihm zurück.</translation>
    </message>
    <message>
        <source>A login does not belong into the address. Write a header “Authorization” with a {secret:NAME}.</source>
        <translation>Zugangsdaten gehören nicht in die Adresse. Schreiben Sie einen Header „Authorization“ mit einem {secret:NAME}.</translation>
    </message>
    <message>
        <source>A missing file comes back from a backup: copy it to where it was, under its name. A missing thumbnail is made again when its file changes. For a damaged database, quit Zelto and run “zelto recover” in a terminal.</source>
        <translation>Eine fehlende Datei kommt aus einer Sicherung zurück: Kopieren Sie sie unter ihrem Namen dorthin, wo sie war. Eine fehlende Miniatur wird neu erstellt, sobald sich ihre Datei ändert. Ist die Datenbank beschädigt, beenden Sie Zelto, und führen Sie „zelto recover“ in einem Terminal aus.</translation>
    </message>
    <message>
        <source>A name cannot contain "/" or a null character. Please use another name.</source>
        <translation>Ein Name darf weder „/“ noch ein Nullzeichen enthalten. Verwenden Sie bitte einen anderen Namen.</translation>
    </message>
    <message>
        <source>A name in quotation marks is missing.</source>
        <translation>Ein Name in Anführungszeichen fehlt.</translation>
    </message>
    <message>
        <source>A name must be one line of letters and signs.</source>
        <translation>Ein Name muss aus einer Zeile mit Buchstaben und Zeichen bestehen.</translation>
    </message>
    <message>
        <source>A name pattern is one line. Write it without line breaks.</source>
        <translation>Ein Namensmuster ist eine einzige Zeile. Schreiben Sie es ohne Zeilenumbrüche.</translation>
    </message>
    <message>
        <source>A name pattern knows no “%@”. There are {title}, {index}, {width}, {height} and {date}.</source>
        <translation>Ein Namensmuster kennt kein „%@“. Es gibt {title}, {index}, {width}, {height} und {date}.</translation>
    </message>
    <message>
        <source>A name pattern makes names, not folders. Write it without “/”.</source>
        <translation>Ein Namensmuster bildet Namen, keine Ordner. Schreiben Sie es ohne „/“.</translation>
    </message>
    <message>
        <source>A name that starts with a dot would hide the file. Please use another name.</source>
        <translation>Ein Name, der mit einem Punkt beginnt, würde die Datei verbergen. Verwenden Sie bitte einen anderen Namen.</translation>
    </message>
    <message>
        <source>A page asked for %d images at once; at most %d can be imported. Choose fewer.</source>
        <translation>Eine Seite hat %d Bilder auf einmal angefordert; höchstens %d können importiert werden. Wählen Sie weniger.</translation>
    </message>
    <message>
        <source>A page sent something that cannot be understood (the value of “%@”). Update what is installed in the browser, and try again.</source>
        <translation>Eine Seite hat etwas Unverständliches gesendet (den Wert von „%@“). Aktualisieren Sie, was im Browser installiert ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>A page sent something that cannot be understood. Update what is installed in the browser, and try again.</source>
        <translation>Eine Seite hat etwas Unverständliches gesendet. Aktualisieren Sie, was im Browser installiert ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>A pointer names the way to the link, as /data/url.</source>
        <translation>Ein Zeiger nennt den Weg zum Link, zum Beispiel /data/url.</translation>
    </message>
    <message>
        <source>A quotation mark is missing at the end of a text.</source>
        <translation>Am Ende eines Textes fehlt ein Anführungszeichen.</translation>
    </message>
    <message>
        <source>A rating is a number of stars from 0 to 5.</source>
        <translation>Eine Bewertung ist eine Zahl von 0 bis 5 Sternen.</translation>
    </message>
    <message>
        <source>A safe connection to %@ could not be made: %@</source>
        <translation>Es konnte keine sichere Verbindung zu %@ hergestellt werden: %@</translation>
    </message>
    <message>
        <source>A server with a second factor wants an “app password” from its security settings.</source>
        <translation>Ein Server mit zweitem Faktor verlangt ein „App-Passwort“ aus seinen Sicherheitseinstellungen.</translation>
    </message>
    <message>
        <source>A smart folder finds its items by itself. Choose the library, a project or a tag.</source>
        <translation>Ein intelligenter Ordner findet seine Objekte von selbst. Wählen Sie die Bibliothek, ein Projekt oder ein Schlagwort.</translation>
    </message>
    <message>
        <source>A sort key is an attribute, or to-one relationships leading to one.</source>
        <translation>Ein Sortierschlüssel ist ein Attribut oder eine Folge von Zu-eins-Beziehungen, die zu einem führt.</translation>
    </message>
    <message>
        <source>A switches this; 1, 2 and 3 choose.</source>
        <translation>A schaltet dies um; 1, 2 und 3 wählen aus.</translation>
    </message>
    <message>
        <source>A text must end on its line; write \n for a new one.</source>
        <translation>Ein Text muss in seiner Zeile enden; schreiben Sie \n für eine neue.</translation>
    </message>
    <message>
        <source>A value is missing.</source>
        <translation>Ein Wert fehlt.</translation>
    </message>
    <message>
        <source>A word is looked for in titles, notes, extensions and tags. AND, + or nothing between two words finds both,
OR one of them; brackets group, - or NOT leaves out, double quotes keep a text together. Dates are 25/12/2026,
2026-12-25, 2026-12, 2026, today, yesterday or 7d. Numbers and dates are compared by &lt;, =, &gt;, &lt;= or &gt;=.
</source>
        <translation>Ein Wort wird in Titeln, Notizen, Endungen und Schlagwörtern gesucht. AND, + oder nichts zwischen zwei Wörtern findet beide,
OR eines von beiden; Klammern gruppieren, - oder NOT lässt aus, gerade Anführungszeichen halten Text zusammen. Ein Datum ist 25/12/2026,
2026-12-25, 2026-12, 2026, today, yesterday oder 7d. Zahlen und Daten werden mit &lt;, =, &gt;, &lt;= oder &gt;= verglichen.
</translation>
    </message>
    <message>
        <source>A&amp;ddress</source>
        <translation>A&amp;dresse</translation>
    </message>
    <message>
        <source>ACC&amp;OUNTS</source>
        <translation>K&amp;ONTEN</translation>
    </message>
    <message>
        <source>AFTER A SCREENSHOT</source>
        <translation>NACH EINEM BILDSCHIRMFOTO</translation>
    </message>
    <message>
        <source>AI %@ is too big to import</source>
        <translation>AI-Datei %@ ist zu groß für den Import</translation>
    </message>
    <message>
        <source>AND, OR or the end</source>
        <translation>AND, OR oder das Ende</translation>
    </message>
    <message>
        <source>ARCHIVES</source>
        <translation>ARCHIVE</translation>
    </message>
    <message>
        <source>AT LOGIN</source>
        <translation>BEI DER ANMELDUNG</translation>
    </message>
    <message>
        <source>AVI movie</source>
        <translation>AVI-Film</translation>
    </message>
    <message>
        <source>AVIF image</source>
        <translation>AVIF-Bild</translation>
    </message>
    <message>
        <source>Acorn %@ is not a valid image</source>
        <translation>Acorn-Datei %@ ist kein gültiges Bild</translation>
    </message>
    <message>
        <source>Acorn document</source>
        <translation>Acorn-Dokument</translation>
    </message>
    <message>
        <source>Actual Size</source>
        <translation>Originalgröße</translation>
    </message>
    <message>
        <source>Actual size (Z)</source>
        <translation>Originalgröße (Z)</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Hinzufügen</translation>
    </message>
    <message>
        <source>Add Export Preset</source>
        <translation>Voreinstellung hinzugefügt</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>Ordner hinzufügen</translation>
    </message>
    <message>
        <source>Add Live Folder…</source>
        <translation>Live-Ordner hinzufügen…</translation>
    </message>
    <message>
        <source>Add New Folder</source>
        <translation>Ordner angelegt</translation>
    </message>
    <message>
        <source>Add New Project</source>
        <translation>Projekt angelegt</translation>
    </message>
    <message>
        <source>Add Templates</source>
        <translation>Vorlagen hinzufügen</translation>
    </message>
    <message>
        <source>Add tag</source>
        <translation>Schlagwort hinzufügen</translation>
    </message>
    <message>
        <source>Add tag…</source>
        <translation>Schlagwort hinzufügen…</translation>
    </message>
    <message>
        <source>Adding items…</source>
        <translation>Objekte werden hinzugefügt…</translation>
    </message>
    <message>
        <source>Address of a web page</source>
        <translation>Adresse einer Webseite</translation>
    </message>
    <message>
        <source>Address of the page</source>
        <translation>Adresse der Seite</translation>
    </message>
    <message>
        <source>Adds it to what is selected, or takes it away</source>
        <translation>Nimmt es in die Auswahl auf oder aus ihr heraus</translation>
    </message>
    <message>
        <source>Add…</source>
        <translation>Hinzufügen…</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Erweitert</translation>
    </message>
    <message>
        <source>Affinity Designer document</source>
        <translation>Affinity-Designer-Dokument</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>All Tabs</source>
        <translation>Alle Tabs</translation>
    </message>
    <message>
        <source>All that is akin to it</source>
        <translation>Alles, was ihr verwandt ist</translation>
    </message>
    <message>
        <source>All the child projects and their items will be also deleted.</source>
        <translation>Alle Unterprojekte und ihre Objekte werden ebenfalls gelöscht.</translation>
    </message>
    <message>
        <source>All the child projects will be also deleted, projects items will still remain inside your library.</source>
        <translation>Alle Unterprojekte werden ebenfalls gelöscht; die Objekte der Projekte bleiben in der Bibliothek.</translation>
    </message>
    <message>
        <source>All the project items will be deleted from your library.</source>
        <translation>Alle Objekte des Projekts werden aus der Bibliothek gelöscht.</translation>
    </message>
    <message>
        <source>Allow files.content.write, sharing.read and sharing.write for it at dropbox.com/developers/apps, then link your Dropbox again.</source>
        <translation>Erlauben Sie dafür auf dropbox.com/developers/apps files.content.write, sharing.read und sharing.write, und verknüpfen Sie Ihre Dropbox dann noch einmal.</translation>
    </message>
    <message>
        <source>Allow public links there, or share the file from the server's own pages.</source>
        <translation>Erlauben Sie dort öffentliche Links, oder teilen Sie die Datei auf den Seiten des Servers selbst.</translation>
    </message>
    <message>
        <source>Alt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>An archive in it was left out: %@</source>
        <translation>Ein Archiv darin wurde ausgelassen: %@</translation>
    </message>
    <message>
        <source>An archive that holds more is not unpacked.</source>
        <translation>Ein Archiv mit mehr Inhalt wird nicht entpackt.</translation>
    </message>
    <message>
        <source>An arrow key selects the middle of the screen</source>
        <translation>Eine Pfeiltaste wählt die Mitte des Bildschirms aus</translation>
    </message>
    <message>
        <source>An error as occured, please try again later</source>
        <translation>Ein Fehler ist aufgetreten, bitte versuchen Sie es später noch einmal</translation>
    </message>
    <message>
        <source>An import cannot go on, since it cannot be told which of its files are in the library. It is kept: go on with it once that is mended, or forget it.</source>
        <translation>Ein Import kann nicht fortgesetzt werden, weil sich nicht feststellen lässt, welche seiner Dateien in der Bibliothek sind. Er wird aufbewahrt: Setzen Sie ihn fort, sobald das behoben ist, oder verwerfen Sie ihn.</translation>
    </message>
    <message>
        <source>An item has no folder that can be its own: %@</source>
        <translation>Ein Objekt hat keinen Ordner, der sein eigener sein kann: %@</translation>
    </message>
    <message>
        <source>An object that is still used by others through %@ cannot be deleted.</source>
        <translation>Ein Objekt, das andere noch über %@ verwenden, kann nicht gelöscht werden.</translation>
    </message>
    <message>
        <source>Another backup into the folder “%@” is under way.</source>
        <translation>Eine andere Sicherung in den Ordner „%@“ läuft gerade.</translation>
    </message>
    <message>
        <source>Another file has that name. Use another name, or rename the other file.</source>
        <translation>Eine andere Datei hat diesen Namen. Verwenden Sie einen anderen Namen, oder benennen Sie die andere Datei um.</translation>
    </message>
    <message>
        <source>Another folder is in its place. Connect the drive it is on, or, if this is the folder to show, choose Use This Folder.</source>
        <translation>An seiner Stelle ist ein anderer Ordner. Verbinden Sie das Laufwerk, auf dem er liegt, oder wählen Sie „Diesen Ordner verwenden“, wenn dies der gewünschte Ordner ist.</translation>
    </message>
    <message>
        <source>Another library, or a move of this one, takes effect when Zelto is opened again.</source>
        <translation>Eine andere Bibliothek oder ein Verschieben dieser wird wirksam, wenn Zelto das nächste Mal geöffnet wird.</translation>
    </message>
    <message>
        <source>Another program uses it. Wait until that is done, and try again.</source>
        <translation>Ein anderes Programm verwendet sie. Warten Sie, bis es fertig ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Another program uses port %d of this machine, at which the web browser is to answer. Close it and try again.</source>
        <translation>Ein anderes Programm belegt Port %d dieses Rechners, unter dem der Webbrowser antworten soll. Schließen Sie es, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Another program would have to draw it, and this system cannot keep such a program from your files (its kernel has no Landlock). Convert it to PDF or PNG and import that.</source>
        <translation>Ein anderes Programm müsste die Datei zeichnen, und dieses System kann ein solches Programm nicht von Ihren Dateien fernhalten (sein Kernel hat kein Landlock). Wandeln Sie sie in PDF oder PNG um, und importieren Sie das Ergebnis.</translation>
    </message>
    <message>
        <source>Any other one that is set up there does as well: a server of your own (WebDAV, Nextcloud), Dropbox, Imgur, or a service that a description file explains.</source>
        <translation>Jeder andere dort eingerichtete Dienst eignet sich ebenso: ein eigener Server (WebDAV, Nextcloud), Dropbox, Imgur oder ein Dienst, den eine Beschreibungsdatei erklärt.</translation>
    </message>
    <message>
        <source>Any other service that takes files over the web, as a description file says: its address, headers and form fields, and where the link is found in its answer.</source>
        <translation>Jeder andere Dienst, der Dateien über das Web annimmt, wie es eine Beschreibungsdatei angibt: seine Adresse, Header und Formularfelder, und wo in seiner Antwort der Link steht.</translation>
    </message>
    <message>
        <source>App &amp;key</source>
        <translation>App-&amp;Schlüssel</translation>
    </message>
    <message>
        <source>Apply to all %d duplicates</source>
        <translation>Auf alle %d Duplikate anwenden</translation>
    </message>
    <message>
        <source>Apply to all duplicates of this import</source>
        <translation>Auf alle Duplikate dieses Imports anwenden</translation>
    </message>
    <message>
        <source>Apply to the remaining %d duplicates</source>
        <translation>Auf die übrigen %d Duplikate anwenden</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archiv</translation>
    </message>
    <message>
        <source>Are you sure you want to delete these items and their content?</source>
        <translation>Möchten Sie diese Objekte und ihren Inhalt wirklich löschen?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete these items?</source>
        <translation>Möchten Sie diese Objekte wirklich löschen?</translation>
    </message>
    <message numerus="yes">
        <source>Are you sure you want to delete these tags?</source>
        <comment>counted</comment>
        <extracomment>for one: Are you sure you want to delete this tag?</extracomment>
        <translation>
            <numerusform>Möchten Sie dieses Schlagwort wirklich löschen?</numerusform>
            <numerusform>Möchten Sie diese Schlagwörter wirklich löschen?</numerusform>
        </translation>
    </message>
    <message>
        <source>Are you sure you want to delete this folder and its content?</source>
        <translation>Möchten Sie diesen Ordner und seinen Inhalt wirklich löschen?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this folder?</source>
        <translation>Möchten Sie diesen Ordner wirklich löschen?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this project and its content?</source>
        <translation>Möchten Sie dieses Projekt und seinen Inhalt wirklich löschen?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this project?</source>
        <translation>Möchten Sie dieses Projekt wirklich löschen?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this smart folder?</source>
        <translation>Möchten Sie diesen intelligenten Ordner wirklich löschen?</translation>
    </message>
    <message>
        <source>Are you sure you want to remove this Live Folder?</source>
        <translation>Möchten Sie diesen Live-Ordner wirklich entfernen?</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>Bereich</translation>
    </message>
    <message>
        <source>Area to capture</source>
        <translation>Aufzunehmender Bereich</translation>
    </message>
    <message>
        <source>As %@ it is sharp in any size</source>
        <translation>Als %@ ist es in jeder Größe scharf</translation>
    </message>
    <message>
        <source>As Grid</source>
        <translation>Als Raster</translation>
    </message>
    <message>
        <source>As List</source>
        <translation>Als Liste</translation>
    </message>
    <message>
        <source>As `import,store`, or `all`: print how long the traced steps took.</source>
        <translation>Zum Beispiel `import,store` oder `all`: ausgeben, wie lange die verfolgten Schritte gedauert haben.</translation>
    </message>
    <message>
        <source>As `zelto.*.debug=true`, which turns on the log of every subsystem.</source>
        <translation>Zum Beispiel `zelto.*.debug=true`, was das Protokoll aller Teilsysteme einschaltet.</translation>
    </message>
    <message>
        <source>As good as the others, and in the library for longest</source>
        <translation>So gut wie die anderen und am längsten in der Bibliothek</translation>
    </message>
    <message>
        <source>As good as the others, and rated highest</source>
        <translation>So gut wie die anderen und am höchsten bewertet</translation>
    </message>
    <message>
        <source>As it is</source>
        <translation>Unverändert</translation>
    </message>
    <message>
        <source>As large as the others, and %@ keeps more of a picture</source>
        <translation>So groß wie die anderen, und %@ bewahrt mehr von einem Bild</translation>
    </message>
    <message>
        <source>Ascending</source>
        <translation>Aufsteigend</translation>
    </message>
    <message>
        <source>Ask Again Later</source>
        <translation>Später fragen</translation>
    </message>
    <message>
        <source>Ask again when it is needed.</source>
        <translation>Wieder fragen, wenn es nötig ist.</translation>
    </message>
    <message>
        <source>Ask before a row is removed with the &amp;items in it</source>
        <translation>Nachfragen, &amp;bevor ein Eintrag samt seinen Objekten entfernt wird</translation>
    </message>
    <message>
        <source>Ask whoever runs it for a description that gives each file a name of its own.</source>
        <translation>Bitten Sie den Betreiber um eine Beschreibung, die jeder Datei einen eigenen Namen gibt.</translation>
    </message>
    <message>
        <source>Ask whoever runs it for a description with the login.</source>
        <translation>Bitten Sie den Betreiber um eine Beschreibung mit der Anmeldung.</translation>
    </message>
    <message>
        <source>Asking CloudApp…</source>
        <translation>CloudApp wird angefragt…</translation>
    </message>
    <message>
        <source>Asking the server…</source>
        <translation>Server wird angefragt…</translation>
    </message>
    <message>
        <source>At dropbox.com/developers/apps create an app with “Scoped access”, allow it files.content.write, sharing.read and sharing.write, and enter %@ among its redirect URIs. Its “App key” belongs here.</source>
        <translation>Legen Sie auf dropbox.com/developers/apps eine App mit „Scoped access“ an, erlauben Sie ihr files.content.write, sharing.read und sharing.write, und tragen Sie %@ unter ihren Redirect URIs ein. Ihr „App key“ gehört hierher.</translation>
    </message>
    <message>
        <source>Audio</source>
        <translation>Audio</translation>
    </message>
    <message>
        <source>Auto</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>Automatic</source>
        <translation>Automatisch</translation>
    </message>
    <message>
        <source>BACKUP</source>
        <translation>SICHERUNG</translation>
    </message>
    <message>
        <source>BETWEEN needs a list of two values</source>
        <translation>BETWEEN braucht eine Liste von zwei Werten</translation>
    </message>
    <message>
        <source>BMP image</source>
        <translation>BMP-Bild</translation>
    </message>
    <message>
        <source>Back Up Library…</source>
        <translation>Bibliothek sichern…</translation>
    </message>
    <message>
        <source>Back to the items (Esc)</source>
        <translation>Zurück zu den Objekten (Esc)</translation>
    </message>
    <message>
        <source>Back, or clear the search</source>
        <translation>Zurück, oder Suche leeren</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Backing up</source>
        <translation>Wird gesichert</translation>
    </message>
    <message>
        <source>Backspace</source>
        <translation>Rücktaste</translation>
    </message>
    <message>
        <source>Backup made: %@</source>
        <translation>Sicherung erstellt: %@</translation>
    </message>
    <message>
        <source>Behind “%@” stands what to look for: %@.</source>
        <translation>Hinter „%@“ muss stehen, was gesucht wird: %@.</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Blau</translation>
    </message>
    <message>
        <source>Both are also on while the desktop asks for them.</source>
        <translation>Beides gilt auch, solange der Desktop es verlangt.</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Helligkeit</translation>
    </message>
    <message>
        <source>Bring back</source>
        <translation>Zurückholen</translation>
    </message>
    <message>
        <source>Bring back what was taken out last (Shift+X)</source>
        <translation>Zuletzt Herausgenommenes zurückholen (Umschalt+X)</translation>
    </message>
    <message>
        <source>Bringing items back…</source>
        <translation>Objekte werden zurückgeholt…</translation>
    </message>
    <message>
        <source>Busy</source>
        <translation>Beschäftigt</translation>
    </message>
    <message>
        <source>By &amp;itself</source>
        <translation>&amp;Automatisch</translation>
    </message>
    <message>
        <source>By whole factors, so that pixels stay sharp.</source>
        <translation>Um ganze Faktoren, damit Pixel scharf bleiben.</translation>
    </message>
    <message>
        <source>Bytes</source>
        <translation>Bytes</translation>
    </message>
    <message>
        <source>C&amp;ancel</source>
        <translation>&amp;Abbrechen</translation>
    </message>
    <message>
        <source>C&amp;hange…</source>
        <translation>Ä&amp;ndern…</translation>
    </message>
    <message>
        <source>C&amp;opy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>COLORS</source>
        <translation>FARBEN</translation>
    </message>
    <message>
        <source>CRASH REPORTS</source>
        <translation>ABSTURZBERICHTE</translation>
    </message>
    <message>
        <source>Camera raw image</source>
        <translation>Kamera-Rohbild</translation>
    </message>
    <message>
        <source>Can't connect to Cloud App</source>
        <translation>Verbindung zu CloudApp nicht möglich</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Cancel Sharing</source>
        <translation>Teilen abbrechen</translation>
    </message>
    <message>
        <source>Cancel takes back everything this import has brought.</source>
        <translation>Abbrechen nimmt alles zurück, was dieser Import gebracht hat.</translation>
    </message>
    <message>
        <source>Cancels what is being shared.</source>
        <translation>Bricht ab, was gerade geteilt wird.</translation>
    </message>
    <message>
        <source>Cannot upload the files</source>
        <translation>Die Dateien können nicht hochgeladen werden</translation>
    </message>
    <message>
        <source>Capture</source>
        <translation>Aufnehmen</translation>
    </message>
    <message>
        <source>Capture %@</source>
        <translation>Aufnehmen: %@</translation>
    </message>
    <message>
        <source>Capture Web Page</source>
        <translation>Webseite aufnehmen</translation>
    </message>
    <message>
        <source>Capture stored</source>
        <translation>Aufnahme gespeichert</translation>
    </message>
    <message>
        <source>Capture the page at “%@”?</source>
        <translation>Die Seite unter „%@“ aufnehmen?</translation>
    </message>
    <message>
        <source>Capturing the page…</source>
        <translation>Seite wird aufgenommen…</translation>
    </message>
    <message>
        <source>Capturing web pages needs a browser that is not there: install chromium.</source>
        <translation>Zum Aufnehmen von Webseiten fehlt ein Browser: Installieren Sie chromium.</translation>
    </message>
    <message>
        <source>Check for &amp;Updates...</source>
        <translation>Nach &amp;Aktualisierungen suchen...</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation>Nach Aktualisierungen suchen...</translation>
    </message>
    <message>
        <source>Check its name and where it is.</source>
        <translation>Prüfen Sie den Namen und den Ort.</translation>
    </message>
    <message>
        <source>Check its permissions, or choose another folder.</source>
        <translation>Prüfen Sie seine Zugriffsrechte, oder wählen Sie einen anderen Ordner.</translation>
    </message>
    <message>
        <source>Check its permissions, or choose another library.</source>
        <translation>Prüfen Sie die Zugriffsrechte, oder wählen Sie eine andere Bibliothek.</translation>
    </message>
    <message>
        <source>Check that its folder exists and can be written.</source>
        <translation>Prüfen Sie, ob der Ordner vorhanden ist und in ihn geschrieben werden kann.</translation>
    </message>
    <message>
        <source>Check that its folder exists and that you may read and write there.</source>
        <translation>Prüfen Sie, ob der Ordner vorhanden ist und Sie dort lesen und schreiben dürfen.</translation>
    </message>
    <message>
        <source>Check that the volume is still connected and has room, then try again.</source>
        <translation>Prüfen Sie, ob der Datenträger noch verbunden ist und Platz hat, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Check the address and the name of the user.</source>
        <translation>Prüfen Sie die Adresse und den Benutzernamen.</translation>
    </message>
    <message>
        <source>Check the address of your server and the folder in the preferences, under Cloud.</source>
        <translation>Prüfen Sie die Adresse Ihres Servers und den Ordner in den Einstellungen unter „Cloud“.</translation>
    </message>
    <message>
        <source>Check the permissions of its folder and the room on its disk; the damaged file is unchanged.</source>
        <translation>Prüfen Sie die Zugriffsrechte des Ordners und den Platz auf dem Datenträger; die beschädigte Datei ist unverändert.</translation>
    </message>
    <message>
        <source>Check the permissions of its folder and whether the volume is mounted read-only.</source>
        <translation>Prüfen Sie die Zugriffsrechte des Ordners, und ob der Datenträger schreibgeschützt eingehängt ist.</translation>
    </message>
    <message>
        <source>Check your internet connection or your network settings.</source>
        <translation>Prüfen Sie Ihre Internetverbindung oder Ihre Netzwerkeinstellungen.</translation>
    </message>
    <message>
        <source>Check “link” in its description, and import it again in the preferences, under Cloud.</source>
        <translation>Prüfen Sie „link“ in der Beschreibung, und importieren Sie sie in den Einstellungen unter „Cloud“ noch einmal.</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Wählen</translation>
    </message>
    <message>
        <source>Choose a Description</source>
        <translation>Beschreibung wählen</translation>
    </message>
    <message>
        <source>Choose a folder whose name ends in .ztlibrary.</source>
        <translation>Wählen Sie einen Ordner, dessen Name auf .ztlibrary endet.</translation>
    </message>
    <message>
        <source>Choose a live folder, the library, a project or a tag.</source>
        <translation>Wählen Sie einen Live-Ordner, die Bibliothek, ein Projekt oder ein Schlagwort.</translation>
    </message>
    <message>
        <source>Choose another folder, best on another disk.</source>
        <translation>Wählen Sie einen anderen Ordner, am besten auf einem anderen Datenträger.</translation>
    </message>
    <message>
        <source>Choose another library, recover it, or put back a copy from a backup.</source>
        <translation>Wählen Sie eine andere Bibliothek, stellen Sie sie wieder her, oder legen Sie eine Kopie aus einer Sicherung zurück.</translation>
    </message>
    <message>
        <source>Choose another library.</source>
        <translation>Wählen Sie eine andere Bibliothek.</translation>
    </message>
    <message>
        <source>Choose another place for the library.</source>
        <translation>Wählen Sie einen anderen Ort für die Bibliothek.</translation>
    </message>
    <message>
        <source>Choose fewer at once.</source>
        <translation>Wählen Sie weniger auf einmal.</translation>
    </message>
    <message>
        <source>Choose one in the settings of the desktop and try again.</source>
        <translation>Wählen Sie eines in den Einstellungen der Arbeitsumgebung, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Choose the library, a project or a tag.</source>
        <translation>Wählen Sie die Bibliothek, ein Projekt oder ein Schlagwort.</translation>
    </message>
    <message>
        <source>Choose where it is to go.</source>
        <translation>Wählen Sie, wohin es soll.</translation>
    </message>
    <message>
        <source>Chosen to be kept, in place of the proposed one.</source>
        <translation>Zum Behalten gewählt, anstelle des vorgeschlagenen.</translation>
    </message>
    <message>
        <source>Cleaning up library</source>
        <translation>Bibliothek wird aufgeräumt</translation>
    </message>
    <message>
        <source>Click or Return takes the window · Tab goes on · Esc leaves</source>
        <translation>Klick oder Eingabe nimmt das Fenster auf · Tab geht weiter · Esc bricht ab</translation>
    </message>
    <message>
        <source>Click to cancel.</source>
        <translation>Zum Abbrechen klicken.</translation>
    </message>
    <message>
        <source>Click to export what is selected, or drag it to where the files are to go.</source>
        <translation>Klicken, um die Auswahl zu exportieren, oder dorthin ziehen, wo die Dateien hin sollen.</translation>
    </message>
    <message>
        <source>Click, then press the keys. Backspace clears.</source>
        <translation>Klicken, dann die Tasten drücken. Rücktaste löscht.</translation>
    </message>
    <message>
        <source>Client &amp;ID</source>
        <translation>Client-&amp;ID</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Close Tab</source>
        <translation>Tab schließen</translation>
    </message>
    <message>
        <source>Cloud</source>
        <translation>Cloud</translation>
    </message>
    <message>
        <source>Cloud Upload (Dropbox)</source>
        <translation>Hochgeladen (Dropbox)</translation>
    </message>
    <message>
        <source>Cloud Upload (other services)</source>
        <translation>Hochgeladen (andere Dienste)</translation>
    </message>
    <message>
        <source>Cloud preferences…</source>
        <translation>Cloud-Einstellungen…</translation>
    </message>
    <message>
        <source>Collapse All Groups</source>
        <translation>Alle Gruppen einklappen</translation>
    </message>
    <message>
        <source>Collapse Group</source>
        <translation>Gruppe einklappen</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Color is “%@”</source>
        <translation>Farbe ist „%@“</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Farben</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Spalten</translation>
    </message>
    <message>
        <source>Comma-separated values</source>
        <translation>Kommagetrennte Werte</translation>
    </message>
    <message>
        <source>Compare</source>
        <translation>Vergleichen</translation>
    </message>
    <message>
        <source>Comparing…</source>
        <translation>Wird verglichen…</translation>
    </message>
    <message>
        <source>Connect it again before you go on. What you change until then cannot be kept.</source>
        <translation>Verbinden Sie es wieder, bevor Sie weitermachen. Was Sie bis dahin ändern, kann nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>Connect its disk, or choose another folder.</source>
        <translation>Schließen Sie seinen Datenträger an, oder wählen Sie einen anderen Ordner.</translation>
    </message>
    <message>
        <source>Connect its disk, then try again.</source>
        <translation>Schließen Sie ihren Datenträger an, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Connect the account again in the preferences, under Cloud.</source>
        <translation>Verbinden Sie das Konto in den Einstellungen unter „Cloud“ noch einmal.</translation>
    </message>
    <message>
        <source>Connect the volume it is on, or choose another library.</source>
        <translation>Verbinden Sie den Datenträger, auf dem sie liegt, oder wählen Sie eine andere Bibliothek.</translation>
    </message>
    <message>
        <source>Connect this computer to a network, then try again.</source>
        <translation>Verbinden Sie diesen Rechner mit einem Netzwerk, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Connect your CloudApp account in the preferences, under Cloud. Who has none makes one at %@.</source>
        <translation>Verbinden Sie Ihr CloudApp-Konto in den Einstellungen unter „Cloud“. Falls Sie keines haben, können Sie es auf %@ anlegen.</translation>
    </message>
    <message>
        <source>Connected as %@</source>
        <translation>Verbunden als %@</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Fortfahren</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy %@</source>
        <translation>%@ kopieren</translation>
    </message>
    <message numerus="yes">
        <source>Copy All %@ Links of the Last Upload</source>
        <comment>counted</comment>
        <extracomment>for one: Copy the Link of the Last Upload</extracomment>
        <translation>
            <numerusform>Link des letzten Hochladens kopieren</numerusform>
            <numerusform>Alle %@ Links des letzten Hochladens kopieren</numerusform>
        </translation>
    </message>
    <message>
        <source>Copy Link</source>
        <translation>Link kopieren</translation>
    </message>
    <message>
        <source>Copy it to another place, and open the copy.</source>
        <translation>Kopieren Sie sie an einen anderen Ort, und öffnen Sie die Kopie.</translation>
    </message>
    <message>
        <source>Copy the template's file there with `zelto import`.</source>
        <translation>Kopieren Sie die Datei der Vorlage mit `zelto import` dorthin.</translation>
    </message>
    <message>
        <source>Copying files…</source>
        <translation>Dateien werden kopiert…</translation>
    </message>
    <message>
        <source>Copying items…</source>
        <translation>Objekte werden kopiert…</translation>
    </message>
    <message>
        <source>Copying the database</source>
        <translation>Datenbank wird kopiert</translation>
    </message>
    <message>
        <source>Could not be read, at least: %@.</source>
        <translation>Nicht gelesen werden konnten mindestens: %@.</translation>
    </message>
    <message>
        <source>Could not save changes while quitting.  Quit anyway?</source>
        <translation>Die Änderungen konnten beim Beenden nicht gesichert werden. Trotzdem beenden?</translation>
    </message>
    <message>
        <source>Counting…</source>
        <translation>Wird gezählt…</translation>
    </message>
    <message>
        <source>Crash report</source>
        <translation>Absturzbericht</translation>
    </message>
    <message>
        <source>Created</source>
        <translation>Erstellt</translation>
    </message>
    <message>
        <source>Created before (&lt;), on (=) or since (&gt;) the date, that day included</source>
        <translation>Erstellt vor (&lt;), an (=) oder seit (&gt;) dem Datum, dieser Tag eingeschlossen</translation>
    </message>
    <message>
        <source>Creation date</source>
        <translation>Erstellungsdatum</translation>
    </message>
    <message>
        <source>Ctrl</source>
        <translation>Strg</translation>
    </message>
    <message>
        <source>DISKS THAT TELL OF NO CHANGES</source>
        <translation>DATENTRÄGER, DIE KEINE ÄNDERUNGEN MELDEN</translation>
    </message>
    <message>
        <source>Dark Theme</source>
        <translation>Dunkles Thema</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete %@</source>
        <translation>%@ löschen</translation>
    </message>
    <message>
        <source>Delete %@ and Content</source>
        <translation>%@ samt Inhalt löschen</translation>
    </message>
    <message>
        <source>Delete Export Preset</source>
        <translation>Voreinstellung gelöscht</translation>
    </message>
    <message>
        <source>Delete Preset</source>
        <translation>Voreinstellung löschen</translation>
    </message>
    <message>
        <source>Delete from Library</source>
        <translation>Aus Bibliothek löschen</translation>
    </message>
    <message>
        <source>Deleted and not yet removed: %@</source>
        <translation>Gelöscht und noch nicht entfernt: %@</translation>
    </message>
    <message>
        <source>Deleting files…</source>
        <translation>Dateien werden gelöscht…</translation>
    </message>
    <message>
        <source>Deleting items…</source>
        <translation>Objekte werden gelöscht…</translation>
    </message>
    <message>
        <source>Descending</source>
        <translation>Absteigend</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>Unterschied</translation>
    </message>
    <message>
        <source>Difference (D)</source>
        <translation>Unterschied (D)</translation>
    </message>
    <message>
        <source>Digest is %@</source>
        <translation>Prüfsumme ist %@</translation>
    </message>
    <message>
        <source>Digital negative image</source>
        <translation>Digital-Negative-Bild</translation>
    </message>
    <message>
        <source>Disable</source>
        <translation>Deaktivieren</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Discard the new copy</source>
        <translation>Neue Kopie verwerfen</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Trennen</translation>
    </message>
    <message>
        <source>Disconnect “%@”?</source>
        <translation>„%@“ trennen?</translation>
    </message>
    <message>
        <source>Do not ask again</source>
        <translation>Nicht mehr fragen</translation>
    </message>
    <message>
        <source>Do you want to switch library and quit Zelto?</source>
        <translation>Möchten Sie die Bibliothek wechseln und Zelto beenden?</translation>
    </message>
    <message>
        <source>Document</source>
        <translation>Dokument</translation>
    </message>
    <message>
        <source>Don't Look</source>
        <translation>Nicht suchen</translation>
    </message>
    <message>
        <source>Double resolution</source>
        <translation>Doppelte Auflösung</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Runter</translation>
    </message>
    <message>
        <source>Downloading images</source>
        <translation>Bilder werden heruntergeladen</translation>
    </message>
    <message>
        <source>Drag it to another place, or press Delete to remove it.</source>
        <translation>Zum Umordnen ziehen, zum Entfernen Entf drücken.</translation>
    </message>
    <message>
        <source>Drag over an area of one screen, or press an arrow key · Esc leaves</source>
        <translation>Bereich auf einem Bildschirm aufziehen oder Pfeiltaste drücken · Esc bricht ab</translation>
    </message>
    <message>
        <source>Drag over an area, or press an arrow key · Esc leaves</source>
        <translation>Bereich aufziehen oder Pfeiltaste drücken · Esc bricht ab</translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Zeichnung</translation>
    </message>
    <message>
        <source>Drop folders here, or press +</source>
        <translation>Ordner ablegen oder + wählen</translation>
    </message>
    <message>
        <source>Drop images here, or press Ctrl+I</source>
        <translation>Bilder hier ablegen oder Strg+I drücken</translation>
    </message>
    <message>
        <source>Drop to create a live folder</source>
        <translation>Ablegen, um einen Live-Ordner anzulegen</translation>
    </message>
    <message>
        <source>Drop to create a project</source>
        <translation>Ablegen, um ein Projekt anzulegen</translation>
    </message>
    <message>
        <source>Dropbox</source>
        <translation>Dropbox</translation>
    </message>
    <message>
        <source>Dropbox answered without what lets Zelto in.</source>
        <translation>Dropbox hat ohne das geantwortet, was Zelto Zugang gibt.</translation>
    </message>
    <message>
        <source>Dropbox needs an app key.</source>
        <translation>Dropbox braucht einen App-Schlüssel.</translation>
    </message>
    <message>
        <source>Dropbox no longer lets Zelto in.</source>
        <translation>Dropbox gewährt Zelto keinen Zugang mehr.</translation>
    </message>
    <message>
        <source>Dropbox says: “%@”.</source>
        <translation>Dropbox meldet: „%@“.</translation>
    </message>
    <message>
        <source>Dropbox was not linked: it was not allowed in the web browser.</source>
        <translation>Dropbox wurde nicht verknüpft: Es wurde im Webbrowser nicht erlaubt.</translation>
    </message>
    <message>
        <source>Dropped file</source>
        <translation>Abgelegte Datei</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>Duplizieren</translation>
    </message>
    <message>
        <source>Duplicates: %@</source>
        <translation>Duplikate: %@</translation>
    </message>
    <message>
        <source>Duplicating items…</source>
        <translation>Objekte werden dupliziert…</translation>
    </message>
    <message>
        <source>EPS %@ is not a valid image</source>
        <translation>EPS-Datei %@ ist kein gültiges Bild</translation>
    </message>
    <message>
        <source>Each upload goes into a folder of its own in your Dropbox. What lets Zelto in is kept in the desktop's keyring and nowhere else.</source>
        <translation>Jedes Hochladen erhält einen eigenen Ordner in Ihrer Dropbox. Was Zelto Zugang gibt, wird nur im Schlüsselbund der Arbeitsumgebung aufbewahrt.</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>Edit Search…</source>
        <translation>Suche bearbeiten…</translation>
    </message>
    <message>
        <source>Edit Search… in its menu gives it another text.</source>
        <translation>„Suche bearbeiten…“ in seinem Menü gibt ihm einen anderen Text.</translation>
    </message>
    <message>
        <source>Edit presets</source>
        <translation>Voreinstellungen bearbeiten</translation>
    </message>
    <message>
        <source>Edit presets…</source>
        <translation>Voreinstellungen bearbeiten…</translation>
    </message>
    <message>
        <source>Empty the search field</source>
        <translation>Suchfeld leeren</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Aktivieren</translation>
    </message>
    <message>
        <source>Enable this live folder</source>
        <translation>Diesen Live-Ordner aktivieren</translation>
    </message>
    <message>
        <source>Encapsulated PostScript image</source>
        <translation>Encapsulated-PostScript-Bild</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Eingabe</translation>
    </message>
    <message>
        <source>Enter a Dropbox app key in the preferences, under Cloud, and link your Dropbox.</source>
        <translation>Geben Sie in den Einstellungen unter „Cloud“ einen Dropbox-App-Schlüssel ein, und verknüpfen Sie Ihre Dropbox.</translation>
    </message>
    <message>
        <source>Enter it in the preferences, under Cloud.</source>
        <translation>Tragen Sie die Angabe in den Einstellungen unter „Cloud“ ein.</translation>
    </message>
    <message>
        <source>Enter names with “/” between them.</source>
        <translation>Geben Sie Namen mit „/“ dazwischen ein.</translation>
    </message>
    <message>
        <source>Enter the address of “%@” without a login and without “?” and “#”.</source>
        <translation>Geben Sie die Adresse von „%@“ ohne Zugangsdaten und ohne „?“ und „#“ ein.</translation>
    </message>
    <message>
        <source>Enter the public address of the folder in the preferences, under Cloud.</source>
        <translation>Geben Sie in den Einstellungen unter „Cloud“ die öffentliche Adresse des Ordners ein.</translation>
    </message>
    <message>
        <source>Enter them anew in the preferences, under Cloud. A server with a second factor wants an “app password” from its security settings.</source>
        <translation>Geben Sie beides in den Einstellungen unter „Cloud“ neu ein. Ein Server mit zweitem Faktor verlangt ein „App-Passwort“ aus seinen Sicherheitseinstellungen.</translation>
    </message>
    <message>
        <source>Enter what the service gave you.</source>
        <translation>Geben Sie ein, was Sie vom Dienst erhalten haben.</translation>
    </message>
    <message>
        <source>Enter your server, your name and your password there in the preferences, under Cloud.</source>
        <translation>Geben Sie in den Einstellungen unter „Cloud“ Ihren Server, Ihren Namen und Ihr Passwort dort ein.</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
    <message numerus="yes">
        <source>Every %@ days</source>
        <comment>counted</comment>
        <extracomment>for one: Every day</extracomment>
        <translation>
            <numerusform>Täglich</numerusform>
            <numerusform>Alle %@ Tage</numerusform>
        </translation>
    </message>
    <message>
        <source>Every day</source>
        <translation>Täglich</translation>
    </message>
    <message>
        <source>Every week</source>
        <translation>Wöchentlich</translation>
    </message>
    <message>
        <source>Everything is in the library already. Choose a project or a tag.</source>
        <translation>Es ist bereits alles in der Bibliothek. Wählen Sie ein Projekt oder ein Schlagwort.</translation>
    </message>
    <message>
        <source>Expand All Groups</source>
        <translation>Alle Gruppen ausklappen</translation>
    </message>
    <message>
        <source>Expand Group</source>
        <translation>Gruppe ausklappen</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Export Items</source>
        <translation>Objekte exportiert</translation>
    </message>
    <message>
        <source>Export as Layered PSD</source>
        <translation>Als PSD mit Ebenen exportieren</translation>
    </message>
    <message>
        <source>Export as Layered PSD…</source>
        <translation>Als PSD mit Ebenen exportieren…</translation>
    </message>
    <message numerus="yes">
        <source>Export incomplete
%d original files are missing!</source>
        <comment>counted</comment>
        <extracomment>for one: Export incomplete
 %d original file is missing!</extracomment>
        <translation>
            <numerusform>Export unvollständig
%d Originaldatei fehlt!</numerusform>
            <numerusform>Export unvollständig
%d Originaldateien fehlen!</numerusform>
        </translation>
    </message>
    <message>
        <source>Export operation</source>
        <translation>Exportvorgang</translation>
    </message>
    <message>
        <source>Exporting %@ of %@</source>
        <translation>%@ von %@ wird exportiert</translation>
    </message>
    <message>
        <source>Exporting layers…</source>
        <translation>Ebenen werden exportiert…</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exportieren…</translation>
    </message>
    <message>
        <source>Extension</source>
        <translation>Endung</translation>
    </message>
    <message>
        <source>Extension is “%@”</source>
        <translation>Endung ist „%@“</translation>
    </message>
    <message>
        <source>F10</source>
        <translation>F10</translation>
    </message>
    <message>
        <source>FILES OPENED WITH ZELTO</source>
        <translation>MIT ZELTO GEÖFFNETE DATEIEN</translation>
    </message>
    <message>
        <source>FLAC audio</source>
        <translation>FLAC-Audio</translation>
    </message>
    <message>
        <source>FOLDERS OF THE DISK</source>
        <translation>ORDNER DES DATENTRÄGERS</translation>
    </message>
    <message>
        <source>FROM EACH FILE</source>
        <translation>AUS JEDER DATEI</translation>
    </message>
    <message>
        <source>Failed to initialize the store</source>
        <translation>Die Datenbank konnte nicht initialisiert werden</translation>
    </message>
    <message>
        <source>Fewer, as many or more stars</source>
        <translation>Weniger, genauso viele oder mehr Sterne</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Datei</translation>
    </message>
    <message>
        <source>File names</source>
        <translation>Dateinamen</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>Files before it are missing, and took the names. Export it by itself.</source>
        <translation>Dateien davor fehlen, und ihre Namen sind belegt. Exportieren Sie das Objekt einzeln.</translation>
    </message>
    <message>
        <source>Files of this kind are not taken, as the preferences say. Have them taken there (Import), or convert it to PNG or JPEG.</source>
        <translation>Dateien dieser Art werden laut Einstellungen nicht angenommen. Lassen Sie sie dort zu (Import), oder wandeln Sie die Datei in PNG oder JPEG um.</translation>
    </message>
    <message>
        <source>Files of this kind cannot be imported. Convert it to an image, a PDF or an SVG first.</source>
        <translation>Dateien dieser Art können nicht importiert werden. Wandeln Sie die Datei zuerst in ein Bild, ein PDF oder ein SVG um.</translation>
    </message>
    <message>
        <source>Files of this kind, as PNG or font</source>
        <translation>Dateien dieser Art, zum Beispiel PNG oder font</translation>
    </message>
    <message>
        <source>Files that were not imported</source>
        <translation>Nicht importierte Dateien</translation>
    </message>
    <message>
        <source>Files with this extension; * and ? are wildcards</source>
        <translation>Dateien mit dieser Endung; * und ? sind Platzhalter</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Find Color…</source>
        <translation>Farbe suchen…</translation>
    </message>
    <message>
        <source>Find Near-Duplicates…</source>
        <translation>Beinahe-Duplikate suchen…</translation>
    </message>
    <message>
        <source>Find Similar</source>
        <translation>Ähnliche suchen</translation>
    </message>
    <message>
        <source>Find a color</source>
        <translation>Eine Farbe suchen</translation>
    </message>
    <message>
        <source>Find in %@</source>
        <translation>In %@ suchen</translation>
    </message>
    <message>
        <source>Finds files that were changed; takes a while.</source>
        <translation>Findet geänderte Dateien; dauert eine Weile.</translation>
    </message>
    <message>
        <source>Finds what both sides find</source>
        <translation>Findet, was beide Seiten finden</translation>
    </message>
    <message>
        <source>Finds what one of both sides finds</source>
        <translation>Findet, was eine der beiden Seiten findet</translation>
    </message>
    <message>
        <source>Find…</source>
        <translation>Suchen…</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>Einpassen</translation>
    </message>
    <message>
        <source>Fit (Ctrl+0)</source>
        <translation>Einpassen (Strg+0)</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Ordner</translation>
    </message>
    <message>
        <source>Folders of the disk whose files are shown here and stay where they are</source>
        <translation>Ordner des Datenträgers, deren Dateien hier gezeigt werden und bleiben, wo sie sind</translation>
    </message>
    <message>
        <source>Folders on a network, for example, are looked at in intervals, and a clock marks them in the sidebar. That shows which files came and went; files that changed within are seen every hour.</source>
        <translation>Ordner in einem Netzwerk werden zum Beispiel in Abständen durchgesehen; in der Seitenleiste sind sie mit einer Uhr markiert. So zeigt sich, welche Dateien kamen und gingen; Änderungen in den Dateien werden stündlich bemerkt.</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Schrift</translation>
    </message>
    <message>
        <source>Forget</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Frame %d of %d</source>
        <translation>Einzelbild %d von %d</translation>
    </message>
    <message>
        <source>Free some space there and look at its permissions.</source>
        <translation>Geben Sie dort Platz frei, und prüfen Sie die Zugriffsrechte.</translation>
    </message>
    <message>
        <source>Free some space, or check the permissions of the settings.</source>
        <translation>Geben Sie Platz frei, oder prüfen Sie die Zugriffsrechte der Einstellungen.</translation>
    </message>
    <message>
        <source>Free some space, then save again; nothing of your changes is lost.</source>
        <translation>Geben Sie Platz frei, und speichern Sie dann noch einmal; von Ihren Änderungen geht nichts verloren.</translation>
    </message>
    <message>
        <source>From the next start on.</source>
        <translation>Ab dem nächsten Start.</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>Vollbild</translation>
    </message>
    <message>
        <source>Full view</source>
        <translation>Vollansicht</translation>
    </message>
    <message>
        <source>GIF image</source>
        <translation>GIF-Bild</translation>
    </message>
    <message>
        <source>GIMP image</source>
        <translation>GIMP-Bild</translation>
    </message>
    <message>
        <source>GZIP archive</source>
        <translation>GZIP-Archiv</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Give the title or the identifier of something in the sidebar.</source>
        <translation>Geben Sie den Titel oder die Kennung eines Eintrags der Seitenleiste an.</translation>
    </message>
    <message>
        <source>Go on only if you asked for this in the browser.</source>
        <translation>Fahren Sie nur fort, wenn Sie dies im Browser angefordert haben.</translation>
    </message>
    <message>
        <source>Go on only if you asked for this in the browser. You will not be asked again for this page's host.</source>
        <translation>Fahren Sie nur fort, wenn Sie dies im Browser angefordert haben. Für den Server dieser Seite werden Sie nicht noch einmal gefragt.</translation>
    </message>
    <message>
        <source>Go to Tab</source>
        <translation>Zum Tab wechseln</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Grün</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Gruppieren</translation>
    </message>
    <message>
        <source>Group by</source>
        <translation>Gruppieren nach</translation>
    </message>
    <message>
        <source>Group: %@</source>
        <translation>Gruppierung: %@</translation>
    </message>
    <message>
        <source>Groups</source>
        <translation>Gruppen</translation>
    </message>
    <message>
        <source>HEIC image</source>
        <translation>HEIC-Bild</translation>
    </message>
    <message>
        <source>HTML document</source>
        <translation>HTML-Dokument</translation>
    </message>
    <message>
        <source>Has a color near %@ (%d)</source>
        <translation>Hat eine Farbe nahe %@ (%d)</translation>
    </message>
    <message>
        <source>Has no tag at all</source>
        <translation>Hat gar kein Schlagwort</translation>
    </message>
    <message>
        <source>Has no tag of yours</source>
        <translation>Hat kein von Ihnen vergebenes Schlagwort</translation>
    </message>
    <message>
        <source>Has the tag “%@”</source>
        <translation>Hat das Schlagwort „%@“</translation>
    </message>
    <message>
        <source>Has the tag; * and ? are wildcards</source>
        <translation>Hat das Schlagwort; * und ? sind Platzhalter</translation>
    </message>
    <message>
        <source>Have the smart folder find what is shown (Ctrl+Shift+S)</source>
        <translation>Den intelligenten Ordner finden lassen, was angezeigt wird (Strg+Umschalt+S)</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Hiding items…</source>
        <translation>Objekte werden ausgeblendet…</translation>
    </message>
    <message>
        <source>High &amp;contrast</source>
        <translation>Hoher &amp;Kontrast</translation>
    </message>
    <message>
        <source>Hold Ctrl, Alt or Super with it: alone, other programs need this key.</source>
        <translation>Halten Sie dazu Strg, Alt oder Super gedrückt: Allein brauchen andere Programme diese Taste.</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Pos1</translation>
    </message>
    <message>
        <source>How files are called: {title}, {index}, {width}, {height} and {date} stand for what each file has. Empty: the title.</source>
        <translation>Wie Dateien heißen: {title}, {index}, {width}, {height} und {date} stehen für das, was jede Datei hat. Leer: der Titel.</translation>
    </message>
    <message>
        <source>How many backups stay</source>
        <translation>Wie viele Sicherungen bleiben</translation>
    </message>
    <message>
        <source>How near</source>
        <translation>Wie ähnlich</translation>
    </message>
    <message>
        <source>How often a backup is made by itself</source>
        <translation>Wie oft automatisch gesichert wird</translation>
    </message>
    <message>
        <source>Hue</source>
        <translation>Farbton</translation>
    </message>
    <message>
        <source>IN FILES</source>
        <translation>IN DATEIEN</translation>
    </message>
    <message>
        <source>IS EVERYTHING THERE?</source>
        <translation>IST ALLES DA?</translation>
    </message>
    <message>
        <source>ITEMS</source>
        <translation>OBJEKTE</translation>
    </message>
    <message>
        <source>Icon image</source>
        <translation>Symbolbild</translation>
    </message>
    <message>
        <source>If it has no encryption, write http:// before its address.</source>
        <translation>Wenn er keine Verschlüsselung hat, schreiben Sie http:// vor seine Adresse.</translation>
    </message>
    <message>
        <source>If there is a keyring, it stays there: remove what is named “%@” in the desktop's program for passwords.</source>
        <translation>Falls es einen Schlüsselbund gibt, bleibt es dort: Entfernen Sie in der Passwortverwaltung der Arbeitsumgebung den Eintrag „%@“.</translation>
    </message>
    <message>
        <source>Illustrator image</source>
        <translation>Illustrator-Bild</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>Images cannot be downloaded now. Restart Zelto, and try again.</source>
        <translation>Bilder können jetzt nicht heruntergeladen werden. Starten Sie Zelto neu, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Images get this tag by themselves when they are imported.</source>
        <translation>Bilder erhalten dieses Schlagwort beim Import von selbst.</translation>
    </message>
    <message>
        <source>Imgur asks every program for an identifier, and limits what comes with each. Register one of your own, choose “OAuth 2 authorization without a callback URL”, and paste the Client ID that it shows, 15 letters and digits, here.</source>
        <translation>Imgur verlangt von jedem Programm eine Kennung und begrenzt, was mit jeder kommt. Registrieren Sie eine eigene, wählen Sie „OAuth 2 authorization without a callback URL“, und fügen Sie die angezeigte Client-ID, 15 Buchstaben und Ziffern, hier ein.</translation>
    </message>
    <message>
        <source>Imgur does not accept the Client ID. Enter the right one in the preferences, under Cloud.</source>
        <translation>Imgur nimmt die Client-ID nicht an. Geben Sie die richtige in den Einstellungen unter „Cloud“ ein.</translation>
    </message>
    <message>
        <source>Imgur refuses the upload. Look in the preferences, under Cloud, whether the Client ID is the right one, and whether Imgur takes files of this kind.</source>
        <translation>Imgur lehnt das Hochladen ab. Prüfen Sie in den Einstellungen unter „Cloud“, ob die Client-ID die richtige ist, und ob Imgur Dateien dieser Art annimmt.</translation>
    </message>
    <message>
        <source>Imgur takes no more uploads with this Client ID for now.</source>
        <translation>Imgur nimmt mit dieser Client-ID vorerst keine weiteren Dateien an.</translation>
    </message>
    <message>
        <source>Imgur wants to know which program uploads. Register one of your own at api.imgur.com/oauth2/addclient, as “OAuth 2 authorization without a callback URL”, and enter the Client ID that you get in the preferences, under Cloud.</source>
        <translation>Imgur möchte wissen, welches Programm hochlädt. Registrieren Sie auf api.imgur.com/oauth2/addclient ein eigenes als „OAuth 2 authorization without a callback URL“, und geben Sie die erhaltene Client-ID in den Einstellungen unter „Cloud“ ein.</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Importieren</translation>
    </message>
    <message>
        <source>Import %d images from the page at “%@”?</source>
        <translation>%d Bilder von der Seite unter „%@“ importieren?</translation>
    </message>
    <message>
        <source>Import Invalid</source>
        <translation>Import nicht möglich</translation>
    </message>
    <message>
        <source>Import Successful</source>
        <translation>Import erfolgreich</translation>
    </message>
    <message>
        <source>Import an image from the page at “%@”?</source>
        <translation>Ein Bild von der Seite unter „%@“ importieren?</translation>
    </message>
    <message>
        <source>Import anyway</source>
        <translation>Trotzdem importieren</translation>
    </message>
    <message>
        <source>Import cancelled</source>
        <translation>Import abgebrochen</translation>
    </message>
    <message>
        <source>Import date</source>
        <translation>Importdatum</translation>
    </message>
    <message>
        <source>Import files here</source>
        <translation>Dateien hier importieren</translation>
    </message>
    <message>
        <source>Import its description again in the preferences, under Cloud, and enter it anew.</source>
        <translation>Importieren Sie die Beschreibung in den Einstellungen unter „Cloud“ noch einmal, und geben Sie die Angaben neu ein.</translation>
    </message>
    <message>
        <source>Import operation successful</source>
        <translation>Der Import war erfolgreich</translation>
    </message>
    <message>
        <source>Import the description again in the preferences, under Cloud.</source>
        <translation>Importieren Sie die Beschreibung in den Einstellungen unter „Cloud“ noch einmal.</translation>
    </message>
    <message>
        <source>Import the missing files again, and remove that file.</source>
        <translation>Importieren Sie die fehlenden Dateien noch einmal, und entfernen Sie diese Datei.</translation>
    </message>
    <message>
        <source>Imported</source>
        <translation>Importiert</translation>
    </message>
    <message>
        <source>Imported before (&lt;), on (=) or since (&gt;) the date, that day included</source>
        <translation>Importiert vor (&lt;), an (=) oder seit (&gt;) dem Datum, dieser Tag eingeschlossen</translation>
    </message>
    <message>
        <source>Imported in</source>
        <translation>Importiert im Jahr</translation>
    </message>
    <message>
        <source>Importing %@ of %@</source>
        <translation>%@ von %@ wird importiert</translation>
    </message>
    <message>
        <source>Importing…</source>
        <translation>Wird importiert…</translation>
    </message>
    <message>
        <source>Import…</source>
        <translation>Importieren…</translation>
    </message>
    <message>
        <source>Import… (Ctrl+I)</source>
        <translation>Importieren… (Strg+I)</translation>
    </message>
    <message>
        <source>In a live folder</source>
        <translation>In einem Live-Ordner</translation>
    </message>
    <message>
        <source>In a live folder named “%@”, or below it</source>
        <translation>In einem Live-Ordner namens „%@“ oder darunter</translation>
    </message>
    <message>
        <source>In a live folder of this name, or below it</source>
        <translation>In einem Live-Ordner dieses Namens oder darunter</translation>
    </message>
    <message>
        <source>In a live folder: %@</source>
        <translation>In einem Live-Ordner: %@</translation>
    </message>
    <message>
        <source>In a project named “%@”</source>
        <translation>In einem Projekt namens „%@“</translation>
    </message>
    <message>
        <source>In a project whose name contains the text</source>
        <translation>In einem Projekt, dessen Name den Text enthält</translation>
    </message>
    <message>
        <source>In live folders: %@</source>
        <translation>In Live-Ordnern: %@</translation>
    </message>
    <message>
        <source>In no project</source>
        <translation>In keinem Projekt</translation>
    </message>
    <message>
        <source>In the desktop's keyboard settings keys can be bound to “zelto snap area”, “zelto snap window” and “zelto snap full”.</source>
        <translation>In den Tastatureinstellungen der Arbeitsumgebung können Tasten mit „zelto snap area“, „zelto snap window“ und „zelto snap full“ belegt werden.</translation>
    </message>
    <message>
        <source>In your library since %@</source>
        <translation>In Ihrer Bibliothek seit %@</translation>
    </message>
    <message>
        <source>InDesign document</source>
        <translation>InDesign-Dokument</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Info</translation>
    </message>
    <message>
        <source>Info Panel</source>
        <translation>Infobereich</translation>
    </message>
    <message>
        <source>Info Panel (Ctrl+Shift+I)</source>
        <translation>Infobereich (Strg+Umschalt+I)</translation>
    </message>
    <message>
        <source>Insert</source>
        <translation>Einfg</translation>
    </message>
    <message>
        <source>Install one, such as GNOME Keyring or KWallet, log in to the desktop again, and try once more. Nothing was stored.</source>
        <translation>Installieren Sie einen, etwa GNOME Keyring oder KWallet, melden Sie sich neu an der Arbeitsumgebung an, und versuchen Sie es noch einmal. Es wurde nichts gespeichert.</translation>
    </message>
    <message>
        <source>Install the application again.</source>
        <translation>Installieren Sie die Anwendung noch einmal.</translation>
    </message>
    <message>
        <source>Install the newer version to open it.</source>
        <translation>Installieren Sie die neuere Version, um sie zu öffnen.</translation>
    </message>
    <message>
        <source>It asks its makers' server once a day which version is the newest. Nothing about you or your library is sent, and nothing is installed by itself.</source>
        <translation>Zelto fragt einmal am Tag den Server seiner Hersteller, welche Version die neueste ist. Über Sie und Ihre Bibliothek wird nichts gesendet, und nichts wird von selbst installiert.</translation>
    </message>
    <message>
        <source>It belongs to the system. Add the folders with your pictures instead.</source>
        <translation>Er gehört zum System. Fügen Sie stattdessen die Ordner mit Ihren Bildern hinzu.</translation>
    </message>
    <message>
        <source>It can't be encoded.</source>
        <translation>Das Bild kann nicht kodiert werden.</translation>
    </message>
    <message>
        <source>It can't be read: see who may.</source>
        <translation>Sie kann nicht gelesen werden: Prüfen Sie, wer das darf.</translation>
    </message>
    <message>
        <source>It cannot be read. Allow reading it, then add it again.</source>
        <translation>Er kann nicht gelesen werden. Erlauben Sie das Lesen, und fügen Sie ihn dann noch einmal hinzu.</translation>
    </message>
    <message>
        <source>It cannot be read. Change its permissions, or unlock it, and import it again.</source>
        <translation>Die Datei kann nicht gelesen werden. Ändern Sie ihre Zugriffsrechte, oder entsperren Sie sie, und importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>It cannot be read: %@. What the library has of it stays as it is.</source>
        <translation>Die Datei kann nicht gelesen werden: %@. Was die Bibliothek davon hat, bleibt, wie es ist.</translation>
    </message>
    <message>
        <source>It cannot be told whether the library has it already, since the library cannot be read. Import it again once that is mended.</source>
        <translation>Es lässt sich nicht feststellen, ob die Datei schon in der Bibliothek ist, weil die Bibliothek nicht gelesen werden kann. Importieren Sie sie noch einmal, sobald das behoben ist.</translation>
    </message>
    <message>
        <source>It cannot be unpacked into the folder for temporary files: %@. Check that folder and import it again.</source>
        <translation>Das Archiv kann nicht in den Ordner für temporäre Dateien entpackt werden: %@. Prüfen Sie diesen Ordner, und importieren Sie es noch einmal.</translation>
    </message>
    <message>
        <source>It cannot be unpacked, since no temporary folder can be made. Free some space there, or name another folder in TMPDIR, and import it again.</source>
        <translation>Das Archiv kann nicht entpackt werden, weil kein temporärer Ordner angelegt werden kann. Geben Sie dort Platz frei, oder nennen Sie einen anderen Ordner in TMPDIR, und importieren Sie es noch einmal.</translation>
    </message>
    <message>
        <source>It counts as one document. Import it, or add the folder it is in.</source>
        <translation>Er gilt als ein einziges Dokument. Importieren Sie ihn, oder fügen Sie den Ordner hinzu, in dem er liegt.</translation>
    </message>
    <message>
        <source>It does not exist or you don't have the permission to read it.</source>
        <translation>Die Datei ist nicht vorhanden, oder Sie haben keine Berechtigung, sie zu lesen.</translation>
    </message>
    <message>
        <source>It goes to the trash, and the library takes its place.</source>
        <translation>Das Vorhandene kommt in den Papierkorb, und die Bibliothek tritt an seine Stelle.</translation>
    </message>
    <message>
        <source>It has no frame %d.</source>
        <translation>Es gibt kein Einzelbild %d.</translation>
    </message>
    <message>
        <source>It has to begin with http:// or https://.</source>
        <translation>Eine Webadresse muss mit http:// oder https:// beginnen.</translation>
    </message>
    <message>
        <source>It has too many pixels (%d × %d). Make it smaller and import it again.</source>
        <translation>Das Bild hat zu viele Pixel (%d × %d). Verkleinern Sie es, und importieren Sie es noch einmal.</translation>
    </message>
    <message>
        <source>It holds everything of this computer. Add the folders with your pictures instead.</source>
        <translation>Er enthält alles auf diesem Rechner. Fügen Sie stattdessen die Ordner mit Ihren Bildern hinzu.</translation>
    </message>
    <message>
        <source>It holds no picture of itself. Save it again in its own application and import it anew.</source>
        <translation>Die Datei enthält kein Bild von sich. Speichern Sie sie noch einmal in ihrer eigenen Anwendung, und importieren Sie sie neu.</translation>
    </message>
    <message>
        <source>It holds no preview.</source>
        <translation>Es ist keine Vorschau enthalten.</translation>
    </message>
    <message>
        <source>It holds no preview. Open it in Sketch, save it again and import it anew, or export it as PNG, SVG or PDF and import that.</source>
        <translation>Es ist keine Vorschau enthalten. Öffnen Sie die Datei in Sketch, speichern Sie sie noch einmal, und importieren Sie sie neu; oder exportieren Sie sie als PNG, SVG oder PDF, und importieren Sie das Ergebnis.</translation>
    </message>
    <message>
        <source>It holds the library itself. Add the folders beside the library instead.</source>
        <translation>Er enthält die Bibliothek selbst. Fügen Sie stattdessen die Ordner neben der Bibliothek hinzu.</translation>
    </message>
    <message>
        <source>It is a document of a newer Sketch, which cannot be imported. Export it from Sketch as PNG, SVG or PDF and import that.</source>
        <translation>Das Dokument stammt aus einer neueren Version von Sketch und kann nicht importiert werden. Exportieren Sie es aus Sketch als PNG, SVG oder PDF, und importieren Sie das Ergebnis.</translation>
    </message>
    <message>
        <source>It is a folder. Import it into a folder of the sidebar, or into PROJECTS.</source>
        <translation>Das ist ein Ordner. Importieren Sie ihn in einen Ordner der Seitenleiste oder in PROJEKTE.</translation>
    </message>
    <message>
        <source>It is a link. Import what it leads to.</source>
        <translation>Das ist eine Verknüpfung. Importieren Sie, worauf sie verweist.</translation>
    </message>
    <message>
        <source>It is a part of the library itself. Add a folder outside of it.</source>
        <translation>Er ist ein Teil der Bibliothek selbst. Fügen Sie einen Ordner außerhalb der Bibliothek hinzu.</translation>
    </message>
    <message>
        <source>It is added where the import goes; the new copy is discarded.</source>
        <translation>Es wird dort hinzugefügt, wohin importiert wird; die neue Kopie wird verworfen.</translation>
    </message>
    <message>
        <source>It is empty, or too large for a PNG file.</source>
        <translation>Das Bild ist leer oder zu groß für eine PNG-Datei.</translation>
    </message>
    <message>
        <source>It is in Screenshots.</source>
        <translation>Sie liegt in „Bildschirmfotos“.</translation>
    </message>
    <message>
        <source>It is in the trash. Restore it first.</source>
        <translation>Er liegt im Papierkorb. Stellen Sie ihn zuerst wieder her.</translation>
    </message>
    <message>
        <source>It is incomplete: only a part of it can be drawn. Import it again from where it came.</source>
        <translation>Das Bild ist unvollständig: Nur ein Teil davon kann gezeichnet werden. Importieren Sie es noch einmal von dort, woher es kam.</translation>
    </message>
    <message>
        <source>It is larger than %@.</source>
        <translation>Die Datei ist größer als %@.</translation>
    </message>
    <message>
        <source>It is locked against every change. Unlock it, or import a copy of it.</source>
        <translation>Die Datei ist gegen jede Änderung gesperrt. Entsperren Sie sie, oder importieren Sie eine Kopie davon.</translation>
    </message>
    <message>
        <source>It is locked, or you have no permission to read it. Unlock it and import it again.</source>
        <translation>Die Datei ist gesperrt, oder Sie haben keine Berechtigung, sie zu lesen. Entsperren Sie sie, und importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>It is locked, or you may not change its folder. Unlock it, or change the folder's permissions, and try again.</source>
        <translation>Die Datei ist gesperrt, oder Sie dürfen ihren Ordner nicht ändern. Entsperren Sie sie, oder ändern Sie die Zugriffsrechte des Ordners, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>It is mounted read-only.</source>
        <translation>Der Datenträger ist schreibgeschützt eingehängt.</translation>
    </message>
    <message>
        <source>It is no folder. Add the folder it is in.</source>
        <translation>Das ist kein Ordner. Fügen Sie den Ordner hinzu, in dem die Datei liegt.</translation>
    </message>
    <message>
        <source>It is no live folder of its own. Choose one that stands below LIVE FOLDERS.</source>
        <translation>Das ist kein eigener Live-Ordner. Wählen Sie einen, der unter LIVE-ORDNER steht.</translation>
    </message>
    <message>
        <source>It is no picture that can be imported.</source>
        <translation>Das ist kein Bild, das importiert werden kann.</translation>
    </message>
    <message>
        <source>It is no regular file. Import a copy of what it gives.</source>
        <translation>Das ist keine gewöhnliche Datei. Importieren Sie eine Kopie ihres Inhalts.</translation>
    </message>
    <message>
        <source>It is not a picture of a known kind.</source>
        <translation>Das ist kein Bild einer bekannten Art.</translation>
    </message>
    <message>
        <source>It is not encrypted on its way.</source>
        <translation>Die Übertragung ist nicht verschlüsselt.</translation>
    </message>
    <message>
        <source>It is not in the library any more.</source>
        <translation>Das Objekt ist nicht mehr in der Bibliothek.</translation>
    </message>
    <message>
        <source>It is not missing, so nothing has to be taken for it.</source>
        <translation>Er fehlt nicht, daher muss kein anderer an seine Stelle treten.</translation>
    </message>
    <message>
        <source>It is not there any more. Look where it went and import it from there.</source>
        <translation>Die Datei ist nicht mehr da. Suchen Sie, wo sie jetzt ist, und importieren Sie sie von dort.</translation>
    </message>
    <message>
        <source>It is not there any more. Look whether it was moved or deleted, or whether its disk is there.</source>
        <translation>Die Datei ist nicht mehr da. Prüfen Sie, ob sie verschoben oder gelöscht wurde oder ob ihr Datenträger fehlt.</translation>
    </message>
    <message>
        <source>It is the very file of the one that is kept.</source>
        <translation>Es ist dieselbe Datei wie die des behaltenen Objekts.</translation>
    </message>
    <message>
        <source>It is too large for the disk it is to go to. Use another one.</source>
        <translation>Die Datei ist zu groß für den Datenträger, auf den sie soll. Verwenden Sie einen anderen.</translation>
    </message>
    <message>
        <source>It is your whole home folder, with what programs keep there. Add the folders with your pictures instead.</source>
        <translation>Er ist Ihr ganzer persönlicher Ordner mit allem, was Programme dort ablegen. Fügen Sie stattdessen die Ordner mit Ihren Bildern hinzu.</translation>
    </message>
    <message>
        <source>It may have been uploaded all the same. Try again later.</source>
        <translation>Die Datei wurde womöglich trotzdem hochgeladen. Versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>It must be one line of plain letters, digits and signs.</source>
        <translation>Es muss eine Zeile aus einfachen Buchstaben, Ziffern und Zeichen sein.</translation>
    </message>
    <message>
        <source>It takes over the projects and tags of the others, which are deleted</source>
        <translation>Es übernimmt Projekte und Schlagwörter der anderen, die gelöscht werden</translation>
    </message>
    <message>
        <source>It takes over the projects and tags of the others, which are deleted (K)</source>
        <translation>Es übernimmt Projekte und Schlagwörter der anderen, die gelöscht werden (K)</translation>
    </message>
    <message>
        <source>It takes the place of the one of that name.</source>
        <translation>Sie ersetzt die Beschreibung dieses Namens.</translation>
    </message>
    <message>
        <source>It takes too long to read.</source>
        <translation>Das Lesen dauert zu lange.</translation>
    </message>
    <message>
        <source>It was changed since. Delete it if you do not need it.</source>
        <translation>Die Datei wurde seither geändert. Löschen Sie sie, wenn Sie sie nicht brauchen.</translation>
    </message>
    <message>
        <source>It was left out. Import it again.</source>
        <translation>Die Datei wurde ausgelassen. Importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>It would have %d x %d pixels, and this format has at most %d a side. Choose a smaller size or another format.</source>
        <translation>Das Bild hätte %d x %d Pixel, und dieses Format erlaubt höchstens %d je Seite. Wählen Sie eine kleinere Größe oder ein anderes Format.</translation>
    </message>
    <message>
        <source>It would have %d x %d pixels, which is too big. Choose a smaller size.</source>
        <translation>Das Bild hätte %d x %d Pixel und wäre damit zu groß. Wählen Sie eine kleinere Größe.</translation>
    </message>
    <message>
        <source>Items</source>
        <translation>Objekte</translation>
    </message>
    <message>
        <source>Items: %@</source>
        <translation>Objekte: %@</translation>
    </message>
    <message>
        <source>Items: %@, files: %@, size: %@, of which new: %@</source>
        <translation>Objekte: %@, Dateien: %@, Größe: %@, davon neu: %@</translation>
    </message>
    <message>
        <source>Its Info.plist is damaged. Get the snap once more, or import the picture in it alone.</source>
        <translation>Die Info.plist ist beschädigt. Beschaffen Sie die Aufnahme noch einmal, oder importieren Sie nur das Bild darin.</translation>
    </message>
    <message>
        <source>Its Info.plist is missing or cannot be read. Get the snap once more, or import the picture in it alone.</source>
        <translation>Die Info.plist fehlt oder kann nicht gelesen werden. Beschaffen Sie die Aufnahme noch einmal, oder importieren Sie nur das Bild darin.</translation>
    </message>
    <message>
        <source>Its Info.plist names no picture (imageGrabPath). Export the picture from the program that made the snap and import that.</source>
        <translation>Die Info.plist nennt kein Bild (imageGrabPath). Exportieren Sie das Bild aus dem Programm, das die Aufnahme gemacht hat, und importieren Sie es.</translation>
    </message>
    <message>
        <source>Its PostScript can't be drawn; Ghostscript (gs) must be installed.</source>
        <translation>Das PostScript kann nicht gezeichnet werden; Ghostscript (gs) muss installiert sein.</translation>
    </message>
    <message>
        <source>Its bounding box is empty.</source>
        <translation>Der Begrenzungsrahmen ist leer.</translation>
    </message>
    <message>
        <source>Its database is damaged. Everything that can still be read can be recovered into a new one.</source>
        <translation>Die Datenbank ist beschädigt. Alles, was noch lesbar ist, kann in eine neue übernommen werden.</translation>
    </message>
    <message>
        <source>Its disk cannot read it. Check the disk, or import it from a copy.</source>
        <translation>Der Datenträger kann die Datei nicht lesen. Prüfen Sie den Datenträger, oder importieren Sie eine Kopie.</translation>
    </message>
    <message>
        <source>Its disk tells of no changes, so it is looked at in intervals.</source>
        <translation>Der Datenträger meldet keine Änderungen, daher wird in Abständen nachgesehen.</translation>
    </message>
    <message>
        <source>Its file ends too early: the rest of the picture is empty.</source>
        <translation>Die Datei endet zu früh: Der Rest des Bildes ist leer.</translation>
    </message>
    <message>
        <source>Its file is missing. Put it back where it was, or keep another one.</source>
        <translation>Die Datei fehlt. Legen Sie sie an ihren Ort zurück, oder behalten Sie ein anderes.</translation>
    </message>
    <message>
        <source>Its file may not be read. Change its permissions, and export it again.</source>
        <translation>Die Datei darf nicht gelesen werden. Ändern Sie ihre Zugriffsrechte, und exportieren Sie das Objekt noch einmal.</translation>
    </message>
    <message>
        <source>Its file system keeps no extended attributes. Files on a disk formatted as ext4, Btrfs or XFS do.</source>
        <translation>Das Dateisystem kennt keine erweiterten Attribute. Dateien auf einem mit ext4, Btrfs oder XFS formatierten Datenträger haben sie.</translation>
    </message>
    <message>
        <source>Its file system tells of no changes, so that it is looked at in intervals.</source>
        <translation>Das Dateisystem meldet keine Änderungen, daher wird in Abständen nachgesehen.</translation>
    </message>
    <message>
        <source>Its file went, or could not be read any more. Look where it is, and export it again.</source>
        <translation>Die Datei ist verschwunden oder war nicht mehr lesbar. Suchen Sie, wo sie ist, und exportieren Sie das Objekt noch einmal.</translation>
    </message>
    <message>
        <source>Its folder cannot be found. Connect the drive it is on, or put the folder back.</source>
        <translation>Der Ordner ist nicht zu finden. Verbinden Sie das Laufwerk, auf dem er liegt, oder legen Sie den Ordner zurück.</translation>
    </message>
    <message>
        <source>Its folder cannot be read: %@. Allow reading it, or connect its drive again.</source>
        <translation>Der Ordner kann nicht gelesen werden: %@. Erlauben Sie das Lesen, oder verbinden Sie das Laufwerk wieder.</translation>
    </message>
    <message>
        <source>Its folder is empty, though it was not before. Connect the drive it is on, or put the files back.</source>
        <translation>Der Ordner ist leer, war es vorher aber nicht. Verbinden Sie das Laufwerk, auf dem er liegt, oder legen Sie die Dateien zurück.</translation>
    </message>
    <message>
        <source>Its folder is in the trash. Restore it there, or remove the live folder.</source>
        <translation>Der Ordner ist im Papierkorb. Stellen Sie ihn dort wieder her, oder entfernen Sie den Live-Ordner.</translation>
    </message>
    <message>
        <source>Its images come from %@ and %d other hosts.</source>
        <translation>Die Bilder kommen von %@ und %d weiteren Servern.</translation>
    </message>
    <message>
        <source>Its images come from %@.</source>
        <translation>Die Bilder kommen von %@.</translation>
    </message>
    <message>
        <source>Its items are kept, and come back with it.</source>
        <translation>Die Objekte bleiben erhalten und kommen mit ihm zurück.</translation>
    </message>
    <message>
        <source>Its live folder “%@” is disabled. Enable it, and try again.</source>
        <translation>Der Live-Ordner „%@“ ist deaktiviert. Aktivieren Sie ihn, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Its name is not valid text. Rename it and import it again.</source>
        <translation>Der Name ist kein gültiger Text. Benennen Sie die Datei um, und importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>Its name is too long for the disk it is to go to. Rename it, and try again.</source>
        <translation>Der Name ist zu lang für den Datenträger, auf den die Datei soll. Benennen Sie sie um, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Its original file is missing. Look whether it was moved or deleted, or whether its disk is there.</source>
        <translation>Die Originaldatei fehlt. Prüfen Sie, ob sie verschoben oder gelöscht wurde oder ob ihr Datenträger fehlt.</translation>
    </message>
    <message>
        <source>Its picture “%@” does not lie in the package itself. Import that picture alone.</source>
        <translation>Das Bild „%@“ liegt nicht im Paket selbst. Importieren Sie nur dieses Bild.</translation>
    </message>
    <message>
        <source>Its picture “%@” is missing from the package. Get the snap once more.</source>
        <translation>Das Bild „%@“ fehlt im Paket. Beschaffen Sie die Aufnahme noch einmal.</translation>
    </message>
    <message>
        <source>Its picture “%@” is of a kind that cannot be imported. Convert it to PNG or JPEG and import that.</source>
        <translation>Das Bild „%@“ ist von einer Art, die nicht importiert werden kann. Wandeln Sie es in PNG oder JPEG um, und importieren Sie das Ergebnis.</translation>
    </message>
    <message>
        <source>Its place is mounted read-only. Mount it so that it can be written to, and try again.</source>
        <translation>Der Ort ist schreibgeschützt eingehängt. Hängen Sie ihn beschreibbar ein, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Its preview is too large. Export it from Sketch as PNG, SVG or PDF and import that.</source>
        <translation>Die Vorschau ist zu groß. Exportieren Sie das Dokument aus Sketch als PNG, SVG oder PDF, und importieren Sie das Ergebnis.</translation>
    </message>
    <message>
        <source>Its size of %ld x %ld pixels is too big.</source>
        <translation>Die Größe von %ld x %ld Pixeln ist zu viel.</translation>
    </message>
    <message>
        <source>Its stored password is forgotten. What was uploaded stays where it is, and its links go on working.</source>
        <translation>Das gespeicherte Passwort wird vergessen. Was hochgeladen wurde, bleibt, wo es ist, und die Links funktionieren weiter.</translation>
    </message>
    <message>
        <source>JPEG 2000 image</source>
        <translation>JPEG-2000-Bild</translation>
    </message>
    <message>
        <source>JPEG XL image</source>
        <translation>JPEG-XL-Bild</translation>
    </message>
    <message>
        <source>JPEG image</source>
        <translation>JPEG-Bild</translation>
    </message>
    <message>
        <source>JSON document</source>
        <translation>JSON-Dokument</translation>
    </message>
    <message>
        <source>Jpeg export</source>
        <translation>JPEG-Export</translation>
    </message>
    <message>
        <source>KINDS OF FILES</source>
        <translation>DATEIARTEN</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Keep All</source>
        <translation>Alle behalten</translation>
    </message>
    <message>
        <source>Keep Chosen, Delete Others</source>
        <translation>Gewähltes behalten, andere löschen</translation>
    </message>
    <message>
        <source>Keep This One</source>
        <translation>Dieses behalten</translation>
    </message>
    <message>
        <source>Keep in Pictures</source>
        <translation>In „Bilder“ aufbewahren</translation>
    </message>
    <message>
        <source>Keep “%@”</source>
        <translation>„%@“ behalten</translation>
    </message>
    <message>
        <source>Keeping one of each…</source>
        <translation>Je eines wird behalten…</translation>
    </message>
    <message>
        <source>Keyboard</source>
        <translation>Tastatur</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Kind is “%@”</source>
        <translation>Art ist „%@“</translation>
    </message>
    <message>
        <source>Kind of file</source>
        <translation>Dateiart</translation>
    </message>
    <message>
        <source>Kinds</source>
        <translation>Arten</translation>
    </message>
    <message>
        <source>Krita document</source>
        <translation>Krita-Dokument</translation>
    </message>
    <message>
        <source>LATEST UPLOADS</source>
        <translation>ZULETZT HOCHGELADEN</translation>
    </message>
    <message>
        <source>LIBRARY</source>
        <translation>BIBLIOTHEK</translation>
    </message>
    <message>
        <source>LIVE FOLDERS</source>
        <translation>LIVE-ORDNER</translation>
    </message>
    <message>
        <source>Label</source>
        <translation>Beschriftung</translation>
    </message>
    <message>
        <source>Larger Thumbnails</source>
        <translation>Größere Miniaturen</translation>
    </message>
    <message>
        <source>Largest files</source>
        <translation>Größte Dateien</translation>
    </message>
    <message>
        <source>Last Hour</source>
        <translation>Letzte Stunde</translation>
    </message>
    <message>
        <source>Last Import</source>
        <translation>Letzter Import</translation>
    </message>
    <message>
        <source>Last Import: %@</source>
        <translation>Letzter Import: %@</translation>
    </message>
    <message>
        <source>Last Week</source>
        <translation>Letzte Woche</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Später</translation>
    </message>
    <message>
        <source>Latest Uploads…</source>
        <translation>Zuletzt hochgeladen…</translation>
    </message>
    <message>
        <source>Latest uploads</source>
        <translation>Zuletzt hochgeladen</translation>
    </message>
    <message>
        <source>Layer %d of %d…</source>
        <translation>Ebene %d von %d…</translation>
    </message>
    <message>
        <source>Layers (PSD)</source>
        <translation>Ebenen (PSD)</translation>
    </message>
    <message>
        <source>Leave as They Are</source>
        <translation>Unverändert lassen</translation>
    </message>
    <message>
        <source>Leaves out what stands behind it</source>
        <translation>Lässt aus, was dahinter steht</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Left and Right change the hue, Up and Down how full the color is</source>
        <translation>Links und Rechts ändern den Farbton, Oben und Unten die Sättigung</translation>
    </message>
    <message>
        <source>Left out was %@.</source>
        <translation>Ausgelassen wurde %@.</translation>
    </message>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>Library Statistics</source>
        <translation>Bibliotheksstatistik</translation>
    </message>
    <message>
        <source>Library Statistics…</source>
        <translation>Bibliotheksstatistik…</translation>
    </message>
    <message>
        <source>License</source>
        <translation>Lizenz</translation>
    </message>
    <message>
        <source>Like %@</source>
        <translation>Ähnlich wie %@</translation>
    </message>
    <message>
        <source>Likeness %d %%</source>
        <translation>Ähnlichkeit %d %%</translation>
    </message>
    <message>
        <source>Likeness %d %% or more</source>
        <translation>Ähnlichkeit %d %% oder mehr</translation>
    </message>
    <message>
        <source>Line %d: %s</source>
        <translation>Zeile %d: %s</translation>
    </message>
    <message>
        <source>Link it again in the preferences, under Cloud.</source>
        <translation>Verknüpfen Sie sie in den Einstellungen unter „Cloud“ noch einmal.</translation>
    </message>
    <message>
        <source>Link one in the preferences, under Cloud.</source>
        <translation>Verknüpfen Sie eine in den Einstellungen unter „Cloud“.</translation>
    </message>
    <message>
        <source>Link to “%@” copied to clipboard!</source>
        <translation>Link zu „%@“ in die Zwischenablage kopiert!</translation>
    </message>
    <message>
        <source>Link your Dropbox in the preferences, under Cloud.</source>
        <translation>Verknüpfen Sie Ihre Dropbox in den Einstellungen unter „Cloud“.</translation>
    </message>
    <message>
        <source>Linked</source>
        <translation>Gekoppelt</translation>
    </message>
    <message>
        <source>Linked with %@</source>
        <translation>Verknüpft mit %@</translation>
    </message>
    <message>
        <source>Linking was cancelled.</source>
        <translation>Das Verknüpfen wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Live Folder</source>
        <translation>Live-Ordner</translation>
    </message>
    <message>
        <source>Live folders</source>
        <translation>Live-Ordner</translation>
    </message>
    <message>
        <source>Live folders are not kept in step here.</source>
        <translation>Live-Ordner werden hier nicht abgeglichen.</translation>
    </message>
    <message>
        <source>Live folders do not unpack archives. Unpack it, and copy what was in it.</source>
        <translation>Live-Ordner entpacken keine Archive. Entpacken Sie es, und kopieren Sie den Inhalt.</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>Laden</translation>
    </message>
    <message>
        <source>Loading the page…</source>
        <translation>Seite wird geladen…</translation>
    </message>
    <message>
        <source>Loading…</source>
        <translation>Wird geladen…</translation>
    </message>
    <message>
        <source>Look Once a Day</source>
        <translation>Täglich suchen</translation>
    </message>
    <message>
        <source>Look at its permissions.</source>
        <translation>Prüfen Sie die Zugriffsrechte.</translation>
    </message>
    <message>
        <source>Look at the address, and at the clock of this computer.</source>
        <translation>Prüfen Sie die Adresse und die Uhr dieses Rechners.</translation>
    </message>
    <message>
        <source>Look at the address.</source>
        <translation>Prüfen Sie die Adresse.</translation>
    </message>
    <message>
        <source>Look at the network settings of the desktop.</source>
        <translation>Prüfen Sie die Netzwerkeinstellungen der Arbeitsumgebung.</translation>
    </message>
    <message>
        <source>Look at them again, then repeat your change.</source>
        <translation>Sehen Sie sie sich noch einmal an, und wiederholen Sie dann Ihre Änderung.</translation>
    </message>
    <message>
        <source>Look for them in the project “Recovered”.</source>
        <translation>Suchen Sie sie im Projekt „Wiederhergestellt“.</translation>
    </message>
    <message>
        <source>Look whether it is unlocked, in the desktop's program for passwords, and try again.</source>
        <translation>Prüfen Sie in der Passwortverwaltung der Arbeitsumgebung, ob er entsperrt ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Look whether its address in the preferences, under Cloud, is the right one.</source>
        <translation>Prüfen Sie, ob seine Adresse in den Einstellungen unter „Cloud“ die richtige ist.</translation>
    </message>
    <message>
        <source>Looking at pictures…</source>
        <translation>Bilder werden angesehen…</translation>
    </message>
    <message>
        <source>Looking at the folder…</source>
        <translation>Ordner wird gelesen…</translation>
    </message>
    <message>
        <source>Looking at the sizes of files…</source>
        <translation>Dateigrößen werden ermittelt…</translation>
    </message>
    <message>
        <source>Looking at the store…</source>
        <translation>Datenbank wird geprüft…</translation>
    </message>
    <message>
        <source>Looking at what changed</source>
        <translation>Änderungen werden ermittelt</translation>
    </message>
    <message numerus="yes">
        <source>Looking for pictures that look alike among %@ items…</source>
        <comment>counted</comment>
        <extracomment>for one: Looking for pictures that look alike in %@ item…</extracomment>
        <translation>
            <numerusform>In %@ Objekt werden ähnliche Bilder gesucht…</numerusform>
            <numerusform>In %@ Objekten werden ähnliche Bilder gesucht…</numerusform>
        </translation>
    </message>
    <message>
        <source>Looking for pictures that look alike in the whole library…</source>
        <translation>In der ganzen Bibliothek werden ähnliche Bilder gesucht…</translation>
    </message>
    <message>
        <source>Looks like the picture of this name</source>
        <translation>Sieht aus wie das Bild dieses Namens</translation>
    </message>
    <message>
        <source>Looks like “%@”</source>
        <translation>Sieht aus wie „%@“</translation>
    </message>
    <message>
        <source>Lower, as high or higher</source>
        <translation>Niedriger, genauso hoch oder höher</translation>
    </message>
    <message>
        <source>MENU</source>
        <translation>MENÜ</translation>
    </message>
    <message>
        <source>MP3 audio</source>
        <translation>MP3-Audio</translation>
    </message>
    <message>
        <source>MPEG-4 audio</source>
        <translation>MPEG-4-Audio</translation>
    </message>
    <message>
        <source>MPEG-4 movie</source>
        <translation>MPEG-4-Film</translation>
    </message>
    <message>
        <source>Make a preset, or move and delete those above.</source>
        <translation>Legen Sie eine Voreinstellung an, oder bewegen und löschen Sie die oben stehenden.</translation>
    </message>
    <message>
        <source>Make an app at dropbox.com</source>
        <translation>App auf dropbox.com anlegen</translation>
    </message>
    <message>
        <source>Make room in it and share the files again.</source>
        <translation>Schaffen Sie darin Platz, und teilen Sie die Dateien noch einmal.</translation>
    </message>
    <message>
        <source>Make room there and share the files again.</source>
        <translation>Schaffen Sie dort Platz, und teilen Sie die Dateien noch einmal.</translation>
    </message>
    <message>
        <source>Make that file and its folder writable and see that there is room on the disk, then try again.</source>
        <translation>Machen Sie diese Datei und ihren Ordner beschreibbar, achten Sie auf freien Platz auf dem Datenträger, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Manual order</source>
        <translation>Manuelle Reihenfolge</translation>
    </message>
    <message>
        <source>Markdown document</source>
        <translation>Markdown-Dokument</translation>
    </message>
    <message>
        <source>Matroska movie</source>
        <translation>Matroska-Film</translation>
    </message>
    <message>
        <source>May Zelto look for new versions?</source>
        <translation>Darf Zelto nach neuen Versionen suchen?</translation>
    </message>
    <message>
        <source>Media</source>
        <translation>Medien</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
    <message>
        <source>Menu (F10)</source>
        <translation>Menü (F10)</translation>
    </message>
    <message>
        <source>Meta data is too big - size as binary plist must be less than (perhaps 4k?) some number of bytes</source>
        <translation>Die Metadaten sind zu groß – als binäre plist müssen sie kleiner sein als eine bestimmte Zahl von Bytes (vielleicht 4k?)</translation>
    </message>
    <message>
        <source>Missing files: %@</source>
        <translation>Fehlende Dateien: %@</translation>
    </message>
    <message>
        <source>Modification date</source>
        <translation>Änderungsdatum</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Geändert</translation>
    </message>
    <message>
        <source>Modified before (&lt;), on (=) or since (&gt;) the date, that day included</source>
        <translation>Geändert vor (&lt;), an (=) oder seit (&gt;) dem Datum, dieser Tag eingeschlossen</translation>
    </message>
    <message>
        <source>Mostly of this color; with a code, or ~ and a number behind it, near to it</source>
        <translation>Überwiegend in dieser Farbe; mit einem Code oder mit ~ und einer Zahl dahinter: nahe daran</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <source>Move Export Preset</source>
        <translation>Voreinstellung verschoben</translation>
    </message>
    <message>
        <source>Move Library…</source>
        <translation>Bibliothek verschieben…</translation>
    </message>
    <message>
        <source>Move it away, then try again.</source>
        <translation>Räumen Sie es aus dem Weg, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Move it out of the library, then try again.</source>
        <translation>Verschieben Sie es aus der Bibliothek, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Movie</source>
        <translation>Film</translation>
    </message>
    <message>
        <source>Moving items back…</source>
        <translation>Objekte werden zurückbewegt…</translation>
    </message>
    <message>
        <source>Moving the library…</source>
        <translation>Bibliothek wird verschoben…</translation>
    </message>
    <message>
        <source>Multiple values</source>
        <translation>Mehrere Werte</translation>
    </message>
    <message>
        <source>NEW PRESET</source>
        <translation>NEUE VOREINSTELLUNG</translation>
    </message>
    <message>
        <source>NEW VERSIONS</source>
        <translation>NEUE VERSIONEN</translation>
    </message>
    <message>
        <source>NOTES</source>
        <translation>NOTIZEN</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Name one with --library.</source>
        <translation>Nennen Sie eine mit --library.</translation>
    </message>
    <message>
        <source>Narrower, as wide or wider</source>
        <translation>Schmaler, genauso breit oder breiter</translation>
    </message>
    <message>
        <source>Near-Duplicates</source>
        <translation>Beinahe-Duplikate</translation>
    </message>
    <message>
        <source>Nearer</source>
        <translation>Ähnlicher</translation>
    </message>
    <message>
        <source>Nearness</source>
        <translation>Ähnlichkeit</translation>
    </message>
    <message>
        <source>Never</source>
        <translation>Nie</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <source>New Library…</source>
        <translation>Neue Bibliothek…</translation>
    </message>
    <message>
        <source>New Preset like This…</source>
        <translation>Neue Voreinstellung wie diese…</translation>
    </message>
    <message>
        <source>New Project</source>
        <translation>Neues Projekt</translation>
    </message>
    <message>
        <source>New Project (Ctrl+N)</source>
        <translation>Neues Projekt (Strg+N)</translation>
    </message>
    <message>
        <source>New Smart Folder</source>
        <translation>Neuer intelligenter Ordner</translation>
    </message>
    <message>
        <source>New Tab</source>
        <translation>Neuer Tab</translation>
    </message>
    <message>
        <source>New Tag</source>
        <translation>Neues Schlagwort</translation>
    </message>
    <message>
        <source>New from Template</source>
        <translation>Neu aus Vorlage</translation>
    </message>
    <message>
        <source>New from Template…</source>
        <translation>Neu aus Vorlage…</translation>
    </message>
    <message>
        <source>New live folder created</source>
        <translation>Neuer Live-Ordner angelegt</translation>
    </message>
    <message>
        <source>New project created</source>
        <translation>Neues Projekt angelegt</translation>
    </message>
    <message>
        <source>New, from %@</source>
        <translation>Neu, aus %@</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Next Tab</source>
        <translation>Nächster Tab</translation>
    </message>
    <message>
        <source>Next page (Page Down)</source>
        <translation>Nächste Seite (Bild ab)</translation>
    </message>
    <message>
        <source>No Dropbox is linked.</source>
        <translation>Es ist keine Dropbox verknüpft.</translation>
    </message>
    <message>
        <source>No answer came from the web browser. Start again, and allow it there.</source>
        <translation>Vom Webbrowser kam keine Antwort. Beginnen Sie noch einmal, und erlauben Sie es dort.</translation>
    </message>
    <message>
        <source>No asset could be made of the template “%@”.</source>
        <translation>Aus der Vorlage „%@“ konnte kein Objekt erstellt werden.</translation>
    </message>
    <message>
        <source>No backup was made. %@</source>
        <translation>Es wurde keine Sicherung erstellt. %@</translation>
    </message>
    <message>
        <source>No difference is seen at %ld × %ld pixels.</source>
        <translation>Bei %ld × %ld Pixeln ist kein Unterschied zu sehen.</translation>
    </message>
    <message>
        <source>No folder was chosen.</source>
        <translation>Es wurde kein Ordner gewählt.</translation>
    </message>
    <message>
        <source>No item directory can be made in the library. Check that the library can be written and has space left.</source>
        <translation>In der Bibliothek kann kein Ordner für das Objekt angelegt werden. Prüfen Sie, ob in die Bibliothek geschrieben werden kann und noch Platz ist.</translation>
    </message>
    <message>
        <source>No key came with it: the desktop keeps such keys for itself. Take another one.</source>
        <translation>Es kam keine Taste an: Die Arbeitsumgebung behält solche Tasten für sich. Nehmen Sie eine andere.</translation>
    </message>
    <message>
        <source>No keys</source>
        <translation>Keine Tasten</translation>
    </message>
    <message>
        <source>No picture can be made of it. Open it in another program to see whether it is damaged.</source>
        <translation>Davon kann kein Bild erstellt werden. Öffnen Sie die Datei in einem anderen Programm, um zu sehen, ob sie beschädigt ist.</translation>
    </message>
    <message>
        <source>No picture named “%@” is known by its looks</source>
        <translation>Von keinem Bild namens „%@“ ist bekannt, wie es aussieht</translation>
    </message>
    <message>
        <source>No pictures look alike.</source>
        <translation>Keine Bilder sehen einander ähnlich.</translation>
    </message>
    <message>
        <source>No rating</source>
        <translation>Keine Bewertung</translation>
    </message>
    <message>
        <source>No temporary folder can be made. Free some space there, or name another folder in TMPDIR, and try again (%@).</source>
        <translation>Es kann kein temporärer Ordner angelegt werden. Geben Sie dort Platz frei, oder nennen Sie einen anderen Ordner in TMPDIR, und versuchen Sie es noch einmal (%@).</translation>
    </message>
    <message>
        <source>No uploads yet</source>
        <translation>Noch nichts hochgeladen</translation>
    </message>
    <message>
        <source>No web browser could be opened.</source>
        <translation>Es konnte kein Webbrowser geöffnet werden.</translation>
    </message>
    <message>
        <source>No web browser could be opened. The address is %@</source>
        <translation>Es konnte kein Webbrowser geöffnet werden. Die Adresse ist %@</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>None given</source>
        <translation>Nicht angegeben</translation>
    </message>
    <message>
        <source>None of these can be read as a picture.</source>
        <translation>Nichts davon kann als Bild gelesen werden.</translation>
    </message>
    <message>
        <source>None of this can be imported into a live folder.</source>
        <translation>Nichts davon kann in einen Live-Ordner importiert werden.</translation>
    </message>
    <message>
        <source>None of this can be imported into a project.</source>
        <translation>Nichts davon kann in ein Projekt importiert werden.</translation>
    </message>
    <message>
        <source>None of this can be imported.</source>
        <translation>Nichts davon kann importiert werden.</translation>
    </message>
    <message>
        <source>Not Now</source>
        <translation>Nicht jetzt</translation>
    </message>
    <message>
        <source>Not every file of the live folders could be read.</source>
        <translation>Nicht jede Datei der Live-Ordner konnte gelesen werden.</translation>
    </message>
    <message>
        <source>Not written: %@, and %d more.</source>
        <translation>Nicht geschrieben: %@ und %d weitere.</translation>
    </message>
    <message>
        <source>Not written: %@.</source>
        <translation>Nicht geschrieben: %@.</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Notizen</translation>
    </message>
    <message>
        <source>Notes contain the text</source>
        <translation>Notizen enthalten den Text</translation>
    </message>
    <message>
        <source>Notes contain “%@”</source>
        <translation>Notizen enthalten „%@“</translation>
    </message>
    <message>
        <source>Nothing</source>
        <translation>Keinen Dienst</translation>
    </message>
    <message>
        <source>Nothing about you or your library is sent, and nothing is installed.</source>
        <translation>Über Sie und Ihre Bibliothek wird nichts gesendet, und nichts wird installiert.</translation>
    </message>
    <message>
        <source>Nothing can be written into the folder “%@”.</source>
        <translation>In den Ordner „%@“ kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>Nothing could be read from the damaged library, which is kept as %@
The files in it come back into the project “Recovered” when it is opened.</source>
        <translation>Aus der beschädigten Bibliothek konnte nichts gelesen werden; sie wird als %@ aufbewahrt
Die Dateien darin kommen in das Projekt „Wiederhergestellt“ zurück, wenn sie geöffnet wird.</translation>
    </message>
    <message>
        <source>Nothing has this tag. Drop images here, or drag items onto it in the sidebar.</source>
        <translation>Nichts hat dieses Schlagwort. Legen Sie hier Bilder ab, oder ziehen Sie Objekte auf das Schlagwort in der Seitenleiste.</translation>
    </message>
    <message>
        <source>Nothing in the library matches "%@".</source>
        <translation>Nichts in der Bibliothek passt zu „%@“.</translation>
    </message>
    <message>
        <source>Nothing in “%@” can be shown yet.
What is saved there comes here, or drop images.</source>
        <translation>Aus „%@“ kann noch nichts angezeigt werden.
Was dort gespeichert wird, erscheint hier; oder legen Sie Bilder ab.</translation>
    </message>
    <message>
        <source>Nothing is damaged; the library was left as it is.</source>
        <translation>Nichts ist beschädigt; die Bibliothek blieb, wie sie war.</translation>
    </message>
    <message>
        <source>Nothing is known to be lost.</source>
        <translation>Soweit bekannt, ist nichts verloren.</translation>
    </message>
    <message>
        <source>Nothing matches "%@". Press Esc in the search field to show everything.</source>
        <translation>Nichts passt zu „%@“. Drücken Sie Esc im Suchfeld, um alles anzuzeigen.</translation>
    </message>
    <message>
        <source>Nothing selected</source>
        <translation>Nichts ausgewählt</translation>
    </message>
    <message>
        <source>Nothing to import</source>
        <translation>Nichts zu importieren</translation>
    </message>
    <message>
        <source>Nothing to import!</source>
        <translation>Nichts zu importieren!</translation>
    </message>
    <message>
        <source>Nothing was added or changed in the last days.</source>
        <translation>In den letzten Tagen wurde nichts hinzugefügt oder geändert.</translation>
    </message>
    <message>
        <source>Nothing was counted.</source>
        <translation>Es wurde nichts gezählt.</translation>
    </message>
    <message>
        <source>Nothing was taken from “%@”, since you said no a moment ago. Try again in a few seconds.</source>
        <translation>Von „%@“ wurde nichts angenommen, weil Sie eben abgelehnt haben. Versuchen Sie es in einigen Sekunden noch einmal.</translation>
    </message>
    <message>
        <source>Numbers of the library</source>
        <translation>Zahlen der Bibliothek</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Objects cannot be sorted by "%@".</source>
        <translation>Objekte können nicht nach „%@“ sortiert werden.</translation>
    </message>
    <message>
        <source>Of some pictures, “%@” for one, only a part was exported. %@</source>
        <translation>Von einigen Bildern, zum Beispiel „%@“, wurde nur ein Teil exportiert. %@</translation>
    </message>
    <message>
        <source>Of this size class</source>
        <translation>Von dieser Größenklasse</translation>
    </message>
    <message>
        <source>Of “%@” only a part was exported. %@</source>
        <translation>Von „%@“ wurde nur ein Teil exportiert. %@</translation>
    </message>
    <message>
        <source>Older backup removed: %@</source>
        <translation>Ältere Sicherung entfernt: %@</translation>
    </message>
    <message>
        <source>One on each line. After several files the clipboard holds the link of the last.</source>
        <translation>Je Zeile einer. Nach mehreren Dateien enthält die Zwischenablage den Link der letzten.</translation>
    </message>
    <message>
        <source>Only a part of the picture is there.</source>
        <translation>Es ist nur ein Teil des Bildes da.</translation>
    </message>
    <message>
        <source>Only data goes to standard output; errors go to standard error.</source>
        <translation>Nur Daten gehen an die Standardausgabe; Fehler gehen an die Standardfehlerausgabe.</translation>
    </message>
    <message>
        <source>Only the first %@ files can go to another program at once</source>
        <translation>Nur die ersten %@ Dateien können auf einmal an ein anderes Programm gehen</translation>
    </message>
    <message>
        <source>Only the first frame of it. Export it as it is to keep all.</source>
        <translation>Nur das erste Einzelbild davon. Exportieren Sie das Original, um alle zu behalten.</translation>
    </message>
    <message>
        <source>Only this shade</source>
        <translation>Nur dieser Ton</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Open %@</source>
        <translation>%@ öffnen</translation>
    </message>
    <message>
        <source>Open Cloud Preferences…</source>
        <translation>Cloud-Einstellungen öffnen…</translation>
    </message>
    <message>
        <source>Open Download Page</source>
        <translation>Download-Seite öffnen</translation>
    </message>
    <message>
        <source>Open Library…</source>
        <translation>Bibliothek öffnen…</translation>
    </message>
    <message>
        <source>Open Meta parameter error</source>
        <translation>Fehler: ungültiger OpenMeta-Parameter</translation>
    </message>
    <message>
        <source>Open Zelto</source>
        <translation>Zelto öffnen</translation>
    </message>
    <message>
        <source>Open it once with migration allowed.</source>
        <translation>Öffnen Sie sie einmal mit erlaubter Migration.</translation>
    </message>
    <message>
        <source>Open or create a library first.</source>
        <translation>Öffnen oder erstellen Sie zuerst eine Bibliothek.</translation>
    </message>
    <message>
        <source>Open with Default Program</source>
        <translation>Mit Standardprogramm öffnen</translation>
    </message>
    <message>
        <source>OpenEXR image</source>
        <translation>OpenEXR-Bild</translation>
    </message>
    <message>
        <source>OpenType font</source>
        <translation>OpenType-Schrift</translation>
    </message>
    <message>
        <source>Opening a new library requires Zelto to relaunch</source>
        <translation>Um eine neue Bibliothek zu öffnen, muss Zelto neu gestartet werden</translation>
    </message>
    <message>
        <source>Opens it in the full view</source>
        <translation>Öffnet es in der Vollansicht</translation>
    </message>
    <message>
        <source>Optional: Shared/Zelto</source>
        <translation>Optional: Shared/Zelto</translation>
    </message>
    <message>
        <source>Optional: https://files.example.org</source>
        <translation>Optional: https://files.example.org</translation>
    </message>
    <message>
        <source>Orange</source>
        <translation>Orange</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>Original size</source>
        <translation>Originalgröße</translation>
    </message>
    <message>
        <source>Other format</source>
        <translation>Anderes Format</translation>
    </message>
    <message>
        <source>Other services</source>
        <translation>Andere Dienste</translation>
    </message>
    <message>
        <source>Others</source>
        <translation>Andere</translation>
    </message>
    <message>
        <source>Otherwise pictures of up to 256 KiB are shown from their own file.</source>
        <translation>Sonst werden Bilder bis 256 KiB aus ihrer eigenen Datei angezeigt.</translation>
    </message>
    <message>
        <source>Own server</source>
        <translation>Eigener Server</translation>
    </message>
    <message>
        <source>Own server (WebDAV)</source>
        <translation>Eigener Server (WebDAV)</translation>
    </message>
    <message>
        <source>PDF document</source>
        <translation>PDF-Dokument</translation>
    </message>
    <message>
        <source>PNG image</source>
        <translation>PNG-Bild</translation>
    </message>
    <message>
        <source>PROJECTS</source>
        <translation>PROJEKTE</translation>
    </message>
    <message>
        <source>Package</source>
        <translation>Paket</translation>
    </message>
    <message>
        <source>Page %d of %d</source>
        <translation>Seite %d von %d</translation>
    </message>
    <message>
        <source>Page Down</source>
        <translation>Bild ab</translation>
    </message>
    <message>
        <source>Page Up</source>
        <translation>Bild auf</translation>
    </message>
    <message>
        <source>Pages are not at that port: see whether the address is written right.</source>
        <translation>An diesem Port gibt es keine Seiten: Prüfen Sie, ob die Adresse richtig geschrieben ist.</translation>
    </message>
    <message>
        <source>Panes</source>
        <translation>Bereiche</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Einfügen</translation>
    </message>
    <message>
        <source>Pasted image</source>
        <translation>Eingefügtes Bild</translation>
    </message>
    <message>
        <source>Path of the library</source>
        <translation>Pfad der Bibliothek</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Pause (P)</source>
        <translation>Anhalten (P)</translation>
    </message>
    <message>
        <source>Percentage</source>
        <translation>Prozentsatz</translation>
    </message>
    <message>
        <source>Photoshop brush</source>
        <translation>Photoshop-Pinsel</translation>
    </message>
    <message>
        <source>Photoshop image</source>
        <translation>Photoshop-Bild</translation>
    </message>
    <message>
        <source>Picture (PNG)</source>
        <translation>Bild (PNG)</translation>
    </message>
    <message>
        <source>Pictures are uploaded without an account: whoever has the link sees them.</source>
        <translation>Bilder werden ohne Konto hochgeladen: Wer den Link hat, sieht sie.</translation>
    </message>
    <message>
        <source>Pixelmator image</source>
        <translation>Pixelmator-Bild</translation>
    </message>
    <message>
        <source>Pixen image</source>
        <translation>Pixen-Bild</translation>
    </message>
    <message>
        <source>Plain text document</source>
        <translation>Reines Textdokument</translation>
    </message>
    <message>
        <source>Play (P)</source>
        <translation>Abspielen (P)</translation>
    </message>
    <message>
        <source>Please choose the Folder you want to add</source>
        <translation>Wählen Sie bitte den Ordner, den Sie hinzufügen möchten</translation>
    </message>
    <message>
        <source>Please choose the folder for backups</source>
        <translation>Bitte wählen Sie den Ordner für Sicherungen</translation>
    </message>
    <message>
        <source>Please choose the library that you want to open</source>
        <translation>Wählen Sie bitte die Bibliothek, die Sie öffnen möchten</translation>
    </message>
    <message>
        <source>Please choose the location where the images will be saved</source>
        <translation>Wählen Sie bitte den Ort, an dem die Bilder gespeichert werden sollen</translation>
    </message>
    <message>
        <source>Please choose where to move your library</source>
        <translation>Wählen Sie bitte, wohin Ihre Bibliothek verschoben werden soll</translation>
    </message>
    <message>
        <source>Please pick a name!</source>
        <translation>Bitte wählen Sie einen Namen!</translation>
    </message>
    <message>
        <source>Please re-open Zelto for applying the new settings.</source>
        <translation>Bitte öffnen Sie Zelto neu, damit die neuen Einstellungen wirksam werden.</translation>
    </message>
    <message>
        <source>Please select some items!</source>
        <translation>Bitte wählen Sie einige Objekte aus!</translation>
    </message>
    <message>
        <source>Png export</source>
        <translation>PNG-Export</translation>
    </message>
    <message>
        <source>Portable bitmap image</source>
        <translation>Portable-Bitmap-Bild</translation>
    </message>
    <message>
        <source>PostScript document</source>
        <translation>PostScript-Dokument</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Preferences…</source>
        <translation>Einstellungen…</translation>
    </message>
    <message>
        <source>Presentation</source>
        <translation>Präsentation</translation>
    </message>
    <message>
        <source>Press keys…</source>
        <translation>Tasten drücken…</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Vorschau</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Previous Tab</source>
        <translation>Vorheriger Tab</translation>
    </message>
    <message>
        <source>Previous page (Page Up)</source>
        <translation>Vorherige Seite (Bild auf)</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Druck</translation>
    </message>
    <message>
        <source>Privacy</source>
        <translation>Datenschutz</translation>
    </message>
    <message>
        <source>Progress of the backup</source>
        <translation>Fortschritt der Sicherung</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projekt</translation>
    </message>
    <message>
        <source>Projects</source>
        <translation>Projekte</translation>
    </message>
    <message>
        <source>Property list</source>
        <translation>Eigenschaftsliste</translation>
    </message>
    <message>
        <source>Proposed to be kept. %@.</source>
        <translation>Zum Behalten vorgeschlagen. %@.</translation>
    </message>
    <message>
        <source>Pu&amp;blic address</source>
        <translation>Ö&amp;ffentliche Adresse</translation>
    </message>
    <message>
        <source>Put everything into one zip archive</source>
        <translation>Alles in ein Zip-Archiv packen</translation>
    </message>
    <message>
        <source>Put it back, and open it then.</source>
        <translation>Legen Sie sie zurück, und öffnen Sie sie dann.</translation>
    </message>
    <message>
        <source>Puts the template into the trash (Del)</source>
        <translation>Legt die Vorlage in den Papierkorb (Entf)</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>Quick Export</source>
        <translation>Schnellexport</translation>
    </message>
    <message>
        <source>Quick Export (Ctrl+E)</source>
        <translation>Schnellexport (Strg+E)</translation>
    </message>
    <message>
        <source>Quick Look</source>
        <translation>Schnellansicht</translation>
    </message>
    <message>
        <source>Quick export</source>
        <translation>Schnellexport</translation>
    </message>
    <message>
        <source>QuickTime movie</source>
        <translation>QuickTime-Film</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Quit Zelto and run `zelto recover`; older backups are as they were.</source>
        <translation>Beenden Sie Zelto, und führen Sie `zelto recover` aus; ältere Sicherungen sind unverändert.</translation>
    </message>
    <message>
        <source>Quit Zelto, then recover it.</source>
        <translation>Beenden Sie Zelto, und stellen Sie sie dann wieder her.</translation>
    </message>
    <message>
        <source>Quit anyway</source>
        <translation>Trotzdem beenden</translation>
    </message>
    <message>
        <source>Quit the other one, or choose another library.</source>
        <translation>Beenden Sie das andere Programm, oder wählen Sie eine andere Bibliothek.</translation>
    </message>
    <message>
        <source>Quitting now will lose any changes you have made since the last successful save</source>
        <translation>Wenn Sie jetzt beenden, gehen alle Änderungen seit dem letzten erfolgreichen Sichern verloren</translation>
    </message>
    <message>
        <source>RAR archive</source>
        <translation>RAR-Archiv</translation>
    </message>
    <message>
        <source>Radiance image</source>
        <translation>Radiance-Bild</translation>
    </message>
    <message>
        <source>Rating</source>
        <translation>Bewertung</translation>
    </message>
    <message>
        <source>Rating: %@ of 5</source>
        <translation>Bewertung: %@ von 5</translation>
    </message>
    <message>
        <source>Rating: Multiple values</source>
        <translation>Bewertung: Mehrere Werte</translation>
    </message>
    <message>
        <source>Rating…</source>
        <translation>Bewertung…</translation>
    </message>
    <message>
        <source>Reading live folders…</source>
        <translation>Live-Ordner werden gelesen…</translation>
    </message>
    <message>
        <source>Reading the backup again</source>
        <translation>Sicherung wird noch einmal gelesen</translation>
    </message>
    <message>
        <source>Reading…</source>
        <translation>Wird gelesen…</translation>
    </message>
    <message>
        <source>Reasons…</source>
        <translation>Gründe…</translation>
    </message>
    <message>
        <source>Recent</source>
        <translation>Neueste</translation>
    </message>
    <message>
        <source>Recent shows what is new by itself. Choose the library, a project or a tag.</source>
        <translation>„Neueste“ zeigt von selbst, was neu ist. Wählen Sie die Bibliothek, ein Projekt oder ein Schlagwort.</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Recover it with `zelto recover`, or put back a copy from a backup.</source>
        <translation>Stellen Sie sie mit `zelto recover` wieder her, oder spielen Sie eine Sicherungskopie zurück.</translation>
    </message>
    <message>
        <source>Recover the damaged library</source>
        <translation>Beschädigte Bibliothek wiederherstellen</translation>
    </message>
    <message>
        <source>Recovered</source>
        <translation>Wiederhergestellt</translation>
    </message>
    <message>
        <source>Recovered: %@ items, %@ sidebar entries, %@ tags, %@ memberships.</source>
        <translation>Wiederhergestellt: %@ Objekte, %@ Einträge der Seitenleiste, %@ Schlagwörter, %@ Zuordnungen.</translation>
    </message>
    <message>
        <source>Recover…</source>
        <translation>Wiederherstellen…</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rot</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Redo %@</source>
        <translation>Wiederholen: %@</translation>
    </message>
    <message>
        <source>Reduced to 8 bits a channel. Export it as it is to keep all.</source>
        <translation>Auf 8 Bit je Kanal verringert. Unverändert exportieren, um alles zu behalten.</translation>
    </message>
    <message>
        <source>Refine</source>
        <translation>Filtern</translation>
    </message>
    <message>
        <source>Refine Bar</source>
        <translation>Filterleiste</translation>
    </message>
    <message>
        <source>Register at imgur.com</source>
        <translation>Auf imgur.com registrieren</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove from %@</source>
        <translation>Aus %@ entfernen</translation>
    </message>
    <message>
        <source>Remove from Library</source>
        <translation>Aus Bibliothek entfernen</translation>
    </message>
    <message>
        <source>Remove one first.</source>
        <translation>Entfernen Sie zuerst eine.</translation>
    </message>
    <message>
        <source>Remove something there, as old backups, or choose another disk.</source>
        <translation>Entfernen Sie dort etwas, zum Beispiel alte Sicherungen, oder wählen Sie einen anderen Datenträger.</translation>
    </message>
    <message>
        <source>Remove the tag %@</source>
        <translation>Schlagwort %@ entfernen</translation>
    </message>
    <message>
        <source>Remove what is not needed there, then try again.</source>
        <translation>Entfernen Sie dort, was nicht gebraucht wird, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Remove “%@”?</source>
        <translation>„%@“ entfernen?</translation>
    </message>
    <message>
        <source>Removing items…</source>
        <translation>Objekte werden entfernt…</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>Reopen Closed Tab</source>
        <translation>Geschlossenen Tab wieder öffnen</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Ersetzen</translation>
    </message>
    <message>
        <source>Report copied to clipboard!</source>
        <translation>Bericht in die Zwischenablage kopiert!</translation>
    </message>
    <message>
        <source>Report sent. Thank you!</source>
        <translation>Bericht gesendet. Vielen Dank!</translation>
    </message>
    <message>
        <source>Restoring items…</source>
        <translation>Objekte werden wiederhergestellt…</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Eingabe</translation>
    </message>
    <message>
        <source>Return takes it · Esc leaves · arrows move, Shift by 10, Ctrl resizes</source>
        <translation>Eingabe nimmt auf · Esc bricht ab · Pfeile verschieben, Umschalt um 10, Strg ändert die Größe</translation>
    </message>
    <message>
        <source>Rich text document</source>
        <translation>Formatierter Text</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>SHA-1</source>
        <translation>SHA-1</translation>
    </message>
    <message>
        <source>SHA-1_SHA-1…</source>
        <translation>SHA-1_SHA-1…</translation>
    </message>
    <message>
        <source>SIDEBAR</source>
        <translation>SEITENLEISTE</translation>
    </message>
    <message>
        <source>SIZES</source>
        <translation>GRÖSSEN</translation>
    </message>
    <message>
        <source>SVG %@ is not a valid image</source>
        <translation>SVG %@ ist kein gültiges Bild</translation>
    </message>
    <message>
        <source>Sample project</source>
        <translation>Beispielprojekt</translation>
    </message>
    <message>
        <source>Sample tag</source>
        <translation>Beispielschlagwort</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Save Palette</source>
        <translation>Palette speichern</translation>
    </message>
    <message>
        <source>Save Palette for Adobe Programs (ASE)…</source>
        <translation>Palette für Adobe-Programme speichern (ASE)…</translation>
    </message>
    <message>
        <source>Save Palette for GIMP and Inkscape (GPL)…</source>
        <translation>Palette für GIMP und Inkscape speichern (GPL)…</translation>
    </message>
    <message>
        <source>Save Report</source>
        <translation>Bericht speichern</translation>
    </message>
    <message>
        <source>Save Search</source>
        <translation>Suche speichern</translation>
    </message>
    <message>
        <source>Save Search…</source>
        <translation>Suche speichern…</translation>
    </message>
    <message>
        <source>Save an &amp;Example…</source>
        <translation>&amp;Beispiel speichern…</translation>
    </message>
    <message>
        <source>Save an Example</source>
        <translation>Beispiel speichern</translation>
    </message>
    <message>
        <source>Save the search as a smart folder (Ctrl+S)</source>
        <translation>Suche als intelligenten Ordner speichern (Strg+S)</translation>
    </message>
    <message>
        <source>Save to Screenshots</source>
        <translation>In „Bildschirmfotos“ speichern</translation>
    </message>
    <message>
        <source>Saved to Screenshots.</source>
        <translation>In „Bildschirmfotos“ gespeichert.</translation>
    </message>
    <message>
        <source>Saving to Screenshots…</source>
        <translation>Wird in „Bildschirmfotos“ gespeichert…</translation>
    </message>
    <message>
        <source>Scalable vector graphic</source>
        <translation>Skalierbare Vektorgrafik</translation>
    </message>
    <message>
        <source>Screenshots</source>
        <translation>Bildschirmfotos</translation>
    </message>
    <message>
        <source>Screenshots is for captures. Choose the library, a project or a tag.</source>
        <translation>„Bildschirmfotos“ ist für Aufnahmen bestimmt. Wählen Sie die Bibliothek, ein Projekt oder ein Schlagwort.</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Search for %@</source>
        <translation>Nach %@ suchen</translation>
    </message>
    <message>
        <source>Search for %@ (%@ %% of the picture). Shift adds it to the search</source>
        <translation>Nach %@ suchen (%@ %% des Bildes). Umschalt fügt es der Suche hinzu</translation>
    </message>
    <message>
        <source>Search for less at once.</source>
        <translation>Suchen Sie nach weniger auf einmal.</translation>
    </message>
    <message>
        <source>Search or #token</source>
        <translation>Suche oder #token</translation>
    </message>
    <message>
        <source>Search: %@</source>
        <translation>Suche: %@</translation>
    </message>
    <message>
        <source>Searched as one</source>
        <translation>Wird als Ganzes gesucht</translation>
    </message>
    <message>
        <source>See whether the address is written right.</source>
        <translation>Prüfen Sie, ob die Adresse richtig geschrieben ist.</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Alles auswählen</translation>
    </message>
    <message>
        <source>Select items to export them.</source>
        <translation>Wählen Sie Objekte aus, um sie zu exportieren.</translation>
    </message>
    <message>
        <source>Select items to share them. A right click shows the latest uploads.</source>
        <translation>Wählen Sie Objekte aus, um sie zu teilen. Ein Rechtsklick zeigt, was zuletzt hochgeladen wurde.</translation>
    </message>
    <message>
        <source>Select something in the sidebar.</source>
        <translation>Wählen Sie etwas in der Seitenleiste aus.</translation>
    </message>
    <message>
        <source>Sen&amp;d</source>
        <translation>S&amp;enden</translation>
    </message>
    <message>
        <source>Services</source>
        <translation>Dienste</translation>
    </message>
    <message>
        <source>Set up…</source>
        <translation>Einrichten…</translation>
    </message>
    <message>
        <source>Shades near to it</source>
        <translation>Töne nahe daran</translation>
    </message>
    <message>
        <source>Share</source>
        <translation>Teilen</translation>
    </message>
    <message>
        <source>Share (Ctrl+Shift+C)</source>
        <translation>Teilen (Strg+Umschalt+C)</translation>
    </message>
    <message>
        <source>Share it again.</source>
        <translation>Teilen Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>Share it with another service, or drop a preset on the cloud button that makes it smaller.</source>
        <translation>Teilen Sie sie über einen anderen Dienst, oder ziehen Sie eine Voreinstellung auf den Cloud-Knopf, die sie verkleinert.</translation>
    </message>
    <message>
        <source>Share to</source>
        <translation>Teilen über</translation>
    </message>
    <message>
        <source>Sharing %@ of %@…</source>
        <translation>Wird geteilt: %@ von %@…</translation>
    </message>
    <message>
        <source>Sharing done</source>
        <translation>Teilen abgeschlossen</translation>
    </message>
    <message>
        <source>Sharing…</source>
        <translation>Wird geteilt…</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Umschalt</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>Show &amp;Zelto</source>
        <translation>&amp;Zelto anzeigen</translation>
    </message>
    <message>
        <source>Show &amp;titles below thumbnails</source>
        <translation>&amp;Titel unter Miniaturen anzeigen</translation>
    </message>
    <message>
        <source>Show All</source>
        <translation>Alle anzeigen</translation>
    </message>
    <message>
        <source>Show Imported</source>
        <translation>Importierte anzeigen</translation>
    </message>
    <message>
        <source>Show Last &amp;Report…</source>
        <translation>Letzten &amp;Bericht anzeigen…</translation>
    </message>
    <message>
        <source>Show Library in Files</source>
        <translation>Bibliothek im Dateimanager zeigen</translation>
    </message>
    <message>
        <source>Show Similar</source>
        <translation>Ähnliche anzeigen</translation>
    </message>
    <message>
        <source>Show Zelto</source>
        <translation>Zelto anzeigen</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Alle anzeigen</translation>
    </message>
    <message>
        <source>Show e&amp;xtensions</source>
        <translation>Datei&amp;endungen anzeigen</translation>
    </message>
    <message>
        <source>Show everything, without the search</source>
        <translation>Alles ohne die Suche anzeigen</translation>
    </message>
    <message>
        <source>Show how &amp;many items each row has</source>
        <translation>&amp;Anzahl der Objekte je Zeile anzeigen</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>Im Dateimanager zeigen</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Show the folder that is now in the place of “%@”?</source>
        <translation>Den Ordner anzeigen, der jetzt an der Stelle von „%@“ liegt?</translation>
    </message>
    <message>
        <source>Show the status &amp;icon</source>
        <translation>&amp;Statussymbol anzeigen</translation>
    </message>
    <message>
        <source>Shows every name and what it means.</source>
        <translation>Zeigt alle Namen und ihre Bedeutung.</translation>
    </message>
    <message>
        <source>Side by side</source>
        <translation>Nebeneinander</translation>
    </message>
    <message>
        <source>Side by side (D)</source>
        <translation>Nebeneinander (D)</translation>
    </message>
    <message>
        <source>Sidebar</source>
        <translation>Seitenleiste</translation>
    </message>
    <message>
        <source>Sidebar (Ctrl+B)</source>
        <translation>Seitenleiste (Strg+B)</translation>
    </message>
    <message>
        <source>Sidebar item</source>
        <translation>Eintrag der Seitenleiste</translation>
    </message>
    <message>
        <source>Sidebar order</source>
        <translation>Reihenfolge der Seitenleiste</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Size class is “%@”</source>
        <translation>Größenklasse ist „%@“</translation>
    </message>
    <message>
        <source>Size of text and &amp;pictures of the window</source>
        <translation>Größe von Text &amp;und Bildern des Fensters</translation>
    </message>
    <message>
        <source>Size of the originals: %@</source>
        <translation>Größe der Originale: %@</translation>
    </message>
    <message>
        <source>Size of the thumbnails: %@</source>
        <translation>Größe der Miniaturen: %@</translation>
    </message>
    <message>
        <source>Sketch document</source>
        <translation>Sketch-Dokument</translation>
    </message>
    <message>
        <source>Skip This Version</source>
        <translation>Diese Version überspringen</translation>
    </message>
    <message>
        <source>Smaller Thumbnails</source>
        <translation>Kleinere Miniaturen</translation>
    </message>
    <message>
        <source>Smart Folder</source>
        <translation>Intelligenter Ordner</translation>
    </message>
    <message>
        <source>Some of the changed objects were changed elsewhere in the meantime.</source>
        <translation>Einige der geänderten Objekte wurden inzwischen an anderer Stelle geändert.</translation>
    </message>
    <message>
        <source>Some of the files are unreadable by Zelto and can't be imported!</source>
        <translation>Einige der Dateien sind für Zelto nicht lesbar und können nicht importiert werden!</translation>
    </message>
    <message>
        <source>Something follows the end.</source>
        <translation>Nach dem Ende folgt noch etwas.</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>Sortieren</translation>
    </message>
    <message>
        <source>Sort by</source>
        <translation>Sortieren nach</translation>
    </message>
    <message>
        <source>Sort by %@</source>
        <translation>Nach %@ sortieren</translation>
    </message>
    <message>
        <source>Sort by Hand</source>
        <translation>Von Hand sortieren</translation>
    </message>
    <message>
        <source>Sort by Title</source>
        <translation>Nach Titel sortieren</translation>
    </message>
    <message>
        <source>Sort: %@</source>
        <translation>Sortierung: %@</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>Spreadsheet</source>
        <translation>Tabelle</translation>
    </message>
    <message>
        <source>Start the one it was kept in, such as GNOME Keyring or KWallet, or log in to the desktop again, and try once more.</source>
        <translation>Starten Sie den Schlüsselbund, in dem es aufbewahrt wurde, etwa GNOME Keyring oder KWallet, oder melden Sie sich neu an der Arbeitsumgebung an, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Starting the browser…</source>
        <translation>Browser wird gestartet…</translation>
    </message>
    <message>
        <source>Sto&amp;p</source>
        <translation>An&amp;halten</translation>
    </message>
    <message>
        <source>Stop &amp;Backup</source>
        <translation>&amp;Sicherung anhalten</translation>
    </message>
    <message>
        <source>Stop Import</source>
        <translation>Import anhalten</translation>
    </message>
    <message>
        <source>Stop Syncing</source>
        <translation>Abgleich anhalten</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Angehalten</translation>
    </message>
    <message>
        <source>Stopping…</source>
        <translation>Wird angehalten…</translation>
    </message>
    <message>
        <source>Style sheet</source>
        <translation>Stylesheet</translation>
    </message>
    <message>
        <source>Super</source>
        <translation>Super</translation>
    </message>
    <message>
        <source>Supported files (%@)</source>
        <translation>Unterstützte Dateien (%@)</translation>
    </message>
    <message>
        <source>Sync now</source>
        <translation>Jetzt abgleichen</translation>
    </message>
    <message>
        <source>Syncing %@</source>
        <translation>%@ wird abgeglichen</translation>
    </message>
    <message>
        <source>Syncing did not come to its end. Sync now goes on.</source>
        <translation>Der Abgleich wurde nicht beendet. „Jetzt abgleichen“ setzt ihn fort.</translation>
    </message>
    <message>
        <source>Syncing did not come to its end: %@ of %@ files were taken. Sync now goes on.</source>
        <translation>Der Abgleich wurde nicht beendet: %@ von %@ Dateien wurden übernommen. „Jetzt abgleichen“ setzt ihn fort.</translation>
    </message>
    <message>
        <source>Syncing: %@ files</source>
        <translation>Abgleich: %@ Dateien</translation>
    </message>
    <message>
        <source>Syncing: %@ of %@ files</source>
        <translation>Abgleich: %@ von %@ Dateien</translation>
    </message>
    <message>
        <source>Syncing…</source>
        <translation>Wird abgeglichen…</translation>
    </message>
    <message>
        <source>TAGS</source>
        <translation>SCHLAGWÖRTER</translation>
    </message>
    <message>
        <source>TAGS THAT ZELTO ADDS</source>
        <translation>SCHLAGWÖRTER, DIE ZELTO HINZUFÜGT</translation>
    </message>
    <message>
        <source>TGA image</source>
        <translation>TGA-Bild</translation>
    </message>
    <message>
        <source>THEME</source>
        <translation>ERSCHEINUNGSBILD</translation>
    </message>
    <message>
        <source>TIFF image</source>
        <translation>TIFF-Bild</translation>
    </message>
    <message>
        <source>Tab</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>Tab %d</source>
        <translation>Tab %d</translation>
    </message>
    <message>
        <source>Tab %d of %d</source>
        <translation>Tab %d von %d</translation>
    </message>
    <message>
        <source>Tab goes to the next window</source>
        <translation>Die Tabulatortaste führt zum nächsten Fenster</translation>
    </message>
    <message>
        <source>Tabs</source>
        <translation>Tabs</translation>
    </message>
    <message>
        <source>Tag</source>
        <translation>Schlagwort</translation>
    </message>
    <message>
        <source>Tag already exist!</source>
        <translation>Das Schlagwort gibt es bereits!</translation>
    </message>
    <message>
        <source>Tag needs a name!</source>
        <translation>Das Schlagwort braucht einen Namen!</translation>
    </message>
    <message>
        <source>Tagging…</source>
        <translation>Schlagwörter werden vergeben…</translation>
    </message>
    <message>
        <source>Tags</source>
        <translation>Schlagwörter</translation>
    </message>
    <message>
        <source>Take Back</source>
        <translation>Wieder aufnehmen</translation>
    </message>
    <message>
        <source>Take Screenshot</source>
        <translation>Bildschirmfoto aufnehmen</translation>
    </message>
    <message>
        <source>Take a picture of a window</source>
        <translation>Ein Fenster aufnehmen</translation>
    </message>
    <message>
        <source>Take a picture of an area of the screen</source>
        <translation>Einen Bereich des Bildschirms aufnehmen</translation>
    </message>
    <message>
        <source>Take a picture of the whole screen</source>
        <translation>Den ganzen Bildschirm aufnehmen</translation>
    </message>
    <message>
        <source>Take out of the comparison (X)</source>
        <translation>Aus dem Vergleich nehmen (X)</translation>
    </message>
    <message>
        <source>Take part in &amp;beta versions</source>
        <translation>Auch &amp;Beta-Versionen berücksichtigen</translation>
    </message>
    <message>
        <source>Take the &amp;keywords of pictures as tags</source>
        <translation>Stich&amp;wörter aus Bildern als Schlagwörter übernehmen</translation>
    </message>
    <message>
        <source>Taking files of the library back…</source>
        <translation>Dateien der Bibliothek werden wieder aufgenommen…</translation>
    </message>
    <message>
        <source>Taking the picture…</source>
        <translation>Bildschirmfoto wird aufgenommen…</translation>
    </message>
    <message>
        <source>Tape archive</source>
        <translation>Tar-Archiv</translation>
    </message>
    <message>
        <source>Templates</source>
        <translation>Vorlagen</translation>
    </message>
    <message>
        <source>Test and &amp;Connect</source>
        <translation>Testen und &amp;verbinden</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Text document</source>
        <translation>Textdokument</translation>
    </message>
    <message>
        <source>That area lies on no screen. Choose another one.</source>
        <translation>Dieser Bereich liegt auf keinem Bildschirm. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>That was cancelled.</source>
        <translation>Der Vorgang wurde abgebrochen.</translation>
    </message>
    <message>
        <source>That was the last group.</source>
        <translation>Das war die letzte Gruppe.</translation>
    </message>
    <message>
        <source>That window was closed or hidden before it could be taken. Choose another one.</source>
        <translation>Das Fenster wurde geschlossen oder ausgeblendet, bevor es aufgenommen werden konnte. Wählen Sie ein anderes.</translation>
    </message>
    <message>
        <source>The %@ largest of %@ groups. Look again for the others.</source>
        <translation>Die %@ größten von %@ Gruppen. Für die übrigen noch einmal suchen.</translation>
    </message>
    <message>
        <source>The Zelto that has this library open ended before it answered.</source>
        <translation>Das Zelto, in dem diese Bibliothek geöffnet ist, wurde beendet, bevor es antwortete.</translation>
    </message>
    <message>
        <source>The Zelto that has this library open is ending.</source>
        <translation>Das Zelto, in dem diese Bibliothek geöffnet ist, wird gerade beendet.</translation>
    </message>
    <message>
        <source>The account is forgotten, but its stored password cannot be reached.</source>
        <translation>Das Konto ist vergessen, aber das gespeicherte Passwort ist nicht erreichbar.</translation>
    </message>
    <message>
        <source>The address is too long for a web page.</source>
        <translation>Die Adresse ist zu lang für eine Webseite.</translation>
    </message>
    <message>
        <source>The address says that it holds a picture and does not.</source>
        <translation>Die Adresse gibt an, ein Bild zu enthalten, enthält aber keines.</translation>
    </message>
    <message>
        <source>The announcement of versions is for another program or channel. Check again later.</source>
        <translation>Die Ankündigung der Versionen gilt für ein anderes Programm oder einen anderen Kanal. Suchen Sie später noch einmal.</translation>
    </message>
    <message>
        <source>The announcement of versions is not signed by Zelto's makers, so nothing it says was believed. Check again from another network; if that changes nothing, tell the makers.</source>
        <translation>Die Ankündigung der Versionen ist nicht von den Herstellern von Zelto signiert, daher wurde ihr nichts geglaubt. Suchen Sie aus einem anderen Netzwerk noch einmal; wenn das nichts ändert, verständigen Sie die Hersteller.</translation>
    </message>
    <message>
        <source>The announcement of versions is older than the last one that came, so nothing it says was believed. Check again later, or from another network.</source>
        <translation>Die Ankündigung der Versionen ist älter als die zuletzt erhaltene, daher wurde ihr nichts geglaubt. Suchen Sie später oder aus einem anderen Netzwerk noch einmal.</translation>
    </message>
    <message>
        <source>The answer of %@ is larger than one that tells of an upload.</source>
        <translation>Die Antwort von %@ ist größer als eine, die ein Hochladen bestätigt.</translation>
    </message>
    <message>
        <source>The answer of Dropbox cannot be understood.</source>
        <translation>Die Antwort von Dropbox ist nicht verständlich.</translation>
    </message>
    <message>
        <source>The answer of Dropbox cannot be understood. Check the address that stands in the settings.</source>
        <translation>Die Antwort von Dropbox ist nicht verständlich. Prüfen Sie die Adresse in den Einstellungen.</translation>
    </message>
    <message>
        <source>The app key does not allow that.</source>
        <translation>Der App-Schlüssel erlaubt das nicht.</translation>
    </message>
    <message>
        <source>The archive could not be written to “%@”.</source>
        <translation>Das Archiv konnte nicht nach „%@“ geschrieben werden.</translation>
    </message>
    <message>
        <source>The archive holds nothing that can be imported.</source>
        <translation>Das Archiv enthält nichts, was importiert werden kann.</translation>
    </message>
    <message>
        <source>The archive is damaged.</source>
        <translation>Das Archiv ist beschädigt.</translation>
    </message>
    <message>
        <source>The backup lacks something: %@</source>
        <translation>Der Sicherung fehlt etwas: %@</translation>
    </message>
    <message>
        <source>The backup needs %@ in “%@”, where %@ are free.</source>
        <translation>Die Sicherung braucht %@ in „%@“, wo %@ frei sind.</translation>
    </message>
    <message>
        <source>The backup was stopped. Older ones are as they were.</source>
        <translation>Die Sicherung wurde angehalten. Ältere sind unverändert.</translation>
    </message>
    <message>
        <source>The browser can't capture this page.</source>
        <translation>Der Browser kann diese Seite nicht aufnehmen.</translation>
    </message>
    <message>
        <source>The browser can't load it; try again later, or in another browser (%@).</source>
        <translation>Der Browser kann sie nicht laden; versuchen Sie es später noch einmal oder in einem anderen Browser (%@).</translation>
    </message>
    <message>
        <source>The browser that draws the page ended unexpectedly. Try again; if it happens each time, see whether chromium starts by itself.</source>
        <translation>Der Browser, der die Seite darstellt, wurde unerwartet beendet. Versuchen Sie es noch einmal; geschieht es jedes Mal, prüfen Sie, ob chromium allein startet.</translation>
    </message>
    <message>
        <source>The browser took too long with this page. Try again, or capture only the visible area.</source>
        <translation>Der Browser hat für diese Seite zu lange gebraucht. Versuchen Sie es noch einmal, oder nehmen Sie nur den sichtbaren Bereich auf.</translation>
    </message>
    <message>
        <source>The browser “%@” that the setting WebCaptureBrowser names can't be run: install chromium, or change the setting.</source>
        <translation>Der Browser „%@“, den die Einstellung WebCaptureBrowser nennt, kann nicht ausgeführt werden: Installieren Sie chromium, oder ändern Sie die Einstellung.</translation>
    </message>
    <message>
        <source>The capture was cancelled.</source>
        <translation>Die Aufnahme wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The captured picture can be written neither into the library nor into Pictures. Zelto holds it until it quits, and asks about it then: make room before.</source>
        <translation>Die Aufnahme kann weder in die Bibliothek noch in den Ordner „Bilder“ geschrieben werden. Zelto behält sie bis zum Beenden und fragt dann danach: Schaffen Sie vorher Platz.</translation>
    </message>
    <message>
        <source>The captured picture can't be stored</source>
        <translation>Die Aufnahme kann nicht gespeichert werden</translation>
    </message>
    <message>
        <source>The captured picture is in the library.</source>
        <translation>Die Aufnahme ist in der Bibliothek.</translation>
    </message>
    <message>
        <source>The changes cannot be saved.</source>
        <translation>Die Änderungen können nicht gespeichert werden.</translation>
    </message>
    <message>
        <source>The color as a name or a number, such as #3366cc</source>
        <translation>Die Farbe als Name oder Zahl, zum Beispiel #3366cc</translation>
    </message>
    <message>
        <source>The condition cannot be read at character %d:</source>
        <translation>Die Bedingung ist ab Zeichen %d nicht lesbar:</translation>
    </message>
    <message>
        <source>The condition is too long.</source>
        <translation>Die Bedingung ist zu lang.</translation>
    </message>
    <message>
        <source>The copy was cancelled</source>
        <translation>Das Kopieren wurde abgebrochen</translation>
    </message>
    <message>
        <source>The counts of “%@” are damaged. Erase them to go on.</source>
        <translation>Die Zählungen von „%@“ sind beschädigt. Löschen Sie sie, um fortzufahren.</translation>
    </message>
    <message>
        <source>The counts of “%@” could not be erased: %@</source>
        <translation>Die Zählungen von „%@“ konnten nicht gelöscht werden: %@</translation>
    </message>
    <message>
        <source>The counts of “%@” could not be read: %@</source>
        <translation>Die Zählungen von „%@“ konnten nicht gelesen werden: %@</translation>
    </message>
    <message>
        <source>The counts of “%@” could not be written. Another Zelto may be at it, or the folder can't be written in.</source>
        <translation>Die Zählungen von „%@“ konnten nicht geschrieben werden. Vielleicht arbeitet ein anderes Zelto daran, oder in den Ordner kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>The counts stay on this machine. Here is all there is:</source>
        <translation>Die Zählungen bleiben auf diesem Rechner. Hier steht alles, was vorhanden ist:</translation>
    </message>
    <message>
        <source>The damaged store is kept as %@</source>
        <translation>Die beschädigte Datenbank wird als %@ aufbewahrt</translation>
    </message>
    <message>
        <source>The data model cannot be read.</source>
        <translation>Das Datenmodell kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The desktop can't be asked, since there is no session bus. Start Zelto within a desktop session.</source>
        <translation>Die Arbeitsumgebung kann nicht gefragt werden, da es keinen Sitzungsbus gibt. Starten Sie Zelto in einer grafischen Sitzung.</translation>
    </message>
    <message>
        <source>The desktop did not allow it. Its settings say which programs may start by themselves.</source>
        <translation>Die Arbeitsumgebung hat es nicht erlaubt. In ihren Einstellungen steht, welche Programme von selbst starten dürfen.</translation>
    </message>
    <message>
        <source>The desktop did not give these keys. Choose them in the desktop's keyboard settings.</source>
        <translation>Die Arbeitsumgebung hat diese Tasten nicht freigegeben. Wählen Sie sie in den Tastatureinstellungen der Arbeitsumgebung.</translation>
    </message>
    <message>
        <source>The desktop gives no keys.</source>
        <translation>Die Arbeitsumgebung gibt keine Tasten frei.</translation>
    </message>
    <message>
        <source>The desktop refused.</source>
        <translation>Die Arbeitsumgebung hat abgelehnt.</translation>
    </message>
    <message>
        <source>The desktop took a picture, and it can't be read. Try again.</source>
        <translation>Die Arbeitsumgebung hat ein Bildschirmfoto aufgenommen, das sich nicht lesen lässt. Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The desktop's portal ended before it answered. Try again.</source>
        <translation>Das Portal der Arbeitsumgebung wurde beendet, bevor es antwortete. Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The difference of these two cannot be shown.</source>
        <translation>Der Unterschied dieser beiden kann nicht angezeigt werden.</translation>
    </message>
    <message>
        <source>The disk can't share files between backups, so that each takes the room of the whole library.</source>
        <translation>Auf dem Datenträger können Sicherungen keine Dateien gemeinsam nutzen, daher braucht jede den Platz der ganzen Bibliothek.</translation>
    </message>
    <message>
        <source>The disk is full. Free some space and import it again.</source>
        <translation>Der Datenträger ist voll. Geben Sie Speicherplatz frei, und importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>The disk is full. Make room on it, and try again.</source>
        <translation>Der Datenträger ist voll. Schaffen Sie dort Platz, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The disk may be failing; use another one. Older backups are as they were.</source>
        <translation>Der Datenträger fällt möglicherweise aus; verwenden Sie einen anderen. Ältere Sicherungen sind unverändert.</translation>
    </message>
    <message>
        <source>The disk reported an error while the library was used.</source>
        <translation>Der Datenträger hat einen Fehler gemeldet, während die Bibliothek verwendet wurde.</translation>
    </message>
    <message>
        <source>The disk reports an error. Check the disk and its connection before anything else.</source>
        <translation>Der Datenträger meldet einen Fehler. Prüfen Sie zuallererst den Datenträger und seine Verbindung.</translation>
    </message>
    <message>
        <source>The disk takes no files of that size or that name, as those with the file system FAT; choose a folder on one with ext4, Btrfs or XFS.</source>
        <translation>Der Datenträger nimmt keine Dateien dieser Größe oder dieses Namens auf, wie solche mit dem Dateisystem FAT; wählen Sie einen Ordner auf einem mit ext4, Btrfs oder XFS.</translation>
    </message>
    <message>
        <source>The disk with the temporary files is full. Free some space, or name another folder for them in TMPDIR, and import it again.</source>
        <translation>Der Datenträger mit den temporären Dateien ist voll. Geben Sie Speicherplatz frei, oder nennen Sie in TMPDIR einen anderen Ordner dafür, und importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>The display gave no picture. Try again; if it stays so, log out and in.</source>
        <translation>Die Anzeige hat kein Bild geliefert. Versuchen Sie es noch einmal; bleibt es dabei, melden Sie sich ab und wieder an.</translation>
    </message>
    <message>
        <source>The display is gone. Start Zelto again.</source>
        <translation>Die Anzeige ist nicht mehr da. Starten Sie Zelto neu.</translation>
    </message>
    <message>
        <source>The document would be larger than 2 GB, which other programs do not open: make it smaller, or of fewer layers.</source>
        <translation>Das Dokument wäre größer als 2 GB, was andere Programme nicht öffnen: Verkleinern Sie es, oder verwenden Sie weniger Ebenen.</translation>
    </message>
    <message>
        <source>The drive with the library is gone.</source>
        <translation>Das Laufwerk mit der Bibliothek ist nicht mehr da.</translation>
    </message>
    <message>
        <source>The existing item stays where it is.</source>
        <translation>Das vorhandene Objekt bleibt, wo es ist.</translation>
    </message>
    <message>
        <source>The export to “%@” was stopped: %d of %d files were written.</source>
        <translation>Der Export nach „%@“ wurde angehalten: %d von %d Dateien wurden geschrieben.</translation>
    </message>
    <message>
        <source>The export was cancelled.</source>
        <translation>Der Export wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The file is damaged or incomplete.</source>
        <translation>Die Datei ist beschädigt oder unvollständig.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>Die Datei ist leer.</translation>
    </message>
    <message>
        <source>The file is empty. Save it again in the program that made it.</source>
        <translation>Die Datei ist leer. Speichern Sie sie noch einmal in dem Programm, aus dem sie stammt.</translation>
    </message>
    <message>
        <source>The file is missing.</source>
        <translation>Die Datei fehlt.</translation>
    </message>
    <message>
        <source>The file is missing. Put it back where it was, or import it again.</source>
        <translation>Die Datei fehlt. Legen Sie sie an ihren Ort zurück, oder importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>The file is not a library database.</source>
        <translation>Die Datei ist keine Bibliotheksdatenbank.</translation>
    </message>
    <message>
        <source>The file of "%@" is missing.</source>
        <translation>Die Datei von „%@“ fehlt.</translation>
    </message>
    <message>
        <source>The file was uploaded, but your server makes no link: “%@”.</source>
        <translation>Die Datei wurde hochgeladen, aber Ihr Server erstellt keinen Link: „%@“.</translation>
    </message>
    <message>
        <source>The file was uploaded, but your server makes no links.</source>
        <translation>Die Datei wurde hochgeladen, aber Ihr Server erstellt keine Links.</translation>
    </message>
    <message>
        <source>The file with this digest</source>
        <translation>Die Datei mit dieser Prüfsumme</translation>
    </message>
    <message>
        <source>The file “%@” cannot be made</source>
        <translation>Die Datei „%@“ kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>The first %@ of %@ are shown; the others stay as they are.</source>
        <translation>Die ersten %@ von %@ werden gezeigt; die anderen bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>The first of them is “%@”: %@</source>
        <translation>Das erste davon ist „%@“: %@</translation>
    </message>
    <message>
        <source>The first of these that is set up: CloudApp, Dropbox, Imgur, your own server, the others. Now: %@.</source>
        <translation>Der erste davon, der eingerichtet ist: CloudApp, Dropbox, Imgur, Ihr eigener Server, die übrigen. Jetzt: %@.</translation>
    </message>
    <message>
        <source>The folder cannot be opened. Change its permissions and import it again</source>
        <translation>Der Ordner kann nicht geöffnet werden. Ändern Sie seine Zugriffsrechte, und importieren Sie ihn noch einmal</translation>
    </message>
    <message>
        <source>The folder for “%@” does not exist.</source>
        <translation>Der Ordner für „%@“ existiert nicht.</translation>
    </message>
    <message>
        <source>The folder holds nothing that can be imported.</source>
        <translation>Der Ordner enthält nichts, was importiert werden kann.</translation>
    </message>
    <message>
        <source>The folder of the library does not exist.</source>
        <translation>Der Ordner der Bibliothek existiert nicht.</translation>
    </message>
    <message>
        <source>The folder “%@” cannot be made</source>
        <translation>Der Ordner „%@“ kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>The folder “%@” could not be made</source>
        <translation>Der Ordner „%@“ konnte nicht angelegt werden</translation>
    </message>
    <message>
        <source>The folder “%@” is in the trash. Put it back, and its items come back with it.</source>
        <translation>Der Ordner „%@“ liegt im Papierkorb. Stellen Sie ihn wieder her, dann kommen auch seine Objekte zurück.</translation>
    </message>
    <message>
        <source>The header “%@” cannot be sent: it has a line break, or no name.</source>
        <translation>Die Kopfzeile „%@“ kann nicht gesendet werden: Sie enthält einen Zeilenumbruch oder hat keinen Namen.</translation>
    </message>
    <message>
        <source>The images of %d pages are still being downloaded. Try again when some are done.</source>
        <translation>Die Bilder von %d Seiten werden noch heruntergeladen. Versuchen Sie es noch einmal, wenn einige fertig sind.</translation>
    </message>
    <message>
        <source>The images that a page has imported at once may have %@ together.</source>
        <translation>Die Bilder, die eine Seite auf einmal importieren lässt, dürfen zusammen %@ groß sein.</translation>
    </message>
    <message>
        <source>The import is kept: go on with it once that is mended, or forget it.</source>
        <translation>Der Import bleibt erhalten: Setzen Sie ihn fort, sobald das behoben ist, oder verwerfen Sie ihn.</translation>
    </message>
    <message>
        <source>The import was cancelled. Import it again if you want it.</source>
        <translation>Der Import wurde abgebrochen. Importieren Sie sie noch einmal, wenn Sie sie behalten möchten.</translation>
    </message>
    <message>
        <source>The internet connection seem to be unavailable.</source>
        <translation>Anscheinend besteht keine Internetverbindung.</translation>
    </message>
    <message>
        <source>The items could not be counted</source>
        <translation>Die Objekte konnten nicht gezählt werden</translation>
    </message>
    <message>
        <source>The items it finds will still remain inside your library.</source>
        <translation>Die gefundenen Objekte bleiben in Ihrer Bibliothek.</translation>
    </message>
    <message>
        <source>The key path "%@" leads nowhere:</source>
        <translation>Der Schlüsselpfad „%@“ führt nirgendwohin:</translation>
    </message>
    <message>
        <source>The keyring cannot be used: %@</source>
        <translation>Der Schlüsselbund kann nicht verwendet werden: %@</translation>
    </message>
    <message>
        <source>The keyring has no password for “%@” any more.</source>
        <translation>Der Schlüsselbund enthält kein Passwort für „%@“ mehr.</translation>
    </message>
    <message>
        <source>The keyring with your passwords is locked.</source>
        <translation>Der Schlüsselbund mit Ihren Passwörtern ist gesperrt.</translation>
    </message>
    <message>
        <source>The largest: %ld × %ld pixels</source>
        <translation>Das größte: %ld × %ld Pixel</translation>
    </message>
    <message>
        <source>The last one: %@, %@, of which new: %@</source>
        <translation>Die letzte: %@, %@, davon neu: %@</translation>
    </message>
    <message>
        <source>The last seven days</source>
        <translation>Die letzten sieben Tage</translation>
    </message>
    <message>
        <source>The layered document takes its place.</source>
        <translation>Das Dokument mit Ebenen tritt an seine Stelle.</translation>
    </message>
    <message>
        <source>The library cannot be opened.</source>
        <translation>Die Bibliothek kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>The library cannot be opened: there is something that is no file in the place of one of its files.</source>
        <translation>Die Bibliothek kann nicht geöffnet werden: An der Stelle einer ihrer Dateien liegt etwas, das keine Datei ist.</translation>
    </message>
    <message>
        <source>The library cannot be written.</source>
        <translation>Die Bibliothek kann nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>The library could not be brought to this version; it is unchanged.</source>
        <translation>Die Bibliothek konnte nicht auf diese Version gebracht werden; sie ist unverändert.</translation>
    </message>
    <message>
        <source>The library could not be looked through: %@</source>
        <translation>Die Bibliothek konnte nicht durchsucht werden: %@</translation>
    </message>
    <message>
        <source>The library could not be read</source>
        <translation>Die Bibliothek konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>The library could not be saved yet. Delete the original once it is, if you do not need it.</source>
        <translation>Die Bibliothek konnte noch nicht gespeichert werden. Löschen Sie das Original erst danach, wenn Sie es nicht mehr brauchen.</translation>
    </message>
    <message>
        <source>The library could not be saved: %@</source>
        <translation>Die Bibliothek konnte nicht gespeichert werden: %@</translation>
    </message>
    <message>
        <source>The library could not be saved: %@ Import it again once that is mended.</source>
        <translation>Die Bibliothek konnte nicht gespeichert werden: %@ Importieren Sie sie noch einmal, sobald das behoben ist.</translation>
    </message>
    <message>
        <source>The library has it already, as “%@”; that item was put in its place.</source>
        <translation>In der Bibliothek gibt es sie bereits als „%@“; dieses Objekt wurde stattdessen verwendet.</translation>
    </message>
    <message>
        <source>The library has it already, as “%@”; the new copy was discarded.</source>
        <translation>In der Bibliothek gibt es sie bereits als „%@“; die neue Kopie wurde verworfen.</translation>
    </message>
    <message>
        <source>The library has no data model.</source>
        <translation>Die Bibliothek hat kein Datenmodell.</translation>
    </message>
    <message>
        <source>The library has no items of this kind.</source>
        <translation>Die Bibliothek enthält keine Objekte dieser Art.</translation>
    </message>
    <message>
        <source>The library is at “%@” already.</source>
        <translation>Die Bibliothek liegt bereits unter „%@“.</translation>
    </message>
    <message>
        <source>The library is being written by another process.</source>
        <translation>Ein anderer Prozess schreibt gerade in die Bibliothek.</translation>
    </message>
    <message>
        <source>The library is damaged</source>
        <translation>Die Bibliothek ist beschädigt</translation>
    </message>
    <message>
        <source>The library is inside “%@” itself.</source>
        <translation>Die Bibliothek liegt selbst in „%@“.</translation>
    </message>
    <message>
        <source>The library is inside “%@”, which it would replace.</source>
        <translation>Die Bibliothek liegt in „%@“ und würde es ersetzen.</translation>
    </message>
    <message>
        <source>The library is not open.</source>
        <translation>Die Bibliothek ist nicht geöffnet.</translation>
    </message>
    <message>
        <source>The library is not open. Open it and add the folder again.</source>
        <translation>Die Bibliothek ist nicht geöffnet. Öffnen Sie sie, und fügen Sie den Ordner noch einmal hinzu.</translation>
    </message>
    <message>
        <source>The library is not open. The picture lies in “%@” until Zelto quits.</source>
        <translation>Die Bibliothek ist nicht geöffnet. Das Bildschirmfoto liegt in „%@“, bis Zelto beendet wird.</translation>
    </message>
    <message>
        <source>The library is open.</source>
        <translation>Die Bibliothek ist geöffnet.</translation>
    </message>
    <message>
        <source>The library then holds both.</source>
        <translation>Die Bibliothek enthält dann beide.</translation>
    </message>
    <message>
        <source>The library was closed. Open it and import it again.</source>
        <translation>Die Bibliothek wurde geschlossen. Öffnen Sie sie, und importieren Sie die Datei noch einmal.</translation>
    </message>
    <message>
        <source>The library was made by a newer version of the application.</source>
        <translation>Die Bibliothek wurde mit einer neueren Version des Programms erstellt.</translation>
    </message>
    <message>
        <source>The library was made by an older version of the application.</source>
        <translation>Die Bibliothek wurde mit einer älteren Version des Programms erstellt.</translation>
    </message>
    <message>
        <source>The library was not moved.</source>
        <translation>Die Bibliothek wurde nicht verschoben.</translation>
    </message>
    <message>
        <source>The library was recovered</source>
        <translation>Die Bibliothek wurde wiederhergestellt</translation>
    </message>
    <message>
        <source>The library “%@” can't be created.</source>
        <translation>Die Bibliothek „%@“ kann nicht erstellt werden.</translation>
    </message>
    <message>
        <source>The library “%@” can't be written: %@.</source>
        <translation>Die Bibliothek „%@“ kann nicht geschrieben werden: %@.</translation>
    </message>
    <message>
        <source>The library “%@” is in the trash.</source>
        <translation>Die Bibliothek „%@“ liegt im Papierkorb.</translation>
    </message>
    <message>
        <source>The library “%@” is in use by another Zelto.</source>
        <translation>Die Bibliothek „%@“ wird von einem anderen Zelto verwendet.</translation>
    </message>
    <message>
        <source>The library “%@” is not there any more.</source>
        <translation>Die Bibliothek „%@“ ist nicht mehr vorhanden.</translation>
    </message>
    <message>
        <source>The library's database cannot be opened.</source>
        <translation>Die Datenbank der Bibliothek kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>The library's database is damaged from its first byte.</source>
        <translation>Die Datenbank der Bibliothek ist vom ersten Byte an beschädigt.</translation>
    </message>
    <message>
        <source>The library's database is damaged.</source>
        <translation>Die Datenbank der Bibliothek ist beschädigt.</translation>
    </message>
    <message>
        <source>The library's database is damaged: %@</source>
        <translation>Die Datenbank der Bibliothek ist beschädigt: %@</translation>
    </message>
    <message>
        <source>The library's database reported an error.</source>
        <translation>Die Datenbank der Bibliothek hat einen Fehler gemeldet.</translation>
    </message>
    <message>
        <source>The library, unless another one was chosen; ~/.local/share without the variable.</source>
        <translation>Die Bibliothek, sofern keine andere gewählt wurde; ~/.local/share ohne die Variable.</translation>
    </message>
    <message>
        <source>The live folder is not in the sidebar any more. Choose another one.</source>
        <translation>Der Live-Ordner ist nicht mehr in der Seitenleiste. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>The longer side of each size, at most. Everything above is large.</source>
        <translation>Die längere Seite jeder Größe, höchstens. Alles darüber ist groß.</translation>
    </message>
    <message>
        <source>The method must be “POST”, “PUT” or “PATCH”.</source>
        <translation>Die Methode muss „POST“, „PUT“ oder „PATCH“ sein.</translation>
    </message>
    <message>
        <source>The name is empty. Please type a name.</source>
        <translation>Der Name ist leer. Bitte geben Sie einen Namen ein.</translation>
    </message>
    <message>
        <source>The name is too long. Please use a shorter name.</source>
        <translation>Der Name ist zu lang. Bitte verwenden Sie einen kürzeren.</translation>
    </message>
    <message>
        <source>The name must be one line of letters and signs, without “/”.</source>
        <translation>Der Name muss aus einer Zeile mit Buchstaben und Zeichen bestehen, ohne „/“.</translation>
    </message>
    <message>
        <source>The network changed meanwhile. Try again.</source>
        <translation>Das Netzwerk hat inzwischen gewechselt. Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The one to keep</source>
        <translation>Was behalten wird</translation>
    </message>
    <message>
        <source>The original folders will still remain on your disk.</source>
        <translation>Die ursprünglichen Ordner bleiben auf Ihrem Datenträger.</translation>
    </message>
    <message>
        <source>The other program did not save “%@”. Save it there as a file, and drop that here.</source>
        <translation>Das andere Programm hat „%@“ nicht gespeichert. Speichern Sie es dort als Datei, und ziehen Sie diese hierher.</translation>
    </message>
    <message>
        <source>The page at “%@” names an image on this computer or in its own network (“%@”), so nothing was imported</source>
        <translation>Die Seite unter „%@“ nennt ein Bild auf diesem Computer oder in seinem eigenen Netzwerk („%@“), daher wurde nichts importiert</translation>
    </message>
    <message>
        <source>The page crashed in the browser. Try again, or capture only the visible area.</source>
        <translation>Die Seite ist im Browser abgestürzt. Versuchen Sie es noch einmal, oder nehmen Sie nur den sichtbaren Bereich auf.</translation>
    </message>
    <message>
        <source>The page did not load in full; this is what was there.</source>
        <translation>Die Seite wurde nicht vollständig geladen; dies war vorhanden.</translation>
    </message>
    <message>
        <source>The page has more elements than layers are useful; %d small ones are on the layers of what they lie in.</source>
        <translation>Die Seite hat mehr Elemente, als Ebenen sinnvoll sind; %d kleine liegen auf den Ebenen dessen, worin sie sich befinden.</translation>
    </message>
    <message>
        <source>The page is being captured.</source>
        <translation>Die Seite wird aufgenommen.</translation>
    </message>
    <message>
        <source>The page is longer than %d pixels; what is below was cut off.</source>
        <translation>Die Seite ist länger als %d Pixel; was darunter liegt, wurde abgeschnitten.</translation>
    </message>
    <message>
        <source>The page sends its visitors around in a circle.</source>
        <translation>Die Seite leitet ihre Besucher im Kreis.</translation>
    </message>
    <message>
        <source>The palette cannot be written to “%@”: %@</source>
        <translation>Die Palette kann nicht nach „%@“ geschrieben werden: %@</translation>
    </message>
    <message>
        <source>The password is kept in the desktop's keyring and nowhere else.</source>
        <translation>Das Passwort wird nur im Schlüsselbund der Arbeitsumgebung aufbewahrt.</translation>
    </message>
    <message>
        <source>The password of your server is not known.</source>
        <translation>Das Passwort Ihres Servers ist nicht bekannt.</translation>
    </message>
    <message>
        <source>The passwords for “%@” are not known any more. Import its description again in the preferences, under Cloud.</source>
        <translation>Die Passwörter für „%@“ sind nicht mehr bekannt. Importieren Sie die Beschreibung noch einmal in den Einstellungen unter „Cloud“.</translation>
    </message>
    <message>
        <source>The passwords that were entered for it are forgotten, too. What was uploaded stays where it is.</source>
        <translation>Auch die dafür eingegebenen Passwörter werden vergessen. Was hochgeladen wurde, bleibt, wo es ist.</translation>
    </message>
    <message>
        <source>The picture "%@" can't be converted.</source>
        <translation>Das Bild „%@“ kann nicht umgewandelt werden.</translation>
    </message>
    <message>
        <source>The picture "%@" can't be opened.</source>
        <translation>Das Bild „%@“ kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>The picture "%@" could not be drawn: it needs too much memory.</source>
        <translation>Das Bild „%@“ konnte nicht gezeichnet werden: Es braucht zu viel Speicher.</translation>
    </message>
    <message>
        <source>The picture "%@" could not be drawn: it took too long.</source>
        <translation>Das Bild „%@“ konnte nicht gezeichnet werden: Es hat zu lange gedauert.</translation>
    </message>
    <message>
        <source>The picture "%@" could not be drawn: the renderer stopped.</source>
        <translation>Das Bild „%@“ konnte nicht gezeichnet werden: Das Zeichenprogramm wurde beendet.</translation>
    </message>
    <message>
        <source>The picture "%@" was not drawn: that was cancelled.</source>
        <translation>Das Bild „%@“ wurde nicht gezeichnet: Der Vorgang wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The picture can't be written to “%@”.</source>
        <translation>Das Bild kann nicht nach „%@“ geschrieben werden.</translation>
    </message>
    <message>
        <source>The picture in the address is damaged.</source>
        <translation>Das Bild in der Adresse ist beschädigt.</translation>
    </message>
    <message>
        <source>The picture is not in the library yet: Zelto goes on with its import when it opens the library the next time.</source>
        <translation>Das Bild ist noch nicht in der Bibliothek: Zelto setzt seinen Import fort, wenn es die Bibliothek das nächste Mal öffnet.</translation>
    </message>
    <message>
        <source>The picture is not in the library. It lies in “%@”.</source>
        <translation>Das Bild ist nicht in der Bibliothek. Es liegt in „%@“.</translation>
    </message>
    <message>
        <source>The preferences can't be written, so the library would not be found.</source>
        <translation>Die Einstellungen können nicht geschrieben werden, daher würde die Bibliothek nicht gefunden.</translation>
    </message>
    <message>
        <source>The preferences could not be written (%@).</source>
        <translation>Die Einstellungen konnten nicht geschrieben werden (%@).</translation>
    </message>
    <message>
        <source>The preferences, which `zelto defaults` reads and changes; ~/.config without the variable.</source>
        <translation>Die Einstellungen, die `zelto defaults` liest und ändert; ~/.config ohne die Variable.</translation>
    </message>
    <message>
        <source>The program "zelto-render" that draws pictures can't be started: %@.</source>
        <translation>Das Programm „zelto-render“, das Bilder zeichnet, kann nicht gestartet werden: %@.</translation>
    </message>
    <message>
        <source>The program "zelto-render" that draws pictures ends as soon as it is started.</source>
        <translation>Das Programm „zelto-render“, das Bilder zeichnet, wird sofort nach dem Start beendet.</translation>
    </message>
    <message>
        <source>The program "zelto-render" that draws pictures is missing; install Zelto again.</source>
        <translation>Das Programm „zelto-render“, das Bilder zeichnet, fehlt; installieren Sie Zelto noch einmal.</translation>
    </message>
    <message>
        <source>The project items will still remain inside your library.</source>
        <translation>Die Objekte des Projekts bleiben in Ihrer Bibliothek.</translation>
    </message>
    <message>
        <source>The projects of this folder are empty.</source>
        <translation>Die Projekte dieses Ordners sind leer.</translation>
    </message>
    <message>
        <source>The property list cannot be read.</source>
        <translation>Die Eigenschaftsliste kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>The proxy does not lead to %@: %@</source>
        <translation>Der Proxy führt nicht zu %@: %@</translation>
    </message>
    <message>
        <source>The recovered library could not be put in place.</source>
        <translation>Die wiederhergestellte Bibliothek konnte nicht an ihren Platz gebracht werden.</translation>
    </message>
    <message>
        <source>The report could not be removed: %@</source>
        <translation>Der Bericht konnte nicht entfernt werden: %@</translation>
    </message>
    <message>
        <source>The report was not sent: %@</source>
        <translation>Der Bericht wurde nicht gesendet: %@</translation>
    </message>
    <message>
        <source>The request cannot be carried out.</source>
        <translation>Die Anfrage kann nicht ausgeführt werden.</translation>
    </message>
    <message>
        <source>The request was cancelled.</source>
        <translation>Die Anfrage wurde abgebrochen.</translation>
    </message>
    <message>
        <source>The same file more than once</source>
        <translation>Dieselbe Datei mehrfach</translation>
    </message>
    <message>
        <source>The same file more than once, with one of these digests</source>
        <translation>Dieselbe Datei mehrfach, mit einer dieser Prüfsummen</translation>
    </message>
    <message>
        <source>The search of this smart folder cannot be understood.</source>
        <translation>Die Suche dieses intelligenten Ordners ist nicht verständlich.</translation>
    </message>
    <message>
        <source>The server answered with an error (%d); this is the page it sent.</source>
        <translation>Der Server hat mit einem Fehler geantwortet (%d); dies ist die Seite, die er gesendet hat.</translation>
    </message>
    <message>
        <source>The server broke off the connection.</source>
        <translation>Der Server hat die Verbindung abgebrochen.</translation>
    </message>
    <message>
        <source>The server can't be spoken with safely.</source>
        <translation>Mit dem Server ist keine sichere Verbindung möglich.</translation>
    </message>
    <message>
        <source>The server did not answer in time.</source>
        <translation>Der Server hat nicht rechtzeitig geantwortet.</translation>
    </message>
    <message>
        <source>The server of the announcements leads to an address that is not encrypted, which Zelto does not go to. Check again later.</source>
        <translation>Der Server der Ankündigungen führt zu einer unverschlüsselten Adresse, die Zelto nicht aufruft. Suchen Sie später noch einmal.</translation>
    </message>
    <message>
        <source>The server of the reports leads to an address that is not encrypted. Nothing was sent.</source>
        <translation>Der Server der Berichte führt zu einer unverschlüsselten Adresse. Es wurde nichts gesendet.</translation>
    </message>
    <message>
        <source>The server says that it has no such page.</source>
        <translation>Der Server meldet, dass er keine solche Seite hat.</translation>
    </message>
    <message>
        <source>The server sends on to “%@”, for which the passwords are not meant.</source>
        <translation>Der Server leitet zu „%@“ weiter, wofür die Passwörter nicht bestimmt sind.</translation>
    </message>
    <message>
        <source>The server sends on to “%@”, which is not for the public.</source>
        <translation>Der Server leitet zu „%@“ weiter, das nicht öffentlich ist.</translation>
    </message>
    <message>
        <source>The server sent a page of text in place of the picture.</source>
        <translation>Der Server hat statt des Bildes eine Textseite gesendet.</translation>
    </message>
    <message>
        <source>The server sent nothing.</source>
        <translation>Der Server hat nichts gesendet.</translation>
    </message>
    <message>
        <source>The server takes no connections.</source>
        <translation>Der Server nimmt keine Verbindungen an.</translation>
    </message>
    <message>
        <source>The server's certificate is not valid, so that nobody can tell whose page it is.</source>
        <translation>Das Zertifikat des Servers ist nicht gültig, daher lässt sich nicht sagen, wessen Seite es ist.</translation>
    </message>
    <message>
        <source>The service did not say where the file is.</source>
        <translation>Der Dienst hat nicht mitgeteilt, wo die Datei liegt.</translation>
    </message>
    <message>
        <source>The service that was chosen for uploads is not there any more. Choose another one in the preferences, under Cloud.</source>
        <translation>Der zum Hochladen gewählte Dienst ist nicht mehr vorhanden. Wählen Sie in den Einstellungen unter „Cloud“ einen anderen.</translation>
    </message>
    <message>
        <source>The service that was chosen is not there any more. Choose another one.</source>
        <translation>Der gewählte Dienst ist nicht mehr vorhanden. Wählen Sie einen anderen.</translation>
    </message>
    <message>
        <source>The sidebar item it was to go to does not exist any more. Import it into another one.</source>
        <translation>Den Eintrag der Seitenleiste, in den sie kommen sollte, gibt es nicht mehr. Importieren Sie sie in einen anderen.</translation>
    </message>
    <message>
        <source>The smart folder looks in the whole library: it finds %@, and shows %@ of those that are shown here.</source>
        <translation>Der intelligente Ordner durchsucht die ganze Bibliothek: Er findet %@; von den hier gezeigten enthält er %@.</translation>
    </message>
    <message>
        <source>The smart folder looks in the whole library: it finds %@; %@ are shown here.</source>
        <translation>Der intelligente Ordner durchsucht die ganze Bibliothek: Er findet %@; hier werden %@ gezeigt.</translation>
    </message>
    <message>
        <source>The smart folder looks in the whole library: it finds %@; 1 is shown here.</source>
        <translation>Der intelligente Ordner durchsucht die ganze Bibliothek: Er findet %@; hier wird 1 gezeigt.</translation>
    </message>
    <message>
        <source>The stored password cannot be reached: there is no keyring.</source>
        <translation>Das gespeicherte Passwort ist nicht erreichbar: Es gibt keinen Schlüsselbund.</translation>
    </message>
    <message>
        <source>The system has too few watches for all folders, so that this one is looked at in intervals. Raise fs.inotify.max_user_watches to %d.</source>
        <translation>Das System kann nicht alle Ordner überwachen, daher wird dieser in Abständen durchgesehen. Erhöhen Sie fs.inotify.max_user_watches auf %d.</translation>
    </message>
    <message>
        <source>The tags of “%@” could not be written to the file; the library keeps them.</source>
        <translation>Die Schlagwörter von „%@“ konnten nicht in die Datei geschrieben werden; die Bibliothek behält sie.</translation>
    </message>
    <message>
        <source>The tags or the notes of a file are too long for it. Use fewer or shorter ones.</source>
        <translation>Die Schlagwörter oder die Notizen einer Datei sind zu lang für sie. Verwenden Sie weniger oder kürzere.</translation>
    </message>
    <message>
        <source>The template “%@” holds nothing that can be an asset</source>
        <translation>Die Vorlage „%@“ enthält nichts, was ein Objekt werden kann</translation>
    </message>
    <message>
        <source>The trash holds too many files named “%@”. Empty it and try again.</source>
        <translation>Der Papierkorb enthält zu viele Dateien mit dem Namen „%@“. Leeren Sie ihn, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>The two are the same in every pixel.</source>
        <translation>Die beiden sind in jedem Pixel gleich.</translation>
    </message>
    <message>
        <source>The value cannot be archived.</source>
        <translation>Der Wert kann nicht archiviert werden.</translation>
    </message>
    <message>
        <source>The value cannot be written as a property list.</source>
        <translation>Der Wert kann nicht als Eigenschaftsliste geschrieben werden.</translation>
    </message>
    <message>
        <source>The value of “%@” cannot be sent.</source>
        <translation>Der Wert von „%@“ kann nicht gesendet werden.</translation>
    </message>
    <message>
        <source>Their files come back into the project “Recovered”.</source>
        <translation>Ihre Dateien kommen in das Projekt „Wiederhergestellt“ zurück.</translation>
    </message>
    <message>
        <source>Their files stay where they are, and are followed as they change. What many files leave at once is asked about, and what is on a disk that is away is kept until it is back. Keywords, tags and thumbnails are as set for imports.</source>
        <translation>Ihre Dateien bleiben, wo sie sind, und Änderungen daran werden übernommen. Verschwinden viele Dateien auf einmal, wird nachgefragt; was auf einem nicht verbundenen Datenträger liegt, bleibt erhalten, bis er wieder da ist. Stichwörter, Schlagwörter und Miniaturen richten sich nach den Einstellungen für Importe.</translation>
    </message>
    <message>
        <source>There are %d services already.</source>
        <translation>Es gibt bereits %d Dienste.</translation>
    </message>
    <message>
        <source>There are no presets. Make one below.</source>
        <translation>Es gibt keine Voreinstellungen. Erstellen Sie unten eine.</translation>
    </message>
    <message>
        <source>There are no templates yet. Add files that you begin with again and again, or open one whose name ends in .zttemplate with Zelto.</source>
        <translation>Es gibt noch keine Vorlagen. Fügen Sie Dateien hinzu, mit denen Sie immer wieder beginnen, oder öffnen Sie mit Zelto eine, deren Name auf .zttemplate endet.</translation>
    </message>
    <message>
        <source>There are too many brackets in brackets.</source>
        <translation>Es sind zu viele Klammern ineinander verschachtelt.</translation>
    </message>
    <message>
        <source>There is a file of that name already. Share it again.</source>
        <translation>Eine Datei dieses Namens gibt es bereits. Teilen Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>There is a file “%@” already.</source>
        <translation>Eine Datei „%@“ gibt es bereits.</translation>
    </message>
    <message>
        <source>There is a template “%@” already. Rename the new one, or remove the other one, and open it again.</source>
        <translation>Eine Vorlage „%@“ gibt es bereits. Benennen Sie die neue um, oder entfernen Sie die andere, und öffnen Sie sie dann noch einmal.</translation>
    </message>
    <message>
        <source>There is a “\” that means nothing.</source>
        <translation>Ein „\“ steht da, das nichts bedeutet.</translation>
    </message>
    <message>
        <source>There is half a character in a text.</source>
        <translation>In einem Text steht ein halbes Zeichen.</translation>
    </message>
    <message>
        <source>There is no "%@" in this library.</source>
        <translation>In dieser Bibliothek gibt es kein „%@“.</translation>
    </message>
    <message>
        <source>There is no WebDAV folder at “%@”.</source>
        <translation>Unter „%@“ gibt es keinen WebDAV-Ordner.</translation>
    </message>
    <message>
        <source>There is no backup of this library in that folder.</source>
        <translation>In diesem Ordner gibt es keine Sicherung dieser Bibliothek.</translation>
    </message>
    <message>
        <source>There is no connection to the internet.</source>
        <translation>Es besteht keine Verbindung zum Internet.</translation>
    </message>
    <message>
        <source>There is no connection to the network.</source>
        <translation>Es besteht keine Verbindung zum Netzwerk.</translation>
    </message>
    <message>
        <source>There is no display here that could be captured. Start Zelto within a desktop session.</source>
        <translation>Hier gibt es keine Anzeige, die aufgenommen werden könnte. Starten Sie Zelto in einer grafischen Sitzung.</translation>
    </message>
    <message>
        <source>There is no folder at “%@”. Connect its drive, or put the folder back.</source>
        <translation>Unter „%@“ gibt es keinen Ordner. Verbinden Sie das Laufwerk, oder legen Sie den Ordner zurück.</translation>
    </message>
    <message>
        <source>There is no folder to download into.</source>
        <translation>Es gibt keinen Ordner zum Herunterladen.</translation>
    </message>
    <message>
        <source>There is no folder “%@” for backups.</source>
        <translation>Es gibt keinen Ordner „%@“ für Sicherungen.</translation>
    </message>
    <message>
        <source>There is no folder “%@”. Choose another one, or look whether its disk is there.</source>
        <translation>Den Ordner „%@“ gibt es nicht. Wählen Sie einen anderen, oder prüfen Sie, ob der Datenträger da ist.</translation>
    </message>
    <message>
        <source>There is no format with the number %d.</source>
        <translation>Es gibt kein Format mit der Nummer %d.</translation>
    </message>
    <message>
        <source>There is no keyring in which a password could be kept safely.</source>
        <translation>Es gibt keinen Schlüsselbund, in dem ein Passwort sicher aufbewahrt werden könnte.</translation>
    </message>
    <message>
        <source>There is no library at “%@”.</source>
        <translation>Unter „%@“ gibt es keine Bibliothek.</translation>
    </message>
    <message>
        <source>There is no library database at this place.</source>
        <translation>An diesem Ort gibt es keine Bibliotheksdatenbank.</translation>
    </message>
    <message>
        <source>There is no library to import into.</source>
        <translation>Es gibt keine Bibliothek, in die importiert werden könnte.</translation>
    </message>
    <message>
        <source>There is no open library to draw.</source>
        <translation>Es gibt keine geöffnete Bibliothek, die gezeichnet werden könnte.</translation>
    </message>
    <message>
        <source>There is no picture of it. Export it as it is.</source>
        <translation>Es gibt kein Bild davon. Exportieren Sie es unverändert.</translation>
    </message>
    <message>
        <source>There is no picture or file on the clipboard</source>
        <translation>In der Zwischenablage ist weder ein Bild noch eine Datei</translation>
    </message>
    <message>
        <source>There is no picture to write.</source>
        <translation>Es gibt kein Bild, das geschrieben werden könnte.</translation>
    </message>
    <message>
        <source>There is no room left for attributes. Use fewer or shorter tags and notes, or free some space.</source>
        <translation>Für Attribute ist kein Platz mehr. Verwenden Sie weniger oder kürzere Schlagwörter und Notizen, oder geben Sie Speicherplatz frei.</translation>
    </message>
    <message>
        <source>There is no screen that could be captured</source>
        <translation>Es gibt keinen Bildschirm, der aufgenommen werden könnte</translation>
    </message>
    <message>
        <source>There is no server named %@.</source>
        <translation>Es gibt keinen Server namens %@.</translation>
    </message>
    <message>
        <source>There is no such file.</source>
        <translation>Die Datei gibt es nicht.</translation>
    </message>
    <message>
        <source>There is no such file. Check its name.</source>
        <translation>Die Datei gibt es nicht. Prüfen Sie ihren Namen.</translation>
    </message>
    <message>
        <source>There is no such folder. Check its name.</source>
        <translation>Den Ordner gibt es nicht. Prüfen Sie seinen Namen.</translation>
    </message>
    <message>
        <source>There is no such server: see whether the address is written right.</source>
        <translation>Den Server gibt es nicht: Prüfen Sie, ob die Adresse richtig geschrieben ist.</translation>
    </message>
    <message>
        <source>There is no token “%@”. Put it in quotes to find it as a text.</source>
        <translation>Das Token „%@“ gibt es nicht. Setzen Sie es in Anführungszeichen, um es als Text zu finden.</translation>
    </message>
    <message>
        <source>There is no way to that server: see whether the network is there.</source>
        <translation>Zu diesem Server führt kein Weg: Prüfen Sie, ob das Netzwerk verfügbar ist.</translation>
    </message>
    <message>
        <source>There is no window to take · Esc leaves</source>
        <translation>Kein Fenster zum Aufnehmen vorhanden · Esc bricht ab</translation>
    </message>
    <message>
        <source>There is not enough memory for a picture of this page. Capture only the visible area, or a smaller width.</source>
        <translation>Der Speicher reicht für ein Bild dieser Seite nicht aus. Nehmen Sie nur den sichtbaren Bereich oder eine geringere Breite auf.</translation>
    </message>
    <message>
        <source>There is not enough memory to convert it.</source>
        <translation>Der Speicher reicht zum Umwandeln nicht aus.</translation>
    </message>
    <message>
        <source>There is not enough memory to show it.</source>
        <translation>Der Speicher reicht zum Anzeigen nicht aus.</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>Der Speicher reicht nicht aus.</translation>
    </message>
    <message>
        <source>There is not enough room on the disk to save.</source>
        <translation>Auf dem Datenträger ist nicht genug Platz zum Speichern.</translation>
    </message>
    <message>
        <source>There is nothing between the brackets.</source>
        <translation>Zwischen den Klammern steht nichts.</translation>
    </message>
    <message>
        <source>There is nothing between the quotes.</source>
        <translation>Zwischen den Anführungszeichen steht nichts.</translation>
    </message>
    <message>
        <source>There is nothing here.</source>
        <translation>Hier gibt es nichts.</translation>
    </message>
    <message>
        <source>There is nothing left to compare it with.</source>
        <translation>Es ist nichts mehr da, womit es verglichen werden könnte.</translation>
    </message>
    <message>
        <source>There is too little free space in “%@”.</source>
        <translation>In „%@“ ist zu wenig Speicherplatz frei.</translation>
    </message>
    <message>
        <source>There was an error building up the data file.</source>
        <translation>Beim Aufbau der Datendatei ist ein Fehler aufgetreten.</translation>
    </message>
    <message>
        <source>These files were not imported, or not wholly</source>
        <translation>Diese Dateien wurden nicht oder nicht vollständig importiert</translation>
    </message>
    <message>
        <source>These keys can't be taken from other programs. Choose keys with Ctrl, Alt or Super, or a function key.</source>
        <translation>Diese Tasten können anderen Programmen nicht entzogen werden. Wählen Sie Tasten mit Strg, Alt oder Super oder eine Funktionstaste.</translation>
    </message>
    <message>
        <source>They may be what is left of imports that were cut off, or belong to items that the library lost. Zelto can take them back into the project “Recovered”, where you can look at them, or remove them with the files in them.</source>
        <translation>Sie können von abgebrochenen Importen übrig sein oder zu Objekten gehören, die der Bibliothek verloren gegangen sind. Zelto kann sie in das Projekt „Wiederhergestellt“ aufnehmen, wo Sie sie ansehen können, oder sie samt den Dateien darin entfernen.</translation>
    </message>
    <message>
        <source>They stay as they are in %@. What is in them is damaged, or of no kind that can be imported.</source>
        <translation>Sie bleiben unverändert in %@. Was sie enthalten, ist beschädigt oder von einer Art, die nicht importiert werden kann.</translation>
    </message>
    <message>
        <source>They travel with a file, and an import takes those it brings.</source>
        <translation>Sie begleiten die Datei, und ein Import übernimmt, was sie mitbringt.</translation>
    </message>
    <message>
        <source>They were deleted, or moved to where Zelto does not look. If you remove them from the library, they leave their projects too. If a drive is not connected, keep them: they are there again when it is.</source>
        <translation>Sie wurden gelöscht oder dorthin verschoben, wo Zelto nicht nachsieht. Wenn Sie sie aus der Bibliothek entfernen, verlassen sie auch ihre Projekte. Ist ein Laufwerk nicht verbunden, behalten Sie sie: Sie sind wieder da, sobald es verbunden ist.</translation>
    </message>
    <message>
        <source>This Zelto was built without an address that announces new versions. Look where you got it.</source>
        <translation>Dieses Zelto wurde ohne eine Adresse gebaut, die neue Versionen ankündigt. Sehen Sie dort nach, woher Sie es haben.</translation>
    </message>
    <message>
        <source>This bracket closes nothing.</source>
        <translation>Diese Klammer schließt nichts.</translation>
    </message>
    <message>
        <source>This bracket is not closed.</source>
        <translation>Diese Klammer ist nicht geschlossen.</translation>
    </message>
    <message>
        <source>This desktop lets no program choose a part of its screen. Choose it in the desktop's own dialog, which Capture Area opens.</source>
        <translation>Diese Arbeitsumgebung lässt kein Programm einen Teil ihres Bildschirms wählen. Wählen Sie ihn in ihrem eigenen Dialog, den „Bereich aufnehmen“ öffnet.</translation>
    </message>
    <message>
        <source>This desktop offers no such service. Install xdg-desktop-portal and the part of it for your desktop, as xdg-desktop-portal-gnome, -kde or -wlr, and log in again.</source>
        <translation>Diese Arbeitsumgebung bietet keinen solchen Dienst. Installieren Sie xdg-desktop-portal und dessen Teil für Ihre Arbeitsumgebung, etwa xdg-desktop-portal-gnome, -kde oder -wlr, und melden Sie sich neu an.</translation>
    </message>
    <message>
        <source>This display lets no program take keys. %@</source>
        <translation>Diese Anzeige lässt kein Programm Tasten belegen. %@</translation>
    </message>
    <message>
        <source>This file cannot be read.</source>
        <translation>Diese Datei kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>This file cannot be shown.</source>
        <translation>Diese Datei kann nicht angezeigt werden.</translation>
    </message>
    <message>
        <source>This file is too large to be a description.</source>
        <translation>Diese Datei ist zu groß für eine Beschreibung.</translation>
    </message>
    <message>
        <source>This format is not known; only 1 is. A newer version of Zelto may know it.</source>
        <translation>Dieses Format ist nicht bekannt, nur 1. Eine neuere Version von Zelto kennt es vielleicht.</translation>
    </message>
    <message>
        <source>This is more than can be searched at once; from here on it is left out.</source>
        <translation>Das ist mehr, als auf einmal gesucht werden kann; ab hier bleibt es unberücksichtigt.</translation>
    </message>
    <message>
        <source>This is no text in UTF-8.</source>
        <translation>Dies ist kein Text in UTF-8.</translation>
    </message>
    <message>
        <source>This is not the address of an upload; it begins with https:// and has no placeholders.</source>
        <translation>Dies ist keine Adresse zum Hochladen; sie beginnt mit https:// und hat keine Platzhalter.</translation>
    </message>
    <message>
        <source>This is not the answer that Zelto is waiting for.</source>
        <translation>Dies ist nicht die Antwort, auf die Zelto wartet.</translation>
    </message>
    <message>
        <source>This is the whole report. It says where in the program it happened, and nothing of your library. Copy or save it to pass it on.</source>
        <translation>Dies ist der ganze Bericht. Er nennt die Stelle im Programm, an der es geschah, und nichts aus Ihrer Bibliothek. Kopieren oder speichern Sie ihn, um ihn weiterzugeben.</translation>
    </message>
    <message>
        <source>This is the whole report. It says where in the program it happened, and nothing of your library. It is sent only if you send it.</source>
        <translation>Dies ist der ganze Bericht. Er nennt die Stelle im Programm, an der es geschah, und nichts aus Ihrer Bibliothek. Er wird nur gesendet, wenn Sie ihn senden.</translation>
    </message>
    <message>
        <source>This key can't be used. Take a letter, a digit or a function key.</source>
        <translation>Diese Taste kann nicht verwendet werden. Nehmen Sie einen Buchstaben, eine Ziffer oder eine Funktionstaste.</translation>
    </message>
    <message>
        <source>This keyboard has no %@. Choose other keys.</source>
        <translation>Auf dieser Tastatur gibt es %@ nicht. Wählen Sie andere Tasten.</translation>
    </message>
    <message>
        <source>This live folder is off: Enable in its menu has it looked at again.</source>
        <translation>Dieser Live-Ordner ist deaktiviert: „Aktivieren“ in seinem Menü lässt ihn wieder durchsehen.</translation>
    </message>
    <message>
        <source>This live folder is off: what is in “%@” is neither looked at nor shown.</source>
        <translation>Dieser Live-Ordner ist deaktiviert: Was in „%@“ liegt, wird weder durchgesehen noch angezeigt.</translation>
    </message>
    <message>
        <source>This month</source>
        <translation>Dieser Monat</translation>
    </message>
    <message>
        <source>This page has too many elements to be captured in layers. Capture it as a picture.</source>
        <translation>Diese Seite hat zu viele Elemente, um in Ebenen aufgenommen zu werden. Nehmen Sie sie als Bild auf.</translation>
    </message>
    <message>
        <source>This quote is not closed.</source>
        <translation>Dieses Anführungszeichen ist nicht geschlossen.</translation>
    </message>
    <message>
        <source>This smart folder has nothing to search for.</source>
        <translation>Dieser intelligente Ordner hat nichts, wonach er suchen kann.</translation>
    </message>
    <message>
        <source>This system cannot keep programs that draw pictures away from your files.</source>
        <translation>Dieses System kann Programme, die Bilder zeichnen, nicht von Ihren Dateien fernhalten.</translation>
    </message>
    <message>
        <source>This system has neither Landlock nor seccomp to keep what reads it from your files. Use a Linux kernel that has them.</source>
        <translation>Dieses System hat weder Landlock noch seccomp, um das lesende Programm von Ihren Dateien fernzuhalten. Verwenden Sie einen Linux-Kernel, der sie hat.</translation>
    </message>
    <message>
        <source>This year</source>
        <translation>Dieses Jahr</translation>
    </message>
    <message>
        <source>Thumbnail size</source>
        <translation>Größe der Miniaturen</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Title contains the text</source>
        <translation>Titel enthält den Text</translation>
    </message>
    <message>
        <source>Title contains “%@”</source>
        <translation>Titel enthält „%@“</translation>
    </message>
    <message>
        <source>Today</source>
        <translation>Heute</translation>
    </message>
    <message>
        <source>Today, %@</source>
        <translation>Heute, %@</translation>
    </message>
    <message>
        <source>Tolerance</source>
        <translation>Toleranz</translation>
    </message>
    <message>
        <source>Too many brackets stand in these; what they hold is left out.</source>
        <translation>Darin stehen zu viele Klammern; was sie enthalten, bleibt unberücksichtigt.</translation>
    </message>
    <message>
        <source>Too many requests came from the browser at once; some were left out. Try again in a few seconds.</source>
        <translation>Vom Browser kamen zu viele Anfragen auf einmal; einige wurden ausgelassen. Versuchen Sie es in einigen Sekunden noch einmal.</translation>
    </message>
    <message>
        <source>TrueType font</source>
        <translation>TrueType-Schrift</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Noch einmal versuchen</translation>
    </message>
    <message>
        <source>Try again in %d minutes.</source>
        <translation>Versuchen Sie es in %d Minuten noch einmal.</translation>
    </message>
    <message>
        <source>Try again in a minute.</source>
        <translation>Versuchen Sie es in einer Minute noch einmal.</translation>
    </message>
    <message>
        <source>Try again later, or look whether the host in the preferences is the right one.</source>
        <translation>Versuchen Sie es später noch einmal, oder prüfen Sie, ob der Host in den Einstellungen der richtige ist.</translation>
    </message>
    <message>
        <source>Try again later.</source>
        <translation>Versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>Try again.</source>
        <translation>Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Two pictures of the same size in pixels show their difference</source>
        <translation>Zwei Bilder mit denselben Maßen in Pixeln zeigen ihren Unterschied</translation>
    </message>
    <message>
        <source>Type an address and press Enter to see the page.</source>
        <translation>Geben Sie eine Adresse ein, und drücken Sie die Eingabetaste, um die Seite zu sehen.</translation>
    </message>
    <message>
        <source>Type the address of a web page.</source>
        <translation>Geben Sie die Adresse einer Webseite ein.</translation>
    </message>
    <message>
        <source>USAGE</source>
        <translation>NUTZUNG</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Undo %@</source>
        <translation>Rückgängig: %@</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Unbekannt</translation>
    </message>
    <message>
        <source>Unlock it and try again.</source>
        <translation>Entsperren Sie ihn, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Hoch</translation>
    </message>
    <message>
        <source>Update Search</source>
        <translation>Suche aktualisieren</translation>
    </message>
    <message>
        <source>Updating your library</source>
        <translation>Ihre Bibliothek wird aktualisiert</translation>
    </message>
    <message>
        <source>Upload cancelled</source>
        <translation>Hochladen abgebrochen</translation>
    </message>
    <message>
        <source>Upload done, url copied to clipboard!</source>
        <translation>Hochladen abgeschlossen, Adresse in die Zwischenablage kopiert!</translation>
    </message>
    <message>
        <source>Uploaded %d files to the cloud!</source>
        <translation>%d Dateien in die Cloud hochgeladen!</translation>
    </message>
    <message>
        <source>Uploading to %@</source>
        <translation>Wird zu %@ hochgeladen</translation>
    </message>
    <message>
        <source>Uploads what is selected and copies the link. A preset dropped here exports it first. A right click shows the latest uploads.</source>
        <translation>Lädt die Auswahl hoch und kopiert den Link. Eine hierher gezogene Voreinstellung exportiert sie zuvor. Ein Rechtsklick zeigt, was zuletzt hochgeladen wurde.</translation>
    </message>
    <message>
        <source>Use It for Sharin&amp;g</source>
        <translation>Zum Teilen ver&amp;wenden</translation>
    </message>
    <message>
        <source>Use This Folder</source>
        <translation>Diesen Ordner verwenden</translation>
    </message>
    <message>
        <source>Use an address that begins with https://.</source>
        <translation>Verwenden Sie eine Adresse, die mit https:// beginnt.</translation>
    </message>
    <message>
        <source>Use the existing item here</source>
        <translation>Vorhandenes Objekt hier verwenden</translation>
    </message>
    <message>
        <source>Use the folder that is in the place of this one</source>
        <translation>Den Ordner verwenden, der an der Stelle von diesem liegt</translation>
    </message>
    <message>
        <source>Username or Password are invalid</source>
        <translation>Benutzername oder Passwort ist ungültig</translation>
    </message>
    <message>
        <source>Verify Library…</source>
        <translation>Bibliothek prüfen…</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Ansicht</translation>
    </message>
    <message>
        <source>Violet</source>
        <translation>Violett</translation>
    </message>
    <message>
        <source>Visible area</source>
        <translation>Sichtbarer Bereich</translation>
    </message>
    <message>
        <source>Wait until it has finished, then try again.</source>
        <translation>Warten Sie, bis es fertig ist, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Wait until it is done, then try again.</source>
        <translation>Warten Sie, bis sie fertig ist, und versuchen Sie es dann noch einmal.</translation>
    </message>
    <message>
        <source>Wait until tomorrow or upgrade your CloudApp account.</source>
        <translation>Warten Sie bis morgen, oder erweitern Sie Ihr CloudApp-Konto.</translation>
    </message>
    <message>
        <source>Waiting for the keyring…</source>
        <translation>Auf den Schlüsselbund wird gewartet…</translation>
    </message>
    <message>
        <source>Waiting for you to allow it in the web browser…</source>
        <translation>Es wird gewartet, bis Sie es im Webbrowser erlauben…</translation>
    </message>
    <message>
        <source>Waveform audio</source>
        <translation>Waveform-Audio</translation>
    </message>
    <message>
        <source>Web Page…</source>
        <translation>Webseite…</translation>
    </message>
    <message>
        <source>Web page</source>
        <translation>Webseite</translation>
    </message>
    <message>
        <source>Web pages cannot be captured now. Restart Zelto, and try again.</source>
        <translation>Webseiten können jetzt nicht aufgenommen werden. Starten Sie Zelto neu, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>WebM movie</source>
        <translation>WebM-Film</translation>
    </message>
    <message>
        <source>WebP image</source>
        <translation>WebP-Bild</translation>
    </message>
    <message>
        <source>WebP, HEIC, AVIF, JPEG XL, and Sketch documents that are single files.</source>
        <translation>WebP, HEIC, AVIF, JPEG XL und Sketch-Dokumente, die einzelne Dateien sind.</translation>
    </message>
    <message>
        <source>What a description says</source>
        <translation>Was eine Beschreibung angibt</translation>
    </message>
    <message>
        <source>What a page sent is too long. Choose fewer images.</source>
        <translation>Was eine Seite gesendet hat, ist zu lang. Wählen Sie weniger Bilder.</translation>
    </message>
    <message>
        <source>What came is no announcement of versions. If you are in a network that asks for a login first, log in and check again.</source>
        <translation>Was ankam, ist keine Ankündigung von Versionen. Falls Sie in einem Netzwerk sind, das zuerst eine Anmeldung verlangt, melden Sie sich an, und suchen Sie noch einmal.</translation>
    </message>
    <message>
        <source>What is captured</source>
        <translation>Was aufgenommen wird</translation>
    </message>
    <message>
        <source>What is left of an import cannot be read: %@.</source>
        <translation>Was von einem Import übrig ist, kann nicht gelesen werden: %@.</translation>
    </message>
    <message>
        <source>What is mounted there is out of reach. Connect its drive again.</source>
        <translation>Was dort eingehängt ist, ist nicht erreichbar. Verbinden Sie das Laufwerk wieder.</translation>
    </message>
    <message>
        <source>What is searched for</source>
        <translation>Wonach gesucht wird</translation>
    </message>
    <message>
        <source>What is selected in the sidebar is empty.</source>
        <translation>Die Auswahl in der Seitenleiste ist leer.</translation>
    </message>
    <message>
        <source>What is to be sent cannot be read.</source>
        <translation>Was gesendet werden soll, kann nicht gelesen werden.</translation>
    </message>
    <message>
        <source>What was counted</source>
        <translation>Was gezählt wurde</translation>
    </message>
    <message>
        <source>What was found</source>
        <translation>Was gefunden wurde</translation>
    </message>
    <message>
        <source>What was imported cannot be noted in %@: %@.</source>
        <translation>Was importiert wurde, kann nicht in %@ vermerkt werden: %@.</translation>
    </message>
    <message>
        <source>What was imported cannot be read from %@: %@.</source>
        <translation>Was importiert wurde, kann nicht aus %@ gelesen werden: %@.</translation>
    </message>
    <message>
        <source>What was imported could not be looked up: %@</source>
        <translation>Was importiert wurde, konnte nicht nachgeschlagen werden: %@</translation>
    </message>
    <message>
        <source>What was imported was deleted since.</source>
        <translation>Was importiert wurde, ist seither gelöscht worden.</translation>
    </message>
    <message>
        <source>What you capture of the screen comes here.</source>
        <translation>Was Sie vom Bildschirm aufnehmen, kommt hierher.</translation>
    </message>
    <message>
        <source>What “%@” looks like is not known yet. Try again in a moment.</source>
        <translation>Wie „%@“ aussieht, ist noch nicht bekannt. Versuchen Sie es gleich noch einmal.</translation>
    </message>
    <message>
        <source>When Zelto ends unexpectedly it keeps a report, and shows it when it is opened again. The last five are kept. A report has nothing of your library, and is sent only if you send it.</source>
        <translation>Wenn Zelto unerwartet endet, legt es einen Bericht an und zeigt ihn beim nächsten Öffnen. Die letzten fünf werden aufbewahrt. Ein Bericht enthält nichts aus Ihrer Bibliothek und wird nur gesendet, wenn Sie ihn senden.</translation>
    </message>
    <message>
        <source>Where backups are put; best on another disk</source>
        <translation>Wo Sicherungen abgelegt werden; am besten auf einem anderen Datenträger</translation>
    </message>
    <message>
        <source>Where everything is kept that the program writes.</source>
        <translation>Wo alles aufbewahrt wird, was das Programm schreibt.</translation>
    </message>
    <message>
        <source>Whole Screen</source>
        <translation>Ganzer Bildschirm</translation>
    </message>
    <message>
        <source>Whole page</source>
        <translation>Ganze Seite</translation>
    </message>
    <message>
        <source>Whole scr&amp;een</source>
        <translation>&amp;Ganzer Bildschirm</translation>
    </message>
    <message>
        <source>Wider</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Width and height</source>
        <translation>Breite und Höhe</translation>
    </message>
    <message>
        <source>Width of the page in pixels</source>
        <translation>Breite der Seite in Pixeln</translation>
    </message>
    <message>
        <source>Window</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>Window to capture</source>
        <translation>Aufzunehmendes Fenster</translation>
    </message>
    <message>
        <source>Windows icon image</source>
        <translation>Windows-Symbolbild</translation>
    </message>
    <message>
        <source>With “raw” there is no form: leave out “file” and “fields”.</source>
        <translation>Mit „raw“ gibt es kein Formular: Lassen Sie „file“ und „fields“ weg.</translation>
    </message>
    <message>
        <source>Without a command the window opens, with the files that are named. A command does one thing and exits; when a window has the library open, it runs in the window's process, so that two processes never write one library.</source>
        <translation>Ohne Befehl öffnet sich das Fenster mit den angegebenen Dateien. Ein Befehl erledigt eine Sache und endet; hat ein Fenster die Bibliothek geöffnet, läuft er im Prozess des Fensters, sodass nie zwei Prozesse in dieselbe Bibliothek schreiben.</translation>
    </message>
    <message>
        <source>Without a rating: %@</source>
        <translation>Ohne Bewertung: %@</translation>
    </message>
    <message>
        <source>Without a tag: %@</source>
        <translation>Ohne Schlagwort: %@</translation>
    </message>
    <message>
        <source>Without its window Zelto takes no pictures of the screen.</source>
        <translation>Ohne sein Fenster nimmt Zelto keine Bildschirmfotos auf.</translation>
    </message>
    <message>
        <source>Word document</source>
        <translation>Word-Dokument</translation>
    </message>
    <message>
        <source>Would you like to import the following duplicate image?</source>
        <translation>Möchten Sie das folgende Duplikat eines Bildes importieren?</translation>
    </message>
    <message>
        <source>Write &lt;, = or &gt; behind “%@”, and then what to compare with.</source>
        <translation>Schreiben Sie &lt;, = oder &gt; hinter „%@“ und danach, womit verglichen werden soll.</translation>
    </message>
    <message>
        <source>Writing notes…</source>
        <translation>Notizen werden geschrieben…</translation>
    </message>
    <message>
        <source>Writing the file…</source>
        <translation>Datei wird geschrieben…</translation>
    </message>
    <message>
        <source>Writing the license…</source>
        <translation>Lizenz wird geschrieben…</translation>
    </message>
    <message>
        <source>Writing the source…</source>
        <translation>Quelle wird geschrieben…</translation>
    </message>
    <message>
        <source>XML document</source>
        <translation>XML-Dokument</translation>
    </message>
    <message>
        <source>Yesterday</source>
        <translation>Gestern</translation>
    </message>
    <message>
        <source>Yesterday, %@</source>
        <translation>Gestern, %@</translation>
    </message>
    <message>
        <source>You can close this tab and go back to Zelto.</source>
        <translation>Sie können diesen Tab schließen und zu Zelto zurückkehren.</translation>
    </message>
    <message>
        <source>You have %@.</source>
        <translation>Sie haben %@.</translation>
    </message>
    <message>
        <source>You have exceded your maximum daily upload limit</source>
        <translation>Sie haben die tägliche Höchstgrenze zum Hochladen überschritten</translation>
    </message>
    <message>
        <source>You have no permission to read it. Change its permissions and import it again.</source>
        <translation>Sie haben keine Leseberechtigung. Ändern Sie die Zugriffsrechte, und importieren Sie die Datei noch einmal.</translation>
    </message>
    <message>
        <source>You may not change its folder. Change the folder's permissions, and try again.</source>
        <translation>Sie dürfen ihren Ordner nicht ändern. Ändern Sie die Zugriffsrechte des Ordners, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>You may not write into “%@”. Change its permissions, or choose another folder.</source>
        <translation>Sie dürfen nicht in „%@“ schreiben. Ändern Sie die Zugriffsrechte, oder wählen Sie einen anderen Ordner.</translation>
    </message>
    <message>
        <source>You may not write to the files there. Change their permissions to let their tags travel with them.</source>
        <translation>Sie dürfen nicht in die Dateien dort schreiben. Ändern Sie deren Zugriffsrechte, damit ihre Schlagwörter sie begleiten.</translation>
    </message>
    <message>
        <source>Your Dropbox is full.</source>
        <translation>Ihre Dropbox ist voll.</translation>
    </message>
    <message>
        <source>Your desktop shows no status icons. The commands are in the menu, and as “zelto snap area”.</source>
        <translation>Ihre Arbeitsumgebung zeigt keine Statussymbole. Die Befehle finden Sie im Menü und als „zelto snap area“.</translation>
    </message>
    <message>
        <source>Your desktop shows status icons. The same commands are in the menu, and as “zelto snap area”.</source>
        <translation>Ihre Arbeitsumgebung zeigt Statussymbole. Dieselben Befehle finden Sie im Menü und als „zelto snap area“.</translation>
    </message>
    <message>
        <source>Your server does not accept the user name and the password.</source>
        <translation>Ihr Server nimmt den Benutzernamen und das Passwort nicht an.</translation>
    </message>
    <message>
        <source>Your server is full.</source>
        <translation>Ihr Server ist voll.</translation>
    </message>
    <message>
        <source>Your server needs the name of a user.</source>
        <translation>Ihr Server braucht einen Benutzernamen.</translation>
    </message>
    <message>
        <source>Your share of the disk is used up. Make room there, and try again.</source>
        <translation>Ihr Anteil am Datenträger ist aufgebraucht. Schaffen Sie dort Platz, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>ZIP archive</source>
        <translation>ZIP-Archiv</translation>
    </message>
    <message>
        <source>Zelto %@ is the newest version.</source>
        <translation>Zelto %@ ist die neueste Version.</translation>
    </message>
    <message>
        <source>Zelto %@ is there</source>
        <translation>Zelto %@ ist da</translation>
    </message>
    <message>
        <source>Zelto %@ is there; this is %@.</source>
        <translation>Zelto %@ ist da; dies ist %@.</translation>
    </message>
    <message>
        <source>Zelto can copy everything that can still be read into a new store. The damaged one is kept beside it.</source>
        <translation>Zelto kann alles noch Lesbare in eine neue Datenbank kopieren. Die beschädigte wird daneben aufbewahrt.</translation>
    </message>
    <message>
        <source>Zelto can quit, open again and copy everything that can still be read into a new store. The damaged one is kept beside it. Until then some items cannot be shown.</source>
        <translation>Zelto kann sich beenden, neu öffnen und alles noch Lesbare in eine neue Datenbank kopieren. Die beschädigte wird daneben aufbewahrt. Bis dahin können einige Objekte nicht angezeigt werden.</translation>
    </message>
    <message>
        <source>Zelto could not look for new versions</source>
        <translation>Zelto konnte nicht nach neuen Versionen suchen</translation>
    </message>
    <message>
        <source>Zelto does not look for new versions</source>
        <translation>Zelto sucht nicht nach neuen Versionen</translation>
    </message>
    <message>
        <source>Zelto ended before all files were in the library. It can go on with those that are missing. What is in the library stays there either way.</source>
        <translation>Zelto wurde beendet, bevor alle Dateien in der Bibliothek waren. Es kann mit den fehlenden fortfahren. Was in der Bibliothek ist, bleibt in jedem Fall dort.</translation>
    </message>
    <message>
        <source>Zelto ended unexpectedly</source>
        <translation>Zelto wurde unerwartet beendet</translation>
    </message>
    <message>
        <source>Zelto has the library in use but not open: answer what it asks, then try again</source>
        <translation>Zelto verwendet die Bibliothek, hat sie aber nicht geöffnet: Beantworten Sie seine Frage, und versuchen Sie es dann noch einmal</translation>
    </message>
    <message>
        <source>Zelto is about to quit.</source>
        <translation>Zelto wird gleich beendet.</translation>
    </message>
    <message>
        <source>Zelto is importing files</source>
        <translation>Zelto importiert gerade Dateien</translation>
    </message>
    <message>
        <source>Zelto is importing files, are you sure to quit?</source>
        <translation>Zelto importiert gerade Dateien. Wirklich beenden?</translation>
    </message>
    <message>
        <source>Zelto is quitting, and takes nothing into the library any more.</source>
        <translation>Zelto wird beendet und nimmt nichts mehr in die Bibliothek auf.</translation>
    </message>
    <message>
        <source>Zelto is there when you have logged in.</source>
        <translation>Zelto ist da, sobald Sie sich angemeldet haben.</translation>
    </message>
    <message>
        <source>Zelto is up to date</source>
        <translation>Zelto ist auf dem neuesten Stand</translation>
    </message>
    <message>
        <source>Zelto is uploading files</source>
        <translation>Zelto lädt gerade Dateien hoch</translation>
    </message>
    <message>
        <source>Zelto is uploading files, are you sure to quit? Those that are not uploaded yet will not be.</source>
        <translation>Zelto lädt gerade Dateien hoch. Wirklich beenden? Was noch nicht hochgeladen ist, wird es dann nicht mehr.</translation>
    </message>
    <message>
        <source>Zelto is uploading other files; try again when that is done</source>
        <translation>Zelto lädt gerade andere Dateien hoch; versuchen Sie es danach noch einmal</translation>
    </message>
    <message>
        <source>Zelto quit before the picture was in the library; where it was being imported, the import goes on when Zelto opens the library the next time</source>
        <translation>Zelto wurde beendet, bevor das Bild in der Bibliothek war; lief der Import schon, wird er fortgesetzt, wenn Zelto die Bibliothek das nächste Mal öffnet</translation>
    </message>
    <message>
        <source>Zelto therefore draws no EPS and PostScript files and uses no thumbnailers of the desktop. A Linux kernel with Landlock (5.13 or newer) changes that.</source>
        <translation>Zelto zeichnet daher keine EPS- und PostScript-Dateien und verwendet keine Miniaturprogramme der Arbeitsumgebung. Ein Linux-Kernel mit Landlock (5.13 oder neuer) ändert das.</translation>
    </message>
    <message>
        <source>Zelto was installed by %@, which brings new versions, too.</source>
        <translation>Zelto wurde mit %@ installiert; von dort kommen auch neue Versionen.</translation>
    </message>
    <message>
        <source>Zelto was quit before it could be imported. Import it again.</source>
        <translation>Zelto wurde beendet, bevor sie importiert werden konnte. Importieren Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>Zelto was quit or opened another library meanwhile; what was read before that stays, ask again for the rest</source>
        <translation>Zelto wurde inzwischen beendet oder hat eine andere Bibliothek geöffnet; was vorher gelesen wurde, bleibt; den Rest noch einmal anfordern</translation>
    </message>
    <message>
        <source>Zelto will now quit</source>
        <translation>Zelto wird jetzt beendet</translation>
    </message>
    <message>
        <source>Zip export</source>
        <translation>Zip-Export</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Zoom (+ and −)</source>
        <translation>Zoom (+ und −)</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Zoom and pan all together (L)</source>
        <translation>Alle gemeinsam zoomen und verschieben (L)</translation>
    </message>
    <message>
        <source>a comparison</source>
        <translation>ein Vergleich</translation>
    </message>
    <message>
        <source>a date needs a number of seconds since 2001 within 30 000 years</source>
        <translation>ein Datum braucht eine Anzahl von Sekunden seit 2001 innerhalb von 30 000 Jahren</translation>
    </message>
    <message>
        <source>a file has the name of its folder</source>
        <translation>eine Datei trägt den Namen ihres Ordners</translation>
    </message>
    <message>
        <source>a file of this name is in its way</source>
        <translation>eine Datei dieses Namens ist im Weg</translation>
    </message>
    <message>
        <source>a key path or a value</source>
        <translation>ein Schlüsselpfad oder ein Wert</translation>
    </message>
    <message>
        <source>a list can only stand left of CONTAINS or right of IN and BETWEEN</source>
        <translation>eine Liste kann nur links von CONTAINS oder rechts von IN und BETWEEN stehen</translation>
    </message>
    <message>
        <source>a list cannot hold a list</source>
        <translation>eine Liste kann keine Liste enthalten</translation>
    </message>
    <message>
        <source>a malformed \u escape</source>
        <translation>eine fehlerhafte \u-Sequenz</translation>
    </message>
    <message>
        <source>a malformed number</source>
        <translation>eine fehlerhafte Zahl</translation>
    </message>
    <message>
        <source>a name and a password are needed</source>
        <translation>ein Name und ein Passwort werden benötigt</translation>
    </message>
    <message>
        <source>a number</source>
        <translation>eine Zahl</translation>
    </message>
    <message>
        <source>a page is captured %d to %d pixels wide</source>
        <translation>eine Seite wird mit einer Breite von %d bis %d Pixeln aufgenommen</translation>
    </message>
    <message>
        <source>a quotation that is not closed</source>
        <translation>ein nicht geschlossenes Anführungszeichen</translation>
    </message>
    <message>
        <source>a search has at most %d characters</source>
        <translation>eine Suche hat höchstens %d Zeichen</translation>
    </message>
    <message>
        <source>a server behind it does not answer</source>
        <translation>ein Server dahinter antwortet nicht</translation>
    </message>
    <message>
        <source>a smart folder needs a title</source>
        <translation>ein intelligenter Ordner braucht einen Titel</translation>
    </message>
    <message>
        <source>a tag needs a name</source>
        <translation>ein Schlagwort braucht einen Namen</translation>
    </message>
    <message>
        <source>a value of the type %@ cannot be compared</source>
        <translation>ein Wert des Typs %@ kann nicht verglichen werden</translation>
    </message>
    <message>
        <source>access refused</source>
        <translation>Zugriff verweigert</translation>
    </message>
    <message>
        <source>add export preset</source>
        <translation>Export-Voreinstellung hinzufügen</translation>
    </message>
    <message>
        <source>add live folders</source>
        <translation>Live-Ordner hinzufügen</translation>
    </message>
    <message>
        <source>an address, --width, --psd and --visible are only for zelto snap web</source>
        <translation>eine Adresse, --width, --psd und --visible sind nur für zelto snap web</translation>
    </message>
    <message>
        <source>an error in the server</source>
        <translation>ein Fehler im Server</translation>
    </message>
    <message>
        <source>an error, in which case nothing was changed; a change of many items that fails or is cancelled keeps what was done before that</source>
        <translation>ein Fehler, bei dem nichts geändert wurde; eine Änderung an vielen Objekten, die scheitert oder abgebrochen wird, behält, was davor erledigt war</translation>
    </message>
    <message>
        <source>an unknown character "%@"</source>
        <translation>ein unbekanntes Zeichen „%@“</translation>
    </message>
    <message>
        <source>an unknown placeholder</source>
        <translation>ein unbekannter Platzhalter</translation>
    </message>
    <message>
        <source>and</source>
        <translation>und</translation>
    </message>
    <message>
        <source>and %d more</source>
        <translation>und %d weitere</translation>
    </message>
    <message>
        <source>at character %ld of the search, “%@”: %@</source>
        <translation>bei Zeichen %ld der Suche, „%@“: %@</translation>
    </message>
    <message>
        <source>bad request</source>
        <translation>ungültige Anfrage</translation>
    </message>
    <message>
        <source>before %@</source>
        <translation>vor %@</translation>
    </message>
    <message>
        <source>belongs to no item; the next launch takes it back or removes it: %@</source>
        <translation>gehört zu keinem Objekt; der nächste Start nimmt es wieder auf oder entfernt es: %@</translation>
    </message>
    <message>
        <source>black</source>
        <translation>schwarz</translation>
    </message>
    <message>
        <source>blue</source>
        <translation>blau</translation>
    </message>
    <message>
        <source>brush</source>
        <translation>Pinsel</translation>
    </message>
    <message>
        <source>capturing what a browser shows needs the window: run `zelto` with this address instead, or `zelto snap web` with that of the page</source>
        <translation>was ein Browser zeigt, kann nur mit dem Fenster aufgenommen werden: stattdessen `zelto` mit dieser Adresse ausführen oder `zelto snap web` mit der Adresse der Seite</translation>
    </message>
    <message>
        <source>change search of '%@'</source>
        <translation>Suche von „%@“ ändern</translation>
    </message>
    <message>
        <source>chosen</source>
        <translation>ausgewählt</translation>
    </message>
    <message>
        <source>close bracket</source>
        <translation>Klammer zu</translation>
    </message>
    <message>
        <source>color or #3366cc</source>
        <translation>Farbe oder #3366cc</translation>
    </message>
    <message>
        <source>copy files</source>
        <translation>Dateien kopieren</translation>
    </message>
    <message>
        <source>copy items</source>
        <translation>Objekte kopieren</translation>
    </message>
    <message>
        <source>date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>delete %@</source>
        <translation>%@ löschen</translation>
    </message>
    <message>
        <source>delete export preset</source>
        <translation>Export-Voreinstellung löschen</translation>
    </message>
    <message>
        <source>delete items</source>
        <translation>Objekte löschen</translation>
    </message>
    <message>
        <source>delete items and content</source>
        <translation>Objekte und Inhalt löschen</translation>
    </message>
    <message>
        <source>disable %@</source>
        <translation>%@ deaktivieren</translation>
    </message>
    <message>
        <source>disable live folders</source>
        <translation>Live-Ordner deaktivieren</translation>
    </message>
    <message>
        <source>document</source>
        <translation>Dokument</translation>
    </message>
    <message>
        <source>done in part, or something was found: `verify` or `backup` found something wrong, `updates check` knows a newer version, `recover` met an open library, `snap` was called off, some of what `export`, `share` or `download` was asked for is missing, or an import was cut off, which `zelto import --resume` goes on with</source>
        <translation>teilweise erledigt, oder etwas wurde gefunden: `verify` oder `backup` hat einen Mangel gefunden, `updates check` kennt eine neuere Version, `recover` traf auf eine geöffnete Bibliothek, `snap` wurde abgebrochen, ein Teil dessen, was `export`, `share` oder `download` verarbeiten sollte, fehlt, oder ein Import wurde unterbrochen, den `zelto import --resume` fortsetzt</translation>
    </message>
    <message>
        <source>done; for `verify`, nothing wrong was found</source>
        <translation>erledigt; bei `verify`: keine Mängel gefunden</translation>
    </message>
    <message>
        <source>duplicate items</source>
        <translation>Objekte duplizieren</translation>
    </message>
    <message>
        <source>edit license</source>
        <translation>Lizenz bearbeiten</translation>
    </message>
    <message>
        <source>edit notes</source>
        <translation>Notizen bearbeiten</translation>
    </message>
    <message>
        <source>edit source</source>
        <translation>Quelle bearbeiten</translation>
    </message>
    <message>
        <source>edit tags</source>
        <translation>Schlagwörter bearbeiten</translation>
    </message>
    <message>
        <source>enable %@</source>
        <translation>%@ aktivieren</translation>
    </message>
    <message>
        <source>enable live folders</source>
        <translation>Live-Ordner aktivieren</translation>
    </message>
    <message>
        <source>expected %@, found %@</source>
        <translation>erwartet: %@, gefunden: %@</translation>
    </message>
    <message>
        <source>exported in part: %@: %@</source>
        <translation>teilweise exportiert: %@: %@</translation>
    </message>
    <message>
        <source>extension</source>
        <translation>Endung</translation>
    </message>
    <message>
        <source>file %@ is not a valid image</source>
        <translation>Datei %@ ist kein gültiges Bild</translation>
    </message>
    <message>
        <source>files as they are keep their size; choose a --format to scale them</source>
        <translation>unveränderte Dateien behalten ihre Größe; zum Skalieren ein --format wählen</translation>
    </message>
    <message>
        <source>font</source>
        <translation>Schrift</translation>
    </message>
    <message>
        <source>gone for good</source>
        <translation>endgültig entfernt</translation>
    </message>
    <message>
        <source>gray</source>
        <translation>grau</translation>
    </message>
    <message>
        <source>green</source>
        <translation>grün</translation>
    </message>
    <message>
        <source>icon</source>
        <translation>symbol</translation>
    </message>
    <message>
        <source>icon … vector</source>
        <translation>symbol … vektor</translation>
    </message>
    <message>
        <source>image</source>
        <translation>Bild</translation>
    </message>
    <message>
        <source>images on this computer or in its own network come only for a page that is there, too: write --page with its address, as --page http://127.0.0.1/</source>
        <translation>Bilder auf diesem Computer oder in seinem eigenen Netzwerk kommen nur für eine Seite, die ebenfalls dort liegt: geben Sie --page mit ihrer Adresse an, zum Beispiel --page http://127.0.0.1/</translation>
    </message>
    <message>
        <source>imported in part: %@: %@</source>
        <translation>teilweise importiert: %@: %@</translation>
    </message>
    <message>
        <source>in trash</source>
        <translation>im Papierkorb</translation>
    </message>
    <message>
        <source>is a link and no folder of an item, and stays as it is: %@</source>
        <translation>ist ein Link und kein Ordner eines Objekts und bleibt unverändert: %@</translation>
    </message>
    <message>
        <source>is named like the folder of an item, in other letters, and stays as it is: %@</source>
        <translation>heißt bis auf Groß- und Kleinschreibung wie der Ordner eines Objekts und bleibt unverändert: %@</translation>
    </message>
    <message>
        <source>it ends too early</source>
        <translation>es endet zu früh</translation>
    </message>
    <message>
        <source>it holds more than %d MB</source>
        <translation>es enthält mehr als %d MB</translation>
    </message>
    <message>
        <source>it holds more than %d files</source>
        <translation>es enthält mehr als %d Dateien</translation>
    </message>
    <message>
        <source>it is a link</source>
        <translation>es ist ein Link</translation>
    </message>
    <message>
        <source>it is no file that an import would leave</source>
        <translation>es ist keine Datei, die ein Import hinterlassen würde</translation>
    </message>
    <message>
        <source>it is no regular file</source>
        <translation>es ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>it lies in more than %d other archives</source>
        <translation>es liegt in mehr als %d anderen Archiven</translation>
    </message>
    <message>
        <source>it lies too deep in folders</source>
        <translation>es liegt zu tief in Ordnern</translation>
    </message>
    <message>
        <source>it needs too much memory</source>
        <translation>es braucht zu viel Speicher</translation>
    </message>
    <message>
        <source>it took too long</source>
        <translation>es hat zu lange gedauert</translation>
    </message>
    <message>
        <source>it was cancelled; the copied files stay, and the next `zelto sync` makes their items</source>
        <translation>der Vorgang wurde abgebrochen; die kopierten Dateien bleiben, und der nächste Aufruf von `zelto sync` legt ihre Objekte an</translation>
    </message>
    <message>
        <source>it was cancelled; the live folder is still there</source>
        <translation>der Vorgang wurde abgebrochen; der Live-Ordner ist noch da</translation>
    </message>
    <message>
        <source>it was cancelled; what was changed before that stays so</source>
        <translation>der Vorgang wurde abgebrochen; was vorher geändert wurde, bleibt so</translation>
    </message>
    <message>
        <source>it was cancelled; what was read before that stays in the library, and the next `zelto sync` goes on</source>
        <translation>der Vorgang wurde abgebrochen; was vorher gelesen wurde, bleibt in der Bibliothek, und der nächste Aufruf von `zelto sync` fährt fort</translation>
    </message>
    <message>
        <source>it was given up</source>
        <translation>es wurde aufgegeben</translation>
    </message>
    <message>
        <source>its content has changed</source>
        <translation>sein Inhalt hat sich geändert</translation>
    </message>
    <message>
        <source>its content is more than %d times as large</source>
        <translation>sein Inhalt ist mehr als %d-mal so groß</translation>
    </message>
    <message>
        <source>its end is missing</source>
        <translation>sein Ende fehlt</translation>
    </message>
    <message>
        <source>its name cannot be read</source>
        <translation>sein Name kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>its name leads out of the archive</source>
        <translation>sein Name führt aus dem Archiv hinaus</translation>
    </message>
    <message>
        <source>keep %@</source>
        <translation>%@ behalten</translation>
    </message>
    <message>
        <source>keep a library of assets</source>
        <translation>eine Bibliothek von Bildern und Dokumenten führen</translation>
    </message>
    <message>
        <source>keep one of each</source>
        <translation>je eines behalten</translation>
    </message>
    <message>
        <source>kind</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>large</source>
        <translation>groß</translation>
    </message>
    <message>
        <source>last 7 days</source>
        <translation>letzte 7 Tage</translation>
    </message>
    <message>
        <source>less than %@ %%</source>
        <translation>weniger als %@ %%</translation>
    </message>
    <message>
        <source>live folders are not kept in step here</source>
        <translation>Live-Ordner werden hier nicht abgeglichen</translation>
    </message>
    <message>
        <source>medium</source>
        <translation>mittel</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>fehlt</translation>
    </message>
    <message>
        <source>missing: %@: %@</source>
        <translation>fehlt: %@: %@</translation>
    </message>
    <message>
        <source>move export preset</source>
        <translation>Export-Voreinstellung verschieben</translation>
    </message>
    <message>
        <source>move items</source>
        <translation>Objekte verschieben</translation>
    </message>
    <message>
        <source>move sidebar items</source>
        <translation>Einträge der Seitenleiste verschieben</translation>
    </message>
    <message>
        <source>name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>name at least one item, and after the items a rating from 0 to 5</source>
        <translation>mindestens ein Objekt angeben und nach den Objekten eine Bewertung von 0 bis 5</translation>
    </message>
    <message>
        <source>name at least one item, and after the items the text of the note</source>
        <translation>mindestens ein Objekt angeben und nach den Objekten den Text der Notiz</translation>
    </message>
    <message>
        <source>name or bundleID</source>
        <translation>Name oder bundleID</translation>
    </message>
    <message>
        <source>name the addresses of the images</source>
        <translation>die Adressen der Bilder angeben</translation>
    </message>
    <message>
        <source>name the items to export, or write --in with a sidebar entry</source>
        <translation>die zu exportierenden Objekte angeben oder --in mit einem Eintrag der Seitenleiste schreiben</translation>
    </message>
    <message>
        <source>name the items to share, or write --in with a sidebar entry</source>
        <translation>die zu teilenden Objekte angeben oder --in mit einem Eintrag der Seitenleiste schreiben</translation>
    </message>
    <message>
        <source>name the page, as zelto snap web https://example.org</source>
        <translation>die Seite angeben, etwa zelto snap web https://example.org</translation>
    </message>
    <message>
        <source>name what to import, or write --resume or --forget</source>
        <translation>angeben, was importiert werden soll, oder --resume oder --forget schreiben</translation>
    </message>
    <message>
        <source>new</source>
        <translation>neu</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>none of the images could be downloaded</source>
        <translation>keines der Bilder konnte heruntergeladen werden</translation>
    </message>
    <message>
        <source>none of the items could be exported</source>
        <translation>keines der Objekte konnte exportiert werden</translation>
    </message>
    <message>
        <source>none of the items has a file to share</source>
        <translation>keines der Objekte hat eine Datei zum Teilen</translation>
    </message>
    <message>
        <source>not</source>
        <translation>nicht</translation>
    </message>
    <message>
        <source>not all pictures could be looked at; what was found is kept: ask again for the rest</source>
        <translation>nicht alle Bilder konnten angesehen werden; was gefunden wurde, bleibt erhalten: Wiederholen Sie den Befehl für den Rest</translation>
    </message>
    <message>
        <source>not available at the moment</source>
        <translation>zurzeit nicht verfügbar</translation>
    </message>
    <message>
        <source>not available for legal reasons</source>
        <translation>aus rechtlichen Gründen nicht verfügbar</translation>
    </message>
    <message>
        <source>not chosen</source>
        <translation>nicht ausgewählt</translation>
    </message>
    <message>
        <source>not downloaded: %@: %@</source>
        <translation>nicht heruntergeladen: %@: %@</translation>
    </message>
    <message>
        <source>not exported: %@: %@</source>
        <translation>nicht exportiert: %@: %@</translation>
    </message>
    <message>
        <source>not found</source>
        <translation>nicht gefunden</translation>
    </message>
    <message>
        <source>not imported: %@: %@</source>
        <translation>nicht importiert: %@: %@</translation>
    </message>
    <message>
        <source>not imported: %d files: %@</source>
        <translation>nicht importiert: %d Dateien: %@</translation>
    </message>
    <message>
        <source>not shared: %@: %@</source>
        <translation>nicht geteilt: %@: %@</translation>
    </message>
    <message>
        <source>note: %@: %@</source>
        <translation>Hinweis: %@: %@</translation>
    </message>
    <message>
        <source>nothing</source>
        <translation>nichts</translation>
    </message>
    <message>
        <source>nothing is counted; `zelto defaults write CountsUsage true` begins it</source>
        <translation>es wird nichts gezählt; `zelto defaults write CountsUsage true` beginnt damit</translation>
    </message>
    <message>
        <source>nothing selected</source>
        <translation>nichts ausgewählt</translation>
    </message>
    <message>
        <source>nothing was counted yet</source>
        <translation>es wurde noch nichts gezählt</translation>
    </message>
    <message>
        <source>nothing was imported from “%@”, which nobody has agreed to yet. %@ Add --yes if you asked for this in the browser</source>
        <translation>von „%@“ wurde nichts importiert, da dem noch niemand zugestimmt hat. %@ Fügen Sie --yes hinzu, wenn Sie dies im Browser veranlasst haben</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>open bracket</source>
        <translation>Klammer auf</translation>
    </message>
    <message>
        <source>or</source>
        <translation>oder</translation>
    </message>
    <message>
        <source>orange</source>
        <translation>orange</translation>
    </message>
    <message>
        <source>orig</source>
        <translation>orig</translation>
    </message>
    <message>
        <source>pink</source>
        <translation>rosa</translation>
    </message>
    <message>
        <source>pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>purple</source>
        <translation>lila</translation>
    </message>
    <message>
        <source>rate</source>
        <translation>bewerten</translation>
    </message>
    <message>
        <source>red</source>
        <translation>rot</translation>
    </message>
    <message>
        <source>remove items</source>
        <translation>Objekte entfernen</translation>
    </message>
    <message>
        <source>remove rating</source>
        <translation>Bewertung entfernen</translation>
    </message>
    <message>
        <source>rename '%@' in '%@'</source>
        <translation>„%@“ in „%@“ umbenennen</translation>
    </message>
    <message>
        <source>say which tags: --add TAG, --remove TAG, or both, each as often as needed</source>
        <translation>die Schlagwörter angeben: --add TAG, --remove TAG oder beides, jeweils so oft wie nötig</translation>
    </message>
    <message>
        <source>small</source>
        <translation>klein</translation>
    </message>
    <message>
        <source>somebody else removed the live folder meanwhile</source>
        <translation>der Live-Ordner wurde inzwischen anderswo entfernt</translation>
    </message>
    <message>
        <source>text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>the Zelto that has the library “%@” open is at it; where its window asks something, answer there; Ctrl+C stops it</source>
        <translation>das Zelto, das die Bibliothek „%@“ geöffnet hat, ist dabei; wenn sein Fenster etwas fragt, antworten Sie dort; Strg+C hält es an</translation>
    </message>
    <message>
        <source>the argument for %@ is missing</source>
        <translation>das Argument für %@ fehlt</translation>
    </message>
    <message>
        <source>the argument for %@ is not a number</source>
        <translation>das Argument für %@ ist keine Zahl</translation>
    </message>
    <message>
        <source>the conditions are nested too deeply</source>
        <translation>die Bedingungen sind zu tief verschachtelt</translation>
    </message>
    <message>
        <source>the download was cancelled; nothing was imported</source>
        <translation>das Herunterladen wurde abgebrochen; nichts wurde importiert</translation>
    </message>
    <message>
        <source>the download was cancelled; what is listed was imported before that</source>
        <translation>das Herunterladen wurde abgebrochen; was aufgeführt ist, wurde vorher importiert</translation>
    </message>
    <message>
        <source>the end</source>
        <translation>das Ende</translation>
    </message>
    <message>
        <source>the export was cancelled; nothing was written</source>
        <translation>der Export wurde abgebrochen; nichts wurde geschrieben</translation>
    </message>
    <message>
        <source>the export was cancelled; what was written before that stays</source>
        <translation>der Export wurde abgebrochen; was vorher geschrieben wurde, bleibt</translation>
    </message>
    <message>
        <source>the file is missing</source>
        <translation>die Datei fehlt</translation>
    </message>
    <message>
        <source>the file of “%@” can't be named after it: %@</source>
        <translation>die Datei von „%@“ kann nicht danach benannt werden: %@</translation>
    </message>
    <message>
        <source>the import was cancelled; nothing was kept</source>
        <translation>der Import wurde abgebrochen; nichts wurde behalten</translation>
    </message>
    <message>
        <source>the import was cancelled; what is listed was imported before that</source>
        <translation>der Import wurde abgebrochen; was aufgeführt ist, wurde vorher importiert</translation>
    </message>
    <message>
        <source>the items can't be counted; `zelto verify` says what is wrong with the library</source>
        <translation>die Objekte können nicht gezählt werden; `zelto verify` sagt, was mit der Bibliothek nicht stimmt</translation>
    </message>
    <message>
        <source>the library can't be opened</source>
        <translation>die Bibliothek kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>the library could not be saved, so nothing was removed</source>
        <translation>die Bibliothek konnte nicht gespeichert werden, daher wurde nichts entfernt</translation>
    </message>
    <message>
        <source>the library is not open</source>
        <translation>die Bibliothek ist nicht geöffnet</translation>
    </message>
    <message>
        <source>the library is open in a window; quitting it purges</source>
        <translation>die Bibliothek ist in einem Fenster geöffnet; beim Beenden wird sie bereinigt</translation>
    </message>
    <message>
        <source>the list was given up</source>
        <translation>die Liste wurde abgebrochen</translation>
    </message>
    <message>
        <source>the option c, d or cd</source>
        <translation>die Option c, d oder cd</translation>
    </message>
    <message>
        <source>the pattern is invalid: %@</source>
        <translation>das Muster ist ungültig: %@</translation>
    </message>
    <message>
        <source>the preference “%@” is not set</source>
        <translation>die Einstellung „%@“ ist nicht gesetzt</translation>
    </message>
    <message>
        <source>the request took too long</source>
        <translation>die Anfrage hat zu lange gedauert</translation>
    </message>
    <message>
        <source>the request was refused</source>
        <translation>die Anfrage wurde abgelehnt</translation>
    </message>
    <message>
        <source>the search was given up</source>
        <translation>die Suche wurde abgebrochen</translation>
    </message>
    <message>
        <source>the service gave no reason; try again later</source>
        <translation>der Dienst hat keinen Grund genannt; versuchen Sie es später noch einmal</translation>
    </message>
    <message>
        <source>the tags can't be read; `zelto verify` says what is wrong with the library</source>
        <translation>die Schlagwörter können nicht gelesen werden; `zelto verify` sagt, was mit der Bibliothek nicht stimmt</translation>
    </message>
    <message>
        <source>the template “%@” became no asset: %@</source>
        <translation>aus der Vorlage „%@“ wurde kein Objekt: %@</translation>
    </message>
    <message>
        <source>the type "NSDate"</source>
        <translation>der Typ „NSDate“</translation>
    </message>
    <message>
        <source>the upload was cancelled; nothing was shared</source>
        <translation>das Hochladen wurde abgebrochen; nichts wurde geteilt</translation>
    </message>
    <message>
        <source>the upload was cancelled; the links above stay valid</source>
        <translation>das Hochladen wurde abgebrochen; die obigen Links bleiben gültig</translation>
    </message>
    <message>
        <source>the window asks whether to import the images</source>
        <translation>das Fenster fragt, ob die Bilder importiert werden sollen</translation>
    </message>
    <message>
        <source>there are %d presets; the panel Quick export makes more</source>
        <translation>es gibt %d Voreinstellungen; weitere lassen sich im Bereich „Schnellexport“ erstellen</translation>
    </message>
    <message>
        <source>there are no items to export there; of a folder of projects name one of the projects</source>
        <translation>dort gibt es keine Objekte zum Exportieren; bei einem Ordner mit Projekten eines der Projekte angeben</translation>
    </message>
    <message>
        <source>there are no items to share there; of a folder of projects name one of the projects</source>
        <translation>dort gibt es keine Objekte zum Teilen; bei einem Ordner mit Projekten eines der Projekte angeben</translation>
    </message>
    <message>
        <source>there are no templates; put files whose names end in .zttemplate into “%@”</source>
        <translation>es gibt keine Vorlagen; legen Sie Dateien, deren Namen auf .zttemplate enden, in „%@“</translation>
    </message>
    <message>
        <source>there is no file or folder “%@”</source>
        <translation>es gibt weder eine Datei noch einen Ordner „%@“</translation>
    </message>
    <message>
        <source>there is no file “%@”</source>
        <translation>es gibt keine Datei „%@“</translation>
    </message>
    <message>
        <source>there is no item “%@”; name it by its bundleID, its SHA1 or a path inside the library</source>
        <translation>es gibt kein Objekt „%@“; geben Sie dessen bundleID, SHA1 oder einen Pfad in der Bibliothek an</translation>
    </message>
    <message>
        <source>there is no library database “%@”; name the library with --library, or put back a copy from a backup</source>
        <translation>es gibt keine Bibliotheksdatenbank „%@“; geben Sie die Bibliothek mit --library an, oder spielen Sie eine Sicherungskopie zurück</translation>
    </message>
    <message>
        <source>there is no preference “%@”; `zelto defaults read` lists them</source>
        <translation>es gibt keine Einstellung „%@“; `zelto defaults read` führt sie auf</translation>
    </message>
    <message>
        <source>there is no report of a crash</source>
        <translation>es gibt keinen Absturzbericht</translation>
    </message>
    <message>
        <source>there is no service “%@”; there are %@</source>
        <translation>es gibt keinen Dienst „%@“; vorhanden sind %@</translation>
    </message>
    <message>
        <source>there is no sidebar entry “%@”; `zelto sidebar` lists them</source>
        <translation>es gibt keinen Eintrag „%@“ in der Seitenleiste; `zelto sidebar` führt sie auf</translation>
    </message>
    <message>
        <source>there is no tag “%@”; `zelto tags` lists them</source>
        <translation>es gibt kein Schlagwort „%@“; `zelto tags` führt sie auf</translation>
    </message>
    <message>
        <source>there is no template “%@”; there are: %@</source>
        <translation>es gibt keine Vorlage „%@“; vorhanden sind: %@</translation>
    </message>
    <message>
        <source>there is nothing to search for; give a text</source>
        <translation>es gibt nichts, wonach gesucht werden kann; geben Sie einen Text an</translation>
    </message>
    <message>
        <source>there is nothing to search for; give a text behind the title</source>
        <translation>es gibt nichts, wonach gesucht werden kann; geben Sie hinter dem Titel einen Text an</translation>
    </message>
    <message>
        <source>this library has no entry “Library”; `zelto verify` checks it</source>
        <translation>diese Bibliothek hat keinen Eintrag „Library“; `zelto verify` prüft sie</translation>
    </message>
    <message>
        <source>this library has no entry “PROJECTS”; `zelto verify` checks it</source>
        <translation>diese Bibliothek hat keinen Eintrag „PROJECTS“; `zelto verify` prüft sie</translation>
    </message>
    <message>
        <source>this month</source>
        <translation>dieser Monat</translation>
    </message>
    <message>
        <source>this process takes no pictures of pages</source>
        <translation>dieser Prozess nimmt keine Seiten auf</translation>
    </message>
    <message>
        <source>this process takes no pictures of the screen</source>
        <translation>dieser Prozess nimmt keine Bildschirmfotos auf</translation>
    </message>
    <message>
        <source>this program was built without a window</source>
        <translation>dieses Programm wurde ohne Fenster gebaut</translation>
    </message>
    <message>
        <source>this year</source>
        <translation>dieses Jahr</translation>
    </message>
    <message>
        <source>today</source>
        <translation>heute</translation>
    </message>
    <message>
        <source>too many requests</source>
        <translation>zu viele Anfragen</translation>
    </message>
    <message>
        <source>unrated</source>
        <translation>ohne Bewertung</translation>
    </message>
    <message>
        <source>vector</source>
        <translation>vektor</translation>
    </message>
    <message>
        <source>video</source>
        <translation>Video</translation>
    </message>
    <message>
        <source>waiting for another Zelto, which works on the library “%@”; Ctrl+C ends the waiting</source>
        <translation>es wird auf ein anderes Zelto gewartet, das an der Bibliothek „%@“ arbeitet; Strg+C beendet das Warten</translation>
    </message>
    <message>
        <source>waiting for the Zelto that has the library “%@” open, which does something else first; where its window asks something, answer there; Ctrl+C ends the waiting</source>
        <translation>es wird auf das Zelto gewartet, das die Bibliothek „%@“ geöffnet hat und zuerst etwas anderes erledigt; wenn sein Fenster etwas fragt, antworten Sie dort; Strg+C beendet das Warten</translation>
    </message>
    <message>
        <source>what unpacks it stopped</source>
        <translation>das entpackende Programm wurde beendet</translation>
    </message>
    <message>
        <source>what was sent is too large</source>
        <translation>was gesendet wurde, ist zu groß</translation>
    </message>
    <message>
        <source>what “%@” looks like is not known yet; `zelto fingerprints` finds it out</source>
        <translation>wie „%@“ aussieht, ist noch nicht bekannt; `zelto fingerprints` findet es heraus</translation>
    </message>
    <message>
        <source>white</source>
        <translation>weiß</translation>
    </message>
    <message>
        <source>yellow</source>
        <translation>gelb</translation>
    </message>
    <message>
        <source>yesterday</source>
        <translation>gestern</translation>
    </message>
    <message>
        <source>“%@” and %d others</source>
        <translation>„%@“ und %d andere</translation>
    </message>
    <message>
        <source>“%@” and one other</source>
        <translation>„%@“ und eine andere</translation>
    </message>
    <message>
        <source>“%@” answered without a link.</source>
        <translation>„%@“ hat ohne Link geantwortet.</translation>
    </message>
    <message>
        <source>“%@” appears twice.</source>
        <translation>„%@“ kommt zweimal vor.</translation>
    </message>
    <message>
        <source>“%@” became shorter.</source>
        <translation>„%@“ ist kürzer geworden.</translation>
    </message>
    <message>
        <source>“%@” can only be reached unencrypted. Use an address that begins with https.</source>
        <translation>„%@“ ist nur unverschlüsselt erreichbar. Verwenden Sie eine Adresse, die mit https beginnt.</translation>
    </message>
    <message>
        <source>“%@” can't be opened.</source>
        <translation>„%@“ kann nicht geöffnet werden.</translation>
    </message>
    <message>
        <source>“%@” can't be read as a picture.</source>
        <translation>„%@“ kann nicht als Bild gelesen werden.</translation>
    </message>
    <message>
        <source>“%@” can't be read. Remove it, and try again.</source>
        <translation>„%@“ kann nicht gelesen werden. Entfernen Sie die Datei, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>“%@” can't be written into the backup: %@</source>
        <translation>„%@“ kann nicht in die Sicherung geschrieben werden: %@</translation>
    </message>
    <message>
        <source>“%@” can't be written over; name another file</source>
        <translation>„%@“ kann nicht überschrieben werden; geben Sie eine andere Datei an</translation>
    </message>
    <message>
        <source>“%@” cannot be a folder on a server.</source>
        <translation>„%@“ kann kein Ordner auf einem Server sein.</translation>
    </message>
    <message>
        <source>“%@” cannot be copied into itself.</source>
        <translation>„%@“ kann nicht in sich selbst kopiert werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be copied into the live folder.</source>
        <translation>„%@“ kann nicht in den Live-Ordner kopiert werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be deleted.</source>
        <translation>„%@“ kann nicht gelöscht werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be found. %@</source>
        <translation>„%@“ kann nicht gefunden werden. %@</translation>
    </message>
    <message>
        <source>“%@” cannot be kept in place of the others.</source>
        <translation>„%@“ kann nicht anstelle der anderen behalten werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be moved back.</source>
        <translation>„%@“ kann nicht zurückverschoben werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be put into the live folder.</source>
        <translation>„%@“ kann nicht in den Live-Ordner gelegt werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be read. Allow reading it first.</source>
        <translation>„%@“ kann nicht gelesen werden. Erlauben Sie zuerst das Lesen.</translation>
    </message>
    <message>
        <source>“%@” cannot be restored.</source>
        <translation>„%@“ kann nicht wiederhergestellt werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be set as a header.</source>
        <translation>„%@“ kann nicht als Kopfzeile gesetzt werden.</translation>
    </message>
    <message>
        <source>“%@” cannot be unpacked, since it is damaged or no archive (%@). Get it once more, or unpack it with another program and import what it holds.</source>
        <translation>„%@“ kann nicht entpackt werden, da es beschädigt oder kein Archiv ist (%@). Laden Sie es noch einmal, oder entpacken Sie es mit einem anderen Programm, und importieren Sie den Inhalt.</translation>
    </message>
    <message>
        <source>“%@” cannot be written: %@</source>
        <translation>„%@“ kann nicht geschrieben werden: %@</translation>
    </message>
    <message>
        <source>“%@” changed while it was being copied. Close it in other programs and try again.</source>
        <translation>„%@“ wurde während des Kopierens geändert. Schließen Sie die Datei in anderen Programmen, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>“%@” changed while it was sent.</source>
        <translation>„%@“ wurde während des Sendens geändert.</translation>
    </message>
    <message>
        <source>“%@” compares nothing; leave “%@” away.</source>
        <translation>„%@“ vergleicht nichts; lassen Sie „%@“ weg.</translation>
    </message>
    <message>
        <source>“%@” could not be imported: %@</source>
        <translation>„%@“ konnte nicht importiert werden: %@</translation>
    </message>
    <message>
        <source>“%@” could not be uploaded</source>
        <translation>„%@“ konnte nicht hochgeladen werden</translation>
    </message>
    <message>
        <source>“%@” could not be written</source>
        <translation>„%@“ konnte nicht geschrieben werden</translation>
    </message>
    <message>
        <source>“%@” did not come from the other program. Save it there as a file, and drop that here.</source>
        <translation>„%@“ kam nicht aus dem anderen Programm. Speichern Sie es dort als Datei, und ziehen Sie diese hierher.</translation>
    </message>
    <message>
        <source>“%@” does not accept what was entered for %@.</source>
        <translation>„%@“ nimmt nicht an, was für %@ eingegeben wurde.</translation>
    </message>
    <message>
        <source>“%@” does not answer. Try again later.</source>
        <translation>„%@“ antwortet nicht. Versuchen Sie es später noch einmal.</translation>
    </message>
    <message>
        <source>“%@” does not take this: it goes to the library</source>
        <translation>„%@“ nimmt dies nicht an: Es kommt in die Bibliothek</translation>
    </message>
    <message>
        <source>“%@” exists already</source>
        <translation>„%@“ existiert bereits</translation>
    </message>
    <message>
        <source>“%@” has a file of that name already, which was left as it is.</source>
        <translation>„%@“ enthält bereits eine Datei dieses Namens, die unverändert blieb.</translation>
    </message>
    <message>
        <source>“%@” has them already</source>
        <translation>„%@“ enthält sie bereits</translation>
    </message>
    <message>
        <source>“%@” has these keys.</source>
        <translation>„%@“ hat diese Tasten.</translation>
    </message>
    <message>
        <source>“%@” holds no picture yet</source>
        <translation>„%@“ enthält noch kein Bild</translation>
    </message>
    <message>
        <source>“%@” holds no smart folders; name PROJECTS or a folder in it</source>
        <translation>„%@“ enthält keine intelligenten Ordner; geben Sie PROJECTS oder einen Ordner darin an</translation>
    </message>
    <message>
        <source>“%@” holds nothing that can be an asset</source>
        <translation>„%@“ enthält nichts, was ein Objekt werden kann</translation>
    </message>
    <message>
        <source>“%@” holds too many files named “%@”. Rename it, and try again.</source>
        <translation>„%@“ enthält zu viele Dateien mit dem Namen „%@“. Benennen Sie die Datei um, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>“%@” in the library belongs to no item and could not be taken back.</source>
        <translation>„%@“ in der Bibliothek gehört zu keinem Objekt und konnte nicht wieder aufgenommen werden.</translation>
    </message>
    <message>
        <source>“%@” in the title, the notes, the extension or a tag</source>
        <translation>„%@“ im Titel, in den Notizen, in der Endung oder in einem Schlagwort</translation>
    </message>
    <message>
        <source>“%@” is a backup that can't be written.</source>
        <translation>„%@“ ist eine Sicherung, in die nicht geschrieben werden kann.</translation>
    </message>
    <message>
        <source>“%@” is a file to download and no page. Import the file instead.</source>
        <translation>„%@“ ist eine Datei zum Herunterladen und keine Seite. Importieren Sie stattdessen die Datei.</translation>
    </message>
    <message>
        <source>“%@” is a file; give a folder.</source>
        <translation>„%@“ ist eine Datei; geben Sie einen Ordner an.</translation>
    </message>
    <message>
        <source>“%@” is a folder on the disk. It goes from here when it goes from there.</source>
        <translation>„%@“ ist ein Ordner auf dem Datenträger. Er verschwindet hier, wenn er dort verschwindet.</translation>
    </message>
    <message>
        <source>“%@” is a library that another Zelto has open.</source>
        <translation>„%@“ ist eine Bibliothek, die in einem anderen Zelto geöffnet ist.</translation>
    </message>
    <message>
        <source>“%@” is a part of another live folder; remove that one, or move the folder elsewhere on the disk</source>
        <translation>„%@“ ist Teil eines anderen Live-Ordners; entfernen Sie diesen, oder verschieben Sie den Ordner auf dem Datenträger</translation>
    </message>
    <message>
        <source>“%@” is among the live folders already.</source>
        <translation>„%@“ ist bereits unter den Live-Ordnern.</translation>
    </message>
    <message>
        <source>“%@” is another folder than before. Items whose files are not in it leave the library and their projects. If only its drive is not connected, connect that instead.</source>
        <translation>„%@“ ist ein anderer Ordner als zuvor. Objekte, deren Dateien nicht darin liegen, verlassen die Bibliothek und ihre Projekte. Ist nur das Laufwerk nicht verbunden, verbinden Sie stattdessen dieses.</translation>
    </message>
    <message>
        <source>“%@” is damaged: only a part of the picture is there.</source>
        <translation>„%@“ ist beschädigt: Nur ein Teil des Bildes ist vorhanden.</translation>
    </message>
    <message>
        <source>“%@” is deleted; bring it back with `zelto restore %@`, then try again</source>
        <translation>„%@“ ist gelöscht; holen Sie es mit `zelto restore %@` zurück, und versuchen Sie es dann noch einmal</translation>
    </message>
    <message>
        <source>“%@” is disabled. Enable it, and try again.</source>
        <translation>„%@“ ist deaktiviert. Aktivieren Sie den Ordner, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>“%@” is disabled; enable it in the window first</source>
        <translation>„%@“ ist deaktiviert; aktivieren Sie den Ordner zuerst im Fenster</translation>
    </message>
    <message>
        <source>“%@” is empty. Connect its drive, put files into it first, or remove the live folder.</source>
        <translation>„%@“ ist leer. Verbinden Sie das Laufwerk, legen Sie zuerst Dateien hinein, oder entfernen Sie den Live-Ordner.</translation>
    </message>
    <message>
        <source>“%@” is in the library itself. Choose a folder outside it.</source>
        <translation>„%@“ liegt in der Bibliothek selbst. Wählen Sie einen Ordner außerhalb davon.</translation>
    </message>
    <message>
        <source>“%@” is in the trash.</source>
        <translation>„%@“ liegt im Papierkorb.</translation>
    </message>
    <message>
        <source>“%@” is incomplete: only a part of it can be drawn</source>
        <translation>„%@“ ist unvollständig: Nur ein Teil davon kann gezeichnet werden</translation>
    </message>
    <message>
        <source>“%@” is inside a library.</source>
        <translation>„%@“ liegt in einer Bibliothek.</translation>
    </message>
    <message>
        <source>“%@” is inside the library itself.</source>
        <translation>„%@“ liegt in der Bibliothek selbst.</translation>
    </message>
    <message>
        <source>“%@” is larger than such a file can be.</source>
        <translation>„%@“ ist größer, als eine solche Datei sein kann.</translation>
    </message>
    <message>
        <source>“%@” is looked through for the first time. What is found comes here.</source>
        <translation>„%@“ wird zum ersten Mal durchgesehen. Was gefunden wird, kommt hierher.</translation>
    </message>
    <message>
        <source>“%@” is looked through.</source>
        <translation>„%@“ wird durchgesehen.</translation>
    </message>
    <message>
        <source>“%@” is missing.</source>
        <translation>„%@“ fehlt.</translation>
    </message>
    <message>
        <source>“%@” is neither a command nor a file; `zelto --help` lists the commands</source>
        <translation>„%@“ ist weder ein Befehl noch eine Datei; `zelto --help` führt die Befehle auf</translation>
    </message>
    <message>
        <source>“%@” is neither a command nor a file; did you mean `zelto %@`?</source>
        <translation>„%@“ ist weder ein Befehl noch eine Datei; meinten Sie `zelto %@`?</translation>
    </message>
    <message>
        <source>“%@” is neither a file nor a folder, so it cannot be copied.</source>
        <translation>„%@“ ist weder eine Datei noch ein Ordner und kann daher nicht kopiert werden.</translation>
    </message>
    <message>
        <source>“%@” is no Zelto library.</source>
        <translation>„%@“ ist keine Zelto-Bibliothek.</translation>
    </message>
    <message>
        <source>“%@” is no address of a web page.</source>
        <translation>„%@“ ist keine Adresse einer Webseite.</translation>
    </message>
    <message>
        <source>“%@” is no address of an image on the web, so nothing was imported</source>
        <translation>„%@“ ist keine Adresse eines Bildes im Web, daher wurde nichts importiert</translation>
    </message>
    <message>
        <source>“%@” is no address of the web.</source>
        <translation>„%@“ ist keine Webadresse.</translation>
    </message>
    <message>
        <source>“%@” is no address that Zelto knows; there are zelto:import: and zelto:snap:</source>
        <translation>„%@“ ist keine Adresse, die Zelto kennt; es gibt zelto:import: und zelto:snap:</translation>
    </message>
    <message>
        <source>“%@” is no color; there are %@, or one as #3366cc, and behind it how near: ~0 to ~100.</source>
        <translation>„%@“ ist keine Farbe; es gibt %@ oder eine wie #3366cc, und dahinter, wie nahe: ~0 bis ~100.</translation>
    </message>
    <message>
        <source>“%@” is no date; write it as 25/12/2026, 2026-12-25, 2026-12, 2026, today, yesterday or 7d.</source>
        <translation>„%@“ ist kein Datum; schreiben Sie es als 25/12/2026, 2026-12-25, 2026-12, 2026, today, yesterday oder 7d.</translation>
    </message>
    <message>
        <source>“%@” is no file and no folder.</source>
        <translation>„%@“ ist weder eine Datei noch ein Ordner.</translation>
    </message>
    <message>
        <source>“%@” is no file, but a folder, a pipe or a device.</source>
        <translation>„%@“ ist keine Datei, sondern ein Ordner, eine Pipe oder ein Gerät.</translation>
    </message>
    <message>
        <source>“%@” is no live folder; `zelto livefolders` lists them</source>
        <translation>„%@“ ist kein Live-Ordner; `zelto livefolders` führt sie auf</translation>
    </message>
    <message>
        <source>“%@” is no page of the web, so nothing was taken from it. Only pages whose address begins with http or https can be.</source>
        <translation>„%@“ ist keine Seite im Web, daher wurde nichts davon übernommen. Das geht nur bei Seiten, deren Adresse mit http oder https beginnt.</translation>
    </message>
    <message>
        <source>“%@” is no rating; the last argument is a number from 0 (none) to 5</source>
        <translation>„%@“ ist keine Bewertung; das letzte Argument ist eine Zahl von 0 (keine) bis 5</translation>
    </message>
    <message>
        <source>“%@” is no size class; there are %@.</source>
        <translation>„%@“ ist keine Größenklasse; es gibt %@.</translation>
    </message>
    <message>
        <source>“%@” is no size; write it as 1280x800</source>
        <translation>„%@“ ist keine Größe; schreiben Sie sie als 1280x800</translation>
    </message>
    <message>
        <source>“%@” is no size; write it in pixels as 1920x1080</source>
        <translation>„%@“ ist keine Größe; schreiben Sie sie in Pixeln als 1920x1080</translation>
    </message>
    <message>
        <source>“%@” is no smart folder; `zelto sidebar` shows them with their text</source>
        <translation>„%@“ ist kein intelligenter Ordner; `zelto sidebar` zeigt sie mit ihrem Text</translation>
    </message>
    <message>
        <source>“%@” is no value for %@</source>
        <translation>„%@“ ist kein Wert für %@</translation>
    </message>
    <message>
        <source>“%@” is no value for %@; it is now %@</source>
        <translation>„%@“ ist kein Wert für %@; er ist jetzt %@</translation>
    </message>
    <message>
        <source>“%@” is no value.</source>
        <translation>„%@“ ist kein Wert.</translation>
    </message>
    <message>
        <source>“%@” is no web page: only addresses with http and https can be captured.</source>
        <translation>„%@“ ist keine Webseite: Nur Adressen mit http und https können aufgenommen werden.</translation>
    </message>
    <message>
        <source>“%@” is no whole number.</source>
        <translation>„%@“ ist keine ganze Zahl.</translation>
    </message>
    <message>
        <source>“%@” is none of the templates</source>
        <translation>„%@“ ist keine der Vorlagen</translation>
    </message>
    <message>
        <source>“%@” is not among the preferences that `zelto defaults read` lists; it is kept, see whether it is written right</source>
        <translation>„%@“ gehört nicht zu den Einstellungen, die `zelto defaults read` auflistet; der Wert wird behalten, prüfen Sie die Schreibweise</translation>
    </message>
    <message>
        <source>“%@” is not known. Check how it is spelled.</source>
        <translation>„%@“ ist nicht bekannt. Prüfen Sie die Schreibweise.</translation>
    </message>
    <message>
        <source>“%@” is not the address of a server. Enter one like https://example.org.</source>
        <translation>„%@“ ist keine Adresse eines Servers. Geben Sie eine wie https://example.org ein.</translation>
    </message>
    <message>
        <source>“%@” is not the name of a header.</source>
        <translation>„%@“ ist kein Name einer Kopfzeile.</translation>
    </message>
    <message>
        <source>“%@” is not the same in the backup as in the library.</source>
        <translation>„%@“ ist in der Sicherung nicht dasselbe wie in der Bibliothek.</translation>
    </message>
    <message>
        <source>“%@” is not there now. Look whether its disk is there, and try again.</source>
        <translation>„%@“ ist jetzt nicht da. Prüfen Sie, ob der Datenträger da ist, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>“%@” is on this computer or in its own network.</source>
        <translation>„%@“ liegt auf diesem Computer oder in seinem eigenen Netzwerk.</translation>
    </message>
    <message>
        <source>“%@” is one of the layers: choose another name.</source>
        <translation>„%@“ ist eine der Ebenen: Wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>“%@” is out of reach.</source>
        <translation>„%@“ ist nicht erreichbar.</translation>
    </message>
    <message>
        <source>“%@” is out of reach; its items are kept. %@</source>
        <translation>„%@“ ist nicht erreichbar; die Objekte bleiben erhalten. %@</translation>
    </message>
    <message>
        <source>“%@” is protected by a password (“%@” in it is encrypted). Unpack it yourself and import what it holds.</source>
        <translation>„%@“ ist durch ein Passwort geschützt („%@“ darin ist verschlüsselt). Entpacken Sie es selbst, und importieren Sie den Inhalt.</translation>
    </message>
    <message>
        <source>“%@” is protected by a password. Unpack it yourself and import what it holds.</source>
        <translation>„%@“ ist durch ein Passwort geschützt. Entpacken Sie es selbst, und importieren Sie den Inhalt.</translation>
    </message>
    <message>
        <source>“%@” is there already. Choose another name.</source>
        <translation>„%@“ ist bereits vorhanden. Wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>“%@” is there already; with --force it is replaced</source>
        <translation>„%@“ ist bereits vorhanden; mit --force wird es ersetzt</translation>
    </message>
    <message>
        <source>“%@” is too large for Imgur, which takes files of up to %d MB.</source>
        <translation>„%@“ ist zu groß für Imgur, das Dateien bis %d MB annimmt.</translation>
    </message>
    <message>
        <source>“%@” joins nothing; what it joins stands before and behind it.</source>
        <translation>„%@“ verbindet nichts; was es verbindet, steht davor und dahinter.</translation>
    </message>
    <message>
        <source>“%@” leads to %@, which is on this computer or in its own network. Type that address to capture it.</source>
        <translation>„%@“ führt zu %@, das auf diesem Computer oder in seinem eigenen Netzwerk liegt. Geben Sie diese Adresse ein, um sie aufzunehmen.</translation>
    </message>
    <message>
        <source>“%@” leaves out nothing; what it leaves out stands behind it.</source>
        <translation>„%@“ schließt nichts aus; was es ausschließt, steht dahinter.</translation>
    </message>
    <message>
        <source>“%@” must be a text of 1 to %d characters.</source>
        <translation>„%@“ muss ein Text aus 1 bis %d Zeichen sein.</translation>
    </message>
    <message>
        <source>“%@” must be a text of at most %d characters, and its name one of 1 to %d.</source>
        <translation>„%@“ muss ein Text von höchstens %d Zeichen sein, und sein Name einer von 1 bis %d.</translation>
    </message>
    <message>
        <source>“%@” must be names with texts in “{” and “}”, at most %d.</source>
        <translation>„%@“ muss aus Namen mit Texten in „{“ und „}“ bestehen, höchstens %d.</translation>
    </message>
    <message>
        <source>“%@” needs a value for “%@”.</source>
        <translation>„%@“ braucht einen Wert für „%@“.</translation>
    </message>
    <message>
        <source>“%@” of “%@” is not known any more.</source>
        <translation>„%@“ von „%@“ ist nicht mehr bekannt.</translation>
    </message>
    <message>
        <source>“%@” says no place: write FILE@X,Y or FILE@X,Y,OPACITY,NAME with whole numbers and an opacity from 0 to 1</source>
        <translation>„%@“ nennt keinen Ort; schreiben Sie FILE@X,Y oder FILE@X,Y,OPACITY,NAME mit ganzen Zahlen und einer Deckkraft von 0 bis 1</translation>
    </message>
    <message>
        <source>“%@” sends what you share to %@.</source>
        <translation>„%@“ sendet, was Sie teilen, an %@.</translation>
    </message>
    <message>
        <source>“%@” sets nothing; write --set KEY=VALUE with an attribute such as license, notes or webURL</source>
        <translation>„%@“ setzt nichts; schreiben Sie --set KEY=VALUE mit einem Attribut wie license, notes oder webURL</translation>
    </message>
    <message>
        <source>“%@” shows nothing by which others could be found: it has one color, or none.</source>
        <translation>„%@“ zeigt nichts, woran andere gefunden werden könnten: Es hat nur eine Farbe oder gar keine.</translation>
    </message>
    <message>
        <source>“%@” shows nothing that another picture could look like</source>
        <translation>„%@“ zeigt nichts, dem ein anderes Bild gleichen könnte</translation>
    </message>
    <message>
        <source>“%@” stays as it is.</source>
        <translation>„%@“ bleibt unverändert.</translation>
    </message>
    <message>
        <source>“%@” stays as it is. %@</source>
        <translation>„%@“ bleibt unverändert. %@</translation>
    </message>
    <message>
        <source>“%@” stays as it is: items whose files are not in it would leave the library. With --yes they do</source>
        <translation>„%@“ bleibt unverändert: Objekte, deren Dateien nicht darin liegen, würden die Bibliothek verlassen. Mit --yes tun sie es</translation>
    </message>
    <message>
        <source>“%@” stays where it is on the disk. Move the folder there.</source>
        <translation>„%@“ bleibt auf dem Datenträger, wo es ist. Verschieben Sie den Ordner dort.</translation>
    </message>
    <message>
        <source>“%@” stays where it was copied to.</source>
        <translation>„%@“ bleibt, wohin es kopiert wurde.</translation>
    </message>
    <message>
        <source>“%@” takes no files. %@</source>
        <translation>„%@“ nimmt keine Dateien an. %@</translation>
    </message>
    <message>
        <source>“%@” takes no files. Import it into the library, a project or a tag.</source>
        <translation>„%@“ nimmt keine Dateien an. Importieren Sie in die Bibliothek, ein Projekt oder ein Schlagwort.</translation>
    </message>
    <message>
        <source>“%@” takes no templates. %@</source>
        <translation>„%@“ nimmt keine Vorlagen an. %@</translation>
    </message>
    <message>
        <source>“%@” waits for its turn to be looked through. What is found comes here.</source>
        <translation>„%@“ wartet darauf, durchgesehen zu werden. Was gefunden wird, kommt hierher.</translation>
    </message>
    <message>
        <source>“%@” wants a login, of which its description says nothing.</source>
        <translation>„%@“ verlangt eine Anmeldung, zu der die Beschreibung nichts angibt.</translation>
    </message>
    <message>
        <source>“%@” was changed meanwhile. Try again.</source>
        <translation>„%@“ wurde inzwischen geändert. Versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>“%@” was changed while it was moved. Compare both, and delete the one you do not need.</source>
        <translation>„%@“ wurde während des Verschiebens geändert. Vergleichen Sie beide, und löschen Sie, was Sie nicht brauchen.</translation>
    </message>
    <message>
        <source>“%@” was changed while it was uploaded.</source>
        <translation>„%@“ wurde während des Hochladens geändert.</translation>
    </message>
    <message>
        <source>“%@” was copied, but its original stays where it was.</source>
        <translation>„%@“ wurde kopiert, aber das Original blieb, wo es war.</translation>
    </message>
    <message>
        <source>“%@” was copied, but may not be safe on the disk. Its original stays where it was.</source>
        <translation>„%@“ wurde kopiert, ist aber vielleicht nicht sicher auf dem Datenträger. Das Original blieb, wo es war.</translation>
    </message>
    <message>
        <source>“%@” was imported in part: %@</source>
        <translation>„%@“ wurde teilweise importiert: %@</translation>
    </message>
    <message>
        <source>“%@” was not added. %@</source>
        <translation>„%@“ wurde nicht hinzugefügt. %@</translation>
    </message>
    <message>
        <source>“%@” was not copied. %@</source>
        <translation>„%@“ wurde nicht kopiert. %@</translation>
    </message>
    <message>
        <source>“%@” was not exported. %@</source>
        <translation>„%@“ wurde nicht exportiert. %@</translation>
    </message>
    <message>
        <source>“%@” was not rated: %@</source>
        <translation>„%@“ wurde nicht bewertet: %@</translation>
    </message>
    <message>
        <source>“%@” was not unpacked: %@. If you trust it, unpack it yourself and import what it holds, or raise the limit with `zelto defaults`.</source>
        <translation>„%@“ wurde nicht entpackt: %@. Wenn Sie dem Archiv vertrauen, entpacken Sie es selbst, und importieren Sie den Inhalt, oder erhöhen Sie die Grenze mit `zelto defaults`.</translation>
    </message>
    <message>
        <source>“%@” was opened as a library, so that it is no backup any more, and stays.</source>
        <translation>„%@“ wurde als Bibliothek geöffnet, ist also keine Sicherung mehr und bleibt.</translation>
    </message>
    <message>
        <source>“%@” was put into the trash</source>
        <translation>„%@“ wurde in den Papierkorb gelegt</translation>
    </message>
    <message>
        <source>“%@” was taken out of the comparison.</source>
        <translation>„%@“ wurde aus dem Vergleich genommen.</translation>
    </message>
    <message>
        <source>“%@” was written with %d layers</source>
        <translation>„%@“ wurde mit %d Ebenen geschrieben</translation>
    </message>
    <message>
        <source>“%@” was written with one layer</source>
        <translation>„%@“ wurde mit einer Ebene geschrieben</translation>
    </message>
    <message>
        <source>“%@” was written without what can't be read as a picture.</source>
        <translation>„%@“ wurde ohne das geschrieben, was nicht als Bild gelesen werden kann.</translation>
    </message>
    <message>
        <source>“%@” was written, but pictures in it are incomplete.</source>
        <translation>„%@“ wurde geschrieben, aber Bilder darin sind unvollständig.</translation>
    </message>
    <message>
        <source>“%@”: %@ There are %d more notes like this.</source>
        <translation>„%@“: %@ Es gibt %d weitere solche Hinweise.</translation>
    </message>
    <message>
        <source>“==” compares nothing here; write it behind a token, as #width=100.</source>
        <translation>„==“ vergleicht hier nichts; schreiben Sie es hinter ein Token, etwa #width=100.</translation>
    </message>
    <message>
        <source>“file” is missing: the name of the form field for the file.</source>
        <translation>„file“ fehlt: der Name des Formularfelds für die Datei.</translation>
    </message>
    <message>
        <source>“final” is true.</source>
        <translation>„final“ ist true.</translation>
    </message>
    <message>
        <source>“format” is missing; it is 1.</source>
        <translation>„format“ fehlt; es ist 1.</translation>
    </message>
    <message>
        <source>“link” must hold one of “pointer”, “header”, “final”, or both “before” and “after”.</source>
        <translation>„link“ muss eines von „pointer“, „header“, „final“ oder „before“ und „after“ zusammen enthalten.</translation>
    </message>
    <message>
        <source>“raw” is true, or left out.</source>
        <translation>„raw“ ist true oder wird weggelassen.</translation>
    </message>
    <message>
        <source>“{” and “}” stand only around a secret: {secret:NAME}, with letters, digits, “-” and “_” in its name.</source>
        <translation>„{“ und „}“ stehen nur um ein Geheimnis: {secret:NAME}, mit Buchstaben, Ziffern, „-“ und „_“ im Namen.</translation>
    </message>
</context>
<context>
    <name>HumanizedTimeLocalizable</name>
    <message>
        <source>LaterKey</source>
        <extracomment>from now</extracomment>
        <translation>später</translation>
    </message>
    <message>
        <source>AgoKey</source>
        <extracomment>ago</extracomment>
        <translation>her</translation>
    </message>
    <message>
        <source>YearKey</source>
        <extracomment>1 year</extracomment>
        <translation>1 Jahr</translation>
    </message>
    <message>
        <source>YearsKey</source>
        <extracomment>years</extracomment>
        <translation>Jahre</translation>
    </message>
    <message>
        <source>DayKey</source>
        <extracomment>day</extracomment>
        <translation>Tag</translation>
    </message>
    <message>
        <source>DaysKey</source>
        <extracomment>days</extracomment>
        <translation>Tage</translation>
    </message>
    <message>
        <source>AboutKey</source>
        <extracomment>about</extracomment>
        <translation>etwa</translation>
    </message>
    <message>
        <source>HourKey</source>
        <extracomment>an hour</extracomment>
        <translation>eine Stunde</translation>
    </message>
    <message>
        <source>HoursKey</source>
        <extracomment>hours</extracomment>
        <translation>Stunden</translation>
    </message>
    <message>
        <source>MinuteKey</source>
        <extracomment>minute</extracomment>
        <translation>Minute</translation>
    </message>
    <message>
        <source>MinutesKey</source>
        <extracomment>minutes</extracomment>
        <translation>Minuten</translation>
    </message>
    <message>
        <source>SecondKey</source>
        <extracomment>seconds</extracomment>
        <translation>Sekunden</translation>
    </message>
</context>
</TS>
