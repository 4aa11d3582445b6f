; What installer and uninstaller say in their own words; the pages bring theirs along. The languages
; are those of the program, in its order. The first serves everybody whose own is missing.

!macro Language name number running startMenu openWith desktop settings picture \
        programHint startMenuHint openWithHint desktopHint removeHint settingsHint
    !insertmacro MUI_LANGUAGE "${name}"
    LangString TextRunning ${LANG_${number}} "${running}"
    LangString TextStartMenu ${LANG_${number}} "${startMenu}"
    LangString TextOpenWith ${LANG_${number}} "${openWith}"
    LangString TextDesktop ${LANG_${number}} "${desktop}"
    LangString TextSettings ${LANG_${number}} "${settings}"
    LangString TextPicture ${LANG_${number}} "${picture}"
    LangString TextProgramHint ${LANG_${number}} "${programHint}"
    LangString TextStartMenuHint ${LANG_${number}} "${startMenuHint}"
    LangString TextOpenWithHint ${LANG_${number}} "${openWithHint}"
    LangString TextDesktopHint ${LANG_${number}} "${desktopHint}"
    LangString TextRemoveHint ${LANG_${number}} "${removeHint}"
    LangString TextSettingsHint ${LANG_${number}} "${settingsHint}"
!macroend

!insertmacro Language "English" ENGLISH \
    "Plenoviz is running. Please close it first." \
    "Start menu entry" \
    "$\"Open with$\" for pictures" \
    "Desktop icon" \
    "Settings" \
    "Picture" \
    "The program, its texts and the command line plenoviz-cli." \
    "Starts Plenoviz from the start menu." \
    "Offers Plenoviz for BMP, JPEG, TIFF and PNG pictures. What opens them by default stays as it is." \
    "Starts Plenoviz from the desktop." \
    "The program and the exposures of its last series. Your pictures stay." \
    "The positions of the sliders and the quality of JPEG files. If not removed, they wait for the next installation."

!insertmacro Language "German" GERMAN \
    "Plenoviz läuft noch. Bitte schließen Sie es zuerst." \
    "Eintrag im Startmenü" \
    "„Öffnen mit“ für Bilder" \
    "Symbol auf dem Desktop" \
    "Einstellungen" \
    "Bild" \
    "Das Programm, seine Texte und die Befehlszeile plenoviz-cli." \
    "Startet Plenoviz aus dem Startmenü." \
    "Bietet Plenoviz für Bilder in BMP, JPEG, TIFF und PNG an. Das Standardprogramm bleibt, wie es ist." \
    "Startet Plenoviz vom Desktop." \
    "Das Programm und die Belichtungen der letzten Reihe. Ihre Bilder bleiben." \
    "Reglerstellungen und JPEG-Qualität. Ohne Häkchen bleiben sie für die nächste Installation."

!insertmacro Language "French" FRENCH \
    "Plenoviz est en cours d'exécution. Veuillez d'abord le fermer." \
    "Entrée du menu Démarrer" \
    "« Ouvrir avec » pour les images" \
    "Icône sur le bureau" \
    "Réglages" \
    "Image" \
    "Le programme, ses textes et la ligne de commande plenoviz-cli." \
    "Démarre Plenoviz depuis le menu Démarrer." \
    "Propose Plenoviz pour les images BMP, JPEG, TIFF et PNG. Le programme par défaut reste inchangé." \
    "Démarre Plenoviz depuis le bureau." \
    "Le programme et les expositions de la dernière série. Vos images restent." \
    "La position des curseurs et la qualité des fichiers JPEG. Sinon, ils attendent la prochaine installation."

!insertmacro Language "Spanish" SPANISH \
    "Plenoviz se está ejecutando. Ciérrelo primero." \
    "Entrada en el menú Inicio" \
    "«Abrir con» para imágenes" \
    "Icono en el escritorio" \
    "Configuración" \
    "Imagen" \
    "El programa, sus textos y la línea de comandos plenoviz-cli." \
    "Inicia Plenoviz desde el menú Inicio." \
    "Ofrece Plenoviz para imágenes BMP, JPEG, TIFF y PNG. El programa predeterminado no cambia." \
    "Inicia Plenoviz desde el escritorio." \
    "El programa y las exposiciones de la última serie. Sus imágenes se conservan." \
    "La posición de los controles y la calidad de los archivos JPEG. Si no, esperan a la próxima instalación."

