<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ArchiveQueue</name>
    <message>
        <source>%1 is no longer on the disk.</source>
        <translation>%1 ist nicht mehr auf dem Datenträger.</translation>
    </message>
    <message>
        <source>The disk of %1 has too little room to prepare %2 for the archive (%3 MB free, %4 MB needed); it waits until there is room.</source>
        <translation>Der Datenträger von %1 hat zu wenig Platz, um %2 für das Archiv vorzubereiten (%3 MB frei, %4 MB nötig); es wartet, bis Platz ist.</translation>
    </message>
    <message>
        <source>the outbox cannot be written</source>
        <translation>der Ausgangsordner kann nicht beschrieben werden</translation>
    </message>
    <message>
        <source>not sent</source>
        <translation>nicht gesendet</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>wartet</translation>
    </message>
    <message>
        <source>sending</source>
        <translation>wird gesendet</translation>
    </message>
    <message>
        <source>sent</source>
        <translation>gesendet</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>fehlgeschlagen</translation>
    </message>
    <message>
        <source>needs a patient ID</source>
        <translation>braucht eine Patienten-ID</translation>
    </message>
    <message>
        <source>kept by the archive</source>
        <translation>vom Archiv aufbewahrt</translation>
    </message>
    <message>
        <source>The hospital's system for performed steps cannot be reached now: %1

What it is to hear of the cases waits on this computer and is sent when it answers.</source>
        <translation>Das System des Krankenhauses für durchgeführte Schritte ist jetzt nicht erreichbar: %1

Was es über die Fälle erfahren soll, wartet auf diesem Computer und wird gesendet, sobald es antwortet.</translation>
    </message>
    <message>
        <source>The archive does not confirm that it keeps what it received: %1

Files stay marked "sent", and none is removed from this computer.</source>
        <translation>Das Archiv bestätigt nicht, dass es das Empfangene aufbewahrt: %1

Dateien bleiben als „gesendet“ markiert, und keine wird von diesem Computer entfernt.</translation>
    </message>
    <message>
        <source>The hospital's system did not take the %1 of the case of %2: %3

The movies and snapshots are not affected; tell the hospital's IT.</source>
        <translation>Das System des Krankenhauses hat den %1 des Falls von %2 nicht angenommen: %3

Die Filme und Schnappschüsse sind nicht betroffen; sagen Sie es der IT des Krankenhauses.</translation>
    </message>
    <message>
        <source>start</source>
        <translation>Beginn</translation>
    </message>
    <message>
        <source>end</source>
        <translation>Abschluss</translation>
    </message>
    <message>
        <source>not kept by the archive: %1</source>
        <translation>nicht vom Archiv aufbewahrt: %1</translation>
    </message>
    <message>
        <source>The archive does not keep %1: %2

It stays on this computer. Select it in the storage browser and press Send again once the cause is dealt with.</source>
        <translation>Das Archiv bewahrt %1 nicht auf: %2

Es bleibt auf diesem Computer. Wählen Sie es im Speicherbrowser und drücken Sie „Erneut senden“, sobald die Ursache behoben ist.</translation>
    </message>
    <message>
        <source>The archive cannot take files now: %1

Movies and snapshots wait on this computer and are sent when it can; nothing is lost.</source>
        <translation>Das Archiv kann jetzt keine Dateien annehmen: %1

Filme und Schnappschüsse warten auf diesem Computer und werden gesendet, sobald es geht; nichts geht verloren.</translation>
    </message>
    <message>
        <source>%1 was not accepted by the archive: %2

It stays on this computer and is not sent again by itself. Select it in the storage browser and press Send to try again once the cause is dealt with.</source>
        <translation>%1 wurde vom Archiv nicht angenommen: %2

Es bleibt auf diesem Computer und wird nicht von selbst erneut gesendet. Wählen Sie es im Speicherbrowser und drücken Sie „Senden“, sobald die Ursache behoben ist.</translation>
    </message>
    <message>
        <source>The list of files for the archive cannot be saved to %1: %2

Everything stays on this computer; free some room on that disk.</source>
        <translation>Die Liste der Dateien für das Archiv kann nicht in %1 gespeichert werden: %2

Alles bleibt auf diesem Computer; schaffen Sie Platz auf diesem Datenträger.</translation>
    </message>
</context>
<context>
    <name>ArchiveStateDelegate</name>
    <message>
        <source>Archive: %1</source>
        <translation>Archiv: %1</translation>
    </message>
</context>
<context>
    <name>CommitmentListener</name>
    <message>
        <source>This station cannot take the archive's answers on port %1 now: %2

It keeps trying. If this stays, check the port under Configuration &gt; Hospital Systems; files stay "sent" until the archive's answer comes.</source>
        <translation>Diese Station kann die Antworten des Archivs jetzt nicht auf Port %1 empfangen: %2

Sie versucht es weiter. Bleibt es so, prüfen Sie den Port unter Konfiguration &gt; Krankenhaussysteme; Dateien bleiben „gesendet“, bis die Antwort des Archivs kommt.</translation>
    </message>
