<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>ArchiveQueue</name>
    <message>
        <source>%1 is no longer on the disk.</source>
        <translation>%1 n'est plus sur le disque.</translation>
    </message>
    <message>
        <source>The disk of %1 has too little room to prepare %2 for the archive (%3 MB free, %4 MB needed); it waits until there is room.</source>
        <translation>Le disque de %1 a trop peu de place pour préparer %2 pour l'archive (%3 Mo libres, %4 Mo nécessaires) ; il attend qu'il y ait de la place.</translation>
    </message>
    <message>
        <source>the outbox cannot be written</source>
        <translation>le dossier d'envoi ne peut pas être écrit</translation>
    </message>
    <message>
        <source>not sent</source>
        <translation>non envoyé</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>en attente</translation>
    </message>
    <message>
        <source>sending</source>
        <translation>en cours d'envoi</translation>
    </message>
    <message>
        <source>sent</source>
        <translation>envoyé</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>échec</translation>
    </message>
    <message>
        <source>needs a patient ID</source>
        <translation>ID patient manquant</translation>
    </message>
    <message>
        <source>kept by the archive</source>
        <translation>conservé par l'archive</translation>
    </message>
    <message>
        <source>The hospital's system for performed steps cannot be reached now: %1

What it is to hear of the cases waits on this computer and is sent when it answers.</source>
        <translation>Le système de l'hôpital pour les étapes réalisées est injoignable pour l'instant : %1

Ce qu'il doit apprendre des cas attend sur cet ordinateur et sera envoyé dès qu'il répondra.</translation>
    </message>
    <message>
        <source>The archive does not confirm that it keeps what it received: %1

Files stay marked "sent", and none is removed from this computer.</source>
        <translation>L'archive ne confirme pas qu'elle conserve ce qu'elle a reçu : %1

Les fichiers restent marqués « envoyé », et aucun n'est supprimé de cet ordinateur.</translation>
    </message>
    <message>
        <source>The hospital's system did not take the %1 of the case of %2: %3

The movies and snapshots are not affected; tell the hospital's IT.</source>
        <translation>Le système de l'hôpital n'a pas accepté le %1 du cas de %2 : %3

Les films et les instantanés ne sont pas touchés ; prévenez l'informatique de l'hôpital.</translation>
    </message>
    <message>
        <source>start</source>
        <translation>début</translation>
    </message>
    <message>
        <source>end</source>
        <translation>fin</translation>
    </message>
    <message>
        <source>not kept by the archive: %1</source>
        <translation>non conservé par l'archive : %1</translation>
    </message>
    <message>
        <source>The archive does not keep %1: %2

It stays on this computer. Select it in the storage browser and press Send again once the cause is dealt with.</source>
        <translation>L'archive ne conserve pas %1 : %2

Il reste sur cet ordinateur. Sélectionnez-le dans le navigateur de stockage et appuyez sur « Renvoyer » une fois la cause réglée.</translation>
    </message>
    <message>
        <source>The archive cannot take files now: %1

Movies and snapshots wait on this computer and are sent when it can; nothing is lost.</source>
        <translation>L'archive ne peut pas prendre de fichiers pour l'instant : %1

Les films et les instantanés attendent sur cet ordinateur et seront envoyés dès que possible ; rien n'est perdu.</translation>
    </message>
    <message>
        <source>%1 was not accepted by the archive: %2

It stays on this computer and is not sent again by itself. Select it in the storage browser and press Send to try again once the cause is dealt with.</source>
        <translation>%1 n'a pas été accepté par l'archive : %2

Il reste sur cet ordinateur et n'est pas renvoyé de lui-même. Sélectionnez-le dans le navigateur de stockage et appuyez sur « Envoyer » une fois la cause réglée.</translation>
    </message>
    <message>
        <source>The list of files for the archive cannot be saved to %1: %2

Everything stays on this computer; free some room on that disk.</source>
        <translation>La liste des fichiers pour l'archive ne peut pas être enregistrée dans %1 : %2

Tout reste sur cet ordinateur ; libérez de la place sur ce disque.</translation>
    </message>
</context>
<context>
    <name>ArchiveStateDelegate</name>
    <message>
        <source>Archive: %1</source>
        <translation>Archive : %1</translation>
    </message>
</context>
<context>
    <name>CommitmentListener</name>
    <message>
        <source>This station cannot take the archive's answers on port %1 now: %2

It keeps trying. If this stays, check the port under Configuration &gt; Hospital Systems; files stay "sent" until the archive's answer comes.</source>
        <translation>Ce poste ne peut pas recevoir les réponses de l'archive sur le port %1 pour l'instant : %2

Il continue d'essayer. Si cela persiste, vérifiez le port sous Configuration &gt; Systèmes de l'hôpital ; les fichiers restent « envoyé » jusqu'à la réponse de l'archive.</translation>
    </message>
