# SPDX-License-Identifier: Apache-2.0
"""The lookup label_table."""
import json
import os
import re

from ansible.errors import AnsibleLookupError
from ansible.plugins.lookup import LookupBase

DOCUMENTATION = r"""
name: label_table
author: libbmcfru developers (@bmcfru)
short_description: Rows of a table of labels
version_added: "1.0.0"
description:
  - Reads the table that C(fructl label set --from) takes, CSV or JSON, on the control node, and gives the rows of one controller as the
    option I(rows) of the module C(bmcfru.fru.fru_label) takes them.
  - The column C(root) is the controller's directory, C(host) the managed host, C(device) the device; all others are labels. (C(fructl) itself
    takes no column C(host).)
  - An empty cell is not given, and the label stays; two quotes are an empty text.
  - The whole table is checked, whichever rows are asked for.
options:
  _terms:
    description: The table's file, looked for as the files of other lookups are.
    required: true
    type: list
    elements: path
  root:
    description: Gives only rows with this directory. A table without the column C(root) is refused then, and so is a row without it.
    type: path
  host:
    description: The same for the column C(host).
    type: str
  device:
    description: The device of rows that name none.
    type: str
  unique:
    description: Labels whose value no two rows may give.
    type: list
    elements: str
    default:
      - Chassis Serial Number
      - Chassis MAC Address
      - Board Serial Number
      - Product Serial Number
"""

EXAMPLES = r"""
- name: The rows of this controller
  ansible.builtin.debug:
    msg: "{{ query('bmcfru.fru.label_table', 'labels.csv', root=fru_root) }}"

- name: The rows of this host, of a table with the column 'host'
  ansible.builtin.debug:
    msg: "{{ query('bmcfru.fru.label_table', 'labels.csv', host=inventory_hostname) }}"
"""

RETURN = r"""
_list:
  description: A row each, with C(device), C(labels), C(where) (file and line), and C(root) where the table tells it.
  type: list
  elements: dict
"""

BYTE_ORDER_MARK = "\ufeff"
NO_LABELS = ("root", "host", "device")
CELL = r'"((?:[^"]|"")*)"|([^{0}\r\n]*)'


def CsvRows(strText, strName):
    """(line, cells) of each line; an empty cell is None, two quotes are an empty text."""
    stFirst = re.search(r"[,;\t\n]", re.sub(r'"[^"]*"', lambda st: "x" * len(st[0]), strText))
    strSeparator = stFirst[0] if stFirst and stFirst[0] != "\n" else ","
    stCell = re.compile(CELL.format(strSeparator))
    iAt, iLine = 0, 1
    while iAt < len(strText):
        iStart, listCells = iLine, []
        while True:
            stMatch = stCell.match(strText, iAt)
            if stMatch[1] is None and stMatch[0].startswith('"'):
                raise AnsibleLookupError(f"{strName}:{iLine + strText.count(chr(10), iAt)}: a quote is not closed")
            listCells.append(stMatch[2] or None if stMatch[1] is None else stMatch[1].replace('""', '"'))
            iLine += stMatch[0].count("\n")
            iAt = stMatch.end()
            if strText[iAt:iAt + 1] != strSeparator:
                break
            iAt += 1
        if strText[iAt:iAt + 1] not in ("", "\r", "\n"):
            raise AnsibleLookupError(f"{strName}:{iLine}: a text goes on behind its closing quote; accepted: quotes around the whole text, a "
                                     "quote in it doubled")
        iAt = re.compile(r"\r*\n?").match(strText, iAt).end()
        iLine += 1
        if listCells != [None]:
            yield iStart, listCells


def Csv(strText, strName):
    """(line, {column: cell}) of each row."""
    asColumns = None
    for iLine, listCells in CsvRows(strText, strName):
        if asColumns is None:
            asColumns = [strCell or "" for strCell in listCells]
            for strColumn in asColumns:
                if asColumns.count(strColumn) > 1:
                    raise AnsibleLookupError(f"{strName}: the column '{strColumn}' stands there twice; accepted: each column once")
        elif len(listCells) > len(asColumns):
            raise AnsibleLookupError(f"{strName}:{iLine}: {len(listCells)} cells, but the first line names {len(asColumns)} columns")
        else:
            yield iLine, dict(zip(asColumns, listCells))