</context>
<context>
    <name>DicomNetwork</name>
    <message>
        <source>%1 refused the connection of this station ("%2") to "%3": check both AE titles and that the archive knows this station.</source>
        <translation>%1 hat die Verbindung dieser Station („%2“) zu „%3“ abgelehnt: prüfen Sie beide AE-Titel und ob das Archiv diese Station kennt.</translation>
    </message>
    <message>
        <source>Nothing answers at %1:%2: check the host and the port, and that the service is running.</source>
        <translation>Unter %1:%2 antwortet nichts: prüfen Sie Host und Port und ob der Dienst läuft.</translation>
    </message>
    <message>
        <source>%1 did not answer within %2 s: check the host, the network and the firewall.</source>
        <translation>%1 hat nicht innerhalb von %2 s geantwortet: prüfen Sie Host, Netzwerk und Firewall.</translation>
    </message>
    <message>
        <source>The host "%1" is not known on this network.</source>
        <translation>Der Host „%1“ ist in diesem Netzwerk nicht bekannt.</translation>
    </message>
    <message>
        <source>%1 could not be reached: %2</source>
        <translation>%1 ist nicht erreichbar: %2</translation>
    </message>
    <message>
        <source>Not set up completely: this station's AE title, the called AE title, the host and the port are all needed.</source>
        <translation>Nicht vollständig eingerichtet: der AE-Titel dieser Station, der gerufene AE-Titel, der Host und der Port werden alle gebraucht.</translation>
    </message>
    <message>
        <source>%1 answered but does not offer %2.</source>
        <translation>%1 hat geantwortet, bietet aber %2 nicht an.</translation>
    </message>
    <message>
        <source>verification (C-ECHO)</source>
        <translation>Verifikation (C-ECHO)</translation>
    </message>
    <message>
        <source>the modality worklist</source>
        <translation>die Modality-Worklist</translation>
    </message>
    <message>
        <source>%1 did not answer the worklist query (status 0x%2).</source>
        <translation>%1 hat die Worklist-Abfrage nicht beantwortet (Status 0x%2).</translation>
    </message>
    <message>
        <source>%1 of the answers are written in a character set this station cannot read ("%2") and are not shown. Ask the hospital's IT to check the worklist's character set.</source>
        <translation>%1 der Antworten sind in einem Zeichensatz geschrieben, den diese Station nicht lesen kann („%2“), und werden nicht gezeigt. Bitten Sie die IT des Krankenhauses, den Zeichensatz der Worklist zu prüfen.</translation>
    </message>
    <message>
        <source>some attributes of the object were not taken</source>
        <translation>einige Attribute des Objekts wurden nicht übernommen</translation>
    </message>
    <message>
        <source>a value of the object was out of range</source>
        <translation>ein Wert des Objekts lag außerhalb des Bereichs</translation>
    </message>
    <message>
        <source>the archive changed some values of the object</source>
        <translation>das Archiv hat einige Werte des Objekts geändert</translation>
    </message>
    <message>
        <source>the archive left some elements of the object out</source>
        <translation>das Archiv hat einige Elemente des Objekts weggelassen</translation>
    </message>
    <message>
        <source>the object does not match its kind as the archive knows it</source>
        <translation>das Objekt passt nicht zu seiner Art, wie das Archiv sie kennt</translation>
    </message>
    <message>
        <source>the archive stored it with a warning</source>
        <translation>das Archiv hat es mit einer Warnung gespeichert</translation>
    </message>
    <message>
        <source>the archive is out of resources (full, or busy)</source>
        <translation>das Archiv hat keine Ressourcen mehr (voll oder beschäftigt)</translation>
    </message>
    <message>
        <source>the archive says the object does not match its kind</source>
        <translation>das Archiv sagt, das Objekt passt nicht zu seiner Art</translation>
    </message>
    <message>
        <source>the archive cannot understand the object, or refused it</source>
        <translation>das Archiv versteht das Objekt nicht oder hat es abgelehnt</translation>
    </message>
    <message>
        <source>the archive does not take this kind of object</source>
        <translation>das Archiv nimmt diese Art von Objekt nicht an</translation>
    </message>
    <message>
        <source>this station is not allowed to store there</source>
        <translation>diese Station darf dort nicht speichern</translation>
    </message>
    <message>
        <source>the archive already has this object</source>
        <translation>das Archiv hat dieses Objekt bereits</translation>
    </message>
    <message>
        <source>the archive failed while processing the object</source>
        <translation>das Archiv ist beim Verarbeiten des Objekts gescheitert</translation>
    </message>
    <message>
        <source>the archive refused the object</source>
        <translation>das Archiv hat das Objekt abgelehnt</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2</source>
        <translation>%1 kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>storage of this kind of object in this transfer syntax (%1)</source>
        <translation>das Speichern dieser Art von Objekt in dieser Transfersyntax (%1)</translation>
    </message>
    <message>
        <source>a value was not accepted</source>
        <translation>ein Wert wurde nicht angenommen</translation>
    </message>
    <message>
        <source>a required value was missing</source>
        <translation>ein nötiger Wert fehlte</translation>
    </message>
    <message>
        <source>it already has this step</source>
        <translation>es hat diesen Schritt bereits</translation>
    </message>
    <message>
        <source>it does not know this step</source>
        <translation>es kennt diesen Schritt nicht</translation>
    </message>
    <message>
        <source>the step was already ended</source>
        <translation>der Schritt war bereits beendet</translation>
    </message>
    <message>
        <source>it is out of resources</source>
        <translation>es hat keine Ressourcen mehr</translation>
    </message>
    <message>
        <source>this station is not allowed to report there</source>
        <translation>diese Station darf dort nicht melden</translation>
    </message>
    <message>
        <source>it took it with a warning</source>
        <translation>es hat ihn mit einer Warnung angenommen</translation>
    </message>
    <message>
        <source>it refused it</source>
        <translation>es hat ihn abgelehnt</translation>
    </message>
    <message>
        <source>performed procedure steps (MPPS)</source>
        <translation>durchgeführte Untersuchungsschritte (MPPS)</translation>
    </message>
    <message>
        <source>storage commitment</source>
        <translation>Speicherbestätigung (Storage Commitment)</translation>
    </message>
</context>
<context>
    <name>DicomObjects</name>
    <message>
        <source>%1 is not a JPEG picture the archive can take: %2</source>
        <translation>%1 ist kein JPEG-Bild, das das Archiv annehmen kann: %2</translation>
    </message>
    <message>
        <source>%1 holds no picture the archive can take (%2)</source>
        <translation>%1 enthält kein Bild, das das Archiv annehmen kann (%2)</translation>
    </message>
    <message>
        <source>%1 is larger than one archive object can hold (%2 MB). Recordings made while automatic sending is on are split before that size.</source>
        <translation>%1 ist größer, als ein Archivobjekt fassen kann (%2 MB). Aufnahmen bei eingeschaltetem automatischem Senden werden vor dieser Größe geteilt.</translation>
    </message>
    <message>
        <source>%1 is not an H.264 movie (its picture is "%2"), which the archive cannot take.</source>
        <translation>%1 ist kein H.264-Film (sein Bild ist „%2“), den das Archiv annehmen kann.</translation>
    </message>
    <message>
        <source>%1 is H.264 of profile %2, not High Profile, which the archive cannot take.</source>
        <translation>%1 ist H.264 im Profil %2, nicht High Profile, das das Archiv nicht annehmen kann.</translation>
    </message>
    <message>
        <source>%1 is H.264 at level %2.%3, above the 4.2 an archive can take.</source>
        <translation>%1 ist H.264 in Level %2.%3, über den 4.2, die ein Archiv annehmen kann.</translation>
    </message>
</context>
<context>
    <name>FootSwitch</name>
    <message>
        <source>Snapshot</source>
        <translation>Schnappschuss</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Pause / Resume</source>
        <translation>Pause / Fortsetzen</translation>
    </message>