!insertmacro Language "Italian" ITALIAN \
    "Plenoviz è in esecuzione. Chiuderlo prima di continuare." \
    "Voce nel menu Start" \
    "«Apri con» per le immagini" \
    "Icona sul desktop" \
    "Impostazioni" \
    "Immagine" \
    "Il programma, i suoi testi e la riga di comando plenoviz-cli." \
    "Avvia Plenoviz dal menu Start." \
    "Propone Plenoviz per le immagini BMP, JPEG, TIFF e PNG. Il programma predefinito resta invariato." \
    "Avvia Plenoviz dal desktop." \
    "Il programma e le esposizioni dell'ultima serie. Le immagini restano." \
    "La posizione dei cursori e la qualità dei file JPEG. Altrimenti restano per la prossima installazione."

!insertmacro Language "PortugueseBR" PORTUGUESEBR \
    "O Plenoviz está em execução. Feche-o primeiro." \
    "Item no menu Iniciar" \
    "«Abrir com» para imagens" \
    "Ícone na área de trabalho" \
    "Configurações" \
    "Imagem" \
    "O programa, seus textos e a linha de comando plenoviz-cli." \
    "Inicia o Plenoviz pelo menu Iniciar." \
    "Oferece o Plenoviz para imagens BMP, JPEG, TIFF e PNG. O programa padrão continua o mesmo." \
    "Inicia o Plenoviz pela área de trabalho." \
    "O programa e as exposições da última série. Suas imagens permanecem." \
    "A posição dos controles e a qualidade dos arquivos JPEG. Caso contrário, ficam para a próxima instalação."

!insertmacro Language "Dutch" DUTCH \
    "Plenoviz is nog actief. Sluit het eerst." \
    "Item in het startmenu" \
    "‘Openen met’ voor afbeeldingen" \
    "Pictogram op het bureaublad" \
    "Instellingen" \
    "Afbeelding" \
    "Het programma, zijn teksten en de opdrachtregel plenoviz-cli." \
    "Start Plenoviz vanuit het startmenu." \
    "Biedt Plenoviz aan voor BMP-, JPEG-, TIFF- en PNG-afbeeldingen. Het standaardprogramma blijft gelijk." \
    "Start Plenoviz vanaf het bureaublad." \
    "Het programma en de belichtingen van de laatste reeks. Uw afbeeldingen blijven." \
    "De stand van de schuiven en de JPEG-kwaliteit. Anders blijven ze voor een volgende installatie."

!insertmacro Language "Polish" POLISH \
    "Plenoviz jest uruchomiony. Najpierw go zamknij." \
    "Skrót w menu Start" \
    "„Otwórz za pomocą” dla obrazów" \
    "Ikona na pulpicie" \
    "Ustawienia" \
    "Obraz" \
    "Program, jego teksty i wiersz poleceń plenoviz-cli." \
    "Uruchamia Plenoviz z menu Start." \
    "Oferuje Plenoviz dla obrazów BMP, JPEG, TIFF i PNG. Program domyślny pozostaje bez zmian." \
    "Uruchamia Plenoviz z pulpitu." \
    "Program i ekspozycje ostatniej serii. Twoje obrazy pozostają." \
    "Położenie suwaków i jakość plików JPEG. Nieusunięte czekają na następną instalację."

!insertmacro Language "Czech" CZECH \
    "Plenoviz je spuštěn. Nejprve jej zavřete." \
    "Položka v nabídce Start" \
    "„Otevřít v programu“ pro obrázky" \
    "Ikona na ploše" \
    "Nastavení" \
    "Obrázek" \
    "Program, jeho texty a příkazový řádek plenoviz-cli." \
    "Spustí Plenoviz z nabídky Start." \
    "Nabídne Plenoviz pro obrázky BMP, JPEG, TIFF a PNG. Výchozí program se nezmění." \
    "Spustí Plenoviz z plochy." \
    "Program a expozice poslední série. Vaše obrázky zůstanou." \
    "Poloha posuvníků a kvalita souborů JPEG. Jinak počkají na příští instalaci."

