// SPDX-License-Identifier: Apache-2.0
#include "toolkit/edit/encode.h"

#include <filesystem>

#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/edit/change.h"
#include "toolkit/image/erased.h"
#include "toolkit/image/image.h"
#include "toolkit/image/image_file.h"

namespace {

constexpr u32 SIZE_MAX_FRU = 0xFFFFU;

} // namespace

std::vector<u8> MakeImageFile(const Record &stRecord, const std::string &strDocument,
                              const std::string &strSize)
{
    ClearDiagnostics();
    const std::optional<ENCODED_S> optEncoded = EncodeRecord(stRecord, SIZE_MAX_FRU);
    if (!optEncoded.has_value()) {
        FailRefused(
            EscapeText(strDocument) +
            ": the record cannot be encoded: an area holds at most 2040 bytes and starts within the first "
            "2040" +
            DiagnosticHint());
    }
    const std::vector<u8> vecWhole(optEncoded->vecBuffer.begin(),
                                   optEncoded->vecBuffer.begin() + optEncoded->uiLength);
    if (!ReadBack(FileImage(vecWhole), false, stRecord).IsSame()) {
        FailRefused(EscapeText(strDocument) +
                    ": the encoded image does not read back as the JSON says; nothing was written" +
                    DiagnosticHint());
    }
    if (strSize.empty()) {
        return vecWhole;
    }
    const std::optional<u32> optSize = ParseNumber(strSize, SIZE_MAX_FRU);
    if (!optSize.has_value() || *optSize < FRU_COMMON_HEADER_LEN) {
        FailUsage("--size " + EscapeText(strSize) +
                  Format(" is refused; accepted: %u to %u, decimal or 0x", u32{FRU_COMMON_HEADER_LEN},
                         SIZE_MAX_FRU));
    }
    std::vector<u8> vecImage = vecWhole;
    vecImage.resize(std::max<size_t>(*optSize, vecImage.size()), ERASED);
    if (vecImage.size() > *optSize ||
        !ReadBack({Source::File, vecImage, vecImage.size()}, false, stRecord).IsSame()) {
        FailRefused(
            Format("--size %u is too small: the record takes %zu bytes, and readers refuse an area that ends "
                   "with the image's last byte; accepted: %zu and more",
                   *optSize, vecWhole.size(), vecWhole.size() + 1U));
    }
    return vecImage;
}

void WriteImageFile(const std::string &strPath, const std::vector<u8> &vecImage)
{
    const bool bHex = std::filesystem::path(strPath).extension() == ".hex";
    const std::string strHex = bHex ? HexText(vecImage) : "";
    WriteFileBytes(strPath, bHex ? std::vector<u8>(strHex.begin(), strHex.end()) : vecImage,
                   [&](const std::string &strNew) {
                       std::vector<u8> vecRead = ReadFileBytes(strNew);
                       if (bHex) {
                           vecRead = ParseHexText(std::string(vecRead.begin(), vecRead.end()), strNew);
                       }
                       if (vecRead != vecImage) {
                           Fail("what was written to " + EscapeText(strNew) +
                                " does not read back the same; " + EscapeText(strPath) + " was not touched");
                       }
                   });
}
