# SPDX-License-Identifier: Apache-2.0
"""fructl report: one page of devices, fields, health and byte maps, as written and as a browser has it."""
import html.parser
import re
import unittest

from browser_support import Browsed, DARK
from multirecord_support import Records
from support import BASEBOARD_EEPROM, CORPUS_IMAGES, FructlTest, Image, NO_CORPUS, Texts

NASTY = "<script>alert('&\"')</script>"


class Page(html.parser.HTMLParser):
    """What a page says: the texts of its table cells, its findings, and the bytes of its maps."""

    def __init__(self, strHtml):
        super().__init__()
        self.listOpen = []
        self.dictTexts = {"td": [], "th": [], "li": [], "h2": []}
        self.listMaps = []
        self.listLinks = []
        self.iScripts = 0
        self.feed(strHtml)

    def handle_starttag(self, strTag, listAttributes):
        dictAttributes = dict(listAttributes)
        if strTag in ("meta", "link", "br"):
            self.listLinks += [strValue for strName, strValue in listAttributes if strName in ("href", "src")]
            return
        self.listOpen.append((strTag, dictAttributes))
        self.listLinks += [strValue for strName, strValue in listAttributes if strName in ("href", "src", "srcset", "action")]
        self.iScripts += strTag == "script"
        if strTag in self.dictTexts:
            self.dictTexts[strTag].append("")
        if strTag == "div" and dictAttributes.get("class") == "map":
            self.listMaps.append(b"")

    def handle_endtag(self, strTag):
        assert self.listOpen.pop()[0] == strTag, strTag

    def handle_data(self, strData):
        for strTag in {strTag for strTag, _ in self.listOpen} & set(self.dictTexts):
            self.dictTexts[strTag][-1] += strData
        listClasses = [dictAttributes.get("class", "") for _, dictAttributes in self.listOpen]
        if "hex" in listClasses:
            stRun = re.fullmatch(r"(..) \.\.\. \((\d+) bytes\)", strData)
            self.listMaps[-1] += bytes.fromhex(stRun.group(1)) * int(stRun.group(2)) if stRun else bytes.fromhex(strData)


class ReportTest(FructlTest):
    def Report(self, *asArguments):
        """The page's file."""
        pathPage = self.pathTemp / "page.html"
        self.Good("report", *asArguments, "-o", pathPage, "--force")
        return pathPage

    def Parsed(self, *asArguments):
        stPage = Page(self.Report(*asArguments).read_text())
        self.assertEqual(stPage.listOpen, [])
        return stPage


