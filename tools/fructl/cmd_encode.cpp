// fructl encode: an image file from the JSON document of a record.
#include <filesystem>
#include <sys/stat.h>

#include "commands.h"
#include "console.h"
#include "error.h"
#include "image_file.h"
#include "record_json.h"
#include "text.h"

namespace {

constexpr u32 SIZE_MAX_FRU = 0xFFFFU;
constexpr size_t PADDING = 8U; // behind an image file, as in a larger EEPROM
constexpr u8 ERASED = 0xFFU;

struct ENCODE_S
{
    std::string strDocument;
    std::string strOutput;
    std::string strSize;
    bool bForce = false;
};

// The record's bytes; nothing when they do not fit.
std::optional<std::vector<u8>> Encode(const RECORD &stRecord, u32 uiRoom)
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
std::optional<JSON> Decode(const std::vector<u8> &vecImage, bool bPadded)
{
    IMAGE_S stImage = {"file", vecImage, vecImage.size()};
    stImage.vecBytes.resize(vecImage.size() + (bPadded ? PADDING : 0U), ERASED);
    RECORD stRecord;
    if (DecodeImage(stImage, false, stRecord) != FRU_OK) {
        return std::nullopt;
    }
    return RecordJson(ViewRecord(*stRecord.Data()));
}

// The image in its full size.
std::vector<u8> MakeImage(const RECORD &stRecord, const ENCODE_S &stOptions)
{
    ClearDiagnostics();
    const std::optional<std::vector<u8>> optWhole = Encode(stRecord, SIZE_MAX_FRU);
    if (!optWhole.has_value()) {
        Fail(EscapeText(stOptions.strDocument) +
             ": the record cannot be encoded: an area holds at most 2040 bytes and starts within the first "
             "2040" +
             DiagnosticHint());
    }
    const JSON stExpected = RecordJson(ViewRecord(*stRecord.Data()));
    if (Decode(*optWhole, true) != stExpected) {
        Fail(EscapeText(stOptions.strDocument) +
             ": the encoded image does not read back as the JSON says; nothing was written" +
             DiagnosticHint());
    }
    if (stOptions.strSize.empty()) {
        return *optWhole;
    }
    const std::optional<u32> optSize = ParseNumber(stOptions.strSize, SIZE_MAX_FRU);
    if (!optSize.has_value() || *optSize < FRU_COMMON_HEADER_LEN) {
        FailUsage("--size " + EscapeText(stOptions.strSize) +
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

void WriteImage(const std::string &strPath, const std::vector<u8> &vecImage)
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

void RunEncode(const SESSION_S &stSession, const ENCODE_S &stOptions)
{
    struct stat stStat = {};
    if (!stOptions.bForce && stat(stOptions.strOutput.c_str(), &stStat) == 0) {
        Fail(EscapeText(stOptions.strOutput) + " is there already; --force replaces it");
    }
    const nlohmann::json stParsed = ParseJsonFile(stOptions.strDocument);
    RECORD stRecord;
    BuildRecord(JSON_NODE(stParsed, stOptions.strDocument, ""), stRecord);
    const std::vector<u8> vecImage = MakeImage(stRecord, stOptions);
    WriteImage(stOptions.strOutput, vecImage);
    const RECORD_VIEW_S stView = ViewRecord(*stRecord.Data());
    std::vector<std::string> vecParts = {"header"};
    for (const AREA_VIEW_S &stArea : stView.vecAreas) {
        vecParts.emplace_back(AreaKey(stArea.enArea));
    }
    if (!stView.vecMultiRecords.empty()) {
        vecParts.push_back(Count(stView.vecMultiRecords.size(), "MultiRecord"));
    }
    if (stSession.bJson) {
        PrintJson({{"file", stOptions.strOutput}, {"size", vecImage.size()}, {"contents", vecParts}});
    } else {
        Print(Paint(COLOUR::Green, EscapeText(stOptions.strOutput)) +
              Format(": %zu bytes: ", vecImage.size()) + Join(vecParts, ", ") + "\n");
    }
}

} // namespace

void AddEncodeCommand(CLI::App &stParent, SESSION_S &stSession)
{
    const auto pstOptions = std::make_shared<ENCODE_S>();
    CLI::App *pstCommand = AddCommand(
        stParent, "encode", "Make an image file from what 'show --json' printed",
        "fructl --json show baseboard > board.json\n"
        "fructl encode board.json -o board.bin --size 2048\nfructl encode board.json -o board.hex");
    pstCommand->add_option("FILE", pstOptions->strDocument, "the record as JSON, as 'show --json' prints it")
        ->required();
    pstCommand
        ->add_option("-o,--output", pstOptions->strOutput, "the image file to make (*.hex: readable hex)")
        ->type_name("FILE")
        ->required();
    pstCommand->add_option("--size", pstOptions->strSize, "bytes of the image, filled up with 0xff")
        ->type_name("N");
    pstCommand->add_flag("--force", pstOptions->bForce, "replace a file that is there");
    pstCommand->callback([&stSession, pstOptions] {
        stSession.fnRun = [&stSession, pstOptions] { RunEncode(stSession, *pstOptions); };
    });
}