</context>
<context>
    <name>FootSwitchDialog</name>
    <message>
        <source>Foot Switch</source>
        <translation>Fußschalter</translation>
    </message>
    <message>
        <source>Press Learn, then the pedal. A pedal acts while Orvix is in front, but not while you type into a field.</source>
        <translation>Drücken Sie „Lernen“, dann das Pedal. Ein Pedal wirkt, während Orvix im Vordergrund ist, aber nicht, während Sie in ein Feld tippen.</translation>
    </message>
    <message>
        <source>Press the pedal now</source>
        <translation>Jetzt das Pedal drücken</translation>
    </message>
    <message>
        <source>Learn</source>
        <translation>Lernen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Escape leaves the pedal as it was.</source>
        <translation>Escape lässt das Pedal, wie es war.</translation>
    </message>
    <message>
        <source>%1 already does "%2"; press another pedal, or Escape.</source>
        <translation>%1 macht bereits „%2“; drücken Sie ein anderes Pedal oder Escape.</translation>
    </message>
    <message>
        <source>Learn: %1</source>
        <translation>Lernen: %1</translation>
    </message>
    <message>
        <source>Clear: %1</source>
        <translation>Löschen: %1</translation>
    </message>
</context>
<context>
    <name>HospitalSettingsDialog</name>
    <message>
        <source>Hospital Systems</source>
        <translation>Krankenhaussysteme</translation>
    </message>
    <message>
        <source>Archive (PACS)</source>
        <translation>Archiv (PACS)</translation>
    </message>
    <message>
        <source>Archive AE title</source>
        <translation>AE-Titel des Archivs</translation>
    </message>
    <message>
        <source>Worklist</source>
        <translation>Worklist</translation>
    </message>
    <message>
        <source>Worklist AE title</source>
        <translation>AE-Titel der Worklist</translation>
    </message>
    <message>
        <source>Performed procedure steps (MPPS)</source>
        <translation>Durchgeführte Untersuchungsschritte (MPPS)</translation>
    </message>
    <message>
        <source>MPPS AE title</source>
        <translation>AE-Titel des MPPS</translation>
    </message>
    <message>
        <source>Send every movie and snapshot to the archive when it is finished</source>
        <translation>Jeden Film und Schnappschuss nach Abschluss an das Archiv senden</translation>
    </message>
    <message>
        <source>Test connection</source>
        <translation>Verbindung testen</translation>
    </message>
    <message>
        <source>name or address, e.g. pacs.hospital.local</source>
        <translation>Name oder Adresse, z. B. pacs.hospital.local</translation>
    </message>
    <message>
        <source>This station's AE title</source>
        <translation>AE-Titel dieser Station</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Host</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>The archive's confirmation</source>
        <translation>Bestätigung des Archivs</translation>
    </message>
    <message>
        <source>off</source>
        <translation>aus</translation>
    </message>
    <message>
        <source>The archive confirms that it keeps each file by calling this station back on this port (storage commitment). The archive must know this station's AE title, address and port.</source>
        <translation>Das Archiv bestätigt, dass es jede Datei aufbewahrt, indem es diese Station auf diesem Port zurückruft (Storage Commitment). Das Archiv muss den AE-Titel, die Adresse und den Port dieser Station kennen.</translation>
    </message>
    <message>
        <source>Port for the archive's answers</source>
        <translation>Port für die Antworten des Archivs</translation>
    </message>
    <message>
        <source>Remove local copies the archive keeps, when room runs short</source>
        <translation>Lokale Kopien, die das Archiv aufbewahrt, entfernen, wenn der Platz knapp wird</translation>
    </message>
    <message>
        <source>Only files the archive has confirmed it keeps are removed, oldest first, never the file being recorded. Their information files stay, and say where they went.</source>
        <translation>Nur Dateien, deren Aufbewahrung das Archiv bestätigt hat, werden entfernt, die ältesten zuerst, nie die Datei, die gerade aufgenommen wird. Ihre Informationsdateien bleiben und sagen, wohin sie gingen.</translation>
    </message>
    <message>
        <source> days</source>
        <translation> Tage</translation>
    </message>
    <message>
        <source> GB</source>
        <translation> GB</translation>
    </message>
    <message>
        <source>Older than</source>
        <translation>Älter als</translation>
    </message>
    <message>
        <source>When free room is below</source>
        <translation>Wenn der freie Platz unter</translation>
    </message>
    <message>
        <source>%1: this station's AE title must be 1 to 16 letters, digits or signs, without "\".</source>
        <translation>%1: der AE-Titel dieser Station muss 1 bis 16 Buchstaben, Ziffern oder Zeichen lang sein, ohne „\\“.</translation>
    </message>
    <message>
        <source>%1: the AE title must be 1 to 16 letters, digits or signs, without "\".</source>
        <translation>%1: der AE-Titel muss 1 bis 16 Buchstaben, Ziffern oder Zeichen lang sein, ohne „\\“.</translation>
    </message>
    <message>
        <source>%1: the host is missing.</source>
        <translation>%1: der Host fehlt.</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archiv</translation>
    </message>
    <message>
        <source>Performed procedure steps</source>
        <translation>Durchgeführte Untersuchungsschritte</translation>
    </message>
    <message>
        <source>The archive</source>
        <translation>Das Archiv</translation>
    </message>
    <message>
        <source>The worklist</source>
        <translation>Die Worklist</translation>
    </message>
    <message>
        <source>The MPPS system</source>
        <translation>Das MPPS-System</translation>
    </message>
    <message>
        <source>%1 is not set up.</source>
        <translation>%1 ist nicht eingerichtet.</translation>
    </message>
    <message>
        <source>Asking %1…</source>
        <translation>Frage %1 an…</translation>
    </message>
    <message>
        <source>%1 answered (%2).</source>
        <translation>%1 hat geantwortet (%2).</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Could not create default movie folder.</source>
        <translation>Der Standard-Filmordner konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <source>Could not create default image folder.</source>
        <translation>Der Standard-Bildordner konnte nicht angelegt werden.</translation>
    </message>
    <message>
        <source>The camera was disconnected, so the recording has stopped.

The file %1 was begun as the camera went and held no picture; it has been removed.</source>
        <translation>Die Kamera wurde getrennt, deshalb wurde die Aufnahme beendet.

Die Datei %1 wurde begonnen, als die Kamera ging, und enthielt kein Bild; sie wurde entfernt.</translation>
    </message>
    <message>
        <source>The camera was disconnected, so the recording has stopped.

What was recorded is kept in %1.</source>
        <translation>Die Kamera wurde getrennt, deshalb wurde die Aufnahme beendet.

