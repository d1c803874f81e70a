# SPDX-License-Identifier: Apache-2.0
"""Manufacturing dates: what is taken, what is refused and why, and how they are shown, the same in every command."""
import datetime
import unittest

from encode_support import EncodeTest
from support import Run

BEFORE = "it lies before 1996-01-01, from which on the three bytes count minutes"
BEYOND = "it lies beyond 2027-11-24 20:15:00, where the three bytes end and start again at 0"
RULE = "it lies beyond 2025-12-31, with which the library's rule for labels ends; 'edit' and 'encode' take it"


class Dates(EncodeTest):
    def Board(self, strDate, *asOptions):
        return self.Shown(self.Encode({"board": {"mfgDate": strDate}}, *asOptions))["board"]

    def test_a_bad_date_has_the_same_exit_code_and_reason_everywhere(self):
        self.Provision()
        pathOut = self.pathTemp / "never.bin"
        for strDate, strWhy in (("1995-12-31 23:59:00", BEFORE), ("2027-11-24 20:16:00", BEYOND), ("2024-02-30", "it is no date"), ("soon soon", "it is no date")):
            for asCommand in (["date", strDate], ["label", "set", "psu1", "Mfg.Date", strDate],
                              ["encode", self.Document({"board": {"mfgDate": strDate}}), "-o", pathOut],
                              ["assemble", "psu1", "--force", f"mfg-date={strDate}"]):
                with self.subTest(date=strDate, command=asCommand[0]):
                    self.assertIn(strWhy, self.Bad(3, *asCommand))
        self.assertFalse(pathOut.exists())

    def test_the_label_ends_with_the_librarys_rule_and_says_who_takes_the_date(self):
        self.Provision()
        self.assertIn(RULE, self.Bad(3, "label", "set", "psu1", "Mfg.Date", "2026-01-01"))
        self.assertEqual(Run("--json", "date", "2026-01-01").Json(), {"bytes": "c0 c6 f0", "minutes": 15779520, "text": "2026-01-01 00:00:00", "otherReading": None,
                                                                      "labelRefuses": RULE})
        self.assertEqual(self.Board("2026-01-01")["mfgDateMinutes"], 15779520)
        self.assertEqual(self.Board("2027-11-24 20:15:00")["mfgDateMinutes"], 0xFFFFFF)

    def test_now_is_taken(self):
        for stResult in (self.Board("now"), Run("--json", "date", "now").Json()):
            iMinutes = stResult.get("mfgDateMinutes", stResult.get("minutes"))
            fNow = (datetime.datetime.now(datetime.timezone.utc) - datetime.datetime(1996, 1, 1, tzinfo=datetime.timezone.utc)).total_seconds() / 60
            self.assertLess(abs(fNow - iMinutes), 60)  # of a command that a busy machine holds up

    def test_zero_is_unspecified_everywhere(self):
        self.Provision()
        self.assertEqual(self.Good("label", "set", "psu1", "Mfg.Date", "unspecified").strOut,
                         "Set psu1 FRU successfully, psu1 Mfg.Date: 1996-01-01.\n  Mfg.Date  2024-02-05 14:10:00 -> unspecified\n"
                         "  note: Mfg.Date will read as 'unspecified'\n")
        self.assertIn("\n  manufacturing date  unspecified\n", self.Good("show", "psu1").strOut)
        self.assertIn("manufacturing date: unspecified\n", self.Good("map", "psu1").strOut)
        self.assertEqual(self.Good("label", "get", "psu1", "Mfg.Date").strOut, "unspecified\n")
        self.assertIsNone(self.Json("label", "get", "psu1", "Mfg.Date")["value"])
        stBoard = self.Json("show", "psu1")["board"]
        self.assertEqual((stBoard["mfgDate"], stBoard["mfgDateMinutes"]), (None, 0))
        self.assertTrue(Run("date", "--bytes", "00", "00", "00").strOut.startswith("unspecified  =  00 00 00"))
        # And what was shown is taken back: the number with null or as it was once written, null or the word alone.
        for dictBoard in (stBoard, {**stBoard, "mfgDate": "1996-01-01 00:00:00"}, {"mfgDate": None}, {"mfgDate": "unspecified"}, {}):
            self.assertEqual(self.Shown(self.Encode({"board": dictBoard}))["board"]["mfgDate"], None)
        self.assertIn("board.mfgDate: contradicts mfgDateMinutes",
                      self.Bad(3, "encode", self.Document({"board": {"mfgDate": None, "mfgDateMinutes": 1}}), "-o", self.pathTemp / "x.bin"))

    def test_beyond_the_end_only_with_wrap_and_then_both_readings_are_shown(self):
        strOther = "or 2031-03-24 if the counter has gone round"
        stDate = Run("--json", "date", "2031-03-24 20:16", "--wrap").Json()
        self.assertEqual((stDate["text"], stDate["otherReading"]), ("1999-05-01 00:00:00", strOther))
        pathImage = self.Encode({"board": {"mfgDate": "2031-03-24 20:16:00"}}, "--wrap")
        self.assertIn(f"\n  manufacturing date  1999-05-01 00:00:00  ({strOther})\n", self.Good("show", pathImage).strOut)
        self.assertIn(f"manufacturing date: 1999-05-01 00:00:00 ({strOther})\n", self.Good("map", pathImage).strOut)
        self.assertEqual(Run("--json", "date", "2005-12-31 23:59").Json()["otherReading"], "or 2037-11-24 if the counter has gone round")
        self.assertIsNone(Run("--json", "date", "2006-01-01").Json()["otherReading"])
        for strDate, strWhy in (("2027-11-24 20:16", "and 0 stands for unspecified"), ("2038-01-01", "on nobody would read the small count so")):
            stResult = Run("date", strDate, "--wrap")
            self.assertEqual((stResult.iCode, strWhy in stResult.strErr), (3, True))


if __name__ == "__main__":
    unittest.main()
