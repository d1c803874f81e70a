# SPDX-License-Identifier: Apache-2.0
"""Ten thousand images: the set with known faults, sound ones made at random, and both with bytes changed, sealed again or not."""
import random

from image import END_OF_LIST, ENCODINGS, INFO_AREAS, TEXTS, Image, InfoArea, InternalUse, Latin, Records, Text, ZeroSum
from make_vectors import All

COUNT = 10000
LENGTHS = (0, 1, 2, 3, 4, 5, 8, 13, 20, 31)


def RandomText(stRandom):
    strEncoding = stRandom.choice(ENCODINGS + ("eightBit",) * 3)
    iLength = stRandom.choice(LENGTHS) if stRandom.random() < 0.95 else 63
    abData = stRandom.randbytes(iLength) if strEncoding != "eightBit" or stRandom.random() < 0.2 else bytes(stRandom.randrange(0x20, 0x7F) for _ in range(iLength))
    return Text(strEncoding, abData)


def PlainText(stRandom):
    """As most boards have it, and every decoder reads it the same way."""
    return Latin("".join(chr(stRandom.randrange(0x21, 0x7F)) for _ in range(stRandom.randrange(2, 20))))


def RandomInfo(stRandom, strArea, bPlain=False):
    fnText = PlainText if bPlain else RandomText
    dictTexts = {strKey: fnText(stRandom) for strKey in TEXTS[strArea]}
    dictFixed = {"type": stRandom.randrange(0x20), "languageCode": 25 if bPlain else stRandom.choice((0, 25, 25, 1, 77)), "mfgDate": stRandom.randrange(1 << 24)}
    listCustom = [fnText(stRandom) for _ in range(stRandom.choice((0, 0, 1, 2, 4, 5, 6)))]
    return InfoArea(strArea, dictFixed, dictTexts, listCustom, stRandom.choice((0, 0, 0, 1)))


def Sound(stRandom):
    bPlain = stRandom.random() < 0.4
    listAreas = [RandomInfo(stRandom, strArea, bPlain) for strArea in INFO_AREAS if stRandom.random() < 0.6]
    if stRandom.random() < 0.3:
        listAreas.append(InternalUse(RandomText(stRandom).Bytes() if stRandom.random() < 0.7 else stRandom.randbytes(stRandom.randrange(1, 20))))
    if stRandom.random() < 0.4:
        listAreas.append(Records([(stRandom.choice((0, 1, 2, 3, 0xC0, 0x55)), stRandom.randbytes(stRandom.randrange(1, 40))) for _ in range(stRandom.randrange(1, 5))]))
    stRandom.shuffle(listAreas)
    listSpaced = [stPart for stArea in listAreas for stPart in ([stRandom.randrange(1, 3), stArea] if stRandom.random() < 0.1 else [stArea])]
    abImage = bytes(Image(*listSpaced).abBytes)
    return abImage + b"\xff" * stRandom.choice((0, 8, 8, 24))


def Reseal(abImage):
    """Every checksum that can be found put right, so that a changed byte is met by what lies behind the checksum."""
    abImage = bytearray(abImage)
    if len(abImage) >= 8:
        abImage[7] = ZeroSum(abImage[:7])
        for iByte in (2, 3, 4):
            iStart = abImage[iByte] * 8
            iEnd = iStart + (abImage[iStart + 1] * 8 if iStart and iStart + 1 < len(abImage) else 0)
            if iStart < iEnd <= len(abImage):
                abImage[iEnd - 1] = ZeroSum(abImage[iStart:iEnd - 1])
        iStart = abImage[5] * 8
        while iStart and iStart + 5 <= len(abImage):
            abData = abImage[iStart + 5:iStart + 5 + abImage[iStart + 2]]
            abImage[iStart + 3] = ZeroSum(abData)
            abImage[iStart + 4] = ZeroSum(abImage[iStart:iStart + 4])
            iStart = 0 if abImage[iStart + 1] & END_OF_LIST else iStart + 5 + len(abData)
    return bytes(abImage)


def Mutated(stRandom, abImage):
    abImage = bytearray(abImage)
    for _ in range(stRandom.choice((1, 1, 2, 4))):
        iHow = stRandom.randrange(6)
        iAt = stRandom.randrange(len(abImage)) if abImage else 0
        if iHow == 0 and len(abImage) > 1:
            del abImage[iAt:]
        elif iHow == 1:
            abImage[iAt:iAt] = stRandom.randbytes(stRandom.randrange(1, 9))
        elif abImage:
            # The header and the first bytes of areas are where the structure is.
            iAt = stRandom.choice((iAt, stRandom.randrange(min(8, len(abImage))), min(len(abImage) - 1, iAt // 8 * 8 + stRandom.randrange(3))))
            abImage[iAt] = stRandom.choice((stRandom.randrange(256), abImage[iAt] ^ 1 << stRandom.randrange(8), 0, 0xC1, 0xFF, 0xC0))
    return Reseal(abImage) if stRandom.random() < 0.7 else bytes(abImage)


def ChecksumIsEndMark(stRandom):
    """A board area without end mark whose checksum is 0xc1."""
    stArea = RandomInfo(stRandom, "board")
    stArea.dictTexts = {strKey: Latin("ab") for strKey in stArea.dictTexts}
    for iExtra in range(8):
        stArea.listCustom = [Latin("xy"), Text("binary", bytes(iExtra + 2))]
        abArea, dictAt = stArea.Build()
        if dictAt["end"] == dictAt["checksum"] - 1:
            # The last field swallows the end mark, and its last byte makes the checksum what it has to be.
            stImage = Image(stArea, 1)
            stImage.Set(stImage.At("board.custom1"), iExtra + 3)
            stImage.Set(stImage.At("board.end"), 0)
            stImage.Set(stImage.At("board.checksum"), 0xC1)
            iStart, iEnd = stImage.At("board"), stImage.At("board.checksum") + 1
            return bytes(stImage.Set(stImage.At("board.end"), ZeroSum(stImage.abBytes[iStart:iEnd])).abBytes)
    raise AssertionError


def Images(iSeed=20240601):
    stRandom = random.Random(iSeed)
    listImages = [abImage for abImage, _ in All().values()] + [ChecksumIsEndMark(stRandom)]
    while len(listImages) < COUNT:
        if stRandom.random() < 0.35:
            listImages.append(Sound(stRandom))
        else:
            listImages.append(Mutated(stRandom, stRandom.choice(listImages) if stRandom.random() < 0.5 else Sound(stRandom)))
    return listImages