Was aufgenommen wurde, ist in %1 erhalten.</translation>
    </message>
    <message>
        <source>Finish case</source>
        <translation>Fall beenden</translation>
    </message>
    <message>
        <source>End this patient's case and clear the patient for the next one</source>
        <translation>Den Fall dieses Patienten abschließen und den Patienten für den nächsten leeren</translation>
    </message>
    <message>
        <source>A recording is running. Stop it first; it belongs to this case.</source>
        <translation>Eine Aufnahme läuft. Beenden Sie sie zuerst; sie gehört zu diesem Fall.</translation>
    </message>
    <message>
        <source>The case of %1, begun %2, was not finished when the program ended.

Finish it now, or go on recording for this patient?</source>
        <translation>Der Fall von %1, begonnen %2, war nicht abgeschlossen, als das Programm endete.

Jetzt abschließen oder für diesen Patienten weiter aufnehmen?</translation>
    </message>
    <message>
        <source>a patient without a name</source>
        <translation>ein Patient ohne Namen</translation>
    </message>
    <message>
        <source>Go on with this case</source>
        <translation>Mit diesem Fall weitermachen</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Helligkeit</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Kontrast</translation>
    </message>
    <message>
        <source>hue</source>
        <translation>Farbton</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>Sättigung</translation>
    </message>
    <message>
        <source>White Balance</source>
        <translation>Weißabgleich</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>Gamma</translation>
    </message>
    <message>
        <source>Backlight</source>
        <translation>Gegenlicht</translation>
    </message>
    <message>
        <source>Gain</source>
        <translation>Verstärkung</translation>
    </message>
    <message>
        <source>Color Enable</source>
        <translation>Farbe ein</translation>
    </message>
    <message>
        <source>Sharpness</source>
        <translation>Schärfe</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Belichtung</translation>
    </message>
    <message>
        <source>Video Quality</source>
        <translation>Videoqualität</translation>
    </message>
    <message>
        <source>Auto</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>Power line hz</source>
        <translation>Netzfrequenz</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Video Devices</source>
        <translation>Videogeräte</translation>
    </message>
    <message>
        <source>Video Compressor</source>
        <translation>Videokompression</translation>
    </message>
    <message>
        <source>Audio Compressor</source>
        <translation>Audiokompression</translation>
    </message>
    <message>
        <source>Audio Format</source>
        <translation>Audioformat</translation>
    </message>
    <message>
        <source>Audio Device</source>
        <translation>Audiogerät</translation>
    </message>
    <message>
        <source>Bit Rate</source>
        <translation>Bitrate</translation>
    </message>
    <message>
        <source>Frame Rate</source>
        <translation>Bildrate</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Anwenden</translation>
    </message>
    <message>
        <source>Record Device</source>
        <translation>Aufnahmegerät</translation>
    </message>
    <message>
        <source>The recording is still running.
Stop it before changing the record device.</source>
        <translation>Die Aufnahme läuft noch.
Beenden Sie sie, bevor Sie das Aufnahmegerät ändern.</translation>
    </message>
    <message>
        <source>version:</source>
        <translation>Version:</translation>
    </message>
    <message>
        <source>v2.0.1</source>
        <translation>v2.0.1</translation>
    </message>
    <message>
        <source>soft date:</source>
        <translation>Softwaredatum:</translation>
    </message>
    <message>
        <source>2025/01/16</source>
        <translation>2025/01/16</translation>
    </message>
    <message>
        <source>system:</source>
        <translation>System:</translation>
    </message>
    <message>
        <source>Worklist</source>
        <translation>Worklist</translation>
    </message>
    <message>
        <source>Choose the patient of the next recording from today's worklist</source>
        <translation>Den Patienten der nächsten Aufnahme aus der heutigen Worklist wählen</translation>
    </message>
    <message>
        <source>Patient ID</source>
        <translation>Patienten-ID</translation>
    </message>
    <message>
        <source>The patient's ID in the hospital, for the archive. Filled in by the worklist; type it for a patient who is not on the worklist.</source>
        <translation>Die ID des Patienten im Krankenhaus, für das Archiv. Wird von der Worklist eingetragen; tippen Sie sie für einen Patienten ein, der nicht auf der Worklist steht.</translation>
    </message>
    <message>
        <source>No worklist is set up yet. Enter its AE title, host and port under Configuration &gt; Hospital Systems.</source>
        <translation>Noch keine Worklist eingerichtet. Geben Sie ihren AE-Titel, Host und Port unter Konfiguration &gt; Krankenhaussysteme ein.</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>Senden</translation>
    </message>
    <message>
        <source>Send the selected movie or snapshot to the archive (PACS)</source>
        <translation>Den gewählten Film oder Schnappschuss an das Archiv (PACS) senden</translation>
    </message>
    <message>
        <source>Snapshots</source>
        <translation>Schnappschüsse</translation>
    </message>
    <message>
        <source>Its patient is not known to the archive's settings.</source>
        <translation>Sein Patient ist den Archiveinstellungen nicht bekannt.</translation>
    </message>
    <message>
        <source>Patient: %1</source>
        <translation>Patient: %1</translation>
    </message>
    <message>
        <source>(no name)</source>
        <translation>(kein Name)</translation>
    </message>
    <message>
        <source>Patient ID: %1</source>
        <translation>Patienten-ID: %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Study: from the worklist, %1</source>
        <translation>Studie: aus der Worklist, %1</translation>
    </message>
    <message>
        <source>Study: %1</source>
        <translation>Studie: %1</translation>
    </message>
    <message>
        <source>The archive keeps what it received; a correction made here does not reach it.</source>
        <translation>Das Archiv behält, was es erhalten hat; eine Korrektur hier erreicht es nicht.</translation>
    </message>
    <message>
        <source>Cancel sending</source>
        <translation>Senden abbrechen</translation>
    </message>
    <message>
        <source>Take the selected file out of the archive's queue; it stays on this computer</source>
        <translation>Die gewählte Datei aus der Warteschlange des Archivs nehmen; sie bleibt auf diesem Computer</translation>
    </message>
    <message>
        <source>Send again</source>
        <translation>Erneut senden</translation>
    </message>
    <message>
        <source>Send the selected file to the archive (PACS) once more</source>
        <translation>Die gewählte Datei noch einmal an das Archiv (PACS) senden</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archiv</translation>
    </message>
    <message>
        <source>No archive is set up yet. Enter its AE title, host and port under Configuration &gt; Hospital Systems.</source>
        <translation>Noch kein Archiv eingerichtet. Geben Sie seinen AE-Titel, Host und Port unter Konfiguration &gt; Krankenhaussysteme ein.</translation>
    </message>
    <message>
        <source>Select a movie or a snapshot in the list first.</source>
        <translation>Wählen Sie zuerst einen Film oder Schnappschuss in der Liste.</translation>
    </message>
    <message>
        <source>%1 is being sent now.</source>
        <translation>%1 wird gerade gesendet.</translation>
    </message>
    <message>
        <source>%1 has been sent. The archive keeps what it received; a correction is made there.</source>
        <translation>%1 wurde gesendet. Das Archiv behält, was es erhalten hat; eine Korrektur wird dort gemacht.</translation>
    </message>
    <message>
        <source>%1 is still being recorded. It can be sent once its recording has ended.</source>
        <translation>%1 wird noch aufgenommen. Es kann gesendet werden, sobald seine Aufnahme beendet ist.</translation>
    </message>
    <message>
        <source>%1 was recorded without the archive's case information.

