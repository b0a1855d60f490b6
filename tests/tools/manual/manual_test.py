#!/usr/bin/env python3
"""Holds the manual pages and the completions against the help that the programs print, and asks bash to complete words."""
import functools
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

BUILD = Path(sys.argv.pop()).resolve()
PROGRAMS = ("zelcam", "zelcam-sim")


@functools.cache
def help_of(program, *command):
    return subprocess.run([BUILD / "bin" / program, *command, "--help"], check=True, capture_output=True, text=True).stdout


def options_in(text):
    """Every name of every option in a help's list."""
    lists = re.findall(r"^  (-\S+)", text, re.MULTILINE)
    return [name for names in lists for name in names.split(",")]


def commands_in(text):
    return re.findall(r"^  (\w+)", text.split("Subcommands:")[1].split("\n\n")[0], re.MULTILINE) if "Subcommands:" in text else []


def manual(program):
    return (BUILD / "man" / f"{program}.1").read_text()


def bash_completion(program):
    return BUILD / "completions" / f"{program}.bash"


def zsh_completion(program):
    return BUILD / "completions" / f"_{program}"


def completed(*words):
    """What bash offers for the last of the words."""
    program = words[0]
    script = f"""source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _{program.replace('-', '_')}; printf '%s\\n' "${{COMPREPLY[@]}}" """
    done = subprocess.run(["bash", "--norc", "-c", script, bash_completion(program), *words], check=True, capture_output=True,
                          text=True, cwd=BUILD / "man")
    return done.stdout.split()


class Manual(unittest.TestCase):
    def test_reads_without_a_warning(self):
        if not shutil.which("groff"):
            self.skipTest("groff is not installed")
        for program in PROGRAMS:
            done = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", BUILD / "man" / f"{program}.1"], capture_output=True,
                                  text=True, check=False)
            self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""), program)

    def test_has_every_command_with_its_options_and_an_example(self):
        page = manual("zelcam").replace("\\-", "-")
        sections = {part.split("\n")[0]: part for part in re.split(r"^\.SS ", page.split(".SH COMMANDS")[1].split(".SH ")[0], flags=re.MULTILINE)}
        commands = commands_in(help_of("zelcam"))
        self.assertIn("thumbnail", commands)
        for command in commands:
            for name in set(options_in(help_of("zelcam", command))) - {"-h", "--help"}:
                self.assertIn(f"\\fB{name}\\fR", sections[command], command)
            self.assertIn("\nzelcam ", sections[command].split("Example:")[1], command)

    def test_has_every_option_of_the_programs(self):
        for program in PROGRAMS:
            page = manual(program).replace("\\-", "-")
            names = options_in(help_of(program))
            self.assertIn("--accessories", names)
            for name in names:
                self.assertIn(f"\\fB{name}\\fR", page, program)

    def test_tells_exit_statuses_and_faults(self):
        self.assertRegex(manual("zelcam"), r"\.SH EXIT STATUS\n\.nf\n0    done\n1    the camera refused")
        self.assertIn("\nno\\-reply=CODE ", manual("zelcam-sim").split(".SH FAULTS")[1])


class Examples(unittest.TestCase):
    def test_every_help_has_one_that_the_program_takes(self):
        helps = [help_of(program) for program in PROGRAMS]
        helps += [help_of("zelcam", command) for command in commands_in(helps[0])]
        examples = []
        for text in helps:
            found = re.findall(r"^Example: (.*)$", text, re.MULTILINE)
            self.assertEqual(len(found), 1, text)
            examples += found
        self.assertIn("zelcam record start", examples)
        self.assertEqual(self.read(examples), "")

    def test_one_that_it_does_not_take_would_be_found(self):
        self.assertIn("zelcam photo --bracke 1: ", self.read(["zelcam photo --bracke 1"]))
        self.assertIn("record pause", self.read(["zelcam record pause"]))
        self.assertIn("--fault", self.read(["zelcam-sim --fault nonsense"]))

    @staticmethod
    def read(lines):
        return subprocess.run([BUILD / "bin" / "read_command_lines"], input="\n".join(lines) + "\n", text=True,
                              capture_output=True, check=False).stdout


