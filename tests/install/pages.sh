#!/usr/bin/env bash
# pages.sh SOURCE BUILD: the manual pages name every call, every command and every option; the completion offers them.
set -euo pipefail
source=$1 build=$2
zyrsub=$build/bin/zyrsub
man=$build/docs/man
page=$(sed 's/\\-/-/g; s/\\&//g' "$man/tool/zyrsub.1")
failed=0
fail() { echo "$*"; failed=1; }

complete_line() { # words of a command line, the last one being typed
    COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY=()
    _zyrsub || true
    echo " ${COMPREPLY[*]} "
}
# shellcheck source=/dev/null
source "$man/tool/zyrsub.bash"

commands=$("$zyrsub" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p')
[ "$(wc -w <<<"$commands")" -ge 4 ] || fail "--help lists only: $commands"
for command in $commands; do
    grep -qx "\.SS \"zyrsub $command\"" <<<"$page" || fail "zyrsub(1) lacks the command $command"
    [[ $(complete_line zyrsub "${command:0:2}") == *" $command "* ]] || fail "no completion of $command"
    section=$(awk -v start=".SS \"zyrsub $command\"" '/^\.S[SH]/ { on = $0 == start } on' <<<"$page")
    options=$("$zyrsub" "$command" --help | sed -n '/^Options/,/^$/s/^  \(-[^ ]*\).*/\1/p' | tr ',' '\n')
    [ -n "$options" ] || fail "$command --help lists no options"
    for option in $options; do
        grep -qE "^\.B (.*, )?$option([ ,]|\$)" <<<"$section" || fail "zyrsub(1) lacks $command $option"
        [[ $(complete_line zyrsub "$command" "$option") == *" $option "* ]] || fail "no completion of $command $option"
    done
done
[ "$(complete_line zyrsub convert --to s)" = " srt smi ssa " ] || fail "no completion of formats"
touch "$build/complete-1.srt" "$build/complete-1.txt"
[[ $(complete_line zyrsub info "$build/complete-1") == " $build/complete-1.srt " ]] || fail "no completion of subtitles"
[ "$(complete_line zyrsub render --output hdmi-7)" = " hdmi-720p " ] || fail "no completion of outputs"
exits=$(sed -n '/^\.SH EXIT STATUS/,/^\.SH ENV/p' <<<"$page" | tr '\n' ' ')
for code in 0 1 2 3 4; do
    [[ $exits =~ [^0-9.]$code\  ]] || fail "zyrsub(1) lacks the exit code $code"
done

calls=$(sed -n 's/^ \{4\}\([A-Za-z_0-9]*\);$/\1/p' "$source/src/exports.map" "$source/platform/host/exports.map" "$source/captions/exports.map" |
    grep -vE '^(ZYR_|__android|pmap|property|zyr_ccfb|zyr_platform)')
for call in $calls; do
    [ -e "$man/man3/$call.3" ] || { fail "no page for $call"; continue; }
    read -r _ family <"$man/man3/$call.3"
    grep -qE "^\.SS \".*\b$call\b" "$man/$family" || fail "$family lacks $call"
done
readarray -t whole < <(grep -L '^\.so ' "$man"/man3/*.3)
faults=$(cd "$man" && groff -man -Tutf8 -ww -z "${whole[@]}" tool/zyrsub.1 zyrsubtitle.5 2>&1) || true
[ -z "$faults" ] || fail "$faults"
exit $failed
