# SPDX-License-Identifier: Apache-2.0
"""Finds the places of a source file where one operator, constant, branch or call can be changed, and rewrites the file so that
each change is made or not at run time. Lines stay where they are: messages carry their numbers."""
import dataclasses
import hashlib
import pathlib
import re

from clang import cindex

OPERATORS = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"], "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"]}
ASSIGNMENTS = {"+=": "-=", "-=": "+=", "|=": "&=", "&=": "|=", "<<=": ">>=", ">>=": "<<=", "*=": "/=", "^=": "&="}
KIND = cindex.CursorKind
TOOL = pathlib.Path(__file__).read_text(encoding="utf-8")
WHOLE = {cindex.TypeKind.CHAR_U, cindex.TypeKind.UCHAR, cindex.TypeKind.USHORT, cindex.TypeKind.UINT, cindex.TypeKind.ULONG,
         cindex.TypeKind.CHAR_S, cindex.TypeKind.SCHAR, cindex.TypeKind.SHORT, cindex.TypeKind.INT, cindex.TypeKind.LONG,
         cindex.TypeKind.LONGLONG, cindex.TypeKind.ULONGLONG, cindex.TypeKind.ENUM}
STATEMENTS = {KIND.CALL_EXPR, KIND.BINARY_OPERATOR, KIND.COMPOUND_ASSIGNMENT_OPERATOR, KIND.UNARY_OPERATOR, KIND.CSTYLE_CAST_EXPR, KIND.DO_STMT}
FUNCTIONS = {KIND.FUNCTION_DECL, KIND.CXX_METHOD, KIND.CONSTRUCTOR, KIND.DESTRUCTOR, KIND.FUNCTION_TEMPLATE}
NOT_ENTERED = {KIND.STATIC_ASSERT, KIND.INIT_LIST_EXPR, KIND.CXX_UNARY_EXPR, KIND.TYPE_REF, KIND.TEMPLATE_REF, KIND.STRUCT_DECL, KIND.ENUM_DECL}


@dataclasses.dataclass
class Mutant:
    """One change; iNumber is what the environment chooses it by."""
    iNumber: int
    strFile: str
    iLine: int
    strFunction: str
    strChange: str
    strDigest: str  # of the function as it is
    strKey: str = ""


