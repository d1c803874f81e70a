# SPDX-License-Identifier: Apache-2.0
"""The snippets of docs/python.md, one after the other, print what stands behind them."""
import contextlib
import io
import re
import unittest

from support import SOURCE, ControllerTest


class Docs(ControllerTest):
    def test_every_snippet_prints_what_it_says(self):
        strPage = (SOURCE / "docs/python.md").read_text()
        astrSnippets = re.findall(r"^```python\n(.*?)^```$", strPage, re.M | re.S)
        self.assertGreater(len(astrSnippets), 6)
        dictNames = {"root": str(self.pathRoot)}
        for strSnippet in astrSnippets:
            asExpected = [s[2:] for s in strSnippet.splitlines() if s.startswith("# ")]
            printed = io.StringIO()
            with contextlib.redirect_stdout(printed):
                exec(compile(strSnippet, "docs/python.md", "exec"), dictNames)
            self.assertEqual(printed.getvalue().splitlines(), asExpected, strSnippet)
        dictNames["controller"].close()

    def test_every_error_and_every_name_stands_in_the_page(self):
        import bmcfru
        strPage = (SOURCE / "docs/python.md").read_text()
        for kind in [bmcfru.Error, *bmcfru.Error.__subclasses__()]:
            self.assertIn(f"| `{kind.__name__}` | `{kind.code}` |", strPage)


if __name__ == "__main__":
    unittest.main()
