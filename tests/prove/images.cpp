// SPDX-License-Identifier: Apache-2.0
// Sets every byte of twenty images to every value, with and without repaired checksums, cuts every image at every length, and
// asks of each variant what holds for any image: what the decoder takes is encoded and decoded again to the same; what the walk
// calls sound is decoded; every byte is told of; a device's image is read as its bytes are; nothing crashes, nothing is
// left behind, nothing is changed.
//
// usage: prove_images [--images N] [--stride K] [--part I/N] [--name NAME] [--corpus DIR] [--json FILE]
//   --images N    the first N of the built-in list (20: all)
//   --stride K    every K-th variant only (1: all)
//   --part I/N    every N-th image from the I-th on, I from 1, for a machine with several cores
//   --name NAME   this image only
//   --corpus DIR  images of real boards (*.bin) after the built-in ones; by default BMCFRU_CORPUS_DIR of the environment,
//                 else that of the build; "" for none
//   --json FILE   the table as JSON lines: {"image", "bytes", "variants", "accepted", "refused", "broken", "leaks", "seconds"}
//                 for each image, {"total", ...}
//
// Columns: bytes; variants tried; accepted and refused by the decoder; broken promises, told on standard error with the byte
// that was changed; variants that left buffers behind; seconds. A stride is best odd:
// every other variant has its checksums repaired. Exit status 1: a broken promise or a leak.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <nlohmann/json.hpp>
#include <unistd.h>

#include "fuzz/fuzz.h"
#include "prove/heap_count.h"
#include "prove/image_checks.h"
#include "toolkit/image/image_file.h"

