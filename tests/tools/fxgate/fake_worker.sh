#!/bin/sh
# SPDX-FileCopyrightText: 2026 The mitsubishi_fx1s authors
# SPDX-License-Identifier: MIT
#
# A worker that does what its tag file says, which is a script with these words.

hello() {
    echo '{"event":"hello","protocol":1,"version":"1","tags":[
{"name":"flow","kind":"real","writable":true,"max":100},{"name":"run","kind":"bit"}]}' | tr -d '\n'
    echo
}
up() {
    echo '{"event":"state","link":"up"}'
}
values() { # "flow":1,...
    echo "{\"event\":\"values\",\"time\":1795348800000,\"good\":{$1}}"
}
alive() {
    echo '{"event":"alive","cycleMs":48.5,"exchanges":4,"good":3,"errors":{"silence":1}}'
}

hang() { # deaf to all but SIGKILL
    trap '' TERM INT HUP
    while :; do sleep 1; done
}

# Answers each line until it is told to stop.
serve() {
    while read -r line; do
        case $line in
        *refresh*) values '"flow":2,"run":true' ;;
        *stop*) exit 0 ;;
        *write*)
            id=${line#*'"id":"'}
            id=${id%%'"'*}
            echo "{\"event\":\"written\",\"id\":\"$id\",\"outcome\":\"done\",\"old\":1,\"new\":2}"
            ;;
        esac
    done
    exit 0
}

while [ "$1" != --tags ]; do shift; done
. "$2"
