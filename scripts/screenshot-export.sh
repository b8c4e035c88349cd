#!/usr/bin/env bash
# Makes docs/screenshots/export-*.png: the pages of the HTML export, written by vinora-cli
# from the export tests' catalogue and rendered by headless Chromium (installed from Debian
# when missing). Then checks, in the browser, that every page is shown as written: the disc
# titled <script>alert(1)</script> appears as that text and no script element comes of it,
# and every cover picture the pages refer to is found and loads.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build}
shots=docs/screenshots

if ! command -v chromium >/dev/null; then
  if [ "$(id -u)" -eq 0 ]; then run() { "$@"; }; else run() { sudo "$@"; }; fi
  export DEBIAN_FRONTEND=noninteractive
  run apt-get update -qq
  run apt-get install -y -qq --no-install-recommends chromium
fi

cmake --build "$build" --target vinora-cli vinora-export-sample -j "$(nproc)" >/dev/null
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
home="$work/home"
pages="$work/pages"
mkdir -p "$pages"
"$build/tests/exchange/vinora-export-sample" "$home"

cli() { VINORA_HOME="$home" "$build/src/cli/vinora-cli" "$@" >/dev/null; }
cli export catalogue AD "$pages/export-audio.htm" --all-fields --sorted
cli export catalogue PC "$pages/export-pc.htm" --all-fields
cli export catalogue DVD "$pages/export-dvd.htm" --all-fields
cli export files 1 "$pages/export-files.htm" --all-fields
cli export tracks 2 "$pages/export-tracks.htm" --all-fields
cli export debtors "$pages/export-debtors.htm" --all-fields

browser=(chromium --headless --no-sandbox --disable-gpu --hide-scrollbars --no-first-run
         --disable-dev-shm-usage --user-data-dir="$work/profile")

# What the browser made of a page: its pictures, whether they loaded, its script elements
# and whether the title of the script disc is there as text.
cat > "$pages/check.html" <<'HTML'
<html><body><pre id="result">pending</pre><iframe id="page"></iframe><script>
const frame = document.getElementById('page');
frame.onload = () => {
  const page = frame.contentDocument;
  const images = [...page.images];
  const broken = images.filter(i => !(i.complete && i.naturalWidth > 0)).map(i => i.getAttribute('src'));
  const title = page.body.innerText.includes('<script>alert(1)<\/script>');
  document.getElementById('result').textContent =
    `images=${images.length} broken=${broken.join(',') || 'none'} ` +
    `scripts=${page.getElementsByTagName('script').length} title-as-text=${title}`;
};
frame.src = location.search.slice(1);
</script></body></html>
HTML

failed=0
check() { # page, what the check must say
  local said
  said=$("${browser[@]}" --allow-file-access-from-files --virtual-time-budget=10000 \
         --dump-dom "file://$pages/check.html?$1" 2>/dev/null | sed -n 's:.*<pre id="result">\([^<]*\)</pre>.*:\1:p')
  if [ "$said" = "$2" ]; then
    echo "ok      $1: $said"
  else
    echo "FAILED  $1: '$said', expected '$2'"
    failed=1
  fi
}
check export-audio.htm "images=1 broken=none scripts=0 title-as-text=true"
check export-pc.htm "images=1 broken=none scripts=0 title-as-text=false"
check export-dvd.htm "images=1 broken=none scripts=0 title-as-text=false"
check export-files.htm "images=0 broken=none scripts=0 title-as-text=false"
check export-tracks.htm "images=0 broken=none scripts=0 title-as-text=true"
check export-debtors.htm "images=0 broken=none scripts=0 title-as-text=true"

# The pictures are where the pages say, next to them in the ".files" folders.
for page in "$pages"/export-*.htm; do
  for src in $(iconv -f cp1251 -t utf-8 "$page" | sed -n 's:.*<img src="\([^"]*\)".*:\1:p'); do
    if [ -f "$pages/${src//\\//}" ]; then
      echo "ok      $(basename "$page"): $src is there"
    else
      echo "FAILED  $(basename "$page"): $src is missing"
      failed=1
    fi
  done
done

# The page as the browser parsed it: the title is text, not an element.
dom=$("${browser[@]}" --dump-dom "file://$pages/export-audio.htm" 2>/dev/null)
if grep -q '&lt;script&gt;alert(1)&lt;/script&gt;' <<<"$dom" && ! grep -q '<script' <<<"$dom"; then
  echo "ok      export-audio.htm: the script title is text in the parsed page"
else
  echo "FAILED  export-audio.htm: the script title became markup"
  failed=1
fi

for page in "$pages"/export-*.htm; do
  name=$(basename "$page" .htm)
  "${browser[@]}" --window-size=1100,620 --screenshot="$work/$name.png" "file://$page" 2>/dev/null
  cp "$work/$name.png" "$shots/$name.png"
done
echo "$shots/export-*.png written"
exit $failed