def Whole(strNumber):
    """A whole number as it is written; what needs more than 64 bits is none, as for the command line."""
    return strNumber if -2**63 <= int(strNumber) < 2**64 else float(strNumber)


def Json(strText, strName):
    """The same of an array of objects, or of an object a line. Whole numbers are taken as they are written."""
    def Load(strPart, iLine):
        try:
            return json.loads(strPart, parse_int=Whole)
        except ValueError as stError:
            raise AnsibleLookupError(f"{strName}:{iLine}: not JSON; accepted: an array of objects, or an object a line") from stError
    if strText.lstrip().startswith("["):
        listRows = list(enumerate(Load(strText, 1), 1))
    else:
        listRows = [(iLine, Load(strLine, iLine)) for iLine, strLine in enumerate(strText.split("\n"), 1) if strLine.strip()]
    for iLine, dictRow in listRows:
        if not isinstance(dictRow, dict):
            raise AnsibleLookupError(f"{strName}:{iLine}: not an object; accepted: an object for each row, its members the row's cells")
        for strColumn, value in dictRow.items():
            if not isinstance(value, (str, type(None))):
                raise AnsibleLookupError(f"{strName}:{iLine}: {strColumn}: accepted: a text, a whole number or null")
        yield iLine, dictRow


def Rows(strText, strName):
    """Every row as the module takes it, with what it is chosen by."""
    strText = strText.removeprefix(BYTE_ORDER_MARK)
    fnRead = Json if strText.lstrip().startswith(("[", "{")) else Csv
    for iLine, dictCells in fnRead(strText, strName):
        dictRow = {"where": f"{strName}:{iLine}",
                   "labels": {strColumn: value for strColumn, value in dictCells.items() if strColumn not in NO_LABELS and value is not None}}
        yield {**dictRow, **{strColumn: dictCells[strColumn] for strColumn in NO_LABELS if dictCells.get(strColumn)}}


def RequireUnique(listRows, asLabels):
    dictSeen = {}
    for dictRow in listRows:
        for strLabel in asLabels:
            strValue = dictRow["labels"].get(strLabel)
            if not strValue:
                continue
            if (strLabel, strValue) in dictSeen:
                raise AnsibleLookupError(f"{dictRow['where']}: '{strValue}' as '{strLabel}' is given by {dictSeen[strLabel, strValue]} too; "
                                         "accepted: a value of its own for each row")
            dictSeen[strLabel, strValue] = dictRow["where"]


class LookupModule(LookupBase):
    def Chosen(self, listRows, strColumn, fnSame):
        """Those rows whose cell is the one asked for; every row must have one."""
        strWanted = self.get_option(strColumn)
        if strWanted is None:
            return listRows
        for dictRow in listRows:
            if strColumn not in dictRow:
                raise AnsibleLookupError(f"{dictRow['where']}: the column '{strColumn}' is missing or empty; accepted: a row of which one "
                                         "knows whose it is")
        return [dictRow for dictRow in listRows if fnSame(dictRow[strColumn]) == fnSame(strWanted)]

    def File(self, strTerm, dictVariables):
        strFile = self.find_file_in_search_path(dictVariables, "files", strTerm)
        if not strFile:
            raise AnsibleLookupError(f"there is no table '{strTerm}'")
        try:
            with open(strFile, encoding="utf-8", newline="") as stFile:
                return list(Rows(stFile.read(), os.path.basename(strFile)))
        except (OSError, UnicodeDecodeError) as stError:
            raise AnsibleLookupError(f"{strTerm}: {stError}; accepted: a table that can be read, in UTF-8") from stError

    def run(self, terms, variables=None, **kwargs):
        self.set_options(var_options=variables, direct=kwargs)
        listRows = [dictRow for strTerm in terms for dictRow in self.File(strTerm, variables)]
        for dictRow in listRows:
            dictRow.setdefault("device", self.get_option("device"))
            if not dictRow["device"]:
                raise AnsibleLookupError(f"{dictRow['where']}: the row names no device; accepted: a column 'device', or the option 'device'")
        RequireUnique(listRows, self.get_option("unique"))
        listRows = self.Chosen(listRows, "root", lambda strRoot: os.path.normpath(os.path.expanduser(strRoot)))
        listRows = self.Chosen(listRows, "host", str)
        return [{strKey: value for strKey, value in dictRow.items() if strKey != "host"} for dictRow in listRows]
