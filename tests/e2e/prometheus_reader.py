# SPDX-License-Identifier: Apache-2.0
"""What Prometheus' own parser reads of a file, as JSON: prometheus_reader.py FILE. Run with the interpreter that Debian's packages are for."""
import json
import sys

from prometheus_client.parser import text_string_to_metric_families

dictFamilies = {}
for stFamily in text_string_to_metric_families(open(sys.argv[1], encoding="utf-8", newline="").read()):
    assert stFamily.name not in dictFamilies, f"{stFamily.name} stands twice"
    dictFamilies[stFamily.name] = {"type": stFamily.type, "help": stFamily.documentation,
                                   "samples": [[stSample.name, stSample.labels, stSample.value] for stSample in stFamily.samples]}
json.dump(dictFamilies, sys.stdout)
