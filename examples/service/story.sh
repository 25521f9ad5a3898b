#!/usr/bin/env bash
# A service and its clients: one that changes it and follows, one that shows it, one that errs, one
# without a program of its own; and the record, which replays. Needs qos-agent in PATH.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
folder=$(mktemp -d)
pid=
trap '[ -z "$pid" ] || kill "$pid" || true; rm -rf "$folder"' EXIT
socket=$folder/agent.socket

exec {service}< <(exec qos-agent --listen "$socket" --record "$folder/record.jsonl" \
    configuration.json 2>&1)
pid=$!
read -r line <&"$service"
echo "${line/$folder\//}"

echo "== a client changes it, and follows"
qos-agent --connect "$socket" --follow=json --output none - <<'END'
{"update": "qos/status/cmapTypeStatus/mapQos/cmapStatus/web/match/matchIpAccessGroup", "value": "web4"}
{"echo": "the term gets another value"}
{"update": "acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:edge:voice/aclSubConfig/ipRuleById/10/filter/dscpValue", "value": 40}
{"touch": "acl/config/cli/aclTypeConfig/ipv4/aclConfig/openconfig:edge:voice/aclSubConfig/ruleIdBySequence/10"}
END

echo "== another shows what it holds"
qos-agent --connect "$socket" --output table

echo "== a line that is refused changes nothing"
qos-agent --connect "$socket" --output none - <<<'{"delete": "qos/status"}' 2>&1 || echo "status $?"

echo "== any program can speak to it: its lines, and what comes back"
printf '%s\n' '{"print": "table"}' '{"delete": "qos/nothing"}' '{"echo": "end"}' |
    python3 -c 'import socket, sys
with socket.socket(socket.AF_UNIX) as agent:
    agent.connect(sys.argv[1])
    agent.sendall(sys.stdin.buffer.read())
    agent.shutdown(socket.SHUT_WR)
    while answer := agent.recv(65536):
        sys.stdout.write(answer.decode())' "$socket"

kill "$pid"
wait "$pid"
pid=
echo "== the record, replayed over the same document"
sed 's/^# .* /# TIME /' "$folder/record.jsonl"
qos-agent --output table configuration.json "$folder/record.jsonl"