class Rewriter:
    """Of one file; setSkipped: changes that the compiler refused, as (line, change)."""

    def __init__(self, strFile, strName, listArguments, iFirst, setSkipped):
        self.strName = strName
        with open(strFile, encoding="utf-8") as stFile:
            self.strText = stFile.read()
        self.abText = self.strText.encode()
        stUnit = cindex.Index.create().parse(strFile, args=listArguments, options=cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        self.listMacros = []
        self.listMutants = []
        self.listInsertions = []
        self.setStatements = set()  # a macro of two statements is one
        self.setConstants = set()
        self.iNext = iFirst
        self.setSkipped = setSkipped
        self.strFunction = ""
        self.strDigest = ""
        for stCursor in stUnit.cursor.get_children():
            if stCursor.kind == KIND.MACRO_INSTANTIATION and self._IsHere(stCursor):
                self.listMacros.append(self._Range(stCursor))
        for stCursor in stUnit.cursor.get_children():
            if self._IsHere(stCursor):
                self._Outside(stCursor)
        self._NameKeys()

    def Text(self):
        """The rewritten file."""
        abOut = bytearray()
        iDone = 0
        # At one place what ends there stands first, the inner before the outer; then what begins, the outer before the inner.
        for iAt, _, _, strInserted in sorted(self.listInsertions, key=lambda t: t[:3]):
            abOut += self.abText[iDone:iAt] + strInserted.encode()
            iDone = iAt
        return bytes(abOut + self.abText[iDone:]).decode()

    def _NameKeys(self):
        dictSeen = {}
        for stMutant in self.listMutants:
            strKey = f"{stMutant.strFile} | {stMutant.strFunction} | {stMutant.strChange}"
            dictSeen[strKey] = dictSeen.get(strKey, 0) + 1
            stMutant.strKey = strKey if dictSeen[strKey] == 1 else f"{strKey} #{dictSeen[strKey]}"

    def _IsHere(self, stCursor):
        return stCursor.location.file is not None and stCursor.location.file.name.endswith(self.strName)

    @staticmethod
    def _Range(stCursor):
        return stCursor.extent.start.offset, stCursor.extent.end.offset

    def _Source(self, tRange):
        return self.abText[tRange[0]:tRange[1]].decode()

    def _IsPlain(self, tRange):
        """Neither made by a macro nor cutting through one."""
        for tMacro in self.listMacros:
            bApart = tMacro[1] <= tRange[0] or tRange[1] <= tMacro[0]
            bWithin = tRange[0] <= tMacro[0] and tMacro[1] <= tRange[1] and tMacro != tRange
            if not bApart and not bWithin:
                return False
        return tRange[0] < tRange[1]

    def _Take(self, stCursor, strChange):
        iLine = stCursor.extent.start.line
        if (iLine, strChange) in self.setSkipped:
            return 0
        self.listMutants.append(Mutant(self.iNext, self.strName, iLine, self.strFunction, strChange, self.strDigest))
        self.iNext += 1
        return self.iNext - 1

    def _Wrap(self, tRange, listChoices):
        """listChoices: (number, what stands there instead)."""
        strFront = "(" + "".join(f"MUTANT_Is({iNumber})?({strOther}):" for iNumber, strOther in listChoices)
        iSize = tRange[1] - tRange[0]
        self.listInsertions.append((tRange[0], 1, -iSize, strFront))
        self.listInsertions.append((tRange[1], 0, iSize, ")"))

    @staticmethod
    def _OneLine(strText):
        return re.sub(r"\s+", " ", strText)

    def _Alternatives(self, stCursor, listOthers, tRange=None):
        """Wraps an expression; listOthers: (what changes, the other expression)."""
        tRange = tRange or self._Range(stCursor)
        if "//" in self._Source(tRange) or "[&" in self._Source(tRange) or "[](" in self._Source(tRange):
            return
        listChoices = []
        for strChange, strOther in listOthers:
            iNumber = self._Take(stCursor, self._OneLine(strChange))
            if iNumber != 0:
                listChoices.append((iNumber, self._OneLine(strOther)))
        if listChoices:
            self._Wrap(tRange, listChoices)

    def _Outside(self, stCursor):
        if stCursor.kind in FUNCTIONS:
            if stCursor.is_definition() and "constexpr" not in self._Source(self._Range(stCursor)).split("(")[0]:
                self.strFunction = stCursor.spelling
                self.strDigest = hashlib.sha256((TOOL + self._Source(self._Range(stCursor))).encode()).hexdigest()[:16]
                for stChild in stCursor.get_children():
                    if stChild.kind == KIND.COMPOUND_STMT and self._IsPlain(self._Range(stChild)):
                        self._Visit(stChild)
            return
        if stCursor.kind in (KIND.NAMESPACE, KIND.LINKAGE_SPEC, KIND.UNEXPOSED_DECL, KIND.CLASS_DECL, KIND.STRUCT_DECL):
            for stChild in stCursor.get_children():
                self._Outside(stChild)

    def _Visit(self, stCursor):
        tRange = self._Range(stCursor)
        if stCursor.kind in NOT_ENTERED:
            return
        if stCursor.kind == KIND.DECL_STMT and re.match(r"(static|constexpr)\b", self._Source(tRange)):
            return
        if stCursor.kind == KIND.VAR_DECL and stCursor.type.get_canonical().kind == cindex.TypeKind.CONSTANTARRAY:
            return
        listChildren = list(stCursor.get_children())
        if stCursor.kind == KIND.COMPOUND_STMT:
            for stChild in listChildren:
                self._Statement(stChild)
        elif stCursor.kind == KIND.CASE_STMT:
            listChildren = listChildren[1:]
        elif stCursor.kind in (KIND.IF_STMT, KIND.WHILE_STMT, KIND.CONDITIONAL_OPERATOR):
            self._Condition(stCursor, listChildren[0])
        elif self._IsPlain(tRange):
            self._Expression(stCursor, tRange, listChildren)
        elif tRange in self.listMacros:
            self._Constant(stCursor, tRange)
        for stChild in listChildren:
            self._Visit(stChild)

    def _Statement(self, stChild):
        tRange = self._Range(stChild)
        bMacro = any(tMacro[0] == tRange[0] and tRange[1] <= tMacro[1] for tMacro in self.listMacros)
        if stChild.kind not in STATEMENTS or (stChild.kind == KIND.DO_STMT and not bMacro):
            return
        if (not bMacro and not self._IsPlain(tRange)) or tRange[0] in self.setStatements:
            return
        if re.fullmatch(r"\(void\)\w+", self._Source(tRange)):
            return  # tells that something is not used
        self.setStatements.add(tRange[0])
        iNumber = self._Take(stChild, "without " + self._OneLine(self._Source(tRange)))
        if iNumber != 0:
            self.listInsertions.append((tRange[0], 1, -(tRange[1] - tRange[0]) - 1, f"if (!MUTANT_Is({iNumber})) "))

    def _Condition(self, stCursor, stCondition):
        tRange = self._Range(stCondition)
        if not stCondition.kind.is_expression() or not self._IsPlain(tRange):
            return
        strText = self._Source(tRange)
        listOthers = [(f"condition {strText} never", "false")]
        if stCursor.kind != KIND.WHILE_STMT:
            listOthers.append((f"condition {strText} always", "true"))
        # Half a byte of range less than the expression's own would not nest: the condition's wrapper is the outer one.
        iBefore = len(self.listInsertions)
        self._Alternatives(stCondition, listOthers)
        for i in range(iBefore, len(self.listInsertions)):
            iAt, iSide, iSize, strInserted = self.listInsertions[i]
            self.listInsertions[i] = (iAt, iSide, iSize - 0.5 if iSide else iSize + 0.5, strInserted)

    def _Operator(self, tRange, listChildren):
        tLeft, tRight = self._Range(listChildren[0]), self._Range(listChildren[1])
        return tLeft, self._Source((tLeft[1], tRight[0])).strip(), tRight

    def _Expression(self, stCursor, tRange, listChildren):
        if stCursor.kind in (KIND.BINARY_OPERATOR, KIND.COMPOUND_ASSIGNMENT_OPERATOR) and len(listChildren) == 2:
            tLeft, strOperator, tRight = self._Operator(tRange, listChildren)
            bPointers = all(stChild.type.get_canonical().kind in (cindex.TypeKind.POINTER, cindex.TypeKind.CONSTANTARRAY) for stChild in listChildren)
            listOthers = OPERATORS.get(strOperator, [])
            if strOperator in ASSIGNMENTS:
                listOthers = [ASSIGNMENTS[strOperator]]
            if bPointers and strOperator == "-":
                listOthers = []
            strBefore, strAfter = self._Source((tRange[0], tLeft[1])), self._Source((tRight[0], tRange[1]))
            self._Alternatives(stCursor, [(f"{strBefore} {strOperator} {strAfter} with {strOther}", f"{strBefore} {strOther} {strAfter}") for strOther in listOthers])
        elif stCursor.kind == KIND.UNARY_OPERATOR and self._Source(tRange).startswith("!"):
            self._Alternatives(stCursor, [(f"{self._Source(tRange)} without !", f"!{self._Source(tRange)}")])
        elif stCursor.kind == KIND.CXX_BOOL_LITERAL_EXPR:
            self._Alternatives(stCursor, [(f"{self._Source(tRange)} negated", f"!{self._Source(tRange)}")])
        elif stCursor.kind == KIND.CHARACTER_LITERAL:
            self._Alternatives(stCursor, [(f"{self._Source(tRange)} + 1", f"static_cast<char>({self._Source(tRange)} + 1)")])
        elif stCursor.kind in (KIND.INTEGER_LITERAL, KIND.DECL_REF_EXPR):
            self._Constant(stCursor, tRange)

    def _Constant(self, stCursor, tRange):
        strText = self._Source(tRange)
        if strText == "__LINE__" or tRange in self.setConstants:
            return  # where a message comes from changes with every edit; a macro's number and its conversion are one place
        bConstant = stCursor.kind == KIND.INTEGER_LITERAL or re.fullmatch(r"[A-Z][A-Z0-9_]+", strText) is not None
        if stCursor.kind == KIND.DECL_REF_EXPR and not bConstant:
            stMeant = stCursor.referenced
            bConstant = stMeant is not None and (stMeant.kind == KIND.ENUM_CONSTANT_DECL or (
                stMeant.kind == KIND.VAR_DECL and stMeant.type.is_const_qualified() and stMeant.semantic_parent.kind != KIND.FUNCTION_DECL
                and stMeant.type.get_canonical().kind in WHOLE and strText.startswith("g_")))
        if bConstant and stCursor.type.get_canonical().kind in WHOLE and re.fullmatch(r"[\w:]+", strText):
            self.setConstants.add(tRange)
            self._Alternatives(stCursor, [(f"{strText} + 1", f"static_cast<decltype({strText})>(static_cast<long>({strText}) + 1)")], tRange)
