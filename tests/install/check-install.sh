#!/usr/bin/env bash
# Installs a build into a temporary prefix and checks what a desktop would find there: the program, a
# desktop entry that validates, the icon at the size each theme folder promises, and bash completion
# that completes without an agent.
#   tests/install/check-install.sh BUILD_DIR [CMAKE]
set -euo pipefail
build="$1"
cmake="${2:-cmake}"
prefix="$(mktemp -d)"
trap 'rm -rf "$prefix"' EXIT
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

"$cmake" --install "$build" --prefix "$prefix" >/dev/null

bin="$prefix/bin/velmora"
entry="$prefix/share/applications/velmora.desktop"
theme="$prefix/share/icons/hicolor"
completion="$prefix/share/bash-completion/completions/velmora"
for f in "$bin" "$entry" "$theme/scalable/apps/velmora.svg" "$completion"; do
    [ -f "$f" ] || fail "missing ${f#"$prefix"/}"
done
[ -x "$bin" ] || fail "bin/velmora is not executable"

# The installed program runs from its new place (no path into the build tree is needed).
version="$("$bin" --version 2>&1)" || true
[[ $version == "velmora "[0-9]* ]] || fail "bin/velmora --version says: $version"

if command -v desktop-file-validate >/dev/null; then
    desktop-file-validate "$entry" || fail "desktop-file-validate refuses the desktop entry"
else
    fail "desktop-file-validate is missing (tools/setup installs desktop-file-utils)"
fi
# What the entry names must be what was installed.
grep -qx 'Exec=velmora' "$entry" || fail "the desktop entry does not run velmora"
grep -qx 'Icon=velmora' "$entry" || fail "the desktop entry does not name the velmora icon"

for size in 16 22 24 32 48 64 128 256; do
    png="$theme/${size}x${size}/apps/velmora.png"
    if [ ! -f "$png" ]; then
        fail "missing icon ${png#"$prefix"/}"
        continue
    fi
    actual="$(identify -format '%wx%h %m' "$png" 2>&1)" || true
    [ "$actual" = "${size}x${size} PNG" ] || fail "${png#"$prefix"/} is $actual"
done
grep -q '<svg' "$theme/scalable/apps/velmora.svg" || fail "the scalable icon is not SVG"

# Completion, with no agent to ask (a private runtime folder): the fixed lists stand in.
runtime="$prefix/run"
mkdir -m 700 "$runtime"
completions() {
    XDG_RUNTIME_DIR="$runtime" PATH="$prefix/bin:$PATH" bash -c '
        source "$1"; shift
        COMP_WORDS=("$@"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        _velmora velmora; echo "${COMPREPLY[*]}"' _ "$completion" "$@"
}
check_completion() {
    local expected="$1"
    shift
    local actual
    actual="$(completions "$@")"
    [ "$actual" = "$expected" ] || fail "completing '$*' gives '$actual', not '$expected'"
}
bash -n "$completion" || fail "the completion script is not valid bash"
check_completion "prefs preferences" velmora pre
check_completion "LaunchOnStart" velmora prefs get Lau
check_completion "true false" velmora prefs set LaunchOnStart ""
check_completion "centerWindow" velmora action cen
check_completion "show hide toggle" velmora panel ""
check_completion "on off" velmora keyboard-cleaning ""

if [ "$failures" -gt 0 ]; then
    echo "$failures problem(s) with the install into $prefix" >&2
    exit 1
fi
echo "installed and checked: $(cd "$prefix" && find . -type f | wc -l) files"