!insertmacro Language "Swedish" SWEDISH \
    "Plenoviz är igång. Stäng det först." \
    "Post i Start-menyn" \
    "”Öppna med” för bilder" \
    "Ikon på skrivbordet" \
    "Inställningar" \
    "Bild" \
    "Programmet, dess texter och kommandoraden plenoviz-cli." \
    "Startar Plenoviz från Start-menyn." \
    "Erbjuder Plenoviz för BMP-, JPEG-, TIFF- och PNG-bilder. Standardprogrammet ändras inte." \
    "Startar Plenoviz från skrivbordet." \
    "Programmet och den senaste seriens exponeringar. Dina bilder blir kvar." \
    "Reglagens lägen och JPEG-filers kvalitet. Annars väntar de på nästa installation."

!insertmacro Language "Turkish" TURKISH \
    "Plenoviz çalışıyor. Lütfen önce kapatın." \
    "Başlat menüsü öğesi" \
    "Resimler için “Birlikte aç”" \
    "Masaüstü simgesi" \
    "Ayarlar" \
    "Resim" \
    "Program, metinleri ve plenoviz-cli komut satırı." \
    "Plenoviz'i Başlat menüsünden başlatır." \
    "BMP, JPEG, TIFF ve PNG resimleri için Plenoviz'i önerir. Varsayılan program değişmez." \
    "Plenoviz'i masaüstünden başlatır." \
    "Program ve son dizinin pozlamaları. Resimleriniz kalır." \
    "Kaydırıcıların konumları ve JPEG dosyalarının kalitesi. Kaldırılmazsa sonraki kurulumu bekler."

!insertmacro Language "Russian" RUSSIAN \
    "Plenoviz запущен. Сначала закройте его." \
    "Ярлык в меню «Пуск»" \
    "«Открыть с помощью» для изображений" \
    "Значок на рабочем столе" \
    "Настройки" \
    "Изображение" \
    "Программа, её тексты и командная строка plenoviz-cli." \
    "Запускает Plenoviz из меню «Пуск»." \
    "Предлагает Plenoviz для изображений BMP, JPEG, TIFF и PNG. Программа по умолчанию не меняется." \
    "Запускает Plenoviz с рабочего стола." \
    "Программа и экспозиции последней серии. Ваши изображения остаются." \
    "Положения ползунков и качество файлов JPEG. Иначе они останутся до следующей установки."

!insertmacro Language "Ukrainian" UKRAINIAN \
    "Plenoviz запущено. Спершу закрийте його." \
    "Ярлик у меню «Пуск»" \
    "«Відкрити за допомогою» для зображень" \
    "Значок на робочому столі" \
    "Налаштування" \
    "Зображення" \
    "Програма, її тексти та командний рядок plenoviz-cli." \
    "Запускає Plenoviz з меню «Пуск»." \
    "Пропонує Plenoviz для зображень BMP, JPEG, TIFF і PNG. Програма за замовчуванням не змінюється." \
    "Запускає Plenoviz з робочого столу." \
    "Програма та експозиції останньої серії. Ваші зображення залишаються." \
    "Положення повзунків і якість файлів JPEG. Інакше вони залишаться до наступного встановлення."

!insertmacro Language "Japanese" JAPANESE \
    "Plenoviz が実行中です。先に終了してください。" \
    "スタート メニューの項目" \
    "画像の「プログラムから開く」" \
    "デスクトップのアイコン" \
    "設定" \
    "画像" \
    "プログラム、その文言、コマンドラインの plenoviz-cli。" \
    "スタート メニューから Plenoviz を起動します。" \
    "BMP、JPEG、TIFF、PNG 画像に Plenoviz を表示します。既定のプログラムは変わりません。" \
    "デスクトップから Plenoviz を起動します。" \
    "プログラムと最後のシリーズの露出画像。お客様の画像は残ります。" \
    "スライダーの位置と JPEG の品質。削除しなければ次回のインストールで使われます。"

!insertmacro Language "SimpChinese" SIMPCHINESE \
    "Plenoviz 正在运行，请先关闭它。" \
    "开始菜单项" \
    "图片的“打开方式”" \
    "桌面图标" \
    "设置" \
    "图片" \
    "程序、界面文字和命令行 plenoviz-cli。" \
    "从开始菜单启动 Plenoviz。" \
    "为 BMP、JPEG、TIFF 和 PNG 图片提供 Plenoviz。默认程序保持不变。" \
    "从桌面启动 Plenoviz。" \
    "程序和最近一个系列的曝光图。您的图片会保留。" \
    "滑块位置和 JPEG 文件的质量。如不删除，将留给下次安装使用。"
