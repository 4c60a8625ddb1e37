#!/usr/bin/env bash
# A desktop in another language: its characters are known, numbers and dates read as everywhere.
# shellcheck source=tests/desktop/lib.sh
source "$(dirname "$0")/lib.sh"

desktop_start
desktop_bus
mkdir -p "$work/locale" "$work/docs"
localedef -i de_DE -f UTF-8 "$work/locale/de_DE.UTF-8"
truncate -s 1234567 "$work/docs/größe.bin"
touch -d '2024-03-05 16:07' "$work/docs/größe.bin"

export LOCPATH=$work/locale
# The shell itself need not know the language that it hands on.
{ LC_ALL=de_DE.UTF-8 LANGUAGE=de tav_start "$work/docs"; } 2>/dev/null
tav_ready "$work/docs"
wait_for "the size has the usual commas" look_has 'list item "größe.bin" (1,234,567'
look_has "03/05/2024 04:07 PM" || fail "the date reads otherwise"
look_has "1 item, 1.2MB" || fail "the sum of the sizes reads otherwise"
tav_quit
