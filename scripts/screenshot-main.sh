#!/usr/bin/env bash
# Takes docs/screenshots/main.png: the main window under Xvfb on a small catalogue, with an
# unknown disc image in the virtual drive (its "Диск (?)" sign blinking).
# Usage: scripts/screenshot-main.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
command -v import >/dev/null || { echo "installing imagemagick for the screenshot"; \
  if [ "$(id -u)" -eq 0 ]; then apt-get install -y -qq imagemagick >/dev/null; else sudo apt-get install -y -qq imagemagick >/dev/null; fi; }

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
mkdir -p "$home/tree/Фото" && echo "notes" > "$home/tree/readme.txt"
genisoimage -quiet -J -V "Отпуск 2026" -input-charset utf-8 -o "$home/holiday.iso" "$home/tree"

# A first start creates the databases; then a few rows and a loan due today.
VINORA_HOME="$home" "$build/src/cli/vinora-cli" add-image "$home/holiday.iso"
cat > "$home/vinora.ini" <<INI
[Option]
ConfirmExit=0
Drive=$home/holiday.iso
tmrCD=1
tmrDue=1
[VirtualDrives]
Image1=$home/holiday.iso
INI
cat > "$home/run.sh" <<RUN
"$PWD/$build/src/app/vinora" &
pid=\$!
sleep 2
sqlite3 "$home/vinora.db" "
  INSERT INTO Аудио (Номер, Название, Альбом, КодСтиля) VALUES (1, 'Кино', 'Группа крови', 27), (2, 'Аквариум', 'Равноденствие', 27), (3, 'Pink Floyd', 'The Wall', 13);
  INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (1, 'Офисные программы 2026', 22);
  INSERT INTO _Информация (ПослОбновлАудио, ПослОбновлКомпьютер) VALUES (date('now','localtime'), date('now','localtime'));
  INSERT INTO ИменаДолжников (Имя, Телефон) VALUES ('Пётр', '555-01-02');
  INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВозврата) VALUES (1, 2, 'AD', date('now','localtime'));"
kill \$pid; wait \$pid 2>/dev/null || true
"$PWD/$build/src/app/vinora" &
pid=\$!
sleep 4
import -window root "$PWD/docs/screenshots/main.png"
kill \$pid
RUN
VINORA_HOME="$home" xvfb-run -a -s "-screen 0 1000x640x24" bash "$home/run.sh"
echo "docs/screenshots/main.png written"
