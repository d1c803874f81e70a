#include "toolkit/edit/encode.h"

#include <filesystem>

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/json.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/diagnostics.h"
#include "toolkit/image/image.h"
#include "toolkit/image/image_file.h"
#include "toolkit/image/record_json.h"

namespace {

constexpr u32 SIZE_MAX_FRU = 0xFFFFU;
constexpr size_t PADDING = 8U; // behind an image file, as in a larger EEPROM
constexpr u8 ERASED = 0xFFU;

// The record's bytes; nothing when they do not fit.
std::optional<std::vector<u8>> Encode(const Record &stRecord, u32 uiRoom)
{
    std::vector<u8> vecBytes(uiRoom); // zeroed: the encoder does not write the fill of its areas
    const i32 iLength = FRU_ANALYZER_ConvertToArray(stRecord.Data(), uiRoom, vecBytes.data());
    if (iLength < 0) {
        return std::nullopt;
    }
    vecBytes.resize(static_cast<size_t>(iLength));
    return vecBytes;
}

// As the library decodes it, or nothing when it cannot.
std::optional<Json> Decode(const std::vector<u8> &vecImage, bool bPadded)
{
    IMAGE_S stImage = {Source::File, vecImage, vecImage.size()};
    stImage.vecBytes.resize(vecImage.size() + (bPadded ? PADDING : 0U), ERASED);
    Record stRecord;
    if (DecodeImage(stImage, false, stRecord) != FRU_OK) {
        return std::nullopt;
    }
    return RecordJson(ViewRecord(*stRecord.Data()));
}

} // namespace

std::vector<u8> MakeImageFile(const Record &stRecord, const std::string &strDocument,
                              const std::string &strSize)
{
    ClearDiagnostics();
    const std::optional<std::vector<u8>> optWhole = Encode(stRecord, SIZE_MAX_FRU);
    if (!optWhole.has_value()) {
        Fail(EscapeText(strDocument) +
             ": the record cannot be encoded: an area holds at most 2040 bytes and starts within the first "
             "2040" +
             DiagnosticHint());
    }
    const Json stExpected = RecordJson(ViewRecord(*stRecord.Data()));
    if (Decode(*optWhole, true) != stExpected) {
        Fail(EscapeText(strDocument) +
             ": the encoded image does not read back as the JSON says; nothing was written" +
             DiagnosticHint());
    }
    if (strSize.empty()) {
        return *optWhole;
    }
    const std::optional<u32> optSize = ParseNumber(strSize, SIZE_MAX_FRU);
    if (!optSize.has_value() || *optSize < FRU_COMMON_HEADER_LEN) {
        FailUsage("--size " + EscapeText(strSize) +
                  Format(" is refused; accepted: %u to %u, decimal or 0x", u32{FRU_COMMON_HEADER_LEN},
                         SIZE_MAX_FRU));
    }
    std::vector<u8> vecImage = *optWhole;
    vecImage.resize(std::max<size_t>(*optSize, vecImage.size()), ERASED);
    if (vecImage.size() > *optSize || Decode(vecImage, false) != stExpected) {
        Fail(
            Format("--size %u is too small: the record takes %zu bytes, and readers refuse an area that ends "
                   "with the image's last byte; accepted: %zu and more",
                   *optSize, optWhole->size(), optWhole->size() + 1U));
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
                       if (vecRead != vecImage || Decode(vecRead, true) != Decode(vecImage, true)) {
                           Fail("what was written to " + EscapeText(strNew) +
                                " does not read back the same; " + EscapeText(strPath) + " was not touched");
                       }
                   });
}
