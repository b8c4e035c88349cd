#!/usr/bin/env bash
# Starting inputs for the volume fuzz targets, made with real tools from a tiny tree:
#   bash make_volume_inputs.sh OUTPUT_FOLDER
# OUTPUT_FOLDER is the corpus of one target (fuzz_volume_iso, fuzz_volume_nrg or
# fuzz_volume_cue, told by its name); each stays under 100 KB.
set -euo pipefail
out=$1
target=$(basename "$out")
mkdir -p "$out"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

tree=$work/tree
mkdir -p "$tree/DOCS/SUB" "$tree/MUSIC"
printf 'root file\n' > "$tree/README.TXT"
printf 'a%.0s' $(seq 1 300) > "$tree/DOCS/A.TXT"
printf 'b\n' > "$tree/DOCS/SUB/B.TXT"
{ head -c 200 /dev/zero; printf 'TAG%-30s%-30s' 'Title' 'Artist'; head -c 65 /dev/zero; } > "$tree/MUSIC/SONG.MP3"

iso() { genisoimage -quiet -V FUZZ -o "$1" "${@:2}" "$tree"; }
iso "$work/plain.iso"
iso "$work/joliet.iso" -J
iso "$work/rock.iso" -R
iso "$work/udf.iso" -udf
xorriso -dev "$work/xorriso.iso" -volid FUZZ -padding 0 -map "$tree" / -commit > /dev/null 2>&1
# Rock Ridge names of 255 bytes, which go on in continuation areas.
long=$(printf 'Ж%.0s' $(seq 1 127))
xorriso -outdev "$work/long.iso" -volid FUZZ -padding 0 -joliet off \
  -map "$tree/README.TXT" "/$long" -map "$tree/DOCS/A.TXT" "/$long/$long" > /dev/null 2>&1
truncate -s 1M "$work/mkudffs.img"
mkudffs --label=FUZZ --blocksize=2048 --media-type=hd "$work/mkudffs.img" > /dev/null

# Only what a fuzzer can grow from: the sectors up to the last one in use.
trim() { # image out
  python3 - "$1" "$2" <<'PY'
import sys
data = open(sys.argv[1], "rb").read()
end = len(data.rstrip(b"\0"))
open(sys.argv[2], "wb").write(data[:(end + 2047) // 2048 * 2048])
PY
}

# A UDF volume needs its anchor at sector 256: such images are written as their sectors in
# use, each as a 4-byte little-endian number and its 2048 bytes, after the line "SECTORS".
sparse() { # image out
  python3 - "$1" "$2" <<'PY'
import struct, sys
data = open(sys.argv[1], "rb").read()
out = bytearray(b"SECTORS\n")
last = len(data) // 2048 - 1
for n in range(last + 1):
    sector = data[n * 2048:(n + 1) * 2048]
    # genisoimage pads with copies of the anchor: the first and the last will do
    anchor = sector[:2] == b"\x02\x00" and n not in (256, last)
    if sector.strip(b"\0") and not anchor:
        out += struct.pack("<I", n) + sector
open(sys.argv[2], "wb").write(bytes(out))
PY
}

# A Nero image of a data track in mode 2 (2336-byte sectors), chunks, and the footer.
nrg() { # iso out
  python3 - "$1" "$2" <<'PY'
import struct, sys
iso = open(sys.argv[1], "rb").read()
iso = iso[:(len(iso.rstrip(b"\0")) + 2047) // 2048 * 2048]
sectors = len(iso) // 2048
data = bytearray()
for i in range(sectors):
    data += bytes([0, 0, 8, 0, 0, 0, 8, 0]) + iso[i * 2048:(i + 1) * 2048] + bytes(280)
def chunk(name, body):
    return name + struct.pack(">I", len(body)) + body
track = struct.pack(">QQIIQ", 0, sectors * 2336, 3, 0, 0)
chunks = chunk(b"ETN2", track) + chunk(b"SINF", struct.pack(">I", 1)) + chunk(b"END!", b"")
open(sys.argv[2], "wb").write(bytes(data) + chunks + b"NER5" + struct.pack(">Q", len(data)))
PY
}

case "$target" in
  fuzz_volume_iso)
    for name in plain joliet rock; do trim "$work/$name.iso" "$out/$name.iso"; done
    sparse "$work/xorriso.iso" "$out/xorriso.sectors"
    sparse "$work/long.iso" "$out/long-names.sectors"
    sparse "$work/udf.iso" "$out/udf.sectors"
    sparse "$work/mkudffs.img" "$out/mkudffs.sectors"
    ;;
  fuzz_volume_nrg)
    mkdir -p "$work/small"
    printf 'x\n' > "$work/small/X.TXT"
    genisoimage -quiet -V NRG -o "$work/small.iso" "$work/small"
    nrg "$work/small.iso" "$out/small.nrg"
    # The same footer after a version 1 offset.
    python3 - "$out/small.nrg" "$out/small-v1.nrg" <<'PY'
import struct, sys
b = open(sys.argv[1], "rb").read()
offset = struct.unpack(">Q", b[-8:])[0]
open(sys.argv[2], "wb").write(b[:-12] + b"NERO" + struct.pack(">I", offset))
PY
    ;;
  fuzz_volume_cue)
    printf 'FILE "data.bin" BINARY\n  TRACK 01 MODE1/2352\n    INDEX 01 00:00:00\n' > "$out/data.cue"
    printf 'FILE "data.bin" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n  TRACK 02 MODE1/2352\n    INDEX 00 00:00:10\n    INDEX 01 00:00:20\n' > "$out/mixed.cue"
    printf 'REM GENRE Fuzz\nPERFORMER "Fuzz"\nTITLE "Fuzz"\nFILE data.bin BINARY\n  TRACK 01 AUDIO\n    FLAGS DCP\n    PREGAP 00:02:00\n    INDEX 01 00:00:00\n' > "$out/audio.cue"
    ;;
  *)
    echo "unknown target $target" >&2
    exit 1
    ;;
esac