</context>
<context>
    <name>DicomNetwork</name>
    <message>
        <source>%1 refused the connection of this station ("%2") to "%3": check both AE titles and that the archive knows this station.</source>
        <translation>%1 a refusé la connexion de ce poste (« %2 ») vers « %3 » : vérifiez les deux titres AE et que l'archive connaît ce poste.</translation>
    </message>
    <message>
        <source>Nothing answers at %1:%2: check the host and the port, and that the service is running.</source>
        <translation>Rien ne répond à %1:%2 : vérifiez l'hôte et le port, et que le service fonctionne.</translation>
    </message>
    <message>
        <source>%1 did not answer within %2 s: check the host, the network and the firewall.</source>
        <translation>%1 n'a pas répondu en %2 s : vérifiez l'hôte, le réseau et le pare-feu.</translation>
    </message>
    <message>
        <source>The host "%1" is not known on this network.</source>
        <translation>L'hôte « %1 » est inconnu sur ce réseau.</translation>
    </message>
    <message>
        <source>%1 could not be reached: %2</source>
        <translation>%1 est injoignable : %2</translation>
    </message>
    <message>
        <source>Not set up completely: this station's AE title, the called AE title, the host and the port are all needed.</source>
        <translation>Configuration incomplète : le titre AE de ce poste, le titre AE appelé, l'hôte et le port sont tous nécessaires.</translation>
    </message>
    <message>
        <source>%1 answered but does not offer %2.</source>
        <translation>%1 a répondu mais ne propose pas %2.</translation>
    </message>
    <message>
        <source>verification (C-ECHO)</source>
        <translation>la vérification (C-ECHO)</translation>
    </message>
    <message>
        <source>the modality worklist</source>
        <translation>la worklist de modalité</translation>
    </message>
    <message>
        <source>%1 did not answer the worklist query (status 0x%2).</source>
        <translation>%1 n'a pas répondu à la requête de worklist (statut 0x%2).</translation>
    </message>
    <message>
        <source>%1 of the answers are written in a character set this station cannot read ("%2") and are not shown. Ask the hospital's IT to check the worklist's character set.</source>
        <translation>%1 des réponses sont écrites dans un jeu de caractères que ce poste ne sait pas lire (« %2 ») et ne sont pas affichées. Demandez à l'informatique de l'hôpital de vérifier le jeu de caractères de la worklist.</translation>
    </message>
    <message>
        <source>some attributes of the object were not taken</source>
        <translation>certains attributs de l'objet n'ont pas été repris</translation>
    </message>
    <message>
        <source>a value of the object was out of range</source>
        <translation>une valeur de l'objet était hors limites</translation>
    </message>
    <message>
        <source>the archive changed some values of the object</source>
        <translation>l'archive a modifié certaines valeurs de l'objet</translation>
    </message>
    <message>
        <source>the archive left some elements of the object out</source>
        <translation>l'archive a omis certains éléments de l'objet</translation>
    </message>
    <message>
        <source>the object does not match its kind as the archive knows it</source>
        <translation>l'objet ne correspond pas à son type tel que l'archive le connaît</translation>
    </message>
    <message>
        <source>the archive stored it with a warning</source>
        <translation>l'archive l'a enregistré avec un avertissement</translation>
    </message>
    <message>
        <source>the archive is out of resources (full, or busy)</source>
        <translation>l'archive manque de ressources (pleine ou occupée)</translation>
    </message>
    <message>
        <source>the archive says the object does not match its kind</source>
        <translation>l'archive dit que l'objet ne correspond pas à son type</translation>
    </message>
    <message>
        <source>the archive cannot understand the object, or refused it</source>
        <translation>l'archive ne comprend pas l'objet, ou l'a refusé</translation>
    </message>
    <message>
        <source>the archive does not take this kind of object</source>
        <translation>l'archive ne prend pas ce type d'objet</translation>
    </message>
    <message>
        <source>this station is not allowed to store there</source>
        <translation>ce poste n'a pas le droit d'y enregistrer</translation>
    </message>
    <message>
        <source>the archive already has this object</source>
        <translation>l'archive a déjà cet objet</translation>
    </message>
    <message>
        <source>the archive failed while processing the object</source>
        <translation>l'archive a échoué en traitant l'objet</translation>
    </message>
    <message>
        <source>the archive refused the object</source>
        <translation>l'archive a refusé l'objet</translation>
    </message>
    <message>
        <source>%1 cannot be read: %2</source>
        <translation>%1 ne peut pas être lu : %2</translation>
    </message>
    <message>
        <source>storage of this kind of object in this transfer syntax (%1)</source>
        <translation>l'enregistrement de ce type d'objet dans cette syntaxe de transfert (%1)</translation>
    </message>
    <message>
        <source>a value was not accepted</source>
        <translation>une valeur n'a pas été acceptée</translation>
    </message>
    <message>
        <source>a required value was missing</source>
        <translation>une valeur obligatoire manquait</translation>
    </message>
    <message>
        <source>it already has this step</source>
        <translation>il a déjà cette étape</translation>
    </message>
    <message>
        <source>it does not know this step</source>
        <translation>il ne connaît pas cette étape</translation>
    </message>
    <message>
        <source>the step was already ended</source>
        <translation>l'étape était déjà terminée</translation>
    </message>
    <message>
        <source>it is out of resources</source>
        <translation>il manque de ressources</translation>
    </message>
    <message>
        <source>this station is not allowed to report there</source>
        <translation>ce poste n'a pas le droit d'y faire des rapports</translation>
    </message>
    <message>
        <source>it took it with a warning</source>
        <translation>il l'a pris avec un avertissement</translation>
    </message>
    <message>
        <source>it refused it</source>
        <translation>il l'a refusé</translation>
    </message>
    <message>
        <source>performed procedure steps (MPPS)</source>
        <translation>les étapes de procédure réalisées (MPPS)</translation>
    </message>
    <message>
        <source>storage commitment</source>
        <translation>la confirmation de stockage (storage commitment)</translation>
    </message>
</context>
<context>
    <name>DicomObjects</name>
    <message>
        <source>%1 is not a JPEG picture the archive can take: %2</source>
        <translation>%1 n'est pas une image JPEG que l'archive peut prendre : %2</translation>
    </message>
    <message>
        <source>%1 holds no picture the archive can take (%2)</source>
        <translation>%1 ne contient aucune image que l'archive peut prendre (%2)</translation>
    </message>
    <message>
        <source>%1 is larger than one archive object can hold (%2 MB). Recordings made while automatic sending is on are split before that size.</source>
        <translation>%1 est plus grand que ce qu'un objet d'archive peut contenir (%2 Mo). Les enregistrements faits avec l'envoi automatique activé sont découpés avant cette taille.</translation>
    </message>
    <message>
        <source>%1 is not an H.264 movie (its picture is "%2"), which the archive cannot take.</source>
        <translation>%1 n'est pas un film H.264 (son image est « %2 »), que l'archive ne peut pas prendre.</translation>
    </message>
    <message>
        <source>%1 is H.264 of profile %2, not High Profile, which the archive cannot take.</source>
        <translation>%1 est du H.264 de profil %2, pas High Profile, que l'archive ne peut pas prendre.</translation>
    </message>
    <message>
        <source>%1 is H.264 at level %2.%3, above the 4.2 an archive can take.</source>
        <translation>%1 est du H.264 de niveau %2.%3, au-dessus du 4.2 qu'une archive peut prendre.</translation>
    </message>
</context>
<context>
    <name>FootSwitch</name>
    <message>
        <source>Snapshot</source>
        <translation>Instantané</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
    </message>
    <message>
        <source>Pause / Resume</source>
        <translation>Pause / Reprise</translation>
    </message>
