// SPDX-License-Identifier: Apache-2.0
// Who points at a byte sees its field, who points at a field its bytes. A click keeps it; Escape, or another, lets go.
"use strict";
for (const stDevice of document.querySelectorAll(".device")) {
  const stTell = stDevice.querySelector(".tell");
  if (!stTell) {
    continue;
  }
  const strSilent = stTell.textContent;
  let strKept = null;
  const fnShow = (strSpan) => {
    for (const stOld of stDevice.querySelectorAll(".on")) {
      stOld.classList.remove("on");
    }
    stTell.textContent = strSilent;
    if (strSpan === null) {
      return;
    }
    for (const stPart of stDevice.querySelectorAll(`[data-s="${strSpan}"]`)) {
      stPart.classList.add("on");
    }
    const stNamed = stDevice.querySelector(`[data-s="${strSpan}"][data-n]`);
    stTell.textContent = stNamed ? stNamed.dataset.n : strSilent;
  };
  const fnSpanAt = (stTarget) => {
    const stPart = stTarget.closest("[data-s]");
    return stPart ? stPart.dataset.s : null;
  };
  stDevice.addEventListener("pointerover", (stEvent) => strKept === null && fnShow(fnSpanAt(stEvent.target)));
  stDevice.addEventListener("pointerleave", () => fnShow(strKept));
  stDevice.addEventListener("focusin", (stEvent) => strKept === null && fnShow(fnSpanAt(stEvent.target)));
  stDevice.addEventListener("click", (stEvent) => {
    const strSpan = fnSpanAt(stEvent.target);
    strKept = strSpan === strKept ? null : strSpan;
    fnShow(strSpan);
    const stFirst = stEvent.target.closest("i") ? null : stDevice.querySelector(`.hex [data-s="${strSpan}"]`);
    if (strKept !== null && stFirst) {
      stFirst.scrollIntoView({ block: "nearest" });
    }
  });
  document.addEventListener("keydown", (stEvent) => {
    if (stEvent.key === "Escape") {
      strKept = null;
      fnShow(null);
    }
  });
}
