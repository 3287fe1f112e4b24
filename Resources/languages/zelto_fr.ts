<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr">
<context>
    <name>Zelto</name>
    <message>
        <source> %@: %@</source>
        <translation> %@ : %@</translation>
    </message>
    <message>
        <source> GiB</source>
        <translation> Gio</translation>
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
        <translation>Impossible de renommer « %@ ».</translation>
    </message>
    <message>
        <source>"%@" cannot be renamed: its file is missing.</source>
        <translation>Impossible de renommer « %@ » : son fichier est manquant.</translation>
    </message>
    <message>
        <source>"%@" is not a key path</source>
        <translation>« %@ » n’est pas un chemin de clé</translation>
    </message>
    <message>
        <source>")", AND or OR</source>
        <translation>« ) », AND ou OR</translation>
    </message>
    <message>
        <source>"," or "}"</source>
        <translation>« , » ou « } »</translation>
    </message>
    <message>
        <source>% size</source>
        <translation>Taille en %</translation>
    </message>
    <message>
        <source>%@
Copies the link. With Ctrl: opens it in the browser.</source>
        <translation>%@
Copie le lien. Avec Ctrl : l’ouvre dans le navigateur.</translation>
    </message>
    <message>
        <source>%@ %%</source>
        <translation>%@ %%</translation>
    </message>
    <message>
        <source>%@ (gone)</source>
        <translation>%@ (disparu)</translation>
    </message>
    <message>
        <source>%@ (package %@)</source>
        <translation>%@ (paquet %@)</translation>
    </message>
    <message>
        <source>%@ Delete them in the library once that is mended.</source>
        <translation>%@ Supprimez-les de la bibliothèque une fois le problème résolu.</translation>
    </message>
    <message>
        <source>%@ Import it again once that is mended.</source>
        <translation>%@ Importez-le de nouveau une fois le problème résolu.</translation>
    </message>
    <message>
        <source>%@ Make room, or see to it that the folder for temporary files can be written, and try again.</source>
        <translation>%@ Libérez de l’espace ou vérifiez que le dossier temporaire est accessible en écriture, puis réessayez.</translation>
    </message>
    <message>
        <source>%@ The links above stay valid; what came after them was not uploaded.</source>
        <translation>%@ Les liens ci-dessus restent valables ; la suite n’a pas été envoyée.</translation>
    </message>
    <message>
        <source>%@ The picture is kept until you try again or discard it.</source>
        <translation>%@ L’image est conservée jusqu’à ce que vous réessayiez ou l’abandonniez.</translation>
    </message>
    <message>
        <source>%@ What it changed before that stays so; ask again for the rest.</source>
        <translation>%@ Les changements déjà faits sont conservés ; relancez la commande pour le reste.</translation>
    </message>
    <message>
        <source>%@ What it had not finished of the import, `zelto import --resume` goes on with.</source>
        <translation>%@ `zelto import --resume` reprend ce qui restait à importer.</translation>
    </message>
    <message>
        <source>%@ With --force it is replaced, if it is a file and none of the layers.</source>
        <translation>%@ Avec --force, il est remplacé s’il s’agit d’un fichier qui n’est aucun des calques.</translation>
    </message>
    <message>
        <source>%@ already does something else in Zelto. Choose other keys.</source>
        <translation>%@ a déjà une autre fonction dans Zelto. Choisissez d’autres touches.</translation>
    </message>
    <message>
        <source>%@ answered %d (%@).</source>
        <translation>%@ a répondu %d (%@).</translation>
    </message>
    <message>
        <source>%@ asks for the password without encryption.</source>
        <translation>%@ demande le mot de passe sans chiffrement.</translation>
    </message>
    <message>
        <source>%@ before %@</source>
        <translation>%@ avant le %@</translation>
    </message>
    <message>
        <source>%@ broke off.</source>
        <translation>%@ a interrompu la connexion.</translation>
    </message>
    <message>
        <source>%@ broke off: only %@ of %@ came.</source>
        <translation>%@ a interrompu la connexion : seuls %@ sur %@ sont arrivés.</translation>
    </message>
    <message>
        <source>%@ cannot be read from: %@</source>
        <translation>Impossible de lire depuis %@ : %@</translation>
    </message>
    <message>
        <source>%@ cannot be written here; choose another --format</source>
        <translation>Impossible d’écrire en %@ ici ; choisissez un autre --format</translation>
    </message>
    <message>
        <source>%@ copy</source>
        <translation>Copie de %@</translation>
    </message>
    <message>
        <source>%@ did not say where the file is.</source>
        <translation>%@ n’a pas indiqué où se trouve le fichier.</translation>
    </message>
    <message>
        <source>%@ does not answer.</source>
        <translation>%@ ne répond pas.</translation>
    </message>
    <message>
        <source>%@ does not say what it sends.</source>
        <translation>%@ n’indique pas ce qu’il envoie.</translation>
    </message>
    <message>
        <source>%@ files are missing</source>
        <translation>%@ fichiers sont manquants</translation>
    </message>
    <message>
        <source>%@ files of the live folder “%@” are gone</source>
        <translation>%@ fichiers du dossier actif « %@ » ont disparu</translation>
    </message>
    <message>
        <source>%@ from %@ to %@</source>
        <translation>%@ du %@ au %@</translation>
    </message>
    <message numerus="yes">
        <source>%@ groups are left</source>
        <comment>counted</comment>
        <extracomment>for one: 1 group is left</extracomment>
        <translation>
            <numerusform>Il reste %@ groupe</numerusform>
            <numerusform>Il reste %@ groupes</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ has no property "%@" to follow.</source>
        <translation>%@ n’a pas de propriété « %@ » à suivre.</translation>
    </message>
    <message>
        <source>%@ hidden</source>
        <translation>%@ masqués</translation>
    </message>
    <message>
        <source>%@ imported</source>
        <translation>%@ importés</translation>
    </message>
    <message>
        <source>%@ imported, %@ not</source>
        <translation>%@ importés, %@ non</translation>
    </message>
    <message>
        <source>%@ is not set up yet: its part below says what it needs.</source>
        <translation>%@ n’est pas encore configuré : sa partie ci-dessous indique ce qu’il faut.</translation>
    </message>
    <message>
        <source>%@ is on this computer or its network, where this request must not go.</source>
        <translation>%@ se trouve sur cet ordinateur ou son réseau, où cette requête ne doit pas aller.</translation>
    </message>
    <message>
        <source>%@ is taken by another program. Choose other keys, or free them there.</source>
        <translation>%@ est utilisé par un autre programme. Choisissez d’autres touches ou libérez celles-ci dans ce programme.</translation>
    </message>
    <message numerus="yes">
        <source>%@ items</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item</extracomment>
        <translation>
            <numerusform>%@ élément</numerusform>
            <numerusform>%@ éléments</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ items selected</source>
        <translation>%@ éléments sélectionnés</translation>
    </message>
    <message numerus="yes">
        <source>%@ links copied to clipboard!</source>
        <comment>counted</comment>
        <extracomment>for one: 1 link copied to clipboard!</extracomment>
        <translation>
            <numerusform>%@ lien copié dans le presse-papiers !</numerusform>
            <numerusform>%@ liens copiés dans le presse-papiers !</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%@ memberships</source>
        <comment>counted</comment>
        <extracomment>for one: 1 membership</extracomment>
        <translation>
            <numerusform>%@ appartenance</numerusform>
            <numerusform>%@ appartenances</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ more</source>
        <translation>%@ de plus</translation>
    </message>
    <message numerus="yes">
        <source>%@ more files were not sent.</source>
        <comment>counted</comment>
        <extracomment>for one: One more file was not sent.</extracomment>
        <translation>
            <numerusform>%@ autre fichier n’a pas été envoyé.</numerusform>
            <numerusform>%@ autres fichiers n’ont pas été envoyés.</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ needs a value.</source>
        <translation>%@ nécessite une valeur.</translation>
    </message>
    <message>
        <source>%@ of %@</source>
        <translation>%@ sur %@</translation>
    </message>
    <message>
        <source>%@ of %@ items</source>
        <translation>%@ sur %@ éléments</translation>
    </message>
    <message>
        <source>%@ of %@ selected</source>
        <translation>%@ sur %@ sélectionnés</translation>
    </message>
    <message>
        <source>%@ of the pixels differ, by up to %d of 255</source>
        <translation>%@ des pixels diffèrent, de %d sur 255 au plus</translation>
    </message>
    <message>
        <source>%@ on %@</source>
        <translation>%@ le %@</translation>
    </message>
    <message>
        <source>%@ pages</source>
        <translation>%@ pages</translation>
    </message>
    <message numerus="yes">
        <source>%@ pictures</source>
        <comment>counted</comment>
        <extracomment>for one: 1 picture</extracomment>
        <translation>
            <numerusform>%@ image</numerusform>
            <numerusform>%@ images</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ sends from one address to the next without end.</source>
        <translation>%@ renvoie sans fin d’une adresse à l’autre.</translation>
    </message>
    <message>
        <source>%@ sends on to “%@”, for which the file is not meant.</source>
        <translation>%@ renvoie vers « %@ », à qui le fichier n’est pas destiné.</translation>
    </message>
    <message>
        <source>%@ sends to an address without encryption.</source>
        <translation>%@ renvoie vers une adresse sans chiffrement.</translation>
    </message>
    <message>
        <source>%@ sent something else (%@).</source>
        <translation>%@ a envoyé autre chose (%@).</translation>
    </message>
    <message>
        <source>%@ shown, %@ hidden</source>
        <translation>%@ affichés, %@ masqués</translation>
    </message>
    <message numerus="yes">
        <source>%@ sidebar entries or tags</source>
        <comment>counted</comment>
        <extracomment>for one: 1 sidebar entry or tag</extracomment>
        <translation>
            <numerusform>%@ entrée de la barre latérale ou mot-clé</numerusform>
            <numerusform>%@ entrées de la barre latérale ou mots-clés</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ since %@</source>
        <translation>%@ depuis le %@</translation>
    </message>
    <message>
        <source>%@ stopped answering in the middle.</source>
        <translation>%@ a cessé de répondre en cours de route.</translation>
    </message>
    <message numerus="yes">
        <source>%@ taken out</source>
        <comment>counted</comment>
        <extracomment>for one: 1 taken out</extracomment>
        <translation>
            <numerusform>%@ retirée</numerusform>
            <numerusform>%@ retirées</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ takes no connection.</source>
        <translation>%@ n’accepte aucune connexion.</translation>
    </message>
    <message numerus="yes">
        <source>%@ times</source>
        <comment>counted</comment>
        <extracomment>for one: %@ time</extracomment>
        <translation>
            <numerusform>%@ fois</numerusform>
            <numerusform>%@ fois</numerusform>
        </translation>
    </message>
    <message>
        <source>%@ to %@</source>
        <translation>%@ à %@</translation>
    </message>
    <message>
        <source>%@ took too long.</source>
        <translation>%@ a mis trop de temps à répondre.</translation>
    </message>
    <message>
        <source>%@ until %@</source>
        <translation>%@ jusqu’au %@</translation>
    </message>
    <message>
        <source>%@ was removed from the library while the backup was made</source>
        <translation>%@ a été retiré de la bibliothèque pendant la sauvegarde</translation>
    </message>
    <message>
        <source>%@ · Copied</source>
        <translation>%@ · Copié</translation>
    </message>
    <message>
        <source>%@, %@ items</source>
        <translation>%@, %@ éléments</translation>
    </message>
    <message>
        <source>%@, %d of %d in the library</source>
        <translation>%@, %d sur %d dans la bibliothèque</translation>
    </message>
    <message>
        <source>%@, %d × %d pixels</source>
        <translation>%@, %d × %d pixels</translation>
    </message>
    <message>
        <source>%@, ascending</source>
        <translation>%@, croissant</translation>
    </message>
    <message>
        <source>%@, descending</source>
        <translation>%@, décroissant</translation>
    </message>
    <message>
        <source>%@, extension kept</source>
        <translation>%@, extension conservée</translation>
    </message>
    <message>
        <source>%@, to %@</source>
        <translation>%@, vers %@</translation>
    </message>
    <message>
        <source>%@, to %@. A password is missing: import it again.</source>
        <translation>%@, vers %@. Un mot de passe manque : importez-le de nouveau.</translation>
    </message>
    <message>
        <source>%@, zip archive</source>
        <translation>%@, archive zip</translation>
    </message>
    <message>
        <source>%@. Everything is there.</source>
        <translation>%@. Rien ne manque.</translation>
    </message>
    <message>
        <source>%@: %@</source>
        <translation>%@ : %@</translation>
    </message>
    <message>
        <source>%@: %@ (%@)</source>
        <translation>%@ : %@ (%@)</translation>
    </message>
    <message>
        <source>%@: %@ more</source>
        <translation>%@ : %@ de plus</translation>
    </message>
    <message>
        <source>%@: %@ of %@ items</source>
        <translation>%@ : %@ éléments sur %@</translation>
    </message>
    <message>
        <source>%@: %@, %@</source>
        <translation>%@ : %@, %@</translation>
    </message>
    <message>
        <source>%@: %@, %@ in %@</source>
        <translation>%@ : %@, %@ dans %@</translation>
    </message>
    <message>
        <source>%@: %@, which differs</source>
        <translation>%@ : %@ (différent)</translation>
    </message>
    <message>
        <source>%@: is a link, which can't be made where the backup is</source>
        <translation>%@ : est un lien, impossible à créer là où se trouve la sauvegarde</translation>
    </message>
    <message>
        <source>%@: is no file, and is not in the backup</source>
        <translation>%@ : n’est pas un fichier et ne figure pas dans la sauvegarde</translation>
    </message>
    <message>
        <source>%@: is not as it was when an older backup was made, which shares it</source>
        <translation>%@ : diffère de son état lors d’une sauvegarde plus ancienne, qui le partage</translation>
    </message>
    <message>
        <source>%@: the file has another name, “%@”; “zelto verify --repair” names it after its item</source>
        <translation>%@ : le fichier porte un autre nom, « %@ » ; « zelto verify --repair » le renomme d’après son élément</translation>
    </message>
    <message>
        <source>%@: the file is missing</source>
        <translation>%@ : le fichier est manquant</translation>
    </message>
    <message>
        <source>%@: the file's content has changed since it was imported</source>
        <translation>%@ : le contenu du fichier a changé depuis son import</translation>
    </message>
    <message>
        <source>%@: the thumbnail is missing</source>
        <translation>%@ : la vignette est manquante</translation>
    </message>
    <message>
        <source>%@; zelto import --resume goes on with the missing files, zelto import --forget gives them up</source>
        <translation>%@ ; zelto import --resume reprend les fichiers manquants, zelto import --forget y renonce</translation>
    </message>
    <message>
        <source>%d Items</source>
        <translation>%d éléments</translation>
    </message>
    <message>
        <source>%d Stars</source>
        <translation>%d étoiles</translation>
    </message>
    <message>
        <source>%d completions</source>
        <translation>%d propositions</translation>
    </message>
    <message>
        <source>%d files are gone from its folder and stay in the library. Put them back, or synchronise it now to remove them.</source>
        <translation>%d fichiers ont disparu de son dossier et restent dans la bibliothèque. Remettez-les en place, ou synchronisez maintenant pour les retirer.</translation>
    </message>
    <message>
        <source>%d files are gone from “%@”, and their items are kept. If a drive is not connected, connect it; to remove them from the library, run `zelto livefolders sync --remove-missing "%@"`</source>
        <translation>%d fichiers ont disparu de « %@ » et leurs éléments sont conservés. Si un disque n’est pas connecté, connectez-le ; pour les retirer de la bibliothèque, exécutez `zelto livefolders sync --remove-missing "%@"`</translation>
    </message>
    <message>
        <source>%d files cannot be copied into the live folder.</source>
        <translation>Impossible de copier %d fichiers dans le dossier actif.</translation>
    </message>
    <message numerus="yes">
        <source>%d files copied into the live folder</source>
        <comment>counted</comment>
        <extracomment>for one: 1 file copied into the live folder</extracomment>
        <translation>
            <numerusform>%d fichier copié dans le dossier actif</numerusform>
            <numerusform>%d fichiers copiés dans le dossier actif</numerusform>
        </translation>
    </message>
    <message>
        <source>%d files could not be imported. The first is “%@”: %@</source>
        <translation>%d fichiers n’ont pas pu être importés. Le premier est « %@ » : %@</translation>
    </message>
    <message>
        <source>%d files could not be imported: %@</source>
        <translation>%d fichiers n’ont pas pu être importés : %@</translation>
    </message>
    <message numerus="yes">
        <source>%d files exported</source>
        <comment>counted</comment>
        <extracomment>for one: %d file exported</extracomment>
        <translation>
            <numerusform>%d fichier exporté</numerusform>
            <numerusform>%d fichiers exportés</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d files exported into %@</source>
        <comment>counted</comment>
        <extracomment>for one: %d file exported into %@</extracomment>
        <translation>
            <numerusform>%d fichier exporté dans %@</numerusform>
            <numerusform>%d fichiers exportés dans %@</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d files named after their items</source>
        <comment>counted</comment>
        <extracomment>for one: 1 file named after its item</extracomment>
        <translation>
            <numerusform>%d fichier renommé d’après son élément</numerusform>
            <numerusform>%d fichiers renommés d’après leurs éléments</numerusform>
        </translation>
    </message>
    <message>
        <source>%d files of the library had lost their entries and were taken back.</source>
        <translation>%d fichiers de la bibliothèque avaient perdu leur entrée et ont été repris.</translation>
    </message>
    <message>
        <source>%d files of “%@” cannot be found. The import is kept: go on with it, or forget it.</source>
        <translation>%d fichiers de « %@ » sont introuvables. L’import est conservé : reprenez-le ou oubliez-le.</translation>
    </message>
    <message>
        <source>%d files or folders cannot be found in “%@”. %@</source>
        <translation>%d fichiers ou dossiers sont introuvables dans « %@ ». %@</translation>
    </message>
    <message>
        <source>%d files stay where they were copied to.</source>
        <translation>%d fichiers restent là où ils ont été copiés.</translation>
    </message>
    <message>
        <source>%d files were copied, but may not be safe on the disk. Their originals stay where they were.</source>
        <translation>%d fichiers ont été copiés, mais ne sont peut-être pas en sûreté sur le disque. Leurs originaux restent en place.</translation>
    </message>
    <message>
        <source>%d files were copied, but their originals stay where they were.</source>
        <translation>%d fichiers ont été copiés, mais leurs originaux restent en place.</translation>
    </message>
    <message>
        <source>%d files were not copied into the live folder.</source>
        <translation>%d fichiers n’ont pas été copiés dans le dossier actif.</translation>
    </message>
    <message>
        <source>%d files were not exported. The first is “%@”: %@</source>
        <translation>%d fichiers n’ont pas été exportés. Le premier est « %@ » : %@</translation>
    </message>
    <message numerus="yes">
        <source>%d fingerprints made</source>
        <comment>counted</comment>
        <extracomment>for one: 1 fingerprint made</extracomment>
        <translation>
            <numerusform>%d empreinte créée</numerusform>
            <numerusform>%d empreintes créées</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d folders</source>
        <comment>counted</comment>
        <extracomment>for one: 1 folder</extracomment>
        <translation>
            <numerusform>%d dossier</numerusform>
            <numerusform>%d dossiers</numerusform>
        </translation>
    </message>
    <message>
        <source>%d folders of the library belong to no item</source>
        <translation>%d dossiers de la bibliothèque n’appartiennent à aucun élément</translation>
    </message>
    <message>
        <source>%d folders of the library belong to no item and could not be taken back. The first is “%@”.</source>
        <translation>%d dossiers de la bibliothèque n’appartiennent à aucun élément et n’ont pas pu être repris. Le premier est « %@ ».</translation>
    </message>
    <message>
        <source>%d imported items could not be taken out of the library again.</source>
        <translation>%d éléments importés n’ont pas pu être retirés de la bibliothèque.</translation>
    </message>
    <message>
        <source>%d imported, %d not</source>
        <translation>%d importés, %d non</translation>
    </message>
    <message numerus="yes">
        <source>%d imports were cut off</source>
        <comment>counted</comment>
        <extracomment>for one: an import was cut off</extracomment>
        <translation>
            <numerusform>%d import a été interrompu</numerusform>
            <numerusform>%d imports ont été interrompus</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item</extracomment>
        <translation>
            <numerusform>%d élément</numerusform>
            <numerusform>%d éléments</numerusform>
        </translation>
    </message>
    <message>
        <source>%d items added to the import queue</source>
        <translation>%d éléments ajoutés à la file d’import</translation>
    </message>
    <message>
        <source>%d items can't be read, so that their files were not checked</source>
        <translation>%d éléments sont illisibles, leurs fichiers n’ont donc pas été vérifiés</translation>
    </message>
    <message>
        <source>%d items cannot be deleted.</source>
        <translation>Impossible de supprimer %d éléments.</translation>
    </message>
    <message>
        <source>%d items cannot be kept in place of the others.</source>
        <translation>Impossible de conserver %d éléments à la place des autres.</translation>
    </message>
    <message>
        <source>%d items cannot be moved back.</source>
        <translation>Impossible de remettre %d éléments à leur place.</translation>
    </message>
    <message>
        <source>%d items cannot be put into the live folder.</source>
        <translation>Impossible de placer %d éléments dans le dossier actif.</translation>
    </message>
    <message>
        <source>%d items cannot be restored.</source>
        <translation>Impossible de restaurer %d éléments.</translation>
    </message>
    <message numerus="yes">
        <source>%d items checked</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item checked</extracomment>
        <translation>
            <numerusform>%d élément vérifié</numerusform>
            <numerusform>%d éléments vérifiés</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items deleted</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item deleted</extracomment>
        <translation>
            <numerusform>%d élément supprimé</numerusform>
            <numerusform>%d éléments supprimés</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items imported</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item imported</extracomment>
        <translation>
            <numerusform>%d élément importé</numerusform>
            <numerusform>%d éléments importés</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items noted</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item noted</extracomment>
        <translation>
            <numerusform>Remarques modifiées pour %d élément</numerusform>
            <numerusform>Remarques modifiées pour %d éléments</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items rated</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item rated</extracomment>
        <translation>
            <numerusform>%d élément noté</numerusform>
            <numerusform>%d éléments notés</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d items restored</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item restored</extracomment>
        <translation>
            <numerusform>%d élément restauré</numerusform>
            <numerusform>%d éléments restaurés</numerusform>
        </translation>
    </message>
    <message>
        <source>%d items selected</source>
        <translation>%d éléments sélectionnés</translation>
    </message>
    <message numerus="yes">
        <source>%d items tagged</source>
        <comment>counted</comment>
        <extracomment>for one: 1 item tagged</extracomment>
        <translation>
            <numerusform>Mots-clés modifiés pour %d élément</numerusform>
            <numerusform>Mots-clés modifiés pour %d éléments</numerusform>
        </translation>
    </message>
    <message>
        <source>%d layers</source>
        <translation>%d calques</translation>
    </message>
    <message>
        <source>%d live folders</source>
        <translation>%d dossiers actifs</translation>
    </message>
    <message numerus="yes">
        <source>%d live folders removed</source>
        <comment>counted</comment>
        <extracomment>for one: 1 live folder removed; its folder stays on the disk</extracomment>
        <translation>
            <numerusform>%d dossier actif retiré ; le dossier reste sur le disque</numerusform>
            <numerusform>%d dossiers actifs retirés</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d look like pictures you have</source>
        <comment>counted</comment>
        <extracomment>for one: 1 looks like a picture you have</extracomment>
        <translation>
            <numerusform>%d ressemble à une image que vous avez déjà</numerusform>
            <numerusform>%d ressemblent à des images que vous avez déjà</numerusform>
        </translation>
    </message>
    <message>
        <source>%d more</source>
        <translation>%d de plus</translation>
    </message>
    <message>
        <source>%d new live folders created</source>
        <translation>%d nouveaux dossiers actifs créés</translation>
    </message>
    <message>
        <source>%d of %d images could not be downloaded:</source>
        <translation>%d images sur %d n’ont pas pu être téléchargées :</translation>
    </message>
    <message>
        <source>%d of 5</source>
        <translation>%d sur 5</translation>
    </message>
    <message>
        <source>%d of its entries were left out, the first is %@.</source>
        <translation>%d de ses entrées ont été omises, la première est %@.</translation>
    </message>
    <message>
        <source>%d of these cannot be live folders.</source>
        <translation>%d d’entre eux ne peuvent pas être des dossiers actifs.</translation>
    </message>
    <message>
        <source>%d pictures are incomplete: only a part of each can be drawn. The first is “%@”</source>
        <translation>%d images sont incomplètes : seule une partie de chacune peut être affichée. La première est « %@ »</translation>
    </message>
    <message numerus="yes">
        <source>%d pictures are not there now; ask again when their disk is back</source>
        <comment>counted</comment>
        <extracomment>for one: 1 picture is not there now; ask again when its disk is back</extracomment>
        <translation>
            <numerusform>%d image n’est pas là pour le moment ; relancez la commande quand son disque sera de retour</numerusform>
            <numerusform>%d images ne sont pas là pour le moment ; relancez la commande quand leur disque sera de retour</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d pictures show nothing, or cannot be read</source>
        <comment>counted</comment>
        <extracomment>for one: 1 picture shows nothing, or cannot be read</extracomment>
        <translation>
            <numerusform>%d image ne montre rien ou est illisible</numerusform>
            <numerusform>%d images ne montrent rien ou sont illisibles</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d smart folders changed</source>
        <comment>counted</comment>
        <extracomment>for one: 1 smart folder changed</extracomment>
        <translation>
            <numerusform>%d dossier intelligent modifié</numerusform>
            <numerusform>%d dossiers intelligents modifiés</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%d smart folders made</source>
        <comment>counted</comment>
        <extracomment>for one: 1 smart folder made</extracomment>
        <translation>
            <numerusform>%d dossier intelligent créé</numerusform>
            <numerusform>%d dossiers intelligents créés</numerusform>
        </translation>
    </message>
    <message>
        <source>%d stars or more</source>
        <translation>%d étoiles ou plus</translation>
    </message>
    <message>
        <source>%d × %d</source>
        <translation>%d × %d</translation>
    </message>
    <message>
        <source>%d × %d pixels, from %d, %d</source>
        <translation>%d × %d pixels, à partir de %d, %d</translation>
    </message>
    <message>
        <source>%d, %d</source>
        <translation>%d, %d</translation>
    </message>
    <message>
        <source>&amp;Add</source>
        <translation>&amp;Ajouter</translation>
    </message>
    <message>
        <source>&amp;Archives in archives, at most</source>
        <translation>Archives im&amp;briquées, au maximum</translation>
    </message>
    <message>
        <source>&amp;Area</source>
        <translation>&amp;Zone</translation>
    </message>
    <message>
        <source>&amp;Ask before a row is removed</source>
        <translation>&amp;Demander avant de retirer une ligne</translation>
    </message>
    <message>
        <source>&amp;Back Up Now</source>
        <translation>Sauvegarder &amp;maintenant</translation>
    </message>
    <message>
        <source>&amp;Bring Zelto forward</source>
        <translation>Mettre Zelto au &amp;premier plan</translation>
    </message>
    <message>
        <source>&amp;Cancel</source>
        <translation>A&amp;nnuler</translation>
    </message>
    <message>
        <source>&amp;Connect</source>
        <translation>&amp;Connecter</translation>
    </message>
    <message>
        <source>&amp;Count which features are used, day by day</source>
        <translation>&amp;Compter les fonctions utilisées, jour par jour</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Sombre</translation>
    </message>
    <message>
        <source>&amp;Disconnect</source>
        <translation>&amp;Déconnecter</translation>
    </message>
    <message>
        <source>&amp;E-mail</source>
        <translation>Adresse &amp;e-mail</translation>
    </message>
    <message>
        <source>&amp;Enlarge pictures smaller than their cell</source>
        <translation>&amp;Agrandir les images plus petites que leur cellule</translation>
    </message>
    <message>
        <source>&amp;Erase Counts</source>
        <translation>&amp;Effacer les compteurs</translation>
    </message>
    <message>
        <source>&amp;Files and folders, at most</source>
        <translation>&amp;Fichiers et dossiers, au maximum</translation>
    </message>
    <message>
        <source>&amp;Folder</source>
        <translation>D&amp;ossier</translation>
    </message>
    <message>
        <source>&amp;Folder…</source>
        <translation>Doss&amp;ier…</translation>
    </message>
    <message>
        <source>&amp;Icon</source>
        <translation>&amp;Icône</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importer…</translation>
    </message>
    <message>
        <source>&amp;Keep</source>
        <translation>&amp;Garder</translation>
    </message>
    <message>
        <source>&amp;Keep tags, notes and ratings in the files</source>
        <translation>&amp;Conserver les mots-clés, remarques et notes dans les fichiers</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Clair</translation>
    </message>
    <message>
        <source>&amp;Link…</source>
        <translation>A&amp;ssocier…</translation>
    </message>
    <message>
        <source>&amp;Look again after</source>
        <translation>&amp;Réexaminer après</translation>
    </message>
    <message>
        <source>&amp;Look for new versions once a day</source>
        <translation>&amp;Rechercher de nouvelles versions une fois par jour</translation>
    </message>
    <message>
        <source>&amp;Make a thumbnail of small pictures, too</source>
        <translation>Créer une &amp;vignette aussi pour les petites images</translation>
    </message>
    <message>
        <source>&amp;Medium</source>
        <translation>&amp;Moyenne</translation>
    </message>
    <message>
        <source>&amp;Move…</source>
        <translation>&amp;Déplacer…</translation>
    </message>
    <message>
        <source>&amp;New…</source>
        <translation>&amp;Nouvelle…</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Ouvrir…</translation>
    </message>
    <message>
        <source>&amp;Packed how many times smaller, at most</source>
        <translation>Taux de com&amp;pression, au maximum</translation>
    </message>
    <message>
        <source>&amp;Password</source>
        <translation>&amp;Mot de passe</translation>
    </message>
    <message>
        <source>&amp;Play a sound and flash the screen</source>
        <translation>&amp;Jouer un son et faire clignoter l’écran</translation>
    </message>
    <message>
        <source>&amp;Read all of every file, too</source>
        <translation>&amp;Lire aussi chaque fichier en entier</translation>
    </message>
    <message>
        <source>&amp;Reduce motion</source>
        <translation>&amp;Réduire les animations</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Retirer</translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation>&amp;Enregistrer…</translation>
    </message>
    <message>
        <source>&amp;Share to</source>
        <translation>&amp;Partager vers</translation>
    </message>
    <message>
        <source>&amp;Show Screenshots in the sidebar</source>
        <translation>Afficher les captures d’écran dans la &amp;barre latérale</translation>
    </message>
    <message>
        <source>&amp;Show in Files</source>
        <translation>&amp;Afficher dans Fichiers</translation>
    </message>
    <message>
        <source>&amp;Show them in Recent</source>
        <translation>Les &amp;afficher dans Récents</translation>
    </message>
    <message>
        <source>&amp;Small</source>
        <translation>&amp;Petite</translation>
    </message>
    <message>
        <source>&amp;Start Zelto when you log in</source>
        <translation>&amp;Démarrer Zelto à l’ouverture de session</translation>
    </message>
    <message>
        <source>&amp;Tag what is imported by color and size</source>
        <translation>&amp;Attribuer aux imports des mots-clés de couleur et de taille</translation>
    </message>
    <message>
        <source>&amp;Take today's picture formats, too</source>
        <translation>Accepter aussi les formats d’image &amp;récents</translation>
    </message>
    <message>
        <source>&amp;Unlink</source>
        <translation>&amp;Dissocier</translation>
    </message>
    <message>
        <source>&amp;Unpacked size, at most</source>
        <translation>&amp;Taille décompressée, au maximum</translation>
    </message>
    <message>
        <source>&amp;User</source>
        <translation>&amp;Utilisateur</translation>
    </message>
    <message>
        <source>&amp;Verify</source>
        <translation>&amp;Vérifier</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenêtre</translation>
    </message>
    <message>
        <source>&amp;Write them for the file manager, too</source>
        <translation>Les écrire aussi pour le &amp;gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>--all needs a --title for the project</source>
        <translation>--all nécessite un --title pour le projet</translation>
    </message>
    <message>
        <source>--percent and --width or --height exclude each other</source>
        <translation>--percent et --width ou --height s’excluent mutuellement</translation>
    </message>
    <message>
        <source>--quality is for --format %@</source>
        <translation>--quality est réservé à --format %@</translation>
    </message>
    <message>
        <source>--resume and --forget exclude each other</source>
        <translation>--resume et --forget s’excluent mutuellement</translation>
    </message>
    <message>
        <source>0 … 5</source>
        <translation>0 … 5</translation>
    </message>
    <message>
        <source>1 Star</source>
        <translation>1 étoile</translation>
    </message>
    <message>
        <source>1 file is missing</source>
        <translation>1 fichier est manquant</translation>
    </message>
    <message>
        <source>1 file of the library had lost its entry and was taken back.</source>
        <translation>1 fichier de la bibliothèque avait perdu son entrée et a été repris.</translation>
    </message>
    <message>
        <source>1 file was not copied into the live folder.</source>
        <translation>1 fichier n’a pas été copié dans le dossier actif.</translation>
    </message>
    <message>
        <source>1 item added to the import queue</source>
        <translation>1 élément ajouté à la file d’import</translation>
    </message>
    <message>
        <source>1 page</source>
        <translation>1 page</translation>
    </message>
    <message>
        <source>1 star or more</source>
        <translation>1 étoile ou plus</translation>
    </message>
    <message>
        <source>100 %</source>
        <translation>100 %</translation>
    </message>
    <message>
        <source>7-Zip archive</source>
        <translation>Archive 7-Zip</translation>
    </message>
    <message>
        <source>A Client ID has letters and digits only.</source>
        <translation>Un Client ID ne contient que des lettres et des chiffres.</translation>
    </message>
    <message>
        <source>A Nextcloud makes the links itself, and wants an app password where a second factor is used. Any other WebDAV folder needs the address at which everybody can read what lies in it. The password is kept in the desktop's keyring and nowhere else.</source>
        <translation>Un Nextcloud crée lui-même les liens et demande un mot de passe d’application si un second facteur est utilisé. Tout autre dossier WebDAV nécessite l’adresse à laquelle chacun peut lire son contenu. Le mot de passe est conservé dans le trousseau du bureau et nulle part ailleurs.</translation>
    </message>
    <message>
        <source>A colon is missing behind “%@”.</source>
        <translation>Il manque un deux-points après « %@ ».</translation>
    </message>
    <message>
        <source>A comma or “]” is missing.</source>
        <translation>Il manque une virgule ou « ] ».</translation>
    </message>
    <message>
        <source>A comma or “}” is missing.</source>
        <translation>Il manque une virgule ou « } ».</translation>
    </message>
    <message>
        <source>A description begins with “{”.</source>
        <translation>Une description commence par « { ».</translation>
    </message>
    <message>
        <source>A document of %d × %d pixels is too large: other programs open none with a side of more than %d.</source>
        <translation>Un document de %d × %d pixels est trop grand : les autres programmes n’en ouvrent aucun dont un côté dépasse %d.</translation>
    </message>
    <message>
        <source>A folder takes folders and archives. Choose a project in it.</source>
        <translation>Un dossier accueille des dossiers et des archives. Choisissez un projet qu’il contient.</translation>
    </message>
    <message>
        <source>A form has a content type of its own: leave out the header.</source>
        <translation>Un formulaire a son propre type de contenu : omettez l’en-tête.</translation>
    </message>
    <message>
        <source>A header holds only plain letters, digits and signs.</source>
        <translation>Un en-tête ne contient que des lettres simples, des chiffres et des signes.</translation>
    </message>
    <message>
        <source>A live folder that is selected is off, or was not there. Its items come back with it.</source>
        <translation>Un dossier actif sélectionné est désactivé ou n’était pas là. Ses éléments reviennent avec lui.</translation>
    </message>
    <message>
        <source>A login does not belong into the address. Write a header “Authorization” with a {secret:NAME}.</source>
        <translation>Les identifiants n’ont pas leur place dans l’adresse. Écrivez un en-tête « Authorization » avec un {secret:NAME}.</translation>
    </message>
    <message>
        <source>A missing file comes back from a backup: copy it to where it was, under its name. A missing thumbnail is made again when its file changes. For a damaged database, quit Zelto and run “zelto recover” in a terminal.</source>
        <translation>Un fichier manquant se récupère depuis une sauvegarde : copiez-le là où il était, sous son nom. Une vignette manquante est recréée lorsque son fichier change. Si la base de données est endommagée, quittez Zelto et exécutez « zelto recover » dans un terminal.</translation>
    </message>
    <message>
        <source>A name cannot contain "/" or a null character. Please use another name.</source>
        <translation>Un nom ne peut contenir ni « / » ni caractère nul. Choisissez un autre nom.</translation>
    </message>
    <message>
        <source>A name in quotation marks is missing.</source>
        <translation>Il manque un nom entre guillemets.</translation>
    </message>
    <message>
        <source>A name must be one line of letters and signs.</source>
        <translation>Un nom doit tenir sur une ligne de lettres et de signes.</translation>
    </message>
    <message>
        <source>A name pattern is one line. Write it without line breaks.</source>
        <translation>Un modèle de nom tient sur une ligne. Écrivez-le sans saut de ligne.</translation>
    </message>
    <message>
        <source>A name pattern knows no “%@”. There are {title}, {index}, {width}, {height} and {date}.</source>
        <translation>Un modèle de nom ne connaît pas « %@ ». Il y a {title}, {index}, {width}, {height} et {date}.</translation>
    </message>
    <message>
        <source>A name pattern makes names, not folders. Write it without “/”.</source>
        <translation>Un modèle de nom produit des noms, pas des dossiers. Écrivez-le sans « / ».</translation>
    </message>
    <message>
        <source>A name that starts with a dot would hide the file. Please use another name.</source>
        <translation>Un nom qui commence par un point masquerait le fichier. Choisissez un autre nom.</translation>
    </message>
    <message>
        <source>A page asked for %d images at once; at most %d can be imported. Choose fewer.</source>
        <translation>Une page a demandé %d images à la fois ; %d au plus peuvent être importées. Choisissez-en moins.</translation>
    </message>
    <message>
        <source>A page sent something that cannot be understood (the value of “%@”). Update what is installed in the browser, and try again.</source>
        <translation>Une page a envoyé quelque chose d’incompréhensible (la valeur de « %@ »). Mettez à jour ce qui est installé dans le navigateur, puis réessayez.</translation>
    </message>
    <message>
        <source>A page sent something that cannot be understood. Update what is installed in the browser, and try again.</source>
        <translation>Une page a envoyé quelque chose d’incompréhensible. Mettez à jour ce qui est installé dans le navigateur, puis réessayez.</translation>
    </message>
    <message>
        <source>A pointer names the way to the link, as /data/url.</source>
        <translation>Un pointeur indique le chemin vers le lien, comme /data/url.</translation>
    </message>
    <message>
        <source>A quotation mark is missing at the end of a text.</source>
        <translation>Il manque un guillemet à la fin d’un texte.</translation>
    </message>
    <message>
        <source>A rating is a number of stars from 0 to 5.</source>
        <translation>Une note est un nombre d’étoiles de 0 à 5.</translation>
    </message>
    <message>
        <source>A safe connection to %@ could not be made: %@</source>
        <translation>Impossible d’établir une connexion sûre avec %@ : %@</translation>
    </message>
    <message>
        <source>A server with a second factor wants an “app password” from its security settings.</source>
        <translation>Un serveur avec second facteur demande un « mot de passe d’application », à créer dans ses paramètres de sécurité.</translation>
    </message>
    <message>
        <source>A smart folder finds its items by itself. Choose the library, a project or a tag.</source>
        <translation>Un dossier intelligent trouve lui-même ses éléments. Choisissez la bibliothèque, un projet ou un mot-clé.</translation>
    </message>
    <message>
        <source>A sort key is an attribute, or to-one relationships leading to one.</source>
        <translation>Une clé de tri est un attribut, ou une suite de relations vers un seul objet qui y mène.</translation>
    </message>
    <message>
        <source>A switches this; 1, 2 and 3 choose.</source>
        <translation>A active ou désactive cette option ; 1, 2 et 3 choisissent.</translation>
    </message>
    <message>
        <source>A text must end on its line; write \n for a new one.</source>
        <translation>Un texte doit se terminer sur sa ligne ; écrivez \n pour en commencer une autre.</translation>
    </message>
    <message>
        <source>A value is missing.</source>
        <translation>Il manque une valeur.</translation>
    </message>
    <message>
        <source>A word is looked for in titles, notes, extensions and tags. AND, + or nothing between two words finds both,
OR one of them; brackets group, - or NOT leaves out, double quotes keep a text together. Dates are 25/12/2026,
2026-12-25, 2026-12, 2026, today, yesterday or 7d. Numbers and dates are compared by &lt;, =, &gt;, &lt;= or &gt;=.
</source>
        <translation>Un mot est cherché dans les titres, remarques, extensions et mots-clés. AND, + ou rien entre deux mots trouve les deux,
OR l’un des deux ; les parenthèses regroupent, - ou NOT exclut, les guillemets gardent un texte entier. Dates : 25/12/2026,
2026-12-25, 2026-12, 2026, today, yesterday ou 7d. Les nombres et les dates se comparent avec &lt;, =, &gt;, &lt;= ou &gt;=.
</translation>
    </message>
    <message>
        <source>A&amp;ddress</source>
        <translation>Ad&amp;resse</translation>
    </message>
    <message>
        <source>ACC&amp;OUNTS</source>
        <translation>COMP&amp;TES</translation>
    </message>
    <message>
        <source>AFTER A SCREENSHOT</source>
        <translation>APRÈS UNE CAPTURE D’ÉCRAN</translation>
    </message>
    <message>
        <source>AI %@ is too big to import</source>
        <translation>AI %@ est trop grand pour être importé</translation>
    </message>
    <message>
        <source>AND, OR or the end</source>
        <translation>AND, OR ou la fin</translation>
    </message>
    <message>
        <source>ARCHIVES</source>
        <translation>ARCHIVES</translation>
    </message>
    <message>
        <source>AT LOGIN</source>
        <translation>À L’OUVERTURE DE SESSION</translation>
    </message>
    <message>
        <source>AVI movie</source>
        <translation>Film AVI</translation>
    </message>
    <message>
        <source>AVIF image</source>
        <translation>Image AVIF</translation>
    </message>
    <message>
        <source>Acorn %@ is not a valid image</source>
        <translation>Acorn %@ n’est pas une image valide</translation>
    </message>
    <message>
        <source>Acorn document</source>
        <translation>Document Acorn</translation>
    </message>
    <message>
        <source>Actual Size</source>
        <translation>Taille réelle</translation>
    </message>
    <message>
        <source>Actual size (Z)</source>
        <translation>Taille réelle (Z)</translation>
    </message>
    <message>
        <source>Add</source>
        <translation>Ajouter</translation>
    </message>
    <message>
        <source>Add Export Preset</source>
        <translation>Préréglage ajouté</translation>
    </message>
    <message>
        <source>Add Folder</source>
        <translation>Ajouter un dossier</translation>
    </message>
    <message>
        <source>Add Live Folder…</source>
        <translation>Ajouter un dossier actif…</translation>
    </message>
    <message>
        <source>Add New Folder</source>
        <translation>Dossier créé</translation>
    </message>
    <message>
        <source>Add New Project</source>
        <translation>Projet créé</translation>
    </message>
    <message>
        <source>Add Templates</source>
        <translation>Ajouter des modèles</translation>
    </message>
    <message>
        <source>Add tag</source>
        <translation>Ajouter un mot-clé</translation>
    </message>
    <message>
        <source>Add tag…</source>
        <translation>Ajouter un mot-clé…</translation>
    </message>
    <message>
        <source>Adding items…</source>
        <translation>Ajout des éléments…</translation>
    </message>
    <message>
        <source>Address of a web page</source>
        <translation>Adresse d’une page web</translation>
    </message>
    <message>
        <source>Address of the page</source>
        <translation>Adresse de la page</translation>
    </message>
    <message>
        <source>Adds it to what is selected, or takes it away</source>
        <translation>L’ajoute à la sélection ou l’en retire</translation>
    </message>
    <message>
        <source>Add…</source>
        <translation>Ajouter…</translation>
    </message>
    <message>
        <source>Advanced</source>
        <translation>Avancé</translation>
    </message>
    <message>
        <source>Affinity Designer document</source>
        <translation>Document Affinity Designer</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Toutes</translation>
    </message>
    <message>
        <source>All Tabs</source>
        <translation>Tous les onglets</translation>
    </message>
    <message>
        <source>All that is akin to it</source>
        <translation>Tout ce qui s’en rapproche</translation>
    </message>
    <message>
        <source>All the child projects and their items will be also deleted.</source>
        <translation>Tous les projets enfants et leurs éléments seront également supprimés.</translation>
    </message>
    <message>
        <source>All the child projects will be also deleted, projects items will still remain inside your library.</source>
        <translation>Tous les projets enfants seront également supprimés ; leurs éléments resteront dans votre bibliothèque.</translation>
    </message>
    <message>
        <source>All the project items will be deleted from your library.</source>
        <translation>Tous les éléments du projet seront supprimés de votre bibliothèque.</translation>
    </message>
    <message>
        <source>Allow files.content.write, sharing.read and sharing.write for it at dropbox.com/developers/apps, then link your Dropbox again.</source>
        <translation>Accordez-lui files.content.write, sharing.read et sharing.write sur dropbox.com/developers/apps, puis associez de nouveau votre Dropbox.</translation>
    </message>
    <message>
        <source>Allow public links there, or share the file from the server's own pages.</source>
        <translation>Autorisez-y les liens publics, ou partagez le fichier depuis les pages du serveur.</translation>
    </message>
    <message>
        <source>Alt</source>
        <translation>Alt</translation>
    </message>
    <message>
        <source>An archive in it was left out: %@</source>
        <translation>Une archive qu’il contient a été omise : %@</translation>
    </message>
    <message>
        <source>An archive that holds more is not unpacked.</source>
        <translation>Une archive qui en contient davantage n’est pas décompressée.</translation>
    </message>
    <message>
        <source>An arrow key selects the middle of the screen</source>
        <translation>Une touche fléchée sélectionne le milieu de l’écran</translation>
    </message>
    <message>
        <source>An error as occured, please try again later</source>
        <translation>Une erreur s’est produite, réessayez plus tard</translation>
    </message>
    <message>
        <source>An import cannot go on, since it cannot be told which of its files are in the library. It is kept: go on with it once that is mended, or forget it.</source>
        <translation>Un import ne peut pas reprendre, car on ne peut pas savoir lesquels de ses fichiers sont dans la bibliothèque. Il est conservé : reprenez-le une fois le problème résolu, ou oubliez-le.</translation>
    </message>
    <message>
        <source>An item has no folder that can be its own: %@</source>
        <translation>Un élément n’a pas de dossier qui puisse être le sien : %@</translation>
    </message>
    <message>
        <source>An object that is still used by others through %@ cannot be deleted.</source>
        <translation>Un objet que d’autres utilisent encore par %@ ne peut pas être supprimé.</translation>
    </message>
    <message>
        <source>Another backup into the folder “%@” is under way.</source>
        <translation>Une autre sauvegarde dans le dossier « %@ » est en cours.</translation>
    </message>
    <message>
        <source>Another file has that name. Use another name, or rename the other file.</source>
        <translation>Un autre fichier porte ce nom. Choisissez un autre nom ou renommez l’autre fichier.</translation>
    </message>
    <message>
        <source>Another folder is in its place. Connect the drive it is on, or, if this is the folder to show, choose Use This Folder.</source>
        <translation>Un autre dossier est à sa place. Connectez le disque où il se trouve ou, si c’est le dossier à afficher, choisissez Utiliser ce dossier.</translation>
    </message>
    <message>
        <source>Another library, or a move of this one, takes effect when Zelto is opened again.</source>
        <translation>Le changement ou le déplacement de la bibliothèque prend effet à la prochaine ouverture de Zelto.</translation>
    </message>
    <message>
        <source>Another program uses it. Wait until that is done, and try again.</source>
        <translation>Un autre programme l’utilise. Attendez qu’il ait terminé, puis réessayez.</translation>
    </message>
    <message>
        <source>Another program uses port %d of this machine, at which the web browser is to answer. Close it and try again.</source>
        <translation>Un autre programme utilise le port %d de cet ordinateur, sur lequel le navigateur web doit répondre. Fermez-le, puis réessayez.</translation>
    </message>
    <message>
        <source>Another program would have to draw it, and this system cannot keep such a program from your files (its kernel has no Landlock). Convert it to PDF or PNG and import that.</source>
        <translation>Un autre programme devrait le dessiner, et ce système ne peut pas tenir un tel programme à l’écart de vos fichiers (son noyau n’a pas Landlock). Convertissez-le en PDF ou PNG et importez le résultat.</translation>
    </message>
    <message>
        <source>Any other one that is set up there does as well: a server of your own (WebDAV, Nextcloud), Dropbox, Imgur, or a service that a description file explains.</source>
        <translation>Tout autre service configuré là convient aussi : un serveur à vous (WebDAV, Nextcloud), Dropbox, Imgur, ou un service décrit par un fichier de description.</translation>
    </message>
    <message>
        <source>Any other service that takes files over the web, as a description file says: its address, headers and form fields, and where the link is found in its answer.</source>
        <translation>Tout autre service qui reçoit des fichiers par le web, selon un fichier de description : son adresse, ses en-têtes et champs de formulaire, et où trouver le lien dans sa réponse.</translation>
    </message>
    <message>
        <source>App &amp;key</source>
        <translation>&amp;Clé d’application (App key)</translation>
    </message>
    <message>
        <source>Apply to all %d duplicates</source>
        <translation>Appliquer aux %d doublons</translation>
    </message>
    <message>
        <source>Apply to all duplicates of this import</source>
        <translation>Appliquer à tous les doublons de cet import</translation>
    </message>
    <message>
        <source>Apply to the remaining %d duplicates</source>
        <translation>Appliquer aux %d doublons restants</translation>
    </message>
    <message>
        <source>Archive</source>
        <translation>Archive</translation>
    </message>
    <message>
        <source>Are you sure you want to delete these items and their content?</source>
        <translation>Voulez-vous vraiment supprimer ces éléments et leur contenu ?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete these items?</source>
        <translation>Voulez-vous vraiment supprimer ces éléments ?</translation>
    </message>
    <message numerus="yes">
        <source>Are you sure you want to delete these tags?</source>
        <comment>counted</comment>
        <extracomment>for one: Are you sure you want to delete this tag?</extracomment>
        <translation>
            <numerusform>Voulez-vous vraiment supprimer ce mot-clé ?</numerusform>
            <numerusform>Voulez-vous vraiment supprimer ces mots-clés ?</numerusform>
        </translation>
    </message>
    <message>
        <source>Are you sure you want to delete this folder and its content?</source>
        <translation>Voulez-vous vraiment supprimer ce dossier et son contenu ?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this folder?</source>
        <translation>Voulez-vous vraiment supprimer ce dossier ?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this project and its content?</source>
        <translation>Voulez-vous vraiment supprimer ce projet et son contenu ?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this project?</source>
        <translation>Voulez-vous vraiment supprimer ce projet ?</translation>
    </message>
    <message>
        <source>Are you sure you want to delete this smart folder?</source>
        <translation>Voulez-vous vraiment supprimer ce dossier intelligent ?</translation>
    </message>
    <message>
        <source>Are you sure you want to remove this Live Folder?</source>
        <translation>Voulez-vous vraiment retirer ce dossier actif ?</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>Zone</translation>
    </message>
    <message>
        <source>Area to capture</source>
        <translation>Zone à capturer</translation>
    </message>
    <message>
        <source>As %@ it is sharp in any size</source>
        <translation>En %@, elle est nette à toute taille</translation>
    </message>
    <message>
        <source>As Grid</source>
        <translation>En grille</translation>
    </message>
    <message>
        <source>As List</source>
        <translation>En liste</translation>
    </message>
    <message>
        <source>As `import,store`, or `all`: print how long the traced steps took.</source>
        <translation>Par exemple `import,store`, ou `all` : affiche la durée des étapes suivies.</translation>
    </message>
    <message>
        <source>As `zelto.*.debug=true`, which turns on the log of every subsystem.</source>
        <translation>Par exemple `zelto.*.debug=true`, qui active le journal de tous les sous-systèmes.</translation>
    </message>
    <message>
        <source>As good as the others, and in the library for longest</source>
        <translation>Aussi bonne que les autres, et depuis le plus longtemps dans la bibliothèque</translation>
    </message>
    <message>
        <source>As good as the others, and rated highest</source>
        <translation>Aussi bonne que les autres, et la mieux notée</translation>
    </message>
    <message>
        <source>As it is</source>
        <translation>Inchangé</translation>
    </message>
    <message>
        <source>As large as the others, and %@ keeps more of a picture</source>
        <translation>Aussi grande que les autres, et %@ garde davantage d’une image</translation>
    </message>
    <message>
        <source>Ascending</source>
        <translation>Croissant</translation>
    </message>
    <message>
        <source>Ask Again Later</source>
        <translation>Redemander plus tard</translation>
    </message>
    <message>
        <source>Ask again when it is needed.</source>
        <translation>Relancez-la au besoin.</translation>
    </message>
    <message>
        <source>Ask before a row is removed with the &amp;items in it</source>
        <translation>Demander avant de retirer une ligne avec ses é&amp;léments</translation>
    </message>
    <message>
        <source>Ask whoever runs it for a description that gives each file a name of its own.</source>
        <translation>Demandez à la personne qui le gère une description donnant à chaque fichier son propre nom.</translation>
    </message>
    <message>
        <source>Ask whoever runs it for a description with the login.</source>
        <translation>Demandez à la personne qui le gère une description comportant les identifiants.</translation>
    </message>
    <message>
        <source>Asking CloudApp…</source>
        <translation>Interrogation de CloudApp…</translation>
    </message>
    <message>
        <source>Asking the server…</source>
        <translation>Interrogation du serveur…</translation>
    </message>
    <message>
        <source>At dropbox.com/developers/apps create an app with “Scoped access”, allow it files.content.write, sharing.read and sharing.write, and enter %@ among its redirect URIs. Its “App key” belongs here.</source>
        <translation>Sur dropbox.com/developers/apps, créez une application avec « Scoped access », accordez-lui files.content.write, sharing.read et sharing.write, et ajoutez %@ à ses redirect URIs. Indiquez ici son « App key ».</translation>
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
        <translation>Automatique</translation>
    </message>
    <message>
        <source>BACKUP</source>
        <translation>SAUVEGARDE</translation>
    </message>
    <message>
        <source>BETWEEN needs a list of two values</source>
        <translation>BETWEEN nécessite une liste de deux valeurs</translation>
    </message>
    <message>
        <source>BMP image</source>
        <translation>Image BMP</translation>
    </message>
    <message>
        <source>Back Up Library…</source>
        <translation>Sauvegarder la bibliothèque…</translation>
    </message>
    <message>
        <source>Back to the items (Esc)</source>
        <translation>Revenir aux éléments (Échap)</translation>
    </message>
    <message>
        <source>Back, or clear the search</source>
        <translation>Revenir ou effacer la recherche</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Arrière-plan</translation>
    </message>
    <message>
        <source>Backing up</source>
        <translation>Sauvegarde</translation>
    </message>
    <message>
        <source>Backspace</source>
        <translation>Retour arrière</translation>
    </message>
    <message>
        <source>Backup made: %@</source>
        <translation>Sauvegarde effectuée : %@</translation>
    </message>
    <message>
        <source>Behind “%@” stands what to look for: %@.</source>
        <translation>Après « %@ » vient ce qu’il faut chercher : %@.</translation>
    </message>
    <message>
        <source>Blue</source>
        <translation>Bleu</translation>
    </message>
    <message>
        <source>Both are also on while the desktop asks for them.</source>
        <translation>Les deux s’appliquent aussi tant que le bureau le demande.</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Luminosité</translation>
    </message>
    <message>
        <source>Bring back</source>
        <translation>Remettre</translation>
    </message>
    <message>
        <source>Bring back what was taken out last (Shift+X)</source>
        <translation>Remettre la dernière image retirée (Maj+X)</translation>
    </message>
    <message>
        <source>Bringing items back…</source>
        <translation>Retour des éléments…</translation>
    </message>
    <message>
        <source>Busy</source>
        <translation>Occupé</translation>
    </message>
    <message>
        <source>By &amp;itself</source>
        <translation>A&amp;utomatiquement</translation>
    </message>
    <message>
        <source>By whole factors, so that pixels stay sharp.</source>
        <translation>Par facteurs entiers, pour que les pixels restent nets.</translation>
    </message>
    <message>
        <source>Bytes</source>
        <translation>Octets</translation>
    </message>
    <message>
        <source>C&amp;ancel</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>C&amp;hange…</source>
        <translation>Modi&amp;fier…</translation>
    </message>
    <message>
        <source>C&amp;opy</source>
        <translation>&amp;Copier</translation>
    </message>
    <message>
        <source>COLORS</source>
        <translation>COULEURS</translation>
    </message>
    <message>
        <source>CRASH REPORTS</source>
        <translation>RAPPORTS DE PLANTAGE</translation>
    </message>
    <message>
        <source>Camera raw image</source>
        <translation>Image brute d’appareil photo</translation>
    </message>
    <message>
        <source>Can't connect to Cloud App</source>
        <translation>Impossible de se connecter à Cloud App</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Cancel Sharing</source>
        <translation>Annuler le partage</translation>
    </message>
    <message>
        <source>Cancel takes back everything this import has brought.</source>
        <translation>Annuler retire tout ce que cet import a apporté.</translation>
    </message>
    <message>
        <source>Cancels what is being shared.</source>
        <translation>Annule ce qui est en cours de partage.</translation>
    </message>
    <message>
        <source>Cannot upload the files</source>
        <translation>Impossible d’envoyer les fichiers</translation>
    </message>
    <message>
        <source>Capture</source>
        <translation>Capturer</translation>
    </message>
    <message>
        <source>Capture %@</source>
        <translation>Capturer : %@</translation>
    </message>
    <message>
        <source>Capture Web Page</source>
        <translation>Capturer une page web</translation>
    </message>
    <message>
        <source>Capture stored</source>
        <translation>Capture enregistrée</translation>
    </message>
    <message>
        <source>Capture the page at “%@”?</source>
        <translation>Capturer la page à l’adresse « %@ » ?</translation>
    </message>
    <message>
        <source>Capturing the page…</source>
        <translation>Capture de la page…</translation>
    </message>
    <message>
        <source>Capturing web pages needs a browser that is not there: install chromium.</source>
        <translation>Capturer des pages web nécessite un navigateur absent : installez chromium.</translation>
    </message>
    <message>
        <source>Check for &amp;Updates...</source>
        <translation>Rechercher des &amp;mises à jour...</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation>Rechercher des mises à jour...</translation>
    </message>
    <message>
        <source>Check its name and where it is.</source>
        <translation>Vérifiez son nom et son emplacement.</translation>
    </message>
    <message>
        <source>Check its permissions, or choose another folder.</source>
        <translation>Vérifiez ses permissions ou choisissez un autre dossier.</translation>
    </message>
    <message>
        <source>Check its permissions, or choose another library.</source>
        <translation>Vérifiez ses permissions ou choisissez une autre bibliothèque.</translation>
    </message>
    <message>
        <source>Check that its folder exists and can be written.</source>
        <translation>Vérifiez que son dossier existe et est accessible en écriture.</translation>
    </message>
    <message>
        <source>Check that its folder exists and that you may read and write there.</source>
        <translation>Vérifiez que son dossier existe et que vous pouvez y lire et y écrire.</translation>
    </message>
    <message>
        <source>Check that the volume is still connected and has room, then try again.</source>
        <translation>Vérifiez que le volume est toujours connecté et a de la place, puis réessayez.</translation>
    </message>
    <message>
        <source>Check the address and the name of the user.</source>
        <translation>Vérifiez l’adresse et le nom d’utilisateur.</translation>
    </message>
    <message>
        <source>Check the address of your server and the folder in the preferences, under Cloud.</source>
        <translation>Vérifiez l’adresse de votre serveur et le dossier dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Check the permissions of its folder and the room on its disk; the damaged file is unchanged.</source>
        <translation>Vérifiez les permissions de son dossier et la place sur son disque ; le fichier endommagé est inchangé.</translation>
    </message>
    <message>
        <source>Check the permissions of its folder and whether the volume is mounted read-only.</source>
        <translation>Vérifiez les permissions de son dossier et si le volume est monté en lecture seule.</translation>
    </message>
    <message>
        <source>Check your internet connection or your network settings.</source>
        <translation>Vérifiez votre connexion Internet ou vos paramètres réseau.</translation>
    </message>
    <message>
        <source>Check “link” in its description, and import it again in the preferences, under Cloud.</source>
        <translation>Vérifiez « link » dans sa description et importez-la de nouveau dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Choisir</translation>
    </message>
    <message>
        <source>Choose a Description</source>
        <translation>Choisir une description</translation>
    </message>
    <message>
        <source>Choose a folder whose name ends in .ztlibrary.</source>
        <translation>Choisissez un dossier dont le nom se termine par .ztlibrary.</translation>
    </message>
    <message>
        <source>Choose a live folder, the library, a project or a tag.</source>
        <translation>Choisissez un dossier actif, la bibliothèque, un projet ou un mot-clé.</translation>
    </message>
    <message>
        <source>Choose another folder, best on another disk.</source>
        <translation>Choisissez un autre dossier, de préférence sur un autre disque.</translation>
    </message>
    <message>
        <source>Choose another library, recover it, or put back a copy from a backup.</source>
        <translation>Choisissez une autre bibliothèque, récupérez celle-ci ou remettez une copie de sauvegarde.</translation>
    </message>
    <message>
        <source>Choose another library.</source>
        <translation>Choisissez une autre bibliothèque.</translation>
    </message>
    <message>
        <source>Choose another place for the library.</source>
        <translation>Choisissez un autre emplacement pour la bibliothèque.</translation>
    </message>
    <message>
        <source>Choose fewer at once.</source>
        <translation>Choisissez-en moins à la fois.</translation>
    </message>
    <message>
        <source>Choose one in the settings of the desktop and try again.</source>
        <translation>Choisissez-en un dans les paramètres du bureau, puis réessayez.</translation>
    </message>
    <message>
        <source>Choose the library, a project or a tag.</source>
        <translation>Choisissez la bibliothèque, un projet ou un mot-clé.</translation>
    </message>
    <message>
        <source>Choose where it is to go.</source>
        <translation>Choisissez la destination.</translation>
    </message>
    <message>
        <source>Chosen to be kept, in place of the proposed one.</source>
        <translation>Choisie à la place de celle qui est proposée.</translation>
    </message>
    <message>
        <source>Cleaning up library</source>
        <translation>Nettoyage de la bibliothèque</translation>
    </message>
    <message>
        <source>Click or Return takes the window · Tab goes on · Esc leaves</source>
        <translation>Clic ou Entrée capture la fenêtre · Tab passe à la suivante · Échap quitte</translation>
    </message>
    <message>
        <source>Click to cancel.</source>
        <translation>Cliquez pour annuler.</translation>
    </message>
    <message>
        <source>Click to export what is selected, or drag it to where the files are to go.</source>
        <translation>Cliquez pour exporter la sélection, ou faites-la glisser là où les fichiers doivent aller.</translation>
    </message>
    <message>
        <source>Click, then press the keys. Backspace clears.</source>
        <translation>Cliquez, puis appuyez sur les touches. Retour arrière efface.</translation>
    </message>
    <message>
        <source>Client &amp;ID</source>
        <translation>&amp;Identifiant client (Client ID)</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Close Tab</source>
        <translation>Fermer l’onglet</translation>
    </message>
    <message>
        <source>Cloud</source>
        <translation>Cloud</translation>
    </message>
    <message>
        <source>Cloud Upload (Dropbox)</source>
        <translation>Envoi (Dropbox)</translation>
    </message>
    <message>
        <source>Cloud Upload (other services)</source>
        <translation>Envoi (autres services)</translation>
    </message>
    <message>
        <source>Cloud preferences…</source>
        <translation>Préférences du cloud…</translation>
    </message>
    <message>
        <source>Collapse All Groups</source>
        <translation>Réduire tous les groupes</translation>
    </message>
    <message>
        <source>Collapse Group</source>
        <translation>Réduire le groupe</translation>
    </message>
    <message>
        <source>Color</source>
        <translation>Couleur</translation>
    </message>
    <message>
        <source>Color is “%@”</source>
        <translation>La couleur est « %@ »</translation>
    </message>
    <message>
        <source>Colors</source>
        <translation>Couleurs</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Colonnes</translation>
    </message>
    <message>
        <source>Comma-separated values</source>
        <translation>Valeurs séparées par des virgules</translation>
    </message>
    <message>
        <source>Compare</source>
        <translation>Comparer</translation>
    </message>
    <message>
        <source>Comparing…</source>
        <translation>Comparaison…</translation>
    </message>
    <message>
        <source>Connect it again before you go on. What you change until then cannot be kept.</source>
        <translation>Reconnectez-le avant de continuer. Ce que vous changez d’ici là ne peut pas être conservé.</translation>
    </message>
    <message>
        <source>Connect its disk, or choose another folder.</source>
        <translation>Connectez son disque ou choisissez un autre dossier.</translation>
    </message>
    <message>
        <source>Connect its disk, then try again.</source>
        <translation>Connectez son disque, puis réessayez.</translation>
    </message>
    <message>
        <source>Connect the account again in the preferences, under Cloud.</source>
        <translation>Reconnectez le compte dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Connect the volume it is on, or choose another library.</source>
        <translation>Connectez le volume où elle se trouve ou choisissez une autre bibliothèque.</translation>
    </message>
    <message>
        <source>Connect this computer to a network, then try again.</source>
        <translation>Connectez cet ordinateur à un réseau, puis réessayez.</translation>
    </message>
    <message>
        <source>Connect your CloudApp account in the preferences, under Cloud. Who has none makes one at %@.</source>
        <translation>Connectez votre compte CloudApp dans les préférences, sous Cloud. Si vous n’en avez pas, créez-en un sur %@.</translation>
    </message>
    <message>
        <source>Connected as %@</source>
        <translation>Connecté en tant que %@</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Continuer</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Copier</translation>
    </message>
    <message>
        <source>Copy %@</source>
        <translation>Copier %@</translation>
    </message>
    <message numerus="yes">
        <source>Copy All %@ Links of the Last Upload</source>
        <comment>counted</comment>
        <extracomment>for one: Copy the Link of the Last Upload</extracomment>
        <translation>
            <numerusform>Copier %@ lien du dernier envoi</numerusform>
            <numerusform>Copier les %@ liens du dernier envoi</numerusform>
        </translation>
    </message>
    <message>
        <source>Copy Link</source>
        <translation>Copier le lien</translation>
    </message>
    <message>
        <source>Copy it to another place, and open the copy.</source>
        <translation>Copiez-la à un autre endroit et ouvrez la copie.</translation>
    </message>
    <message>
        <source>Copy the template's file there with `zelto import`.</source>
        <translation>Copiez-y le fichier du modèle avec `zelto import`.</translation>
    </message>
    <message>
        <source>Copying files…</source>
        <translation>Copie des fichiers…</translation>
    </message>
    <message>
        <source>Copying items…</source>
        <translation>Copie des éléments…</translation>
    </message>
    <message>
        <source>Copying the database</source>
        <translation>Copie de la base de données</translation>
    </message>
    <message>
        <source>Could not be read, at least: %@.</source>
        <translation>Illisible, au moins : %@.</translation>
    </message>
    <message>
        <source>Could not save changes while quitting.  Quit anyway?</source>
        <translation>Impossible d’enregistrer les modifications en quittant.  Quitter quand même ?</translation>
    </message>
    <message>
        <source>Counting…</source>
        <translation>Décompte…</translation>
    </message>
    <message>
        <source>Crash report</source>
        <translation>Rapport de plantage</translation>
    </message>
    <message>
        <source>Created</source>
        <translation>Créé</translation>
    </message>
    <message>
        <source>Created before (&lt;), on (=) or since (&gt;) the date, that day included</source>
        <translation>Créé avant (&lt;), à (=) ou depuis (&gt;) la date, jour compris</translation>
    </message>
    <message>
        <source>Creation date</source>
        <translation>Date de création</translation>
    </message>
    <message>
        <source>Ctrl</source>
        <translation>Ctrl</translation>
    </message>
    <message>
        <source>DISKS THAT TELL OF NO CHANGES</source>
        <translation>DISQUES QUI NE SIGNALENT PAS LES CHANGEMENTS</translation>
    </message>
    <message>
        <source>Dark Theme</source>
        <translation>Thème sombre</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Supprimer</translation>
    </message>
    <message>
        <source>Delete %@</source>
        <translation>Supprimer %@</translation>
    </message>
    <message>
        <source>Delete %@ and Content</source>
        <translation>Supprimer %@ et le contenu</translation>
    </message>
    <message>
        <source>Delete Export Preset</source>
        <translation>Préréglage supprimé</translation>
    </message>
    <message>
        <source>Delete Preset</source>
        <translation>Supprimer le préréglage</translation>
    </message>
    <message>
        <source>Delete from Library</source>
        <translation>Supprimer de la bibliothèque</translation>
    </message>
    <message>
        <source>Deleted and not yet removed: %@</source>
        <translation>Supprimés mais pas encore effacés : %@</translation>
    </message>
    <message>
        <source>Deleting files…</source>
        <translation>Suppression des fichiers…</translation>
    </message>
    <message>
        <source>Deleting items…</source>
        <translation>Suppression des éléments…</translation>
    </message>
    <message>
        <source>Descending</source>
        <translation>Décroissant</translation>
    </message>
    <message>
        <source>Difference</source>
        <translation>Différence</translation>
    </message>
    <message>
        <source>Difference (D)</source>
        <translation>Différence (D)</translation>
    </message>
    <message>
        <source>Digest is %@</source>
        <translation>L’empreinte est %@</translation>
    </message>
    <message>
        <source>Digital negative image</source>
        <translation>Image négatif numérique</translation>
    </message>
    <message>
        <source>Disable</source>
        <translation>Désactiver</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Abandonner</translation>
    </message>
    <message>
        <source>Discard the new copy</source>
        <translation>Abandonner la nouvelle copie</translation>
    </message>
    <message>
        <source>Disconnect</source>
        <translation>Déconnecter</translation>
    </message>
    <message>
        <source>Disconnect “%@”?</source>
        <translation>Déconnecter « %@ » ?</translation>
    </message>
    <message>
        <source>Do not ask again</source>
        <translation>Ne plus demander</translation>
    </message>
    <message>
        <source>Do you want to switch library and quit Zelto?</source>
        <translation>Voulez-vous changer de bibliothèque et quitter Zelto ?</translation>
    </message>
    <message>
        <source>Document</source>
        <translation>Document</translation>
    </message>
    <message>
        <source>Don't Look</source>
        <translation>Ne pas rechercher</translation>
    </message>
    <message>
        <source>Double resolution</source>
        <translation>Double résolution</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Bas</translation>
    </message>
    <message>
        <source>Downloading images</source>
        <translation>Téléchargement des images</translation>
    </message>
    <message>
        <source>Drag it to another place, or press Delete to remove it.</source>
        <translation>Faites-le glisser à un autre endroit, ou appuyez sur Suppr pour le retirer.</translation>
    </message>
    <message>
        <source>Drag over an area of one screen, or press an arrow key · Esc leaves</source>
        <translation>Tracez une zone sur un seul écran ou appuyez sur une touche fléchée · Échap quitte</translation>
    </message>
    <message>
        <source>Drag over an area, or press an arrow key · Esc leaves</source>
        <translation>Tracez une zone ou appuyez sur une touche fléchée · Échap quitte</translation>
    </message>
    <message>
        <source>Drawing</source>
        <translation>Dessin</translation>
    </message>
    <message>
        <source>Drop folders here, or press +</source>
        <translation>Déposez des dossiers, ou +</translation>
    </message>
    <message>
        <source>Drop images here, or press Ctrl+I</source>
        <translation>Déposez des images ici ou appuyez sur Ctrl+I</translation>
    </message>
    <message>
        <source>Drop to create a live folder</source>
        <translation>Déposer pour créer un dossier actif</translation>
    </message>
    <message>
        <source>Drop to create a project</source>
        <translation>Déposer pour créer un projet</translation>
    </message>
    <message>
        <source>Dropbox</source>
        <translation>Dropbox</translation>
    </message>
    <message>
        <source>Dropbox answered without what lets Zelto in.</source>
        <translation>La réponse de Dropbox ne contient pas ce qui donne accès à Zelto.</translation>
    </message>
    <message>
        <source>Dropbox needs an app key.</source>
        <translation>Dropbox nécessite une App key.</translation>
    </message>
    <message>
        <source>Dropbox no longer lets Zelto in.</source>
        <translation>Dropbox ne donne plus accès à Zelto.</translation>
    </message>
    <message>
        <source>Dropbox says: “%@”.</source>
        <translation>Réponse de Dropbox : « %@ ».</translation>
    </message>
    <message>
        <source>Dropbox was not linked: it was not allowed in the web browser.</source>
        <translation>Dropbox n’a pas été associé : cela n’a pas été autorisé dans le navigateur web.</translation>
    </message>
    <message>
        <source>Dropped file</source>
        <translation>Fichier déposé</translation>
    </message>
    <message>
        <source>Duplicate</source>
        <translation>Dupliquer</translation>
    </message>
    <message>
        <source>Duplicates: %@</source>
        <translation>Doublons : %@</translation>
    </message>
    <message>
        <source>Duplicating items…</source>
        <translation>Duplication des éléments…</translation>
    </message>
    <message>
        <source>EPS %@ is not a valid image</source>
        <translation>EPS %@ n’est pas une image valide</translation>
    </message>
    <message>
        <source>Each upload goes into a folder of its own in your Dropbox. What lets Zelto in is kept in the desktop's keyring and nowhere else.</source>
        <translation>Chaque envoi va dans un dossier à part de votre Dropbox. Ce qui donne accès à Zelto est conservé dans le trousseau du bureau et nulle part ailleurs.</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Édition</translation>
    </message>
    <message>
        <source>Edit Search…</source>
        <translation>Modifier la recherche…</translation>
    </message>
    <message>
        <source>Edit Search… in its menu gives it another text.</source>
        <translation>Modifier la recherche… dans son menu lui donne un autre texte.</translation>
    </message>
    <message>
        <source>Edit presets</source>
        <translation>Modifier les préréglages</translation>
    </message>
    <message>
        <source>Edit presets…</source>
        <translation>Modifier les préréglages…</translation>
    </message>
    <message>
        <source>Empty the search field</source>
        <translation>Videz le champ de recherche</translation>
    </message>
    <message>
        <source>Enable</source>
        <translation>Activer</translation>
    </message>
    <message>
        <source>Enable this live folder</source>
        <translation>Activer ce dossier actif</translation>
    </message>
    <message>
        <source>Encapsulated PostScript image</source>
        <translation>Image PostScript encapsulée</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Fin</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Entrée</translation>
    </message>
    <message>
        <source>Enter a Dropbox app key in the preferences, under Cloud, and link your Dropbox.</source>
        <translation>Indiquez une App key Dropbox dans les préférences, sous Cloud, et associez votre Dropbox.</translation>
    </message>
    <message>
        <source>Enter it in the preferences, under Cloud.</source>
        <translation>Indiquez-le dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Enter names with “/” between them.</source>
        <translation>Saisissez les noms séparés par « / ».</translation>
    </message>
    <message>
        <source>Enter the address of “%@” without a login and without “?” and “#”.</source>
        <translation>Indiquez l’adresse de « %@ » sans identifiants et sans « ? » ni « # ».</translation>
    </message>
    <message>
        <source>Enter the public address of the folder in the preferences, under Cloud.</source>
        <translation>Indiquez l’adresse publique du dossier dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Enter them anew in the preferences, under Cloud. A server with a second factor wants an “app password” from its security settings.</source>
        <translation>Saisissez-les de nouveau dans les préférences, sous Cloud. Un serveur avec second facteur demande un « mot de passe d’application », à créer dans ses paramètres de sécurité.</translation>
    </message>
    <message>
        <source>Enter what the service gave you.</source>
        <translation>Indiquez ce que le service vous a donné.</translation>
    </message>
    <message>
        <source>Enter your server, your name and your password there in the preferences, under Cloud.</source>
        <translation>Indiquez-y votre serveur, votre nom et votre mot de passe, dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Échap</translation>
    </message>
    <message numerus="yes">
        <source>Every %@ days</source>
        <comment>counted</comment>
        <extracomment>for one: Every day</extracomment>
        <translation>
            <numerusform>Chaque jour</numerusform>
            <numerusform>Tous les %@ jours</numerusform>
        </translation>
    </message>
    <message>
        <source>Every day</source>
        <translation>Chaque jour</translation>
    </message>
    <message>
        <source>Every week</source>
        <translation>Chaque semaine</translation>
    </message>
    <message>
        <source>Everything is in the library already. Choose a project or a tag.</source>
        <translation>Tout est déjà dans la bibliothèque. Choisissez un projet ou un mot-clé.</translation>
    </message>
    <message>
        <source>Expand All Groups</source>
        <translation>Développer tous les groupes</translation>
    </message>
    <message>
        <source>Expand Group</source>
        <translation>Développer le groupe</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exporter</translation>
    </message>
    <message>
        <source>Export Items</source>
        <translation>Éléments exportés</translation>
    </message>
    <message>
        <source>Export as Layered PSD</source>
        <translation>Exporter en PSD avec calques</translation>
    </message>
    <message>
        <source>Export as Layered PSD…</source>
        <translation>Exporter en PSD avec calques…</translation>
    </message>
    <message numerus="yes">
        <source>Export incomplete
%d original files are missing!</source>
        <comment>counted</comment>
        <extracomment>for one: Export incomplete
 %d original file is missing!</extracomment>
        <translation>
            <numerusform>Export incomplet
%d fichier d’origine est manquant !</numerusform>
            <numerusform>Export incomplet
%d fichiers d’origine sont manquants !</numerusform>
        </translation>
    </message>
    <message>
        <source>Export operation</source>
        <translation>Opération d’export</translation>
    </message>
    <message>
        <source>Exporting %@ of %@</source>
        <translation>Export de %@ sur %@</translation>
    </message>
    <message>
        <source>Exporting layers…</source>
        <translation>Export des calques…</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exporter…</translation>
    </message>
    <message>
        <source>Extension</source>
        <translation>Extension</translation>
    </message>
    <message>
        <source>Extension is “%@”</source>
        <translation>L’extension est « %@ »</translation>
    </message>
    <message>
        <source>F10</source>
        <translation>F10</translation>
    </message>
    <message>
        <source>FILES OPENED WITH ZELTO</source>
        <translation>FICHIERS OUVERTS AVEC ZELTO</translation>
    </message>
    <message>
        <source>FLAC audio</source>
        <translation>Audio FLAC</translation>
    </message>
    <message>
        <source>FOLDERS OF THE DISK</source>
        <translation>DOSSIERS DU DISQUE</translation>
    </message>
    <message>
        <source>FROM EACH FILE</source>
        <translation>DEPUIS CHAQUE FICHIER</translation>
    </message>
    <message>
        <source>Failed to initialize the store</source>
        <translation>Impossible d’initialiser la base de données</translation>
    </message>
    <message>
        <source>Fewer, as many or more stars</source>
        <translation>Moins, autant ou plus d’étoiles</translation>
    </message>
    <message>
        <source>File</source>
        <translation>Fichier</translation>
    </message>
    <message>
        <source>File names</source>
        <translation>Noms de fichiers</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Fichiers</translation>
    </message>
    <message>
        <source>Files before it are missing, and took the names. Export it by itself.</source>
        <translation>Des fichiers qui le précèdent sont manquants et ont pris les noms. Exportez-le séparément.</translation>
    </message>
    <message>
        <source>Files of this kind are not taken, as the preferences say. Have them taken there (Import), or convert it to PNG or JPEG.</source>
        <translation>Les fichiers de ce type ne sont pas acceptés, d’après les préférences. Faites-les accepter là-bas (Importer), ou convertissez-le en PNG ou JPEG.</translation>
    </message>
    <message>
        <source>Files of this kind cannot be imported. Convert it to an image, a PDF or an SVG first.</source>
        <translation>Les fichiers de ce type ne peuvent pas être importés. Convertissez-le d’abord en image, PDF ou SVG.</translation>
    </message>
    <message>
        <source>Files of this kind, as PNG or font</source>
        <translation>Fichiers de ce type, comme PNG ou police</translation>
    </message>
    <message>
        <source>Files that were not imported</source>
        <translation>Fichiers qui n’ont pas été importés</translation>
    </message>
    <message>
        <source>Files with this extension; * and ? are wildcards</source>
        <translation>Fichiers avec cette extension ; « * » et « ? » sont des caractères génériques</translation>
    </message>
    <message>
        <source>Find</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Find Color…</source>
        <translation>Rechercher une couleur…</translation>
    </message>
    <message>
        <source>Find Near-Duplicates…</source>
        <translation>Rechercher les quasi-doublons…</translation>
    </message>
    <message>
        <source>Find Similar</source>
        <translation>Rechercher les images semblables</translation>
    </message>
    <message>
        <source>Find a color</source>
        <translation>Rechercher une couleur</translation>
    </message>
    <message>
        <source>Find in %@</source>
        <translation>Rechercher dans %@</translation>
    </message>
    <message>
        <source>Finds files that were changed; takes a while.</source>
        <translation>Trouve les fichiers modifiés ; prend un certain temps.</translation>
    </message>
    <message>
        <source>Finds what both sides find</source>
        <translation>Trouve ce que les deux côtés trouvent</translation>
    </message>
    <message>
        <source>Finds what one of both sides finds</source>
        <translation>Trouve ce que l’un des deux côtés trouve</translation>
    </message>
    <message>
        <source>Find…</source>
        <translation>Rechercher…</translation>
    </message>
    <message>
        <source>Fit</source>
        <translation>Ajuster</translation>
    </message>
    <message>
        <source>Fit (Ctrl+0)</source>
        <translation>Ajuster (Ctrl+0)</translation>
    </message>
    <message>
        <source>Folder</source>
        <translation>Dossier</translation>
    </message>
    <message>
        <source>Folders</source>
        <translation>Dossiers</translation>
    </message>
    <message>
        <source>Folders of the disk whose files are shown here and stay where they are</source>
        <translation>Dossiers du disque dont les fichiers sont affichés ici et restent à leur place</translation>
    </message>
    <message>
        <source>Folders on a network, for example, are looked at in intervals, and a clock marks them in the sidebar. That shows which files came and went; files that changed within are seen every hour.</source>
        <translation>Les dossiers d’un réseau, par exemple, sont examinés à intervalles réguliers ; une horloge les signale dans la barre latérale. Cela montre quels fichiers sont apparus ou ont disparu ; ceux dont le contenu a changé sont repérés toutes les heures.</translation>
    </message>
    <message>
        <source>Font</source>
        <translation>Police</translation>
    </message>
    <message>
        <source>Forget</source>
        <translation>Oublier</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Frame %d of %d</source>
        <translation>Image %d sur %d</translation>
    </message>
    <message>
        <source>Free some space there and look at its permissions.</source>
        <translation>Libérez-y de l’espace et vérifiez ses permissions.</translation>
    </message>
    <message>
        <source>Free some space, or check the permissions of the settings.</source>
        <translation>Libérez de l’espace ou vérifiez les permissions des paramètres.</translation>
    </message>
    <message>
        <source>Free some space, then save again; nothing of your changes is lost.</source>
        <translation>Libérez de l’espace, puis enregistrez de nouveau ; aucune de vos modifications n’est perdue.</translation>
    </message>
    <message>
        <source>From the next start on.</source>
        <translation>À partir du prochain démarrage.</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>Plein écran</translation>
    </message>
    <message>
        <source>Full view</source>
        <translation>Vue en grand</translation>
    </message>
    <message>
        <source>GIF image</source>
        <translation>Image GIF</translation>
    </message>
    <message>
        <source>GIMP image</source>
        <translation>Image GIMP</translation>
    </message>
    <message>
        <source>GZIP archive</source>
        <translation>Archive GZIP</translation>
    </message>
    <message>
        <source>General</source>
        <translation>Général</translation>
    </message>
    <message>
        <source>Give the title or the identifier of something in the sidebar.</source>
        <translation>Indiquez le titre ou l’identifiant d’un élément de la barre latérale.</translation>
    </message>
    <message>
        <source>Go on only if you asked for this in the browser.</source>
        <translation>Continuez seulement si vous l’avez demandé dans le navigateur.</translation>
    </message>
    <message>
        <source>Go on only if you asked for this in the browser. You will not be asked again for this page's host.</source>
        <translation>Continuez seulement si vous l’avez demandé dans le navigateur. La question ne sera plus posée pour l’hôte de cette page.</translation>
    </message>
    <message>
        <source>Go to Tab</source>
        <translation>Aller à l’onglet</translation>
    </message>
    <message>
        <source>Green</source>
        <translation>Vert</translation>
    </message>
    <message>
        <source>Group</source>
        <translation>Grouper</translation>
    </message>
    <message>
        <source>Group by</source>
        <translation>Grouper par</translation>
    </message>
    <message>
        <source>Group: %@</source>
        <translation>Groupement : %@</translation>
    </message>
    <message>
        <source>Groups</source>
        <translation>Groupes</translation>
    </message>
    <message>
        <source>HEIC image</source>
        <translation>Image HEIC</translation>
    </message>
    <message>
        <source>HTML document</source>
        <translation>Document HTML</translation>
    </message>
    <message>
        <source>Has a color near %@ (%d)</source>
        <translation>A une couleur proche de %@ (%d)</translation>
    </message>
    <message>
        <source>Has no tag at all</source>
        <translation>N’a aucun mot-clé</translation>
    </message>
    <message>
        <source>Has no tag of yours</source>
        <translation>N’a aucun mot-clé à vous</translation>
    </message>
    <message>
        <source>Has the tag “%@”</source>
        <translation>A le mot-clé « %@ »</translation>
    </message>
    <message>
        <source>Has the tag; * and ? are wildcards</source>
        <translation>A le mot-clé ; « * » et « ? » sont des caractères génériques</translation>
    </message>
    <message>
        <source>Have the smart folder find what is shown (Ctrl+Shift+S)</source>
        <translation>Faire trouver au dossier intelligent ce qui est affiché (Ctrl+Maj+S)</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Hauteur</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Aide</translation>
    </message>
    <message>
        <source>Hiding items…</source>
        <translation>Masquage des éléments…</translation>
    </message>
    <message>
        <source>High &amp;contrast</source>
        <translation>C&amp;ontraste élevé</translation>
    </message>
    <message>
        <source>Hold Ctrl, Alt or Super with it: alone, other programs need this key.</source>
        <translation>Ajoutez Ctrl, Alt ou Super : seule, cette touche est nécessaire à d’autres programmes.</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Début</translation>
    </message>
    <message>
        <source>How files are called: {title}, {index}, {width}, {height} and {date} stand for what each file has. Empty: the title.</source>
        <translation>Nom des fichiers : {title}, {index}, {width}, {height} et {date} représentent les données de chaque fichier. Vide : le titre.</translation>
    </message>
    <message>
        <source>How many backups stay</source>
        <translation>Nombre de sauvegardes à garder</translation>
    </message>
    <message>
        <source>How near</source>
        <translation>Degré de ressemblance</translation>
    </message>
    <message>
        <source>How often a backup is made by itself</source>
        <translation>Fréquence des sauvegardes automatiques</translation>
    </message>
    <message>
        <source>Hue</source>
        <translation>Teinte</translation>
    </message>
    <message>
        <source>IN FILES</source>
        <translation>DANS LES FICHIERS</translation>
    </message>
    <message>
        <source>IS EVERYTHING THERE?</source>
        <translation>RIEN NE MANQUE ?</translation>
    </message>
    <message>
        <source>ITEMS</source>
        <translation>ÉLÉMENTS</translation>
    </message>
    <message>
        <source>Icon image</source>
        <translation>Image d’icône</translation>
    </message>
    <message>
        <source>If it has no encryption, write http:// before its address.</source>
        <translation>S’il n’est pas chiffré, écrivez http:// devant son adresse.</translation>
    </message>
    <message>
        <source>If there is a keyring, it stays there: remove what is named “%@” in the desktop's program for passwords.</source>
        <translation>S’il existe un trousseau, il y reste : supprimez l’entrée « %@ » dans le programme de mots de passe du bureau.</translation>
    </message>
    <message>
        <source>Illustrator image</source>
        <translation>Image Illustrator</translation>
    </message>
    <message>
        <source>Image</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>Images cannot be downloaded now. Restart Zelto, and try again.</source>
        <translation>Impossible de télécharger des images pour le moment. Redémarrez Zelto, puis réessayez.</translation>
    </message>
    <message>
        <source>Images get this tag by themselves when they are imported.</source>
        <translation>Les images reçoivent ce mot-clé automatiquement à l’import.</translation>
    </message>
    <message>
        <source>Imgur asks every program for an identifier, and limits what comes with each. Register one of your own, choose “OAuth 2 authorization without a callback URL”, and paste the Client ID that it shows, 15 letters and digits, here.</source>
        <translation>Imgur demande à chaque programme un identifiant et limite ce qui est envoyé avec chacun. Enregistrez le vôtre, choisissez « OAuth 2 authorization without a callback URL » et collez ici le Client ID affiché, 15 lettres et chiffres.</translation>
    </message>
    <message>
        <source>Imgur does not accept the Client ID. Enter the right one in the preferences, under Cloud.</source>
        <translation>Imgur n’accepte pas le Client ID. Indiquez le bon dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Imgur refuses the upload. Look in the preferences, under Cloud, whether the Client ID is the right one, and whether Imgur takes files of this kind.</source>
        <translation>Imgur refuse l’envoi. Vérifiez dans les préférences, sous Cloud, que le Client ID est le bon, et qu’Imgur accepte les fichiers de ce type.</translation>
    </message>
    <message>
        <source>Imgur takes no more uploads with this Client ID for now.</source>
        <translation>Imgur n’accepte plus d’envois avec ce Client ID pour le moment.</translation>
    </message>
    <message>
        <source>Imgur wants to know which program uploads. Register one of your own at api.imgur.com/oauth2/addclient, as “OAuth 2 authorization without a callback URL”, and enter the Client ID that you get in the preferences, under Cloud.</source>
        <translation>Imgur veut savoir quel programme envoie. Enregistrez le vôtre sur api.imgur.com/oauth2/addclient, en tant que « OAuth 2 authorization without a callback URL », et indiquez le Client ID obtenu dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Importer</translation>
    </message>
    <message>
        <source>Import %d images from the page at “%@”?</source>
        <translation>Importer %d images de la page à l’adresse « %@ » ?</translation>
    </message>
    <message>
        <source>Import Invalid</source>
        <translation>Import non valide</translation>
    </message>
    <message>
        <source>Import Successful</source>
        <translation>Import réussi</translation>
    </message>
    <message>
        <source>Import an image from the page at “%@”?</source>
        <translation>Importer une image de la page à l’adresse « %@ » ?</translation>
    </message>
    <message>
        <source>Import anyway</source>
        <translation>Importer quand même</translation>
    </message>
    <message>
        <source>Import cancelled</source>
        <translation>Import annulé</translation>
    </message>
    <message>
        <source>Import date</source>
        <translation>Date d’import</translation>
    </message>
    <message>
        <source>Import files here</source>
        <translation>Importer des fichiers ici</translation>
    </message>
    <message>
        <source>Import its description again in the preferences, under Cloud, and enter it anew.</source>
        <translation>Importez de nouveau sa description dans les préférences, sous Cloud, et saisissez de nouveau ce qu’elle demande.</translation>
    </message>
    <message>
        <source>Import operation successful</source>
        <translation>L’import a réussi</translation>
    </message>
    <message>
        <source>Import the description again in the preferences, under Cloud.</source>
        <translation>Importez de nouveau la description dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Import the missing files again, and remove that file.</source>
        <translation>Importez de nouveau les fichiers manquants et supprimez ce fichier.</translation>
    </message>
    <message>
        <source>Imported</source>
        <translation>Importé</translation>
    </message>
    <message>
        <source>Imported before (&lt;), on (=) or since (&gt;) the date, that day included</source>
        <translation>Importé avant (&lt;), à (=) ou depuis (&gt;) la date, jour compris</translation>
    </message>
    <message>
        <source>Imported in</source>
        <translation>Importés en</translation>
    </message>
    <message>
        <source>Importing %@ of %@</source>
        <translation>Import de %@ sur %@</translation>
    </message>
    <message>
        <source>Importing…</source>
        <translation>Import en cours…</translation>
    </message>
    <message>
        <source>Import…</source>
        <translation>Importer…</translation>
    </message>
    <message>
        <source>Import… (Ctrl+I)</source>
        <translation>Importer… (Ctrl+I)</translation>
    </message>
    <message>
        <source>In a live folder</source>
        <translation>Dans un dossier actif</translation>
    </message>
    <message>
        <source>In a live folder named “%@”, or below it</source>
        <translation>Dans un dossier actif nommé « %@ » ou ses sous-dossiers</translation>
    </message>
    <message>
        <source>In a live folder of this name, or below it</source>
        <translation>Dans un dossier actif de ce nom ou ses sous-dossiers</translation>
    </message>
    <message>
        <source>In a live folder: %@</source>
        <translation>Dans un dossier actif : %@</translation>
    </message>
    <message>
        <source>In a project named “%@”</source>
        <translation>Dans un projet nommé « %@ »</translation>
    </message>
    <message>
        <source>In a project whose name contains the text</source>
        <translation>Dans un projet dont le nom contient le texte</translation>
    </message>
    <message>
        <source>In live folders: %@</source>
        <translation>Dans les dossiers actifs : %@</translation>
    </message>
    <message>
        <source>In no project</source>
        <translation>Dans aucun projet</translation>
    </message>
    <message>
        <source>In the desktop's keyboard settings keys can be bound to “zelto snap area”, “zelto snap window” and “zelto snap full”.</source>
        <translation>Dans les paramètres clavier du bureau, des touches peuvent être attribuées à « zelto snap area », « zelto snap window » et « zelto snap full ».</translation>
    </message>
    <message>
        <source>In your library since %@</source>
        <translation>Dans votre bibliothèque depuis le %@</translation>
    </message>
    <message>
        <source>InDesign document</source>
        <translation>Document InDesign</translation>
    </message>
    <message>
        <source>Info</source>
        <translation>Infos</translation>
    </message>
    <message>
        <source>Info Panel</source>
        <translation>Panneau d’informations</translation>
    </message>
    <message>
        <source>Info Panel (Ctrl+Shift+I)</source>
        <translation>Panneau d’informations (Ctrl+Maj+I)</translation>
    </message>
    <message>
        <source>Insert</source>
        <translation>Inser</translation>
    </message>
    <message>
        <source>Install one, such as GNOME Keyring or KWallet, log in to the desktop again, and try once more. Nothing was stored.</source>
        <translation>Installez-en un, comme GNOME Keyring ou KWallet, rouvrez votre session, puis réessayez. Rien n’a été enregistré.</translation>
    </message>
    <message>
        <source>Install the application again.</source>
        <translation>Réinstallez l’application.</translation>
    </message>
    <message>
        <source>Install the newer version to open it.</source>
        <translation>Installez la version plus récente pour l’ouvrir.</translation>
    </message>
    <message>
        <source>It asks its makers' server once a day which version is the newest. Nothing about you or your library is sent, and nothing is installed by itself.</source>
        <translation>Une fois par jour, Zelto demande au serveur de ses auteurs quelle est la version la plus récente. Rien sur vous ni sur votre bibliothèque n’est envoyé, et rien ne s’installe tout seul.</translation>
    </message>
    <message>
        <source>It belongs to the system. Add the folders with your pictures instead.</source>
        <translation>Il appartient au système. Ajoutez plutôt les dossiers contenant vos images.</translation>
    </message>
    <message>
        <source>It can't be encoded.</source>
        <translation>L’encodage est impossible.</translation>
    </message>
    <message>
        <source>It can't be read: see who may.</source>
        <translation>Lecture impossible : vérifiez qui y est autorisé.</translation>
    </message>
    <message>
        <source>It cannot be read. Allow reading it, then add it again.</source>
        <translation>Il est illisible. Autorisez sa lecture, puis ajoutez-le de nouveau.</translation>
    </message>
    <message>
        <source>It cannot be read. Change its permissions, or unlock it, and import it again.</source>
        <translation>Il est illisible. Modifiez ses permissions ou déverrouillez-le, puis importez-le de nouveau.</translation>
    </message>
    <message>
        <source>It cannot be read: %@. What the library has of it stays as it is.</source>
        <translation>Il est illisible : %@. Ce que la bibliothèque en contient reste inchangé.</translation>
    </message>
    <message>
        <source>It cannot be told whether the library has it already, since the library cannot be read. Import it again once that is mended.</source>
        <translation>Impossible de savoir si la bibliothèque le contient déjà, car elle est illisible. Importez-le de nouveau une fois le problème résolu.</translation>
    </message>
    <message>
        <source>It cannot be unpacked into the folder for temporary files: %@. Check that folder and import it again.</source>
        <translation>Impossible de le décompresser dans le dossier temporaire : %@. Vérifiez ce dossier, puis importez-le de nouveau.</translation>
    </message>
    <message>
        <source>It cannot be unpacked, since no temporary folder can be made. Free some space there, or name another folder in TMPDIR, and import it again.</source>
        <translation>Impossible de le décompresser, car aucun dossier temporaire ne peut être créé. Libérez-y de l’espace ou indiquez un autre dossier dans TMPDIR, puis importez-le de nouveau.</translation>
    </message>
    <message>
        <source>It counts as one document. Import it, or add the folder it is in.</source>
        <translation>Il compte comme un seul document. Importez-le, ou ajoutez le dossier où il se trouve.</translation>
    </message>
    <message>
        <source>It does not exist or you don't have the permission to read it.</source>
        <translation>Il n’existe pas ou vous n’avez pas la permission de le lire.</translation>
    </message>
    <message>
        <source>It goes to the trash, and the library takes its place.</source>
        <translation>Il va dans la corbeille et la bibliothèque prend sa place.</translation>
    </message>
    <message>
        <source>It has no frame %d.</source>
        <translation>Il n’a pas d’image %d.</translation>
    </message>
    <message>
        <source>It has to begin with http:// or https://.</source>
        <translation>Elle doit commencer par http:// ou https://.</translation>
    </message>
    <message>
        <source>It has too many pixels (%d × %d). Make it smaller and import it again.</source>
        <translation>Il a trop de pixels (%d × %d). Réduisez-le, puis importez-le de nouveau.</translation>
    </message>
    <message>
        <source>It holds everything of this computer. Add the folders with your pictures instead.</source>
        <translation>Il contient tout cet ordinateur. Ajoutez plutôt les dossiers contenant vos images.</translation>
    </message>
    <message>
        <source>It holds no picture of itself. Save it again in its own application and import it anew.</source>
        <translation>Il ne contient aucune image de lui-même. Enregistrez-le de nouveau dans son application, puis réimportez-le.</translation>
    </message>
    <message>
        <source>It holds no preview.</source>
        <translation>Il ne contient aucun aperçu.</translation>
    </message>
    <message>
        <source>It holds no preview. Open it in Sketch, save it again and import it anew, or export it as PNG, SVG or PDF and import that.</source>
        <translation>Il ne contient aucun aperçu. Ouvrez-le dans Sketch, enregistrez-le de nouveau et réimportez-le, ou exportez-le en PNG, SVG ou PDF et importez le résultat.</translation>
    </message>
    <message>
        <source>It holds the library itself. Add the folders beside the library instead.</source>
        <translation>Il contient la bibliothèque elle-même. Ajoutez plutôt les dossiers situés à côté.</translation>
    </message>
    <message>
        <source>It is a document of a newer Sketch, which cannot be imported. Export it from Sketch as PNG, SVG or PDF and import that.</source>
        <translation>C’est un document d’un Sketch plus récent, qui ne peut pas être importé. Exportez-le depuis Sketch en PNG, SVG ou PDF et importez le résultat.</translation>
    </message>
    <message>
        <source>It is a folder. Import it into a folder of the sidebar, or into PROJECTS.</source>
        <translation>C’est un dossier. Importez-le dans un dossier de la barre latérale ou dans PROJETS.</translation>
    </message>
    <message>
        <source>It is a link. Import what it leads to.</source>
        <translation>C’est un lien. Importez ce vers quoi il mène.</translation>
    </message>
    <message>
        <source>It is a part of the library itself. Add a folder outside of it.</source>
        <translation>Il fait partie de la bibliothèque elle-même. Ajoutez un dossier situé en dehors.</translation>
    </message>
    <message>
        <source>It is added where the import goes; the new copy is discarded.</source>
        <translation>Il est ajouté à la destination de l’import ; la nouvelle copie est abandonnée.</translation>
    </message>
    <message>
        <source>It is empty, or too large for a PNG file.</source>
        <translation>L’image est vide ou trop grande pour un fichier PNG.</translation>
    </message>
    <message>
        <source>It is in Screenshots.</source>
        <translation>Elle se trouve dans « Captures d’écran ».</translation>
    </message>
    <message>
        <source>It is in the trash. Restore it first.</source>
        <translation>Il est dans la corbeille. Restaurez-le d’abord.</translation>
    </message>
    <message>
        <source>It is incomplete: only a part of it can be drawn. Import it again from where it came.</source>
        <translation>Il est incomplet : seule une partie peut être affichée. Importez-le de nouveau depuis sa source.</translation>
    </message>
    <message>
        <source>It is larger than %@.</source>
        <translation>Il dépasse %@.</translation>
    </message>
    <message>
        <source>It is locked against every change. Unlock it, or import a copy of it.</source>
        <translation>Il est verrouillé contre toute modification. Déverrouillez-le ou importez-en une copie.</translation>
    </message>
    <message>
        <source>It is locked, or you have no permission to read it. Unlock it and import it again.</source>
        <translation>Il est verrouillé ou vous n’avez pas la permission de le lire. Déverrouillez-le, puis importez-le de nouveau.</translation>
    </message>
    <message>
        <source>It is locked, or you may not change its folder. Unlock it, or change the folder's permissions, and try again.</source>
        <translation>Il est verrouillé ou vous ne pouvez pas modifier son dossier. Déverrouillez-le ou modifiez les permissions du dossier, puis réessayez.</translation>
    </message>
    <message>
        <source>It is mounted read-only.</source>
        <translation>Il est monté en lecture seule.</translation>
    </message>
    <message>
        <source>It is no folder. Add the folder it is in.</source>
        <translation>Ce n’est pas un dossier. Ajoutez le dossier où il se trouve.</translation>
    </message>
    <message>
        <source>It is no live folder of its own. Choose one that stands below LIVE FOLDERS.</source>
        <translation>Ce n’est pas un dossier actif à part entière. Choisissez-en un placé sous DOSSIERS ACTIFS.</translation>
    </message>
    <message>
        <source>It is no picture that can be imported.</source>
        <translation>Ce n’est pas une image importable.</translation>
    </message>
    <message>
        <source>It is no regular file. Import a copy of what it gives.</source>
        <translation>Ce n’est pas un fichier ordinaire. Importez une copie de ce qu’il fournit.</translation>
    </message>
    <message>
        <source>It is not a picture of a known kind.</source>
        <translation>Ce n’est pas une image d’un type connu.</translation>
    </message>
    <message>
        <source>It is not encrypted on its way.</source>
        <translation>La transmission n’est pas chiffrée.</translation>
    </message>
    <message>
        <source>It is not in the library any more.</source>
        <translation>Il n’est plus dans la bibliothèque.</translation>
    </message>
    <message>
        <source>It is not missing, so nothing has to be taken for it.</source>
        <translation>Il n’est pas manquant, il n’y a donc rien à mettre à sa place.</translation>
    </message>
    <message>
        <source>It is not there any more. Look where it went and import it from there.</source>
        <translation>Il n’est plus là. Cherchez où il est passé et importez-le depuis cet endroit.</translation>
    </message>
    <message>
        <source>It is not there any more. Look whether it was moved or deleted, or whether its disk is there.</source>
        <translation>Il n’est plus là. Vérifiez s’il a été déplacé ou supprimé, ou si son disque est connecté.</translation>
    </message>
    <message>
        <source>It is the very file of the one that is kept.</source>
        <translation>C’est le fichier même de l’élément conservé.</translation>
    </message>
    <message>
        <source>It is too large for the disk it is to go to. Use another one.</source>
        <translation>Il est trop grand pour le disque de destination. Utilisez-en un autre.</translation>
    </message>
    <message>
        <source>It is your whole home folder, with what programs keep there. Add the folders with your pictures instead.</source>
        <translation>C’est tout votre dossier personnel, avec ce que les programmes y conservent. Ajoutez plutôt les dossiers contenant vos images.</translation>
    </message>
    <message>
        <source>It may have been uploaded all the same. Try again later.</source>
        <translation>L’envoi a peut-être eu lieu malgré tout. Réessayez plus tard.</translation>
    </message>
    <message>
        <source>It must be one line of plain letters, digits and signs.</source>
        <translation>Ce doit être une ligne de lettres simples, de chiffres et de signes.</translation>
    </message>
    <message>
        <source>It takes over the projects and tags of the others, which are deleted</source>
        <translation>Elle reprend les projets et les mots-clés des autres, qui sont supprimées</translation>
    </message>
    <message>
        <source>It takes over the projects and tags of the others, which are deleted (K)</source>
        <translation>Elle reprend les projets et les mots-clés des autres, qui sont supprimées (K)</translation>
    </message>
    <message>
        <source>It takes the place of the one of that name.</source>
        <translation>Elle remplace celle qui porte ce nom.</translation>
    </message>
    <message>
        <source>It takes too long to read.</source>
        <translation>La lecture prend trop de temps.</translation>
    </message>
    <message>
        <source>It was changed since. Delete it if you do not need it.</source>
        <translation>Il a été modifié depuis. Supprimez-le si vous n’en avez pas besoin.</translation>
    </message>
    <message>
        <source>It was left out. Import it again.</source>
        <translation>Il a été omis. Importez-le de nouveau.</translation>
    </message>
    <message>
        <source>It would have %d x %d pixels, and this format has at most %d a side. Choose a smaller size or another format.</source>
        <translation>L’image aurait %d x %d pixels, et ce format en admet %d au plus par côté. Choisissez une taille plus petite ou un autre format.</translation>
    </message>
    <message>
        <source>It would have %d x %d pixels, which is too big. Choose a smaller size.</source>
        <translation>L’image aurait %d x %d pixels, ce qui est trop grand. Choisissez une taille plus petite.</translation>
    </message>
    <message>
        <source>Items</source>
        <translation>Éléments</translation>
    </message>
    <message>
        <source>Items: %@</source>
        <translation>Éléments : %@</translation>
    </message>
    <message>
        <source>Items: %@, files: %@, size: %@, of which new: %@</source>
        <translation>Éléments : %@, fichiers : %@, taille : %@, dont nouveau : %@</translation>
    </message>
    <message>
        <source>Its Info.plist is damaged. Get the snap once more, or import the picture in it alone.</source>
        <translation>Son Info.plist est endommagé. Récupérez de nouveau le snap, ou importez seulement l’image qu’il contient.</translation>
    </message>
    <message>
        <source>Its Info.plist is missing or cannot be read. Get the snap once more, or import the picture in it alone.</source>
        <translation>Son Info.plist est manquant ou illisible. Récupérez de nouveau le snap, ou importez seulement l’image qu’il contient.</translation>
    </message>
    <message>
        <source>Its Info.plist names no picture (imageGrabPath). Export the picture from the program that made the snap and import that.</source>
        <translation>Son Info.plist ne nomme aucune image (imageGrabPath). Exportez l’image depuis le programme qui a créé le snap et importez le résultat.</translation>
    </message>
    <message>
        <source>Its PostScript can't be drawn; Ghostscript (gs) must be installed.</source>
        <translation>Son PostScript ne peut pas être dessiné ; Ghostscript (gs) doit être installé.</translation>
    </message>
    <message>
        <source>Its bounding box is empty.</source>
        <translation>Son cadre de délimitation est vide.</translation>
    </message>
    <message>
        <source>Its database is damaged. Everything that can still be read can be recovered into a new one.</source>
        <translation>Sa base de données est endommagée. Tout ce qui est encore lisible peut être récupéré dans une nouvelle.</translation>
    </message>
    <message>
        <source>Its disk cannot read it. Check the disk, or import it from a copy.</source>
        <translation>Son disque ne parvient pas à le lire. Vérifiez le disque, ou importez-le depuis une copie.</translation>
    </message>
    <message>
        <source>Its disk tells of no changes, so it is looked at in intervals.</source>
        <translation>Son disque ne signale pas les changements, il est donc examiné à intervalles réguliers.</translation>
    </message>
    <message>
        <source>Its file ends too early: the rest of the picture is empty.</source>
        <translation>Son fichier se termine trop tôt : le reste de l’image est vide.</translation>
    </message>
    <message>
        <source>Its file is missing. Put it back where it was, or keep another one.</source>
        <translation>Son fichier est manquant. Remettez-le où il était, ou conservez un autre élément.</translation>
    </message>
    <message>
        <source>Its file may not be read. Change its permissions, and export it again.</source>
        <translation>La lecture de son fichier n’est pas autorisée. Modifiez ses permissions, puis exportez-le de nouveau.</translation>
    </message>
    <message>
        <source>Its file system keeps no extended attributes. Files on a disk formatted as ext4, Btrfs or XFS do.</source>
        <translation>Son système de fichiers ne conserve pas d’attributs étendus. Les fichiers d’un disque formaté en ext4, Btrfs ou XFS le font.</translation>
    </message>
    <message>
        <source>Its file system tells of no changes, so that it is looked at in intervals.</source>
        <translation>Son système de fichiers ne signale pas les changements, il est donc examiné à intervalles réguliers.</translation>
    </message>
    <message>
        <source>Its file went, or could not be read any more. Look where it is, and export it again.</source>
        <translation>Son fichier a disparu ou n’est plus lisible. Cherchez où il se trouve, puis exportez-le de nouveau.</translation>
    </message>
    <message>
        <source>Its folder cannot be found. Connect the drive it is on, or put the folder back.</source>
        <translation>Son dossier est introuvable. Connectez le disque où il se trouve, ou remettez le dossier en place.</translation>
    </message>
    <message>
        <source>Its folder cannot be read: %@. Allow reading it, or connect its drive again.</source>
        <translation>Son dossier est illisible : %@. Autorisez sa lecture ou reconnectez son disque.</translation>
    </message>
    <message>
        <source>Its folder is empty, though it was not before. Connect the drive it is on, or put the files back.</source>
        <translation>Son dossier est vide alors qu’il ne l’était pas avant. Connectez le disque où il se trouve, ou remettez les fichiers en place.</translation>
    </message>
    <message>
        <source>Its folder is in the trash. Restore it there, or remove the live folder.</source>
        <translation>Son dossier est dans la corbeille. Restaurez-le, ou retirez le dossier actif.</translation>
    </message>
    <message>
        <source>Its images come from %@ and %d other hosts.</source>
        <translation>Ses images viennent de %@ et de %d autres hôtes.</translation>
    </message>
    <message>
        <source>Its images come from %@.</source>
        <translation>Ses images viennent de %@.</translation>
    </message>
    <message>
        <source>Its items are kept, and come back with it.</source>
        <translation>Ses éléments sont conservés et reviennent avec lui.</translation>
    </message>
    <message>
        <source>Its live folder “%@” is disabled. Enable it, and try again.</source>
        <translation>Son dossier actif « %@ » est désactivé. Activez-le, puis réessayez.</translation>
    </message>
    <message>
        <source>Its name is not valid text. Rename it and import it again.</source>
        <translation>Son nom n’est pas un texte valide. Renommez-le, puis importez-le de nouveau.</translation>
    </message>
    <message>
        <source>Its name is too long for the disk it is to go to. Rename it, and try again.</source>
        <translation>Son nom est trop long pour le disque de destination. Renommez-le, puis réessayez.</translation>
    </message>
    <message>
        <source>Its original file is missing. Look whether it was moved or deleted, or whether its disk is there.</source>
        <translation>Son fichier d’origine est manquant. Vérifiez s’il a été déplacé ou supprimé, ou si son disque est connecté.</translation>
    </message>
    <message>
        <source>Its picture “%@” does not lie in the package itself. Import that picture alone.</source>
        <translation>Son image « %@ » ne se trouve pas dans le paquet lui-même. Importez seulement cette image.</translation>
    </message>
    <message>
        <source>Its picture “%@” is missing from the package. Get the snap once more.</source>
        <translation>Son image « %@ » est absente du paquet. Récupérez de nouveau le snap.</translation>
    </message>
    <message>
        <source>Its picture “%@” is of a kind that cannot be imported. Convert it to PNG or JPEG and import that.</source>
        <translation>Son image « %@ » est d’un type qui ne peut pas être importé. Convertissez-la en PNG ou JPEG et importez le résultat.</translation>
    </message>
    <message>
        <source>Its place is mounted read-only. Mount it so that it can be written to, and try again.</source>
        <translation>Son emplacement est monté en lecture seule. Montez-le en écriture, puis réessayez.</translation>
    </message>
    <message>
        <source>Its preview is too large. Export it from Sketch as PNG, SVG or PDF and import that.</source>
        <translation>Son aperçu est trop grand. Exportez-le depuis Sketch en PNG, SVG ou PDF et importez le résultat.</translation>
    </message>
    <message>
        <source>Its size of %ld x %ld pixels is too big.</source>
        <translation>Sa taille de %ld x %ld pixels est trop grande.</translation>
    </message>
    <message>
        <source>Its stored password is forgotten. What was uploaded stays where it is, and its links go on working.</source>
        <translation>Son mot de passe enregistré est oublié. Ce qui a été envoyé reste où il est, et ses liens continuent de fonctionner.</translation>
    </message>
    <message>
        <source>JPEG 2000 image</source>
        <translation>Image JPEG 2000</translation>
    </message>
    <message>
        <source>JPEG XL image</source>
        <translation>Image JPEG XL</translation>
    </message>
    <message>
        <source>JPEG image</source>
        <translation>Image JPEG</translation>
    </message>
    <message>
        <source>JSON document</source>
        <translation>Document JSON</translation>
    </message>
    <message>
        <source>Jpeg export</source>
        <translation>Export Jpeg</translation>
    </message>
    <message>
        <source>KINDS OF FILES</source>
        <translation>TYPES DE FICHIERS</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Conserver</translation>
    </message>
    <message>
        <source>Keep All</source>
        <translation>Tout conserver</translation>
    </message>
    <message>
        <source>Keep Chosen, Delete Others</source>
        <translation>Conserver ce choix, supprimer les autres</translation>
    </message>
    <message>
        <source>Keep This One</source>
        <translation>Conserver celle-ci</translation>
    </message>
    <message>
        <source>Keep in Pictures</source>
        <translation>Conserver dans Images</translation>
    </message>
    <message>
        <source>Keep “%@”</source>
        <translation>Conserver « %@ »</translation>
    </message>
    <message>
        <source>Keeping one of each…</source>
        <translation>Conservation d’un élément par groupe…</translation>
    </message>
    <message>
        <source>Keyboard</source>
        <translation>Clavier</translation>
    </message>
    <message>
        <source>Kind</source>
        <translation>Type</translation>
    </message>
    <message>
        <source>Kind is “%@”</source>
        <translation>Le type est « %@ »</translation>
    </message>
    <message>
        <source>Kind of file</source>
        <translation>Type de fichier</translation>
    </message>
    <message>
        <source>Kinds</source>
        <translation>Types</translation>
    </message>
    <message>
        <source>Krita document</source>
        <translation>Document Krita</translation>
    </message>
    <message>
        <source>LATEST UPLOADS</source>
        <translation>DERNIERS ENVOIS</translation>
    </message>
    <message>
        <source>LIBRARY</source>
        <translation>BIBLIOTHÈQUE</translation>
    </message>
    <message>
        <source>LIVE FOLDERS</source>
        <translation>DOSSIERS ACTIFS</translation>
    </message>
    <message>
        <source>Label</source>
        <translation>Étiquette</translation>
    </message>
    <message>
        <source>Larger Thumbnails</source>
        <translation>Vignettes plus grandes</translation>
    </message>
    <message>
        <source>Largest files</source>
        <translation>Fichiers les plus volumineux</translation>
    </message>
    <message>
        <source>Last Hour</source>
        <translation>Dernière heure</translation>
    </message>
    <message>
        <source>Last Import</source>
        <translation>Dernier import</translation>
    </message>
    <message>
        <source>Last Import: %@</source>
        <translation>Dernier import : %@</translation>
    </message>
    <message>
        <source>Last Week</source>
        <translation>Semaine dernière</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Plus tard</translation>
    </message>
    <message>
        <source>Latest Uploads…</source>
        <translation>Derniers envois…</translation>
    </message>
    <message>
        <source>Latest uploads</source>
        <translation>Derniers envois</translation>
    </message>
    <message>
        <source>Layer %d of %d…</source>
        <translation>Calque %d sur %d…</translation>
    </message>
    <message>
        <source>Layers (PSD)</source>
        <translation>Calques (PSD)</translation>
    </message>
    <message>
        <source>Leave as They Are</source>
        <translation>Laisser telles quelles</translation>
    </message>
    <message>
        <source>Leaves out what stands behind it</source>
        <translation>Exclut ce qui suit</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Gauche</translation>
    </message>
    <message>
        <source>Left and Right change the hue, Up and Down how full the color is</source>
        <translation>Gauche et Droite changent la teinte, Haut et Bas la saturation</translation>
    </message>
    <message>
        <source>Left out was %@.</source>
        <translation>Omis : %@.</translation>
    </message>
    <message>
        <source>Library</source>
        <translation>Bibliothèque</translation>
    </message>
    <message>
        <source>Library Statistics</source>
        <translation>Statistiques de la bibliothèque</translation>
    </message>
    <message>
        <source>Library Statistics…</source>
        <translation>Statistiques de la bibliothèque…</translation>
    </message>
    <message>
        <source>License</source>
        <translation>Licence</translation>
    </message>
    <message>
        <source>Like %@</source>
        <translation>Semblables à %@</translation>
    </message>
    <message>
        <source>Likeness %d %%</source>
        <translation>Ressemblance : %d %%</translation>
    </message>
    <message>
        <source>Likeness %d %% or more</source>
        <translation>Ressemblance de %d %% ou plus</translation>
    </message>
    <message>
        <source>Line %d: %s</source>
        <translation>Ligne %d : %s</translation>
    </message>
    <message>
        <source>Link it again in the preferences, under Cloud.</source>
        <translation>Associez-le de nouveau dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Link one in the preferences, under Cloud.</source>
        <translation>Associez-en un dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Link to “%@” copied to clipboard!</source>
        <translation>Lien vers « %@ » copié dans le presse-papiers !</translation>
    </message>
    <message>
        <source>Link your Dropbox in the preferences, under Cloud.</source>
        <translation>Associez votre Dropbox dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>Linked</source>
        <translation>Liées</translation>
    </message>
    <message>
        <source>Linked with %@</source>
        <translation>Associé à %@</translation>
    </message>
    <message>
        <source>Linking was cancelled.</source>
        <translation>L’association a été annulée.</translation>
    </message>
    <message>
        <source>Live Folder</source>
        <translation>Dossier actif</translation>
    </message>
    <message>
        <source>Live folders</source>
        <translation>Dossiers actifs</translation>
    </message>
    <message>
        <source>Live folders are not kept in step here.</source>
        <translation>Les dossiers actifs ne sont pas tenus à jour ici.</translation>
    </message>
    <message>
        <source>Live folders do not unpack archives. Unpack it, and copy what was in it.</source>
        <translation>Les dossiers actifs ne décompressent pas les archives. Décompressez-la et copiez son contenu.</translation>
    </message>
    <message>
        <source>Load</source>
        <translation>Charger</translation>
    </message>
    <message>
        <source>Loading the page…</source>
        <translation>Chargement de la page…</translation>
    </message>
    <message>
        <source>Loading…</source>
        <translation>Chargement…</translation>
    </message>
    <message>
        <source>Look Once a Day</source>
        <translation>Rechercher chaque jour</translation>
    </message>
    <message>
        <source>Look at its permissions.</source>
        <translation>Vérifiez ses permissions.</translation>
    </message>
    <message>
        <source>Look at the address, and at the clock of this computer.</source>
        <translation>Vérifiez l’adresse et l’horloge de cet ordinateur.</translation>
    </message>
    <message>
        <source>Look at the address.</source>
        <translation>Vérifiez l’adresse.</translation>
    </message>
    <message>
        <source>Look at the network settings of the desktop.</source>
        <translation>Vérifiez les paramètres réseau du bureau.</translation>
    </message>
    <message>
        <source>Look at them again, then repeat your change.</source>
        <translation>Examinez-les de nouveau, puis répétez votre modification.</translation>
    </message>
    <message>
        <source>Look for them in the project “Recovered”.</source>
        <translation>Cherchez-les dans le projet « Récupérés ».</translation>
    </message>
    <message>
        <source>Look whether it is unlocked, in the desktop's program for passwords, and try again.</source>
        <translation>Vérifiez s’il est déverrouillé, dans le programme de mots de passe du bureau, puis réessayez.</translation>
    </message>
    <message>
        <source>Look whether its address in the preferences, under Cloud, is the right one.</source>
        <translation>Vérifiez que son adresse dans les préférences, sous Cloud, est la bonne.</translation>
    </message>
    <message>
        <source>Looking at pictures…</source>
        <translation>Examen des images…</translation>
    </message>
    <message>
        <source>Looking at the folder…</source>
        <translation>Lecture du dossier…</translation>
    </message>
    <message>
        <source>Looking at the sizes of files…</source>
        <translation>Examen de la taille des fichiers…</translation>
    </message>
    <message>
        <source>Looking at the store…</source>
        <translation>Examen de la base de données…</translation>
    </message>
    <message>
        <source>Looking at what changed</source>
        <translation>Examen des modifications</translation>
    </message>
    <message numerus="yes">
        <source>Looking for pictures that look alike among %@ items…</source>
        <comment>counted</comment>
        <extracomment>for one: Looking for pictures that look alike in %@ item…</extracomment>
        <translation>
            <numerusform>Recherche d’images semblables dans %@ élément…</numerusform>
            <numerusform>Recherche d’images semblables parmi %@ éléments…</numerusform>
        </translation>
    </message>
    <message>
        <source>Looking for pictures that look alike in the whole library…</source>
        <translation>Recherche d’images semblables dans toute la bibliothèque…</translation>
    </message>
    <message>
        <source>Looks like the picture of this name</source>
        <translation>Ressemble à l’image de ce nom</translation>
    </message>
    <message>
        <source>Looks like “%@”</source>
        <translation>Ressemble à « %@ »</translation>
    </message>
    <message>
        <source>Lower, as high or higher</source>
        <translation>Moins haut, aussi haut ou plus haut</translation>
    </message>
    <message>
        <source>MENU</source>
        <translation>MENU</translation>
    </message>
    <message>
        <source>MP3 audio</source>
        <translation>Audio MP3</translation>
    </message>
    <message>
        <source>MPEG-4 audio</source>
        <translation>Audio MPEG-4</translation>
    </message>
    <message>
        <source>MPEG-4 movie</source>
        <translation>Film MPEG-4</translation>
    </message>
    <message>
        <source>Make a preset, or move and delete those above.</source>
        <translation>Créez un préréglage, ou déplacez et supprimez ceux ci-dessus.</translation>
    </message>
    <message>
        <source>Make an app at dropbox.com</source>
        <translation>Créer une application sur dropbox.com</translation>
    </message>
    <message>
        <source>Make room in it and share the files again.</source>
        <translation>Faites-y de la place, puis partagez de nouveau les fichiers.</translation>
    </message>
    <message>
        <source>Make room there and share the files again.</source>
        <translation>Faites-y de la place, puis partagez de nouveau les fichiers.</translation>
    </message>
    <message>
        <source>Make that file and its folder writable and see that there is room on the disk, then try again.</source>
        <translation>Rendez ce fichier et son dossier accessibles en écriture et vérifiez qu’il y a de la place sur le disque, puis réessayez.</translation>
    </message>
    <message>
        <source>Manual order</source>
        <translation>Ordre manuel</translation>
    </message>
    <message>
        <source>Markdown document</source>
        <translation>Document Markdown</translation>
    </message>
    <message>
        <source>Matroska movie</source>
        <translation>Film Matroska</translation>
    </message>
    <message>
        <source>May Zelto look for new versions?</source>
        <translation>Zelto peut-il rechercher de nouvelles versions ?</translation>
    </message>
    <message>
        <source>Media</source>
        <translation>Média</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menu</translation>
    </message>
    <message>
        <source>Menu (F10)</source>
        <translation>Menu (F10)</translation>
    </message>
    <message>
        <source>Meta data is too big - size as binary plist must be less than (perhaps 4k?) some number of bytes</source>
        <translation>Métadonnées trop volumineuses : leur taille en plist binaire doit rester sous une certaine limite (environ 4 Ko ?)</translation>
    </message>
    <message>
        <source>Missing files: %@</source>
        <translation>Fichiers manquants : %@</translation>
    </message>
    <message>
        <source>Modification date</source>
        <translation>Date de modification</translation>
    </message>
    <message>
        <source>Modified</source>
        <translation>Modifié</translation>
    </message>
    <message>
        <source>Modified before (&lt;), on (=) or since (&gt;) the date, that day included</source>
        <translation>Modifié avant (&lt;), à (=) ou depuis (&gt;) la date, jour compris</translation>
    </message>
    <message>
        <source>Mostly of this color; with a code, or ~ and a number behind it, near to it</source>
        <translation>Surtout de cette couleur ; avec un code, ou ~ et un nombre derrière : proche d’elle</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Déplacer</translation>
    </message>
    <message>
        <source>Move Export Preset</source>
        <translation>Préréglage déplacé</translation>
    </message>
    <message>
        <source>Move Library…</source>
        <translation>Déplacer la bibliothèque…</translation>
    </message>
    <message>
        <source>Move it away, then try again.</source>
        <translation>Déplacez-le ailleurs, puis réessayez.</translation>
    </message>
    <message>
        <source>Move it out of the library, then try again.</source>
        <translation>Sortez-le de la bibliothèque, puis réessayez.</translation>
    </message>
    <message>
        <source>Movie</source>
        <translation>Film</translation>
    </message>
    <message>
        <source>Moving items back…</source>
        <translation>Remise en place des éléments…</translation>
    </message>
    <message>
        <source>Moving the library…</source>
        <translation>Déplacement de la bibliothèque…</translation>
    </message>
    <message>
        <source>Multiple values</source>
        <translation>Valeurs multiples</translation>
    </message>
    <message>
        <source>NEW PRESET</source>
        <translation>NOUVEAU PRÉRÉGLAGE</translation>
    </message>
    <message>
        <source>NEW VERSIONS</source>
        <translation>NOUVELLES VERSIONS</translation>
    </message>
    <message>
        <source>NOTES</source>
        <translation>REMARQUES</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nom</translation>
    </message>
    <message>
        <source>Name one with --library.</source>
        <translation>Indiquez-en une avec --library.</translation>
    </message>
    <message>
        <source>Narrower, as wide or wider</source>
        <translation>Moins large, aussi large ou plus large</translation>
    </message>
    <message>
        <source>Near-Duplicates</source>
        <translation>Quasi-doublons</translation>
    </message>
    <message>
        <source>Nearer</source>
        <translation>Plus proche</translation>
    </message>
    <message>
        <source>Nearness</source>
        <translation>Ressemblance</translation>
    </message>
    <message>
        <source>Never</source>
        <translation>Jamais</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Nouveau</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>Nouveau dossier</translation>
    </message>
    <message>
        <source>New Library…</source>
        <translation>Nouvelle bibliothèque…</translation>
    </message>
    <message>
        <source>New Preset like This…</source>
        <translation>Nouveau préréglage semblable…</translation>
    </message>
    <message>
        <source>New Project</source>
        <translation>Nouveau projet</translation>
    </message>
    <message>
        <source>New Project (Ctrl+N)</source>
        <translation>Nouveau projet (Ctrl+N)</translation>
    </message>
    <message>
        <source>New Smart Folder</source>
        <translation>Nouveau dossier intelligent</translation>
    </message>
    <message>
        <source>New Tab</source>
        <translation>Nouvel onglet</translation>
    </message>
    <message>
        <source>New Tag</source>
        <translation>Nouveau mot-clé</translation>
    </message>
    <message>
        <source>New from Template</source>
        <translation>Nouveau d’après un modèle</translation>
    </message>
    <message>
        <source>New from Template…</source>
        <translation>Nouveau d’après un modèle…</translation>
    </message>
    <message>
        <source>New live folder created</source>
        <translation>Nouveau dossier actif créé</translation>
    </message>
    <message>
        <source>New project created</source>
        <translation>Nouveau projet créé</translation>
    </message>
    <message>
        <source>New, from %@</source>
        <translation>Nouveau, de %@</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Suivant</translation>
    </message>
    <message>
        <source>Next Tab</source>
        <translation>Onglet suivant</translation>
    </message>
    <message>
        <source>Next page (Page Down)</source>
        <translation>Page suivante (Pg. suiv)</translation>
    </message>
    <message>
        <source>No Dropbox is linked.</source>
        <translation>Aucun Dropbox n’est associé.</translation>
    </message>
    <message>
        <source>No answer came from the web browser. Start again, and allow it there.</source>
        <translation>Aucune réponse n’est venue du navigateur web. Recommencez et donnez-y l’autorisation.</translation>
    </message>
    <message>
        <source>No asset could be made of the template “%@”.</source>
        <translation>Impossible de créer un élément à partir du modèle « %@ ».</translation>
    </message>
    <message>
        <source>No backup was made. %@</source>
        <translation>Aucune sauvegarde n’a été effectuée. %@</translation>
    </message>
    <message>
        <source>No difference is seen at %ld × %ld pixels.</source>
        <translation>Aucune différence n’est visible à %ld × %ld pixels.</translation>
    </message>
    <message>
        <source>No folder was chosen.</source>
        <translation>Aucun dossier n’a été choisi.</translation>
    </message>
    <message>
        <source>No item directory can be made in the library. Check that the library can be written and has space left.</source>
        <translation>Impossible de créer un dossier d’élément dans la bibliothèque. Vérifiez que la bibliothèque est accessible en écriture et qu’il reste de la place.</translation>
    </message>
    <message>
        <source>No key came with it: the desktop keeps such keys for itself. Take another one.</source>
        <translation>Aucune touche n’a été reçue : le bureau se réserve les touches de ce genre. Choisissez-en une autre.</translation>
    </message>
    <message>
        <source>No keys</source>
        <translation>Aucune touche</translation>
    </message>
    <message>
        <source>No picture can be made of it. Open it in another program to see whether it is damaged.</source>
        <translation>Impossible d’en créer une image. Ouvrez-le dans un autre programme pour voir s’il est endommagé.</translation>
    </message>
    <message>
        <source>No picture named “%@” is known by its looks</source>
        <translation>On ne connaît l’aspect d’aucune image nommée « %@ »</translation>
    </message>
    <message>
        <source>No pictures look alike.</source>
        <translation>Aucune image ne ressemble à une autre.</translation>
    </message>
    <message>
        <source>No rating</source>
        <translation>Aucune note</translation>
    </message>
    <message>
        <source>No temporary folder can be made. Free some space there, or name another folder in TMPDIR, and try again (%@).</source>
        <translation>Impossible de créer un dossier temporaire. Libérez-y de l’espace ou indiquez un autre dossier dans TMPDIR, puis réessayez (%@).</translation>
    </message>
    <message>
        <source>No uploads yet</source>
        <translation>Aucun envoi pour l’instant</translation>
    </message>
    <message>
        <source>No web browser could be opened.</source>
        <translation>Impossible d’ouvrir un navigateur web.</translation>
    </message>
    <message>
        <source>No web browser could be opened. The address is %@</source>
        <translation>Impossible d’ouvrir un navigateur web. L’adresse est %@</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Aucun</translation>
    </message>
    <message>
        <source>None given</source>
        <translation>Non indiqué</translation>
    </message>
    <message>
        <source>None of these can be read as a picture.</source>
        <translation>Aucun d’eux ne peut être lu comme une image.</translation>
    </message>
    <message>
        <source>None of this can be imported into a live folder.</source>
        <translation>Rien de cela ne peut être importé dans un dossier actif.</translation>
    </message>
    <message>
        <source>None of this can be imported into a project.</source>
        <translation>Rien de cela ne peut être importé dans un projet.</translation>
    </message>
    <message>
        <source>None of this can be imported.</source>
        <translation>Rien de cela ne peut être importé.</translation>
    </message>
    <message>
        <source>Not Now</source>
        <translation>Pas maintenant</translation>
    </message>
    <message>
        <source>Not every file of the live folders could be read.</source>
        <translation>Certains fichiers des dossiers actifs n’ont pas pu être lus.</translation>
    </message>
    <message>
        <source>Not written: %@, and %d more.</source>
        <translation>Non écrits : %@, et %d de plus.</translation>
    </message>
    <message>
        <source>Not written: %@.</source>
        <translation>Non écrits : %@.</translation>
    </message>
    <message>
        <source>Notes</source>
        <translation>Remarques</translation>
    </message>
    <message>
        <source>Notes contain the text</source>
        <translation>Les remarques contiennent le texte</translation>
    </message>
    <message>
        <source>Notes contain “%@”</source>
        <translation>Les remarques contiennent « %@ »</translation>
    </message>
    <message>
        <source>Nothing</source>
        <translation>Rien</translation>
    </message>
    <message>
        <source>Nothing about you or your library is sent, and nothing is installed.</source>
        <translation>Rien sur vous ni sur votre bibliothèque n’est envoyé, et rien n’est installé.</translation>
    </message>
    <message>
        <source>Nothing can be written into the folder “%@”.</source>
        <translation>Impossible d’écrire dans le dossier « %@ ».</translation>
    </message>
    <message>
        <source>Nothing could be read from the damaged library, which is kept as %@
The files in it come back into the project “Recovered” when it is opened.</source>
        <translation>Rien n’a pu être lu dans la bibliothèque endommagée, conservée sous %@
Ses fichiers reviennent dans le projet « Récupérés » à l’ouverture.</translation>
    </message>
    <message>
        <source>Nothing has this tag. Drop images here, or drag items onto it in the sidebar.</source>
        <translation>Rien n’a ce mot-clé. Déposez des images ici, ou faites glisser des éléments sur lui dans la barre latérale.</translation>
    </message>
    <message>
        <source>Nothing in the library matches "%@".</source>
        <translation>Rien dans la bibliothèque ne correspond à « %@ ».</translation>
    </message>
    <message>
        <source>Nothing in “%@” can be shown yet.
What is saved there comes here, or drop images.</source>
        <translation>Rien dans « %@ » ne peut encore être affiché.
Ce qui y est enregistré apparaît ici ; vous pouvez aussi déposer des images.</translation>
    </message>
    <message>
        <source>Nothing is damaged; the library was left as it is.</source>
        <translation>Rien n’est endommagé ; la bibliothèque est restée telle quelle.</translation>
    </message>
    <message>
        <source>Nothing is known to be lost.</source>
        <translation>Aucune perte n’est connue.</translation>
    </message>
    <message>
        <source>Nothing matches "%@". Press Esc in the search field to show everything.</source>
        <translation>Rien ne correspond à « %@ ». Appuyez sur Échap dans le champ de recherche pour tout afficher.</translation>
    </message>
    <message>
        <source>Nothing selected</source>
        <translation>Aucune sélection</translation>
    </message>
    <message>
        <source>Nothing to import</source>
        <translation>Rien à importer</translation>
    </message>
    <message>
        <source>Nothing to import!</source>
        <translation>Rien à importer !</translation>
    </message>
    <message>
        <source>Nothing was added or changed in the last days.</source>
        <translation>Rien n’a été ajouté ni modifié ces derniers jours.</translation>
    </message>
    <message>
        <source>Nothing was counted.</source>
        <translation>Rien n’a été compté.</translation>
    </message>
    <message>
        <source>Nothing was taken from “%@”, since you said no a moment ago. Try again in a few seconds.</source>
        <translation>Rien n’a été pris de « %@ », car vous venez de refuser. Réessayez dans quelques secondes.</translation>
    </message>
    <message>
        <source>Numbers of the library</source>
        <translation>Chiffres de la bibliothèque</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Objects cannot be sorted by "%@".</source>
        <translation>Impossible de trier les objets par « %@ ».</translation>
    </message>
    <message>
        <source>Of some pictures, “%@” for one, only a part was exported. %@</source>
        <translation>De certaines images, dont « %@ », seule une partie a été exportée. %@</translation>
    </message>
    <message>
        <source>Of this size class</source>
        <translation>De cette classe de taille</translation>
    </message>
    <message>
        <source>Of “%@” only a part was exported. %@</source>
        <translation>De « %@ », seule une partie a été exportée. %@</translation>
    </message>
    <message>
        <source>Older backup removed: %@</source>
        <translation>Ancienne sauvegarde supprimée : %@</translation>
    </message>
    <message>
        <source>One on each line. After several files the clipboard holds the link of the last.</source>
        <translation>Un par ligne. Après plusieurs fichiers, le presse-papiers contient le lien du dernier.</translation>
    </message>
    <message>
        <source>Only a part of the picture is there.</source>
        <translation>Seule une partie de l’image est là.</translation>
    </message>
    <message>
        <source>Only data goes to standard output; errors go to standard error.</source>
        <translation>Seules les données vont sur la sortie standard ; les erreurs vont sur la sortie d’erreur.</translation>
    </message>
    <message>
        <source>Only the first %@ files can go to another program at once</source>
        <translation>Seuls les %@ premiers fichiers peuvent passer en une fois à un autre programme</translation>
    </message>
    <message>
        <source>Only the first frame of it. Export it as it is to keep all.</source>
        <translation>Seulement sa première image. Exportez-le tel quel pour tout conserver.</translation>
    </message>
    <message>
        <source>Only this shade</source>
        <translation>Seulement cette nuance</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Open %@</source>
        <translation>Ouvrir %@</translation>
    </message>
    <message>
        <source>Open Cloud Preferences…</source>
        <translation>Ouvrir les préférences du cloud…</translation>
    </message>
    <message>
        <source>Open Download Page</source>
        <translation>Ouvrir la page de téléchargement</translation>
    </message>
    <message>
        <source>Open Library…</source>
        <translation>Ouvrir une bibliothèque…</translation>
    </message>
    <message>
        <source>Open Meta parameter error</source>
        <translation>Erreur de paramètre Open Meta</translation>
    </message>
    <message>
        <source>Open Zelto</source>
        <translation>Ouvrir Zelto</translation>
    </message>
    <message>
        <source>Open it once with migration allowed.</source>
        <translation>Ouvrez-la une fois en autorisant la migration.</translation>
    </message>
    <message>
        <source>Open or create a library first.</source>
        <translation>Ouvrez ou créez d’abord une bibliothèque.</translation>
    </message>
    <message>
        <source>Open with Default Program</source>
        <translation>Ouvrir avec le programme par défaut</translation>
    </message>
    <message>
        <source>OpenEXR image</source>
        <translation>Image OpenEXR</translation>
    </message>
    <message>
        <source>OpenType font</source>
        <translation>Police OpenType</translation>
    </message>
    <message>
        <source>Opening a new library requires Zelto to relaunch</source>
        <translation>L’ouverture d’une nouvelle bibliothèque nécessite de relancer Zelto</translation>
    </message>
    <message>
        <source>Opens it in the full view</source>
        <translation>L’ouvre en grand</translation>
    </message>
    <message>
        <source>Optional: Shared/Zelto</source>
        <translation>Facultatif : Shared/Zelto</translation>
    </message>
    <message>
        <source>Optional: https://files.example.org</source>
        <translation>Facultatif : https://files.example.org</translation>
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
        <translation>Taille d’origine</translation>
    </message>
    <message>
        <source>Other format</source>
        <translation>Autre format</translation>
    </message>
    <message>
        <source>Other services</source>
        <translation>Autres services</translation>
    </message>
    <message>
        <source>Others</source>
        <translation>Autres</translation>
    </message>
    <message>
        <source>Otherwise pictures of up to 256 KiB are shown from their own file.</source>
        <translation>Sinon, les images jusqu’à 256 Kio sont affichées depuis leur propre fichier.</translation>
    </message>
    <message>
        <source>Own server</source>
        <translation>Serveur personnel</translation>
    </message>
    <message>
        <source>Own server (WebDAV)</source>
        <translation>Serveur personnel (WebDAV)</translation>
    </message>
    <message>
        <source>PDF document</source>
        <translation>Document PDF</translation>
    </message>
    <message>
        <source>PNG image</source>
        <translation>Image PNG</translation>
    </message>
    <message>
        <source>PROJECTS</source>
        <translation>PROJETS</translation>
    </message>
    <message>
        <source>Package</source>
        <translation>Paquet</translation>
    </message>
    <message>
        <source>Page %d of %d</source>
        <translation>Page %d sur %d</translation>
    </message>
    <message>
        <source>Page Down</source>
        <translation>Page suivante</translation>
    </message>
    <message>
        <source>Page Up</source>
        <translation>Page précédente</translation>
    </message>
    <message>
        <source>Pages are not at that port: see whether the address is written right.</source>
        <translation>Il n’y a pas de pages à ce port : vérifiez que l’adresse est correcte.</translation>
    </message>
    <message>
        <source>Panes</source>
        <translation>Volets</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Coller</translation>
    </message>
    <message>
        <source>Pasted image</source>
        <translation>Image collée</translation>
    </message>
    <message>
        <source>Path of the library</source>
        <translation>Chemin de la bibliothèque</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Pause (P)</source>
        <translation>Pause (P)</translation>
    </message>
    <message>
        <source>Percentage</source>
        <translation>Pourcentage</translation>
    </message>
    <message>
        <source>Photoshop brush</source>
        <translation>Pinceau Photoshop</translation>
    </message>
    <message>
        <source>Photoshop image</source>
        <translation>Image Photoshop</translation>
    </message>
    <message>
        <source>Picture (PNG)</source>
        <translation>Image (PNG)</translation>
    </message>
    <message>
        <source>Pictures are uploaded without an account: whoever has the link sees them.</source>
        <translation>Les images sont envoyées sans compte : quiconque a le lien les voit.</translation>
    </message>
    <message>
        <source>Pixelmator image</source>
        <translation>Image Pixelmator</translation>
    </message>
    <message>
        <source>Pixen image</source>
        <translation>Image Pixen</translation>
    </message>
    <message>
        <source>Plain text document</source>
        <translation>Document texte brut</translation>
    </message>
    <message>
        <source>Play (P)</source>
        <translation>Lecture (P)</translation>
    </message>
    <message>
        <source>Please choose the Folder you want to add</source>
        <translation>Choisissez le dossier à ajouter</translation>
    </message>
    <message>
        <source>Please choose the folder for backups</source>
        <translation>Choisissez le dossier des sauvegardes</translation>
    </message>
    <message>
        <source>Please choose the library that you want to open</source>
        <translation>Choisissez la bibliothèque à ouvrir</translation>
    </message>
    <message>
        <source>Please choose the location where the images will be saved</source>
        <translation>Choisissez l’emplacement où enregistrer les images</translation>
    </message>
    <message>
        <source>Please choose where to move your library</source>
        <translation>Choisissez où déplacer votre bibliothèque</translation>
    </message>
    <message>
        <source>Please pick a name!</source>
        <translation>Choisissez un nom !</translation>
    </message>
    <message>
        <source>Please re-open Zelto for applying the new settings.</source>
        <translation>Rouvrez Zelto pour appliquer les nouveaux réglages.</translation>
    </message>
    <message>
        <source>Please select some items!</source>
        <translation>Sélectionnez des éléments !</translation>
    </message>
    <message>
        <source>Png export</source>
        <translation>Export Png</translation>
    </message>
    <message>
        <source>Portable bitmap image</source>
        <translation>Image bitmap portable</translation>
    </message>
    <message>
        <source>PostScript document</source>
        <translation>Document PostScript</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>Preferences…</source>
        <translation>Préférences…</translation>
    </message>
    <message>
        <source>Presentation</source>
        <translation>Présentation</translation>
    </message>
    <message>
        <source>Press keys…</source>
        <translation>Appuyez sur des touches…</translation>
    </message>
    <message>
        <source>Preview</source>
        <translation>Aperçu</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Précédent</translation>
    </message>
    <message>
        <source>Previous Tab</source>
        <translation>Onglet précédent</translation>
    </message>
    <message>
        <source>Previous page (Page Up)</source>
        <translation>Page précédente (Pg. préc)</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Impr. écran</translation>
    </message>
    <message>
        <source>Privacy</source>
        <translation>Confidentialité</translation>
    </message>
    <message>
        <source>Progress of the backup</source>
        <translation>Progression de la sauvegarde</translation>
    </message>
    <message>
        <source>Project</source>
        <translation>Projet</translation>
    </message>
    <message>
        <source>Projects</source>
        <translation>Projets</translation>
    </message>
    <message>
        <source>Property list</source>
        <translation>Liste de propriétés</translation>
    </message>
    <message>
        <source>Proposed to be kept. %@.</source>
        <translation>Proposée pour être conservée. %@.</translation>
    </message>
    <message>
        <source>Pu&amp;blic address</source>
        <translation>Adresse pu&amp;blique</translation>
    </message>
    <message>
        <source>Put everything into one zip archive</source>
        <translation>Tout mettre dans une archive zip</translation>
    </message>
    <message>
        <source>Put it back, and open it then.</source>
        <translation>Remettez-la en place, puis ouvrez-la.</translation>
    </message>
    <message>
        <source>Puts the template into the trash (Del)</source>
        <translation>Met le modèle à la corbeille (Suppr)</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualité</translation>
    </message>
    <message>
        <source>Quick Export</source>
        <translation>Export rapide</translation>
    </message>
    <message>
        <source>Quick Export (Ctrl+E)</source>
        <translation>Export rapide (Ctrl+E)</translation>
    </message>
    <message>
        <source>Quick Look</source>
        <translation>Aperçu rapide</translation>
    </message>
    <message>
        <source>Quick export</source>
        <translation>Export rapide</translation>
    </message>
    <message>
        <source>QuickTime movie</source>
        <translation>Film QuickTime</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quitter</translation>
    </message>
    <message>
        <source>Quit Zelto and run `zelto recover`; older backups are as they were.</source>
        <translation>Quittez Zelto et exécutez `zelto recover` ; les anciennes sauvegardes sont intactes.</translation>
    </message>
    <message>
        <source>Quit Zelto, then recover it.</source>
        <translation>Quittez Zelto, puis récupérez-la.</translation>
    </message>
    <message>
        <source>Quit anyway</source>
        <translation>Quitter quand même</translation>
    </message>
    <message>
        <source>Quit the other one, or choose another library.</source>
        <translation>Quittez l’autre, ou choisissez une autre bibliothèque.</translation>
    </message>
    <message>
        <source>Quitting now will lose any changes you have made since the last successful save</source>
        <translation>Si vous quittez maintenant, les modifications faites depuis le dernier enregistrement réussi seront perdues</translation>
    </message>
    <message>
        <source>RAR archive</source>
        <translation>Archive RAR</translation>
    </message>
    <message>
        <source>Radiance image</source>
        <translation>Image Radiance</translation>
    </message>
    <message>
        <source>Rating</source>
        <translation>Note</translation>
    </message>
    <message>
        <source>Rating: %@ of 5</source>
        <translation>Note : %@ sur 5</translation>
    </message>
    <message>
        <source>Rating: Multiple values</source>
        <translation>Note : valeurs multiples</translation>
    </message>
    <message>
        <source>Rating…</source>
        <translation>Note…</translation>
    </message>
    <message>
        <source>Reading live folders…</source>
        <translation>Lecture des dossiers actifs…</translation>
    </message>
    <message>
        <source>Reading the backup again</source>
        <translation>Relecture de la sauvegarde</translation>
    </message>
    <message>
        <source>Reading…</source>
        <translation>Lecture…</translation>
    </message>
    <message>
        <source>Reasons…</source>
        <translation>Raisons…</translation>
    </message>
    <message>
        <source>Recent</source>
        <translation>Récents</translation>
    </message>
    <message>
        <source>Recent shows what is new by itself. Choose the library, a project or a tag.</source>
        <translation>« Récents » montre de lui-même ce qui est nouveau. Choisissez la bibliothèque, un projet ou un mot-clé.</translation>
    </message>
    <message>
        <source>Recover</source>
        <translation>Récupérer</translation>
    </message>
    <message>
        <source>Recover it with `zelto recover`, or put back a copy from a backup.</source>
        <translation>Récupérez-la avec `zelto recover`, ou remettez en place une copie issue d’une sauvegarde.</translation>
    </message>
    <message>
        <source>Recover the damaged library</source>
        <translation>Récupérer la bibliothèque endommagée</translation>
    </message>
    <message>
        <source>Recovered</source>
        <translation>Récupérés</translation>
    </message>
    <message>
        <source>Recovered: %@ items, %@ sidebar entries, %@ tags, %@ memberships.</source>
        <translation>Récupérés : %@ éléments, %@ entrées de la barre latérale, %@ mots-clés, %@ appartenances.</translation>
    </message>
    <message>
        <source>Recover…</source>
        <translation>Récupérer…</translation>
    </message>
    <message>
        <source>Red</source>
        <translation>Rouge</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Rétablir</translation>
    </message>
    <message>
        <source>Redo %@</source>
        <translation>Rétablir : %@</translation>
    </message>
    <message>
        <source>Reduced to 8 bits a channel. Export it as it is to keep all.</source>
        <translation>Réduit à 8 bits par canal. Pour tout conserver, exportez-le tel quel.</translation>
    </message>
    <message>
        <source>Refine</source>
        <translation>Affiner</translation>
    </message>
    <message>
        <source>Refine Bar</source>
        <translation>Barre d’affinage</translation>
    </message>
    <message>
        <source>Register at imgur.com</source>
        <translation>S’inscrire sur imgur.com</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Retirer</translation>
    </message>
    <message>
        <source>Remove from %@</source>
        <translation>Retirer de %@</translation>
    </message>
    <message>
        <source>Remove from Library</source>
        <translation>Retirer de la bibliothèque</translation>
    </message>
    <message>
        <source>Remove one first.</source>
        <translation>Retirez-en d’abord un.</translation>
    </message>
    <message>
        <source>Remove something there, as old backups, or choose another disk.</source>
        <translation>Supprimez-y quelque chose, comme d’anciennes sauvegardes, ou choisissez un autre disque.</translation>
    </message>
    <message>
        <source>Remove the tag %@</source>
        <translation>Retirer le mot-clé %@</translation>
    </message>
    <message>
        <source>Remove what is not needed there, then try again.</source>
        <translation>Supprimez-y ce qui n’est pas nécessaire, puis réessayez.</translation>
    </message>
    <message>
        <source>Remove “%@”?</source>
        <translation>Retirer « %@ » ?</translation>
    </message>
    <message>
        <source>Removing items…</source>
        <translation>Retrait des éléments…</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Renommer</translation>
    </message>
    <message>
        <source>Reopen Closed Tab</source>
        <translation>Rouvrir l’onglet fermé</translation>
    </message>
    <message>
        <source>Replace</source>
        <translation>Remplacer</translation>
    </message>
    <message>
        <source>Report copied to clipboard!</source>
        <translation>Rapport copié dans le presse-papiers !</translation>
    </message>
    <message>
        <source>Report sent. Thank you!</source>
        <translation>Rapport envoyé. Merci !</translation>
    </message>
    <message>
        <source>Restoring items…</source>
        <translation>Restauration des éléments…</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Entrée</translation>
    </message>
    <message>
        <source>Return takes it · Esc leaves · arrows move, Shift by 10, Ctrl resizes</source>
        <translation>Entrée capture · Échap quitte · les flèches déplacent, Maj par 10, Ctrl redimensionne</translation>
    </message>
    <message>
        <source>Rich text document</source>
        <translation>Document texte enrichi</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Droite</translation>
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
        <translation>BARRE LATÉRALE</translation>
    </message>
    <message>
        <source>SIZES</source>
        <translation>TAILLES</translation>
    </message>
    <message>
        <source>SVG %@ is not a valid image</source>
        <translation>SVG %@ n’est pas une image valide</translation>
    </message>
    <message>
        <source>Sample project</source>
        <translation>Projet d’exemple</translation>
    </message>
    <message>
        <source>Sample tag</source>
        <translation>Mot-clé d’exemple</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Save Palette</source>
        <translation>Enregistrer la palette</translation>
    </message>
    <message>
        <source>Save Palette for Adobe Programs (ASE)…</source>
        <translation>Enregistrer la palette pour les programmes Adobe (ASE)…</translation>
    </message>
    <message>
        <source>Save Palette for GIMP and Inkscape (GPL)…</source>
        <translation>Enregistrer la palette pour GIMP et Inkscape (GPL)…</translation>
    </message>
    <message>
        <source>Save Report</source>
        <translation>Enregistrer le rapport</translation>
    </message>
    <message>
        <source>Save Search</source>
        <translation>Enregistrer la recherche</translation>
    </message>
    <message>
        <source>Save Search…</source>
        <translation>Enregistrer la recherche…</translation>
    </message>
    <message>
        <source>Save an &amp;Example…</source>
        <translation>Enregistrer un &amp;exemple…</translation>
    </message>
    <message>
        <source>Save an Example</source>
        <translation>Enregistrer un exemple</translation>
    </message>
    <message>
        <source>Save the search as a smart folder (Ctrl+S)</source>
        <translation>Enregistrer la recherche comme dossier intelligent (Ctrl+S)</translation>
    </message>
    <message>
        <source>Save to Screenshots</source>
        <translation>Enregistrer dans « Captures d’écran »</translation>
    </message>
    <message>
        <source>Saved to Screenshots.</source>
        <translation>Enregistré dans « Captures d’écran ».</translation>
    </message>
    <message>
        <source>Saving to Screenshots…</source>
        <translation>Enregistrement dans « Captures d’écran »…</translation>
    </message>
    <message>
        <source>Scalable vector graphic</source>
        <translation>Image vectorielle</translation>
    </message>
    <message>
        <source>Screenshots</source>
        <translation>Captures d’écran</translation>
    </message>
    <message>
        <source>Screenshots is for captures. Choose the library, a project or a tag.</source>
        <translation>« Captures d’écran » est réservé aux captures. Choisissez la bibliothèque, un projet ou un mot-clé.</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Rechercher</translation>
    </message>
    <message>
        <source>Search for %@</source>
        <translation>Rechercher %@</translation>
    </message>
    <message>
        <source>Search for %@ (%@ %% of the picture). Shift adds it to the search</source>
        <translation>Rechercher %@ (%@ %% de l’image). Maj l’ajoute à la recherche</translation>
    </message>
    <message>
        <source>Search for less at once.</source>
        <translation>Recherchez moins de choses à la fois.</translation>
    </message>
    <message>
        <source>Search or #token</source>
        <translation>Rechercher ou #token</translation>
    </message>
    <message>
        <source>Search: %@</source>
        <translation>Recherche : %@</translation>
    </message>
    <message>
        <source>Searched as one</source>
        <translation>Recherché comme un tout</translation>
    </message>
    <message>
        <source>See whether the address is written right.</source>
        <translation>Vérifiez que l’adresse est correcte.</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Tout sélectionner</translation>
    </message>
    <message>
        <source>Select items to export them.</source>
        <translation>Sélectionnez des éléments pour les exporter.</translation>
    </message>
    <message>
        <source>Select items to share them. A right click shows the latest uploads.</source>
        <translation>Sélectionnez des éléments pour les partager. Un clic droit affiche les derniers envois.</translation>
    </message>
    <message>
        <source>Select something in the sidebar.</source>
        <translation>Sélectionnez quelque chose dans la barre latérale.</translation>
    </message>
    <message>
        <source>Sen&amp;d</source>
        <translation>En&amp;voyer</translation>
    </message>
    <message>
        <source>Services</source>
        <translation>Services</translation>
    </message>
    <message>
        <source>Set up…</source>
        <translation>Configurer…</translation>
    </message>
    <message>
        <source>Shades near to it</source>
        <translation>Les nuances proches</translation>
    </message>
    <message>
        <source>Share</source>
        <translation>Partager</translation>
    </message>
    <message>
        <source>Share (Ctrl+Shift+C)</source>
        <translation>Partager (Ctrl+Maj+C)</translation>
    </message>
    <message>
        <source>Share it again.</source>
        <translation>Partagez-le de nouveau.</translation>
    </message>
    <message>
        <source>Share it with another service, or drop a preset on the cloud button that makes it smaller.</source>
        <translation>Partagez-le avec un autre service, ou déposez sur le bouton Cloud un préréglage qui le rend plus petit.</translation>
    </message>
    <message>
        <source>Share to</source>
        <translation>Partager vers</translation>
    </message>
    <message>
        <source>Sharing %@ of %@…</source>
        <translation>Partage de %@ sur %@…</translation>
    </message>
    <message>
        <source>Sharing done</source>
        <translation>Partage terminé</translation>
    </message>
    <message>
        <source>Sharing…</source>
        <translation>Partage…</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Maj</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Afficher</translation>
    </message>
    <message>
        <source>Show &amp;Zelto</source>
        <translation>&amp;Afficher Zelto</translation>
    </message>
    <message>
        <source>Show &amp;titles below thumbnails</source>
        <translation>Afficher les &amp;titres sous les vignettes</translation>
    </message>
    <message>
        <source>Show All</source>
        <translation>Tout afficher</translation>
    </message>
    <message>
        <source>Show Imported</source>
        <translation>Afficher les éléments importés</translation>
    </message>
    <message>
        <source>Show Last &amp;Report…</source>
        <translation>Afficher le dernier &amp;rapport…</translation>
    </message>
    <message>
        <source>Show Library in Files</source>
        <translation>Afficher la bibliothèque dans Fichiers</translation>
    </message>
    <message>
        <source>Show Similar</source>
        <translation>Afficher les semblables</translation>
    </message>
    <message>
        <source>Show Zelto</source>
        <translation>Afficher Zelto</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Tout afficher</translation>
    </message>
    <message>
        <source>Show e&amp;xtensions</source>
        <translation>Afficher les e&amp;xtensions</translation>
    </message>
    <message>
        <source>Show everything, without the search</source>
        <translation>Afficher tout, sans la recherche</translation>
    </message>
    <message>
        <source>Show how &amp;many items each row has</source>
        <translation>Afficher le no&amp;mbre d’éléments de chaque ligne</translation>
    </message>
    <message>
        <source>Show in Files</source>
        <translation>Afficher dans Fichiers</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Afficher dans le dossier</translation>
    </message>
    <message>
        <source>Show the folder that is now in the place of “%@”?</source>
        <translation>Afficher le dossier qui se trouve maintenant à la place de « %@ » ?</translation>
    </message>
    <message>
        <source>Show the status &amp;icon</source>
        <translation>Afficher l’&amp;icône d’état</translation>
    </message>
    <message>
        <source>Shows every name and what it means.</source>
        <translation>Affiche chaque nom et ce qu’il signifie.</translation>
    </message>
    <message>
        <source>Side by side</source>
        <translation>Côte à côte</translation>
    </message>
    <message>
        <source>Side by side (D)</source>
        <translation>Côte à côte (D)</translation>
    </message>
    <message>
        <source>Sidebar</source>
        <translation>Barre latérale</translation>
    </message>
    <message>
        <source>Sidebar (Ctrl+B)</source>
        <translation>Barre latérale (Ctrl+B)</translation>
    </message>
    <message>
        <source>Sidebar item</source>
        <translation>Élément de la barre latérale</translation>
    </message>
    <message>
        <source>Sidebar order</source>
        <translation>Ordre de la barre latérale</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Taille</translation>
    </message>
    <message>
        <source>Size class is “%@”</source>
        <translation>La classe de taille est « %@ »</translation>
    </message>
    <message>
        <source>Size of text and &amp;pictures of the window</source>
        <translation>Taille du texte et des &amp;images de la fenêtre</translation>
    </message>
    <message>
        <source>Size of the originals: %@</source>
        <translation>Taille des originaux : %@</translation>
    </message>
    <message>
        <source>Size of the thumbnails: %@</source>
        <translation>Taille des vignettes : %@</translation>
    </message>
    <message>
        <source>Sketch document</source>
        <translation>Document Sketch</translation>
    </message>
    <message>
        <source>Skip This Version</source>
        <translation>Ignorer cette version</translation>
    </message>
    <message>
        <source>Smaller Thumbnails</source>
        <translation>Vignettes plus petites</translation>
    </message>
    <message>
        <source>Smart Folder</source>
        <translation>Dossier intelligent</translation>
    </message>
    <message>
        <source>Some of the changed objects were changed elsewhere in the meantime.</source>
        <translation>Certains des objets modifiés ont été modifiés ailleurs entre-temps.</translation>
    </message>
    <message>
        <source>Some of the files are unreadable by Zelto and can't be imported!</source>
        <translation>Certains fichiers sont illisibles pour Zelto et ne peuvent pas être importés !</translation>
    </message>
    <message>
        <source>Something follows the end.</source>
        <translation>Il y a encore quelque chose après la fin.</translation>
    </message>
    <message>
        <source>Sort</source>
        <translation>Trier</translation>
    </message>
    <message>
        <source>Sort by</source>
        <translation>Trier par</translation>
    </message>
    <message>
        <source>Sort by %@</source>
        <translation>Trier par %@</translation>
    </message>
    <message>
        <source>Sort by Hand</source>
        <translation>Trier à la main</translation>
    </message>
    <message>
        <source>Sort by Title</source>
        <translation>Trier par titre</translation>
    </message>
    <message>
        <source>Sort: %@</source>
        <translation>Tri : %@</translation>
    </message>
    <message>
        <source>Source</source>
        <translation>Source</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Espace</translation>
    </message>
    <message>
        <source>Spreadsheet</source>
        <translation>Feuille de calcul</translation>
    </message>
    <message>
        <source>Start the one it was kept in, such as GNOME Keyring or KWallet, or log in to the desktop again, and try once more.</source>
        <translation>Démarrez celui où il était conservé, comme GNOME Keyring ou KWallet, ou rouvrez votre session, puis réessayez.</translation>
    </message>
    <message>
        <source>Starting the browser…</source>
        <translation>Démarrage du navigateur…</translation>
    </message>
    <message>
        <source>Sto&amp;p</source>
        <translation>Arrê&amp;ter</translation>
    </message>
    <message>
        <source>Stop &amp;Backup</source>
        <translation>Arrêter la &amp;sauvegarde</translation>
    </message>
    <message>
        <source>Stop Import</source>
        <translation>Arrêter l’import</translation>
    </message>
    <message>
        <source>Stop Syncing</source>
        <translation>Arrêter la synchronisation</translation>
    </message>
    <message>
        <source>Stopped</source>
        <translation>Arrêté</translation>
    </message>
    <message>
        <source>Stopping…</source>
        <translation>Arrêt…</translation>
    </message>
    <message>
        <source>Style sheet</source>
        <translation>Feuille de style</translation>
    </message>
    <message>
        <source>Super</source>
        <translation>Super</translation>
    </message>
    <message>
        <source>Supported files (%@)</source>
        <translation>Fichiers pris en charge (%@)</translation>
    </message>
    <message>
        <source>Sync now</source>
        <translation>Synchroniser maintenant</translation>
    </message>
    <message>
        <source>Syncing %@</source>
        <translation>Synchronisation de %@</translation>
    </message>
    <message>
        <source>Syncing did not come to its end. Sync now goes on.</source>
        <translation>La synchronisation n’est pas allée jusqu’au bout. « Synchroniser maintenant » la poursuit.</translation>
    </message>
    <message>
        <source>Syncing did not come to its end: %@ of %@ files were taken. Sync now goes on.</source>
        <translation>La synchronisation n’est pas allée jusqu’au bout : %@ fichiers sur %@ ont été repris. « Synchroniser maintenant » la poursuit.</translation>
    </message>
    <message>
        <source>Syncing: %@ files</source>
        <translation>Synchronisation : %@ fichiers</translation>
    </message>
    <message>
        <source>Syncing: %@ of %@ files</source>
        <translation>Synchronisation : %@ fichiers sur %@</translation>
    </message>
    <message>
        <source>Syncing…</source>
        <translation>Synchronisation…</translation>
    </message>
    <message>
        <source>TAGS</source>
        <translation>MOTS-CLÉS</translation>
    </message>
    <message>
        <source>TAGS THAT ZELTO ADDS</source>
        <translation>MOTS-CLÉS AJOUTÉS PAR ZELTO</translation>
    </message>
    <message>
        <source>TGA image</source>
        <translation>Image TGA</translation>
    </message>
    <message>
        <source>THEME</source>
        <translation>THÈME</translation>
    </message>
    <message>
        <source>TIFF image</source>
        <translation>Image TIFF</translation>
    </message>
    <message>
        <source>Tab</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>Tab %d</source>
        <translation>Onglet %d</translation>
    </message>
    <message>
        <source>Tab %d of %d</source>
        <translation>Onglet %d sur %d</translation>
    </message>
    <message>
        <source>Tab goes to the next window</source>
        <translation>Tab passe à la fenêtre suivante</translation>
    </message>
    <message>
        <source>Tabs</source>
        <translation>Onglets</translation>
    </message>
    <message>
        <source>Tag</source>
        <translation>Mot-clé</translation>
    </message>
    <message>
        <source>Tag already exist!</source>
        <translation>Ce mot-clé existe déjà !</translation>
    </message>
    <message>
        <source>Tag needs a name!</source>
        <translation>Le mot-clé doit avoir un nom !</translation>
    </message>
    <message>
        <source>Tagging…</source>
        <translation>Ajout de mots-clés…</translation>
    </message>
    <message>
        <source>Tags</source>
        <translation>Mots-clés</translation>
    </message>
    <message>
        <source>Take Back</source>
        <translation>Reprendre</translation>
    </message>
    <message>
        <source>Take Screenshot</source>
        <translation>Prendre une capture d’écran</translation>
    </message>
    <message>
        <source>Take a picture of a window</source>
        <translation>Capturer une fenêtre</translation>
    </message>
    <message>
        <source>Take a picture of an area of the screen</source>
        <translation>Capturer une zone de l’écran</translation>
    </message>
    <message>
        <source>Take a picture of the whole screen</source>
        <translation>Capturer tout l’écran</translation>
    </message>
    <message>
        <source>Take out of the comparison (X)</source>
        <translation>Retirer de la comparaison (X)</translation>
    </message>
    <message>
        <source>Take part in &amp;beta versions</source>
        <translation>Participer aux versions &amp;bêta</translation>
    </message>
    <message>
        <source>Take the &amp;keywords of pictures as tags</source>
        <translation>Reprendre les m&amp;ots-clés des images</translation>
    </message>
    <message>
        <source>Taking files of the library back…</source>
        <translation>Reprise de fichiers de la bibliothèque…</translation>
    </message>
    <message>
        <source>Taking the picture…</source>
        <translation>Capture de l’image…</translation>
    </message>
    <message>
        <source>Tape archive</source>
        <translation>Archive tar</translation>
    </message>
    <message>
        <source>Templates</source>
        <translation>Modèles</translation>
    </message>
    <message>
        <source>Test and &amp;Connect</source>
        <translation>Tester et &amp;connecter</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Text document</source>
        <translation>Document texte</translation>
    </message>
    <message>
        <source>That area lies on no screen. Choose another one.</source>
        <translation>Cette zone ne se trouve sur aucun écran. Choisissez-en une autre.</translation>
    </message>
    <message>
        <source>That was cancelled.</source>
        <translation>L’opération a été annulée.</translation>
    </message>
    <message>
        <source>That was the last group.</source>
        <translation>C’était le dernier groupe.</translation>
    </message>
    <message>
        <source>That window was closed or hidden before it could be taken. Choose another one.</source>
        <translation>Cette fenêtre a été fermée ou masquée avant de pouvoir être capturée. Choisissez-en une autre.</translation>
    </message>
    <message>
        <source>The %@ largest of %@ groups. Look again for the others.</source>
        <translation>Les %@ plus grands de %@ groupes. Relancez la recherche pour les autres.</translation>
    </message>
    <message>
        <source>The Zelto that has this library open ended before it answered.</source>
        <translation>Le Zelto dans lequel cette bibliothèque est ouverte s’est terminé avant de répondre.</translation>
    </message>
    <message>
        <source>The Zelto that has this library open is ending.</source>
        <translation>Le Zelto dans lequel cette bibliothèque est ouverte est en train de se terminer.</translation>
    </message>
    <message>
        <source>The account is forgotten, but its stored password cannot be reached.</source>
        <translation>Le compte est oublié, mais son mot de passe enregistré est inaccessible.</translation>
    </message>
    <message>
        <source>The address is too long for a web page.</source>
        <translation>L’adresse est trop longue pour une page web.</translation>
    </message>
    <message>
        <source>The address says that it holds a picture and does not.</source>
        <translation>L’adresse prétend contenir une image, mais n’en contient pas.</translation>
    </message>
    <message>
        <source>The announcement of versions is for another program or channel. Check again later.</source>
        <translation>L’annonce des versions est destinée à un autre programme ou canal. Vérifiez de nouveau plus tard.</translation>
    </message>
    <message>
        <source>The announcement of versions is not signed by Zelto's makers, so nothing it says was believed. Check again from another network; if that changes nothing, tell the makers.</source>
        <translation>L’annonce des versions n’est pas signée par les auteurs de Zelto ; il n’en a donc pas été tenu compte. Vérifiez de nouveau depuis un autre réseau ; si cela ne change rien, prévenez les auteurs.</translation>
    </message>
    <message>
        <source>The announcement of versions is older than the last one that came, so nothing it says was believed. Check again later, or from another network.</source>
        <translation>L’annonce des versions est plus ancienne que la dernière reçue ; il n’en a donc pas été tenu compte. Vérifiez de nouveau plus tard ou depuis un autre réseau.</translation>
    </message>
    <message>
        <source>The answer of %@ is larger than one that tells of an upload.</source>
        <translation>La réponse de %@ est plus grande que celle qui signale un envoi.</translation>
    </message>
    <message>
        <source>The answer of Dropbox cannot be understood.</source>
        <translation>La réponse de Dropbox est incompréhensible.</translation>
    </message>
    <message>
        <source>The answer of Dropbox cannot be understood. Check the address that stands in the settings.</source>
        <translation>La réponse de Dropbox est incompréhensible. Vérifiez l’adresse indiquée dans les paramètres.</translation>
    </message>
    <message>
        <source>The app key does not allow that.</source>
        <translation>L’App key ne le permet pas.</translation>
    </message>
    <message>
        <source>The archive could not be written to “%@”.</source>
        <translation>L’archive n’a pas pu être écrite dans « %@ ».</translation>
    </message>
    <message>
        <source>The archive holds nothing that can be imported.</source>
        <translation>L’archive ne contient rien qui puisse être importé.</translation>
    </message>
    <message>
        <source>The archive is damaged.</source>
        <translation>L’archive est endommagée.</translation>
    </message>
    <message>
        <source>The backup lacks something: %@</source>
        <translation>Il manque quelque chose à la sauvegarde : %@</translation>
    </message>
    <message>
        <source>The backup needs %@ in “%@”, where %@ are free.</source>
        <translation>La sauvegarde nécessite %@ dans « %@ », où %@ sont libres.</translation>
    </message>
    <message>
        <source>The backup was stopped. Older ones are as they were.</source>
        <translation>La sauvegarde a été arrêtée. Les précédentes sont intactes.</translation>
    </message>
    <message>
        <source>The browser can't capture this page.</source>
        <translation>Le navigateur ne peut pas capturer cette page.</translation>
    </message>
    <message>
        <source>The browser can't load it; try again later, or in another browser (%@).</source>
        <translation>Le navigateur ne peut pas la charger ; réessayez plus tard ou dans un autre navigateur (%@).</translation>
    </message>
    <message>
        <source>The browser that draws the page ended unexpectedly. Try again; if it happens each time, see whether chromium starts by itself.</source>
        <translation>Le navigateur qui dessine la page s’est arrêté de façon inattendue. Réessayez ; si cela se reproduit chaque fois, vérifiez que chromium démarre seul.</translation>
    </message>
    <message>
        <source>The browser took too long with this page. Try again, or capture only the visible area.</source>
        <translation>Le navigateur a mis trop de temps pour cette page. Réessayez, ou capturez seulement la zone visible.</translation>
    </message>
    <message>
        <source>The browser “%@” that the setting WebCaptureBrowser names can't be run: install chromium, or change the setting.</source>
        <translation>Le navigateur « %@ » désigné par le paramètre WebCaptureBrowser ne peut pas être lancé : installez chromium ou modifiez ce paramètre.</translation>
    </message>
    <message>
        <source>The capture was cancelled.</source>
        <translation>La capture a été annulée.</translation>
    </message>
    <message>
        <source>The captured picture can be written neither into the library nor into Pictures. Zelto holds it until it quits, and asks about it then: make room before.</source>
        <translation>L’image capturée ne peut être écrite ni dans la bibliothèque ni dans le dossier Images. Zelto la conserve jusqu’à ce que vous le quittiez et vous demandera alors quoi en faire : libérez de l’espace avant.</translation>
    </message>
    <message>
        <source>The captured picture can't be stored</source>
        <translation>L’image capturée ne peut pas être enregistrée</translation>
    </message>
    <message>
        <source>The captured picture is in the library.</source>
        <translation>L’image capturée est dans la bibliothèque.</translation>
    </message>
    <message>
        <source>The changes cannot be saved.</source>
        <translation>Les modifications ne peuvent pas être enregistrées.</translation>
    </message>
    <message>
        <source>The color as a name or a number, such as #3366cc</source>
        <translation>La couleur sous forme de nom ou de nombre, par exemple #3366cc</translation>
    </message>
    <message>
        <source>The condition cannot be read at character %d:</source>
        <translation>La condition est illisible au caractère %d :</translation>
    </message>
    <message>
        <source>The condition is too long.</source>
        <translation>La condition est trop longue.</translation>
    </message>
    <message>
        <source>The copy was cancelled</source>
        <translation>La copie a été annulée</translation>
    </message>
    <message>
        <source>The counts of “%@” are damaged. Erase them to go on.</source>
        <translation>Les compteurs de « %@ » sont endommagés. Effacez-les pour continuer.</translation>
    </message>
    <message>
        <source>The counts of “%@” could not be erased: %@</source>
        <translation>Les compteurs de « %@ » n’ont pas pu être effacés : %@</translation>
    </message>
    <message>
        <source>The counts of “%@” could not be read: %@</source>
        <translation>Les compteurs de « %@ » n’ont pas pu être lus : %@</translation>
    </message>
    <message>
        <source>The counts of “%@” could not be written. Another Zelto may be at it, or the folder can't be written in.</source>
        <translation>Les compteurs de « %@ » n’ont pas pu être écrits. Un autre Zelto y travaille peut-être, ou le dossier n’est pas accessible en écriture.</translation>
    </message>
    <message>
        <source>The counts stay on this machine. Here is all there is:</source>
        <translation>Les compteurs restent sur cette machine. En voici la totalité :</translation>
    </message>
    <message>
        <source>The damaged store is kept as %@</source>
        <translation>La base de données endommagée est conservée sous le nom %@</translation>
    </message>
    <message>
        <source>The data model cannot be read.</source>
        <translation>Le modèle de données est illisible.</translation>
    </message>
    <message>
        <source>The desktop can't be asked, since there is no session bus. Start Zelto within a desktop session.</source>
        <translation>Impossible d’interroger le bureau, car il n’y a pas de bus de session. Démarrez Zelto dans une session de bureau.</translation>
    </message>
    <message>
        <source>The desktop did not allow it. Its settings say which programs may start by themselves.</source>
        <translation>Le bureau ne l’a pas autorisé. Ses paramètres indiquent quels programmes peuvent démarrer automatiquement.</translation>
    </message>
    <message>
        <source>The desktop did not give these keys. Choose them in the desktop's keyboard settings.</source>
        <translation>Le bureau n’a pas accordé ces touches. Choisissez-les dans les réglages du clavier du bureau.</translation>
    </message>
    <message>
        <source>The desktop gives no keys.</source>
        <translation>Le bureau n’accorde aucune touche.</translation>
    </message>
    <message>
        <source>The desktop refused.</source>
        <translation>Le bureau a refusé.</translation>
    </message>
    <message>
        <source>The desktop took a picture, and it can't be read. Try again.</source>
        <translation>Le bureau a pris une image, mais elle est illisible. Réessayez.</translation>
    </message>
    <message>
        <source>The desktop's portal ended before it answered. Try again.</source>
        <translation>Le portail du bureau s’est terminé avant de répondre. Réessayez.</translation>
    </message>
    <message>
        <source>The difference of these two cannot be shown.</source>
        <translation>La différence de ces deux images ne peut pas être affichée.</translation>
    </message>
    <message>
        <source>The disk can't share files between backups, so that each takes the room of the whole library.</source>
        <translation>Le disque ne peut pas partager de fichiers entre les sauvegardes ; chacune occupe donc la place de toute la bibliothèque.</translation>
    </message>
    <message>
        <source>The disk is full. Free some space and import it again.</source>
        <translation>Le disque est plein. Libérez de l’espace et importez-le de nouveau.</translation>
    </message>
    <message>
        <source>The disk is full. Make room on it, and try again.</source>
        <translation>Le disque est plein. Libérez de l’espace, puis réessayez.</translation>
    </message>
    <message>
        <source>The disk may be failing; use another one. Older backups are as they were.</source>
        <translation>Le disque est peut-être défaillant ; utilisez-en un autre. Les anciennes sauvegardes sont intactes.</translation>
    </message>
    <message>
        <source>The disk reported an error while the library was used.</source>
        <translation>Le disque a signalé une erreur pendant l’utilisation de la bibliothèque.</translation>
    </message>
    <message>
        <source>The disk reports an error. Check the disk and its connection before anything else.</source>
        <translation>Le disque signale une erreur. Vérifiez avant tout le disque et son raccordement.</translation>
    </message>
    <message>
        <source>The disk takes no files of that size or that name, as those with the file system FAT; choose a folder on one with ext4, Btrfs or XFS.</source>
        <translation>Le disque n’accepte pas les fichiers de cette taille ou de ce nom, comme ceux au système de fichiers FAT ; choisissez un dossier sur un disque en ext4, Btrfs ou XFS.</translation>
    </message>
    <message>
        <source>The disk with the temporary files is full. Free some space, or name another folder for them in TMPDIR, and import it again.</source>
        <translation>Le disque des fichiers temporaires est plein. Libérez de l’espace ou indiquez un autre dossier pour ces fichiers dans TMPDIR, puis importez-le de nouveau.</translation>
    </message>
    <message>
        <source>The display gave no picture. Try again; if it stays so, log out and in.</source>
        <translation>L’affichage n’a fourni aucune image. Réessayez ; si cela persiste, fermez la session et rouvrez-la.</translation>
    </message>
    <message>
        <source>The display is gone. Start Zelto again.</source>
        <translation>L’affichage n’est plus là. Redémarrez Zelto.</translation>
    </message>
    <message>
        <source>The document would be larger than 2 GB, which other programs do not open: make it smaller, or of fewer layers.</source>
        <translation>Le document dépasserait 2 Go, taille que d’autres programmes n’ouvrent pas : réduisez-le, ou utilisez moins de calques.</translation>
    </message>
    <message>
        <source>The drive with the library is gone.</source>
        <translation>Le disque de la bibliothèque n’est plus là.</translation>
    </message>
    <message>
        <source>The existing item stays where it is.</source>
        <translation>L’élément existant reste où il est.</translation>
    </message>
    <message>
        <source>The export to “%@” was stopped: %d of %d files were written.</source>
        <translation>L’export vers « %@ » a été arrêté : %d fichiers sur %d ont été écrits.</translation>
    </message>
    <message>
        <source>The export was cancelled.</source>
        <translation>L’export a été annulé.</translation>
    </message>
    <message>
        <source>The file is damaged or incomplete.</source>
        <translation>Le fichier est endommagé ou incomplet.</translation>
    </message>
    <message>
        <source>The file is empty.</source>
        <translation>Le fichier est vide.</translation>
    </message>
    <message>
        <source>The file is empty. Save it again in the program that made it.</source>
        <translation>Le fichier est vide. Enregistrez-le de nouveau dans le programme qui l’a créé.</translation>
    </message>
    <message>
        <source>The file is missing.</source>
        <translation>Le fichier est manquant.</translation>
    </message>
    <message>
        <source>The file is missing. Put it back where it was, or import it again.</source>
        <translation>Le fichier est manquant. Remettez-le où il était, ou importez-le de nouveau.</translation>
    </message>
    <message>
        <source>The file is not a library database.</source>
        <translation>Le fichier n’est pas une base de données de bibliothèque.</translation>
    </message>
    <message>
        <source>The file of "%@" is missing.</source>
        <translation>Le fichier de « %@ » est manquant.</translation>
    </message>
    <message>
        <source>The file was uploaded, but your server makes no link: “%@”.</source>
        <translation>Le fichier a été envoyé, mais votre serveur ne crée pas de lien : « %@ ».</translation>
    </message>
    <message>
        <source>The file was uploaded, but your server makes no links.</source>
        <translation>Le fichier a été envoyé, mais votre serveur ne crée pas de liens.</translation>
    </message>
    <message>
        <source>The file with this digest</source>
        <translation>Le fichier ayant cette empreinte</translation>
    </message>
    <message>
        <source>The file “%@” cannot be made</source>
        <translation>Impossible de créer le fichier « %@ »</translation>
    </message>
    <message>
        <source>The first %@ of %@ are shown; the others stay as they are.</source>
        <translation>Les %@ premiers sur %@ sont affichés ; les autres restent tels quels.</translation>
    </message>
    <message>
        <source>The first of them is “%@”: %@</source>
        <translation>Le premier est « %@ » : %@</translation>
    </message>
    <message>
        <source>The first of these that is set up: CloudApp, Dropbox, Imgur, your own server, the others. Now: %@.</source>
        <translation>Le premier de ceux-ci qui est configuré : CloudApp, Dropbox, Imgur, votre serveur, les autres. Actuellement : %@.</translation>
    </message>
    <message>
        <source>The folder cannot be opened. Change its permissions and import it again</source>
        <translation>Le dossier ne peut pas être ouvert. Modifiez ses permissions et importez-le de nouveau</translation>
    </message>
    <message>
        <source>The folder for “%@” does not exist.</source>
        <translation>Le dossier prévu pour « %@ » n’existe pas.</translation>
    </message>
    <message>
        <source>The folder holds nothing that can be imported.</source>
        <translation>Le dossier ne contient rien qui puisse être importé.</translation>
    </message>
    <message>
        <source>The folder of the library does not exist.</source>
        <translation>Le dossier de la bibliothèque n’existe pas.</translation>
    </message>
    <message>
        <source>The folder “%@” cannot be made</source>
        <translation>Impossible de créer le dossier « %@ »</translation>
    </message>
    <message>
        <source>The folder “%@” could not be made</source>
        <translation>Le dossier « %@ » n’a pas pu être créé</translation>
    </message>
    <message>
        <source>The folder “%@” is in the trash. Put it back, and its items come back with it.</source>
        <translation>Le dossier « %@ » est dans la corbeille. Remettez-le en place, et ses éléments reviendront avec lui.</translation>
    </message>
    <message>
        <source>The header “%@” cannot be sent: it has a line break, or no name.</source>
        <translation>L’en-tête « %@ » ne peut pas être envoyé : il contient un saut de ligne ou n’a pas de nom.</translation>
    </message>
    <message>
        <source>The images of %d pages are still being downloaded. Try again when some are done.</source>
        <translation>Les images de %d pages sont encore en cours de téléchargement. Réessayez lorsque certaines seront terminées.</translation>
    </message>
    <message>
        <source>The images that a page has imported at once may have %@ together.</source>
        <translation>Les images importées en une fois depuis une page peuvent occuper %@ au total.</translation>
    </message>
    <message>
        <source>The import is kept: go on with it once that is mended, or forget it.</source>
        <translation>L’import est conservé : poursuivez-le une fois le problème résolu, ou oubliez-le.</translation>
    </message>
    <message>
        <source>The import was cancelled. Import it again if you want it.</source>
        <translation>L’import a été annulé. Importez-le de nouveau si vous le souhaitez.</translation>
    </message>
    <message>
        <source>The internet connection seem to be unavailable.</source>
        <translation>La connexion à Internet semble indisponible.</translation>
    </message>
    <message>
        <source>The items could not be counted</source>
        <translation>Les éléments n’ont pas pu être comptés</translation>
    </message>
    <message>
        <source>The items it finds will still remain inside your library.</source>
        <translation>Les éléments qu’il trouve resteront dans votre bibliothèque.</translation>
    </message>
    <message>
        <source>The key path "%@" leads nowhere:</source>
        <translation>Le chemin de clés « %@ » ne mène nulle part :</translation>
    </message>
    <message>
        <source>The keyring cannot be used: %@</source>
        <translation>Le trousseau est inutilisable : %@</translation>
    </message>
    <message>
        <source>The keyring has no password for “%@” any more.</source>
        <translation>Le trousseau ne contient plus de mot de passe pour « %@ ».</translation>
    </message>
    <message>
        <source>The keyring with your passwords is locked.</source>
        <translation>Le trousseau contenant vos mots de passe est verrouillé.</translation>
    </message>
    <message>
        <source>The largest: %ld × %ld pixels</source>
        <translation>La plus grande : %ld × %ld pixels</translation>
    </message>
    <message>
        <source>The last one: %@, %@, of which new: %@</source>
        <translation>La dernière : %@, %@, dont nouveau : %@</translation>
    </message>
    <message>
        <source>The last seven days</source>
        <translation>Les sept derniers jours</translation>
    </message>
    <message>
        <source>The layered document takes its place.</source>
        <translation>Le document à calques prend sa place.</translation>
    </message>
    <message>
        <source>The library cannot be opened.</source>
        <translation>La bibliothèque ne peut pas être ouverte.</translation>
    </message>
    <message>
        <source>The library cannot be opened: there is something that is no file in the place of one of its files.</source>
        <translation>La bibliothèque ne peut pas être ouverte : à la place d’un de ses fichiers se trouve quelque chose qui n’est pas un fichier.</translation>
    </message>
    <message>
        <source>The library cannot be written.</source>
        <translation>La bibliothèque ne peut pas être écrite.</translation>
    </message>
    <message>
        <source>The library could not be brought to this version; it is unchanged.</source>
        <translation>La bibliothèque n’a pas pu être mise à niveau vers cette version ; elle est inchangée.</translation>
    </message>
    <message>
        <source>The library could not be looked through: %@</source>
        <translation>La bibliothèque n’a pas pu être parcourue : %@</translation>
    </message>
    <message>
        <source>The library could not be read</source>
        <translation>La bibliothèque n’a pas pu être lue</translation>
    </message>
    <message>
        <source>The library could not be saved yet. Delete the original once it is, if you do not need it.</source>
        <translation>La bibliothèque n’a pas encore pu être enregistrée. Supprimez l’original une fois que ce sera fait, si vous n’en avez pas besoin.</translation>
    </message>
    <message>
        <source>The library could not be saved: %@</source>
        <translation>La bibliothèque n’a pas pu être enregistrée : %@</translation>
    </message>
    <message>
        <source>The library could not be saved: %@ Import it again once that is mended.</source>
        <translation>La bibliothèque n’a pas pu être enregistrée : %@ Importez-le de nouveau une fois le problème résolu.</translation>
    </message>
    <message>
        <source>The library has it already, as “%@”; that item was put in its place.</source>
        <translation>La bibliothèque le contient déjà sous le nom « %@ » ; cet élément a été mis à sa place.</translation>
    </message>
    <message>
        <source>The library has it already, as “%@”; the new copy was discarded.</source>
        <translation>La bibliothèque le contient déjà sous le nom « %@ » ; la nouvelle copie a été abandonnée.</translation>
    </message>
    <message>
        <source>The library has no data model.</source>
        <translation>La bibliothèque n’a pas de modèle de données.</translation>
    </message>
    <message>
        <source>The library has no items of this kind.</source>
        <translation>La bibliothèque n’a aucun élément de ce type.</translation>
    </message>
    <message>
        <source>The library is at “%@” already.</source>
        <translation>La bibliothèque se trouve déjà dans « %@ ».</translation>
    </message>
    <message>
        <source>The library is being written by another process.</source>
        <translation>Un autre processus est en train d’écrire dans la bibliothèque.</translation>
    </message>
    <message>
        <source>The library is damaged</source>
        <translation>La bibliothèque est endommagée</translation>
    </message>
    <message>
        <source>The library is inside “%@” itself.</source>
        <translation>La bibliothèque se trouve elle-même dans « %@ ».</translation>
    </message>
    <message>
        <source>The library is inside “%@”, which it would replace.</source>
        <translation>La bibliothèque se trouve dans « %@ », qu’elle remplacerait.</translation>
    </message>
    <message>
        <source>The library is not open.</source>
        <translation>La bibliothèque n’est pas ouverte.</translation>
    </message>
    <message>
        <source>The library is not open. Open it and add the folder again.</source>
        <translation>La bibliothèque n’est pas ouverte. Ouvrez-la et ajoutez de nouveau le dossier.</translation>
    </message>
    <message>
        <source>The library is not open. The picture lies in “%@” until Zelto quits.</source>
        <translation>La bibliothèque n’est pas ouverte. L’image reste dans « %@ » jusqu’à ce que vous quittiez Zelto.</translation>
    </message>
    <message>
        <source>The library is open.</source>
        <translation>La bibliothèque est ouverte.</translation>
    </message>
    <message>
        <source>The library then holds both.</source>
        <translation>La bibliothèque contient alors les deux.</translation>
    </message>
    <message>
        <source>The library was closed. Open it and import it again.</source>
        <translation>La bibliothèque a été fermée. Ouvrez-la et importez-le de nouveau.</translation>
    </message>
    <message>
        <source>The library was made by a newer version of the application.</source>
        <translation>La bibliothèque a été créée par une version plus récente de l’application.</translation>
    </message>
    <message>
        <source>The library was made by an older version of the application.</source>
        <translation>La bibliothèque a été créée par une version plus ancienne de l’application.</translation>
    </message>
    <message>
        <source>The library was not moved.</source>
        <translation>La bibliothèque n’a pas été déplacée.</translation>
    </message>
    <message>
        <source>The library was recovered</source>
        <translation>La bibliothèque a été récupérée</translation>
    </message>
    <message>
        <source>The library “%@” can't be created.</source>
        <translation>La bibliothèque « %@ » ne peut pas être créée.</translation>
    </message>
    <message>
        <source>The library “%@” can't be written: %@.</source>
        <translation>La bibliothèque « %@ » ne peut pas être écrite : %@.</translation>
    </message>
    <message>
        <source>The library “%@” is in the trash.</source>
        <translation>La bibliothèque « %@ » est dans la corbeille.</translation>
    </message>
    <message>
        <source>The library “%@” is in use by another Zelto.</source>
        <translation>La bibliothèque « %@ » est utilisée par un autre Zelto.</translation>
    </message>
    <message>
        <source>The library “%@” is not there any more.</source>
        <translation>La bibliothèque « %@ » n’est plus là.</translation>
    </message>
    <message>
        <source>The library's database cannot be opened.</source>
        <translation>La base de données de la bibliothèque ne peut pas être ouverte.</translation>
    </message>
    <message>
        <source>The library's database is damaged from its first byte.</source>
        <translation>La base de données de la bibliothèque est endommagée dès son premier octet.</translation>
    </message>
    <message>
        <source>The library's database is damaged.</source>
        <translation>La base de données de la bibliothèque est endommagée.</translation>
    </message>
    <message>
        <source>The library's database is damaged: %@</source>
        <translation>La base de données de la bibliothèque est endommagée : %@</translation>
    </message>
    <message>
        <source>The library's database reported an error.</source>
        <translation>La base de données de la bibliothèque a signalé une erreur.</translation>
    </message>
    <message>
        <source>The library, unless another one was chosen; ~/.local/share without the variable.</source>
        <translation>La bibliothèque, sauf si une autre a été choisie ; ~/.local/share sans la variable.</translation>
    </message>
    <message>
        <source>The live folder is not in the sidebar any more. Choose another one.</source>
        <translation>Le dossier actif n’est plus dans la barre latérale. Choisissez-en un autre.</translation>
    </message>
    <message>
        <source>The longer side of each size, at most. Everything above is large.</source>
        <translation>Le plus grand côté de chaque taille, au maximum. Tout ce qui est au-dessus est grand.</translation>
    </message>
    <message>
        <source>The method must be “POST”, “PUT” or “PATCH”.</source>
        <translation>La méthode doit être « POST », « PUT » ou « PATCH ».</translation>
    </message>
    <message>
        <source>The name is empty. Please type a name.</source>
        <translation>Le nom est vide. Veuillez saisir un nom.</translation>
    </message>
    <message>
        <source>The name is too long. Please use a shorter name.</source>
        <translation>Le nom est trop long. Veuillez utiliser un nom plus court.</translation>
    </message>
    <message>
        <source>The name must be one line of letters and signs, without “/”.</source>
        <translation>Le nom doit tenir sur une ligne, avec des lettres et des signes, sans « / ».</translation>
    </message>
    <message>
        <source>The network changed meanwhile. Try again.</source>
        <translation>Le réseau a changé entre-temps. Réessayez.</translation>
    </message>
    <message>
        <source>The one to keep</source>
        <translation>Celle à conserver</translation>
    </message>
    <message>
        <source>The original folders will still remain on your disk.</source>
        <translation>Les dossiers d’origine resteront sur votre disque.</translation>
    </message>
    <message>
        <source>The other program did not save “%@”. Save it there as a file, and drop that here.</source>
        <translation>L’autre programme n’a pas enregistré « %@ ». Enregistrez-y le contenu dans un fichier et déposez celui-ci ici.</translation>
    </message>
    <message>
        <source>The page at “%@” names an image on this computer or in its own network (“%@”), so nothing was imported</source>
        <translation>La page à l’adresse « %@ » désigne une image située sur cet ordinateur ou dans son propre réseau (« %@ ») ; rien n’a donc été importé</translation>
    </message>
    <message>
        <source>The page crashed in the browser. Try again, or capture only the visible area.</source>
        <translation>La page a planté dans le navigateur. Réessayez, ou capturez seulement la zone visible.</translation>
    </message>
    <message>
        <source>The page did not load in full; this is what was there.</source>
        <translation>La page ne s’est pas chargée entièrement ; voici ce qui était là.</translation>
    </message>
    <message>
        <source>The page has more elements than layers are useful; %d small ones are on the layers of what they lie in.</source>
        <translation>La page a trop d’éléments pour en faire autant de calques ; %d petits éléments se trouvent sur les calques de ceux qui les contiennent.</translation>
    </message>
    <message>
        <source>The page is being captured.</source>
        <translation>La page est en cours de capture.</translation>
    </message>
    <message>
        <source>The page is longer than %d pixels; what is below was cut off.</source>
        <translation>La page dépasse %d pixels de long ; ce qui est au-dessous a été coupé.</translation>
    </message>
    <message>
        <source>The page sends its visitors around in a circle.</source>
        <translation>La page fait tourner ses visiteurs en rond.</translation>
    </message>
    <message>
        <source>The palette cannot be written to “%@”: %@</source>
        <translation>La palette ne peut pas être écrite dans « %@ » : %@</translation>
    </message>
    <message>
        <source>The password is kept in the desktop's keyring and nowhere else.</source>
        <translation>Le mot de passe est conservé dans le trousseau du bureau et nulle part ailleurs.</translation>
    </message>
    <message>
        <source>The password of your server is not known.</source>
        <translation>Le mot de passe de votre serveur n’est pas connu.</translation>
    </message>
    <message>
        <source>The passwords for “%@” are not known any more. Import its description again in the preferences, under Cloud.</source>
        <translation>Les mots de passe de « %@ » ne sont plus connus. Importez de nouveau sa description dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>The passwords that were entered for it are forgotten, too. What was uploaded stays where it is.</source>
        <translation>Les mots de passe saisis pour lui sont également oubliés. Ce qui a été envoyé reste où il est.</translation>
    </message>
    <message>
        <source>The picture "%@" can't be converted.</source>
        <translation>L’image « %@ » ne peut pas être convertie.</translation>
    </message>
    <message>
        <source>The picture "%@" can't be opened.</source>
        <translation>L’image « %@ » ne peut pas être ouverte.</translation>
    </message>
    <message>
        <source>The picture "%@" could not be drawn: it needs too much memory.</source>
        <translation>L’image « %@ » n’a pas pu être dessinée : elle demande trop de mémoire.</translation>
    </message>
    <message>
        <source>The picture "%@" could not be drawn: it took too long.</source>
        <translation>L’image « %@ » n’a pas pu être dessinée : cela a pris trop de temps.</translation>
    </message>
    <message>
        <source>The picture "%@" could not be drawn: the renderer stopped.</source>
        <translation>L’image « %@ » n’a pas pu être dessinée : le moteur de rendu s’est arrêté.</translation>
    </message>
    <message>
        <source>The picture "%@" was not drawn: that was cancelled.</source>
        <translation>L’image « %@ » n’a pas été dessinée : l’opération a été annulée.</translation>
    </message>
    <message>
        <source>The picture can't be written to “%@”.</source>
        <translation>L’image ne peut pas être écrite dans « %@ ».</translation>
    </message>
    <message>
        <source>The picture in the address is damaged.</source>
        <translation>L’image contenue dans l’adresse est endommagée.</translation>
    </message>
    <message>
        <source>The picture is not in the library yet: Zelto goes on with its import when it opens the library the next time.</source>
        <translation>L’image n’est pas encore dans la bibliothèque : Zelto poursuivra son import à la prochaine ouverture de la bibliothèque.</translation>
    </message>
    <message>
        <source>The picture is not in the library. It lies in “%@”.</source>
        <translation>L’image n’est pas dans la bibliothèque. Elle se trouve dans « %@ ».</translation>
    </message>
    <message>
        <source>The preferences can't be written, so the library would not be found.</source>
        <translation>Les préférences ne peuvent pas être écrites ; la bibliothèque ne serait donc pas retrouvée.</translation>
    </message>
    <message>
        <source>The preferences could not be written (%@).</source>
        <translation>Les préférences n’ont pas pu être écrites (%@).</translation>
    </message>
    <message>
        <source>The preferences, which `zelto defaults` reads and changes; ~/.config without the variable.</source>
        <translation>Les préférences, que `zelto defaults` lit et modifie ; ~/.config sans la variable.</translation>
    </message>
    <message>
        <source>The program "zelto-render" that draws pictures can't be started: %@.</source>
        <translation>Le programme « zelto-render », qui dessine les images, ne peut pas être lancé : %@.</translation>
    </message>
    <message>
        <source>The program "zelto-render" that draws pictures ends as soon as it is started.</source>
        <translation>Le programme « zelto-render », qui dessine les images, se termine dès qu’il est lancé.</translation>
    </message>
    <message>
        <source>The program "zelto-render" that draws pictures is missing; install Zelto again.</source>
        <translation>Le programme « zelto-render », qui dessine les images, est manquant ; réinstallez Zelto.</translation>
    </message>
    <message>
        <source>The project items will still remain inside your library.</source>
        <translation>Les éléments du projet resteront dans votre bibliothèque.</translation>
    </message>
    <message>
        <source>The projects of this folder are empty.</source>
        <translation>Les projets de ce dossier sont vides.</translation>
    </message>
    <message>
        <source>The property list cannot be read.</source>
        <translation>La liste de propriétés est illisible.</translation>
    </message>
    <message>
        <source>The proxy does not lead to %@: %@</source>
        <translation>Le proxy ne mène pas à %@ : %@</translation>
    </message>
    <message>
        <source>The recovered library could not be put in place.</source>
        <translation>La bibliothèque récupérée n’a pas pu être mise en place.</translation>
    </message>
    <message>
        <source>The report could not be removed: %@</source>
        <translation>Le rapport n’a pas pu être supprimé : %@</translation>
    </message>
    <message>
        <source>The report was not sent: %@</source>
        <translation>Le rapport n’a pas été envoyé : %@</translation>
    </message>
    <message>
        <source>The request cannot be carried out.</source>
        <translation>La requête ne peut pas être exécutée.</translation>
    </message>
    <message>
        <source>The request was cancelled.</source>
        <translation>La requête a été annulée.</translation>
    </message>
    <message>
        <source>The same file more than once</source>
        <translation>Le même fichier plusieurs fois</translation>
    </message>
    <message>
        <source>The same file more than once, with one of these digests</source>
        <translation>Le même fichier plusieurs fois, avec l’une de ces empreintes</translation>
    </message>
    <message>
        <source>The search of this smart folder cannot be understood.</source>
        <translation>La recherche de ce dossier intelligent est incompréhensible.</translation>
    </message>
    <message>
        <source>The server answered with an error (%d); this is the page it sent.</source>
        <translation>Le serveur a répondu par une erreur (%d) ; voici la page qu’il a envoyée.</translation>
    </message>
    <message>
        <source>The server broke off the connection.</source>
        <translation>Le serveur a coupé la connexion.</translation>
    </message>
    <message>
        <source>The server can't be spoken with safely.</source>
        <translation>Impossible de communiquer avec le serveur de façon sûre.</translation>
    </message>
    <message>
        <source>The server did not answer in time.</source>
        <translation>Le serveur n’a pas répondu à temps.</translation>
    </message>
    <message>
        <source>The server of the announcements leads to an address that is not encrypted, which Zelto does not go to. Check again later.</source>
        <translation>Le serveur des annonces mène à une adresse non chiffrée, que Zelto ne consulte pas. Vérifiez de nouveau plus tard.</translation>
    </message>
    <message>
        <source>The server of the reports leads to an address that is not encrypted. Nothing was sent.</source>
        <translation>Le serveur des rapports mène à une adresse non chiffrée. Rien n’a été envoyé.</translation>
    </message>
    <message>
        <source>The server says that it has no such page.</source>
        <translation>Le serveur indique qu’il n’a pas cette page.</translation>
    </message>
    <message>
        <source>The server sends on to “%@”, for which the passwords are not meant.</source>
        <translation>Le serveur renvoie vers « %@ », auquel les mots de passe ne sont pas destinés.</translation>
    </message>
    <message>
        <source>The server sends on to “%@”, which is not for the public.</source>
        <translation>Le serveur renvoie vers « %@ », qui n’est pas public.</translation>
    </message>
    <message>
        <source>The server sent a page of text in place of the picture.</source>
        <translation>Le serveur a envoyé une page de texte au lieu de l’image.</translation>
    </message>
    <message>
        <source>The server sent nothing.</source>
        <translation>Le serveur n’a rien envoyé.</translation>
    </message>
    <message>
        <source>The server takes no connections.</source>
        <translation>Le serveur n’accepte aucune connexion.</translation>
    </message>
    <message>
        <source>The server's certificate is not valid, so that nobody can tell whose page it is.</source>
        <translation>Le certificat du serveur n’est pas valide ; on ne peut donc pas savoir à qui appartient la page.</translation>
    </message>
    <message>
        <source>The service did not say where the file is.</source>
        <translation>Le service n’a pas indiqué où se trouve le fichier.</translation>
    </message>
    <message>
        <source>The service that was chosen for uploads is not there any more. Choose another one in the preferences, under Cloud.</source>
        <translation>Le service choisi pour les envois n’existe plus. Choisissez-en un autre dans les préférences, sous Cloud.</translation>
    </message>
    <message>
        <source>The service that was chosen is not there any more. Choose another one.</source>
        <translation>Le service choisi n’existe plus. Choisissez-en un autre.</translation>
    </message>
    <message>
        <source>The sidebar item it was to go to does not exist any more. Import it into another one.</source>
        <translation>L’entrée de la barre latérale prévue n’existe plus. Importez-le dans une autre.</translation>
    </message>
    <message>
        <source>The smart folder looks in the whole library: it finds %@, and shows %@ of those that are shown here.</source>
        <translation>Le dossier intelligent cherche dans toute la bibliothèque : il trouve %@, dont %@ parmi ceux affichés ici.</translation>
    </message>
    <message>
        <source>The smart folder looks in the whole library: it finds %@; %@ are shown here.</source>
        <translation>Le dossier intelligent cherche dans toute la bibliothèque : il trouve %@ ; %@ sont affichés ici.</translation>
    </message>
    <message>
        <source>The smart folder looks in the whole library: it finds %@; 1 is shown here.</source>
        <translation>Le dossier intelligent cherche dans toute la bibliothèque : il trouve %@ ; 1 est affiché ici.</translation>
    </message>
    <message>
        <source>The stored password cannot be reached: there is no keyring.</source>
        <translation>Le mot de passe enregistré est inaccessible : il n’y a pas de trousseau.</translation>
    </message>
    <message>
        <source>The system has too few watches for all folders, so that this one is looked at in intervals. Raise fs.inotify.max_user_watches to %d.</source>
        <translation>Le système n’a pas assez de surveillances pour tous les dossiers ; celui-ci est donc examiné à intervalles. Portez fs.inotify.max_user_watches à %d.</translation>
    </message>
    <message>
        <source>The tags of “%@” could not be written to the file; the library keeps them.</source>
        <translation>Les mots-clés de « %@ » n’ont pas pu être écrits dans le fichier ; la bibliothèque les conserve.</translation>
    </message>
    <message>
        <source>The tags or the notes of a file are too long for it. Use fewer or shorter ones.</source>
        <translation>Les mots-clés ou les remarques d’un fichier sont trop longs pour lui. Utilisez-en moins ou de plus courts.</translation>
    </message>
    <message>
        <source>The template “%@” holds nothing that can be an asset</source>
        <translation>Le modèle « %@ » ne contient rien qui puisse devenir un élément</translation>
    </message>
    <message>
        <source>The trash holds too many files named “%@”. Empty it and try again.</source>
        <translation>La corbeille contient trop de fichiers nommés « %@ ». Videz-la et réessayez.</translation>
    </message>
    <message>
        <source>The two are the same in every pixel.</source>
        <translation>Les deux sont identiques au pixel près.</translation>
    </message>
    <message>
        <source>The value cannot be archived.</source>
        <translation>La valeur ne peut pas être archivée.</translation>
    </message>
    <message>
        <source>The value cannot be written as a property list.</source>
        <translation>La valeur ne peut pas être écrite sous forme de liste de propriétés.</translation>
    </message>
    <message>
        <source>The value of “%@” cannot be sent.</source>
        <translation>La valeur de « %@ » ne peut pas être envoyée.</translation>
    </message>
    <message>
        <source>Their files come back into the project “Recovered”.</source>
        <translation>Leurs fichiers reviennent dans le projet « Récupérés ».</translation>
    </message>
    <message>
        <source>Their files stay where they are, and are followed as they change. What many files leave at once is asked about, and what is on a disk that is away is kept until it is back. Keywords, tags and thumbnails are as set for imports.</source>
        <translation>Leurs fichiers restent où ils sont et sont suivis lorsqu’ils changent. Zelto demande confirmation si beaucoup de fichiers disparaissent à la fois, et garde ce qui est sur un disque absent jusqu’à son retour. Mots-clés et vignettes suivent les paramètres d’import.</translation>
    </message>
    <message>
        <source>There are %d services already.</source>
        <translation>Il y a déjà %d services.</translation>
    </message>
    <message>
        <source>There are no presets. Make one below.</source>
        <translation>Il n’y a aucun préréglage. Créez-en un ci-dessous.</translation>
    </message>
    <message>
        <source>There are no templates yet. Add files that you begin with again and again, or open one whose name ends in .zttemplate with Zelto.</source>
        <translation>Il n’y a pas encore de modèles. Ajoutez les fichiers qui vous servent sans cesse de point de départ, ou ouvrez avec Zelto un fichier dont le nom se termine par .zttemplate.</translation>
    </message>
    <message>
        <source>There are too many brackets in brackets.</source>
        <translation>Il y a trop de crochets imbriqués.</translation>
    </message>
    <message>
        <source>There is a file of that name already. Share it again.</source>
        <translation>Il existe déjà un fichier de ce nom. Partagez-le de nouveau.</translation>
    </message>
    <message>
        <source>There is a file “%@” already.</source>
        <translation>Il existe déjà un fichier « %@ ».</translation>
    </message>
    <message>
        <source>There is a template “%@” already. Rename the new one, or remove the other one, and open it again.</source>
        <translation>Il existe déjà un modèle « %@ ». Renommez le nouveau ou retirez l’autre, puis ouvrez-le de nouveau.</translation>
    </message>
    <message>
        <source>There is a “\” that means nothing.</source>
        <translation>Il y a un « \ » qui ne signifie rien.</translation>
    </message>
    <message>
        <source>There is half a character in a text.</source>
        <translation>Il y a un demi-caractère dans un texte.</translation>
    </message>
    <message>
        <source>There is no "%@" in this library.</source>
        <translation>Il n’y a pas de « %@ » dans cette bibliothèque.</translation>
    </message>
    <message>
        <source>There is no WebDAV folder at “%@”.</source>
        <translation>Il n’y a aucun dossier WebDAV à l’adresse « %@ ».</translation>
    </message>
    <message>
        <source>There is no backup of this library in that folder.</source>
        <translation>Ce dossier ne contient aucune sauvegarde de cette bibliothèque.</translation>
    </message>
    <message>
        <source>There is no connection to the internet.</source>
        <translation>Il n’y a pas de connexion à Internet.</translation>
    </message>
    <message>
        <source>There is no connection to the network.</source>
        <translation>Il n’y a pas de connexion au réseau.</translation>
    </message>
    <message>
        <source>There is no display here that could be captured. Start Zelto within a desktop session.</source>
        <translation>Il n’y a ici aucun affichage à capturer. Démarrez Zelto dans une session de bureau.</translation>
    </message>
    <message>
        <source>There is no folder at “%@”. Connect its drive, or put the folder back.</source>
        <translation>Il n’y a aucun dossier à l’emplacement « %@ ». Connectez son disque, ou remettez le dossier en place.</translation>
    </message>
    <message>
        <source>There is no folder to download into.</source>
        <translation>Il n’y a aucun dossier où télécharger.</translation>
    </message>
    <message>
        <source>There is no folder “%@” for backups.</source>
        <translation>Il n’y a pas de dossier « %@ » pour les sauvegardes.</translation>
    </message>
    <message>
        <source>There is no folder “%@”. Choose another one, or look whether its disk is there.</source>
        <translation>Il n’y a aucun dossier « %@ ». Choisissez-en un autre, ou vérifiez que son disque est présent.</translation>
    </message>
    <message>
        <source>There is no format with the number %d.</source>
        <translation>Il n’y a aucun format portant le numéro %d.</translation>
    </message>
    <message>
        <source>There is no keyring in which a password could be kept safely.</source>
        <translation>Il n’y a aucun trousseau où conserver un mot de passe en sécurité.</translation>
    </message>
    <message>
        <source>There is no library at “%@”.</source>
        <translation>Il n’y a aucune bibliothèque à l’emplacement « %@ ».</translation>
    </message>
    <message>
        <source>There is no library database at this place.</source>
        <translation>Il n’y a aucune base de données de bibliothèque à cet emplacement.</translation>
    </message>
    <message>
        <source>There is no library to import into.</source>
        <translation>Il n’y a aucune bibliothèque où importer.</translation>
    </message>
    <message>
        <source>There is no open library to draw.</source>
        <translation>Il n’y a aucune bibliothèque ouverte à dessiner.</translation>
    </message>
    <message>
        <source>There is no picture of it. Export it as it is.</source>
        <translation>Il n’en existe pas d’image. Exportez-le tel quel.</translation>
    </message>
    <message>
        <source>There is no picture or file on the clipboard</source>
        <translation>Il n’y a ni image ni fichier dans le presse-papiers</translation>
    </message>
    <message>
        <source>There is no picture to write.</source>
        <translation>Il n’y a aucune image à écrire.</translation>
    </message>
    <message>
        <source>There is no room left for attributes. Use fewer or shorter tags and notes, or free some space.</source>
        <translation>Il n’y a plus de place pour les attributs. Utilisez des mots-clés et des remarques moins nombreux ou plus courts, ou libérez de l’espace.</translation>
    </message>
    <message>
        <source>There is no screen that could be captured</source>
        <translation>Il n’y a aucun écran à capturer</translation>
    </message>
    <message>
        <source>There is no server named %@.</source>
        <translation>Il n’y a aucun serveur nommé %@.</translation>
    </message>
    <message>
        <source>There is no such file.</source>
        <translation>Ce fichier n’existe pas.</translation>
    </message>
    <message>
        <source>There is no such file. Check its name.</source>
        <translation>Ce fichier n’existe pas. Vérifiez son nom.</translation>
    </message>
    <message>
        <source>There is no such folder. Check its name.</source>
        <translation>Ce dossier n’existe pas. Vérifiez son nom.</translation>
    </message>
    <message>
        <source>There is no such server: see whether the address is written right.</source>
        <translation>Ce serveur n’existe pas : vérifiez que l’adresse est bien écrite.</translation>
    </message>
    <message>
        <source>There is no token “%@”. Put it in quotes to find it as a text.</source>
        <translation>Il n’y a pas de token « %@ ». Mettez-le entre guillemets pour le rechercher comme texte.</translation>
    </message>
    <message>
        <source>There is no way to that server: see whether the network is there.</source>
        <translation>Ce serveur est injoignable : vérifiez que le réseau fonctionne.</translation>
    </message>
    <message>
        <source>There is no window to take · Esc leaves</source>
        <translation>Aucune fenêtre à capturer · Échap quitte</translation>
    </message>
    <message>
        <source>There is not enough memory for a picture of this page. Capture only the visible area, or a smaller width.</source>
        <translation>Il n’y a pas assez de mémoire pour une image de cette page. Capturez seulement la zone visible, ou une largeur plus petite.</translation>
    </message>
    <message>
        <source>There is not enough memory to convert it.</source>
        <translation>Il n’y a pas assez de mémoire pour le convertir.</translation>
    </message>
    <message>
        <source>There is not enough memory to show it.</source>
        <translation>Il n’y a pas assez de mémoire pour l’afficher.</translation>
    </message>
    <message>
        <source>There is not enough memory.</source>
        <translation>Il n’y a pas assez de mémoire.</translation>
    </message>
    <message>
        <source>There is not enough room on the disk to save.</source>
        <translation>Il n’y a pas assez de place sur le disque pour enregistrer.</translation>
    </message>
    <message>
        <source>There is nothing between the brackets.</source>
        <translation>Il n’y a rien entre les parenthèses.</translation>
    </message>
    <message>
        <source>There is nothing between the quotes.</source>
        <translation>Il n’y a rien entre les guillemets.</translation>
    </message>
    <message>
        <source>There is nothing here.</source>
        <translation>Il n’y a rien ici.</translation>
    </message>
    <message>
        <source>There is nothing left to compare it with.</source>
        <translation>Il ne reste rien à quoi la comparer.</translation>
    </message>
    <message>
        <source>There is too little free space in “%@”.</source>
        <translation>Il n’y a pas assez d’espace libre dans « %@ ».</translation>
    </message>
    <message>
        <source>There was an error building up the data file.</source>
        <translation>Une erreur s’est produite lors de la construction du fichier de données.</translation>
    </message>
    <message>
        <source>These files were not imported, or not wholly</source>
        <translation>Ces fichiers n’ont pas été importés, ou pas entièrement</translation>
    </message>
    <message>
        <source>These keys can't be taken from other programs. Choose keys with Ctrl, Alt or Super, or a function key.</source>
        <translation>Ces touches ne peuvent pas être retirées aux autres programmes. Choisissez des touches avec Ctrl, Alt ou Super, ou une touche de fonction.</translation>
    </message>
    <message>
        <source>They may be what is left of imports that were cut off, or belong to items that the library lost. Zelto can take them back into the project “Recovered”, where you can look at them, or remove them with the files in them.</source>
        <translation>Il peut s’agir de restes d’imports interrompus, ou d’éléments que la bibliothèque a perdus. Zelto peut les reprendre dans le projet « Récupérés », où vous pourrez les examiner, ou les supprimer avec les fichiers qu’ils contiennent.</translation>
    </message>
    <message>
        <source>They stay as they are in %@. What is in them is damaged, or of no kind that can be imported.</source>
        <translation>Ils restent tels quels dans %@. Leur contenu est endommagé ou d’un type qui ne peut pas être importé.</translation>
    </message>
    <message>
        <source>They travel with a file, and an import takes those it brings.</source>
        <translation>Ils accompagnent le fichier, et un import reprend ceux qu’il apporte.</translation>
    </message>
    <message>
        <source>They were deleted, or moved to where Zelto does not look. If you remove them from the library, they leave their projects too. If a drive is not connected, keep them: they are there again when it is.</source>
        <translation>Ils ont été supprimés, ou déplacés là où Zelto ne regarde pas. Si vous les retirez de la bibliothèque, ils quittent aussi leurs projets. Si un disque n’est pas connecté, gardez-les : ils seront de nouveau là lorsqu’il le sera.</translation>
    </message>
    <message>
        <source>This Zelto was built without an address that announces new versions. Look where you got it.</source>
        <translation>Ce Zelto a été compilé sans adresse annonçant les nouvelles versions. Cherchez là où vous l’avez obtenu.</translation>
    </message>
    <message>
        <source>This bracket closes nothing.</source>
        <translation>Cette parenthèse ne ferme rien.</translation>
    </message>
    <message>
        <source>This bracket is not closed.</source>
        <translation>Cette parenthèse n’est pas fermée.</translation>
    </message>
    <message>
        <source>This desktop lets no program choose a part of its screen. Choose it in the desktop's own dialog, which Capture Area opens.</source>
        <translation>Ce bureau ne laisse aucun programme choisir une partie de son écran. Choisissez-la dans la boîte de dialogue du bureau, qu’ouvre « Capturer : Zone ».</translation>
    </message>
    <message>
        <source>This desktop offers no such service. Install xdg-desktop-portal and the part of it for your desktop, as xdg-desktop-portal-gnome, -kde or -wlr, and log in again.</source>
        <translation>Ce bureau n’offre pas ce service. Installez xdg-desktop-portal et sa partie pour votre bureau, comme xdg-desktop-portal-gnome, -kde ou -wlr, puis rouvrez votre session.</translation>
    </message>
    <message>
        <source>This display lets no program take keys. %@</source>
        <translation>Cet affichage ne laisse aucun programme prendre des touches. %@</translation>
    </message>
    <message>
        <source>This file cannot be read.</source>
        <translation>Ce fichier est illisible.</translation>
    </message>
    <message>
        <source>This file cannot be shown.</source>
        <translation>Ce fichier ne peut pas être affiché.</translation>
    </message>
    <message>
        <source>This file is too large to be a description.</source>
        <translation>Ce fichier est trop grand pour être une description.</translation>
    </message>
    <message>
        <source>This format is not known; only 1 is. A newer version of Zelto may know it.</source>
        <translation>Ce format n’est pas connu ; seul 1 l’est. Une version plus récente de Zelto le connaît peut-être.</translation>
    </message>
    <message>
        <source>This is more than can be searched at once; from here on it is left out.</source>
        <translation>C’est plus que ce qui peut être recherché à la fois ; le reste, à partir d’ici, est ignoré.</translation>
    </message>
    <message>
        <source>This is no text in UTF-8.</source>
        <translation>Ce n’est pas un texte en UTF-8.</translation>
    </message>
    <message>
        <source>This is not the address of an upload; it begins with https:// and has no placeholders.</source>
        <translation>Ce n’est pas l’adresse d’un envoi ; elle commence par https:// et n’a pas d’emplacements à remplir.</translation>
    </message>
    <message>
        <source>This is not the answer that Zelto is waiting for.</source>
        <translation>Ce n’est pas la réponse que Zelto attend.</translation>
    </message>
    <message>
        <source>This is the whole report. It says where in the program it happened, and nothing of your library. Copy or save it to pass it on.</source>
        <translation>Voici le rapport complet. Il indique où l’incident s’est produit dans le programme, et rien de votre bibliothèque. Copiez-le ou enregistrez-le pour le transmettre.</translation>
    </message>
    <message>
        <source>This is the whole report. It says where in the program it happened, and nothing of your library. It is sent only if you send it.</source>
        <translation>Voici le rapport complet. Il indique où l’incident s’est produit dans le programme, et rien de votre bibliothèque. Il n’est envoyé que si vous l’envoyez.</translation>
    </message>
    <message>
        <source>This key can't be used. Take a letter, a digit or a function key.</source>
        <translation>Cette touche ne convient pas. Prenez une lettre, un chiffre ou une touche de fonction.</translation>
    </message>
    <message>
        <source>This keyboard has no %@. Choose other keys.</source>
        <translation>Ce clavier n’a pas de %@. Choisissez d’autres touches.</translation>
    </message>
    <message>
        <source>This live folder is off: Enable in its menu has it looked at again.</source>
        <translation>Ce dossier actif est désactivé : « Activer » dans son menu le fait examiner de nouveau.</translation>
    </message>
    <message>
        <source>This live folder is off: what is in “%@” is neither looked at nor shown.</source>
        <translation>Ce dossier actif est désactivé : le contenu de « %@ » n’est ni examiné ni affiché.</translation>
    </message>
    <message>
        <source>This month</source>
        <translation>Ce mois-ci</translation>
    </message>
    <message>
        <source>This page has too many elements to be captured in layers. Capture it as a picture.</source>
        <translation>Cette page a trop d’éléments pour être capturée en calques. Capturez-la comme image.</translation>
    </message>
    <message>
        <source>This quote is not closed.</source>
        <translation>Ce guillemet n’est pas fermé.</translation>
    </message>
    <message>
        <source>This smart folder has nothing to search for.</source>
        <translation>Ce dossier intelligent n’a rien à rechercher.</translation>
    </message>
    <message>
        <source>This system cannot keep programs that draw pictures away from your files.</source>
        <translation>Ce système ne peut pas tenir à l’écart de vos fichiers les programmes qui dessinent des images.</translation>
    </message>
    <message>
        <source>This system has neither Landlock nor seccomp to keep what reads it from your files. Use a Linux kernel that has them.</source>
        <translation>Ce système n’a ni Landlock ni seccomp pour tenir à l’écart de vos fichiers ce qui le lit. Utilisez un noyau Linux qui les possède.</translation>
    </message>
    <message>
        <source>This year</source>
        <translation>Cette année</translation>
    </message>
    <message>
        <source>Thumbnail size</source>
        <translation>Taille des vignettes</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titre</translation>
    </message>
    <message>
        <source>Title contains the text</source>
        <translation>Le titre contient le texte</translation>
    </message>
    <message>
        <source>Title contains “%@”</source>
        <translation>Le titre contient « %@ »</translation>
    </message>
    <message>
        <source>Today</source>
        <translation>Aujourd’hui</translation>
    </message>
    <message>
        <source>Today, %@</source>
        <translation>Aujourd’hui, %@</translation>
    </message>
    <message>
        <source>Tolerance</source>
        <translation>Tolérance</translation>
    </message>
    <message>
        <source>Too many brackets stand in these; what they hold is left out.</source>
        <translation>Trop de parenthèses sont imbriquées dans celles-ci ; leur contenu est ignoré.</translation>
    </message>
    <message>
        <source>Too many requests came from the browser at once; some were left out. Try again in a few seconds.</source>
        <translation>Trop de requêtes sont venues du navigateur à la fois ; certaines ont été ignorées. Réessayez dans quelques secondes.</translation>
    </message>
    <message>
        <source>TrueType font</source>
        <translation>Police TrueType</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Réessayer</translation>
    </message>
    <message>
        <source>Try again in %d minutes.</source>
        <translation>Réessayez dans %d minutes.</translation>
    </message>
    <message>
        <source>Try again in a minute.</source>
        <translation>Réessayez dans une minute.</translation>
    </message>
    <message>
        <source>Try again later, or look whether the host in the preferences is the right one.</source>
        <translation>Réessayez plus tard, ou vérifiez que l’hôte indiqué dans les préférences est le bon.</translation>
    </message>
    <message>
        <source>Try again later.</source>
        <translation>Réessayez plus tard.</translation>
    </message>
    <message>
        <source>Try again.</source>
        <translation>Réessayez.</translation>
    </message>
    <message>
        <source>Two pictures of the same size in pixels show their difference</source>
        <translation>Deux images de mêmes dimensions en pixels montrent leur différence</translation>
    </message>
    <message>
        <source>Type an address and press Enter to see the page.</source>
        <translation>Saisissez une adresse et appuyez sur Entrée pour voir la page.</translation>
    </message>
    <message>
        <source>Type the address of a web page.</source>
        <translation>Saisissez l’adresse d’une page web.</translation>
    </message>
    <message>
        <source>USAGE</source>
        <translation>UTILISATION</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Undo %@</source>
        <translation>Annuler : %@</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Inconnu</translation>
    </message>
    <message>
        <source>Unlock it and try again.</source>
        <translation>Déverrouillez-le et réessayez.</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Sans titre</translation>
    </message>
    <message>
        <source>Up</source>
        <translation>Haut</translation>
    </message>
    <message>
        <source>Update Search</source>
        <translation>Mettre à jour la recherche</translation>
    </message>
    <message>
        <source>Updating your library</source>
        <translation>Mise à jour de votre bibliothèque</translation>
    </message>
    <message>
        <source>Upload cancelled</source>
        <translation>Envoi annulé</translation>
    </message>
    <message>
        <source>Upload done, url copied to clipboard!</source>
        <translation>Envoi terminé, URL copiée dans le presse-papiers !</translation>
    </message>
    <message>
        <source>Uploaded %d files to the cloud!</source>
        <translation>%d fichiers envoyés dans le cloud !</translation>
    </message>
    <message>
        <source>Uploading to %@</source>
        <translation>Envoi vers %@</translation>
    </message>
    <message>
        <source>Uploads what is selected and copies the link. A preset dropped here exports it first. A right click shows the latest uploads.</source>
        <translation>Envoie la sélection et copie le lien. Un préréglage déposé ici l’exporte d’abord. Un clic droit affiche les derniers envois.</translation>
    </message>
    <message>
        <source>Use It for Sharin&amp;g</source>
        <translation>Utiliser pour parta&amp;ger</translation>
    </message>
    <message>
        <source>Use This Folder</source>
        <translation>Utiliser ce dossier</translation>
    </message>
    <message>
        <source>Use an address that begins with https://.</source>
        <translation>Utilisez une adresse qui commence par https://.</translation>
    </message>
    <message>
        <source>Use the existing item here</source>
        <translation>Utiliser ici l’élément existant</translation>
    </message>
    <message>
        <source>Use the folder that is in the place of this one</source>
        <translation>Utiliser le dossier qui se trouve à la place de celui-ci</translation>
    </message>
    <message>
        <source>Username or Password are invalid</source>
        <translation>Le nom d’utilisateur ou le mot de passe est incorrect</translation>
    </message>
    <message>
        <source>Verify Library…</source>
        <translation>Vérifier la bibliothèque…</translation>
    </message>
    <message>
        <source>View</source>
        <translation>Affichage</translation>
    </message>
    <message>
        <source>Violet</source>
        <translation>Violet</translation>
    </message>
    <message>
        <source>Visible area</source>
        <translation>Zone visible</translation>
    </message>
    <message>
        <source>Wait until it has finished, then try again.</source>
        <translation>Attendez qu’il ait terminé, puis réessayez.</translation>
    </message>
    <message>
        <source>Wait until it is done, then try again.</source>
        <translation>Attendez la fin de l’opération, puis réessayez.</translation>
    </message>
    <message>
        <source>Wait until tomorrow or upgrade your CloudApp account.</source>
        <translation>Attendez demain ou passez à une offre supérieure de CloudApp.</translation>
    </message>
    <message>
        <source>Waiting for the keyring…</source>
        <translation>En attente du trousseau…</translation>
    </message>
    <message>
        <source>Waiting for you to allow it in the web browser…</source>
        <translation>En attente de votre autorisation dans le navigateur web…</translation>
    </message>
    <message>
        <source>Waveform audio</source>
        <translation>Audio WAV</translation>
    </message>
    <message>
        <source>Web Page…</source>
        <translation>Page web…</translation>
    </message>
    <message>
        <source>Web page</source>
        <translation>Page web</translation>
    </message>
    <message>
        <source>Web pages cannot be captured now. Restart Zelto, and try again.</source>
        <translation>Les pages web ne peuvent pas être capturées maintenant. Redémarrez Zelto et réessayez.</translation>
    </message>
    <message>
        <source>WebM movie</source>
        <translation>Film WebM</translation>
    </message>
    <message>
        <source>WebP image</source>
        <translation>Image WebP</translation>
    </message>
    <message>
        <source>WebP, HEIC, AVIF, JPEG XL, and Sketch documents that are single files.</source>
        <translation>WebP, HEIC, AVIF, JPEG XL et documents Sketch en un seul fichier.</translation>
    </message>
    <message>
        <source>What a description says</source>
        <translation>Ce que dit une description</translation>
    </message>
    <message>
        <source>What a page sent is too long. Choose fewer images.</source>
        <translation>Ce qu’une page a envoyé est trop long. Choisissez moins d’images.</translation>
    </message>
    <message>
        <source>What came is no announcement of versions. If you are in a network that asks for a login first, log in and check again.</source>
        <translation>Ce qui a été reçu n’est pas une annonce de versions. Si votre réseau demande d’abord de s’identifier, identifiez-vous, puis vérifiez de nouveau.</translation>
    </message>
    <message>
        <source>What is captured</source>
        <translation>Ce qui est capturé</translation>
    </message>
    <message>
        <source>What is left of an import cannot be read: %@.</source>
        <translation>Ce qui reste d’un import est illisible : %@.</translation>
    </message>
    <message>
        <source>What is mounted there is out of reach. Connect its drive again.</source>
        <translation>Ce qui est monté à cet endroit est hors d’atteinte. Reconnectez son disque.</translation>
    </message>
    <message>
        <source>What is searched for</source>
        <translation>Ce qui est recherché</translation>
    </message>
    <message>
        <source>What is selected in the sidebar is empty.</source>
        <translation>La sélection de la barre latérale est vide.</translation>
    </message>
    <message>
        <source>What is to be sent cannot be read.</source>
        <translation>Ce qui doit être envoyé est illisible.</translation>
    </message>
    <message>
        <source>What was counted</source>
        <translation>Ce qui a été compté</translation>
    </message>
    <message>
        <source>What was found</source>
        <translation>Ce qui a été trouvé</translation>
    </message>
    <message>
        <source>What was imported cannot be noted in %@: %@.</source>
        <translation>Ce qui a été importé ne peut pas être noté dans %@ : %@.</translation>
    </message>
    <message>
        <source>What was imported cannot be read from %@: %@.</source>
        <translation>Ce qui a été importé ne peut pas être lu dans %@ : %@.</translation>
    </message>
    <message>
        <source>What was imported could not be looked up: %@</source>
        <translation>Ce qui a été importé n’a pas pu être retrouvé : %@</translation>
    </message>
    <message>
        <source>What was imported was deleted since.</source>
        <translation>Ce qui a été importé a été supprimé depuis.</translation>
    </message>
    <message>
        <source>What you capture of the screen comes here.</source>
        <translation>Ce que vous capturez à l’écran arrive ici.</translation>
    </message>
    <message>
        <source>What “%@” looks like is not known yet. Try again in a moment.</source>
        <translation>On ne sait pas encore à quoi ressemble « %@ ». Réessayez dans un instant.</translation>
    </message>
    <message>
        <source>When Zelto ends unexpectedly it keeps a report, and shows it when it is opened again. The last five are kept. A report has nothing of your library, and is sent only if you send it.</source>
        <translation>Lorsque Zelto se termine de façon inattendue, il conserve un rapport et l’affiche à sa réouverture. Les cinq derniers sont conservés. Un rapport ne contient rien de votre bibliothèque et n’est envoyé que si vous l’envoyez.</translation>
    </message>
    <message>
        <source>Where backups are put; best on another disk</source>
        <translation>Emplacement des sauvegardes ; de préférence sur un autre disque</translation>
    </message>
    <message>
        <source>Where everything is kept that the program writes.</source>
        <translation>Emplacement de tout ce que le programme écrit.</translation>
    </message>
    <message>
        <source>Whole Screen</source>
        <translation>Tout l’écran</translation>
    </message>
    <message>
        <source>Whole page</source>
        <translation>Page entière</translation>
    </message>
    <message>
        <source>Whole scr&amp;een</source>
        <translation>É&amp;cran entier</translation>
    </message>
    <message>
        <source>Wider</source>
        <translation>Plus large</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Largeur</translation>
    </message>
    <message>
        <source>Width and height</source>
        <translation>Largeur et hauteur</translation>
    </message>
    <message>
        <source>Width of the page in pixels</source>
        <translation>Largeur de la page en pixels</translation>
    </message>
    <message>
        <source>Window</source>
        <translation>Fenêtre</translation>
    </message>
    <message>
        <source>Window to capture</source>
        <translation>Fenêtre à capturer</translation>
    </message>
    <message>
        <source>Windows icon image</source>
        <translation>Image d’icône Windows</translation>
    </message>
    <message>
        <source>With “raw” there is no form: leave out “file” and “fields”.</source>
        <translation>Avec « raw », il n’y a pas de formulaire : omettez « file » et « fields ».</translation>
    </message>
    <message>
        <source>Without a command the window opens, with the files that are named. A command does one thing and exits; when a window has the library open, it runs in the window's process, so that two processes never write one library.</source>
        <translation>Sans commande, la fenêtre s’ouvre avec les fichiers indiqués. Une commande fait une seule chose, puis se termine ; si une fenêtre a ouvert la bibliothèque, elle s’exécute dans le processus de cette fenêtre, afin que deux processus n’écrivent jamais dans une même bibliothèque.</translation>
    </message>
    <message>
        <source>Without a rating: %@</source>
        <translation>Sans note : %@</translation>
    </message>
    <message>
        <source>Without a tag: %@</source>
        <translation>Sans mot-clé : %@</translation>
    </message>
    <message>
        <source>Without its window Zelto takes no pictures of the screen.</source>
        <translation>Sans sa fenêtre, Zelto ne prend pas d’images de l’écran.</translation>
    </message>
    <message>
        <source>Word document</source>
        <translation>Document Word</translation>
    </message>
    <message>
        <source>Would you like to import the following duplicate image?</source>
        <translation>Voulez-vous importer l’image suivante, qui est un doublon ?</translation>
    </message>
    <message>
        <source>Write &lt;, = or &gt; behind “%@”, and then what to compare with.</source>
        <translation>Écrivez &lt;, = ou &gt; après « %@ », puis la valeur à comparer.</translation>
    </message>
    <message>
        <source>Writing notes…</source>
        <translation>Écriture des remarques…</translation>
    </message>
    <message>
        <source>Writing the file…</source>
        <translation>Écriture du fichier…</translation>
    </message>
    <message>
        <source>Writing the license…</source>
        <translation>Écriture de la licence…</translation>
    </message>
    <message>
        <source>Writing the source…</source>
        <translation>Écriture de la source…</translation>
    </message>
    <message>
        <source>XML document</source>
        <translation>Document XML</translation>
    </message>
    <message>
        <source>Yesterday</source>
        <translation>Hier</translation>
    </message>
    <message>
        <source>Yesterday, %@</source>
        <translation>Hier, %@</translation>
    </message>
    <message>
        <source>You can close this tab and go back to Zelto.</source>
        <translation>Vous pouvez fermer cet onglet et revenir à Zelto.</translation>
    </message>
    <message>
        <source>You have %@.</source>
        <translation>Vous avez %@.</translation>
    </message>
    <message>
        <source>You have exceded your maximum daily upload limit</source>
        <translation>Vous avez dépassé votre limite d’envoi quotidienne</translation>
    </message>
    <message>
        <source>You have no permission to read it. Change its permissions and import it again.</source>
        <translation>Vous n’avez pas la permission de le lire. Modifiez ses permissions et importez-le de nouveau.</translation>
    </message>
    <message>
        <source>You may not change its folder. Change the folder's permissions, and try again.</source>
        <translation>Vous n’avez pas la permission de modifier son dossier. Changez les permissions du dossier et réessayez.</translation>
    </message>
    <message>
        <source>You may not write into “%@”. Change its permissions, or choose another folder.</source>
        <translation>Vous n’avez pas la permission d’écrire dans « %@ ». Modifiez ses permissions, ou choisissez un autre dossier.</translation>
    </message>
    <message>
        <source>You may not write to the files there. Change their permissions to let their tags travel with them.</source>
        <translation>Vous n’avez pas la permission d’y écrire dans les fichiers. Modifiez leurs permissions pour que leurs mots-clés les accompagnent.</translation>
    </message>
    <message>
        <source>Your Dropbox is full.</source>
        <translation>Votre Dropbox est plein.</translation>
    </message>
    <message>
        <source>Your desktop shows no status icons. The commands are in the menu, and as “zelto snap area”.</source>
        <translation>Votre bureau n’affiche pas d’icônes d’état. Les commandes se trouvent dans le menu, et sous « zelto snap area ».</translation>
    </message>
    <message>
        <source>Your desktop shows status icons. The same commands are in the menu, and as “zelto snap area”.</source>
        <translation>Votre bureau affiche des icônes d’état. Les mêmes commandes se trouvent dans le menu, et sous « zelto snap area ».</translation>
    </message>
    <message>
        <source>Your server does not accept the user name and the password.</source>
        <translation>Votre serveur n’accepte pas le nom d’utilisateur et le mot de passe.</translation>
    </message>
    <message>
        <source>Your server is full.</source>
        <translation>Votre serveur est plein.</translation>
    </message>
    <message>
        <source>Your server needs the name of a user.</source>
        <translation>Votre serveur demande un nom d’utilisateur.</translation>
    </message>
    <message>
        <source>Your share of the disk is used up. Make room there, and try again.</source>
        <translation>Votre part du disque est épuisée. Libérez-y de l’espace, puis réessayez.</translation>
    </message>
    <message>
        <source>ZIP archive</source>
        <translation>Archive ZIP</translation>
    </message>
    <message>
        <source>Zelto %@ is the newest version.</source>
        <translation>Zelto %@ est la version la plus récente.</translation>
    </message>
    <message>
        <source>Zelto %@ is there</source>
        <translation>Zelto %@ est disponible</translation>
    </message>
    <message>
        <source>Zelto %@ is there; this is %@.</source>
        <translation>Zelto %@ est disponible ; vous utilisez %@.</translation>
    </message>
    <message>
        <source>Zelto can copy everything that can still be read into a new store. The damaged one is kept beside it.</source>
        <translation>Zelto peut copier tout ce qui est encore lisible dans une nouvelle base de données. Celle qui est endommagée est conservée à côté.</translation>
    </message>
    <message>
        <source>Zelto can quit, open again and copy everything that can still be read into a new store. The damaged one is kept beside it. Until then some items cannot be shown.</source>
        <translation>Zelto peut quitter, se rouvrir et copier tout ce qui est encore lisible dans une nouvelle base de données. Celle qui est endommagée est conservée à côté. D’ici là, certains éléments ne peuvent pas être affichés.</translation>
    </message>
    <message>
        <source>Zelto could not look for new versions</source>
        <translation>Zelto n’a pas pu rechercher de nouvelles versions</translation>
    </message>
    <message>
        <source>Zelto does not look for new versions</source>
        <translation>Zelto ne recherche pas de nouvelles versions</translation>
    </message>
    <message>
        <source>Zelto ended before all files were in the library. It can go on with those that are missing. What is in the library stays there either way.</source>
        <translation>Zelto s’est terminé avant que tous les fichiers soient dans la bibliothèque. Il peut reprendre avec ceux qui manquent. Ce qui est dans la bibliothèque y reste dans tous les cas.</translation>
    </message>
    <message>
        <source>Zelto ended unexpectedly</source>
        <translation>Zelto s’est terminé de façon inattendue</translation>
    </message>
    <message>
        <source>Zelto has the library in use but not open: answer what it asks, then try again</source>
        <translation>Zelto utilise la bibliothèque sans l’avoir ouverte : répondez à ce qu’il demande, puis réessayez</translation>
    </message>
    <message>
        <source>Zelto is about to quit.</source>
        <translation>Zelto est sur le point de quitter.</translation>
    </message>
    <message>
        <source>Zelto is importing files</source>
        <translation>Zelto importe des fichiers</translation>
    </message>
    <message>
        <source>Zelto is importing files, are you sure to quit?</source>
        <translation>Zelto importe des fichiers ; voulez-vous vraiment quitter ?</translation>
    </message>
    <message>
        <source>Zelto is quitting, and takes nothing into the library any more.</source>
        <translation>Zelto est en train de quitter et ne reprend plus rien dans la bibliothèque.</translation>
    </message>
    <message>
        <source>Zelto is there when you have logged in.</source>
        <translation>Zelto est là dès que votre session est ouverte.</translation>
    </message>
    <message>
        <source>Zelto is up to date</source>
        <translation>Zelto est à jour</translation>
    </message>
    <message>
        <source>Zelto is uploading files</source>
        <translation>Zelto envoie des fichiers</translation>
    </message>
    <message>
        <source>Zelto is uploading files, are you sure to quit? Those that are not uploaded yet will not be.</source>
        <translation>Zelto envoie des fichiers ; voulez-vous vraiment quitter ? Ceux qui ne sont pas encore envoyés ne le seront pas.</translation>
    </message>
    <message>
        <source>Zelto is uploading other files; try again when that is done</source>
        <translation>Zelto envoie d’autres fichiers ; réessayez quand ce sera terminé</translation>
    </message>
    <message>
        <source>Zelto quit before the picture was in the library; where it was being imported, the import goes on when Zelto opens the library the next time</source>
        <translation>Zelto a quitté avant que l’image soit dans la bibliothèque ; là où elle était en cours d’import, l’import se poursuivra à la prochaine ouverture de la bibliothèque</translation>
    </message>
    <message>
        <source>Zelto therefore draws no EPS and PostScript files and uses no thumbnailers of the desktop. A Linux kernel with Landlock (5.13 or newer) changes that.</source>
        <translation>Zelto ne dessine donc pas de fichiers EPS et PostScript et n’utilise aucun générateur de vignettes du bureau. Un noyau Linux avec Landlock (5.13 ou plus récent) change cela.</translation>
    </message>
    <message>
        <source>Zelto was installed by %@, which brings new versions, too.</source>
        <translation>Zelto a été installé par %@, qui fournit aussi les nouvelles versions.</translation>
    </message>
    <message>
        <source>Zelto was quit before it could be imported. Import it again.</source>
        <translation>Zelto a été quitté avant de pouvoir l’importer. Importez-le de nouveau.</translation>
    </message>
    <message>
        <source>Zelto was quit or opened another library meanwhile; what was read before that stays, ask again for the rest</source>
        <translation>Zelto a été quitté ou a ouvert une autre bibliothèque entre-temps ; ce qui avait été lu est conservé, redemandez le reste</translation>
    </message>
    <message>
        <source>Zelto will now quit</source>
        <translation>Zelto va maintenant quitter</translation>
    </message>
    <message>
        <source>Zip export</source>
        <translation>Export Zip</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Zoom (+ and −)</source>
        <translation>Zoom (+ et −)</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>Zoom avant</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>Zoom arrière</translation>
    </message>
    <message>
        <source>Zoom and pan all together (L)</source>
        <translation>Zoomer et déplacer toutes ensemble (L)</translation>
    </message>
    <message>
        <source>a comparison</source>
        <translation>une comparaison</translation>
    </message>
    <message>
        <source>a date needs a number of seconds since 2001 within 30 000 years</source>
        <translation>une date demande un nombre de secondes depuis 2001, dans une limite de 30 000 ans</translation>
    </message>
    <message>
        <source>a file has the name of its folder</source>
        <translation>un fichier porte le nom de son dossier</translation>
    </message>
    <message>
        <source>a file of this name is in its way</source>
        <translation>un fichier de ce nom lui fait obstacle</translation>
    </message>
    <message>
        <source>a key path or a value</source>
        <translation>un chemin de clés ou une valeur</translation>
    </message>
    <message>
        <source>a list can only stand left of CONTAINS or right of IN and BETWEEN</source>
        <translation>une liste ne peut se trouver qu’à gauche de CONTAINS ou à droite de IN et BETWEEN</translation>
    </message>
    <message>
        <source>a list cannot hold a list</source>
        <translation>une liste ne peut pas contenir une liste</translation>
    </message>
    <message>
        <source>a malformed \u escape</source>
        <translation>une séquence d’échappement \u mal formée</translation>
    </message>
    <message>
        <source>a malformed number</source>
        <translation>un nombre mal formé</translation>
    </message>
    <message>
        <source>a name and a password are needed</source>
        <translation>un nom et un mot de passe sont nécessaires</translation>
    </message>
    <message>
        <source>a number</source>
        <translation>un nombre</translation>
    </message>
    <message>
        <source>a page is captured %d to %d pixels wide</source>
        <translation>la capture d’une page a une largeur de %d à %d pixels</translation>
    </message>
    <message>
        <source>a quotation that is not closed</source>
        <translation>une citation non fermée</translation>
    </message>
    <message>
        <source>a search has at most %d characters</source>
        <translation>une recherche compte au plus %d caractères</translation>
    </message>
    <message>
        <source>a server behind it does not answer</source>
        <translation>un serveur situé derrière ne répond pas</translation>
    </message>
    <message>
        <source>a smart folder needs a title</source>
        <translation>un dossier intelligent doit avoir un titre</translation>
    </message>
    <message>
        <source>a tag needs a name</source>
        <translation>un mot-clé doit avoir un nom</translation>
    </message>
    <message>
        <source>a value of the type %@ cannot be compared</source>
        <translation>une valeur de type %@ ne peut pas être comparée</translation>
    </message>
    <message>
        <source>access refused</source>
        <translation>accès refusé</translation>
    </message>
    <message>
        <source>add export preset</source>
        <translation>ajouter un préréglage d’export</translation>
    </message>
    <message>
        <source>add live folders</source>
        <translation>ajouter des dossiers actifs</translation>
    </message>
    <message>
        <source>an address, --width, --psd and --visible are only for zelto snap web</source>
        <translation>une adresse, --width, --psd et --visible ne servent qu’avec zelto snap web</translation>
    </message>
    <message>
        <source>an error in the server</source>
        <translation>une erreur du serveur</translation>
    </message>
    <message>
        <source>an error, in which case nothing was changed; a change of many items that fails or is cancelled keeps what was done before that</source>
        <translation>une erreur, auquel cas rien n’a été modifié ; une modification de nombreux éléments qui échoue ou est annulée conserve ce qui a été fait auparavant</translation>
    </message>
    <message>
        <source>an unknown character "%@"</source>
        <translation>un caractère inconnu « %@ »</translation>
    </message>
    <message>
        <source>an unknown placeholder</source>
        <translation>un emplacement à remplir inconnu</translation>
    </message>
    <message>
        <source>and</source>
        <translation>et</translation>
    </message>
    <message>
        <source>and %d more</source>
        <translation>et %d autres</translation>
    </message>
    <message>
        <source>at character %ld of the search, “%@”: %@</source>
        <translation>au caractère %ld de la recherche, « %@ » : %@</translation>
    </message>
    <message>
        <source>bad request</source>
        <translation>requête incorrecte</translation>
    </message>
    <message>
        <source>before %@</source>
        <translation>avant %@</translation>
    </message>
    <message>
        <source>belongs to no item; the next launch takes it back or removes it: %@</source>
        <translation>n’appartient à aucun élément ; le prochain démarrage le reprend ou le supprime : %@</translation>
    </message>
    <message>
        <source>black</source>
        <translation>noir</translation>
    </message>
    <message>
        <source>blue</source>
        <translation>bleu</translation>
    </message>
    <message>
        <source>brush</source>
        <translation>pinceau</translation>
    </message>
    <message>
        <source>capturing what a browser shows needs the window: run `zelto` with this address instead, or `zelto snap web` with that of the page</source>
        <translation>capturer ce qu’affiche un navigateur demande la fenêtre : lancez plutôt `zelto` avec cette adresse, ou `zelto snap web` avec celle de la page</translation>
    </message>
    <message>
        <source>change search of '%@'</source>
        <translation>modifier la recherche de « %@ »</translation>
    </message>
    <message>
        <source>chosen</source>
        <translation>choisi</translation>
    </message>
    <message>
        <source>close bracket</source>
        <translation>parenthèse fermante</translation>
    </message>
    <message>
        <source>color or #3366cc</source>
        <translation>couleur ou #3366cc</translation>
    </message>
    <message>
        <source>copy files</source>
        <translation>copier des fichiers</translation>
    </message>
    <message>
        <source>copy items</source>
        <translation>copier des éléments</translation>
    </message>
    <message>
        <source>date</source>
        <translation>date</translation>
    </message>
    <message>
        <source>delete %@</source>
        <translation>supprimer %@</translation>
    </message>
    <message>
        <source>delete export preset</source>
        <translation>supprimer un préréglage d’export</translation>
    </message>
    <message>
        <source>delete items</source>
        <translation>supprimer des éléments</translation>
    </message>
    <message>
        <source>delete items and content</source>
        <translation>supprimer des éléments et leur contenu</translation>
    </message>
    <message>
        <source>disable %@</source>
        <translation>désactiver %@</translation>
    </message>
    <message>
        <source>disable live folders</source>
        <translation>désactiver des dossiers actifs</translation>
    </message>
    <message>
        <source>document</source>
        <translation>document</translation>
    </message>
    <message>
        <source>done in part, or something was found: `verify` or `backup` found something wrong, `updates check` knows a newer version, `recover` met an open library, `snap` was called off, some of what `export`, `share` or `download` was asked for is missing, or an import was cut off, which `zelto import --resume` goes on with</source>
        <translation>fait en partie, ou quelque chose a été trouvé : `verify` ou `backup` a trouvé un problème, `updates check` connaît une version plus récente, `recover` a rencontré une bibliothèque ouverte, `snap` a été annulé, une partie de ce qui était demandé à `export`, `share` ou `download` manque, ou un import a été interrompu, que `zelto import --resume` reprend</translation>
    </message>
    <message>
        <source>done; for `verify`, nothing wrong was found</source>
        <translation>fait ; pour `verify`, aucun problème n’a été trouvé</translation>
    </message>
    <message>
        <source>duplicate items</source>
        <translation>dupliquer des éléments</translation>
    </message>
    <message>
        <source>edit license</source>
        <translation>modifier la licence</translation>
    </message>
    <message>
        <source>edit notes</source>
        <translation>modifier les remarques</translation>
    </message>
    <message>
        <source>edit source</source>
        <translation>modifier la source</translation>
    </message>
    <message>
        <source>edit tags</source>
        <translation>modifier les mots-clés</translation>
    </message>
    <message>
        <source>enable %@</source>
        <translation>activer %@</translation>
    </message>
    <message>
        <source>enable live folders</source>
        <translation>activer des dossiers actifs</translation>
    </message>
    <message>
        <source>expected %@, found %@</source>
        <translation>attendu : %@, trouvé : %@</translation>
    </message>
    <message>
        <source>exported in part: %@: %@</source>
        <translation>exporté en partie : %@ : %@</translation>
    </message>
    <message>
        <source>extension</source>
        <translation>extension</translation>
    </message>
    <message>
        <source>file %@ is not a valid image</source>
        <translation>le fichier %@ n’est pas une image valable</translation>
    </message>
    <message>
        <source>files as they are keep their size; choose a --format to scale them</source>
        <translation>les fichiers tels quels gardent leur taille ; choisissez un --format pour les mettre à l’échelle</translation>
    </message>
    <message>
        <source>font</source>
        <translation>police</translation>
    </message>
    <message>
        <source>gone for good</source>
        <translation>définitivement supprimé</translation>
    </message>
    <message>
        <source>gray</source>
        <translation>gris</translation>
    </message>
    <message>
        <source>green</source>
        <translation>vert</translation>
    </message>
    <message>
        <source>icon</source>
        <translation>icône</translation>
    </message>
    <message>
        <source>icon … vector</source>
        <translation>icône … vectoriel</translation>
    </message>
    <message>
        <source>image</source>
        <translation>image</translation>
    </message>
    <message>
        <source>images on this computer or in its own network come only for a page that is there, too: write --page with its address, as --page http://127.0.0.1/</source>
        <translation>les images de cet ordinateur ou de son propre réseau ne sont fournies que pour une page qui s’y trouve aussi : écrivez --page avec son adresse, par exemple --page http://127.0.0.1/</translation>
    </message>
    <message>
        <source>imported in part: %@: %@</source>
        <translation>importé en partie : %@ : %@</translation>
    </message>
    <message>
        <source>in trash</source>
        <translation>dans la corbeille</translation>
    </message>
    <message>
        <source>is a link and no folder of an item, and stays as it is: %@</source>
        <translation>est un lien et non le dossier d’un élément, et reste tel quel : %@</translation>
    </message>
    <message>
        <source>is named like the folder of an item, in other letters, and stays as it is: %@</source>
        <translation>porte le nom du dossier d’un élément, avec une autre casse, et reste tel quel : %@</translation>
    </message>
    <message>
        <source>it ends too early</source>
        <translation>il se termine trop tôt</translation>
    </message>
    <message>
        <source>it holds more than %d MB</source>
        <translation>il contient plus de %d Mo</translation>
    </message>
    <message>
        <source>it holds more than %d files</source>
        <translation>il contient plus de %d fichiers</translation>
    </message>
    <message>
        <source>it is a link</source>
        <translation>c’est un lien</translation>
    </message>
    <message>
        <source>it is no file that an import would leave</source>
        <translation>ce n’est pas un fichier qu’un import laisserait</translation>
    </message>
    <message>
        <source>it is no regular file</source>
        <translation>ce n’est pas un fichier ordinaire</translation>
    </message>
    <message>
        <source>it lies in more than %d other archives</source>
        <translation>il se trouve dans plus de %d autres archives</translation>
    </message>
    <message>
        <source>it lies too deep in folders</source>
        <translation>il se trouve trop profondément dans des dossiers</translation>
    </message>
    <message>
        <source>it needs too much memory</source>
        <translation>cela demande trop de mémoire</translation>
    </message>
    <message>
        <source>it took too long</source>
        <translation>cela a pris trop de temps</translation>
    </message>
    <message>
        <source>it was cancelled; the copied files stay, and the next `zelto sync` makes their items</source>
        <translation>annulé ; les fichiers copiés restent, et le prochain `zelto sync` crée leurs éléments</translation>
    </message>
    <message>
        <source>it was cancelled; the live folder is still there</source>
        <translation>annulé ; le dossier actif est toujours là</translation>
    </message>
    <message>
        <source>it was cancelled; what was changed before that stays so</source>
        <translation>annulé ; ce qui a été modifié avant le reste</translation>
    </message>
    <message>
        <source>it was cancelled; what was read before that stays in the library, and the next `zelto sync` goes on</source>
        <translation>annulé ; ce qui a été lu avant reste dans la bibliothèque, et le prochain `zelto sync` reprend la suite</translation>
    </message>
    <message>
        <source>it was given up</source>
        <translation>l’opération a été abandonnée</translation>
    </message>
    <message>
        <source>its content has changed</source>
        <translation>son contenu a changé</translation>
    </message>
    <message>
        <source>its content is more than %d times as large</source>
        <translation>son contenu est plus de %d fois plus grand</translation>
    </message>
    <message>
        <source>its end is missing</source>
        <translation>sa fin est manquante</translation>
    </message>
    <message>
        <source>its name cannot be read</source>
        <translation>son nom est illisible</translation>
    </message>
    <message>
        <source>its name leads out of the archive</source>
        <translation>son nom mène hors de l’archive</translation>
    </message>
    <message>
        <source>keep %@</source>
        <translation>conserver %@</translation>
    </message>
    <message>
        <source>keep a library of assets</source>
        <translation>gérer une bibliothèque de ressources</translation>
    </message>
    <message>
        <source>keep one of each</source>
        <translation>conserver un élément par groupe</translation>
    </message>
    <message>
        <source>kind</source>
        <translation>type</translation>
    </message>
    <message>
        <source>large</source>
        <translation>grand</translation>
    </message>
    <message>
        <source>last 7 days</source>
        <translation>7 derniers jours</translation>
    </message>
    <message>
        <source>less than %@ %%</source>
        <translation>moins de %@ %%</translation>
    </message>
    <message>
        <source>live folders are not kept in step here</source>
        <translation>les dossiers actifs ne sont pas synchronisés ici</translation>
    </message>
    <message>
        <source>medium</source>
        <translation>moyen</translation>
    </message>
    <message>
        <source>missing</source>
        <translation>manquant</translation>
    </message>
    <message>
        <source>missing: %@: %@</source>
        <translation>manquant : %@ : %@</translation>
    </message>
    <message>
        <source>move export preset</source>
        <translation>déplacer un préréglage d’export</translation>
    </message>
    <message>
        <source>move items</source>
        <translation>déplacer des éléments</translation>
    </message>
    <message>
        <source>move sidebar items</source>
        <translation>déplacer des entrées de la barre latérale</translation>
    </message>
    <message>
        <source>name</source>
        <translation>nom</translation>
    </message>
    <message>
        <source>name at least one item, and after the items a rating from 0 to 5</source>
        <translation>indiquez au moins un élément, et après les éléments une note de 0 à 5</translation>
    </message>
    <message>
        <source>name at least one item, and after the items the text of the note</source>
        <translation>indiquez au moins un élément, et après les éléments le texte de la remarque</translation>
    </message>
    <message>
        <source>name or bundleID</source>
        <translation>nom ou bundleID</translation>
    </message>
    <message>
        <source>name the addresses of the images</source>
        <translation>indiquez les adresses des images</translation>
    </message>
    <message>
        <source>name the items to export, or write --in with a sidebar entry</source>
        <translation>indiquez les éléments à exporter, ou écrivez --in avec une entrée de la barre latérale</translation>
    </message>
    <message>
        <source>name the items to share, or write --in with a sidebar entry</source>
        <translation>indiquez les éléments à partager, ou écrivez --in avec une entrée de la barre latérale</translation>
    </message>
    <message>
        <source>name the page, as zelto snap web https://example.org</source>
        <translation>indiquez la page, par exemple zelto snap web https://example.org</translation>
    </message>
    <message>
        <source>name what to import, or write --resume or --forget</source>
        <translation>indiquez ce qu’il faut importer, ou écrivez --resume ou --forget</translation>
    </message>
    <message>
        <source>new</source>
        <translation>nouveau</translation>
    </message>
    <message>
        <source>none</source>
        <translation>aucun</translation>
    </message>
    <message>
        <source>none of the images could be downloaded</source>
        <translation>aucune des images n’a pu être téléchargée</translation>
    </message>
    <message>
        <source>none of the items could be exported</source>
        <translation>aucun des éléments n’a pu être exporté</translation>
    </message>
    <message>
        <source>none of the items has a file to share</source>
        <translation>aucun des éléments n’a de fichier à partager</translation>
    </message>
    <message>
        <source>not</source>
        <translation>sauf</translation>
    </message>
    <message>
        <source>not all pictures could be looked at; what was found is kept: ask again for the rest</source>
        <translation>toutes les images n’ont pas pu être examinées ; ce qui a été trouvé est conservé : relancez la commande pour le reste</translation>
    </message>
    <message>
        <source>not available at the moment</source>
        <translation>indisponible pour le moment</translation>
    </message>
    <message>
        <source>not available for legal reasons</source>
        <translation>indisponible pour des raisons juridiques</translation>
    </message>
    <message>
        <source>not chosen</source>
        <translation>non choisi</translation>
    </message>
    <message>
        <source>not downloaded: %@: %@</source>
        <translation>non téléchargé : %@ : %@</translation>
    </message>
    <message>
        <source>not exported: %@: %@</source>
        <translation>non exporté : %@ : %@</translation>
    </message>
    <message>
        <source>not found</source>
        <translation>introuvable</translation>
    </message>
    <message>
        <source>not imported: %@: %@</source>
        <translation>non importé : %@ : %@</translation>
    </message>
    <message>
        <source>not imported: %d files: %@</source>
        <translation>non importés : %d fichiers : %@</translation>
    </message>
    <message>
        <source>not shared: %@: %@</source>
        <translation>non partagé : %@ : %@</translation>
    </message>
    <message>
        <source>note: %@: %@</source>
        <translation>remarque : %@ : %@</translation>
    </message>
    <message>
        <source>nothing</source>
        <translation>rien</translation>
    </message>
    <message>
        <source>nothing is counted; `zelto defaults write CountsUsage true` begins it</source>
        <translation>rien n’est compté ; `zelto defaults write CountsUsage true` le commence</translation>
    </message>
    <message>
        <source>nothing selected</source>
        <translation>aucune sélection</translation>
    </message>
    <message>
        <source>nothing was counted yet</source>
        <translation>rien n’a encore été compté</translation>
    </message>
    <message>
        <source>nothing was imported from “%@”, which nobody has agreed to yet. %@ Add --yes if you asked for this in the browser</source>
        <translation>rien n’a été importé depuis « %@ », que personne n’a encore approuvé. %@ Ajoutez --yes si vous l’avez demandé dans le navigateur</translation>
    </message>
    <message>
        <source>off</source>
        <translation>désactivé</translation>
    </message>
    <message>
        <source>open bracket</source>
        <translation>parenthèse ouvrante</translation>
    </message>
    <message>
        <source>or</source>
        <translation>ou</translation>
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
        <translation>rose</translation>
    </message>
    <message>
        <source>pixels</source>
        <translation>pixels</translation>
    </message>
    <message>
        <source>purple</source>
        <translation>violet</translation>
    </message>
    <message>
        <source>rate</source>
        <translation>noter</translation>
    </message>
    <message>
        <source>red</source>
        <translation>rouge</translation>
    </message>
    <message>
        <source>remove items</source>
        <translation>retirer des éléments</translation>
    </message>
    <message>
        <source>remove rating</source>
        <translation>retirer la note</translation>
    </message>
    <message>
        <source>rename '%@' in '%@'</source>
        <translation>renommer « %@ » en « %@ »</translation>
    </message>
    <message>
        <source>say which tags: --add TAG, --remove TAG, or both, each as often as needed</source>
        <translation>indiquez les mots-clés : --add TAG, --remove TAG, ou les deux, chacun aussi souvent que nécessaire</translation>
    </message>
    <message>
        <source>small</source>
        <translation>petit</translation>
    </message>
    <message>
        <source>somebody else removed the live folder meanwhile</source>
        <translation>quelqu’un d’autre a retiré le dossier actif entre-temps</translation>
    </message>
    <message>
        <source>text</source>
        <translation>texte</translation>
    </message>
    <message>
        <source>the Zelto that has the library “%@” open is at it; where its window asks something, answer there; Ctrl+C stops it</source>
        <translation>le Zelto qui a ouvert la bibliothèque « %@ » s’en occupe ; si sa fenêtre pose une question, répondez-y là ; Ctrl+C l’arrête</translation>
    </message>
    <message>
        <source>the argument for %@ is missing</source>
        <translation>l’argument de %@ est manquant</translation>
    </message>
    <message>
        <source>the argument for %@ is not a number</source>
        <translation>l’argument de %@ n’est pas un nombre</translation>
    </message>
    <message>
        <source>the conditions are nested too deeply</source>
        <translation>les conditions sont imbriquées trop profondément</translation>
    </message>
    <message>
        <source>the download was cancelled; nothing was imported</source>
        <translation>le téléchargement a été annulé ; rien n’a été importé</translation>
    </message>
    <message>
        <source>the download was cancelled; what is listed was imported before that</source>
        <translation>le téléchargement a été annulé ; ce qui est listé a été importé avant</translation>
    </message>
    <message>
        <source>the end</source>
        <translation>la fin</translation>
    </message>
    <message>
        <source>the export was cancelled; nothing was written</source>
        <translation>l’export a été annulé ; rien n’a été écrit</translation>
    </message>
    <message>
        <source>the export was cancelled; what was written before that stays</source>
        <translation>l’export a été annulé ; ce qui a été écrit avant reste</translation>
    </message>
    <message>
        <source>the file is missing</source>
        <translation>le fichier est manquant</translation>
    </message>
    <message>
        <source>the file of “%@” can't be named after it: %@</source>
        <translation>le fichier de « %@ » ne peut pas être renommé d’après lui : %@</translation>
    </message>
    <message>
        <source>the import was cancelled; nothing was kept</source>
        <translation>l’import a été annulé ; rien n’a été conservé</translation>
    </message>
    <message>
        <source>the import was cancelled; what is listed was imported before that</source>
        <translation>l’import a été annulé ; ce qui est listé a été importé avant</translation>
    </message>
    <message>
        <source>the items can't be counted; `zelto verify` says what is wrong with the library</source>
        <translation>les éléments ne peuvent pas être comptés ; `zelto verify` dit ce qui ne va pas dans la bibliothèque</translation>
    </message>
    <message>
        <source>the library can't be opened</source>
        <translation>la bibliothèque ne peut pas être ouverte</translation>
    </message>
    <message>
        <source>the library could not be saved, so nothing was removed</source>
        <translation>la bibliothèque n’a pas pu être enregistrée ; rien n’a donc été supprimé</translation>
    </message>
    <message>
        <source>the library is not open</source>
        <translation>la bibliothèque n’est pas ouverte</translation>
    </message>
    <message>
        <source>the library is open in a window; quitting it purges</source>
        <translation>la bibliothèque est ouverte dans une fenêtre ; la purge se fait quand on quitte celle-ci</translation>
    </message>
    <message>
        <source>the list was given up</source>
        <translation>la liste a été abandonnée</translation>
    </message>
    <message>
        <source>the option c, d or cd</source>
        <translation>l’option c, d ou cd</translation>
    </message>
    <message>
        <source>the pattern is invalid: %@</source>
        <translation>le motif n’est pas valide : %@</translation>
    </message>
    <message>
        <source>the preference “%@” is not set</source>
        <translation>la préférence « %@ » n’est pas définie</translation>
    </message>
    <message>
        <source>the request took too long</source>
        <translation>la requête a pris trop de temps</translation>
    </message>
    <message>
        <source>the request was refused</source>
        <translation>la requête a été refusée</translation>
    </message>
    <message>
        <source>the search was given up</source>
        <translation>la recherche a été abandonnée</translation>
    </message>
    <message>
        <source>the service gave no reason; try again later</source>
        <translation>le service n’a donné aucune raison ; réessayez plus tard</translation>
    </message>
    <message>
        <source>the tags can't be read; `zelto verify` says what is wrong with the library</source>
        <translation>les mots-clés sont illisibles ; `zelto verify` dit ce qui ne va pas dans la bibliothèque</translation>
    </message>
    <message>
        <source>the template “%@” became no asset: %@</source>
        <translation>le modèle « %@ » n’a pas donné d’élément : %@</translation>
    </message>
    <message>
        <source>the type "NSDate"</source>
        <translation>le type « NSDate »</translation>
    </message>
    <message>
        <source>the upload was cancelled; nothing was shared</source>
        <translation>l’envoi a été annulé ; rien n’a été partagé</translation>
    </message>
    <message>
        <source>the upload was cancelled; the links above stay valid</source>
        <translation>l’envoi a été annulé ; les liens ci-dessus restent valables</translation>
    </message>
    <message>
        <source>the window asks whether to import the images</source>
        <translation>la fenêtre demande s’il faut importer les images</translation>
    </message>
    <message>
        <source>there are %d presets; the panel Quick export makes more</source>
        <translation>il y a %d préréglages ; le panneau « Export rapide » permet d’en créer d’autres</translation>
    </message>
    <message>
        <source>there are no items to export there; of a folder of projects name one of the projects</source>
        <translation>il n’y a là aucun élément à exporter ; pour un dossier de projets, indiquez l’un des projets</translation>
    </message>
    <message>
        <source>there are no items to share there; of a folder of projects name one of the projects</source>
        <translation>il n’y a là aucun élément à partager ; pour un dossier de projets, indiquez l’un des projets</translation>
    </message>
    <message>
        <source>there are no templates; put files whose names end in .zttemplate into “%@”</source>
        <translation>il n’y a pas de modèles ; placez dans « %@ » des fichiers dont le nom se termine par .zttemplate</translation>
    </message>
    <message>
        <source>there is no file or folder “%@”</source>
        <translation>il n’y a ni fichier ni dossier « %@ »</translation>
    </message>
    <message>
        <source>there is no file “%@”</source>
        <translation>il n’y a pas de fichier « %@ »</translation>
    </message>
    <message>
        <source>there is no item “%@”; name it by its bundleID, its SHA1 or a path inside the library</source>
        <translation>il n’y a pas d’élément « %@ » ; désignez-le par son bundleID, son SHA1 ou un chemin dans la bibliothèque</translation>
    </message>
    <message>
        <source>there is no library database “%@”; name the library with --library, or put back a copy from a backup</source>
        <translation>il n’y a pas de base de données de bibliothèque « %@ » ; indiquez la bibliothèque avec --library, ou remettez en place une copie issue d’une sauvegarde</translation>
    </message>
    <message>
        <source>there is no preference “%@”; `zelto defaults read` lists them</source>
        <translation>il n’y a pas de préférence « %@ » ; `zelto defaults read` les liste</translation>
    </message>
    <message>
        <source>there is no report of a crash</source>
        <translation>il n’y a aucun rapport de plantage</translation>
    </message>
    <message>
        <source>there is no service “%@”; there are %@</source>
        <translation>il n’y a pas de service « %@ » ; il y a %@</translation>
    </message>
    <message>
        <source>there is no sidebar entry “%@”; `zelto sidebar` lists them</source>
        <translation>il n’y a pas d’entrée « %@ » dans la barre latérale ; `zelto sidebar` les liste</translation>
    </message>
    <message>
        <source>there is no tag “%@”; `zelto tags` lists them</source>
        <translation>il n’y a pas de mot-clé « %@ » ; `zelto tags` les liste</translation>
    </message>
    <message>
        <source>there is no template “%@”; there are: %@</source>
        <translation>il n’y a pas de modèle « %@ » ; il y a : %@</translation>
    </message>
    <message>
        <source>there is nothing to search for; give a text</source>
        <translation>il n’y a rien à rechercher ; donnez un texte</translation>
    </message>
    <message>
        <source>there is nothing to search for; give a text behind the title</source>
        <translation>il n’y a rien à rechercher ; donnez un texte après le titre</translation>
    </message>
    <message>
        <source>this library has no entry “Library”; `zelto verify` checks it</source>
        <translation>cette bibliothèque n’a pas d’entrée « Library » ; `zelto verify` la contrôle</translation>
    </message>
    <message>
        <source>this library has no entry “PROJECTS”; `zelto verify` checks it</source>
        <translation>cette bibliothèque n’a pas d’entrée « PROJECTS » ; `zelto verify` la contrôle</translation>
    </message>
    <message>
        <source>this month</source>
        <translation>ce mois-ci</translation>
    </message>
    <message>
        <source>this process takes no pictures of pages</source>
        <translation>ce processus ne prend pas d’images de pages</translation>
    </message>
    <message>
        <source>this process takes no pictures of the screen</source>
        <translation>ce processus ne prend pas d’images de l’écran</translation>
    </message>
    <message>
        <source>this program was built without a window</source>
        <translation>ce programme a été construit sans fenêtre</translation>
    </message>
    <message>
        <source>this year</source>
        <translation>cette année</translation>
    </message>
    <message>
        <source>today</source>
        <translation>aujourd’hui</translation>
    </message>
    <message>
        <source>too many requests</source>
        <translation>trop de requêtes</translation>
    </message>
    <message>
        <source>unrated</source>
        <translation>sans note</translation>
    </message>
    <message>
        <source>vector</source>
        <translation>vectoriel</translation>
    </message>
    <message>
        <source>video</source>
        <translation>vidéo</translation>
    </message>
    <message>
        <source>waiting for another Zelto, which works on the library “%@”; Ctrl+C ends the waiting</source>
        <translation>en attente d’un autre Zelto qui travaille sur la bibliothèque « %@ » ; Ctrl+C met fin à l’attente</translation>
    </message>
    <message>
        <source>waiting for the Zelto that has the library “%@” open, which does something else first; where its window asks something, answer there; Ctrl+C ends the waiting</source>
        <translation>en attente du Zelto qui a ouvert la bibliothèque « %@ » et fait d’abord autre chose ; si sa fenêtre pose une question, répondez-y là ; Ctrl+C met fin à l’attente</translation>
    </message>
    <message>
        <source>what unpacks it stopped</source>
        <translation>le programme de décompression s’est arrêté</translation>
    </message>
    <message>
        <source>what was sent is too large</source>
        <translation>ce qui a été envoyé est trop grand</translation>
    </message>
    <message>
        <source>what “%@” looks like is not known yet; `zelto fingerprints` finds it out</source>
        <translation>on ne sait pas encore à quoi « %@ » ressemble ; `zelto fingerprints` le découvre</translation>
    </message>
    <message>
        <source>white</source>
        <translation>blanc</translation>
    </message>
    <message>
        <source>yellow</source>
        <translation>jaune</translation>
    </message>
    <message>
        <source>yesterday</source>
        <translation>hier</translation>
    </message>
    <message>
        <source>“%@”</source>
        <translation>« %@ »</translation>
    </message>
    <message>
        <source>“%@” and %d others</source>
        <translation>« %@ » et %d autres</translation>
    </message>
    <message>
        <source>“%@” and one other</source>
        <translation>« %@ » et un autre</translation>
    </message>
    <message>
        <source>“%@” answered without a link.</source>
        <translation>« %@ » a répondu sans lien.</translation>
    </message>
    <message>
        <source>“%@” appears twice.</source>
        <translation>« %@ » apparaît deux fois.</translation>
    </message>
    <message>
        <source>“%@” became shorter.</source>
        <translation>« %@ » a raccourci.</translation>
    </message>
    <message>
        <source>“%@” can only be reached unencrypted. Use an address that begins with https.</source>
        <translation>« %@ » n’est accessible que sans chiffrement. Utilisez une adresse qui commence par https.</translation>
    </message>
    <message>
        <source>“%@” can't be opened.</source>
        <translation>« %@ » ne peut pas être ouvert.</translation>
    </message>
    <message>
        <source>“%@” can't be read as a picture.</source>
        <translation>« %@ » ne peut pas être lu comme une image.</translation>
    </message>
    <message>
        <source>“%@” can't be read. Remove it, and try again.</source>
        <translation>« %@ » est illisible. Supprimez-le, puis réessayez.</translation>
    </message>
    <message>
        <source>“%@” can't be written into the backup: %@</source>
        <translation>« %@ » ne peut pas être écrit dans la sauvegarde : %@</translation>
    </message>
    <message>
        <source>“%@” can't be written over; name another file</source>
        <translation>« %@ » ne peut pas être remplacé ; indiquez un autre fichier</translation>
    </message>
    <message>
        <source>“%@” cannot be a folder on a server.</source>
        <translation>« %@ » ne peut pas être un dossier sur un serveur.</translation>
    </message>
    <message>
        <source>“%@” cannot be copied into itself.</source>
        <translation>« %@ » ne peut pas être copié dans lui-même.</translation>
    </message>
    <message>
        <source>“%@” cannot be copied into the live folder.</source>
        <translation>« %@ » ne peut pas être copié dans le dossier actif.</translation>
    </message>
    <message>
        <source>“%@” cannot be deleted.</source>
        <translation>« %@ » ne peut pas être supprimé.</translation>
    </message>
    <message>
        <source>“%@” cannot be found. %@</source>
        <translation>« %@ » est introuvable. %@</translation>
    </message>
    <message>
        <source>“%@” cannot be kept in place of the others.</source>
        <translation>« %@ » ne peut pas être conservé à la place des autres.</translation>
    </message>
    <message>
        <source>“%@” cannot be moved back.</source>
        <translation>« %@ » ne peut pas être remis à sa place.</translation>
    </message>
    <message>
        <source>“%@” cannot be put into the live folder.</source>
        <translation>« %@ » ne peut pas être placé dans le dossier actif.</translation>
    </message>
    <message>
        <source>“%@” cannot be read. Allow reading it first.</source>
        <translation>« %@ » est illisible. Autorisez d’abord sa lecture.</translation>
    </message>
    <message>
        <source>“%@” cannot be restored.</source>
        <translation>« %@ » ne peut pas être restauré.</translation>
    </message>
    <message>
        <source>“%@” cannot be set as a header.</source>
        <translation>« %@ » ne peut pas être défini comme en-tête.</translation>
    </message>
    <message>
        <source>“%@” cannot be unpacked, since it is damaged or no archive (%@). Get it once more, or unpack it with another program and import what it holds.</source>
        <translation>« %@ » ne peut pas être décompressé, car il est endommagé ou n’est pas une archive (%@). Procurez-vous-le de nouveau, ou décompressez-le avec un autre programme et importez son contenu.</translation>
    </message>
    <message>
        <source>“%@” cannot be written: %@</source>
        <translation>« %@ » ne peut pas être écrit : %@</translation>
    </message>
    <message>
        <source>“%@” changed while it was being copied. Close it in other programs and try again.</source>
        <translation>« %@ » a changé pendant sa copie. Fermez-le dans les autres programmes et réessayez.</translation>
    </message>
    <message>
        <source>“%@” changed while it was sent.</source>
        <translation>« %@ » a changé pendant son envoi.</translation>
    </message>
    <message>
        <source>“%@” compares nothing; leave “%@” away.</source>
        <translation>« %@ » ne compare rien ; omettez « %@ ».</translation>
    </message>
    <message>
        <source>“%@” could not be imported: %@</source>
        <translation>« %@ » n’a pas pu être importé : %@</translation>
    </message>
    <message>
        <source>“%@” could not be uploaded</source>
        <translation>« %@ » n’a pas pu être envoyé</translation>
    </message>
    <message>
        <source>“%@” could not be written</source>
        <translation>« %@ » n’a pas pu être écrit</translation>
    </message>
    <message>
        <source>“%@” did not come from the other program. Save it there as a file, and drop that here.</source>
        <translation>« %@ » n’est pas arrivé de l’autre programme. Enregistrez-le là-bas dans un fichier et déposez celui-ci ici.</translation>
    </message>
    <message>
        <source>“%@” does not accept what was entered for %@.</source>
        <translation>« %@ » n’accepte pas ce qui a été saisi pour %@.</translation>
    </message>
    <message>
        <source>“%@” does not answer. Try again later.</source>
        <translation>« %@ » ne répond pas. Réessayez plus tard.</translation>
    </message>
    <message>
        <source>“%@” does not take this: it goes to the library</source>
        <translation>« %@ » n’accepte pas cela : ce sera placé dans la bibliothèque</translation>
    </message>
    <message>
        <source>“%@” exists already</source>
        <translation>« %@ » existe déjà</translation>
    </message>
    <message>
        <source>“%@” has a file of that name already, which was left as it is.</source>
        <translation>« %@ » contient déjà un fichier de ce nom, qui a été laissé tel quel.</translation>
    </message>
    <message>
        <source>“%@” has them already</source>
        <translation>« %@ » les contient déjà</translation>
    </message>
    <message>
        <source>“%@” has these keys.</source>
        <translation>« %@ » utilise déjà ces touches.</translation>
    </message>
    <message>
        <source>“%@” holds no picture yet</source>
        <translation>« %@ » ne contient encore aucune image</translation>
    </message>
    <message>
        <source>“%@” holds no smart folders; name PROJECTS or a folder in it</source>
        <translation>« %@ » ne contient pas de dossiers intelligents ; indiquez PROJECTS ou un dossier qui s’y trouve</translation>
    </message>
    <message>
        <source>“%@” holds nothing that can be an asset</source>
        <translation>« %@ » ne contient rien qui puisse devenir un élément</translation>
    </message>
    <message>
        <source>“%@” holds too many files named “%@”. Rename it, and try again.</source>
        <translation>« %@ » contient trop de fichiers nommés « %@ ». Renommez-le et réessayez.</translation>
    </message>
    <message>
        <source>“%@” in the library belongs to no item and could not be taken back.</source>
        <translation>« %@ », dans la bibliothèque, n’appartient à aucun élément et n’a pas pu être repris.</translation>
    </message>
    <message>
        <source>“%@” in the title, the notes, the extension or a tag</source>
        <translation>« %@ » dans le titre, les remarques, l’extension ou un mot-clé</translation>
    </message>
    <message>
        <source>“%@” is a backup that can't be written.</source>
        <translation>« %@ » est une sauvegarde qui ne peut pas être modifiée.</translation>
    </message>
    <message>
        <source>“%@” is a file to download and no page. Import the file instead.</source>
        <translation>« %@ » est un fichier à télécharger et non une page. Importez plutôt le fichier.</translation>
    </message>
    <message>
        <source>“%@” is a file; give a folder.</source>
        <translation>« %@ » est un fichier ; indiquez un dossier.</translation>
    </message>
    <message>
        <source>“%@” is a folder on the disk. It goes from here when it goes from there.</source>
        <translation>« %@ » est un dossier du disque. Il disparaît d’ici lorsqu’il disparaît de là-bas.</translation>
    </message>
    <message>
        <source>“%@” is a library that another Zelto has open.</source>
        <translation>« %@ » est une bibliothèque ouverte dans un autre Zelto.</translation>
    </message>
    <message>
        <source>“%@” is a part of another live folder; remove that one, or move the folder elsewhere on the disk</source>
        <translation>« %@ » fait partie d’un autre dossier actif ; retirez celui-ci, ou déplacez le dossier ailleurs sur le disque</translation>
    </message>
    <message>
        <source>“%@” is among the live folders already.</source>
        <translation>« %@ » fait déjà partie des dossiers actifs.</translation>
    </message>
    <message>
        <source>“%@” is another folder than before. Items whose files are not in it leave the library and their projects. If only its drive is not connected, connect that instead.</source>
        <translation>« %@ » est un autre dossier qu’auparavant. Les éléments dont les fichiers n’y sont pas quittent la bibliothèque et leurs projets. Si seul son disque n’est pas connecté, connectez-le plutôt.</translation>
    </message>
    <message>
        <source>“%@” is damaged: only a part of the picture is there.</source>
        <translation>« %@ » est endommagé : il ne reste qu’une partie de l’image.</translation>
    </message>
    <message>
        <source>“%@” is deleted; bring it back with `zelto restore %@`, then try again</source>
        <translation>« %@ » est supprimé ; récupérez-le avec `zelto restore %@`, puis réessayez</translation>
    </message>
    <message>
        <source>“%@” is disabled. Enable it, and try again.</source>
        <translation>« %@ » est désactivé. Activez-le et réessayez.</translation>
    </message>
    <message>
        <source>“%@” is disabled; enable it in the window first</source>
        <translation>« %@ » est désactivé ; activez-le d’abord dans la fenêtre</translation>
    </message>
    <message>
        <source>“%@” is empty. Connect its drive, put files into it first, or remove the live folder.</source>
        <translation>« %@ » est vide. Connectez son disque, placez-y d’abord des fichiers, ou retirez le dossier actif.</translation>
    </message>
    <message>
        <source>“%@” is in the library itself. Choose a folder outside it.</source>
        <translation>« %@ » se trouve dans la bibliothèque elle-même. Choisissez un dossier en dehors.</translation>
    </message>
    <message>
        <source>“%@” is in the trash.</source>
        <translation>« %@ » est dans la corbeille.</translation>
    </message>
    <message>
        <source>“%@” is incomplete: only a part of it can be drawn</source>
        <translation>« %@ » est incomplet : seule une partie peut en être dessinée</translation>
    </message>
    <message>
        <source>“%@” is inside a library.</source>
        <translation>« %@ » se trouve dans une bibliothèque.</translation>
    </message>
    <message>
        <source>“%@” is inside the library itself.</source>
        <translation>« %@ » se trouve à l’intérieur de la bibliothèque elle-même.</translation>
    </message>
    <message>
        <source>“%@” is larger than such a file can be.</source>
        <translation>« %@ » est plus grand qu’un tel fichier ne peut l’être.</translation>
    </message>
    <message>
        <source>“%@” is looked through for the first time. What is found comes here.</source>
        <translation>« %@ » est parcouru pour la première fois. Ce qui y est trouvé arrive ici.</translation>
    </message>
    <message>
        <source>“%@” is looked through.</source>
        <translation>« %@ » est en cours d’examen.</translation>
    </message>
    <message>
        <source>“%@” is missing.</source>
        <translation>« %@ » est manquant.</translation>
    </message>
    <message>
        <source>“%@” is neither a command nor a file; `zelto --help` lists the commands</source>
        <translation>« %@ » n’est ni une commande ni un fichier ; `zelto --help` liste les commandes</translation>
    </message>
    <message>
        <source>“%@” is neither a command nor a file; did you mean `zelto %@`?</source>
        <translation>« %@ » n’est ni une commande ni un fichier ; vouliez-vous dire `zelto %@` ?</translation>
    </message>
    <message>
        <source>“%@” is neither a file nor a folder, so it cannot be copied.</source>
        <translation>« %@ » n’est ni un fichier ni un dossier et ne peut donc pas être copié.</translation>
    </message>
    <message>
        <source>“%@” is no Zelto library.</source>
        <translation>« %@ » n’est pas une bibliothèque Zelto.</translation>
    </message>
    <message>
        <source>“%@” is no address of a web page.</source>
        <translation>« %@ » n’est pas l’adresse d’une page web.</translation>
    </message>
    <message>
        <source>“%@” is no address of an image on the web, so nothing was imported</source>
        <translation>« %@ » n’est pas l’adresse d’une image du web ; rien n’a donc été importé</translation>
    </message>
    <message>
        <source>“%@” is no address of the web.</source>
        <translation>« %@ » n’est pas une adresse web.</translation>
    </message>
    <message>
        <source>“%@” is no address that Zelto knows; there are zelto:import: and zelto:snap:</source>
        <translation>« %@ » n’est pas une adresse connue de Zelto ; il y a zelto:import: et zelto:snap:</translation>
    </message>
    <message>
        <source>“%@” is no color; there are %@, or one as #3366cc, and behind it how near: ~0 to ~100.</source>
        <translation>« %@ » n’est pas une couleur ; il y a %@, ou une comme #3366cc, et derrière la proximité : ~0 à ~100.</translation>
    </message>
    <message>
        <source>“%@” is no date; write it as 25/12/2026, 2026-12-25, 2026-12, 2026, today, yesterday or 7d.</source>
        <translation>« %@ » n’est pas une date ; écrivez-la 25/12/2026, 2026-12-25, 2026-12, 2026, today, yesterday ou 7d.</translation>
    </message>
    <message>
        <source>“%@” is no file and no folder.</source>
        <translation>« %@ » n’est ni un fichier ni un dossier.</translation>
    </message>
    <message>
        <source>“%@” is no file, but a folder, a pipe or a device.</source>
        <translation>« %@ » n’est pas un fichier, mais un dossier, un tube ou un périphérique.</translation>
    </message>
    <message>
        <source>“%@” is no live folder; `zelto livefolders` lists them</source>
        <translation>« %@ » n’est pas un dossier actif ; `zelto livefolders` les liste</translation>
    </message>
    <message>
        <source>“%@” is no page of the web, so nothing was taken from it. Only pages whose address begins with http or https can be.</source>
        <translation>« %@ » n’est pas une page du web ; rien n’en a donc été repris. Seules les pages dont l’adresse commence par http ou https peuvent l’être.</translation>
    </message>
    <message>
        <source>“%@” is no rating; the last argument is a number from 0 (none) to 5</source>
        <translation>« %@ » n’est pas une note ; le dernier argument est un nombre de 0 (aucune) à 5</translation>
    </message>
    <message>
        <source>“%@” is no size class; there are %@.</source>
        <translation>« %@ » n’est pas une classe de taille ; il y a %@.</translation>
    </message>
    <message>
        <source>“%@” is no size; write it as 1280x800</source>
        <translation>« %@ » n’est pas une taille ; écrivez-la 1280x800</translation>
    </message>
    <message>
        <source>“%@” is no size; write it in pixels as 1920x1080</source>
        <translation>« %@ » n’est pas une taille ; écrivez-la en pixels, par exemple 1920x1080</translation>
    </message>
    <message>
        <source>“%@” is no smart folder; `zelto sidebar` shows them with their text</source>
        <translation>« %@ » n’est pas un dossier intelligent ; `zelto sidebar` les affiche avec leur texte</translation>
    </message>
    <message>
        <source>“%@” is no value for %@</source>
        <translation>« %@ » n’est pas une valeur pour %@</translation>
    </message>
    <message>
        <source>“%@” is no value for %@; it is now %@</source>
        <translation>« %@ » n’est pas une valeur pour %@ ; la valeur actuelle est %@</translation>
    </message>
    <message>
        <source>“%@” is no value.</source>
        <translation>« %@ » n’est pas une valeur.</translation>
    </message>
    <message>
        <source>“%@” is no web page: only addresses with http and https can be captured.</source>
        <translation>« %@ » n’est pas une page web : seules les adresses en http et https peuvent être capturées.</translation>
    </message>
    <message>
        <source>“%@” is no whole number.</source>
        <translation>« %@ » n’est pas un nombre entier.</translation>
    </message>
    <message>
        <source>“%@” is none of the templates</source>
        <translation>« %@ » ne fait pas partie des modèles</translation>
    </message>
    <message>
        <source>“%@” is not among the preferences that `zelto defaults read` lists; it is kept, see whether it is written right</source>
        <translation>« %@ » ne figure pas parmi les préférences que `zelto defaults read` énumère ; elle est conservée, vérifiez qu’elle est bien écrite</translation>
    </message>
    <message>
        <source>“%@” is not known. Check how it is spelled.</source>
        <translation>« %@ » n’est pas connu. Vérifiez l’orthographe.</translation>
    </message>
    <message>
        <source>“%@” is not the address of a server. Enter one like https://example.org.</source>
        <translation>« %@ » n’est pas l’adresse d’un serveur. Saisissez une adresse comme https://example.org.</translation>
    </message>
    <message>
        <source>“%@” is not the name of a header.</source>
        <translation>« %@ » n’est pas le nom d’un en-tête.</translation>
    </message>
    <message>
        <source>“%@” is not the same in the backup as in the library.</source>
        <translation>« %@ » n’est pas identique dans la sauvegarde et dans la bibliothèque.</translation>
    </message>
    <message>
        <source>“%@” is not there now. Look whether its disk is there, and try again.</source>
        <translation>« %@ » n’est pas là pour le moment. Vérifiez que son disque est présent et réessayez.</translation>
    </message>
    <message>
        <source>“%@” is on this computer or in its own network.</source>
        <translation>« %@ » se trouve sur cet ordinateur ou dans son propre réseau.</translation>
    </message>
    <message>
        <source>“%@” is one of the layers: choose another name.</source>
        <translation>« %@ » est l’un des calques : choisissez un autre nom.</translation>
    </message>
    <message>
        <source>“%@” is out of reach.</source>
        <translation>« %@ » est hors d’atteinte.</translation>
    </message>
    <message>
        <source>“%@” is out of reach; its items are kept. %@</source>
        <translation>« %@ » est hors d’atteinte ; ses éléments sont conservés. %@</translation>
    </message>
    <message>
        <source>“%@” is protected by a password (“%@” in it is encrypted). Unpack it yourself and import what it holds.</source>
        <translation>« %@ » est protégé par un mot de passe (« %@ » y est chiffré). Décompressez-le vous-même et importez son contenu.</translation>
    </message>
    <message>
        <source>“%@” is protected by a password. Unpack it yourself and import what it holds.</source>
        <translation>« %@ » est protégé par un mot de passe. Décompressez-le vous-même et importez son contenu.</translation>
    </message>
    <message>
        <source>“%@” is there already. Choose another name.</source>
        <translation>« %@ » existe déjà. Choisissez un autre nom.</translation>
    </message>
    <message>
        <source>“%@” is there already; with --force it is replaced</source>
        <translation>« %@ » existe déjà ; avec --force, il est remplacé</translation>
    </message>
    <message>
        <source>“%@” is too large for Imgur, which takes files of up to %d MB.</source>
        <translation>« %@ » est trop grand pour Imgur, qui accepte des fichiers jusqu’à %d Mo.</translation>
    </message>
    <message>
        <source>“%@” joins nothing; what it joins stands before and behind it.</source>
        <translation>« %@ » ne relie rien ; ce qu’il relie se place avant et après lui.</translation>
    </message>
    <message>
        <source>“%@” leads to %@, which is on this computer or in its own network. Type that address to capture it.</source>
        <translation>« %@ » mène à %@, qui se trouve sur cet ordinateur ou dans son propre réseau. Saisissez cette adresse pour la capturer.</translation>
    </message>
    <message>
        <source>“%@” leaves out nothing; what it leaves out stands behind it.</source>
        <translation>« %@ » n’exclut rien ; ce qu’il exclut se place après lui.</translation>
    </message>
    <message>
        <source>“%@” must be a text of 1 to %d characters.</source>
        <translation>« %@ » doit être un texte de 1 à %d caractères.</translation>
    </message>
    <message>
        <source>“%@” must be a text of at most %d characters, and its name one of 1 to %d.</source>
        <translation>« %@ » doit être un texte d’au plus %d caractères, et son nom doit en compter de 1 à %d.</translation>
    </message>
    <message>
        <source>“%@” must be names with texts in “{” and “}”, at most %d.</source>
        <translation>« %@ » doit contenir entre « { » et « } » des noms avec des textes, au plus %d.</translation>
    </message>
    <message>
        <source>“%@” needs a value for “%@”.</source>
        <translation>« %@ » a besoin d’une valeur pour « %@ ».</translation>
    </message>
    <message>
        <source>“%@” of “%@” is not known any more.</source>
        <translation>« %@ » de « %@ » n’est plus connu.</translation>
    </message>
    <message>
        <source>“%@” says no place: write FILE@X,Y or FILE@X,Y,OPACITY,NAME with whole numbers and an opacity from 0 to 1</source>
        <translation>« %@ » n’indique pas d’emplacement : écrivez FILE@X,Y ou FILE@X,Y,OPACITY,NAME avec des nombres entiers et une opacité de 0 à 1</translation>
    </message>
    <message>
        <source>“%@” sends what you share to %@.</source>
        <translation>« %@ » envoie ce que vous partagez à %@.</translation>
    </message>
    <message>
        <source>“%@” sets nothing; write --set KEY=VALUE with an attribute such as license, notes or webURL</source>
        <translation>« %@ » ne définit rien ; écrivez --set KEY=VALUE avec un attribut comme license, notes ou webURL</translation>
    </message>
    <message>
        <source>“%@” shows nothing by which others could be found: it has one color, or none.</source>
        <translation>« %@ » ne montre rien qui permette d’en trouver d’autres : l’image n’a qu’une couleur, ou aucune.</translation>
    </message>
    <message>
        <source>“%@” shows nothing that another picture could look like</source>
        <translation>« %@ » ne montre rien à quoi une autre image puisse ressembler</translation>
    </message>
    <message>
        <source>“%@” stays as it is.</source>
        <translation>« %@ » reste tel quel.</translation>
    </message>
    <message>
        <source>“%@” stays as it is. %@</source>
        <translation>« %@ » reste tel quel. %@</translation>
    </message>
    <message>
        <source>“%@” stays as it is: items whose files are not in it would leave the library. With --yes they do</source>
        <translation>« %@ » reste tel quel : des éléments dont les fichiers n’y sont pas quitteraient la bibliothèque. Avec --yes, ils la quittent</translation>
    </message>
    <message>
        <source>“%@” stays where it is on the disk. Move the folder there.</source>
        <translation>« %@ » reste à sa place sur le disque. Déplacez le dossier là-bas.</translation>
    </message>
    <message>
        <source>“%@” stays where it was copied to.</source>
        <translation>« %@ » reste là où il a été copié.</translation>
    </message>
    <message>
        <source>“%@” takes no files. %@</source>
        <translation>« %@ » n’accepte pas de fichiers. %@</translation>
    </message>
    <message>
        <source>“%@” takes no files. Import it into the library, a project or a tag.</source>
        <translation>« %@ » n’accepte pas de fichiers. Importez-le dans la bibliothèque, un projet ou un mot-clé.</translation>
    </message>
    <message>
        <source>“%@” takes no templates. %@</source>
        <translation>« %@ » n’accepte pas de modèles. %@</translation>
    </message>
    <message>
        <source>“%@” waits for its turn to be looked through. What is found comes here.</source>
        <translation>« %@ » attend son tour d’être parcouru. Ce qui y est trouvé arrive ici.</translation>
    </message>
    <message>
        <source>“%@” wants a login, of which its description says nothing.</source>
        <translation>« %@ » demande une identification, dont sa description ne dit rien.</translation>
    </message>
    <message>
        <source>“%@” was changed meanwhile. Try again.</source>
        <translation>« %@ » a été modifié entre-temps. Réessayez.</translation>
    </message>
    <message>
        <source>“%@” was changed while it was moved. Compare both, and delete the one you do not need.</source>
        <translation>« %@ » a été modifié pendant son déplacement. Comparez les deux et supprimez celui dont vous n’avez pas besoin.</translation>
    </message>
    <message>
        <source>“%@” was changed while it was uploaded.</source>
        <translation>« %@ » a été modifié pendant son envoi.</translation>
    </message>
    <message>
        <source>“%@” was copied, but its original stays where it was.</source>
        <translation>« %@ » a été copié, mais son original reste où il était.</translation>
    </message>
    <message>
        <source>“%@” was copied, but may not be safe on the disk. Its original stays where it was.</source>
        <translation>« %@ » a été copié, mais n’est peut-être pas en sécurité sur le disque. Son original reste où il était.</translation>
    </message>
    <message>
        <source>“%@” was imported in part: %@</source>
        <translation>« %@ » a été importé en partie : %@</translation>
    </message>
    <message>
        <source>“%@” was not added. %@</source>
        <translation>« %@ » n’a pas été ajouté. %@</translation>
    </message>
    <message>
        <source>“%@” was not copied. %@</source>
        <translation>« %@ » n’a pas été copié. %@</translation>
    </message>
    <message>
        <source>“%@” was not exported. %@</source>
        <translation>« %@ » n’a pas été exporté. %@</translation>
    </message>
    <message>
        <source>“%@” was not rated: %@</source>
        <translation>« %@ » n’a pas été noté : %@</translation>
    </message>
    <message>
        <source>“%@” was not unpacked: %@. If you trust it, unpack it yourself and import what it holds, or raise the limit with `zelto defaults`.</source>
        <translation>« %@ » n’a pas été décompressé : %@. Si vous lui faites confiance, décompressez-le vous-même et importez son contenu, ou relevez la limite avec `zelto defaults`.</translation>
    </message>
    <message>
        <source>“%@” was opened as a library, so that it is no backup any more, and stays.</source>
        <translation>« %@ » a été ouverte comme bibliothèque : ce n’est plus une sauvegarde, et elle reste.</translation>
    </message>
    <message>
        <source>“%@” was put into the trash</source>
        <translation>« %@ » a été mis à la corbeille</translation>
    </message>
    <message>
        <source>“%@” was taken out of the comparison.</source>
        <translation>« %@ » a été retirée de la comparaison.</translation>
    </message>
    <message>
        <source>“%@” was written with %d layers</source>
        <translation>« %@ » a été écrit avec %d calques</translation>
    </message>
    <message>
        <source>“%@” was written with one layer</source>
        <translation>« %@ » a été écrit avec un calque</translation>
    </message>
    <message>
        <source>“%@” was written without what can't be read as a picture.</source>
        <translation>« %@ » a été écrit sans ce qui ne peut pas être lu comme une image.</translation>
    </message>
    <message>
        <source>“%@” was written, but pictures in it are incomplete.</source>
        <translation>« %@ » a été écrit, mais des images qu’il contient sont incomplètes.</translation>
    </message>
    <message>
        <source>“%@”: %@</source>
        <translation>« %@ » : %@</translation>
    </message>
    <message>
        <source>“%@”: %@ There are %d more notes like this.</source>
        <translation>« %@ » : %@ Il y a encore %d remarques de ce genre.</translation>
    </message>
    <message>
        <source>“==” compares nothing here; write it behind a token, as #width=100.</source>
        <translation>« == » ne compare rien ici ; écrivez-le après un token, comme #width=100.</translation>
    </message>
    <message>
        <source>“file” is missing: the name of the form field for the file.</source>
        <translation>« file » est manquant : le nom du champ de formulaire pour le fichier.</translation>
    </message>
    <message>
        <source>“final” is true.</source>
        <translation>« final » vaut true.</translation>
    </message>
    <message>
        <source>“format” is missing; it is 1.</source>
        <translation>« format » est manquant ; c’est 1.</translation>
    </message>
    <message>
        <source>“link” must hold one of “pointer”, “header”, “final”, or both “before” and “after”.</source>
        <translation>« link » doit contenir l’un des champs « pointer », « header », « final », ou à la fois « before » et « after ».</translation>
    </message>
    <message>
        <source>“raw” is true, or left out.</source>
        <translation>« raw » vaut true, ou est omis.</translation>
    </message>
    <message>
        <source>“{” and “}” stand only around a secret: {secret:NAME}, with letters, digits, “-” and “_” in its name.</source>
        <translation>« { » et « } » n’entourent qu’un secret : {secret:NAME}, avec des lettres, des chiffres, « - » et « _ » dans son nom.</translation>
    </message>
</context>
<context>
    <name>HumanizedTimeLocalizable</name>
    <message>
        <source>LaterKey</source>
        <extracomment>from now</extracomment>
        <translation>plus tard</translation>
    </message>
    <message>
        <source>AgoKey</source>
        <extracomment>ago</extracomment>
        <translation>plus tôt</translation>
    </message>
    <message>
        <source>YearKey</source>
        <extracomment>1 year</extracomment>
        <translation>1 an</translation>
    </message>
    <message>
        <source>YearsKey</source>
        <extracomment>years</extracomment>
        <translation>ans</translation>
    </message>
    <message>
        <source>DayKey</source>
        <extracomment>day</extracomment>
        <translation>jour</translation>
    </message>
    <message>
        <source>DaysKey</source>
        <extracomment>days</extracomment>
        <translation>jours</translation>
    </message>
    <message>
        <source>AboutKey</source>
        <extracomment>about</extracomment>
        <translation>environ</translation>
    </message>
    <message>
        <source>HourKey</source>
        <extracomment>an hour</extracomment>
        <translation>une heure</translation>
    </message>
    <message>
        <source>HoursKey</source>
        <extracomment>hours</extracomment>
        <translation>heures</translation>
    </message>
    <message>
        <source>MinuteKey</source>
        <extracomment>minute</extracomment>
        <translation>minute</translation>
    </message>
    <message>
        <source>MinutesKey</source>
        <extracomment>minutes</extracomment>
        <translation>minutes</translation>
    </message>
    <message>
        <source>SecondKey</source>
        <extracomment>seconds</extracomment>
        <translation>quelques secondes</translation>
    </message>
</context>
</TS>