</context>
<context>
    <name>FootSwitchDialog</name>
    <message>
        <source>Foot Switch</source>
        <translation>Pédale</translation>
    </message>
    <message>
        <source>Press Learn, then the pedal. A pedal acts while Orvix is in front, but not while you type into a field.</source>
        <translation>Appuyez sur « Apprendre », puis sur la pédale. Une pédale agit tant qu'Orvix est au premier plan, mais pas pendant la saisie dans un champ.</translation>
    </message>
    <message>
        <source>Press the pedal now</source>
        <translation>Appuyez sur la pédale</translation>
    </message>
    <message>
        <source>Learn</source>
        <translation>Apprendre</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Effacer</translation>
    </message>
    <message>
        <source>none</source>
        <translation>aucune</translation>
    </message>
    <message>
        <source>Escape leaves the pedal as it was.</source>
        <translation>Échap laisse la pédale telle qu'elle était.</translation>
    </message>
    <message>
        <source>%1 already does "%2"; press another pedal, or Escape.</source>
        <translation>%1 fait déjà « %2 » ; appuyez sur une autre pédale, ou sur Échap.</translation>
    </message>
    <message>
        <source>Learn: %1</source>
        <translation>Apprendre : %1</translation>
    </message>
    <message>
        <source>Clear: %1</source>
        <translation>Effacer : %1</translation>
    </message>
</context>
<context>
    <name>HospitalSettingsDialog</name>
    <message>
        <source>Hospital Systems</source>
        <translation>Systèmes de l'hôpital</translation>
    </message>
    <message>
        <source>Archive (PACS)</source>
        <translation>Archive (PACS)</translation>
    </message>
    <message>
        <source>Archive AE title</source>
        <translation>Titre AE de l'archive</translation>
    </message>
    <message>
        <source>Worklist</source>
        <translation>Worklist</translation>
    </message>
    <message>
        <source>Worklist AE title</source>
        <translation>Titre AE de la worklist</translation>
    </message>
    <message>
        <source>Performed procedure steps (MPPS)</source>
        <translation>Étapes de procédure réalisées (MPPS)</translation>
    </message>
    <message>
        <source>MPPS AE title</source>
        <translation>Titre AE du MPPS</translation>
    </message>
    <message>
        <source>Send every movie and snapshot to the archive when it is finished</source>
        <translation>Envoyer chaque film et instantané à l'archive une fois terminé</translation>
    </message>
    <message>
        <source>Test connection</source>
        <translation>Tester la connexion</translation>
    </message>
    <message>
        <source>name or address, e.g. pacs.hospital.local</source>
        <translation>nom ou adresse, p. ex. pacs.hospital.local</translation>
    </message>
    <message>
        <source>This station's AE title</source>
        <translation>Titre AE de ce poste</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Hôte</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Port</translation>
    </message>
    <message>
        <source>The archive's confirmation</source>
        <translation>Confirmation de l'archive</translation>
    </message>
    <message>
        <source>off</source>
        <translation>désactivé</translation>
    </message>
    <message>
        <source>The archive confirms that it keeps each file by calling this station back on this port (storage commitment). The archive must know this station's AE title, address and port.</source>
        <translation>L'archive confirme qu'elle conserve chaque fichier en rappelant ce poste sur ce port (storage commitment). L'archive doit connaître le titre AE, l'adresse et le port de ce poste.</translation>
    </message>
    <message>
        <source>Port for the archive's answers</source>
        <translation>Port pour les réponses de l'archive</translation>
    </message>
    <message>
        <source>Remove local copies the archive keeps, when room runs short</source>
        <translation>Supprimer les copies locales conservées par l'archive quand la place manque</translation>
    </message>
    <message>
        <source>Only files the archive has confirmed it keeps are removed, oldest first, never the file being recorded. Their information files stay, and say where they went.</source>
        <translation>Seuls les fichiers dont l'archive a confirmé la conservation sont supprimés, les plus anciens d'abord, jamais le fichier en cours d'enregistrement. Leurs fichiers d'information restent et disent où ils sont allés.</translation>
    </message>
    <message>
        <source> days</source>
        <translation> jours</translation>
    </message>
    <message>
        <source> GB</source>
        <translation> Go</translation>
    </message>
    <message>
        <source>Older than</source>
        <translation>Plus anciens que</translation>
    </message>
    <message>
        <source>When free room is below</source>
        <translation>Quand la place libre est sous</translation>
    </message>
    <message>
        <source>%1: this station's AE title must be 1 to 16 letters, digits or signs, without "\".</source>
        <translation>%1 : le titre AE de ce poste doit compter 1 à 16 lettres, chiffres ou signes, sans « \\ ».</translation>
    </message>
    <message>
        <source>%1: the AE title must be 1 to 16 letters, digits or signs, without "\".</source>
        <translation>%1 : le titre AE doit compter 1 à 16 lettres, chiffres ou signes, sans « \\ ».</translation>
    </message>
    <message>
        <source>%1: the host is missing.</source>
        <translation>%1 : l'hôte manque.</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archive</translation>
    </message>
    <message>
        <source>Performed procedure steps</source>
        <translation>Étapes de procédure réalisées</translation>
    </message>
    <message>
        <source>The archive</source>
        <translation>L'archive</translation>
    </message>
    <message>
        <source>The worklist</source>
        <translation>La worklist</translation>
    </message>
    <message>
        <source>The MPPS system</source>
        <translation>Le système MPPS</translation>
    </message>
    <message>
        <source>%1 is not set up.</source>
        <translation>%1 n'est pas configuré.</translation>
    </message>
    <message>
        <source>Asking %1…</source>
        <translation>Interrogation de %1…</translation>
    </message>
    <message>
        <source>%1 answered (%2).</source>
        <translation>%1 a répondu (%2).</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1 : %2</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Could not create default movie folder.</source>
        <translation>Impossible de créer le dossier des films par défaut.</translation>
    </message>
    <message>
        <source>Could not create default image folder.</source>
        <translation>Impossible de créer le dossier des images par défaut.</translation>
    </message>
    <message>
        <source>The camera was disconnected, so the recording has stopped.

The file %1 was begun as the camera went and held no picture; it has been removed.</source>
        <translation>La caméra a été déconnectée, l'enregistrement s'est donc arrêté.

Le fichier %1 a été commencé au moment où la caméra est partie et ne contenait aucune image ; il a été supprimé.</translation>
    </message>
    <message>
        <source>The camera was disconnected, so the recording has stopped.

What was recorded is kept in %1.</source>
        <translation>La caméra a été déconnectée, l'enregistrement s'est donc arrêté.

Ce qui a été enregistré est conservé dans %1.</translation>
    </message>
    <message>
        <source>Finish case</source>
        <translation>Fin du cas</translation>
    </message>
    <message>
        <source>End this patient's case and clear the patient for the next one</source>
        <translation>Terminer le cas de ce patient et vider le patient pour le suivant</translation>
    </message>
    <message>
        <source>A recording is running. Stop it first; it belongs to this case.</source>
        <translation>Un enregistrement est en cours. Arrêtez-le d'abord ; il appartient à ce cas.</translation>
    </message>
    <message>
        <source>The case of %1, begun %2, was not finished when the program ended.

