# SPDX-License-Identifier: Apache-2.0
"""Reads images with python3-pyipmi, which knows nothing of this system, and says what it sees.

Run with Debian's own interpreter: independent_reader.py FILE ... prints a JSON array, an object for each file.
"""
import json
import sys

import pyipmi.fru


def Areas(stInventory):
    dictAreas = {}
    stArea = stInventory.chassis_info_area
    if stArea is not None:
        dictAreas["chassis"] = {"typeCode": stArea.type, "partNumber": stArea.part_number.value, "serialNumber": stArea.serial_number.value,
                                "customFields": [stField.value for stField in stArea.custom_chassis_info]}
    stArea = stInventory.board_info_area
    if stArea is not None:
        dictAreas["board"] = {"languageCode": stArea.language_code, "mfgDate": str(stArea.mfg_date), "manufacturer": stArea.manufacturer.value,
                              "productName": stArea.product_name.value, "serialNumber": stArea.serial_number.value,
                              "partNumber": stArea.part_number.value, "fruFileId": stArea.fru_file_id.value,
                              "customFields": [stField.value for stField in stArea.custom_mfg_info]}
    stArea = stInventory.product_info_area
    if stArea is not None:
        dictAreas["product"] = {"languageCode": stArea.language_code, "manufacturer": stArea.manufacturer.value, "productName": stArea.name.value,
                                "partNumber": stArea.part_number.value, "version": stArea.version.value,
                                "serialNumber": stArea.serial_number.value, "assetTag": stArea.asset_tag.value,
                                "fruFileId": stArea.fru_file_id.value, "customFields": [stField.value for stField in stArea.custom_mfg_info]}
    stRecords = stInventory.multirecord_area
    dictAreas["multiRecords"] = [{"type": stRecord.record_type_id, "formatVersion": stRecord.format_version, "data": bytes(stRecord.raw).hex(" ")}
                                 for stRecord in (stRecords.records if stRecords else [])]
    return dictAreas


# Every checksum on the way is checked by the reader, which raises when one is wrong.
print(json.dumps([Areas(pyipmi.fru.get_fru_inventory_from_file(strFile)) for strFile in sys.argv[1:]]))