namespace {

using BYTES = std::vector<u8>;

constexpr u32 VALUES = 256U;
constexpr u32 TOLD_MAX = 10U; // broken promises of one image that are told of
constexpr const char *BASEBOARD = "baseboard.hex";

// Those of examples/, then those that are made: every area, encoding and record, and what is wrong in ways that readers
// have to notice.
const char *const IMAGES[] = {"baseboard.hex",
                              "bmc-card.hex",
                              "psu1.hex",
                              "riser.hex",
                              "all_areas.bin",
                              "areas_reversed.bin",
                              "gaps.bin",
                              "board_sixBit.bin",
                              "product_bcdPlus.bin",
                              "chassis_binary.bin",
                              "board_custom_9.bin",
                              "latin_1_all.bin",
                              "internal_opaque.bin",
                              "record_management_7.bin",
                              "record_power_supply.bin",
                              "one_byte_text.bin",
                              "overlap_records_in_board.bin",
                              "overlap_same_offset.bin",
                              "product_no_end_mark.bin",
                              "records_no_end.bin"};

struct OPTIONS_S
{
    size_t uiImages = std::size(IMAGES);
    u32 uiStride = 1U;
    u32 uiPart = 1U;
    u32 uiParts = 1U;
    std::string strName;
    std::string strCorpus = BMCFRU_CORPUS_DIR;
    std::string strJson;
};

struct IMAGE_FILE_S
{
    std::string strName;
    BYTES vecBytes;
};

struct ROW_S
{
    std::string strName;
    size_t uiBytes = 0;
    uint64_t ulVariants = 0;
    uint64_t ulAccepted = 0;
    uint64_t ulBroken = 0;
    uint64_t ulLeaks = 0;
    double dSeconds = 0.0;
};

[[noreturn]] void Usage()
{
    (void)fprintf(stderr,
                  "usage: prove_images [--images N] [--stride K] [--part I/N] [--name NAME] [--corpus DIR] "
                  "[--json FILE]\n");
    exit(2);
}

u32 Positive(const char *pcText)
{
    const long iNumber = strtol(pcText, nullptr, 10);
    if (iNumber <= 0) {
        Usage();
    }
    return static_cast<u32>(iNumber);
}

OPTIONS_S ParseOptions(int iArgc, char **ppcArgv)
{
    OPTIONS_S stOptions;
    const char *pcCorpus = getenv("BMCFRU_CORPUS_DIR");
    stOptions.strCorpus = pcCorpus == nullptr ? stOptions.strCorpus : pcCorpus;
    for (int i = 1; i < iArgc; i += 2) {
        const std::string strName = ppcArgv[i];
        if (i + 1 == iArgc) {
            Usage();
        }
        const char *pcValue = ppcArgv[i + 1];
        if (strName == "--images") {
            stOptions.uiImages = std::min<size_t>(Positive(pcValue), std::size(IMAGES));
        } else if (strName == "--stride") {
            stOptions.uiStride = Positive(pcValue);
        } else if (strName == "--part" && strchr(pcValue, '/') != nullptr) {
            stOptions.uiPart = Positive(pcValue);
            stOptions.uiParts = Positive(strchr(pcValue, '/') + 1);
        } else if (strName == "--name") {
            stOptions.strName = pcValue;
        } else if (strName == "--corpus") {
            stOptions.strCorpus = pcValue;
        } else if (strName == "--json") {
            stOptions.strJson = pcValue;
        } else {
            Usage();
        }
    }
    return stOptions;
}

std::vector<IMAGE_FILE_S> Images(const OPTIONS_S &stOptions)
{
    std::vector<std::string> vecPaths;
    for (size_t i = 0; i < stOptions.uiImages; i++) {
        const std::string strName = IMAGES[i];
        const bool bMade = strName.find(".bin") != std::string::npos;
        vecPaths.push_back((bMade ? BMCFRU_VECTORS_DIR "/" : BMCFRU_EXAMPLES_DIR "/") + strName);
    }
    std::vector<std::string> vecCorpus;
    std::error_code ec;
    for (const auto &entry : std::filesystem::directory_iterator(stOptions.strCorpus, ec)) {
        if (entry.path().extension() == ".bin") {
            vecCorpus.push_back(entry.path().string());
        }
    }
    std::sort(vecCorpus.begin(), vecCorpus.end());
    vecPaths.insert(vecPaths.end(), vecCorpus.begin(), vecCorpus.end());
    std::vector<IMAGE_FILE_S> vecImages;
    for (size_t i = stOptions.uiPart - 1U; i < vecPaths.size(); i += stOptions.uiParts) {
        const std::string strName = std::filesystem::path(vecPaths[i]).filename().string();
        if (stOptions.strName.empty() || strName == stOptions.strName) {
            vecImages.push_back({strName, ReadImageFile(vecPaths[i])});
        }
    }
    return vecImages;
}

class Sweep
{
  public:
    Sweep(const IMAGE_FILE_S &stImage, u32 uiStride)
        : m_stImage(stImage), m_uiStride(uiStride), m_vecVariant(stImage.vecBytes)
    {
        m_stRow.strName = stImage.strName;
        m_stRow.uiBytes = stImage.vecBytes.size();
    }

    ROW_S Run()
    {
        const auto tBegin = std::chrono::steady_clock::now();
        const size_t uiSize = m_stImage.vecBytes.size();
        for (size_t i = 0; i < uiSize * VALUES; i++) {
            Change(i / VALUES, static_cast<u8>(i % VALUES));
        }
        for (size_t uiLength = 0; uiLength < uiSize; uiLength++) {
            Cut(uiLength);
        }
        m_stRow.dSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - tBegin).count();
        return m_stRow;
    }

  private:
    void Change(size_t uiByte, u8 ucValue)
    {
        for (const bool bSealed : {false, true}) {
            if (IsTaken()) {
                m_vecVariant = m_stImage.vecBytes;
                m_vecVariant[uiByte] = ucValue;
                Check("byte", uiByte, ucValue, bSealed);
            }
        }
    }

    void Cut(size_t uiLength)
    {
        for (const bool bSealed : {false, true}) {
            if (IsTaken()) {
                const auto itFrom = m_stImage.vecBytes.begin();
                m_vecVariant.assign(itFrom, itFrom + static_cast<std::ptrdiff_t>(uiLength));
                Check("cut at", uiLength, 0U, bSealed);
            }
        }
    }

    bool IsTaken()
    {
        return m_ulNext++ % m_uiStride == 0U;
    }