Finish it now, or go on recording for this patient?</source>
        <translation>Le cas de %1, commencé %2, n'était pas terminé quand le programme s'est arrêté.

Le terminer maintenant, ou continuer à enregistrer pour ce patient ?</translation>
    </message>
    <message>
        <source>a patient without a name</source>
        <translation>un patient sans nom</translation>
    </message>
    <message>
        <source>Go on with this case</source>
        <translation>Continuer ce cas</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Luminosité</translation>
    </message>
    <message>
        <source>Contrast</source>
        <translation>Contraste</translation>
    </message>
    <message>
        <source>hue</source>
        <translation>teinte</translation>
    </message>
    <message>
        <source>Saturation</source>
        <translation>Saturation</translation>
    </message>
    <message>
        <source>White Balance</source>
        <translation>Balance des blancs</translation>
    </message>
    <message>
        <source>Gamma</source>
        <translation>Gamma</translation>
    </message>
    <message>
        <source>Backlight</source>
        <translation>Contre-jour</translation>
    </message>
    <message>
        <source>Gain</source>
        <translation>Gain</translation>
    </message>
    <message>
        <source>Color Enable</source>
        <translation>Couleur</translation>
    </message>
    <message>
        <source>Sharpness</source>
        <translation>Netteté</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Exposition</translation>
    </message>
    <message>
        <source>Video Quality</source>
        <translation>Qualité vidéo</translation>
    </message>
    <message>
        <source>Auto</source>
        <translation>Auto</translation>
    </message>
    <message>
        <source>Power line hz</source>
        <translation>Secteur (Hz)</translation>
    </message>
    <message>
        <source>Default</source>
        <translation>Défaut</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Video Devices</source>
        <translation>Caméras</translation>
    </message>
    <message>
        <source>Video Compressor</source>
        <translation>Compression vidéo</translation>
    </message>
    <message>
        <source>Audio Compressor</source>
        <translation>Compression audio</translation>
    </message>
    <message>
        <source>Audio Format</source>
        <translation>Format audio</translation>
    </message>
    <message>
        <source>Audio Device</source>
        <translation>Périphérique audio</translation>
    </message>
    <message>
        <source>Bit Rate</source>
        <translation>Débit</translation>
    </message>
    <message>
        <source>Frame Rate</source>
        <translation>Images/s</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Appliquer</translation>
    </message>
    <message>
        <source>Record Device</source>
        <translation>Périphérique d'enregistrement</translation>
    </message>
    <message>
        <source>The recording is still running.
Stop it before changing the record device.</source>
        <translation>L'enregistrement est en cours.
Arrêtez-le avant de changer de périphérique d'enregistrement.</translation>
    </message>
    <message>
        <source>version:</source>
        <translation>version :</translation>
    </message>
    <message>
        <source>v2.0.1</source>
        <translation>v2.0.1</translation>
    </message>
    <message>
        <source>soft date:</source>
        <translation>date du logiciel :</translation>
    </message>
    <message>
        <source>2025/01/16</source>
        <translation>2025/01/16</translation>
    </message>
    <message>
        <source>system:</source>
        <translation>système :</translation>
    </message>
    <message>
        <source>Worklist</source>
        <translation>Worklist</translation>
    </message>
    <message>
        <source>Choose the patient of the next recording from today's worklist</source>
        <translation>Choisir le patient du prochain enregistrement dans la worklist du jour</translation>
    </message>
    <message>
        <source>Patient ID</source>
        <translation>ID patient</translation>
    </message>
    <message>
        <source>The patient's ID in the hospital, for the archive. Filled in by the worklist; type it for a patient who is not on the worklist.</source>
        <translation>L'identifiant du patient à l'hôpital, pour l'archive. Rempli par la worklist ; saisissez-le pour un patient qui n'est pas sur la worklist.</translation>
    </message>
    <message>
        <source>No worklist is set up yet. Enter its AE title, host and port under Configuration &gt; Hospital Systems.</source>
        <translation>Aucune worklist n'est configurée. Saisissez son titre AE, son hôte et son port sous Configuration &gt; Systèmes de l'hôpital.</translation>
    </message>
    <message>
        <source>Send</source>
        <translation>Envoyer</translation>
    </message>
    <message>
        <source>Send the selected movie or snapshot to the archive (PACS)</source>
        <translation>Envoyer le film ou l'instantané sélectionné à l'archive (PACS)</translation>
    </message>
    <message>
        <source>Snapshots</source>
        <translation>Instantanés</translation>
    </message>
    <message>
        <source>Its patient is not known to the archive's settings.</source>
        <translation>Son patient n'est pas connu des réglages de l'archive.</translation>
    </message>
    <message>
        <source>Patient: %1</source>
        <translation>Patient : %1</translation>
    </message>
    <message>
        <source>(no name)</source>
        <translation>(sans nom)</translation>
    </message>
    <message>
        <source>Patient ID: %1</source>
        <translation>ID patient : %1</translation>
    </message>
    <message>
        <source>none</source>
        <translation>aucun</translation>
    </message>
    <message>
        <source>Study: from the worklist, %1</source>
        <translation>Étude : de la worklist, %1</translation>
    </message>
    <message>
        <source>Study: %1</source>
        <translation>Étude : %1</translation>
    </message>
    <message>
        <source>The archive keeps what it received; a correction made here does not reach it.</source>
        <translation>L'archive garde ce qu'elle a reçu ; une correction faite ici ne l'atteint pas.</translation>
    </message>
    <message>
        <source>Cancel sending</source>
        <translation>Annuler l'envoi</translation>
    </message>
    <message>
        <source>Take the selected file out of the archive's queue; it stays on this computer</source>
        <translation>Retirer le fichier sélectionné de la file de l'archive ; il reste sur cet ordinateur</translation>
    </message>
    <message>
        <source>Send again</source>
        <translation>Renvoyer</translation>
    </message>
    <message>
        <source>Send the selected file to the archive (PACS) once more</source>
        <translation>Envoyer à nouveau le fichier sélectionné à l'archive (PACS)</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archive</translation>
    </message>
    <message>
        <source>No archive is set up yet. Enter its AE title, host and port under Configuration &gt; Hospital Systems.</source>
        <translation>Aucune archive n'est configurée. Saisissez son titre AE, son hôte et son port sous Configuration &gt; Systèmes de l'hôpital.</translation>
    </message>
    <message>
        <source>Select a movie or a snapshot in the list first.</source>
        <translation>Sélectionnez d'abord un film ou un instantané dans la liste.</translation>
    </message>
    <message>
        <source>%1 is being sent now.</source>
        <translation>%1 est en cours d'envoi.</translation>
    </message>
    <message>
        <source>%1 has been sent. The archive keeps what it received; a correction is made there.</source>
        <translation>%1 a été envoyé. L'archive garde ce qu'elle a reçu ; une correction se fait là-bas.</translation>
    </message>
    <message>
        <source>%1 is still being recorded. It can be sent once its recording has ended.</source>
        <translation>%1 est encore en cours d'enregistrement. Il pourra être envoyé une fois son enregistrement terminé.</translation>
    </message>
    <message>
        <source>%1 was recorded without the archive's case information.

