#!/usr/bin/env bash
# The HTML page of a hostile trace in a real browser and in libxml2's HTML parser:
#   - it refers to nothing outside itself and holds no script;
#   - xmllint --html finds nothing to report;
#   - Chromium, headless and with every network address unreachable, loads it with no console
#     message, shows the SQL text and bind values with "<script>" and "]]>" as text, and draws
#     the response-time bars at the widths of the trace's figures;
#   - the screenshot is kept in ARTEFACTS/hostile.png.
# Usage: html_browser_test.sh PELICOR DATA_DIR ARTEFACTS_DIR. Exit 77 (skip) without chromium
# or xmllint (scripts/deps.sh installs both).
set -euo pipefail
pelicor=$1
data=$2
artefacts=$3
for tool in chromium xmllint; do
  command -v "$tool" >/dev/null || { echo "skip: $tool is not installed"; exit 77; }
done
mkdir -p "$artefacts"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

page=$work/hostile.html
"$pelicor" html "$data/hostile.trc" -o "$page"

# Self-contained: nothing fetched, no script.
if grep -Eiq '(src|href)="(https?:|//|file:)|<link|@import|url\(' "$page"; then
  fail "the page refers to something outside itself"
fi
grep -qi '<script' "$page" && fail "the page holds a script element"

lint=$(xmllint --html --noout "$page" 2>&1) || true
[ -z "$lint" ] || fail "xmllint --html: $lint"

# One browser run gives the DOM and the screenshot.
chromium --headless --no-sandbox --disable-gpu --no-first-run --disable-extensions \
  --user-data-dir="$work/browser" --proxy-server=127.0.0.1:9 \
  --host-resolver-rules='MAP * ~NOTFOUND' --enable-logging=stderr --v=0 \
  --window-size=1280,1600 --screenshot="$artefacts/hostile.png" --dump-dom \
  "file://$page" >"$work/dom.html" 2>"$work/browser.log" || fail "chromium failed: $(tail -5 "$work/browser.log")"
[ -s "$artefacts/hostile.png" ] || fail "no screenshot"
if grep -E 'CONSOLE|net::ERR' "$work/browser.log"; then fail "console messages or fetches"; fi
grep -qi '<script' "$work/dom.html" && fail "a script element reached the DOM"
for text in "&lt;script&gt;alert(\"x\")&lt;/script&gt;', ']]&gt;' from dual" \
  '&lt;script&gt;b()&lt;/script&gt;]]&gt;' '&lt;script&gt;m()&lt;/script&gt;' '&lt;b&gt;inst&lt;/b&gt;'; do
  grep -qF "$text" "$work/dom.html" || fail "not shown as text: $text"
done

# The trace's response time is 1 s: CPU 0.25 s, the read 0.5 s, 0.05 s unaccounted-for and
# 0.2 s idle; the bars of the 300-pixel chart come in that order.
widths=$(grep -o "%3Crect%20x='0.0'%20y='2.0'%20width='[0-9.]*'" "$work/dom.html" | head -4 |
  sed "s/.*width='\([0-9.]*\)'/\1/" | tr '\n' ' ')
[ "$widths" = "75.0 150.0 15.0 60.0 " ] || fail "bar widths: $widths"
echo "ok: $(wc -c <"$page") bytes, screenshot $artefacts/hostile.png"
