#!/usr/bin/env bash
# Renders the banner and the icon from their vector sources. The results are committed, so only who
# changes the artwork needs this: apt-get install librsvg2-bin imagemagick fonts-inter python3
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
res=$(dirname "$here")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for tool in rsvg-convert convert python3 fc-match; do
    command -v "$tool" >/dev/null || { echo "render.sh: $tool is missing, see the head of this file" >&2; exit 1; }
done
case $(fc-match -f '%{family}' 'Inter Display') in
    *Inter*) ;;
    *) echo "render.sh: the font Inter is missing (package fonts-inter)" >&2; exit 1 ;;
esac

rsvg-convert "$here/banner.svg" -o "$work/banner.png"
convert "$work/banner.png" -strip -sampling-factor 1x1 -quality 91 "$res/controlcenter.jpg"

pictures=()
for size in 16 20 24 32 40 48 64 128 256; do
    source=$here/icon.svg
    [ "$size" -le 32 ] && source=$here/icon-small.svg
    rsvg-convert -w "$size" -h "$size" "$source" -o "$work/full.png"
    # 48 levels a colour: no step is seen, and the largest pictures take a third less. No dates in
    # the file: the same sources give the same bytes.
    levels=256
    [ "$size" -ge 64 ] && levels=48
    convert "$work/full.png" -strip -channel RGB +dither -posterize "$levels" +channel \
        -define png:exclude-chunks=date,time -define png:compression-level=9 \
        -define png:compression-filter=1 "PNG32:$work/$size.png"
    pictures+=("$work/$size.png")
done
python3 "$here/pack_icon.py" "$res/korcontrolcenter.ico" "${pictures[@]}"
ls -l "$res/controlcenter.jpg" "$res/korcontrolcenter.ico"