%2

Send it for this patient?</source>
        <translation>%1 a été enregistré sans les informations de cas de l'archive.

%2

L'envoyer pour ce patient ?</translation>
    </message>
    <message>
        <source>%1 was not taken with this program's archive settings, so its patient is not known. It is not sent.</source>
        <translation>%1 n'a pas été pris avec les réglages d'archive de ce programme, son patient n'est donc pas connu. Il n'est pas envoyé.</translation>
    </message>
    <message>
        <source>%1 has no patient ID, so the archive could not tell its patient from others. It stays here, marked "needs a patient ID": edit its information, enter the patient's ID and press Send.</source>
        <translation>%1 n'a pas d'ID patient, l'archive ne pourrait donc pas distinguer son patient des autres. Il reste ici, marqué « ID patient manquant » : modifiez ses informations, saisissez l'ID du patient et appuyez sur « Envoyer ».</translation>
    </message>
    <message>
        <source>Sending %1: %p%</source>
        <translation>Envoi de %1 : %p%</translation>
    </message>
    <message>
        <source>%1 has already been sent. The archive keeps what it received; the correction is kept here only. Correct it in the archive as well.</source>
        <translation>%1 a déjà été envoyé. L'archive garde ce qu'elle a reçu ; la correction n'est gardée qu'ici. Corrigez-le aussi dans l'archive.</translation>
    </message>
    <message>
        <source>Not rotate</source>
        <translation>Sans rotation</translation>
    </message>
    <message>
        <source>Rotate 180 degree</source>
        <translation>Rotation de 180 degrés</translation>
    </message>
    <message>
        <source>Mirror</source>
        <translation>Miroir</translation>
    </message>
    <message>
        <source>180º Mirror</source>
        <translation>180º miroir</translation>
    </message>
    <message>
        <source>Rotate 180 degree with mirror</source>
        <translation>Rotation de 180 degrés avec miroir</translation>
    </message>
    <message>
        <source>Record &amp;Start</source>
        <translation>&amp;Démarrer l'enregistrement</translation>
    </message>
    <message>
        <source>Start recording</source>
        <translation>Démarrer l'enregistrement</translation>
    </message>
    <message>
        <source>Record S&amp;top</source>
        <translation>&amp;Arrêter l'enregistrement</translation>
    </message>
    <message>
        <source>Stop recording</source>
        <translation>Arrêter l'enregistrement</translation>
    </message>
    <message>
        <source>Record &amp;Pause</source>
        <translation>Mettre en &amp;pause</translation>
    </message>
    <message>
        <source>Pause recording</source>
        <translation>Mettre l'enregistrement en pause</translation>
    </message>
    <message>
        <source>&amp;Live</source>
        <translation>&amp;Direct</translation>
    </message>
    <message>
        <source>Change to live mode</source>
        <translation>Passer à l'image en direct</translation>
    </message>
    <message>
        <source>&amp;1GB</source>
        <translation>&amp;1Go</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 1GB</source>
        <translation>Limiter la taille d'un fichier vidéo à 1Go</translation>
    </message>
    <message>
        <source>&amp;2GB</source>
        <translation>&amp;2Go</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 2GB</source>
        <translation>Limiter la taille d'un fichier vidéo à 2Go</translation>
    </message>
    <message>
        <source>&amp;3GB</source>
        <translation>&amp;3Go</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 3GB</source>
        <translation>Limiter la taille d'un fichier vidéo à 3Go</translation>
    </message>
    <message>
        <source>&amp;4GB</source>
        <translation>&amp;4Go</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 4GB</source>
        <translation>Limiter la taille d'un fichier vidéo à 4Go</translation>
    </message>
    <message>
        <source>&amp;5GB</source>
        <translation>&amp;5Go</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 5GB</source>
        <translation>Limiter la taille d'un fichier vidéo à 5Go</translation>
    </message>
    <message>
        <source>1&amp;0GB</source>
        <translation>1&amp;0Go</translation>
    </message>
    <message>
        <source>Limit the maximum size of a video file to 10GB</source>
        <translation>Limiter la taille d'un fichier vidéo à 10Go</translation>
    </message>
    <message>
        <source>&amp;No Size Limit</source>
        <translation>&amp;Sans limite de taille</translation>
    </message>
    <message>
        <source>Unlimit the maximum size of a video file</source>
        <translation>Ne pas limiter la taille d'un fichier vidéo</translation>
    </message>
    <message>
        <source>SnapShot</source>
        <translation>Instantané</translation>
    </message>
    <message>
        <source>Take a snapshot form video</source>
        <translation>Prendre un instantané de la vidéo</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>Plein écran</translation>
    </message>
    <message>
        <source>Toggle full screen mode</source>
        <translation>Activer ou désactiver le plein écran</translation>
    </message>
    <message>
        <source>Recording device configuration</source>
        <translation>Configuration du périphérique d'enregistrement</translation>
    </message>
    <message>
        <source>Video Quality Settings</source>
        <translation>Réglages de la qualité vidéo</translation>
    </message>
    <message>
        <source>Configure video quality options</source>
        <translation>Régler la qualité vidéo</translation>
    </message>
    <message>
        <source>Record Storage Path</source>
        <translation>Dossier d'enregistrement</translation>
    </message>
    <message>
        <source>Configure recording storage root path</source>
        <translation>Choisir le dossier racine des enregistrements</translation>
    </message>
    <message>
        <source>Hospital Systems</source>
        <translation>Systèmes de l'hôpital</translation>
    </message>
    <message>
        <source>Set up the archive (PACS) and the worklist</source>
        <translation>Configurer l'archive (PACS) et la worklist</translation>
    </message>
    <message>
        <source>Foot Switch</source>
        <translation>Pédale</translation>
    </message>
    <message>
        <source>Learn the keys of the foot switch's pedals</source>
        <translation>Apprendre les touches des pédales</translation>
    </message>
    <message>
        <source>Finish Case</source>
        <translation>Terminer le cas</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>&amp;Enregistrement</translation>
    </message>
    <message>
        <source>&amp;File Size</source>
        <translation>&amp;Taille des fichiers</translation>
    </message>
    <message>
        <source>S&amp;napShot</source>
        <translation>&amp;Instantané</translation>
    </message>
    <message>
        <source>&amp;Screen</source>
        <translation>É&amp;cran</translation>
    </message>
    <message>
        <source>&amp;Configuration</source>
        <translation>C&amp;onfiguration</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>Open help document</source>
        <translation>Ouvrir le document d'aide</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Log Folder</source>
        <translation>Dossier du journal</translation>
    </message>
    <message>
        <source>Open the folder of the program's log</source>
        <translation>Ouvrir le dossier du journal du programme</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Rotation</translation>
    </message>
    <message>
        <source>Resolution</source>
        <translation>Résolution</translation>
    </message>
    <message>
        <source>Live</source>
        <translation>Direct</translation>
    </message>
    <message>
        <source>Information</source>
        <translation>Information</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Date</translation>
    </message>
    <message>
        <source>*File Name</source>
        <translation>*Nom du fichier</translation>
    </message>
    <message>
        <source>Doctor Name</source>
        <translation>Médecin</translation>
    </message>
    <message>
        <source>Patient Name</source>
        <translation>Patient</translation>
    </message>
    <message>
        <source>Hospital Name</source>
        <translation>Hôpital</translation>
    </message>
    <message>
        <source>Comment</source>
        <translation>Commentaire</translation>
    </message>
    <message>
        <source>File Preview</source>
        <translation>Fichiers</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exporter</translation>
    </message>
    <message>
        <source>Copy movies and snapshots for teaching, without the patient</source>
        <translation>Copier des films et des instantanés pour l'enseignement, sans le patient</translation>
    </message>
    <message>
        <source>Storage</source>
        <translation>Stockage</translation>
    </message>
    <message>
        <source>Movie Folder</source>
        <translation>Films</translation>
    </message>
    <message>
        <source>Image Folder</source>
        <translation>Images</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Please Enter File information</source>
        <translation>Veuillez saisir les informations du fichier</translation>
    </message>
    <message>
        <source>The file name contains "%1", so the movie is recorded into the folder %2, not into the Movie folder, and the storage browser does not show it.</source>
        <translation>Le nom de fichier contient « %1 », le film est donc enregistré dans le dossier %2, pas dans le dossier Movie, et le navigateur de stockage ne le montre pas.</translation>
    </message>
    <message>
        <source>The folder %1 did not exist (was the storage folder moved or deleted?). It has been made again, and the movie is recorded into it.</source>
        <translation>Le dossier %1 n'existait pas (le dossier de stockage a-t-il été déplacé ou supprimé ?). Il a été recréé, et le film y est enregistré.</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Reprendre</translation>
    </message>
    <message>
        <source>The recording %1 was stopped before the camera's first picture reached it. It held no picture and no player could open it, so it has been removed with its information file.</source>
        <translation>L'enregistrement %1 a été arrêté avant que la première image de la caméra ne l'atteigne. Il ne contenait aucune image et aucun lecteur ne pouvait l'ouvrir ; il a donc été supprimé avec son fichier d'information.</translation>
    </message>
    <message>
        <source>Capture error</source>
        <translation>Erreur de capture</translation>
    </message>
    <message>
        <source>its folder %1 does not exist</source>
        <translation>son dossier %1 n'existe pas</translation>
    </message>
    <message>
        <source>its folder %1 cannot be written to</source>
        <translation>son dossier %1 n'est pas accessible en écriture</translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation>le disque est plein</translation>
    </message>
    <message>
        <source>it has not grown for %1 seconds</source>
        <translation>il n'a pas grandi depuis %1 secondes</translation>
    </message>
    <message>
        <source>the recorder has not created it</source>
        <translation>l'enregistreur ne l'a pas créé</translation>
    </message>
    <message>
        <source>Nothing is being recorded into %1: %2.

