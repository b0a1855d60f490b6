#!/usr/bin/env python3
"""Reads the blocks and the command lines out of a page in Markdown. Run by itself, it prints a page's program."""
import re
import sys
from pathlib import Path

PROGRAMS = r"(?:export|zelcam|zelcam-sim|\./run|cmake|build/\w+/bin/\w+)"


class Page:
    def __init__(self, path):
        self.path = path
        self.text = path.read_text()
        self.blocks = re.findall(r"^```(\w*)\n(.*?)^```$", self.text, re.MULTILINE | re.DOTALL)
        self.prose = re.sub(r"^```(\w*)\n(.*?)^```$", "", self.text, flags=re.MULTILINE | re.DOTALL)

    def languages(self):
        return {language for language, _ in self.blocks}

    def file(self, name):
        """The block whose first line names that file."""
        return next(block for _, block in self.blocks if block.startswith(f"# {name}\n"))

    def program(self):
        """All C++ of the page, which is one program in its order."""
        return "\n".join(block for language, block in self.blocks if language == "cpp")

    def links(self):
        """Targets of links and pictures that are no addresses."""
        targets = re.findall(r"\]\(([^)\s]+)\)", self.prose)
        return [target for target in targets if "://" not in target]

    def command_lines(self):
        """Everything that a reader may type: of shell blocks each line, of others what stands behind a prompt, and what the
        prose has between backticks unless it shows a form, with [ and ..., rather than a command."""
        lines = []
        for language, block in self.blocks:
            lines += [line for line in block.splitlines() if language == "sh" or line.startswith("$ ")]
        lines += re.findall(rf"^    ((?:\$ )?{PROGRAMS} .*)$", self.prose, re.MULTILINE)
        lines += [line for line in re.findall(r"`([^`\n]+)`", self.prose)
                  if re.match(rf"{PROGRAMS} ", line) and not re.search(r"\[|\.\.\.|COMMAND|OPERATION", line)]
        return [line.removeprefix("$ ").removesuffix(" &") for line in lines if line.strip()]

    def sessions(self):
        """Command lines behind a prompt, each with the lines that the page shows below it."""
        shown = []
        parts = [block for _, block in self.blocks] + re.findall(r"(?:^    .*\n)+", self.prose, re.MULTILINE)
        for part in parts:
            for line in (line.strip() for line in part.splitlines()):
                if line.startswith("$ "):
                    shown.append((line[2:], []))
                elif shown and line and part.strip().startswith("$ "):
                    shown[-1][1].append(line)
        return shown


def pages(root):
    names = ["README.md", "CONTRIBUTING.md", "CHANGELOG.md", "SECURITY.md"]
    return [Page(root / name) for name in names] + [Page(path) for path in sorted((root / "docs").rglob("*.md"))]


if __name__ == "__main__":
    sys.stdout.write(Page(Path(sys.argv[1])).program())