%2

Send it for this patient?</source>
        <translation>%1 wurde ohne die Fallinformationen des Archivs aufgenommen.

%2

Für diesen Patienten senden?</translation>
    </message>
    <message>
        <source>%1 was not taken with this program's archive settings, so its patient is not known. It is not sent.</source>
        <translation>%1 wurde nicht mit den Archiveinstellungen dieses Programms aufgenommen, daher ist sein Patient nicht bekannt. Es wird nicht gesendet.</translation>
    </message>
    <message>
        <source>%1 has no patient ID, so the archive could not tell its patient from others. It stays here, marked "needs a patient ID": edit its information, enter the patient's ID and press Send.</source>
        <translation>%1 hat keine Patienten-ID, daher könnte das Archiv seinen Patienten nicht von anderen unterscheiden. Es bleibt hier, markiert mit „braucht eine Patienten-ID“: bearbeiten Sie seine Informationen, geben Sie die ID des Patienten ein und drücken Sie „Senden“.</translation>
    </message>
    <message>
        <source>Sending %1: %p%</source>
        <translation>Sende %1: %p%</translation>
    </message>
    <message>
        <source>%1 has already been sent. The archive keeps what it received; the correction is kept here only. Correct it in the archive as well.</source>
        <translation>%1 wurde bereits gesendet. Das Archiv behält, was es erhalten hat; die Korrektur bleibt nur hier. Korrigieren Sie es auch im Archiv.</translation>
    </message>
    <message>
        <source>Not rotate</source>
        <translation>Nicht drehen</translation>
    </message>
    <message>
        <source>Rotate 180 degree</source>
        <translation>Um 180 Grad drehen</translation>
    </message>
    <message>
        <source>Mirror</source>
        <translation>Spiegeln</translation>
    </message>
    <message>
        <source>180º Mirror</source>
        <translation>180º gespiegelt</translation>
    </message>
    <message>
        <source>Rotate 180 degree with mirror</source>
        <translation>Um 180 Grad drehen und spiegeln</translation>
    </message>
    <message>
        <source>Record &amp;Start</source>
        <translation>Aufnahme &amp;starten</translation>
    </message>
    <message>
        <source>Start recording</source>
        <translation>Aufnahme starten</translation>
    </message>
    <message>
        <source>Record S&amp;top</source>
        <translation>Aufnahme s&amp;toppen</translation>
    </message>
    <message>
        <source>Stop recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>Record &amp;Pause</source>
        <translation>Aufnahme &amp;pausieren</translation>
    </message>
    <message>
        <source>Pause recording</source>
        <translation>Aufnahme pausieren</translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation>&amp;Live</translation>
    </message>
    <message>
        <source>Change to live mode</source>
        <translation>Zum Livebild wechseln</translation>
    </message>
    <message>
        <source>&amp;1GB</source>
        <translation>&amp;1GB</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 1GB</source>
        <translation>Größe einer Videodatei auf höchstens 1GB begrenzen</translation>
    </message>
    <message>
        <source>&amp;2GB</source>
        <translation>&amp;2GB</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 2GB</source>
        <translation>Größe einer Videodatei auf höchstens 2GB begrenzen</translation>
    </message>
    <message>
        <source>&amp;3GB</source>
        <translation>&amp;3GB</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 3GB</source>
        <translation>Größe einer Videodatei auf höchstens 3GB begrenzen</translation>
    </message>
    <message>
        <source>&amp;4GB</source>
        <translation>&amp;4GB</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 4GB</source>
        <translation>Größe einer Videodatei auf höchstens 4GB begrenzen</translation>
    </message>
    <message>
        <source>&amp;5GB</source>
        <translation>&amp;5GB</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 5GB</source>
        <translation>Größe einer Videodatei auf höchstens 5GB begrenzen</translation>
    </message>
    <message>
        <source>1&amp;0GB</source>
        <translation>1&amp;0GB</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 10GB</source>
        <translation>Größe einer Videodatei auf höchstens 10GB begrenzen</translation>
    </message>
    <message>
        <source>&amp;No Size Limit</source>
        <translation>&amp;Keine Größengrenze</translation>
    </message>
    <message>
        <source>Unlimit the maximum size of a video file</source>
        <translation>Die Größe einer Videodatei nicht begrenzen</translation>
    </message>
    <message>
        <source>SnapShot</source>
        <translation>Schnappschuss</translation>
    </message>
    <message>
        <source>Take a snapshot form video</source>
        <translation>Einen Schnappschuss vom Video machen</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>Vollbild</translation>
    </message>
    <message>
        <source>Toggle full screen mode</source>
        <translation>Vollbild ein- und ausschalten</translation>
    </message>
    <message>
        <source>Recording device configuration</source>
        <translation>Einstellungen des Aufnahmegeräts</translation>
    </message>
    <message>
        <source>Video Quality Settings</source>
        <translation>Videoqualität</translation>
    </message>
    <message>
        <source>Configure video quality options</source>
        <translation>Videoqualität einstellen</translation>
    </message>
    <message>
        <source>Record Storage Path</source>
        <translation>Speicherort der Aufnahmen</translation>
    </message>
    <message>
        <source>Configure recording storage root path</source>
        <translation>Den Speicherordner der Aufnahmen wählen</translation>
    </message>
    <message>
        <source>Hospital Systems</source>
        <translation>Krankenhaussysteme</translation>
    </message>
    <message>
        <source>Set up the archive (PACS) and the worklist</source>
        <translation>Archiv (PACS) und Worklist einrichten</translation>
    </message>
    <message>
        <source>Foot Switch</source>
        <translation>Fußschalter</translation>
    </message>
    <message>
        <source>Learn the keys of the foot switch's pedals</source>
        <translation>Die Tasten der Pedale des Fußschalters lernen</translation>
    </message>
    <message>
        <source>Finish Case</source>
        <translation>Fall abschließen</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>&amp;Aufnahme</translation>
    </message>
    <message>
        <source>&amp;File Size</source>
        <translation>&amp;Dateigröße</translation>
    </message>
    <message>
        <source>S&amp;napShot</source>
        <translation>Schnapp&amp;schuss</translation>
    </message>
    <message>
        <source>&amp;Screen</source>
        <translation>&amp;Bildschirm</translation>
    </message>
    <message>
        <source>&amp;Configuration</source>
        <translation>&amp;Konfiguration</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Open help document</source>
        <translation>Hilfedokument öffnen</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Log Folder</source>
        <translation>Protokollordner</translation>
    </message>
    <message>
        <source>Open the folder of the program's log</source>
        <translation>Den Ordner des Programmprotokolls öffnen</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Drehung</translation>
    </message>
    <message>
        <source>Resolution</source>
        <translation>Auflösung</translation>
    </message>
    <message>
        <source>Live</source>
        <translation>Live</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>Information</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>*File Name</source>
        <translation>*Dateiname</translation>
    </message>
    <message>
        <source>Doctor Name</source>
        <translation>Arzt</translation>
    </message>
    <message>
        <source>Patient Name</source>
        <translation>Patient</translation>
    </message>
    <message>
        <source>Hospital Name</source>
        <translation>Krankenhaus</translation>
    </message>
    <message>
        <source>Comment</source>
        <translation>Kommentar</translation>
    </message>
    <message>
        <source>File Preview</source>
        <translation>Dateivorschau</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Export</translation>
    </message>
    <message>
        <source>Copy movies and snapshots for teaching, without the patient</source>
        <translation>Filme und Schnappschüsse für die Lehre kopieren, ohne den Patienten</translation>
    </message>
    <message>
        <source>Storage</source>
        <translation>Speicher</translation>
    </message>
    <message>
        <source>Movie Folder</source>
        <translation>Filmordner</translation>
    </message>
    <message>
        <source>Image Folder</source>
        <translation>Bildordner</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Please Enter File information</source>
        <translation>Bitte Dateiinformationen eingeben</translation>
    </message>
    <message>
        <source>The file name contains "%1", so the movie is recorded into the folder %2, not into the Movie folder, and the storage browser does not show it.</source>
        <translation>Der Dateiname enthält „%1“, daher wird der Film in den Ordner %2 aufgenommen, nicht in den Filmordner, und der Speicherbrowser zeigt ihn nicht.</translation>
    </message>
    <message>
        <source>The folder %1 did not exist (was the storage folder moved or deleted?). It has been made again, and the movie is recorded into it.</source>
        <translation>Der Ordner %1 existierte nicht (wurde der Speicherordner verschoben oder gelöscht?). Er wurde neu angelegt, und der Film wird hinein aufgenommen.</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Fortsetzen</translation>
    </message>
    <message>
        <source>The recording %1 was stopped before the camera's first picture reached it. It held no picture and no player could open it, so it has been removed with its information file.</source>
        <translation>Die Aufnahme %1 wurde beendet, bevor das erste Bild der Kamera sie erreichte. Sie enthielt kein Bild und kein Player konnte sie öffnen, daher wurde sie mit ihrer Informationsdatei entfernt.</translation>
    </message>
    <message>
        <source>Capture error</source>
        <translation>Aufnahmefehler</translation>
    </message>
    <message>
        <source>its folder %1 does not exist</source>
        <translation>ihr Ordner %1 existiert nicht</translation>
    </message>
    <message>
        <source>its folder %1 cannot be written to</source>
        <translation>in ihren Ordner %1 kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation>der Datenträger ist voll</translation>
    </message>
    <message>
        <source>it has not grown for %1 seconds</source>
        <translation>sie ist seit %1 Sekunden nicht gewachsen</translation>
    </message>
    <message>
        <source>the recorder has not created it</source>
        <translation>der Rekorder hat sie nicht angelegt</translation>
    </message>
    <message>
        <source>Nothing is being recorded into %1: %2.