The recording has been stopped. Check the file name and the storage folder, then press Record to start again.</source>
        <translation>Rien n'est enregistré dans %1 : %2.

L'enregistrement a été arrêté. Vérifiez le nom de fichier et le dossier de stockage, puis appuyez sur Enregistrer pour recommencer.</translation>
    </message>
    <message>
        <source>No recording was started into %1: the file name is too long for the file system.

Shorten the file name and press Record again.</source>
        <translation>Aucun enregistrement n'a démarré dans %1 : le nom de fichier est trop long pour le système de fichiers.

Raccourcissez le nom de fichier et appuyez à nouveau sur Enregistrer.</translation>
    </message>
    <message>
        <source>The disk of the storage folder is full (%1 free): no recording was started.

Make room on it or choose another storage folder.</source>
        <translation>Le disque du dossier de stockage est plein (%1 libres) : aucun enregistrement n'a démarré.

Libérez de la place ou choisissez un autre dossier de stockage.</translation>
    </message>
    <message>
        <source>The disk of the storage folder is almost full (%1 free).

The recording has been stopped and saved as %2. Make room on the disk before recording again.</source>
        <translation>Le disque du dossier de stockage est presque plein (%1 libres).

L'enregistrement a été arrêté et enregistré sous %2. Libérez de la place sur le disque avant d'enregistrer à nouveau.</translation>
    </message>
    <message>
        <source>Only about %1 minutes of recording still fit on the disk of the storage folder (%2 free).

The recording goes on and is stopped and saved before the disk is full. Make room on the disk or choose another storage folder.</source>
        <translation>Il ne reste sur le disque du dossier de stockage que la place pour environ %1 minutes d'enregistrement (%2 libres).

L'enregistrement continue et sera arrêté et enregistré avant que le disque ne soit plein. Libérez de la place ou choisissez un autre dossier de stockage.</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Enregistrement</translation>
    </message>
    <message>
        <source>no picture came from the camera</source>
        <translation>aucune image n'est venue de la caméra</translation>
    </message>
    <message>
        <source>The snapshot %1 was not saved: %2.

Check the storage folder, then take the snapshot again.</source>
        <translation>L'instantané %1 n'a pas été enregistré : %2.

Vérifiez le dossier de stockage, puis reprenez l'instantané.</translation>
    </message>
    <message>
        <source>Do you want to delete
</source>
        <translation>Voulez-vous supprimer
</translation>
    </message>
    <message>
        <source>Select Directory</source>
        <translation>Choisir un dossier</translation>
    </message>
    <message>
        <source>The disk of %1 was running short of room. These movies, which the archive %2 has confirmed it keeps, were removed from this computer:

%3

Their information files stay beside where they were and say so.</source>
        <translation>Le disque de %1 manquait de place. Ces films, dont l'archive %2 a confirmé la conservation, ont été supprimés de cet ordinateur :

%3

Leurs fichiers d'information restent là où ils étaient et le disent.</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>Instantané</translation>
    </message>
    <message>
        <source>Takes a snapshot of the live picture (F7)</source>
        <translation>Prend un instantané de l'image en direct (F7)</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Starts the recording (F5); pressed again, stops it (F4). While paused, it resumes.</source>
        <translation>Démarre l'enregistrement (F5) ; pressé à nouveau, l'arrête (F4). En pause, il le reprend.</translation>
    </message>
    <message>
        <source>Mute microphone</source>
        <translation>Couper le microphone</translation>
    </message>
    <message>
        <source>Pressed: the microphone is muted, and its sound is not recorded</source>
        <translation>Enfoncé : le microphone est coupé, et son son n'est pas enregistré</translation>
    </message>
    <message>
        <source>Edit information</source>
        <translation>Modifier les informations</translation>
    </message>
    <message>
        <source>Lets the selected movie's information be changed; pressed again, saves it</source>
        <translation>Permet de modifier les informations du film sélectionné ; pressé à nouveau, les enregistre</translation>
    </message>
    <message>
        <source>Discard changes</source>
        <translation>Annuler les modifications</translation>
    </message>
    <message>
        <source>Puts the information back as it was saved</source>
        <translation>Remet les informations telles qu'elles étaient enregistrées</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>Deletes the selected movie or snapshot, after asking</source>
        <translation>Supprime le film ou l'instantané sélectionné, après confirmation</translation>
    </message>
    <message>
        <source>Choose storage folder</source>
        <translation>Choisir le dossier de stockage</translation>
    </message>
    <message>
        <source>Chooses the folder that recordings and snapshots go into</source>
        <translation>Choisit le dossier où vont les enregistrements et les instantanés</translation>
    </message>
    <message>
        <source>The camera's picture size</source>
        <translation>La taille d'image de la caméra</translation>
    </message>
    <message>
        <source>How the live picture is turned on the screen</source>
        <translation>Comment l'image en direct est tournée à l'écran</translation>
    </message>
    <message>
        <source>Back to the live picture (F1)</source>
        <translation>Retour à l'image en direct (F1)</translation>
    </message>
    <message>
        <source>Recording time</source>
        <translation>Durée d'enregistrement</translation>
    </message>
    <message>
        <source>Microphone volume</source>
        <translation>Volume du microphone</translation>
    </message>
    <message>
        <source>Storage folder</source>
        <translation>Dossier de stockage</translation>
    </message>
    <message>
        <source>Recorded movies and snapshots</source>
        <translation>Films et instantanés enregistrés</translation>
    </message>
    <message>
        <source>Return opens the selected file; Delete deletes it, after asking</source>
        <translation>Entrée ouvre le fichier sélectionné ; Suppr le supprime, après confirmation</translation>
    </message>
    <message>
        <source>Live picture</source>
        <translation>Image en direct</translation>
    </message>
    <message>
        <source>Auto: %1</source>
        <translation>Auto : %1</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menu</translation>
    </message>
</context>
<context>
    <name>Mp4Summary</name>
    <message>
        <source>no picture track in %1</source>
        <translation>aucune piste image dans %1</translation>
    </message>
</context>
<context>
    <name>OrvixMediaPlayerWidget</name>
    <message>
        <source>Open Movie</source>
        <translation>Ouvrir un film</translation>
    </message>
    <message>
        <source>Error: </source>
        <translation>Erreur : </translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Lire</translation>
    </message>
    <message>
        <source>Position in the movie</source>
        <translation>Position dans le film</translation>
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
        <translation>le rapport ne contient aucune donnée</translation>
    </message>
    <message>
        <source>the report names no transaction</source>
        <translation>le rapport ne nomme aucune transaction</translation>
    </message>
    <message>
        <source>the archive does not have it</source>
        <translation>l'archive ne l'a pas</translation>
    </message>
    <message>
        <source>the archive holds it as another kind of object</source>
        <translation>l'archive l'a comme un autre type d'objet</translation>
    </message>
    <message>
        <source>the archive does not keep this kind of object</source>
        <translation>l'archive ne conserve pas ce type d'objet</translation>
    </message>
    <message>
        <source>the archive was asked twice in the same transaction</source>
        <translation>l'archive a été interrogée deux fois dans la même transaction</translation>
    </message>
    <message>
        <source>the archive is out of resources</source>
        <translation>l'archive manque de ressources</translation>
    </message>
    <message>
        <source>the archive could not process the request</source>
        <translation>l'archive n'a pas pu traiter la demande</translation>
    </message>