    void Check(const char *pcWhat, size_t uiWhere, u32 uiValue, bool bSealed)
    {
        if (bSealed) {
            fuzz::SealSums(m_vecVariant);
        }
        const int64_t iBefore = prove::LiveBuffers();
        const prove::VERDICT_S stVerdict = prove::CheckImage(m_vecVariant, m_stImage.strName == BASEBOARD);
        m_stRow.ulVariants++;
        m_stRow.ulLeaks += prove::LiveBuffers() == iBefore ? 0U : 1U;
        m_stRow.ulAccepted += stVerdict.bAccepted ? 1U : 0U;
        if (stVerdict.pcBroken != nullptr && m_stRow.ulBroken++ < TOLD_MAX) {
            (void)fprintf(stderr, "%s, %s %#zx, value %#x%s: broken: %s\n", m_stImage.strName.c_str(), pcWhat,
                          uiWhere, uiValue, bSealed ? ", checksums repaired" : "", stVerdict.pcBroken);
        }
    }

    const IMAGE_FILE_S &m_stImage;
    const u32 m_uiStride;
    uint64_t m_ulNext = 0;
    BYTES m_vecVariant;
    ROW_S m_stRow;
};

// Standard output is the library's to print on; the table goes to what it was.
FILE *Table()
{
    static FILE *const PST_TABLE = [] {
        FILE *pstTable = fdopen(dup(STDOUT_FILENO), "w");
        return freopen("/dev/null", "w", stdout) == nullptr ? nullptr : pstTable;
    }();
    return PST_TABLE;
}

void PrintRow(const ROW_S &stRow)
{
    (void)fprintf(Table(), "%-48s %6zu %9llu %9llu %9llu %7llu %7llu %8.1f\n", stRow.strName.c_str(),
                  stRow.uiBytes, static_cast<unsigned long long>(stRow.ulVariants),
                  static_cast<unsigned long long>(stRow.ulAccepted),
                  static_cast<unsigned long long>(stRow.ulVariants - stRow.ulAccepted),
                  static_cast<unsigned long long>(stRow.ulBroken),
                  static_cast<unsigned long long>(stRow.ulLeaks), stRow.dSeconds);
    (void)fflush(Table());
}

nlohmann::ordered_json JsonRow(const char *pcKey, const ROW_S &stRow)
{
    return {{pcKey, stRow.strName},
            {"bytes", stRow.uiBytes},
            {"variants", stRow.ulVariants},
            {"accepted", stRow.ulAccepted},
            {"refused", stRow.ulVariants - stRow.ulAccepted},
            {"broken", stRow.ulBroken},
            {"leaks", stRow.ulLeaks},
            {"seconds", stRow.dSeconds}};
}

} // namespace

int main(int iArgc, char **ppcArgv)
{
    const OPTIONS_S stOptions = ParseOptions(iArgc, ppcArgv);
    memory::FormatMessages(true); // a text that is no text would be noticed
    const std::vector<IMAGE_FILE_S> vecImages = Images(stOptions);
    ROW_S stTotal;
    std::vector<nlohmann::ordered_json> vecJson;
    (void)fprintf(Table(), "%-48s %6s %9s %9s %9s %7s %7s %8s\n", "image", "bytes", "variants", "accepted",
                  "refused", "broken", "leaks", "seconds");
    for (const IMAGE_FILE_S &stImage : vecImages) {
        const ROW_S stRow = Sweep(stImage, stOptions.uiStride).Run();
        PrintRow(stRow);
        vecJson.push_back(JsonRow("image", stRow));
        stTotal.uiBytes += stRow.uiBytes;
        stTotal.ulVariants += stRow.ulVariants;
        stTotal.ulAccepted += stRow.ulAccepted;
        stTotal.ulBroken += stRow.ulBroken;
        stTotal.ulLeaks += stRow.ulLeaks;
        stTotal.dSeconds += stRow.dSeconds;
    }
    stTotal.strName = std::to_string(vecImages.size()) + " images";
    PrintRow(stTotal);
    vecJson.push_back(JsonRow("total", stTotal));
    if (!stOptions.strJson.empty()) {
        std::ofstream stream(stOptions.strJson);
        for (const nlohmann::ordered_json &stRow : vecJson) {
            stream << stRow.dump() << '\n';
        }
    }
    return vecImages.empty() || stTotal.ulBroken != 0U || stTotal.ulLeaks != 0 ? 1 : 0;
}
