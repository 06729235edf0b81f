"""The comments of the C++ headers, as XML documentation of the proxies."""
import re
from xml.sax.saxutils import escape

CLASS = re.compile(r"^( *)(?:class|struct) (\w+)\b(?!::)[^;{]*\{")
BASE = re.compile(r"public (?:orbelantine::)?(\w+)")
MEMBER = re.compile(r"(~?\w+)\s*(?:\(|=|;|$)")


class HeaderComments:
    """What headers say of classes and of their members."""

    def __init__(self, headers):
        self.comments = {}
        self.bases = {}
        for header in headers:
            self.read(header.read_text(encoding="utf-8").splitlines())

    def read(self, lines):
        inside = []
        comment = []
        for number, line in enumerate(lines):
            text = line.strip()
            if text.startswith("///"):
                comment.append(text[3:].strip())
                continue
            opened = CLASS.match(line)
            if opened:
                inside.append((len(opened[1]), opened[2]))
                self.bases[opened[2]] = BASE.findall(line + " " + "".join(lines[number + 1:number + 2]))
                self.keep(opened[2], None, comment)
            elif inside and line.startswith(" " * inside[-1][0] + "}"):
                inside.pop()
            elif inside and comment:
                self.keep_member(inside[-1][1], text, comment)
            comment = []

    def keep_member(self, owner, declaration, comment):
        # Of a function the name stands before its arguments, of a field before its end.
        plain = re.sub(r"<[^;]*>", "", declaration)
        found = MEMBER.search(plain)
        if found:
            self.keep(owner, found[1], comment)

    def keep(self, owner, member, comment):
        if comment and not comment[0].startswith("@"):
            self.comments.setdefault((owner, member), " ".join(line for line in comment if not line.startswith("@")))

    def of(self, owner, member=None):
        """The comment, or that of a base; None if there is none."""
        if (owner, member) in self.comments:
            return self.comments[owner, member]
        if member is None:
            return None
        return next(filter(None, (self.of(base, member) for base in self.bases.get(owner, []))), None)


def summary(comment, indent):
    """A comment as the lines of C# that stand before what it tells of."""
    words = escape(comment.replace("::", ".").replace("`", "")).split()
    lines, line = [], "<summary>"
    for word in words:
        if len(line) + len(word) > 96:
            lines.append(line)
            line = word
        else:
            line += ("" if line.endswith(">") and line == "<summary>" else " ") + word
    lines.append(line + "</summary>")
    return "".join(f"{indent}/// {text}\n" for text in lines)
