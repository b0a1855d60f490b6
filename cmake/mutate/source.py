"""The text of a file in which mutants are searched."""
import re


def without_comments(text):
    return re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL).strip()


class Source:
    """The text, and the positions of macro expansions."""

    def __init__(self, name, text):
        self.name, self.text, self.macros = name, text, []

    def is_written_by_macro(self, start, end):
        return any(start < macro_end and macro_start < end for macro_start, macro_end in self.macros)

    def line_at(self, offset):
        return self.text.count("\n", 0, offset) + 1

    def text_of_line_at(self, offset):
        begin = self.text.rfind("\n", 0, offset) + 1
        end = self.text.find("\n", offset)
        return self.text[begin:end if end >= 0 else len(self.text)].strip()

    def before(self, offset):
        """The last non-space character before the position."""
        return self.text[:offset].rstrip()[-1:]

    def behind(self, offset):
        return self.text[offset:].lstrip()[:1]
