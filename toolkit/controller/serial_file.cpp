// SPDX-License-Identifier: Apache-2.0
#include "toolkit/controller/serial_file.h"

#include "lib_fru.h"
#include "toolkit/base/error.h"
#include "toolkit/base/file.h"
#include "toolkit/base/text.h"
#include "toolkit/controller/controller.h"
#include "toolkit/controller/diagnostics.h"

namespace {

constexpr u32 SERIAL_SIZE = 256U;

} // namespace

// The library only writes it, so it is read as its readers read it.
std::optional<std::string> ReadSerialCopy()
{
    const std::optional<std::string> optPath = RealPath(SERIAL_COPY);
    if (!optPath.has_value()) {
        return std::nullopt;
    }
    try {
        const std::vector<u8> vecBytes = ReadFileBytes(*optPath);
        return std::string(vecBytes.begin(), vecBytes.end());
    } catch (const Error &) {
        return std::nullopt;
    }
}

// The file's bytes as the library reads them, zero bytes at the end included: a cleared one holds 80 of them.
// It fills a buffer and tells neither how much it read nor where the text ends; two fillings tell.
SERIAL_TEXT_S ReadSerialFile()
{
    std::string astrText[2];
    SERIAL_TEXT_S stAnswer = {"", FRU_OK, ""};
    for (size_t i = 0; i < std::size(astrText); i++) {
        astrText[i].assign(SERIAL_SIZE, static_cast<char>(i));
        ClearDiagnostics();
        stAnswer.uiStatus = LIB_FRU_GetPSNFromFile(SERIAL_SIZE, astrText[i].data());
        if (stAnswer.uiStatus != FRU_OK) {
            stAnswer.strWhy = StatusText(stAnswer.uiStatus) + DiagnosticHint();
            return stAnswer;
        }
    }
    size_t uiLength = SERIAL_SIZE;
    while (uiLength > 0U && astrText[0][uiLength - 1U] != astrText[1][uiLength - 1U]) {
        uiLength--;
    }
    stAnswer.strText = astrText[0].substr(0, uiLength);
    return stAnswer;
}

SERIAL_TEXT_S ReadProductSerialNumber()
{
    char acText[SERIAL_SIZE] = "";
    ClearDiagnostics();
    SERIAL_TEXT_S stAnswer = {"", LIB_FRU_GetBaseboardProductSN(sizeof(acText), acText), ""};
    stAnswer.strText = acText;
    if (stAnswer.uiStatus != FRU_OK) {
        stAnswer.strWhy = StatusText(stAnswer.uiStatus) + DiagnosticHint();
    }
    return stAnswer;
}