class Report(ReportTest):
    def test_every_field_of_every_device_is_in_the_page(self):
        self.Provision()
        stPage = self.Parsed()
        listDevices = self.Json("list")["devices"]
        self.assertEqual([strTitle.split()[0] for strTitle in stPage.dictTexts["h2"]], [dictDevice["name"] for dictDevice in listDevices])
        iChecked = 0
        for dictDevice in listDevices:
            for stSpan in self.Json("map", "--id", dictDevice["id"])["spans"]:
                if stSpan["area"] in ("header", "unused") or re.search("header|checksum|format version|area length|end mark|fill", stSpan["field"]):
                    continue
                for stPart in stSpan.get("parts", [stSpan]):
                    self.assertIn(stPart["field"], stPage.dictTexts["th"])
                    self.assertTrue(any(strText.startswith(stPart["text"]) for strText in stPage.dictTexts["td"]), stPart)
                    iChecked += 1
            dictShown = self.Fructl("show", "--id", dictDevice["id"], "--json").Json()
            for strArea in ("chassis", "board", "product"):
                for value in dictShown.get(strArea, {}).values():
                    for strText in value if isinstance(value, list) else [value]:
                        self.assertTrue(not isinstance(strText, str) or not strText or any(strText in strCell for strCell in stPage.dictTexts["td"]), strText)
        self.assertGreater(iChecked, 50)

    def test_every_byte_of_every_image_is_in_its_map(self):
        self.Provision()
        listMaps = self.Parsed().listMaps
        for dictDevice, abMap in zip(self.Json("list")["devices"], listMaps):
            pathImage = self.pathTemp / f"{dictDevice['id']}.bin"
            self.Good("read", "--id", dictDevice["id"], "-o", pathImage)
            self.assertEqual(abMap, pathImage.read_bytes())

    @unittest.skipUnless(CORPUS_IMAGES, NO_CORPUS)
    def test_images_of_real_boards(self):
        stPage = self.Parsed(*CORPUS_IMAGES)
        self.assertEqual(stPage.listMaps, [pathImage.read_bytes() for pathImage in CORPUS_IMAGES])

    def test_the_page_needs_nothing_else(self):
        self.Provision()
        strHtml = self.Report().read_text()
        stPage = Page(strHtml)
        self.assertEqual({strLink for strLink in stPage.listLinks if not re.fullmatch(r"#device-\d+", strLink)}, {"data:,"})
        self.assertNotRegex(strHtml, r"https?:|//\w+\.|@import|url\(")
        self.assertIn("default-src 'none'", strHtml)

    def test_texts_of_devices_are_no_markup(self):
        abFields = Texts(NASTY, "\xe9t\xe9", "a\x07b", "{{script}}", "id")
        stPage = self.Parsed(self.Write("nasty.bin", Image({3: b"\x19\x00\x00\x00" + abFields})))
        for strText in (NASTY, "\xe9t\xe9", "a\\x07b", "{{script}}"):
            self.assertIn(strText, stPage.dictTexts["td"])
        self.assertEqual(stPage.iScripts, 1)

    def test_values_that_share_a_byte_have_a_line_each(self):
        stPage = self.Parsed(self.Write("load.bin", Image({5: Records([(1, bytes.fromhex("82b0040000000000000000409c")), (0xD0, b"\x01\x02\x03")])})))
        self.assertEqual(stPage.dictTexts["th"][-11:-7], ["record 1: DC Output", "output number", "on in standby", "nominal voltage"])
        self.assertIn("12.00 V", stPage.dictTexts["td"])
        self.assertIn("01 02 03 not decoded: an OEM record of manufacturer 0x030201, whose layout is not known", stPage.dictTexts["td"])

    def test_health_is_told(self):
        self.Provision()
        self.Damage(self.Eeprom(BASEBOARD_EEPROM), 0x3C, b"\xee")
        self.Eeprom("bus3-addr0xa2.bin").unlink()
        stPage = self.Parsed()
        listHealth = [strTitle.split(maxsplit=1)[1] for strTitle in stPage.dictTexts["h2"]]
        self.assertEqual(sorted(listHealth), ["good", "good", "good", "good", "not in order", "unreadable"])
        stVerified = self.Fructl("verify", "baseboard", "--json").Json()["images"][0]
        for stProblem in stVerified["problems"]:
            self.assertTrue(any(stProblem["what"] in strItem for strItem in stPage.dictTexts["li"]), stProblem)
        # What still can be read is told: also in the table of all.
        self.assertIn("MB2241700137", stPage.dictTexts["td"])

    def test_one_bad_record_does_not_hide_those_behind_it(self):
        abRecords = bytearray(Records([(3, b"\x02first"), (3, b"\x02second"), (3, b"\x02third")]))
        abRecords[6] ^= 1
        stPage = self.Parsed(self.Write("records.bin", Image({5: abRecords}) + b"\xff" * 8))
        for strText in ("second", "third"):
            self.assertIn(strText, stPage.dictTexts["td"])
        self.assertTrue(any("checksum" in strItem for strItem in stPage.dictTexts["li"]))

    def test_a_file_that_is_there_is_not_replaced_unasked(self):
        pathPage = self.Write("there.html", b"mine")
        pathImage = self.Write("empty.bin", b"\xff" * 64)
        self.assertIn("is there already; --force replaces it", self.Bad(3, "report", pathImage, "-o", pathPage))
        self.assertEqual(pathPage.read_bytes(), b"mine")
        self.assertEqual(self.Json("report", pathImage, "-o", pathPage, "--force"),
                         {"file": str(pathPage), "size": pathPage.stat().st_size, "devices": 1, "notInOrder": 1})
        self.assertTrue(self.Good("report", pathImage, "-o", "-").strOut.startswith("<!DOCTYPE html>"))
        self.assertIn("both want standard output", self.Bad(2, "report", pathImage, "-o", "-", "--json"))


POINT = """
  const fnOver = (stPart) => stPart.dispatchEvent(new PointerEvent("pointerover", {bubbles: true}));
  const fnOn = (strWhat) => [...document.querySelectorAll("#device-0 " + strWhat + ".on")].map(stPart => stPart.textContent);
  const stTell = document.querySelector("#device-0 .tell");
  const stField = [...document.querySelectorAll("#device-0 .fields tr")].find(stRow => stRow.textContent.startsWith("manufacturer"));
"""


