#!/usr/bin/env bash
# Saves a model over an older one while each system call of the save kills the program, or is refused for want of space,
# and while each signal arrives. The file must be the older or the newer model, whole. Usage: interrupted_save_test.sh ARBOR
set -euo pipefail
ulimit -c 0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
model=$work/saved/golf.model
printf 'a,c\n1,x\n1,x\n5,y\n5,y\n' >"$work/table.csv"

save() {  # under strace, with the options given
  rm -rf "$work/saved"
  mkdir "$work/saved"
  echo "an older model" >"$model"
  { strace -f -s 300 -o "$work/calls" "$@" "${program[@]}" >"$work/said" 2>&1; } 2>/dev/null
}
fail() { echo "$*"; cat "$work/said"; exit 1; }

program=("$1" grow "$work/table.csv" --threads 1 --force --model "$model")
save || fail "a process cannot be traced here, or not be saved"
cp "$model" "$work/newer"
# "NAME N" for the Nth call of each name, from where the program first asks for the model until it has closed the folder.
# Left out are calls that do not touch files. The name of the temporary file takes getrandom only once in twenty times.
sed -E 's/^[0-9]+ +//' "$work/calls" | awk -F'(' -v saved="$work/saved" '
  !/^[a-z]/ || /^execve/ { next } { ++count[$1] } index($0, saved) { begun = 1 }
  begun && !/^(brk|m[a-z]*map|mprotect|futex|getrandom|rt_sig)/ { print $1, count[$1] }
  /^rename/ { named = 1 } named && /^close/ { exit }' >"$work/save"
order=$(grep -E '^(p?write|f.*sync|rename)' "$work/save" | cut -d' ' -f1 | uniq | tr '\n' ' ')
[ "$order" = "write fsync rename fsync " ] || fail "the bytes have to be on the disk before the name: $order"

while read -r name number; do
  for fault in signal=SIGKILL error=ENOSPC; do
    status=0
    save -e inject="$name:$fault:when=$number" || status=$?
    left=older
    ! cmp -s "$model" "$work/newer" || left=newer
    [ $left = newer ] || [ "$(cat "$model")" = "an older model" ] || fail "$name $number $fault: neither model is whole"
    [ $fault = error=ENOSPC ] || { [ $status = 137 ] || fail "$name $number was not killed"; continue; }
    grep -q INJECTED "$work/calls" || fail "$name $number was not refused"
    [[ $status$left = 0newer || $status$left = 2older ]] || fail "$name $number refused: status $status, $left model"
    [ "$name" = unlink ] || [ "$(ls "$work/saved")" = golf.model ] || fail "$name $number refused: a file is left"
  done
done <"$work/save"

# Left out are those that cannot be caught (9, 19 and two of the C library's own) and those that stop a process.
for signal in $(seq 64 | grep -vxE '9|19|20|21|22|32|33'); do
  status=0
  save -e inject="fsync:signal=$signal:when=1" || status=$?
  [ "$(ls "$work/saved")" = golf.model ] || fail "signal $signal: a file is left"
  expected="$((128 + signal)) older"
  [[ $signal != @(17|18|23|28) ]] || expected="0 newer" # these end no process
  left=older
  ! cmp -s "$model" "$work/newer" || left=newer
  [ "$status $left" = "$expected" ] || fail "signal $signal: status $status, the $left model"
done