class Installation(unittest.TestCase):
    def test_puts_each_where_man_and_the_shells_look(self):
        with tempfile.TemporaryDirectory() as prefix:
            for folder in ("apps/zelcam", "simulator"):
                script = BUILD / folder / "cmake_install.cmake"
                subprocess.run(["cmake", f"-DCMAKE_INSTALL_PREFIX={prefix}", "-DCMAKE_INSTALL_COMPONENT=tools", "-P", script], check=True,
                               capture_output=True)
            installed = {str(path.relative_to(prefix)) for path in Path(prefix).rglob("*") if path.is_file()}
        for program in PROGRAMS:
            self.assertIn(f"share/man/man1/{program}.1", installed)
            self.assertIn(f"share/bash-completion/completions/{program}", installed)
            self.assertIn(f"share/zsh/site-functions/_{program}", installed)


class BashCompletion(unittest.TestCase):
    def test_offers_commands(self):
        self.assertEqual(completed("zelcam", "p"), ["photo", "preview"])
        self.assertEqual(completed("zelcam", "--json", "--camera", "A", "th"), ["thumbnail"])

    def test_offers_options_of_the_command_and_of_the_program(self):
        self.assertEqual(completed("zelcam", "photo", "--st"), ["--stitch"])
        self.assertEqual(completed("zelcam", "photo", "--js"), ["--json"])
        self.assertEqual(completed("zelcam", "live", "--logo"), ["--logo", "--logo-angle"])
        self.assertEqual(completed("zelcam", "--vers"), ["--version"])
        self.assertEqual(completed("zelcam-sim", "--s"), ["--serial", "--slices", "--storage", "--seed"])

    def test_offers_values(self):
        self.assertEqual(completed("zelcam", "record", "st"), ["start", "stop"])
        self.assertEqual(completed("zelcam", "preview", "--resolution", "1"), ["1", "10", "11", "12", "13", "14", "15"])
        self.assertEqual(completed("zelcam", "preview", "--resolution", "=", "15"), ["15"])
        self.assertEqual(completed("zelcam", "--describe", ""), ["man", "bash", "zsh"])
        self.assertEqual(completed("zelcam-sim", "--fault", "no-"), ["no-reply", "no-photo", "no-parameter-sets"])
        self.assertEqual(completed("zelcam", "call", "msgReqSetW"), ["msgReqSetWBMode"])

    def test_offers_files_and_folders(self):
        self.assertEqual(completed("zelcam", "upload", "zelcam-s"), ["zelcam-sim.1"])
        self.assertEqual(completed("zelcam", "photo", "-o", "zelcam-s"), [])
        self.assertEqual(completed("zelcam", "photo", "-o", "../completi"), ["../completions"])

    def test_offers_nothing_where_only_people_know(self):
        self.assertEqual(completed("zelcam", "--camera", ""), [])
        self.assertEqual(completed("zelcam", "call", "msgReqSetWBMode", "m"), [])

    def test_knows_what_the_help_knows(self):
        for program in PROGRAMS:
            self.assertEqual(completed(program, "-"), options_in(help_of(program)))
        for command in commands_in(help_of("zelcam")):
            offered = completed("zelcam", command, "-")
            for name in options_in(help_of("zelcam", command)):
                self.assertIn(name, offered, command)


class ZshCompletion(unittest.TestCase):
    def test_is_read_without_a_fault(self):
        if not shutil.which("zsh"):
            self.skipTest("zsh is not installed")
        for program in PROGRAMS:
            done = subprocess.run(["zsh", "-n", zsh_completion(program)], capture_output=True, text=True, check=False)
            self.assertEqual((done.returncode, done.stderr), (0, ""), program)

    def test_knows_what_the_help_knows(self):
        for program in PROGRAMS:
            script = zsh_completion(program).read_text()
            for name in options_in(help_of(program)):
                self.assertRegex(script, rf"[)*]{name}=?\[", program)
        script = zsh_completion("zelcam").read_text()
        for command in commands_in(help_of("zelcam")):
            own = script.split(f"\n    {command}) specifications=(")[1].split("\n    ) ;;")[0]
            for name in set(options_in(help_of("zelcam", command))) - {"-h", "--help"}:
                self.assertRegex(own, rf"[)*]{name}=?\[", command)
            self.assertIn(f"\n    '{command}:", script)


if __name__ == "__main__":
    unittest.main()
