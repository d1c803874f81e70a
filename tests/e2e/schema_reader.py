#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Holds JSON to the schema: reads {"schema": FILE, "documents": [[NAME, DOCUMENT], ...]} and prints what is wrong, a line each.

NAME is a member of the schema's $defs. Run by Debian's interpreter, which has python3-jsonschema.
"""
import json
import sys

import jsonschema

dictAsked = json.load(sys.stdin)
with open(dictAsked["schema"], encoding="utf-8") as stFile:
    dictSchema = json.load(stFile)
jsonschema.Draft202012Validator.check_schema(dictSchema)
for strName, document in dictAsked["documents"]:
    stValidator = jsonschema.Draft202012Validator({**dictSchema, "$ref": "#/$defs/" + strName})
    for stError in stValidator.iter_errors(document):
        strPath = ".".join(map(str, stError.absolute_path))
        print(f"{strName}: {strPath}: {stError.message[:300]}")