</context>
<context>
    <name>TeachingExport::Exporter</name>
    <message>
        <source>cancelled</source>
        <translation>annulé</translation>
    </message>
    <message>
        <source>it could not be read to its end</source>
        <translation>il n'a pas pu être lu jusqu'au bout</translation>
    </message>
    <message>
        <source>it could not be read</source>
        <translation>il n'a pas pu être lu</translation>
    </message>
    <message>
        <source>it is not an MP4 or QuickTime movie, or it is damaged</source>
        <translation>ce n'est pas un film MP4 ou QuickTime, ou il est endommagé</translation>
    </message>
    <message>
        <source>its movie header is too large</source>
        <translation>son en-tête de film est trop grand</translation>
    </message>
    <message>
        <source>it holds no movie header: it does not play</source>
        <translation>il n'a pas d'en-tête de film : il ne se lit pas</translation>
    </message>
    <message>
        <source>it is not a JPEG picture</source>
        <translation>ce n'est pas une image JPEG</translation>
    </message>
    <message>
        <source>the picture is damaged</source>
        <translation>l'image est endommagée</translation>
    </message>
    <message>
        <source>The folder %1 is not there. Is the stick plugged in? Nothing was exported.</source>
        <translation>Le dossier %1 n'est pas là. La clé est-elle branchée ? Rien n'a été exporté.</translation>
    </message>
    <message>
        <source>%1 is no longer there. Nothing was exported.</source>
        <translation>%1 n'est plus là. Rien n'a été exporté.</translation>
    </message>
    <message>
        <source>The files chosen need %1 MB, but %2 has only %3 MB free. Nothing was exported: choose fewer files, or another folder or stick.</source>
        <translation>Les fichiers choisis demandent %1 Mo, mais %2 n'a que %3 Mo libres. Rien n'a été exporté : choisissez moins de fichiers, ou un autre dossier ou une autre clé.</translation>
    </message>
    <message>
        <source>The folder %1 went away while %2 was written (was the stick removed?). Nothing of it was left there.</source>
        <translation>Le dossier %1 a disparu pendant l'écriture de %2 (la clé a-t-elle été retirée ?). Rien n'en est resté là-bas.</translation>
    </message>
    <message>
        <source>%1 could not be read: %2. It was not exported.</source>
        <translation>%1 n'a pas pu être lu : %2. Il n'a pas été exporté.</translation>
    </message>
    <message>
        <source>Orvix cannot write into %1: %2. Nothing was exported from %3 on.</source>
        <translation>Orvix ne peut pas écrire dans %1 : %2. Rien n'a été exporté à partir de %3.</translation>
    </message>
    <message>
        <source>The export was cancelled; %1 was not exported.</source>
        <translation>L'export a été annulé ; %1 n'a pas été exporté.</translation>
    </message>
    <message>
        <source>%1 was not exported: %2.</source>
        <translation>%1 n'a pas été exporté : %2.</translation>
    </message>
    <message>
        <source>%1 is full: %2 did not fit. Nothing of it was left there.</source>
        <translation>%1 est plein : %2 n'y tenait pas. Rien n'en est resté là-bas.</translation>
    </message>
    <message>
        <source>%1 is too large for the file system of %2 (a stick formatted with FAT32 holds files of up to 4 GB). Nothing of it was left there.</source>
        <translation>%1 est trop grand pour le système de fichiers de %2 (une clé formatée en FAT32 contient des fichiers de 4 Go au plus). Rien n'en est resté là-bas.</translation>
    </message>
    <message>
        <source>%1 could not be written into %2: %3. Nothing of it was left there.</source>
        <translation>%1 n'a pas pu être écrit dans %2 : %3. Rien n'en est resté là-bas.</translation>
    </message>
    <message>
        <source>%1 was not exported: its copy still held "%2", which names the case. Nothing of it was left in %3.</source>
        <translation>%1 n'a pas été exporté : sa copie contenait encore « %2 », qui désigne le cas. Rien n'en est resté dans %3.</translation>
    </message>
    <message>
        <source>%1 could not be named %2 in %3. Nothing of it was left there.</source>
        <translation>%1 n'a pas pu être nommé %2 dans %3. Rien n'en est resté là-bas.</translation>
    </message>
</context>
<context>
    <name>TeachingExportDialog</name>
    <message>
        <source>Export for Teaching</source>
        <translation>Export pour l'enseignement</translation>
    </message>
    <message>
        <source>The copies carry no patient: they are named by the day and a number, leave the information files behind, and the names are taken out of the movies and pictures. Picture and sound stay as recorded; the originals are not changed.</source>
        <translation>Les copies ne portent aucun patient : elles sont nommées par le jour et un numéro, laissent les fichiers d'information de côté, et les noms sont retirés des films et des images. L'image et le son restent tels qu'enregistrés ; les originaux ne sont pas modifiés.</translation>
    </message>
    <message>
        <source>Movies and snapshots to export</source>
        <translation>Films et instantanés à exporter</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Tous</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Aucun</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Dossier :</translation>
    </message>
    <message>
        <source>Choose...</source>
        <translation>Choisir...</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exporter</translation>
    </message>
    <message>
        <source>%1: %p%</source>
        <translation>%1 : %p%</translation>
    </message>
    <message>
        <source>Export to</source>
        <translation>Exporter vers</translation>
    </message>
    <message>
        <source>Check the movies and snapshots to export first.</source>
        <translation>Cochez d'abord les films et les instantanés à exporter.</translation>
    </message>
    <message>
        <source>Choose the folder to export to first.</source>
        <translation>Choisissez d'abord le dossier où exporter.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>%p%</source>
        <translation>%p%</translation>
    </message>
    <message numerus="yes">
        <source>Exporting %n file(s)...</source>
        <translation>
            <numerusform>Export de %n fichier...</numerusform>
            <numerusform>Export de %n fichiers...</numerusform>
        </translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) exported to %1.</source>
        <translation>
            <numerusform>%n fichier exporté vers %1.</numerusform>
            <numerusform>%n fichiers exportés vers %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n file(s) had been exported before.</source>
        <translation>
            <numerusform>%n fichier avait été exporté auparavant.</numerusform>
            <numerusform>%n fichiers avaient été exportés auparavant.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>WaitingForCameraWidget</name>
    <message>
        <source>Please connect Orvix cameras.</source>
        <translation>Veuillez brancher des caméras Orvix.</translation>
    </message>
</context>
<context>
    <name>WorklistDialog</name>
    <message>
        <source>Worklist: today, %1</source>
        <translation>Worklist : aujourd'hui, %1</translation>
    </message>
    <message>
        <source>Patient name begins with… (optional)</source>
        <translation>Le nom du patient commence par… (facultatif)</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Heure</translation>
    </message>
    <message>
        <source>Patient</source>
        <translation>Patient</translation>
    </message>
    <message>
        <source>Patient ID</source>
        <translation>ID patient</translation>
    </message>
    <message>
        <source>Procedure</source>
        <translation>Procédure</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Choisir</translation>
    </message>
    <message>
        <source>Asking the worklist %1…</source>
        <translation>Interrogation de la worklist %1…</translation>
    </message>
    <message>
        <source>The worklist could not be read. %1</source>
        <translation>La worklist n'a pas pu être lue. %1</translation>
    </message>
    <message>
        <source>Nothing is scheduled for %1 today%2.</source>
        <translation>Rien n'est prévu pour %1 aujourd'hui%2.</translation>
    </message>
    <message>
        <source> for a patient named "%1…"</source>
        <translation> pour un patient nommé « %1… »</translation>
    </message>
    <message>
        <source>1 procedure is scheduled today. Choose it for the next recording.</source>
        <translation>1 procédure est prévue aujourd'hui. Choisissez-la pour le prochain enregistrement.</translation>
    </message>
    <message>
        <source>%1 procedures are scheduled today. Choose one for the next recording.</source>
        <translation>%1 procédures sont prévues aujourd'hui. Choisissez-en une pour le prochain enregistrement.</translation>
    </message>
    <message>
        <source>Patient name begins with</source>
        <translation>Le nom du patient commence par</translation>
    </message>
    <message>
        <source>Procedures scheduled today</source>
        <translation>Procédures prévues aujourd'hui</translation>
    </message>
</context>
</TS>
