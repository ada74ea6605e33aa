"""Manual pages say what --help says, without a warning of their formatter, and an interactive bash completes.

Usage: manual_test.py BUILD_FOLDER
"""

import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile

build = pathlib.Path(sys.argv[1])
share = build / "share"
environment = dict(os.environ, OMPI_ALLOW_RUN_AS_ROOT="1", OMPI_ALLOW_RUN_AS_ROOT_CONFIRM="1")


def words(text):
    return sorted(re.findall(r"[^\s,:]+", text.lower()))


def words_of_page(page):
    made = subprocess.run(["groff", "-man", "-ww", "-Tascii", "-P-cbou", "-rLL=2000n", page], capture_output=True, text=True)
    assert made.stderr == "", made.stderr
    text = "\n".join(made.stdout.strip().split("\n")[1:-1]).split("\nSEE ALSO\n")[0]
    text = re.sub(r"^\s*NAME\n +\S+ - (.*)\nSYNOPSIS\n", r"\1 Usage: ", text.replace("\n\n", "\n"))
    return words(text.replace("\nDESCRIPTION\n", "\n"))


pages = sorted((share / "man/man1").glob("*.1"))
for page in pages:
    program, *command = re.fullmatch(r"(arbor(?:-mpi)?)(?:-(\w+))?", page.stem).groups()
    if not (build / "bin" / program).exists():
        continue
    shown = subprocess.run(
        [build / "bin" / program, *filter(None, command), "--help"], capture_output=True, text=True, env=environment)
    described = shown.stdout.replace(".\nUsage", "\nUsage")
    assert words(described) == words_of_page(page), (page, described)
assert len(pages) > 6


class Shell:
    """An interactive bash, to which keys are typed."""

    def __init__(self, folder):
        pid, self.terminal = pty.fork()
        if pid == 0:
            os.chdir(folder)
            os.execvpe("bash", ["bash", "--norc", "--noprofile", "-i"], {"PATH": os.environ["PATH"], "TERM": "dumb"})
        self.typed("PS1='ready'$'> '")

    def typed(self, keys):
        os.write(self.terminal, (keys + "\n").encode())
        printed = b""
        while not printed.endswith(b"ready> "):
            printed += os.read(self.terminal, 1000)
        return printed.decode()


with tempfile.TemporaryDirectory() as folder:
    pathlib.Path(folder, "two words.csv").touch()
    shell = Shell(folder)
    shell.typed(f"source {share.resolve()}/bash-completion/completions/arbor; arbor() {{ printf '<%s>' \"$@\"; echo; }}")
    for keys, arguments in [
            ("gr\t --mod\ttw\t", ["grow", "--model", "two words.csv"]),
            ("rate --format j\t--format=j\t", ["rate", "--format", "json", "--format=json"]),
            ("rate --kind a=dis\t--kind='a b'=ig\t--kind=c=co\t",
             ["rate", "--kind", "a=discrete", "--kind=a b=ignore", "--kind=c=continuous"]),
            ("classify --id tw\t", ["classify", "--id", "tw"]),
            ("classify tw\t--strict tw\t-- tw\t", ["classify", "two words.csv", "--strict", "two words.csv", "--", "two words.csv"]),
            ("help va\t", ["help", "validate"]),
            ("-\tve\t", ["--version"])]:
        assert "\n" + "".join(f"<{text}>" for text in arguments) + "\r\n" in (done := shell.typed("arbor " + keys)), done