The recording has been stopped. Check the file name and the storage folder, then press Record to start again.</source>
        <translation>In %1 wird nichts aufgenommen: %2.

Die Aufnahme wurde beendet. Prüfen Sie den Dateinamen und den Speicherordner und drücken Sie dann „Aufnahme“, um neu zu beginnen.</translation>
    </message>
    <message>
        <source>No recording was started into %1: the file name is too long for the file system.

Shorten the file name and press Record again.</source>
        <translation>Keine Aufnahme in %1 begonnen: der Dateiname ist zu lang für das Dateisystem.

Kürzen Sie den Dateinamen und drücken Sie erneut „Aufnahme“.</translation>
    </message>
    <message>
        <source>The disk of the storage folder is full (%1 free): no recording was started.

Make room on it or choose another storage folder.</source>
        <translation>Der Datenträger des Speicherordners ist voll (%1 frei): keine Aufnahme begonnen.

Schaffen Sie Platz darauf oder wählen Sie einen anderen Speicherordner.</translation>
    </message>
    <message>
        <source>The disk of the storage folder is almost full (%1 free).

The recording has been stopped and saved as %2. Make room on the disk before recording again.</source>
        <translation>Der Datenträger des Speicherordners ist fast voll (%1 frei).

Die Aufnahme wurde beendet und als %2 gespeichert. Schaffen Sie Platz auf dem Datenträger, bevor Sie wieder aufnehmen.</translation>
    </message>
    <message>
        <source>Only about %1 minutes of recording still fit on the disk of the storage folder (%2 free).

The recording goes on and is stopped and saved before the disk is full. Make room on the disk or choose another storage folder.</source>
        <translation>Nur noch etwa %1 Minuten Aufnahme passen auf den Datenträger des Speicherordners (%2 frei).

Die Aufnahme läuft weiter und wird beendet und gespeichert, bevor der Datenträger voll ist. Schaffen Sie Platz oder wählen Sie einen anderen Speicherordner.</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>no picture came from the camera</source>
        <translation>von der Kamera kam kein Bild</translation>
    </message>
    <message>
        <source>The snapshot %1 was not saved: %2.

Check the storage folder, then take the snapshot again.</source>
        <translation>Der Schnappschuss %1 wurde nicht gespeichert: %2.

Prüfen Sie den Speicherordner und machen Sie den Schnappschuss erneut.</translation>
    </message>
    <message>
        <source>Do you want to delete
</source>
        <translation>Wirklich löschen?
</translation>
    </message>
    <message>
        <source>Select Directory</source>
        <translation>Ordner wählen</translation>
    </message>
    <message>
        <source>The disk of %1 was running short of room. These movies, which the archive %2 has confirmed it keeps, were removed from this computer:

%3

Their information files stay beside where they were and say so.</source>
        <translation>Auf dem Datenträger von %1 wurde der Platz knapp. Diese Filme, deren Aufbewahrung das Archiv %2 bestätigt hat, wurden von diesem Computer entfernt:

%3

Ihre Informationsdateien bleiben, wo die Filme waren, und sagen es.</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>Schnappschuss</translation>
    </message>
    <message>
        <source>Takes a snapshot of the live picture (F7)</source>
        <translation>Macht einen Schnappschuss vom Livebild (F7)</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>Starts the recording (F5); pressed again, stops it (F4). While paused, it resumes.</source>
        <translation>Startet die Aufnahme (F5); erneut gedrückt, beendet sie sie (F4). Während einer Pause setzt sie sie fort.</translation>
    </message>
    <message>
        <source>Mute microphone</source>
        <translation>Mikrofon stumm</translation>
    </message>
    <message>
        <source>Pressed: the microphone is muted, and its sound is not recorded</source>
        <translation>Gedrückt: das Mikrofon ist stumm, sein Ton wird nicht aufgenommen</translation>
    </message>
    <message>
        <source>Edit information</source>
        <translation>Informationen bearbeiten</translation>
    </message>
    <message>
        <source>Lets the selected movie's information be changed; pressed again, saves it</source>
        <translation>Lässt die Informationen des gewählten Films ändern; erneut gedrückt, speichert sie</translation>
    </message>
    <message>
        <source>Discard changes</source>
        <translation>Änderungen verwerfen</translation>
    </message>
    <message>
        <source>Puts the information back as it was saved</source>
        <translation>Stellt die Informationen wieder her, wie sie gespeichert waren</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Deletes the selected movie or snapshot, after asking</source>
        <translation>Löscht den gewählten Film oder Schnappschuss nach einer Rückfrage</translation>
    </message>
    <message>
        <source>Choose storage folder</source>
        <translation>Speicherordner wählen</translation>
    </message>
    <message>
        <source>Chooses the folder that recordings and snapshots go into</source>
        <translation>Wählt den Ordner, in den Aufnahmen und Schnappschüsse kommen</translation>
    </message>
    <message>
        <source>The camera's picture size</source>
        <translation>Die Bildgröße der Kamera</translation>
    </message>
    <message>
        <source>How the live picture is turned on the screen</source>
        <translation>Wie das Livebild auf dem Bildschirm gedreht wird</translation>
    </message>
    <message>
        <source>Back to the live picture (F1)</source>
        <translation>Zurück zum Livebild (F1)</translation>
    </message>
    <message>
        <source>Recording time</source>
        <translation>Aufnahmezeit</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>Mikrofonlautstärke</translation>
    </message>
    <message>
        <source>Storage folder</source>
        <translation>Speicherordner</translation>
    </message>
    <message>
        <source>Recorded movies and snapshots</source>
        <translation>Aufgenommene Filme und Schnappschüsse</translation>
    </message>
    <message>
        <source>Return opens the selected file; Delete deletes it, after asking</source>
        <translation>Eingabe öffnet die gewählte Datei; Entf löscht sie nach einer Rückfrage</translation>
    </message>
    <message>
        <source>Live picture</source>
        <translation>Livebild</translation>
    </message>
    <message>
        <source>Auto: %1</source>
        <translation>Auto: %1</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menü</translation>
    </message>
</context>
<context>
    <name>Mp4Summary</name>
    <message>
        <source>no picture track in %1</source>
        <translation>keine Bildspur in %1</translation>
    </message>
</context>
<context>
    <name>OrvixMediaPlayerWidget</name>
    <message>
        <source>Open Movie</source>
        <translation>Film öffnen</translation>
    </message>
    <message>
        <source>Error: </source>
        <translation>Fehler: </translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Position in the movie</source>
        <translation>Position im Film</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
</context>
<context>
    <name>PerformedStep</name>
    <message>
        <source>the report has no data</source>
        <translation>der Bericht enthält keine Daten</translation>
    </message>
    <message>
        <source>the report names no transaction</source>
        <translation>der Bericht nennt keine Transaktion</translation>
    </message>
    <message>
        <source>the archive does not have it</source>
        <translation>das Archiv hat es nicht</translation>
    </message>
    <message>
        <source>the archive holds it as another kind of object</source>
        <translation>das Archiv hat es als andere Art von Objekt</translation>
    </message>
    <message>
        <source>the archive does not keep this kind of object</source>
        <translation>das Archiv bewahrt diese Art von Objekt nicht auf</translation>
    </message>
    <message>
        <source>the archive was asked twice in the same transaction</source>
        <translation>das Archiv wurde in derselben Transaktion zweimal gefragt</translation>
    </message>
    <message>
        <source>the archive is out of resources</source>
        <translation>das Archiv hat keine Ressourcen mehr</translation>
    </message>
    <message>
        <source>the archive could not process the request</source>
        <translation>das Archiv konnte die Anfrage nicht verarbeiten</translation>
    </message>
