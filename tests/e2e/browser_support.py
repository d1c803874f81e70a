# SPDX-License-Identifier: Apache-2.0
"""A headless browser for tests of pages."""
import json
import os
import re
import shutil
import subprocess
import unittest

from support import HANG_SECONDS

BROWSER = next(filter(None, map(shutil.which, ("chromium", "chromium-browser", "google-chrome"))), None)
# Who has no browser and knows it sets this; else its lack is a failure.
MAY_LACK = "FRUCTL_TEST_NO_BROWSER"
DARK = "--blink-settings=preferredColorScheme=0"


def RequireBrowser(testCase):
    if BROWSER is None:
        if os.environ.get(MAY_LACK):
            raise unittest.SkipTest(f"no browser, and {MAY_LACK} is set")
        testCase.fail(f"no browser (Debian: chromium); {MAY_LACK}=1 skips what needs one")


class Browsed:
    """A page as a browser has it after a script, which returns what testers look at, has run in it."""

    def __init__(self, testCase, pathPage, strScript, *asOptions, iWidth=1400):
        RequireBrowser(testCase)
        pathCopy = testCase.pathTemp / "browsed.html"
        pathCopy.write_text(pathPage.read_text() + f"""
<script>window.addEventListener("load", () => {{
  const stOut = document.createElement("pre");
  stOut.id = "looked-at";
  stOut.textContent = JSON.stringify((() => {{ {strScript} }})());
  document.body.appendChild(stOut);
}});</script>""")
        stProcess = subprocess.run(
            [BROWSER, "--headless", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--enable-logging=stderr", f"--window-size={iWidth},900",
             f"--user-data-dir={testCase.pathTemp / 'browser'}", *asOptions, "--dump-dom", f"file://{pathCopy}"],
            capture_output=True, text=True, errors="replace", timeout=HANG_SECONDS, env={**os.environ, "HOME": str(testCase.pathTemp)})
        self.listConsole = re.findall(r"CONSOLE.*", stProcess.stderr)
        stMatch = re.search(r'<pre id="looked-at">(.*?)</pre>', stProcess.stdout, re.S)
        testCase.assertIsNotNone(stMatch, stProcess.stdout[-500:] + stProcess.stderr[-2000:])
        import html
        self.value = json.loads(html.unescape(stMatch.group(1)))
