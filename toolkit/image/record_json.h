// SPDX-License-Identifier: Apache-2.0
// A decoded record as a JSON document: what 'show --json' prints is what 'encode' takes.
#ifndef TOOLKIT_IMAGE_RECORD_JSON_H
#define TOOLKIT_IMAGE_RECORD_JSON_H

#include "toolkit/base/json.h"
#include "toolkit/base/json_node.h"
#include "toolkit/image/record.h"

// The areas and MultiRecords that the record has, one member each.
Json RecordJson(const RECORD_VIEW_S &stView);

// Fills an empty record from such a document. Fails with the JSON path of what the format or the encoder
// cannot hold, and of members that contradict each other. bWrap: manufacturing dates beyond the end of their
// count, too.
void BuildRecord(const JsonNode &stDocument, Record &stRecord, bool bWrap = false);

#endif
