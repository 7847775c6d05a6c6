"""Finds the places in a C++ source where a small slip could be made, and what the slip would be.

Works on tokens, not on a syntax tree: what it takes for an expression may be none, and then the
fault does not compile and another takes its place.
"""

import collections
import dataclasses
import hashlib
import re

TOKEN = re.compile(
    r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>^[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<text>(?:u8|[uUL])?R"(?P<mark>[^()\\\s]*)\(.*?\)(?P=mark)"
      |(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|(?:u8|[uUL])?'(?:\\.|[^'\\\n])+')
  | (?P<number>\.?\d(?:[eEpP][+-]|'(?=\w)|[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><=>|->\*|<<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\s\w])
    """,
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)

# Binary where it stands between blanks, as the layout of the sources has it.
BINARY = {
    "<": [">", "<="], ">": ["<", ">="], "<=": [">=", "<"], ">=": ["<=", ">"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="],
}
WORDS = {
    "min": "max", "max": "min", "floor": "ceil", "ceil": "floor", "sin": "cos", "cos": "sin",
    "front": "back", "back": "front", "true": "false", "false": "true",
    "lower_bound": "upper_bound", "upper_bound": "lower_bound",
}
SYMMETRIC = {"min", "max", "hypot", "swap", "connect", "disconnect"}
KEYWORDS = set(
    "if for while switch return sizeof catch case default else do throw new delete using static const"
    " constexpr auto struct class enum template typename public private protected operator goto"
    " decltype alignas noexcept friend explicit virtual inline extern namespace try".split()
)
# Whoever reads these lines sees no behaviour: sizes asked for ahead, checks of the compiler's, hints.
SILENT = re.compile(
    r"static_assert|\breserve\(|\bassert\(|\[\[|noexcept|\bQ_[A-Z]|[sS]etToolTip|setStatusTip"
    r"|setAccessible|setWhatsThis|setObjectName|\busing\b|\btemplate\b|\benum\b|shrink_to_fit"
)
LAYOUT = re.compile(
    r"[sS]pacing|[mM]argin|[pP]adding|minimum|maximum(?:Width|Height|Size)|setM(?:in|ax)imum[WHS]"
    r"|[sS]izeHint|[fF]ixed(?:Width|Height|Size|Font)|[sS]tretch|[fF]ont|[pP]enWidth|\bQPen\b"
    r"|[bB]rush|[iI]con|[pP]alette|QColor|[qQ]Rgb|0x|[aA]ntialias|RenderHint|SizePolicy|setFlag"
    r"|Corner|corner|[rR]adius|lighter|darker|setAlpha"
)
# By how many pixels something is drawn beside another; that it is drawn at all is another matter.
PIXELS = re.compile(r"\bdraw[A-Z]|QRect|adjusted|Scaled|[gG]ap\b|metrics|TraceWidth|half\b")
LONGEST_STATEMENT = 4  # lines


@dataclasses.dataclass(frozen=True)
class Fault:
    file: str  # from the root of the project
    line: int
    kind: str
    start: int
    end: int
    new: str
    before: str  # the line as it stands
    after: str  # and with the slip

    def apply(self, source):
        return source[: self.start] + self.new + source[self.end :]

    def key(self):
        return (self.file, self.before, self.after)

    def __str__(self):
        return f"{self.file}:{self.line}  {self.before}  ->  {self.after}"


@dataclasses.dataclass
class Token:
    group: str
    text: str
    start: int
    end: int
    inside: str = ""  # innermost bracket: "(", "[", or of a brace "body", "scope" or "values"
    body: bool = False  # within some function
    parameters: bool = False  # in brackets of a declaration


def tokens_of(source):
    tokens = [
        Token(match.lastgroup if match.lastgroup != "mark" else "text", match.group(), *match.span())
        for match in TOKEN.finditer(source)
        if match.lastgroup not in ("comment", "directive")
    ]
    stack = []
    since = 0  # where the present declaration or statement began
    for i, token in enumerate(tokens):
        if token.text in (")", "]", "}") and stack:
            closed = stack.pop()
            if token.text == "}" and closed != "values":
                since = i + 1
        token.inside = stack[-1] if stack else "scope"
        token.body = "body" in stack
        token.parameters = "(" in stack and not token.body
        if token.text in ("(", "["):
            stack.append(token.text)
        elif token.text == "{":
            stack.append(brace_kind(tokens[since:i]))
            if stack[-1] != "values":
                since = i + 1
        elif token.text == ";":
            since = i + 1
    return tokens


def brace_kind(before):
    words = [token.text for token in before]
    if words and words[-1] in (")", "const", "noexcept", "override", "else", "do", "try", "mutable"):
        return "body"
    if not words or words[-1] == ":":
        return "body"
    if "->" in words and words[words.index("->") - 1] == ")":
        return "body"
    if words[-1] == "}" and ":" in words:  # after the initialisers of a constructor
        return "body"
    if {"namespace", "class", "struct", "enum", "union"} & set(words) and "=" not in words:
        return "scope"
    return "values"


def squeeze(text):
    return " ".join(text.split())


class Finder:
    def __init__(self, file, source):
        self.file = file
        self.pictured = file.startswith(("src/plot/", "src/ui/"))
        self.source = source
        self.tokens = tokens_of(source)
        self.faults = []

    def find(self):
        for i, token in enumerate(self.tokens):
            if self.skipped(token):
                continue
            self.statement(i)
            if self.pictured and PIXELS.search(self.line_at(token.start)):
                continue
            if token.group == "number":
                self.constant(i)
            elif token.group == "word":
                self.word(i)
            elif token.group == "sign":
                self.operator(i)
        return self.faults

    def line_at(self, place):
        start = self.source.rfind("\n", 0, place) + 1
        end = self.source.find("\n", place)
        return self.source[start : end if end >= 0 else len(self.source)]

    def skipped(self, token):
        line = self.line_at(token.start)
        if SILENT.search(line):
            return True
        if self.pictured and LAYOUT.search(line):
            return True
        if not token.body and self.file.endswith(".h"):
            # Of declarations only values remain; that a member begins at zero is mostly overwritten.
            return token.parameters or "=" not in line or bool(re.search(r"= (0|0\.0|false);", line))
        return False

    def text(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def group(self, i):
        return self.tokens[i].group if 0 <= i < len(self.tokens) else ""

    def add(self, kind, start, end, new):
        line_start = self.source.rfind("\n", 0, start) + 1
        line_end = self.source.find("\n", end)
        tail = self.source[end : line_end if line_end >= 0 else len(self.source)]
        self.faults.append(
            Fault(
                self.file, self.source.count("\n", 0, start) + 1, kind, start, end, new,
                squeeze(self.source[line_start:end] + tail),
                squeeze(self.source[line_start:start] + new + tail),
            )
        )

    def replace(self, kind, i, new):
        self.add(kind, self.tokens[i].start, self.tokens[i].end, new)

    def constant(self, i):
        text = self.text(i)
        if self.text(i - 1) in ("[", "<") or self.tokens[i].inside == "[":
            return
        if self.text(i - 1) == "=" and self.text(i - 2) in (")", "const"):
            return  # a pure virtual function
        if not re.fullmatch(r"[\d.']+(?:[eE][+-]?\d+)?", text):
            return
        value = float(text.replace("'", ""))
        if 0 < value < 1e-8 or value == 1 and self.unary(i - 1):
            return  # an allowance for rounding, or a mark for "none"
        if "." in text or "e" in text or value >= 100:
            new = repr(2 * value) if value else "1.0"
            self.replace("constant", i, new if "." in text or "e" in text else str(int(2 * value)))
        else:
            self.replace("constant", i, str(int(value) + 1))
            if value > 0:
                self.replace("constant", i, str(int(value) - 1))

    def word(self, i):
        text = self.text(i)
        if text in WORDS:
            self.replace("constant" if text in ("true", "false") else "function", i, WORDS[text])
        if self.text(i + 1) == "(" and text not in KEYWORDS | SYMMETRIC:
            self.arguments(i + 1)

    def operator(self, i):
        token, previous = self.tokens[i], self.tokens[i - 1] if i else None
        spaced = self.source[token.start - 1].isspace() and self.source[token.end :][:1].isspace()
        texts = re.search(r'"|string|QString', self.line_at(token.start))
        if spaced and token.text in BINARY and previous.text not in ("template", "operator", ","):
            if token.text == "+" and texts:
                return
            for new in BINARY[token.text]:
                kind = "comparison" if token.text[0] in "<>=!" else "operator"
                self.replace(kind, i, new)
        elif token.text in ("++", "--"):
            self.replace("operator", i, "--" if token.text == "++" else "++")
        elif self.unary(i):
            self.replace("sign", i, "")

    def unary(self, i):
        if self.text(i) not in ("-", "!") or self.source[self.tokens[i].end].isspace():
            return False
        if self.text(i - 1) == "return":
            return True
        return self.group(i - 1) == "sign" and self.text(i - 1) not in (")", "]", "}")

    def arguments(self, i):
        """Swaps the first two arguments of the call whose bracket opens at i."""
        if not self.tokens[i + 1].body:
            return
        depth, starts, ends = 0, [i + 1], []
        for k in range(i + 1, min(i + 60, len(self.tokens))):
            text = self.text(k)
            if text in ("{", ";"):
                return
            if depth == 0 and text in (",", ")"):
                ends.append(k)
                if text == ")":
                    break
                starts.append(k + 1)
            depth += (text in ("(", "[")) - (text in (")", "]"))
        if len(ends) < 2:
            return
        slices = [
            self.source[self.tokens[a].start : self.tokens[b - 1].end]
            for a, b in zip(starts[:2], ends[:2])
        ]
        if slices[0] == slices[1] or "\n" in "".join(slices):
            return
        if (slices[0][0] in '"&*[') != (slices[1][0] in '"&*['):
            return  # of different types, most likely
        between = self.source[self.tokens[ends[0] - 1].end : self.tokens[starts[1]].start]
        self.add("arguments", self.tokens[starts[0]].start, self.tokens[ends[1] - 1].end,
                 slices[1] + between + slices[0])

    def statement(self, i):
        """Drops the statement that begins at i."""
        token = self.tokens[i]
        if token.inside != "body" or not self.begins_statement(i):
            return
        if not (token.text in ("break", "continue") or self.acts(i)):
            return
        for k in range(i, len(self.tokens)):
            if self.text(k) == ";" and self.tokens[k].inside == "body" and (
                self.depth_between(i, k) == 0
            ):
                end = self.tokens[k].end
                if self.source.count("\n", token.start, end) < LONGEST_STATEMENT:
                    self.add("dropped", token.start, end, ";")
                return

    def begins_statement(self, i):
        previous = self.text(i - 1)
        if previous == ")":
            return self.header_ends(i - 1)
        if previous == ":":
            return self.text(i - 2) == "default" or "case " in self.line_at(self.tokens[i - 1].start)
        return previous in (";", "{", "}", "else")

    def header_ends(self, i):
        """Whether the bracket that closes at i is that of an if, a for or a while."""
        depth = 0
        for k in range(i, -1, -1):
            depth += (self.text(k) == ")") - (self.text(k) == "(")
            if depth == 0:
                return self.text(k - 1) in ("if", "for", "while")
        return False

    def acts(self, i):
        """Whether what begins at i is a call or an assignment, and no declaration."""
        if self.text(i) in ("++", "--", "*"):
            return True
        if self.group(i) != "word" or self.text(i) in KEYWORDS:
            return False
        while self.text(i + 1) == "::" and self.group(i + 2) == "word":
            i += 2
        return self.text(i + 1) in (
            "(", ".", "->", "=", "[", "++", "--", "+=", "-=", "*=", "/=", "|=", "&=", "%=")

    def depth_between(self, first, last):
        opening, closing = ("(", "[", "{"), (")", "]", "}")
        return sum((t.text in opening) - (t.text in closing) for t in self.tokens[first:last])


def rank(faults, seed):
    """The faults in an order of chance, at most one of each line. A fault's place hangs on itself
    alone, so that a change elsewhere in the sources leaves the sample nearly as it was."""
    repeats = collections.Counter()
    places = {}
    for fault in faults:
        named = (seed, fault.kind, fault.key())
        places[fault] = hashlib.sha1(repr((*named, repeats[named])).encode()).digest()
        repeats[named] += 1
    order = sorted(faults, key=places.get)
    lines = set()
    chosen = []
    for fault in order:
        if (fault.file, fault.line) not in lines:
            lines.add((fault.file, fault.line))
            chosen.append(fault)
    return chosen
