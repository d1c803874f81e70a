// SPDX-License-Identifier: Apache-2.0
#include "report/pieces.h"

#include "lib_fru.h"
#include "toolkit/base/text.h"
#include "toolkit/image/record_words.h"

namespace {

PIECE_S PlainPiece(const SPAN_S &stSpan)
{
    const FIELD_ID_S &stField = stSpan.stField;
    const bool bField = !IsFrame(stField.enField) && stField.enField != Field::RecordHeader &&
                        stField.enArea != Area::Header && stField.enArea != Area::Unused;
    return {stSpan.uiOffset,
            stSpan.uiLength,
            stField.enArea,
            FieldName(stField),
            stSpan.strText,
            stSpan.stNote.IsTold() ? NoteText(stSpan.stNote) : "",
            stSpan.strProblem,
            "",
            {},
            bField,
            stField.enArea == Area::Unused && stSpan.stNote.enNote == Note::OneValue};
}

// A record's data: its values, or its bytes and why there are none.
void AddRecord(const SPAN_S &stSpan, const std::vector<u8> &vecImage, std::vector<PIECE_S> &vecPieces)
{
    const u8 ucType = vecImage[stSpan.uiOffset - FRU_MULTIRECORD_HEADER_LEN];
    const auto itData = vecImage.begin() + stSpan.uiOffset;
    const std::vector<u8> vecData(itData, itData + stSpan.uiLength);
    const std::string strRecord = FieldName({Area::MultiRecord, Field::OneRecord, stSpan.stField.uiIndex}) +
                                  ": " + RecordTitle(ucType, vecData);
    PIECE_S stPiece = PlainPiece(stSpan);
    stPiece.strRecord = strRecord;
    const std::vector<RECORD_PART_S> vecParts = RecordParts(stSpan, vecImage);
    if (vecParts.empty()) {
        stPiece.strName = "data";
        stPiece.strText = HexBytes(vecData);
        stPiece.strNote = "not decoded: " + ReadRecord(ucType, vecData).strWhyNot;
        vecPieces.push_back(stPiece);
        return;
    }
    for (const RECORD_PART_S &stPart : vecParts) {
        stPiece.uiOffset = stPart.uiOffset;
        stPiece.uiLength = stPart.uiLength;
        stPiece.strName = stPart.strName;
        stPiece.strText = stPart.strText;
        stPiece.vecValues = stPart.vecValues;
        vecPieces.push_back(stPiece);
        stPiece.strProblem.clear(); // stands once
    }
}

} // namespace

std::string PIECE_S::Meaning() const
{
    return (uiLength == 1U ? Format("byte 0x%04x: ", uiOffset)
                           : Format("bytes 0x%04x to 0x%04x: ", uiOffset, uiOffset + uiLength - 1U)) +
           (strRecord.empty() ? AreaName(enArea) : strRecord) + ": " + (vecValues.empty() ? strName : "") +
           (strText.empty() ? "" : (vecValues.empty() ? ": " : "") + strText) +
           (strNote.empty() ? "" : " (" + strNote + ")") + (strProblem.empty() ? "" : " - " + strProblem);
}

std::vector<PIECE_S> PiecesOf(const IMAGE_S &stImage, const IMAGE_LAYOUT_S &stLayout)
{
    std::vector<PIECE_S> vecPieces;
    for (const SPAN_S &stSpan : stLayout.vecSpans) {
        if (stSpan.stField.enField == Field::RecordData && stSpan.uiOffset >= FRU_MULTIRECORD_HEADER_LEN) {
            AddRecord(stSpan, stImage.vecBytes, vecPieces);
        } else {
            vecPieces.push_back(PlainPiece(stSpan));
        }
    }
    return vecPieces;
}
