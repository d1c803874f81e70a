// A decoded record as a JSON document: what 'show --json' prints is what 'encode' takes.
#ifndef FRUCTL_RECORD_JSON_H
#define FRUCTL_RECORD_JSON_H

#include "json_node.h"
#include "json_out.h"
#include "record.h"

// The areas and MultiRecords that the record has, one member each.
JSON RecordJson(const RECORD_VIEW_S &stView);

// Fills an empty record from such a document. Fails with the JSON path of what the format or the encoder
// cannot hold, and of members that contradict each other.
void BuildRecord(const JSON_NODE &stDocument, RECORD &stRecord);

#endif
