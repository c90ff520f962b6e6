# shellcheck shell=bash
# What the scripts share, read with `. scripts/common.sh` from the top of the repository: installing
# missing tools from Debian's packages, building gm5, timing a job, and the frames ImageMagick
# draws to compare with gm5's default animation.

# ImageMagick 6 by its own names: a `convert` earlier on PATH may be another program.
# shellcheck disable=SC2034
im_convert=convert-im6.q16
# shellcheck disable=SC2034
im_montage=montage-im6.q16

# Installs from Debian's packages each PACKAGE whose COMMAND is missing; arguments are
# COMMAND:PACKAGE pairs. Runs apt-get update once, and only when something is missing.
install_missing() {
  local pair missing=() sudo_cmd=()
  for pair in "$@"; do
    command -v "${pair%%:*}" >/dev/null 2>&1 || missing+=("${pair#*:}")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends \
    "${missing[@]}"
}

# Builds gm5 (native preset) with what its build needs, configuring first on a clean checkout.
# Quiet unless the build fails.
build_gm5() {
  local log
  scripts/install-deps --native
  [ -f build/native/build.ninja ] || cmake --preset native >/dev/null
  log=$(cmake --build --preset native -j2 --target gm5 2>&1) || { printf '%s\n' "$log" >&2; return 1; }
}

# The effects gm5 can build, one name a line, from the last column of `gm5 effects`.
buildable_effects() {
  "$1" effects | sed -n 's/^ *[0-9]* \(.*[^ ]\) *build$/\1/p'
}

# Prints "WIDTH HEIGHT" of a PNG file, from its header.
png_size() {
  od -An -tu1 -j16 -N8 "$1" |
    awk '{print $1*16777216+$2*65536+$3*256+$4, $5*16777216+$6*65536+$7*256+$8}'
}

# Prints "best median" in seconds of RUNS runs of a command.
measure() {
  local runs=$1 r start end times=()
  shift
  for ((r = 0; r < runs; r++)); do
    start=$(date +%s.%N)
    "$@"
    end=$(date +%s.%N)
    times+=("$(awk -v a="$start" -v b="$end" 'BEGIN {printf "%.4f", b - a}')")
  done
  printf '%s\n' "${times[@]}" | sort -n | awk '{t[NR]=$1} END {print t[1], t[int((NR+1)/2)]}'
}

# Prints "best median" in seconds of processor time (user and system, the command's children
# included) of RUNS runs of a command. Unlike wall time it hardly moves when other work shares the
# machine, so two programs measured at different moments still compare.
measure_cpu() {
  local runs=$1 r times=() TIMEFORMAT='%3U %3S' spent
  shift
  spent=$(mktemp)
  for ((r = 0; r < runs; r++)); do
    { time "$@" 2>/dev/null; } 2>"$spent"
    times+=("$(awk '{printf "%.4f", $1 + $2}' "$spent")")
  done
  rm -f "$spent"
  printf '%s\n' "${times[@]}" | sort -n | awk '{t[NR]=$1} END {print t[1], t[int((NR+1)/2)]}'
}

# Sets magick_args to ImageMagick arguments that draw frames of an animation of FRAMES frames of
# WIDTH x HEIGHT showing TEXT, as gm5's default animation shows it: the text scrolled in from the
# right edge, its shadow blurred, the text filled and outlined, flattened onto white. Draws the
# frames whose indices (from 0) follow, or every frame when none follow.
# Usage: magick_frame_args FRAMES WIDTH HEIGHT TEXT [INDEX ...]
magick_frame_args() {
  local frames=$1 width=$2 height=$3 text=$4 i x size=$(($3 * 7 / 10))
  shift 4
  local indices=("$@")
  [ ${#indices[@]} -gt 0 ] || mapfile -t indices < <(seq 0 $((frames - 1)))
  magick_args=()
  for i in "${indices[@]}"; do
    x=$((width - i * (width * 2) / frames))
    magick_args+=("(" -size "${width}x${height}" xc:none -font DejaVu-Sans-Bold -pointsize "$size"
      -gravity West -fill '#7f7f7f' -annotate "+$((x + 4))+4" "$text" -blur 0x3
      -fill '#4a7fc0' -stroke '#333333' -strokewidth 2 -annotate "+$x+0" "$text"
      -background white -flatten ")")
  done
}
