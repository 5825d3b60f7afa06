# SPDX-License-Identifier: Apache-2.0
# For the other scripts to source.

# Copies a line of its input every few seconds, to show progress.
progress() {
  local line last=-5
  while IFS= read -r line; do
    if ((SECONDS - last >= 5)); then
      printf '    %s\n' "${line:0:110}"
      last=$SECONDS
    fi
  done
}