class Browser(ReportTest):
    def setUp(self):
        super().setUp()
        self.Provision()
        self.pathPage = self.Report()

    def test_a_console_error_would_be_seen(self):
        self.assertEqual(len(Browsed(self, self.pathPage, "console.error('seen'); return 1").listConsole), 1)

    def test_pointing_at_a_field_shows_its_bytes_and_at_a_byte_its_field(self):
        stBrowsed = Browsed(self, self.pathPage, POINT + """
          const mapSeen = {silent: stTell.textContent};
          fnOver(stField.querySelector("td"));
          mapSeen.bytes = fnOn("span.hex i");
          mapSeen.ascii = fnOn("span.ascii i").join("");
          mapSeen.told = stTell.textContent;
          document.querySelector("#device-0").dispatchEvent(new PointerEvent("pointerleave"));
          mapSeen.left = [fnOn("*").length, stTell.textContent];
          const stByte = document.querySelectorAll("#device-0 span.hex i")[0x0b0];
          fnOver(stByte);
          mapSeen.field = fnOn("tr");
          mapSeen.frame = stTell.textContent;
          stField.click();
          mapSeen.kept = fnOn("tr");
          fnOver(stByte);
          mapSeen.still = fnOn("tr");
          document.dispatchEvent(new KeyboardEvent("keydown", {key: "Escape"}));
          mapSeen.gone = fnOn("*").length;
          stField.focus();
          mapSeen.focused = fnOn("tr");
          return mapSeen;""")
        self.assertEqual(stBrowsed.listConsole, [])
        dictSeen = stBrowsed.value
        strManufacturer = self.Json("show", "baseboard")["board"]["manufacturer"]
        self.assertEqual(dictSeen["ascii"][1:], strManufacturer)
        self.assertEqual(bytes.fromhex("".join(dictSeen["bytes"]))[1:], strManufacturer.encode())
        self.assertIn(f"board info area: manufacturer: {strManufacturer}", dictSeen["told"])
        self.assertEqual(dictSeen["left"], [0, dictSeen["silent"]])
        self.assertEqual((dictSeen["field"], dictSeen["frame"]), ([], "byte 0x00b0: product info area: format version: 1"))
        self.assertEqual(dictSeen["kept"], ["manufacturer" + strManufacturer])
        self.assertEqual((dictSeen["still"], dictSeen["gone"], dictSeen["focused"]), (dictSeen["kept"], 0, dictSeen["kept"]))

    def test_every_byte_tells_what_it_is(self):
        stBrowsed = Browsed(self, self.pathPage, """
          const listBad = [];
          let iBytes = 0;
          for (const stDevice of document.querySelectorAll(".device")) {
            for (const stByte of stDevice.querySelectorAll("span.hex i")) {
              stByte.dispatchEvent(new PointerEvent("pointerover", {bubbles: true}));
              iBytes++;
              if (!/^bytes? 0x/.test(stDevice.querySelector(".tell").textContent) || !stByte.classList.contains("on")) {
                listBad.push(stByte.outerHTML);
              }
            }
          }
          return [iBytes, listBad];""")
        self.assertEqual(stBrowsed.listConsole, [])
        self.assertGreater(stBrowsed.value[0], 500)
        self.assertEqual(stBrowsed.value[1], [])

    def test_light_dark_and_narrow(self):
        strLook = """return {paper: getComputedStyle(document.body).backgroundColor, text: getComputedStyle(document.body).color,
          wide: document.documentElement.scrollWidth - document.documentElement.clientWidth}"""
        stLight = Browsed(self, self.pathPage, strLook)
        stDark = Browsed(self, self.pathPage, strLook, DARK)
        stNarrow = Browsed(self, self.pathPage, strLook, iWidth=500)
        for stLooked in (stLight, stDark, stNarrow):
            self.assertEqual((stLooked.listConsole, stLooked.value["wide"]), ([], 0))

        def Light(strColour):
            return sum(map(int, re.findall(r"\d+", strColour))) > 3 * 128
        self.assertEqual([Light(stLooked.value["paper"]) for stLooked in (stLight, stDark, stNarrow)], [True, False, True])
        self.assertEqual([Light(stLooked.value["text"]) for stLooked in (stLight, stDark, stNarrow)], [False, True, False])


if __name__ == "__main__":
    unittest.main()
