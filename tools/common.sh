# Shared by the front doors ./orv and ./dev. Expects $root to name the project's folder.

fail() { printf '%s\n' "$*" >&2; exit 2; }

# needs_of preset|test REGEX: what needs.txt says of those whose names match, one word per line.
needs_of() {
  awk -v kind="$1" -v name="$2" \
    '$1 == kind && $2 ~ name { for (i = 3; i <= NF; i++) print $i }' "$root/tools/needs.txt"
}

# The packages of the given groups, one per line.
packages_of() {
  local group
  for group in "$@"; do
    awk -v group="$group" '$1 == group { for (i = 2; i <= NF; i++) print $i }' \
      "$root/tools/packages.txt"
  done | sort -u
}

# Installs what is missing of the given groups, and says so; does nothing when all is there.
install_groups() {
  local missing=() package log="$root/build/install.log" as_root=()
  for package in $(packages_of "$@"); do
    case "$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null)" in
      *' installed') ;;
      *) missing+=("$package") ;;
    esac
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  command -v apt-get >/dev/null ||
    fail "This is no Debian system; please install the equivalents of: ${missing[*]}"
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "Please install as root: apt-get install ${missing[*]}"
    as_root=(sudo)
  fi
  mkdir -p "$root/build"
  echo "Installing ${missing[*]} (log: build/install.log)" >&2
  { "${as_root[@]}" apt-get update &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null ||
    { tail -n 15 "$log" >&2; fail "Installing failed; the whole log is build/install.log"; }
}

# build PRESET [-DOPTION...] [TARGET...]: installs what the preset needs, configures and builds;
# prints only the log's end, and only on failure.
build() {
  local preset=$1 log="$root/build/$1.log" options=() targets=() word
  shift
  for word in "$@"; do
    case "$word" in
      -D*) options+=("$word") ;;
      *) targets+=("$word") ;;
    esac
  done
  [ ${#targets[@]} -gt 0 ] && targets=(--target "${targets[@]}")
  install_groups $(needs_of preset "^$preset\$")
  mkdir -p "$root/build"
  echo "Building ($preset, log: build/$preset.log)" >&2
  (cd "$root" && cmake --preset "$preset" "${options[@]}" &&
    cmake --build --preset "$preset" "${targets[@]}") >"$log" 2>&1 ||
    { tail -n 40 "$log" >&2; fail "Building failed; the whole log is build/$preset.log"; }
}
