# SPDX-License-Identifier: Apache-2.0
# shellcheck shell=bash disable=SC2154 # root: set by the script that sources this
# Functions for scripts that work in a bare Debian root. Sourced in the project's folder by a script that
# has set `root`, the folder of the root to make, and that works in it when it is called as
# `SCRIPT --in-namespace`.

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# Runs the script as root, from its beginning, with these arguments.
as_root() {
  ((EUID == 0)) && return
  command -v sudo >/dev/null || fail "needs root or sudo"
  exec sudo "scripts/$(basename "$0")" "$@"
}

# Debian's own sources among those of apt, one a line. Others would hide what Debian does not have.
debian_sources() {
  apt-get indextargets 'Created-By: Packages' 'Origin: Debian' \
    --format 'deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(REPO_URI) $(RELEASE) $(COMPONENT)'
}

# What this machine's apt needs to reach its mirrors (a proxy, say).
acquire_options() {
  local file
  for file in /etc/apt/apt.conf /etc/apt/apt.conf.d/*; do
    if [[ -f $file ]] && grep -qs '^[[:space:]]*Acquire' "$file"; then
      echo "--aptopt=$file"
    fi
  done
}

# Runs `SCRIPT --in-namespace` and removes the root at the end. Mounts made there are seen by no other
# process and go with the last process of that namespace, so removing the root can never reach the machine's
# own devices.
in_namespace_of_its_own() {
  scripts/bootstrap bare
  [[ $(debian_sources) ]] || apt-get update || fail "no bare Debian root: apt cannot read its sources"
  [[ $(debian_sources) ]] || fail "no bare Debian root: apt has no source of Debian's own"
  trap 'rm -rf --one-file-system "$root"' EXIT
  rm -rf --one-file-system "$root"
  unshare --mount --propagation private --pid --fork --kill-child --mount-proc \
    "scripts/$(basename "$0")" --in-namespace
}

# Makes the root. Called in the namespace.
make_root() {
  local options
  mapfile -t options < <(acquire_options)
  # The root is thrown away, so dpkg need not wait for the disk.
  debian_sources | mmdebstrap --variant=minbase --dpkgopt=force-unsafe-io "${options[@]}" \
    "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$root" - ||
    fail "no bare Debian root: mmdebstrap could not make it; is the network there?"
  cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
  mount --types proc proc "$root/proc"
  mount --rbind /dev "$root/dev"
}

# Runs a command in a folder of the root, with no more environment than a new login has.
inside() {
  local environment=(HOME=/root LANG=C.UTF-8 PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin)
  local name
  for name in http_proxy https_proxy no_proxy; do
    [[ ! -v $name ]] || environment+=("$name=${!name}")
  done
  local folder=$1
  shift
  chroot "$root" env -i "${environment[@]}" sh -c 'cd "$0" && exec "$@"' "$folder" "$@"
}
