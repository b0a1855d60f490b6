"""Runs every request of docs/gateway.md, in its order, against a gateway."""
import os
import shlex
import subprocess
from pathlib import Path

from pages import Page

PAGE = Page(Path(os.environ["SOURCE_FOLDER"]) / "docs" / "gateway.md")


def requests():
    return [line for language, block in PAGE.blocks if language == "sh" for line in block.splitlines()]


def test_every_request_of_the_page_is_answered(gateway, tmp_path):
    lines = requests()
    assert len(lines) > 15
    for line in lines:
        words = [word.replace("127.0.0.1:8360", f"127.0.0.1:{gateway.port}") for word in shlex.split(line)]
        if "IMG_1.jpg" in line:
            stored = gateway.ask("GET", "/api/v1/files").json["files"][0]["name"]
            words = [word.replace("IMG_1.jpg", stored) for word in words]
        done = subprocess.run([words[0], "--silent", "--show-error", "--fail-with-body", *words[1:]], cwd=tmp_path,
                              capture_output=True, timeout=120, check=False)
        # 28: a stream that was read for as long as the line says.
        assert done.returncode == (28 if "--max-time" in line else 0), (line, done.stdout[:300], done.stderr)
        if "--output" in line:
            assert (tmp_path / words[words.index("--output") + 1]).stat().st_size > 1000, line


def test_every_row_stands_on_the_page(gateway):
    for path in gateway.ask("GET", "/api/v1/openapi.json").json["paths"]:
        shown = path.replace("{serial}", "E1A0001").replace("{name}", "IMG_1.jpg").replace("{id}", "1")
        assert shown in PAGE.text, path