</context>
<context>
    <name>TeachingExport::Exporter</name>
    <message>
        <source>cancelled</source>
        <translation>abgebrochen</translation>
    </message>
    <message>
        <source>it could not be read to its end</source>
        <translation>es konnte nicht bis zum Ende gelesen werden</translation>
    </message>
    <message>
        <source>it could not be read</source>
        <translation>es konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>it is not an MP4 or QuickTime movie, or it is damaged</source>
        <translation>es ist kein MP4- oder QuickTime-Film, oder es ist beschädigt</translation>
    </message>
    <message>
        <source>its movie header is too large</source>
        <translation>sein Filmkopf ist zu groß</translation>
    </message>
    <message>
        <source>it holds no movie header: it does not play</source>
        <translation>es hat keinen Filmkopf: es lässt sich nicht abspielen</translation>
    </message>
    <message>
        <source>it is not a JPEG picture</source>
        <translation>es ist kein JPEG-Bild</translation>
    </message>
    <message>
        <source>the picture is damaged</source>
        <translation>das Bild ist beschädigt</translation>
    </message>
    <message>
        <source>The folder %1 is not there. Is the stick plugged in? Nothing was exported.</source>
        <translation>Der Ordner %1 ist nicht da. Ist der Stick eingesteckt? Nichts wurde exportiert.</translation>
    </message>
    <message>
        <source>%1 is no longer there. Nothing was exported.</source>
        <translation>%1 ist nicht mehr da. Nichts wurde exportiert.</translation>
    </message>
    <message>
        <source>The files chosen need %1 MB, but %2 has only %3 MB free. Nothing was exported: choose fewer files, or another folder or stick.</source>
        <translation>Die gewählten Dateien brauchen %1 MB, aber %2 hat nur %3 MB frei. Nichts wurde exportiert: wählen Sie weniger Dateien oder einen anderen Ordner oder Stick.</translation>
    </message>
    <message>
        <source>The folder %1 went away while %2 was written (was the stick removed?). Nothing of it was left there.</source>
        <translation>Der Ordner %1 verschwand, während %2 geschrieben wurde (wurde der Stick entfernt?). Nichts davon blieb dort.</translation>
    </message>
    <message>
        <source>%1 could not be read: %2. It was not exported.</source>
        <translation>%1 konnte nicht gelesen werden: %2. Es wurde nicht exportiert.</translation>
    </message>
    <message>
        <source>Orvix cannot write into %1: %2. Nothing was exported from %3 on.</source>
        <translation>Orvix kann nicht in %1 schreiben: %2. Ab %3 wurde nichts exportiert.</translation>
    </message>
    <message>
        <source>The export was cancelled; %1 was not exported.</source>
        <translation>Der Export wurde abgebrochen; %1 wurde nicht exportiert.</translation>
    </message>
    <message>
        <source>%1 was not exported: %2.</source>
        <translation>%1 wurde nicht exportiert: %2.</translation>
    </message>
    <message>
        <source>%1 is full: %2 did not fit. Nothing of it was left there.</source>
        <translation>%1 ist voll: %2 passte nicht. Nichts davon blieb dort.</translation>
    </message>
    <message>
        <source>%1 is too large for the file system of %2 (a stick formatted with FAT32 holds files of up to 4 GB). Nothing of it was left there.</source>
        <translation>%1 ist zu groß für das Dateisystem von %2 (ein mit FAT32 formatierter Stick fasst Dateien bis 4 GB). Nichts davon blieb dort.</translation>
    </message>
    <message>
        <source>%1 could not be written into %2: %3. Nothing of it was left there.</source>
        <translation>%1 konnte nicht in %2 geschrieben werden: %3. Nichts davon blieb dort.</translation>
    </message>
    <message>
        <source>%1 was not exported: its copy still held "%2", which names the case. Nothing of it was left in %3.</source>
        <translation>%1 wurde nicht exportiert: seine Kopie enthielt noch „%2“, was den Fall benennt. Nichts davon blieb in %3.</translation>
    </message>
    <message>
        <source>%1 could not be named %2 in %3. Nothing of it was left there.</source>
        <translation>%1 konnte in %3 nicht %2 genannt werden. Nichts davon blieb dort.</translation>
    </message>
</context>
<context>
    <name>TeachingExportDialog</name>
    <message>
        <source>Export for Teaching</source>
        <translation>Export für die Lehre</translation>
    </message>
    <message>
        <source>The copies carry no patient: they are named by the day and a number, leave the information files behind, and the names are taken out of the movies and pictures. Picture and sound stay as recorded; the originals are not changed.</source>
        <translation>Die Kopien tragen keinen Patienten: sie werden nach Tag und Nummer benannt, lassen die Informationsdateien zurück, und die Namen werden aus den Filmen und Bildern entfernt. Bild und Ton bleiben wie aufgenommen; die Originale werden nicht verändert.</translation>
    </message>
    <message>
        <source>Movies and snapshots to export</source>
        <translation>Zu exportierende Filme und Schnappschüsse</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keine</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Ordner:</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>Wählen...</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>%1: %p%</source>
        <translation>%1: %p%</translation>
    </message>
    <message>
        <source>Export to</source>
        <translation>Exportieren nach</translation>
    </message>
    <message>
        <source>Check the movies and snapshots to export first.</source>
        <translation>Kreuzen Sie zuerst die zu exportierenden Filme und Schnappschüsse an.</translation>
    </message>
    <message>
        <source>Choose the folder to export to first.</source>
        <translation>Wählen Sie zuerst den Ordner, in den exportiert wird.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>%p%</source>
        <translation>%p%</translation>
    </message>
    <message numerus="yes">
        <source>Exporting %n file(s)...</source>
        <translation>
            <numerusform>Exportiere %n Datei...</numerusform>
            <numerusform>Exportiere %n Dateien...</numerusform>
        </translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) exported to %1.</source>
        <translation>
            <numerusform>%n Datei nach %1 exportiert.</numerusform>
            <numerusform>%n Dateien nach %1 exportiert.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) had been exported before.</source>
        <translation>
            <numerusform>%n Datei war vorher exportiert worden.</numerusform>
            <numerusform>%n Dateien waren vorher exportiert worden.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>WaitingForCameraWidget</name>
    <message>
        <source>Please connect Orvix cameras.</source>
        <translation>Bitte Orvix-Kameras anschließen.</translation>
    </message>
</context>
<context>
    <name>WorklistDialog</name>
    <message>
        <source>Worklist: today, %1</source>
        <translation>Worklist: heute, %1</translation>
    </message>
    <message>
        <source>Patient name begins with… (optional)</source>
        <translation>Name des Patienten beginnt mit… (optional)</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Patient</source>
        <translation>Patient</translation>
    </message>
    <message>
        <source>Patient ID</source>
        <translation>Patienten-ID</translation>
    </message>
    <message>
        <source>Procedure</source>
        <translation>Untersuchung</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Wählen</translation>
    </message>
    <message>
        <source>Asking the worklist %1…</source>
        <translation>Frage die Worklist %1…</translation>
    </message>
    <message>
        <source>The worklist could not be read. %1</source>
        <translation>Die Worklist konnte nicht gelesen werden. %1</translation>
    </message>
    <message>
        <source>Nothing is scheduled for %1 today%2.</source>
        <translation>Für %1 ist heute nichts geplant%2.</translation>
    </message>
    <message>
        <source> for a patient named "%1…"</source>
        <translation> für einen Patienten namens „%1…“</translation>
    </message>
    <message>
        <source>1 procedure is scheduled today. Choose it for the next recording.</source>
        <translation>Heute ist 1 Untersuchung geplant. Wählen Sie sie für die nächste Aufnahme.</translation>
    </message>
    <message>
        <source>%1 procedures are scheduled today. Choose one for the next recording.</source>
        <translation>Heute sind %1 Untersuchungen geplant. Wählen Sie eine für die nächste Aufnahme.</translation>
    </message>
    <message>
        <source>Patient name begins with</source>
        <translation>Name des Patienten beginnt mit</translation>
    </message>
    <message>
        <source>Procedures scheduled today</source>
        <translation>Heute geplante Untersuchungen</translation>
    </message>
</context>
</TS>
