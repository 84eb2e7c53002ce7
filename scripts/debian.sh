# SPDX-License-Identifier: BSD-3-Clause
# What the machine's own package lists say of Debian; sourced after common.sh, not run.

# debian_entries TYPE FOLDER: writes those entries of the machine's package lists that are Debian's into
# FOLDER, asking for packages (deb) or sources (deb-src). Whether an entry is Debian's, and where it
# stands, is apt's word.
debian_entries() {
  local type=$1 folder=$2 entry file number
  apt-get indextargets --format '$(ORIGIN) $(SOURCESENTRY)' 'Created-By: Packages' |
    sed -n 's/^Debian \(\/.*\)/\1/p' | sort -u | while IFS= read -r entry; do
    file=${entry%:*}
    number=${entry##*:}
    case $file in
      # Counted by stanza.
      *.sources)
        grep -v '^#' "$file" | awk -v RS= -v number="$number" 'NR == number' |
          sed "s/^Types:.*/Types: $type/I" >"$folder/${file##*/}-$number.sources"
        ;;
      # Counted by line.
      *)
        sed -n "${number}s/^[[:space:]]*deb[[:space:]]/$type /p" "$file" \
          >"$folder/${file##*/}-$number.list"
        ;;
    esac
  done
  if [ -z "$(ls "$folder")" ]; then
    echo "None of the machine's package lists is Debian's; apt-get update may help."
    return 1
  fi
}
