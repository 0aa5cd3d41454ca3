#!/usr/bin/env bash
# Runs deploy/ansible/drivediag.yml for real against this machine (connection local) with a
# simulated drive that has five bad sectors, and checks the summary and metrics it collects.
# Usage: playbook_test.sh BUILD_BIN_DIR PLAYBOOK
set -euo pipefail
build_bin=$1 playbook=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ANSIBLE_LOCAL_TEMP="$work/ansible-local" ANSIBLE_REMOTE_TEMP="$work/ansible-remote"
export ANSIBLE_NOCOLOR=1 ANSIBLE_RETRY_FILES_ENABLED=0

ansible-playbook -i localhost, -c local "$playbook" \
  -e drivediag_hosts=all -e "drivediag_build=$build_bin" -e "drivediag_home=$work/opt" \
  -e drivediag_test=linear-seek -e drivediag_device=sim:1MiB,bad=1000+5 \
  -e '{"drivediag_settings": ["NumberOfSeeks=2048", "MaxErrors=100"]}' \
  -e "drivediag_collect=$work/collected" -e "drivediag_metrics=$work/metrics/drivediag.prom"

python3 - "$work/collected/localhost.json" <<'PY'
import json, sys
summary = json.load(open(sys.argv[1]))
expected = {"schema": 1, "type": "summary", "test": "linear-seek", "result": "FAIL", "exitCode": 1}
for key, value in expected.items():
    assert summary[key] == value, (key, summary[key])
reads = summary["reads"]
assert (reads["operations"], reads["failedOperations"], reads["failedRuns"]) == (2048, 5, [[1000, 5]]), reads
print("collected summary: FAIL with sectors 1000-1004 failed, as the drive has them")
PY

metrics="$work/collected/localhost.prom"
grep -q '^drivediag_failed_sectors{device="sim:1MiB,bad=1000+5",test="linear-seek",operation="read"} 5$' "$metrics"
if command -v promtool >/dev/null; then
  promtool check metrics < "$metrics"
  echo "promtool accepts the metrics file"
else
  echo "promtool is not installed: the metrics file's format was not checked"
fi
